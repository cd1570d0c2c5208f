// Segment numbering at every kind of vertex and the vertex and segment walk
// orders, on fresh and on edited meshes.
#include <tuple>
#include <utility>

#include "EngineTest.h"

using namespace lbtest;

namespace {

// Directions present at a vertex, in segment-index order, as strings.
std::vector<std::string> dirsOf(const MeshSuites& s, AIMeshVertexIterator v) {
  static const char* names[2][2] = {{"I+", "I-"}, {"J+", "J-"}};
  std::vector<std::string> out;
  const int n = s.vtx->CountSegments(v);
  for (int k = 0; k < n; ++k) {
    AIMeshSegmentIterator g = nullptr;
    EXPECT_EQ(s.vtx->GetSegment(v, k, &g), kNoErr);
    out.push_back(names[s.seg->GetAxis(g)][s.seg->GetSense(g)]);
    s.seg->Release(g);
  }
  return out;
}

using Strs = std::vector<std::string>;

}  // namespace

class Numbering : public EngineTest {};

TEST_F(Numbering, NodesNumberTheirSegmentsIBackJBackIForwardJForward) {
  ASSERT_EQ(s.mesh->InitCartesian(art, 3, 2), kNoErr);
  struct Case {
    int i, j;
    Strs dirs;
  };
  const Case cases[] = {
      {0, 0, {"I+", "J+"}}, {3, 0, {"I-", "J+"}}, {3, 2, {"I-", "J-"}}, {0, 2, {"J-", "I+"}},
      {1, 1, {"I-", "J-", "I+", "J+"}}, {1, 0, {"I-", "I+", "J+"}}, {0, 1, {"J-", "I+", "J+"}},
      {3, 1, {"I-", "J-", "J+"}}, {2, 2, {"I-", "J-", "I+"}},
  };
  for (const Case& c : cases) {
    AIMeshVertexIterator v = node(c.i, c.j);
    EXPECT_EQ(dirsOf(s, v), c.dirs) << "node (" << c.i << ", " << c.j << ")";
    // GetSegmentIndex agrees with the listing.
    for (size_t k = 0; k < c.dirs.size(); ++k) {
      const int axis = c.dirs[k][0] == 'J', sense = c.dirs[k][1] == '-';
      EXPECT_EQ(s.vtx->GetSegmentIndex(v, axis, sense), static_cast<int>(k));
    }
  }
  AIMeshVertexIterator corner = node(0, 0);
  EXPECT_EQ(s.vtx->GetSegmentIndex(corner, kAIMeshIAxis, kAIMeshBackward), -1);
  EXPECT_EQ(s.vtx->GetSegmentIndex(corner, kAIMeshJAxis, kAIMeshBackward), -1);
  AIMeshSegmentIterator g = nullptr;
  EXPECT_EQ(s.vtx->GetSegment(corner, 2, &g), kBadParameterErr);
}

TEST_F(Numbering, NonNodeVerticesHaveBackwardThenForwardOnTheirLine) {
  ASSERT_EQ(s.mesh->InitCartesian(art, 2, 2), kNoErr);
  // A vertex on the bottom border line (along I) and one on an inner line along J.
  for (auto [i, j, axis] : {std::tuple{0, 0, 0}, std::tuple{1, 0, 1}}) {
    AIMeshVertexIterator v = endOf(cut(i, j, axis));
    EXPECT_FALSE(s.vtx->IsNode(v));
    EXPECT_EQ(dirsOf(s, v), (axis == 0 ? Strs{"I-", "I+"} : Strs{"J-", "J+"}));
    EXPECT_EQ(s.vtx->GetSegmentIndex(v, 1 - axis, kAIMeshForward), -1);
    int ni = -1, nj = -1;
    EXPECT_EQ(s.vtx->GetNodeIndex(v, &ni, &nj), kNoErr);
    EXPECT_EQ(std::pair(ni, nj), std::pair(i, j)) << "node behind the vertex";
    // The handle on each segment is point 1 seen from the vertex.
    for (int k = 0; k < 2; ++k) {
      AIRealPoint tan{}, pts[2];
      s.vtx->GetTangent(v, k, &tan);
      s.seg->GetPoints(segment(v, k), 0, 2, pts);
      EXPECT_PT_NEAR(tan, pts[1], 0);
    }
  }
}

