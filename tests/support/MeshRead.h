// Tests: readers of a mesh as written back after a command (.lbdoc JSON) and comparisons.
//
// MeshState answers questions about one written mesh (selection flags,
// which node a Paint::Coded colour came from); MeshContent is the whole
// mesh in comparable form, for "every node and run moved to where the
// command says" checks with MapMesh and SameContent.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/MeshRecipe.h"

namespace lbtest {

class MeshState {
 public:
  explicit MeshState(const json& art);
  int I = 0, J = 0;

  const json& node(int i, int j) const { return m_art.at("nodes").at(size_t(i + (I + 1) * j)); }
  bool selected(int i, int j) const { return node(i, j).value("selected", false); }
  bool artSelected() const { return m_art.value("selected", false); }
  NodeSet selectedNodes() const;
  // Number of the node whose Paint::Coded colour (opacity) node (i, j)
  // now carries, or -1 when it matches none.
  int colorFrom(int i, int j) const;
  int opacityFrom(int i, int j) const;
  // Selection flag of the first non-node vertex of the run from (i, j)
  // along axis (false when there is none).
  bool innerSel(int i, int j, char axis) const;
  int nodeNo(int i, int j) const { return i + (I + 1) * j; }

 private:
  int Decode(double x, bool opacity) const;
  json m_art;
};

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
  std::map<std::tuple<int, int, int>, RunContent> runs;  // (i, j, axis 0 = I)
};

MeshContent ReadMesh(const json& art);

// Node (i, j) of a written mesh.
inline const json& NodeAt(const json& mesh, int i, int j) {
  const int I = mesh.at("size")[0];
  return mesh.at("nodes").at(static_cast<size_t>(j * (I + 1) + i));
}
// Positions of all nodes, i fastest, rounded to 1e-9 for exact comparison.
std::vector<std::pair<double, double>> Positions(const json& mesh);

// Points of a written run or path, and the run from node (i, j) along
// axis 'I' or 'J' of a written mesh (a failed test when there is none).
using Pts = std::vector<std::pair<double, double>>;
const json& RunAt(const json& mesh, int i, int j, char axis);
Pts PointsOf(const json& points);
// Point by point within tol, same count.
::testing::AssertionResult SamePoints(const Pts& got, const Pts& want, double tol);

// Where an old node lands in the new mesh.
using NodeMap = std::function<Node(int, int)>;
// Expected content of a rebuilt mesh: every node, smooth flag and run of
// `old` carried through `map` onto newI x newJ cells (runs reversed where
// the map turns them round). Grid line positions are left to the caller.
MeshContent MapMesh(const MeshContent& old, int newI, int newJ, const NodeMap& map);
// Node by node and run by run: positions within tol, colours, opacities
// and flags exactly; selections only when asked.
::testing::AssertionResult SameContent(const MeshContent& got, const MeshContent& want, double tol,
                                       bool withSelection = false);
::testing::AssertionResult SamePositions(const std::vector<double>& got, const std::vector<double>& want,
                                         double tol);

}  // namespace lbtest
