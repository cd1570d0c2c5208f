// Tests: the document builder — .lbdoc JSON of gradient meshes described by a few fields
// (usage: tests/support/README.md).
//
// Node (i, j) sits at (x0 + dx i, y0 + dy j) unless `moved` says otherwise
// (`warped` adds a small wobble so that no two nodes share a coordinate).
// Straight runs carry their handles at one and two thirds unless `handle`
// sets one; `curved` bends every run and `knots` puts knots and non-node
// vertices on two runs in three. MeshRecipe::Varied() turns on everything at
// once (warped, curved, knots, mixed paints and smooth flags).
#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "AITypes.h"

namespace lbtest {

using nlohmann::json;
using Node = std::pair<int, int>;
using NodeSet = std::set<Node>;
// A non-node vertex in the middle of the straight run from node (i, j)
// along axis 'I' or 'J'.
using Inner = std::tuple<int, int, char>;
// A handle: node (i, j) and direction (0 I-, 1 J-, 2 I+, 3 J+ as the host numbers them).
using HandleKey = std::tuple<int, int, int>;
enum Dir { IB = 0, JB = 1, IF = 2, JF = 3 };

enum class Paint {
  None,   // no colour written; opacity from `opacity` (default 1)
  Coded,  // node n = i + (I + 1) j: gray (n + 1) / (N + 1), opacity 1 - (n + 1) / (2 (N + 1))
  Mixed,  // gray, RGB and CMYK nodes by a fixed pattern, opacities from a pattern
  Rgb,    // like Mixed, every node in RGB
};
enum class Smooth { None, All, Mixed };

struct MeshRecipe {
  MeshRecipe() = default;  // not an aggregate: a brace list of JSON never makes one
  int I = 2, J = 2;
  std::string id;  // empty: none written
  bool artSelected = true;
  double x0 = 0, y0 = 0, dx = 10, dy = 10;
  bool warped = false;
  std::map<Node, AIRealPoint> moved;
  // Runs.
  bool curved = false;
  bool knots = false;
  std::map<HandleKey, AIRealPoint> handle;  // straight runs only
  std::map<Inner, bool> inner;              // straight runs only; value: selected
  std::vector<json> runs;                   // written as given in place of the run from the same node and axis
  // Paint and flags.
  Paint paint = Paint::None;
  std::map<Node, double> opacity;  // Paint::None only
  Smooth smooth = Smooth::None;
  // Per-node colour and opacity, written over what `paint` says when set.
  std::function<json(int, int)> colorAt;
  std::function<double(int, int)> opacityAt;
  // Vertex selection. Unset `whole`: flags are written when some node or
  // inner vertex is selected, else the whole mesh counts as selected.
  // false: flags always written (all false = art selected, no vertex).
  NodeSet selected;
  std::optional<bool> whole;
  // Art attributes.
  std::vector<double> u, v;  // grid line positions; empty: even
  double artOpacity = 1.0;
  std::string blend = "normal";

  // Everything switched on: warped 40 x 30 cells, curved runs with knots
  // and inner vertices, mixed paints, mixed smooth flags.
  static MeshRecipe Varied(int I = 3, int J = 2);

  AIRealPoint P(int i, int j) const;              // node position
  AIRealPoint H(int i, int j, int dir) const;     // handle of a straight run
  bool wholeSelected() const;
};

json MeshJson(const MeshRecipe& m);
// A document with one layer holding the arts, the first on top.
json DocJson(const std::vector<json>& arts);
json DocJson(std::initializer_list<MeshRecipe> meshes);
json DocJson(const MeshRecipe& m);
std::vector<json> MeshJsons(const std::vector<MeshRecipe>& meshes);
// The children of the first layer of a document.
const json& Children(const json& doc);

// An I x J mesh of Paint::Coded nodes with the given node and inner-vertex
// selection, flags always written; CodedWhole: the whole mesh selected.
MeshRecipe Coded(int I, int J, NodeSet selected = {}, std::map<Inner, bool> inner = {});
MeshRecipe CodedWhole(int I, int J);
// An I x J mesh of straight 10 x 10 cells, every node gray 0.5.
MeshRecipe Cells(int I, int J);

NodeSet Rect(int i0, int i1, int j0, int j1);
inline NodeSet Join(NodeSet a, const NodeSet& b) {
  a.insert(b.begin(), b.end());
  return a;
}
std::vector<double> Even(int n);
inline json GrayPaint(double g) { return {{"gray", g}}; }
inline json RgbPaint(double r, double g, double b) { return {{"rgb", {r, g, b}}}; }
inline json CmykPaint(double c, double m, double y, double k) { return {{"cmyk", {c, m, y, k}}}; }
// The coding of Paint::Coded.
inline int NodeCount(int I, int J) { return (I + 1) * (J + 1); }
inline double GrayOf(int n, int N) { return double(n + 1) / double(N + 1); }
inline double OpacityOf(int n, int N) { return 1.0 - double(n + 1) / double(2 * (N + 1)); }

}  // namespace lbtest
