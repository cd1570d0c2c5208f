// The handle-geometry helpers and the zero-width row test linked in
// directly and run on the host's own suite tables, and the workers' failure
// path with host calls made to fail on purpose.
#include <gtest/gtest.h>

#include <memory>

#include "HandleGeometry.h"
#include "HostRefs.h"
#include "HdDoc.h"
#include "Operations.h"
#include "Suites.h"
#include "ZeroRow.h"
#include "handles/Handles.h"
#include "host/SuiteRegistry.h"

namespace lb::dens {
int _Mul(AIArtHandle mesh, int alongI, int alongJ);
}

namespace hdtest {
namespace {

template <class T>
const T* Find(const char* name, int32_t version) {
  return static_cast<const T*>(lb::host::findSuite(name, version));
}

class DirectTest : public ::testing::Test {
 protected:
  void Load(const json& doc) {
    host = std::make_unique<lb::host::Host>(lb::io::readDocument(doc.dump()));
    mesh = *Find<AIMeshSuite>(kAIMeshSuite, kAIMeshSuiteVersion);
    vertex = *Find<AIMeshVertexIteratorSuite>(kAIMeshVertexIteratorSuite, kAIMeshVertexIteratorSuiteVersion);
    lb::s::sMesh = &mesh;
    lb::s::sMeshVertexIterator = &vertex;
    lb::s::sMeshSegmentIterator =
        Find<AIMeshSegmentIteratorSuite>(kAIMeshSegmentIteratorSuite, kAIMeshSegmentIteratorSuiteVersion);
    lb::s::sMeshSelection = Find<AIMeshSelectionSuite>(kAIMeshSelectionSuite, kAIMeshSelectionSuiteVersion);
    lb::s::sMath = Find<AIRealMathSuite>(kAIRealMathSuite, kAIRealMathSuiteVersion);
    lb::s::sBezier = Find<AIRealBezierSuite>(kAIRealBezierSuite, kAIRealBezierSuiteVersion);
    lb::s::sArt = Find<AIArtSuite>(kAIArtSuite, kAIArtSuiteVersion);
    lb::s::sAIMatchingArt = Find<AIMatchingArtSuite>(kAIMatchingArtSuite, kAIMatchingArtSuiteVersion);
    lb::s::sMdMemory = Find<AIMdMemorySuite>(kAIMdMemorySuite, kAIMdMemorySuiteVersion);
    ASSERT_NE(lb::s::sMath, nullptr);
    ASSERT_NE(lb::s::sBezier, nullptr);
    ASSERT_NE(lb::s::sMeshSelection, nullptr);
    before = host->counters();
  }
  void Load(const MeshDoc& d) { Load(MakeDoc({d.toJson()})); }
  void TearDown() override {
    lb::s::sMesh = nullptr;
    lb::s::sMeshVertexIterator = nullptr;
    lb::s::sMeshSegmentIterator = nullptr;
    lb::s::sMeshSelection = nullptr;
    lb::s::sMath = nullptr;
    lb::s::sBezier = nullptr;
    lb::s::sArt = nullptr;
    lb::s::sAIMatchingArt = nullptr;
    lb::s::sMdMemory = nullptr;
    host.reset();
  }
  AIArtHandle Art(const std::string& id = "m") { return host->document().findById(id); }
  const GradientMesh& M(const std::string& id = "m") { return *Art(id)->mesh; }
  bool NoLeaks() const { return host->counters() == before; }

