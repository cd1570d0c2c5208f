// The four handle buttons driven through the panel dispatcher: "Smooth",
// "Handles 1/3", "Handles 0" and "Handles 90 deg".
#include <gtest/gtest.h>

#include "HdDoc.h"

namespace hdtest {
namespace {

constexpr double kTol = 1e-9;

// A 2 x 2 mesh whose middle node (1, 1) is the one under test.
MeshDoc CentreDoc() {
  MeshDoc d;
  d.I = 2, d.J = 2, d.dx = 30, d.dy = 24;
  d.selected = {{1, 1}};
  return d;
}

void ExpectHandle(const GradientMesh& m, int i, int j, int dir, double len, double angle) {
  const AIRealPoint p = NodeP(m, i, j), h = Tan(m, i, j, dir);
  EXPECT_NEAR(Dist(p, h), len, kTol) << "node " << i << "," << j << " dir " << dir;
  EXPECT_NEAR(AngleDiff(Angle(p, h), angle), 0.0, kTol) << "node " << i << "," << j << " dir " << dir;
}

void ExpectUnchanged(const std::vector<AIRealPoint>& before, const GradientMesh& m) {
  const auto after = AllNodeHandles(m);
  ASSERT_EQ(before.size(), after.size());
  for (size_t k = 0; k < before.size(); ++k) EXPECT_PT_NEAR(before[k], after[k], 0.0);
}

// ---- Smooth ---------------------------------------------------------------

class SmoothTest : public ::testing::Test {
 protected:
  // Middle node: I handles at 0 and 1.4 rad, J handles at 2.0 and -0.9.
  MeshDoc Doc() {
    MeshDoc d = CentreDoc();
    const AIRealPoint p = d.P(1, 1);
    d.handle[{1, 1, IF}] = Polar(p, 8, 0.0);
    d.handle[{1, 1, IB}] = Polar(p, 5, 1.4);
    d.handle[{1, 1, JF}] = Polar(p, 6, 2.0);
    d.handle[{1, 1, JB}] = Polar(p, 7, -0.9);
    return d;
  }
};

TEST_F(SmoothTest, BothAxesTurnPerpendicularToTheMeanAngleKeepingLengths) {
  Session s(Doc());
  s.run(kSmooth);
  const auto& m = s.mesh();
  // The handle with the larger angle gets mean + pi/2.
  ExpectHandle(m, 1, 1, IF, 8, 0.7 - kPi / 2);
  ExpectHandle(m, 1, 1, IB, 5, 0.7 + kPi / 2);
  ExpectHandle(m, 1, 1, JF, 6, 0.55 + kPi / 2);
  ExpectHandle(m, 1, 1, JB, 7, 0.55 - kPi / 2);
  EXPECT_TRUE(Smooth(m, 1, 1, IF));
  EXPECT_TRUE(Smooth(m, 1, 1, JF));
}

TEST_F(SmoothTest, AltActsOnIOnlyAndCtrlOnJOnly) {
  const MeshDoc d = Doc();
  const AIRealPoint p = d.P(1, 1);
  {
    Session s(d);
    s.run(kSmooth, true, false);
    const auto& m = s.mesh();
    ExpectHandle(m, 1, 1, IF, 8, 0.7 - kPi / 2);
    ExpectHandle(m, 1, 1, IB, 5, 0.7 + kPi / 2);
    EXPECT_PT_NEAR(Tan(m, 1, 1, JF), Polar(p, 6, 2.0), kTol);
    EXPECT_PT_NEAR(Tan(m, 1, 1, JB), Polar(p, 7, -0.9), kTol);
    EXPECT_FALSE(Smooth(m, 1, 1, JF));
  }
  {
    Session s(d);
    s.run(kSmooth, false, true);
    const auto& m = s.mesh();
    EXPECT_PT_NEAR(Tan(m, 1, 1, IF), Polar(p, 8, 0.0), kTol);
    EXPECT_PT_NEAR(Tan(m, 1, 1, IB), Polar(p, 5, 1.4), kTol);
    EXPECT_FALSE(Smooth(m, 1, 1, IF));
    ExpectHandle(m, 1, 1, JF, 6, 0.55 + kPi / 2);
    ExpectHandle(m, 1, 1, JB, 7, 0.55 - kPi / 2);
  }
}

TEST_F(SmoothTest, UnselectedNodesKeepTheirHandles) {
  MeshDoc d = Doc();
  // A crooked pair on an unselected neighbour.
  const AIRealPoint q = d.P(1, 0);
  d.handle[{1, 0, IF}] = Polar(q, 4, 0.5);
  Session s(d);
  s.run(kSmooth);
  EXPECT_PT_NEAR(Tan(s.mesh(), 1, 0, IF), Polar(q, 4, 0.5), kTol);
}

TEST_F(SmoothTest, BorderNodeIsSmoothedAlongItsSideOnly) {
  MeshDoc d = CentreDoc();
  d.selected = {{1, 0}};
  const AIRealPoint p = d.P(1, 0);
  d.handle[{1, 0, IF}] = Polar(p, 9, 0.0);
  d.handle[{1, 0, IB}] = Polar(p, 4, kPi - 0.3);
  d.handle[{1, 0, JF}] = Polar(p, 5, 1.2);
  Session s(d);
  s.run(kSmooth);
  const auto& m = s.mesh();
  const double mid = (kPi - 0.3) / 2;
  ExpectHandle(m, 1, 0, IF, 9, mid - kPi / 2);
  ExpectHandle(m, 1, 0, IB, 4, mid + kPi / 2);
  // No J-backward segment on the border: the J handle stays.
  EXPECT_PT_NEAR(Tan(m, 1, 0, JF), Polar(p, 5, 1.2), kTol);
}

TEST_F(SmoothTest, CornerNodesOnlyWithCtrlAlt) {
  MeshDoc d = CentreDoc();
  d.selected = {{0, 0}, {2, 2}};
  d.handle[{0, 2, IF}] = Polar(d.P(0, 2), 3, 0.4);  // unselected corner
  {
    // The plain variant ignores corners: nothing moves.
    Session s(d);
    const auto before = AllNodeHandles(s.mesh());
    s.run(kSmooth);
    ExpectUnchanged(before, s.mesh());
  }
  Session s(d);
  const auto before = AllNodeHandles(s.mesh());
  s.run(kSmooth, true, true);
  const auto& m = s.mesh();
  // (0, 0): segment 0 runs along I (angle 0), segment 1 along J (pi/2).
  ExpectHandle(m, 0, 0, IF, 10, -kPi / 4);
  ExpectHandle(m, 0, 0, JF, 8, 3 * kPi / 4);
  EXPECT_TRUE(Smooth(m, 0, 0, IF));
  // (2, 2): segment 0 is I backward (pi), segment 1 J backward (-pi/2).
  ExpectHandle(m, 2, 2, IB, 10, 3 * kPi / 4);
  ExpectHandle(m, 2, 2, JB, 8, -kPi / 4);
  EXPECT_TRUE(Smooth(m, 2, 2, IB));
  // Unselected corners and every other node are untouched.
  EXPECT_PT_NEAR(Tan(m, 0, 2, IF), Polar(d.P(0, 2), 3, 0.4), kTol);
  EXPECT_PT_NEAR(Tan(m, 2, 0, IB), d.H(2, 0, IB), kTol);
  EXPECT_PT_NEAR(Tan(m, 1, 1, IF), d.H(1, 1, IF), kTol);
}

TEST_F(SmoothTest, SelectedNonNodeVertexIsSmoothed) {
  MeshDoc d = CentreDoc();
  d.selected.clear();
  d.innerVertex[{0, 0, 1}] = true;  // run along I from (0, 1), vertex selected
  json art = d.toJson();
  // Bend the vertex's backward handle off the line.
  for (auto& run : art["runs"]) {
    if (run["axis"] == "I" && run["node"] == json::array({0, 1})) {
      const AIRealPoint c{run["points"][3][0], run["points"][3][1]};
      const AIRealPoint bent = Polar(c, 4, kPi - 0.5);
      run["points"][2] = {bent.h, bent.v};
    }
  }
  Session s(MakeDoc({art}));
  const VertexId v = s.mesh().neighbour(s.mesh().node(0, 1), IF);
  ASSERT_FALSE(s.mesh().isNode(v));
  const AIRealPoint c = s.mesh().point(v);
  const AIRealPoint fwd0 = s.mesh().tangent(v, IF);
  const double aF = Angle(c, fwd0), aB = kPi - 0.5;
  s.run(kSmooth);
  const auto& m = s.mesh();
  const double mid = (aF + aB) / 2;
  EXPECT_NEAR(AngleDiff(Angle(c, m.tangent(v, IF)), aF > aB ? mid + kPi / 2 : mid - kPi / 2), 0, kTol);
  EXPECT_NEAR(Dist(c, m.tangent(v, IB)), 4, kTol);
  EXPECT_NEAR(std::fabs(AngleDiff(Angle(c, m.tangent(v, IF)), Angle(c, m.tangent(v, IB)))), kPi, kTol);
  EXPECT_TRUE(m.smooth(v, IF));
}

// ---- Handles 1/3 --------------------------------------------------------

class OneThirdTest : public ::testing::Test {
 protected:
  // Middle node: a short I-forward handle at 0.3 rad, a retracted I-backward
  // handle, a J-backward handle 0.2 from the node (counts as retracted).
  MeshDoc Doc() {
    MeshDoc d = CentreDoc();
    const AIRealPoint p = d.P(1, 1);
    d.handle[{1, 1, IF}] = Polar(p, 4, 0.3);
    d.handle[{1, 1, IB}] = p;
    d.handle[{1, 1, JB}] = Polar(p, 0.2, 2.5);
    return d;
  }
};

TEST_F(OneThirdTest, AllHandlesGetAThirdOfTheDistanceToTheirNeighbour) {
  Session s(Doc());
  s.run(kHandles13);
  const auto& m = s.mesh();
  ExpectHandle(m, 1, 1, IF, 10, 0.3);     // kept direction, 30 / 3
  ExpectHandle(m, 1, 1, IB, 10, kPi);     // retracted: points at (0, 1)
  ExpectHandle(m, 1, 1, JB, 8, -kPi / 2); // within 0.5: points at (1, 0)
  ExpectHandle(m, 1, 1, JF, 8, kPi / 2);  // 24 / 3
  // Flags follow the new handles: I is bent, J straight.
  EXPECT_FALSE(Smooth(m, 1, 1, IF));
  EXPECT_TRUE(Smooth(m, 1, 1, JF));
}

TEST_F(OneThirdTest, DistanceIsToTheFarVertexNotAlongTheCurve) {
  MeshDoc d = CentreDoc();
  // A strongly curved run from (1, 1) to (2, 1): the chord is still 30.
  d.handle[{1, 1, IF}] = Polar(d.P(1, 1), 25, 1.0);
  d.handle[{2, 1, IB}] = Polar(d.P(2, 1), 25, 2.0);
  Session s(d);
  s.run(kHandles13);
  ExpectHandle(s.mesh(), 1, 1, IF, 10, 1.0);
}

TEST_F(OneThirdTest, BetweenNeedsTheFarEndSelected) {
  MeshDoc d = Doc();
  Session s(d);
  const auto before = AllNodeHandles(s.mesh());
  for (auto [alt, ctrl] : {std::pair{true, false}, {false, true}, {true, true}}) {
    s.run(kHandles13, alt, ctrl);
    ExpectUnchanged(before, s.mesh());
  }
}

TEST_F(OneThirdTest, AltActsOnlyOnISegmentsBetweenSelectedNodes) {
  MeshDoc d = Doc();
  d.selected = {{1, 1}, {2, 1}, {1, 2}};
  d.handle[{1, 1, JF}] = Polar(d.P(1, 1), 3, 1.2);
  Session s(d);
  s.run(kHandles13, true, false);
  const auto& m = s.mesh();
  ExpectHandle(m, 1, 1, IF, 10, 0.3);
  ExpectHandle(m, 2, 1, IB, 10, kPi);
  // J segment to a selected node: skipped along I only.
  ExpectHandle(m, 1, 1, JF, 3, 1.2);
  // Far end (0, 1) not selected: stays retracted.
  EXPECT_PT_NEAR(Tan(m, 1, 1, IB), d.P(1, 1), kTol);
  // (2, 1)'s own other handles are untouched.
  EXPECT_PT_NEAR(Tan(m, 2, 1, JF), d.H(2, 1, JF), kTol);
}

TEST_F(OneThirdTest, CtrlActsOnlyOnJAndCtrlAltOnBoth) {
  MeshDoc d = Doc();
  d.selected = {{1, 1}, {2, 1}, {1, 2}};
  d.handle[{1, 1, JF}] = Polar(d.P(1, 1), 3, 1.2);
  {
    Session s(d);
    s.run(kHandles13, false, true);
    const auto& m = s.mesh();
    ExpectHandle(m, 1, 1, JF, 8, 1.2);
    ExpectHandle(m, 1, 1, IF, 4, 0.3);
    ExpectHandle(m, 1, 2, JB, 8, -kPi / 2);
  }
  Session s(d);
  s.run(kHandles13, true, true);
  const auto& m = s.mesh();
  ExpectHandle(m, 1, 1, JF, 8, 1.2);
  ExpectHandle(m, 1, 1, IF, 10, 0.3);
  // (1, 0) is not selected: the J-backward handle stays.
  ExpectHandle(m, 1, 1, JB, 0.2, 2.5);
}

TEST_F(OneThirdTest, NonNodeVertexMeasuresToItsAdjacentVertices) {
  MeshDoc d = CentreDoc();
  d.selected.clear();
  d.innerVertex[{0, 0, 0}] = true;  // vertex at (15, 0) on side 0
  Session s(d);
  const auto& m = s.mesh();
  const VertexId v = m.neighbour(m.node(0, 0), IF);
  const AIRealPoint c = m.point(v);
  const auto before = AllNodeHandles(m);
  s.run(kHandles13);
  EXPECT_NEAR(Dist(c, m.tangent(v, IF)), 5, kTol);
  EXPECT_NEAR(Dist(c, m.tangent(v, IB)), 5, kTol);
  // The nodes at either end are not selected.
  ExpectUnchanged(before, m);
}

// ---- Handles 0 ----------------------------------------------------------

TEST(HandlesZeroTest, NoModifierRetractsEveryHandleOfSelectedNodes) {
  MeshDoc d = CentreDoc();
  d.smoothAll = true;
  Session s(d);
  s.run(kHandles0);
  const auto& m = s.mesh();
  for (int dir : {IB, JB, IF, JF}) {
    EXPECT_PT_NEAR(Tan(m, 1, 1, dir), d.P(1, 1), 0.0);
    EXPECT_FALSE(Smooth(m, 1, 1, dir));
  }
  EXPECT_PT_NEAR(Tan(m, 1, 0, IF), d.H(1, 0, IF), kTol);
  EXPECT_TRUE(Smooth(m, 1, 0, IF));
}

TEST(HandlesZeroTest, CtrlRetractsOnlyJHandlesBetweenSelectedNodes) {
  MeshDoc d = CentreDoc();
  d.smoothAll = true;
  d.selected = {{1, 1}, {1, 2}, {2, 1}};
  Session s(d);
  s.run(kHandles0, false, true);
  const auto& m = s.mesh();
  EXPECT_PT_NEAR(Tan(m, 1, 1, JF), d.P(1, 1), 0.0);
  EXPECT_PT_NEAR(Tan(m, 1, 2, JB), d.P(1, 2), 0.0);
  EXPECT_FALSE(Smooth(m, 1, 1, JF));
  EXPECT_FALSE(Smooth(m, 1, 2, JB));
  // The I segment to the selected (2, 1) and J-backward to unselected (1, 0).
  EXPECT_PT_NEAR(Tan(m, 1, 1, IF), d.H(1, 1, IF), kTol);
  EXPECT_PT_NEAR(Tan(m, 1, 1, JB), d.H(1, 1, JB), kTol);
  EXPECT_TRUE(Smooth(m, 1, 1, IF));
  EXPECT_TRUE(Smooth(m, 1, 1, JB));
}

TEST(HandlesZeroTest, AltWithLoneNodeChangesNothing) {
  MeshDoc d = CentreDoc();
  Session s(d);
  const auto before = AllNodeHandles(s.mesh());
  s.run(kHandles0, true, false);
  ExpectUnchanged(before, s.mesh());
}

// ---- Handles 90 deg ------------------------------------------------------

class RightAngleTest : public ::testing::Test {
 protected:
  // Middle node: I handles at 0 and 180 deg, J handles at 60 and 240 deg.
  MeshDoc Doc(double jDeg = 60) {
    MeshDoc d = CentreDoc();
    const AIRealPoint p = d.P(1, 1);
    d.handle[{1, 1, IF}] = Polar(p, 8, 0.0);
    d.handle[{1, 1, IB}] = Polar(p, 6, kPi);
    d.handle[{1, 1, JF}] = Polar(p, 5, jDeg * kDeg);
    d.handle[{1, 1, JB}] = Polar(p, 7, (jDeg + 180) * kDeg);
    return d;
  }
};

TEST_F(RightAngleTest, BothAxesTurnFifteenDegreesTowardsEachOther) {
  Session s(Doc());
  s.run(kHandles90);
  const auto& m = s.mesh();
  ExpectHandle(m, 1, 1, IF, 8, -15 * kDeg);
  ExpectHandle(m, 1, 1, IB, 6, 165 * kDeg);
  ExpectHandle(m, 1, 1, JF, 5, 75 * kDeg);
  ExpectHandle(m, 1, 1, JB, 7, 255 * kDeg);
  EXPECT_TRUE(Smooth(m, 1, 1, IF));
  EXPECT_TRUE(Smooth(m, 1, 1, JF));
}

TEST_F(RightAngleTest, AltKeepsIAndCtrlKeepsJ) {
  {
    Session s(Doc());
    s.run(kHandles90, true, false);
    const auto& m = s.mesh();
    ExpectHandle(m, 1, 1, IF, 8, 0);
    ExpectHandle(m, 1, 1, IB, 6, kPi);
    ExpectHandle(m, 1, 1, JF, 5, 90 * kDeg);
    ExpectHandle(m, 1, 1, JB, 7, -90 * kDeg);
    EXPECT_TRUE(Smooth(m, 1, 1, JF));
    EXPECT_FALSE(Smooth(m, 1, 1, IF));
  }
  Session s(Doc());
  s.run(kHandles90, false, true);
  const auto& m = s.mesh();
  ExpectHandle(m, 1, 1, IF, 8, -30 * kDeg);
  ExpectHandle(m, 1, 1, IB, 6, 150 * kDeg);
  ExpectHandle(m, 1, 1, JF, 5, 60 * kDeg);
  ExpectHandle(m, 1, 1, JB, 7, 240 * kDeg);
  EXPECT_TRUE(Smooth(m, 1, 1, IF));
  EXPECT_FALSE(Smooth(m, 1, 1, JF));
}

TEST_F(RightAngleTest, JClockwiseOfITurnsTheOtherWay) {
  Session s(Doc(-60));
  s.run(kHandles90);
  const auto& m = s.mesh();
  ExpectHandle(m, 1, 1, IF, 8, 15 * kDeg);
  ExpectHandle(m, 1, 1, JF, 5, -75 * kDeg);
  ExpectHandle(m, 1, 1, JB, 7, 105 * kDeg);
}

TEST_F(RightAngleTest, AnglesAcrossTheSeamAreBroughtIntoRange) {
  MeshDoc d = CentreDoc();
  const AIRealPoint p = d.P(1, 1);
  d.handle[{1, 1, IF}] = Polar(p, 8, 170 * kDeg);
  d.handle[{1, 1, IB}] = Polar(p, 6, -10 * kDeg);
  d.handle[{1, 1, JF}] = Polar(p, 5, -110 * kDeg);
  d.handle[{1, 1, JB}] = Polar(p, 7, 70 * kDeg);
  Session s(d);
  s.run(kHandles90);
  const auto& m = s.mesh();
  // J is 80 degrees counterclockwise of I (across the seam): 5 each way.
  ExpectHandle(m, 1, 1, IF, 8, 165 * kDeg);
  ExpectHandle(m, 1, 1, IB, 6, -15 * kDeg);
  ExpectHandle(m, 1, 1, JF, 5, -105 * kDeg);
  ExpectHandle(m, 1, 1, JB, 7, 75 * kDeg);
}

TEST_F(RightAngleTest, BorderAndCornerNodesUseTheHandlesTheyHave) {
  MeshDoc d = CentreDoc();
  d.selected = {{1, 0}, {2, 2}};
  const AIRealPoint b = d.P(1, 0), c = d.P(2, 2);
  d.handle[{1, 0, IF}] = Polar(b, 8, 0);
  d.handle[{1, 0, IB}] = Polar(b, 6, kPi);
  d.handle[{1, 0, JF}] = Polar(b, 5, 60 * kDeg);
  // Corner (2, 2): only backward handles; I at 180, J at 240 deg, so the
  // axis directions are 0 and 60 deg.
  d.handle[{2, 2, IB}] = Polar(c, 4, kPi);
  d.handle[{2, 2, JB}] = Polar(c, 3, 240 * kDeg);
  Session s(d);
  s.run(kHandles90);
  const auto& m = s.mesh();
  ExpectHandle(m, 1, 0, IF, 8, -15 * kDeg);
  ExpectHandle(m, 1, 0, IB, 6, 165 * kDeg);
  ExpectHandle(m, 1, 0, JF, 5, 75 * kDeg);
  ExpectHandle(m, 2, 2, IB, 4, 165 * kDeg);
  ExpectHandle(m, 2, 2, JB, 3, 255 * kDeg);
}

TEST_F(RightAngleTest, NonNodeVerticesAndUnselectedNodesAreUntouched) {
  MeshDoc d = Doc();
  d.selected.clear();
  d.innerVertex[{0, 0, 1}] = true;
  Session s(d);
  const auto& m = s.mesh();
  const VertexId v = m.neighbour(m.node(0, 1), IF);
  const AIRealPoint f = m.tangent(v, IF), b = m.tangent(v, IB);
  const auto before = AllNodeHandles(m);
  s.run(kHandles90);
  ExpectUnchanged(before, m);
  EXPECT_PT_NEAR(m.tangent(v, IF), f, 0.0);
  EXPECT_PT_NEAR(m.tangent(v, IB), b, 0.0);
}

// ---- Several meshes ----------------------------------------------------

TEST(HandleMeshesTest, EverySelectedMeshIsProcessedAndOthersAreLeft) {
  MeshDoc a = CentreDoc(), b = CentreDoc(), c = CentreDoc();
  a.id = "a", b.id = "b", c.id = "c";
  b.origin = {100, 0}, c.origin = {200, 0};
  c.artSelected = false;
  c.selected.clear();
  for (MeshDoc* d : {&a, &b, &c}) d->handle[{1, 1, IF}] = Polar(d->P(1, 1), 4, 0.3);
  Session s(MakeDoc({a.toJson(), b.toJson(), c.toJson()}));
  s.run(kHandles13);
  ExpectHandle(s.mesh("a"), 1, 1, IF, 10, 0.3);
  ExpectHandle(s.mesh("b"), 1, 1, IF, 10, 0.3);
  ExpectHandle(s.mesh("c"), 1, 1, IF, 4, 0.3);
}

TEST(HandleMeshesTest, WholeMeshSelectionReachesEveryNode) {
  MeshDoc d = CentreDoc();
  d.selected.clear();
  d.handle[{0, 0, IF}] = d.P(0, 0);
  d.handle[{2, 2, JB}] = d.P(2, 2);
  Session s(d);
  s.run(kHandles13);
  const auto& m = s.mesh();
  ExpectHandle(m, 0, 0, IF, 10, 0);
  ExpectHandle(m, 2, 2, JB, 8, -kPi / 2);
}

}  // namespace
}  // namespace hdtest
