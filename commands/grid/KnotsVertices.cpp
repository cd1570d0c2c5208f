// "Knots to vertices" (134) and "Vertices to knots" (135): split segments
// at their knots, delete knots, join segments at non-node vertices and
// delete vertices, plainly or with the handles of the stretch's outer ends.
#include <cstdint>
#include <vector>

#include "HostRefs.h"
#include "MeshSelection.h"
#include "Operations.h"
#include "grid/KnotsVertices.h"

using lb::s::sMesh;
using lb::s::sMeshSegmentIterator;
using lb::s::sMeshSelection;
using lb::s::sMeshVertexIterator;

namespace {

VertexRef StartOf(AIMeshSegmentIterator s) {
  VertexRef v;
  ThrowIfErr(sMeshSegmentIterator->GetStart(s, v.put()));
  return v;
}

VertexRef EndOf(AIMeshSegmentIterator s) {
  VertexRef v;
  ThrowIfErr(sMeshSegmentIterator->GetEnd(s, v.put()));
  return v;
}

bool EndIsNode(AIMeshSegmentIterator s) { return sMeshVertexIterator->IsNode(EndOf(s)); }

// Both end vertices of the segment are in the selection.
bool BothEndsSelected(AIMeshSelection sel, AIMeshSegmentIterator s) {
  return sMeshSelection->ContainsVertex(sel, StartOf(s)) && sMeshSelection->ContainsVertex(sel, EndOf(s));
}

// The segment leaving the vertex forward along axis, or an empty holder.
SegmentRef Leaving(AIMeshVertexIterator v, int axis) {
  SegmentRef s;
  const int32_t idx = sMeshVertexIterator->GetSegmentIndex(v, axis, kAIMeshForward);
  if (idx >= 0) ThrowIfErr(sMeshVertexIterator->GetSegment(v, idx, s.put()));
  return s;
}

// Calls visit(vertex) for every vertex of the mesh in walk order. The
// iterator steps on before visit runs, so visit may join the vertex away.
template <class Visit>
void ForEachVertex(AIArtHandle mesh, Visit&& visit) {
  VertexRef cur;
  ThrowIfErr(sMesh->GetStartVertex(mesh, cur.put()));
  while (!sMeshVertexIterator->AtEnd(cur)) {
    VertexRef here;
    ThrowIfErr(sMeshVertexIterator->Copy(cur, here.put()));
    sMeshVertexIterator->Next(cur);
    visit(here.get());
  }
}

struct NodeLines {
  bool selected = false;
  // Per axis: selection of the intermediate vertices up to the next node.
  std::vector<char> inner[2];
  bool any[2] = {false, false};
};

// Kind of a point on the stretch between two nodes.
enum PointKind : char { kNodePt = 0, kVertexPt = 1, kKnotPt = 2 };
struct LinePoint {
  char kind;
  char selected;
};
struct NodePoints {
  bool selected = false;
  std::vector<LinePoint> list[2];
  int32_t any[2] = {0, 0};
};

bool IsSelVertex(const LinePoint& p) { return p.kind == kVertexPt && p.selected; }

void ReselectNodes(AIArtHandle mesh, int32_t I, int32_t J, const std::vector<bool>& selected) {
  SelectionRef sel = GetSelectionRef(mesh);
  for (int32_t i = 0; i <= I; ++i)
    for (int32_t j = 0; j <= J; ++j)
      if (selected[static_cast<size_t>(i) * (J + 1) + j])
        sMeshSelection->SelectVertex(sel, GetNodeRef(mesh, i, j), 1);
}

}  // namespace

int __SegControlsToPoints(AIMeshSegmentIterator s) {
  const auto* ss = sMeshSegmentIterator;
  const int32_t n = ss->CountKnots(s);
  AIRealPoint h1{}, h2{};
  ss->GetPoints(s, 1, 1, &h1);
  ss->Reverse(s);
  ss->GetPoints(s, 1, 1, &h2);
  ss->Reverse(s);
  ss->DeleteKnots(s, 0, n);
  ss->SetPoints(s, 1, 1, &h1);
  ss->SetPoints(s, 2, 1, &h2);
  return 0;
}

int _KnotsSplit(AIArtHandle mesh) {
  try {
    SelectionRef sel = GetSelectionRef(mesh);
    const bool whole = sMeshSelection->IsFull(sel);
    SegmentRef s;
    ThrowIfErr(sMesh->GetStartSegment(mesh, s.put()));
    // A split vertex is selected when both ends of its segment were, so
    // the remaining piece qualifies in turn and loses its next knot.
    for (; !sMeshSegmentIterator->AtEnd(s); sMeshSegmentIterator->Next(s)) {
      if (!whole && !BothEndsSelected(sel, s)) continue;
      if (sMeshSegmentIterator->CountKnots(s) > 0) sMeshSegmentIterator->Split(s, 0);
    }
    return 0;
  } catch (int) {
    return 1;
  }
}

