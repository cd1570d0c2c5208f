// Helpers of the interchange tests: PNG pictures read through cairo, PSNR,
// documents built in memory, running external programs.
#pragma once

#include <cairo.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "render/Render.h"

namespace lb::test {

// Opaque RGB picture, 8 bits a channel, composited over white.
struct Picture {
  int width = 0, height = 0;
  std::vector<unsigned char> rgb;
};

// The pixels of a PNG as cairo reads them: premultiplied ARGB, row by row;
// none (and a 0 x 0 size) when it cannot be read.
inline std::vector<uint32_t> readArgb(const std::string& path, int* w, int* h) {
  std::vector<uint32_t> out;
  *w = *h = 0;
  cairo_surface_t* s = cairo_image_surface_create_from_png(path.c_str());
  if (cairo_surface_status(s) == CAIRO_STATUS_SUCCESS) {
    *w = cairo_image_surface_get_width(s), *h = cairo_image_surface_get_height(s);
    const int stride = cairo_image_surface_get_stride(s);
    const unsigned char* data = cairo_image_surface_get_data(s);
    for (int y = 0; y < *h; ++y)
      for (int x = 0; x < *w; ++x) out.push_back(reinterpret_cast<const uint32_t*>(data + y * stride)[x]);
  }
  cairo_surface_destroy(s);
  return out;
}

// Premultiplied ARGB pixels composited over white.
inline Picture overWhite(const std::vector<uint32_t>& argb, int w, int h) {
  Picture p{w, h, {}};
  for (uint32_t px : argb)
    for (int shift : {16, 8, 0}) p.rgb.push_back(static_cast<unsigned char>(((px >> shift) & 255) + 255 - (px >> 24)));
  return p;
}

inline Picture loadPng(const std::string& path) {
  int w, h;
  const std::vector<uint32_t> argb = readArgb(path, &w, &h);
  return overWhite(argb, w, h);
}

inline Picture fromImage(const lb::render::Image& im) { return overWhite(im.pixels, im.width, im.height); }

// Peak signal-to-noise ratio in dB; -1 when the sizes differ, 99 when equal.
inline double psnr(const Picture& a, const Picture& b) {
  if (a.width != b.width || a.height != b.height || a.rgb.empty()) return -1;
  double se = 0;
  for (size_t k = 0; k < a.rgb.size(); ++k) {
    const double d = static_cast<double>(a.rgb[k]) - b.rgb[k];
    se += d * d;
  }
  if (se == 0) return 99;
  return 10 * std::log10(255.0 * 255.0 / (se / a.rgb.size()));
}

inline bool haveProgram(const std::string& name) {
  return std::system(("command -v " + name + " > /dev/null 2>&1").c_str()) == 0;
}

inline std::string slurp(const std::filesystem::path& p) {
  std::ifstream in(p, std::ios::binary);
  std::stringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

inline void spit(const std::filesystem::path& p, const std::string& text) {
  std::ofstream out(p, std::ios::binary);
  out << text;
}

// The source tree.
inline std::filesystem::path source() {
  return std::filesystem::path(std::getenv("LB_SOURCE_DIR") ? std::getenv("LB_SOURCE_DIR") : "..");
}

// The text without any attribute whose name starts with `prefix`, nor the
// white space before it.
inline std::string withoutAttributes(std::string text, const std::string& prefix) {
  for (size_t at; (at = text.find(prefix)) != std::string::npos;) {
    size_t start = at;
    while (start > 0 && (text[start - 1] == ' ' || text[start - 1] == '\n')) --start;
    const size_t quote = text.find('"', at);
    const size_t end = quote == std::string::npos ? std::string::npos : text.find('"', quote + 1);
    if (end == std::string::npos) break;
    text.erase(start, end + 1 - start);
  }
  return text;
}

// A fresh directory for one test.
inline std::filesystem::path scratchDir(const std::string& name) {
  auto d = std::filesystem::temp_directory_path() / ("lb-interchange-" + name + "-" + std::to_string(::getpid()));
  std::filesystem::remove_all(d);
  std::filesystem::create_directories(d);
  return d;
}

}  // namespace lb::test
