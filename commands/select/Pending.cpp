// Operations of this family that are not built yet: each is declared by
// the dispatcher and changes nothing until its real implementation
// replaces it here.
#include "Operations.h"

namespace lb::sel {
int Nodes(long) { return 0; }
}
namespace lb::sel {
int Full(bool) { return 0; }
}
namespace lb::sel {
int Perim(long, long, long) { return 0; }
}
namespace lb::sel {
int Cross(long, long, long) { return 0; }
}
namespace lb::sel {
int Shift(long, long) { return 0; }
}
