// "Split" (140): cuts a mesh in two along the grid line marked by selected
// border nodes, or, on a strip one cell wide, bridges two selected
// vertices of its long sides with a new grid line.
#include <cstdint>
#include <vector>

#include "HandleGeometry.h"
#include "HostRefs.h"
#include "MeshPartCopy.h"
#include "MeshSelection.h"
#include "Operations.h"
#include "construct/MeshCutter.h"

using lb::s::sArt;
using lb::s::sMesh;
using lb::s::sMeshSegmentIterator;
using lb::s::sMeshSelection;
using lb::s::sMeshVertexIterator;

namespace {

bool NodeSelected(AIArtHandle mesh, AIMeshSelection sel, int32_t i, int32_t j) {
  return sMeshSelection->ContainsVertex(sel, GetNodeRef(mesh, i, j));
}

// The segment leaving vertex v in (axis, sense); throws when there is none.
SegmentRef SegmentAt(AIMeshVertexIterator v, int axis, AIMeshAxisSense sense) {
  const int32_t idx = sMeshVertexIterator->GetSegmentIndex(v, axis, sense);
  if (idx < 0) throw static_cast<int>(kBadParameterErr);
  SegmentRef s;
  ThrowIfErr(sMeshVertexIterator->GetSegment(v, idx, s.put()));
  return s;
}

// The shape of one long side of the bridged cell, from node to node.
struct SideShape {
  std::vector<AIRealPoint> points;  // 3m + 1 points of the m pieces
  std::vector<char> isVertex;       // per anchor 0..m (ends count as vertices)
  int end = -1;                     // anchor index of the bridge end
};

// Reads the side leaving node (i, j) along axis up to the next node; end
// is the first selected intermediate vertex, -1 when there is none.
SideShape ReadSide(AIArtHandle mesh, AIMeshSelection sel, int32_t i, int32_t j, int axis) {
  SideShape side;
  VertexRef node = GetNodeRef(mesh, i, j);
  SegmentRef s = SegmentAt(node, axis, kAIMeshForward);
  side.isVertex.push_back(1);
  for (;;) {
    const int32_t n = sMeshSegmentIterator->CountPoints(s);
    std::vector<AIRealPoint> pts(static_cast<size_t>(n));
    ThrowIfErr(sMeshSegmentIterator->GetPoints(s, 0, n, pts.data()));
    side.points.insert(side.points.end(), pts.begin() + (side.points.empty() ? 0 : 1), pts.end());
    for (int32_t k = 0; k < sMeshSegmentIterator->CountKnots(s); ++k) side.isVertex.push_back(0);
    side.isVertex.push_back(1);
    VertexRef end;
    ThrowIfErr(sMeshSegmentIterator->GetEnd(s, end.put()));
    if (sMeshVertexIterator->IsNode(end)) break;
    if (side.end < 0 && sMeshSelection->ContainsVertex(sel, end))
      side.end = static_cast<int>(side.isVertex.size()) - 1;
    ThrowIfErr(sMeshSegmentIterator->NextOnAxis(s));
  }
  return side;
}

// Makes the side leaving node (i, j) along axis one segment without knots.
void FlattenSide(AIArtHandle mesh, int32_t i, int32_t j, int axis) {
  VertexRef node = GetNodeRef(mesh, i, j);
  SegmentRef s = SegmentAt(node, axis, kAIMeshForward);
  for (;;) {
    VertexRef end;
    ThrowIfErr(sMeshSegmentIterator->GetEnd(s, end.put()));
    if (sMeshVertexIterator->IsNode(end)) break;
    int32_t q = 0;
    ThrowIfErr(sMeshSegmentIterator->Join(s, &q));
  }
  sMeshSegmentIterator->DeleteKnots(s, 0, sMeshSegmentIterator->CountKnots(s));
}

// Gives the single segment leaving node (i, j) along axis the recorded
// anchors from..to, then splits it where those anchors were vertices.
void RebuildHalf(AIArtHandle mesh, int32_t i, int32_t j, int axis, const SideShape& side, int from, int to) {
  VertexRef node = GetNodeRef(mesh, i, j);
  SegmentRef s = SegmentAt(node, axis, kAIMeshForward);
  const int knots = to - from - 1;
  ThrowIfErr(sMeshSegmentIterator->InsertKnots(s, 0, knots));
  ThrowIfErr(sMeshSegmentIterator->SetPoints(s, 0, 3 * (to - from) + 1, &side.points[static_cast<size_t>(3 * from)]));
  for (int a = to - 1; a > from; --a)
    if (side.isVertex[static_cast<size_t>(a)]) ThrowIfErr(sMeshSegmentIterator->Split(s, a - from - 1));
}

}  // namespace

