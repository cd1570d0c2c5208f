// "Make BMG (brush mesh grid)" (142) and "Convert BMG into mesh" (143): a
// mesh becomes a group of plain paths that carries its grid lines, node
// paint, grid size and bounds, and such a group becomes a mesh again.
#include <cstdint>
#include <vector>

#include "HandleGeometry.h"
#include "HostRefs.h"
#include "MeshSelection.h"
#include "Operations.h"
#include "color/ColorOpacity.h"
#include "construct/BrushGrid.h"

using lb::s::sArt;
using lb::s::sBlendStyle;
using lb::s::sMesh;
using lb::s::sMeshSegmentIterator;
using lb::s::sMeshVertexIterator;
using lb::s::sPath;
using lb::s::sPathStyle;

namespace {

// Raises sm_bUseAll for its lifetime, so every way out lowers it again.
struct UseAllScope {
  UseAllScope() { CColorOpacity::sm_bUseAll = 1; }
  ~UseAllScope() { CColorOpacity::sm_bUseAll = 0; }
};

AIArtHandle NewArtIn(int16_t type, int16_t order, AIArtHandle prep) {
  AIArtHandle art = nullptr;
  ThrowIfErr(sArt->NewArt(type, order, prep, &art));
  return art;
}

void SetPathSegs(AIArtHandle path, const std::vector<AIPathSegment>& segs, bool closed) {
  ThrowIfErr(sPath->SetPathSegmentCount(path, static_cast<int16_t>(segs.size())));
  ThrowIfErr(sPath->SetPathSegments(path, 0, static_cast<int16_t>(segs.size()), segs.data()));
  ThrowIfErr(sPath->SetPathClosed(path, closed ? 1 : 0));
}

// An open edge path from a point list of a chain of cubic pieces: anchor m
// is point 3m, its handles the points next to it (retracted at the ends).
void MakeEdge(AIArtHandle parent, const std::vector<AIRealPoint>& pts) {
  const int n = (static_cast<int>(pts.size()) + 2) / 3;
  std::vector<AIPathSegment> segs(static_cast<size_t>(n));
  for (int m = 0; m < n; ++m) {
    AIPathSegment& s = segs[static_cast<size_t>(m)];
    s.p = pts[static_cast<size_t>(3 * m)];
    s.in = m == 0 ? s.p : pts[static_cast<size_t>(3 * m - 1)];
    s.out = m == n - 1 ? s.p : pts[static_cast<size_t>(3 * m + 1)];
    s.corner = 1;
  }
  AIArtHandle path = NewArtIn(kPathArt, kPlaceInsideOnBottom, parent);
  SetPathSegs(path, segs, false);
  AIPathStyle style{};
  style.fillPaint = 0;
  style.strokePaint = 1;
  style.stroke.color.kind = kThreeColor;
  style.stroke.color.c.rgb = {0, 0, 0};
  style.stroke.width = 0.5;
  ThrowIfErr(sPathStyle->SetPathStyle(path, &style));
  ThrowIfErr(sArt->SetArtUserAttr(path, kArtSelected, kArtSelected));
}

// A closed tile path from the point list of a closed chain (n points, the
// last one's successor being point 0).
AIArtHandle MakeTile(AIArtHandle parent, const std::vector<AIRealPoint>& pts, const CColorOpacity& paint) {
  const int n = static_cast<int>(pts.size());
  std::vector<AIPathSegment> segs(static_cast<size_t>(n / 3));
  for (int k = 0; k < n / 3; ++k) {
    AIPathSegment& s = segs[static_cast<size_t>(k)];
    s.p = pts[static_cast<size_t>(3 * k)];
    s.in = pts[static_cast<size_t>(k == 0 ? n - 1 : 3 * k - 1)];
    s.out = pts[static_cast<size_t>(3 * k + 1)];
    s.corner = 1;
  }
  AIArtHandle path = NewArtIn(kPathArt, kPlaceInsideOnBottom, parent);
  SetPathSegs(path, segs, true);
  AIPathStyle style{};
  style.fillPaint = 1;
  style.fill.color = paint.m_Color;
  style.strokePaint = 0;
  ThrowIfErr(sPathStyle->SetPathStyle(path, &style));
  ThrowIfErr(sBlendStyle->SetOpacity(path, paint.m_dOpacity));
  ThrowIfErr(sArt->SetArtUserAttr(path, kArtSelected, kArtSelected));
  return path;
}

AIArtHandle Duplicate(AIArtHandle art, AIArtHandle parent) {
  AIArtHandle copy = nullptr;
  ThrowIfErr(sArt->DuplicateArt(art, kPlaceInsideOnBottom, parent, &copy));
  ThrowIfErr(sArt->SetArtUserAttr(copy, kArtSelected, kArtSelected));
  return copy;
}

// Appends the points of the side leaving node (i, j) of mesh in (axis,
// sense), all but its last.
void AppendSide(AIArtHandle mesh, int32_t i, int32_t j, int axis, AIMeshAxisSense sense,
                std::vector<AIRealPoint>& out) {
  VertexRef node = GetNodeRef(mesh, i, j);
  const int32_t idx = sMeshVertexIterator->GetSegmentIndex(node, axis, sense);
  SegmentRef s;
  ThrowIfErr(sMeshVertexIterator->GetSegment(node, idx, s.put()));
  const int32_t n = sMeshSegmentIterator->CountPoints(s);
  std::vector<AIRealPoint> pts(static_cast<size_t>(n));
  ThrowIfErr(sMeshSegmentIterator->GetPoints(s, 0, n, pts.data()));
  out.insert(out.end(), pts.begin(), pts.end() - 1);
}

// Turns every non-node vertex of the mesh into a knot of its line.
void JoinAllVertices(AIArtHandle mesh) {
  std::vector<VertexRef> inner;
  VertexRef cur;
  ThrowIfErr(sMesh->GetStartVertex(mesh, cur.put()));
  for (; !sMeshVertexIterator->AtEnd(cur); sMeshVertexIterator->Next(cur)) {
    if (sMeshVertexIterator->IsNode(cur)) continue;
    VertexRef v;
    ThrowIfErr(sMeshVertexIterator->Copy(cur, v.put()));
    inner.push_back(std::move(v));
  }
  for (const VertexRef& v : inner) {
    SegmentRef s;
    ThrowIfErr(sMeshVertexIterator->GetSegment(v, 0, s.put()));
    ThrowIfErr(sMeshSegmentIterator->Reverse(s));
    int32_t q = 0;
    ThrowIfErr(sMeshSegmentIterator->Join(s, &q));
  }
}

void NameArt(AIArtHandle art, const char* name) {
  if (!sAIUnicodeString) return;
  AIUnicodeStringRef str = nullptr;
  if (sAIUnicodeString->InitializeFromPlatform(&str, name) != kNoErr) return;
  const AIErr err = sArt->SetArtName(art, str);
  sAIUnicodeString->Destroy(str);
  ThrowIfErr(err);
}

AIArtHandle Child(AIArtHandle art, int index) {
  AIArtHandle c = nullptr;
  if (sArt->GetArtFirstChild(art, &c) != kNoErr) return nullptr;
  for (int k = 0; k < index && c; ++k)
    if (sArt->GetArtSibling(c, &c) != kNoErr) return nullptr;
  return c;
}

int16_t TypeOf(AIArtHandle art) {
  int16_t t = kUnknownArt;
  if (!art || sArt->GetArtType(art, &t) != kNoErr) return kUnknownArt;
  return t;
}

// The children of a group, or the art itself when it is a path.
std::vector<AIArtHandle> Members(AIArtHandle art) {
  std::vector<AIArtHandle> out;
  if (TypeOf(art) == kPathArt) return {art};
  for (AIArtHandle c = Child(art, 0); c;) {
    out.push_back(c);
    if (sArt->GetArtSibling(c, &c) != kNoErr) break;
  }
  return out;
}

bool AllPaths(const std::vector<AIArtHandle>& arts) {
  for (AIArtHandle a : arts)
    if (TypeOf(a) != kPathArt) return false;
  return true;
}

}  // namespace

