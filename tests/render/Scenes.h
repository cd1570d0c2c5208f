// Art for render tests: black meshes over a box (optionally curved), filled rectangles, rasters,
// node paint; with the document, mesh and render headers the render tests use.
#pragma once

#include <gtest/gtest.h>

#include <cmath>

#include "host/Document.h"
#include "host/mesh/GradientMesh.h"
#include "render/Render.h"
#include "support/Engine.h"

namespace lbtest {

// Un-premultiplied channels of a pixel.
struct Rgba {
  int r, g, b, a;
};
inline Rgba rgbaAt(const lb::render::Image& img, int x, int y) {
  Rgba c;
  img.rgba(x, y, &c.r, &c.g, &c.b, &c.a);
  return c;
}

// Every node of m gets colour c and opacity o.
inline void paintNodes(lb::host::GradientMesh& m, AIColor c, double o = 1) {
  for (int j = 0; j <= m.sizeJ(); ++j)
    for (int i = 0; i <= m.sizeI(); ++i) {
      auto n = m.nodeData(i, j);
      n.color = c;
      n.opacity = o;
      m.setNodeData(i, j, n);
    }
}

// A black I x J mesh over [l, r] x [b, t]; `bend` curves every run and
// moves inner nodes, so borders and patch sides are curved.
inline ArtObject* addMesh(lb::host::Document& doc, ArtObject* layer, double l, double b, double r, double t, int I = 2,
                          int J = 2, double bend = 0) {
  ArtObject* a = nullptr;
  EXPECT_EQ(doc.newArt(kMeshArt, kPlaceInsideOnTop, layer, &a), kNoErr);
  lb::host::GradientMesh& m = *a->mesh;
  m.initCartesian(I, J);
  m.transform(AIRealMatrix{r - l, 0, 0, t - b, l, b});
  paintNodes(m, Rgb(0, 0, 0));
  if (bend == 0) return a;
  for (int j = 1; j < J; ++j)
    for (int i = 1; i < I; ++i) {
      auto n = m.nodeData(i, j);
      n.p.h += bend * std::sin(3.0 * i + j), n.p.v += bend * std::cos(i + 2.0 * j);
      m.setNodeData(i, j, n);
    }
  for (int axis = 0; axis < 2; ++axis)
    for (int j = 0; j <= J - axis; ++j)
      for (int i = 0; i <= I - (1 - axis); ++i) {
        auto run = m.runData(axis, i, j);
        const AIRealPoint p0 = run.points.front(), p3 = run.points.back();
        const double nx = -(p3.v - p0.v), ny = p3.h - p0.h;  // a normal as long as the run
        const double k = bend / 4 * std::sin(1.0 + i + 2 * j + axis);
        run.points[1] = {p0.h + (p3.h - p0.h) / 3 + k * nx, p0.v + (p3.v - p0.v) / 3 + k * ny};
        run.points[2] = {p0.h + 2 * (p3.h - p0.h) / 3 - k * nx / 2, p0.v + 2 * (p3.v - p0.v) / 3 - k * ny / 2};
        m.setRunData(axis, i, j, run);
      }
  return a;
}

// A closed rectangle path filled with `fill`, no stroke.
inline ArtObject* addRect(lb::host::Document& doc, ArtObject* layer, double l, double b, double r, double t,
                          AIColor fill = Rgb(0, 0, 0)) {
  ArtObject* p = nullptr;
  EXPECT_EQ(doc.newArt(kPathArt, kPlaceInsideOnTop, layer, &p), kNoErr);
  for (AIRealPoint q : {AIRealPoint{l, b}, AIRealPoint{r, b}, AIRealPoint{r, t}, AIRealPoint{l, t}})
    p->segments.push_back({q, q, q, 1});
  p->closed = true;
  p->style.fillPaint = 1;
  p->style.fill.color = fill;
  p->style.strokePaint = 0;
  return p;
}

// A black 2 x 2 RGB raster placed by m.
inline ArtObject* addRaster(lb::host::Document& doc, ArtObject* layer, AIRealMatrix m) {
  ArtObject* ras = nullptr;
  EXPECT_EQ(doc.newArt(kRasterArt, kPlaceInsideOnTop, layer, &ras), kNoErr);
  ras->image.width = 2, ras->image.height = 2, ras->image.space = kRGBColorSpace, ras->image.bits = 8;
  ras->image.pixels.assign(12, 0);
  ras->image.matrix = m;
  return ras;
}

}  // namespace lbtest
