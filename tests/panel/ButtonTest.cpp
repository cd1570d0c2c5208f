// ZC_Button: hit testing at the edges and the pen it leaves selected (the
// frames' pixels are checked on the drawn panel, tests/panel/PanelWindowTest).
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

TEST(Button, DrawingLeavesTheDeviceContextsPenAsItWas) {
  HWND wnd = lbwinCreateWindow(30, 30);
  HDC hdc = GetDC(wnd);
  ZC_Button b;
  b.SetDimentions(5, 6, 8, 7);
  HPEN red = CreatePen(PS_SOLID, 1, RGB(255, 0, 0));
  HGDIOBJ before = SelectObject(hdc, red);
  b.DrawBorder(hdc);
  MoveToEx(hdc, 0, 0, nullptr);
  LineTo(hdc, 3, 0);
  EXPECT_EQ(lbwinGetPixel(wnd, 0, 0), RGB(255, 0, 0));
  SelectObject(hdc, before);
  EXPECT_TRUE(DeleteObject(red));
  ReleaseDC(wnd, hdc);
  DestroyWindow(wnd);
}

}  // namespace
