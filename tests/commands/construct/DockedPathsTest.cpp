// "Make mesh from docked paths" (161 with fewer than two meshes selected):
// grids of every small size drawn in the usual orders, docking tolerance,
// dangling and closed paths, sets that are not grids, groups.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <tuple>

#include "commands/construct/ConstructDoc.h"

namespace constructtest {
namespace {

// Checks that `art` is the mesh of the a x b grid drawn by `paths`, with
// node (0, 0) at whichever grid corner and I along whichever grid side the
// builder started from, and every run shaped exactly like the path between
// its two nodes. Returns through `turned` whether I runs along the grid's
// columns.
void ExpectAnyGridMesh(const json& art, int a, int b, const std::vector<GridPath>& paths, bool* turned = nullptr) {
  ASSERT_EQ(art.at("type"), "mesh");
  // Grid coordinates of node (0, 0), and the grid steps of +I and +J.
  int ci = -1, cj = -1;
  for (int i : {0, a})
    for (int j : {0, b})
      if (NodeP(art, 0, 0) == GridPt(i, j)) ci = i, cj = j;
  ASSERT_GE(ci, 0) << "node (0, 0) is not at a grid corner";
  const int si = ci == 0 ? 1 : -1, sj = cj == 0 ? 1 : -1;
  const bool transposed = !(NodeP(art, 1, 0) == GridPt(ci + si, cj));
  if (turned) *turned = transposed;
  const int I = transposed ? b : a, J = transposed ? a : b;
  ASSERT_EQ(art.at("size"), json::array({I, J}));
  auto grid = [&](int i, int j) {
    return transposed ? std::pair{ci + si * j, cj + sj * i} : std::pair{ci + si * i, cj + sj * j};
  };
  for (int j = 0; j <= J; ++j)
    for (int i = 0; i <= I; ++i) {
      const auto [gi, gj] = grid(i, j);
      EXPECT_EQ(NodeP(art, i, j), GridPt(gi, gj)) << "node " << i << ", " << j;
      EXPECT_EQ(lbtest::NodeAt(art, i, j).at("color"), json({{"rgb", {kGray, kGray, kGray}}}));
      for (const char* axis : {"I", "J"}) {
        const bool alongI = axis[0] == 'I';
        if ((alongI && i == I) || (!alongI && j == J)) continue;
        const auto [ni, nj] = alongI ? grid(i + 1, j) : grid(i, j + 1);
        const bool horizontal = nj == gj;
        const int lowI = std::min(gi, ni), lowJ = std::min(gj, nj);
        const auto g = std::find_if(paths.begin(), paths.end(), [&](const GridPath& p) {
          return p.horizontal == horizontal && p.i == lowI && p.j == lowJ;
        });
        ASSERT_NE(g, paths.end());
        // The path's points from its lower-left end; the run may go the other way.
        const std::vector<Pt> path = g->reverse ? Reversed(ChainPoints(g->anchors)) : ChainPoints(g->anchors);
        EXPECT_EQ(Run(art, i, j, axis[0]), ni > gi || nj > gj ? path : Reversed(path))
            << "run from " << i << ", " << j << " along " << axis;
      }
    }
}

struct GridCase {
  int a, b;
  Order order;
  bool mix;
};

std::string Name(const ::testing::TestParamInfo<GridCase>& info) {
  const GridCase& c = info.param;
  const char* order = c.order == Order::RowsFirst ? "Rows" : c.order == Order::ColumnsFirst ? "Columns" : "Cells";
  return std::to_string(c.a) + "x" + std::to_string(c.b) + order + (c.mix ? "Mixed" : "");
}

std::vector<GridCase> AllGrids() {
  std::vector<GridCase> cases;
  for (int a = 1; a <= 6; ++a)
    for (int b = 1; b <= 6; ++b)
      for (Order o : {Order::RowsFirst, Order::ColumnsFirst, Order::CellByCell})
        for (bool mix : {false, true}) cases.push_back({a, b, o, mix});
  cases.push_back({9, 4, Order::RowsFirst, true});
  cases.push_back({4, 9, Order::ColumnsFirst, true});
  cases.push_back({8, 7, Order::CellByCell, false});
  cases.push_back({10, 10, Order::RowsFirst, true});
  return cases;
}

class EveryGrid : public ::testing::TestWithParam<GridCase> {};

TEST_P(EveryGrid, BecomesOneMeshShapedByItsPaths) {
  const GridCase& c = GetParam();
  const std::vector<GridPath> paths = GridPaths(c.a, c.b, c.order, c.mix);
  Session s(lbtest::DocJson(GridArt(paths)));
  const json kids = s.runLayer(kMeshFromDockedPaths);
  ASSERT_EQ(kids.size(), 1u);
  const json& mesh = kids[0];
  EXPECT_EQ(mesh.at("selected"), true);
  ASSERT_EQ(NodeP(mesh, 0, 0), GridPt(0, 0));
  bool transposed = false;
  ExpectAnyGridMesh(mesh, c.a, c.b, paths, &transposed);
  // A strip runs along I; otherwise I follows the first path drawn.
  const bool strip = c.a == 1 || c.b == 1;
  if (strip) {
    EXPECT_GE(mesh.at("size")[0], mesh.at("size")[1]);
  } else {
    EXPECT_EQ(transposed, c.order == Order::ColumnsFirst);
  }
}

INSTANTIATE_TEST_SUITE_P(DockedPaths, EveryGrid, ::testing::ValuesIn(AllGrids()), Name);

// Drawn in any order, in any directions: the builder may start from any
// corner, and still makes the whole grid.
TEST(DockedPaths, ShuffledGridsOfEverySize) {
  std::mt19937 random(20261124);
  for (int a = 1; a <= 7; ++a)
    for (int b = 1; b <= 7; ++b) {
      SCOPED_TRACE(std::to_string(a) + " x " + std::to_string(b));
      std::vector<GridPath> paths = GridPaths(a, b, Order::RowsFirst, false);
      std::shuffle(paths.begin(), paths.end(), random);
      for (GridPath& g : paths)
        if (random() % 2) {
          std::reverse(g.anchors.begin(), g.anchors.end());
          for (Anchor& x : g.anchors) std::swap(x.in, x.out);
          g.reverse = !g.reverse;
        }
      Session s(lbtest::DocJson(GridArt(paths)));
      const json kids = s.runLayer(kMeshFromDockedPaths);
      ASSERT_EQ(kids.size(), 1u);
      ExpectAnyGridMesh(kids[0], a, b, paths);
    }
}

// Ends within half a unit dock. Ends 0.6 apart do not: the two paths that
// end there dangle and are deleted, and what is left is no grid, so no
// mesh is made.
TEST(DockedPaths, EndsDockWithinHalfAUnit) {
  for (double offset : {0.4, 0.5, -0.5, 0.6}) {
    SCOPED_TRACE(offset);
    // A 1 x 1 grid whose right side, drawn upwards, starts `offset` off (40, 0).
    std::vector<GridPath> paths = GridPaths(1, 1, Order::RowsFirst, false);
    for (GridPath& g : paths)
      if (!g.horizontal && g.i == 1) g.anchors.front().p.h += offset;
    Session s(lbtest::DocJson(GridArt(paths)));
    const json before = Children(s.written());
    const json kids = s.runLayer(kMeshFromDockedPaths);
    if (offset < 0.55) {
      ASSERT_EQ(kids.size(), 1u);
      EXPECT_EQ(kids[0].at("type"), "mesh");
      continue;
    }
    // Rows first: bottom, top, left, right; bottom and right dangled.
    ASSERT_EQ(kids.size(), 2u);
    EXPECT_EQ(kids[0], before[1]);
    EXPECT_EQ(kids[1], before[2]);
  }
}

// Paths that cannot be edges are deleted and the grid is still made.
TEST(DockedPaths, DanglingAndClosedPathsAreDeleted) {
  const struct {
    const char* name;
    json extra;
  } cases[] = {
      {"dangling from a corner", PathArt({{GridPt(0, 0)}, {{-20, -20}}}, false)},
      {"dangling from a border node", PathArt({{GridPt(1, 0)}, {{40, -25}}}, false)},
      {"closed on itself", PathArt({{{10, 10}}, {{20, 10}}, {{10, 10}}}, true)},
      {"closed rectangle elsewhere", PathArt({{{200, 0}}, {{240, 0}}, {{240, 30}}, {{200, 30}}}, true)},
      {"single anchor", PathArt({{GridPt(2, 2)}}, false)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const std::vector<GridPath> paths = GridPaths(2, 2, Order::RowsFirst, true);
    std::vector<json> art = GridArt(paths);
    art.insert(art.begin() + 3, c.extra);
    Session s(lbtest::DocJson(art));
    const json kids = s.runLayer(kMeshFromDockedPaths);
    ASSERT_EQ(kids.size(), 1u);
    ASSERT_EQ(NodeP(kids[0], 0, 0), GridPt(0, 0));
    ExpectAnyGridMesh(kids[0], 2, 2, paths);
  }
}

// Sets that are not grids, with no dangling path: the document is left
// exactly as it was.
TEST(DockedPaths, SetsThatAreNoGridChangeNothing) {
  auto grid = [](int a, int b) { return GridPaths(a, b, Order::RowsFirst, false); };
  auto without = [](std::vector<GridPath> v, bool horizontal, int i, int j) {
    std::erase_if(v, [&](const GridPath& g) { return g.horizontal == horizontal && g.i == i && g.j == j; });
    return v;
  };
  auto shifted = [](std::vector<GridPath> v, double dh) {
    for (GridPath& g : v)
      for (Anchor& a : g.anchors) a.p.h += dh;
    return v;
  };
  auto join = [](std::vector<GridPath> a, const std::vector<GridPath>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
  };
  const struct {
    const char* name;
    std::vector<GridPath> paths;
  } cases[] = {
      // Three cells in an L: five corners and a three-path reflex node.
      {"L of three cells", without(without(grid(2, 2), true, 1, 2), false, 2, 1)},
      {"two separate squares", join(grid(1, 1), shifted(grid(1, 1), 200))},
      {"2 x 2 grid without an inner path", without(grid(2, 2), true, 0, 1)},
      {"3 x 2 grid without an inner path", without(grid(3, 2), false, 1, 1)},
      {"square with a diagonal", [&] {
         std::vector<GridPath> v = grid(1, 1);
         v.push_back({true, 0, 0, false, {{GridPt(0, 0)}, {GridPt(1, 1)}}});
         return v;
       }()},
      {"three paths only", without(grid(1, 1), true, 0, 1)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Session s(lbtest::DocJson(GridArt(c.paths)));
    const json before = s.written();
    EXPECT_EQ(s.runWritten(kMeshFromDockedPaths), before);
  }
}

// With two meshes selected the button joins meshes, never paths; with one
// the paths still become a mesh.
TEST(DockedPaths, TwoSelectedMeshesLeaveThePathsAloneOneDoesNot) {
  const json mesh = {{"type", "mesh"}, {"size", {1, 1}}, {"selected", true},
                     {"nodes", json::array({{{"p", {300, 0}}}, {{"p", {340, 0}}}, {{"p", {300, 30}}}, {{"p", {340, 30}}}})}};
  json other = mesh;
  for (json& n : other["nodes"]) n["p"][0] = n["p"][0].get<double>() + 100;
  for (int meshes : {1, 2}) {
    std::vector<json> art = GridArt(GridPaths(2, 1, Order::RowsFirst, false));
    art.push_back(mesh);
    if (meshes == 2) art.push_back(other);
    Session s(lbtest::DocJson(art));
    const json before = s.written();
    const json kids = s.runLayer(kMeshFromDockedPaths);
    if (meshes == 2) {
      EXPECT_EQ(s.written(), before);
      continue;
    }
    ASSERT_EQ(kids.size(), 2u);
    EXPECT_EQ(kids[0].at("size")[0], 2);
  }
}

// The mesh takes the place of the topmost path in the paint order; art
// that is not selected stays where it is.
TEST(DockedPaths, MeshTakesTheTopmostPathsPlace) {
  std::vector<json> art = GridArt(GridPaths(1, 1, Order::RowsFirst, false));
  json above = PathArt({{{0, 100}}, {{10, 100}}}, false, false);
  above["id"] = "above";
  json between = PathArt({{{0, 200}}, {{10, 200}}}, false, false);
  between["id"] = "between";
  art.insert(art.begin() + 2, between);
  art.insert(art.begin(), above);
  Session s(lbtest::DocJson(art));
  const json kids = s.runLayer(kMeshFromDockedPaths);
  ASSERT_EQ(kids.size(), 3u);
  EXPECT_EQ(kids[0].at("id"), "above");
  EXPECT_EQ(kids[1].at("type"), "mesh");
  EXPECT_EQ(kids[2].at("id"), "between");
}

// Paths drawn in a selected group: the mesh leaves the group, which then
// holds nothing; a group with other art keeps the mesh inside.
TEST(DockedPaths, MeshLeavesAGroupThatHeldOnlyThePaths) {
  const std::vector<json> paths = GridArt(GridPaths(2, 2, Order::RowsFirst, false));
  {
    json group = {{"type", "group"}, {"selected", true}, {"children", paths}};
    Session s(lbtest::DocJson({group}));
    const json kids = s.runLayer(kMeshFromDockedPaths);
    ASSERT_EQ(kids.size(), 2u);
    EXPECT_EQ(kids[0].at("type"), "mesh");
    EXPECT_EQ(kids[1].at("type"), "group");
    EXPECT_TRUE(kids[1].at("children").empty());
  }
  {
    std::vector<json> inside = paths;
    inside.push_back(PathArt({{{0, 100}}, {{10, 100}}}, false, false));
    json group = {{"type", "group"}, {"children", inside}};
    Session s(lbtest::DocJson({group}));
    const json kids = s.runLayer(kMeshFromDockedPaths);
    ASSERT_EQ(kids.size(), 1u);
    ASSERT_EQ(kids[0].at("children").size(), 2u);
    EXPECT_EQ(kids[0].at("children")[0].at("type"), "mesh");
  }
}

// Smooth flags follow the handles: straight paths that continue each other
// at a node make it smooth along that line, a kink does not.
TEST(DockedPaths, SmoothFlagsFollowTheHandles) {
  for (bool kink : {false, true}) {
    SCOPED_TRACE(kink ? "kink" : "straight");
    std::vector<GridPath> paths = GridPaths(2, 1, Order::RowsFirst, false);
    // The bottom row turns its handles up at the middle node.
    if (kink)
      for (GridPath& g : paths)
        if (g.horizontal && g.j == 0) {
          if (g.i == 0) g.anchors[1].in = Pt{40, 10};
          else g.anchors[0].out = Pt{50, 10};
        }
    Session s(lbtest::DocJson(GridArt(paths)));
    const json kids = s.runLayer(kMeshFromDockedPaths);
    ASSERT_EQ(kids.size(), 1u);
    EXPECT_EQ(lbtest::NodeAt(kids[0], 1, 0).at("smooth").at("I+"), !kink);
    EXPECT_EQ(lbtest::NodeAt(kids[0], 1, 1).at("smooth").at("I+"), true);
  }
}

}  // namespace
}  // namespace constructtest
