// Per-mesh workers of colour capture from an image or from a mesh below.
#pragma once

#include "AIMeshSuites.h"

namespace lb::color {
// Gives every selected node of `mesh` the colour (and alpha) of the pixel
// of the raster `image` under it; nodes off the image are deselected.
// Returns 0, or 1 when a host error or a singular image matrix stopped it.
int _CatchFromRaster(AIArtHandle image, AIArtHandle mesh, int edgeCorrection);
// Gives every selected node of `target` the colour and opacity of the
// `source` mesh's surface under it; nodes off the source are deselected.
int _CatchFromMeshSurface(AIArtHandle source, AIArtHandle target, int edgeCorrection);
}  // namespace lb::color
