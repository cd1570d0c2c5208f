// Operations of this family that are not built yet: each is declared by
// the dispatcher and changes nothing until its real implementation
// replaces it here.
#include "Operations.h"

int MeshSwapCornerNodeAndVertex() { return 0; }
int KnotsSplit() { return 0; }
int KnotsDel(int) { return 0; }
int MeshSegmentsJoin() { return 0; }
int VerticesDel(int) { return 0; }
