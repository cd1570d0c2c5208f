// Tests: readers of written meshes and their comparison.
#include "support/MeshRead.h"

#include <algorithm>
#include <cmath>

#include "support/Geometry.h"

namespace lbtest {

MeshState::MeshState(const json& art) : m_art(art) {
  I = art.at("size").at(0).get<int>();
  J = art.at("size").at(1).get<int>();
}

NodeSet MeshState::selectedNodes() const {
  NodeSet out;
  for (int j = 0; j <= J; ++j)
    for (int i = 0; i <= I; ++i)
      if (selected(i, j)) out.insert({i, j});
  return out;
}

int MeshState::colorFrom(int i, int j) const { return Decode(node(i, j).at("color").at("gray").get<double>(), false); }
int MeshState::opacityFrom(int i, int j) const { return Decode(node(i, j).at("opacity").get<double>(), true); }

bool MeshState::innerSel(int i, int j, char axis) const {
  for (const auto& run : m_art.value("runs", json::array())) {
    if (run.at("node").at(0) != i || run.at("node").at(1) != j || run.at("axis") != std::string(1, axis)) continue;
    for (const auto& in : run.value("inner", json::array()))
      if (in.at("kind") == "vertex") return in.value("selected", false);
  }
  return false;
}

int MeshState::Decode(double x, bool opacity) const {
  const int N = NodeCount(I, J);
  const double t = opacity ? (1.0 - x) * 2.0 * (N + 1) : x * (N + 1);
  const double r = std::round(t);
  if (std::fabs(t - r) > 1e-9) return -1;
  return int(r) - 1;
}

MeshContent ReadMesh(const json& art) {
  MeshContent m;
  m.I = art.at("size")[0];
  m.J = art.at("size")[1];
  m.u = art.contains("u") ? art["u"].get<std::vector<double>>() : Even(m.I);
  m.v = art.contains("v") ? art["v"].get<std::vector<double>>() : Even(m.J);
  const json& nodes = art.at("nodes");
  for (int j = 0; j <= m.J; ++j) {
    for (int i = 0; i <= m.I; ++i) {
      const json& n = nodes.at(size_t(j * (m.I + 1) + i));
      NodeContent c;
      c.p = n.at("p");
      c.color = n.at("color");
      c.opacity = n.value("opacity", 1.0);
      c.selected = n.value("selected", false);
      const json smooth = n.value("smooth", json::object());
      for (auto [key, has] : {std::pair{"I-", i > 0}, {"J-", j > 0}, {"I+", i < m.I}, {"J+", j < m.J}})
        if (has) c.smooth[key] = smooth.value(key, false);
      m.nodes[{i, j}] = c;
    }
  }
  for (const json& r : art.value("runs", json::array())) {
    RunContent rc;
    rc.points = PointsOf(r.at("points"));
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

namespace {
std::string DirName(int axis, int sense) { return std::string(axis == 0 ? "I" : "J") + (sense == 0 ? "+" : "-"); }
}  // namespace

MeshContent MapMesh(const MeshContent& old, int newI, int newJ, const NodeMap& map) {
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

::testing::AssertionResult SameContent(const MeshContent& got, const MeshContent& want, double tol,
                                       bool withSelection) {
  using ::testing::AssertionFailure;
  if (got.I != want.I || got.J != want.J)
    return AssertionFailure() << "size " << got.I << "x" << got.J << " vs " << want.I << "x" << want.J;
  for (const auto& [key, w] : want.nodes) {
    auto it = got.nodes.find(key);
    const std::string at = "node (" + std::to_string(key.first) + ", " + std::to_string(key.second) + ")";
    if (it == got.nodes.end()) return AssertionFailure() << at << " missing";
    const NodeContent& g = it->second;
    for (int c = 0; c < 2; ++c)
      if (!Near(g.p[c].get<double>(), w.p[c].get<double>(), tol))
        return AssertionFailure() << at << " p " << g.p.dump() << " vs " << w.p.dump();
    if (g.color != w.color) return AssertionFailure() << at << " color " << g.color.dump() << " vs " << w.color.dump();
    if (g.opacity != w.opacity) return AssertionFailure() << at << " opacity " << g.opacity << " vs " << w.opacity;
    for (const auto& [dir, flag] : w.smooth) {
      auto f = g.smooth.find(dir);
      if (f == g.smooth.end() || f->second != flag) return AssertionFailure() << at << " smooth " << dir << " should be " << flag;
    }
    if (withSelection && g.selected != w.selected)
      return AssertionFailure() << at << " selected " << g.selected << " vs " << w.selected;
  }
  for (const auto& [key, w] : want.runs) {
    const auto [i, j, axis] = key;
    const std::string at =
        std::string("run ") + (axis == 0 ? "I" : "J") + " from (" + std::to_string(i) + ", " + std::to_string(j) + ")";
    auto it = got.runs.find(key);
    if (it == got.runs.end()) return AssertionFailure() << at << " missing";
    const RunContent& g = it->second;
    if (auto same = SamePoints(g.points, w.points, tol); !same) return AssertionFailure() << at << ": " << same.message();
    if (g.inner.size() < w.inner.size()) return AssertionFailure() << at << " lost inner vertices";
    for (size_t k = 0; k < w.inner.size(); ++k) {
      const InnerContent &gi = g.inner[k], &wi = w.inner[k];
      if (gi.kind != wi.kind) return AssertionFailure() << at << " inner " << k << " is a " << gi.kind;
      if (wi.kind == "vertex" && (gi.smoothBack != wi.smoothBack || gi.smoothFwd != wi.smoothFwd))
        return AssertionFailure() << at << " inner vertex " << k << " smooth flags differ";
      if (withSelection && wi.kind == "vertex" && gi.selected != wi.selected)
        return AssertionFailure() << at << " inner vertex " << k << " selection differs";
    }
  }
  return ::testing::AssertionSuccess();
}

::testing::AssertionResult SamePositions(const std::vector<double>& got, const std::vector<double>& want, double tol) {
  if (got.size() != want.size()) return ::testing::AssertionFailure() << got.size() << " lines, want " << want.size();
  for (size_t k = 0; k < want.size(); ++k)
    if (!Near(got[k], want[k], tol))
      return ::testing::AssertionFailure() << "line " << k << ": " << got[k] << " vs " << want[k];
  return ::testing::AssertionSuccess();
}

const json& RunAt(const json& mesh, int i, int j, char axis) {
  static const json none = {{"points", json::array()}, {"inner", json::array()}};
  for (const json& r : mesh.at("runs"))
    if (r.at("node")[0] == i && r.at("node")[1] == j && r.at("axis") == std::string(1, axis)) return r;
  ADD_FAILURE() << "no run from (" << i << ", " << j << ") along " << axis;
  return none;
}

Pts PointsOf(const json& points) {
  Pts out;
  for (const json& p : points) out.emplace_back(p[0].get<double>(), p[1].get<double>());
  return out;
}

::testing::AssertionResult SamePoints(const Pts& got, const Pts& want, double tol) {
  if (got.size() != want.size()) return ::testing::AssertionFailure() << got.size() << " points, want " << want.size();
  for (size_t k = 0; k < want.size(); ++k)
    if (!Near(got[k].first, want[k].first, tol) || !Near(got[k].second, want[k].second, tol))
      return ::testing::AssertionFailure() << "point " << k << ": (" << got[k].first << ", " << got[k].second
                                           << ") vs (" << want[k].first << ", " << want[k].second << ")";
  return ::testing::AssertionSuccess();
}

std::vector<std::pair<double, double>> Positions(const json& mesh) {
  std::vector<std::pair<double, double>> out;
  auto r = [](double x) { return std::round(x * 1e9) / 1e9 + 0.0; };
  for (const json& n : mesh.at("nodes")) out.emplace_back(r(n.at("p")[0]), r(n.at("p")[1]));
  return out;
}

}  // namespace lbtest
