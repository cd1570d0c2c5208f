// The selection analysis shared by the commands: region, line marks,
// selected sides and corners, the line walk, and what happens to them when
// a host call fails half-way.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "MeshSelection.h"
#include "Operations.h"
#include "color/ColorTransforms.h"
#include "select/Select.h"
#include "support/Session.h"

using namespace lbtest;

namespace {

struct Region {
  int minI, maxI, minJ, maxJ;
  bool operator==(const Region&) const = default;
};
Region Of(const CMeshRegion& r) { return {r.m_nMinI, r.m_nMaxI, r.m_nMinJ, r.m_nMaxJ}; }
std::ostream& operator<<(std::ostream& o, const Region& r) {
  return o << "(" << r.minI << ", " << r.maxI << ", " << r.minJ << ", " << r.maxJ << ")";
}

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
  void FailStepJ(int at) {
    gRealStep = vertex().NextJ;
    vertex().NextJ = FailingStep;
    gFailAt = at;
  }
  void FailStepI(int at) {
    gRealStep = vertex().NextI;
    vertex().NextI = FailingStep;
    gFailAt = at;
  }
};

// ---- Region of selected nodes and of all selected vertices -------------

TEST_F(MeshSelectionTest, TwoNodesSpanTheSameRegionInBothOperations) {
  Load({Coded(5, 4, {{1, 3}, {4, 0}})});
  CMeshRegion a, b;
  ASSERT_EQ(a.GetMeshReg(Mesh(0)), 0);
  ASSERT_EQ(b.GetMeshRegIncVert(Mesh(0), 0, nullptr, nullptr), 0);
  EXPECT_EQ(Of(a), (Region{1, 4, 0, 3}));
  EXPECT_EQ(Of(b), (Region{1, 4, 0, 3}));
  EXPECT_TRUE(NoLeaks());
}

TEST_F(MeshSelectionTest, LoneNonNodeVertexCountsAsItsCellSide) {
  // The vertex on line i = 2 between nodes (2, 1) and (2, 2).
  Load({Coded(4, 3, {}, {{{2, 1, 'J'}, true}, {{0, 0, 'I'}, false}})});
  CMeshRegion nodes;
  ASSERT_EQ(nodes.GetMeshReg(Mesh(0)), 0);
  EXPECT_TRUE(nodes.IsEmpty());
  EXPECT_EQ(Of(nodes), (Region{4, 0, 3, 0}));

  std::vector<int> li(5, 0), lj(4, 0);
  CMeshRegion verts;
  ASSERT_EQ(verts.GetMeshRegIncVert(Mesh(0), 0, li.data(), lj.data()), 0);
  EXPECT_EQ(Of(verts), (Region{2, 2, 1, 2}));
  EXPECT_EQ(li, (std::vector<int>{0, 0, 1, 0, 0}));
  EXPECT_EQ(lj, (std::vector<int>{0, 0, 0, 0}));

  CMeshRegion only;
  ASSERT_EQ(only.GetMeshRegIncVert(Mesh(0), 1, nullptr, nullptr), 0);
  EXPECT_TRUE(only.IsEmpty());
  EXPECT_TRUE(NoLeaks());
}

TEST_F(MeshSelectionTest, VertexOnARowMarksOnlyThatRow) {
  // On line j = 1 between nodes (2, 1) and (3, 1), plus node (0, 3).
  Load({Coded(4, 3, {{0, 3}}, {{{2, 1, 'I'}, true}})});
  std::vector<int> li(5, 0), lj(4, 0);
  CMeshRegion r;
  ASSERT_EQ(r.GetMeshRegIncVert(Mesh(0), 0, li.data(), lj.data()), 0);
  EXPECT_EQ(Of(r), (Region{0, 3, 1, 3}));
  EXPECT_EQ(li, (std::vector<int>{1, 0, 0, 0, 0}));
  EXPECT_EQ(lj, (std::vector<int>{0, 1, 0, 1}));
}

TEST_F(MeshSelectionTest, NodeIndexCountsOnlyNodesAlongALine) {
  // Two vertices on the same line before a selected node: the node's index
  // must still be 2, not the number of vertices passed.
  Load({Coded(3, 3, {{1, 2}}, {{{1, 0, 'J'}, false}, {{1, 1, 'J'}, false}})});
  std::vector<int> li(4, 0), lj(4, 0);
  CMeshRegion r;
  ASSERT_EQ(r.GetMeshRegIncVert(Mesh(0), 0, li.data(), lj.data()), 0);
  EXPECT_EQ(Of(r), (Region{1, 1, 2, 2}));
  EXPECT_EQ(lj, (std::vector<int>{0, 0, 1, 0}));
}

