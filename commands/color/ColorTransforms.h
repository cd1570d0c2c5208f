// Per-mesh workers of the colour transforms. Each works inside the region
// of the mesh's selected nodes and returns 0, or 1 when a host error
// stopped it before it began.
#pragma once

#include "AIMeshSuites.h"

namespace lb::color {
int _Flip(AIArtHandle mesh, AIMeshAxis axis);
int _Rotate(AIArtHandle mesh, long clockwise);
int _Shift(AIArtHandle mesh, AIMeshAxis axis, AIMeshAxisSense sense);
int _Spread(AIArtHandle mesh, AIMeshAxis axis, AIMeshAxisSense sense);
}  // namespace lb::color
