// Test documents for the handle and density commands: a mesh on a plain
// grid whose handles, node positions, opacities and selection a test sets
// one by one, written as .lbdoc JSON; a session that runs panel commands
// on it through the loaded module; and readers for the result.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/Document.h"
#include "host/Host.h"
#include "host/mesh/GradientMesh.h"
#include "io/Lbdoc.h"

namespace hdtest {

using nlohmann::json;
using lb::host::GradientMesh;
using lb::host::VertexId;

constexpr int kSmooth = 144;
constexpr int kHandles13 = 145;
constexpr int kHandles0 = 146;
constexpr int kHandles90 = 159;
constexpr int kDensityInc = 162;
constexpr int kDensityDec = 163;

constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;

enum Dir { IB = lb::host::kDirIBack, JB = lb::host::kDirJBack, IF = lb::host::kDirIFwd, JF = lb::host::kDirJFwd };

inline AIRealPoint Polar(AIRealPoint p, double len, double angle) {
  return {p.h + len * std::cos(angle), p.v + len * std::sin(angle)};
}
inline double Angle(AIRealPoint from, AIRealPoint to) { return std::atan2(to.v - from.v, to.h - from.h); }
inline double Dist(AIRealPoint a, AIRealPoint b) { return std::hypot(b.h - a.h, b.v - a.v); }
// a - b brought into -pi..pi.
inline double AngleDiff(double a, double b) {
  double d = std::fmod(a - b, 2 * kPi);
  if (d > kPi) d -= 2 * kPi;
  if (d < -kPi) d += 2 * kPi;
  return d;
}

// One mesh art. Nodes sit at origin + (dx i, dy j) unless moved; runs are
// straight with handles at one and two thirds unless a handle is set.
struct MeshDoc {
  int I = 2, J = 2;
  double dx = 30, dy = 30;
  AIRealPoint origin{0, 0};
  std::string id = "m";
  bool artSelected = true;
  std::map<std::pair<int, int>, AIRealPoint> moved;      // node -> point
  std::map<std::tuple<int, int, int>, AIRealPoint> handle;  // (i, j, dir) -> handle point
  std::map<std::pair<int, int>, double> opacity;
  std::map<std::pair<int, int>, json> color;
  std::set<std::pair<int, int>> selected;  // empty (and no inner selected): whole mesh
  // Runs (axis, i, j) split in two by a non-node vertex at their middle;
  // the bool says whether it is selected.
  std::map<std::tuple<int, int, int>, bool> innerVertex;
  std::vector<double> u, v;
  bool smoothAll = false;  // every node's smooth flags on

  AIRealPoint P(int i, int j) const {
    auto it = moved.find({i, j});
    if (it != moved.end()) return it->second;
    return {origin.h + dx * i, origin.v + dy * j};
  }
  // The handle of node (i, j) in direction d as written to the file.
  AIRealPoint H(int i, int j, int d) const {
    auto it = handle.find({i, j, d});
    if (it != handle.end()) return it->second;
    const AIRealPoint p = P(i, j);
    AIRealPoint q = p;
    if (d == IF) q = P(i + 1, j);
    if (d == IB) q = P(i - 1, j);
    if (d == JF) q = P(i, j + 1);
    if (d == JB) q = P(i, j - 1);
    return {p.h + (q.h - p.h) / 3.0, p.v + (q.v - p.v) / 3.0};
  }