  std::unique_ptr<lb::host::Host> host;
  AIMeshSuite mesh{};  // editable copies of the host's tables
  AIMeshVertexIteratorSuite vertex{};
  lb::host::Counters before;
};

// ---- Path helpers ----------------------------------------------------------

AIPathSegment Seg(double h, double v) {
  AIPathSegment s{};
  s.p = s.in = s.out = {h, v};
  s.corner = 1;
  return s;
}

class PathHelperTest : public DirectTest {
 protected:
  void SetUp() override { Load(MakeDoc({})); }
};

TEST_F(PathHelperTest, StraightPiecesGetSinglePrecisionThirds) {
  AIPathSegment s[3] = {Seg(0, 0), Seg(30, 0), Seg(90, 0)};
  ZF_AIPathSegment_0h_to_0p33h(s, 3, 0);
  const double t = 0.3333333432674408;
  // Each handle lies a third of its piece from its own anchor.
  EXPECT_EQ(s[0].out.h, 0 + t * 30);
  EXPECT_EQ(s[1].in.h, 30 + t * (0 - 30));
  EXPECT_EQ(s[1].out.h, 30 + t * (90 - 30));
  EXPECT_EQ(s[2].in.h, 90 + t * (30 - 90));
  EXPECT_NE(s[0].out.h, 10.0);  // not the double-precision third
  for (const AIPathSegment& g : s) {
    EXPECT_EQ(g.in.v, 0);
    EXPECT_EQ(g.out.v, 0);
  }
  // Open path: the outer handles stay retracted.
  EXPECT_PT_NEAR(s[0].in, s[0].p, 0.0);
  EXPECT_PT_NEAR(s[2].out, s[2].p, 0.0);
}

TEST_F(PathHelperTest, ClosedPathTreatsTheClosingPiece) {
  AIPathSegment s[3] = {Seg(0, 0), Seg(30, 0), Seg(30, 60)};
  ZF_AIPathSegment_0h_to_0p33h(s, 3, 1);
  const double t = 0.3333333432674408;
  EXPECT_EQ(s[2].out.h, 30 + t * (0 - 30));
  EXPECT_EQ(s[2].out.v, 60 + t * (0 - 60));
  EXPECT_EQ(s[0].in.h, 0 + t * 30);
  EXPECT_EQ(s[0].in.v, 0 + t * 60);
}

TEST_F(PathHelperTest, PieceWithOneHandleOutIsLeftAlone) {
  AIPathSegment s[3] = {Seg(0, 0), Seg(30, 0), Seg(60, 0)};
  s[1].in = {25, 5};  // piece 0-1 has a handle out; piece 1-2 is straight
  ZF_AIPathSegment_0h_to_0p33h(s, 3, 0);
  EXPECT_PT_NEAR(s[0].out, s[0].p, 0.0);
  EXPECT_PT_NEAR(s[1].in, (AIRealPoint{25, 5}), 0.0);
  EXPECT_NEAR(s[1].out.h, 40, 1e-6);
  EXPECT_NEAR(s[2].in.h, 50, 1e-6);
}

TEST_F(PathHelperTest, CornerFlagFollowsTheHandleLine) {
  AIPathSegment s[5] = {Seg(0, 0), Seg(10, 0), Seg(20, 0), Seg(30, 0), Seg(40, 0)};
  // Opposite handles on one line: smooth.
  s[0].in = {-3, -4}, s[0].out = {6, 8};
  // In-handle straight down; out-handle bent off the line by 1e-3 rad:
  // corner.
  s[1].in = {10, -5}, s[1].out = Polar(s[1].p, 5, kPi / 2 + 1e-3);
  // Bent by less than the tolerance (2^-16): smooth.
  s[2].in = {20, -5}, s[2].out = Polar(s[2].p, 5, kPi / 2 + 1e-6);
  // Both handles on the same side, the out-handle nearer: seen from the
  // in-handle, anchor and out-handle lie the same way, so smooth.
  s[3].in = {30, -5}, s[3].out = {30, -2};
  // The other way round: corner.
  s[4].in = {40, -2}, s[4].out = {40, -5};
  ZF_AIPathSegment_check_smooth(s, 5);
  EXPECT_EQ(s[0].corner, 0);
  EXPECT_EQ(s[1].corner, 1);
  EXPECT_EQ(s[2].corner, 0);
  EXPECT_EQ(s[3].corner, 0);
  EXPECT_EQ(s[4].corner, 1);
}

// ---- Mesh smooth flags ------------------------------------------------------

TEST_F(DirectTest, VertexCheckLeavesAMissingAxisAlone) {
  MeshDoc d;
  d.I = 2, d.J = 2, d.dx = 30, d.dy = 30;
  d.smoothAll = true;
  const AIRealPoint p = d.P(0, 1);
  d.handle[{0, 1, JF}] = Polar(p, 5, kPi / 2 + 0.01);  // bent J pair
  d.handle[{0, 1, IF}] = Polar(p, 5, 0.7);
  Load(d);
  {
    VertexRef node = GetNodeRef(Art(), 0, 1);
    EXPECT_EQ(ZF_MeshVertex_CheckSmooth(node, 1, 1), 0);
  }
  const auto& m = M();
  // Line i = 0 has no I-backward segment: the I flag stays as it was.
  EXPECT_TRUE(Smooth(m, 0, 1, IF));
  EXPECT_FALSE(Smooth(m, 0, 1, JF));
  EXPECT_TRUE(NoLeaks());
}

TEST_F(DirectTest, VertexCheckUsesTheMeshTolerance) {
  MeshDoc d;
  d.I = 2, d.J = 2, d.dx = 30, d.dy = 30;
  const AIRealPoint p = d.P(1, 1);
  d.handle[{1, 1, IF}] = Polar(p, 5, 1e-4);  // within 0.000152587890625
  d.handle[{1, 1, JF}] = Polar(p, 5, kPi / 2 + 3e-4);  // beyond it
  Load(d);
  ZF_MeshNodes_CheckSmooth(Art());
  const auto& m = M();
  EXPECT_TRUE(Smooth(m, 1, 1, IF));
  EXPECT_FALSE(Smooth(m, 1, 1, JF));
  // Straight default runs: every interior pair is smooth, only the forward
  // segment's flag is set.
  EXPECT_TRUE(Smooth(m, 1, 0, IF));
  EXPECT_FALSE(Smooth(m, 1, 0, IB));
  EXPECT_TRUE(NoLeaks());
}

TEST_F(DirectTest, PixelPerfectGoesToTheArt) {
  MeshDoc d;
  Load(d);
  AIArtHandle art = Art();
  art->pixelPerfect = true;
  EXPECT_EQ(ZF_SetPixelPerfect(&art, 0), kNoErr);
  EXPECT_FALSE(art->pixelPerfect);
  EXPECT_EQ(ZF_SetPixelPerfect(nullptr, 0), kBadParameterErr);
}

// ---- Zero-width rows ---------------------------------------------------------

TEST_F(DirectTest, OneCellMeshIsZeroOnlyWhereTheOppositeSideLiesOnIt) {
  MeshDoc d;
  d.I = 1, d.J = 1, d.dx = 10;
  d.moved[{0, 1}] = d.P(0, 0);
  d.moved[{1, 1}] = d.P(1, 0);
  Load(d);
  EXPECT_EQ(IsSideHas0Row(Art(), 0), 1);
  EXPECT_EQ(IsSideHas0Row(Art(), 2), 1);
  EXPECT_EQ(IsSideHas0Row(Art(), 1), 0);
  EXPECT_EQ(IsSideHas0Row(Art(), 3), 0);
  EXPECT_EQ(IsSideHas0Row(Art(), 4), 0);
  EXPECT_TRUE(NoLeaks());
}

TEST_F(DirectTest, ZeroRowWalkCrossesNonNodeVertices) {
  MeshDoc d;
  d.I = 1, d.J = 2, d.dx = 10, d.dy = 10;
  d.moved[{0, 1}] = d.P(0, 0);
  d.moved[{1, 1}] = d.P(1, 0);
  d.innerVertex[{1, 0, 0}] = false;  // a vertex on the degenerate run up from (0, 0)
  {
    Load(d);
    EXPECT_EQ(IsSideHas0Row(Art(), 0), 1);
    EXPECT_TRUE(NoLeaks());
  }
  // The same run bulging out and back: its ends still coincide, but the
  // chain through the vertex has length.
  json art = d.toJson();
  for (auto& run : art["runs"])
    if (run["axis"] == "J" && run["node"] == json::array({0, 0})) {
      run["points"][2] = {-1, 0};
      run["points"][3] = {-1, 0};
      run["points"][4] = {-1, 0};
    }
  TearDown();
  Load(MakeDoc({art}));
  EXPECT_EQ(IsSideHas0Row(Art(), 0), 0);
  EXPECT_TRUE(NoLeaks());
}

TEST_F(DirectTest, FreshGridHasNoZeroRows) {
  MeshDoc d;
  d.I = 3, d.J = 2;
  Load(d);
  for (int side = 0; side < 4; ++side) EXPECT_EQ(IsSideHas0Row(Art(), side), 0) << side;
}

// ---- Failure path -----------------------------------------------------------

// Host calls that fail after a number of successful calls.
int gCallsLeft = 0;
AIErr (*gRealNext)(AIMeshVertexIterator) = nullptr;
AIErr FailingNext(AIMeshVertexIterator v) { return gCallsLeft-- > 0 ? gRealNext(v) : kCantHappenErr; }
AIErr (*gRealInsertU)(AIArtHandle, AIReal, int32_t*) = nullptr;
AIErr FailingInsertU(AIArtHandle m, AIReal u, int32_t* i) {
  return gCallsLeft-- > 0 ? gRealInsertU(m, u, i) : kCantHappenErr;
}
AIErr (*gRealGetNode)(AIArtHandle, int32_t, int32_t, AIMeshVertexIterator*) = nullptr;
AIErr FailingGetNode(AIArtHandle m, int32_t i, int32_t j, AIMeshVertexIterator* v) {
  return gCallsLeft-- > 0 ? gRealGetNode(m, i, j, v) : kCantHappenErr;
}

TEST_F(DirectTest, WorkersReleaseEverythingWhenTheVertexWalkFails) {
  MeshDoc d;
  d.I = 3, d.J = 3;
  Load(d);
  gRealNext = vertex.Next;
  vertex.Next = FailingNext;
  gCallsLeft = 5;
  EXPECT_EQ(lb::handles::_Nodes13(Art(), 0, 0, 0), 1);
  gCallsLeft = 5;
  EXPECT_EQ(lb::handles::_Nodes0(Art(), 1, 1, 0), 1);
  gCallsLeft = 5;
  EXPECT_EQ(lb::handles::_SmoothNodes(Art(), 1, 1, 1), 1);
  EXPECT_TRUE(NoLeaks());
  vertex.Next = gRealNext;
  EXPECT_EQ(lb::handles::_SmoothNodes(Art(), 1, 1, 1), 0);
  EXPECT_TRUE(NoLeaks());
}

TEST_F(DirectTest, RightAngleWorkerReleasesEverythingWhenANodeFails) {
  MeshDoc d;
  d.I = 3, d.J = 3;
  Load(d);
  gRealGetNode = mesh.GetNode;
  mesh.GetNode = FailingGetNode;
  gCallsLeft = 6;
  EXPECT_EQ(lb::handles::_Angle90Deg(Art(), 1, 1), 1);
  EXPECT_TRUE(NoLeaks());
  // Neither axis: nothing is asked of the host at all.
  gCallsLeft = 0;
  EXPECT_EQ(lb::handles::_Angle90Deg(Art(), 0, 0), 0);
}

TEST_F(DirectTest, FailedInsertionKeepsTheLinesMadeAndSelectsNothingNew) {
  MeshDoc d;
  d.I = 4, d.J = 2, d.dx = 10;
  d.selected = {{0, 0}, {4, 0}};
  Load(d);
  gRealInsertU = mesh.InsertU;
  mesh.InsertU = FailingInsertU;
  gCallsLeft = 1;
  EXPECT_EQ(lb::dens::_Mul(Art(), 1, 0), 1);
  EXPECT_TRUE(NoLeaks());
  const auto& m = M();
  EXPECT_EQ(m.sizeI(), 5);  // the first (topmost) split stays
  EXPECT_NEAR(NodeP(m, 4, 0).h, 35, 1e-9);
  EXPECT_FALSE(Sel(m, 1, 0));
  EXPECT_FALSE(Sel(m, 1, 1));
}

}  // namespace
}  // namespace hdtest
