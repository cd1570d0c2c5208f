// The zero-width border row test.
#include "ZeroRow.h"

#include <vector>

#include "HostRefs.h"

namespace {

// Sum of the cubic pieces' lengths from `start` inward along (axis, sense)
// up to and including the first node reached.
double RunLengthToNextNode(AIMeshVertexIterator start, AIMeshAxis axis, AIMeshAxisSense sense) {
  const auto* vs = lb::s::sMeshVertexIterator;
  const auto* ss = lb::s::sMeshSegmentIterator;
  double total = 0.0;
  VertexRef cur;
  ThrowIfErr(vs->Copy(start, cur.put()));
  std::vector<AIRealPoint> pts;
  for (;;) {
    const int32_t idx = vs->GetSegmentIndex(cur, axis, sense);
    if (idx < 0) throw static_cast<int>(kBadParameterErr);
    SegmentRef seg;
    ThrowIfErr(vs->GetSegment(cur, idx, seg.put()));
    const int32_t n = ss->CountPoints(seg);
    if (n < 4) throw static_cast<int>(kCantHappenErr);
    pts.resize(static_cast<size_t>(n));
    ThrowIfErr(ss->GetPoints(seg, 0, n, pts.data()));
    for (int32_t k = 0; k + 3 < n; k += 3) {
      const AIRealBezier b{pts[k], pts[k + 1], pts[k + 2], pts[k + 3]};
      total += lb::s::sBezier->Length(&b, kLbZeroRowFlatness);
    }
    ThrowIfErr(ss->GetEnd(seg, cur.put()));
    if (vs->IsNode(cur)) return total;
  }
}

}  // namespace

int IsSideHas0Row(AIArtHandle mesh, int side) {
  if (side < 0 || side > 3) return 0;
  int32_t I = 0, J = 0;
  ThrowIfErr(lb::s::sMesh->GetSize(mesh, &I, &J));
  // Side line, and the direction that crosses the side's row inward.
  const bool alongI = side == 0 || side == 2;  // the side line runs along I
  const int32_t count = alongI ? I : J;
  AIMeshAxis inAxis = alongI ? kAIMeshJAxis : kAIMeshIAxis;
  AIMeshAxisSense inSense = (side == 0 || side == 3) ? kAIMeshForward : kAIMeshBackward;
  for (int32_t k = 0; k <= count; ++k) {
    int32_t i = 0, j = 0;
    switch (side) {
      case 0: i = k; j = 0; break;
      case 1: i = I; j = k; break;
      case 2: i = k; j = J; break;
      default: i = 0; j = k; break;
    }
    VertexRef node = GetNodeRef(mesh, i, j);
    if (RunLengthToNextNode(node, inAxis, inSense) >= kLbZeroRowLimit) return 0;
  }
  return 1;
}
