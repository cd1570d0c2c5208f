// Tests: the document builder's JSON writer.
#include "support/MeshRecipe.h"

#include <algorithm>
#include <cmath>

namespace lbtest {
namespace {

json Pt(AIRealPoint p) { return json::array({p.h, p.v}); }
AIRealPoint Mid(AIRealPoint p, AIRealPoint q) { return {(p.h + q.h) / 2, (p.v + q.v) / 2}; }

json NodeColor(int i, int j, bool rgbOnly) {
  if (rgbOnly) return {{"rgb", {0.25 * (i % 5), 0.3 * (j % 4), 0.3 + 0.15 * ((i + j) % 3)}}};
  switch ((i + 2 * j) % 3) {
    case 0: return {{"rgb", {0.1 * (i % 10), 0.125 * (j % 8), 0.5}}};
    case 1: return {{"gray", 0.0625 * ((i * 5 + j) % 16)}};
    default: return {{"cmyk", {0.25, 0.05 * (i % 20), 0.05 * (j % 20), 0.125}}};
  }
}

// A run from a to b as `pieces` cubic pieces whose inner anchors stand off
// the straight line by `bend` to alternating sides.
json BentPoints(AIRealPoint a, AIRealPoint b, int pieces, double bend) {
  const double dh = b.h - a.h, dv = b.v - a.v, len = std::hypot(dh, dv);
  auto at = [&](double t, double off) {
    return json::array({a.h + dh * t - dv / len * off, a.v + dv * t + dh / len * off});
  };
  json pts = json::array();
  for (int q = 0; q < pieces; ++q) {
    const double t0 = double(q) / pieces, t1 = double(q + 1) / pieces;
    const double o0 = q == 0 ? 0.0 : bend * (q % 2 ? 1 : -1);
    const double o1 = q + 1 == pieces ? 0.0 : bend * ((q + 1) % 2 ? 1 : -1);
    if (q == 0) pts.push_back(Pt(a));
    pts.push_back(at(t0 + (t1 - t0) / 3, o0 + bend * 0.5));
    pts.push_back(at(t1 - (t1 - t0) / 3, o1 - bend * 0.25));
    pts.push_back(q + 1 == pieces ? Pt(b) : at(t1, o1));
  }
  return pts;
}

}  // namespace

MeshRecipe MeshRecipe::Varied(int I, int J) {
  MeshRecipe m;
  m.I = I, m.J = J, m.dx = 40, m.dy = 30;
  m.warped = m.curved = m.knots = true;
  m.paint = Paint::Mixed;
  m.smooth = Smooth::Mixed;
  return m;
}

AIRealPoint MeshRecipe::P(int i, int j) const {
  if (auto it = moved.find({i, j}); it != moved.end()) return it->second;
  AIRealPoint p{x0 + dx * i, y0 + dy * j};
  if (warped) p.h += 3.0 * std::sin(1.3 * j + 0.2 * i), p.v += 2.5 * std::cos(0.7 * i + 0.5 * j);
  return p;
}

AIRealPoint MeshRecipe::H(int i, int j, int d) const {
  if (auto it = handle.find({i, j, d}); it != handle.end()) return it->second;
  const AIRealPoint p = P(i, j), q = P(i + (d == IF) - (d == IB), j + (d == JF) - (d == JB));
  return {p.h + (q.h - p.h) / 3.0, p.v + (q.v - p.v) / 3.0};
}

bool MeshRecipe::wholeSelected() const {
  if (whole) return *whole;
  return selected.empty() && std::none_of(inner.begin(), inner.end(), [](const auto& e) { return e.second; });
}

json MeshJson(const MeshRecipe& m) {
  const bool flags = !m.wholeSelected();
  const int N = NodeCount(m.I, m.J);
  json art = {{"type", "mesh"}, {"size", {m.I, m.J}}, {"selected", m.artSelected}};
  if (!m.id.empty()) art["id"] = m.id;
  if (m.artOpacity != 1.0) art["opacity"] = m.artOpacity;
  if (m.blend != "normal") art["blend"] = m.blend;
  if (!m.u.empty()) art["u"] = m.u;
  if (!m.v.empty()) art["v"] = m.v;
  json nodes = json::array();
  for (int j = 0; j <= m.J; ++j) {
    for (int i = 0; i <= m.I; ++i) {
      const int n = i + (m.I + 1) * j;
      json node = {{"p", Pt(m.P(i, j))}};
      switch (m.paint) {
        case Paint::None:
          node["opacity"] = m.opacity.count({i, j}) ? m.opacity.at({i, j}) : 1.0;
          break;
        case Paint::Coded:
          node["color"] = {{"gray", GrayOf(n, N)}};
          node["opacity"] = OpacityOf(n, N);
          break;
        case Paint::Mixed:
        case Paint::Rgb:
          node["color"] = NodeColor(i, j, m.paint == Paint::Rgb);
          node["opacity"] = 0.25 + 0.25 * ((i * 3 + j) % 4);
          break;
      }
      if (m.colorAt) node["color"] = m.colorAt(i, j);
      if (m.opacityAt) node["opacity"] = m.opacityAt(i, j);
      if (flags) node["selected"] = m.selected.count({i, j}) > 0;
      if (m.smooth != Smooth::None) {  // only the directions the node has
        const bool all = m.smooth == Smooth::All;
        json& sm = node["smooth"] = json::object();
        if (i > 0) sm["I-"] = all || (i + j) % 2 == 0;
        if (j > 0) sm["J-"] = all || (i * j) % 3 == 1;
        if (i < m.I) sm["I+"] = all || (i + 2 * j) % 3 == 0;
        if (j < m.J) sm["J+"] = all || (2 * i + j) % 2 == 1;
      }
      nodes.push_back(node);
    }
  }
  art["nodes"] = nodes;
  json runs = json::array();
  for (int axis = 0; axis < 2; ++axis) {
    for (int j = 0; j + axis <= m.J; ++j) {
      for (int i = 0; i + 1 - axis <= m.I; ++i) {
        const int bi = i + 1 - axis, bj = j + axis;
        const AIRealPoint a = m.P(i, j), b = m.P(bi, bj);
        json run = {{"node", {i, j}}, {"axis", axis ? "J" : "I"}, {"inner", json::array()}};
        if (m.curved || m.knots) {
          const int kind = m.knots ? (i + 2 * j + axis) % 3 : 2;
          int pieces = 1;
          if (kind == 0) {  // a knot, then a vertex
            pieces = 3;
            run["inner"] = {{{"kind", "knot"}},
                            {{"kind", "vertex"}, {"smooth", {true, (i + j) % 2 == 0}}}};
          } else if (kind == 1) {  // a vertex, then two knots
            pieces = 4;
            run["inner"] = {{{"kind", "vertex"}, {"smooth", {false, true}}}, {{"kind", "knot"}}, {{"kind", "knot"}}};
          }
          for (auto& e : run["inner"])
            if (e["kind"] == "vertex" && flags) e["selected"] = false;
          run["points"] = BentPoints(a, b, pieces, m.curved ? 2.0 + 0.5 * i + 0.25 * j : 0.0);
        } else {
          const AIRealPoint ha = m.H(i, j, axis ? JF : IF), hb = m.H(bi, bj, axis ? JB : IB);
          auto in = m.inner.find({i, j, axis ? 'J' : 'I'});
          if (in == m.inner.end()) {
            run["points"] = {Pt(a), Pt(ha), Pt(hb), Pt(b)};
          } else {  // split at t = 1/2: the same curve with a vertex on it
            const AIRealPoint m01 = Mid(a, ha), m12 = Mid(ha, hb), m23 = Mid(hb, b);
            const AIRealPoint m012 = Mid(m01, m12), m123 = Mid(m12, m23);
            run["points"] = {Pt(a), Pt(m01), Pt(m012), Pt(Mid(m012, m123)), Pt(m123), Pt(m23), Pt(b)};
            json v = {{"kind", "vertex"}, {"smooth", {false, false}}};
            if (flags) v["selected"] = in->second;
            run["inner"] = json::array({v});
          }
        }
        for (const json& given : m.runs)
          if (given.at("node") == run.at("node") && given.at("axis") == run.at("axis")) run = given;
        runs.push_back(run);
      }
    }
  }
  art["runs"] = runs;
  return art;
}

json DocJson(const std::vector<json>& arts) {
  return {{"latticebender", 1}, {"layers", {{{"name", "Layer 1"}, {"children", arts}}}}};
}

std::vector<json> MeshJsons(const std::vector<MeshRecipe>& meshes) {
  std::vector<json> arts;
  for (const MeshRecipe& m : meshes) arts.push_back(MeshJson(m));
  return arts;
}

json DocJson(std::initializer_list<MeshRecipe> meshes) { return DocJson(MeshJsons(meshes)); }
json DocJson(const MeshRecipe& m) { return DocJson(std::vector<json>{MeshJson(m)}); }

const json& Children(const json& doc) { return doc.at("layers").at(0).at("children"); }

MeshRecipe Coded(int I, int J, NodeSet selected, std::map<Inner, bool> inner) {
  MeshRecipe m;
  m.I = I, m.J = J;
  m.paint = Paint::Coded;
  m.selected = std::move(selected);
  m.inner = std::move(inner);
  m.whole = false;
  return m;
}

MeshRecipe CodedWhole(int I, int J) {
  MeshRecipe m = Coded(I, J);
  m.whole = true;
  return m;
}

MeshRecipe Cells(int I, int J) {
  MeshRecipe m;
  m.I = I, m.J = J;
  m.colorAt = [](int, int) { return GrayPaint(0.5); };
  return m;
}

NodeSet Rect(int i0, int i1, int j0, int j1) {
  NodeSet s;
  for (int i = i0; i <= i1; ++i)
    for (int j = j0; j <= j1; ++j) s.insert({i, j});
  return s;
}

std::vector<double> Even(int n) {
  std::vector<double> t(size_t(n) + 1);
  for (int k = 0; k <= n; ++k) t[size_t(k)] = double(k) / n;
  return t;
}

}  // namespace lbtest
