// The align buttons through the panel dispatcher: "Horizontal alignment",
// "Vertical alignment", the half turn of "Handles 90 deg" (Ctrl+Alt), and
// "Align segments along path" (id 157: a selected row or column laid onto
// a selected path, node by anchor).
#include <gtest/gtest.h>

#include <algorithm>

#include "support/Engine.h"

namespace lbtest {
namespace {

using lb::host::GradientMesh;
using lb::host::SegmentRef;
using lb::host::VertexId;

// Id 148 lines the vertices up in h ("Horizontal alignment"), id 147 in v.
struct AlignCase {
  const char* name;
  int id;
  bool alt, ctrl;
  double target;  // the common coordinate expected
};

TEST(AlignTest, CommonCoordinateAcrossMeshesForEveryVariant) {
  // Mesh A: nodes (0, 0) and (2, 0) selected at h = 10 and 30, v = 5;
  // mesh B: node (0, 0) selected at h = 50, v = 45 and (0, 1) at v = 55.
  MeshRecipe a, b;
  a.x0 = 10, a.y0 = 5;
  a.selected = {{0, 0}, {2, 0}};
  b.x0 = 50, b.y0 = 45;
  b.selected = {{0, 0}, {0, 1}};
  const std::vector<MeshRecipe> recipes = {a, b};
  const AlignCase cases[] = {
      {"h centre", kCmdAlignVert, false, false, 30},  {"h larger", kCmdAlignVert, true, false, 50},
      {"h smaller", kCmdAlignVert, false, true, 10},  {"v centre", kCmdAlignHor, false, false, 30},
      {"v larger", kCmdAlignHor, true, false, 55},    {"v smaller", kCmdAlignHor, false, true, 5},
  };
  for (const AlignCase& c : cases) {
    SCOPED_TRACE(c.name);
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

// ---- Align segments along path ------------------------------------------

struct Anchor {
  AIRealPoint p, in, out;
};

// A wave below the row j = 0 of a mesh of 10-unit cells: anchors every
// `step` units at v = -10 and -14 in turn, curved handles.
std::vector<Anchor> Wave(int count, double step = 10, bool backwards = false) {
  std::vector<Anchor> a;
  for (int k = 0; k < count; ++k) {
    const double h = step * k, v = k % 2 ? -14 : -10;
    a.push_back({{h, v}, {h - step / 3, v + 2}, {h + step / 3, v - 2}});
  }
  if (backwards) {
    std::reverse(a.begin(), a.end());
    for (Anchor& x : a) std::swap(x.in, x.out);
  }
  return a;
}

json PathJson(const std::vector<Anchor>& anchors) {
  json segs = json::array();
  for (const Anchor& a : anchors)
    segs.push_back({{"p", {a.p.h, a.p.v}}, {"in", {a.in.h, a.in.v}}, {"out", {a.out.h, a.out.v}}});
  return {{"type", "path"}, {"closed", false}, {"selected", true}, {"fill", nullptr}, {"stroke", nullptr},
          {"segments", segs}};
}

// The run from node (i, j) along I (or J) to the next node, every point.
std::vector<AIRealPoint> RunPoints(const GradientMesh& m, int i, int j, bool alongI = true) {
  return m.segmentPoints(SegmentRef{m.node(i, j), alongI ? IF : JF});
}

// The piece of the path from anchor a to anchor b: every control point.
std::vector<AIRealPoint> Piece(const std::vector<Anchor>& s, int a, int b) {
  if (a > b) {
    std::vector<AIRealPoint> back = Piece(s, b, a);
    return {back.rbegin(), back.rend()};
  }
  std::vector<AIRealPoint> pts = {s[a].p, s[a].out};
  for (int k = a + 1; k < b; ++k) pts.insert(pts.end(), {s[k].in, s[k].p, s[k].out});
  pts.insert(pts.end(), {s[b].in, s[b].p});
  return pts;
}

void ExpectPoints(const std::vector<AIRealPoint>& got, const std::vector<AIRealPoint>& want, double tol) {
  ASSERT_EQ(got.size(), want.size());
  for (size_t k = 0; k < want.size(); ++k) EXPECT_PT_NEAR(got[k], want[k], tol) << "point " << k;
}

// An I x 1 mesh of 10-unit cells with its row j = 0 selected.
MeshRecipe Row(int I) {
  MeshRecipe d;
  d.I = I, d.J = 1;
  d.selected = Rect(0, I, 0, 0);
  return d;
}

struct RowCase {
  const char* name;
  int nodes;            // row j = 0 of a (nodes - 1) x 1 mesh, all selected
  int anchors;
  std::vector<int> idx;  // anchor under node q
  bool backwards = false, alt = false;
};

// The walk starts at the row end nearer the path's first anchor; Alt
// reverses it.
TEST(SpreadAlongPathTest, RowNodesLandOnTheirAnchorsAndRunsFollowThePath) {
  const RowCase cases[] = {
      {"5 nodes, 5 anchors", 5, 5, {0, 1, 2, 3, 4}},
      {"3 nodes, 5 anchors", 3, 5, {0, 2, 4}},
      {"4 nodes, 6 anchors", 4, 6, {0, 2, 4, 5}},
      {"drawn along the row, Alt", 5, 5, {4, 3, 2, 1, 0}, false, true},
      {"drawn against the row", 5, 5, {4, 3, 2, 1, 0}, true, false},
      {"drawn against the row, Alt", 5, 5, {0, 1, 2, 3, 4}, true, true},
  };
  for (const RowCase& c : cases) {
    SCOPED_TRACE(c.name);
    const MeshRecipe d = Row(c.nodes - 1);
    const auto wave = Wave(c.anchors, 40.0 / (c.anchors - 1), c.backwards);
    Session s(DocJson({MeshJson(d), PathJson(wave)}));
    s.run(kCmdAlignPath, c.alt, false);
    ASSERT_EQ(s.artCount(), 1u) << "the path is consumed";
    const GradientMesh& m = s.engine(0);
    for (int q = 0; q < c.nodes; ++q) EXPECT_PT_NEAR(NodeP(m, q, 0), wave[c.idx[q]].p, 0.0) << q;
    for (int q = 0; q + 1 < c.nodes; ++q) {
      SCOPED_TRACE(q);
      ExpectPoints(RunPoints(m, q, 0), Piece(wave, c.idx[q], c.idx[q + 1]), 0.0);
    }
    // The row alone ends selected; the other row stays where it was.
    EXPECT_EQ(SelectedNodes(m), Rect(0, d.I, 0, 0));
    for (int i = 0; i <= d.I; ++i) EXPECT_PT_NEAR(NodeP(m, i, 1), d.P(i, 1), 0.0);
  }
}

TEST(SpreadAlongPathTest, ShortPathGetsAnchorsAtTheMiddleOfItsPieces) {
  const MeshRecipe d = Row(4);
  const auto wave = Wave(3, 20);
  Session s(DocJson({MeshJson(d), PathJson(wave)}));
  s.run(kCmdAlignPath);
  const GradientMesh& m = s.engine(0);
  // Half of each cubic piece, by de Casteljau at t = 0.5.
  auto mid = [](AIRealPoint a, AIRealPoint b) { return AIRealPoint{(a.h + b.h) / 2, (a.v + b.v) / 2}; };
  for (int k = 0; k < 2; ++k) {
    const AIRealPoint p0 = wave[k].p, p1 = wave[k].out, p2 = wave[k + 1].in, p3 = wave[k + 1].p;
    const AIRealPoint a = mid(p0, p1), b = mid(p1, p2), cc = mid(p2, p3), ab = mid(a, b), bc = mid(b, cc);
    const AIRealPoint half = mid(ab, bc);
    EXPECT_PT_NEAR(NodeP(m, 2 * k, 0), p0, 0.0);
    EXPECT_PT_NEAR(NodeP(m, 2 * k + 1, 0), half, 1e-12);
    ExpectPoints(RunPoints(m, 2 * k, 0), {p0, a, ab, half}, 1e-12);
    ExpectPoints(RunPoints(m, 2 * k + 1, 0), {half, bc, cc, p3}, 1e-12);
  }
}

TEST(SpreadAlongPathTest, ColumnWithVerticesAndKnotsBecomesThePath) {
  MeshRecipe d;
  d.I = 1, d.J = 2;
  d.selected = Rect(1, 1, 0, 2);
  d.inner[{1, 0, 'J'}] = false;  // a non-node vertex on the column
  std::vector<Anchor> path;
  for (int k = 0; k < 3; ++k) path.push_back({{20, 10.0 * k}, {21, 10.0 * k - 3}, {21, 10.0 * k + 3}});
  Session s(DocJson({MeshJson(d), PathJson(path)}));
  s.run(kCmdAlignPath);
  const GradientMesh& m = s.engine(0);
  ExpectPoints(RunPoints(m, 1, 0, false), Piece(path, 0, 1), 0.0);
  ExpectPoints(RunPoints(m, 1, 1, false), Piece(path, 1, 2), 0.0);
  for (auto v : m.vertices()) EXPECT_TRUE(m.isNode(v));
  // Crossing handles at right angles to the column, a third of the cell.
  const AIRealPoint p = NodeP(m, 1, 1), h = Tan(m, 1, 1, IB);
  EXPECT_NEAR(h.v, p.v, 1e-9);
  EXPECT_NEAR(p.h - h.h, Dist(p, NodeP(m, 0, 1)) / 3, 1e-6);
}

TEST(SpreadAlongPathTest, RectangleUsesItsSideNearestToThePath) {
  MeshRecipe d = CodedWhole(3, 2);  // 3 x 2 cells of 10 at the origin
  // A path beside side 1 (i = 3), drawn downwards.
  std::vector<Anchor> path;
  for (int k = 0; k < 3; ++k) {
    const double v = 20 - 10.0 * k;
    path.push_back({{35, v}, {35, v + 3}, {35, v - 3}});
  }
  Session s(DocJson({MeshJson(d), PathJson(path)}));
  s.run(kCmdAlignPath);
  const GradientMesh& m = s.engine(0);
  for (int j = 0; j <= 2; ++j) EXPECT_PT_NEAR(NodeP(m, 3, j), (AIRealPoint{35, 10.0 * j}), 0.0) << j;
  EXPECT_PT_NEAR(NodeP(m, 0, 0), (AIRealPoint{0, 0}), 0.0);
  EXPECT_EQ(SelectedNodes(m), Rect(3, 3, 0, 2));
}

TEST(SpreadAlongPathTest, CtrlTurnsTheCrossingHandlesToTheOtherSide) {
  const MeshRecipe d = Row(4);
  std::vector<AIRealPoint> plain, turned;
  for (bool ctrl : {false, true}) {
    Session s(DocJson({MeshJson(d), PathJson(Wave(5))}));
    s.run(kCmdAlignPath, false, ctrl);
    const GradientMesh& m = s.engine(0);
    for (int i = 0; i <= 4; ++i) {
      const AIRealPoint p = NodeP(m, i, 0), h = Tan(m, i, 0, JF);
      (ctrl ? turned : plain).push_back({h.h - p.h, h.v - p.v});
    }
  }
  for (int i = 0; i <= 4; ++i) {
    EXPECT_GT(plain[i].v, 0.0) << i;  // towards the row above
    EXPECT_PT_NEAR(turned[i], (AIRealPoint{-plain[i].h, -plain[i].v}), 1e-12) << i;
  }
}

TEST(SpreadAlongPathTest, UnsuitableSelectionsChangeNothing) {
  MeshRecipe d = Row(4);
  struct Case {
    const char* name;
    NodeSet selected;
    std::vector<json> paths;
  };
  const Case cases[] = {
      {"two paths", Rect(0, 4, 0, 0), {PathJson(Wave(5)), PathJson(Wave(3))}},
      {"one-anchor path", Rect(0, 4, 0, 0), {PathJson(Wave(1))}},
      {"single node", {{2, 0}}, {PathJson(Wave(5))}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    d.selected = c.selected;
    std::vector<json> arts = {MeshJson(d)};
    arts.insert(arts.end(), c.paths.begin(), c.paths.end());
    Session s(DocJson(arts));
    s.run(kCmdAlignPath);
    EXPECT_EQ(s.artCount(), arts.size());
    for (int i = 0; i <= 4; ++i) EXPECT_PT_NEAR(NodeP(s.engine(0), i, 0), d.P(i, 0), 0.0);
  }
}

}  // namespace
}  // namespace lbtest