TEST_F(Numbering, BackwardSegmentListsPointsFromItsStart) {
  ASSERT_EQ(s.mesh->InitCartesian(art, 1, 1), kNoErr);
  Bend(m());
  AIMeshSegmentIterator fwd = segment(node(0, 0), 0);
  s.seg->InsertKnots(fwd, 0, 2);
  AIMeshSegmentIterator back = segment(node(1, 0), 0);  // I- at node (1, 0)
  EXPECT_EQ(s.seg->GetSense(back), kAIMeshBackward);
  EXPECT_EQ(s.seg->CountKnots(back), 2);
  auto pf = points(fwd), pb = points(back);
  ASSERT_EQ(pf.size(), 10u);
  ASSERT_EQ(pb.size(), 10u);
  for (size_t k = 0; k < pf.size(); ++k) EXPECT_PT_NEAR(pf[k], pb[pf.size() - 1 - k], 0) << k;
  EXPECT_TRUE(s.seg->IsEqual(fwd, back)) << "same segment in either orientation";
  s.seg->Reverse(back);
  EXPECT_EQ(s.seg->GetSense(back), kAIMeshForward);
}

using Walks = EngineTest;

// "I:i,j" or "J:i,j": the run along that axis from node (i, j).
std::string runName(int axis, int i, int j) {
  return (axis ? "J:" : "I:") + std::to_string(i) + "," + std::to_string(j);
}

TEST_F(Walks, EditedMeshKeepsRunOrderAndVisitsEveryVertexOnce) {
  ASSERT_EQ(s.mesh->InitCartesian(art, 2, 2), kNoErr);
  int32_t ni = -1, nj = -1;
  ASSERT_EQ(s.mesh->InsertU(art, 1.5, &ni), kNoErr);
  ASSERT_EQ(s.mesh->InsertV(art, 0.25, &nj), kNoErr);
  EXPECT_EQ(std::pair(ni, nj), std::pair(2, 1));
  // Two vertices on run I (1, 0) and one on run J (3, 2).
  auto addVertices = [&](int i, int j, int axis, int count) {
    AIMeshSegmentIterator g = along(node(i, j), axis);
    s.seg->InsertKnots(g, 0, count + 1);  // one knot stays a knot
    for (int k = count - 1; k >= 0; --k) EXPECT_EQ(s.seg->Split(g, k), kNoErr);
  };
  addVertices(1, 0, 0, 2);
  addVertices(3, 2, 1, 1);
  // (i, j, isNode) of every vertex in walk order.
  std::vector<std::tuple<int, int, bool>> walk, nodes;
  AIMeshVertexIterator v = nullptr;
  s.mesh->GetStartVertex(art, &v);
  for (; !s.vtx->AtEnd(v); s.vtx->Next(v)) {
    int i, j;
    s.vtx->GetNodeIndex(v, &i, &j);
    walk.emplace_back(i, j, s.vtx->IsNode(v));
  }
  EXPECT_EQ(s.vtx->Next(v), kIterAtEndErr);
  s.vtx->Release(v);
  int nonNodes = 0;
  for (auto& w : walk) (std::get<2>(w) ? nodes.push_back(w) : void(++nonNodes));
  EXPECT_EQ(nonNodes, 3);
  ASSERT_EQ(nodes.size(), 16u);
  for (size_t k = 0; k < nodes.size(); ++k)
    EXPECT_EQ(nodes[k], std::tuple(static_cast<int>(k % 4), static_cast<int>(k / 4), true));
  // The vertices of run I (1, 0) come right after node (1, 0).
  EXPECT_EQ(std::vector(walk.begin() + 1, walk.begin() + 5),
            (std::vector<std::tuple<int, int, bool>>{{1, 0, true}, {1, 0, false}, {1, 0, false}, {2, 0, true}}));
  // Runs in walk order, each forward, with their segment counts: every run
  // along I (i fastest), then every run along J (j fastest).
  std::vector<std::pair<std::string, int>> runs, expected;
  AIMeshSegmentIterator g = nullptr;
  s.mesh->GetStartSegment(art, &g);
  for (; !s.seg->AtEnd(g); s.seg->Next(g)) {
    EXPECT_EQ(s.seg->GetSense(g), kAIMeshForward);
    AIMeshVertexIterator a = nullptr;
    s.seg->GetStart(g, &a);
    int i, j;
    s.vtx->GetNodeIndex(a, &i, &j);
    if (s.vtx->IsNode(a)) runs.emplace_back(runName(s.seg->GetAxis(g), i, j), 0);
    ++runs.back().second;
    s.vtx->Release(a);
  }
  s.seg->Release(g);
  for (int j = 0; j <= 3; ++j)
    for (int i = 0; i < 3; ++i) expected.emplace_back(runName(0, i, j), i == 1 && j == 0 ? 3 : 1);
  for (int i = 0; i <= 3; ++i)
    for (int j = 0; j < 3; ++j) expected.emplace_back(runName(1, i, j), i == 3 && j == 2 ? 2 : 1);
  EXPECT_EQ(runs, expected);
  EXPECT_EQ(m().vertexCount(), 19u);
}

