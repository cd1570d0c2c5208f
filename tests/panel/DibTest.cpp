// ZC_DIB: result codes of the region operations, bottom-up storage, the
// blending rule, loading from a BMP image and drawing to a window.
#include <gtest/gtest.h>

#include <cstring>
#include <tuple>
#include <vector>

#include "BmpBytes.h"
#include "ZC_DIB.h"
#include "lbwin.h"

namespace {

ZS_COLOR Rgba(unsigned char r, unsigned char g, unsigned char b, unsigned char a = 255) {
  return ZS_COLOR{b, g, r, a};
}
int FillAll(ZC_DIB& d, ZS_COLOR c) { return d.FillAll(&c); }
// A bitmap filled with one colour.
struct Filled : ZC_DIB {
  Filled(int w, int h, int bpp, ZS_COLOR c) : ZC_DIB(w, h, bpp) { FillAll(&c); }
};
int FillReg(ZC_DIB& d, ZS_COLOR c, int x, int y, int w, int h) { return d.FillReg(&c, x, y, w, h); }

// Bytes (b, g, r[, a]) of pixel (x, y), y from the top.
std::vector<int> Px(const ZC_DIB& d, int x, int y) {
  const unsigned char* p = d.PixelAt(x, y);
  if (!p) return {};
  if (d.GetBitCount() == 32) return {p[0], p[1], p[2], p[3]};
  return {p[0], p[1], p[2]};
}
// Expects each pixel (x, y) of d to hold the bytes given with it.
void ExpectPixels(const ZC_DIB& d, std::initializer_list<std::tuple<int, int, std::vector<int>>> want) {
  for (const auto& [x, y, bytes] : want) EXPECT_EQ(Px(d, x, y), bytes) << x << "," << y;
}
const std::vector<int> kBlack3{0, 0, 0}, kWhite3{255, 255, 255};

TEST(DibMake, EmptyAndSizedBitmaps) {
  ZC_DIB eight(10, 10, 8);  // only 24 and 32 bits are made
  EXPECT_EQ(std::make_pair(eight.IsEmpty(), eight.GetW()), std::make_pair(true, 0));

  ZC_DIB d(5, 3, 24);
  EXPECT_EQ(std::make_pair(d.GetW(), d.GetH()), std::make_pair(5, 3));
  const auto header = Bmp(5, 3, 24, 54, {}, 0, 1);
  EXPECT_EQ(std::memcmp(&d.InfoHeader(), header.data() + 14, 40), 0);
  // 24-bit rows are padded to 4 bytes: 15 -> 16.
  EXPECT_EQ(d.PixelAt(0, 1) - d.PixelAt(0, 2), 16);

  // Make again replaces the pixels and the size.
  d.Make(2, 2, 32);
  EXPECT_EQ(d.GetW(), 2);
  EXPECT_EQ(d.PixelAt(0, 0) - d.PixelAt(0, 1), 8);
  d.Make(2, 2, 16);
  EXPECT_TRUE(d.IsEmpty());
}

TEST(DibFill, RegionCodesInOrder) {
  ZS_COLOR c = Rgba(1, 2, 3);
  ZC_DIB empty;
  EXPECT_EQ(empty.FillAll(&c), 1);
  EXPECT_EQ(empty.FillReg(&c, 0, 0, 1, 1), 1);

  ZC_DIB d(10, 8, 24);
  // x, y, w, h and the code; the first failing check decides (the last two
  // rows: x past the edge beats negative y).
  const int cases[][5] = {{10, 0, 1, 1, 2}, {0, 8, 1, 1, 3}, {-1, 0, 1, 1, 4},  {0, -1, 1, 1, 5},
                          {0, 0, 0, 1, 6},  {0, 0, 1, 0, 7}, {10, -1, 0, 0, 2}, {-1, -1, 0, 0, 4}};
  for (const auto& k : cases) EXPECT_EQ(d.FillReg(&c, k[0], k[1], k[2], k[3]), k[4]) << k[0] << "," << k[1];
}

TEST(DibFill, WholeBitmapAndClipping) {
  ZC_DIB d(10, 8, 24);
  ASSERT_EQ(FillAll(d, Rgba(0, 0, 0)), 0);
  EXPECT_EQ(FillReg(d, Rgba(255, 0, 0), 0, 0, -1, -1), 0);
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 10; ++x) ASSERT_EQ(Px(d, x, y), (std::vector<int>{0, 0, 255})) << x << "," << y;

