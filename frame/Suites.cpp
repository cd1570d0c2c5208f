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

constexpr unsigned kFrameCount = sizeof(gFrameSuites) / sizeof(gFrameSuites[0]);
}  // namespace

AIErr AcquireSuites() {
  if (gAcquireCount > 0) {
    ++gAcquireCount;
    return kNoErr;
  }
  ++gAcquireCount;
  AIErr err = AcquireTable(gFrameSuites, kFrameCount);
  if (err) return err;
  const SSuiteInit* panel = nullptr;
  unsigned panelCount = 0;
  PanelGetSuites(&panel, &panelCount);
  return AcquireTable(panel, panelCount);
}

AIErr ReleaseSuites() {
  if (gAcquireCount != 1) {
    --gAcquireCount;
    return kNoErr;
  }
  --gAcquireCount;
  AIErr err = ReleaseTable(gFrameSuites, kFrameCount);
  if (err) return err;
  const SSuiteInit* panel = nullptr;
  unsigned panelCount = 0;
  PanelGetSuites(&panel, &panelCount);
  return ReleaseTable(panel, panelCount);
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
    {"AI Real Math Suite", 3, Dest(&sMath)},
    {"AI Art Suite", 17, Dest(&sArt)},
    {"AI Path Suite", 11, Dest(&sPath)},
    {"AI Path Style Suite", 13, Dest(&sPathStyle)},
    {"AI Art Style Suite", 7, Dest(&sArtStyle)},
    {"AI Blend Style Suite", 5, Dest(&sBlendStyle)},
    {"AI Mesh Suite", 6, Dest(&sMesh)},
    {"AI Mesh Hit Suite", 3, Dest(&sMeshHit)},
    {"AI Mesh Selection Suite", 3, Dest(&sMeshSelection)},
    {"AI Mesh Patch Suite", 3, Dest(&sMeshPatchIterator)},
    {"AI Mesh Vertex Suite", 4, Dest(&sMeshVertexIterator)},
    {"AI Mesh Segment Suite", 3, Dest(&sMeshSegmentIterator)},
    {"AI Real Bezier Suite", 4, Dest(&sBezier)},
    {"AI Random Suite", 5, Dest(&sRandom)},
    {"AI Raster Suite", 10, Dest(&sRaster)},
    {"AI Placed Suite", 8, Dest(&sPlaced)},
    {"AI MdMemory Suite", 3, Dest(&sMdMemory)},
    {"AI Matching Art Suite", 7, Dest(&sAIMatchingArt)},
};
constexpr unsigned kCount = sizeof(gSuites) / sizeof(gSuites[0]);
}  // namespace

AIErr AcquireSuites() {
  if (gAcquireCount > 0) {
    ++gAcquireCount;
    return kNoErr;
  }
  ++gAcquireCount;
  return AcquireTable(gSuites, kCount);
}

AIErr ReleaseSuites() {
  if (gAcquireCount != 1) {
    --gAcquireCount;
    return kNoErr;
  }
  --gAcquireCount;
  return ReleaseTable(gSuites, kCount);
}
}  // namespace lb::s
