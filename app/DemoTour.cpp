// The demo document and the tour table.
#include "app/DemoTour.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include <nlohmann/json.hpp>

#include "LBModule.h"
#include "io/Lbdoc.h"

namespace lb::app {

namespace {
using Nodes = std::vector<std::pair<int, int>>;
const Nodes kRegion = {{1, 1}, {4, 3}};  // spans a 3 x 2 region
// Every node of a 3 x 2 cell block, with the knot run (1, 2)-(2, 2) inside.
const Nodes kBlock = {{1, 1}, {2, 1}, {3, 1}, {4, 1}, {1, 2}, {2, 2}, {3, 2}, {4, 2}, {1, 3}, {2, 3}, {3, 3}, {4, 3}};
// Every node of row j of the demo mesh.
Nodes Row(int j) {
  Nodes row;
  for (int i = 0; i <= 6; ++i) row.push_back({i, j});
  return row;
}
}  // namespace

// Add steps here: title, file stem, selection, command id, Alt, Ctrl.
const std::vector<DemoStep>& demoTour() {
  static const std::vector<DemoStep> tour = {
      {"Select region perimeter", "sel-perimeter", {false, kRegion}, kCmdSelPerim},
      {"Select all region vertices", "sel-region", {false, kRegion}, kCmdSelRegion},
      {"Select crossing rows and columns", "sel-cross", {false, {{2, 2}}}, kCmdSelCross},
      {"Shift selected nodes along I", "sel-shift", {false, {{1, 1}, {1, 2}}}, kCmdSelShift},
      {"Select nodes only (invert)", "sel-invert", {false, kRegion}, kCmdSel, false, true},
      {"Shift colours along I", "color-shift", {false, kRegion}, kCmdColorShift},
      {"Reflect colours in J", "color-reflect", {false, kRegion}, kCmdColorReflect, false, true},
      {"Rotate colours clockwise", "color-rotate", {false, {{1, 1}, {4, 4}}}, kCmdColorRotate},
      {"Spread colours along J'", "color-spread", {false, kRegion}, kCmdColorSpread, true, true},
      {"Handles at one third", "handles-third", {true, {}}, kCmdHandles1_3},
      {"Smooth handles", "handles-smooth", {false, kRegion}, kCmdHandlesSmooth},
      {"Increase mesh density", "density-up", {false, kRegion}, kCmdDensityInc},
      {"Rotate grid direction", "dir-rotate", {true, {}}, kCmdDirRotate},
      {"Reset UV coordinates", "uv-reset", {true, {}}, kCmdUvReset},
      {"Reflect colours in I", "color-reflect-i", {false, kRegion}, kCmdColorReflect},
      {"Handles retracted at selected nodes", "handles-zero", {false, kRegion}, kCmdHandles0},
      {"Handles at right angles", "handles-90", {false, kRegion}, kCmdHandles90},
      {"Decrease mesh density", "density-down", {true, {}}, kCmdDensityDec},
      {"Reflect grid direction in I", "dir-flip", {true, {}}, kCmdDirRotate, false, true},
      {"Rotate grid direction counterclockwise", "dir-rotate-ccw", {true, {}}, kCmdDirRotate, true},
      {"Even UV coordinates (dumb reset)", "uv-reset-even", {true, {}}, kCmdUvReset, false, true},
      {"Capture colours from a photo", "color-capture", {true, {}}, kCmdColorCapture, false, false, DemoScene::kPhoto},
      {"Pattern fill from a 2 x 2 region", "color-pattern", {false, {{1, 1}, {2, 2}}}, kCmdColorPattern},
      {"Pattern fill along I only", "color-pattern-i", {false, {{2, 1}, {3, 2}}}, kCmdColorPattern, true},
      {"Clone colours from the swatch mesh", "color-clone", {false, kRegion}, kCmdColorClone, false, false, DemoScene::kSwatch},
      {"Clone colours, I and J exchanged", "color-clone-ij", {false, kRegion}, kCmdColorClone, false, true, DemoScene::kSwatch},
      {"Grid lines as paths", "vis-grid", {true, {}}, kCmdSetOfPaths, false, false, DemoScene::kMesh, false},
      {"Grid lines of a block of cells, one path per node-to-node stretch", "vis-grid-nodes", {false, kBlock}, kCmdSetOfPaths,
       false, true, DemoScene::kMesh, false},
      {"Axes and corner nodes", "vis-axes", {true, {}}, kCmdAxesAndNodes, false, false, DemoScene::kMesh, false},
      {"Points, knots and handles", "vis-points", {false, {{0, 2}, {1, 2}, {2, 2}, {0, 3}, {0, 4}, {1, 3}}}, kCmdSetOfPaths,
       true, true, DemoScene::kMesh, false},
      {"UV coordinates (diagnostic message)", "uv-report", {true, {}}, kCmdDebugUVs},
      {"One-cell mesh from a path", "mesh-from-path", {false, {}, "demo-shape"}, kCmdOneCellMesh},
      {"Mesh from a grid of docked paths", "mesh-from-grid", {false, {}, "demo-grid"}, kCmdSewDocked},
      {"Knots turned into vertices", "knots-split", {false, {{1, 2}, {2, 2}, {0, 3}, {0, 4}}}, kCmdKnotsToVertices},
      {"Corner node moved along the outline", "corner-move", {false, {{0, 0}}}, kCmdMoveCornerNode, false, false,
       DemoScene::kBorderVertex},
      {"Mesh cut in two along a grid line", "mesh-cut", {false, {{3, 0}}}, kCmdSplit},
      {"Brush mesh grid made", "bmg-make", {true, {}}, kCmdBmgCreate, false, false, DemoScene::kMesh, false},
      {"Brush mesh grid turned back into a mesh", "bmg-back", {true, {}}, kCmdBmgToMesh, false, false, DemoScene::kMesh, true, kCmdBmgCreate},
      {"Sew two meshes, moving vertices", "sew-move", {true, {}}, kCmdSewMeshMove, false, false, DemoScene::kSewPair},
      {"Sew two meshes, adding a row of cells", "sew-add-row", {true, {}}, kCmdSewMeshAdd, false, false, DemoScene::kSewPair},
      {"Join four docked meshes", "sew-docked", {false, {}}, kCmdSewDocked, false, false, DemoScene::kDocked},
      {"Nodes of a row aligned to one height", "align-row", {false, Row(2)}, kCmdAlignHor},
      {"Segments of the top row spread along the wave", "align-path", {false, Row(5), "demo-path"}, kCmdAlignPath},
      {"A row of cells added from the mesh up to the wave", "sew-path", {true, {}, "demo-path"}, kCmdSewPath},
      {"A zero-width row added at the bottom side", "zero-row-add", {false, Row(0)}, kCmdSew0},
      {"The zero-width row removed again", "zero-row-del", {false, Row(0)}, kCmdSew0, false, true, DemoScene::kMesh,
       true, kCmdSew0},
  };
  return tour;
}

namespace {
constexpr int kI = 6;
constexpr int kJ = 5;

struct Pt {
  double h, v;
};

Pt NodeAt(int i, int j) {
  return {40.0 + i * 50.0 + 6.0 * std::sin(j * 0.9), 40.0 + j * 45.0 + 5.0 * std::cos(i * 0.8)};
}

nlohmann::json P(Pt p) { return nlohmann::json::array({p.h, p.v}); }

// Hue across the mesh, lighter towards the top.
nlohmann::json ColorAt(int i, int j) {
  const double hue = std::fmod(i / double(kI) * 0.75 + j / double(kJ) * 0.2, 1.0) * 6.0;
  const double light = 0.15 + 0.35 * j / kJ;
  const double x = 1.0 - std::fabs(std::fmod(hue, 2.0) - 1.0);
  double r = 0, g = 0, b = 0;
  switch (static_cast<int>(hue)) {
    case 0: r = 1, g = x; break;
    case 1: r = x, g = 1; break;
    case 2: g = 1, b = x; break;
    case 3: g = x, b = 1; break;
    case 4: r = x, b = 1; break;
    default: r = 1, b = x; break;
  }
  auto mix = [&](double c) { return std::round((c * (1 - light) + light) * 1000.0) / 1000.0; };
  return {{"rgb", {mix(r), mix(g), mix(b)}}};
}

// A run of `kinds.size() + 1` cubic pieces from node a to node b; the inner
// anchors bulge sideways so the knots and vertices show.
nlohmann::json Run(int i, int j, const char* axis, const std::vector<const char*>& kinds) {
  const Pt a = NodeAt(i, j);
  const Pt b = axis[0] == 'I' ? NodeAt(i + 1, j) : NodeAt(i, j + 1);
  const int m = static_cast<int>(kinds.size()) + 1;
  std::vector<Pt> anchors;
  for (int k = 0; k <= m; ++k) {
    const double t = double(k) / m;
    Pt p{a.h + (b.h - a.h) * t, a.v + (b.v - a.v) * t};
    if (k > 0 && k < m) {
      const double bulge = (k % 2 ? 7.0 : -5.0);
      const double dh = b.h - a.h, dv = b.v - a.v, len = std::hypot(dh, dv);
      p.h += -dv / len * bulge;
      p.v += dh / len * bulge;
    }
    anchors.push_back(k == 0 ? a : k == m ? b : p);
  }
  nlohmann::json points = nlohmann::json::array();
  for (int k = 0; k < m; ++k) {
    const Pt p = anchors[k], q = anchors[k + 1];
    points.push_back(P(p));
    points.push_back(P({p.h + (q.h - p.h) / 3, p.v + (q.v - p.v) / 3}));
    points.push_back(P({p.h + (q.h - p.h) * 2 / 3, p.v + (q.v - p.v) * 2 / 3}));
  }
  points.push_back(P(b));
  nlohmann::json inner = nlohmann::json::array();
  for (const char* kind : kinds) {
    if (std::string(kind) == "knot")
      inner.push_back({{"kind", "knot"}});
    else
      inner.push_back({{"kind", "vertex"}, {"selected", false}, {"smooth", {false, false}}});
  }
  return {{"node", {i, j}}, {"axis", axis}, {"points", points}, {"inner", inner}};
}

// A filled shape of six anchors, and a 3 x 2 grid of docked paths (every
// third one bent), to the right of the mesh.
std::vector<nlohmann::json> PathsBeside() {
  using nlohmann::json;
  std::vector<json> art;
  art.push_back({{"type", "path"},
                 {"id", "demo-shape"},
                 {"name", "Shape"},
                 {"closed", true},
                 {"opacity", 0.9},
                 {"fill", {{"color", {{"rgb", {0.95, 0.45, 0.2}}}}}},
                 {"stroke", nullptr},
                 {"segments",
                  json::array({{{"p", {430, 200}}},
                               {{"p", {515, 185}}, {"in", {480, 200}}, {"out", {550, 170}}},
                               {{"p", {600, 205}}},
                               {{"p", {590, 300}}},
                               {{"p", {510, 315}}, {"in", {550, 330}}, {"out", {470, 300}}},
                               {{"p", {440, 290}}}})}});
  const double left = 430, bottom = 30, w = 55, h = 65;
  int serial = 0;
  auto add = [&](Pt a, Pt b) {
    json segs = json::array({{{"p", P(a)}}, {{"p", P(b)}}});
    if (serial % 3 == 1) {
      const Pt m{(a.h + b.h) / 2 + (a.h == b.h ? 8 : 0), (a.v + b.v) / 2 + (a.v == b.v ? 8 : 0)};
      const Pt d{(b.h - a.h) / 6, (b.v - a.v) / 6};
      segs = json::array({{{"p", P(a)}}, {{"p", P(m)}, {"in", P({m.h - d.h, m.v - d.v})}, {"out", P({m.h + d.h, m.v + d.v})}},
                          {{"p", P(b)}}});
    }
    art.push_back({{"type", "path"},
                   {"id", "demo-grid-" + std::to_string(serial++)},
                   {"closed", false},
                   {"fill", nullptr},
                   {"stroke", {{"color", {{"rgb", {0.2, 0.3, 0.6}}}}, {"width", 1.5}}},
                   {"segments", segs}});
  };
  auto at = [&](int i, int j) { return Pt{left + w * i, bottom + h * j}; };
  for (int j = 0; j <= 2; ++j)
    for (int i = 0; i < 3; ++i) add(at(i, j), at(i + 1, j));
  for (int i = 0; i <= 3; ++i)
    for (int j = 0; j < 2; ++j) add(at(i, j), at(i, j + 1));
  return art;
}
}  // namespace

namespace {
// A photo-like picture: an evening sky over the sun and rolling hills, 96 x
// 72 RGB pixels of 4 units, under the whole mesh.
nlohmann::json PhotoRaster() {
  constexpr int kW = 96, kH = 72;
  std::string bytes;
  bytes.reserve(kW * kH * 3);
  auto byte = [](double c) {
    return static_cast<char>(static_cast<unsigned char>(std::lround(std::clamp(c, 0.0, 1.0) * 255)));
  };
  for (int row = 0; row < kH; ++row)
    for (int x = 0; x < kW; ++x) {
      const double t = row / double(kH);
      // Sky: deep blue at the top to orange at the horizon.
      double r = 0.10 + 0.90 * t * 1.4, g = 0.15 + 0.45 * t * 1.3, b = 0.45 - 0.30 * t;
      const double sun = std::hypot(x - 64.0, row - 30.0);
      if (sun < 9) r = 1.0, g = 0.93 - sun * 0.02, b = 0.6 - sun * 0.04;
      const double hill = 44 + 6 * std::sin(x * 0.09) + 4 * std::sin(x * 0.23 + 1.0);
      if (row > hill) {
        const double d = (row - hill) / (kH - hill);
        r = 0.12 + 0.10 * d + 0.05 * std::sin(x * 0.5);
        g = 0.38 - 0.18 * d;
        b = 0.12 + 0.05 * d;
      }
      bytes += byte(r);
      bytes += byte(g);
      bytes += byte(b);
    }
  static const char* k = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string b64;
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const uint32_t v = uint32_t(uint8_t(bytes[i])) << 16 | uint32_t(uint8_t(bytes[i + 1])) << 8 | uint8_t(bytes[i + 2]);
    for (int s = 18; s >= 0; s -= 6) b64 += k[(v >> s) & 63];
  }
  return {
      {"type", "raster"}, {"id", "demo-photo"}, {"name", "Photo"}, {"selected", true}, {"width", kW},
      {"height", kH},     {"space", "rgb"},     {"alpha", false},  {"bits", 8},        {"matrix", {4, 0, 0, 4, 8, 304}},
      {"pixels", b64},    {"fill", nullptr}};
}

// A 2 x 2 cell mesh of bold colours to the right of the demo mesh,
// selected as a whole.
nlohmann::json SwatchMesh() {
  static const double kColors[9][3] = {{0.9, 0.1, 0.1}, {1.0, 0.8, 0.0}, {0.1, 0.7, 0.2},
                                       {0.1, 0.3, 0.9}, {1.0, 1.0, 1.0}, {0.6, 0.1, 0.8},
                                       {0.0, 0.0, 0.0}, {1.0, 0.5, 0.0}, {0.0, 0.8, 0.8}};
  nlohmann::json nodes = nlohmann::json::array();
  for (int j = 0; j <= 2; ++j)
    for (int i = 0; i <= 2; ++i) {
      const double* c = kColors[i + 3 * j];
      nodes.push_back({{"p", {630.0 + 45.0 * i, 100.0 + 45.0 * j}}, {"color", {{"rgb", {c[0], c[1], c[2]}}}}});
    }
  return {{"type", "mesh"},   {"id", "swatch-mesh"}, {"name", "Swatch"},
          {"selected", true}, {"size", {2, 2}},      {"nodes", nodes}};
}

// A 2 x 3 cell mesh of soft colours a few units right of the demo mesh's
// right side (its side 3 faces the demo mesh's side 1), selected.
nlohmann::json SewPartner() {
  nlohmann::json nodes = nlohmann::json::array();
  for (int j = 0; j <= 3; ++j)
    for (int i = 0; i <= 2; ++i) {
      const double h = 352.0 + 40.0 * i + 4.0 * std::sin(j * 1.3 + i);
      const double v = 42.0 + 75.0 * j + 3.0 * std::cos(i * 0.7);
      nodes.push_back({{"p", {h, v}},
                       {"color", {{"rgb", {0.95 - 0.2 * i, 0.55 + 0.1 * j, 0.3 + 0.2 * i}}}},
                       {"opacity", 1.0}});
    }
  return {{"type", "mesh"},   {"id", "sew-partner"}, {"name", "Partner"},
          {"selected", true}, {"size", {2, 3}},      {"nodes", nodes}};
}

// One of four 2 x 2 cell meshes of 45 units docked in a block right of the
// demo mesh; (r, c) is its place in the block.
nlohmann::json DockedMesh(int r, int c) {
  static const double kTint[4][3] = {{0.9, 0.3, 0.2}, {0.2, 0.6, 0.9}, {0.3, 0.8, 0.3}, {0.9, 0.8, 0.2}};
  const double* t = kTint[r * 2 + c];
  nlohmann::json nodes = nlohmann::json::array();
  for (int j = 0; j <= 2; ++j)
    for (int i = 0; i <= 2; ++i) {
      const double light = 0.15 * ((i + j) % 3);
      nodes.push_back({{"p", {410.0 + 90.0 * c + 45.0 * i, 70.0 + 90.0 * r + 45.0 * j}},
                       {"color", {{"rgb", {t[0] + (1 - t[0]) * light, t[1] + (1 - t[1]) * light,
                                           t[2] + (1 - t[2]) * light}}}}});
    }
  return {{"type", "mesh"},
          {"id", "docked-" + std::to_string(r) + std::to_string(c)},
          {"selected", true},
          {"size", {2, 2}},
          {"nodes", nodes}};
}
}  // namespace

