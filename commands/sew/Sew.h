// Sewing machinery shared by the two-mesh sewing commands and the join of
// docked meshes: the docking analysis, side equalisation and the merge.
#pragma once

#include "AIMeshSuites.h"

// Picks, for each mesh, the corner nearest to the other mesh (c1a, c2a), a
// neighbouring corner forming the sides to sew (c1b, c2b) and the other
// neighbour of the first corner (c1c, c2c), guided by the selected sides
// and corner nodes of each mesh. Host errors are thrown as int. Returns 0.
int _Analize2MeshesBeforeAdd(ArtObject** mesh1, ArtObject** mesh2, long* c1a, long* c2a, long* c1b, long* c2b,
                             long* c1c, long* c2c);

// Sews mesh 1's side from corner p to p1 onto mesh 2's side from q to q1
// (p matched to q, p1 to q1) into a new mesh above mesh 1, written to
// *result. With addRow 0 the sides are moved onto their middle line; with
// addRow 1 a row of cells is added between them. The sources stay in the
// document (in move mode already equalised and aligned). Host errors, and
// corner pairs that name no side, are thrown as int. Returns 0.
int _MeshAdd(ArtObject** mesh1, ArtObject** mesh2, long p, long q, long p1, long q1, long addRow,
             ArtObject** result);

// Splits cells of the mesh whose side crosses fewer cells until both sides
// cross equally many. Host errors are thrown as int. Returns 0.
int EqualizeSewSides(ArtObject** mesh1, ArtObject** mesh2, int side1, int side2);

// Moves two nodes onto their midpoint (handles across their sides move
// along) and gives both the average of their colours and opacities. A flag
// is 1 when that node's side runs along J.
int Align2NodesPosTanAndColors(_AIMeshVertexIterator* v1, _AIMeshVertexIterator* v2, int alongJ1, int alongJ2);

// How many pieces each of `small` parts becomes so that they sum to `big`
// (big >= small > 0): big / small each, one more at (t * small) / (r + 1)
// for t = 1..r, r = big mod small.
void SplitCounts(int small, int big, int* counts);

// Joins two or more docked meshes lying like the cells of a grid into one;
// the sources are deleted on success. Returns 0, or 1 when the arrangement
// was not recognised or a host error stopped the join.
int JoinDockedMeshes(ArtObject** meshes, long count, long mode);

// Candidate sides S[4] and corners C[4] of one mesh from its selection:
// what the user selected, or everything when the selection is empty, whole
// or names neither a side nor a corner. Host errors are thrown as int.
void CandidateFlags(ArtObject* mesh, int* S, int* C);

// Copies `src` into `mesh`, which has one more cell across `side`: the
// source lands one step inward from that side, so the border row has zero
// width. With `retract` the handles across the new row are pulled into
// their nodes. Host errors and a size mismatch are thrown as int. Returns 0.
int RestoreMeshWithNewRow(AIArtHandle mesh, AIArtHandle src, int side, int retract);

// Every node of the side line takes the path's colour (always written;
// light gray when the colour checkbox is off) and, as the opacity switch
// says, the path's opacity. Host errors are thrown as int.
void ColorizeSideFromPath(AIArtHandle mesh, AIArtHandle path, int side);