  // A rectangle running past the right and bottom edges is cut there.
  ASSERT_EQ(FillAll(d, Rgba(0, 0, 0)), 0);
  EXPECT_EQ(FillReg(d, Rgba(0, 0, 255), 7, 6, 100, 100), 0);
  ExpectPixels(d, {{7, 6, {255, 0, 0}}, {9, 7, {255, 0, 0}}, {6, 6, kBlack3}, {7, 5, kBlack3}});
}

TEST(DibFill, FillAllLeavesRowPaddingAlone) {
  ZC_DIB d(1, 2, 24);  // 3 bytes of pixel, 1 byte of padding per row
  unsigned char* bits = const_cast<unsigned char*>(d.Bits());
  std::memset(bits, 0x5A, 8);
  ASSERT_EQ(FillAll(d, Rgba(1, 2, 3)), 0);
  EXPECT_EQ(std::vector<int>(bits, bits + 8), (std::vector<int>{3, 2, 1, 0x5A, 3, 2, 1, 0x5A}));  // blue first
}

TEST(DibStorage, TopRowIsTheLastStoredRow) {
  Filled d(4, 3, 32, Rgba(0, 0, 0, 0));
  FillReg(d, Rgba(10, 20, 30, 40), 0, 0, -1, 1);
  const unsigned char* bits = d.Bits();
  // Stored row 2 (the last) is picture row 0.
  EXPECT_EQ(std::vector<int>(bits + 2 * 16, bits + 2 * 16 + 4), (std::vector<int>{30, 20, 10, 40}));
  EXPECT_EQ(bits[0] + bits[16], 0);
}

TEST(DibCopy, RegionCodesInOrder) {
  ZC_DIB empty;
  ZC_DIB src(4, 4, 32);
  ZC_DIB d(10, 8, 24);
  EXPECT_EQ(empty.CopyRegRaw(0, 0, &src, 0, 0, 1, 1), 1);
  EXPECT_EQ(d.CopyRegRaw(0, 0, &empty, 0, 0, 1, 1), 2);
  // x, y, sx, sy, w, h and the code; the source is src.
  const int cases[][7] = {{-1, 0, 0, 0, 1, 1, 3}, {0, -1, 0, 0, 1, 1, 4}, {10, 0, 0, 0, 1, 1, 5}, {0, 8, 0, 0, 1, 1, 6},
                          {0, 0, -1, 0, 1, 1, 7}, {0, 0, 0, -1, 1, 1, 8}, {0, 0, 4, 0, 1, 1, 9}, {0, 0, 0, 4, 1, 1, 10},
                          {0, 0, 0, 0, 0, 1, 11}, {0, 0, 0, 0, 1, 0, 12}};
  for (const auto& c : cases) EXPECT_EQ(d.CopyRegRaw(c[0], c[1], &src, c[2], c[3], c[4], c[5]), c[6]);
  // The blending copy shares the checks.
  EXPECT_EQ(d.CopyReg(0, 0, &empty, 0, 0, 1, 1), 2);
  EXPECT_EQ(d.CopyReg(10, 0, &src, 0, 0, 1, 1), 5);
  EXPECT_EQ(d.CopyReg(0, 0, &src, 0, 0, 1, 0), 12);
}

TEST(DibCopy, PictureAtTheRightEdgeIsCut) {
  Filled d(227, 40, 24, Rgba(208, 208, 208));
  Filled pic(32, 32, 32, Rgba(255, 0, 0));
  EXPECT_EQ(d.CopyRegRaw(220, 0, &pic, 0, 0, 32, 32), 0);
  for (int x = 220; x < 227; ++x) EXPECT_EQ(Px(d, x, 31), (std::vector<int>{0, 0, 255})) << x;
  ExpectPixels(d, {{219, 0, {208, 208, 208}}, {226, 32, {208, 208, 208}}});
}

