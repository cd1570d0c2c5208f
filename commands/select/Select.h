// Per-mesh workers of the selection commands. Each returns 0, or 1 when a
// host error stopped it (whatever it had already selected stays).
#pragma once

#include "AIMeshSuites.h"

namespace lb::sel {
// Selects every vertex on the grid lines inside the selection's region.
int _Full(AIArtHandle mesh, bool nodesOnly);
// Selects the region's boundary rows (lines of constant j) and/or columns.
int _Perim(AIArtHandle mesh, long rows, long columns, long nodesOnly);
// Selects whole rows and/or columns that carry a selected vertex.
int _Cross(AIArtHandle mesh, long rows, long columns, long nodesOnly);
// mode 0: keep nodes only; 1: keep non-node vertices only; 2: invert.
int _Nodes(AIArtHandle mesh, long mode);
// Moves node selection states one step along I and/or J, cyclically.
int _Shift(AIArtHandle mesh, long shiftI, long shiftJ);
}  // namespace lb::sel
