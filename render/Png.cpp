// PNG output of a rendered picture through libpng.
#include "render/Png.h"

#include <png.h>
#include <zlib.h>

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <vector>

namespace lb::render {

namespace {

struct WriteState {
  char message[200] = "";
};

void onError(png_structp png, png_const_charp msg) {
  auto* st = static_cast<WriteState*>(png_get_error_ptr(png));
  std::snprintf(st->message, sizeof st->message, "%s", msg ? msg : "PNG error");
  png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp) {}

// Un-premultiplies one row into 8-bit RGB or RGBA.
void convertRow(const uint32_t* src, int width, bool alpha, unsigned char* out) {
  for (int x = 0; x < width; ++x) {
    const uint32_t p = src[x];
    const unsigned a = p >> 24, r = (p >> 16) & 255, g = (p >> 8) & 255, b = p & 255;
    if (a == 255 || a == 0) {
      *out++ = static_cast<unsigned char>(r);
      *out++ = static_cast<unsigned char>(g);
      *out++ = static_cast<unsigned char>(b);
    } else {
      *out++ = static_cast<unsigned char>((r * 255 + a / 2) / a);
      *out++ = static_cast<unsigned char>((g * 255 + a / 2) / a);
      *out++ = static_cast<unsigned char>((b * 255 + a / 2) / a);
    }
    if (alpha) *out++ = static_cast<unsigned char>(a);
  }
}

// Everything between setjmp and a possible longjmp lives in plain C
// objects owned by the caller, so a jump skips no destructor.
bool encode(png_structp png, png_infop info, FILE* f, const uint32_t* pixels, int width, int height, int stride,
            bool alpha, unsigned char* row) {
  if (setjmp(png_jmpbuf(png))) return false;
  png_init_io(png, f);
  png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
               alpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_compression_level(png, Z_BEST_SPEED);
  png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_UP);
  png_write_info(png, info);
  for (int y = 0; y < height; ++y) {
    convertRow(pixels + static_cast<size_t>(y) * stride, width, alpha, row);
    png_write_row(png, row);
  }
  png_write_end(png, info);
  return true;
}

}  // namespace

std::string writePng(const std::string& path, const uint32_t* pixels, int width, int height, int stride) {
  if (width <= 0 || height <= 0) return "empty picture";
  bool alpha = false;
  for (int y = 0; y < height && !alpha; ++y)
    for (int x = 0; x < width; ++x)
      if ((pixels[static_cast<size_t>(y) * stride + x] >> 24) != 255) {
        alpha = true;
        break;
      }
  std::vector<unsigned char> row(static_cast<size_t>(width) * (alpha ? 4 : 3));
  FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) return std::strerror(errno);
  WriteState st;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &st, onError, onWarning);
  png_infop info = png ? png_create_info_struct(png) : nullptr;
  if (!png || !info) std::snprintf(st.message, sizeof st.message, "cannot start the PNG encoder");
  bool ok = png && info && encode(png, info, f, pixels, width, height, stride, alpha, row.data());
  if (png) png_destroy_write_struct(&png, info ? &info : nullptr);
  if (std::ferror(f)) ok = false;
  if (std::fclose(f) != 0) ok = false;
  if (ok) return {};
  if (st.message[0]) return st.message;
  return errno ? std::strerror(errno) : "write error";
}

}  // namespace lb::render