TEST_F(Walks, LineStepsCrossNodesAndVerticesAndStopAtTheBorder) {
  ASSERT_EQ(s.mesh->InitCartesian(art, 2, 1), kNoErr);
  cut(0, 0, kAIMeshIAxis);
  // +I from (0, 0): vertex, node (1, 0), node (2, 0), then the end.
  AIMeshVertexIterator v = node(0, 0);
  std::vector<bool> kinds;
  while (!s.vtx->AtEnd(v)) {
    kinds.push_back(s.vtx->IsNode(v));
    s.vtx->NextI(v);
  }
  EXPECT_EQ(kinds, (std::vector<bool>{true, false, true, true}));
  EXPECT_EQ(s.vtx->NextI(v), kIterAtEndErr);
  AIMeshVertexIterator w = node(0, 0);
  s.vtx->PrevJ(w);
  EXPECT_TRUE(s.vtx->AtEnd(w)) << "stepping off the mesh";
  // NextOnAxis walks the whole line through nodes; PrevOnAxis comes back.
  AIMeshSegmentIterator h = segment(node(0, 0), 0);
  int count = 1;
  while (true) {
    s.seg->NextOnAxis(h);
    if (s.seg->AtEnd(h)) break;
    ++count;
  }
  EXPECT_EQ(count, 3);
  AIMeshVertexIterator last = node(2, 0);
  h = segment(last, 0);  // I- at (2, 0)
  s.seg->PrevOnAxis(h);  // the segment before it going I-: none
  EXPECT_TRUE(s.seg->AtEnd(h));
  h = segment(last, 0);
  s.seg->Reverse(h);  // now (1, 0) -> (2, 0), forward
  s.seg->PrevOnAxis(h);
  AIMeshVertexIterator st = nullptr;
  s.seg->GetStart(h, &st);
  EXPECT_FALSE(s.vtx->IsNode(st)) << "previous segment starts at the vertex";
  s.vtx->Release(st);
}

TEST_F(Walks, PatchesGoIFastestWithCornersInOrder) {
  ASSERT_EQ(s.mesh->InitCartesian(art, 2, 2), kNoErr);
  AIMeshPatchIterator p = nullptr;
  s.mesh->GetStartPatch(art, &p);
  std::vector<std::pair<int, int>> cells;
  while (!s.patch->AtEnd(p)) {
    int32_t i, j;
    s.patch->GetCell(p, &i, &j);
    cells.emplace_back(i, j);
    AIMeshVertexIterator c = nullptr;
    s.patch->GetCorner(p, 2, &c);
    int32_t ci, cj;
    s.vtx->GetNodeIndex(c, &ci, &cj);
    EXPECT_EQ(std::pair(ci, cj), std::pair(i + 1, j + 1));
    s.vtx->Release(c);
    s.patch->Next(p);
  }
  s.patch->Release(p);
  EXPECT_EQ(cells, (std::vector<std::pair<int, int>>{{0, 0}, {1, 0}, {0, 1}, {1, 1}}));
}
