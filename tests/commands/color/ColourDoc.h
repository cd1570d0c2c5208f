// Test documents for the clone, pattern and capture commands: meshes whose
// node paint says which mesh and node it came from, and raster and placed
// images of given pixels, built on the support library's recipes.
#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "io/svg/SvgCommon.h"
#include "support/Session.h"

namespace coltest {

using namespace lbtest;

// Paint code of node (i, j) of mesh m: 100 m + i + 10 j (grids up to 9 x 9).
// Gray (code + 1) / 1000 and opacity 1 - (code + 1) / 2000 decode back to it.
inline int Code(int m, int i, int j) { return 100 * m + i + 10 * j; }
inline double GrayOfCode(int c) { return (c + 1) / 1000.0; }
inline double OpacityOfCode(int c) { return 1.0 - (c + 1) / 2000.0; }

// An I x J mesh painted with mesh code `tag`, the given nodes selected
// (selection flags always written), nodes at `at` (a 10-unit grid from x0
// when unset).
inline MeshRecipe Tagged(int tag, int I, int J, NodeSet sel, std::function<std::pair<double, double>(int, int)> at = {},
                         double x0 = 0) {
  MeshRecipe m;
  m.I = I, m.J = J, m.x0 = x0;
  m.selected = std::move(sel);
  m.whole = false;
  m.colorAt = [tag](int i, int j) { return GrayPaint(GrayOfCode(Code(tag, i, j))); };
  m.opacityAt = [tag](int i, int j) { return OpacityOfCode(Code(tag, i, j)); };
  if (at)
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i <= I; ++i) m.moved[{i, j}] = AIRealPoint{at(i, j).first, at(i, j).second};
  return m;
}

// The code a written node's gray colour (opacity) carries, or -1.
inline int DecodeCode(double t) {
  const double r = std::round(t);
  return std::fabs(t - r) > 1e-6 ? -1 : int(r) - 1;
}
inline int ColorCode(const MeshState& m, int i, int j) {
  const json& c = m.node(i, j).at("color");
  return c.is_object() && c.contains("gray") ? DecodeCode(c.at("gray").get<double>() * 1000.0) : -1;
}
inline int OpacityCode(const MeshState& m, int i, int j) {
  return DecodeCode((1.0 - m.node(i, j).at("opacity").get<double>()) * 2000.0);
}
inline double OpacityAt(const MeshState& m, int i, int j) { return m.node(i, j).at("opacity").get<double>(); }

struct ImageRecipe {
  std::string type = "raster";  // or "placed"
  int width = 1, height = 1;
  std::string space = "rgb";
  bool alpha = false;
  // Image space to document: pixel column x spans x..x+1, row r spans
  // -(r+1)..-r.
  std::vector<double> matrix = {10, 0, 0, 10, 0, 0};
  std::vector<uint8_t> pixels;  // rows top first, channels then alpha
  json fill = nullptr;
  bool selected = true;
  int placedType = 1;

  int Channels() const { return (space == "rgb" ? 3 : space == "cmyk" ? 4 : 1) + (alpha ? 1 : 0); }
  // Bytes of pixel (x, row).
  std::vector<uint8_t> Pixel(int x, int row) const {
    const int c = Channels();
    const auto b = pixels.begin() + (row * width + x) * c;
    return {b, b + c};
  }
  // Document point at the centre of pixel (x, row).
  std::pair<double, double> Centre(int x, int row) const {
    const double u = x + 0.5, v = -(row + 0.5);
    return {matrix[0] * u + matrix[2] * v + matrix[4], matrix[1] * u + matrix[3] * v + matrix[5]};
  }
};

// A 2 x 2 RGB image of one colour over document -5..35 x -5..35.
inline ImageRecipe Plain(uint8_t r, uint8_t g, uint8_t b, bool selected = true, std::string type = "raster") {
  return {.type = std::move(type), .width = 2, .height = 2, .matrix = {20, 0, 0, 20, -5, 35},
          .pixels = {r, g, b, r, g, b, r, g, b, r, g, b}, .selected = selected};
}

// Pixels numbered so that every byte differs: byte k of the image is
// (37 k + 11) mod 256.
inline std::vector<uint8_t> Numbered(const ImageRecipe& s) {
  std::vector<uint8_t> p(size_t(s.width) * s.height * s.Channels());
  for (size_t k = 0; k < p.size(); ++k) p[k] = uint8_t((37 * k + 11) % 256);
  return p;
}

inline json ImageJson(const ImageRecipe& s) {
  json a = {{"type", s.type}, {"width", s.width}, {"height", s.height}, {"space", s.space}, {"alpha", s.alpha},
            {"bits", 8}, {"matrix", s.matrix}, {"fill", s.fill}, {"selected", s.selected},
            {"pixels", lb::io::svg::base64(std::string(s.pixels.begin(), s.pixels.end()))}};
  if (s.type == "placed") a["placedType"] = s.placedType;
  return a;
}

}  // namespace coltest
