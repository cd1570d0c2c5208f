// The selection commands: they only read and rewrite the vertex selection
// of every selected mesh, never geometry or paint.
#include "select/Select.h"

#include <vector>

#include "MeshSelection.h"
#include "Operations.h"

using lb::s::sMesh;
using lb::s::sMeshSelection;
using lb::s::sMeshVertexIterator;

namespace lb::sel {
namespace {

// The region-based commands start the same way: the region of the current
// selection (and the lines carrying selected vertices), then an empty
// selection to build the result in.
struct RegionStart {
  int32_t I = 0, J = 0;
  CMeshRegion reg;
  std::vector<int> linesI, linesJ;
  SelectionRef sel;
};

void BeginRegionCommand(AIArtHandle mesh, bool nodesOnly, bool wantLines, RegionStart& st) {
  ThrowIfErr(sMesh->GetSize(mesh, &st.I, &st.J));
  st.sel = GetSelectionRef(mesh);
  if (wantLines) {
    st.linesI.assign(st.I + 1, 0);
    st.linesJ.assign(st.J + 1, 0);
  }
  if (st.reg.GetMeshRegIncVert(mesh, nodesOnly ? 1 : 0, wantLines ? st.linesI.data() : nullptr,
                               wantLines ? st.linesJ.data() : nullptr) != 0)
    throw static_cast<int>(kCantHappenErr);
  // Deselecting the art clears its whole vertex selection; the selection
  // object is taken again afterwards so it reflects the cleared state.
  ThrowIfErr(lb::s::sArt->SetArtUserAttr(mesh, kArtSelected, 0));
  st.sel.reset();
  st.sel = GetSelectionRef(mesh);
}

// Selects the vertices of one grid line between two nodes, both included;
// with nodesOnly the non-node vertices are passed over.
void SelectAlong(AIArtHandle mesh, AIMeshSelection sel, int32_t fromI, int32_t fromJ, int32_t toI, int32_t toJ,
                 AIMeshAxis axis, bool nodesOnly) {
  WalkLine(mesh, fromI, fromJ, toI, toJ, axis, [&](AIMeshVertexIterator v) {
    if (nodesOnly && !sMeshVertexIterator->IsNode(v)) return;
    sMeshSelection->SelectVertex(sel, v, true);
  });
}

}  // namespace

int _Full(AIArtHandle mesh, bool nodesOnly) {
  try {
    RegionStart st;
    BeginRegionCommand(mesh, nodesOnly, false, st);
    const CMeshRegion& r = st.reg;
    if (r.m_nMinI <= r.m_nMaxI)
      for (int32_t i = r.m_nMinI; i <= r.m_nMaxI; ++i)
        SelectAlong(mesh, st.sel, i, r.m_nMinJ, i, r.m_nMaxJ, kAIMeshJAxis, nodesOnly);
    if (r.m_nMinJ <= r.m_nMaxJ)
      for (int32_t j = r.m_nMinJ; j <= r.m_nMaxJ; ++j)
        SelectAlong(mesh, st.sel, r.m_nMinI, j, r.m_nMaxI, j, kAIMeshIAxis, nodesOnly);
    return 0;
  } catch (int) {
    return 1;
  }
}

int _Perim(AIArtHandle mesh, long rows, long columns, long nodesOnly) {
  try {
    RegionStart st;
    BeginRegionCommand(mesh, nodesOnly != 0, false, st);
    const CMeshRegion& r = st.reg;
    if (columns && r.m_nMinI <= r.m_nMaxI) {
      SelectAlong(mesh, st.sel, r.m_nMinI, r.m_nMinJ, r.m_nMinI, r.m_nMaxJ, kAIMeshJAxis, nodesOnly);
      if (r.m_nMaxI != r.m_nMinI)
        SelectAlong(mesh, st.sel, r.m_nMaxI, r.m_nMinJ, r.m_nMaxI, r.m_nMaxJ, kAIMeshJAxis, nodesOnly);
    }
    if (rows && r.m_nMinJ <= r.m_nMaxJ) {
      SelectAlong(mesh, st.sel, r.m_nMinI, r.m_nMinJ, r.m_nMaxI, r.m_nMinJ, kAIMeshIAxis, nodesOnly);
      if (r.m_nMaxJ != r.m_nMinJ)
        SelectAlong(mesh, st.sel, r.m_nMinI, r.m_nMaxJ, r.m_nMaxI, r.m_nMaxJ, kAIMeshIAxis, nodesOnly);
    }
    return 0;
  } catch (int) {
    return 1;
  }
}

int _Cross(AIArtHandle mesh, long rows, long columns, long nodesOnly) {
  try {
    RegionStart st;
    BeginRegionCommand(mesh, nodesOnly != 0, true, st);
    const CMeshRegion& r = st.reg;
    if (columns && r.m_nMinI <= r.m_nMaxI)
      for (int32_t i = r.m_nMinI; i <= r.m_nMaxI; ++i)
        if (st.linesI[i]) SelectAlong(mesh, st.sel, i, 0, i, st.J, kAIMeshJAxis, nodesOnly);
    if (rows && r.m_nMinJ <= r.m_nMaxJ)
      for (int32_t j = r.m_nMinJ; j <= r.m_nMaxJ; ++j)
        if (st.linesJ[j]) SelectAlong(mesh, st.sel, 0, j, st.I, j, kAIMeshIAxis, nodesOnly);
    return 0;
  } catch (int) {
    return 1;
  }
}

int _Nodes(AIArtHandle mesh, long mode) {
  try {
    SelectionRef sel = GetSelectionRef(mesh);
    VertexRef v;
    ThrowIfErr(sMesh->GetStartVertex(mesh, v.put()));
    for (; !sMeshVertexIterator->AtEnd(v); ThrowIfErr(sMeshVertexIterator->Next(v))) {
      const bool selected = sMeshSelection->ContainsVertex(sel, v);
      switch (mode) {
        case 2:
          sMeshSelection->SelectVertex(sel, v, !selected);
          break;
        case 0:
          if (selected && !sMeshVertexIterator->IsNode(v)) sMeshSelection->SelectVertex(sel, v, false);
          break;
        case 1:
          if (selected && sMeshVertexIterator->IsNode(v)) sMeshSelection->SelectVertex(sel, v, false);
          break;
        default:
          break;
      }
    }
    return 0;
  } catch (int) {
    return 1;
  }
}

namespace {
// Passes node selection states one step along a line of n + 1 nodes:
// node(k) gives the node at position k, walked from `first` in `step`.
template <class NodeAt>
void ShiftLine(AIMeshSelection sel, int32_t n, int step, NodeAt&& nodeAt) {
  const int32_t first = step > 0 ? 0 : n;
  const int32_t wrap = step > 0 ? n : 0;
  VertexRef v = nodeAt(wrap);
  bool carry = v && sMeshSelection->ContainsVertex(sel, v);
  for (int32_t k = 0, pos = first; k <= n; ++k, pos += step) {
    v = nodeAt(pos);
    if (!v) continue;
    const bool was = sMeshSelection->ContainsVertex(sel, v);
    sMeshSelection->SelectVertex(sel, v, carry);
    carry = was;
  }
}
}  // namespace

int _Shift(AIArtHandle mesh, long shiftI, long shiftJ) {
  try {
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    SelectionRef sel = GetSelectionRef(mesh);
    // Per-node fetches are not checked: a node that cannot be had is
    // skipped and the line goes on.
    auto node = [&](int32_t i, int32_t j) {
      VertexRef v;
      if (sMesh->GetNode(mesh, i, j, v.put()) != kNoErr) v.reset();
      return v;
    };
    if (shiftI == 1 || shiftI == -1)
      for (int32_t j = 0; j <= J; ++j)
        ShiftLine(sel, I, static_cast<int>(shiftI), [&](int32_t i) { return node(i, j); });
    if (shiftJ == 1 || shiftJ == -1)
      for (int32_t i = 0; i <= I; ++i)
        ShiftLine(sel, J, static_cast<int>(shiftJ), [&](int32_t j) { return node(i, j); });
    return 0;
  } catch (int) {
    return 1;
  }
}

int Nodes(long mode) {
  return ForEachMesh([&](AIArtHandle m) { _Nodes(m, mode); });
}
int Full(bool nodesOnly) {
  return ForEachMesh([&](AIArtHandle m) { _Full(m, nodesOnly); });
}
int Perim(long rows, long columns, long nodesOnly) {
  return ForEachMesh([&](AIArtHandle m) { _Perim(m, rows, columns, nodesOnly); });
}
int Cross(long rows, long columns, long nodesOnly) {
  return ForEachMesh([&](AIArtHandle m) { _Cross(m, rows, columns, nodesOnly); });
}
int Shift(long shiftI, long shiftJ) {
  return ForEachMesh([&](AIArtHandle m) { _Shift(m, shiftI, shiftJ); });
}

}  // namespace lb::sel
