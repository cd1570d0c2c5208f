// Host colour values: component access and conversion between colour kinds.
#pragma once

#include "AITypes.h"

namespace lb::host {

// These four are inline: the colour field and line insertion call them for
// every node.

// Opaque white in RGB.
inline AIColor whiteColor() {
  AIColor c{};
  c.kind = kThreeColor;
  c.c.rgb = {1, 1, 1};
  return c;
}
// Number of components of a colour kind (0 for none).
inline int componentCount(AIColorTag kind) {
  switch (kind) {
    case kGrayColor: return 1;
    case kThreeColor: return 3;
    case kFourColor: return 4;
    default: return 0;
  }
}
// The components of c in order (gray; r, g, b; c, m, y, k).
inline void colorComponents(const AIColor& c, double* out) {
  switch (c.kind) {
    case kGrayColor: out[0] = c.c.g.gray; break;
    case kThreeColor: out[0] = c.c.rgb.red, out[1] = c.c.rgb.green, out[2] = c.c.rgb.blue; break;
    case kFourColor:
      out[0] = c.c.f.cyan, out[1] = c.c.f.magenta, out[2] = c.c.f.yellow, out[3] = c.c.f.black;
      break;
    default: break;
  }
}
// A colour of the kind from its components; the rest of the value is zero.
inline AIColor colorFromComponents(AIColorTag kind, const double* v) {
  AIColor c{};
  c.kind = kind;
  switch (kind) {
    case kGrayColor: c.c.g.gray = v[0]; break;
    case kThreeColor: c.c.rgb = {v[0], v[1], v[2]}; break;
    case kFourColor: c.c.f = {v[0], v[1], v[2], v[3]}; break;
    default: break;
  }
  return c;
}
// Converts through screen RGB; none converts to none.
AIColor convertColor(const AIColor& c, AIColorTag kind);
// Screen RGB of a colour (none gives white).
void colorToRGB(const AIColor& c, double* r, double* g, double* b);

}  // namespace lb::host