  json toJson() const {
    auto pt = [](AIRealPoint p) { return json::array({p.h, p.v}); };
    const bool partial = !selected.empty() || std::any_of(innerVertex.begin(), innerVertex.end(),
                                                          [](const auto& e) { return e.second; });
    json art = {{"type", "mesh"}, {"id", id}, {"size", {I, J}}, {"selected", artSelected}};
    if (!u.empty()) art["u"] = u;
    if (!v.empty()) art["v"] = v;
    json nodes = json::array();
    for (int j = 0; j <= J; ++j) {
      for (int i = 0; i <= I; ++i) {
        json n = {{"p", pt(P(i, j))}};
        auto o = opacity.find({i, j});
        if (o != opacity.end()) n["opacity"] = o->second;
        auto c = color.find({i, j});
        if (c != color.end()) n["color"] = c->second;
        if (partial) n["selected"] = selected.count({i, j}) > 0;
        if (smoothAll) {
          json sm = json::object();
          if (i > 0) sm["I-"] = true;
          if (j > 0) sm["J-"] = true;
          if (i < I) sm["I+"] = true;
          if (j < J) sm["J+"] = true;
          n["smooth"] = sm;
        }
        nodes.push_back(n);
      }
    }
    art["nodes"] = nodes;
    json runs = json::array();
    for (int axis = 0; axis < 2; ++axis) {
      for (int j = 0; j <= J; ++j) {
        for (int i = 0; i <= I; ++i) {
          if (axis == 0 ? i == I : j == J) continue;
          const int bi = axis == 0 ? i + 1 : i, bj = axis == 0 ? j : j + 1;
          const AIRealPoint a = P(i, j), b = P(bi, bj);
          const AIRealPoint ha = H(i, j, axis == 0 ? IF : JF), hb = H(bi, bj, axis == 0 ? IB : JB);
          json run = {{"node", {i, j}}, {"axis", axis == 0 ? "I" : "J"}};
          auto in = innerVertex.find({axis, i, j});
          if (in == innerVertex.end()) {
            run["points"] = {pt(a), pt(ha), pt(hb), pt(b)};
            run["inner"] = json::array();
          } else {
            // Split the cubic at its middle (de Casteljau), so the line
            // keeps its shape and the vertex lies on it.
            auto mid = [](AIRealPoint p, AIRealPoint q) { return AIRealPoint{(p.h + q.h) / 2, (p.v + q.v) / 2}; };
            const AIRealPoint m01 = mid(a, ha), m12 = mid(ha, hb), m23 = mid(hb, b);
            const AIRealPoint m012 = mid(m01, m12), m123 = mid(m12, m23), c = mid(m012, m123);
            run["points"] = {pt(a), pt(m01), pt(m012), pt(c), pt(m123), pt(m23), pt(b)};
            run["inner"] = {{{"kind", "vertex"}, {"selected", in->second}, {"smooth", {false, false}}}};
          }
          runs.push_back(run);
        }
      }
    }
    art["runs"] = runs;
    return art;
  }
};

inline json MakeDoc(const std::vector<json>& arts) {
  return {{"latticebender", 1}, {"layers", {{{"name", "Layer 1"}, {"children", arts}}}}};
}

// A document in the host with the plug-in loaded.
class Session {
 public:
  explicit Session(const json& doc) : host_(lb::io::readDocument(doc.dump())) { host_.loadPlugin(); }
  explicit Session(const MeshDoc& m) : Session(MakeDoc({m.toJson()})) {}

  // Runs one panel command and checks that it left no host object alive.
  void run(int id, bool alt = false, bool ctrl = false, bool useColor = true, bool useOpacity = true) {
    const lb::host::Counters before = host_.counters();
    host_.runCommand(id, alt, ctrl, useColor, useOpacity);
    EXPECT_EQ(host_.counters(), before) << "command " << id << " left a host object alive";
  }

  const GradientMesh& mesh(const std::string& id = "m") {
    ArtObject* art = host_.document().findById(id);
    if (!art || !art->mesh) throw std::runtime_error("no mesh " + id);
    return *art->mesh;
  }
  json written() { return json::parse(lb::io::writeDocument(host_.document())); }
  lb::host::Host& host() { return host_; }

 private:
  lb::host::Host host_;
};

// Readers of a mesh in the engine.
inline AIRealPoint NodeP(const GradientMesh& m, int i, int j) { return m.point(m.node(i, j)); }
inline AIRealPoint Tan(const GradientMesh& m, int i, int j, int d) { return m.tangent(m.node(i, j), d); }
inline bool Smooth(const GradientMesh& m, int i, int j, int d) { return m.smooth(m.node(i, j), d); }
inline bool Sel(const GradientMesh& m, int i, int j) { return m.selected(m.node(i, j)); }

// Every handle of every node, for "nothing else changed" checks.
inline std::vector<AIRealPoint> AllNodeHandles(const GradientMesh& m) {
  std::vector<AIRealPoint> out;
  for (int j = 0; j <= m.sizeJ(); ++j)
    for (int i = 0; i <= m.sizeI(); ++i)
      for (int d = 0; d < 4; ++d)
        if (m.hasSegment(m.node(i, j), d)) out.push_back(m.tangent(m.node(i, j), d));
  return out;
}

// The selected nodes as (i, j) pairs.
inline std::set<std::pair<int, int>> SelectedNodes(const GradientMesh& m) {
  std::set<std::pair<int, int>> out;
  for (int j = 0; j <= m.sizeJ(); ++j)
    for (int i = 0; i <= m.sizeI(); ++i)
      if (Sel(m, i, j)) out.insert({i, j});
  return out;
}

inline std::set<std::pair<int, int>> Range(int i0, int i1, int j0, int j1) {
  std::set<std::pair<int, int>> out;
  for (int i = i0; i <= i1; ++i)
    for (int j = j0; j <= j1; ++j) out.insert({i, j});
  return out;
}

#define EXPECT_PT_NEAR(a, b, tol)          \
  do {                                     \
    const AIRealPoint pa_ = (a), pb_ = (b); \
    EXPECT_NEAR(pa_.h, pb_.h, tol);        \
    EXPECT_NEAR(pa_.v, pb_.v, tol);        \
  } while (0)

}  // namespace hdtest
