// BMP file images for the panel tests: the two headers, then the pixels bottom-up.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "ZC_DIB.h"

// A w x h BMP of bpp bits whose pixels start at `offset`; imageSize and
// pelsPerMeter fill the info header's fields of those names.
inline std::vector<unsigned char> Bmp(int w, int h, int bpp, uint32_t offset, const std::vector<unsigned char>& pixels,
                                      uint32_t imageSize = 0, int32_t pelsPerMeter = 0) {
  std::vector<unsigned char> buf(offset + pixels.size(), 0);
  BITMAPFILEHEADER fh{};
  fh.bfType = 0x4D42;
  fh.bfSize = static_cast<DWORD>(offset + pixels.size());
  fh.bfOffBits = offset;
  BITMAPINFOHEADER ih{};
  ih.biSize = 40;
  ih.biWidth = w;
  ih.biHeight = h;
  ih.biPlanes = 1;
  ih.biBitCount = static_cast<WORD>(bpp);
  ih.biSizeImage = imageSize;
  ih.biXPelsPerMeter = ih.biYPelsPerMeter = pelsPerMeter;
  std::memcpy(buf.data(), &fh, 14);
  std::memcpy(buf.data() + 14, &ih, 40);
  std::copy(pixels.begin(), pixels.end(), buf.begin() + offset);
  return buf;
}
