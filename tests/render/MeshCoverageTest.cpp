// Mesh coverage: a mesh covers exactly the area inside its outline, with the
// anti-aliasing of a path fill of that outline, at any scale, without seams
// between its patches or between meshes sharing a border.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "Scenes.h"

using lb::host::Document;
using lb::host::GradientMesh;
using lb::render::Image;
using lb::render::RenderOptions;
using namespace lbtest;

namespace {

// A black closed path along the mesh's outline (the reference coverage).
void addOutlinePath(Document& doc, ArtObject* layer, const GradientMesh& m) {
  std::vector<AIRealPoint> pts;  // anchor, out, in, anchor, ...
  auto run = [&](std::span<const AIRealPoint> r, bool forward) {
    const size_t n = r.size();
    for (size_t k = 0; k + 1 < n; ++k) pts.push_back(forward ? r[k] : r[n - 1 - k]);
  };
  for (int i = 0; i < m.sizeI(); ++i) run(m.runPoints(0, i, 0), true);
  for (int j = 0; j < m.sizeJ(); ++j) run(m.runPoints(1, m.sizeI(), j), true);
  for (int i = m.sizeI() - 1; i >= 0; --i) run(m.runPoints(0, i, m.sizeJ()), false);
  for (int j = m.sizeJ() - 1; j >= 0; --j) run(m.runPoints(1, 0, j), false);
  ArtObject* p = nullptr;
  ASSERT_EQ(doc.newArt(kPathArt, kPlaceInsideOnTop, layer, &p), kNoErr);
  const size_t n = pts.size() / 3;
  for (size_t k = 0; k < n; ++k)
    p->segments.push_back({pts[3 * k], pts[(3 * k + pts.size() - 1) % pts.size()], pts[3 * k + 1], 1});
  p->closed = true;
  p->style.fillPaint = 1;
  p->style.fill.color = Rgb(0, 0, 0);
  p->style.strokePaint = 0;
}

struct Box {
  double l, b, r, t;
};

// A 20 x 20 artboard and the document's layer.
ArtObject* Page(Document& doc) {
  doc.artboard = AIRealRect{0, 20, 20, 0};
  return doc.addLayer("Layer 1");
}

// Largest difference of the red channel between two pictures.
int worstGap(const Image& a, const Image& b, int* where = nullptr) {
  int worst = 0;
  for (size_t k = 0; k < a.pixels.size(); ++k) {
    const int d = std::abs(static_cast<int>((a.pixels[k] >> 16) & 255) - static_cast<int>((b.pixels[k] >> 16) & 255));
    if (d > worst) {
      worst = d;
      if (where) *where = static_cast<int>(k);
    }
  }
  return worst;
}

// The mesh picture equals the picture of path fills of the same outlines.
TEST(MeshCoverage, MatchesAPathFillOfTheOutline) {
  const struct {
    const char* name;
    std::vector<Box> meshes;  // drawn one after the other
    int I, J;
    double bend, scale;
  } cases[] = {
      {"OnPixelEdges", {{5, 5, 15, 15}}, 1, 1, 0, 1},
      {"HalfwayThroughPixels", {{5.5, 5.5, 14.5, 14.5}}, 1, 1, 0, 1},
      {"UnevenFractions", {{5.2, 4.7, 14.35, 13.9}}, 2, 3, 0, 1},
      {"HalfwayAtScaleTwo", {{5.25, 5.25, 14.75, 14.75}}, 1, 1, 0, 2},
      {"FractionsAtScaleThree", {{3.1, 2.9, 16.3, 15.2}}, 3, 2, 0, 3},
      {"FractionsAtScaleOnePointSeven", {{3.1, 2.9, 16.3, 15.2}}, 2, 2, 0, 1.7},
      {"CurvedOnePatch", {{4, 4, 16, 16}}, 1, 1, 1.5, 1},
      {"CurvedManyPatches", {{3, 3, 17, 17}}, 4, 3, 1.5, 1},
      {"CurvedAtScaleTwoAndAHalf", {{3.3, 3.6, 16.2, 16.9}}, 3, 3, 1.2, 2.5},
      {"AbuttingOnAPixelEdge", {{5, 5, 10, 15}, {10, 5, 15, 15}}, 2, 2, 0, 1},
      {"AbuttingHalfwayThroughPixels", {{5, 5, 10.5, 15}, {10.5, 5, 15, 15}}, 2, 2, 0, 1},
      {"AbuttingAtScaleThree", {{5, 5.3, 9.7, 15}, {9.7, 5.3, 15, 15}}, 1, 2, 0, 3}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Document meshDoc, pathDoc;
    ArtObject* meshLayer = Page(meshDoc);
    ArtObject* pathLayer = Page(pathDoc);
    for (const Box& b : c.meshes) {
      ArtObject* m = addMesh(meshDoc, meshLayer, b.l, b.b, b.r, b.t, c.I, c.J, c.bend);
      addOutlinePath(pathDoc, pathLayer, *m->mesh);
    }
    const Image meshPic = lb::render::renderDocument(meshDoc, RenderOptions{c.scale, false});
    const Image pathPic = lb::render::renderDocument(pathDoc, RenderOptions{c.scale, false});
    ASSERT_EQ(std::make_pair(meshPic.width, meshPic.height), std::make_pair(pathPic.width, pathPic.height));
    int where = 0;
    const int gap = worstGap(meshPic, pathPic, &where);
    EXPECT_LE(gap, 3) << "at pixel (" << where % meshPic.width << ", " << where / meshPic.width << ")";
  }
}

// Exact pixels of a mesh whose border lies on pixel edges, at several
// scales: black inside, white outside, nothing one pixel too far.
TEST(MeshCoverageExact, BorderOnPixelEdgesFillsExactlyTheCoveredPixels) {
  struct Case {
    double scale, lo, hi;  // the mesh covers lo..hi in x and y
    int first, last;       // covered pixel columns and rows
  };
  // At scale 0.5 the border 6..14 lands on device 3..7.
  for (const Case& c : {Case{1, 5, 15, 5, 14}, Case{2, 5, 15, 10, 29}, Case{0.5, 6, 14, 3, 6}, Case{4, 5, 15, 20, 59}}) {
    Document doc;
    addMesh(doc, Page(doc), c.lo, c.lo, c.hi, c.hi);
    const Image img = lb::render::renderDocument(doc, RenderOptions{c.scale, false});
    for (int y = 0; y < img.height; ++y)
      for (int x = 0; x < img.width; ++x) {
        const bool inside = x >= c.first && x <= c.last && y >= c.first && y <= c.last;
        ASSERT_EQ(img.at(x, y), inside ? 0xff000000u : 0xffffffffu)
            << "pixel (" << x << ", " << y << ") at scale " << c.scale;
      }
  }
}

// Two meshes sharing a border on a pixel edge leave no light pixel there,
// nor do the patches of one mesh between them.
TEST(MeshCoverageExact, SharedBordersLeaveNoLightSeam) {
  Document doc;
  ArtObject* layer = Page(doc);
  addMesh(doc, layer, 2, 2, 9, 18, 3, 5, 0);
  addMesh(doc, layer, 9, 2, 18, 18, 4, 2, 0);
  for (double scale : {1.0, 2.0, 3.0}) {
    const Image img = lb::render::renderDocument(doc, RenderOptions{scale, false});
    for (int y = static_cast<int>(2 * scale); y < static_cast<int>(18 * scale); ++y)
      for (int x = static_cast<int>(2 * scale); x < static_cast<int>(18 * scale); ++x)
        ASSERT_EQ(img.at(x, y), 0xff000000u) << "pixel (" << x << ", " << y << ") at scale " << scale;
  }
}

// The selection overlay's border line is centred on the mesh's border at
// every scale: the two pixel columns beside the border are tinted alike.
TEST(MeshCoverageExact, SelectionOverlayLinesSitOnTheMeshBorder) {
  for (double scale : {1.0, 2.0, 3.0}) {
    Document doc;
    ArtObject* a = addMesh(doc, Page(doc), 5, 5, 15, 15, 1, 1, 0);
    paintNodes(*a->mesh, Rgb(1, 1, 1));
    a->userAttr |= kArtSelected;
    const Image img = lb::render::renderDocument(doc, RenderOptions{scale, true});
    const int y = static_cast<int>(10 * scale);
    const int edge = static_cast<int>(5 * scale);  // device x of the left border
    const Rgba out = rgbaAt(img, edge - 1, y), on = rgbaAt(img, edge, y), in = rgbaAt(img, edge + 1, y);
    EXPECT_GT(out.b - out.r, 40) << "scale " << scale;
    EXPECT_NEAR(out.r, on.r, 2) << "scale " << scale;
    EXPECT_NEAR(out.b, on.b, 2) << "scale " << scale;
    EXPECT_EQ(in.r + in.g + in.b, 3 * 255) << "scale " << scale;
  }
}

}  // namespace
