// "Increase mesh density" and "Decrease mesh density" through the panel
// dispatcher, on grids of 10-unit cells: sizes, line positions, opacity of
// new nodes, the final selection, and border zero-width rows.
#include <gtest/gtest.h>

#include <memory>

#include "support/Engine.h"

namespace lbtest {
namespace {

constexpr double kTol = 1e-9;
using lb::host::GradientMesh;

MeshRecipe Grid(int I, int J, NodeSet sel) {
  MeshRecipe d;
  d.I = I, d.J = J, d.dx = d.dy = 10;
  d.selected = std::move(sel);
  return d;
}

// Node positions along line j = 0 (h) and line i = 0 (v).
void ExpectLines(const GradientMesh& m, const std::vector<double>& h, const std::vector<double>& v) {
  ASSERT_EQ(std::pair(m.sizeI() + 1, m.sizeJ() + 1), std::pair(int(h.size()), int(v.size())));
  for (int i = 0; i <= m.sizeI(); ++i) EXPECT_NEAR(NodeP(m, i, 0).h, h[i], kTol) << "line i " << i;
  for (int j = 0; j <= m.sizeJ(); ++j) EXPECT_NEAR(NodeP(m, 0, j).v, v[j], kTol) << "line j " << j;
}

struct DensityCase {
  int id;
  bool alt, ctrl;
  int I, J;
  NodeSet sel;
  std::vector<double> h, v;  // resulting lines
  NodeSet after;             // resulting selection
};

TEST(DensityTest, SizesLinesAndSelection) {
  const DensityCase cases[] = {
      // Nodes (1, 1) and (3, 2) of a 4 x 4 grid: old cells 1, 2 along I and
      // cell 1 along J are split in the middle.
      {kCmdDensityInc, false, false, 4, 4, {{1, 1}, {3, 2}}, {0, 10, 15, 20, 25, 30, 40}, {0, 10, 15, 20, 30, 40}, Rect(1, 5, 1, 3)},
      {kCmdDensityInc, true, false, 4, 4, {{1, 1}, {3, 2}}, {0, 10, 15, 20, 25, 30, 40}, {0, 10, 20, 30, 40}, Rect(1, 5, 1, 2)},
      {kCmdDensityInc, false, true, 4, 4, {{1, 1}, {3, 2}}, {0, 10, 20, 30, 40}, {0, 10, 15, 20, 30, 40}, Rect(1, 3, 1, 3)},
      // A single row selected: no cells along J, whose bounds are kept.
      {kCmdDensityInc, false, false, 4, 4, {{1, 2}, {3, 2}}, {0, 10, 15, 20, 25, 30, 40}, {0, 10, 20, 30, 40}, Rect(1, 5, 2, 2)},
      // Four cells along I lose the lines at +1 and +3; three cells the line
      // at +1; one cell nothing.
      {kCmdDensityDec, true, false, 6, 1, {{1, 0}, {5, 1}}, {0, 10, 30, 50, 60}, {0, 10}, Rect(1, 3, 0, 1)},
      {kCmdDensityDec, true, false, 6, 1, {{1, 0}, {4, 1}}, {0, 10, 30, 40, 50, 60}, {0, 10}, Rect(1, 3, 0, 1)},
      {kCmdDensityDec, true, false, 6, 1, {{2, 0}, {3, 1}}, {0, 10, 20, 30, 40, 50, 60}, {0, 10}, Rect(2, 3, 0, 1)},
      {kCmdDensityDec, false, false, 4, 4, {}, {0, 20, 40}, {0, 20, 40}, Rect(0, 2, 0, 2)},
      {kCmdDensityDec, false, true, 2, 4, {{0, 0}, {1, 4}}, {0, 10, 20}, {0, 20, 40}, Rect(0, 1, 0, 2)},
      // Nothing to split: one node.
      {kCmdDensityInc, false, false, 2, 2, {{1, 1}}, {0, 10, 20}, {0, 10, 20}, {{1, 1}}},
      {kCmdDensityDec, false, false, 2, 2, {{1, 1}}, {0, 10, 20}, {0, 10, 20}, {{1, 1}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message() << "id " << c.id << " alt " << c.alt << " ctrl " << c.ctrl << " size "
                                      << c.I << "x" << c.J << " first " << (c.sel.empty() ? -1 : c.sel.begin()->first));
    Session s(Grid(c.I, c.J, c.sel));
    s.run(c.id, c.alt, c.ctrl);
    ExpectLines(s.engine(), c.h, c.v);
    EXPECT_EQ(SelectedNodes(s.engine()), c.after);
  }
}

TEST(DensityTest, NewNodesTakeTheMeanOpacityWhateverTheCheckboxes) {
  MeshRecipe d = Grid(3, 2, {{1, 0}, {2, 2}});
  for (int j = 0; j <= 2; ++j) d.opacity[{1, j}] = 0.2, d.opacity[{2, j}] = 0.8 - 0.1 * j;
  std::unique_ptr<GradientMesh> inserted;  // the host's own insertion, for colours
  {
    Session ref(d);
    inserted = std::make_unique<GradientMesh>(ref.engine());
  }
  ASSERT_EQ(inserted->insertU(1.5), 2);
  Session s(d);
  s.run(kCmdDensityInc, true, false, /*useColor=*/true, /*useOpacity=*/false);
  const auto& m = s.engine();
  ASSERT_EQ(m.sizeI(), 4);
  for (int j = 0; j <= 2; ++j) {
    EXPECT_NEAR(m.opacity(m.node(2, j)), (0.2 + 0.8 - 0.1 * j) / 2, kTol) << j;
    EXPECT_EQ(m.opacity(m.node(1, j)), 0.2);
    const AIColor got = m.color(m.node(2, j)), want = inserted->color(inserted->node(2, j));
    ASSERT_EQ(got.kind, want.kind);
    EXPECT_EQ(got.c.rgb.red, want.c.rgb.red);
    EXPECT_EQ(got.c.rgb.blue, want.c.rgb.blue);
  }
  // Along J the mean is of the nodes below and above.
  s.run(kCmdDensityInc, false, true);
  ASSERT_EQ(m.sizeJ(), 4);
  EXPECT_NEAR(m.opacity(m.node(1, 1)), 0.2, kTol);
  EXPECT_NEAR(m.opacity(m.node(3, 3)), (0.7 + 0.6) / 2, kTol);
}

// A 4 x 3 grid whose row along `side` has zero width (or width `gap`):
// the grid line next to that side lies on it.
MeshRecipe ZeroRowGrid(int side, double gap = 0.0) {
  MeshRecipe d = Grid(4, 3, {});
  for (int k = 0; k <= (side % 2 == 0 ? d.I : d.J); ++k) {
    if (side == 0) d.moved[{k, 1}] = {10.0 * k, gap};
    if (side == 1) d.moved[{3, k}] = {40.0 - gap, 10.0 * k};
    if (side == 2) d.moved[{k, 2}] = {10.0 * k, 30.0 - gap};
    if (side == 3) d.moved[{1, k}] = {gap, 10.0 * k};
  }
  return d;
}

TEST(DensityZeroRowTest, BorderZeroRowsAreNeitherSplitNorMerged) {
  struct Case {
    MeshRecipe doc;
    int id;
    bool alt, ctrl;
    std::vector<double> h, v;
  };
  MeshRecipe notZero = ZeroRowGrid(3);
  notZero.moved[{1, 2}] = {0.5, 20};  // one node's run across the row has length
  MeshRecipe awayFromSide = ZeroRowGrid(3);
  awayFromSide.selected = {{2, 0}, {4, 1}};
  MeshRecipe onlyTheRow = ZeroRowGrid(3);
  onlyTheRow.selected = {{0, 0}, {1, 0}};
  const Case cases[] = {
      {ZeroRowGrid(3), kCmdDensityInc, true, false, {0, 0, 10, 20, 25, 30, 35, 40}, {0, 10, 20, 30}},
      {ZeroRowGrid(1), kCmdDensityDec, true, false, {0, 20, 40, 40}, {0, 10, 20, 30}},
      {ZeroRowGrid(0), kCmdDensityInc, false, true, {0, 10, 20, 30, 40}, {0, 0, 10, 20, 25, 30}},
      {ZeroRowGrid(2), kCmdDensityInc, false, true, {0, 10, 20, 30, 40}, {0, 5, 10, 20, 30, 30}},
      // Below the length limit (about 1e-7) still zero; above it not.
      {ZeroRowGrid(3, 5e-8), kCmdDensityInc, true, false, {0, 5e-8, 10 + 2.5e-8, 20, 25, 30, 35, 40}, {0, 10, 20, 30}},
      {ZeroRowGrid(3, 2e-7), kCmdDensityInc, true, false, {0, 1e-7, 2e-7, 10 + 1e-7, 20, 25, 30, 35, 40}, {0, 10, 20, 30}},
      {notZero, kCmdDensityInc, true, false, {0, 0, 0, 10, 20, 25, 30, 35, 40}, {0, 10, 20, 30}},
      {awayFromSide, kCmdDensityInc, true, false, {0, 0, 20, 25, 30, 35, 40}, {0, 10, 20, 30}},
      {onlyTheRow, kCmdDensityInc, true, false, {0, 0, 20, 30, 40}, {0, 10, 20, 30}},
  };
  int k = 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message() << "case " << k++);
    Session s(c.doc);
    s.run(c.id, c.alt, c.ctrl);
    ExpectLines(s.engine(), c.h, c.v);
  }
}

}  // namespace
}  // namespace lbtest
