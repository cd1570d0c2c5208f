// State behind the frame suites (basic, access, plug-ins, blocks, context,
// menu, notifier, user, Unicode string, data filter): what the plug-in
// added and what the host's loader and tests need to see of it.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "AIFrameSuites.h"
#include "LBModule.h"

// The host's record of a loaded plug-in (opaque to the plug-in).
struct SPPlugin {
  std::string name;
  void* globals = nullptr;
};

struct _AIMenuItem {
  std::string group;
  std::string text;
  int32_t options = 0;
  bool checked = false;
};

struct _AINotifier {
  std::string owner;
  std::string type;
  bool active = true;
};

namespace lb::host {

struct FrameState {
  SPPlugin plugin;
  std::vector<std::unique_ptr<_AIMenuItem>> menuItems;
  std::vector<std::unique_ptr<_AINotifier>> notifiers;
  std::vector<std::string> alerts;
  std::function<void(const std::string&)> alertSink;
  std::set<std::string> failingSuites;
  bool failAllocation = false;
  const LBResourceTable* resources = nullptr;  // the loaded module's table
  // Live acquisitions by (name, version).
  std::map<std::pair<std::string, int32_t>, long> acquired;
};

// The one frame state; reset by every new Host.
FrameState& frameState();
void resetFrameState();
// The basic suite the host hands to the plug-in in every message.
SPBasicSuite* basicSuite();

}  // namespace lb::host
