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
  // Both corners inside; one past each edge outside.
  const struct { int x, y; bool under; } points[] = {{40, 77, true},  {75, 112, true}, {76, 80, false},
                                                    {50, 113, false}, {39, 80, false}, {50, 76, false}};
  for (const auto& p : points) EXPECT_EQ(b.IsUnderCursor(p.x, p.y), p.under) << p.x << "," << p.y;
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