TEST_F(MeshSelectionTest, WholeMeshSelectionIsTheWholeGrid) {
  MeshSpec s = Coded(3, 2, {});
  s.whole = true;
  Load({s});
  CMeshRegion a, b;
  std::vector<int> li(4, 0), lj(3, 0);
  ASSERT_EQ(a.GetMeshReg(Mesh(0)), 0);
  ASSERT_EQ(b.GetMeshRegIncVert(Mesh(0), 1, li.data(), lj.data()), 0);
  EXPECT_EQ(Of(a), (Region{0, 3, 0, 2}));
  EXPECT_EQ(Of(b), (Region{0, 3, 0, 2}));
  EXPECT_EQ(li, (std::vector<int>{1, 1, 1, 1}));
  EXPECT_EQ(lj, (std::vector<int>{1, 1, 1}));
}

TEST_F(MeshSelectionTest, NothingSelectedGivesAnEmptyRegionAndNoMarks) {
  // A selected mesh whose only selected node is then deselected.
  Load({Coded(2, 2, {{1, 1}})});
  {
    SelectionRef sel = GetSelectionRef(Mesh(0));
    VertexRef v = GetNodeRef(Mesh(0), 1, 1);
    ASSERT_EQ(lb::s::sMeshSelection->SelectVertex(sel, v, false), kNoErr);
    ASSERT_TRUE(lb::s::sMeshSelection->IsEmpty(sel));
  }
  std::vector<int> li(3, 0), lj(3, 0);
  CMeshRegion r;
  ASSERT_EQ(r.GetMeshRegIncVert(Mesh(0), 0, li.data(), lj.data()), 0);
  EXPECT_EQ(Of(r), (Region{2, 0, 2, 0}));
  EXPECT_EQ(li, (std::vector<int>{0, 0, 0}));
  EXPECT_EQ(lj, (std::vector<int>{0, 0, 0}));
  int sides[4] = {9, 9, 9, 9}, corners[4] = {9, 9, 9, 9};
  ASSERT_EQ(ZF_GetSelSidesAndNodes(Mesh(0), sides, corners), 0);
  EXPECT_EQ((std::array<int, 4>{sides[0], sides[1], sides[2], sides[3]}), (std::array<int, 4>{0, 0, 0, 0}));
  EXPECT_EQ((std::array<int, 4>{corners[0], corners[1], corners[2], corners[3]}),
            (std::array<int, 4>{0, 0, 0, 0}));
}

// ---- Selected sides and corners -----------------------------------------

std::array<int, 4> A(const int* v) { return {v[0], v[1], v[2], v[3]}; }

TEST_F(MeshSelectionTest, OneCellMeshSideNeedsBothCorners) {
  Load({Coded(1, 1, {{0, 0}, {1, 0}})});
  int sides[4], corners[4];
  ASSERT_EQ(ZF_GetSelSidesAndNodes(Mesh(0), sides, corners), 0);
  EXPECT_EQ(A(corners), (std::array<int, 4>{1, 1, 0, 0}));
  EXPECT_EQ(A(sides), (std::array<int, 4>{1, 0, 0, 0}));
  EXPECT_TRUE(NoLeaks());
}

TEST_F(MeshSelectionTest, CornersAloneDoNotSelectALongSide) {
  Load({Coded(3, 2, {{0, 0}, {3, 0}})});
  int sides[4], corners[4];
  ASSERT_EQ(ZF_GetSelSidesAndNodes(Mesh(0), sides, corners), 0);
  EXPECT_EQ(A(corners), (std::array<int, 4>{1, 1, 0, 0}));
  EXPECT_EQ(A(sides), (std::array<int, 4>{0, 0, 0, 0}));
}

TEST_F(MeshSelectionTest, SidesAreNumberedRoundTheMesh) {
  // One interior node of each side in turn: side 0 is j = 0, side 1 is
  // i = I, side 2 is j = J, side 3 is i = 0.
  const Node inner[4] = {{2, 0}, {3, 1}, {1, 2}, {0, 1}};
  for (int k = 0; k < 4; ++k) {
    Load({Coded(3, 2, {inner[k]})});
    int sides[4];
    ASSERT_EQ(ZF_GetSelSidesAndNodes(Mesh(0), sides, nullptr), 0);
    std::array<int, 4> want{0, 0, 0, 0};
    want[k] = 1;
    EXPECT_EQ(A(sides), want) << "side " << k;
  }
}

TEST_F(MeshSelectionTest, NonNodeVertexOnAShortSideSelectsIt) {
  // A 1 x 1 mesh whose side 1 (i = 1) carries a selected vertex, corners
  // unselected; side 3 has an unselected one.
  Load({Coded(1, 1, {}, {{{1, 0, 'J'}, true}, {{0, 0, 'J'}, false}})});
  int sides[4], corners[4];
  ASSERT_EQ(ZF_GetSelSidesAndNodes(Mesh(0), sides, corners), 0);
  EXPECT_EQ(A(sides), (std::array<int, 4>{0, 1, 0, 0}));
  EXPECT_EQ(A(corners), (std::array<int, 4>{0, 0, 0, 0}));
}

TEST_F(MeshSelectionTest, OneCellHighMeshUsesCornerPairsForItsShortSides) {
  Load({Coded(3, 1, {{3, 0}, {3, 1}, {0, 1}})});
  int sides[4];
  ASSERT_EQ(ZF_GetSelSidesAndNodes(Mesh(0), sides, nullptr), 0);
  // Side 1 has both corners; side 3 only corner 3; sides 0 and 2 are long.
  EXPECT_EQ(A(sides), (std::array<int, 4>{0, 1, 0, 0}));
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
  EXPECT_TRUE(NoLeaks());
}

