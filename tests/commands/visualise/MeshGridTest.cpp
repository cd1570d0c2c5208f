// Command 131: grid lines drawn as paths in "MeshGrid"; with Ctrl+Alt,
// vertices, knots and handles in "MeshPoints".
#include <map>

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

  // Exact Bezier points of J=0 (h of in, p, out; v = 0): straight runs with
  // handles at thirds, the ends retracted, the through-going anchor smooth.
  const json& j0 = Child(axI, "J=0");
  EXPECT_FALSE(j0.at("closed").get<bool>());
  ASSERT_EQ(j0.at("segments").size(), 3u);
  const double h[3][3] = {{0, 0, 10.0 / 3}, {20.0 / 3, 10, 40.0 / 3}, {50.0 / 3, 20, 20}};
  for (int k = 0; k < 3; ++k)
    for (int q = 0; q < 3; ++q) {
      const json& pt = j0.at("segments")[k].at(q == 0 ? "in" : q == 1 ? "p" : "out");
      EXPECT_NEAR(pt[0].get<double>(), h[k][q], 1e-12) << k << ", " << q;
      EXPECT_EQ(pt[1].get<double>(), 0.0) << k << ", " << q;
    }
  EXPECT_FALSE(j0.at("segments")[1].at("corner").get<bool>());

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

