// Recording fakes for the frame's tests: every operation, the panel, and
// a host whose basic suite hands out minimal suites and counts them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "SPBasic.h"

namespace fake {

// One operation call as the dispatcher made it, with the state it saw.
struct Call {
  std::string text;  // "Name(arg,arg)"
  int useColor;
  int useOpacity;
  int32_t commandAcquisitions;  // lb::s::gAcquireCount during the call
};
extern std::vector<Call> calls;

// Host side.
struct HostState {
  std::map<std::string, int> acquired;  // live acquisitions by suite name
  std::vector<std::string> acquireLog;  // every successful acquisition, in order
  std::string failSuite;                // acquisitions of this name fail
  bool failAllocation = false;
  AIErr pushError = 0;
  int contexts = 0;                     // pushed, not popped
  int pushes = 0;
  long blocks = 0;
  int accesses = 0;
  int menuItems = 0;
  std::vector<std::string> notifierTypes;
  std::vector<std::string> alerts;
  int checkCalls = 0;
  AIErr addMenuError = 0;
  AIErr addNotifierError = 0;  // for the last subscription only
  int strings = 0;
};
extern HostState host;
void resetHost();
SPBasicSuite* basic();

// Panel side.
struct PanelState {
  bool visible = false;
  AIErr addResult = 0;
  int adds = 0, removes = 0, themeChanges = 0;
};
extern PanelState panel;

}  // namespace fake
