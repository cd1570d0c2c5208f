// "Move corner node" (133): a corner node slides along the mesh's outline
// to a selected non-node vertex of one of its two sides; the outline keeps
// every point, the old corner place becomes a vertex.
#include <cstdint>
#include <vector>

#include "HostRefs.h"
#include "MeshSelection.h"
#include "Operations.h"

using lb::s::sMesh;
using lb::s::sMeshSegmentIterator;
using lb::s::sMeshSelection;
using lb::s::sMeshVertexIterator;

namespace {

// Segment number through which a boundary line continues at a non-node
// vertex, by corner: walking the first side away from the corner, walking
// it towards the corner, and walking the second side away from the corner.
constexpr int kAwayFirst[4] = {1, 0, 0, 0};
constexpr int kTowardsFirst[4] = {0, 1, 1, 1};
constexpr int kAwaySecond[4] = {1, 1, 0, 1};

enum OutlineKind : int32_t { kNodeKind = 0, kVertexKind = 1, kKnotKind = 2 };

struct OutlinePoint {
  AIRealPoint anchor{}, in{}, out{};
};

SegmentRef SegmentOf(AIMeshVertexIterator v, int index) {
  SegmentRef s;
  ThrowIfErr(sMeshVertexIterator->GetSegment(v, index, s.put()));
  return s;
}

VertexRef EndOf(AIMeshSegmentIterator s) {
  VertexRef v;
  ThrowIfErr(sMeshSegmentIterator->GetEnd(s, v.put()));
  return v;
}

std::vector<AIRealPoint> PointsOf(AIMeshSegmentIterator s) {
  const int32_t n = sMeshSegmentIterator->CountPoints(s);
  std::vector<AIRealPoint> pts(static_cast<size_t>(n));
  ThrowIfErr(sMeshSegmentIterator->GetPoints(s, 0, n, pts.data()));
  return pts;
}

// Joins the side leaving the corner through its segment number index into
// one segment without knots, up to the next node.
void MergeSide(AIMeshVertexIterator corner, int index) {
  SegmentRef s = SegmentOf(corner, index);
  while (!sMeshVertexIterator->IsNode(EndOf(s))) {
    int32_t q = 0;
    ThrowIfErr(sMeshSegmentIterator->Join(s, &q));
  }
  sMeshSegmentIterator->DeleteKnots(s, 0, sMeshSegmentIterator->CountKnots(s));
}

// Writes records first..last onto segment s: point 1 from the first's out
// handle, then in handle, anchor and (but for the last) out handle of each.
void WriteSegment(AIMeshSegmentIterator s, const std::vector<OutlinePoint>& rec, int first, int last) {
  std::vector<AIRealPoint> pts;
  pts.push_back(rec[static_cast<size_t>(first)].out);
  for (int r = first + 1; r <= last; ++r) {
    pts.push_back(rec[static_cast<size_t>(r)].in);
    pts.push_back(rec[static_cast<size_t>(r)].anchor);
    if (r < last) pts.push_back(rec[static_cast<size_t>(r)].out);
  }
  sMeshSegmentIterator->SetPoints(s, 1, static_cast<int32_t>(pts.size()), pts.data());
}

}  // namespace

