// The five selection commands, driven through the loaded module and the
// dispatcher as the panel drives them (ids 150, 151, 155, 156, 160).
#include <gtest/gtest.h>

#include "support/Session.h"

using namespace lbtest;

namespace {

// Non-node vertices around the region of nodes (1, 1) and (3, 2) of a
// 4 x 4 mesh: two on columns inside it, one on a row inside it, and three
// outside it.
std::map<Inner, bool> AroundRegion() {
  return {{{2, 1, 'J'}, false},   // line i = 2, between j = 1 and 2: inside
          {{1, 1, 'J'}, false},   // line i = 1, inside
          {{1, 2, 'I'}, false},   // line j = 2, between i = 1 and 2: inside
          {{0, 1, 'J'}, false},   // line i = 0: outside
          {{3, 1, 'I'}, false},   // line j = 1, between i = 3 and 4: outside
          {{2, 2, 'J'}, false}};  // line i = 2, between j = 2 and 3: outside
}

// ---- Select all region vertices ------------------------------------------

TEST(SelectRegion, FillsTheRectangleOfTheSelectionWithNodesAndVertices) {
  for (bool alt : {false, true})
    for (bool ctrl : {false, true}) {
      Session s({Coded(4, 4, {{1, 1}, {3, 2}}, AroundRegion())});
      s.run(kCmdSelRegion, alt, ctrl);
      const MeshState m = s.mesh(0);
      EXPECT_EQ(m.selectedNodes(), Rect(1, 3, 1, 2));
      EXPECT_TRUE(m.innerSel(2, 1, 'J'));
      EXPECT_TRUE(m.innerSel(1, 1, 'J'));
      EXPECT_TRUE(m.innerSel(1, 2, 'I'));
      EXPECT_FALSE(m.innerSel(0, 1, 'J'));
      EXPECT_FALSE(m.innerSel(3, 1, 'I'));
      EXPECT_FALSE(m.innerSel(2, 2, 'J'));
    }
}

TEST(SelectRegion, LoneVertexGrowsToItsCellSide) {
  Session s({Coded(3, 3, {}, {{{2, 1, 'J'}, true}, {{2, 1, 'I'}, false}})});
  s.run(kCmdSelRegion, false, false);
  const MeshState m = s.mesh(0);
  EXPECT_EQ(m.selectedNodes(), (NodeSet{{2, 1}, {2, 2}}));
  EXPECT_TRUE(m.innerSel(2, 1, 'J'));
  EXPECT_FALSE(m.innerSel(2, 1, 'I'));
}

TEST(SelectRegion, EmptySelectionStaysEmptyAndWholeMeshStaysWhole) {
  // Nothing selected leaves nothing selected; a whole-mesh selection
  // stays whole.
  MeshSpec whole = Coded(2, 2, {});
  whole.whole = true;
  Session s({Coded(3, 3, {}, {{{1, 1, 'I'}, true}}), whole});
  s.run(kCmdSel, false, false);  // keeps nodes only: nothing is left in the top mesh
  ASSERT_TRUE(s.mesh(0).selectedNodes().empty());
  ASSERT_FALSE(s.mesh(0).innerSel(1, 1, 'I'));
  s.run(kCmdSelRegion, false, false);
  EXPECT_TRUE(s.mesh(0).selectedNodes().empty());
  EXPECT_EQ(s.mesh(1).selectedNodes(), Rect(0, 2, 0, 2));
}

TEST(SelectRegion, MeshStaysSelectedSoTheNextCommandStillSeesIt) {
  Session s({Coded(4, 4, {{1, 1}, {2, 2}})});
  s.run(kCmdSelRegion, false, false);
  EXPECT_TRUE(s.mesh(0).artSelected());
  s.run(kCmdSelShift, false, false);  // shift along I
  EXPECT_EQ(s.mesh(0).selectedNodes(), Rect(2, 3, 1, 2));
}

// ---- Select region perimeter --------------------------------------------

TEST(SelectPerimeter, RingRowsOnlyOrColumnsOnly) {
  struct Case {
    bool alt, ctrl;
    NodeSet nodes;
    bool rowVertex, columnVertex;
  };
  // Region (1..3, 1..3) of a 4 x 4 mesh; a vertex on row j = 1 between
  // i = 1 and 2 and one on column i = 3 between j = 2 and 3.
  NodeSet ring, rows, cols;
  for (int k = 1; k <= 3; ++k) {
    rows.insert({k, 1}), rows.insert({k, 3});
    cols.insert({1, k}), cols.insert({3, k});
  }
  ring = rows;
  ring.insert(cols.begin(), cols.end());
  const Case cases[] = {{false, false, ring, true, true},
                        {true, false, rows, true, false},
                        {false, true, cols, false, true},
                        {true, true, ring, true, true}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "alt " << c.alt << " ctrl " << c.ctrl);
    Session s({Coded(4, 4, {{1, 1}, {3, 3}, {2, 2}}, {{{1, 1, 'I'}, false}, {{3, 2, 'J'}, false}, {{2, 1, 'J'}, true}})});
    s.run(kCmdSelPerim, c.alt, c.ctrl);
    const MeshState m = s.mesh(0);
    EXPECT_EQ(m.selectedNodes(), c.nodes);
    EXPECT_EQ(m.innerSel(1, 1, 'I'), c.rowVertex);
    EXPECT_EQ(m.innerSel(3, 2, 'J'), c.columnVertex);
    EXPECT_FALSE(m.innerSel(2, 1, 'J'));  // inside the ring: deselected
  }
}

