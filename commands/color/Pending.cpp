// Operations of this family that are not built yet: each is declared by
// the dispatcher and changes nothing until its real implementation
// replaces it here.
#include "Operations.h"

namespace lb::color {
int Copy(long, long) { return 0; }
}
namespace lb::color {
int Pattern(long, long) { return 0; }
}
namespace lb::color {
int CatchFromRaster(int) { return 0; }
}
namespace lb::color {
int CatchFromMeshSurface(int) { return 0; }
}