TEST_F(MeshSelectionTest, WalkStopsWhenTheVisitorSaysSoAndReleasesItsIterators) {
  Load({Coded(4, 1, {})});
  int seen = 0;
  WalkLine(Mesh(0), 0, 0, 4, 0, kAIMeshIAxis, [&](AIMeshVertexIterator) { return ++seen < 2; });
  EXPECT_EQ(seen, 2);
  EXPECT_TRUE(NoLeaks());
}

TEST_F(MeshSelectionTest, WalkToANodeOffTheLineThrowsInsteadOfRunningOn) {
  Load({Coded(2, 2, {})});
  int seen = 0;
  EXPECT_THROW(WalkLine(Mesh(0), 0, 0, 1, 1, kAIMeshIAxis, [&](AIMeshVertexIterator) { ++seen; }), int);
  EXPECT_EQ(seen, 3);
  EXPECT_TRUE(NoLeaks());
}

// ---- Host failures --------------------------------------------------------

TEST_F(MeshSelectionTest, FailedStepLeavesRegionUnwrittenButKeepsMarks) {
  // Node (0, 1) is met on the first line walked; the walk of line i = 1
  // then fails.
  Load({Coded(2, 2, {{0, 1}, {2, 2}})});
  FailStepJ(2);
  std::vector<int> li(3, 0), lj(3, 0);
  CMeshRegion r;
  r.m_nMinI = 7, r.m_nMaxI = 8, r.m_nMinJ = 9, r.m_nMaxJ = 10;
  EXPECT_EQ(r.GetMeshRegIncVert(Mesh(0), 0, li.data(), lj.data()), 1);
  EXPECT_EQ(Of(r), (Region{7, 8, 9, 10}));
  EXPECT_EQ(li[0], 1);
  EXPECT_EQ(lj[1], 1);
  EXPECT_TRUE(NoLeaks());
}

TEST_F(MeshSelectionTest, FailedStepLeavesSidesAndCornersUnwritten) {
  Load({Coded(3, 3, {{0, 0}, {1, 0}})});
  for (int at = 0; at < 4; ++at) {
    SCOPED_TRACE(at);
    FailStepI(at);
    gCalls = 0;
    int sides[4] = {5, 5, 5, 5}, corners[4] = {6, 6, 6, 6};
    EXPECT_EQ(ZF_GetSelSidesAndNodes(Mesh(0), sides, corners), 1);
    EXPECT_EQ(A(sides), (std::array<int, 4>{5, 5, 5, 5}));
    EXPECT_EQ(A(corners), (std::array<int, 4>{6, 6, 6, 6}));
    EXPECT_TRUE(NoLeaks());
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
  EXPECT_TRUE(NoLeaks());
}

// A worker that fails on one mesh gives up on it alone: the public command
// goes on with the next mesh, and nothing is left alive.
TEST_F(MeshSelectionTest, FailureOnOneMeshLeavesTheOthersToTheCommand) {
  Load({Coded(2, 1, {{0, 0}, {2, 1}}), Coded(2, 1, {{0, 0}, {2, 1}})});
  gRealGetSize = mesh().GetSize;
  mesh().GetSize = FailingGetSize;
  gFailMesh = Mesh(0);
  EXPECT_EQ(lb::color::_Flip(Mesh(0), kAIMeshIAxis), 1);
  EXPECT_EQ(lb::color::Flip(kAIMeshIAxis), 0);
  const MeshState top = State(0), below = State(1);
  EXPECT_EQ(top.colorFrom(0, 0), 0);
  EXPECT_EQ(below.colorFrom(0, 0), 2);
  EXPECT_EQ(below.colorFrom(2, 0), 0);
  EXPECT_EQ(lb::sel::_Shift(Mesh(0), 1, 0), 1);
  EXPECT_EQ(lb::sel::Shift(1, 0), 0);
  EXPECT_TRUE(State(0).selected(0, 0));
  EXPECT_TRUE(State(1).selected(1, 0));
  EXPECT_TRUE(NoLeaks());
}

TEST_F(MeshSelectionTest, SelectionWorkerStoppedMidWalkKeepsWhatItSelected) {
  // _Full first measures the region (lines i = 0..2 along J: six steps),
  // clears the selection, then selects along lines i = 0..2. Step 9 along
  // J is the second step of line i = 1, so (0, *), (1, 0) and (1, 1) are
  // already selected when it fails.
  Load({Coded(2, 2, {{0, 0}, {2, 2}})});
  FailStepJ(9);
  EXPECT_EQ(lb::sel::_Full(Mesh(0), false), 1);
  EXPECT_EQ(State(0).selectedNodes(), (NodeSet{{0, 0}, {0, 1}, {0, 2}, {1, 0}, {1, 1}}));
  EXPECT_TRUE(NoLeaks());
}

}  // namespace
