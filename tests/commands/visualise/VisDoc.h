// Documents for the drawing and diagnostic commands: runs split by one
// anchor, graphic styles, and walkers of the created art.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "support/Session.h"

namespace vistest {

using namespace lbtest;

// A straight run from node (i, j) along axis split in two pieces by one
// inner anchor at its middle, a knot or a vertex (selected or not).
inline json SplitRun(const MeshRecipe& m, int i, int j, char axis, const json& inner) {
  const AIRealPoint a = m.P(i, j), b = m.P(i + (axis == 'I'), j + (axis == 'J'));
  json pts = json::array();
  for (int k = 0; k <= 6; ++k) pts.push_back({a.h + (b.h - a.h) * k / 6.0, a.v + (b.v - a.v) * k / 6.0});
  return {{"node", {i, j}}, {"axis", std::string(1, axis)}, {"points", pts}, {"inner", {inner}}};
}

// The run from (0, 0) along I of a 10 x 10 cell bent through one smooth
// knot at (5, 2).
inline json KnotRun() {
  return {{"node", {0, 0}}, {"axis", "I"}, {"points", {{0, 0}, {1, 1}, {3, 2}, {5, 2}, {7, 2}, {9, 1}, {10, 0}}},
          {"inner", {{{"kind", "knot"}}}}};
}

// One layer with the meshes, first on top, and a stroke-only graphic style
// of width 2 for each name.
inline json MeshDoc(const std::vector<MeshRecipe>& meshes, const std::vector<std::string>& styles = {}) {
  json doc = DocJson(MeshJsons(meshes));
  for (const std::string& name : styles)
    doc["styles"].push_back(
        {{"name", name}, {"fill", nullptr}, {"stroke", {{"color", {{"rgb", {0, 1, 0}}}}, {"width", 2.0}}}});
  return doc;
}

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

// Anchors of a path.
inline std::vector<std::pair<double, double>> Anchors(const json& path) {
  std::vector<std::pair<double, double>> out;
  for (const auto& s : path.at("segments")) out.emplace_back(s.at("p")[0], s.at("p")[1]);
  return out;
}

using Strs = std::vector<std::string>;

}  // namespace vistest
