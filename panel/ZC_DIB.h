// ZC_DIB: an uncompressed 24- or 32-bit device-independent bitmap held with
// its platform headers, so it can be drawn unchanged with
// SetDIBitsToDevice. Rows are stored bottom-up; every region operation
// takes coordinates with y = 0 at the top.
#pragma once

#include "AITypes.h"
#include "lbwin.h"

// One colour in pixel byte order.
struct ZS_COLOR {
  unsigned char b;
  unsigned char g;
  unsigned char r;
  unsigned char a;
};

class ZC_DIB {
 public:
  ZC_DIB();
  ZC_DIB(int w, int h, int bpp);
  ~ZC_DIB();
  ZC_DIB(const ZC_DIB&) = delete;
  ZC_DIB& operator=(const ZC_DIB&) = delete;

  // A new bitmap of w x h pixels, 24 or 32 bits, contents undefined. Any
  // other bit count leaves the bitmap empty.
  void Make(int w, int h, int bpp);
  // Takes a whole BMP file image: its two headers as they are and the pixel
  // rows from the file's pixel offset. Always 1; bit counts other than 24
  // and 32 leave the bitmap empty.
  int LoadFromBuff(unsigned char* buf);

  int GetW() const;
  int GetH() const;
  int GetBitCount() const;
  bool IsEmpty() const { return m_pBits == nullptr; }

  // 1 when empty, else 0.
  int FillAll(ZS_COLOR* c);
  // Result codes: 1 empty, 2 x >= width, 3 y >= height, 4 x < 0, 5 y < 0,
  // 6 w == 0, 7 h == 0; 0 done. Negative w / h mean the whole width / height.
  int FillReg(ZS_COLOR* c, int x, int y, int w, int h);
  // Result codes: 1 this empty, 2 src empty, 3 dx < 0, 4 dy < 0, 5 dx >=
  // width, 6 dy >= height, 7 sx < 0, 8 sy < 0, 9 sx >= src width, 10 sy >=
  // src height, 11 w == 0, 12 h == 0; 0 done. Negative w / h mean the
  // source's whole width / height.
  int CopyRegRaw(int dx, int dy, ZC_DIB* src, int sx, int sy, int w, int h);
  // As CopyRegRaw, blending a 32-bit source by its (straight) alpha.
  int CopyReg(int dx, int dy, ZC_DIB* src, int sx, int sy, int w, int h);
  // Draws the rectangle (sx, sy, w, h) to (dx, dy) of the device; negative
  // w / h run to the right / bottom edge. Returns the platform's result.
  int Draw(HDC hdc, int dx, int dy, int sx, int sy, int w, int h) const;

  // Pixel access for tests and tools: the bytes of pixel (x, y), y from the
  // top; null outside or when empty.
  const unsigned char* PixelAt(int x, int y) const;
  const BITMAPINFOHEADER& InfoHeader() const { return m_info; }
  const BITMAPFILEHEADER& FileHeader() const { return m_file; }
  const unsigned char* Bits() const { return m_pBits; }

 private:
  int BytesPerPixel() const { return m_info.biBitCount == 32 ? 4 : 3; }
  int Stride() const;
  unsigned char* Row(int y) const;  // row y counted from the top
  void Free();
  // Shared checks and clipping of the two copies; returns a code or 0 with
  // w and h clipped.
  int ClipCopy(int dx, int dy, const ZC_DIB* src, int sx, int sy, int& w, int& h) const;

  BITMAPFILEHEADER m_file;
  BITMAPINFOHEADER m_info;
  unsigned char* m_pBits;
};

// Reads this plug-in's "BMPP" resource `name` into `target` through the
// host's data-filter suite, 1024 bytes a request. Returns the host's code;
// leaves `target` unchanged when nothing could be read.
AIErr LoadBitmapResource(const char* name, ZC_DIB& target);
