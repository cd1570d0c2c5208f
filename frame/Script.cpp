// The module's scripting entry: runs a command exactly as a button release
// on the panel does.
#include "Dispatch.h"
#include "LBModule.h"

extern "C" __attribute__((visibility("default"))) AIErr LBScriptRunCommand(int32_t id, int32_t alt,
                                                                          int32_t ctrl,
                                                                          int32_t useColor,
                                                                          int32_t useOpacity) {
  return BtnsRunLbFunc(id, alt != 0, ctrl != 0, useColor != 0, useOpacity != 0);
}
