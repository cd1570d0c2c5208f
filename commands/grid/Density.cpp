// "Increase mesh density" and "Decrease mesh density": double or halve the
// number of cells inside the rectangle spanned by the selected nodes, with
// border zero-width rows kept out of the range, then select the new range.
#include "HostRefs.h"
#include "MeshSelection.h"
#include "Operations.h"
#include "ZeroRow.h"
#include "color/ColorOpacity.h"

namespace lb::dens {

namespace {

// The range of grid lines a density command works on.
struct DensRange {
  int32_t minI, maxI, minJ, maxJ;  // working range (border zero rows excluded)
  int32_t selMinI, selMaxI, selMinJ, selMaxJ;  // bounds of the selected nodes
  int32_t cellsI, cellsJ;
};

// Fixes the range of one mesh. Returns false when it has no cell on either
// axis (the mesh is then left alone).
// A host failure is thrown as an int.
bool GetDensRange(AIArtHandle mesh, int32_t I, int32_t J, DensRange& r) {
  CMeshRegion reg;  // the selected nodes' rectangle
  if (reg.GetMeshReg(mesh) != 0) throw static_cast<int>(kCantHappenErr);
  r.minI = reg.m_nMinI, r.maxI = reg.m_nMaxI, r.minJ = reg.m_nMinJ, r.maxJ = reg.m_nMaxJ;
  r.selMinI = r.minI, r.selMaxI = r.maxI, r.selMinJ = r.minJ, r.selMaxJ = r.maxJ;

  // Border zero-width rows stay out: they are neither split nor merged.
  if (r.minI == 0 && IsSideHas0Row(mesh, 3)) r.minI = 1;
  if (r.minJ == 0 && IsSideHas0Row(mesh, 0)) r.minJ = 1;
  if (r.maxI == I && IsSideHas0Row(mesh, 1)) r.maxI = I - 1;
  if (r.maxJ == J && IsSideHas0Row(mesh, 2)) r.maxJ = J - 1;

  r.cellsI = r.maxI - r.minI;
  r.cellsJ = r.maxJ - r.minJ;
  if (r.cellsI <= 0 && r.cellsJ <= 0) return false;
  if (r.cellsI <= 0) r.minI = r.selMinI, r.maxI = r.selMaxI;
  if (r.cellsJ <= 0) r.minJ = r.selMinJ, r.maxJ = r.selMaxJ;
  return true;
}

// Selects every node of the range, bounds included; nothing is deselected.
void SelectRange(AIArtHandle mesh, const DensRange& r) {
  SelectionRef selection = GetSelectionRef(mesh);
  VertexRef node;
  for (int32_t i = r.minI; i <= r.maxI; ++i) {
    for (int32_t j = r.minJ; j <= r.maxJ; ++j) {
      ThrowIfErr(lb::s::sMesh->GetNode(mesh, i, j, node.put()));
      lb::s::sMeshSelection->SelectVertex(selection, node, 1);
    }
  }
}

// Node (i, j) takes the mean opacity of nodes a and b.
void AverageOpacity(AIArtHandle mesh, int32_t i, int32_t j, int32_t ai, int32_t aj, int32_t bi, int32_t bj) {
  CColorOpacity a, b, c;
  {
    VertexRef va = GetNodeRef(mesh, ai, aj);
    a.Read(va);
  }
  {
    VertexRef vb = GetNodeRef(mesh, bi, bj);
    b.Read(vb);
  }
  VertexRef vc = GetNodeRef(mesh, i, j);
  c.Read(vc);
  c.m_dOpacity = (a.m_dOpacity + b.m_dOpacity) * 0.5;
  c.Write(vc);
}

}  // namespace

int _Mul(AIArtHandle mesh, int alongI, int alongJ) {
  try {
    int32_t I = 0, J = 0;
    ThrowIfErr(lb::s::sMesh->GetSize(mesh, &I, &J));
    DensRange r{};
    if (!GetDensRange(mesh, I, J, r)) return 1;

    // New nodes take the mean opacity of their neighbours, whatever the
    // panel's checkboxes say; their colours stay as the insertion made them.
    CColorOpacity::sm_bUseColor = 0;
    CColorOpacity::sm_bUseOpacity = 1;

    if (alongI && r.cellsI > 0) {
      // From the top down, so the cells still to split keep their indices.
      for (int32_t k = r.maxI - 1; k >= r.minI; --k) {
        int32_t n = 0;
        ThrowIfErr(lb::s::sMesh->InsertU(mesh, k + 0.5, &n));
        for (int32_t j = 0; j <= J; ++j) AverageOpacity(mesh, n, j, n - 1, j, n + 1, j);
      }
      r.maxI = r.minI + 2 * r.cellsI;
    }
    ThrowIfErr(lb::s::sMesh->GetSize(mesh, &I, &J));
    if (alongJ && r.cellsJ > 0) {
      for (int32_t k = r.maxJ - 1; k >= r.minJ; --k) {
        int32_t n = 0;
        ThrowIfErr(lb::s::sMesh->InsertV(mesh, k + 0.5, &n));
        for (int32_t i = 0; i <= I; ++i) AverageOpacity(mesh, i, n, i, n - 1, i, n + 1);
      }
      r.maxJ = r.minJ + 2 * r.cellsJ;
    }
    SelectRange(mesh, r);
    return 0;
  } catch (int) {
    return 1;
  }
}

int Mul(long alongI, long alongJ) {
  return ForEachMesh([&](AIArtHandle mesh) { _Mul(mesh, alongI ? 1 : 0, alongJ ? 1 : 0); });
}

int Div(long alongI, long alongJ) {
  return ForEachMesh([&](AIArtHandle mesh) {
    try {
      int32_t I = 0, J = 0;
      ThrowIfErr(lb::s::sMesh->GetSize(mesh, &I, &J));
      DensRange r{};
      if (!GetDensRange(mesh, I, J, r)) return;
      // Each deletion moves the later lines down by one, so deleting at
      // min + 1, min + 2, ... removes every second line of the original
      // range; the range's bounding lines stay.
      if (alongI && r.cellsI > 0) {
        for (int32_t k = 1; k <= r.cellsI / 2; ++k)
          ThrowIfErr(lb::s::sMesh->DeleteGridLines(mesh, r.minI + k, 0.5));
        r.maxI = r.minI + (r.cellsI + 1) / 2;
      }
      if (alongJ && r.cellsJ > 0) {
        for (int32_t k = 1; k <= r.cellsJ / 2; ++k)
          ThrowIfErr(lb::s::sMesh->DeleteGridLines(mesh, 0.5, r.minJ + k));
        r.maxJ = r.minJ + (r.cellsJ + 1) / 2;
      }
      SelectRange(mesh, r);
    } catch (int) {
      // The lines already changed stay; go on with the next mesh.
    }
  });
}

}  // namespace lb::dens
