// The host's panels as tests and the command line see them: each panel
// the plug-in creates owns a native lbwin window; the host records its
// size, visibility and the icons set, and serves a brightness value.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "lbwin.h"

namespace lb::host {

struct PanelInfo {
  std::string id;
  std::string title;
  HWND window = nullptr;  // null once the plug-in destroyed it
  double width = 0;
  double height = 0;
  double minWidth = 0;
  double minHeight = 0;
  bool shown = false;
  // Icon ids handed to SetIcon, in order: (normal, dark).
  std::vector<std::pair<int32_t, int32_t>> icons;
};

// The panel created last and not yet destroyed, or null.
const PanelInfo* currentPanel();
// Its native window (null without a panel, or once the window is gone).
HWND currentPanelWindow();
// Number of panels alive.
int livePanels();

// What the user-interface theme suite reports (nonzero: light interface).
// 1 initially; Host construction resets it.
void setUIBrightness(int32_t value);
int32_t uiBrightness();

// Forgets every panel (destroying windows still alive) and resets the
// brightness; called when the suites are registered for a new Host.
void resetPanels();

}  // namespace lb::host
