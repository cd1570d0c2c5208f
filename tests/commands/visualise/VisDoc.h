// Documents for the drawing and diagnostic commands, a session that runs a
// command and reads the document back, and walkers of the created art.
#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/Document.h"
#include "host/Host.h"
#include "io/Lbdoc.h"

namespace vistest {

using nlohmann::json;
using Node = std::pair<int, int>;

// A mesh on a 10-unit grid from (x0, y0). `selected` lists the selected
// nodes unless `whole`; `runs` are written as given (each may carry
// "inner" vertices with their own "selected" flags).
struct MeshSpec {
  MeshSpec(int cellsI = 1, int cellsJ = 1) : I(cellsI), J(cellsJ) {}
  int I, J;
  bool whole = true;
  std::set<Node> selected;
  json runs = json::array();
  bool artSelected = true;
  double x0 = 0, y0 = 0;
  json u, v;  // relative positions, when not even
};

inline json MeshArt(const MeshSpec& m) {
  json nodes = json::array();
  for (int j = 0; j <= m.J; ++j)
    for (int i = 0; i <= m.I; ++i) {
      json n = {{"p", {m.x0 + 10.0 * i, m.y0 + 10.0 * j}}, {"color", {{"gray", 0.5}}}};
      if (!m.whole) n["selected"] = m.selected.count({i, j}) > 0;
      nodes.push_back(n);
    }
  json art = {{"type", "mesh"}, {"size", {m.I, m.J}}, {"selected", m.artSelected}, {"nodes", nodes}};
  if (!m.runs.empty()) art["runs"] = m.runs;
  if (!m.u.is_null()) art["u"] = m.u;
  if (!m.v.is_null()) art["v"] = m.v;
  return art;
}

// A straight run from node (i, j) along axis split in two pieces by one
// inner anchor at its middle, a knot or a vertex (selected or not).
inline json SplitRun(const MeshSpec& m, int i, int j, char axis, const json& inner) {
  const double ax = m.x0 + 10.0 * i, ay = m.y0 + 10.0 * j;
  const double dx = axis == 'I' ? 10.0 : 0.0, dy = axis == 'J' ? 10.0 : 0.0;
  json pts = json::array();
  for (int k = 0; k <= 6; ++k) pts.push_back({ax + dx * k / 6.0, ay + dy * k / 6.0});
  return {{"node", {i, j}}, {"axis", std::string(1, axis)}, {"points", pts}, {"inner", {inner}}};
}

// A stroke-only graphic style of the given grey width.
inline json Style(const std::string& name, double width) {
  return {{"name", name}, {"fill", nullptr}, {"stroke", {{"color", {{"rgb", {0, 1, 0}}}}, {"width", width}}}};
}

// One layer with the given art, first on top.
inline std::string Doc(const json& children, const json& styles = json::array()) {
  json doc = {{"latticebender", 1}, {"layers", {{{"name", "Layer 1"}, {"children", children}}}}};
  if (!styles.empty()) doc["styles"] = styles;
  return doc.dump();
}

inline std::string MeshDoc(const std::vector<MeshSpec>& meshes, const json& styles = json::array()) {
  json kids = json::array();
  for (const auto& m : meshes) kids.push_back(MeshArt(m));
  return Doc(kids, styles);
}

class Session {
 public:
  explicit Session(const std::string& text) : host(lb::io::readDocument(text)) { host.loadPlugin(); }

  // Runs one command, checks it left no host object alive and that the
  // document reads back as written, and returns the layer's children.
  json run(int id, bool alt = false, bool ctrl = false) {
    const lb::host::Counters before = host.counters();
    host.runCommand(id, alt, ctrl, true, true);
    EXPECT_EQ(host.counters(), before) << "command " << id << " leaked a host object";
    const std::string text = lb::io::writeDocument(host.document());
    // The created art must read back as written.
    EXPECT_EQ(lb::io::writeDocument(*lb::io::readDocument(text)), text);
    return json::parse(text).at("layers").at(0).at("children");
  }

  lb::host::Host host;
};

// Names of the art in a list, top first.
inline std::vector<std::string> Names(const json& list) {
  std::vector<std::string> out;
  for (const auto& a : list) out.push_back(a.at("name"));
  return out;
}

// The child of that name (the first one), or a failed test.
inline const json& Child(const json& art, const std::string& name) {
  static const json none;
  for (const auto& c : art.at("children"))
    if (c.at("name") == name) return c;
  ADD_FAILURE() << "no child named " << name << " in " << art.value("name", "?");
  return none;
}

inline bool HasChild(const json& art, const std::string& name) {
  for (const auto& c : art.at("children"))
    if (c.at("name") == name) return true;
  return false;
}

// Anchors of a path.
inline std::vector<std::pair<double, double>> Anchors(const json& path) {
  std::vector<std::pair<double, double>> out;
  for (const auto& s : path.at("segments")) out.emplace_back(s.at("p")[0], s.at("p")[1]);
  return out;
}

using Pts = std::vector<std::pair<double, double>>;

}  // namespace vistest