int _MakeMeshGridForBrush(AIArtHandle mesh) {
  AIArtHandle dup = nullptr;
  int result = 0;
  try {
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    AIArtHandle group = NewArtIn(kGroupArt, kPlaceAbove, mesh);
    NameArt(group, "MeshGrid");
    AIArtHandle sub[4];
    for (AIArtHandle& g : sub) g = NewArtIn(kGroupArt, kPlaceInsideOnBottom, group);

    // Edges: one path per node-to-node stretch, in the host's segment order.
    {
      SegmentRef s;
      ThrowIfErr(sMesh->GetStartSegment(mesh, s.put()));
      std::vector<AIRealPoint> list;
      for (; !sMeshSegmentIterator->AtEnd(s); sMeshSegmentIterator->Next(s)) {
        const int32_t n = sMeshSegmentIterator->CountPoints(s);
        std::vector<AIRealPoint> pts(static_cast<size_t>(n));
        sMeshSegmentIterator->GetPoints(s, 0, n, pts.data());
        list.insert(list.end(), pts.begin() + (list.empty() ? 0 : 1), pts.end());
        VertexRef end;
        ThrowIfErr(sMeshSegmentIterator->GetEnd(s, end.put()));
        if (!sMeshVertexIterator->IsNode(end)) continue;
        MakeEdge(sub[2], list);
        list.clear();
      }
    }

    // Tiles: a duplicate with lines at the cell middles and without the
    // former interior lines has one cell per node of the mesh.
    ThrowIfErr(sArt->DuplicateArt(mesh, kPlaceAbove, mesh, &dup));
    int32_t line = 0;
    for (int32_t k = I - 1; k >= 0; --k)
      ThrowIfErr(sMesh->InsertU(dup, static_cast<double>(static_cast<float>(k) + 0.5f), &line));
    for (int32_t k = J - 1; k >= 0; --k)
      ThrowIfErr(sMesh->InsertV(dup, static_cast<double>(static_cast<float>(k) + 0.5f), &line));
    for (int32_t k = I - 1; k >= 1; --k) sMesh->DeleteGridLines(dup, 2.0 * k, 0.5);
    for (int32_t k = J - 1; k >= 1; --k) sMesh->DeleteGridLines(dup, 0.5, 2.0 * k);
    JoinAllVertices(dup);

    {
      UseAllScope useAll;
      for (int32_t j = 0; j <= J; ++j) {
        for (int32_t i = 0; i <= I; ++i) {
          CColorOpacity paint;
          {
            VertexRef node = GetNodeRef(mesh, i, j);
            paint.Read(node);
          }
          std::vector<AIRealPoint> pts;
          AppendSide(dup, i, j, kAIMeshIAxis, kAIMeshForward, pts);
          AppendSide(dup, i + 1, j, kAIMeshJAxis, kAIMeshForward, pts);
          AppendSide(dup, i + 1, j + 1, kAIMeshIAxis, kAIMeshBackward, pts);
          AppendSide(dup, i, j + 1, kAIMeshJAxis, kAIMeshBackward, pts);
          AIArtHandle tile = MakeTile(sub[3], pts, paint);
          if (i != 0 || j != 0) continue;
          // The grid size travels as the number of marker copies.
          AIArtHandle markI = Duplicate(tile, sub[0]);
          ThrowIfErr(sBlendStyle->SetOpacity(markI, 0.0));
          AIArtHandle markJ = Duplicate(markI, sub[1]);
          for (int32_t k = 1; k < I; ++k) markI = Duplicate(markI, sub[0]);
          for (int32_t k = 1; k < J; ++k) markJ = Duplicate(markJ, sub[1]);
        }
      }
    }

    sBlendStyle->SetOpacity(group, sBlendStyle->GetOpacity(mesh));
    sBlendStyle->SetBlendingMode(group, sBlendStyle->GetBlendingMode(mesh));
    sArt->DisposeArt(dup);
    dup = nullptr;
    sArt->SetArtUserAttr(mesh, kArtSelected, 0);

    AIRealRect b{};
    ThrowIfErr(sArt->GetArtBounds(mesh, &b));
    std::vector<AIPathSegment> rect(4);
    const AIRealPoint corners[4] = {{b.left, b.top}, {b.right, b.top}, {b.right, b.bottom}, {b.left, b.bottom}};
    for (int k = 0; k < 4; ++k) rect[static_cast<size_t>(k)] = {corners[k], corners[k], corners[k], 1};
    AIArtHandle bounds = NewArtIn(kPathArt, kPlaceInsideOnBottom, group);
    SetPathSegs(bounds, rect, true);
    AIPathStyle none{};
    ThrowIfErr(sPathStyle->SetPathStyle(bounds, &none));
    ThrowIfErr(sArt->SetArtUserAttr(bounds, kArtSelected, kArtSelected));
    // The group itself is selected too, so that it can be converted back
    // right away.
    sArt->SetArtUserAttr(group, kArtSelected, kArtSelected);
  } catch (int) {
    result = 1;
  }
  if (dup) sArt->DisposeArt(dup);
  return result;
}

