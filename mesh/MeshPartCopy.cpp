// Copying mesh content through windows, and cutting a rectangle of cells
// into a new mesh.
#include "MeshPartCopy.h"

#include <vector>

#include "HostRefs.h"
#include "Suites.h"
#include "color/ColorOpacity.h"

namespace {

using lb::s::sMesh;
using lb::s::sMeshSegmentIterator;
using lb::s::sMeshVertexIterator;

int32_t Opposite(int32_t sense) {
  return sense == kAIMeshBackward ? kAIMeshForward : kAIMeshBackward;
}

// The host sense a window field stands for: 1 is toward lower indices,
// any other value toward higher.
int32_t WindowSense(int32_t field) { return field == 1 ? kAIMeshBackward : kAIMeshForward; }

// Copies colour and opacity of one node whatever the panel's checkboxes
// say: a copy must carry the whole paint.
void CopyPaint(AIMeshVertexIterator src, AIMeshVertexIterator dst) {
  CColorOpacity::sm_bUseAll = 1;
  CColorOpacity paint;
  paint.Read(src);
  paint.Write(dst);
  CColorOpacity::sm_bUseAll = 0;
}

// Copies the smooth flag of src's segment in (srcAxis, srcSense) to dst's
// segment in (dstAxis, dstSense), where both vertices have one.
void CopySmooth(AIMeshVertexIterator src, int32_t srcAxis, int32_t srcSense, AIMeshVertexIterator dst,
                int32_t dstAxis, int32_t dstSense) {
  int32_t si = sMeshVertexIterator->GetSegmentIndex(src, srcAxis, srcSense);
  int32_t di = sMeshVertexIterator->GetSegmentIndex(dst, dstAxis, dstSense);
  if (si < 0 || di < 0) return;
  sMeshVertexIterator->SetSmooth(dst, di, sMeshVertexIterator->GetSmooth(src, si));
}

bool EndIsNode(AIMeshSegmentIterator segment) {
  VertexRef end;
  ThrowIfErr(sMeshSegmentIterator->GetEnd(segment, end.put()));
  return sMeshVertexIterator->IsNode(end) != 0;
}

// Copies the run (node to next node) that leaves srcNode in (srcAxis,
// srcSense) onto the run that leaves dstNode in (dstAxis, dstSense).
//
// Both segments are handed out oriented away from their start node, so
// their control points correspond by index whatever the two directions
// are. A fresh destination run (no knots, ends at a node) is first split
// into as many segments as the source run has; then the runs are walked
// in step, knots inserted to match and every control point copied. Smooth
// flags follow the direction of travel: the flag of a vertex on the
// segment behind it goes to the destination vertex's segment behind it.
//
// Whole meshes are copied run by run, so what the count already told (the
// first source end, the segment count, the split pieces' empty knot lists)
// is not asked of the host again.
void CopyRun(AIMeshVertexIterator srcNode, int32_t srcAxis, int32_t srcSense, AIMeshVertexIterator dstNode,
             int32_t dstAxis, int32_t dstSense) {
  int32_t si = sMeshVertexIterator->GetSegmentIndex(srcNode, srcAxis, srcSense);
  int32_t di = sMeshVertexIterator->GetSegmentIndex(dstNode, dstAxis, dstSense);
  if (si < 0 || di < 0) throw static_cast<int>(kBadParameterErr);
  sMeshVertexIterator->SetSmooth(dstNode, di, sMeshVertexIterator->GetSmooth(srcNode, si));

  SegmentRef srcSeg, dstSeg;
  ThrowIfErr(sMeshVertexIterator->GetSegment(srcNode, si, srcSeg.put()));
  ThrowIfErr(sMeshVertexIterator->GetSegment(dstNode, di, dstSeg.put()));

  // Segments of the source run, when the destination was fresh; 0 when not
  // counted. The count's first step is the source segment's end vertex.
  int32_t count = 0;
  VertexRef srcEnd;
  if (sMeshSegmentIterator->CountKnots(dstSeg) == 0 && EndIsNode(dstSeg)) {
    count = 1;
    ThrowIfErr(sMeshSegmentIterator->GetEnd(srcSeg, srcEnd.put()));
    if (!sMeshVertexIterator->IsNode(srcEnd)) {
      SegmentRef walker;
      ThrowIfErr(sMeshSegmentIterator->Copy(srcSeg, walker.put()));
      do {
        ThrowIfErr(sMeshSegmentIterator->NextOnAxis(walker));
        ++count;
      } while (!EndIsNode(walker));
    }
    if (count > 1) {
      // count - 1 knots, split from the last to the first: the iterator
      // stays on the first part, whose knots keep their numbers.
      ThrowIfErr(sMeshSegmentIterator->InsertKnots(dstSeg, 0, count - 1));
      for (int32_t k = count - 2; k >= 0; --k) ThrowIfErr(sMeshSegmentIterator->Split(dstSeg, k));
    }
  }

  // One buffer for every run copied: copying a big mesh would otherwise
  // allocate once per run. (Not thread_local: the host calls the plug-in
  // on one thread, and a thread_local in a loaded module costs a call.)
  static std::vector<AIRealPoint> points;
  for (int32_t piece = 1;; ++piece) {
    int32_t knots = sMeshSegmentIterator->CountKnots(srcSeg);
    int32_t have = count ? 0 : sMeshSegmentIterator->CountKnots(dstSeg);
    if (have < knots)
      ThrowIfErr(sMeshSegmentIterator->InsertKnots(dstSeg, have, knots - have));
    else if (have > knots)
      ThrowIfErr(sMeshSegmentIterator->DeleteKnots(dstSeg, knots, have - knots));
    int32_t n = 3 * knots + 4;
    points.resize(static_cast<size_t>(n));
    ThrowIfErr(sMeshSegmentIterator->GetPoints(srcSeg, 0, n, points.data()));
    sMeshSegmentIterator->SetPoints(dstSeg, 0, n, points.data());

    VertexRef dstEnd;
    if (piece > 1 || !srcEnd) ThrowIfErr(sMeshSegmentIterator->GetEnd(srcSeg, srcEnd.put()));
    ThrowIfErr(sMeshSegmentIterator->GetEnd(dstSeg, dstEnd.put()));
    CopySmooth(srcEnd, srcAxis, Opposite(srcSense), dstEnd, dstAxis, Opposite(dstSense));
    // A counted run ends at its last piece on both sides.
    if (count ? piece == count : sMeshVertexIterator->IsNode(srcEnd) || sMeshVertexIterator->IsNode(dstEnd)) break;
    CopySmooth(srcEnd, srcAxis, srcSense, dstEnd, dstAxis, dstSense);
    ThrowIfErr(sMeshSegmentIterator->NextOnAxis(srcSeg));
    ThrowIfErr(sMeshSegmentIterator->NextOnAxis(dstSeg));
  }
}

bool WindowFits(ArtObject* mesh, const ZS_RestoreMeshData& w) {
  int32_t cellsI = 0, cellsJ = 0;
  ThrowIfErr(sMesh->GetSize(mesh, &cellsI, &cellsJ));
  if (w.m_nStartI < 0 || w.m_nStartI > cellsI || w.m_nStartJ < 0 || w.m_nStartJ > cellsJ) return false;
  if (w.m_nAxisA == w.m_nAxisB) return false;
  // The two axes are I and J, one each.
  if ((w.m_nAxisA != 0 && w.m_nAxisA != 1) || (w.m_nAxisB != 0 && w.m_nAxisB != 1)) return false;
  return w.m_nCellsI >= 0 && w.m_nCellsJ >= 0;
}

}  // namespace

