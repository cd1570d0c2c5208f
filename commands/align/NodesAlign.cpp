// Node alignment (one common h or v for the selected vertices of all
// selected meshes) and the half turn of the handles crossing a selected
// single row or column.
#include <algorithm>
#include <limits>

#include "align/Align.h"
#include "MeshSelection.h"
#include "Operations.h"

using lb::s::sMesh;
using lb::s::sMeshSegmentIterator;
using lb::s::sMeshSelection;
using lb::s::sMeshVertexIterator;

namespace lb::align {
namespace {

double& Coord(AIRealPoint& p, long coordinate) { return coordinate == 0 ? p.h : p.v; }

// A selection that is empty and does not cover the whole mesh holds
// nothing to align.
bool HoldsNothing(AIMeshSelection sel) { return sMeshSelection->IsEmpty(sel) && !sMeshSelection->IsFull(sel); }

// Calls visit(vertex) for every selected vertex of the mesh, nodes and
// non-node vertices alike. Host errors are thrown.
template <class Visit>
void ForEachSelectedVertex(AIArtHandle mesh, Visit&& visit) {
  SelectionRef sel = GetSelectionRef(mesh);
  if (HoldsNothing(sel)) return;
  VertexRef v;
  ThrowIfErr(sMesh->GetStartVertex(mesh, v.put()));
  for (; !sMeshVertexIterator->AtEnd(v); ThrowIfErr(sMeshVertexIterator->Next(v)))
    if (sMeshSelection->ContainsVertex(sel, v)) visit(v.get());
}

// Mirrors the handle of segment (axis, sense) of node v through its point.
void MirrorHandle(AIMeshVertexIterator v, const AIRealPoint& p, AIMeshAxis axis, AIMeshAxisSense sense) {
  const int32_t k = sMeshVertexIterator->GetSegmentIndex(v, axis, sense);
  if (k < 0) return;
  AIRealPoint h{};
  ThrowIfErr(sMeshVertexIterator->GetTangent(v, k, &h));
  const AIRealPoint m{p.h + (p.h - h.h), p.v + (p.v - h.v)};
  sMeshVertexIterator->SetTangent(v, k, &m);
}

void _Turn180(AIArtHandle mesh) {
  try {
    SelectionRef sel = GetSelectionRef(mesh);
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    CMeshRegion reg;
    if (reg.GetMeshReg(mesh) != 0 || reg.IsEmpty()) return;
    const bool column = reg.m_nMinI == reg.m_nMaxI && reg.m_nMinJ < reg.m_nMaxJ;
    const bool row = reg.m_nMinJ == reg.m_nMaxJ && reg.m_nMinI < reg.m_nMaxI;
    if (!column && !row) return;
    // The handles that cross the line run along the other axis.
    const AIMeshAxis across = column ? kAIMeshIAxis : kAIMeshJAxis;
    const int32_t last = column ? J : I;
    const int32_t lineMax = column ? I : J;
    const int32_t fixed = column ? reg.m_nMinI : reg.m_nMinJ;
    for (int32_t k = 0; k <= last; ++k) {
      VertexRef v = column ? GetNodeRef(mesh, fixed, k) : GetNodeRef(mesh, k, fixed);
      if (!sMeshSelection->ContainsVertex(sel, v)) continue;
      AIRealPoint p{};
      ThrowIfErr(sMeshVertexIterator->GetPoint(v, &p));
      if (fixed != lineMax) MirrorHandle(v, p, across, kAIMeshForward);
      if (fixed != 0) MirrorHandle(v, p, across, kAIMeshBackward);
    }
  } catch (int) {
  }
}

// Moves the selected vertices of one mesh; host errors are thrown.
void AlignMesh(AIArtHandle mesh, long coordinate, double target) {
  ForEachSelectedVertex(mesh, [&](AIMeshVertexIterator v) {
    AIRealPoint p{};
    ThrowIfErr(sMeshVertexIterator->GetPoint(v, &p));
    AIRealPoint q = p;
    Coord(q, coordinate) = target;
    sMeshVertexIterator->SetPoint(v, &q);
    const AIRealPoint d{q.h - p.h, q.v - p.v};
    const int32_t n = sMeshVertexIterator->CountSegments(v);
    for (int32_t k = 0; k < n; ++k) {
      SegmentRef seg;
      ThrowIfErr(sMeshVertexIterator->GetSegment(v, k, seg.put()));
      // Points 0 and 1 of a segment taken at a vertex: the vertex and its handle.
      AIRealPoint pts[2];
      ThrowIfErr(sMeshSegmentIterator->GetPoints(seg, 0, 2, pts));
      pts[0] = q;
      pts[1] = {pts[1].h + d.h, pts[1].v + d.v};
      sMeshSegmentIterator->SetPoints(seg, 0, 2, pts);
    }
  });
}

}  // namespace

int _NodesAlign(ArtObject* mesh, long coordinate, double target) {
  try {
    AlignMesh(mesh, coordinate, target);
  } catch (int) {
  }
  return 0;
}

int NodesAlign(long coordinate, long mode) {
  SelectedMeshList meshes;
  if (meshes.empty()) return 1;
  try {
    double lo = std::numeric_limits<double>::infinity(), hi = -lo;
    for (AIArtHandle mesh : meshes)
      ForEachSelectedVertex(mesh, [&](AIMeshVertexIterator v) {
        AIRealPoint p{};
        ThrowIfErr(sMeshVertexIterator->GetPoint(v, &p));
        lo = std::min(lo, Coord(p, coordinate));
        hi = std::max(hi, Coord(p, coordinate));
      });
    if (lo > hi) return 0;  // no selected vertex anywhere
    const double target = mode == 1 ? hi : mode == 2 ? lo : (hi + lo) * 0.5;
    for (AIArtHandle mesh : meshes) AlignMesh(mesh, coordinate, target);
  } catch (int) {
    return 1;
  }
  return 0;
}

int Turn180() {
  return ForEachMesh([](AIArtHandle mesh) { _Turn180(mesh); });
}

}  // namespace lb::align
