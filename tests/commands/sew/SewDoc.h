// Documents for the sewing tests: straight-line grid meshes with paint per
// node, a session that runs one command through the loaded plug-in and
// checks that no host object leaked, and readers of the written meshes.
#pragma once

#include "LBModule.h"
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/Document.h"
#include "host/Host.h"
#include "io/Lbdoc.h"

namespace sewtest {

using nlohmann::json;

constexpr int kSewMove = kCmdSewMeshMove;
constexpr int kSewAddRow = kCmdSewMeshAdd;
constexpr int kJoinDocked = kCmdSewDocked;

// A mesh of I x J straight cells of w x h units with its node (0, 0) at
// (h0, v0); paint(i, j) gives each node's colour.
struct Grid {
  int I = 1, J = 1;
  double h0 = 0, v0 = 0, w = 10, h = 10;
  std::function<json(int, int)> paint;
  std::function<double(int, int)> opacity;
  std::string id;
  bool selected = true;
  double artOpacity = 1.0;
  std::string blend = "normal";
};

inline json Gray(double g) { return {{"gray", g}}; }
inline json Rgb(double r, double g, double b) { return {{"rgb", {r, g, b}}}; }
inline json Cmyk(double c, double m, double y, double k) { return {{"cmyk", {c, m, y, k}}}; }

inline json MeshArt(const Grid& g) {
  json art = {{"type", "mesh"}, {"size", {g.I, g.J}}, {"selected", g.selected}};
  if (!g.id.empty()) art["id"] = g.id;
  if (g.artOpacity != 1.0) art["opacity"] = g.artOpacity;
  if (g.blend != "normal") art["blend"] = g.blend;
  json nodes = json::array();
  for (int j = 0; j <= g.J; ++j)
    for (int i = 0; i <= g.I; ++i)
      nodes.push_back({{"p", {g.h0 + g.w * i, g.v0 + g.h * j}},
                       {"color", g.paint ? g.paint(i, j) : Gray(0.5)},
                       {"opacity", g.opacity ? g.opacity(i, j) : 1.0}});
  art["nodes"] = nodes;
  return art;
}

inline json Doc(const std::vector<json>& children) {
  json layer = {{"name", "Layer 1"}, {"children", children}};
  return {{"latticebender", 1}, {"layers", {layer}}};
}

class Session {
 public:
  explicit Session(const json& doc) : host_(lb::io::readDocument(doc.dump())) { host_.loadPlugin(); }

  json run(int id, bool alt = false, bool ctrl = false) {
    const lb::host::Counters before = host_.counters();
    host_.runCommand(id, alt, ctrl, false, false);
    EXPECT_EQ(host_.counters(), before) << "command " << id << " leaked a host object";
    return written();
  }
  json written() { return json::parse(lb::io::writeDocument(host_.document())); }
  lb::host::Host& host() { return host_; }

 private:
  lb::host::Host host_;
};

inline const json& Children(const json& doc) { return doc.at("layers")[0].at("children"); }

// Node (i, j) of a written mesh.
inline const json& NodeAt(const json& mesh, int i, int j) {
  const int I = mesh.at("size")[0];
  return mesh.at("nodes").at(static_cast<size_t>(j * (I + 1) + i));
}

// Positions of all nodes, i fastest, rounded to 1e-9 for exact comparison.
inline std::vector<std::pair<double, double>> Positions(const json& mesh) {
  std::vector<std::pair<double, double>> out;
  auto r = [](double x) { return std::round(x * 1e9) / 1e9 + 0.0; };
  for (const json& n : mesh.at("nodes")) out.emplace_back(r(n.at("p")[0]), r(n.at("p")[1]));
  return out;
}

}  // namespace sewtest
