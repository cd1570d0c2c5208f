// Operations of this family that are not built yet: each is declared by
// the dispatcher and changes nothing until its real implementation
// replaces it here.
#include "Operations.h"

int MakeMeshGrid(int, int) { return 0; }
int MakeMeshDotsGroup() { return 0; }
int MakeMeshCornerNodesAndCoords(long) { return 0; }