int GetNodeCorr(ArtObject* mesh, int a, int b, _AIMeshVertexIterator** vertex, ZS_RestoreMeshData* w) {
  const int sa = w->m_nSenseA == 1 ? -1 : 1;
  const int sb = w->m_nSenseB == 1 ? -1 : 1;
  if (w->m_nAxisA == 0) return sMesh->GetNode(mesh, w->m_nStartI + sa * a, w->m_nStartJ + sb * b, vertex);
  return sMesh->GetNode(mesh, w->m_nStartI + sb * b, w->m_nStartJ + sa * a, vertex);
}

int RestoreMeshPart(ArtObject* src, ArtObject* dst, ZS_RestoreMeshData* srcWindow, ZS_RestoreMeshData* dstWindow) {
  try {
    if (!WindowFits(src, *srcWindow) || !WindowFits(dst, *dstWindow)) return 1;
    const int32_t limitA = dstWindow->m_nAxisA == 0 ? dstWindow->m_nCellsI : dstWindow->m_nCellsJ;
    const int32_t limitB = dstWindow->m_nAxisA == 0 ? dstWindow->m_nCellsJ : dstWindow->m_nCellsI;
    const int32_t srcSenseA = WindowSense(srcWindow->m_nSenseA), srcSenseB = WindowSense(srcWindow->m_nSenseB);
    const int32_t dstSenseA = WindowSense(dstWindow->m_nSenseA), dstSenseB = WindowSense(dstWindow->m_nSenseB);

    for (int32_t a = 0; a <= limitA; ++a) {
      for (int32_t b = 0; b <= limitB; ++b) {
        VertexRef from, to;
        ThrowIfErr(GetNodeCorr(src, a, b, from.put(), srcWindow));
        ThrowIfErr(GetNodeCorr(dst, a, b, to.put(), dstWindow));
        CopyPaint(from, to);
        if (a < limitA) CopyRun(from, srcWindow->m_nAxisA, srcSenseA, to, dstWindow->m_nAxisA, dstSenseA);
        if (b < limitB) CopyRun(from, srcWindow->m_nAxisB, srcSenseB, to, dstWindow->m_nAxisB, dstSenseB);
      }
    }
  } catch (int) {
    CColorOpacity::sm_bUseAll = 0;
    return 1;
  }
  return 0;
}

