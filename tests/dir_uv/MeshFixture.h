// Test meshes for the grid rebuild tests: .lbdoc JSON built from a few
// parameters (curved runs, knots, non-node vertices, distinct paint per
// node, mixed smooth flags), and a readable form of a written mesh that
// can be compared node by node and run by run after an index mapping.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace dirtest {

using nlohmann::json;

struct MeshSpec {
  int I = 3;
  int J = 2;
  std::vector<double> u;  // empty: even spacing
  std::vector<double> v;
  bool structured = true;  // knots and non-node vertices on some runs
  double opacity = 1.0;
  std::string blend = "normal";
  std::string id;
  bool selected = true;
  double originH = 0.0;
  bool rgbOnly = false;  // every node in RGB (else gray, RGB and CMYK mixed)
};

inline std::vector<double> Even(int n) {
  std::vector<double> t(static_cast<size_t>(n) + 1);
  for (int k = 0; k <= n; ++k) t[static_cast<size_t>(k)] = static_cast<double>(k) / n;
  return t;
}

// A slightly warped grid so that no two nodes share a coordinate.
inline json NodePoint(const MeshSpec& s, int i, int j) {
  return json::array({s.originH + 40.0 * i + 3.0 * std::sin(1.3 * j + 0.2 * i),
                      30.0 * j + 2.5 * std::cos(0.7 * i + 0.5 * j)});
}

inline json NodeColor(int i, int j, bool rgbOnly) {
  if (rgbOnly) return {{"rgb", {0.25 * (i % 5), 0.3 * (j % 4), 0.3 + 0.15 * ((i + j) % 3)}}};
  switch ((i + 2 * j) % 3) {
    case 0: return {{"rgb", {0.1 * (i % 10), 0.125 * (j % 8), 0.5}}};
    case 1: return {{"gray", 0.0625 * ((i * 5 + j) % 16)}};
    default: return {{"cmyk", {0.25, 0.05 * (i % 20), 0.05 * (j % 20), 0.125}}};
  }
}

inline double NodeOpacity(int i, int j) { return 0.25 + 0.25 * ((i * 3 + j) % 4); }

// The points of a run from a to b as `pieces` cubic pieces whose interior
// anchors stand off the straight line.
inline json RunPoints(const json& a, const json& b, int pieces, double bend) {
  const double ah = a[0], av = a[1], bh = b[0], bv = b[1];
  const double dh = bh - ah, dv = bv - av, len = std::hypot(dh, dv);
  // off: distance to the left of the straight line, in document units.
  auto at = [&](double t, double off) {
    return json::array({ah + dh * t - dv / len * off, av + dv * t + dh / len * off});
  };
  json pts = json::array();
  for (int q = 0; q < pieces; ++q) {
    const double t0 = static_cast<double>(q) / pieces, t1 = static_cast<double>(q + 1) / pieces;
    const double o0 = q == 0 ? 0.0 : bend * (q % 2 ? 1 : -1);
    const double o1 = q + 1 == pieces ? 0.0 : bend * ((q + 1) % 2 ? 1 : -1);
    if (q == 0) pts.push_back(at(t0, o0));
    pts.push_back(at(t0 + (t1 - t0) / 3, o0 + bend * 0.5));
    pts.push_back(at(t1 - (t1 - t0) / 3, o1 - bend * 0.25));
    if (q + 1 == pieces)
      pts.push_back(b);
    else
      pts.push_back(at(t1, o1));
  }
  pts[0] = a;
  return pts;
}

inline json MakeMeshArt(const MeshSpec& s) {
  json art = {{"type", "mesh"}, {"size", {s.I, s.J}}, {"selected", s.selected}};
  if (!s.id.empty()) art["id"] = s.id;
  if (s.opacity != 1.0) art["opacity"] = s.opacity;
  if (s.blend != "normal") art["blend"] = s.blend;
  if (!s.u.empty()) art["u"] = s.u;
  if (!s.v.empty()) art["v"] = s.v;
  json nodes = json::array();
  for (int j = 0; j <= s.J; ++j) {
    for (int i = 0; i <= s.I; ++i) {
      json smooth = json::object();
      if (i > 0) smooth["I-"] = (i + j) % 2 == 0;
      if (j > 0) smooth["J-"] = (i * j) % 3 == 1;
      if (i < s.I) smooth["I+"] = (i + 2 * j) % 3 == 0;
      if (j < s.J) smooth["J+"] = (2 * i + j) % 2 == 1;
      nodes.push_back({{"p", NodePoint(s, i, j)},
                       {"color", NodeColor(i, j, s.rgbOnly)},
                       {"opacity", NodeOpacity(i, j)},
                       {"smooth", smooth}});
    }
  }
  art["nodes"] = nodes;
  json runs = json::array();
  for (int axis = 0; axis < 2; ++axis) {
    for (int j = 0; j <= s.J; ++j) {
      for (int i = 0; i <= s.I; ++i) {
        if (axis == 0 ? i == s.I : j == s.J) continue;
        const json a = NodePoint(s, i, j);
        const json b = axis == 0 ? NodePoint(s, i + 1, j) : NodePoint(s, i, j + 1);
        const int kind = s.structured ? (i + 2 * j + axis) % 3 : 2;
        json inner = json::array();
        int pieces = 1;
        if (kind == 0) {  // a knot, then a vertex
          pieces = 3;
          inner.push_back({{"kind", "knot"}});
          inner.push_back({{"kind", "vertex"}, {"selected", false}, {"smooth", {true, (i + j) % 2 == 0}}});
        } else if (kind == 1) {  // a vertex, then two knots
          pieces = 4;
          inner.push_back({{"kind", "vertex"}, {"selected", false}, {"smooth", {false, true}}});
          inner.push_back({{"kind", "knot"}});
          inner.push_back({{"kind", "knot"}});
        }
        runs.push_back({{"node", {i, j}},
                        {"axis", axis == 0 ? "I" : "J"},
                        {"points", RunPoints(a, b, pieces, 2.0 + 0.5 * i + 0.25 * j)},
                        {"inner", inner}});
      }
    }
  }
  art["runs"] = runs;
  return art;
}

