// Tests: the four colour transforms through the loaded module (Shift,
// Reflect, Rotate, Spread): node by node, which node's colour and which
// node's opacity every node carries afterwards, and which nodes end selected.
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
      const int from = m.nodeNo(s.first, s.second), own = m.nodeNo(i, j);
      EXPECT_EQ(m.colorFrom(i, j), b.color ? from : own) << "colour of node (" << i << ", " << j << ")";
      EXPECT_EQ(m.opacityFrom(i, j), b.opacity ? from : own) << "opacity of node (" << i << ", " << j << ")";
    }
}

// Inside the rectangle i0..i1 x j0..j1 the paint comes from f, elsewhere it stays.
Source Inside(int i0, int i1, int j0, int j1, std::function<Node(int, int)> f) {
  return [=](int i, int j) { return i < i0 || i > i1 || j < j0 || j > j1 ? Node{i, j} : f(i, j); };
}

// Modifier pairs a case holds for: bit m for mods m (bit 0 of mods Alt, bit 1 Ctrl).
constexpr int kNoKey = 1, kAlt = 2, kCtrl = 4, kCtrlAlt = 8, kAnyKeys = 15;

struct Case {
  const char* what;
  int id;
  int modsMask;
  MeshRecipe mesh;
  Source src;
  NodeSet selectedAfter;
};

// Region (1..3, 1..3) of a 4 x 4 mesh from (1, 1), (3, 1) and (2, 3): row
// j = 2 holds no selected node; every column does.
const NodeSet kShiftSel{{1, 1}, {3, 1}, {2, 3}};
// The quarter turn of the square (1..3, 2..4), n = 2: clockwise the paint at
// local (a, b) goes to (b, n - a); counterclockwise to (n - b, a).
Node Quarter(int i, int j, bool clockwise) {
  const int x = i - 1, y = j - 2;
  return clockwise ? Node{1 + 2 - y, 2 + x} : Node{1 + y, 2 + 2 - x};
}

