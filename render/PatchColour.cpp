// Colour sampling of mesh patches and the cut counts derived from it.
#include "render/PatchColour.h"

#include <algorithm>
#include <cmath>

#include "host/Color.h"

namespace lb::render {

namespace {
constexpr double kColourTolerance = 1.5 / 255;

double secondDifference(const Rgba& x, const Rgba& y, const Rgba& z) {
  auto d = [](double a, double b, double c) { return std::fabs(a - 2 * b + c); };
  return std::max({d(x.r, y.r, z.r), d(x.g, y.g, z.g), d(x.b, y.b, z.b), d(x.a, y.a, z.a)});
}
}  // namespace

Rgba patchRgba(const lb::host::GradientMesh& mesh, int i, int j, double s, double t) {
  Rgba c;
  lb::host::colorToRGB(mesh.patchColor(i, j, s, t), &c.r, &c.g, &c.b);
  c.a = mesh.patchOpacity(i, j, s, t);
  for (double* x : {&c.r, &c.g, &c.b, &c.a}) *x = std::isfinite(*x) ? std::clamp(*x, 0.0, 1.0) : 0.0;
  return c;
}

PatchSamples samplePatch(const lb::host::GradientMesh& mesh, int i, int j) {
  PatchSamples p;
  for (int b = 0; b <= 3; ++b)
    for (int a = 0; a <= 3; ++a) p.c[a][b] = patchRgba(mesh, i, j, a / 3.0, b / 3.0);
  for (int b = 0; b <= 3; ++b)
    for (int a = 1; a <= 2; ++a) {
      p.bendS = std::max(p.bendS, secondDifference(p.c[a - 1][b], p.c[a][b], p.c[a + 1][b]));
      p.bendT = std::max(p.bendT, secondDifference(p.c[b][a - 1], p.c[b][a], p.c[b][a + 1]));
    }
  return p;
}

// A second difference d over steps of a third means |f''| ~ 9 d; straight
// interpolation over steps of 1 / n then misses by up to 9 d / (8 n^2).
int colourCuts(double bend, double length, double minCell) {
  const double miss = 9 * bend / 8;
  if (miss <= kColourTolerance) return 1;
  const double byColour = std::ceil(std::sqrt(miss / kColourTolerance));
  const double bySize = minCell > 0 ? std::ceil(length / minCell) : byColour;
  return static_cast<int>(std::clamp(std::min(byColour, bySize), 1.0, 32.0));
}

double polygonLength(std::span<const AIRealPoint> pts) {
  double len = 0;
  for (size_t k = 1; k < pts.size(); ++k) len += std::hypot(pts[k].h - pts[k - 1].h, pts[k].v - pts[k - 1].v);
  return len;
}

}  // namespace lb::render
