// Operations of this family that are not built yet: each is declared by
// the dispatcher and changes nothing until its real implementation
// replaces it here.
#include "Operations.h"

namespace lb::handles {
int SmoothNodes(long, long, long) { return 0; }
}
namespace lb::handles {
int Nodes13or0(long, long, long, long) { return 0; }
}
namespace lb::handles {
int Angle90Deg(long, long) { return 0; }
}
