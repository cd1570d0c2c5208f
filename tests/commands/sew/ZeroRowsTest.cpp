// Zero-width border rows (id 165: added, Ctrl: removed, Ctrl+Alt: one row
// removed at each selected side) through the panel dispatcher.
#include <gtest/gtest.h>

#include "ZeroRow.h"
#include "support/Engine.h"

namespace lbtest {
namespace {

using lb::host::GradientMesh;

struct SideCase {
  int side;
  NodeSet selected;  // nodes of that side of a 3 x 2 mesh
  int I, J;          // size after the row was added
  NodeMap shift;     // old node -> new node
  int border;        // the new border line's index (j for sides 0, 2; i for 1, 3)
};

std::vector<SideCase> Sides() {
  return {
      {0, Rect(0, 3, 0, 0), 3, 3, [](int i, int j) { return Node{i, j + 1}; }, 0},
      {1, Rect(3, 3, 0, 2), 4, 2, [](int i, int j) { return Node{i, j}; }, 4},
      {2, Rect(0, 3, 2, 2), 3, 3, [](int i, int j) { return Node{i, j}; }, 3},
      {3, Rect(0, 0, 0, 2), 4, 2, [](int i, int j) { return Node{i + 1, j}; }, 0},
  };
}

TEST(ZeroRowTest, AddedRowHasZeroWidthAndCarriesTheSideAtEachSide) {
  for (const SideCase& c : Sides()) {
    SCOPED_TRACE(c.side);
    MeshRecipe d = Coded(3, 2, c.selected);
    d.warped = true;
    json written;
    {
      Session s(d);
      s.run(kCmdSew0);
      ASSERT_EQ(s.artCount(), 1u);
      const GradientMesh& m = s.engine(0);
      ASSERT_EQ(Node(m.sizeI(), m.sizeJ()), Node(c.I, c.J));
      const MeshState st = s.mesh(0);
      const bool rowSide = c.side == 0 || c.side == 2;
      const int inner = c.border == 0 ? 1 : c.border - 1;
      const int last = rowSide ? c.I : c.J;
      for (int k = 0; k <= last; ++k) {
        const int bi = rowSide ? k : c.border, bj = rowSide ? c.border : k;
        const int ni = rowSide ? k : inner, nj = rowSide ? inner : k;
        // Border and the line inside it coincide, with the same paint, and
        // the handles across the new row are retracted.
        EXPECT_PT_NEAR(NodeP(m, bi, bj), NodeP(m, ni, nj), 0.0);
        EXPECT_EQ(st.node(bi, bj)["color"], st.node(ni, nj)["color"]);
        const int out = rowSide ? (c.border == 0 ? JF : JB) : (c.border == 0 ? IF : IB);
        const int back = rowSide ? (c.border == 0 ? JB : JF) : (c.border == 0 ? IB : IF);
        EXPECT_PT_NEAR(Tan(m, bi, bj, out), NodeP(m, bi, bj), 0.0);
        EXPECT_PT_NEAR(Tan(m, ni, nj, back), NodeP(m, ni, nj), 0.0);
      }
      // Every old node is where the shift puts it, with its own paint and
      // smooth flags (the side's runs are simplified, so runs are not compared).
      MeshContent want = MapMesh(ReadMesh(Children(DocJson(d))[0]), c.I, c.J, c.shift);
      want.runs.clear();
      EXPECT_TRUE(SameContent(s.content(0), want, 0.0));
      written = s.written();
    }
    // The plug-in's own test, linked in, finds a zero-width row at that side only.
    Session linked(written, Session::Linked);
    for (int side = 0; side < 4; ++side)
      EXPECT_EQ(IsSideHas0Row(linked.art(0), side), side == c.side ? 1 : 0) << side;
  }
}

// A row added at each selected side (every side for a whole selection),
// then removed again.
TEST(ZeroRowTest, AddingThenRemovingGivesBackTheMesh) {
  std::vector<std::pair<MeshRecipe, Node>> cases;  // the mesh, its size with the rows added
  for (const SideCase& c : Sides()) {
    MeshRecipe d = MeshRecipe::Varied(3, 2);
    d.selected = c.selected;
    d.whole.reset();
    cases.push_back({d, {c.I, c.J}});
  }
  MeshRecipe whole = MeshRecipe::Varied(3, 2);
  whole.selected.clear();
  whole.whole = true;
  cases.push_back({whole, {5, 4}});
  for (const auto& [d, grown] : cases) {
    SCOPED_TRACE(testing::Message() << "grown to " << grown.first << " x " << grown.second);
    Session s(d);
    const MeshContent before = s.content(0);
    s.run(kCmdSew0);
    ASSERT_EQ(Node(s.mesh(0).I, s.mesh(0).J), grown);
    // The whole widened mesh ends selected: only the sides with a
    // zero-width row lose it.
    s.run(kCmdSew0, false, true);
    ASSERT_EQ(s.artCount(), 1u);
    const MeshContent after = s.content(0);
    ASSERT_EQ(Node(after.I, after.J), Node(3, 2));
    // The side's own runs were simplified when the row was added; the
    // rest of the mesh is exactly the old one.
    EXPECT_TRUE(SameContent(after, before, 0.0));
    EXPECT_EQ(after.runs.size(), before.runs.size());
  }
}

TEST(ZeroRowTest, SecondAddAtTheSameSideRepaintsTheBorderFromInside) {
  MeshRecipe d = Coded(2, 2, Rect(0, 2, 0, 0));
  Session s(d);
  s.run(kCmdSew0);
  ASSERT_EQ(s.engine(0).sizeJ(), 3);
  GradientMesh& m = s.engine(0);
  // Repaint the border, then select just that side again.
  for (int i = 0; i <= 2; ++i) m.setColor(m.node(i, 0), Rgb(1, 0, 0));
  m.clearSelection();
  for (int i = 0; i <= 2; ++i) m.setSelected(m.node(i, 0), true);
  s.run(kCmdSew0);
  const GradientMesh& again = s.engine(0);
  EXPECT_EQ(again.sizeJ(), 3);
  const MeshState st = s.mesh(0);
  for (int i = 0; i <= 2; ++i) EXPECT_EQ(st.node(i, 0)["color"], st.node(i, 1)["color"]);
}

struct DelCase {
  const char* name;
  bool alt;  // Ctrl+Alt: one row whatever its width
  int I, J;
  NodeSet selected;
  int wantI, wantJ;
  int firstI, firstJ;  // old node now at (0, 0)
};

TEST(ZeroRowTest, DeletingRowsAtSelectedSides) {
  const DelCase cases[] = {
      {"no zero row: unchanged", false, 3, 2, Rect(0, 3, 0, 0), 3, 2, 0, 0},
      {"one row at side 0", true, 3, 2, Rect(0, 3, 0, 0), 3, 1, 0, 1},
      {"one row at sides 3 and 2", true, 3, 2, {{0, 1}, {0, 2}, {1, 2}}, 2, 1, 1, 0},
      {"nothing would remain", true, 3, 1, {{1, 0}, {1, 1}}, 3, 1, 0, 0},
  };
  for (const DelCase& c : cases) {
    SCOPED_TRACE(c.name);
    Session s(Coded(c.I, c.J, c.selected));
    s.run(kCmdSew0, c.alt, true);
    ASSERT_EQ(s.artCount(), 1u);
    const MeshState st = s.mesh(0);
    EXPECT_EQ(Node(st.I, st.J), Node(c.wantI, c.wantJ));
    const MeshState old(Children(DocJson(Coded(c.I, c.J, c.selected)))[0]);
    EXPECT_EQ(st.node(0, 0)["color"], old.node(c.firstI, c.firstJ)["color"]);
  }
}

}  // namespace
}  // namespace lbtest
