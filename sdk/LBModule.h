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

// Panel command ids, named after their button pictures (IMG_...). 168 to
// 170 have no button: 168 does nothing, 169 shows the grid lines of the
// selected meshes, 170 reports how the ends of the selected paths meet.
enum LBCommand : int32_t {
  kCmdFirst = 131,
  kCmdSetOfPaths = 131,
  kCmdAxesAndNodes = 132,
  kCmdMoveCornerNode = 133,
  kCmdKnotsToVertices = 134,
  kCmdVerticesToKnots = 135,
  kCmdColorShift = 136,
  kCmdColorReflect = 137,
  kCmdColorRotate = 138,
  kCmdColorClone = 139,
  kCmdSplit = 140,
  kCmdOneCellMesh = 141,
  kCmdBmgCreate = 142,
  kCmdBmgToMesh = 143,
  kCmdHandlesSmooth = 144,
  kCmdHandles1_3 = 145,
  kCmdHandles0 = 146,
  kCmdAlignHor = 147,
  kCmdAlignVert = 148,
  kCmdColorSpread = 149,
  kCmdSelRegion = 150,
  kCmdSelPerim = 151,
  kCmdSewMeshMove = 152,
  kCmdSewMeshAdd = 153,
  kCmdColorPattern = 154,
  kCmdSelCross = 155,
  kCmdSelShift = 156,
  kCmdAlignPath = 157,
  kCmdColorCapture = 158,
  kCmdHandles90 = 159,
  kCmdSel = 160,
  kCmdSewDocked = 161,
  kCmdDensityInc = 162,
  kCmdDensityDec = 163,
  kCmdSewPath = 164,
  kCmdSew0 = 165,
  kCmdUvReset = 166,
  kCmdDirRotate = 167,
  kCmdNone168 = 168,
  kCmdDebugUVs = 169,
  kCmdSewPathsReport = 170,
  kCmdLast = 170,
};

extern "C" {
using LBGetResourceTableProc = const LBResourceTable* (*)();
// Runs command `id` with the given modifier and checkbox states (0 or 1).
using LBScriptRunCommandProc = AIErr (*)(int32_t id, int32_t alt, int32_t ctrl, int32_t useColor,
                                         int32_t useOpacity);
}

#define kLBGetResourceTableSymbol "LBGetResourceTable"
#define kLBScriptRunCommandSymbol "LBScriptRunCommand"
