// Tests: the engine fixture that releases the iterators it hands out, and a vertex cut into a run.
#pragma once

#include <vector>

#include "support/Engine.h"

namespace lbtest {

// Iterators taken through node(), segment(), along(), endOf() and cut() are
// released after the test body; the session then still checks that every
// iterator handed out was released.
class EngineTest : public MeshTest {
 protected:
  void TearDown() override {
    for (AIMeshVertexIterator v : vertices_) s.vtx->Release(v);
    for (AIMeshSegmentIterator g : segments_) s.seg->Release(g);
  }
  AIMeshVertexIterator node(int i, int j) { return vertices_.emplace_back(nodeIt(i, j)); }
  AIMeshSegmentIterator segment(AIMeshVertexIterator v, int k) {
    AIMeshSegmentIterator g = nullptr;
    EXPECT_EQ(s.vtx->GetSegment(v, k, &g), kNoErr);
    return segments_.emplace_back(g);
  }
  // The forward segment along `axis` at v.
  AIMeshSegmentIterator along(AIMeshVertexIterator v, int axis) {
    return segment(v, s.vtx->GetSegmentIndex(v, axis, kAIMeshForward));
  }
  AIMeshVertexIterator endOf(AIMeshSegmentIterator g) {
    AIMeshVertexIterator v = nullptr;
    EXPECT_EQ(s.seg->GetEnd(g, &v), kNoErr);
    return vertices_.emplace_back(v);
  }
  // Inserts `knots` knots into the run along `axis` from node (i, j) and
  // splits at the first: the segment from the node, now ending at the new vertex.
  AIMeshSegmentIterator cut(int i, int j, int axis, int knots = 1) {
    AIMeshSegmentIterator g = along(node(i, j), axis);
    EXPECT_EQ(s.seg->InsertKnots(g, 0, knots), kNoErr);
    EXPECT_EQ(s.seg->Split(g, 0), kNoErr);
    return g;
  }

 private:
  std::vector<AIMeshVertexIterator> vertices_;
  std::vector<AIMeshSegmentIterator> segments_;
};

}  // namespace lbtest
