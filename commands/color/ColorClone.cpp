// Clone colors and Pattern fill: node paint copied from the selected region
// of one mesh onto the others, or repeated over a mesh like a tile.
#include "color/ColorClone.h"

#include <algorithm>

#include "MeshSelection.h"
#include "Operations.h"
#include "color/ColorOpacity.h"

using lb::s::sMesh;
using lb::s::sMeshSelection;

namespace lb::color {
namespace {

// One mesh opened for node-by-node work: its visible selection, size and
// region. Per-node calls are not checked; a node that cannot be fetched is
// skipped rather than handed on as a null iterator.
struct OpenMesh {
  explicit OpenMesh(AIArtHandle art) : mesh(art) {
    sel = GetSelectionRef(art);
    ThrowIfErr(sMesh->GetSize(art, &I, &J));
    if (reg.GetMeshReg(art) != 0) throw static_cast<int>(kCantHappenErr);
  }
  VertexRef Node(int32_t i, int32_t j) const {
    VertexRef v;
    if (sMesh->GetNode(mesh, i, j, v.put()) != kNoErr) v.reset();
    return v;
  }
  void Select(AIMeshVertexIterator v, bool on) const {
    if (v) sMeshSelection->SelectVertex(sel, v, on);
  }

  AIArtHandle mesh;
  SelectionRef sel;
  int32_t I = 0, J = 0;
  CMeshRegion reg;
};

// Copies the paint of one node to another, as the switches allow.
void CopyPaint(AIMeshVertexIterator from, AIMeshVertexIterator to) {
  if (!from || !to) return;
  CColorOpacity p;
  p.Read(from);
  p.Write(to);
}

}  // namespace

int _Copy(AIArtHandle source, AIArtHandle target, long convertIJ, long twoOnly) {
  try {
    const OpenMesh S(source);
    const OpenMesh D(target);
    const CMeshRegion &s = S.reg;
    const CMeshRegion &d = D.reg;
    // Nothing selected on either side leaves no block to copy.
    if (s.IsEmpty() || d.IsEmpty()) return 0;
    const int32_t sI = s.m_nMaxI - s.m_nMinI, sJ = s.m_nMaxJ - s.m_nMinJ;
    const int32_t dI = d.m_nMaxI - d.m_nMinI, dJ = d.m_nMaxJ - d.m_nMinJ;
    const int32_t w = convertIJ ? std::min(sI, dJ) : std::min(sI, dI);
    const int32_t h = convertIJ ? std::min(sJ, dI) : std::min(sJ, dJ);

    // With only two meshes the source's selection is trimmed too: every
    // node up to the far corner of the copied block counts, the rule being
    // bounded on the far side only.
    if (twoOnly) {
      for (int32_t j = 0; j <= S.J; ++j)
        for (int32_t i = 0; i <= S.I; ++i) S.Select(S.Node(i, j), i <= s.m_nMinI + w && j <= s.m_nMinJ + h);
    }
    // The target keeps exactly the block that receives paint.
    const int32_t cols = convertIJ ? h : w;  // along I, minus one
    const int32_t rows = convertIJ ? w : h;  // along J, minus one
    for (int32_t j = 0; j <= D.J; ++j)
      for (int32_t i = 0; i <= D.I; ++i) {
        const bool in = i >= d.m_nMinI && i <= d.m_nMinI + cols && j >= d.m_nMinJ && j <= d.m_nMinJ + rows;
        D.Select(D.Node(i, j), in);
      }

    for (int32_t a = 0; a <= w; ++a)
      for (int32_t b = 0; b <= h; ++b) {
        VertexRef from = S.Node(s.m_nMinI + a, s.m_nMinJ + b);
        VertexRef to = convertIJ ? D.Node(d.m_nMinI + b, d.m_nMinJ + a) : D.Node(d.m_nMinI + a, d.m_nMinJ + b);
        CopyPaint(from, to);
        if (twoOnly) S.Select(from, true);
        D.Select(to, true);
      }
    return 0;
  } catch (int) {
    return 1;
  }
}

int Copy(long fromBottom, long convertIJ) {
  SelectedMeshList meshes;
  const int32_t n = meshes.size();
  if (n < 2) return 0;
  // A key object among the selected meshes is the source whatever the keys
  // say; otherwise the topmost, or with Alt the bottommost.
  AIArtHandle key = nullptr;
  if (lb::s::sArt->GetKeyArt(&key) != kNoErr) key = nullptr;
  AIArtHandle source = nullptr;
  if (key && std::find(meshes.begin(), meshes.end(), key) != meshes.end())
    source = key;
  else
    source = fromBottom ? meshes[n - 1] : meshes[0];
  const long twoOnly = n == 2 ? 1 : 0;
  for (AIArtHandle target : meshes)
    if (target != source) _Copy(source, target, convertIJ, twoOnly);
  return 0;
}

int Pattern(long onlyI, long onlyJ) {
  SelectedMeshList meshes;
  for (AIArtHandle art : meshes) {
    try {
      const OpenMesh m(art);
      const CMeshRegion &r = m.reg;
      // An empty region gives no tile.
      if (r.IsEmpty()) continue;
      const int32_t nI = r.m_nMaxI - r.m_nMinI + 1;
      const int32_t nJ = r.m_nMaxJ - r.m_nMinJ + 1;
      // Phase offsets that anchor the tile at the region's minimum corner.
      const int32_t oI = (nI - r.m_nMinI % nI) % nI;
      const int32_t oJ = (nJ - r.m_nMinJ % nJ) % nJ;
      for (int32_t j = 0; j <= m.J; ++j) {
        if (onlyI && (j < r.m_nMinJ || j > r.m_nMaxJ)) continue;
        const int32_t sj = r.m_nMinJ + (oJ + j % nJ) % nJ;
        for (int32_t i = 0; i <= m.I; ++i) {
          if (onlyJ && (i < r.m_nMinI || i > r.m_nMaxI)) continue;
          const int32_t si = r.m_nMinI + (oI + i % nI) % nI;
          VertexRef to = m.Node(i, j);
          if (si != i || sj != j) CopyPaint(m.Node(si, sj), to);
          m.Select(to, true);
        }
      }
    } catch (int) {
      // This mesh keeps what was done to it; the next is still filled.
    }
  }
  return 0;
}

}  // namespace lb::color
