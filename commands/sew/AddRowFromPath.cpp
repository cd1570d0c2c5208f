// "Sew mesh with path": a new row of cells between a mesh's nearest side
// and a path (or, with paths alone, two paths sewn into a one-cell mesh),
// and the zero-width border rows added at or removed from selected sides.
#include <utility>
#include <vector>

#include "HostRefs.h"
#include "MeshPartCopy.h"
#include "MeshSelection.h"
#include "Operations.h"
#include "ZeroRow.h"
#include "align/Align.h"
#include "color/ColorOpacity.h"
#include "construct/Construct.h"
#include "sew/Sew.h"

using lb::s::sArt;
using lb::s::sMath;
using lb::s::sMesh;
using lb::s::sMeshSegmentIterator;
using lb::s::sMeshVertexIterator;
using lb::s::sPath;

namespace {

// Light gray of an unpainted path, or of any path when colours are off.
constexpr double kPathGray = 0.800000011920929;

// Sets one paint switch for the duration of a scope.
struct SwitchScope {
  int& sw;
  int saved;
  explicit SwitchScope(int& s) : sw(s), saved(s) { sw = 1; }
  ~SwitchScope() { sw = saved; }
};

// The line a side lies on, and the direction from it into the mesh.
struct SideLine {
  bool alongI;         // the side's nodes are (k, line) (else (line, k))
  int32_t line;        // its j (alongI) or i
  int32_t last;        // the highest k
  AIMeshAxis across;   // the axis across the side
  AIMeshAxisSense in;  // the sense that leads inward
};

SideLine LineOfSide(AIArtHandle mesh, int side) {
  int32_t I = 0, J = 0;
  ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
  switch (side) {
    case 0: return {true, 0, I, kAIMeshJAxis, kAIMeshForward};
    case 1: return {false, I, J, kAIMeshIAxis, kAIMeshBackward};
    case 2: return {true, J, I, kAIMeshJAxis, kAIMeshBackward};
    default: return {false, 0, J, kAIMeshIAxis, kAIMeshForward};
  }
}

VertexRef NodeOn(AIArtHandle mesh, bool alongI, int32_t line, int32_t k) {
  return alongI ? GetNodeRef(mesh, k, line) : GetNodeRef(mesh, line, k);
}

// Joins the run leaving the node in (axis, sense) up to the next node and
// deletes all its knots: one plain segment.
void Simplify(AIMeshVertexIterator node, AIMeshAxis axis, AIMeshAxisSense sense) {
  const int32_t k = sMeshVertexIterator->GetSegmentIndex(node, axis, sense);
  if (k < 0) return;
  SegmentRef seg;
  ThrowIfErr(sMeshVertexIterator->GetSegment(node, k, seg.put()));
  for (;;) {
    VertexRef end;
    ThrowIfErr(sMeshSegmentIterator->GetEnd(seg, end.put()));
    if (sMeshVertexIterator->IsNode(end)) break;
    int32_t knot = 0;
    ThrowIfErr(sMeshSegmentIterator->Join(seg, &knot));
  }
  const int32_t knots = sMeshSegmentIterator->CountKnots(seg);
  if (knots > 0) ThrowIfErr(sMeshSegmentIterator->DeleteKnots(seg, 0, knots));
}

void SimplifyLine(AIArtHandle mesh, bool alongI, int32_t line, int32_t last) {
  for (int32_t k = 0; k < last; ++k) {
    VertexRef v = NodeOn(mesh, alongI, line, k);
    Simplify(v, alongI ? kAIMeshIAxis : kAIMeshJAxis, kAIMeshForward);
  }
}

// Gives the mesh one more cell across the side: plain runs across the
// side's row and along the side, then a grid line through the middle of
// that row, itself made of plain segments.
void PrepareSide(AIArtHandle mesh, int side) {
  const SideLine sl = LineOfSide(mesh, side);
  for (int32_t k = 0; k <= sl.last; ++k) {
    VertexRef v = NodeOn(mesh, sl.alongI, sl.line, k);
    Simplify(v, sl.across, sl.in);
  }
  SimplifyLine(mesh, sl.alongI, sl.line, sl.last);
  int32_t I = 0, J = 0, at = 0;
  ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
  switch (side) {
    case 0: ThrowIfErr(sMesh->InsertV(mesh, 0.5, &at)); break;
    case 1: ThrowIfErr(sMesh->InsertU(mesh, I - 0.5, &at)); break;
    case 2: ThrowIfErr(sMesh->InsertV(mesh, J - 0.5, &at)); break;
    default: ThrowIfErr(sMesh->InsertU(mesh, 0.5, &at)); break;
  }
  SimplifyLine(mesh, sl.alongI, at, sl.last);
}

}  // namespace

