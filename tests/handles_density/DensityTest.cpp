// "Increase mesh density" and "Decrease mesh density" driven through the
// panel dispatcher: sizes, line positions, opacities of new nodes, the
// final selection, and border zero-width rows kept out of the range.
#include <gtest/gtest.h>

#include <memory>

#include "HdDoc.h"

namespace hdtest {
namespace {

constexpr double kTol = 1e-9;

MeshDoc Grid(int I, int J, std::set<std::pair<int, int>> sel) {
  MeshDoc d;
  d.I = I, d.J = J, d.dx = 10, d.dy = 10;
  d.selected = std::move(sel);
  return d;
}

// h coordinates of the nodes of line j, in order.
std::vector<double> RowH(const GradientMesh& m, int j) {
  std::vector<double> out;
  for (int i = 0; i <= m.sizeI(); ++i) out.push_back(NodeP(m, i, j).h);
  return out;
}
std::vector<double> ColumnV(const GradientMesh& m, int i) {
  std::vector<double> out;
  for (int j = 0; j <= m.sizeJ(); ++j) out.push_back(NodeP(m, i, j).v);
  return out;
}

void ExpectValues(const std::vector<double>& got, const std::vector<double>& want) {
  ASSERT_EQ(got.size(), want.size());
  for (size_t k = 0; k < got.size(); ++k) EXPECT_NEAR(got[k], want[k], kTol) << "index " << k;
}

// ---- Increase -----------------------------------------------------------

TEST(DensityIncreaseTest, BothAxesSplitEveryCellOfTheRange) {
  Session s(Grid(4, 4, {{1, 1}, {3, 2}}));
  s.run(kDensityInc);
  const auto& m = s.mesh();
  ASSERT_EQ(m.sizeI(), 6);
  ASSERT_EQ(m.sizeJ(), 5);
  // New lines through the middle of old cells 1 and 2 along I, 1 along J.
  ExpectValues(RowH(m, 0), {0, 10, 15, 20, 25, 30, 40});
  ExpectValues(ColumnV(m, 0), {0, 10, 15, 20, 30, 40});
  EXPECT_NEAR(m.relativeU(2), 0.375, kTol);
  EXPECT_NEAR(m.relativeU(4), 0.625, kTol);
  EXPECT_NEAR(m.relativeV(2), 0.375, kTol);
  EXPECT_EQ(SelectedNodes(m), Range(1, 5, 1, 3));
}

TEST(DensityIncreaseTest, AltGrowsIOnlyAndCtrlJOnly) {
  {
    Session s(Grid(4, 4, {{1, 1}, {3, 2}}));
    s.run(kDensityInc, true, false);
    const auto& m = s.mesh();
    EXPECT_EQ(m.sizeI(), 6);
    EXPECT_EQ(m.sizeJ(), 4);
    ExpectValues(ColumnV(m, 0), {0, 10, 20, 30, 40});
    EXPECT_EQ(SelectedNodes(m), Range(1, 5, 1, 2));
  }
  Session s(Grid(4, 4, {{1, 1}, {3, 2}}));
  s.run(kDensityInc, false, true);
  const auto& m = s.mesh();
  EXPECT_EQ(m.sizeI(), 4);
  EXPECT_EQ(m.sizeJ(), 5);
  ExpectValues(RowH(m, 0), {0, 10, 20, 30, 40});
  EXPECT_EQ(SelectedNodes(m), Range(1, 3, 1, 3));
}

TEST(DensityIncreaseTest, RepeatingDoublesAgainOnTheNewRange) {
  Session s(Grid(2, 1, {{0, 0}, {1, 1}}));
  s.run(kDensityInc, true, false);
  s.run(kDensityInc, true, false);
  const auto& m = s.mesh();
  EXPECT_EQ(m.sizeI(), 5);
  ExpectValues(RowH(m, 1), {0, 2.5, 5, 7.5, 10, 20});
  EXPECT_EQ(SelectedNodes(m), Range(0, 4, 0, 1));
}

TEST(DensityIncreaseTest, NewNodesTakeTheMeanOpacityWhateverTheCheckboxes) {
  MeshDoc d = Grid(3, 2, {{1, 0}, {2, 2}});
  for (int j = 0; j <= 2; ++j) {
    d.opacity[{1, j}] = 0.2;
    d.opacity[{2, j}] = 0.8;
    d.color[{1, j}] = {{"rgb", {1, 0, 0}}};
    d.color[{2, j}] = {{"rgb", {0, 0, 1}}};
  }
  // What the host's own insertion makes of the colours.
  std::unique_ptr<GradientMesh> inserted;
  {
    Session ref(d);
    inserted = std::make_unique<GradientMesh>(ref.mesh());
  }
  ASSERT_EQ(inserted->insertU(1.5), 2);

  Session s(d);
  s.run(kDensityInc, true, false, /*useColor=*/true, /*useOpacity=*/false);
  const auto& m = s.mesh();
  ASSERT_EQ(m.sizeI(), 4);
  for (int j = 0; j <= 2; ++j) {
    EXPECT_NEAR(m.opacity(m.node(2, j)), 0.5, kTol) << "j " << j;
    EXPECT_DOUBLE_EQ(m.opacity(m.node(1, j)), 0.2);
    EXPECT_DOUBLE_EQ(m.opacity(m.node(3, j)), 0.8);
    const AIColor got = m.color(m.node(2, j)), want = inserted->color(inserted->node(2, j));
    ASSERT_EQ(got.kind, want.kind);
    EXPECT_EQ(got.c.rgb.red, want.c.rgb.red);
    EXPECT_EQ(got.c.rgb.green, want.c.rgb.green);
    EXPECT_EQ(got.c.rgb.blue, want.c.rgb.blue);
    // Old nodes keep their colours.
    EXPECT_EQ(m.color(m.node(1, j)).c.rgb.red, 1.0);
    EXPECT_EQ(m.color(m.node(3, j)).c.rgb.blue, 1.0);
  }
}

TEST(DensityIncreaseTest, OpacityAlongJUsesTheNodesAboveAndBelow) {
  MeshDoc d = Grid(2, 2, {{0, 0}, {2, 1}});
  for (int i = 0; i <= 2; ++i) {
    d.opacity[{i, 0}] = 0.1 * (i + 1);
    d.opacity[{i, 1}] = 0.9;
  }
  Session s(d);
  s.run(kDensityInc, false, true);
  const auto& m = s.mesh();
  ASSERT_EQ(m.sizeJ(), 3);
  for (int i = 0; i <= 2; ++i) EXPECT_NEAR(m.opacity(m.node(i, 1)), (0.1 * (i + 1) + 0.9) / 2, kTol);
}

// ---- Decrease -----------------------------------------------------------

TEST(DensityDecreaseTest, RemovesEverySecondLineKeepingTheBounds) {
  // Range of 4 cells along I (lines 1..5): lines 2 and 4 go.
  Session s(Grid(6, 2, {{1, 0}, {5, 1}}));
  s.run(kDensityDec, true, false);
  const auto& m = s.mesh();
  EXPECT_EQ(m.sizeI(), 4);
  EXPECT_EQ(m.sizeJ(), 2);
  ExpectValues(RowH(m, 0), {0, 10, 30, 50, 60});
  EXPECT_EQ(SelectedNodes(m), Range(1, 3, 0, 1));
}

TEST(DensityDecreaseTest, OddCountKeepsTheLastCellWhole) {
  // 3 cells (lines 1..4): only line 2 goes, 2 cells remain.
  Session s(Grid(6, 2, {{1, 0}, {4, 1}}));
  s.run(kDensityDec, true, false);
  const auto& m = s.mesh();
  EXPECT_EQ(m.sizeI(), 5);
  ExpectValues(RowH(m, 0), {0, 10, 30, 40, 50, 60});
  EXPECT_EQ(SelectedNodes(m), Range(1, 3, 0, 1));
}

TEST(DensityDecreaseTest, OneCellRangeIsLeftAlone) {
  Session s(Grid(6, 2, {{2, 0}, {3, 1}}));
  s.run(kDensityDec, true, false);
  const auto& m = s.mesh();
  EXPECT_EQ(m.sizeI(), 6);
  ExpectValues(RowH(m, 0), {0, 10, 20, 30, 40, 50, 60});
  EXPECT_EQ(SelectedNodes(m), Range(2, 3, 0, 1));
}

TEST(DensityDecreaseTest, WholeMeshBothAxes) {
  MeshDoc d = Grid(4, 4, {});
  Session s(d);
  s.run(kDensityDec);
  const auto& m = s.mesh();
  EXPECT_EQ(m.sizeI(), 2);
  EXPECT_EQ(m.sizeJ(), 2);
  ExpectValues(RowH(m, 0), {0, 20, 40});
  ExpectValues(ColumnV(m, 2), {0, 20, 40});
  EXPECT_EQ(SelectedNodes(m), Range(0, 2, 0, 2));
}

TEST(DensityDecreaseTest, CtrlActsOnJOnlyAndWritesNoPaint) {
  MeshDoc d = Grid(2, 4, {{0, 0}, {1, 4}});
  for (int j = 0; j <= 4; ++j) d.opacity[{0, j}] = 0.1 + 0.2 * j;
  Session s(d);
  s.run(kDensityDec, false, true);
  const auto& m = s.mesh();
  EXPECT_EQ(m.sizeI(), 2);
  EXPECT_EQ(m.sizeJ(), 2);
  ExpectValues(ColumnV(m, 0), {0, 20, 40});
  EXPECT_DOUBLE_EQ(m.opacity(m.node(0, 1)), 0.5);
  EXPECT_DOUBLE_EQ(m.opacity(m.node(0, 2)), 0.9);
  EXPECT_EQ(SelectedNodes(m), Range(0, 1, 0, 2));
}

// ---- Nothing to do ------------------------------------------------------

TEST(DensityNoopTest, SingleNodeOrVertexOnlySelectionChangesNothing) {
  for (int id : {kDensityInc, kDensityDec}) {
    {
      Session s(Grid(4, 4, {{2, 2}}));
      s.run(id);
      EXPECT_EQ(s.mesh().sizeI(), 4);
      EXPECT_EQ(s.mesh().sizeJ(), 4);
      EXPECT_EQ(SelectedNodes(s.mesh()), (std::set<std::pair<int, int>>{{2, 2}}));
    }
    {
      MeshDoc d = Grid(4, 4, {});
      d.innerVertex[{0, 1, 1}] = true;
      Session s(d);
      s.run(id);
      EXPECT_EQ(s.mesh().sizeI(), 4);
      EXPECT_EQ(s.mesh().sizeJ(), 4);
      EXPECT_TRUE(SelectedNodes(s.mesh()).empty());
    }
  }
}

TEST(DensityNoopTest, CtrlAltDoesNothing) {
  for (int id : {kDensityInc, kDensityDec}) {
    Session s(Grid(4, 4, {}));
    s.run(id, true, true);
    EXPECT_EQ(s.mesh().sizeI(), 4);
    EXPECT_EQ(s.mesh().sizeJ(), 4);
  }
}

TEST(DensityNoopTest, OneAxisWithoutCellsStillReselectsItsOriginalBounds) {
  // One row of nodes selected: no cells along J, two along I.
  Session s(Grid(4, 4, {{1, 2}, {3, 2}}));
  s.run(kDensityInc);
  const auto& m = s.mesh();
  EXPECT_EQ(m.sizeI(), 6);
  EXPECT_EQ(m.sizeJ(), 4);
  EXPECT_EQ(SelectedNodes(m), Range(1, 5, 2, 2));
}

TEST(DensityMeshesTest, EverySelectedMeshChanges) {
  MeshDoc a = Grid(2, 2, {}), b = Grid(3, 1, {}), c = Grid(2, 2, {});
  a.id = "a", b.id = "b", c.id = "c";
  b.origin = {100, 0}, c.origin = {200, 0};
  c.artSelected = false;
  Session s(MakeDoc({a.toJson(), b.toJson(), c.toJson()}));
  s.run(kDensityInc);
  EXPECT_EQ(s.mesh("a").sizeI(), 4);
  EXPECT_EQ(s.mesh("a").sizeJ(), 4);
  EXPECT_EQ(s.mesh("b").sizeI(), 6);
  EXPECT_EQ(s.mesh("b").sizeJ(), 2);
  EXPECT_EQ(s.mesh("c").sizeI(), 2);
}

// ---- Border zero-width rows ---------------------------------------------

// A 4 x 3 grid of 10-unit cells whose row along `side` has zero width:
// the grid line next to that side is moved onto it.
MeshDoc ZeroRowGrid(int side, double gap = 0.0) {
  MeshDoc d = Grid(4, 3, {});
  for (int k = 0; k <= (side % 2 == 0 ? d.I : d.J); ++k) {
    switch (side) {
      case 0: d.moved[{k, 1}] = {10.0 * k, gap}; break;
      case 1: d.moved[{3, k}] = {40.0 - gap, 10.0 * k}; break;
      case 2: d.moved[{k, 2}] = {10.0 * k, 30.0 - gap}; break;
      default: d.moved[{1, k}] = {gap, 10.0 * k}; break;
    }
  }
  return d;
}

TEST(DensityZeroRowTest, BorderZeroRowIsNeitherSplitNorMerged) {
  {
    // Side 3: columns 0 and 1 coincide; the three real cells double.
    Session s(ZeroRowGrid(3));
    s.run(kDensityInc, true, false);
    const auto& m = s.mesh();
    EXPECT_EQ(m.sizeI(), 7);
    ExpectValues(RowH(m, 0), {0, 0, 10, 20, 25, 30, 35, 40});
    const auto sel = SelectedNodes(m);
    for (const auto& n : Range(1, 7, 0, 3)) EXPECT_TRUE(sel.count(n)) << n.first << "," << n.second;
  }
  {
    // Side 1 with decrease: cells 0..2 (lines 0..3) lose line 1.
    Session s(ZeroRowGrid(1));
    s.run(kDensityDec, true, false);
    const auto& m = s.mesh();
    EXPECT_EQ(m.sizeI(), 3);
    ExpectValues(RowH(m, 0), {0, 20, 40, 40});
  }
}

TEST(DensityZeroRowTest, RowsAlongIAreKeptOutOfTheJRange) {
  {
    Session s(ZeroRowGrid(0));
    s.run(kDensityInc, false, true);
    const auto& m = s.mesh();
    EXPECT_EQ(m.sizeJ(), 5);
    ExpectValues(ColumnV(m, 0), {0, 0, 10, 20, 25, 30});
  }
  {
    Session s(ZeroRowGrid(2));
    s.run(kDensityInc, false, true);
    const auto& m = s.mesh();
    EXPECT_EQ(m.sizeJ(), 5);
    ExpectValues(ColumnV(m, 0), {0, 5, 10, 20, 30, 30});
  }
}

TEST(DensityZeroRowTest, LengthLimitDecidesWhatCountsAsZeroWidth) {
  // A run across the row just below the limit still counts as zero width.
  {
    Session s(ZeroRowGrid(3, 5e-8));
    s.run(kDensityInc, true, false);
    EXPECT_EQ(s.mesh().sizeI(), 7);
  }
  // Just above it, the row is an ordinary cell and is split too.
  {
    Session s(ZeroRowGrid(3, 2e-7));
    s.run(kDensityInc, true, false);
    EXPECT_EQ(s.mesh().sizeI(), 8);
  }
}

TEST(DensityZeroRowTest, OneNodeWithWidthMakesTheRowOrdinary) {
  MeshDoc d = ZeroRowGrid(3);
  d.moved[{1, 2}] = {0.5, 20};
  Session s(d);
  s.run(kDensityInc, true, false);
  EXPECT_EQ(s.mesh().sizeI(), 8);
}

TEST(DensityZeroRowTest, ZeroRowOutsideTheRangeIsNotAsked) {
  // Selection away from side 3: the range is the same with or without it.
  MeshDoc d = ZeroRowGrid(3);
  d.selected = {{2, 0}, {4, 1}};
  Session s(d);
  s.run(kDensityInc, true, false);
  EXPECT_EQ(s.mesh().sizeI(), 6);
  EXPECT_EQ(SelectedNodes(s.mesh()), Range(2, 6, 0, 1));
}

TEST(DensityZeroRowTest, SelectionOfOnlyTheZeroRowChangesNothing) {
  MeshDoc d = ZeroRowGrid(3);
  d.selected = {{0, 0}, {1, 0}};
  Session s(d);
  s.run(kDensityInc, true, false);
  EXPECT_EQ(s.mesh().sizeI(), 4);
  EXPECT_EQ(SelectedNodes(s.mesh()), (std::set<std::pair<int, int>>{{0, 0}, {1, 0}}));
}

}  // namespace
}  // namespace hdtest
