// Documents for the knot, corner, brush-grid and cutter tests: a mesh built
// from a few parameters with hand-placed runs, and readers of the written
// runs (sessions and the rest come from the support library).
#pragma once

#include "LBModule.h"
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include <nlohmann/json.hpp>

#include "support/Session.h"

namespace knots {

using namespace lbtest;
using Pt = std::pair<double, double>;

// A run as written: its points and the kinds of its interior anchors
// ('k' knot, 'v' vertex, 'V' selected vertex).
struct LineRun {
  std::vector<Pt> points;
  std::string inner;
};

struct MeshDoc {
  int I = 1, J = 1;
  // Runs replacing the straight default, by (axis, i, j).
  std::map<std::tuple<int, int, int>, LineRun> runs;
  NodeSet selectedNodes;
  bool wholeSelected = false;
  double opacity = 1.0;

  static Pt NodeP(int i, int j) { return {100.0 * i + 7.0 * j, 80.0 * j + 5.0 * i}; }
  static json NodeColor(int i, int j) { return {{"rgb", {0.125 * (i % 8), 0.25 * (j % 4), 0.5}}}; }
  static double NodeOpacity(int i, int j) { return 0.25 + 0.25 * ((i + 2 * j) % 4); }

  // The mesh as a support recipe: nodes placed and painted as above, the
  // given runs written in place of the straight ones.
  json art() const {
    lbtest::MeshRecipe m;
    m.I = I, m.J = J;
    m.artOpacity = opacity;
    m.whole = wholeSelected;
    m.colorAt = NodeColor;
    m.opacityAt = NodeOpacity;
    m.selected = selectedNodes;
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i <= I; ++i) m.moved[{i, j}] = {NodeP(i, j).first, NodeP(i, j).second};
    for (const auto& [key, r] : runs) {
      const auto [axis, i, j] = key;
      json inner = json::array();
      for (char c : r.inner) {
        json e = {{"kind", c == 'k' ? "knot" : "vertex"}};
        if (c != 'k' && !wholeSelected) e["selected"] = c == 'V';
        inner.push_back(e);
      }
      m.runs.push_back({{"node", {i, j}}, {"axis", axis == 0 ? "I" : "J"}, {"points", r.points}, {"inner", inner}});
    }
    return lbtest::MeshJson(m);
  }
};

// A run from a to b through the given interior anchors, with handles a
// quarter of the way along each piece and bent off the chord so that no
// handle is retracted or collinear.
inline LineRun MakeRun(Pt a, Pt b, const std::string& inner) {
  LineRun r;
  r.inner = inner;
  const int m = static_cast<int>(inner.size()) + 1;
  std::vector<Pt> anchors;
  for (int q = 0; q <= m; ++q) {
    const double t = static_cast<double>(q) / m;
    const double off = (q == 0 || q == m) ? 0.0 : (q % 2 ? 6.0 : -4.0);
    anchors.push_back({a.first + (b.first - a.first) * t - off * 0.3, a.second + (b.second - a.second) * t + off});
  }
  for (int q = 0; q < m; ++q) {
    const Pt p0 = anchors[q], p1 = anchors[q + 1];
    if (q == 0) r.points.push_back(p0);
    r.points.push_back({p0.first + (p1.first - p0.first) * 0.25 + 1.5, p0.second + (p1.second - p0.second) * 0.25 - 2.0});
    r.points.push_back({p0.first + (p1.first - p0.first) * 0.75 - 1.0, p0.second + (p1.second - p0.second) * 0.75 + 2.5});
    r.points.push_back(p1);
  }
  return r;
}

inline Pt P(const json& p) { return {p[0].get<double>(), p[1].get<double>()}; }

// The written run from node (i, j) along axis.
inline LineRun ReadRun(const json& mesh, int axis, int i, int j) {
  const json& r = lbtest::RunAt(mesh, i, j, axis == 0 ? 'I' : 'J');
  LineRun out{lbtest::PointsOf(r.at("points")), ""};
  for (const json& e : r.value("inner", json::array()))
    out.inner += e.at("kind") == "knot" ? 'k' : (e.value("selected", false) ? 'V' : 'v');
  return out;
}

}  // namespace knots
