// Handle geometry shared by the commands: third handles and smooth flags.
#include "HandleGeometry.h"

#include "HostRefs.h"

using lb::s::sMath;

void ZF_AIPathSegment_0h_to_0p33h(AIPathSegment* segs, int count, int closed) {
  if (!segs || count <= 0) return;
  // The piece from anchor `a` (its out-handle) to anchor `b` (its in-handle).
  auto fixPiece = [](AIPathSegment& a, AIPathSegment& b) {
    if (!sMath->AIRealPointEqual(&b.in, &b.p) || !sMath->AIRealPointEqual(&a.out, &a.p)) return;
    AIRealPoint newIn{}, newOut{};
    sMath->AIRealPointInterpolate(&a.p, &b.p, kLbOneThird, &newIn);
    sMath->AIRealPointInterpolate(&b.p, &a.p, kLbOneThird, &newOut);
    b.in = newIn;
    a.out = newOut;
  };
  for (int k = 1; k < count; ++k) fixPiece(segs[k - 1], segs[k]);
  if (closed) fixPiece(segs[count - 1], segs[0]);
}

void ZF_AIPathSegment_check_smooth(AIPathSegment* segs, int count) {
  if (!segs) return;
  for (int k = 0; k < count; ++k) {
    AIPathSegment& s = segs[k];
    const double a = sMath->AIRealPointAngle(&s.p, &s.in);
    const double b = sMath->AIRealPointAngle(&s.out, &s.in);
    s.corner = sMath->AIDoubleClose(a, b, kLbPathSmoothTolerance) ? 0 : 1;
  }
}

namespace {

// Smooth test of one axis: forward/backward are the vertex's segment
// indices on that axis.
void CheckAxis(AIMeshVertexIterator v, const AIRealPoint& p, int32_t forward, int32_t backward) {
  const auto* vs = lb::s::sMeshVertexIterator;
  if (forward < 0 || backward < 0) return;
  AIRealPoint h1{}, h2{};
  ThrowIfErr(vs->GetTangent(v, forward, &h1));
  ThrowIfErr(vs->GetTangent(v, backward, &h2));
  const double a = sMath->AIRealPointAngle(&p, &h1);
  const double b = sMath->AIRealPointAngle(&h2, &h1);
  vs->SetSmooth(v, forward, sMath->AIDoubleClose(a, b, kLbMeshSmoothTolerance) ? 1 : 0);
}

}  // namespace

int ZF_MeshVertex_CheckSmooth(AIMeshVertexIterator vertex, int alongI, int alongJ) {
  const auto* vs = lb::s::sMeshVertexIterator;
  const int32_t iF = vs->GetSegmentIndex(vertex, kAIMeshIAxis, kAIMeshForward);
  const int32_t iB = vs->GetSegmentIndex(vertex, kAIMeshIAxis, kAIMeshBackward);
  const int32_t jF = vs->GetSegmentIndex(vertex, kAIMeshJAxis, kAIMeshForward);
  const int32_t jB = vs->GetSegmentIndex(vertex, kAIMeshJAxis, kAIMeshBackward);
  AIRealPoint p{};
  ThrowIfErr(vs->GetPoint(vertex, &p));
  if (alongI) CheckAxis(vertex, p, iF, iB);
  if (alongJ) CheckAxis(vertex, p, jF, jB);
  return 0;
}

int ZF_MeshNodes_CheckSmooth(AIArtHandle mesh) {
  int32_t I = 0, J = 0;
  ThrowIfErr(lb::s::sMesh->GetSize(mesh, &I, &J));
  VertexRef node;
  for (int32_t j = 0; j <= J; ++j) {
    for (int32_t i = 0; i <= I; ++i) {
      ThrowIfErr(lb::s::sMesh->GetNode(mesh, i, j, node.put()));
      ZF_MeshVertex_CheckSmooth(node, 1, 1);
    }
  }
  return 0;
}

AIErr ZF_SetPixelPerfect(AIArtHandle* art, int pixelPerfect) {
  if (!art) return kBadParameterErr;
  return lb::s::sArt->SetArtPixelPerfect(*art, pixelPerfect ? 1 : 0);
}
