// The five selection commands, driven through the loaded module and the
// dispatcher as the panel drives them (ids 150, 151, 155, 156, 160).
#include <gtest/gtest.h>

#include "support/Session.h"

using namespace lbtest;

namespace {

// Non-node vertices around the region of nodes (1, 1) and (3, 2) of a
// 4 x 4 mesh: two on columns inside it, one on a row inside it (selected
// when `inside` is), and three outside it.
std::map<Inner, bool> AroundRegion(bool inside = false) {
  return {{{2, 1, 'J'}, inside},  // line i = 2, between j = 1 and 2: inside
          {{1, 1, 'J'}, inside},  // line i = 1, inside
          {{1, 2, 'I'}, inside},  // line j = 2, between i = 1 and 2: inside
          {{0, 1, 'J'}, false},   // line i = 0: outside
          {{3, 1, 'I'}, false},   // line j = 1, between i = 3 and 4: outside
          {{2, 2, 'J'}, false}};  // line i = 2, between j = 2 and 3: outside
}

// One command on one mesh: the nodes selected afterwards and the selection
// of some non-node vertices. No selection command ever moves paint.
// Modifier pairs a case holds for: bit m for mods m (bit 0 of mods Alt, bit 1 Ctrl).
constexpr int kNoKey = 1, kAlt = 2, kCtrl = 4, kCtrlAlt = 8, kAnyKeys = 15;

struct Case {
  const char* what;
  int id;
  int modsMask;
  MeshRecipe mesh;
  NodeSet nodes;
  std::map<Inner, bool> inner;
};


// Region (1..3, 1..3) of a 4 x 4 mesh; a vertex on row j = 1 between
// i = 1 and 2, one on column i = 3 between j = 2 and 3, and a selected one
// inside the ring.
const MeshRecipe kRing =
    Coded(4, 4, {{1, 1}, {3, 3}, {2, 2}}, {{{1, 1, 'I'}, false}, {{3, 2, 'J'}, false}, {{2, 1, 'J'}, true}});
const NodeSet kRingRows = Join(Rect(1, 3, 1, 1), Rect(1, 3, 3, 3)),
              kRingCols = Join(Rect(1, 1, 1, 3), Rect(3, 3, 1, 3));
// Node (2, 3) of a 4 x 4 mesh with vertices on its column, on its row and elsewhere.
const MeshRecipe kCross = Coded(4, 4, {{2, 3}}, {{{2, 0, 'J'}, false}, {{0, 3, 'I'}, false}, {{1, 1, 'I'}, false}});
// I = 3, J = 2; (3, 0) and (1, 2) selected, vertices that shifting never reads.
const MeshRecipe kShift = Coded(3, 2, {{3, 0}, {1, 2}}, {{{0, 0, 'I'}, true}, {{1, 1, 'J'}, false}});
const std::map<Inner, bool> kMixed{{{0, 0, 'I'}, true}, {{1, 0, 'J'}, true}, {{1, 1, 'I'}, false}};

const Case kCases[] = {
    // Select all region vertices: the whole rectangle, whatever the keys.
    {"region", kCmdSelRegion, kAnyKeys, Coded(4, 4, {{1, 1}, {3, 2}}, AroundRegion()), Rect(1, 3, 1, 2), AroundRegion(true)},
    {"a lone vertex grows to its cell side", kCmdSelRegion, kNoKey, Coded(3, 3, {}, {{{2, 1, 'J'}, true}, {{2, 1, 'I'}, false}}), {{2, 1}, {2, 2}}, {{{2, 1, 'J'}, true}, {{2, 1, 'I'}, false}}},
    // Select region perimeter: the ring, its rows (Alt) or its columns (Ctrl).
    {"perimeter", kCmdSelPerim, kNoKey | kCtrlAlt, kRing, Join(kRingRows, kRingCols), {{{1, 1, 'I'}, true}, {{3, 2, 'J'}, true}, {{2, 1, 'J'}, false}}},
    {"perimeter rows", kCmdSelPerim, kAlt, kRing, kRingRows, {{{1, 1, 'I'}, true}, {{3, 2, 'J'}, false}, {{2, 1, 'J'}, false}}},
    {"perimeter columns", kCmdSelPerim, kCtrl, kRing, kRingCols, {{{1, 1, 'I'}, false}, {{3, 2, 'J'}, true}, {{2, 1, 'J'}, false}}},
    {"rows of a two-row region leave its column vertices out", kCmdSelPerim, kAlt, Coded(4, 4, {{1, 1}, {3, 2}}, AroundRegion()), Rect(1, 3, 1, 2), {{{1, 2, 'I'}, true}, {{2, 1, 'J'}, false}, {{1, 1, 'J'}, false}}},
    {"perimeter of a single node", kCmdSelPerim, kNoKey, Coded(3, 3, {{2, 1}}), {{2, 1}}, {}},
    // Select all vertices in selected rows/columns, edge to edge.
    {"cross", kCmdSelCross, kNoKey | kCtrlAlt, kCross, Join(Rect(0, 4, 3, 3), Rect(2, 2, 0, 4)), {{{2, 0, 'J'}, true}, {{0, 3, 'I'}, true}, {{1, 1, 'I'}, false}}},
    {"cross rows", kCmdSelCross, kAlt, kCross, Rect(0, 4, 3, 3), {{{2, 0, 'J'}, false}, {{0, 3, 'I'}, true}, {{1, 1, 'I'}, false}}},
    {"cross columns", kCmdSelCross, kCtrl, kCross, Rect(2, 2, 0, 4), {{{2, 0, 'J'}, true}, {{0, 3, 'I'}, false}, {{1, 1, 'I'}, false}}},
    {"a selected vertex marks only its own row", kCmdSelCross, kCtrl, Coded(3, 2, {}, {{{0, 1, 'I'}, true}}), {}, {{{0, 1, 'I'}, false}}},
    {"a selected vertex's row", kCmdSelCross, kNoKey, Coded(3, 2, {}, {{{0, 1, 'I'}, true}}), Rect(0, 3, 1, 1), {{{0, 1, 'I'}, true}}},
    {"rows between selected rows stay out", kCmdSelCross, kAlt, Coded(2, 3, {{0, 0}, {2, 2}}), Join(Rect(0, 2, 0, 0), Rect(0, 2, 2, 2)), {}},
    // Shift selected nodes: wraps within each line in all four directions.
    {"shift I", kCmdSelShift, kNoKey, kShift, {{0, 0}, {2, 2}}, kShift.inner},
    {"shift I'", kCmdSelShift, kAlt, kShift, {{2, 0}, {0, 2}}, kShift.inner},
    {"shift J", kCmdSelShift, kCtrl, kShift, {{3, 1}, {1, 0}}, kShift.inner},
    {"shift J'", kCmdSelShift, kCtrlAlt, kShift, {{3, 2}, {1, 1}}, kShift.inner},
    // Select nodes / vertices: keeps one kind, only ever deselects.
    {"nodes only", kCmdSel, kNoKey, Coded(2, 2, {{0, 0}, {2, 2}}, kMixed), {{0, 0}, {2, 2}}, {{{0, 0, 'I'}, false}, {{1, 0, 'J'}, false}, {{1, 1, 'I'}, false}}},
    {"vertices only", kCmdSel, kAlt, Coded(2, 2, {{0, 0}, {2, 2}}, kMixed), {}, kMixed},
};

TEST(SelectCommands, EveryCase) {
  for (const Case& c : kCases)
    for (int mods = 0; mods < 4; ++mods) {
      if (!(c.modsMask & (1 << mods))) continue;
      SCOPED_TRACE(testing::Message() << c.what << " mods " << mods);
      Session s(c.mesh);
      s.run(c.id, mods & 1, mods & 2);
      const MeshState m = s.mesh(0);
      EXPECT_EQ(m.selectedNodes(), c.nodes);
      for (const auto& [key, selected] : c.inner) {
        const auto [i, j, axis] = key;
        EXPECT_EQ(m.innerSel(i, j, axis), selected) << "vertex on run " << axis << " from (" << i << ", " << j << ")";
      }
      for (int j = 0; j <= m.J; ++j)
        for (int i = 0; i <= m.I; ++i) EXPECT_EQ(m.colorFrom(i, j), m.nodeNo(i, j)) << "paint moved";
    }
}

TEST(SelectRegion, EmptySelectionStaysEmptyAndWholeMeshStaysWhole) {
  // Nothing selected leaves nothing selected; a whole-mesh selection
  // stays whole.
  MeshRecipe whole = Coded(2, 2, {});
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

TEST(ShiftSelection, FullLineStaysFullAndShiftingBackRestores) {
  const NodeSet start{{0, 1}, {1, 1}, {2, 1}, {1, 0}};
  Session s({Coded(2, 2, start)});
  s.run(kCmdSelShift, false, false);
  EXPECT_EQ(s.mesh(0).selectedNodes(), (NodeSet{{0, 1}, {1, 1}, {2, 1}, {2, 0}}));
  s.run(kCmdSelShift, true, false);
  EXPECT_EQ(s.mesh(0).selectedNodes(), start);
}

TEST(SelectNodesOrVertices, InvertTwiceRestores) {
  Session s({Coded(2, 1, {{0, 0}, {1, 1}}, {{{0, 0, 'I'}, true}, {{1, 1, 'I'}, false}})});
  // After each run: the selected nodes, and whether the first vertex (the
  // second one is the opposite) is selected.
  const std::pair<NodeSet, bool> steps[] = {{{{1, 0}, {2, 0}, {0, 1}, {2, 1}}, false}, {{{0, 0}, {1, 1}}, true}};
  for (const auto& [nodes, first] : steps) {
    s.run(kCmdSel, false, true);
    const MeshState m = s.mesh(0);
    EXPECT_EQ(m.selectedNodes(), nodes);
    EXPECT_EQ(m.innerSel(0, 0, 'I'), first);
    EXPECT_EQ(m.innerSel(1, 1, 'I'), !first);
  }
}

}  // namespace