const Case kCases[] = {
    // Reflect: pairs with a selected node swap; Alt does not matter.
    {"reflect I: outer pairs swap", kCmdColorReflect, kNoKey | kAlt, Coded(3, 1, {{0, 0}, {3, 1}}), [](int i, int j) { return Node{i == 0 ? 3 : i == 3 ? 0 : i, j}; }, {{0, 0}, {3, 0}, {0, 1}, {3, 1}}},
    {"reflect J of an offset region; an unselected inner pair stays", kCmdColorReflect, kCtrl, Coded(3, 5, {{1, 1}, {1, 2}, {2, 4}}), Inside(1, 2, 1, 4, [](int i, int j) { return i == 2 && (j == 2 || j == 3) ? Node{i, j} : Node{i, 5 - j}; }), {{1, 1}, {1, 2}, {1, 3}, {1, 4}, {2, 1}, {2, 4}}},
    {"reflect a whole mesh", kCmdColorReflect, kCtrlAlt, CodedWhole(2, 3), [](int i, int j) { return Node{i, 3 - j}; }, Rect(0, 2, 0, 3)},
    {"reflect a one-node span", kCmdColorReflect, kNoKey, Coded(3, 2, {{2, 0}, {2, 2}}), kUnmoved, {{2, 0}, {2, 2}}},
    // Rotate: a non-square region turns half way either direction.
    {"rotate 3 x 2 nodes", kCmdColorRotate, kNoKey | kAlt, Coded(4, 3, Rect(1, 3, 1, 2)), Inside(1, 3, 1, 2, [](int i, int j) { return Node{4 - i, 3 - j}; }), Rect(1, 3, 1, 2)},
    {"half turn leaves unselected pairs", kCmdColorRotate, kNoKey, Coded(4, 3, {{1, 1}, {3, 2}}), [](int i, int j) { return i == 1 && j == 1 ? Node{3, 2} : i == 3 && j == 2 ? Node{1, 1} : Node{i, j}; }, {{1, 1}, {3, 2}}},
    {"quarter turn clockwise keeps the centre", kCmdColorRotate, kNoKey, Coded(4, 5, Rect(1, 3, 2, 4)), Inside(1, 3, 2, 4, [](int i, int j) { return Quarter(i, j, true); }), Rect(1, 3, 2, 4)},
    {"quarter turn counterclockwise", kCmdColorRotate, kAlt, Coded(4, 5, Rect(1, 3, 2, 4)), Inside(1, 3, 2, 4, [](int i, int j) { return Quarter(i, j, false); }), Rect(1, 3, 2, 4)},
    {"odd square: every node moves once", kCmdColorRotate, kNoKey, CodedWhole(3, 3), [](int i, int j) { return Node{3 - j, i}; }, Rect(0, 3, 0, 3)},
    {"cycles without a selected node stay", kCmdColorRotate, kNoKey, Coded(2, 2, {{0, 0}, {2, 2}}), [](int i, int j) { return i == 1 || j == 1 ? Node{i, j} : Node{2 - j, i}; }, {{0, 0}, {2, 0}, {2, 2}, {0, 2}}},
    {"rotate with Ctrl or Ctrl+Alt does nothing", kCmdColorRotate, kCtrl | kCtrlAlt, Coded(3, 3, Rect(0, 1, 0, 1)), kUnmoved, Rect(0, 1, 0, 1)},
    {"rotate a single node", kCmdColorRotate, kNoKey, Coded(3, 3, {{2, 1}}), kUnmoved, {{2, 1}}},
    // Shift: rows (columns with Ctrl) move cyclically by one; rows without
    // a selected node stay.
    {"shift I", kCmdColorShift, kNoKey, Coded(4, 4, kShiftSel), [](int i, int j) { return i < 1 || i > 3 || (j != 1 && j != 3) ? Node{i, j} : Node{i == 1 ? 3 : i - 1, j}; }, Join(Rect(1, 3, 1, 1), Rect(1, 3, 3, 3))},
    {"shift I'", kCmdColorShift, kAlt, Coded(4, 4, kShiftSel), [](int i, int j) { return i < 1 || i > 3 || (j != 1 && j != 3) ? Node{i, j} : Node{i == 3 ? 1 : i + 1, j}; }, Join(Rect(1, 3, 1, 1), Rect(1, 3, 3, 3))},
    {"shift J", kCmdColorShift, kCtrl, Coded(4, 4, kShiftSel), Inside(1, 3, 1, 3, [](int i, int j) { return Node{i, j == 1 ? 3 : j - 1}; }), Rect(1, 3, 1, 3)},
    {"shift J'", kCmdColorShift, kCtrlAlt, Coded(4, 4, kShiftSel), Inside(1, 3, 1, 3, [](int i, int j) { return Node{i, j == 3 ? 1 : j + 1}; }), Rect(1, 3, 1, 3)},
    {"shift one-node lines: only selected", kCmdColorShift, kNoKey, Coded(3, 2, {{2, 0}, {2, 2}}), kUnmoved, {{2, 0}, {2, 2}}},
    // Spread: each line of region (1..3, 1..2) takes its first node, or
    // drops out when that node is not selected.
    {"spread I", kCmdColorSpread, kNoKey, Coded(4, 3, {{1, 1}, {3, 2}}), [](int i, int j) { return j == 1 && i >= 2 && i <= 3 ? Node{1, 1} : Node{i, j}; }, Rect(1, 3, 1, 1)},
    {"spread I'", kCmdColorSpread, kAlt, Coded(4, 3, {{1, 1}, {3, 2}}), [](int i, int j) { return j == 2 && i >= 1 && i <= 2 ? Node{3, 2} : Node{i, j}; }, Rect(1, 3, 2, 2)},
    {"spread J", kCmdColorSpread, kCtrl, Coded(4, 3, {{1, 1}, {3, 2}}), [](int i, int j) { return i == 1 && j == 2 ? Node{1, 1} : Node{i, j}; }, Rect(1, 1, 1, 2)},
    {"spread J'", kCmdColorSpread, kCtrlAlt, Coded(4, 3, {{1, 1}, {3, 2}}), [](int i, int j) { return i == 3 && j == 1 ? Node{3, 2} : Node{i, j}; }, Rect(3, 3, 1, 2)},
    // One row runs down whole columns, one column along whole rows,
    // whatever the keys; a single node along its row (I) or column (J').
    {"spread one row", kCmdColorSpread, kAnyKeys, Coded(4, 3, {{1, 2}, {3, 2}}), [](int i, int j) { return i == 1 || i == 3 ? Node{i, 2} : Node{i, j}; }, Join(Rect(1, 1, 0, 3), Rect(3, 3, 0, 3))},
    {"spread one column", kCmdColorSpread, kAnyKeys, Coded(3, 2, {{2, 0}, {2, 2}}), [](int i, int j) { return j == 1 ? Node{i, j} : Node{2, j}; }, Join(Rect(0, 3, 0, 0), Rect(0, 3, 2, 2))},
    {"spread one node along its row", kCmdColorSpread, kNoKey, Coded(3, 3, {{1, 2}}), [](int i, int j) { return j == 2 ? Node{1, 2} : Node{i, j}; }, Rect(0, 3, 2, 2)},
    {"spread one node along its column", kCmdColorSpread, kCtrlAlt, Coded(3, 3, {{1, 2}}), [](int i, int j) { return i == 1 ? Node{1, 2} : Node{i, j}; }, Rect(1, 1, 0, 3)},
};

TEST(ColorTransforms, EveryCaseWithEveryCheckboxPair) {
  for (const Case& c : kCases)
    for (int mods = 0; mods < 4; ++mods) {
      if (!(c.modsMask & (1 << mods))) continue;
      for (const Boxes b : kAllBoxes) {
        SCOPED_TRACE(testing::Message() << c.what << " mods " << mods << " color " << b.color << " opacity " << b.opacity);
        Session s(c.mesh);
        s.run(c.id, mods & 1, mods & 2, b.color, b.opacity);
        const MeshState m = s.mesh(0);
        ExpectPaint(m, c.src, b);
        EXPECT_EQ(m.selectedNodes(), c.selectedAfter);
      }
    }
}

}  // namespace
