// The matching-art suite: art matching a set of (type, attribute) patterns,
// topmost first, handed out as a memory handle to an array of handles.
#include <cstring>

#include "host/SuiteRegistry.h"
#include "host/suites/ArtSuiteCommon.h"

namespace lb::host::suites {

void registerMemorySuite();

namespace {

AIErr handOut(const std::vector<ArtObject*>& found, AIArtHandle*** matches, int32_t* numMatches) {
  *matches = nullptr;
  *numMatches = 0;
  if (found.empty()) return kNoErr;
  AIMdMemoryHandle h = nullptr;
  if (AIErr err = newMemoryHandle(found.size() * sizeof(AIArtHandle), &h)) return err;
  std::memcpy(*h, found.data(), found.size() * sizeof(AIArtHandle));
  *matches = reinterpret_cast<AIArtHandle**>(h);
  *numMatches = static_cast<int32_t>(found.size());
  return kNoErr;
}

AIErr GetMatchingArt(const AIMatchingArtSpec* patterns, int16_t numPatterns, AIArtHandle*** matches,
                     int32_t* numMatches) {
  if (!matches || !numMatches) return kBadParameterErr;
  *matches = nullptr;
  *numMatches = 0;
  if (numPatterns < 0 || (numPatterns > 0 && !patterns)) return kBadParameterErr;
  return handOut(doc().matchingArt(patterns, numPatterns), matches, numMatches);
}

AIErr GetSelectedArt(AIArtHandle*** matches, int32_t* numMatches) {
  const AIMatchingArtSpec pattern{kAnyArt, kArtSelected, kArtSelected};
  return GetMatchingArt(&pattern, 1, matches, numMatches);
}

const AIMatchingArtSuite kMatchingArtSuite = {
    .GetMatchingArt = GetMatchingArt,
    .GetSelectedArt = GetSelectedArt,
};

}  // namespace

void registerMatchingSuites() {
  registerSuite(kAIMatchingArtSuite, kAIMatchingArtSuiteVersion, &kMatchingArtSuite);
  registerMemorySuite();
}

}  // namespace lb::host::suites
