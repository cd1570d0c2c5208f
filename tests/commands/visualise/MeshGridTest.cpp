// Command 131 without Ctrl+Alt: grid lines drawn as paths in "MeshGrid".
#include "LBModule.h"
#include "VisDoc.h"

namespace vistest {
namespace {

constexpr int kGrid = kCmdSetOfPaths;

// The art of one grid line in an axis group: either one path named like
// the line or a group of that name holding several paths.
std::vector<Pts> LinePaths(const json& axisGroup, const std::string& line) {
  std::vector<Pts> out;
  const json& art = Child(axisGroup, line);
  if (art.is_null()) return out;
  if (art.at("type") == "path") {
    out.push_back(Anchors(art));
  } else {
    for (const auto& p : art.at("children")) {
      EXPECT_EQ(p.at("name"), line);
      out.push_back(Anchors(p));
    }
  }
  return out;
}

TEST(MeshGrid, WholeMeshEachLineOnePathInOrder) {
  Session s(MeshDoc({Cells(2, 1)}));
  const json kids = s.runLayer(kGrid);
  ASSERT_EQ(Names(kids), (Strs{"MeshGrid", ""}));
  const json& grid = kids[0];
  EXPECT_EQ(grid.at("type"), "group");
  EXPECT_EQ(Names(grid.at("children")), (Strs{"I-axis", "J-axis"}));
  const json& axI = Child(grid, "I-axis");
  const json& axJ = Child(grid, "J-axis");
  EXPECT_EQ(Names(axI.at("children")), (Strs{"J=0", "J=1"}));
  EXPECT_EQ(Names(axJ.at("children")), (Strs{"I=0", "I=1", "I=2"}));
  for (const auto& p : axI.at("children")) EXPECT_EQ(p.at("type"), "path");

  // Exact Bezier points of J=0: straight runs with handles at thirds.
  const json& j0 = Child(axI, "J=0");
  EXPECT_FALSE(j0.at("closed").get<bool>());
  ASSERT_EQ(j0.at("segments").size(), 3u);
  const json& seg = j0.at("segments");
  EXPECT_EQ(seg[0].at("p"), json({0.0, 0.0}));
  EXPECT_EQ(seg[0].at("in"), json({0.0, 0.0}));
  EXPECT_NEAR(seg[0].at("out")[0].get<double>(), 10.0 / 3, 1e-12);
  EXPECT_NEAR(seg[1].at("in")[0].get<double>(), 20.0 / 3, 1e-12);
  EXPECT_EQ(seg[1].at("p"), json({10.0, 0.0}));
  EXPECT_NEAR(seg[1].at("out")[0].get<double>(), 40.0 / 3, 1e-12);
  EXPECT_EQ(seg[2].at("p"), json({20.0, 0.0}));
  EXPECT_EQ(seg[2].at("out"), json({20.0, 0.0}));
  // Through-going straight anchor: smooth.
  EXPECT_FALSE(seg[1].at("corner").get<bool>());

  // The plain look: no fill, black RGB stroke of width 1, no style.
  EXPECT_TRUE(j0.at("fill").is_null());
  EXPECT_EQ(j0.at("stroke"), json({{"color", {{"rgb", {0.0, 0.0, 0.0}}}}, {"width", 1.0}}));
  EXPECT_FALSE(j0.contains("graphicStyle"));
  EXPECT_EQ(Anchors(Child(axJ, "I=2")), (Pts{{20, 0}, {20, 10}}));
}

// Line J=0 of a 2 x 1 mesh whose first run carries a vertex at (5, 0):
// how the three variants cut it.
struct CutCase {
  const char* title;
  bool alt, ctrl;
  std::vector<Pts> j0;
};

class MeshGridCuts : public ::testing::TestWithParam<CutCase> {};

TEST_P(MeshGridCuts, PathsEndWhereTheVariantSays) {
  MeshRecipe m = Cells(2, 1);
  m.runs.push_back(SplitRun(m, 0, 0, 'I', {{"kind", "vertex"}}));
  Session s(MeshDoc({m}));
  const json kids = s.runLayer(kGrid, GetParam().alt, GetParam().ctrl);
  const json& axI = Child(kids[0], "I-axis");
  EXPECT_EQ(LinePaths(axI, "J=0"), GetParam().j0);
  // The other lines have no vertex: one path, or one per segment.
  EXPECT_EQ(LinePaths(axI, "J=1").size(), GetParam().alt || GetParam().ctrl ? 2u : 1u);
}

INSTANTIATE_TEST_SUITE_P(Variants, MeshGridCuts,
    ::testing::Values(CutCase{"none", false, false, {{{0, 0}, {5, 0}, {10, 0}, {20, 0}}}},
                      CutCase{"ctrl", false, true, {{{0, 0}, {5, 0}, {10, 0}}, {{10, 0}, {20, 0}}}},
                      CutCase{"alt", true, false, {{{0, 0}, {5, 0}}, {{5, 0}, {10, 0}}, {{10, 0}, {20, 0}}}}),
    [](const auto& info) { return std::string(info.param.title); });

TEST(MeshGrid, OneCellSelectedDrawsItsFourSides) {
  MeshRecipe m = Cells(3, 2);
  m.whole = false;
  m.selected = {{1, 0}, {2, 0}, {1, 1}, {2, 1}};
  Session s(MeshDoc({m}));
  const json kids = s.runLayer(kGrid);
  const json& grid = kids[0];
  const json& axI = Child(grid, "I-axis");
  const json& axJ = Child(grid, "J-axis");
  EXPECT_EQ(Names(axI.at("children")), (Strs{"J=0", "J=1"}));
  EXPECT_EQ(Names(axJ.at("children")), (Strs{"I=1", "I=2"}));
  EXPECT_EQ(Anchors(Child(axI, "J=1")), (Pts{{10, 10}, {20, 10}}));
  EXPECT_EQ(Anchors(Child(axJ, "I=1")), (Pts{{10, 0}, {10, 10}}));
}

TEST(MeshGrid, UnselectedVertexBreaksTheLineAndEmptyAxisGoes) {
  MeshRecipe m = Cells(4, 1);
  m.whole = false;
  m.selected = {{0, 0}, {1, 0}, {3, 0}, {4, 0}};
  Session s(MeshDoc({m}));
  const json kids = s.runLayer(kGrid);
  const json& grid = kids[0];
  // No line along J has both ends selected.
  EXPECT_EQ(Names(grid.at("children")), (Strs{"I-axis"}));
  EXPECT_EQ(LinePaths(Child(grid, "I-axis"), "J=0"), (std::vector<Pts>{{{0, 0}, {10, 0}}, {{30, 0}, {40, 0}}}));
}

TEST(MeshGrid, UnselectedNonNodeVertexBreaksTheRun) {
  MeshRecipe m = Cells(1, 1);
  m.whole = false;
  m.selected = {{0, 0}, {1, 0}};
  m.runs.push_back(SplitRun(m, 0, 0, 'I', {{"kind", "vertex"}, {"selected", false}}));
  Session s(MeshDoc({m}));
  const json kids = s.runLayer(kGrid);
  // Both halves touch the unselected vertex: nothing is drawn at all.
  EXPECT_EQ(Names(kids), (Strs{""}));
}

TEST(MeshGrid, TwoDigitLineNames) {
  Session s(MeshDoc({Cells(11, 1)}));
  const json kids = s.runLayer(kGrid);
  const auto names = Names(Child(kids[0], "J-axis").at("children"));
  ASSERT_EQ(names.size(), 12u);
  EXPECT_EQ(names[10], "I=10");
  EXPECT_EQ(names[11], "I=11");
}

TEST(MeshGrid, EachMeshGetsItsGridDirectlyAboveItInsideItsGroup) {
  MeshRecipe a = Cells(1, 1), b = Cells(1, 1);
  b.x0 = 100;
  json other = {{"type", "path"}, {"name", "other"}, {"segments", {{{"p", {0, 0}}}}}};
  json group = {{"type", "group"}, {"name", "G"}, {"children", {MeshJson(a), other}}};
  Session s(DocJson({group, MeshJson(b)}));
  const json kids = s.runLayer(kGrid);
  ASSERT_EQ(Names(kids), (Strs{"G", "MeshGrid", ""}));
  EXPECT_EQ(Names(kids[0].at("children")), (Strs{"MeshGrid", "", "other"}));
  EXPECT_EQ(Anchors(Child(Child(kids[1], "J-axis"), "I=0")), (Pts{{100, 0}, {100, 10}}));
  EXPECT_EQ(Anchors(Child(Child(kids[0].at("children")[0], "J-axis"), "I=0")), (Pts{{0, 0}, {0, 10}}));
}

struct StyleCase {
  const char* title;
  std::vector<std::string> defined;
  const char* onI;  // style expected on the I-axis paths, "" for none
  const char* onJ;
};

class MeshGridStyles : public ::testing::TestWithParam<StyleCase> {};

TEST_P(MeshGridStyles, AxisStylesFallBackToTheCommonOne) {
  json styles = json::array();
  for (const auto& n : GetParam().defined) styles.push_back(Style(n, 2.0));
  Session s(MeshDoc({Cells(1, 1)}, styles));
  const json kids = s.runLayer(kGrid);
  const json& pi = Child(Child(kids[0], "I-axis"), "J=0");
  const json& pj = Child(Child(kids[0], "J-axis"), "I=0");
  EXPECT_EQ(pi.value("graphicStyle", ""), GetParam().onI);
  EXPECT_EQ(pj.value("graphicStyle", ""), GetParam().onJ);
  // A style replaces the black stroke completely.
  const double wi = pi.at("stroke").at("width");
  EXPECT_EQ(wi, std::string(GetParam().onI).empty() ? 1.0 : 2.0);
}

INSTANTIATE_TEST_SUITE_P(
    Lookups, MeshGridStyles,
    ::testing::Values(StyleCase{"none", {}, "", ""},
                      StyleCase{"common", {"[LB][Axis]"}, "[LB][Axis]", "[LB][Axis]"},
                      StyleCase{"ionly", {"[LB][Axis][I]"}, "[LB][Axis][I]", ""},
                      StyleCase{"both", {"[LB][Axis]", "[LB][Axis][J]"}, "[LB][Axis]", "[LB][Axis][J]"}),
    [](const auto& info) { return std::string(info.param.title); });

TEST(MeshGrid, KnotsKeepTheirCurveAndCornerFlags) {
  MeshRecipe m = Cells(1, 1);
  // Run (0,0)-I: a smooth knot at (5, 2); run (0,1)-I: a corner knot.
  json corner = {{"node", {0, 1}}, {"axis", "I"}, {"points", {{0, 10}, {1, 11}, {3, 12}, {5, 12}, {7, 10}, {9, 11}, {10, 10}}},
                 {"inner", {{{"kind", "knot"}}}}};
  m.runs = {KnotRun(), corner};
  Session s(MeshDoc({m}));
  const json kids = s.runLayer(kGrid);
  const json& axI = Child(kids[0], "I-axis");
  const json& p0 = Child(axI, "J=0").at("segments");
  ASSERT_EQ(p0.size(), 3u);
  for (const char* k : {"p", "in", "out", "corner"})
    EXPECT_EQ(p0[1].at(k), (json{{"p", {5.0, 2.0}}, {"in", {3.0, 2.0}}, {"out", {7.0, 2.0}}, {"corner", false}}).at(k));
  EXPECT_EQ(p0[0].at("out"), json({1.0, 1.0}));
  EXPECT_EQ(p0[2].at("in"), json({9.0, 1.0}));
  const json& p1 = Child(axI, "J=1");
  EXPECT_TRUE(p1.at("segments")[1].at("corner").get<bool>());
}

}  // namespace
}  // namespace vistest