inline json MakeDoc(const std::vector<json>& children) {
  json layer = {{"name", "Layer 1"}, {"children", children}};
  return {{"latticebender", 1}, {"layers", {layer}}};
}

// ---- Reading a written mesh --------------------------------------------

using Node = std::pair<int, int>;

struct NodeContent {
  json p, color;
  double opacity = 1.0;
  std::map<std::string, bool> smooth;  // only directions the node has
  bool selected = false;
};

struct InnerContent {
  std::string kind;
  bool smoothBack = false, smoothFwd = false;
  bool selected = false;
};

struct RunContent {
  std::vector<std::pair<double, double>> points;
  std::vector<InnerContent> inner;
};

struct MeshContent {
  int I = 0, J = 0;
  std::vector<double> u, v;
  std::map<Node, NodeContent> nodes;
  std::map<std::tuple<int, int, int>, RunContent> runs;  // (i, j, axis)
};

inline MeshContent ReadMesh(const json& art) {
  MeshContent m;
  m.I = art.at("size")[0];
  m.J = art.at("size")[1];
  m.u = art.contains("u") ? art["u"].get<std::vector<double>>() : Even(m.I);
  m.v = art.contains("v") ? art["v"].get<std::vector<double>>() : Even(m.J);
  const json& nodes = art.at("nodes");
  for (int j = 0; j <= m.J; ++j) {
    for (int i = 0; i <= m.I; ++i) {
      const json& n = nodes.at(static_cast<size_t>(j * (m.I + 1) + i));
      NodeContent c;
      c.p = n.at("p");
      c.color = n.at("color");
      c.opacity = n.value("opacity", 1.0);
      c.selected = n.value("selected", false);
      const json smooth = n.value("smooth", json::object());
      auto take = [&](const char* key, bool has) {
        if (has) c.smooth[key] = smooth.value(key, false);
      };
      take("I-", i > 0);
      take("J-", j > 0);
      take("I+", i < m.I);
      take("J+", j < m.J);
      m.nodes[{i, j}] = c;
    }
  }
  for (const json& r : art.value("runs", json::array())) {
    RunContent rc;
    for (const json& p : r.at("points")) rc.points.emplace_back(p[0].get<double>(), p[1].get<double>());
    for (const json& e : r.value("inner", json::array())) {
      InnerContent ic;
      ic.kind = e.at("kind");
      if (ic.kind == "vertex") {
        const json sm = e.value("smooth", json::array({false, false}));
        ic.smoothBack = sm[0];
        ic.smoothFwd = sm[1];
        ic.selected = e.value("selected", false);
      }
      rc.inner.push_back(ic);
    }
    const int axis = r.at("axis") == "I" ? 0 : 1;
    m.runs[{r.at("node")[0].get<int>(), r.at("node")[1].get<int>(), axis}] = rc;
  }
  return m;
}

// Where an old node lands in the new mesh.
using NodeMap = std::function<Node(int, int)>;

inline std::string DirName(int axis, int sense) {
  return std::string(axis == 0 ? "I" : "J") + (sense == 0 ? "+" : "-");
}

