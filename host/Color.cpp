// Host colour values: component access and conversion between colour kinds.
#include "host/Color.h"

#include <algorithm>

namespace lb::host {

void colorToRGB(const AIColor& c, double* r, double* g, double* b) {
  switch (c.kind) {
    case kGrayColor: *r = *g = *b = 1 - c.c.g.gray; break;
    case kThreeColor: *r = c.c.rgb.red, *g = c.c.rgb.green, *b = c.c.rgb.blue; break;
    case kFourColor:
      *r = (1 - c.c.f.cyan) * (1 - c.c.f.black);
      *g = (1 - c.c.f.magenta) * (1 - c.c.f.black);
      *b = (1 - c.c.f.yellow) * (1 - c.c.f.black);
      break;
    default: *r = *g = *b = 1; break;
  }
}

AIColor convertColor(const AIColor& c, AIColorTag kind) {
  if (c.kind == kind) return c;
  AIColor out{};
  out.kind = kind;
  if (kind == kNoneColor) return out;
  double r, g, b;
  colorToRGB(c, &r, &g, &b);
  switch (kind) {
    case kGrayColor: out.c.g.gray = std::clamp(1 - (0.3 * r + 0.59 * g + 0.11 * b), 0.0, 1.0); break;
    case kThreeColor: out.c.rgb = {r, g, b}; break;
    case kFourColor: {
      const double k = 1 - std::max({r, g, b});
      if (k >= 1) {
        out.c.f = {0, 0, 0, 1};
      } else {
        out.c.f = {(1 - r - k) / (1 - k), (1 - g - k) / (1 - k), (1 - b - k) / (1 - k), k};
      }
      break;
    }
    default: break;
  }
  return out;
}

}  // namespace lb::host
