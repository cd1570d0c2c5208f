// The pieces of the mesh cutter (140): the cut line marked by selected
// border nodes and the bridge across a one-cell strip.
#pragma once

#include "AIMeshSuites.h"

// The one grid line marked by selected border nodes that are not corners:
// *cutI = i or *cutJ = j (the other 0). Returns 0 when exactly one line is
// marked, 1 otherwise (both outputs 0).
int GetCutPos(AIArtHandle mesh, int* cutI, int* cutJ);
// On a mesh one cell wide, puts a new grid line through the first cell
// whose two long sides each hold a selected non-node vertex, with its
// nodes on those vertices and the long sides' shape kept. Returns 0; an
// unsuitable mesh or selection is left unchanged.
int BridgeTool(AIArtHandle* mesh);
