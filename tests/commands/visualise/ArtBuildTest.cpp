// The art makers and name formatters, called directly against the host's
// own suite tables.
#include "ArtBuild.h"
#include "Suites.h"
#include "VisDoc.h"
#include "host/SuiteRegistry.h"

namespace vistest {
namespace {

// One Linked session on a layer holding an empty group "G"; the
// unicode-string suite, which the frame acquires, set by hand.
class ArtBuild : public lbtest::LinkedTest {
 protected:
  void SetUp() override {
    const json group = {{"type", "group"}, {"name", "G"}, {"children", json::array()}};
    Load(DocJson({group}));
    sAIUnicodeString = static_cast<const AIUnicodeStringSuite*>(
        lb::host::findSuite(kAIUnicodeStringSuite, kAIUnicodeStringSuiteVersion));
    ASSERT_TRUE(sAIUnicodeString);
    group_ = Mesh(0);
  }
  void TearDown() override {
    sAIUnicodeString = nullptr;
    LinkedTest::TearDown();
  }
  json Layer() { return lbtest::Children(session->written()); }
  AIArtHandle group_ = nullptr;
};

TEST_F(ArtBuild, MakersFillTheGroupTopDownInCallOrder) {
  const AIRealPoint a{1, 2}, b{3, 4};
  MakeLine(&a, &b, group_, "line", nullptr);
  MakePoint(&a, group_, "point", nullptr);
  MakeSquare(&b, 1.5, group_, "square", 0.25, 0.5, 0.75, 2.0);
  MakeSquareMark(&a, 2, "mark", group_);
  MakeSquareMark(&b, 0, "dot", group_);
  const json g = Layer()[0];
  ASSERT_EQ(Names(g.at("children")), (std::vector<std::string>{"line", "point", "square", "mark", "dot"}));
  const json& line = g.at("children")[0];
  EXPECT_EQ(Anchors(line), (Pts{{1, 2}, {3, 4}}));
  EXPECT_FALSE(line.at("closed").get<bool>());
  for (const auto& s : line.at("segments")) {
    EXPECT_EQ(s.at("in"), s.at("p"));
    EXPECT_EQ(s.at("out"), s.at("p"));
    EXPECT_TRUE(s.at("corner").get<bool>());
  }
  EXPECT_TRUE(line.at("fill").is_null());
  EXPECT_EQ(line.at("stroke"), json({{"color", {{"rgb", {0.0, 0.0, 0.0}}}}, {"width", 1.0}}));
  const json& sq = g.at("children")[2];
  EXPECT_TRUE(sq.at("closed").get<bool>());
  EXPECT_EQ(Anchors(sq), (Pts{{1.5, 2.5}, {1.5, 5.5}, {4.5, 5.5}, {4.5, 2.5}}));
  EXPECT_EQ(sq.at("stroke"), json({{"color", {{"rgb", {0.25, 0.5, 0.75}}}}, {"width", 2.0}}));
  // The marks of half side 2 and 0 (four coincident points).
  const Pts marks[] = {{{3, 4}, {3, 0}, {-1, 0}, {-1, 4}}, {{3, 4}, {3, 4}, {3, 4}, {3, 4}}};
  for (size_t k = 0; k < 2; ++k) {
    EXPECT_TRUE(g.at("children")[3 + k].at("closed").get<bool>());
    EXPECT_EQ(Anchors(g.at("children")[3 + k]), marks[k]);
  }
}

TEST_F(ArtBuild, NoGroupPutsThePathAboveAllAndNoNameKeepsTheDefault) {
  const AIRealPoint a{5, 5};
  MakePoint(&a, nullptr, nullptr, nullptr);
  const json layer = Layer();
  ASSERT_EQ(layer.size(), 2u);
  EXPECT_EQ(layer[0].at("type"), "path");
  EXPECT_EQ(layer[0].at("name"), "");
  EXPECT_TRUE(layer[1].at("children").empty());
}

TEST_F(ArtBuild, EmptyGroupsGoOthersStay) {
  AIArtHandle inner = ZF_NewGroup(kPlaceInsideOnBottom, group_, "inner");
  ASSERT_NE(inner, nullptr);
  EXPECT_FALSE(ZF_DeleteIfEmpty(&group_));
  EXPECT_NE(group_, nullptr);
  EXPECT_TRUE(ZF_DeleteIfEmpty(&inner));
  EXPECT_EQ(inner, nullptr);
  EXPECT_FALSE(ZF_DeleteIfEmpty(&inner));
  EXPECT_TRUE(ZF_DeleteIfEmpty(&group_));
  EXPECT_TRUE(Layer().empty());
}

struct NameCase {
  int a, b;
  const char* node;
  const char* axis;
};

TEST(Names, DecimalWithoutPaddingOrSign) {
  const NameCase cases[] = {{0, 12, "0,12", "I=12"},
                            {1, 3, "1,3", "J=3"},
                            {0, 0, "0,0", "I=0"},
                            {7, 2147483647, "7,2147483647", "J=2147483647"},
                            {2147483647, 2147483647, "2147483647,2147483647", "J=2147483647"}};
  for (const auto& c : cases) {
    char node[23], axis[14];
    MakeNodeName(c.a, c.b, node);
    MakeAxisName(c.a == 0 ? 0 : 1, c.b, axis);
    EXPECT_STREQ(node, c.node);
    EXPECT_STREQ(axis, c.axis);
  }
}

}  // namespace
}  // namespace vistest
