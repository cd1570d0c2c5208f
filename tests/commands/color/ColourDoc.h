// Test documents for the clone, pattern and capture commands: meshes whose
// node paint says which mesh and node it came from, raster and placed
// images of given pixels, and a session that runs commands on them.
#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/Document.h"
#include "host/Host.h"
#include "io/Lbdoc.h"
#include "support/MeshRecipe.h"

namespace coltest {

using lbtest::Node;
using lbtest::NodeSet;
using lbtest::Rect;
using nlohmann::json;

// Paint code of node (i, j) of mesh m: 100 m + i + 10 j (grids up to 9 x 9).
// Gray (code + 1) / 1000 and opacity 1 - (code + 1) / 2000 decode back to it.
inline int Code(int m, int i, int j) { return 100 * m + i + 10 * j; }
inline double GrayOfCode(int c) { return (c + 1) / 1000.0; }
inline double OpacityOfCode(int c) { return 1.0 - (c + 1) / 2000.0; }

struct MeshRecipe {
  int I = 2, J = 2;
  int tag = 0;         // the m of Code()
  NodeSet selected;    // selected nodes
  bool whole = false;  // selected as a whole
  bool artSelected = true;
  std::string id;
  // Node position; a 10-unit grid at the origin by default.
  std::function<std::pair<double, double>(int, int)> at;
  // Node colour; the coded gray by default.
  std::function<json(int, int)> color;
  // Node opacity; the coded one by default.
  std::function<double(int, int)> opacity;
};

inline json MeshJson(const MeshRecipe &s) {
  json nodes = json::array();
  for (int j = 0; j <= s.J; ++j)
    for (int i = 0; i <= s.I; ++i) {
      const auto p = s.at ? s.at(i, j) : std::pair<double, double>{10.0 * i, 10.0 * j};
      json n = {{"p", {p.first, p.second}},
                {"color", s.color ? s.color(i, j) : json{{"gray", GrayOfCode(Code(s.tag, i, j))}}},
                {"opacity", s.opacity ? s.opacity(i, j) : OpacityOfCode(Code(s.tag, i, j))}};
      if (!s.whole) n["selected"] = s.selected.count({i, j}) > 0;
      nodes.push_back(n);
    }
  json m = {{"type", "mesh"}, {"size", {s.I, s.J}}, {"selected", s.artSelected}, {"nodes", nodes}};
  if (!s.id.empty()) m["id"] = s.id;
  return m;
}

inline std::string Base64(const std::vector<uint8_t> &in) {
  static const char *k = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  for (size_t i = 0; i < in.size(); i += 3) {
    uint32_t v = uint32_t(in[i]) << 16;
    if (i + 1 < in.size()) v |= uint32_t(in[i + 1]) << 8;
    if (i + 2 < in.size()) v |= in[i + 2];
    out += k[(v >> 18) & 63];
    out += k[(v >> 12) & 63];
    out += i + 1 < in.size() ? k[(v >> 6) & 63] : '=';
    out += i + 2 < in.size() ? k[v & 63] : '=';
  }
  return out;
}

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
  std::string id;

  int Channels() const { return (space == "rgb" ? 3 : space == "cmyk" ? 4 : 1) + (alpha ? 1 : 0); }
  // Bytes of pixel (x, row).
  std::vector<uint8_t> Pixel(int x, int row) const {
    const int c = Channels();
    const auto b = pixels.begin() + (row * width + x) * c;
    return {b, b + c};
  }
  // Document point of image-space point (x, y).
  std::pair<double, double> ToDoc(double x, double y) const {
    const auto &m = matrix;
    return {m[0] * x + m[2] * y + m[4], m[1] * x + m[3] * y + m[5]};
  }
  // Document point at the centre of pixel (x, row).
  std::pair<double, double> Centre(int x, int row) const { return ToDoc(x + 0.5, -(row + 0.5)); }
};

// Pixels numbered so that every byte differs: byte k of the image is
// (37 k + 11) mod 256.
inline std::vector<uint8_t> Numbered(const ImageRecipe &s) {
  std::vector<uint8_t> p(size_t(s.width) * s.height * s.Channels());
  for (size_t k = 0; k < p.size(); ++k) p[k] = uint8_t((37 * k + 11) % 256);
  return p;
}

inline json ImageJson(const ImageRecipe &s) {
  json a = {{"type", s.type},        {"width", s.width},           {"height", s.height},
            {"space", s.space},      {"alpha", s.alpha},           {"bits", 8},
            {"matrix", s.matrix},    {"pixels", Base64(s.pixels)}, {"fill", s.fill},
            {"selected", s.selected}};
  if (s.type == "placed") a["placedType"] = s.placedType;
  if (!s.id.empty()) a["id"] = s.id;
  return a;
}

// A loaded host on one layer of art (first on top), running commands and
// reading the art back.
class Session {
 public:
  Session(std::initializer_list<json> children, const std::string &key = "")
      : Session(std::vector<json>(children), key) {}
  explicit Session(const std::vector<json> &children, const std::string &key = "") {
    json doc = {{"latticebender", 1}, {"layers", {{{"name", "Layer 1"}, {"children", children}}}}};
    if (!key.empty()) doc["key"] = key;
    host = std::make_unique<lb::host::Host>(lb::io::readDocument(doc.dump()));
    host->loadPlugin();
    before = host->counters();
  }
  void run(int id, bool alt, bool ctrl, bool color = true, bool opacity = false) {
    host->runCommand(id, alt, ctrl, color, opacity);
  }
  json art(size_t k) const { return layer().at(k); }
  size_t count() const { return layer().size(); }
  bool noLeaks() const { return host->counters() == before; }

  std::unique_ptr<lb::host::Host> host;
  lb::host::Counters before;

 private:
  json layer() const { return json::parse(lb::io::writeDocument(host->document())).at("layers").at(0).at("children"); }
};

// Reads nodes of a mesh written back by the host.
struct MeshOut {
  explicit MeshOut(json a) : art(std::move(a)) {
    I = art.at("size").at(0).get<int>();
    J = art.at("size").at(1).get<int>();
  }
  const json &node(int i, int j) const { return art.at("nodes").at(i + (I + 1) * j); }
  bool selected(int i, int j) const { return node(i, j).value("selected", false); }
  NodeSet selectedNodes() const {
    NodeSet s;
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i <= I; ++i)
        if (selected(i, j)) s.insert({i, j});
    return s;
  }
  // The code the node's gray colour (opacity) carries, or -1.
  int colorCode(int i, int j) const {
    const json &c = node(i, j).at("color");
    if (!c.is_object() || !c.contains("gray")) return -1;
    return Decode(c.at("gray").get<double>() * 1000.0);
  }
  int opacityCode(int i, int j) const { return Decode((1.0 - node(i, j).at("opacity").get<double>()) * 2000.0); }
  json color(int i, int j) const { return node(i, j).at("color"); }
  double opacity(int i, int j) const { return node(i, j).at("opacity").get<double>(); }

  json art;
  int I = 0, J = 0;

 private:
  static int Decode(double t) {
    const double r = std::round(t);
    return std::fabs(t - r) > 1e-6 ? -1 : int(r) - 1;
  }
};

}  // namespace coltest
