// A mesh as a grid of single-cubic-sided patches with corner colours: the
// form SVG mesh gradients hold, used by the SVG writer and reader.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "AITypes.h"
#include "host/mesh/GradientMesh.h"
#include "render/PatchColour.h"

namespace lb::io::svg {

using GridColour = lb::render::Rgba;

// cols x rows patches over (cols + 1) x (rows + 1) corners, indexed
// [a + b * (cols + 1)] with a across the columns and b across the rows.
// Sides are single cubics: hside[a + b * cols] runs from corner (a, b) to
// (a + 1, b), vside[a + b * (cols + 1)] from (a, b) to (a, b + 1); each
// holds its two inner control points.
struct MeshGrid {
  int cols = 0, rows = 0;
  std::vector<AIRealPoint> corner;
  std::vector<GridColour> colour;
  std::vector<std::array<AIRealPoint, 2>> hside, vside;

  AIRealPoint& at(int a, int b) { return corner[a + b * (cols + 1)]; }
  const AIRealPoint& at(int a, int b) const { return corner[a + b * (cols + 1)]; }
  GridColour& colourAt(int a, int b) { return colour[a + b * (cols + 1)]; }
  const GridColour& colourAt(int a, int b) const { return colour[a + b * (cols + 1)]; }
  void resize(int c, int r);
};

// Cuts every mesh patch where its runs have knots or inner vertices (so
// that each grid side is one cubic of the mesh surface and the shape stays
// exact) and, for the colour, into as many equal steps as keep bilinear
// interpolation between grid corners within about 1.5/255 of the mesh's
// colour field, with cells no smaller than `minCell` document units. Cuts
// run through the whole grid line, so neighbouring patches share sides.
MeshGrid gridFromMesh(const lb::host::GradientMesh& mesh, double minCell);

// One mesh patch per grid patch; node colours become RGB.
std::unique_ptr<lb::host::GradientMesh> meshFromGrid(const MeshGrid& grid);

}  // namespace lb::io::svg
