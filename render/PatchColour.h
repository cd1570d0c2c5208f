// How finely a mesh patch must be cut for straight colour interpolation:
// shared by the renderer (cairo mesh patches) and the SVG mesh writer
// (mesh-gradient patches), which both draw a patch's colour bilinearly
// between the corners of the pieces they cut it into.
#pragma once

#include <span>

#include "AITypes.h"
#include "host/mesh/GradientMesh.h"

namespace lb::render {

// Screen RGB and opacity, 0..1.
struct Rgba {
  double r = 1, g = 1, b = 1, a = 1;
};

// The mesh's colour and opacity at (s, t) of patch (i, j), as screen RGB,
// clamped to 0..1 (non-finite components read as 0).
Rgba patchRgba(const lb::host::GradientMesh& mesh, int i, int j, double s, double t);

// Colour samples of a patch a third apart, c[a][b] at s = a / 3, t = b / 3,
// and the largest second differences of any channel along s and along t.
struct PatchSamples {
  Rgba c[4][4];
  double bendS = 0, bendT = 0;
};
PatchSamples samplePatch(const lb::host::GradientMesh& mesh, int i, int j);

// Equal steps (1..32) along a direction whose samples bend by `bend` that
// keep straight interpolation within 1.5/255, but no more than make pieces
// `minCell` long over `length` (minCell 0: no such limit).
int colourCuts(double bend, double length, double minCell);

// Length of a control polygon: a cheap upper bound of its curve's length.
double polygonLength(std::span<const AIRealPoint> pts);

}  // namespace lb::render