TEST(DibCopy, SourceRectangleIsCutAtTheSourceEdge) {
  Filled src(4, 4, 24, Rgba(0, 0, 0));
  FillReg(src, Rgba(255, 255, 255), 2, 2, 2, 2);  // bottom-right quarter
  Filled d(10, 10, 24, Rgba(100, 100, 100));
  // From (2, 2) of the source, asking for 5 x 5: only 2 x 2 exist.
  EXPECT_EQ(d.CopyRegRaw(5, 5, &src, 2, 2, 5, 5), 0);
  const std::vector<int> grey{100, 100, 100};
  ExpectPixels(d, {{5, 5, kWhite3}, {6, 6, kWhite3}, {7, 5, grey}, {5, 7, grey}});
  // Negative sizes take the source's whole width and height.
  EXPECT_EQ(d.CopyRegRaw(0, 0, &src, 0, 0, -1, -1), 0);
  ExpectPixels(d, {{3, 3, kWhite3}, {1, 1, kBlack3}, {4, 4, grey}, {5, 5, kWhite3}});  // (5, 5) from the first copy
}

TEST(DibCopy, RawCopyTakesAlphaOnlyBetweenThirtyTwoBitBitmaps) {
  Filled src32(2, 2, 32, Rgba(10, 20, 30, 77));
  Filled d32(2, 2, 32, Rgba(0, 0, 0, 255));
  ASSERT_EQ(d32.CopyRegRaw(0, 0, &src32, 0, 0, -1, -1), 0);
  EXPECT_EQ(Px(d32, 1, 1), (std::vector<int>{30, 20, 10, 77}));

  Filled src24(2, 2, 24, Rgba(10, 20, 30, 77));
  FillAll(d32, Rgba(0, 0, 0, 255));
  ASSERT_EQ(d32.CopyRegRaw(0, 0, &src24, 0, 0, -1, -1), 0);
  EXPECT_EQ(Px(d32, 0, 0), (std::vector<int>{30, 20, 10, 255}));

  ZC_DIB d24(2, 2, 24);
  ASSERT_EQ(d24.CopyRegRaw(0, 0, &src32, 0, 0, -1, -1), 0);
  EXPECT_EQ(Px(d24, 0, 1), (std::vector<int>{30, 20, 10}));
}

TEST(DibBlend, AlphaRule) {
  Filled d(3, 1, 24, Rgba(208, 208, 208));
  ZC_DIB src(3, 1, 32);
  FillReg(src, Rgba(0, 0, 0, 0), 0, 0, 1, 1);
  FillReg(src, Rgba(12, 34, 56, 255), 1, 0, 1, 1);
  FillReg(src, Rgba(0, 0, 255, 128), 2, 0, 1, 1);
  ASSERT_EQ(d.CopyReg(0, 0, &src, 0, 0, -1, -1), 0);
  EXPECT_EQ(Px(d, 0, 0), (std::vector<int>{208, 208, 208}));  // alpha 0: unchanged
  EXPECT_EQ(Px(d, 1, 0), (std::vector<int>{56, 34, 12}));     // alpha 255: the source
  // 0 over 208 at 128: trunc(-208 * 128 / 255.0 + 208) = 103; 255 over 208: 231.
  EXPECT_EQ(Px(d, 2, 0), (std::vector<int>{231, 103, 103}));
}

TEST(DibBlend, DestinationAlphaKeptAndOpaqueSourceCopied) {
  Filled d(1, 1, 32, Rgba(100, 100, 100, 9));
  Filled src(1, 1, 32, Rgba(200, 0, 100, 51));  // a = 0.2
  ASSERT_EQ(d.CopyReg(0, 0, &src, 0, 0, 1, 1), 0);
  // 100 + 100 * 51 / 255 = 120; 100 - 100 * 0.2 = 80; 100 + 0 = 100.
  EXPECT_EQ(Px(d, 0, 0), (std::vector<int>{100, 80, 120, 9}));

  Filled src24(1, 1, 24, Rgba(1, 2, 3));
  ASSERT_EQ(d.CopyReg(0, 0, &src24, 0, 0, 1, 1), 0);
  EXPECT_EQ(Px(d, 0, 0), (std::vector<int>{3, 2, 1, 9}));
}

