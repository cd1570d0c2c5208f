// Test documents of gradient meshes and readers of the result.
//
// Every node starts with its own paint: node number n = i + (I + 1) j gets
// gray (n + 1) / (N + 1) and opacity 1 - (n + 1) / (2 (N + 1)), N being the
// node count, so after a command each node's colour and opacity say which
// node they came from, independently of each other.
#pragma once

#include <cmath>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/Document.h"
#include "host/Host.h"
#include "io/Lbdoc.h"

namespace sctest {

using Node = std::pair<int, int>;
using NodeSet = std::set<Node>;
// A non-node vertex: the run from node (i, j) along axis 'I' or 'J'; the
// run is split into two pieces with one vertex in the middle.
using Inner = std::tuple<int, int, char>;

struct MeshPlan {
  int I = 1, J = 1;
  NodeSet selected;                 // selected nodes
  std::map<Inner, bool> inner;      // non-node vertices and whether selected
  bool whole = false;               // the whole mesh selected (no flags written)
  bool artSelected = true;
  double x0 = 0, y0 = 0;            // placement
};

inline int NodeCount(int I, int J) { return (I + 1) * (J + 1); }
inline double GrayOf(int n, int N) { return double(n + 1) / double(N + 1); }
inline double OpacityOf(int n, int N) { return 1.0 - double(n + 1) / double(2 * (N + 1)); }

inline nlohmann::json MeshJson(const MeshPlan& s) {
  using nlohmann::json;
  const int N = NodeCount(s.I, s.J);
  json m = {{"type", "mesh"}, {"size", {s.I, s.J}}, {"selected", s.artSelected}};
  json nodes = json::array();
  for (int j = 0; j <= s.J; ++j)
    for (int i = 0; i <= s.I; ++i) {
      const int n = i + (s.I + 1) * j;
      json node = {{"p", {s.x0 + 10.0 * i, s.y0 + 10.0 * j}},
                   {"color", {{"gray", GrayOf(n, N)}}},
                   {"opacity", OpacityOf(n, N)}};
      if (!s.whole) node["selected"] = s.selected.count({i, j}) > 0;
      nodes.push_back(node);
    }
  m["nodes"] = nodes;
  json runs = json::array();
  for (const auto& [key, sel] : s.inner) {
    const auto [i, j, axis] = key;
    const double ax = s.x0 + 10.0 * i, ay = s.y0 + 10.0 * j;
    const double dx = axis == 'I' ? 10.0 : 0.0, dy = axis == 'J' ? 10.0 : 0.0;
    json pts = json::array();
    for (int k = 0; k <= 6; ++k) pts.push_back({ax + dx * k / 6.0, ay + dy * k / 6.0});
    json v = {{"kind", "vertex"}};
    if (!s.whole) v["selected"] = sel;
    runs.push_back({{"node", {i, j}}, {"axis", std::string(1, axis)}, {"points", pts}, {"inner", {v}}});
  }
  if (!runs.empty()) m["runs"] = runs;
  return m;
}

// One layer holding the meshes, the first on top.
inline std::string DocText(const std::vector<MeshPlan>& meshes) {
  nlohmann::json children = nlohmann::json::array();
  for (const MeshPlan& s : meshes) children.push_back(MeshJson(s));
  nlohmann::json doc = {{"latticebender", 1}, {"layers", {{{"name", "Layer 1"}, {"children", children}}}}};
  return doc.dump();
}

// A mesh as written back after a command.
class MeshState {
 public:
  explicit MeshState(const nlohmann::json& art) : m_art(art) {
    I = art.at("size").at(0).get<int>();
    J = art.at("size").at(1).get<int>();
  }
  int I = 0, J = 0;

  const nlohmann::json& node(int i, int j) const { return m_art.at("nodes").at(i + (I + 1) * j); }
  bool selected(int i, int j) const { return node(i, j).value("selected", false); }
  bool artSelected() const { return m_art.value("selected", false); }
  // Number of the node whose colour (opacity) node (i, j) now carries, or
  // -1 when it matches none.
  int colorFrom(int i, int j) const { return Decode(node(i, j).at("color").at("gray").get<double>(), false); }
  int opacityFrom(int i, int j) const { return Decode(node(i, j).at("opacity").get<double>(), true); }
  NodeSet selectedNodes() const {
    NodeSet out;
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i <= I; ++i)
        if (selected(i, j)) out.insert({i, j});
    return out;
  }
  // Selection flags of the non-node vertices of the run from (i, j) along
  // axis, in order.
  std::vector<bool> innerSelected(int i, int j, char axis) const {
    std::vector<bool> out;
    for (const auto& run : m_art.value("runs", nlohmann::json::array())) {
      if (run.at("node").at(0) != i || run.at("node").at(1) != j || run.at("axis") != std::string(1, axis)) continue;
      for (const auto& in : run.value("inner", nlohmann::json::array()))
        if (in.at("kind") == "vertex") out.push_back(in.value("selected", false));
    }
    return out;
  }
  bool innerSel(int i, int j, char axis) const {
    auto v = innerSelected(i, j, axis);
    return !v.empty() && v[0];
  }

 private:
  int Decode(double x, bool opacity) const {
    const int N = NodeCount(I, J);
    const double t = opacity ? (1.0 - x) * 2.0 * (N + 1) : x * (N + 1);
    const double r = std::round(t);
    if (std::fabs(t - r) > 1e-9) return -1;
    return int(r) - 1;
  }
  nlohmann::json m_art;
};

inline int NodeNo(const MeshState& m, int i, int j) { return i + (m.I + 1) * j; }

// A loaded host with the document; runs commands and reads the meshes back.
class Session {
 public:
  explicit Session(const std::vector<MeshPlan>& meshes)
      : host(lb::io::readDocument(DocText(meshes))) {
    host.loadPlugin();
    before = host.counters();
  }
  // Runs a panel command with the two checkboxes.
  void run(int id, bool alt, bool ctrl, bool color = true, bool opacity = false) {
    host.runCommand(id, alt, ctrl, color, opacity);
  }
  MeshState mesh(size_t k) {
    const nlohmann::json doc = nlohmann::json::parse(lb::io::writeDocument(host.document()));
    return MeshState(doc.at("layers").at(0).at("children").at(k));
  }
  bool noLeaks() { return host.counters() == before; }

  lb::host::Host host;
  lb::host::Counters before;
};

inline NodeSet Rect(int i0, int i1, int j0, int j1) {
  NodeSet s;
  for (int i = i0; i <= i1; ++i)
    for (int j = j0; j <= j1; ++j) s.insert({i, j});
  return s;
}

}  // namespace sctest
