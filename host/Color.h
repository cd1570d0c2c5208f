// Host colour values: component access and conversion between colour kinds.
#pragma once

#include "AITypes.h"

namespace lb::host {

// Opaque white in RGB.
AIColor whiteColor();
// Number of components of a colour kind (0 for none).
int componentCount(AIColorTag kind);
// The components of c in order (gray; r, g, b; c, m, y, k).
void colorComponents(const AIColor& c, double* out);
AIColor colorFromComponents(AIColorTag kind, const double* v);
// Converts through screen RGB; none converts to none.
AIColor convertColor(const AIColor& c, AIColorTag kind);
// Screen RGB of a colour (none gives white).
void colorToRGB(const AIColor& c, double* r, double* g, double* b);

}  // namespace lb::host
