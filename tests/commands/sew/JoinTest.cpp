// "Sew docked meshes together" (161) through the loaded plug-in: rows,
// columns and blocks of docked meshes in any selection order join into one
// mesh; the docking tolerance, arrangements that are refused, groups, and
// the paint and placement of the result.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "support/Session.h"

namespace lbtest {
namespace {

constexpr double kCell = 10.0;

struct Block {
  const char* name;
  int rows, cols;  // meshes of the arrangement
  int I, J;        // cells of each mesh
  std::vector<int> order;  // selection order (topmost first) of mesh r * cols + c
};

const Block kBlocks[] = {
    {"Pair", 1, 2, 2, 1, {0, 1}}, {"PairReversed", 1, 2, 2, 1, {1, 0}}, {"RowOfThree", 1, 3, 1, 2, {0, 1, 2}},
    {"RowOfThreeMiddleFirst", 1, 3, 1, 2, {1, 2, 0}}, {"RowOfThreeEndsFirst", 1, 3, 1, 2, {2, 0, 1}},
    {"ColumnOfFour", 4, 1, 2, 2, {3, 1, 0, 2}}, {"TwoByTwo", 2, 2, 2, 2, {0, 1, 2, 3}},
    {"TwoByTwoShuffled", 2, 2, 2, 2, {3, 0, 2, 1}}, {"TwoByThree", 2, 3, 1, 2, {4, 1, 5, 0, 3, 2}},
    {"ThreeByTwo", 3, 2, 2, 1, {0, 5, 2, 3, 1, 4}}, {"ThreeByThree", 3, 3, 2, 2, {4, 8, 0, 2, 6, 1, 3, 7, 5}},
};

// The colour every node of mesh m gets; seam nodes average two or four.
json MeshPaint(int m) { return RgbPaint(0.1 * (m % 10), 0.5, 1.0 - 0.1 * (m % 10)); }

std::vector<json> Arrange(const Block& b, double gap = 0.0) {
  std::vector<json> art;
  for (int m : b.order) {
    MeshRecipe g = Cells(b.I, b.J);
    g.x0 = (m % b.cols) * (b.I * kCell + gap);
    g.y0 = (m / b.cols) * (b.J * kCell);
    g.colorAt = [m](int, int) { return MeshPaint(m); };
    g.id = "m" + std::to_string(m);
    art.push_back(MeshJson(g));
  }
  return art;
}

// The joined mesh is the whole lattice: every node one cell from its
// neighbours along both axes, covering every corner of the arrangement.
::testing::AssertionResult IsLattice(const json& mesh, int cellsH, int cellsV) {
  const int I = mesh.at("size")[0], J = mesh.at("size")[1];
  if (!((I == cellsH && J == cellsV) || (I == cellsV && J == cellsH)))
    return ::testing::AssertionFailure() << "size " << I << " x " << J;
  std::set<std::pair<double, double>> got;
  for (const auto& p : Positions(mesh)) got.insert(p);
  std::set<std::pair<double, double>> want;
  for (int x = 0; x <= cellsH; ++x)
    for (int y = 0; y <= cellsV; ++y) want.insert({x * kCell, y * kCell});
  if (got != want) return ::testing::AssertionFailure() << "node positions are not the lattice";
  for (int j = 0; j <= J; ++j)
    for (int i = 0; i <= I; ++i) {
      const json& p = NodeAt(mesh, i, j).at("p");
      for (const auto& [di, dj] : {std::pair{1, 0}, std::pair{0, 1}}) {
        if (i + di > I || j + dj > J) continue;
        const json& q = NodeAt(mesh, i + di, j + dj).at("p");
        const double d = std::hypot(q[0].get<double>() - p[0].get<double>(), q[1].get<double>() - p[1].get<double>());
        if (std::fabs(d - kCell) > 1e-9)
          return ::testing::AssertionFailure() << "nodes (" << i << ", " << j << ") and (" << i + di << ", "
                                               << j + dj << ") are " << d << " apart";
      }
    }
  return ::testing::AssertionSuccess();
}

class EachBlock : public ::testing::TestWithParam<Block> {};

TEST_P(EachBlock, JoinsIntoOneMesh) {
  const Block& b = GetParam();
  Session s(DocJson(Arrange(b)));
  const json kids = s.runLayer(kCmdSewDocked);
  ASSERT_EQ(kids.size(), 1u);
  const json& mesh = kids[0];
  EXPECT_TRUE(IsLattice(mesh, b.cols * b.I, b.rows * b.J));
  EXPECT_TRUE(mesh.at("selected").get<bool>());
  // Nodes inside a source mesh keep its paint; those on one seam between
  // two meshes hold the average of both.
  std::map<std::pair<double, double>, json> paint;
  const auto at = Positions(mesh);
  for (size_t k = 0; k < at.size(); ++k) paint[at[k]] = mesh.at("nodes")[k].at("color");
  for (int m = 0; m < b.rows * b.cols; ++m) {
    const double h = (m % b.cols) * b.I * kCell, v = (m / b.cols) * b.J * kCell;
    if (b.I > 1 && b.J > 1) {
      EXPECT_EQ(paint.at({h + kCell, v + kCell}), MeshPaint(m)) << "centre of mesh " << m;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Join, EachBlock, ::testing::ValuesIn(kBlocks), lbtest::ByName());

// The seam node between two meshes holds the average of both paints; the
// result takes the first mesh's opacity and blending.
TEST(Join, SeamAverageAndTheFirstMeshsOpacityAndBlend) {
  std::vector<json> art = Arrange({"Pair", 1, 2, 1, 1, {1, 0}});
  art[0]["opacity"] = 0.4;
  art[0]["blend"] = "screen";
  art[1]["opacity"] = 0.8;
  Session s(DocJson(art));
  const json mesh = s.runLayer(kCmdSewDocked)[0];
  EXPECT_DOUBLE_EQ(mesh.at("opacity").get<double>(), 0.4);
  EXPECT_EQ(mesh.at("blend"), "screen");
  int seam = 0;
  for (const json& n : mesh.at("nodes"))
    if (std::fabs(n.at("p")[0].get<double>() - kCell) < 1e-9) {
      EXPECT_EQ(n.at("color"), RgbPaint(0.05, 0.5, 0.95));
      ++seam;
    }
  EXPECT_EQ(seam, 2);
}

// Meshes 0.5 apart dock; 0.6 apart they do not (RefusedArrangementsChangeNothing).
TEST(Join, DockingTolerance) {
  for (double gap : {0.25, 0.5}) {
    SCOPED_TRACE(gap);
    Session s(DocJson(Arrange({"Row", 1, 3, 1, 1, {0, 1, 2}}, gap)));
    const json kids = s.runLayer(kCmdSewDocked);
    ASSERT_EQ(kids.size(), 1u);
    EXPECT_EQ(kids[0].at("size"), json::array({3, 1}));
  }
}

// Arrangements that are not a full grid of docked meshes change nothing.
TEST(Join, RefusedArrangementsChangeNothing) {
  const std::pair<const char*, std::vector<json>> docs[] = {
      {"a row 0.6 apart", Arrange({"Row", 1, 3, 1, 1, {0, 1, 2}}, 0.6)},
      {"an L of three meshes: one point with three corners", Arrange({"L", 2, 2, 1, 1, {0, 1, 2}})},
      {"two meshes apart", Arrange({"Apart", 1, 3, 1, 1, {0, 2}})},
      {"a pair plus a lone mesh", Arrange({"PairAndOne", 1, 4, 1, 1, {0, 1, 3}})},
      {"two meshes sharing only one corner", Arrange({"Diagonal", 2, 2, 1, 1, {0, 3}})},
  };
  for (const auto& [name, art] : docs) {
    SCOPED_TRACE(name);
    Session s(DocJson(art));
    const json before = s.written();
    EXPECT_EQ(s.runWritten(kCmdSewDocked), before);
  }
}

// Meshes that were the only children of a group leave it: the result
// stands where the group stood and the emptied group is gone. A group that
// keeps other art keeps the result too.
TEST(Join, MeshesLeaveAGroupThatHeldOnlyThem) {
  MeshRecipe other = Cells(1, 1);
  other.id = "extra";
  other.artSelected = false;
  other.x0 = 100;
  const json extra = MeshJson(other);
  for (bool keeps : {false, true}) {
    SCOPED_TRACE(keeps);
    std::vector<json> inside = Arrange({"Pair", 1, 2, 1, 1, {0, 1}});
    if (keeps) inside.push_back(extra);
    json group = {{"type", "group"}, {"id", "g"}, {"children", inside}};
    Session s(keeps ? DocJson({group}) : DocJson({group, extra}));
    const json kids = s.runLayer(kCmdSewDocked);
    const json& result = keeps ? kids.at(0).at("children") : kids;
    ASSERT_EQ(kids.size(), keeps ? 1u : 2u);
    ASSERT_EQ(result.size(), 2u);
    EXPECT_EQ(result[0].at("size"), json::array({2, 1}));
    EXPECT_EQ(result[1].at("id"), "extra");
    if (keeps) {
      EXPECT_EQ(kids[0].at("id"), "g");
    }
  }
}

// Meshes win over selected paths.
TEST(Join, MeshesWinOverPaths) {
  std::vector<json> art = Arrange({"Pair", 1, 2, 1, 1, {0, 1}});
  for (int k = 0; k < 4; ++k)
    art.push_back({{"type", "path"},
                   {"selected", true},
                   {"id", "p" + std::to_string(k)},
                   {"segments", {{{"p", {200.0 + k, 0}}}, {{"p", {200.0 + k, 10}}}}}});
  Session s(DocJson(art));
  const json kids = s.runLayer(kCmdSewDocked);
  ASSERT_EQ(kids.size(), 5u);
  EXPECT_EQ(kids[0].at("type"), "mesh");
  EXPECT_EQ(kids[0].at("size"), json::array({2, 1}));
  for (size_t k = 1; k < 5; ++k) EXPECT_EQ(kids[k].at("type"), "path");
}

}  // namespace
}  // namespace lbtest
