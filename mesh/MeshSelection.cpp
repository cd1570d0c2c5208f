// The selected meshes, the selected sides and corners, and the selection region.
#include "MeshSelection.h"

#include <algorithm>

using lb::s::sMesh;
using lb::s::sMeshSelection;

AIErr GetSelectedMeshes(AIArtHandle*** meshes, int32_t* count) {
  *meshes = nullptr;
  *count = 0;
  AIMatchingArtSpec wanted{kMeshArt, kArtSelected, kArtSelected};
  return lb::s::sAIMatchingArt->GetMatchingArt(&wanted, 1, meshes, count);
}

SelectedMeshList::SelectedMeshList() {
  if (GetSelectedMeshes(&m_hMeshes, &m_nCount) != kNoErr || !m_hMeshes) {
    if (m_hMeshes) lb::s::sMdMemory->MdMemoryDisposeHandle(reinterpret_cast<AIMdMemoryHandle>(m_hMeshes));
    m_hMeshes = nullptr;
    m_nCount = 0;
  }
}

SelectedMeshList::~SelectedMeshList() {
  if (m_hMeshes) lb::s::sMdMemory->MdMemoryDisposeHandle(reinterpret_cast<AIMdMemoryHandle>(m_hMeshes));
}

int ZF_GetSelSidesAndNodes(AIArtHandle mesh, int* sides, int* nodes) {
  try {
    SelectionRef sel = GetSelectionRef(mesh);
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    int s[4] = {0, 0, 0, 0};
    int c[4] = {0, 0, 0, 0};
    const int32_t ci[4] = {0, I, I, 0};
    const int32_t cj[4] = {0, 0, J, J};
    for (int k = 0; k < 4; ++k) {
      VertexRef corner = GetNodeRef(mesh, ci[k], cj[k]);
      if (sMeshSelection->ContainsVertex(sel, corner)) c[k] = 1;
    }
    // Side walks between their corners, corners excluded: 0, 2 along I,
    // then 1, 3 along J.
    struct Walk {
      int side, from, to;
      AIMeshAxis axis;
    };
    const Walk walks[4] = {{0, 0, 1, kAIMeshIAxis},
                           {2, 3, 2, kAIMeshIAxis},
                           {1, 1, 2, kAIMeshJAxis},
                           {3, 0, 3, kAIMeshJAxis}};
    for (const Walk& w : walks) {
      WalkLine(
          mesh, ci[w.from], cj[w.from], ci[w.to], cj[w.to], w.axis,
          [&](AIMeshVertexIterator v) {
            if (!sMeshSelection->ContainsVertex(sel, v)) return true;
            s[w.side] = 1;
            return false;
          },
          false);
    }
    // A side one cell long has no vertex of its own to select unless it
    // was split; both its corners then stand for it.
    if (I == 1) {
      if (c[0] && c[1]) s[0] = 1;
      if (c[2] && c[3]) s[2] = 1;
    }
    if (J == 1) {
      if (c[1] && c[2]) s[1] = 1;
      if (c[3] && c[0]) s[3] = 1;
    }
    if (sides) std::copy(s, s + 4, sides);
    if (nodes) std::copy(c, c + 4, nodes);
    return 0;
  } catch (int) {
    return 1;
  }
}

int CMeshRegion::GetMeshReg(AIArtHandle mesh) {
  try {
    SelectionRef sel = GetSelectionRef(mesh);
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    int32_t minI = I, maxI = 0, minJ = J, maxJ = 0;
    if (sMeshSelection->IsFull(sel)) {
      minI = 0, maxI = I, minJ = 0, maxJ = J;
    } else {
      VertexRef node;
      for (int32_t i = 0; i <= I; ++i) {
        for (int32_t j = 0; j <= J; ++j) {
          ThrowIfErr(sMesh->GetNode(mesh, i, j, node.put()));
          if (!sMeshSelection->ContainsVertex(sel, node)) continue;
          minI = std::min(minI, i);
          maxI = std::max(maxI, i);
          minJ = std::min(minJ, j);
          maxJ = std::max(maxJ, j);
        }
      }
    }
    m_nMinI = minI;
    m_nMaxI = maxI;
    m_nMinJ = minJ;
    m_nMaxJ = maxJ;
    return 0;
  } catch (int) {
    return 1;
  }
}

int CMeshRegion::GetMeshRegIncVert(AIArtHandle mesh, int bNodesOnly, int* pLinesI, int* pLinesJ) {
  try {
    const auto* vs = lb::s::sMeshVertexIterator;
    SelectionRef sel = GetSelectionRef(mesh);
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    int32_t minI = I, maxI = 0, minJ = J, maxJ = 0;
    if (sMeshSelection->IsFull(sel)) {
      if (pLinesI) std::fill(pLinesI, pLinesI + I + 1, 1);
      if (pLinesJ) std::fill(pLinesJ, pLinesJ + J + 1, 1);
      minI = 0, maxI = I, minJ = 0, maxJ = J;
    } else {
      auto takeI = [&](int32_t lo, int32_t hi) {
        minI = std::min(minI, lo);
        maxI = std::max(maxI, hi);
      };
      auto takeJ = [&](int32_t lo, int32_t hi) {
        minJ = std::min(minJ, lo);
        maxJ = std::max(maxJ, hi);
      };
      // Lines of constant i walked along J, then lines of constant j walked
      // along I; k is the index along the walk of the last node passed. A
      // selected node marks its line and the line across at k; a selected
      // vertex between nodes k and k + 1 marks its line and spans k..k + 1.
      for (const AIMeshAxis axis : {kAIMeshJAxis, kAIMeshIAxis}) {
        const bool alongJ = axis == kAIMeshJAxis;
        int* lineFlags = alongJ ? pLinesI : pLinesJ;
        int* crossFlags = alongJ ? pLinesJ : pLinesI;
        for (int32_t l = 0; l <= (alongJ ? I : J); ++l) {
          int32_t k = -1;
          const int32_t i1 = alongJ ? l : I, j1 = alongJ ? J : l;
          WalkLine(mesh, alongJ ? l : 0, alongJ ? 0 : l, i1, j1, axis, [&](AIMeshVertexIterator v) {
            const bool node = vs->IsNode(v);
            if (node) ++k;
            if (!sMeshSelection->ContainsVertex(sel, v) || (!node && bNodesOnly)) return;
            const int32_t hi = node ? k : k + 1;
            if (alongJ)
              takeI(l, l), takeJ(k, hi);
            else
              takeI(k, hi), takeJ(l, l);
            if (lineFlags) lineFlags[l] = 1;
            if (node && crossFlags) crossFlags[k] = 1;
          });
        }
      }
    }
    m_nMinI = minI;
    m_nMaxI = maxI;
    m_nMinJ = minJ;
    m_nMaxJ = maxJ;
    return 0;
  } catch (int) {
    return 1;
  }
}
