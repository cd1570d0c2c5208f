// Suites over the document's art: registration and the shared handle checks.
#include "host/Host.h"
#include "host/SuiteRegistry.h"
#include "host/suites/ArtSuiteCommon.h"

namespace lb::host {
namespace suites {

Document& doc() { return Host::current().document(); }

AIErr checkArt(AIArtHandle art) {
  if (!art) return kBadParameterErr;
  if (!doc().contains(art)) return kNoSuchArtErr;
  return kNoErr;
}

AIErr checkArt(AIArtHandle art, int16_t type) {
  if (AIErr err = checkArt(art)) return err;
  return art->type == type ? kNoErr : kWrongArtTypeErr;
}

}  // namespace suites

void registerDocumentSuites() {
  suites::registerArtSuite();
  suites::registerPathSuites();
  suites::registerMatchingSuites();
  suites::registerMathSuites();
  suites::registerRasterSuites();
}

}  // namespace lb::host