int RestoreMeshWithNewRow(AIArtHandle mesh, AIArtHandle src, int side, int retract) {
  int32_t I = 0, J = 0, nI = 0, nJ = 0;
  ThrowIfErr(sMesh->GetSize(src, &I, &J));
  ThrowIfErr(sMesh->GetSize(mesh, &nI, &nJ));
  const bool acrossJ = side == 0 || side == 2;
  if (nI != I + (acrossJ ? 0 : 1) || nJ != J + (acrossJ ? 1 : 0)) throw static_cast<int>(kBadParameterErr);
  ZS_RestoreMeshData from{0, 0, 0, 1, 0, 0, I, J};
  ZS_RestoreMeshData to{side == 3 ? 1 : 0, side == 0 ? 1 : 0, 0, 1, 0, 0, I, J};
  {
    SwitchScope all(CColorOpacity::sm_bUseAll);
    if (RestoreMeshPart(src, mesh, &from, &to) != 0) throw static_cast<int>(kCantHappenErr);
  }
  if (retract) {
    // The border line and the line next to it: their handles across the row.
    const SideLine sl = LineOfSide(mesh, side);
    const int32_t next = sl.in == kAIMeshForward ? sl.line + 1 : sl.line - 1;
    const AIMeshAxisSense out = sl.in == kAIMeshForward ? kAIMeshBackward : kAIMeshForward;
    for (int32_t k = 0; k <= sl.last; ++k)
      for (auto [line, sense] : {std::pair{sl.line, sl.in}, std::pair{next, out}}) {
        VertexRef v = NodeOn(mesh, sl.alongI, line, k);
        const int32_t index = sMeshVertexIterator->GetSegmentIndex(v, sl.across, sense);
        if (index < 0) continue;
        AIRealPoint p{};
        ThrowIfErr(sMeshVertexIterator->GetPoint(v, &p));
        sMeshVertexIterator->SetTangent(v, index, &p);
      }
  }
  return 0;
}

void ColorizeSideFromPath(AIArtHandle mesh, AIArtHandle path, int side) {
  CColorOpacity paint;
  if (CColorOpacity::sm_bUseColor) {
    paint.m_Color = PathPaintColor(path);
  } else {
    paint.m_Color.kind = kThreeColor;
    paint.m_Color.c.rgb = {kPathGray, kPathGray, kPathGray};
  }
  paint.m_dOpacity = lb::s::sBlendStyle->GetOpacity(path);
  SwitchScope color(CColorOpacity::sm_bUseColor);
  const SideLine sl = LineOfSide(mesh, side);
  for (int32_t k = 0; k <= sl.last; ++k) {
    VertexRef v = NodeOn(mesh, sl.alongI, sl.line, k);
    paint.Write(v);
  }
}