int _KnotsDel(AIArtHandle mesh, int correct) {
  try {
    std::vector<char> vertexSel, segMarked;
    bool whole;
    {
      SelectionRef sel = GetSelectionRef(mesh);
      whole = sMeshSelection->IsFull(sel);
      if (!whole) {
        ForEachVertex(mesh, [&](AIMeshVertexIterator v) {
          vertexSel.push_back(sMeshSelection->ContainsVertex(sel, v) ? 1 : 0);
        });
        SegmentRef s;
        ThrowIfErr(sMesh->GetStartSegment(mesh, s.put()));
        for (; !sMeshSegmentIterator->AtEnd(s); sMeshSegmentIterator->Next(s))
          segMarked.push_back(BothEndsSelected(sel, s) ? 1 : 0);
      }
    }
    SegmentRef s;
    ThrowIfErr(sMesh->GetStartSegment(mesh, s.put()));
    for (size_t k = 0; !sMeshSegmentIterator->AtEnd(s); sMeshSegmentIterator->Next(s), ++k) {
      if (!whole && (k >= segMarked.size() || !segMarked[k])) continue;
      const int32_t n = sMeshSegmentIterator->CountKnots(s);
      if (n <= 0) continue;
      if (correct)
        __SegControlsToPoints(s);
      else
        sMeshSegmentIterator->DeleteKnots(s, 0, n);
    }
    if (whole) {
      lb::s::sArt->SetArtUserAttr(mesh, kArtSelected, kArtSelected);
    } else {
      SelectionRef sel = GetSelectionRef(mesh);
      size_t k = 0;
      ForEachVertex(mesh, [&](AIMeshVertexIterator v) {
        if (k < vertexSel.size() && vertexSel[k]) sMeshSelection->SelectVertex(sel, v, 1);
        ++k;
      });
    }
    return 0;
  } catch (int) {
    return 1;
  }
}

int _VerticesDel(AIArtHandle mesh) {
  try {
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    std::vector<NodeLines> rec(static_cast<size_t>(I + 1) * (J + 1));
    {
      SelectionRef sel = GetSelectionRef(mesh);
      for (int32_t i = 0; i <= I; ++i) {
        for (int32_t j = 0; j <= J; ++j) {
          NodeLines& r = rec[static_cast<size_t>(i) * (J + 1) + j];
          VertexRef node = GetNodeRef(mesh, i, j);
          r.selected = sMeshSelection->ContainsVertex(sel, node);
          for (int axis = 0; axis < 2; ++axis) {
            SegmentRef s = Leaving(node, axis);
            if (!s) continue;
            for (;;) {
              VertexRef end = EndOf(s);
              if (sMeshVertexIterator->IsNode(end)) break;
              const bool on = sMeshSelection->ContainsVertex(sel, end);
              r.inner[axis].push_back(on ? 1 : 0);
              if (on) r.any[axis] = true;
              ThrowIfErr(sMeshSegmentIterator->NextOnAxis(s));
            }
          }
        }
      }
    }
    for (int32_t i = 0; i <= I; ++i) {
      for (int32_t j = 0; j <= J; ++j) {
        const NodeLines& r = rec[static_cast<size_t>(i) * (J + 1) + j];
        for (int axis = 0; axis < 2; ++axis) {
          if (r.inner[axis].empty() || !r.any[axis]) continue;
          SegmentRef s = Leaving(GetNodeRef(mesh, i, j), axis);
          if (!s) continue;
          for (size_t m = 0; m < r.inner[axis].size(); ++m) {
            if (EndIsNode(s)) break;
            if (r.inner[axis][m]) {
              int32_t q = 0;
              ThrowIfErr(sMeshSegmentIterator->Join(s, &q));
              sMeshSegmentIterator->DeleteKnots(s, q, 1);
            } else {
              ThrowIfErr(sMeshSegmentIterator->NextOnAxis(s));
            }
          }
        }
      }
    }
    std::vector<bool> nodeSel(rec.size());
    for (size_t k = 0; k < rec.size(); ++k) nodeSel[k] = rec[k].selected;
    ReselectNodes(mesh, I, J, nodeSel);
    return 0;
  } catch (int) {
    return 1;
  }
}

