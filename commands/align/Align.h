// Per-mesh workers of the alignment commands, also used by the sewing of a
// mesh with a path.
#pragma once

#include "AIMeshSuites.h"

namespace lb::align {

// Moves the selected vertices of one mesh to `target` in coordinate 0 (h)
// or 1 (v); each keeps its handles' shape. Returns 0.
int _NodesAlign(ArtObject* mesh, long coordinate, double target);

// Lays one row or column of the mesh onto the path (see the command).
// Returns 0, or 1 when a host error stopped it.
int _NodesSpreadAlongPath(ArtObject* mesh, ArtObject* path, long reverse, int finish, int iLow, int iHigh,
                          int jLow, int jHigh, int stepI, int stepJ, int fixedI, int fixedJ, int n);

// Lays the whole mesh side from corner c1 to corner c2 along the path,
// c1 on path end e1 (0 first anchor, 1 last) and c2 on e2. Returns the
// worker's result, or 1 without doing anything when e1 and e2 are equal.
int _NodesSpreadAlongPathForAddRowFromPath(ArtObject* mesh, ArtObject* path, long reverse, int c1, int c2, int e1,
                                           int e2);

// Whether the grid turns clockwise at the vertex: the J direction lies at
// a negative angle from the I direction.
bool IsAxesAngleNegative(AIMeshVertexIterator vertex);

}  // namespace lb::align
