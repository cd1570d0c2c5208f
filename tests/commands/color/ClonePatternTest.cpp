// Clone colors (139) and Pattern fill (154) through the loaded module: which
// node's colour and opacity every node carries afterwards, and which nodes
// end selected.
#include "LBModule.h"
#include <gtest/gtest.h>

#include "ColourDoc.h"

using namespace coltest;

namespace {

constexpr int kClone = kCmdColorClone, kPattern = kCmdColorPattern;

// Mesh `tag` sits 100 units to the right of mesh tag - 1.
json Mesh(int tag, int I, int J, NodeSet sel, std::string id = "") {
  MeshRecipe m = Tagged(tag, I, J, std::move(sel), {}, 100.0 * tag);
  m.id = std::move(id);
  return MeshJson(m);
}

struct Boxes {
  bool color, opacity;
};

// Where node (i, j) of one mesh takes its paint from: a paint code, or its
// own code when unchanged.
using Source = std::function<int(int, int)>;

void ExpectPaint(const MeshState &m, int tag, const Source &src, Boxes b) {
  for (int j = 0; j <= m.J; ++j)
    for (int i = 0; i <= m.I; ++i) {
      const int own = Code(tag, i, j);
      const int from = src(i, j);
      EXPECT_EQ(ColorCode(m, i, j), b.color ? from : own) << "colour of node (" << i << ", " << j << ")";
      EXPECT_EQ(OpacityCode(m, i, j), b.opacity ? from : own) << "opacity of node (" << i << ", " << j << ")";
    }
}

// ---- Clone ------------------------------------------------------------------

// Two 4 x 4 meshes: A (tag 0, on top) with a 3 x 3 node region (1..3,
// 1..3), B (tag 1) with a 2 x 4 node region (0..1, 1..4).
struct CloneCase {
  const char *name;
  bool alt, ctrl;
  int target;  // index of the mesh that receives paint
  // The copied block of the target, and its nodes' source nodes.
  NodeSet block;
  std::function<Node(int, int)> from;
  // The source's selection afterwards (two meshes: trimmed, bounded on the
  // far side only).
  NodeSet sourceSel;
};

const CloneCase kCloneCases[] = {
    // Topmost A to B: w = min(2, 1) = 1, h = min(2, 3) = 2; B's fourth row
    // (j = 4) is dropped.
    {"TopmostToOther", false, false, 1, Rect(0, 1, 1, 3), [](int i, int j) { return Node{1 + i, j}; }, Rect(0, 2, 0, 3)},
    // Bottommost B to A: w = min(1, 2) = 1, h = min(3, 2) = 2.
    {"BottommostToOther", true, false, 0, Rect(1, 2, 1, 3), [](int i, int j) { return Node{i - 1, j}; }, Rect(0, 1, 0, 3)},
    // A to B exchanging I and J: w = min(A's I 2, B's J 3) = 2, h = min(A's
    // J 2, B's I 1) = 1; B node (b, 1 + a) <- A node (1 + a, 1 + b).
    {"TopmostWithIJ", false, true, 1, Rect(0, 1, 1, 3), [](int i, int j) { return Node{1 + (j - 1), 1 + i}; }, Rect(0, 3, 0, 2)},
    // B to A exchanging I and J: w = min(B's I 1, A's J 2) = 1, h = min(B's
    // J 3, A's I 2) = 2; A node (1 + b, 1 + a) <- B node (a, 1 + b).
    {"BottommostWithIJ", true, true, 0, Rect(1, 3, 1, 2), [](int i, int j) { return Node{j - 1, 1 + (i - 1)}; }, Rect(0, 1, 0, 3)},
};

TEST(CloneColors, EveryModifierPairWithTwoMeshes) {
  for (const CloneCase &c : kCloneCases)
    // Both boxes off: no paint moves, the selections are still trimmed.
    for (Boxes b : {Boxes{true, false}, Boxes{false, true}, Boxes{true, true}, Boxes{false, false}}) {
      SCOPED_TRACE(testing::Message() << c.name << " colour " << b.color << " opacity " << b.opacity);
      Session s(DocJson({Mesh(0, 4, 4, Rect(1, 3, 1, 3)), Mesh(1, 4, 4, Rect(0, 1, 1, 4))}));
      s.run(kClone, c.alt, c.ctrl, b.color, b.opacity);
      const int src = 1 - c.target;
      const MeshState target = s.mesh(c.target);
      const MeshState source = s.mesh(src);
      ExpectPaint(target, c.target, [&](int i, int j) {
        const Node n = c.from(i, j);
        return c.block.count({i, j}) ? Code(src, n.first, n.second) : Code(c.target, i, j);
      }, b);
      EXPECT_EQ(target.selectedNodes(), c.block);
      ExpectPaint(source, src, [&](int i, int j) { return Code(src, i, j); }, b);
      EXPECT_EQ(source.selectedNodes(), c.sourceSel);
    }
}

TEST(CloneColors, ThreeMeshesKeepTheSourceSelectionAndFillEveryOther) {
  Session s(
      DocJson({Mesh(0, 2, 2, Rect(0, 1, 0, 1)), Mesh(1, 3, 3, Rect(1, 3, 1, 3)), Mesh(2, 2, 2, Rect(1, 2, 1, 2))}));
  s.run(kClone, false, false, true, false);
  const MeshState a = s.mesh(0), b = s.mesh(1), c = s.mesh(2);
  EXPECT_EQ(a.selectedNodes(), Rect(0, 1, 0, 1));
  ExpectPaint(a, 0, [](int i, int j) { return Code(0, i, j); }, {true, true});
  // Each target gets the 2 x 2 block at its own minimum corner.
  ExpectPaint(b, 1,
              [](int i, int j) { return i >= 1 && i <= 2 && j >= 1 && j <= 2 ? Code(0, i - 1, j - 1) : Code(1, i, j); },
              {true, false});
  EXPECT_EQ(b.selectedNodes(), Rect(1, 2, 1, 2));
  ExpectPaint(c, 2, [](int i, int j) { return i >= 1 && j >= 1 ? Code(0, i - 1, j - 1) : Code(2, i, j); },
              {true, false});
  EXPECT_EQ(c.selectedNodes(), Rect(1, 2, 1, 2));
}

TEST(CloneColors, KeyObjectIsTheSourceWhateverAlt) {
  for (bool alt : {false, true}) {
    SCOPED_TRACE(alt);
    // The key is the middle mesh: neither topmost nor bottommost.
    json doc = DocJson({Mesh(0, 1, 1, Rect(0, 1, 0, 1)), Mesh(1, 1, 1, Rect(0, 1, 0, 1), "key"),
                        Mesh(2, 1, 1, Rect(0, 1, 0, 1))});
    doc["key"] = "key";
    Session s(doc);
    s.run(kClone, alt, false, true, false);
    for (int k : {0, 2}) ExpectPaint(s.mesh(k), k, [](int i, int j) { return Code(1, i, j); }, {true, false});
    ExpectPaint(s.mesh(1), 1, [](int i, int j) { return Code(1, i, j); }, {true, true});
  }
}

TEST(CloneColors, EmptyTargetRegionChangesNothing) {
  // The second mesh is selected as art with no node selected.
  Session s(DocJson({Mesh(0, 2, 2, Rect(0, 1, 0, 1)), Mesh(1, 2, 2, {})}));
  s.run(kClone, false, false, true, false);
  ExpectPaint(s.mesh(1), 1, [](int i, int j) { return Code(1, i, j); }, {true, true});
  EXPECT_EQ(s.mesh(0).selectedNodes(), Rect(0, 1, 0, 1));
}

// ---- Pattern ----------------------------------------------------------------

struct PatternCase {
  const char *name;
  bool alt, ctrl;
  NodeSet filled;  // the nodes filled, and selected afterwards
};

const PatternCase kPatternCases[] = {
    {"AllNodes", false, false, Rect(0, 6, 0, 5)},
    {"IOnly", true, false, Rect(0, 6, 1, 3)},
    {"JOnly", false, true, Rect(2, 3, 0, 5)},
    {"CtrlAltLikeNoKey", true, true, Rect(0, 6, 0, 5)},
};

TEST(PatternFill, TileAnchoredAtTheRegionForEveryVariant) {
  // A 6 x 5 mesh with region i 2..3, j 1..3 (a 2 x 3 node tile).
  for (const PatternCase &c : kPatternCases)
    for (Boxes b : {Boxes{true, false}, Boxes{false, true}, Boxes{false, false}}) {
      SCOPED_TRACE(testing::Message() << c.name << " colour " << b.color);
      Session s(DocJson({Mesh(0, 6, 5, {{2, 1}, {3, 3}})}));
      s.run(kPattern, c.alt, c.ctrl, b.color, b.opacity);
      const MeshState m = s.mesh(0);
      auto mod = [](int a, int n) { return ((a % n) + n) % n; };
      ExpectPaint(m, 0, [&](int i, int j) { return c.filled.count({i, j}) ? Code(0, 2 + mod(i - 2, 2), 1 + mod(j - 1, 3)) : Code(0, i, j); }, b);
      EXPECT_EQ(m.selectedNodes(), c.filled);
      // The node just before the region in one of its rows takes the
      // paint of the region's last node in that row.
      if (b.color && c.filled.count({1, 2})) {
        EXPECT_EQ(ColorCode(m, 1, 2), Code(0, 3, 2));
      }
    }
}

TEST(PatternFill, WholeRegionSelectsEverythingAndKeepsPaint) {
  MeshRecipe w = Tagged(0, 3, 2, {});
  w.whole = true;
  Session s(DocJson({MeshJson(w)}));
  s.run(kPattern, false, false, true, true);
  const MeshState m = s.mesh(0);
  ExpectPaint(m, 0, [](int i, int j) { return Code(0, i, j); }, {true, true});
  EXPECT_EQ(m.selectedNodes(), Rect(0, 3, 0, 2));
}

// (Meshes without selected nodes, several meshes: EveryCommandTest.)
TEST(PatternFill, OneNodeAndOneRowRegionsAlongI) {
  Session s(DocJson({Mesh(0, 3, 1, {{0, 0}}), Mesh(2, 3, 3, Rect(1, 2, 2, 2))}));
  s.run(kPattern, true, false, true, false);  // I direction only
  const MeshState a = s.mesh(0), c = s.mesh(1);
  // One node: row 0 all take its paint.
  ExpectPaint(a, 0, [](int i, int j) { return j == 0 ? Code(0, 0, 0) : Code(0, i, j); }, {true, false});
  EXPECT_EQ(a.selectedNodes(), Rect(0, 3, 0, 0));
  // Row 2 repeats nodes 1, 2: i = 0 takes node 2, i = 3 takes node 1.
  ExpectPaint(c, 2, [](int i, int j) { return j == 2 ? Code(2, 1 + ((i + 1) % 2), 2) : Code(2, i, j); }, {true, false});
  EXPECT_EQ(c.selectedNodes(), Rect(0, 3, 2, 2));
}

}  // namespace
