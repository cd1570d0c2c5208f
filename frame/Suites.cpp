// Suite pointers and the two acquisition levels: the frame (with the
// panel's table) around every host message, the command table around every
// command. Both levels nest through a counter: only the outermost acquire
// walks the table, only the matching outermost release gives it back.
#include "Suites.h"

SPBasicSuite* gsSPBasic = nullptr;
SPPluginRef gPluginRef = nullptr;
uint16_t gAcquireCount = 0;

const AINotifierSuite* sAINotifier = nullptr;
const SPBlocksSuite* sSPBlocks = nullptr;
const AIUnicodeStringSuite* sAIUnicodeString = nullptr;
const AIMenuSuite* sAIMenu = nullptr;
const AIUserSuite* sAIUser = nullptr;
const SPPluginsSuite* sSPPlugins = nullptr;
const AIAppContextSuite* sAIAppContext = nullptr;
const SPAccessSuite* sSPAccess = nullptr;
const AIDataFilterSuite* sAIDataFilter = nullptr;

namespace {
template <class T>
const void** Dest(const T** p) {
  return reinterpret_cast<const void**>(p);
}

const SSuiteInit gFrameSuites[] = {
    {kAINotifierSuite, kAINotifierSuiteVersion, Dest(&sAINotifier)},
    {kSPBlocksSuite, kSPBlocksSuiteVersion, Dest(&sSPBlocks)},
    {kAIUnicodeStringSuite, kAIUnicodeStringSuiteVersion, Dest(&sAIUnicodeString)},
    {kAIMenuSuite, kAIMenuSuiteVersion, Dest(&sAIMenu)},
    {kAIUserSuite, kAIUserSuiteVersion, Dest(&sAIUser)},
    {kSPPluginsSuite, kSPPluginsSuiteVersion, Dest(&sSPPlugins)},
    {kAIAppContextSuite, kAIAppContextSuiteVersion, Dest(&sAIAppContext)},
    {kSPAccessSuite, kSPAccessSuiteVersion, Dest(&sSPAccess)},
    {kAIDataFilterSuite, kAIDataFilterSuiteVersion, Dest(&sAIDataFilter)},
};

// Acquires every row with a destination; the first failure ends the walk.
AIErr AcquireTable(const SSuiteInit* table, unsigned count) {
  for (unsigned i = 0; i < count; ++i) {
    if (!table[i].dest) continue;
    AIErr err = gsSPBasic->AcquireSuite(table[i].name, table[i].version, table[i].dest);
    if (err) return err;
  }
  return kNoErr;
}

// Releases every row whose destination holds a suite and clears it; the
// first failure ends the walk.
AIErr ReleaseTable(const SSuiteInit* table, unsigned count) {
  for (unsigned i = 0; i < count; ++i) {
    if (!table[i].dest || !*table[i].dest) continue;
    AIErr err = gsSPBasic->ReleaseSuite(table[i].name, table[i].version);
    *table[i].dest = nullptr;
    if (err) return err;
  }
  return kNoErr;
}

// Both levels nest: only the outermost acquire walks its tables, only the
// matching outermost release gives them back.
template <class Count, class Walk>
AIErr NestedAcquire(Count& count, Walk&& walk) {
  if (count++ > 0) return kNoErr;
  return walk();
}
template <class Count, class Walk>
AIErr NestedRelease(Count& count, Walk&& walk) {
  if (count-- != 1) return kNoErr;
  return walk();
}

constexpr unsigned kFrameCount = sizeof(gFrameSuites) / sizeof(gFrameSuites[0]);

// The frame level: the frame's table, then the panel's.
AIErr WalkFrameLevel(AIErr (*walk)(const SSuiteInit*, unsigned)) {
  AIErr err = walk(gFrameSuites, kFrameCount);
  if (err) return err;
  const SSuiteInit* panel = nullptr;
  unsigned panelCount = 0;
  PanelGetSuites(&panel, &panelCount);
  return walk(panel, panelCount);
}
}  // namespace

