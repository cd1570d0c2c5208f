// The host panel and user-interface theme suites (placeholder until they land).
#include "host/SuiteRegistry.h"

namespace lb::host {
void registerPanelSuites() {}
}  // namespace lb::host
