// Grid lines of the selected meshes drawn as open paths, grouped by axis
// and by line ("MeshGrid" / "I-axis", "J-axis" / one group per line).
#include <vector>

#include "ArtBuild.h"
#include "HandleGeometry.h"
#include "MeshSelection.h"
#include "Operations.h"

using lb::s::sArt;
using lb::s::sArtStyle;
using lb::s::sMesh;
using lb::s::sMeshSegmentIterator;
using lb::s::sMeshSelection;
using lb::s::sMeshVertexIterator;
using lb::s::sPath;

namespace {

// Makes one open path from the gathered Bezier points inside the line
// group, named like the line and styled like its axis.
void EmitPath(std::vector<AIRealPoint>& pts, AIArtHandle lineGroup, const char* name, AIArtStyleHandle style) {
  const int n = static_cast<int>(pts.size());
  const int count = (n + 2) / 3;
  std::vector<AIPathSegment> segs(count);
  ZF_PointsToSegments(pts.data(), n, segs.data());
  ZF_AIPathSegment_check_smooth(segs.data(), count);
  AIArtHandle path = nullptr;
  ThrowIfErr(sArt->NewArt(kPathArt, kPlaceInsideOnBottom, lineGroup, &path));
  ZF_SetPixelPerfect(&path, 0);
  ThrowIfErr(sPath->SetPathSegmentCount(path, static_cast<int16_t>(count)));
  ThrowIfErr(sPath->SetPathSegments(path, 0, static_cast<int16_t>(count), segs.data()));
  sPath->SetPathClosed(path, 0);
  ThrowIfErr(ZF_SetStrokeLook(path, 0.0, 0.0, 0.0, 1.0));
  ZF_SetArtName(path, name);
  if (style) sArtStyle->SetArtStyle(path, style);
  pts.clear();
}

// Draws one grid line from node (i0, j0) to node (i1, j1) along `axis`.
void DrawLine(AIArtHandle mesh, AIMeshSelection sel, int32_t i0, int32_t j0, int32_t i1, int32_t j1,
              AIMeshAxis axis, AIArtHandle axisGroup, const char* name, AIArtStyleHandle style, int perNode,
              int perSegment) {
  AIArtHandle lineGroup = ZF_NewGroup(kPlaceInsideOnBottom, axisGroup, name);
  VertexRef a = GetNodeRef(mesh, i0, j0);
  VertexRef b = GetNodeRef(mesh, i1, j1);
  SegmentRef seg;
  ThrowIfErr(sMeshVertexIterator->GetSegment(a, sMeshVertexIterator->GetSegmentIndex(a, axis, kAIMeshForward),
                                             seg.put()));
  std::vector<AIRealPoint> pts;
  std::vector<AIRealPoint> segPts;
  bool inProgress = false;
  for (;;) {
    VertexRef start, end;
    ThrowIfErr(sMeshSegmentIterator->GetStart(seg, start.put()));
    ThrowIfErr(sMeshSegmentIterator->GetEnd(seg, end.put()));
    const bool last = sMeshVertexIterator->IsEqual(end, b);
    const bool drawable =
        sMeshSelection->ContainsVertex(sel, start) && sMeshSelection->ContainsVertex(sel, end);
    if (drawable) {
      const int32_t n = sMeshSegmentIterator->CountPoints(seg);
      segPts.resize(n);
      ThrowIfErr(sMeshSegmentIterator->GetPoints(seg, 0, n, segPts.data()));
      pts.insert(pts.end(), segPts.begin() + (pts.empty() ? 0 : 1), segPts.end());
    }
    if ((last && drawable) || (!drawable && inProgress) ||
        (perNode && drawable && sMeshVertexIterator->IsNode(end)) || (perSegment && drawable)) {
      // An undrawable segment ends the run gathered before it.
      EmitPath(pts, lineGroup, name, style);
      inProgress = false;
    } else {
      inProgress = drawable;
    }
    if (last) break;
    ThrowIfErr(sMeshSegmentIterator->NextOnAxis(seg));
    if (sMeshSegmentIterator->AtEnd(seg)) throw static_cast<int>(kIterAtEndErr);
  }
  if (!lineGroup) return;
  AIArtHandle child = nullptr, next = nullptr;
  sArt->GetArtFirstChild(lineGroup, &child);
  if (!child) {
    sArt->DisposeArt(lineGroup);
  } else if (sArt->GetArtSibling(child, &next) == kNoErr && !next) {
    // A line drawn as one path needs no group of its own.
    if (sArt->ReorderArt(child, kPlaceAbove, lineGroup) == kNoErr) sArt->DisposeArt(lineGroup);
  }
}

}  // namespace

int _MakeMeshGridThroughLines(AIArtHandle mesh, int perNode, int perSegment) {
  AIArtStyleHandle axisStyle = ZF_FindStyle("[LB][Axis]");
  AIArtStyleHandle styleI = ZF_FindStyleOr("[LB][Axis][I]", axisStyle);
  AIArtStyleHandle styleJ = ZF_FindStyleOr("[LB][Axis][J]", axisStyle);
  AIArtHandle top = ZF_NewGroup(kPlaceAbove, mesh, "MeshGrid");
  AIArtHandle groupI = top ? ZF_NewGroup(kPlaceInsideOnBottom, top, "I-axis") : nullptr;
  AIArtHandle groupJ = top ? ZF_NewGroup(kPlaceInsideOnBottom, top, "J-axis") : nullptr;
  try {
    SelectionRef sel = GetSelectionRef(mesh);
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    char name[24];
    // Lines along I (constant j) are named by j, lines along J by i.
    for (int32_t k = 0; k <= J; ++k) {
      MakeAxisName(1, k, name);
      DrawLine(mesh, sel, 0, k, I, k, kAIMeshIAxis, groupI, name, styleI, perNode, perSegment);
    }
    for (int32_t k = 0; k <= I; ++k) {
      MakeAxisName(0, k, name);
      DrawLine(mesh, sel, k, 0, k, J, kAIMeshJAxis, groupJ, name, styleJ, perNode, perSegment);
    }
  } catch (int) {
    return 1;
  }
  ZF_DeleteIfEmpty(&groupI);
  ZF_DeleteIfEmpty(&groupJ);
  ZF_DeleteIfEmpty(&top);
  return 0;
}

int MakeMeshGrid(int perNode, int perSegment) {
  SelectedMeshList meshes;
  for (AIArtHandle mesh : meshes) _MakeMeshGridThroughLines(mesh, perNode, perSegment);
  return 0;
}
