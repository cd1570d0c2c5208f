// The handle-geometry helpers and the zero-width row test linked in
// directly and run on the host's own suite tables, and the workers'
// failure path with host calls made to fail on purpose.
#include <gtest/gtest.h>

#include <memory>

#include "HandleGeometry.h"
#include "HdDoc.h"
#include "HostRefs.h"
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
    host.reset();
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
    ASSERT_NE(lb::s::sMath, nullptr);
    ASSERT_NE(lb::s::sBezier, nullptr);
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
    host.reset();
  }
  AIArtHandle Art() { return host->document().findById("m"); }
  bool NoLeaks() const { return host->counters() == before; }

  std::unique_ptr<lb::host::Host> host;
  AIMeshSuite mesh{};  // editable copies of the host's tables
  AIMeshVertexIteratorSuite vertex{};
  lb::host::Counters before;
};

AIPathSegment Seg(double h, double v) {
  AIPathSegment s{};
  s.p = s.in = s.out = {h, v};
  return s;
}

TEST_F(DirectTest, StraightPathPiecesGetSinglePrecisionThirds) {
  Load(MakeDoc({}));
  const double t = 0.3333333432674408;
  AIPathSegment s[3] = {Seg(0, 0), Seg(30, 0), Seg(90, 0)};
  ZF_AIPathSegment_0h_to_0p33h(s, 3, 0);
  // Each new handle lies a (single-precision) third from its own anchor.
  EXPECT_EQ(s[0].out.h, t * 30);
  EXPECT_EQ(s[1].in.h, 30 - t * 30);
  EXPECT_EQ(s[1].out.h, 30 + t * 60);
  EXPECT_EQ(s[2].in.h, 90 - t * 60);
  EXPECT_EQ(s[0].in.h, 0);  // open: outer handles stay retracted
  EXPECT_EQ(s[2].out.h, 90);

  AIPathSegment c[3] = {Seg(0, 0), Seg(30, 0), Seg(30, 60)};
  c[1].in = {25, 5};  // piece 0-1 is bent: left alone
  ZF_AIPathSegment_0h_to_0p33h(c, 3, 1);
  EXPECT_EQ(c[0].out.h, 0);
  EXPECT_EQ(c[1].in.h, 25);
  EXPECT_EQ(c[2].out.v, 60 - t * 60);  // the closing piece
  EXPECT_EQ(c[0].in.v, t * 60);
}

TEST_F(DirectTest, PathCornerFlagsFollowTheHandleLine) {
  Load(MakeDoc({}));
  // In-handles straight down; out-handles up, bent by the given angle.
  const double bends[] = {0, 1e-3, 1e-6};
  AIPathSegment s[5];
  for (int k = 0; k < 3; ++k) {
    s[k] = Seg(10 * k, 0);
    s[k].in = {10.0 * k, -5};
    s[k].out = Polar(s[k].p, 5, kPi / 2 + bends[k]);
  }
  // Both handles below, the out-handle nearer (seen from the in-handle the
  // anchor and out-handle lie the same way) and the other way round.
  s[3] = Seg(30, 0), s[3].in = {30, -5}, s[3].out = {30, -2};
  s[4] = Seg(40, 0), s[4].in = {40, -2}, s[4].out = {40, -5};
  ZF_AIPathSegment_check_smooth(s, 5);
  const int want[] = {0, 1, 0, 0, 1};
  for (int k = 0; k < 5; ++k) EXPECT_EQ(s[k].corner, want[k]) << k;
}

TEST_F(DirectTest, MeshSmoothCheckUsesItsToleranceAndSkipsMissingAxes) {
  MeshDoc d;
  d.smoothAll = true;
  d.handle[{1, 1, IF}] = Polar(d.P(1, 1), 5, 1e-4);           // within 0.000152587890625
  d.handle[{1, 1, JF}] = Polar(d.P(1, 1), 5, kPi / 2 + 3e-4);  // beyond it
  d.handle[{0, 1, IF}] = Polar(d.P(0, 1), 5, 0.7);            // no I-backward partner
  Load(d);
  ZF_MeshNodes_CheckSmooth(Art());
  const GradientMesh& m = *Art()->mesh;
  EXPECT_TRUE(Smooth(m, 1, 1, IF));
  EXPECT_FALSE(Smooth(m, 1, 1, JF));
  EXPECT_TRUE(Smooth(m, 0, 1, IF));
  EXPECT_TRUE(NoLeaks());
}

TEST_F(DirectTest, ZeroRowWalkCrossesNonNodeVertices) {
  MeshDoc d;
  d.I = 1, d.J = 2, d.dx = d.dy = 10;
  d.moved[{0, 1}] = d.P(0, 0);
  d.moved[{1, 1}] = d.P(1, 0);
  d.innerVertex[{1, 0, 0}] = false;  // a vertex on the collapsed run up from (0, 0)
  Load(d);
  const int want[] = {1, 0, 0, 0};
  for (int side = 0; side < 4; ++side) EXPECT_EQ(IsSideHas0Row(Art(), side), want[side]) << side;
  EXPECT_EQ(IsSideHas0Row(Art(), 4), 0);
  // The same run bulging out to the vertex and back: the ends coincide,
  // but the chain through the vertex has length.
  json art = d.toJson();
  for (auto& run : art["runs"])
    if (run["axis"] == "J" && run["node"] == json::array({0, 0}))
      for (int k : {2, 3, 4}) run["points"][k] = {-1, 0};
  Load(MakeDoc({art}));
  EXPECT_EQ(IsSideHas0Row(Art(), 0), 0);
  EXPECT_TRUE(NoLeaks());
}

// Host calls that fail once a number of calls have succeeded.
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

TEST_F(DirectTest, HandleWorkersReleaseEverythingWhenTheHostFails) {
  MeshDoc d;
  d.I = d.J = 3;
  Load(d);
  gRealNext = vertex.Next;
  vertex.Next = FailingNext;
  gCallsLeft = 5;
  EXPECT_EQ(lb::handles::_Nodes13(Art(), 0, 0, 0), 1);
  gCallsLeft = 5;
  EXPECT_EQ(lb::handles::_Nodes0(Art(), 1, 1, 0), 1);
  gCallsLeft = 5;
  EXPECT_EQ(lb::handles::_SmoothNodes(Art(), 1, 1, 1), 1);
  vertex.Next = gRealNext;
  gRealGetNode = mesh.GetNode;
  mesh.GetNode = FailingGetNode;
  gCallsLeft = 6;
  EXPECT_EQ(lb::handles::_Angle90Deg(Art(), 1, 1), 1);
  EXPECT_TRUE(NoLeaks());
}

TEST_F(DirectTest, FailedInsertionKeepsTheLinesMadeAndSelectsNothingNew) {
  MeshDoc d;
  d.I = 4, d.dx = 10;
  d.selected = {{0, 0}, {4, 0}};
  Load(d);
  gRealInsertU = mesh.InsertU;
  mesh.InsertU = FailingInsertU;
  gCallsLeft = 1;
  EXPECT_EQ(lb::dens::_Mul(Art(), 1, 0), 1);
  EXPECT_TRUE(NoLeaks());
  const GradientMesh& m = *Art()->mesh;
  EXPECT_EQ(m.sizeI(), 5);  // the first (topmost) split stays
  EXPECT_NEAR(NodeP(m, 4, 0).h, 35, kTol);
  EXPECT_FALSE(m.selected(m.node(1, 0)));
}

}  // namespace
}  // namespace hdtest
