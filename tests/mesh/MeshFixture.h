// Shared set-up for the mesh tests: a host with one mesh art and the mesh
// suites, plus geometry helpers for exactness checks.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "AIMeshSuites.h"
#include "host/Document.h"
#include "host/Host.h"
#include "host/SuiteRegistry.h"
#include "host/mesh/Bezier.h"
#include "host/mesh/GradientMesh.h"

namespace meshtest {

struct Suites {
  const AIMeshSuite* mesh;
  const AIMeshVertexIteratorSuite* vtx;
  const AIMeshSegmentIteratorSuite* seg;
  const AIMeshSelectionSuite* sel;
  const AIMeshPatchIteratorSuite* patch;
  const AIMeshHitSuite* hit;
};

inline Suites suites() {
  using lb::host::findSuite;
  return Suites{
      static_cast<const AIMeshSuite*>(findSuite(kAIMeshSuite, kAIMeshSuiteVersion)),
      static_cast<const AIMeshVertexIteratorSuite*>(
          findSuite(kAIMeshVertexIteratorSuite, kAIMeshVertexIteratorSuiteVersion)),
      static_cast<const AIMeshSegmentIteratorSuite*>(
          findSuite(kAIMeshSegmentIteratorSuite, kAIMeshSegmentIteratorSuiteVersion)),
      static_cast<const AIMeshSelectionSuite*>(findSuite(kAIMeshSelectionSuite, kAIMeshSelectionSuiteVersion)),
      static_cast<const AIMeshPatchIteratorSuite*>(
          findSuite(kAIMeshPatchIteratorSuite, kAIMeshPatchIteratorSuiteVersion)),
      static_cast<const AIMeshHitSuite*>(findSuite(kAIMeshHitSuite, kAIMeshHitSuiteVersion)),
  };
}

// A host holding one I x J mesh art; checks at the end that every iterator
// and selection handed out was released.
class MeshTest : public ::testing::Test {
 protected:
  void SetUp() override {
    host_ = std::make_unique<lb::host::Host>();
    s = suites();
    ASSERT_NE(s.mesh, nullptr);
    ASSERT_EQ(host_->document().newArt(kMeshArt, kPlaceAboveAll, nullptr, &art), kNoErr);
    ASSERT_NE(art->mesh, nullptr);
    before_ = lb::host::liveCounters();
  }
  void TearDown() override {
    const auto after = lb::host::liveCounters();
    EXPECT_EQ(after.vertexIterators, before_.vertexIterators) << "leaked vertex iterator";
    EXPECT_EQ(after.segmentIterators, before_.segmentIterators) << "leaked segment iterator";
    EXPECT_EQ(after.patchIterators, before_.patchIterators) << "leaked patch iterator";
    EXPECT_EQ(after.selections, before_.selections) << "leaked selection";
    host_.reset();
  }
  lb::host::GradientMesh& m() { return *art->mesh; }

  // Node iterator; the caller releases it.
  AIMeshVertexIterator nodeIt(int i, int j) {
    AIMeshVertexIterator v = nullptr;
    EXPECT_EQ(s.mesh->GetNode(art, i, j, &v), kNoErr);
    return v;
  }
  std::vector<AIRealPoint> points(AIMeshSegmentIterator g) {
    std::vector<AIRealPoint> p(static_cast<size_t>(s.seg->CountPoints(g)));
    EXPECT_EQ(s.seg->GetPoints(g, 0, static_cast<int32_t>(p.size()), p.data()), kNoErr);
    return p;
  }

  std::unique_ptr<lb::host::Host> host_;
  Suites s{};
  ArtObject* art = nullptr;
  lb::host::Counters before_{};
};

// Bends every run of the mesh a little so that curves are not straight
// lines, deterministically.
inline void bend(lb::host::GradientMesh& m, double amount = 0.07) {
  for (int axis = 0; axis < 2; ++axis)
    for (int j = 0; j <= m.sizeJ() - (axis == 1); ++j)
      for (int i = 0; i <= m.sizeI() - (axis == 0); ++i) {
        auto d = m.runData(axis, i, j);
        for (size_t k = 1; k + 1 < d.points.size(); ++k) {
          const double ph = std::sin(1.3 * i + 0.7 * j + 2.1 * static_cast<double>(k) + axis);
          d.points[k].h += amount * ph;
          d.points[k].v += amount * std::cos(3.1 * ph);
        }
        m.setRunData(axis, i, j, d);
      }
}

// Distance from p to a chain of cubics (3m + 1 points).
inline double distToChain(const std::vector<AIRealPoint>& c, AIRealPoint p) {
  using namespace lb::host::bez;
  double best = 1e300;
  for (size_t q = 0; q + 3 < c.size(); q += 3) {
    const AIRealPoint* b = &c[q];
    double bt = 0, bd = 1e300;
    for (int k = 0; k <= 64; ++k) {
      const double t = k / 64.0;
      const double d = dist(cubicAt(b, t), p);
      if (d < bd) bd = d, bt = t;
    }
    for (int it = 0; it < 30; ++it) {
      const AIRealPoint e = cubicAt(b, bt) - p, d1 = cubicDeriv(b, bt);
      const double h = 1e-6;
      const AIRealPoint d2 = (1 / (2 * h)) * (cubicDeriv(b, std::min(1.0, bt + h)) - cubicDeriv(b, std::max(0.0, bt - h)));
      const double f = e.h * d1.h + e.v * d1.v;
      const double fp = d1.h * d1.h + d1.v * d1.v + e.h * d2.h + e.v * d2.v;
      if (std::abs(fp) < 1e-300) break;
      bt = std::clamp(bt - f / fp, 0.0, 1.0);
    }
    best = std::min(best, dist(cubicAt(b, bt), p));
  }
  return best;
}

// Every point of chain b (sampled densely) lies on chain a, and their end
// points agree.
inline double chainDeviation(const std::vector<AIRealPoint>& a, const std::vector<AIRealPoint>& b) {
  using namespace lb::host::bez;
  double worst = std::max(dist(a.front(), b.front()), dist(a.back(), b.back()));
  for (size_t q = 0; q + 3 < b.size(); q += 3)
    for (int k = 0; k <= 16; ++k) worst = std::max(worst, distToChain(a, cubicAt(&b[q], k / 16.0)));
  return worst;
}

inline AIColor rgb(double r, double g, double b) {
  AIColor c{};
  c.kind = kThreeColor;
  c.c.rgb = {r, g, b};
  return c;
}

}  // namespace meshtest