int BmgCounts(AIArtHandle group, int* a, int* b) {
  if (TypeOf(group) != kGroupArt) return 1;
  const std::vector<AIArtHandle> kids = Members(group);
  if (kids.size() < 4 || kids.size() > 5) return 1;
  for (int k = 0; k < 2; ++k)
    if (TypeOf(kids[k]) != kGroupArt && TypeOf(kids[k]) != kPathArt) return 1;
  if (TypeOf(kids[2]) != kGroupArt || TypeOf(kids[3]) != kGroupArt) return 1;
  if (kids.size() == 5 && TypeOf(kids[4]) != kPathArt) return 1;
  const std::vector<AIArtHandle> m1 = Members(kids[0]), m2 = Members(kids[1]), edges = Members(kids[2]),
                                 tiles = Members(kids[3]);
  if (!AllPaths(m1) || !AllPaths(m2) || !AllPaths(edges) || !AllPaths(tiles)) return 1;
  const long ca = static_cast<long>(m1.size()), cb = static_cast<long>(m2.size());
  if (ca < 1 || cb < 1) return 1;
  if (static_cast<long>(edges.size()) != 2 * ca * cb + ca + cb) return 1;
  if (static_cast<long>(tiles.size()) != (ca + 1) * (cb + 1)) return 1;
  *a = static_cast<int>(ca);
  *b = static_cast<int>(cb);
  return 0;
}

