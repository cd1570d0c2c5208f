// Suites over the gradient-mesh engine (placeholder until they land).
#include "host/SuiteRegistry.h"

namespace lb::host {
void registerMeshSuites() {}
}  // namespace lb::host