// Partial selections: only runs with both ends selected are drawn, an
// unselected vertex breaks a line, and an axis (or the whole grid) with
// nothing to draw is not made.
TEST(MeshGrid, PartialSelectionsDrawOnlyRunsBetweenSelectedVertices) {
  MeshRecipe cell = Cells(3, 2), broken = Cells(4, 1), split = Cells(1, 1);
  for (MeshRecipe* m : {&cell, &broken, &split}) m->whole = false;
  cell.selected = {{1, 0}, {2, 0}, {1, 1}, {2, 1}};
  broken.selected = {{0, 0}, {1, 0}, {3, 0}, {4, 0}};
  split.selected = {{0, 0}, {1, 0}};
  split.runs.push_back(SplitRun(split, 0, 0, 'I', {{"kind", "vertex"}, {"selected", false}}));
  // Each axis group made, and each line in it ("axis/line") with its paths.
  using Lines = std::map<std::string, std::vector<Pts>>;
  const std::pair<MeshRecipe, Lines> cases[] = {
      {cell, {{"I-axis", {}}, {"I-axis/J=0", {{{10, 0}, {20, 0}}}}, {"I-axis/J=1", {{{10, 10}, {20, 10}}}},
              {"J-axis", {}}, {"J-axis/I=1", {{{10, 0}, {10, 10}}}}, {"J-axis/I=2", {{{20, 0}, {20, 10}}}}}},
      {broken, {{"I-axis", {}}, {"I-axis/J=0", {{{0, 0}, {10, 0}}, {{30, 0}, {40, 0}}}}}},
      {split, {}},
  };
  for (const auto& [m, want] : cases) {
    Session s(MeshDoc({m}));
    const json kids = s.runLayer(kGrid);
    EXPECT_EQ(kids.size(), want.empty() ? 1u : 2u);
    Lines got;
    for (const auto& axis : kids.size() > 1 ? kids[0].at("children") : json::array()) {
      const std::string name = axis.at("name");
      got[name];
      for (const auto& line : axis.at("children"))
        got[name + "/" + line.at("name").get<std::string>()] = LinePaths(axis, line.at("name"));
    }
    EXPECT_EQ(got, want);
  }
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
  Session s(MeshDoc({Cells(1, 1)}, GetParam().defined));
  const json kids = s.runLayer(kGrid);
  const json& pi = Child(Child(kids[0], "I-axis"), "J=0");
  const json& pj = Child(Child(kids[0], "J-axis"), "I=0");
  EXPECT_EQ(pi.value("graphicStyle", ""), GetParam().onI);
  EXPECT_EQ(pj.value("graphicStyle", ""), GetParam().onJ);
  // A style replaces the black stroke completely.
  EXPECT_EQ(pi.at("stroke").at("width"), std::string(GetParam().onI).empty() ? 1.0 : 2.0);
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

// ---- Ctrl+Alt: "MeshPoints" ----------------------------------------------

json RunDots(Session& s) { return s.runLayer(kGrid, true, true); }

std::vector<std::string> ChildNames(const json& art) { return Names(art.at("children")); }

TEST(Dots, WholeMeshWithoutKnots) {
  MeshRecipe m = Cells(1, 1);
  Session s(MeshDoc({m}));
  const json kids = RunDots(s);
  ASSERT_EQ(Names(kids), (Strs{"MeshPoints", ""}));
  const json& top = kids[0];
  EXPECT_EQ(ChildNames(top), (Strs{"Nodes", "WithControls"}));
  const json& nodes = Child(top, "Nodes");
  EXPECT_EQ(ChildNames(nodes), (Strs{"0,0", "1,0", "0,1", "1,1"}));
  EXPECT_EQ(Anchors(Child(nodes, "1,0")), (Pts{{10, 0}}));
  EXPECT_FALSE(Child(nodes, "1,0").at("closed").get<bool>());

  const json& with = Child(top, "WithControls");
  EXPECT_FALSE(with.at("hidden").get<bool>());
  EXPECT_EQ(ChildNames(with), (Strs{"Controls", "LinesToControls"}));
  const json& ctl = Child(Child(with, "Controls"), "Nodes");
  const json& lines = Child(Child(with, "LinesToControls"), "Nodes");
  EXPECT_EQ(ChildNames(ctl), (Strs{"0,0", "1,0", "0,1", "1,1"}));
  // Node (1, 0): its I-backward and J-forward handles.
  const json& c10 = Child(ctl, "1,0");
  EXPECT_EQ(ChildNames(c10), (Strs{"-I", "+J"}));
  EXPECT_TRUE(SamePoints(Anchors(Child(c10, "-I")), {{20.0 / 3, 0}}, 1e-12));
  EXPECT_TRUE(SamePoints(Anchors(Child(Child(lines, "1,0"), "+J")), {{10, 0}, {10, 10.0 / 3}}, 1e-12));
  // No style anywhere: the plain black stroke.
  EXPECT_EQ(Child(c10, "-I").at("stroke"), json({{"color", {{"rgb", {0.0, 0.0, 0.0}}}}, {"width", 1.0}}));
  EXPECT_FALSE(Child(c10, "-I").contains("graphicStyle"));
}

TEST(Dots, HandleCountsOfCornerSideAndInnerNodes) {
  Session s(MeshDoc({Cells(2, 2)}));
  const json kids = RunDots(s);
  const json& ctl = Child(Child(Child(kids[0], "WithControls"), "Controls"), "Nodes");
  EXPECT_EQ(ChildNames(Child(ctl, "0,0")), (Strs{"+I", "+J"}));
  EXPECT_EQ(ChildNames(Child(ctl, "1,0")), (Strs{"-I", "+I", "+J"}));
  EXPECT_EQ(ChildNames(Child(ctl, "1,1")), (Strs{"-I", "-J", "+I", "+J"}));
  EXPECT_EQ(ChildNames(Child(ctl, "2,2")), (Strs{"-I", "-J"}));
}

TEST(Dots, NonNodeVerticesAndTwoDigitNodeNames) {
  MeshRecipe m = Cells(10, 1);
  m.runs.push_back(SplitRun(m, 9, 1, 'I', {{"kind", "vertex"}}));
  Session s(MeshDoc({m}));
  const json kids = RunDots(s);
  const json& top = kids[0];
  EXPECT_EQ(ChildNames(top), (Strs{"Nodes", "Vertices", "WithControls"}));
  EXPECT_EQ(ChildNames(Child(top, "Vertices")), (Strs{"lbVertex"}));
  EXPECT_EQ(Anchors(Child(Child(top, "Vertices"), "lbVertex")), (Pts{{95, 10}}));
  const auto names = ChildNames(Child(top, "Nodes"));
  ASSERT_EQ(names.size(), 22u);
  EXPECT_EQ(names[10], "10,0");
  EXPECT_EQ(names[21], "10,1");
  const json& v = Child(Child(Child(Child(top, "WithControls"), "Controls"), "Vertices"), "lbVertex");
  EXPECT_EQ(ChildNames(v), (Strs{"-I", "+I"}));
}

TEST(Dots, KnotsDrawTrueControlsAndHideTheOthers) {
  MeshRecipe m = Cells(1, 1);
  m.runs = {KnotRun()};
  Session s(MeshDoc({m}));
  const json kids = RunDots(s);
  const json& top = kids[0];
  EXPECT_EQ(ChildNames(top), (Strs{"Nodes", "WithTrueControls", "WithControls"}));
  EXPECT_TRUE(Child(top, "WithControls").at("hidden").get<bool>());
  const json& wt = Child(top, "WithTrueControls");
  EXPECT_FALSE(wt.at("hidden").get<bool>());
  EXPECT_EQ(ChildNames(wt), (Strs{"Knots", "Concrols", "LinesToControls"}));
  EXPECT_EQ(ChildNames(Child(wt, "Knots")), (Strs{"knot"}));
  EXPECT_EQ(Anchors(Child(Child(wt, "Knots"), "knot")), (Pts{{5, 2}}));
  const json& cc = Child(wt, "Concrols");
  EXPECT_EQ(ChildNames(cc), (Strs{"Nodes", "Knots"}));
  const json& knotCtl = Child(Child(cc, "Knots"), "knot");
  EXPECT_EQ(ChildNames(knotCtl), (Strs{"-I", "+I"}));
  EXPECT_EQ(Anchors(Child(knotCtl, "-I")), (Pts{{3, 2}}));
  EXPECT_EQ(Anchors(Child(knotCtl, "+I")), (Pts{{7, 2}}));
  const json& knotLines = Child(Child(Child(wt, "LinesToControls"), "Knots"), "knot");
  EXPECT_EQ(Anchors(Child(knotLines, "-I")), (Pts{{5, 2}, {3, 2}}));
  EXPECT_EQ(Anchors(Child(knotLines, "+I")), (Pts{{5, 2}, {7, 2}}));
  // True controls of the vertices: point 1 of each segment.
  const json& n00 = Child(Child(cc, "Nodes"), "0,0");
  EXPECT_EQ(Anchors(Child(n00, "+I")), (Pts{{1, 1}}));
  const json& n10 = Child(Child(cc, "Nodes"), "1,0");
  EXPECT_EQ(Anchors(Child(n10, "-I")), (Pts{{9, 1}}));
}

// Partial selections: only the selected vertices are drawn, and a knot on
// a segment with an unselected end is ignored.
TEST(Dots, PartialSelectionsDrawOnlySelectedVerticesAndTheirKnots) {
  MeshRecipe some = Cells(2, 1), knot = Cells(1, 1);
  some.selected = {{1, 0}, {2, 1}};
  knot.selected = {{0, 0}, {0, 1}, {1, 1}};  // (1, 0) unselected
  knot.runs = {KnotRun()};
  const std::pair<MeshRecipe, Strs> cases[] = {{some, {"1,0", "2,1"}}, {knot, {"0,0", "0,1", "1,1"}}};
  for (auto [m, nodes] : cases) {
    m.whole = false;
    Session s(MeshDoc({m}));
    const json kids = RunDots(s);
    EXPECT_EQ(ChildNames(kids[0]), (Strs{"Nodes", "WithControls"}));
    EXPECT_EQ(ChildNames(Child(kids[0], "Nodes")), nodes);
    EXPECT_FALSE(Child(kids[0], "WithControls").at("hidden").get<bool>());
  }
}

struct DotsStyleCase {
  const char* title;
  std::vector<std::string> defined;
  const char* plusI;   // style of the +I handle point of node (0, 0)
  const char* plusJ;   // style of its +J handle point
  const char* lineI;   // style of its +I line
  const char* node;    // style of its node point
};

class DotsStyles : public ::testing::TestWithParam<DotsStyleCase> {};

TEST_P(DotsStyles, ChainsResolveFromSignedToBase) {
  Session s(MeshDoc({Cells(1, 1)}, GetParam().defined));
  const json kids = RunDots(s);
  const json& top = kids[0];
  const json& with = Child(top, "WithControls");
  const json& c00 = Child(Child(Child(with, "Controls"), "Nodes"), "0,0");
  const json& l00 = Child(Child(Child(with, "LinesToControls"), "Nodes"), "0,0");
  EXPECT_EQ(Child(c00, "+I").value("graphicStyle", ""), GetParam().plusI);
  EXPECT_EQ(Child(c00, "+J").value("graphicStyle", ""), GetParam().plusJ);
  EXPECT_EQ(Child(l00, "+I").value("graphicStyle", ""), GetParam().lineI);
  EXPECT_EQ(Child(Child(top, "Nodes"), "0,0").value("graphicStyle", ""), GetParam().node);
}

INSTANTIATE_TEST_SUITE_P(
    Lookups, DotsStyles,
    ::testing::Values(
        DotsStyleCase{"none", {}, "", "", "", ""},
        DotsStyleCase{"control", {"[LB][Control]"}, "[LB][Control]", "[LB][Control]", "", ""},
        DotsStyleCase{"signed", {"[LB][Control]", "[LB][Control][I][+]"}, "[LB][Control][I][+]", "[LB][Control]", "", ""},
        DotsStyleCase{"axis", {"[LB][Control][J]", "[LB][LineToControl][I]"}, "", "[LB][Control][J]",
                  "[LB][LineToControl][I]", ""},
        DotsStyleCase{"lines", {"[LB][LineToControl]", "[LB][Node]"}, "", "", "[LB][LineToControl]", "[LB][Node]"}),
    [](const auto& info) { return std::string(info.param.title); });

}  // namespace
}  // namespace vistest