namespace {

// Picks the corners and the side, grows the mesh and lays the new border
// onto the path. Host errors are thrown.
void SewMeshWithPath(AIArtHandle mesh, AIArtHandle path, long reverse, int changeSide) {
  int16_t count = 0;
  ThrowIfErr(sPath->GetPathSegmentCount(path, &count));
  if (count < 2) return;
  AIPathSegment ends[2];
  ThrowIfErr(sPath->GetPathSegments(path, 0, 1, &ends[0]));
  ThrowIfErr(sPath->GetPathSegments(path, static_cast<int16_t>(count - 1), 1, &ends[1]));
  bool picked[2];
  for (int e = 0; e < 2; ++e) {
    int16_t state = kSegmentNotSelected;
    sPath->GetPathSegmentSelected(path, static_cast<int16_t>(e ? count - 1 : 0), &state);
    picked[e] = state == kSegmentPointSelected;
  }

  int32_t I = 0, J = 0;
  ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
  double D[4][2];
  for (int k = 0; k < 4; ++k) {
    VertexRef v = GetNodeRef(mesh, (k == 1 || k == 2) ? I : 0, (k >= 2) ? J : 0);
    AIRealPoint p{};
    ThrowIfErr(sMeshVertexIterator->GetPoint(v, &p));
    for (int e = 0; e < 2; ++e) D[k][e] = sMath->AIRealPointLength(&p, &ends[e].p);
  }
  int S[4], C[4];
  CandidateFlags(mesh, S, C);

  int c1 = -1, e1 = 0;
  for (int k = 0; k < 4; ++k) {
    if (!C[k]) continue;
    for (int e = 0; e < 2; ++e) {
      if (picked[0] != picked[1] && !picked[e]) continue;  // only the selected end counts
      if (c1 < 0 || D[k][e] < D[c1][e1]) c1 = k, e1 = e;
    }
  }
  if (c1 < 0) return;
  const int e2 = 1 - e1;
  const int prev = (c1 + 3) % 4, next = (c1 + 1) % 4;
  int c2;
  if (S[prev] != S[c1])
    c2 = S[prev] ? prev : next;
  else if (C[prev] != C[next])
    c2 = C[prev] ? prev : next;
  else
    c2 = D[next][e2] < D[prev][e2] ? next : prev;
  const int side = c2 == next ? c1 : prev;

  AIArtHandle dup = nullptr;
  ThrowIfErr(sArt->DuplicateArt(mesh, kPlaceAbove, mesh, &dup));
  PrepareSide(dup, side);
  RestoreMeshWithNewRow(dup, mesh, side, 0);
  ColorizeSideFromPath(dup, path, side);
  if (lb::align::_NodesSpreadAlongPathForAddRowFromPath(dup, path, reverse, c1, c2, e1, e2) != 0) return;
  if (changeSide) lb::align::Turn180();
  sArt->DisposeArt(mesh);
  sArt->DisposeArt(path);
  sArt->SetArtUserAttr(dup, kArtSelected, 0);
  sArt->SetArtUserAttr(dup, kArtSelected, kArtSelected);
}

// A new zero-width row at the side, on a duplicate that replaces the mesh.
AIArtHandle AddRowAt(AIArtHandle mesh, int side) {
  AIArtHandle dup = nullptr;
  ThrowIfErr(sArt->DuplicateArt(mesh, kPlaceAbove, mesh, &dup));
  PrepareSide(dup, side);
  RestoreMeshWithNewRow(dup, mesh, side, 1);
  sArt->DisposeArt(mesh);
  sArt->SetArtUserAttr(dup, kArtSelected, 0);
  sArt->SetArtUserAttr(dup, kArtSelected, kArtSelected);
  return dup;
}

// The side line takes the paint of the line next to it inward.
void RepaintFromInside(AIArtHandle mesh, int side) {
  const SideLine sl = LineOfSide(mesh, side);
  const int32_t inner = sl.in == kAIMeshForward ? sl.line + 1 : sl.line - 1;
  SwitchScope all(CColorOpacity::sm_bUseAll);
  for (int32_t k = 0; k <= sl.last; ++k) {
    VertexRef from = NodeOn(mesh, sl.alongI, inner, k), to = NodeOn(mesh, sl.alongI, sl.line, k);
    CColorOpacity paint;
    paint.Read(from);
    paint.Write(to);
  }
}

}  // namespace

int AddZeroRow() {
  return ForEachMesh([](AIArtHandle mesh) {
    try {
      int sides[4] = {0, 0, 0, 0};
      if (ZF_GetSelSidesAndNodes(mesh, sides, nullptr) != 0) return;
      for (int side = 0; side < 4; ++side) {
        if (!sides[side]) continue;
        if (IsSideHas0Row(mesh, side))
          RepaintFromInside(mesh, side);
        else
          mesh = AddRowAt(mesh, side);
      }
    } catch (int) {
    }
  });
}

int DelZeroRow(int oneRow) {
  int result = 0;
  ForEachMesh([&](AIArtHandle mesh) {
    try {
      int sides[4] = {0, 0, 0, 0};
      if (ZF_GetSelSidesAndNodes(mesh, sides, nullptr) != 0) return;
      int32_t I = 0, J = 0;
      ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
      int32_t i0 = 0, i1 = I, j0 = 0, j1 = J;
      bool taken = false;
      for (int side = 0; side < 4; ++side) {
        if (!sides[side] || (!oneRow && !IsSideHas0Row(mesh, side))) continue;
        taken = true;
        switch (side) {
          case 0: j0 = 1; break;
          case 1: i1 = I - 1; break;
          case 2: j1 = J - 1; break;
          default: i0 = 1; break;
        }
      }
      if (!taken || i0 >= i1 || j0 >= j1) return;
      AIArtHandle part = nullptr;
      result = MakeMeshPart(mesh, &part, i0, i1, j0, j1);
      if (result == 0) {
        sArt->SetArtUserAttr(mesh, kArtSelected, 0);
        sArt->DisposeArt(mesh);
      }
    } catch (int) {
    }
  });
  return result;
}

int AddRowFromPath(long reverse, int changeSide) {
  SelectedArt paths(kPathArt);
  if (paths.size() < 1) return 0;
  SelectedArt meshes(kMeshArt);
  if (meshes.size() == 0) {
    if (paths.size() >= 2) Sew2Pathes(reverse);
    return 0;
  }
  if (meshes.size() == 1) {
    try {
      SewMeshWithPath(meshes[0], paths[0], reverse, changeSide);
    } catch (int) {
    }
  }
  return 0;
}
