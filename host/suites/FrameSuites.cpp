// Suites of the plug-in frame (placeholder until they land).
#include "host/SuiteRegistry.h"

namespace lb::host {
void registerFrameSuites() {}
}  // namespace lb::host