int GetCutPos(AIArtHandle mesh, int* cutI, int* cutJ) {
  *cutI = 0;
  *cutJ = 0;
  try {
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    SelectionRef sel = GetSelectionRef(mesh);
    int lineI = 0, lineJ = 0;
    if (I > 1) {
      for (int32_t i = 1; i < I; ++i) {
        if (!NodeSelected(mesh, sel, i, 0) && !NodeSelected(mesh, sel, i, J)) continue;
        if (lineI != 0 && lineI != i) return 1;
        lineI = i;
      }
    }
    if (J > 1) {
      for (int32_t j = 1; j < J; ++j) {
        if (!NodeSelected(mesh, sel, 0, j) && !NodeSelected(mesh, sel, I, j)) continue;
        if (lineI != 0 || (lineJ != 0 && lineJ != j)) return 1;
        lineJ = j;
      }
    }
    if (lineI == 0 && lineJ == 0) return 1;
    *cutI = lineI;
    *cutJ = lineJ;
    return 0;
  } catch (int) {
    return 1;
  }
}

int BridgeTool(AIArtHandle* meshArt) {
  AIArtHandle mesh = *meshArt;
  try {
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    SelectionRef sel = GetSelectionRef(mesh);
    if (sMeshSelection->IsFull(sel)) return 0;
    // Strip orientations to try: along I (J = 1, long sides are the lines
    // of constant j), then along J (I = 1).
    for (int along = 0; along < 2; ++along) {
      if (along == 0 ? J != 1 : I != 1) continue;
      const int32_t cells = along == 0 ? I : J;
      for (int32_t k = 0; k < cells; ++k) {
        // Side 0 starts at node (k, 0) / (0, k), side 1 at (k, 1) / (1, k).
        const int32_t i0 = along == 0 ? k : 0, j0 = along == 0 ? 0 : k;
        const int32_t i1 = along == 0 ? k : 1, j1 = along == 0 ? 1 : k;
        SideShape side0 = ReadSide(mesh, sel, i0, j0, along);
        SideShape side1 = ReadSide(mesh, sel, i1, j1, along);
        if (side0.end < 0 || side1.end < 0) continue;
        sel.reset();

        FlattenSide(mesh, i0, j0, along);
        FlattenSide(mesh, i1, j1, along);
        int32_t line = 0;
        const double mid = static_cast<double>(k) + 0.5;
        ThrowIfErr(along == 0 ? sMesh->InsertU(mesh, mid, &line) : sMesh->InsertV(mesh, mid, &line));
        // The new nodes: (k + 1, 0) and (k + 1, 1), or (0, k + 1) and (1, k + 1).
        const int32_t ni0 = along == 0 ? k + 1 : 0, nj0 = along == 0 ? 0 : k + 1;
        const int32_t ni1 = along == 0 ? k + 1 : 1, nj1 = along == 0 ? 1 : k + 1;
        const int m0 = static_cast<int>(side0.isVertex.size()) - 1, m1 = static_cast<int>(side1.isVertex.size()) - 1;
        RebuildHalf(mesh, i0, j0, along, side0, 0, side0.end);
        RebuildHalf(mesh, ni0, nj0, along, side0, side0.end, m0);
        RebuildHalf(mesh, i1, j1, along, side1, 0, side1.end);
        RebuildHalf(mesh, ni1, nj1, along, side1, side1.end, m1);

        // The cross segment becomes straight with one-third handles.
        VertexRef a = GetNodeRef(mesh, ni0, nj0);
        SegmentRef cross = SegmentAt(a, 1 - along, kAIMeshForward);
        sMeshSegmentIterator->DeleteKnots(cross, 0, sMeshSegmentIterator->CountKnots(cross));
        AIRealPoint ends[4];
        ThrowIfErr(sMeshSegmentIterator->GetPoints(cross, 0, 4, ends));
        AIRealPoint h[2];
        lb::s::sMath->AIRealPointInterpolate(&ends[3], &ends[0], kLbOneThird, &h[0]);
        lb::s::sMath->AIRealPointInterpolate(&ends[0], &ends[3], kLbOneThird, &h[1]);
        ThrowIfErr(sMeshSegmentIterator->SetPoints(cross, 1, 2, h));
        sArt->SetArtUserAttr(mesh, kArtSelected, kArtSelected);
        return 0;
      }
    }
    return 0;
  } catch (int) {
    return 0;
  }
}

int MeshCutter() {
  SelectedMeshList meshes;
  for (AIArtHandle mesh : meshes) {
    int cutI = 0, cutJ = 0;
    if (GetCutPos(mesh, &cutI, &cutJ) != 0) {
      AIArtHandle art = mesh;
      BridgeTool(&art);
      continue;
    }
    int32_t I = 0, J = 0;
    if (sMesh->GetSize(mesh, &I, &J) != kNoErr) continue;
    AIArtHandle parts[2] = {nullptr, nullptr};
    int failed = 0;
    if (cutI) {
      failed |= MakeMeshPart(mesh, &parts[0], 0, cutI, 0, J);
      failed |= MakeMeshPart(mesh, &parts[1], cutI, I, 0, J);
    } else {
      failed |= MakeMeshPart(mesh, &parts[0], 0, I, 0, cutJ);
      failed |= MakeMeshPart(mesh, &parts[1], 0, I, cutJ, J);
    }
    if (failed) {
      for (AIArtHandle p : parts)
        if (p) sArt->DisposeArt(p);
      continue;
    }
    sArt->SetArtUserAttr(mesh, kArtSelected, 0);
    sArt->DisposeArt(mesh);
  }
  return 0;
}