TEST(SelectPerimeter, RowsOfATwoRowRegionLeaveItsColumnVerticesOut) {
  Session s({Coded(4, 4, {{1, 1}, {3, 2}}, AroundRegion())});
  s.run(kCmdSelPerim, true, false);
  const MeshState m = s.mesh(0);
  EXPECT_EQ(m.selectedNodes(), Rect(1, 3, 1, 2));
  EXPECT_TRUE(m.innerSel(1, 2, 'I'));
  EXPECT_FALSE(m.innerSel(2, 1, 'J'));
  EXPECT_FALSE(m.innerSel(1, 1, 'J'));
}

TEST(SelectPerimeter, SingleNodeStaysAlone) {
  Session s({Coded(3, 3, {{2, 1}})});
  s.run(kCmdSelPerim, false, false);
  EXPECT_EQ(s.mesh(0).selectedNodes(), (NodeSet{{2, 1}}));
}

// ---- Select all vertices in selected rows/columns ------------------------

TEST(SelectCross, WholeRowAndColumnThroughASelectedNode) {
  struct Case {
    bool alt, ctrl, row, column;
  };
  for (const Case c : {Case{false, false, true, true}, Case{true, false, true, false},
                       Case{false, true, false, true}, Case{true, true, true, true}}) {
    SCOPED_TRACE(testing::Message() << "alt " << c.alt << " ctrl " << c.ctrl);
    Session s({Coded(4, 4, {{2, 3}}, {{{2, 0, 'J'}, false}, {{0, 3, 'I'}, false}, {{1, 1, 'I'}, false}})});
    s.run(kCmdSelCross, c.alt, c.ctrl);
    const MeshState m = s.mesh(0);
    NodeSet want;
    for (int k = 0; k <= 4; ++k) {
      if (c.row) want.insert({k, 3});
      if (c.column) want.insert({2, k});
    }
    EXPECT_EQ(m.selectedNodes(), want);
    EXPECT_EQ(m.innerSel(2, 0, 'J'), c.column);  // edge to edge, outside the region
    EXPECT_EQ(m.innerSel(0, 3, 'I'), c.row);
    EXPECT_FALSE(m.innerSel(1, 1, 'I'));
  }
}

TEST(SelectCross, SelectedVertexMarksOnlyItsOwnLine) {
  // A vertex on row j = 1 between i = 0 and 1: with columns only nothing
  // is left; with rows, that whole row.
  {
    Session cols({Coded(3, 2, {}, {{{0, 1, 'I'}, true}})});
    cols.run(kCmdSelCross, false, true);
    EXPECT_TRUE(cols.mesh(0).selectedNodes().empty());
    EXPECT_FALSE(cols.mesh(0).innerSel(0, 1, 'I'));
  }
  Session rows({Coded(3, 2, {}, {{{0, 1, 'I'}, true}})});
  rows.run(kCmdSelCross, false, false);
  EXPECT_EQ(rows.mesh(0).selectedNodes(), Rect(0, 3, 1, 1));
  EXPECT_TRUE(rows.mesh(0).innerSel(0, 1, 'I'));
}

TEST(SelectCross, RowsBetweenSelectedRowsStayOut) {
  // Nodes on rows 0 and 2 only: row 1 lies in the region but is unmarked.
  Session s({Coded(2, 3, {{0, 0}, {2, 2}})});
  s.run(kCmdSelCross, true, false);
  NodeSet want = Rect(0, 2, 0, 0);
  for (const Node& n : Rect(0, 2, 2, 2)) want.insert(n);
  EXPECT_EQ(s.mesh(0).selectedNodes(), want);
}

// ---- Shift selected nodes ------------------------------------------------

