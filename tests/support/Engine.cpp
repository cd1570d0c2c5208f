// Tests: the engine fixture and its helpers.
#include "support/Engine.h"

#include <cmath>

#include "host/SuiteRegistry.h"

namespace lbtest {

void MeshTest::SetUp() {
  session = std::make_unique<Session>(DocJson(std::vector<json>{}), Session::Bare);
  using lb::host::findSuite;
  s = {static_cast<const AIMeshSuite*>(findSuite(kAIMeshSuite, kAIMeshSuiteVersion)),
       static_cast<const AIMeshVertexIteratorSuite*>(findSuite(kAIMeshVertexIteratorSuite, kAIMeshVertexIteratorSuiteVersion)),
       static_cast<const AIMeshSegmentIteratorSuite*>(findSuite(kAIMeshSegmentIteratorSuite, kAIMeshSegmentIteratorSuiteVersion)),
       static_cast<const AIMeshSelectionSuite*>(findSuite(kAIMeshSelectionSuite, kAIMeshSelectionSuiteVersion)),
       static_cast<const AIMeshPatchIteratorSuite*>(findSuite(kAIMeshPatchIteratorSuite, kAIMeshPatchIteratorSuiteVersion)),
       static_cast<const AIMeshHitSuite*>(findSuite(kAIMeshHitSuite, kAIMeshHitSuiteVersion))};
  ASSERT_NE(s.mesh, nullptr);
  ASSERT_EQ(session->host().document().newArt(kMeshArt, kPlaceAboveAll, nullptr, &art), kNoErr);
  ASSERT_NE(art->mesh, nullptr);
}

AIMeshVertexIterator MeshTest::nodeIt(int i, int j) {
  AIMeshVertexIterator v = nullptr;
  EXPECT_EQ(s.mesh->GetNode(art, i, j, &v), kNoErr);
  return v;
}

std::vector<AIRealPoint> MeshTest::points(AIMeshSegmentIterator g) {
  std::vector<AIRealPoint> p(size_t(s.seg->CountPoints(g)));
  EXPECT_EQ(s.seg->GetPoints(g, 0, int32_t(p.size()), p.data()), kNoErr);
  return p;
}

std::vector<AIRealPoint> AllNodeHandles(const lb::host::GradientMesh& m) {
  std::vector<AIRealPoint> out;
  for (int j = 0; j <= m.sizeJ(); ++j)
    for (int i = 0; i <= m.sizeI(); ++i)
      for (int d = 0; d < 4; ++d)
        if (m.hasSegment(m.node(i, j), d)) out.push_back(m.tangent(m.node(i, j), d));
  return out;
}

NodeSet SelectedNodes(const lb::host::GradientMesh& m) {
  NodeSet out;
  for (int j = 0; j <= m.sizeJ(); ++j)
    for (int i = 0; i <= m.sizeI(); ++i)
      if (m.selected(m.node(i, j))) out.insert({i, j});
  return out;
}

void Bend(lb::host::GradientMesh& m, double amount) {
  for (int axis = 0; axis < 2; ++axis)
    for (int j = 0; j <= m.sizeJ() - (axis == 1); ++j)
      for (int i = 0; i <= m.sizeI() - (axis == 0); ++i) {
        auto d = m.runData(axis, i, j);
        for (size_t k = 1; k + 1 < d.points.size(); ++k) {
          const double ph = std::sin(1.3 * i + 0.7 * j + 2.1 * double(k) + axis);
          d.points[k].h += amount * ph;
          d.points[k].v += amount * std::cos(3.1 * ph);
        }
        m.setRunData(axis, i, j, d);
      }
}

AIColor Rgb(double r, double g, double b) {
  AIColor c{};
  c.kind = kThreeColor;
  c.c.rgb = {r, g, b};
  return c;
}

}  // namespace lbtest
