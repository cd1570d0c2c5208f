// Tests: the host's mesh suites and a fixture holding one fresh mesh art, for tests of the engine.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "AIMeshSuites.h"
#include "host/Document.h"
#include "host/SuiteRegistry.h"
#include "host/mesh/GradientMesh.h"
#include "support/Geometry.h"
#include "support/Session.h"

namespace lbtest {

struct MeshSuites {
  const AIMeshSuite* mesh;
  const AIMeshVertexIteratorSuite* vtx;
  const AIMeshSegmentIteratorSuite* seg;
  const AIMeshSelectionSuite* sel;
  const AIMeshPatchIteratorSuite* patch;
  const AIMeshHitSuite* hit;
};

// A bare host (no plug-in) holding one new mesh art; the session checks at
// the end that every iterator and selection handed out was released.
class MeshTest : public ::testing::Test {
 protected:
  void SetUp() override;
  lb::host::GradientMesh& m() { return *art->mesh; }
  // Node iterator; the caller releases it.
  AIMeshVertexIterator nodeIt(int i, int j);
  // The points of a segment.
  std::vector<AIRealPoint> points(AIMeshSegmentIterator g);

  std::unique_ptr<Session> session;
  MeshSuites s{};
  ArtObject* art = nullptr;
};

// Readers of a mesh in the host, by node (i, j) and direction (Dir).
inline AIRealPoint NodeP(const lb::host::GradientMesh& m, int i, int j) { return m.point(m.node(i, j)); }
inline AIRealPoint Tan(const lb::host::GradientMesh& m, int i, int j, int d) { return m.tangent(m.node(i, j), d); }
inline bool SmoothAt(const lb::host::GradientMesh& m, int i, int j, int d) { return m.smooth(m.node(i, j), d); }
// Every handle of every node, node by node.
std::vector<AIRealPoint> AllNodeHandles(const lb::host::GradientMesh& m);
NodeSet SelectedNodes(const lb::host::GradientMesh& m);

// Bends every run of the mesh a little, deterministically, so that curves
// are not straight lines.
void Bend(lb::host::GradientMesh& m, double amount = 0.07);
AIColor Rgb(double r, double g, double b);

}  // namespace lbtest
