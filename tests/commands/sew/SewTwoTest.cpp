// "Sew meshes together" (152 moving vertices, 153 adding a row of cells)
// through the loaded plug-in: every modifier variant on small meshes, the
// paint of seam nodes for mixed colour kinds, side equalisation, knots on
// the seam, selection-guided sides, paint order and selection of the
// result, and every pair of sides laid together (one selected mesh is
// refused in tests/commands/EveryCommandTest).
#include <gtest/gtest.h>

#include <set>

#include "support/Session.h"

namespace lbtest {
namespace {

using P = std::pair<double, double>;

MeshRecipe Lower() {
  MeshRecipe g = Cells(1, 1);
  g.id = "a";
  g.colorAt = [](int i, int j) { return GrayPaint(0.1 * ((i + 2 * j) % 10)); };
  g.opacityAt = [](int i, int j) { return 0.2 + 0.2 * (i % 2) + 0.4 * (j % 2); };
  return g;
}

// Mesh b docked on top of mesh a (its side 0 on a's side 2).
MeshRecipe Upper() {
  MeshRecipe g = Cells(1, 1);
  g.id = "b";
  g.y0 = 10;
  g.colorAt = [](int i, int j) { return RgbPaint(0.2 * (i % 5), 0.3 * (j % 3), 0.5); };
  g.opacityAt = [](int i, int j) { return 0.1 + 0.1 * (i % 2) + 0.2 * (j % 2); };
  return g;
}

struct Variant {
  const char* name;
  int id;
  bool alt, ctrl;
  int I, J;
  std::vector<P> nodes;  // i fastest
};

const Variant kVariants[] = {
    {"MoveDirect", kCmdSewMeshMove, false, false, 1, 2, {{0, 0}, {10, 0}, {0, 10}, {10, 10}, {0, 20}, {10, 20}}},
    {"MoveReverse", kCmdSewMeshMove, true, false, 1, 2, {{0, 0}, {10, 0}, {5, 10}, {5, 10}, {10, 20}, {0, 20}}},
    {"MoveSecondPair", kCmdSewMeshMove, false, true, 2, 1, {{0, 0}, {10, 10}, {0, 20}, {0, 10}, {10, 10}, {0, 10}}},
    {"MoveSecondPairReverse", kCmdSewMeshMove, true, true, 2, 1, {{0, 0}, {10, 5}, {0, 10}, {0, 10}, {10, 15}, {0, 20}}},
    {"RowDirect", kCmdSewMeshAdd, false, false, 1, 3, {{0, 0}, {10, 0}, {0, 10}, {10, 10}, {0, 10}, {10, 10}, {0, 20}, {10, 20}}},
    {"RowReverse", kCmdSewMeshAdd, true, false, 1, 3, {{0, 0}, {10, 0}, {0, 10}, {10, 10}, {10, 10}, {0, 10}, {10, 20}, {0, 20}}},
    {"RowSecondPair", kCmdSewMeshAdd, false, true, 3, 1, {{0, 0}, {10, 0}, {10, 20}, {0, 20}, {0, 10}, {10, 10}, {10, 10}, {0, 10}}},
    {"RowSecondPairReverse", kCmdSewMeshAdd, true, true, 3, 1, {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 10}, {10, 10}, {10, 20}, {0, 20}}},
};

class EachVariant : public ::testing::TestWithParam<Variant> {};

TEST_P(EachVariant, NodeTableOfTheSewnMesh) {
  const Variant& v = GetParam();
  Session s(DocJson({MeshJson(Lower()), MeshJson(Upper())}));
  const json out = s.runWritten(v.id, v.alt, v.ctrl);
  ASSERT_EQ(Children(out).size(), 1u);
  const json& mesh = Children(out)[0];
  EXPECT_EQ(mesh.at("size"), json::array({v.I, v.J}));
  EXPECT_EQ(Positions(mesh), v.nodes);
  EXPECT_TRUE(mesh.at("selected").get<bool>());
  EXPECT_FALSE(mesh.contains("id") && !mesh["id"].is_null() && mesh["id"] != "") << "the sources are gone";
}

INSTANTIATE_TEST_SUITE_P(Sew, EachVariant, ::testing::ValuesIn(kVariants), lbtest::ByName());

// Moving vertices: each seam node takes the average of both meshes' paint;
// the rest keep their own.
TEST(SewMove, SeamNodesAverageColourAndOpacity) {
  Session s(DocJson({MeshJson(Lower()), MeshJson(Upper())}));
  const json mesh = s.runLayer(kCmdSewMeshMove)[0];
  // a (0, 1) gray 0.2 / opacity 0.6 meets b (0, 0) rgb (0, 0, 0.5) / 0.1;
  // a (1, 1) gray 0.3 / 0.8 meets b (1, 0) rgb (0.2, 0, 0.5) / 0.2.
  const std::tuple<int, int, json, double> nodes[] = {{0, 1, RgbPaint(0.1, 0.1, 0.35), 0.35},
                                                      {1, 1, RgbPaint(0.25, 0.15000000000000002, 0.4), 0.5},
                                                      {1, 0, GrayPaint(0.1), 0.4},
                                                      {0, 2, RgbPaint(0, 0.3, 0.5), 0.3}};
  for (const auto& [i, j, color, opacity] : nodes) {
    EXPECT_EQ(NodeAt(mesh, i, j).at("color"), color) << i << ", " << j;
    EXPECT_DOUBLE_EQ(NodeAt(mesh, i, j).at("opacity").get<double>(), opacity) << i << ", " << j;
  }
}

struct Blend {
  const char* name;
  json first, second, want;
};

// A gray node first takes the other's kind (RGB g, g, g; CMYK 0, 0, 0, g);
// then components are averaged in the first node's kind.
const Blend kBlends[] = {
    {"GrayGray", GrayPaint(0.2), GrayPaint(0.6), GrayPaint(0.4)},
    {"GrayRgb", GrayPaint(0.2), RgbPaint(0.4, 0.6, 1.0), RgbPaint(0.30000000000000004, 0.4, 0.6)},
    {"RgbGray", RgbPaint(0.4, 0.6, 1.0), GrayPaint(0.2), RgbPaint(0.30000000000000004, 0.4, 0.6)},
    {"GrayCmyk", GrayPaint(0.4), CmykPaint(0.2, 0.4, 0.6, 0.8), CmykPaint(0.1, 0.2, 0.3, 0.6000000000000001)},
    {"CmykGray", CmykPaint(0.2, 0.4, 0.6, 0.8), GrayPaint(0.4), CmykPaint(0.1, 0.2, 0.3, 0.6000000000000001)},
    {"RgbRgb", RgbPaint(0, 0.5, 1), RgbPaint(1, 0.5, 0), RgbPaint(0.5, 0.5, 0.5)},
    {"CmykCmyk", CmykPaint(0, 0, 0, 0), CmykPaint(1, 1, 1, 1), CmykPaint(0.5, 0.5, 0.5, 0.5)},
    // Neither gray: the second colour's components are read in the first's kind.
    {"RgbCmyk", RgbPaint(0.2, 0.4, 0.6), CmykPaint(0.4, 0.6, 0.8, 1.0), RgbPaint(0.30000000000000004, 0.5, 0.7)},
};

class EachBlend : public ::testing::TestWithParam<Blend> {};

TEST_P(EachBlend, SeamColour) {
  const Blend& b = GetParam();
  MeshRecipe a = Lower(), c = Upper();
  a.colorAt = [&](int, int j) { return j == 1 ? b.first : GrayPaint(0); };
  c.colorAt = [&](int, int j) { return j == 0 ? b.second : GrayPaint(0); };
  Session s(DocJson({MeshJson(a), MeshJson(c)}));
  const json mesh = s.runLayer(kCmdSewMeshMove)[0];
  EXPECT_EQ(NodeAt(mesh, 0, 1).at("color"), b.want);
  EXPECT_EQ(NodeAt(mesh, 1, 1).at("color"), b.want);
}

INSTANTIATE_TEST_SUITE_P(Sew, EachBlend, ::testing::ValuesIn(kBlends), lbtest::ByName());

struct Split {
  const char* name;
  int small, big;
  bool smallFirst;
  std::vector<double> lines;  // h of the small mesh's nodes along its side, after the split
  std::vector<double> opacities;  // of those nodes on the small mesh's far side (empty: not checked)
};

// The small mesh is 30 units wide; its cells become cnt[k] equal parts.
// Node opacities 0.1, 0.4, 0.7, 1.0 along it: an inserted line gets
// A + (B - A) t with A, B read before the cell is split and t = (r - 1) / r
// of each insertion, so a cell split in three gets A + (B - A) / 2 and
// A + (B - A) 2 / 3 on its inner lines.
const Split kSplits[] = {
    {"ThreeToEight", 3, 8, true, {0, 5, 10, 10 + 10.0 / 3, 10 + 20.0 / 3, 20, 20 + 10.0 / 3, 20 + 20.0 / 3, 30},
     {0.1, 0.25, 0.4, 0.55, 0.6, 0.7, 0.85, 0.9, 1.0}},
    {"EightToThreeSecond", 3, 8, false, {0, 5, 10, 10 + 10.0 / 3, 10 + 20.0 / 3, 20, 20 + 10.0 / 3, 20 + 20.0 / 3, 30},
     {0.1, 0.25, 0.4, 0.55, 0.6, 0.7, 0.85, 0.9, 1.0}},
    {"TwoToSeven", 2, 7, true, {0, 5, 10, 15, 18.75, 22.5, 26.25, 30}, {}},
};

class EachSplit : public ::testing::TestWithParam<Split> {};

TEST_P(EachSplit, InsertsGridLinesWhereTheCountsSay) {
  const Split& sp = GetParam();
  MeshRecipe small = Lower(), big = Upper();
  small.I = sp.small;
  small.dx = 30.0 / sp.small;
  small.opacityAt = [](int i, int) { return 0.1 + 0.3 * i; };
  big.I = sp.big;
  big.dx = 30.0 / sp.big;
  big.y0 = 20;  // a gap: the added row spans it
  Session s(DocJson(sp.smallFirst ? std::vector<json>{MeshJson(small), MeshJson(big)}
                              : std::vector<json>{MeshJson(big), MeshJson(small)}));
  const json mesh = s.runLayer(kCmdSewMeshAdd)[0];
  ASSERT_EQ(mesh.at("size")[0], sp.big);
  ASSERT_EQ(mesh.at("size")[1], 3);
  // The small mesh lies below the big one in either order: its far side
  // is row 0, its side at the seam row 1.
  for (int i = 0; i <= sp.big; ++i) {
    const json& n = NodeAt(mesh, i, 1);
    EXPECT_NEAR(n.at("p")[0].get<double>(), sp.lines[static_cast<size_t>(i)], 1e-9) << "node " << i;
    EXPECT_NEAR(n.at("p")[1].get<double>(), 10.0, 1e-9) << "node " << i;
    if (!sp.opacities.empty()) {
      EXPECT_NEAR(NodeAt(mesh, i, 0).at("opacity").get<double>(), sp.opacities[static_cast<size_t>(i)], 1e-12)
          << "node " << i;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Sew, EachSplit, ::testing::ValuesIn(kSplits), lbtest::ByName());

// Knots: a's top side bulges through one knot; b's bottom side is straight
// (one cubic) or has a non-node vertex in the middle. b's side gets a knot
// at its middle (or its vertex becomes one) and both sides take the
// average of the two curves, control point by control point.
TEST(SeamKnots, SeamTakesTheMiddleCurve) {
  for (bool vertexOnB : {false, true}) {
    SCOPED_TRACE(vertexOnB ? "vertex on b" : "straight b");
    json a = MeshJson(Lower());
    a["runs"] = json::array({{{"node", {0, 1}},
                              {"axis", "I"},
                              {"points", {{0, 10}, {2, 11}, {4, 12}, {5, 12}, {6, 12}, {8, 11}, {10, 10}}},
                              {"inner", {{{"kind", "knot"}}}}}});
    json b = MeshJson(Upper());
    if (vertexOnB)
      b["runs"] = json::array(
          {{{"node", {0, 0}},
            {"axis", "I"},
            {"points", {{0, 10}, {5.0 / 3, 10}, {10.0 / 3, 10}, {5, 10}, {20.0 / 3, 10}, {25.0 / 3, 10}, {10, 10}}},
            {"inner", {{{"kind", "vertex"}, {"selected", false}, {"smooth", {true, true}}}}}}});
    Session s(DocJson({a, b}));
    const json mesh = s.runLayer(kCmdSewMeshMove)[0];
    const json& seam = RunAt(mesh, 0, 1, 'I');
    ASSERT_EQ(seam.at("inner").size(), 1u);
    EXPECT_EQ(seam.at("inner")[0].at("kind"), "knot");
    EXPECT_TRUE(SamePoints(PointsOf(seam.at("points")),
                           {{0, 10}, {11.0 / 6, 10.5}, {11.0 / 3, 11}, {5, 11}, {19.0 / 3, 11}, {49.0 / 6, 10.5}, {10, 10}}, 1e-9));
  }
}

// Moving vertices: handles across the seam move with their node.
TEST(SewMove, HandlesAcrossTheSeamMoveWithTheNode) {
  MeshRecipe b = Upper();
  b.y0 = 12;  // seam nodes meet at v = 11
  Session s(DocJson({MeshJson(Lower()), MeshJson(b)}));
  const json mesh = s.runLayer(kCmdSewMeshMove)[0];
  for (const json& r : mesh.at("runs")) {
    if (r.at("axis") != "J") continue;
    const int j = r.at("node")[1];
    const json& pts = r.at("points");
    if (j == 0) {  // a's run: its end handle was 10 - 10/3 + 1
      EXPECT_NEAR(pts[2][1].get<double>(), 20.0 / 3 + 1, 1e-9);
      EXPECT_NEAR(pts[3][1].get<double>(), 11, 1e-9);
    } else {  // b's run: its start handle was 12 + 10/3 - 1
      EXPECT_NEAR(pts[0][1].get<double>(), 11, 1e-9);
      EXPECT_NEAR(pts[1][1].get<double>(), 12 + 10.0 / 3 - 1, 1e-9);
    }
  }
}

// Adding a row: each crossing segment gets handles a third of the node
// distance long, continuing the lines of both meshes.
TEST(SewAddRow, CrossingHandlesContinueBothMeshes) {
  MeshRecipe b = Upper();
  b.y0 = 16;
  Session s(DocJson({MeshJson(Lower()), MeshJson(b)}));
  const json mesh = s.runLayer(kCmdSewMeshAdd)[0];
  for (int i = 0; i <= 1; ++i) {
    const double h = 10.0 * i;
    EXPECT_TRUE(SamePoints(PointsOf(RunAt(mesh, i, 1, 'J').at("points")), {{h, 10}, {h, 12}, {h, 14}, {h, 16}}, 1e-9));
  }
  // The seam nodes of both meshes keep their places.
  EXPECT_DOUBLE_EQ(NodeAt(mesh, 0, 1).at("p")[1].get<double>(), 10);
  EXPECT_DOUBLE_EQ(NodeAt(mesh, 0, 2).at("p")[1].get<double>(), 16);
}

// Selecting the bottom corners of two meshes side by side sews their
// bottom sides (b turned half round below a), not the sides that touch.
TEST(SewSides, SelectedCornersChooseTheSides) {
  MeshRecipe a = Lower(), b = Lower();
  b.id = "b";
  b.x0 = 10;
  json ja = MeshJson(a), jb = MeshJson(b);
  for (json* m : {&ja, &jb})
    for (size_t k = 0; k < 4; ++k) (*m)["nodes"][k]["selected"] = k < 2;
  Session s(DocJson({ja, jb}));
  const json mesh = s.runLayer(kCmdSewMeshAdd)[0];
  EXPECT_EQ(mesh.at("size"), json::array({1, 3}));
  EXPECT_EQ(Positions(mesh), (std::vector<P>{{20, 10}, {10, 10}, {20, 0}, {10, 0}, {0, 0}, {10, 0}, {0, 10}, {10, 10}}));
}

TEST(SewResult, PaintOrderSelectionOpacityAndBlend) {
  MeshRecipe a = Lower(), b = Upper(), c = Lower();
  a.artOpacity = 0.5;
  a.blend = "multiply";
  b.artOpacity = 0.9;
  c.id = "c";
  c.x0 = 100;
  c.artSelected = false;
  json top = MeshJson(c);
  top["id"] = "top";
  Session s(DocJson({top, MeshJson(a), MeshJson(b), MeshJson(c)}));
  const json kids = Children(s.runWritten(kCmdSewMeshMove));
  ASSERT_EQ(kids.size(), 3u);
  EXPECT_EQ(kids[0].at("id"), "top");
  EXPECT_FALSE(kids[1].contains("id") && kids[1]["id"].is_string() && !kids[1]["id"].get<std::string>().empty());
  EXPECT_TRUE(kids[1].at("selected").get<bool>());
  EXPECT_DOUBLE_EQ(kids[1].at("opacity").get<double>(), 0.5);
  EXPECT_EQ(kids[1].at("blend"), "multiply");
  EXPECT_EQ(kids[2].at("id"), "c");
  EXPECT_FALSE(kids[2].at("selected").get<bool>());
}

TEST(SewResult, ThirdSelectedMeshStaysSelected) {
  MeshRecipe c = Lower();
  c.id = "c";
  c.x0 = 100;
  Session s(DocJson({MeshJson(Lower()), MeshJson(Upper()), MeshJson(c)}));
  const json kids = Children(s.runWritten(kCmdSewMeshAdd));
  ASSERT_EQ(kids.size(), 2u);
  EXPECT_EQ(kids[0].at("size"), json::array({1, 3}));
  EXPECT_EQ(kids[1].at("id"), "c");
  EXPECT_TRUE(kids[1].at("selected").get<bool>());
}

// Every pair of sides (s1 of the first mesh, s2 of the second) in both
// directions along the seam: the second mesh is laid against the first so
// that its side s2 lies on the first's side s1, and the sewn mesh must be
// the lattice of both (moving vertices: one shared seam line; adding a
// row: the two seam lines coincide, one row of zero-length segments apart).

constexpr double kStep = 10.0;
constexpr int kI1 = 2, kJ1 = 3, kDepth2 = 2;

struct Case {
  int s1, s2;
  bool same;
};

// The second mesh: its side s2 on the first mesh's side s1, extending
// outward by kDepth2 cells; `same` walks both sides the same way.
json SecondMesh(const Case& c) {
  const int n = c.s1 % 2 == 0 ? kI1 : kJ1;  // cells along the seam
  const int I = c.s2 % 2 == 0 ? n : kDepth2, J = c.s2 % 2 == 0 ? kDepth2 : n;
  // Seam start, direction along it and outward normal of the first mesh.
  const double S[4][2] = {{0, 0}, {kI1 * kStep, 0}, {0, kJ1 * kStep}, {0, 0}};
  const double U[4][2] = {{1, 0}, {0, 1}, {1, 0}, {0, 1}};
  const double N[4][2] = {{0, -1}, {1, 0}, {0, 1}, {-1, 0}};
  MeshRecipe g = Cells(I, J);
  g.id = "b";
  for (int j = 0; j <= J; ++j)
    for (int i = 0; i <= I; ++i) {
      int t = 0, d = 0;
      switch (c.s2) {
        case 0: t = i, d = j; break;
        case 1: t = j, d = I - i; break;
        case 2: t = i, d = J - j; break;
        default: t = j, d = i; break;
      }
      if (!c.same) t = n - t;
      const double h = S[c.s1][0] + kStep * (t * U[c.s1][0] + d * N[c.s1][0]);
      const double v = S[c.s1][1] + kStep * (t * U[c.s1][1] + d * N[c.s1][1]);
      g.moved[{i, j}] = {h, v};
    }
  return MeshJson(g);
}

class EachSidePair : public ::testing::TestWithParam<std::tuple<int, int, bool>> {};

TEST_P(EachSidePair, SewnMeshIsTheLatticeOfBoth) {
  const Case c{std::get<0>(GetParam()), std::get<1>(GetParam()), std::get<2>(GetParam())};
  MeshRecipe a = Cells(kI1, kJ1);
  a.id = "a";
  const json b = SecondMesh(c);
  std::set<P> want;
  for (const json& m : {MeshJson(a), b})
    for (const auto& p : Positions(m)) want.insert(p);
  for (int addRow = 0; addRow < 2; ++addRow) {
    Session s(DocJson({MeshJson(a), b}));
    const json kids = Children(s.runWritten(addRow ? kCmdSewMeshAdd : kCmdSewMeshMove));
    ASSERT_EQ(kids.size(), 1u);
    const json& mesh = kids[0];
    const int I = mesh.at("size")[0], J = mesh.at("size")[1];
    const int wantI = c.s1 % 2 == 0 ? kI1 : kI1 + kDepth2 + addRow;
    const int wantJ = c.s1 % 2 == 0 ? kJ1 + kDepth2 + addRow : kJ1;
    EXPECT_EQ(I, wantI) << "add row " << addRow;
    EXPECT_EQ(J, wantJ) << "add row " << addRow;
    const auto got = Positions(mesh);
    EXPECT_EQ(std::set<P>(got.begin(), got.end()), want) << "add row " << addRow;
    // Neighbours are one step apart, except across the added row.
    int zero = 0;
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i <= I; ++i)
        for (const auto& [di, dj] : {std::pair{1, 0}, std::pair{0, 1}}) {
          if (i + di > I || j + dj > J) continue;
          const P p = got[static_cast<size_t>(j * (I + 1) + i)];
          const P q = got[static_cast<size_t>((j + dj) * (I + 1) + i + di)];
          const double d = std::hypot(q.first - p.first, q.second - p.second);
          if (d == 0.0) {
            ++zero;
          } else {
            EXPECT_NEAR(d, kStep, 1e-9) << "nodes (" << i << ", " << j << ") +(" << di << ", " << dj << ")";
          }
        }
    const int seamNodes = (c.s1 % 2 == 0 ? kI1 : kJ1) + 1;
    EXPECT_EQ(zero, addRow ? seamNodes : 0);
    // The first mesh keeps its orientation: its node (0, 0) stays the
    // lowest-index node of its part.
    const int offI = c.s1 == 3 ? I - kI1 : 0, offJ = c.s1 == 0 ? J - kJ1 : 0;
    EXPECT_EQ(got[static_cast<size_t>(offJ * (I + 1) + offI)], (P{0, 0}));
    EXPECT_EQ(got[static_cast<size_t>((offJ + kJ1) * (I + 1) + offI + kI1)], (P{kI1 * kStep, kJ1 * kStep}));
  }
}

INSTANTIATE_TEST_SUITE_P(Sew, EachSidePair,
                         ::testing::Combine(::testing::Range(0, 4), ::testing::Range(0, 4), ::testing::Bool()),
                         [](const auto& info) {
                           return "S" + std::to_string(std::get<0>(info.param)) + "toS" +
                                  std::to_string(std::get<1>(info.param)) +
                                  (std::get<2>(info.param) ? "Same" : "Opposite");
                         });

}  // namespace
}  // namespace lbtest
