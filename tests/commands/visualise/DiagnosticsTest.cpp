// Command 169: the UV report in one message box; 168 does nothing.
#include "LBModule.h"
#include "VisDoc.h"

namespace vistest {
namespace {

struct UvCase {
  const char* title;
  std::vector<MeshRecipe> meshes;
  std::string text;
};

class UvReport : public ::testing::TestWithParam<UvCase> {};

TEST_P(UvReport, OneBoxWithTheExactText) {
  Session s(MeshDoc(GetParam().meshes));
  const json before = s.runLayer(kCmdNone168);
  EXPECT_TRUE(s.host().alerts().empty());
  const json after = s.runLayer(kCmdDebugUVs);
  ASSERT_EQ(s.host().alerts().size(), 1u);
  EXPECT_EQ(s.host().alerts()[0], GetParam().text);
  EXPECT_EQ(before, after);  // the diagnostic changes nothing
}

MeshRecipe Unselected() {
  MeshRecipe m = Cells(1, 1);
  m.artSelected = false;
  return m;
}

MeshRecipe Uneven() {
  MeshRecipe m = Cells(3, 2);
  m.u = {0, 0.125, 0.7, 1};
  m.v = {0, 0.3333333333, 1};
  return m;
}

INSTANTIATE_TEST_SUITE_P(
    Reports, UvReport,
    ::testing::Values(
        UvCase{"none", {Unselected()}, ""},
        UvCase{"even", {Cells(2, 1)}, "U: 0.000000, 0.500000, 1.000000, \nV: 0.000000, 1.000000, \n---------\n"},
        UvCase{"two",
               {Uneven(), Cells(1, 1)},
               "U: 0.000000, 0.125000, 0.700000, 1.000000, \nV: 0.000000, 0.333333, 1.000000, \n---------\n"
               "U: 0.000000, 1.000000, \nV: 0.000000, 1.000000, \n---------\n"},
        UvCase{"skipsunselected",
               {Unselected(), Cells(1, 2)},
               "U: 0.000000, 1.000000, \nV: 0.000000, 0.500000, 1.000000, \n---------\n"}),
    [](const auto& info) { return std::string(info.param.title); });

}  // namespace
}  // namespace vistest
