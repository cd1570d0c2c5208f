// Operations of this family that are not built yet: each is declared by
// the dispatcher and changes nothing until its real implementation
// replaces it here.
#include "Operations.h"

namespace lb::align {
int NodesSpreadAlongPath(long, long, int) { return 0; }
}
