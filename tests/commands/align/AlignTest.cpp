// "Horizontal alignment", "Vertical alignment" and the half turn of
// "Handles 90 deg" (Ctrl+Alt) through the panel dispatcher.
#include <gtest/gtest.h>

#include "support/Engine.h"

namespace lbtest {
namespace {

using lb::host::GradientMesh;
using lb::host::VertexId;

// Id 148 lines the vertices up in h ("Horizontal alignment"), id 147 in v.
struct AlignCase {
  const char* name;
  int id;
  bool alt, ctrl;
  double target;  // the common coordinate expected
};

// Mesh A: nodes (0, 0) and (2, 0) selected at h = 10 and 30, v = 5;
// mesh B: node (0, 0) selected at h = 50, v = 45 and (0, 1) at v = 55.
std::vector<MeshRecipe> TwoMeshes() {
  MeshRecipe a;
  a.x0 = 10, a.y0 = 5;
  a.selected = {{0, 0}, {2, 0}};
  MeshRecipe b;
  b.x0 = 50, b.y0 = 45;
  b.selected = {{0, 0}, {0, 1}};
  return {a, b};
}

TEST(AlignTest, CommonCoordinateAcrossMeshesForEveryVariant) {
  const AlignCase cases[] = {
      {"h centre", kCmdAlignVert, false, false, 30},  {"h larger", kCmdAlignVert, true, false, 50},
      {"h smaller", kCmdAlignVert, false, true, 10},  {"v centre", kCmdAlignHor, false, false, 30},
      {"v larger", kCmdAlignHor, true, false, 55},    {"v smaller", kCmdAlignHor, false, true, 5},
  };
  for (const AlignCase& c : cases) {
    SCOPED_TRACE(c.name);
    const auto recipes = TwoMeshes();
    Session s(recipes);
    s.run(c.id, c.alt, c.ctrl);
    const bool h = c.id == kCmdAlignVert;
    for (size_t k = 0; k < 2; ++k) {
      const GradientMesh& m = s.engine(k);
      const MeshRecipe& d = recipes[k];
      for (int i = 0; i <= 2; ++i)
        for (int j = 0; j <= 2; ++j) {
          const AIRealPoint p0 = d.P(i, j), p = NodeP(m, i, j);
          if (!d.selected.count({i, j})) {
            EXPECT_PT_NEAR(p, p0, 0.0);
            continue;
          }
          const AIRealPoint want = h ? AIRealPoint{c.target, p0.v} : AIRealPoint{p0.h, c.target};
          EXPECT_PT_NEAR(p, want, 0.0) << k << ": " << i << "," << j;
          // Each handle moves by the node's own displacement.
          for (int dir = 0; dir < 4; ++dir) {
            if (!m.hasSegment(m.node(i, j), dir)) continue;
            const AIRealPoint h0 = d.H(i, j, dir);
            EXPECT_PT_NEAR(Tan(m, i, j, dir), (AIRealPoint{h0.h + want.h - p0.h, h0.v + want.v - p0.v}), 1e-12);
          }
        }
      // The unselected neighbour keeps its handle towards a moved node.
      EXPECT_PT_NEAR(Tan(m, 1, 0, IB), d.H(1, 0, IB), 0.0);
    }
  }
}

TEST(AlignTest, NonNodeVerticesMoveToo) {
  MeshRecipe d;
  d.selected = {{2, 2}};
  d.inner[{0, 0, 'I'}] = true;  // at (5, 0)
  Session s(d);
  s.run(kCmdAlignVert, false, false);  // h centre of 5 and 20
  const GradientMesh& m = s.engine();
  EXPECT_PT_NEAR(NodeP(m, 2, 2), (AIRealPoint{12.5, 20}), 0.0);
  bool seen = false;
  for (VertexId v : m.vertices()) {
    if (m.isNode(v)) continue;
    seen = true;
    EXPECT_PT_NEAR(m.point(v), (AIRealPoint{12.5, 0}), 0.0);
  }
  EXPECT_TRUE(seen);
  EXPECT_PT_NEAR(NodeP(m, 0, 0), (AIRealPoint{0, 0}), 0.0);
}

TEST(AlignTest, MeshWithoutSelectedVertexAddsNothingToTheRange) {
  MeshRecipe a;
  a.selected = {{0, 0}, {2, 0}};  // h = 0 and 20
  MeshRecipe b;
  b.x0 = 100;
  b.whole = false;  // art selected, no vertex
  Session s({a, b});
  s.run(kCmdAlignVert, true, false);
  EXPECT_PT_NEAR(NodeP(s.engine(0), 0, 0), (AIRealPoint{20, 0}), 0.0);
  EXPECT_PT_NEAR(NodeP(s.engine(1), 0, 0), (AIRealPoint{100, 0}), 0.0);
}

// The half turn: which nodes' handles are mirrored through their node.
struct TurnCase {
  const char* name;
  int I, J;
  NodeSet selected;
  std::vector<HandleKey> turned;
};

TEST(Turn180Test, OnlyHandlesCrossingASelectedSingleLine) {
  const TurnCase cases[] = {
      {"column i = 2", 4, 3, {{2, 0}, {2, 1}, {2, 3}}, {{2, 0, IF}, {2, 0, IB}, {2, 1, IF}, {2, 1, IB}, {2, 3, IF}, {2, 3, IB}}},
      {"column i = 0", 4, 3, {{0, 1}, {0, 2}}, {{0, 1, IF}, {0, 2, IF}}},
      {"column i = I", 2, 2, {{2, 0}, {2, 2}}, {{2, 0, IB}, {2, 2, IB}}},
      {"row j = 1", 3, 2, {{0, 1}, {3, 1}}, {{0, 1, JF}, {0, 1, JB}, {3, 1, JF}, {3, 1, JB}}},
      {"row j = J", 3, 2, {{1, 2}, {2, 2}}, {{1, 2, JB}, {2, 2, JB}}},
      {"single node", 3, 2, {{1, 1}}, {}},
      {"two by two", 3, 2, {{1, 1}, {2, 2}}, {}},
  };
  for (const TurnCase& c : cases) {
    SCOPED_TRACE(c.name);
    MeshRecipe d;
    d.I = c.I, d.J = c.J;
    d.warped = true;
    d.selected = c.selected;
    Session s(d);
    const GradientMesh before = s.engine();
    s.run(kCmdHandles90, true, true);
    const GradientMesh& m = s.engine();
    const std::set<HandleKey> turned(c.turned.begin(), c.turned.end());
    for (int i = 0; i <= c.I; ++i)
      for (int j = 0; j <= c.J; ++j) {
        const AIRealPoint p = NodeP(before, i, j);
        EXPECT_PT_NEAR(NodeP(m, i, j), p, 0.0);
        for (int dir = 0; dir < 4; ++dir) {
          if (!m.hasSegment(m.node(i, j), dir)) continue;
          const AIRealPoint h = Tan(before, i, j, dir);
          const AIRealPoint want = turned.count({i, j, dir}) ? AIRealPoint{p.h + (p.h - h.h), p.v + (p.v - h.v)} : h;
          EXPECT_PT_NEAR(Tan(m, i, j, dir), want, 0.0) << i << "," << j << " dir " << dir;
        }
      }
  }
}

}  // namespace
}  // namespace lbtest
