// The panel's bitmap type: region fills, raw and alpha-blended copies and
// drawing, all with y = 0 at the top over bottom-up storage.
#include "ZC_DIB.h"

#include <cstring>

ZC_DIB::ZC_DIB() : m_file{}, m_info{}, m_pBits(nullptr) {}

ZC_DIB::ZC_DIB(int w, int h, int bpp) : ZC_DIB() { Make(w, h, bpp); }

ZC_DIB::~ZC_DIB() { Free(); }

void ZC_DIB::Free() {
  delete[] m_pBits;
  m_pBits = nullptr;
}

int ZC_DIB::Stride() const {
  if (m_info.biBitCount == 24) return (3 * m_info.biWidth + 3) & ~3;
  return 4 * m_info.biWidth;
}

unsigned char* ZC_DIB::Row(int y) const {
  return m_pBits + static_cast<size_t>(m_info.biHeight - 1 - y) * Stride();
}

void ZC_DIB::Make(int w, int h, int bpp) {
  Free();
  m_info = BITMAPINFOHEADER{};
  m_info.biSize = 40;
  m_info.biWidth = w;
  m_info.biHeight = h;
  m_info.biPlanes = 1;
  m_info.biBitCount = static_cast<WORD>(bpp);
  m_info.biCompression = BI_RGB;
  m_info.biSizeImage = 0;
  m_info.biXPelsPerMeter = 1;
  m_info.biYPelsPerMeter = 1;
  m_info.biClrUsed = 0;
  m_info.biClrImportant = 0;
  if ((bpp != 24 && bpp != 32) || w <= 0 || h <= 0) return;
  m_pBits = new unsigned char[static_cast<size_t>(Stride()) * h];
}

int ZC_DIB::LoadFromBuff(unsigned char* buf) {
  Free();
  std::memcpy(&m_file, buf, 14);
  std::memcpy(&m_info, buf + 14, 40);
  if ((m_info.biBitCount != 24 && m_info.biBitCount != 32) || m_info.biWidth <= 0 ||
      m_info.biHeight <= 0)
    return 1;
  const size_t size = static_cast<size_t>(Stride()) * m_info.biHeight;
  m_pBits = new unsigned char[size];
  std::memcpy(m_pBits, buf + m_file.bfOffBits, size);
  return 1;
}

int ZC_DIB::GetW() const { return m_pBits ? m_info.biWidth : 0; }
int ZC_DIB::GetH() const { return m_pBits ? m_info.biHeight : 0; }
int ZC_DIB::GetBitCount() const { return m_pBits ? m_info.biBitCount : 0; }

const unsigned char* ZC_DIB::PixelAt(int x, int y) const {
  if (!m_pBits || x < 0 || y < 0 || x >= m_info.biWidth || y >= m_info.biHeight) return nullptr;
  return Row(y) + static_cast<size_t>(x) * BytesPerPixel();
}

int ZC_DIB::FillAll(ZS_COLOR* c) {
  if (!m_pBits) return 1;
  const int bpp = BytesPerPixel();
  for (int y = 0; y < m_info.biHeight; ++y) {
    unsigned char* p = Row(y);
    for (int x = 0; x < m_info.biWidth; ++x, p += bpp) {
      p[0] = c->b;
      p[1] = c->g;
      p[2] = c->r;
      if (bpp == 4) p[3] = c->a;
    }
  }
  return 0;
}

int ZC_DIB::FillReg(ZS_COLOR* c, int x, int y, int w, int h) {
  if (!m_pBits) return 1;
  const int width = m_info.biWidth, height = m_info.biHeight;
  if (x >= width) return 2;
  if (y >= height) return 3;
  if (x < 0) return 4;
  if (y < 0) return 5;
  if (w == 0) return 6;
  if (h == 0) return 7;
  if (w < 0) w = width;
  if (h < 0) h = height;
  if (x + w > width) w = width - x;
  if (y + h > height) h = height - y;
  if (m_info.biBitCount != 24 && m_info.biBitCount != 32) return 0;
  const int bpp = BytesPerPixel();
  for (int r = y; r < y + h; ++r) {
    unsigned char* p = Row(r) + static_cast<size_t>(x) * bpp;
    for (int i = 0; i < w; ++i, p += bpp) {
      p[0] = c->b;
      p[1] = c->g;
      p[2] = c->r;
      if (bpp == 4) p[3] = c->a;
    }
  }
  return 0;
}

