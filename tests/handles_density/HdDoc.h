// Test documents for the handle and density commands: a mesh on a plain
// grid whose handles, node positions, opacities and selection a test sets
// one by one, a session that runs panel commands on it through the loaded
// module, and readers for the result.
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
using NodeSet = std::set<std::pair<int, int>>;

constexpr int kSmooth = 144, kHandles13 = 145, kHandles0 = 146, kHandles90 = 159;
constexpr int kDensityInc = 162, kDensityDec = 163;
constexpr double kPi = 3.141592653589793, kDeg = kPi / 180.0, kTol = 1e-9;
enum Dir { IB = lb::host::kDirIBack, JB = lb::host::kDirJBack, IF = lb::host::kDirIFwd, JF = lb::host::kDirJFwd };

inline AIRealPoint Polar(AIRealPoint p, double len, double a) { return {p.h + len * std::cos(a), p.v + len * std::sin(a)}; }
inline double Angle(AIRealPoint a, AIRealPoint b) { return std::atan2(b.v - a.v, b.h - a.h); }
inline double Dist(AIRealPoint a, AIRealPoint b) { return std::hypot(b.h - a.h, b.v - a.v); }
inline double AngleDiff(double a, double b) { return std::remainder(a - b, 2 * kPi); }

// One mesh art. Nodes sit at origin + (dx i, dy j) unless moved; runs are
// straight with handles at one and two thirds unless a handle is set.
struct MeshDoc {
  int I = 2, J = 2;
  double dx = 30, dy = 24;
  AIRealPoint origin{0, 0};
  std::string id = "m";
  bool artSelected = true, smoothAll = false;
  std::map<std::pair<int, int>, AIRealPoint> moved;
  std::map<std::tuple<int, int, int>, AIRealPoint> handle;  // (i, j, dir)
  std::map<std::pair<int, int>, double> opacity;
  NodeSet selected;  // empty (and no inner vertex selected): whole mesh
  // Runs (axis, i, j) split at their middle by a non-node vertex; the bool
  // says whether it is selected.
  std::map<std::tuple<int, int, int>, bool> innerVertex;

  AIRealPoint P(int i, int j) const {
    auto it = moved.find({i, j});
    return it != moved.end() ? it->second : AIRealPoint{origin.h + dx * i, origin.v + dy * j};
  }
  AIRealPoint H(int i, int j, int d) const {
    auto it = handle.find({i, j, d});
    if (it != handle.end()) return it->second;
    const AIRealPoint p = P(i, j);
    const AIRealPoint q = P(i + (d == IF) - (d == IB), j + (d == JF) - (d == JB));
    return {p.h + (q.h - p.h) / 3.0, p.v + (q.v - p.v) / 3.0};
  }

  json toJson() const {
    auto pt = [](AIRealPoint p) { return json::array({p.h, p.v}); };
    auto mid = [](AIRealPoint p, AIRealPoint q) { return AIRealPoint{(p.h + q.h) / 2, (p.v + q.v) / 2}; };
    const bool partial = !selected.empty() ||
                         std::any_of(innerVertex.begin(), innerVertex.end(), [](const auto& e) { return e.second; });
    json nodes = json::array(), runs = json::array();
    for (int j = 0; j <= J; ++j) {
      for (int i = 0; i <= I; ++i) {
        json n = {{"p", pt(P(i, j))}, {"opacity", opacity.count({i, j}) ? opacity.at({i, j}) : 1.0}};
        if (partial) n["selected"] = selected.count({i, j}) > 0;
        if (smoothAll) {  // only the directions the node has
          json& sm = n["smooth"] = json::object();
          for (auto [key, has] : {std::pair{"I-", i > 0}, {"J-", j > 0}, {"I+", i < I}, {"J+", j < J}})
            if (has) sm[key] = true;
        }
        nodes.push_back(n);
      }
    }
    for (int axis = 0; axis < 2; ++axis) {
      for (int j = 0; j + axis <= J; ++j) {
        for (int i = 0; i + 1 - axis <= I; ++i) {
          const int bi = i + 1 - axis, bj = j + axis;
          const AIRealPoint a = P(i, j), b = P(bi, bj);
          const AIRealPoint ha = H(i, j, axis ? JF : IF), hb = H(bi, bj, axis ? JB : IB);
          json run = {{"node", {i, j}}, {"axis", axis ? "J" : "I"}, {"inner", json::array()}};
          auto in = innerVertex.find({axis, i, j});
          if (in == innerVertex.end()) {
            run["points"] = {pt(a), pt(ha), pt(hb), pt(b)};
          } else {  // split at t = 1/2: same curve, vertex on it
            const AIRealPoint m01 = mid(a, ha), m12 = mid(ha, hb), m23 = mid(hb, b);
            const AIRealPoint m012 = mid(m01, m12), m123 = mid(m12, m23);
            run["points"] = {pt(a), pt(m01), pt(m012), pt(mid(m012, m123)), pt(m123), pt(m23), pt(b)};
            run["inner"] = {{{"kind", "vertex"}, {"selected", in->second}, {"smooth", {false, false}}}};
          }
          runs.push_back(run);
        }
      }
    }
    return {{"type", "mesh"}, {"id", id},       {"size", {I, J}},
            {"selected", artSelected}, {"nodes", nodes}, {"runs", runs}};
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

 private:
  lb::host::Host host_;
};

inline AIRealPoint NodeP(const GradientMesh& m, int i, int j) { return m.point(m.node(i, j)); }
inline AIRealPoint Tan(const GradientMesh& m, int i, int j, int d) { return m.tangent(m.node(i, j), d); }
inline bool Smooth(const GradientMesh& m, int i, int j, int d) { return m.smooth(m.node(i, j), d); }

inline std::vector<AIRealPoint> AllNodeHandles(const GradientMesh& m) {
  std::vector<AIRealPoint> out;
  for (int j = 0; j <= m.sizeJ(); ++j)
    for (int i = 0; i <= m.sizeI(); ++i)
      for (int d = 0; d < 4; ++d)
        if (m.hasSegment(m.node(i, j), d)) out.push_back(m.tangent(m.node(i, j), d));
  return out;
}
inline NodeSet SelectedNodes(const GradientMesh& m) {
  NodeSet out;
  for (int j = 0; j <= m.sizeJ(); ++j)
    for (int i = 0; i <= m.sizeI(); ++i)
      if (m.selected(m.node(i, j))) out.insert({i, j});
  return out;
}
inline NodeSet Range(int i0, int i1, int j0, int j1) {
  NodeSet out;
  for (int i = i0; i <= i1; ++i)
    for (int j = j0; j <= j1; ++j) out.insert({i, j});
  return out;
}

#define EXPECT_PT_NEAR(a, b, tol)           \
  do {                                      \
    const AIRealPoint pa_ = (a), pb_ = (b); \
    EXPECT_NEAR(pa_.h, pb_.h, tol);         \
    EXPECT_NEAR(pa_.v, pb_.v, tol);         \
  } while (0)

}  // namespace hdtest
