// The handle buttons through the panel dispatcher: "Smooth", "Handles 1/3",
// "Handles 0" and "Handles 90 deg", on the middle node (1, 1) of a 2 x 2
// mesh of 30 x 24 cells unless a test says otherwise.
#include <gtest/gtest.h>

#include "support/Engine.h"

namespace lbtest {
namespace {

constexpr double kTol = 1e-9;
using lb::host::GradientMesh;
using lb::host::VertexId;

// The mesh of these tests, 2 x 2 cells of 30 x 24, with handles of node
// (1, 1) given by length and angle.
MeshRecipe Centre(std::map<int, std::pair<double, double>> handles, NodeSet sel = {{1, 1}}) {
  MeshRecipe d;
  d.dx = 30, d.dy = 24;
  d.selected = std::move(sel);
  for (auto [dir, la] : handles) d.handle[{1, 1, dir}] = Polar(d.P(1, 1), la.first, la.second);
  return d;
}

void ExpectHandle(const GradientMesh& m, int i, int j, int dir, double len, double angle) {
  const AIRealPoint p = NodeP(m, i, j), h = Tan(m, i, j, dir);
  EXPECT_NEAR(Dist(p, h), len, kTol) << i << "," << j << " dir " << dir;
  EXPECT_NEAR(AngleDiff(Angle(p, h), angle), 0.0, kTol) << i << "," << j << " dir " << dir;
}

void ExpectUnchanged(const std::vector<AIRealPoint>& before, const GradientMesh& m) {
  const auto after = AllNodeHandles(m);
  ASSERT_EQ(before.size(), after.size());
  for (size_t k = 0; k < before.size(); ++k) EXPECT_PT_NEAR(before[k], after[k], 0.0);
}

// Runs id on one session of d with each modifier pair in turn: no node
// handle moves.
void ExpectHandlesStay(const MeshRecipe& d, int id, std::initializer_list<std::pair<bool, bool>> mods) {
  Session s(d);
  const auto before = AllNodeHandles(s.engine());
  for (auto [alt, ctrl] : mods) s.run(id, alt, ctrl);
  ExpectUnchanged(before, s.engine());
}

TEST(SmoothTest, PairsTurnAboutTheirMeanAngleOnTheChosenAxes) {
  // I handles at 0 and 1.4 rad, J handles at 2.0 and -0.9: the larger
  // angle of a pair ends at mean + pi/2, each handle keeps its length.
  const MeshRecipe d = Centre({{IF, {8, 0.0}}, {IB, {5, 1.4}}, {JF, {6, 2.0}}, {JB, {7, -0.9}}});
  for (auto [alt, ctrl] : {std::pair{false, false}, {true, false}, {false, true}}) {
    Session s(d);
    s.run(kCmdHandlesSmooth, alt, ctrl);
    const auto& m = s.engine();
    const bool onI = !ctrl, onJ = !alt;
    ExpectHandle(m, 1, 1, IF, 8, onI ? 0.7 - kPi / 2 : 0.0);
    ExpectHandle(m, 1, 1, IB, 5, onI ? 0.7 + kPi / 2 : 1.4);
    ExpectHandle(m, 1, 1, JF, 6, onJ ? 0.55 + kPi / 2 : 2.0);
    ExpectHandle(m, 1, 1, JB, 7, onJ ? 0.55 - kPi / 2 : -0.9);
    EXPECT_EQ(SmoothAt(m, 1, 1, IF), onI);
    EXPECT_EQ(SmoothAt(m, 1, 1, JF), onJ);
  }
}

TEST(SmoothTest, CornerNodesOnlyWithCtrlAlt) {
  MeshRecipe d = Centre({}, {{0, 0}, {2, 2}});
  d.handle[{0, 2, IF}] = Polar(d.P(0, 2), 3, 0.4);  // unselected corner
  ExpectHandlesStay(d, kCmdHandlesSmooth, {{false, false}});
  Session s(d);
  s.run(kCmdHandlesSmooth, true, true);
  const auto& m = s.engine();
  // (0, 0): segment 0 is I forward (0 rad), segment 1 J forward (pi/2).
  ExpectHandle(m, 0, 0, IF, 10, -kPi / 4);
  ExpectHandle(m, 0, 0, JF, 8, 3 * kPi / 4);
  EXPECT_TRUE(SmoothAt(m, 0, 0, IF));
  // (2, 2): segment 0 is I backward (pi), segment 1 J backward (-pi/2).
  ExpectHandle(m, 2, 2, IB, 10, 3 * kPi / 4);
  ExpectHandle(m, 2, 2, JB, 8, -kPi / 4);
  EXPECT_PT_NEAR(Tan(m, 0, 2, IF), Polar(d.P(0, 2), 3, 0.4), kTol);
  EXPECT_PT_NEAR(Tan(m, 1, 1, IF), d.H(1, 1, IF), kTol);
}

TEST(OneThirdTest, HandlesGetAThirdOfTheChordToTheirNeighbour) {
  // I forward long at 0.3 rad; I backward retracted; J backward within 0.5
  // (counts as retracted); the I-forward run strongly curved.
  MeshRecipe d = Centre({{IF, {25, 0.3}}, {IB, {0, 0}}, {JB, {0.2, 2.5}}});
  d.handle[{2, 1, IB}] = Polar(d.P(2, 1), 25, 2.0);
  Session s(d);
  s.run(kCmdHandles1_3);
  const auto& m = s.engine();
  ExpectHandle(m, 1, 1, IF, 10, 0.3);
  ExpectHandle(m, 1, 1, IB, 10, kPi);
  ExpectHandle(m, 1, 1, JB, 8, -kPi / 2);
  ExpectHandle(m, 1, 1, JF, 8, kPi / 2);
  EXPECT_FALSE(SmoothAt(m, 1, 1, IF));
  EXPECT_TRUE(SmoothAt(m, 1, 1, JF));
  EXPECT_PT_NEAR(Tan(m, 2, 1, IB), d.H(2, 1, IB), kTol);  // not selected
}

TEST(OneThirdTest, BetweenVariantsNeedBothEndsSelectedAndTheirAxis) {
  const auto handles = std::map<int, std::pair<double, double>>{{IF, {4, 0.3}}, {JF, {3, 1.2}}, {IB, {0, 0}}};
  ExpectHandlesStay(Centre(handles), kCmdHandles1_3, {{true, false}, {false, true}, {true, true}});
  const NodeSet sel{{1, 1}, {2, 1}, {1, 2}};
  for (auto [alt, ctrl] : {std::pair{true, false}, {false, true}, {true, true}}) {
    MeshRecipe d = Centre(handles, sel);
    d.handle[{2, 1, IB}] = Polar(d.P(2, 1), 4, kPi - 0.2);
    Session s(d);
    s.run(kCmdHandles1_3, alt, ctrl);
    const auto& m = s.engine();
    ExpectHandle(m, 1, 1, IF, alt ? 10 : 4, 0.3);
    ExpectHandle(m, 1, 1, JF, ctrl ? 8 : 3, 1.2);
    ExpectHandle(m, 2, 1, IB, alt ? 10 : 4, kPi - 0.2);
    EXPECT_PT_NEAR(Tan(m, 1, 1, IB), NodeP(m, 1, 1), kTol);  // (0, 1) not selected
  }
}

TEST(OneThirdTest, NonNodeVertexMeasuresToItsAdjacentVertices) {
  MeshRecipe d = Centre({}, {});
  d.inner[{0, 0, 'I'}] = true;  // vertex at (15, 0) on side 0
  Session s(d);
  const auto& m = s.engine();
  const VertexId v = m.neighbour(m.node(0, 0), IF);
  const auto before = AllNodeHandles(m);
  s.run(kCmdHandles1_3);
  EXPECT_NEAR(Dist(m.point(v), m.tangent(v, IF)), 5, kTol);
  EXPECT_NEAR(Dist(m.point(v), m.tangent(v, IB)), 5, kTol);
  ExpectUnchanged(before, m);
}

TEST(HandlesZeroTest, RetractsAndClearsFlagsOnTheChosenSegments) {
  MeshRecipe d = Centre({});
  d.smooth = Smooth::All;
  {
    Session s(d);
    s.run(kCmdHandles0);
    for (int dir : {IB, JB, IF, JF}) {
      EXPECT_PT_NEAR(Tan(s.engine(), 1, 1, dir), d.P(1, 1), 0.0);
      EXPECT_FALSE(SmoothAt(s.engine(), 1, 1, dir));
    }
    EXPECT_TRUE(SmoothAt(s.engine(), 1, 0, IF));
  }
  // Ctrl: only J segments whose far end is selected.
  d.selected = {{1, 1}, {1, 2}, {2, 1}};
  Session s(d);
  s.run(kCmdHandles0, false, true);
  const auto& m = s.engine();
  EXPECT_PT_NEAR(Tan(m, 1, 1, JF), d.P(1, 1), 0.0);
  EXPECT_PT_NEAR(Tan(m, 1, 2, JB), d.P(1, 2), 0.0);
  EXPECT_FALSE(SmoothAt(m, 1, 1, JF));
  EXPECT_PT_NEAR(Tan(m, 1, 1, IF), d.H(1, 1, IF), kTol);
  EXPECT_PT_NEAR(Tan(m, 1, 1, JB), d.H(1, 1, JB), kTol);
  EXPECT_TRUE(SmoothAt(m, 1, 1, IF));
  EXPECT_TRUE(SmoothAt(m, 1, 1, JB));
}

struct RightAngleCase {
  bool alt, ctrl;
  double jDeg;                    // J forward handle; J backward opposite
  double iF, iB, jF, jB;          // expected angles in degrees
  bool smoothI, smoothJ;
};

TEST(RightAngleTest, AxesTurnUntilPerpendicular) {
  const RightAngleCase cases[] = {
      {false, false, 60, -15, 165, 75, 255, true, true},   // both turn by 15
      {true, false, 60, 0, 180, 90, 270, false, true},     // I stays
      {false, true, 60, -30, 150, 60, 240, true, false},   // J stays
      {false, false, -60, 15, 195, -75, 105, true, true},  // J clockwise of I
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message() << "alt " << c.alt << " ctrl " << c.ctrl << " J " << c.jDeg);
    Session s(Centre({{IF, {8, 0}}, {IB, {6, kPi}}, {JF, {5, c.jDeg * kDeg}}, {JB, {7, (c.jDeg + 180) * kDeg}}}));
    s.run(kCmdHandles90, c.alt, c.ctrl);
    const auto& m = s.engine();
    ExpectHandle(m, 1, 1, IF, 8, c.iF * kDeg);
    ExpectHandle(m, 1, 1, IB, 6, c.iB * kDeg);
    ExpectHandle(m, 1, 1, JF, 5, c.jF * kDeg);
    ExpectHandle(m, 1, 1, JB, 7, c.jB * kDeg);
    EXPECT_EQ(SmoothAt(m, 1, 1, IF), c.smoothI);
    EXPECT_EQ(SmoothAt(m, 1, 1, JF), c.smoothJ);
  }
}

TEST(RightAngleTest, SeamCornersAndBorders) {
  // J 80 degrees counterclockwise of I across the seam: 5 degrees each way.
  MeshRecipe d = Centre({{IF, {8, 170 * kDeg}}, {IB, {6, -10 * kDeg}}, {JF, {5, -110 * kDeg}}, {JB, {7, 70 * kDeg}}},
                     {{1, 1}, {2, 2}, {1, 0}});
  // Corner (2, 2) has only backward handles: axis directions 0 and 60 deg.
  d.handle[{2, 2, IB}] = Polar(d.P(2, 2), 4, kPi);
  d.handle[{2, 2, JB}] = Polar(d.P(2, 2), 3, 240 * kDeg);
  // Border (1, 0): no J-backward handle.
  d.handle[{1, 0, JF}] = Polar(d.P(1, 0), 5, 60 * kDeg);
  d.inner[{0, 0, 'J'}] = true;  // a selected non-node vertex is not touched
  Session s(d);
  const auto& m = s.engine();
  const VertexId v = m.neighbour(m.node(0, 0), JF);
  const AIRealPoint vf = m.tangent(v, JF);
  s.run(kCmdHandles90);
  ExpectHandle(m, 1, 1, IF, 8, 165 * kDeg);
  ExpectHandle(m, 1, 1, IB, 6, -15 * kDeg);
  ExpectHandle(m, 1, 1, JF, 5, -105 * kDeg);
  ExpectHandle(m, 1, 1, JB, 7, 75 * kDeg);
  ExpectHandle(m, 2, 2, IB, 4, 165 * kDeg);
  ExpectHandle(m, 2, 2, JB, 3, 255 * kDeg);
  ExpectHandle(m, 1, 0, IF, 10, -15 * kDeg);
  ExpectHandle(m, 1, 0, JF, 5, 75 * kDeg);
  EXPECT_PT_NEAR(m.tangent(v, JF), vf, 0.0);
}

}  // namespace
}  // namespace lbtest
