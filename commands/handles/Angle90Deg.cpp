// "Handles 90 deg": turns the handles of selected nodes to right angles.
#include "handles/Handles.h"

#include "HostRefs.h"
#include "MeshSelection.h"
#include "Operations.h"

using lb::s::sMath;

namespace lb::handles {

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;
constexpr double kHalfPi = 1.5707963267948966;

// Brings an angle difference into -pi..pi.
double WrapDifference(double d) {
  if (d >= kTwoPi) d -= kTwoPi;
  if (d <= -kTwoPi) d += kTwoPi;
  if (d > kPi) d -= kTwoPi;
  if (d < -kPi) d += kTwoPi;
  return d;
}

// One handle of a node: its segment index (-1 when the node has none in
// that direction), its original position and its length.
struct Handle {
  int32_t index = -1;
  AIRealPoint h{};
  double len = 0;
  bool exists() const { return index >= 0; }
};

// Direction of an axis from the (smoothed) forward handle, or from the
// backward one turned half a turn when there is no forward handle.
double AxisAngle(const AIRealPoint& p, const Handle& f, const AIRealPoint& fCopy, const AIRealPoint& bCopy) {
  return f.exists() ? sMath->AIRealPointAngle(&p, &fCopy) : sMath->AIRealPointAngle(&p, &bCopy) + kPi;
}

void WriteHandle(AIMeshVertexIterator v, const AIRealPoint& p, const Handle& hd, double angle) {
  if (!hd.exists()) return;
  AIRealPoint off{}, nh{};
  sMath->AIRealPointLengthAngle(hd.len, angle, &off);
  sMath->AIRealPointAdd(&p, &off, &nh);
  lb::s::sMeshVertexIterator->SetTangent(v, hd.index, &nh);
}

void RightAngleNode(AIMeshVertexIterator v, long actJ, long actI) {
  const auto* vs = lb::s::sMeshVertexIterator;
  AIRealPoint p{};
  vs->GetPoint(v, &p);
  Handle iF, iB, jF, jB;
  iF.index = vs->GetSegmentIndex(v, kAIMeshIAxis, kAIMeshForward);
  iB.index = vs->GetSegmentIndex(v, kAIMeshIAxis, kAIMeshBackward);
  jF.index = vs->GetSegmentIndex(v, kAIMeshJAxis, kAIMeshForward);
  jB.index = vs->GetSegmentIndex(v, kAIMeshJAxis, kAIMeshBackward);
  if (!iF.exists() && !iB.exists()) return;
  if (!jF.exists() && !jB.exists()) return;
  for (Handle* hd : {&iF, &iB, &jF, &jB}) {
    if (!hd->exists()) continue;
    vs->GetTangent(v, hd->index, &hd->h);
    hd->len = sMath->AIRealPointLength(&p, &hd->h);
  }

  // The directions come from smoothed copies; the lengths from the handles.
  AIRealPoint ciF = iF.h, ciB = iB.h, cjF = jF.h, cjB = jB.h;
  if (iF.exists() && iB.exists()) SmoothHandlePair(p, ciF, ciB);
  if (jF.exists() && jB.exists()) SmoothHandlePair(p, cjF, cjB);
  double aI = AxisAngle(p, iF, ciF, ciB);
  double aJ = AxisAngle(p, jF, cjF, cjB);
  if (aI > kPi) aI -= kTwoPi;
  if (aJ > kPi) aJ -= kTwoPi;

  double d = WrapDifference(aJ - aI);
  // clockwise: J lies clockwise of I.
  bool clockwise = false;
  if (d < 0) {
    d = -d;
    clockwise = true;
  }

  if (actJ && actI) {
    const double e = WrapDifference(kHalfPi - d) * 0.5;
    aI += clockwise ? e : -e;
    aJ += clockwise ? -e : e;
  } else if (actJ) {
    aJ = clockwise ? aI - kHalfPi : aI + kHalfPi;
  } else {
    aI = clockwise ? aJ + kHalfPi : aJ - kHalfPi;
  }

  if (actI) {
    WriteHandle(v, p, iF, aI);
    WriteHandle(v, p, iB, aI - kPi);
  } else {
    if (iF.exists()) vs->SetTangent(v, iF.index, &iF.h);
    if (iB.exists()) vs->SetTangent(v, iB.index, &iB.h);
  }
  if (actJ) {
    WriteHandle(v, p, jF, aJ);
    WriteHandle(v, p, jB, aJ - kPi);
  } else {
    if (jF.exists()) vs->SetTangent(v, jF.index, &jF.h);
    if (jB.exists()) vs->SetTangent(v, jB.index, &jB.h);
  }
  if (actJ && jF.exists()) vs->SetSmooth(v, jF.index, 1);
  if (actI && iF.exists()) vs->SetSmooth(v, iF.index, 1);
}

}  // namespace

int _Angle90Deg(AIArtHandle mesh, long actJ, long actI) {
  if (!actJ && !actI) return 0;
  const auto* sel = lb::s::sMeshSelection;
  try {
    SelectionRef selection = GetSelectionRef(mesh);
    if (sel->IsEmpty(selection) && !sel->IsFull(selection)) return 0;
    int32_t I = 0, J = 0;
    ThrowIfErr(lb::s::sMesh->GetSize(mesh, &I, &J));
    VertexRef node;
    for (int32_t i = 0; i <= I; ++i) {
      for (int32_t j = 0; j <= J; ++j) {
        ThrowIfErr(lb::s::sMesh->GetNode(mesh, i, j, node.put()));
        if (sel->ContainsVertex(selection, node)) RightAngleNode(node, actJ, actI);
      }
    }
    return 0;
  } catch (int) {
    return 1;
  }
}

int Angle90Deg(long actJ, long actI) {
  return ForEachMesh([&](AIArtHandle mesh) { _Angle90Deg(mesh, actJ, actI); });
}

}  // namespace lb::handles
