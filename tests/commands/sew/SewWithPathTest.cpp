// "Sew mesh with path" (id 164): with one mesh and a path, a new row of
// cells from the mesh's nearest side to the path; with two paths and no
// mesh, a one-cell mesh sewn between them. And the hidden report of shared
// path ends (id 170).
#include <gtest/gtest.h>

#include "commands/construct/ConstructDoc.h"
#include "support/Engine.h"

namespace lbtest {
namespace {

using lb::host::GradientMesh;

using constructtest::Anchor;
using constructtest::kThird;
using constructtest::Pt;

// An open path through the anchors with the given stroke, fill and opacity.
json Path(const std::vector<Anchor>& anchors, json stroke = nullptr, json fill = nullptr, double opacity = 1.0) {
  json art = constructtest::PathArt(anchors, false);
  art["stroke"] = stroke;
  art["fill"] = fill;
  if (opacity != 1.0) art["opacity"] = opacity;
  return art;
}

// An open path through the points, stroked green at a quarter opacity;
// selectedEnd 0 or 1: that end selected, the other not.
json GreenPath(const std::vector<AIRealPoint>& points, int selectedEnd = -1) {
  std::vector<Anchor> anchors;
  for (size_t k = 0; k < points.size(); ++k) {
    const bool selected = k == (selectedEnd == 0 ? 0 : points.size() - 1);
    anchors.push_back({{points[k].h, points[k].v}, std::nullopt, std::nullopt, selectedEnd < 0 ? -1 : int(selected)});
  }
  return Path(anchors, {{"color", {{"rgb", {0.0, 1.0, 0.0}}}}}, nullptr, 0.25);
}

// A 2 x 2 mesh of 10-unit cells at the origin, the whole mesh selected.
MeshRecipe Mesh() { return CodedWhole(2, 2); }

struct SewCase {
  const char* name;
  std::vector<AIRealPoint> path;
  bool alt, ctrl;
  std::vector<AIRealPoint> border;  // nodes (0, 0), (1, 0), (2, 0) after the sew
  bool flipped;                     // crossing handles point away from the mesh
};

TEST(SewWithPathTest, NewRowRunsFromTheNearestSideToThePath) {
  const SewCase cases[] = {
      {"three anchors", {{0, -10}, {10, -12}, {20, -10}}, false, false, {{0, -10}, {10, -12}, {20, -10}}, false},
      {"two anchors: one added in the middle", {{0, -10}, {20, -10}}, false, false, {{0, -10}, {10, -10}, {20, -10}}, false},
      {"drawn the other way", {{20, -10}, {10, -12}, {0, -10}}, false, false, {{0, -10}, {10, -12}, {20, -10}}, false},
      {"Alt: reverse order", {{0, -10}, {10, -12}, {20, -10}}, true, false, {{20, -10}, {10, -12}, {0, -10}}, false},
      {"Ctrl: handles turned to the other side", {{0, -10}, {10, -12}, {20, -10}}, false, true, {{0, -10}, {10, -12}, {20, -10}}, true},
  };
  for (const SewCase& c : cases) {
    SCOPED_TRACE(c.name);
    Session s(DocJson({MeshJson(Mesh()), GreenPath(c.path)}));
    s.run(kCmdSewPath, c.alt, c.ctrl);
    ASSERT_EQ(s.artCount(), 1u);
    const GradientMesh& m = s.engine(0);
    ASSERT_EQ(Node(m.sizeI(), m.sizeJ()), Node(2, 3));
    // The path's stroke and opacity on the border; the old mesh above,
    // node for node and run for run.
    for (int i = 0; i <= 2; ++i) {
      EXPECT_PT_NEAR(NodeP(m, i, 0), c.border[i], 1e-9) << i;
      EXPECT_EQ(m.color(m.node(i, 0)).c.rgb.green, 1.0);
      EXPECT_EQ(m.opacity(m.node(i, 0)), 0.25);
    }
    const NodeMap up = [](int i, int j) { return Node{i, j + 1}; };
    EXPECT_TRUE(SameContent(s.content(0), MapMesh(ReadMesh(MeshJson(Mesh())), 2, 3, up), 0.0));
    // Crossing handles: perpendicular to the border at its ends, one third of the run
    // to the old side, towards it unless Ctrl turned them.
    for (int i = 0; i <= 2; ++i) {
      const AIRealPoint p = NodeP(m, i, 0), q = NodeP(m, i, 1), t = Tan(m, i, 0, JF);
      const AIRealPoint along = Tan(m, i, 0, i < 2 ? IF : IB);
      const double dx = t.h - p.h, dy = t.v - p.v;
      if (i != 1) {  // the middle node is a corner of the path
        EXPECT_NEAR(dx * (along.h - p.h) + dy * (along.v - p.v), 0.0, 1e-9) << i;
      }
      EXPECT_NEAR(std::hypot(dx, dy), Dist(p, q) * kThird, 1e-6) << i;
      EXPECT_EQ(dx * (q.h - p.h) + dy * (q.v - p.v) < 0, c.flipped) << i;
    }
    EXPECT_TRUE(s.mesh(0).artSelected());
  }
}

TEST(SewWithPathTest, SelectedPathEndPicksTheCorner) {
  // Path beside side 1 (i = 2), drawn downwards; its last anchor selected
  // lies nearest to corner 1 (20, 0).
  Session s(DocJson({MeshJson(Mesh()), GreenPath({{30, 20}, {30, 10}, {30, 0}}, 1)}));
  s.run(kCmdSewPath);
  const GradientMesh& m = s.engine(0);
  ASSERT_EQ(Node(m.sizeI(), m.sizeJ()), Node(3, 2));
  EXPECT_PT_NEAR(NodeP(m, 3, 0), (AIRealPoint{30, 0}), 1e-9);
  EXPECT_PT_NEAR(NodeP(m, 3, 2), (AIRealPoint{30, 20}), 1e-9);
  EXPECT_PT_NEAR(NodeP(m, 2, 1), (AIRealPoint{20, 10}), 0.0);
}

TEST(SewWithPathTest, RefusalsChangeNothing) {
  MeshRecipe other = Mesh();
  other.x0 = 100;
  const std::pair<const char*, std::vector<json>> docs[] = {
      {"a single anchor", {MeshJson(Mesh()), GreenPath({{0, -10}})}},
      {"two meshes", {MeshJson(Mesh()), MeshJson(other), GreenPath({{0, -10}, {20, -10}})}},
  };
  for (const auto& [name, art] : docs) {
    SCOPED_TRACE(name);
    Session s(DocJson(art));
    const json before = s.written();
    EXPECT_EQ(s.runWritten(kCmdSewPath), before);
  }
}

// ---- Two paths, no mesh ---------------------------------------------------

// Side j of the one-cell mesh from i = 0 to i = 1, every control point.
std::vector<AIRealPoint> Side(const GradientMesh& m, int j) {
  return m.segmentPoints(lb::host::SegmentRef{m.node(0, j), IF});
}

// P1 from (0, 0) to (30, 0) stroked red, P2 from (0, 20) to (30, 20) filled
// blue at half opacity: both drawn the same way, so the nearer ends are the
// two first anchors.
std::vector<json> SideBySide() {
  return {Path({{{0, 0}}, {{30, 0}}}, {{"color", {{"rgb", {1.0, 0.0, 0.0}}}}, {"width", 1}}),
          Path({{{0, 20}}, {{30, 20}}}, nullptr, {{"color", {{"rgb", {0.0, 0.0, 1.0}}}}}, 0.5)};
}

// Which path ends become the corners: nodes (0, 0), (1, 0), (0, 1), (1, 1).
TEST(SewPathsTest, CornersFromTheNearerOrSelectedEnds) {
  const std::vector<Anchor> curved = {{{0, 0}, {}, Pt{5, 5}}, {{15, 2}, Pt{10, 4}, Pt{20, 0}}, {{30, 0}, Pt{25, -3}, {}}};
  const struct {
    const char* name;
    std::vector<json> paths;
    bool alt;
    std::vector<AIRealPoint> corners;
  } cases[] = {
      // Both drawn the same way: the nearer ends are the two first anchors.
      {"nearer ends meet at side i = 0", SideBySide(), false, {{0, 0}, {30, 0}, {0, 20}, {30, 20}}},
      {"Alt twists the cell", SideBySide(), true, {{0, 0}, {30, 0}, {30, 20}, {0, 20}}},
      // P1's last anchor selected: it pairs with P2's nearer end although
      // its first anchor is nearer.
      {"a selected end wins over the nearer one",
       {Path({{{0, 0}, {}, {}, 0}, {{30, 0}, {}, {}, 1}}), Path({{{0, 20}}, {{30, 20}}})}, false,
       {{30, 0}, {0, 0}, {30, 20}, {0, 20}}},
      // P2 drawn the other way: its last anchor is paired with (0, 0).
      {"curved path and one drawn backwards", {Path(curved), Path({{{30, 20}}, {{0, 20}}})}, false,
       {{0, 0}, {30, 0}, {0, 20}, {30, 20}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Session s(DocJson(c.paths));
    s.run(kCmdSewPath, c.alt, false);
    ASSERT_EQ(s.artCount(), 1u);
    const GradientMesh& m = s.engine(0);
    ASSERT_EQ(Node(m.sizeI(), m.sizeJ()), Node(1, 1));
    for (int k = 0; k < 4; ++k) EXPECT_PT_NEAR(NodeP(m, k % 2, k / 2), c.corners[k], 0.0) << k;
    if (c.paths[0] == Path(curved)) {
      // Every control point of the curved path, knots included.
      const auto side = Side(m, 0);
      const std::vector<AIRealPoint> want = {{0, 0}, {5, 5}, {10, 4}, {15, 2}, {20, 0}, {25, -3}, {30, 0}};
      ASSERT_EQ(side.size(), want.size());
      for (size_t k = 0; k < want.size(); ++k) EXPECT_PT_NEAR(side[k], want[k], 0.0) << k;
    }
  }
}

// Straight pieces get one-third handles; the sides i = 0 and 1 leave the
// paths at right angles, a third long; only the second path's nodes end
// selected.
TEST(SewPathsTest, StraightPiecesGetThirds) {
  Session s(DocJson(SideBySide()));
  s.run(kCmdSewPath, false, false);
  const GradientMesh& m = s.engine(0);
  const auto bottom = Side(m, 0);
  ASSERT_EQ(bottom.size(), 4u);
  EXPECT_PT_NEAR(bottom[1], (AIRealPoint{30 * kThird, 0}), 1e-12);
  EXPECT_PT_NEAR(bottom[2], (AIRealPoint{30 - 30 * kThird, 0}), 1e-12);
  EXPECT_PT_NEAR(Tan(m, 0, 0, JF), (AIRealPoint{0, 20 * kThird}), 1e-9);
  EXPECT_PT_NEAR(Tan(m, 1, 1, JB), (AIRealPoint{30, 20 - 20 * kThird}), 1e-9);
  EXPECT_EQ(SelectedNodes(m), (NodeSet{{0, 1}, {1, 1}}));
}

struct PaintCase {
  bool useColor, useOpacity;
};

TEST(SewPathsTest, PaintFollowsTheCheckboxes) {
  for (PaintCase c : {PaintCase{true, true}, PaintCase{true, false}, PaintCase{false, true}}) {
    SCOPED_TRACE(testing::Message() << c.useColor << c.useOpacity);
    Session s(DocJson(SideBySide()));
    s.run(kCmdSewPath, false, false, c.useColor, c.useOpacity);
    const GradientMesh& m = s.engine(0);
    for (int i = 0; i < 2; ++i) {
      const AIColor bottom = m.color(m.node(i, 0)), top = m.color(m.node(i, 1));
      if (c.useColor) {
        EXPECT_EQ(bottom.kind, kThreeColor);
        EXPECT_EQ(bottom.c.rgb.red, 1.0);  // P1's stroke
        EXPECT_EQ(top.c.rgb.blue, 1.0);    // P2 has no stroke: its fill
      }
      EXPECT_EQ(m.opacity(m.node(i, 1)), c.useOpacity ? 0.5 : 1.0);
    }
  }
}

TEST(SewPathsTest, UnpaintedPathGivesLightGray) {
  Session s(DocJson({Path({{{0, 0}}, {{30, 0}}}), Path({{{0, 20}}, {{30, 20}}})}));
  s.run(kCmdSewPath);
  const AIColor c = s.engine(0).color(s.engine(0).node(0, 0));
  EXPECT_EQ(c.c.rgb.green, 0.800000011920929);
}

// (A lone path: EveryCommand.NothingSelectedOrALonePathChangesNothing.)
TEST(SewPathsTest, ThirdPathStaysAndSingleAnchorsDoNothing) {
  {
    Session s(DocJson({Path({{{0, 0}}, {{30, 0}}}), Path({{{0, 20}}, {{30, 20}}}), Path({{{0, 50}}, {{9, 50}}})}));
    s.run(kCmdSewPath);
    ASSERT_EQ(s.artCount(), 2u);
    EXPECT_EQ(s.written()["layers"][0]["children"][1]["type"], "path");
  }
  {
    Session s(DocJson({Path({{{0, 0}}}), Path({{{0, 20}}, {{30, 20}}})}));
    s.run(kCmdSewPath);
    EXPECT_EQ(s.artCount(), 2u);
  }
}

TEST(SewPathsReportTest, CommonEndsAreListedWithTheirPathEnds) {
  // Path 0 from (0, 0) to (10, 0); path 1 from (10, 0) to (10, 10);
  // path 2 from (0, 0) to (10, 10).
  Session s(DocJson({Path({{{0, 0}}, {{10, 0}}}), Path({{{10, 0}}, {{10, 10}}}), Path({{{0, 0}}, {{10, 10}}})}));
  const json before = s.written();
  s.run(kCmdSewPathsReport);
  ASSERT_EQ(s.host().alerts().size(), 1u);
  EXPECT_EQ(s.host().alerts()[0],
            "0 [0.000000, 0.000000] - 2\n0 4 \n"
            "1 [10.000000, 0.000000] - 2\n1 2 \n"
            "2 [10.000000, 10.000000] - 2\n3 5 \n");
  EXPECT_EQ(s.written(), before);
}

}  // namespace
}  // namespace lbtest
