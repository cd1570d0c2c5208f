// Orientation marks of the selected meshes: a red I axis and a blue J axis
// from node (0, 0) ("Coords"), and squares on the four corner nodes
// ("Corner Nodes").
#include <vector>

#include "ArtBuild.h"
#include "HandleGeometry.h"
#include "MeshSelection.h"
#include "Operations.h"

using lb::s::sArt;
using lb::s::sMesh;
using lb::s::sMeshSegmentIterator;
using lb::s::sMeshVertexIterator;
using lb::s::sPath;

namespace {

// Draws the axis path along `axis` from node (0, 0) over half the cells of
// that direction (the larger half for an odd count), ending on a node.
void DrawAxis(AIMeshVertexIterator origin, int32_t cells, AIMeshAxis axis, AIArtHandle coords) {
  const int32_t length = cells % 2 + cells / 2;
  SegmentRef seg;
  ThrowIfErr(sMeshVertexIterator->GetSegment(
      origin, sMeshVertexIterator->GetSegmentIndex(origin, axis, kAIMeshForward), seg.put()));
  std::vector<AIRealPoint> pts, segPts;
  int32_t nodes = 0;
  while (nodes < length) {
    if (sMeshSegmentIterator->AtEnd(seg)) throw static_cast<int>(kIterAtEndErr);
    const int32_t n = sMeshSegmentIterator->CountPoints(seg);
    segPts.resize(n);
    ThrowIfErr(sMeshSegmentIterator->GetPoints(seg, 0, n, segPts.data()));
    pts.insert(pts.end(), segPts.begin() + (pts.empty() ? 0 : 1), segPts.end());
    VertexRef end;
    ThrowIfErr(sMeshSegmentIterator->GetEnd(seg, end.put()));
    if (sMeshVertexIterator->IsNode(end)) ++nodes;
    if (nodes < length) ThrowIfErr(sMeshSegmentIterator->NextOnAxis(seg));
  }
  const int count = (static_cast<int>(pts.size()) + 2) / 3;
  std::vector<AIPathSegment> segs(count);
  ZF_PointsToSegments(pts.data(), static_cast<int>(pts.size()), segs.data());
  AIArtHandle path = nullptr;
  ThrowIfErr(sArt->NewArt(kPathArt, kPlaceInsideOnBottom, coords, &path));
  ZF_SetPixelPerfect(&path, 0);
  ThrowIfErr(sPath->SetPathSegmentCount(path, static_cast<int16_t>(count)));
  ThrowIfErr(sPath->SetPathSegments(path, 0, static_cast<int16_t>(count), segs.data()));
  sPath->SetPathClosed(path, 0);
  const bool isI = axis == kAIMeshIAxis;
  ThrowIfErr(ZF_SetStrokeLook(path, isI ? 1.0 : 0.0, 0.0, isI ? 0.0 : 1.0, 3.0));
  ZF_SetArtName(path, isI ? "I-axis" : "J-axis");
}

}  // namespace

int _MakeMeshCornerNodesAndCoords(AIArtHandle mesh, long mode) {
  try {
    VertexRef origin = GetNodeRef(mesh, 0, 0);
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    if ((mode & ~2L) == 0) {
      AIArtHandle coords = ZF_NewGroup(kPlaceAbove, mesh, "Coords");
      DrawAxis(origin, I, kAIMeshIAxis, coords);
      DrawAxis(origin, J, kAIMeshJAxis, coords);
    }
    if (mode < 2) {
      AIArtHandle corners = ZF_NewGroup(kPlaceAbove, mesh, "Corner Nodes");
      const int32_t at[4][2] = {{0, 0}, {I, 0}, {0, J}, {I, J}};
      for (const auto& c : at) {
        VertexRef node = GetNodeRef(mesh, c[0], c[1]);
        AIRealPoint p{};
        ThrowIfErr(sMeshVertexIterator->GetPoint(node, &p));
        char name[24];
        MakeNodeName(c[0], c[1], name);
        MakeSquare(&p, 4.0, corners, name, 0.0, 0.0, 0.0, 1.0);
      }
    }
    return 0;
  } catch (int) {
    return 1;
  }
}

int MakeMeshCornerNodesAndCoords(long mode) {
  SelectedMeshList meshes;
  for (AIArtHandle mesh : meshes) _MakeMeshCornerNodesAndCoords(mesh, mode);
  return 0;
}
