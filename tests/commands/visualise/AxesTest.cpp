// Command 132: the red and blue axes ("Coords") and the corner squares
// ("Corner Nodes").
#include "LBModule.h"
#include "VisDoc.h"

namespace vistest {
namespace {

constexpr int kAxes = kCmdAxesAndNodes;

TEST(Axes, FourByThreeMeshHalfAxesAndNamedCorners) {
  Session s(MeshDoc({Cells(4, 3)}));
  const json kids = s.runLayer(kAxes);
  // "Coords" is made first; "Corner Nodes" then lands between it and the mesh.
  ASSERT_EQ(Names(kids), (std::vector<std::string>{"Coords", "Corner Nodes", ""}));
  const json& coords = kids[0];
  EXPECT_EQ(Names(coords.at("children")), (std::vector<std::string>{"I-axis", "J-axis"}));
  const json& ai = Child(coords, "I-axis");
  const json& aj = Child(coords, "J-axis");
  EXPECT_EQ(Anchors(ai), (Pts{{0, 0}, {10, 0}, {20, 0}}));
  EXPECT_EQ(Anchors(aj), (Pts{{0, 0}, {0, 10}, {0, 20}}));
  EXPECT_EQ(ai.at("stroke"), json({{"color", {{"rgb", {1.0, 0.0, 0.0}}}}, {"width", 3.0}}));
  EXPECT_EQ(aj.at("stroke"), json({{"color", {{"rgb", {0.0, 0.0, 1.0}}}}, {"width", 3.0}}));
  EXPECT_TRUE(ai.at("fill").is_null());
  EXPECT_FALSE(ai.at("closed").get<bool>());
  for (const auto& seg : ai.at("segments")) EXPECT_TRUE(seg.at("corner").get<bool>());
  // Exact handles: the runs' thirds, the ends retracted.
  EXPECT_NEAR(ai.at("segments")[1].at("in")[0].get<double>(), 20.0 / 3, 1e-12);
  EXPECT_EQ(ai.at("segments")[2].at("out"), json({20.0, 0.0}));

  const json& corners = kids[1];
  EXPECT_EQ(Names(corners.at("children")), (std::vector<std::string>{"0,0", "4,0", "0,3", "4,3"}));
  const json& sq = Child(corners, "4,3");
  EXPECT_TRUE(sq.at("closed").get<bool>());
  EXPECT_EQ(Anchors(sq), (Pts{{36, 26}, {36, 34}, {44, 34}, {44, 26}}));
  EXPECT_EQ(sq.at("stroke"), json({{"color", {{"rgb", {0.0, 0.0, 0.0}}}}, {"width", 1.0}}));
  EXPECT_TRUE(sq.at("fill").is_null());
}

struct ModeCase {
  const char* title;
  bool alt, ctrl;
  std::vector<std::string> made;
};

class AxesModes : public ::testing::TestWithParam<ModeCase> {};

TEST_P(AxesModes, ModifiersChooseTheMarks) {
  Session s(MeshDoc({Cells(1, 1)}));
  const json kids = s.runLayer(kAxes, GetParam().alt, GetParam().ctrl);
  EXPECT_EQ(Names(kids), GetParam().made);
  if (GetParam().made[0] == "Coords") {  // one cell: the axes cover whole sides
    EXPECT_EQ(Anchors(Child(kids[0], "I-axis")), (Pts{{0, 0}, {10, 0}}));
    EXPECT_EQ(Anchors(Child(kids[0], "J-axis")), (Pts{{0, 0}, {0, 10}}));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Keys, AxesModes,
    ::testing::Values(ModeCase{"none", false, false, {"Coords", "Corner Nodes", ""}},
                      ModeCase{"alt", true, false, {"Corner Nodes", ""}},
                      ModeCase{"ctrl", false, true, {"Coords", ""}},
                      ModeCase{"ctrlalt", true, true, {"Coords", "Corner Nodes", ""}}),
    [](const auto& info) { return std::string(info.param.title); });

TEST(Axes, VerticesDoNotCountTowardsTheLength) {
  MeshRecipe m = Cells(2, 3);
  m.runs.push_back(SplitRun(m, 0, 0, 'I', {{"kind", "vertex"}}));
  m.runs.push_back(SplitRun(m, 0, 1, 'J', {{"kind", "knot"}}));
  Session s(MeshDoc({m}));
  const json kids = s.runLayer(kAxes, false, true);
  EXPECT_EQ(Anchors(Child(kids[0], "I-axis")), (Pts{{0, 0}, {5, 0}, {10, 0}}));
  // J: 3 cells, the larger half is 2; the knot on the second run is drawn.
  EXPECT_EQ(Anchors(Child(kids[0], "J-axis")), (Pts{{0, 0}, {0, 10}, {0, 15}, {0, 20}}));
}

TEST(Axes, MeshMarkedWholeWhateverItsVertexSelection) {
  MeshRecipe m = Cells(2, 2);
  m.whole = false;  // art selected, no vertex selected
  Session s(MeshDoc({m}));
  const json kids = s.runLayer(kAxes, true, false);
  ASSERT_EQ(Names(kids), (std::vector<std::string>{"Corner Nodes", ""}));
  EXPECT_EQ(Names(kids[0].at("children")), (std::vector<std::string>{"0,0", "2,0", "0,2", "2,2"}));
}

}  // namespace
}  // namespace vistest
