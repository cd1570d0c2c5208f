// What the plug-in module exports besides PluginMain: its embedded resource
// table (read by the host's data-filter suite) and a scripting entry that
// runs a panel command exactly as a button release does.
#pragma once

#include "AITypes.h"

struct LBResourceEntry {
  int32_t type;      // four-character code, first character in the high byte
  int32_t id;        // resource id; 0 for a named resource
  const char* name;  // resource name; "" for a resource known by id
  int32_t language;
  const unsigned char* data;
  uint32_t size;
};

struct LBResourceTable {
  uint32_t count;
  const LBResourceEntry* entries;
};

extern "C" {
using LBGetResourceTableProc = const LBResourceTable* (*)();
// Runs command `id` with the given modifier and checkbox states (0 or 1).
using LBScriptRunCommandProc = AIErr (*)(int32_t id, int32_t alt, int32_t ctrl, int32_t useColor,
                                         int32_t useOpacity);
}

#define kLBGetResourceTableSymbol "LBGetResourceTable"
#define kLBScriptRunCommandSymbol "LBScriptRunCommand"
