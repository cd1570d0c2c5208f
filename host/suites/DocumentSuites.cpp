// Suites over the document's art (placeholder until the art suites land).
#include "host/SuiteRegistry.h"

namespace lb::host {
void registerDocumentSuites() {}
}  // namespace lb::host
