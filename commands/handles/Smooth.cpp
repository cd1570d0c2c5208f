// "Smooth": turns handle pairs of selected vertices and nodes onto one line.
#include "handles/Handles.h"

#include "HostRefs.h"
#include "MeshSelection.h"
#include "Operations.h"

using lb::s::sMath;

namespace lb::handles {

namespace {
constexpr double kHalfPi = 1.5707963267948966;
}

int SmoothHandlePair(const AIRealPoint& p, AIRealPoint& h1, AIRealPoint& h2) {
  const double len1 = sMath->AIRealPointLength(&p, &h1);
  const double len2 = sMath->AIRealPointLength(&p, &h2);
  const double a1 = sMath->AIRealPointAngle(&p, &h1);
  const double a2 = sMath->AIRealPointAngle(&p, &h2);
  const double mid = (a1 + a2) * 0.5;
  const double n1 = a1 > a2 ? mid + kHalfPi : mid - kHalfPi;
  const double n2 = a1 > a2 ? mid - kHalfPi : mid + kHalfPi;
  AIRealPoint d{};
  sMath->AIRealPointLengthAngle(len1, n1, &d);
  sMath->AIRealPointAdd(&p, &d, &h1);
  sMath->AIRealPointLengthAngle(len2, n2, &d);
  sMath->AIRealPointAdd(&p, &d, &h2);
  return 0;
}

namespace {

// Smooths the pair of handles on segments `forward` and `backward` of v
// and marks the forward segment smooth.
void SmoothSegments(AIMeshVertexIterator v, const AIRealPoint& p, int32_t forward, int32_t backward) {
  const auto* vs = lb::s::sMeshVertexIterator;
  AIRealPoint hf{}, hb{};
  vs->GetTangent(v, forward, &hf);
  vs->GetTangent(v, backward, &hb);
  SmoothHandlePair(p, hf, hb);
  vs->SetTangent(v, forward, &hf);
  vs->SetTangent(v, backward, &hb);
  vs->SetSmooth(v, forward, 1);
}

}  // namespace

int _SmoothNodes(AIArtHandle mesh, long alongI, long alongJ, long corners) {
  const auto* vs = lb::s::sMeshVertexIterator;
  const auto* sel = lb::s::sMeshSelection;
  try {
    SelectionRef selection = GetSelectionRef(mesh);
    if (sel->IsEmpty(selection) && !sel->IsFull(selection)) return 0;

    if (alongI || alongJ) {
      VertexRef v;
      ThrowIfErr(lb::s::sMesh->GetStartVertex(mesh, v.put()));
      for (; !vs->AtEnd(v); ThrowIfErr(vs->Next(v))) {
        if (!sel->ContainsVertex(selection, v)) continue;
        AIRealPoint p{};
        vs->GetPoint(v, &p);
        if (alongI) {
          const int32_t f = vs->GetSegmentIndex(v, kAIMeshIAxis, kAIMeshForward);
          const int32_t b = vs->GetSegmentIndex(v, kAIMeshIAxis, kAIMeshBackward);
          if (f >= 0 && b >= 0) SmoothSegments(v, p, f, b);
        }
        if (alongJ) {
          const int32_t f = vs->GetSegmentIndex(v, kAIMeshJAxis, kAIMeshForward);
          const int32_t b = vs->GetSegmentIndex(v, kAIMeshJAxis, kAIMeshBackward);
          if (f >= 0 && b >= 0) SmoothSegments(v, p, f, b);
        }
      }
    }

    if (corners) {
      int32_t I = 0, J = 0;
      ThrowIfErr(lb::s::sMesh->GetSize(mesh, &I, &J));
      const int32_t ci[4] = {0, 0, I, I};
      const int32_t cj[4] = {0, J, 0, J};
      for (int k = 0; k < 4; ++k) {
        VertexRef node = GetNodeRef(mesh, ci[k], cj[k]);
        if (!sel->ContainsVertex(selection, node)) continue;
        AIRealPoint p{};
        vs->GetPoint(node, &p);
        // A corner node has exactly one I and one J segment: 0 and 1.
        SmoothSegments(node, p, 0, 1);
      }
    }
    return 0;
  } catch (int) {
    return 1;
  }
}

int SmoothNodes(long alongI, long alongJ, long corners) {
  return ForEachMesh([&](AIArtHandle mesh) { _SmoothNodes(mesh, alongI, alongJ, corners); });
}

}  // namespace lb::handles