int MakeMeshPart(ArtObject* src, ArtObject** part, int i0, int i1, int j0, int j1) {
  try {
    int32_t cellsI = 0, cellsJ = 0;
    ThrowIfErr(sMesh->GetSize(src, &cellsI, &cellsJ));
    if (i1 - i0 < 1 || j1 - j0 < 1 || i0 < 0 || j0 < 0 || i1 > cellsI || j1 > cellsJ) return 1;

    ArtObject* mesh = nullptr;
    ThrowIfErr(lb::s::sArt->NewArt(kMeshArt, kPlaceAbove, src, &mesh));
    if (part) *part = mesh;
    ThrowIfErr(sMesh->InitCartesian(mesh, i1 - i0, j1 - j0));

    for (int32_t i = i0; i <= i1; ++i) {
      for (int32_t j = j0; j <= j1; ++j) {
        VertexRef from = GetNodeRef(src, i, j);
        VertexRef to = GetNodeRef(mesh, i - i0, j - j0);
        CopyPaint(from, to);
        if (i < i1) CopyRun(from, kAIMeshIAxis, kAIMeshForward, to, kAIMeshIAxis, kAIMeshForward);
        if (j < j1) CopyRun(from, kAIMeshJAxis, kAIMeshForward, to, kAIMeshJAxis, kAIMeshForward);
      }
    }

    // Carry the selection over: the rectangle's nodes and the non-node
    // vertices on the runs that leave them forward inside the rectangle.
    SelectionRef srcSel = GetSelectionRef(src);
    SelectionRef dstSel = GetSelectionRef(mesh);
    auto& sel = *lb::s::sMeshSelection;
    auto& vtx = *sMeshVertexIterator;
    for (int32_t i = i0; i <= i1; ++i) {
      for (int32_t j = j0; j <= j1; ++j) {
        VertexRef from = GetNodeRef(src, i, j);
        VertexRef to = GetNodeRef(mesh, i - i0, j - j0);
        if (sel.ContainsVertex(srcSel, from)) sel.SelectVertex(dstSel, to, true);
        for (int32_t axis = kAIMeshIAxis; axis <= kAIMeshJAxis; ++axis) {
          if (axis == kAIMeshIAxis ? i == i1 : j == j1) continue;
          VertexRef s, d;
          ThrowIfErr(vtx.Copy(from, s.put()));
          ThrowIfErr(vtx.Copy(to, d.put()));
          for (;;) {
            ThrowIfErr(axis == kAIMeshIAxis ? vtx.NextI(s) : vtx.NextJ(s));
            ThrowIfErr(axis == kAIMeshIAxis ? vtx.NextI(d) : vtx.NextJ(d));
            if (vtx.AtEnd(s) || vtx.AtEnd(d) || vtx.IsNode(s) || vtx.IsNode(d)) break;
            if (sel.ContainsVertex(srcSel, s)) sel.SelectVertex(dstSel, d, true);
          }
        }
      }
    }

    ThrowIfErr(lb::s::sBlendStyle->SetOpacity(mesh, lb::s::sBlendStyle->GetOpacity(src)));
    ThrowIfErr(lb::s::sBlendStyle->SetBlendingMode(mesh, lb::s::sBlendStyle->GetBlendingMode(src)));
  } catch (int) {
    CColorOpacity::sm_bUseAll = 0;
    return 1;
  }
  return 0;
}