int _MakeMeshFromBrushGrid(AIArtHandle group, int a, int b) {
  try {
    AIArtHandle mesh = NewArtIn(kMeshArt, kPlaceAbove, group);
    ThrowIfErr(sMesh->InitCartesian(mesh, a, b));
    const std::vector<AIArtHandle> edges = Members(Child(group, 2)), tiles = Members(Child(group, 3));

    // Each node-to-node segment of the fresh grid runs along its edge path.
    SegmentRef s;
    ThrowIfErr(sMesh->GetStartSegment(mesh, s.put()));
    for (size_t e = 0; e < edges.size() && !sMeshSegmentIterator->AtEnd(s); ++e, sMeshSegmentIterator->Next(s)) {
      int16_t count = 0;
      sPath->GetPathSegmentCount(edges[e], &count);
      if (count < 2) continue;
      std::vector<AIPathSegment> segs(static_cast<size_t>(count));
      sPath->GetPathSegments(edges[e], 0, count, segs.data());
      ZF_AIPathSegment_0h_to_0p33h(segs.data(), count, 0);
      sMeshSegmentIterator->InsertKnots(s, 0, count - 2);
      std::vector<AIRealPoint> pts;
      for (int k = 0; k < count; ++k) {
        if (k > 0) pts.push_back(segs[static_cast<size_t>(k)].in);
        pts.push_back(segs[static_cast<size_t>(k)].p);
        if (k + 1 < count) pts.push_back(segs[static_cast<size_t>(k)].out);
      }
      sMeshSegmentIterator->SetPoints(s, 0, static_cast<int32_t>(pts.size()), pts.data());
    }
    s.reset();

    {
      UseAllScope useAll;
      size_t t = 0;
      for (int32_t j = 0; j <= b; ++j) {
        for (int32_t i = 0; i <= a; ++i, ++t) {
          if (t >= tiles.size()) break;
          AIPathStyle style{};
          AIBoolean advanced = 0;
          sPathStyle->GetPathStyle(tiles[t], &style, &advanced);
          CColorOpacity paint;
          if (style.fillPaint) {
            paint.m_Color = style.fill.color;
          } else if (style.strokePaint) {
            paint.m_Color = style.stroke.color;
          } else {
            const double gray = static_cast<double>(0.8f);
            paint.m_Color.kind = kThreeColor;
            paint.m_Color.c.rgb = {gray, gray, gray};
          }
          paint.m_dOpacity = sBlendStyle->GetOpacity(tiles[t]);
          VertexRef node = GetNodeRef(mesh, i, j);
          paint.Write(node);
        }
      }
    }
    ZF_MeshNodes_CheckSmooth(mesh);
    sBlendStyle->SetOpacity(mesh, sBlendStyle->GetOpacity(group));
    sBlendStyle->SetBlendingMode(mesh, sBlendStyle->GetBlendingMode(group));
    sArt->SetArtUserAttr(mesh, kArtSelected, kArtSelected);
    sArt->SetArtUserAttr(group, kArtSelected, 0);
    return 0;
  } catch (int) {
    return 1;
  }
}

int MakeMeshGridForBrush(long alt) {
  SelectedMeshList meshes;
  for (AIArtHandle mesh : meshes)
    if (_MakeMeshGridForBrush(mesh) == 0 && !alt) sArt->DisposeArt(mesh);
  return 0;
}

int MakeMeshFromBrushGrid(long alt) {
  AIMatchingArtSpec wanted{kGroupArt, kArtSelected, kArtSelected};
  AIArtHandle** matches = nullptr;
  int32_t count = 0;
  if (lb::s::sAIMatchingArt->GetMatchingArt(&wanted, 1, &matches, &count) != kNoErr || !matches) {
    if (matches) lb::s::sMdMemory->MdMemoryDisposeHandle(reinterpret_cast<AIMdMemoryHandle>(matches));
    return 0;
  }
  const std::vector<AIArtHandle> groups(*matches, *matches + count);
  lb::s::sMdMemory->MdMemoryDisposeHandle(reinterpret_cast<AIMdMemoryHandle>(matches));
  for (AIArtHandle group : groups) {
    // A converted group takes its sub-groups with it when it is deleted.
    AIBoolean valid = 0;
    if (sArt->ValidArt(group, &valid) != kNoErr || !valid) continue;
    int a = 0, b = 0;
    if (BmgCounts(group, &a, &b) != 0) continue;
    _MakeMeshFromBrushGrid(group, a, b);
    if (!alt) sArt->DisposeArt(group);
  }
  return 0;
}