TEST(ShiftSelection, WrapsWithinEachLineInAllFourDirections) {
  struct Case {
    bool alt, ctrl;
    NodeSet want;
  };
  // I = 3, J = 2; (3, 0) and (1, 2) selected.
  const Case cases[] = {{false, false, {{0, 0}, {2, 2}}},
                        {true, false, {{2, 0}, {0, 2}}},
                        {false, true, {{3, 1}, {1, 0}}},
                        {true, true, {{3, 2}, {1, 1}}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "alt " << c.alt << " ctrl " << c.ctrl);
    Session s({Coded(3, 2, {{3, 0}, {1, 2}}, {{{0, 0, 'I'}, true}, {{1, 1, 'J'}, false}})});
    s.run(kCmdSelShift, c.alt, c.ctrl);
    const MeshState m = s.mesh(0);
    EXPECT_EQ(m.selectedNodes(), c.want);
    // Non-node vertices are neither read nor changed.
    EXPECT_TRUE(m.innerSel(0, 0, 'I'));
    EXPECT_FALSE(m.innerSel(1, 1, 'J'));
    // Paint never moves.
    for (int j = 0; j <= 2; ++j)
      for (int i = 0; i <= 3; ++i) EXPECT_EQ(m.colorFrom(i, j), m.nodeNo(i, j));
  }
}

TEST(ShiftSelection, FullLineStaysFullAndShiftingBackRestores) {
  const NodeSet start{{0, 1}, {1, 1}, {2, 1}, {1, 0}};
  Session s({Coded(2, 2, start)});
  s.run(kCmdSelShift, false, false);
  EXPECT_EQ(s.mesh(0).selectedNodes(), (NodeSet{{0, 1}, {1, 1}, {2, 1}, {2, 0}}));
  s.run(kCmdSelShift, true, false);
  EXPECT_EQ(s.mesh(0).selectedNodes(), start);
}

// ---- Select nodes / vertices ---------------------------------------------

TEST(SelectNodesOrVertices, KeepsOneKindAndOnlyEverDeselects) {
  const std::map<Inner, bool> inner{{{0, 0, 'I'}, true}, {{1, 0, 'J'}, true}, {{1, 1, 'I'}, false}};
  {
    Session nodes({Coded(2, 2, {{0, 0}, {2, 2}}, inner)});
    nodes.run(kCmdSel, false, false);
    EXPECT_EQ(nodes.mesh(0).selectedNodes(), (NodeSet{{0, 0}, {2, 2}}));
    EXPECT_FALSE(nodes.mesh(0).innerSel(0, 0, 'I'));
    EXPECT_FALSE(nodes.mesh(0).innerSel(1, 0, 'J'));
    EXPECT_FALSE(nodes.mesh(0).innerSel(1, 1, 'I'));
  }

  Session verts({Coded(2, 2, {{0, 0}, {2, 2}}, inner)});
  verts.run(kCmdSel, true, false);
  EXPECT_TRUE(verts.mesh(0).selectedNodes().empty());
  EXPECT_TRUE(verts.mesh(0).innerSel(0, 0, 'I'));
  EXPECT_TRUE(verts.mesh(0).innerSel(1, 0, 'J'));
  EXPECT_FALSE(verts.mesh(0).innerSel(1, 1, 'I'));
}

TEST(SelectNodesOrVertices, InvertTwiceRestoresAndCtrlAltDoesNothing) {
  const std::map<Inner, bool> inner{{{0, 0, 'I'}, true}, {{1, 1, 'I'}, false}};
  Session s({Coded(2, 1, {{0, 0}, {1, 1}}, inner)});
  s.run(kCmdSel, false, true);
  MeshState m = s.mesh(0);
  EXPECT_EQ(m.selectedNodes(), (NodeSet{{1, 0}, {2, 0}, {0, 1}, {2, 1}}));
  EXPECT_FALSE(m.innerSel(0, 0, 'I'));
  EXPECT_TRUE(m.innerSel(1, 1, 'I'));
  s.run(kCmdSel, false, true);
  m = s.mesh(0);
  EXPECT_EQ(m.selectedNodes(), (NodeSet{{0, 0}, {1, 1}}));
  EXPECT_TRUE(m.innerSel(0, 0, 'I'));
  EXPECT_FALSE(m.innerSel(1, 1, 'I'));
  s.run(kCmdSel, true, true);
  EXPECT_EQ(s.mesh(0).selectedNodes(), (NodeSet{{0, 0}, {1, 1}}));
}

// ---- Several meshes ---------------------------------------------------------

TEST(SelectSeveralMeshes, EachSelectedMeshUsesItsOwnRegionAndOthersAreLeftAlone) {
  MeshSpec off = Coded(2, 2, {});
  off.artSelected = false;
  MeshSpec b = Coded(3, 3, {{0, 2}, {1, 3}});
  b.x0 = 50;
  Session s({Coded(3, 3, {{1, 0}, {2, 1}}), off, b});
  s.run(kCmdSelRegion, false, false);
  EXPECT_EQ(s.mesh(0).selectedNodes(), Rect(1, 2, 0, 1));
  EXPECT_TRUE(s.mesh(1).selectedNodes().empty());
  EXPECT_FALSE(s.mesh(1).artSelected());
  EXPECT_EQ(s.mesh(2).selectedNodes(), Rect(0, 1, 2, 3));
}

}  // namespace
