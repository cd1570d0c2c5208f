// The command table as the panel reads it.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <tuple>

#include "ButtonDefs.h"

namespace {

TEST(Table, AreaCoversTheGrid) {
  int w = 0, h = 0;
  BtnsGetArea(&w, &h);
  EXPECT_EQ(std::make_pair(w, h), std::make_pair(227, 264));
  BtnsGetArea(nullptr, &h);  // null outputs are skipped
  BtnsGetArea(&w, nullptr);
  EXPECT_EQ(BtnsGetCount(), 37u);
}

TEST(Table, GridHoldsEveryCommandOnceAndNoCellTwice) {
  std::set<int> ids;
  std::set<std::pair<int, int>> cells;
  std::set<std::string> pictures;
  std::set<int> pictureIds;
  for (unsigned i = 0; i < BtnsGetCount(); ++i) {
    ids.insert(BtnGetFuncID(i));
    cells.insert({gButtonDefs[i].row, gButtonDefs[i].column});
    pictures.insert(BtnGetPicStr(i));
    pictureIds.insert(BtnGetPicID(i));
  }
  // Every id, cell, picture name and picture id (129..165) once; the checkboxes' cell (0, 5) stays free.
  EXPECT_EQ(std::vector<size_t>({ids.size(), cells.size(), pictures.size(), pictureIds.size()}),
            std::vector<size_t>(4, 37));
  EXPECT_EQ(std::make_tuple(*ids.begin(), *ids.rbegin(), *pictureIds.begin(), *pictureIds.rbegin()),
            std::make_tuple(int(kCmdSetOfPaths), int(kCmdDirRotate), 129, 165));
  EXPECT_EQ(cells.count({0, 5}), 0u);
}

TEST(Table, OutOfRangeIndexesYieldNothing) {
  EXPECT_EQ(std::make_tuple(BtnGetTooltip(37), BtnGetPicStr(37), BtnGetFuncID(37), BtnGetPicID(1000)),
            std::make_tuple(nullptr, nullptr, 0, 0));
  int x = -5, y = -6, w = -7, h = -8;
  BtnGetDimentions(37, &x, &y, &w, &h);
  EXPECT_EQ(std::make_tuple(x, y, w, h), std::make_tuple(-5, -6, -7, -8));
  BtnGetDimentions(0, nullptr, nullptr, nullptr, nullptr);
}

TEST(Table, TooltipsAsShown) {
  EXPECT_STREQ(BtnGetTooltip(2), L"Move corner node");
  EXPECT_STREQ(BtnGetTooltip(7), L"Rotate colors\n[] - clockwise\n[Alt] - counterclockwise");
  // The trailing space of the second sewing tooltip is part of it.
  std::wstring sew = BtnGetTooltip(22);
  EXPECT_EQ(sew.back(), L' ');
  EXPECT_EQ(sew.find(L"Sew meshes together (add row of cells)\n"), 0u);
  EXPECT_STREQ(BtnGetTooltip(30), L"Sew docked meshes together\nor\nMake mesh from docked pathes");
  EXPECT_STREQ(BtnsVersionGetTooltip(), L"Lattice Bender\n0.41.4");
  EXPECT_STREQ(BtnCbColorGetTooltip(), L"Affect the color of nodes");
  EXPECT_STREQ(BtnCbOpacityGetTooltip(), L"Affect the opacity of nodes");
}

TEST(Table, CheckboxPlacesCentreInTheirBoxes) {
  int x = 0, y = 0;
  BtnCbColorGetPos(&x, &y, 13, 13);
  EXPECT_EQ(std::make_pair(x, y), std::make_pair(2 + 188, 2 + 3));
  BtnCbOpacityGetPos(&x, &y, 13, 14);
  EXPECT_EQ(std::make_pair(x, y), std::make_pair(190, 2 + 21));
  BtnImgColorGetPos(&x, &y, 16, 16);
  EXPECT_EQ(std::make_pair(x, y), std::make_pair(1 + 206, 1 + 3));
  // Wider than the box: the offset goes negative and truncates toward zero.
  BtnImgOpacityGetPos(&x, &y, 21, 20);
  EXPECT_EQ(std::make_pair(x, y), std::make_pair(-1 + 206, -1 + 21));
  EXPECT_STREQ(BtnImgColorGetPicStr(), "IMG_CB_COLOR");
  EXPECT_STREQ(BtnImgOpacityGetPicStr(), "IMG_CB_OPACITY");
  EXPECT_EQ(std::make_pair(BtnImgColorGetPicID(), BtnImgOpacityGetPicID()), std::make_pair(100, 101));
}

}  // namespace
