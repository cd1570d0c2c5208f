// The handle-geometry helpers and the zero-width row test linked in
// directly and run on the host's own suite tables, and the workers'
// failure path with host calls made to fail on purpose.
#include <gtest/gtest.h>

#include "HandleGeometry.h"
#include "HostRefs.h"
#include "ZeroRow.h"
#include "handles/Handles.h"
#include "support/Engine.h"

namespace lb::dens {
int _Mul(AIArtHandle mesh, int alongI, int alongJ);
}

namespace lbtest {
namespace {

constexpr double kTol = 1e-9;
using lb::host::GradientMesh;

// The default mesh of these tests: 2 x 2 cells of 30 x 24.
MeshRecipe Cells30x24() {
  MeshRecipe d;
  d.dx = 30, d.dy = 24;
  return d;
}

using DirectTest = LinkedTest;

AIPathSegment Seg(double h, double v) {
  AIPathSegment s{};
  s.p = s.in = s.out = {h, v};
  return s;
}

TEST_F(DirectTest, StraightPathPiecesGetSinglePrecisionThirds) {
  Load(DocJson(std::vector<json>{}));
  const double t = 0.3333333432674408;
  AIPathSegment s[3] = {Seg(0, 0), Seg(30, 0), Seg(90, 0)};
  ZF_AIPathSegment_0h_to_0p33h(s, 3, 0);
  // Each new handle lies a (single-precision) third from its own anchor;
  // the path is open, so the outer handles stay retracted.
  EXPECT_EQ(std::vector<double>({s[0].in.h, s[0].out.h, s[1].in.h, s[1].out.h, s[2].in.h, s[2].out.h}),
            std::vector<double>({0, t * 30, 30 - t * 30, 30 + t * 60, 90 - t * 60, 90}));

  AIPathSegment c[3] = {Seg(0, 0), Seg(30, 0), Seg(30, 60)};
  c[1].in = {25, 5};  // piece 0-1 is bent: left alone
  ZF_AIPathSegment_0h_to_0p33h(c, 3, 1);
  // Piece 2-0 closes the path.
  EXPECT_EQ(std::vector<double>({c[0].out.h, c[1].in.h, c[2].out.v, c[0].in.v}),
            std::vector<double>({0, 25, 60 - t * 60, t * 60}));
}

TEST_F(DirectTest, PathCornerFlagsFollowTheHandleLine) {
  Load(DocJson(std::vector<json>{}));
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
  MeshRecipe d = Cells30x24();
  d.smooth = Smooth::All;
  d.handle[{1, 1, IF}] = Polar(d.P(1, 1), 5, 1e-4);           // within 0.000152587890625
  d.handle[{1, 1, JF}] = Polar(d.P(1, 1), 5, kPi / 2 + 3e-4);  // beyond it
  d.handle[{0, 1, IF}] = Polar(d.P(0, 1), 5, 0.7);            // no I-backward partner
  Load(d);
  ZF_MeshNodes_CheckSmooth(Mesh(0));
  const GradientMesh& m = *Mesh(0)->mesh;
  EXPECT_EQ(std::vector<bool>({SmoothAt(m, 1, 1, IF), SmoothAt(m, 1, 1, JF), SmoothAt(m, 0, 1, IF)}),
            std::vector<bool>({true, false, true}));
}

TEST_F(DirectTest, ZeroRowWalkCrossesNonNodeVertices) {
  MeshRecipe d = Cells30x24();
  d.I = 1, d.J = 2, d.dx = d.dy = 10;
  d.moved[{0, 1}] = d.P(0, 0);
  d.moved[{1, 1}] = d.P(1, 0);
  d.inner[{0, 0, 'J'}] = false;  // a vertex on the collapsed run up from (0, 0)
  Load(d);
  const int want[] = {1, 0, 0, 0};
  for (int side = 0; side < 4; ++side) EXPECT_EQ(IsSideHas0Row(Mesh(0), side), want[side]) << side;
  EXPECT_EQ(IsSideHas0Row(Mesh(0), 4), 0);
  // The same run bulging out to the vertex and back: the ends coincide,
  // but the chain through the vertex has length.
  json art = MeshJson(d);
  for (auto& run : art["runs"])
    if (run["axis"] == "J" && run["node"] == json::array({0, 0}))
      for (int k : {2, 3, 4}) run["points"][k] = {-1, 0};
  Load(DocJson({art}));
  EXPECT_EQ(IsSideHas0Row(Mesh(0), 0), 0);
}

// Host calls that fail once a number of calls have succeeded: Failing<real>
// stands in for a suite member whose own function was kept in `real`.
int gCallsLeft = 0;
template <auto& real, class... A>
AIErr Failing(A... a) {
  return gCallsLeft-- > 0 ? real(a...) : kCantHappenErr;
}
AIErr (*gRealNext)(AIMeshVertexIterator) = nullptr;
AIErr (*gRealInsertU)(AIArtHandle, AIReal, int32_t*) = nullptr;
AIErr (*gRealGetNode)(AIArtHandle, int32_t, int32_t, AIMeshVertexIterator*) = nullptr;

TEST_F(DirectTest, HandleWorkersReleaseEverythingWhenTheHostFails) {
  MeshRecipe d = Cells30x24();
  d.I = d.J = 3;
  Load(d);
  gRealNext = vertex().Next;
  vertex().Next = Failing<gRealNext>;
  gCallsLeft = 5;
  EXPECT_EQ(lb::handles::_Nodes13(Mesh(0), 0, 0, 0), 1);
  gCallsLeft = 5;
  EXPECT_EQ(lb::handles::_Nodes0(Mesh(0), 1, 1, 0), 1);
  gCallsLeft = 5;
  EXPECT_EQ(lb::handles::_SmoothNodes(Mesh(0), 1, 1, 1), 1);
  vertex().Next = gRealNext;
  gRealGetNode = mesh().GetNode;
  mesh().GetNode = Failing<gRealGetNode>;
  gCallsLeft = 6;
  EXPECT_EQ(lb::handles::_Angle90Deg(Mesh(0), 1, 1), 1);
}

TEST_F(DirectTest, FailedInsertionKeepsTheLinesMadeAndSelectsNothingNew) {
  MeshRecipe d = Cells30x24();
  d.I = 4, d.dx = 10;
  d.selected = {{0, 0}, {4, 0}};
  Load(d);
  gRealInsertU = mesh().InsertU;
  mesh().InsertU = Failing<gRealInsertU>;
  gCallsLeft = 1;
  EXPECT_EQ(lb::dens::_Mul(Mesh(0), 1, 0), 1);
  const GradientMesh& m = *Mesh(0)->mesh;
  EXPECT_EQ(m.sizeI(), 5);  // the first (topmost) split stays
  EXPECT_NEAR(NodeP(m, 4, 0).h, 35, kTol);
  EXPECT_FALSE(m.selected(m.node(1, 0)));
}

}  // namespace
}  // namespace lbtest
