// The demo document and the tour table.
#include "app/DemoTour.h"

#include <cmath>

#include <nlohmann/json.hpp>

#include "LBModule.h"
#include "io/Lbdoc.h"

namespace lb::app {

namespace {
using Nodes = std::vector<std::pair<int, int>>;
const Nodes kRegion = {{1, 1}, {4, 3}};  // spans a 3 x 2 region
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
}  // namespace

std::string demoDocumentText(const DemoSelection& selection) {
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
  json mesh = {{"type", "mesh"}, {"id", "demo-mesh"}, {"name", "Demo mesh"},
               {"selected", true}, {"size", {kI, kJ}}, {"nodes", nodes}, {"runs", runs}};
  json path = {
      {"type", "path"},
      {"id", "demo-path"},
      {"name", "Guide"},
      {"closed", false},
      {"fill", nullptr},
      {"stroke", {{"color", {{"rgb", {0.1, 0.1, 0.1}}}}, {"width", 2}}},
      {"segments",
       json::array({{{"p", {30, 300}}, {"out", {120, 340}}},
                    {{"p", {200, 300}}, {"in", {150, 270}}, {"out", {250, 330}}},
                    {{"p", {360, 305}}, {"in", {320, 340}}}})}};
  json doc = {{"latticebender", 1},
              {"artboard", {0, 0, 400, 340}},
              {"layers", json::array({{{"name", "Layer 1"}, {"children", {path, mesh}}}})}};
  return doc.dump(2);
}

std::unique_ptr<lb::host::Document> demoDocument(const DemoSelection& selection) {
  return lb::io::readDocument(demoDocumentText(selection));
}

}  // namespace lb::app