int ZC_DIB::ClipCopy(int dx, int dy, const ZC_DIB* src, int sx, int sy, int& w, int& h) const {
  if (!m_pBits) return 1;
  if (!src || !src->m_pBits) return 2;
  if (dx < 0) return 3;
  if (dy < 0) return 4;
  if (dx >= m_info.biWidth) return 5;
  if (dy >= m_info.biHeight) return 6;
  if (sx < 0) return 7;
  if (sy < 0) return 8;
  if (sx >= src->m_info.biWidth) return 9;
  if (sy >= src->m_info.biHeight) return 10;
  if (w == 0) return 11;
  if (h == 0) return 12;
  if (w < 0) w = src->m_info.biWidth;
  if (h < 0) h = src->m_info.biHeight;
  if (sx + w > src->m_info.biWidth) w = src->m_info.biWidth - sx;
  if (dx + w > m_info.biWidth) w = m_info.biWidth - dx;
  if (sy + h > src->m_info.biHeight) h = src->m_info.biHeight - sy;
  if (dy + h > m_info.biHeight) h = m_info.biHeight - dy;
  return 0;
}

int ZC_DIB::CopyRegRaw(int dx, int dy, ZC_DIB* src, int sx, int sy, int w, int h) {
  if (int code = ClipCopy(dx, dy, src, sx, sy, w, h)) return code;
  if (m_info.biBitCount != 24 && m_info.biBitCount != 32) return 0;
  const int dbpp = BytesPerPixel();
  const int sbpp = src->m_info.biBitCount == 32 ? 4 : 3;
  const bool alpha = dbpp == 4 && sbpp == 4;
  for (int r = 0; r < h; ++r) {
    unsigned char* d = Row(dy + r) + static_cast<size_t>(dx) * dbpp;
    const unsigned char* s = src->Row(sy + r) + static_cast<size_t>(sx) * sbpp;
    for (int i = 0; i < w; ++i, d += dbpp, s += sbpp) {
      d[0] = s[0];
      d[1] = s[1];
      d[2] = s[2];
      if (alpha) d[3] = s[3];
    }
  }
  return 0;
}

int ZC_DIB::CopyReg(int dx, int dy, ZC_DIB* src, int sx, int sy, int w, int h) {
  if (int code = ClipCopy(dx, dy, src, sx, sy, w, h)) return code;
  if (m_info.biBitCount != 24 && m_info.biBitCount != 32) return 0;
  const int dbpp = BytesPerPixel();
  const int sbpp = src->m_info.biBitCount == 32 ? 4 : 3;
  for (int r = 0; r < h; ++r) {
    unsigned char* d = Row(dy + r) + static_cast<size_t>(dx) * dbpp;
    const unsigned char* s = src->Row(sy + r) + static_cast<size_t>(sx) * sbpp;
    for (int i = 0; i < w; ++i, d += dbpp, s += sbpp) {
      if (sbpp == 4) {
        const int a = s[3];
        for (int k = 0; k < 3; ++k) {
          const int diff = static_cast<int>(s[k]) - static_cast<int>(d[k]);
          d[k] = static_cast<unsigned char>(static_cast<int>(diff * a / 255.0 + d[k]));
        }
      } else {
        d[0] = s[0];
        d[1] = s[1];
        d[2] = s[2];
      }
    }
  }
  return 0;
}

int ZC_DIB::Draw(HDC hdc, int dx, int dy, int sx, int sy, int w, int h) const {
  if (!m_pBits) return 0;
  const int height = m_info.biHeight;
  const int cx = w < 0 ? m_info.biWidth - sx : w;
  int cy, row;
  if (h < 0) {
    cy = height - sy;
    row = 0;
  } else {
    cy = h;
    row = height - sy - h;
  }
  return SetDIBitsToDevice(hdc, dx, dy, static_cast<DWORD>(cx), static_cast<DWORD>(cy), sx, row, 0,
                           static_cast<UINT>(height), m_pBits,
                           reinterpret_cast<const BITMAPINFO*>(&m_info), DIB_RGB_COLORS);
}
