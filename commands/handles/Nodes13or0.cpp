// "Handles 1/3" and "Handles 0": handles at one third of their segment, or retracted.
#include "handles/Handles.h"

#include "HandleGeometry.h"
#include "HostRefs.h"
#include "MeshSelection.h"
#include "Operations.h"

using lb::s::sMath;

namespace lb::handles {

namespace {

// The four directional segment indices of a vertex (-1 where missing).
struct AxisSegments {
  int32_t iF, iB, jF, jB;

  explicit AxisSegments(AIMeshVertexIterator v) {
    const auto* vs = lb::s::sMeshVertexIterator;
    iF = vs->GetSegmentIndex(v, kAIMeshIAxis, kAIMeshForward);
    iB = vs->GetSegmentIndex(v, kAIMeshIAxis, kAIMeshBackward);
    jF = vs->GetSegmentIndex(v, kAIMeshJAxis, kAIMeshForward);
    jB = vs->GetSegmentIndex(v, kAIMeshJAxis, kAIMeshBackward);
  }
  bool isI(int32_t k) const { return k == iF || k == iB; }
  bool isJ(int32_t k) const { return k == jF || k == jB; }
};

// Which segments of a selected vertex the "between" variants act on: the
// far end must be selected too, and an axis restriction (I only, J only)
// keeps the segments of that axis.
struct BetweenFilter {
  bool between;
  bool iOnly;
  bool jOnly;

  BetweenFilter(long b, long alongI, long alongJ)
      : between(b != 0), iOnly(alongI && !alongJ), jOnly(alongJ && !alongI) {}

  bool skip(AIMeshSelection sel, const AxisSegments& axes, int32_t k, AIMeshVertexIterator farEnd) const {
    if (!between) return false;
    if (!lb::s::sMeshSelection->ContainsVertex(sel, farEnd)) return true;
    if (iOnly && !axes.isI(k)) return true;
    if (jOnly && !axes.isJ(k)) return true;
    return false;
  }
};

// Calls fn(vertex) for every selected vertex of the mesh, in the host's
// vertex order. Returns false when the selection is empty.
template <class Fn>
bool ForEachSelectedVertex(AIArtHandle mesh, AIMeshSelection selection, Fn&& fn) {
  const auto* vs = lb::s::sMeshVertexIterator;
  const auto* sel = lb::s::sMeshSelection;
  if (sel->IsEmpty(selection) && !sel->IsFull(selection)) return false;
  VertexRef v;
  ThrowIfErr(lb::s::sMesh->GetStartVertex(mesh, v.put()));
  for (; !vs->AtEnd(v); ThrowIfErr(vs->Next(v))) {
    if (sel->ContainsVertex(selection, v)) fn(v.get());
  }
  return true;
}

}  // namespace

int _Nodes13(AIArtHandle mesh, long between, long alongI, long alongJ) {
  const auto* vs = lb::s::sMeshVertexIterator;
  const auto* ss = lb::s::sMeshSegmentIterator;
  const BetweenFilter filter(between, alongI, alongJ);
  try {
    SelectionRef selection = GetSelectionRef(mesh);
    ForEachSelectedVertex(mesh, selection, [&](AIMeshVertexIterator v) {
      AIRealPoint p{};
      vs->GetPoint(v, &p);
      const AxisSegments axes(v);
      const int32_t n = vs->CountSegments(v);
      for (int32_t k = 0; k < n; ++k) {
        SegmentRef seg;
        ThrowIfErr(vs->GetSegment(v, k, seg.put()));
        VertexRef q;
        ThrowIfErr(ss->GetEnd(seg, q.put()));
        if (filter.skip(selection, axes, k, q)) continue;
        AIRealPoint qp{}, h{};
        vs->GetPoint(q, &qp);
        vs->GetTangent(v, k, &h);
        // A handle (nearly) retracted has no direction of its own: aim it
        // at the far end of the segment.
        const double a = sMath->AIRealPointClose(&p, &h, 0.5) ? sMath->AIRealPointAngle(&p, &qp)
                                                                : sMath->AIRealPointAngle(&p, &h);
        const double d = sMath->AIRealPointLength(&p, &qp) / 3.0;
        AIRealPoint off{}, nh{};
        sMath->AIRealPointLengthAngle(d, a, &off);
        sMath->AIRealPointAdd(&p, &off, &nh);
        vs->SetTangent(v, k, &nh);
      }
      if (!filter.between)
        ZF_MeshVertex_CheckSmooth(v, 1, 1);
      else
        ZF_MeshVertex_CheckSmooth(v, alongI ? 1 : 0, alongJ ? 1 : 0);
    });
    return 0;
  } catch (int) {
    return 1;
  }
}

int _Nodes0(AIArtHandle mesh, long between, long alongI, long alongJ) {
  const auto* vs = lb::s::sMeshVertexIterator;
  const auto* ss = lb::s::sMeshSegmentIterator;
  const BetweenFilter filter(between, alongI, alongJ);
  try {
    SelectionRef selection = GetSelectionRef(mesh);
    ForEachSelectedVertex(mesh, selection, [&](AIMeshVertexIterator v) {
      AIRealPoint p{};
      vs->GetPoint(v, &p);
      const int32_t n = vs->CountSegments(v);
      if (filter.between) {
        const AxisSegments axes(v);
        for (int32_t k = 0; k < n; ++k) {
          SegmentRef seg;
          ThrowIfErr(vs->GetSegment(v, k, seg.put()));
          VertexRef q;
          ThrowIfErr(ss->GetEnd(seg, q.put()));
          if (filter.skip(selection, axes, k, q)) continue;
          vs->SetTangent(v, k, &p);
          vs->SetSmooth(v, k, 0);
        }
      } else {
        for (int32_t k = 0; k < n; ++k) {
          vs->SetTangent(v, k, &p);
          vs->SetSmooth(v, k, 0);
        }
      }
    });
    return 0;
  } catch (int) {
    return 1;
  }
}

int Nodes13or0(long zero, long between, long alongI, long alongJ) {
  if (zero != 0 && zero != 1) return 0;
  return ForEachMesh([&](AIArtHandle mesh) {
    if (zero == 0)
      _Nodes13(mesh, between, alongI, alongJ);
    else
      _Nodes0(mesh, between, alongI, alongJ);
  });
}

}  // namespace lb::handles