AIErr AcquireSuites() {
  return NestedAcquire(gAcquireCount, [] { return WalkFrameLevel(AcquireTable); });
}

AIErr ReleaseSuites() {
  return NestedRelease(gAcquireCount, [] { return WalkFrameLevel(ReleaseTable); });
}

namespace lb::s {
int32_t gAcquireCount = 0;
const AIRealMathSuite* sMath = nullptr;
const AIArtSuite* sArt = nullptr;
const AIPathSuite* sPath = nullptr;
const AIPathStyleSuite* sPathStyle = nullptr;
const AIArtStyleSuite* sArtStyle = nullptr;
const AIBlendStyleSuite* sBlendStyle = nullptr;
const AIMeshSuite* sMesh = nullptr;
const AIMeshHitSuite* sMeshHit = nullptr;
const AIMeshSelectionSuite* sMeshSelection = nullptr;
const AIMeshPatchIteratorSuite* sMeshPatchIterator = nullptr;
const AIMeshVertexIteratorSuite* sMeshVertexIterator = nullptr;
const AIMeshSegmentIteratorSuite* sMeshSegmentIterator = nullptr;
const AIRealBezierSuite* sBezier = nullptr;
const AIRandomSuite* sRandom = nullptr;
const AIRasterSuite* sRaster = nullptr;
const AIPlacedSuite* sPlaced = nullptr;
const AIMdMemorySuite* sMdMemory = nullptr;
const AIMatchingArtSuite* sAIMatchingArt = nullptr;

namespace {
const SSuiteInit gSuites[] = {
    {kAIRealMathSuite, kAIRealMathSuiteVersion, Dest(&sMath)},
    {kAIArtSuite, kAIArtSuiteVersion, Dest(&sArt)},
    {kAIPathSuite, kAIPathSuiteVersion, Dest(&sPath)},
    {kAIPathStyleSuite, kAIPathStyleSuiteVersion, Dest(&sPathStyle)},
    {kAIArtStyleSuite, kAIArtStyleSuiteVersion, Dest(&sArtStyle)},
    {kAIBlendStyleSuite, kAIBlendStyleSuiteVersion, Dest(&sBlendStyle)},
    {kAIMeshSuite, kAIMeshSuiteVersion, Dest(&sMesh)},
    {kAIMeshHitSuite, kAIMeshHitSuiteVersion, Dest(&sMeshHit)},
    {kAIMeshSelectionSuite, kAIMeshSelectionSuiteVersion, Dest(&sMeshSelection)},
    {kAIMeshPatchIteratorSuite, kAIMeshPatchIteratorSuiteVersion, Dest(&sMeshPatchIterator)},
    {kAIMeshVertexIteratorSuite, kAIMeshVertexIteratorSuiteVersion, Dest(&sMeshVertexIterator)},
    {kAIMeshSegmentIteratorSuite, kAIMeshSegmentIteratorSuiteVersion, Dest(&sMeshSegmentIterator)},
    {kAIRealBezierSuite, kAIRealBezierSuiteVersion, Dest(&sBezier)},
    {kAIRandomSuite, kAIRandomSuiteVersion, Dest(&sRandom)},
    {kAIRasterSuite, kAIRasterSuiteVersion, Dest(&sRaster)},
    {kAIPlacedSuite, kAIPlacedSuiteVersion, Dest(&sPlaced)},
    {kAIMdMemorySuite, kAIMdMemorySuiteVersion, Dest(&sMdMemory)},
    {kAIMatchingArtSuite, kAIMatchingArtSuiteVersion, Dest(&sAIMatchingArt)},
};
constexpr unsigned kCount = sizeof(gSuites) / sizeof(gSuites[0]);
}  // namespace

AIErr AcquireSuites() {
  return NestedAcquire(gAcquireCount, [] { return AcquireTable(gSuites, kCount); });
}

AIErr ReleaseSuites() {
  return NestedRelease(gAcquireCount, [] { return ReleaseTable(gSuites, kCount); });
}
}  // namespace lb::s