int _VerticesDelCorr(AIArtHandle mesh) {
  try {
    const auto* ss = sMeshSegmentIterator;
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    std::vector<NodePoints> rec(static_cast<size_t>(I + 1) * (J + 1));
    auto at = [&](int32_t i, int32_t j) -> NodePoints& { return rec[static_cast<size_t>(i) * (J + 1) + j]; };

    // 1. The point list of every stretch from a node to the next node.
    {
      SelectionRef sel = GetSelectionRef(mesh);
      for (int32_t i = 0; i <= I; ++i) {
        for (int32_t j = 0; j <= J; ++j) {
          NodePoints& r = at(i, j);
          VertexRef node = GetNodeRef(mesh, i, j);
          r.selected = sMeshSelection->ContainsVertex(sel, node);
          for (int axis = 0; axis < 2; ++axis) {
            SegmentRef s = Leaving(node, axis);
            if (!s) continue;
            std::vector<LinePoint>& list = r.list[axis];
            list.push_back({kNodePt, static_cast<char>(r.selected)});
            for (;;) {
              const int32_t n = ss->CountKnots(s);
              for (int32_t k = 0; k < n; ++k) list.push_back({kKnotPt, 0});
              VertexRef end = EndOf(s);
              const char on = sMeshSelection->ContainsVertex(sel, end) ? 1 : 0;
              if (sMeshVertexIterator->IsNode(end)) {
                list.push_back({kNodePt, on});
                break;
              }
              list.push_back({kVertexPt, on});
              if (on) r.any[axis] = 1;
              ThrowIfErr(ss->NextOnAxis(s));
            }
          }
        }
      }
    }

    // 2. Merge every run of selected vertices, with the points around it,
    // into one straightened piece.
    for (int32_t i = 0; i <= I; ++i) {
      for (int32_t j = 0; j <= J; ++j) {
        for (int axis = 0; axis < 2; ++axis) {
          const std::vector<LinePoint>& list = at(i, j).list[axis];
          if (!at(i, j).any[axis]) continue;
          SegmentRef s = Leaving(GetNodeRef(mesh, i, j), axis);
          if (!s) continue;
          const int32_t last = static_cast<int32_t>(list.size()) - 1;
          int32_t b = 0;
          bool corrected = false;
          for (;;) {
            int32_t e = b + ss->CountKnots(s) + 1;
            while (e < last && list[e].kind == kVertexPt && !list[e].selected) {
              ThrowIfErr(ss->NextOnAxis(s));
              b = e;
              corrected = false;
              e = b + ss->CountKnots(s) + 1;
            }
            if (e >= last || list[e].kind == kNodePt) break;
            int32_t q = 0;
            ThrowIfErr(ss->Join(s, &q));
            const int32_t e2 = b + ss->CountKnots(s) + 1;
            if (q > 0 && !corrected) {
              ss->Split(s, q - 1);
              ThrowIfErr(ss->NextOnAxis(s));
              q = 0;
            }
            if (ss->CountKnots(s) - q < 2) {
              if (!(e2 <= last && IsSelVertex(list[e2]))) __SegControlsToPoints(s);
              corrected = true;
            } else {
              ss->Split(s, q + 1);
              __SegControlsToPoints(s);
              ThrowIfErr(ss->NextOnAxis(s));
              corrected = false;
            }
            b = e2 - ss->CountKnots(s) - 1;
          }
        }
      }
    }

    // 3. Knots that the merge turned into vertices become knots again.
    for (int32_t i = 0; i <= I; ++i) {
      for (int32_t j = 0; j <= J; ++j) {
        for (int axis = 0; axis < 2; ++axis) {
          NodePoints& r = at(i, j);
          if (!r.any[axis]) continue;
          std::vector<LinePoint> kept;
          for (const LinePoint& p : r.list[axis])
            if (!IsSelVertex(p)) kept.push_back(p);
          r.list[axis] = kept;
          SegmentRef s = Leaving(GetNodeRef(mesh, i, j), axis);
          if (!s) continue;
          const int32_t last = static_cast<int32_t>(kept.size()) - 1;
          int32_t b = 0;
          for (;;) {
            const int32_t e = b + ss->CountKnots(s) + 1;
            if (e >= last || kept[e].kind == kNodePt) break;
            if (kept[e].kind == kKnotPt) {
              int32_t q = 0;
              ThrowIfErr(ss->Join(s, &q));
            } else {
              ThrowIfErr(ss->NextOnAxis(s));
              b = e;
            }
          }
        }
      }
    }

    std::vector<bool> nodeSel(rec.size());
    for (size_t k = 0; k < rec.size(); ++k) nodeSel[k] = rec[k].selected;
    ReselectNodes(mesh, I, J, nodeSel);
    return 0;
  } catch (int) {
    return 1;
  }
}

int KnotsSplit() {
  SelectedMeshList meshes;
  for (AIArtHandle mesh : meshes) _KnotsSplit(mesh);
  return 0;
}

int KnotsDel(int correct) {
  SelectedMeshList meshes;
  for (AIArtHandle mesh : meshes) _KnotsDel(mesh, correct);
  return 0;
}

int VerticesDel(int correct) {
  SelectedMeshList meshes;
  for (AIArtHandle mesh : meshes) correct ? _VerticesDelCorr(mesh) : _VerticesDel(mesh);
  return 0;
}

int MeshSegmentsJoin() {
  SelectedMeshList meshes;
  for (AIArtHandle mesh : meshes) {
    try {
      SelectionRef sel = GetSelectionRef(mesh);
      const bool whole = sMeshSelection->IsFull(sel);
      if (!whole && sMeshSelection->IsEmpty(sel)) continue;
      ForEachVertex(mesh, [&](AIMeshVertexIterator v) {
        if (sMeshVertexIterator->IsNode(v)) return;
        if (!whole && !sMeshSelection->ContainsVertex(sel, v)) return;
        SegmentRef s;
        ThrowIfErr(sMeshVertexIterator->GetSegment(v, 0, s.put()));
        ThrowIfErr(sMeshSegmentIterator->Reverse(s));
        int32_t q = 0;
        sMeshSegmentIterator->Join(s, &q);
      });
    } catch (int) {
      // The host stopped the work on this mesh; go on with the next one.
    }
  }
  return 0;
}
