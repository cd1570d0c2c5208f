// Drawing a document with cairo: meshes as their patches with smooth colour
// and opacity, paths with fill and stroke, raster and placed images, groups;
// hidden art left out. Opacity and blending modes of art are honoured.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/Document.h"

typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;

namespace lb::render {

struct RenderOptions {
  double scale = 1;        // device pixels per document unit
  bool selection = false;  // overlay selected mesh vertices, knots and handles
  // Paint each mesh's colour unclipped and mask it with its outline
  // instead of filling the outline with it: the same picture, but PDF
  // viewers that do not anti-alias shading clips (poppler's Splash) then
  // anti-alias the mesh edge like any other fill.
  bool maskMeshes = false;
};

// An image in cairo's ARGB32 layout: one uint32 per pixel, premultiplied
// alpha, rows top first.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<uint32_t> pixels;
  // The document area drawn: left, top, right, bottom.
  AIRealRect area{0, 0, 0, 0};

  uint32_t at(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x]; }
  // Un-premultiplied channel values 0..255 of pixel (x, y).
  void rgba(int x, int y, int* r, int* g, int* b, int* a) const;
  // Device pixel of a document point.
  void toPixel(AIRealPoint p, double scale, double* x, double* y) const;
};

// The pixels of raster art as a new cairo ARGB32 surface (premultiplied):
// CMYK, RGB or grey, with its alpha channel, grey tinted by the art's fill
// colour when it has one. Null when the art has no complete pixel data or
// cairo cannot make a surface that size. The caller destroys the surface.
cairo_surface_t* imageSurface(const ArtObject& art);

// Grows r to cover o; while `any` is false, r becomes o and `any` true.
void unite(AIRealRect& r, const AIRealRect& o, bool& any);

// A box the surface of patch (i, j) cannot leave. Each point of a Coons
// patch is the sum of two blends of its sides less a blend of its corners,
// all three inside the box of the sides' control points, so the patch stays
// within that box grown by its own size on every side.
AIRealRect patchReach(const lb::host::GradientMesh& mesh, int i, int j);

// The area drawn: the artboard, or the bounds of all visible art.
AIRealRect renderArea(const lb::host::Document& doc);

// Draws the document on a white page. The picture is at most 16384 pixels
// a side and 64 Mi pixels; a larger area keeps its top-left corner and is
// cut at the right and bottom (`area` tells what was drawn). Throws
// std::runtime_error for a scale outside 0.0001..10000 or when the picture
// cannot be made.
Image renderDocument(const lb::host::Document& doc, const RenderOptions& options = {});

// Draws the document's art (no page background) onto any cairo context,
// `area` (left, top, right, bottom in document units) filling the device
// space from (0, 0) at options.scale device units per document unit. The
// PDF export draws through this onto cairo's PDF surface.
void drawDocument(const lb::host::Document& doc, cairo_t* cr, const RenderOptions& options, const AIRealRect& area);

// A rectangle of device pixels: x0 <= x1, y0 <= y1.
struct PixelRect {
  double x0, y0, x1, y1;
};

// Draws only the selection marks that renderDocument with `selection`
// lays over the picture, in cr's device space (`area`'s top-left corner at
// device (0, 0), `scale` device pixels per unit), leaving out marks wholly
// outside `visible` (null: none left out).
void drawSelectionMarks(const lb::host::Document& doc, cairo_t* cr, double scale, const AIRealRect& area,
                        const PixelRect* visible = nullptr);

// Writes the picture as PNG (fast zlib level), atomically (temporary file,
// then rename).
// Throws std::runtime_error on failure and leaves no file behind.
void renderDocumentPng(const lb::host::Document& doc, const std::string& outPng, const RenderOptions& options = {});

}  // namespace lb::render
