// "Sew mesh with path" (id 164) with one mesh and a path: a new row of
// cells from the mesh's nearest side to the path.
#include <gtest/gtest.h>

#include "support/Engine.h"

namespace lbtest {
namespace {

using lb::host::GradientMesh;
constexpr double kThird = 0.3333333432674408;

json Path(const std::vector<AIRealPoint>& anchors, int selectedEnd = -1) {
  json segs = json::array();
  for (size_t k = 0; k < anchors.size(); ++k) {
    json s = {{"p", {anchors[k].h, anchors[k].v}}};
    if (selectedEnd >= 0) s["selected"] = (selectedEnd == 0 && k == 0) || (selectedEnd == 1 && k + 1 == anchors.size());
    segs.push_back(s);
  }
  return {{"type", "path"},
          {"closed", false},
          {"selected", true},
          {"fill", nullptr},
          {"stroke", {{"color", {{"rgb", {0.0, 1.0, 0.0}}}}}},
          {"opacity", 0.25},
          {"segments", segs}};
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
    Session s(DocJson({MeshJson(Mesh()), Path(c.path)}));
    s.run(kCmdSewPath, c.alt, c.ctrl);
    ASSERT_EQ(s.artCount(), 1u);
    const GradientMesh& m = s.engine(0);
    ASSERT_EQ(m.sizeI(), 2);
    ASSERT_EQ(m.sizeJ(), 3);
    const MeshState st = s.mesh(0);
    const MeshState old(Children(DocJson(Mesh()))[0]);
    for (int i = 0; i <= 2; ++i) {
      EXPECT_PT_NEAR(NodeP(m, i, 0), c.border[i], 1e-9) << i;
      // The path's stroke and opacity on the border; the old mesh above.
      EXPECT_EQ(m.color(m.node(i, 0)).c.rgb.green, 1.0);
      EXPECT_EQ(m.opacity(m.node(i, 0)), 0.25);
      for (int j = 0; j <= 2; ++j) {
        EXPECT_PT_NEAR(NodeP(m, i, j + 1), (AIRealPoint{10.0 * i, 10.0 * j}), 0.0);
        EXPECT_EQ(st.node(i, j + 1)["color"], old.node(i, j)["color"]);
      }
    }
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
    EXPECT_TRUE(st.artSelected());
  }
}

TEST(SewWithPathTest, SelectedPathEndPicksTheCorner) {
  // Path beside side 1 (i = 2), drawn downwards; its last anchor selected
  // lies nearest to corner 1 (20, 0).
  Session s(DocJson({MeshJson(Mesh()), Path({{30, 20}, {30, 10}, {30, 0}}, 1)}));
  s.run(kCmdSewPath);
  const GradientMesh& m = s.engine(0);
  ASSERT_EQ(m.sizeI(), 3);
  ASSERT_EQ(m.sizeJ(), 2);
  EXPECT_PT_NEAR(NodeP(m, 3, 0), (AIRealPoint{30, 0}), 1e-9);
  EXPECT_PT_NEAR(NodeP(m, 3, 2), (AIRealPoint{30, 20}), 1e-9);
  EXPECT_PT_NEAR(NodeP(m, 2, 1), (AIRealPoint{20, 10}), 0.0);
}

TEST(SewWithPathTest, RefusalsChangeNothing) {
  MeshRecipe other = Mesh();
  other.x0 = 100;
  const std::pair<const char*, std::vector<json>> docs[] = {
      {"a single anchor", {MeshJson(Mesh()), Path({{0, -10}})}},
      {"two meshes", {MeshJson(Mesh()), MeshJson(other), Path({{0, -10}, {20, -10}})}},
  };
  for (const auto& [name, art] : docs) {
    SCOPED_TRACE(name);
    Session s(DocJson(art));
    const json before = s.written();
    EXPECT_EQ(s.runWritten(kCmdSewPath), before);
  }
}

}  // namespace
}  // namespace lbtest