TEST(DibLoad, BottomUpPixelsFromThePixelOffset) {
  // 2 x 2, 32 bits: stored bottom row first.
  std::vector<unsigned char> px = {1, 1, 1, 255, 2, 2, 2, 255,   // bottom row
                                   3, 3, 3, 255, 4, 4, 4, 128};  // top row
  auto buf = Bmp(2, 2, 32, 58, px);  // four spare bytes before the pixels
  ZC_DIB d;
  EXPECT_EQ(d.LoadFromBuff(buf.data()), 1);
  ASSERT_EQ(std::make_pair(d.GetW(), d.GetH()), std::make_pair(2, 2));
  const uint32_t offset = d.FileHeader().bfOffBits;  // a packed field: read it by value
  EXPECT_EQ(offset, 58u);
  ExpectPixels(d, {{0, 0, {3, 3, 3, 255}}, {1, 0, {4, 4, 4, 128}}, {0, 1, {1, 1, 1, 255}}});
  // 1 x 2, 24 bits: 3 bytes of pixel and 1 of padding per row.
  buf = Bmp(1, 2, 24, 54, {9, 8, 7, 0, 6, 5, 4, 0});
  d.LoadFromBuff(buf.data());
  ASSERT_EQ(d.GetH(), 2);
  ExpectPixels(d, {{0, 0, {6, 5, 4}}, {0, 1, {9, 8, 7}}});
}

TEST(DibLoad, OtherBitCountsLeaveTheBitmapEmpty) {
  auto buf = Bmp(4, 4, 8, 54, std::vector<unsigned char>(16, 0));
  ZC_DIB d(3, 3, 24);
  EXPECT_EQ(d.LoadFromBuff(buf.data()), 1);
  EXPECT_EQ(std::make_pair(d.IsEmpty(), d.GetW()), std::make_pair(true, 0));
}

TEST(DibDraw, WholeAndSubRectangles) {
  HWND wnd = lbwinCreateWindow(20, 20);
  HDC hdc = GetDC(wnd);
  // 3 x 2, 24 bits; pixel (x, y) has red 10 x + 1 and green 10 y + 1.
  ZC_DIB dib(3, 2, 24);
  for (int y = 0; y < 2; ++y)
    for (int x = 0; x < 3; ++x)
      FillReg(dib, Rgba(static_cast<unsigned char>(10 * x + 1), static_cast<unsigned char>(10 * y + 1), 0), x, y, 1, 1);
  const struct {
    int x, y, sx, sy, w, h;
    COLORREF first, right, below;  // at (x, y), (x + 1, y), (x, y + 1)
  } cases[] = {
      {5, 6, 0, 0, -1, -1, RGB(1, 1, 0), RGB(11, 1, 0), RGB(1, 11, 0)},            // whole, top row first
      {0, 0, 1, 1, 1, 1, RGB(11, 11, 0), RGB(255, 255, 255), RGB(255, 255, 255)},  // pixel (1, 1) alone
      {10, 10, 1, 0, 2, 1, RGB(11, 1, 0), RGB(21, 1, 0), RGB(255, 255, 255)},       // columns 1..2 of the top row
      {15, 15, 2, 1, -1, -1, RGB(21, 11, 0), RGB(255, 255, 255), RGB(255, 255, 255)},  // negative: to the edges
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.x);
    dib.Draw(hdc, c.x, c.y, c.sx, c.sy, c.w, c.h);
    EXPECT_EQ(lbwinGetPixel(wnd, c.x, c.y), c.first);
    EXPECT_EQ(lbwinGetPixel(wnd, c.x + 1, c.y), c.right);
    EXPECT_EQ(lbwinGetPixel(wnd, c.x, c.y + 1), c.below);
  }
  ReleaseDC(wnd, hdc);
  DestroyWindow(wnd);
}

}  // namespace
