// The selection analysis shared by the commands: region, line marks,
// selected sides and corners, the line walk, and what happens to them when
// a host call fails half-way.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "MeshSelection.h"
#include "Operations.h"
#include "select/Select.h"
#include "support/Session.h"

using namespace lbtest;

namespace {

// A region as (minI, maxI, minJ, maxJ).
using Region = std::array<int, 4>;
Region Of(const CMeshRegion& r) { return {r.m_nMinI, r.m_nMaxI, r.m_nMinJ, r.m_nMaxJ}; }

// Host calls that fail on purpose: the n-th call (counting from 0) of the
// wrapped member reports an error; -1 never fails.
int gFailAt = -1;
int gCalls = 0;
AIErr (*gRealStep)(AIMeshVertexIterator) = nullptr;
AIErr FailingStep(AIMeshVertexIterator v) {
  if (gCalls++ == gFailAt) return kCantHappenErr;
  return gRealStep(v);
}
AIArtHandle gFailMesh = nullptr;
AIErr (*gRealGetSize)(AIArtHandle, int32_t*, int32_t*) = nullptr;
AIErr FailingGetSize(AIArtHandle m, int32_t* i, int32_t* j) {
  if (m == gFailMesh) return kCantHappenErr;
  return gRealGetSize(m, i, j);
}

class MeshSelectionTest : public LinkedTest {
 protected:
  void SetUp() override {
    gFailAt = -1;
    gCalls = 0;
    gFailMesh = nullptr;
  }
  // The at-th call of the vertex suite's `step` (NextI or NextJ) fails.
  void FailStep(decltype(&AIMeshVertexIteratorSuite::NextI) step, int at) {
    gRealStep = vertex().*step;
    vertex().*step = FailingStep;
    gFailAt = at;
  }
};

// ---- Region of selected nodes and of all selected vertices -------------

std::array<int, 4> A(const int* v) { return {v[0], v[1], v[2], v[3]}; }

// One mesh: the region of its selected nodes (GetMeshReg), the region of
// all its selected vertices (GetMeshRegIncVert) and the line marks.
struct RegionCase {
  const char* what;
  MeshRecipe mesh;
  Region nodes, vertices;
  std::vector<int> li, lj;  // marks of lines i = 0..I and j = 0..J
  bool empty;               // the nodes-only count (bNodesOnly) is empty
};

TEST_F(MeshSelectionTest, RegionsAndLineMarks) {
  const RegionCase cases[] = {
      {"two nodes span the same region either way", Coded(5, 4, {{1, 3}, {4, 0}}), {1, 4, 0, 3}, {1, 4, 0, 3}, {0, 1, 0, 0, 1, 0}, {1, 0, 0, 1, 0}, false},
      {"a lone vertex counts as its cell side", Coded(4, 3, {}, {{{2, 1, 'J'}, true}, {{0, 0, 'I'}, false}}), {4, 0, 3, 0}, {2, 2, 1, 2}, {0, 0, 1, 0, 0}, {0, 0, 0, 0}, true},
      {"a vertex on a row marks only that row", Coded(4, 3, {{0, 3}}, {{{2, 1, 'I'}, true}}), {0, 0, 3, 3}, {0, 3, 1, 3}, {1, 0, 0, 0, 0}, {0, 1, 0, 1}, false},
      // Two vertices before a selected node on its line: the node's index
      // is still 2, not the number of vertices passed.
      {"node index counts only nodes", Coded(3, 3, {{1, 2}}, {{{1, 0, 'J'}, false}, {{1, 1, 'J'}, false}}), {1, 1, 2, 2}, {1, 1, 2, 2}, {0, 1, 0, 0}, {0, 0, 1, 0}, false},
      {"whole mesh", CodedWhole(3, 2), {0, 3, 0, 2}, {0, 3, 0, 2}, {1, 1, 1, 1}, {1, 1, 1}, false},
      // A selected mesh with no selected vertex: an empty region, no marks.
      {"nothing selected", Coded(2, 2), {2, 0, 2, 0}, {2, 0, 2, 0}, {0, 0, 0}, {0, 0, 0}, true},
  };
  for (const RegionCase& c : cases) {
    SCOPED_TRACE(c.what);
    Load({c.mesh});
    CMeshRegion nodes, verts, only;
    std::vector<int> li(c.li.size(), 0), lj(c.lj.size(), 0);
    ASSERT_EQ(nodes.GetMeshReg(Mesh(0)), 0);
    ASSERT_EQ(verts.GetMeshRegIncVert(Mesh(0), 0, li.data(), lj.data()), 0);
    ASSERT_EQ(only.GetMeshRegIncVert(Mesh(0), 1, nullptr, nullptr), 0);
    EXPECT_EQ(Of(nodes), c.nodes);
    EXPECT_EQ(Of(verts), c.vertices);
    EXPECT_EQ(li, c.li);
    EXPECT_EQ(lj, c.lj);
    EXPECT_EQ(only.IsEmpty(), c.empty);
  }
}

// ---- Selected sides and corners -----------------------------------------

struct SidesCase {
  const char* what;
  MeshRecipe mesh;
  std::array<int, 4> sides, corners;
};

TEST_F(MeshSelectionTest, SelectedSidesAndCorners) {
  const SidesCase cases[] = {
      {"a one-cell side needs both corners", Coded(1, 1, {{0, 0}, {1, 0}}), {1, 0, 0, 0}, {1, 1, 0, 0}},
      {"corners alone do not select a long side", Coded(3, 2, {{0, 0}, {3, 0}}), {0, 0, 0, 0}, {1, 1, 0, 0}},
      // One inner node of each side in turn: side 0 is j = 0, side 1
      // i = I, side 2 j = J, side 3 i = 0.
      {"side 0", Coded(3, 2, {{2, 0}}), {1, 0, 0, 0}, {0, 0, 0, 0}},
      {"side 1", Coded(3, 2, {{3, 1}}), {0, 1, 0, 0}, {0, 0, 0, 0}},
      {"side 2", Coded(3, 2, {{1, 2}}), {0, 0, 1, 0}, {0, 0, 0, 0}},
      {"side 3", Coded(3, 2, {{0, 1}}), {0, 0, 0, 1}, {0, 0, 0, 0}},
      {"a selected vertex on a short side", Coded(1, 1, {}, {{{1, 0, 'J'}, true}, {{0, 0, 'J'}, false}}), {0, 1, 0, 0}, {0, 0, 0, 0}},
      // Side 1 has both its corners, side 3 only corner 3; sides 0 and 2 are long.
      {"a one-cell-high mesh pairs corners on its short sides", Coded(3, 1, {{3, 0}, {3, 1}, {0, 1}}), {0, 1, 0, 0}, {0, 1, 1, 1}},
      {"nothing selected", Coded(2, 2), {0, 0, 0, 0}, {0, 0, 0, 0}},
  };
  for (const SidesCase& c : cases) {
    SCOPED_TRACE(c.what);
    Load({c.mesh});
    int sides[4] = {9, 9, 9, 9}, corners[4] = {9, 9, 9, 9};
    ASSERT_EQ(ZF_GetSelSidesAndNodes(Mesh(0), sides, corners), 0);
    EXPECT_EQ(A(sides), c.sides);
    EXPECT_EQ(A(corners), c.corners);
  }
}

// ---- The line walk ------------------------------------------------------

TEST_F(MeshSelectionTest, WalkVisitsEveryVertexOfTheLineInOrder) {
  // Line j = 1 of a 3 x 2 mesh with a vertex in its first and last cells.
  Load({Coded(3, 2, {}, {{{0, 1, 'I'}, false}, {{2, 1, 'I'}, false}})});
  std::vector<int> nodeFlags;
  std::vector<Node> nodeIdx;
  WalkLine(Mesh(0), 0, 1, 3, 1, kAIMeshIAxis, [&](AIMeshVertexIterator v) {
    const bool node = lb::s::sMeshVertexIterator->IsNode(v);
    nodeFlags.push_back(node);
    if (node) {
      int32_t i = -1, j = -1;
      lb::s::sMeshVertexIterator->GetNodeIndex(v, &i, &j);
      nodeIdx.push_back({i, j});
    }
  });
  EXPECT_EQ(nodeFlags, (std::vector<int>{1, 0, 1, 1, 0, 1}));
  EXPECT_EQ(nodeIdx, (std::vector<Node>{{0, 1}, {1, 1}, {2, 1}, {3, 1}}));

  int inner = 0;
  WalkLine(
      Mesh(0), 1, 1, 3, 1, kAIMeshIAxis, [&](AIMeshVertexIterator) { ++inner; }, false);
  EXPECT_EQ(inner, 2);  // (2, 1) and the vertex after it; not the two ends

  int single = 0;
  WalkLine(Mesh(0), 2, 0, 2, 0, kAIMeshJAxis, [&](AIMeshVertexIterator) { ++single; });
  EXPECT_EQ(single, 1);
  WalkLine(
      Mesh(0), 2, 0, 2, 0, kAIMeshJAxis, [&](AIMeshVertexIterator) { ++single; }, false);
  EXPECT_EQ(single, 1);
}

TEST_F(MeshSelectionTest, WalkStopsWhenTheVisitorSaysSoAndReleasesItsIterators) {
  Load({Coded(4, 1, {})});
  int seen = 0;
  WalkLine(Mesh(0), 0, 0, 4, 0, kAIMeshIAxis, [&](AIMeshVertexIterator) { return ++seen < 2; });
  EXPECT_EQ(seen, 2);
}

TEST_F(MeshSelectionTest, WalkToANodeOffTheLineThrowsInsteadOfRunningOn) {
  Load({Coded(2, 2, {})});
  int seen = 0;
  EXPECT_THROW(WalkLine(Mesh(0), 0, 0, 1, 1, kAIMeshIAxis, [&](AIMeshVertexIterator) { ++seen; }), int);
  EXPECT_EQ(seen, 3);
}

// ---- Host failures --------------------------------------------------------

TEST_F(MeshSelectionTest, FailedStepLeavesRegionUnwrittenButKeepsMarks) {
  // Node (0, 1) is met on the first line walked; the walk of line i = 1
  // then fails.
  Load({Coded(2, 2, {{0, 1}, {2, 2}})});
  FailStep(&AIMeshVertexIteratorSuite::NextJ, 2);
  std::vector<int> li(3, 0), lj(3, 0);
  CMeshRegion r;
  r.m_nMinI = 7, r.m_nMaxI = 8, r.m_nMinJ = 9, r.m_nMaxJ = 10;
  EXPECT_EQ(r.GetMeshRegIncVert(Mesh(0), 0, li.data(), lj.data()), 1);
  EXPECT_EQ(Of(r), (Region{7, 8, 9, 10}));
  EXPECT_EQ(std::make_pair(li[0], lj[1]), std::make_pair(1, 1));
}

TEST_F(MeshSelectionTest, FailedStepLeavesSidesAndCornersUnwritten) {
  Load({Coded(3, 3, {{0, 0}, {1, 0}})});
  for (int at = 0; at < 4; ++at) {
    SCOPED_TRACE(at);
    FailStep(&AIMeshVertexIteratorSuite::NextI, at);
    gCalls = 0;
    int sides[4] = {5, 5, 5, 5}, corners[4] = {6, 6, 6, 6};
    EXPECT_EQ(ZF_GetSelSidesAndNodes(Mesh(0), sides, corners), 1);
    EXPECT_EQ(A(sides), (std::array<int, 4>{5, 5, 5, 5}));
    EXPECT_EQ(A(corners), (std::array<int, 4>{6, 6, 6, 6}));
    vertex().NextI = gRealStep;
  }
}

TEST_F(MeshSelectionTest, FailedSizeLeavesRegionUnwritten) {
  Load({Coded(2, 2, {{1, 1}})});
  gRealGetSize = mesh().GetSize;
  mesh().GetSize = FailingGetSize;
  gFailMesh = Mesh(0);
  CMeshRegion r;
  r.m_nMinI = 3;
  EXPECT_EQ(r.GetMeshReg(Mesh(0)), 1);
  EXPECT_EQ(r.m_nMinI, 3);
}

TEST_F(MeshSelectionTest, SelectionWorkerStoppedMidWalkKeepsWhatItSelected) {
  // _Full first measures the region (lines i = 0..2 along J: six steps),
  // clears the selection, then selects along lines i = 0..2. Step 9 along
  // J is the second step of line i = 1, so (0, *), (1, 0) and (1, 1) are
  // already selected when it fails.
  Load({Coded(2, 2, {{0, 0}, {2, 2}})});
  FailStep(&AIMeshVertexIteratorSuite::NextJ, 9);
  EXPECT_EQ(lb::sel::_Full(Mesh(0), false), 1);
  EXPECT_EQ(State(0).selectedNodes(), (NodeSet{{0, 0}, {0, 1}, {0, 2}, {1, 0}, {1, 1}}));
}

}  // namespace
