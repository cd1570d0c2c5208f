// Test for a zero-width row of cells along one side of a mesh: a border
// row whose two bounding grid lines lie on top of each other.
#pragma once

#include "AIMeshSuites.h"

// Length tolerance passed to the host's Bezier length (single-precision
// 0.001 widened).
constexpr double kLbZeroRowFlatness = 0.0010000000474974513;
// A run across the row at least this long (single-precision 1e-7 widened)
// means the row has width.
constexpr double kLbZeroRowLimit = 1.0000000116860974e-07;

// 1 when every node of the side's line reaches the next grid line inward
// (across the side's row of cells) along a chain shorter than
// kLbZeroRowLimit, else 0. Sides: 0 = line j = 0, 1 = line i = I,
// 2 = line j = J, 3 = line i = 0; any other side gives 0. Host errors are
// thrown as int, so callers run it inside their worker's protection.
int IsSideHas0Row(AIArtHandle mesh, int side);
