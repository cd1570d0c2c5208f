// Placeholder until the panel window lands.
#include "app/PanelSnapshot.h"

#include <cstdio>

namespace lb::app {
int panelSnapshot(const std::string&, std::optional<std::pair<int, int>>, std::optional<std::pair<int, int>>) {
  std::fprintf(stderr, "latticebender panel: the panel is not available in this build\n");
  return 4;
}
}  // namespace lb::app
