// Command 131 with Ctrl+Alt: vertices, knots and handles in "MeshPoints".
#include "LBModule.h"
#include "VisDoc.h"

namespace vistest {
namespace {

constexpr int kGrid = kCmdSetOfPaths;

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
  const auto h = Anchors(Child(c10, "-I"));
  ASSERT_EQ(h.size(), 1u);
  EXPECT_NEAR(h[0].first, 20.0 / 3, 1e-12);
  EXPECT_EQ(h[0].second, 0.0);
  const auto l = Anchors(Child(Child(lines, "1,0"), "+J"));
  ASSERT_EQ(l.size(), 2u);
  EXPECT_EQ(l[0], (std::pair<double, double>{10, 0}));
  EXPECT_NEAR(l[1].second, 10.0 / 3, 1e-12);
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

TEST(Dots, PartialSelectionDrawsOnlySelectedVertices) {
  MeshRecipe m = Cells(2, 1);
  m.whole = false;
  m.selected = {{1, 0}, {2, 1}};
  Session s(MeshDoc({m}));
  const json kids = RunDots(s);
  EXPECT_EQ(ChildNames(Child(kids[0], "Nodes")), (Strs{"1,0", "2,1"}));
  EXPECT_EQ(ChildNames(kids[0]), (Strs{"Nodes", "WithControls"}));
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

TEST(Dots, KnotsOnAnUndrawnSegmentAreIgnored) {
  MeshRecipe m = Cells(1, 1);
  m.whole = false;
  m.selected = {{0, 0}, {0, 1}, {1, 1}};  // (1, 0) unselected
  m.runs = {KnotRun()};
  Session s(MeshDoc({m}));
  const json kids = RunDots(s);
  EXPECT_EQ(ChildNames(kids[0]), (Strs{"Nodes", "WithControls"}));
  EXPECT_FALSE(Child(kids[0], "WithControls").at("hidden").get<bool>());
}

struct StyleCase {
  const char* title;
  std::vector<std::string> defined;
  const char* plusI;   // style of the +I handle point of node (0, 0)
  const char* plusJ;   // style of its +J handle point
  const char* lineI;   // style of its +I line
  const char* node;    // style of its node point
};

class DotsStyles : public ::testing::TestWithParam<StyleCase> {};

TEST_P(DotsStyles, ChainsResolveFromSignedToBase) {
  json styles = json::array();
  for (const auto& n : GetParam().defined) styles.push_back(Style(n, 2.0));
  Session s(MeshDoc({Cells(1, 1)}, styles));
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
        StyleCase{"none", {}, "", "", "", ""},
        StyleCase{"control", {"[LB][Control]"}, "[LB][Control]", "[LB][Control]", "", ""},
        StyleCase{"signed", {"[LB][Control]", "[LB][Control][I][+]"}, "[LB][Control][I][+]", "[LB][Control]", "", ""},
        StyleCase{"axis", {"[LB][Control][J]", "[LB][LineToControl][I]"}, "", "[LB][Control][J]",
                  "[LB][LineToControl][I]", ""},
        StyleCase{"lines", {"[LB][LineToControl]", "[LB][Node]"}, "", "", "[LB][LineToControl]", "[LB][Node]"}),
    [](const auto& info) { return std::string(info.param.title); });

}  // namespace
}  // namespace vistest
