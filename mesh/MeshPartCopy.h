// Copying mesh content between meshes: a window record that says how a
// mesh is walked, the node lookup through a window, the copy of one mesh
// into another through two windows and the cut of a rectangle of cells
// into a new mesh.
//
// Commands that change a grid's structure never edit it in place: they
// build a new mesh of the wanted size and copy the old content into it
// through these windows (turned, mirrored, shifted or cut).
#pragma once

#include <cstdint>

#include "AIMeshSuites.h"

// A window of a mesh walked in two coordinates (a, b), both from 0.
//
// The node for (a, b), with sa = -1 when m_nSenseA is 1 (else +1) and
// sb = -1 when m_nSenseB is 1 (else +1), is
//   (m_nStartI + sa*a, m_nStartJ + sb*b)  when m_nAxisA is 0 (a along I),
//   (m_nStartI + sb*b, m_nStartJ + sa*a)  when m_nAxisA is 1 (a along J).
// The identity window of an I x J mesh is {0, 0, 0, 1, 0, 0, I, J}.
struct ZS_RestoreMeshData {
  int32_t m_nStartI;  // grid index i of the node where a = b = 0
  int32_t m_nStartJ;  // grid index j of that node
  int32_t m_nAxisA;   // 0: a runs along I; 1: a runs along J
  int32_t m_nAxisB;   // the other axis
  int32_t m_nSenseA;  // 1: a runs toward lower indices; otherwise higher
  int32_t m_nSenseB;  // the same for b
  int32_t m_nCellsI;  // extent of the window along the mesh's I axis
  int32_t m_nCellsJ;  // extent of the window along the mesh's J axis
};

// Asks the host for the node of `mesh` at window coordinates (a, b).
// Returns the host's result (0 on success); the caller releases *vertex.
int GetNodeCorr(ArtObject* mesh, int a, int b, _AIMeshVertexIterator** vertex, ZS_RestoreMeshData* window);

// Copies the content of `src` seen through `srcWindow` onto `dst` seen
// through `dstWindow`: node colours and opacities, positions, handles,
// knots, non-node vertices and smooth flags. The walk extent comes from
// the destination window; `dst` must already have its final grid size.
// The vertex selection is not copied. Returns 0, or 1 when a window is
// invalid (nothing copied) or a host error stopped the copy (what was
// copied stays).
int RestoreMeshPart(ArtObject* src, ArtObject* dst, ZS_RestoreMeshData* srcWindow, ZS_RestoreMeshData* dstWindow);

// Cuts the cells between grid lines i0..i1 and j0..j1 (inclusive) of `src`
// into a new mesh directly above it, with the selected nodes and non-node
// vertices of the rectangle selected, and the source's opacity and
// blending mode. *part receives the new mesh as soon as it exists (also
// when a later step fails). Returns 0, or 1 when the rectangle holds no
// cell or lies outside the grid (no mesh made) or a host error occurred.
int MakeMeshPart(ArtObject* src, ArtObject** part, int i0, int i1, int j0, int j1);
