// The window layer: the platform behaviours the panel relies on.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "lbwin.h"

namespace {

struct Recorder {
  static inline std::vector<UINT> seen;
  static inline WNDPROC previous = nullptr;
  static LRESULT Proc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp) {
    seen.push_back(msg);
    if (msg == WM_NULL) return 7;
    return CallWindowProc(previous, hwnd, msg, wp, lp);
  }
};

// Lines leave out their end pixel; a rectangle without outline its last row and column.
TEST(Lbwin, LinesAndRectanglesExcludeTheirEnds) {
  HWND w = lbwinCreateWindow(10, 10);
  HDC dc = GetDC(w);
  HPEN pen = CreatePen(PS_SOLID, 1, RGB(1, 2, 3));
  HGDIOBJ old = SelectObject(dc, pen);
  MoveToEx(dc, 2, 2, nullptr);
  LineTo(dc, 6, 2);
  LineTo(dc, 6, 5);
  // (6, 2) is the start of the second line.
  const COLORREF red = RGB(1, 2, 3), white = RGB(255, 255, 255);
  for (auto [x, y, c] : {std::tuple{2, 2, red}, {5, 2, red}, {6, 2, red}, {6, 4, red}, {6, 5, white}, {1, 2, white}})
    EXPECT_EQ(lbwinGetPixel(w, x, y), c) << x << "," << y;
  // A selected pen cannot be deleted; after deselecting it can.
  EXPECT_FALSE(DeleteObject(pen));
  SelectObject(dc, old);
  EXPECT_TRUE(DeleteObject(pen));
  HBRUSH brush = CreateSolidBrush(RGB(9, 9, 9));
  HGDIOBJ oldBrush = SelectObject(dc, brush);
  HGDIOBJ oldPen = SelectObject(dc, GetStockObject(NULL_PEN));
  Rectangle(dc, 2, 3, 6, 8);
  for (auto [x, y, c] : {std::tuple{2, 3, RGB(9, 9, 9)}, {4, 6, RGB(9, 9, 9)}, {5, 6, white}, {4, 7, white}})
    EXPECT_EQ(lbwinGetPixel(w, x, y), c) << x << "," << y;
  SelectObject(dc, oldPen);
  SelectObject(dc, oldBrush);
  EXPECT_TRUE(DeleteObject(brush));
  ReleaseDC(w, dc);
  DestroyWindow(w);
}

TEST(Lbwin, SubclassingPropertiesAndDestroy) {
  HWND w = lbwinCreateWindow(4, 4);
  Recorder::seen.clear();
  Recorder::previous = reinterpret_cast<WNDPROC>(
      SetWindowLongPtr(w, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Recorder::Proc)));
  EXPECT_EQ(Recorder::previous, &DefWindowProc);
  EXPECT_EQ(lbwinSendMessage(w, WM_NULL, 0, 0), 7);

  int data = 0;
  EXPECT_TRUE(SetProp(w, "TPNL", &data));
  EXPECT_EQ(GetProp(w, "TPNL"), &data);
  EXPECT_EQ(RemoveProp(w, "TPNL"), &data);
  EXPECT_EQ(GetProp(w, "TPNL"), nullptr);

  const long windows = lbwinLiveWindows();
  EXPECT_TRUE(DestroyWindow(w));
  EXPECT_EQ(lbwinLiveWindows(), windows - 1);
  EXPECT_EQ(Recorder::seen.back(), static_cast<UINT>(WM_NCDESTROY));
  EXPECT_NE(std::find(Recorder::seen.begin(), Recorder::seen.end(), static_cast<UINT>(WM_DESTROY)),
            Recorder::seen.end());
  EXPECT_FALSE(IsWindow(w));
  EXPECT_EQ(lbwinSendMessage(w, WM_NULL, 0, 0), 0);  // a dead window gets nothing
}

// Key states as the panel reads them are checked through the panel's keys
// test; leave requests through its hover tests.
TEST(Lbwin, NegativeMousePositionsAndCaptureEndingWithTheWindow) {
  const LPARAM lp = MAKELPARAM(-3, 70);
  EXPECT_EQ(GET_X_LPARAM(lp), -3);
  EXPECT_EQ(GET_Y_LPARAM(lp), 70);
  HWND w = lbwinCreateWindow(4, 4);
  SetCapture(w);
  EXPECT_EQ(GetCapture(), w);
  DestroyWindow(w);
  EXPECT_EQ(GetCapture(), nullptr);
}

TEST(Lbwin, BottomUpAndTopDownBitmaps) {
  HWND w = lbwinCreateWindow(4, 4);
  HDC dc = GetDC(w);
  // 1 x 2, 32 bits; stored rows: red, then green.
  const unsigned char bits[] = {0, 0, 255, 0, 0, 255, 0, 0};
  BITMAPINFO bi{};
  bi.bmiHeader.biSize = 40;
  bi.bmiHeader.biWidth = 1;
  bi.bmiHeader.biHeight = 2;  // bottom-up: red is the bottom row
  bi.bmiHeader.biPlanes = 1;
  bi.bmiHeader.biBitCount = 32;
  EXPECT_EQ(SetDIBitsToDevice(dc, 0, 0, 1, 2, 0, 0, 0, 2, bits, &bi, DIB_RGB_COLORS), 2);
  const COLORREF red = RGB(255, 0, 0), green = RGB(0, 255, 0);
  EXPECT_EQ(std::make_pair(lbwinGetPixel(w, 0, 0), lbwinGetPixel(w, 0, 1)), std::make_pair(green, red));
  bi.bmiHeader.biHeight = -2;  // top-down
  SetDIBitsToDevice(dc, 1, 0, 1, 2, 0, 0, 0, 2, bits, &bi, DIB_RGB_COLORS);
  EXPECT_EQ(std::make_pair(lbwinGetPixel(w, 1, 0), lbwinGetPixel(w, 1, 1)), std::make_pair(red, green));
  ReleaseDC(w, dc);
  DestroyWindow(w);
}

}  // namespace
