// Suite pointers of the plug-in and their acquisition tables.
//
// The frame table (with the panel table) is acquired around every host
// message; the command table (namespace lb::s) around every command.
#pragma once

#include "AIArtSuites.h"
#include "AIFrameSuites.h"
#include "AIMeshSuites.h"
#include "SPBasic.h"

struct SSuiteInit {
  const char* name;
  int32_t version;
  const void** dest;  // null skips the row
};

// Frame suites.
extern SPBasicSuite* gsSPBasic;
extern SPPluginRef gPluginRef;
extern uint16_t gAcquireCount;
extern const AINotifierSuite* sAINotifier;
extern const SPBlocksSuite* sSPBlocks;
extern const AIUnicodeStringSuite* sAIUnicodeString;
extern const AIMenuSuite* sAIMenu;
extern const AIUserSuite* sAIUser;
extern const SPPluginsSuite* sSPPlugins;
extern const AIAppContextSuite* sAIAppContext;
extern const SPAccessSuite* sSPAccess;
extern const AIDataFilterSuite* sAIDataFilter;
extern const AIPanelSuite* sAIPanel;
extern const AIUIThemeSuite* sAIUITheme;

AIErr AcquireSuites();
AIErr ReleaseSuites();
// The panel's own table, handed to the frame's acquisition.
void PanelGetSuites(const SSuiteInit** table, unsigned* count);

namespace lb::s {
extern int32_t gAcquireCount;
extern const AIRealMathSuite* sMath;
extern const AIArtSuite* sArt;
extern const AIPathSuite* sPath;
extern const AIPathStyleSuite* sPathStyle;
extern const AIArtStyleSuite* sArtStyle;
extern const AIBlendStyleSuite* sBlendStyle;
extern const AIMeshSuite* sMesh;
extern const AIMeshHitSuite* sMeshHit;
extern const AIMeshSelectionSuite* sMeshSelection;
extern const AIMeshPatchIteratorSuite* sMeshPatchIterator;
extern const AIMeshVertexIteratorSuite* sMeshVertexIterator;
extern const AIMeshSegmentIteratorSuite* sMeshSegmentIterator;
extern const AIRealBezierSuite* sBezier;
extern const AIRandomSuite* sRandom;
extern const AIRasterSuite* sRaster;
extern const AIPlacedSuite* sPlaced;
extern const AIMdMemorySuite* sMdMemory;
extern const AIMatchingArtSuite* sAIMatchingArt;

AIErr AcquireSuites();
AIErr ReleaseSuites();
}  // namespace lb::s
