// The four colour transforms through the loaded module (ids 136, 137, 138,
// 149): node by node, which node's colour and which node's opacity every
// node carries afterwards, and which nodes end selected.
#include <gtest/gtest.h>

#include <functional>

#include "support/Session.h"

using namespace lbtest;

namespace {

// Where each node's paint is expected to come from.
using Source = std::function<Node(int, int)>;
const Source kUnmoved = [](int i, int j) { return Node{i, j}; };

struct Boxes {
  bool color, opacity;
};
const Boxes kAllBoxes[] = {{true, false}, {false, true}, {false, false}, {true, true}};

// Checks every node: its colour comes from src when colour takes part,
// otherwise it is its own; likewise its opacity.
void ExpectPaint(const MeshState& m, const Source& src, Boxes b) {
  for (int j = 0; j <= m.J; ++j)
    for (int i = 0; i <= m.I; ++i) {
      const Node s = src(i, j);
      const int from = m.nodeNo(s.first, s.second);
      const int own = m.nodeNo(i, j);
      EXPECT_EQ(m.colorFrom(i, j), b.color ? from : own) << "colour of node (" << i << ", " << j << ")";
      EXPECT_EQ(m.opacityFrom(i, j), b.opacity ? from : own) << "opacity of node (" << i << ", " << j << ")";
    }
}

std::string Trace(bool alt, bool ctrl, Boxes b) {
  return testing::PrintToString(std::make_tuple(alt, ctrl, b.color, b.opacity));
}

// ---- Reflect ---------------------------------------------------------------

TEST(ReflectColors, SwapsPairsWithASelectedNodeAndIgnoresAlt) {
  // Region (0..3, 0..1); on each row the outer pair holds a selected node,
  // the inner pair none.
  const Source src = [](int i, int j) { return Node{i == 0 ? 3 : i == 3 ? 0 : i, j}; };
  for (const Boxes b : kAllBoxes)
    for (bool alt : {false, true}) {
      SCOPED_TRACE(Trace(alt, false, b));
      Session s({Coded(3, 1, {{0, 0}, {3, 1}})});
      s.run(kCmdColorReflect, alt, false, b.color, b.opacity);
      const MeshState m = s.mesh(0);
      ExpectPaint(m, src, b);
      EXPECT_EQ(m.selectedNodes(), (NodeSet{{0, 0}, {3, 0}, {0, 1}, {3, 1}}));
    }
}

TEST(ReflectColors, MirrorsAnOffsetRegionAlongJ) {
  // Region (1..2, 1..4) of a 3 x 5 mesh; on column 2 the inner pair has no
  // selected node and stays.
  Session s({Coded(3, 5, {{1, 1}, {1, 2}, {2, 4}})});
  s.run(kCmdColorReflect, false, true, true, false);
  const MeshState m = s.mesh(0);
  ExpectPaint(
      m,
      [](int i, int j) {
        if (i < 1 || i > 2 || j < 1 || j > 4) return Node{i, j};
        if (i == 2 && (j == 2 || j == 3)) return Node{i, j};
        return Node{i, 5 - j};
      },
      {true, false});
  EXPECT_EQ(m.selectedNodes(), (NodeSet{{1, 1}, {1, 2}, {1, 3}, {1, 4}, {2, 1}, {2, 4}}));
}

TEST(ReflectColors, WholeMeshMirrorsEverything) {
  Session s({CodedWhole(2, 3)});
  s.run(kCmdColorReflect, true, true, true, true);
  const MeshState m = s.mesh(0);
  ExpectPaint(m, [](int i, int j) { return Node{i, 3 - j}; }, {true, true});
  EXPECT_EQ(m.selectedNodes(), Rect(0, 2, 0, 3));
}

TEST(ReflectColors, OneNodeWideSpanChangesNothing) {
  Session s({Coded(3, 2, {{2, 0}, {2, 2}})});
  s.run(kCmdColorReflect, false, false, true, true);
  const MeshState m = s.mesh(0);
  ExpectPaint(m, kUnmoved, {true, true});
  EXPECT_EQ(m.selectedNodes(), (NodeSet{{2, 0}, {2, 2}}));
}

// ---- Rotate ----------------------------------------------------------------

TEST(RotateColors, NonSquareRegionTurnsHalfWayEitherDirection) {
  // Region (1..3, 1..2) of a 4 x 3 mesh: 3 x 2 nodes.
  for (bool alt : {false, true}) {
    SCOPED_TRACE(alt);
    Session s({Coded(4, 3, Rect(1, 3, 1, 2))});
    s.run(kCmdColorRotate, alt, false, true, true);
    const MeshState m = s.mesh(0);
    ExpectPaint(
        m,
        [](int i, int j) {
          if (i < 1 || i > 3 || j < 1 || j > 2) return Node{i, j};
          return Node{4 - i, 3 - j};
        },
        {true, true});
    EXPECT_EQ(m.selectedNodes(), Rect(1, 3, 1, 2));
  }
}

TEST(RotateColors, HalfTurnLeavesUnselectedPairsAlone) {
  // Only the two corners of the 3 x 2 region: the middle column's pair and
  // the other diagonal have no selected node.
  Session s({Coded(4, 3, {{1, 1}, {3, 2}})});
  s.run(kCmdColorRotate, false, false, true, false);
  const MeshState m = s.mesh(0);
  ExpectPaint(
      m,
      [](int i, int j) {
        if (i == 1 && j == 1) return Node{3, 2};
        if (i == 3 && j == 2) return Node{1, 1};
        return Node{i, j};
      },
      {true, false});
  EXPECT_EQ(m.selectedNodes(), (NodeSet{{1, 1}, {3, 2}}));
}

TEST(RotateColors, SquareRegionTurnsAQuarterAndKeepsItsCentre) {
  // Region (1..3, 2..4) of a 4 x 5 mesh, n = 2. Clockwise the paint at
  // local (a, b) goes to (b, n - a); counterclockwise to (n - b, a).
  for (bool clockwise : {true, false}) {
    SCOPED_TRACE(clockwise);
    Session s({Coded(4, 5, Rect(1, 3, 2, 4))});
    s.run(kCmdColorRotate, !clockwise, false, true, false);
    const MeshState m = s.mesh(0);
    ExpectPaint(
        m,
        [&](int i, int j) {
          if (i < 1 || i > 3 || j < 2 || j > 4) return Node{i, j};
          const int x = i - 1, y = j - 2, n = 2;
          const Node local = clockwise ? Node{n - y, x} : Node{y, n - x};
          return Node{1 + local.first, 2 + local.second};
        },
        {true, false});
    EXPECT_EQ(m.colorFrom(2, 3), m.nodeNo(2, 3));
    EXPECT_EQ(m.selectedNodes(), Rect(1, 3, 2, 4));
  }
}

TEST(RotateColors, OddSquareMovesEveryNodeExactlyOnce) {
  // 4 x 4 nodes (n = 3): four cycles must cover all sixteen.
  Session s({CodedWhole(3, 3)});
  s.run(kCmdColorRotate, false, false, true, true);
  ExpectPaint(s.mesh(0), [](int i, int j) { return Node{3 - j, i}; }, {true, true});
  // Four quarter turns bring everything back.
  for (int k = 0; k < 3; ++k) s.run(kCmdColorRotate, false, false, true, true);
  ExpectPaint(s.mesh(0), kUnmoved, {true, true});
}

TEST(RotateColors, CyclesWithoutASelectedNodeStay) {
  // Corners (0, 0) and (2, 2) of a 2 x 2 mesh: the corner cycle turns, the
  // cycle of side midpoints does not.
  Session s({Coded(2, 2, {{0, 0}, {2, 2}})});
  s.run(kCmdColorRotate, false, false, true, false);
  const MeshState m = s.mesh(0);
  ExpectPaint(
      m,
      [](int i, int j) {
        if (i == 1 || j == 1) return Node{i, j};
        return Node{2 - j, i};
      },
      {true, false});
  EXPECT_EQ(m.selectedNodes(), (NodeSet{{0, 0}, {2, 0}, {2, 2}, {0, 2}}));
}

TEST(RotateColors, CtrlDoesNothingAndASingleNodeKeepsItsPaint) {
  for (bool alt : {false, true}) {
    Session s({Coded(3, 3, Rect(0, 1, 0, 1))});
    s.run(kCmdColorRotate, alt, true, true, true);
    ExpectPaint(s.mesh(0), kUnmoved, {true, true});
    EXPECT_EQ(s.mesh(0).selectedNodes(), Rect(0, 1, 0, 1));
  }

  Session one({Coded(3, 3, {{2, 1}})});
  one.run(kCmdColorRotate, false, false, true, true);
  ExpectPaint(one.mesh(0), kUnmoved, {true, true});
  EXPECT_EQ(one.mesh(0).selectedNodes(), (NodeSet{{2, 1}}));
}

// ---- Shift -------------------------------------------------------------------

// Region (1..3, 1..3) of a 4 x 4 mesh from (1, 1), (3, 1) and (2, 3): row
// j = 2 holds no selected node; every column does.
const NodeSet kShiftSel{{1, 1}, {3, 1}, {2, 3}};

TEST(ShiftColors, RowsMoveCyclicallyOneNodeAndUnselectedRowsStay) {
  for (const Boxes b : kAllBoxes)
    for (bool alt : {false, true}) {
      SCOPED_TRACE(Trace(alt, false, b));
      Session s({Coded(4, 4, kShiftSel)});
      s.run(kCmdColorShift, alt, false, b.color, b.opacity);
      const MeshState m = s.mesh(0);
      ExpectPaint(
          m,
          [&](int i, int j) {
            if (i < 1 || i > 3 || (j != 1 && j != 3)) return Node{i, j};
            if (!alt) return Node{i == 1 ? 3 : i - 1, j};
            return Node{i == 3 ? 1 : i + 1, j};
          },
          b);
      NodeSet want = Rect(1, 3, 1, 1);
      for (const Node& n : Rect(1, 3, 3, 3)) want.insert(n);
      EXPECT_EQ(m.selectedNodes(), want);
    }
}

TEST(ShiftColors, ColumnsMoveAlongJ) {
  for (bool alt : {false, true}) {
    SCOPED_TRACE(alt);
    Session s({Coded(4, 4, kShiftSel)});
    s.run(kCmdColorShift, alt, true, true, true);
    const MeshState m = s.mesh(0);
    ExpectPaint(
        m,
        [&](int i, int j) {
          if (i < 1 || i > 3 || j < 1 || j > 3) return Node{i, j};
          if (!alt) return Node{i, j == 1 ? 3 : j - 1};
          return Node{i, j == 3 ? 1 : j + 1};
        },
        {true, true});
    EXPECT_EQ(m.selectedNodes(), Rect(1, 3, 1, 3));
  }
}

TEST(ShiftColors, OneNodeLinesOnlyGetSelected) {
  Session s({Coded(3, 2, {{2, 0}, {2, 2}})});
  s.run(kCmdColorShift, false, false, true, true);
  const MeshState m = s.mesh(0);
  ExpectPaint(m, kUnmoved, {true, true});
  EXPECT_EQ(m.selectedNodes(), (NodeSet{{2, 0}, {2, 2}}));
}

// ---- Spread ------------------------------------------------------------------

TEST(SpreadColors, EachLineTakesItsFirstNodeOrDropsOut) {
  // Region (1..3, 1..2) of a 4 x 3 mesh from (1, 1) and (3, 2).
  struct Case {
    bool alt, ctrl;
    std::map<Node, Node> moved;  // node -> source, inside the region
    NodeSet selected;
  };
  const Case cases[] = {
      // I: row 1 from (1, 1); row 2's first node is unselected.
      {false, false, {{{2, 1}, {1, 1}}, {{3, 1}, {1, 1}}}, Rect(1, 3, 1, 1)},
      // I': row 2 from (3, 2); row 1 drops out.
      {true, false, {{{1, 2}, {3, 2}}, {{2, 2}, {3, 2}}}, Rect(1, 3, 2, 2)},
      // J: column 1 from (1, 1).
      {false, true, {{{1, 2}, {1, 1}}}, Rect(1, 1, 1, 2)},
      // J': column 3 from (3, 2).
      {true, true, {{{3, 1}, {3, 2}}}, Rect(3, 3, 1, 2)},
  };
  for (const Case& c : cases)
    for (const Boxes b : kAllBoxes) {
      SCOPED_TRACE(Trace(c.alt, c.ctrl, b));
      Session s({Coded(4, 3, {{1, 1}, {3, 2}})});
      s.run(kCmdColorSpread, c.alt, c.ctrl, b.color, b.opacity);
      const MeshState m = s.mesh(0);
      ExpectPaint(
          m,
          [&](int i, int j) {
            auto it = c.moved.find({i, j});
            return it == c.moved.end() ? Node{i, j} : it->second;
          },
          b);
      EXPECT_EQ(m.selectedNodes(), c.selected);
    }
}

TEST(SpreadColors, OneRowRunsDownWholeColumnsWhateverTheKeys) {
  // Row j = 2 from i = 1 to 3, (2, 2) not selected: columns 1 and 3 take
  // the paint of their row node over the whole grid, outside the region.
  for (bool alt : {false, true})
    for (bool ctrl : {false, true}) {
      SCOPED_TRACE(Trace(alt, ctrl, {true, true}));
      Session s({Coded(4, 3, {{1, 2}, {3, 2}})});
      s.run(kCmdColorSpread, alt, ctrl, true, true);
      const MeshState m = s.mesh(0);
      ExpectPaint(m, [](int i, int j) { return (i == 1 || i == 3) ? Node{i, 2} : Node{i, j}; }, {true, true});
      NodeSet want = Rect(1, 1, 0, 3);
      for (const Node& n : Rect(3, 3, 0, 3)) want.insert(n);
      EXPECT_EQ(m.selectedNodes(), want);
    }
}

TEST(SpreadColors, OneColumnRunsAlongWholeRows) {
  for (bool alt : {false, true})
    for (bool ctrl : {false, true}) {
      SCOPED_TRACE(Trace(alt, ctrl, {true, false}));
      Session s({Coded(3, 2, {{2, 0}, {2, 2}})});
      s.run(kCmdColorSpread, alt, ctrl, true, false);
      const MeshState m = s.mesh(0);
      ExpectPaint(m, [](int i, int j) { return j == 1 ? Node{i, j} : Node{2, j}; }, {true, false});
      NodeSet want = Rect(0, 3, 0, 0);
      for (const Node& n : Rect(0, 3, 2, 2)) want.insert(n);
      EXPECT_EQ(m.selectedNodes(), want);
    }
}

TEST(SpreadColors, SingleNodeSpreadsAcrossItsRowOrItsColumn) {
  {
    Session row({Coded(3, 3, {{1, 2}})});
    row.run(kCmdColorSpread, false, false, true, true);
    ExpectPaint(row.mesh(0), [](int i, int j) { return j == 2 ? Node{1, 2} : Node{i, j}; }, {true, true});
    EXPECT_EQ(row.mesh(0).selectedNodes(), Rect(0, 3, 2, 2));
  }

  Session col({Coded(3, 3, {{1, 2}})});
  col.run(kCmdColorSpread, true, true, true, true);
  ExpectPaint(col.mesh(0), [](int i, int j) { return i == 1 ? Node{1, 2} : Node{i, j}; }, {true, true});
  EXPECT_EQ(col.mesh(0).selectedNodes(), Rect(1, 1, 0, 3));
}

// ---- What every transform shares ---------------------------------------------

TEST(ColorTransforms, MeshWithoutSelectedNodesIsLeftAsItWas) {
  const int ids[] = {kCmdColorShift, kCmdColorReflect, kCmdColorRotate, kCmdColorSpread};
  for (int id : ids)
    for (bool ctrl : {false, true}) {
      SCOPED_TRACE(testing::Message() << "id " << id << " ctrl " << ctrl);
      Session s({Coded(2, 2, {}, {{{0, 1, 'I'}, true}})});
      s.run(id, false, ctrl, true, true);
      const MeshState m = s.mesh(0);
      ExpectPaint(m, kUnmoved, {true, true});
      EXPECT_TRUE(m.selectedNodes().empty());
      EXPECT_TRUE(m.innerSel(0, 1, 'I'));
    }
}

TEST(ColorTransforms, SeveralMeshesEachUseTheirOwnRegion) {
  MeshSpec off = CodedWhole(3, 1);
  off.artSelected = false;
  MeshSpec second = Coded(2, 2, {{0, 1}, {2, 1}});
  second.x0 = 40;
  Session s({Coded(3, 1, {{1, 0}, {3, 0}}), off, second});
  s.run(kCmdColorReflect, false, false, true, true);
  // Top mesh: region (1..3, 0..0), pair (1, 0)-(3, 0).
  ExpectPaint(
      s.mesh(0),
      [](int i, int j) { return (j == 0 && (i == 1 || i == 3)) ? Node{4 - i, j} : Node{i, j}; },
      {true, true});
  ExpectPaint(s.mesh(1), kUnmoved, {true, true});
  ExpectPaint(s.mesh(2), [](int i, int j) { return j == 1 ? Node{2 - i, j} : Node{i, j}; }, {true, true});
}

}  // namespace