int MeshSwapCornerNodeAndVertex() {
  SelectedMeshList meshes;
  if (meshes.size() != 1) return 1;
  AIArtHandle mesh = meshes[0];
  try {
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    VertexRef B, C;
    {
      SelectionRef sel = GetSelectionRef(mesh);
      int count = 0;
      VertexRef cur;
      ThrowIfErr(sMesh->GetStartVertex(mesh, cur.put()));
      for (; !sMeshVertexIterator->AtEnd(cur); sMeshVertexIterator->Next(cur)) {
        if (!sMeshSelection->ContainsVertex(sel, cur)) continue;
        if (++count > 2) return 1;
        VertexRef& slot = sMeshVertexIterator->IsNode(cur) ? B : C;
        if (slot) return 1;
        if (&slot == &B && sMeshVertexIterator->CountSegments(cur) != 2) return 1;
        ThrowIfErr(sMeshVertexIterator->Copy(cur, slot.put()));
      }
      if (!B || !C) return 1;
    }

    int k = 0;
    if (sMeshVertexIterator->IsEqual(B, GetNodeRef(mesh, I, 0)))
      k = 1;
    else if (sMeshVertexIterator->IsEqual(B, GetNodeRef(mesh, I, J)))
      k = 2;
    else if (sMeshVertexIterator->IsEqual(B, GetNodeRef(mesh, 0, J)))
      k = 3;

    // Count the outline points between the two end nodes and look for C.
    int n = 1;
    bool found = false;
    for (int side = 0; side < 2; ++side) {
      SegmentRef s = SegmentOf(B, side);
      for (;;) {
        n += sMeshSegmentIterator->CountKnots(s) + 1;
        VertexRef end = EndOf(s);
        if (sMeshVertexIterator->IsNode(end)) break;
        if (sMeshVertexIterator->IsEqual(end, C)) found = true;
        s = SegmentOf(end, side == 0 ? kAwayFirst[k] : kAwaySecond[k]);
      }
    }
    if (!found) return 1;

    // Record the outline from the first side's end node through B to the
    // second side's end node.
    std::vector<OutlinePoint> rec;
    std::vector<int32_t> kind;
    rec.reserve(static_cast<size_t>(n));
    {
      SegmentRef s = SegmentOf(B, 0);
      for (;;) {
        VertexRef end = EndOf(s);
        if (sMeshVertexIterator->IsNode(end)) break;
        s = SegmentOf(end, kAwayFirst[k]);
      }
      ThrowIfErr(sMeshSegmentIterator->Reverse(s));
      rec.push_back({PointsOf(s)[0], {}, {}});
      kind.push_back(kNodeKind);
      bool second = false;
      for (;;) {
        const std::vector<AIRealPoint> pts = PointsOf(s);
        const int nk = sMeshSegmentIterator->CountKnots(s);
        rec.back().out = pts[1];
        for (int j = 1; j <= nk; ++j) {
          rec.push_back({pts[static_cast<size_t>(3 * j)], pts[static_cast<size_t>(3 * j - 1)],
                         pts[static_cast<size_t>(3 * j + 1)]});
          kind.push_back(kKnotKind);
        }
        rec.push_back({pts[static_cast<size_t>(3 * nk + 3)], pts[static_cast<size_t>(3 * nk + 2)], {}});
        VertexRef end = EndOf(s);
        kind.push_back(sMeshVertexIterator->IsEqual(end, C) ? kNodeKind : kVertexKind);
        if (!sMeshVertexIterator->IsNode(end)) {
          s = SegmentOf(end, second ? kAwaySecond[k] : kTowardsFirst[k]);
        } else if (sMeshVertexIterator->IsEqual(end, B)) {
          kind.back() = kVertexKind;
          s = SegmentOf(B, 1);
          second = true;
        } else {
          kind.back() = kNodeKind;
          break;
        }
        if (static_cast<int>(rec.size()) > n) throw static_cast<int>(kCantHappenErr);
      }
    }
    n = static_cast<int>(rec.size());

    MergeSide(B, 0);
    MergeSide(B, 1);

    // Split the count at C: a points before it, b after it.
    int cAt = -1, a = 0, b = 0;
    for (int r = 1; r < n - 1; ++r) {
      if (kind[static_cast<size_t>(r)] == kNodeKind)
        cAt = r;
      else
        (cAt < 0 ? a : b) += 1;
    }
    if (cAt < 0) throw static_cast<int>(kCantHappenErr);
    {
      SegmentRef s0 = SegmentOf(B, 0), s1 = SegmentOf(B, 1);
      sMeshSegmentIterator->InsertKnots(s0, 0, a);
      sMeshSegmentIterator->InsertKnots(s1, 0, b);
    }
    {
      SegmentRef s0 = SegmentOf(B, 0);
      ThrowIfErr(sMeshSegmentIterator->Reverse(s0));
      WriteSegment(s0, rec, 0, cAt);
      SegmentRef s1 = SegmentOf(B, 1);
      WriteSegment(s1, rec, cAt, n - 1);
    }

    // The former vertices (and the old corner place) become vertices again.
    {
      SegmentRef s = SegmentOf(B, 0);
      ThrowIfErr(sMeshSegmentIterator->Reverse(s));
      int last = 0;
      bool second = false;
      for (int r = 1; r < n - 1; ++r) {
        const int32_t kd = kind[static_cast<size_t>(r)];
        if (kd == kVertexKind) {
          ThrowIfErr(sMeshSegmentIterator->Split(s, r - last - 1));
          VertexRef v = EndOf(s);
          s = SegmentOf(v, second ? kAwaySecond[k] : kTowardsFirst[k]);
          last = r;
        } else if (kd == kNodeKind) {
          s = SegmentOf(B, 1);
          second = true;
          last = r;
        }
      }
    }

    B.reset();
    C.reset();
    SelectionRef sel = GetSelectionRef(mesh);
    const int32_t ci[4] = {0, I, I, 0}, cj[4] = {0, 0, J, J};
    sMeshSelection->SelectVertex(sel, GetNodeRef(mesh, ci[k], cj[k]), 1);
    return 0;
  } catch (int) {
    return 1;
  }
}
