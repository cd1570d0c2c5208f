// ZC_Button: hit testing at the edges and the exact pixels of its frames.
#include <gtest/gtest.h>

#include "ZC_Button.h"
#include "lbwin.h"

namespace {

TEST(Button, HitTestEdges) {
  ZC_Button b;
  EXPECT_FALSE(b.GetBlueBorder());
  EXPECT_EQ(b.SetDimentions(40, 77, 36, 36), 0);
  EXPECT_TRUE(b.IsUnderCursor(40, 77));
  EXPECT_TRUE(b.IsUnderCursor(75, 112));
  EXPECT_FALSE(b.IsUnderCursor(76, 80));
  EXPECT_FALSE(b.IsUnderCursor(50, 113));
  EXPECT_FALSE(b.IsUnderCursor(39, 80));
  EXPECT_FALSE(b.IsUnderCursor(50, 76));
}

class ButtonFrame : public ::testing::Test {
 protected:
  void SetUp() override {
    wnd = lbwinCreateWindow(30, 30);
    hdc = GetDC(wnd);
    objects = lbwinLiveGdiObjects();
    b.SetDimentions(5, 6, 8, 7);  // x 5..12, y 6..12
  }
  void TearDown() override {
    ReleaseDC(wnd, hdc);
    DestroyWindow(wnd);
  }
  COLORREF At(int x, int y) const { return lbwinGetPixel(wnd, x, y); }
  // Checks the frame: light on the left column (but its last pixel) and the
  // top row (but its last pixel), dark on the right column and bottom row;
  // inside and outside untouched.
  void ExpectFrame(COLORREF light, COLORREF dark) const {
    const COLORREF untouched = RGB(255, 255, 255);
    for (int y = 6; y <= 11; ++y) EXPECT_EQ(At(5, y), light) << "left " << y;
    for (int x = 5; x <= 11; ++x) EXPECT_EQ(At(x, 6), light) << "top " << x;
    for (int y = 6; y <= 12; ++y) EXPECT_EQ(At(12, y), dark) << "right " << y;
    for (int x = 5; x <= 12; ++x) EXPECT_EQ(At(x, 12), dark) << "bottom " << x;
    if (light != untouched && dark != untouched) {
      for (int y = 7; y <= 11; ++y)
        for (int x = 6; x <= 11; ++x) EXPECT_EQ(At(x, y), untouched) << "inside " << x << "," << y;
    }
    for (int k = 4; k <= 13; ++k) {
      EXPECT_EQ(At(4, k), untouched) << "left of the frame";
      EXPECT_EQ(At(13, k), untouched) << "right of the frame";
      EXPECT_EQ(At(k, 5), untouched) << "above the frame";
      EXPECT_EQ(At(k, 13), untouched) << "below the frame";
    }
    EXPECT_EQ(lbwinLiveGdiObjects(), objects) << "pens leaked";
  }
  HWND wnd = nullptr;
  HDC hdc = nullptr;
  long objects = 0;
  ZC_Button b;
};

TEST_F(ButtonFrame, Raised) {
  b.DrawBorder(hdc);
  ExpectFrame(RGB(255, 255, 255), RGB(128, 128, 128));
  // The raised frame's light side is white: check the dark side again on
  // a black background so the light strokes show.
  RECT all{0, 0, 30, 30};
  HBRUSH black = CreateSolidBrush(RGB(0, 0, 0));
  FillRect(hdc, &all, black);
  DeleteObject(black);
  b.DrawBorder(hdc);
  EXPECT_EQ(At(5, 6), RGB(255, 255, 255));
  EXPECT_EQ(At(5, 11), RGB(255, 255, 255));
  EXPECT_EQ(At(11, 6), RGB(255, 255, 255));
  EXPECT_EQ(At(12, 6), RGB(128, 128, 128));
  EXPECT_EQ(At(5, 12), RGB(128, 128, 128));
  EXPECT_EQ(At(6, 7), RGB(0, 0, 0));
}

TEST_F(ButtonFrame, Sunken) {
  b.DrawClicked(hdc);
  ExpectFrame(RGB(128, 128, 128), RGB(255, 255, 255));
}

TEST_F(ButtonFrame, BlueAllRound) {
  b.SetBlueBorder(true);
  b.DrawBorder(hdc);
  ExpectFrame(RGB(0, 0, 255), RGB(0, 0, 255));
  b.SetBlueBorder(false);
  b.DrawBorder(hdc);
  ExpectFrame(RGB(255, 255, 255), RGB(128, 128, 128));
}

TEST_F(ButtonFrame, LeavesTheDeviceContextsPenAsItWas) {
  HPEN red = CreatePen(PS_SOLID, 1, RGB(255, 0, 0));
  HGDIOBJ before = SelectObject(hdc, red);
  b.DrawBorder(hdc);
  MoveToEx(hdc, 0, 0, nullptr);
  LineTo(hdc, 3, 0);
  EXPECT_EQ(At(0, 0), RGB(255, 0, 0));
  SelectObject(hdc, before);
  EXPECT_TRUE(DeleteObject(red));
}

}  // namespace
