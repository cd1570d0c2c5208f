// Reading a button picture out of the plug-in's own resources.
#include <cstdlib>
#include <vector>

#include "Suites.h"
#include "ZC_DIB.h"

AIErr LoadBitmapResource(const char* name, ZC_DIB& target) {
  if (!sAIDataFilter) return kNoErr;
  AIDataFilter* filter = nullptr;
  AIErr err = sAIDataFilter->NewResourceDataFilter(gPluginRef, AIFourCC("BMPP"), 0, name, &filter);
  if (err || !filter) return sAIDataFilter->UnlinkDataFilter(filter, nullptr);

  sAIDataFilter->LinkDataFilter(nullptr, filter);
  std::vector<unsigned char> bytes;
  for (;;) {
    char chunk[1024];
    size_t count = sizeof(chunk);
    if (sAIDataFilter->ReadDataFilter(filter, chunk, &count))
      return sAIDataFilter->UnlinkDataFilter(filter, nullptr);
    bytes.insert(bytes.end(), chunk, chunk + count);
    if (count < sizeof(chunk)) break;
  }
  if (!bytes.empty()) target.LoadFromBuff(bytes.data());
  return sAIDataFilter->UnlinkDataFilter(filter, nullptr);
}
