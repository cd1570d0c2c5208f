// Reading a mesh's selection: the list of selected meshes, the walk along
// one grid line, the selected sides and corner nodes, and the rectangular
// region of grid lines that the selection spans.
//
// Corners: 0 = (0, 0), 1 = (I, 0), 2 = (I, J), 3 = (0, J). Side k joins
// corner k and corner (k + 1) mod 4: side 0 is line j = 0, side 1 line
// i = I, side 2 line j = J, side 3 line i = 0.
#pragma once

#include <cstdint>
#include <type_traits>

#include "HostRefs.h"

// The selected mesh art of the document, topmost first. The host's array
// is disposed when the list goes out of scope. A failed query reads as an
// empty list.
class SelectedMeshList {
 public:
  SelectedMeshList();
  ~SelectedMeshList();
  SelectedMeshList(const SelectedMeshList&) = delete;
  SelectedMeshList& operator=(const SelectedMeshList&) = delete;

  int32_t size() const { return m_nCount; }
  bool empty() const { return m_nCount <= 0; }
  AIArtHandle operator[](int32_t k) const { return (*m_hMeshes)[k]; }
  AIArtHandle const* begin() const { return m_hMeshes ? *m_hMeshes : nullptr; }
  AIArtHandle const* end() const { return m_hMeshes ? *m_hMeshes + m_nCount : nullptr; }

 private:
  AIArtHandle** m_hMeshes = nullptr;
  int32_t m_nCount = 0;
};

// Runs worker(mesh) on every selected mesh, topmost first. A worker gives
// up on its own mesh (catching the host error) and the walk goes on with
// the next one. Returns 0, the public commands' result.
template <class Worker>
int ForEachMesh(Worker&& worker) {
  SelectedMeshList meshes;
  for (AIArtHandle mesh : meshes) worker(mesh);
  return 0;
}

// Raw query: all art of type mesh with the selected attribute set. On
// success the caller owns *meshes (null when nothing matched) and disposes
// it through the memory suite.
AIErr GetSelectedMeshes(AIArtHandle*** meshes, int32_t* count);

// Visits every vertex of one grid line, nodes and non-node vertices alike,
// from node (fromI, fromJ) to node (toI, toJ). Along kAIMeshIAxis both
// nodes share j and fromI <= toI; along kAIMeshJAxis they share i and
// fromJ <= toJ. With includeEnds false the two end nodes are not visited.
//
// visit(AIMeshVertexIterator) may return void, or bool: false ends the
// walk early. The iterator is borrowed: copy it to keep it. A host error
// is thrown as an int (ThrowIfErr).
template <class Visit>
void WalkLine(AIArtHandle mesh, int32_t fromI, int32_t fromJ, int32_t toI, int32_t toJ, AIMeshAxis axis,
              Visit&& visit, bool includeEnds = true) {
  const auto* vs = lb::s::sMeshVertexIterator;
  VertexRef cur = GetNodeRef(mesh, fromI, fromJ);
  VertexRef last = GetNodeRef(mesh, toI, toJ);
  bool first = true;
  for (;;) {
    const bool atLast = vs->IsEqual(cur, last);
    if (includeEnds || (!first && !atLast)) {
      if constexpr (std::is_same_v<decltype(visit(cur.get())), bool>) {
        if (!visit(cur.get())) return;
      } else {
        visit(cur.get());
      }
    }
    if (atLast) return;
    first = false;
    ThrowIfErr(axis == kAIMeshIAxis ? vs->NextI(cur) : vs->NextJ(cur));
    // Stepping off the mesh means the end node was not on this line.
    if (vs->AtEnd(cur)) throw static_cast<int>(kIterAtEndErr);
  }
}

// Fills sides[4] and nodes[4] (either may be null) with 1 for each selected
// side and corner node, 0 otherwise. A side counts as selected when a
// vertex strictly between its corners is selected, or, on a grid one cell
// long along that side, when both its corners are. Returns 0, or 1 after a
// host failure (then nothing is written).
int ZF_GetSelSidesAndNodes(AIArtHandle mesh, int* sides, int* nodes);

// The rectangle of grid lines m_nMinI..m_nMaxI x m_nMinJ..m_nMaxJ
// (inclusive) spanned by a mesh's selection. An empty selection gives
// m_nMinI = I > m_nMaxI = 0 (and likewise for J).
class CMeshRegion {
 public:
  int32_t m_nMinI = 0;
  int32_t m_nMaxI = -1;
  int32_t m_nMinJ = 0;
  int32_t m_nMaxJ = -1;

  bool IsEmpty() const { return m_nMinI > m_nMaxI || m_nMinJ > m_nMaxJ; }

  // Bounding rectangle of the selected nodes (non-node vertices do not
  // count). Returns 0, or 1 after a host failure (fields unchanged).
  int GetMeshReg(AIArtHandle mesh);

  // Bounding rectangle of whole cells holding every selected vertex; with
  // bNodesOnly nonzero selected non-node vertices are ignored. Sets entry
  // i of pLinesI (I + 1 entries) / entry j of pLinesJ (J + 1 entries) to 1
  // for each line that carries a counted selected vertex; it never clears
  // entries, and either array may be null. Returns 0, or 1 after a host
  // failure (fields unchanged; marks already set stay).
  int GetMeshRegIncVert(AIArtHandle mesh, int bNodesOnly, int* pLinesI, int* pLinesJ);
};