// Expected content of the new mesh: every node, node smooth flag and run of
// `old` carried through `map` onto a grid of newI x newJ cells. Selection
// and line positions are left to the caller.
inline MeshContent MapMesh(const MeshContent& old, int newI, int newJ, const NodeMap& map) {
  MeshContent m;
  m.I = newI;
  m.J = newJ;
  const int di[4] = {1, -1, 0, 0}, dj[4] = {0, 0, 1, -1};
  const int dax[4] = {0, 0, 1, 1}, dse[4] = {0, 1, 0, 1};
  for (const auto& [key, n] : old.nodes) {
    const auto [i, j] = key;
    const Node to = map(i, j);
    NodeContent c = n;
    c.smooth.clear();
    for (int d = 0; d < 4; ++d) {
      const std::string name = DirName(dax[d], dse[d]);
      if (!n.smooth.count(name)) continue;
      const Node nb = map(i + di[d], j + dj[d]);
      const int ax = nb.first != to.first ? 0 : 1;
      const int se = (ax == 0 ? nb.first - to.first : nb.second - to.second) > 0 ? 0 : 1;
      c.smooth[DirName(ax, se)] = n.smooth.at(name);
    }
    m.nodes[to] = c;
  }
  for (const auto& [key, r] : old.runs) {
    const auto [i, j, axis] = key;
    const Node a = map(i, j);
    const Node b = axis == 0 ? map(i + 1, j) : map(i, j + 1);
    const int ax = a.first != b.first ? 0 : 1;
    const bool forward = ax == 0 ? a.first < b.first : a.second < b.second;
    const Node start = forward ? a : b;
    RunContent rc = r;
    if (!forward) {
      std::reverse(rc.points.begin(), rc.points.end());
      std::reverse(rc.inner.begin(), rc.inner.end());
      for (InnerContent& ic : rc.inner) std::swap(ic.smoothBack, ic.smoothFwd);
    }
    m.runs[{start.first, start.second, ax}] = rc;
  }
  return m;
}

inline ::testing::AssertionResult Near(double a, double b, double tol) {
  if (std::fabs(a - b) <= tol) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << a << " vs " << b;
}

// Compares content node by node and run by run; positions within tol,
// colours, opacities and flags exactly. Selections only when asked.
inline ::testing::AssertionResult SameContent(const MeshContent& got, const MeshContent& want, double tol,
                                              bool withSelection = false) {
  if (got.I != want.I || got.J != want.J)
    return ::testing::AssertionFailure() << "size " << got.I << "x" << got.J << " vs " << want.I << "x" << want.J;
  for (const auto& [key, w] : want.nodes) {
    auto it = got.nodes.find(key);
    const std::string at = "node (" + std::to_string(key.first) + ", " + std::to_string(key.second) + ")";
    if (it == got.nodes.end()) return ::testing::AssertionFailure() << at << " missing";
    const NodeContent& g = it->second;
    for (int c = 0; c < 2; ++c)
      if (!Near(g.p[c].get<double>(), w.p[c].get<double>(), tol))
        return ::testing::AssertionFailure() << at << " p " << g.p.dump() << " vs " << w.p.dump();
    if (g.color != w.color)
      return ::testing::AssertionFailure() << at << " color " << g.color.dump() << " vs " << w.color.dump();
    if (g.opacity != w.opacity) return ::testing::AssertionFailure() << at << " opacity " << g.opacity << " vs " << w.opacity;
    for (const auto& [dir, flag] : w.smooth) {
      auto f = g.smooth.find(dir);
      if (f == g.smooth.end() || f->second != flag)
        return ::testing::AssertionFailure() << at << " smooth " << dir << " should be " << flag;
    }
    if (withSelection && g.selected != w.selected)
      return ::testing::AssertionFailure() << at << " selected " << g.selected << " vs " << w.selected;
  }
  for (const auto& [key, w] : want.runs) {
    const auto [i, j, axis] = key;
    const std::string at = std::string("run ") + (axis == 0 ? "I" : "J") + " from (" + std::to_string(i) + ", " +
                           std::to_string(j) + ")";
    auto it = got.runs.find(key);
    if (it == got.runs.end()) return ::testing::AssertionFailure() << at << " missing";
    const RunContent& g = it->second;
    if (g.points.size() != w.points.size())
      return ::testing::AssertionFailure() << at << " has " << g.points.size() << " points, want " << w.points.size();
    for (size_t k = 0; k < w.points.size(); ++k)
      if (!Near(g.points[k].first, w.points[k].first, tol) || !Near(g.points[k].second, w.points[k].second, tol))
        return ::testing::AssertionFailure() << at << " point " << k << " (" << g.points[k].first << ", "
                                             << g.points[k].second << ") vs (" << w.points[k].first << ", "
                                             << w.points[k].second << ")";
    for (size_t k = 0; k < w.inner.size(); ++k) {
      const InnerContent &gi = g.inner[k], &wi = w.inner[k];
      if (gi.kind != wi.kind) return ::testing::AssertionFailure() << at << " inner " << k << " is a " << gi.kind;
      if (wi.kind == "vertex" && (gi.smoothBack != wi.smoothBack || gi.smoothFwd != wi.smoothFwd))
        return ::testing::AssertionFailure() << at << " inner vertex " << k << " smooth flags differ";
      if (withSelection && wi.kind == "vertex" && gi.selected != wi.selected)
        return ::testing::AssertionFailure() << at << " inner vertex " << k << " selection differs";
    }
  }
  return ::testing::AssertionSuccess();
}

inline ::testing::AssertionResult SamePositions(const std::vector<double>& got, const std::vector<double>& want,
                                                double tol) {
  if (got.size() != want.size())
    return ::testing::AssertionFailure() << got.size() << " lines, want " << want.size();
  for (size_t k = 0; k < want.size(); ++k)
    if (!Near(got[k], want[k], tol)) return ::testing::AssertionFailure() << "line " << k << ": " << got[k] << " vs " << want[k];
  return ::testing::AssertionSuccess();
}

}  // namespace dirtest