std::string demoDocumentText(const DemoSelection& selection, DemoScene scene) {
  using nlohmann::json;
  json nodes = json::array();
  for (int j = 0; j <= kJ; ++j) {
    for (int i = 0; i <= kI; ++i) {
      bool sel = selection.wholeMesh;
      for (auto [si, sj] : selection.nodes) sel = sel || (si == i && sj == j);
      nodes.push_back({{"p", P(NodeAt(i, j))},
                       {"color", ColorAt(i, j)},
                       {"opacity", (i == 3 && j == 2) ? 0.6 : 1.0},
                       {"selected", sel}});
    }
  }
  json runs = json::array({Run(1, 2, "I", {"knot"}), Run(3, 1, "J", {"vertex"}),
                           Run(4, 4, "I", {"vertex", "knot"}), Run(0, 3, "J", {"knot", "knot"})});
  if (scene == DemoScene::kBorderVertex) {
    runs.push_back(Run(0, 0, "I", {"knot", "vertex"}));
    runs.back()["inner"][1]["selected"] = true;
  }
  json mesh = {{"type", "mesh"}, {"id", "demo-mesh"}, {"name", "Demo mesh"},
               {"selected", true}, {"size", {kI, kJ}}, {"nodes", nodes}, {"runs", runs}};
  json path = {
      {"type", "path"},
      {"id", "demo-path"},
      {"name", "Guide"},
      {"closed", false},
      {"fill", nullptr},
      {"stroke", {{"color", {{"rgb", {0.1, 0.1, 0.1}}}}, {"width", 2}}},
      {"selected", !selection.paths.empty() && std::string("demo-path").rfind(selection.paths, 0) == 0},
      {"segments",
       json::array({{{"p", {30, 300}}, {"out", {120, 340}}},
                    {{"p", {200, 300}}, {"in", {150, 270}}, {"out", {250, 330}}},
                    {{"p", {360, 305}}, {"in", {320, 340}}}})}};
  json children = json::array({path, mesh});
  // The scenes with extra meshes beside the demo mesh leave the paths out.
  const bool pathsBeside = scene != DemoScene::kSewPair && scene != DemoScene::kDocked;
  for (json& art : pathsBeside ? PathsBeside() : std::vector<json>{}) {
    const std::string id = art["id"];
    art["selected"] = !selection.paths.empty() && id.rfind(selection.paths, 0) == 0;
    children.push_back(art);
  }
  double right = 620;
  if (scene == DemoScene::kPhoto) children.push_back(PhotoRaster());
  if (scene == DemoScene::kSwatch) {
    children.insert(children.begin(), SwatchMesh());
    right = 740;
  }
  if (scene == DemoScene::kSewPair) {
    children.insert(children.begin(), SewPartner());
    right = 460;
  }
  if (scene == DemoScene::kDocked) {
    children[1]["selected"] = false;
    for (int r = 1; r >= 0; --r)
      for (int c = 1; c >= 0; --c) children.insert(children.begin(), DockedMesh(r, c));
    right = 610;
  }
  json doc = {{"latticebender", 1},
              {"artboard", {0, 0, right, 340}},
              {"layers", json::array({{{"name", "Layer 1"}, {"children", children}}})}};
  return doc.dump(2);
}

std::unique_ptr<lb::host::Document> demoDocument(const DemoSelection& selection, DemoScene scene) {
  return lb::io::readDocument(demoDocumentText(selection, scene));
}

}  // namespace lb::app
