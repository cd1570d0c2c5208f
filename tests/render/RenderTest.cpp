// The picture agrees with the engine: pixels at evaluated points carry the
// evaluated colour and opacity. Art opacity, blending, hidden art, paths,
// images and the selection overlay; atomic PNG output.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <random>

#include "host/Document.h"
#include "host/mesh/GradientMesh.h"
#include "render/Render.h"
#include "Scenes.h"
#include "support/Geometry.h"

using lb::host::Document;
using lb::host::GradientMesh;
using lb::render::Image;
using lb::render::RenderOptions;
using lbtest::rgb;

namespace {

class Render : public ::testing::Test {
 protected:
  void SetUp() override {
    layer = doc.addLayer("Layer 1");
    doc.artboard = AIRealRect{0, 100, 100, 0};
  }
  // An I x J mesh over 10..90 with random node colours.
  ArtObject* addMesh(int I, int J, unsigned seed, double bend = 0) {
    ArtObject* a = lbtest::addMesh(doc, layer, 10, 10, 90, 90, I, J, bend);
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> d(0, 1);
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i <= I; ++i) {
        auto n = a->mesh->nodeData(i, j);
        n.color = rgb(d(rng), d(rng), d(rng));
        a->mesh->setNodeData(i, j, n);
      }
    return a;
  }
  // Pixel colour at a document point.
  void pixelAt(const Image& img, double scale, AIRealPoint p, int* r, int* g, int* b, int* a) {
    double x, y;
    img.toPixel(p, scale, &x, &y);
    img.rgba(static_cast<int>(x), static_cast<int>(y), r, g, b, a);
  }
  Document doc;
  ArtObject* layer = nullptr;
};

}  // namespace

TEST_F(Render, MeshPixelsMatchEvaluatedColours) {
  ArtObject* a = addMesh(3, 2, 5, 1);
  const GradientMesh& m = *a->mesh;
  const double scale = 2;
  const Image img = lb::render::renderDocument(doc, RenderOptions{scale, false});
  ASSERT_EQ(img.width, 200);
  ASSERT_EQ(img.height, 200);
  int worst = 0, n = 0;
  for (double u = 0.03; u < 1; u += 0.047)
    for (double v = 0.03; v < 1; v += 0.047) {
      const AIRealPoint p = m.evalPoint(u, v);
      double er, eg, eb;
      lb::host::colorToRGB(m.evalColor(u, v), &er, &eg, &eb);
      int r, g, b, al;
      pixelAt(img, scale, p, &r, &g, &b, &al);
      EXPECT_EQ(al, 255);
      worst = std::max({worst, std::abs(r - static_cast<int>(std::lround(er * 255))),
                        std::abs(g - static_cast<int>(std::lround(eg * 255))),
                        std::abs(b - static_cast<int>(std::lround(eb * 255)))});
      ++n;
    }
  EXPECT_GT(n, 300);
  EXPECT_LE(worst, 8) << "largest channel difference between picture and evaluation";
  // Outside the mesh the page stays white.
  int r, g, b, al;
  img.rgba(2, 2, &r, &g, &b, &al);
  EXPECT_EQ(r + g + b, 3 * 255);
}

TEST_F(Render, NodeOpacityArtOpacityAndBlendingAreHonoured) {
  ArtObject* a = addMesh(1, 1, 9);
  GradientMesh& m = *a->mesh;
  lbtest::paintNodes(m, rgb(0, 0, 1), 0.5);
  const AIRealPoint mid{50, 50};
  int r, g, b, al;
  pixelAt(lb::render::renderDocument(doc), 1, mid, &r, &g, &b, &al);
  EXPECT_NEAR(r, 128, 2);  // half blue over white
  EXPECT_NEAR(b, 255, 1);
  a->opacity = 0.5;
  pixelAt(lb::render::renderDocument(doc), 1, mid, &r, &g, &b, &al);
  EXPECT_NEAR(r, 191, 2);
  // Multiply of blue over a red square below gives black.
  ArtObject* sq = lbtest::addRect(doc, layer, 0, 0, 100, 100, rgb(1, 0, 0));
  ASSERT_EQ(doc.reorderArt(sq, kPlaceBelow, a), kNoErr);
  a->opacity = 1;
  lbtest::paintNodes(m, rgb(0, 0, 1));
  a->blendMode = kAIMultiplyBlendingMode;
  pixelAt(lb::render::renderDocument(doc), 1, mid, &r, &g, &b, &al);
  EXPECT_LT(r + g + b, 6);
  pixelAt(lb::render::renderDocument(doc), 1, AIRealPoint{5, 5}, &r, &g, &b, &al);
  EXPECT_EQ(r, 255);
  EXPECT_EQ(g, 0);
  // Hidden art is left out.
  a->userAttr |= kArtHidden;
  pixelAt(lb::render::renderDocument(doc), 1, mid, &r, &g, &b, &al);
  EXPECT_EQ(r, 255);
  EXPECT_EQ(b, 0);
}

TEST_F(Render, RasterPixelsLandWhereTheMatrixPutsThem) {
  ArtObject* ras = nullptr;
  ASSERT_EQ(doc.newArt(kRasterArt, kPlaceInsideOnTop, layer, &ras), kNoErr);
  ArtImage& im = ras->image;
  im.width = 2, im.height = 2, im.space = kRGBColorSpace, im.bits = 8;
  // Rows top first: red, green / blue, white.
  im.pixels = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255};
  im.matrix = AIRealMatrix{10, 0, 0, 10, 20, 60};  // image (0, 0) at document (20, 60)
  int r, g, b, al;
  const Image img = lb::render::renderDocument(doc);
  pixelAt(img, 1, AIRealPoint{25, 55}, &r, &g, &b, &al);  // top-left pixel
  EXPECT_EQ(r, 255);
  EXPECT_EQ(g, 0);
  pixelAt(img, 1, AIRealPoint{35, 45}, &r, &g, &b, &al);  // bottom-right pixel
  EXPECT_EQ(r + g + b, 3 * 255);
  pixelAt(img, 1, AIRealPoint{25, 45}, &r, &g, &b, &al);  // bottom-left
  EXPECT_EQ(b, 255);
  EXPECT_EQ(r, 0);
}

TEST_F(Render, SelectionOverlayMarksSelectedVertices) {
  ArtObject* a = addMesh(2, 2, 1);
  a->userAttr |= kArtSelected;
  a->mesh->setSelected(a->mesh->node(1, 1), true);
  const AIRealPoint node = a->mesh->point(a->mesh->node(1, 1));
  const Image plain = lb::render::renderDocument(doc, RenderOptions{1, false});
  const Image over = lb::render::renderDocument(doc, RenderOptions{1, true});
  int r0, g0, b0, a0, r1, g1, b1, a1;
  pixelAt(plain, 1, node, &r0, &g0, &b0, &a0);
  pixelAt(over, 1, node, &r1, &g1, &b1, &a1);
  EXPECT_LT(r1, 80);
  EXPECT_GT(b1, 200);
  EXPECT_NE(plain.pixels, over.pixels);
}

TEST_F(Render, PngIsWrittenAtomically) {
  addMesh(2, 2, 2, 1);
  const auto dir = std::filesystem::temp_directory_path() / ("lb-render-" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  const auto out = dir / "pic.png";
  lb::render::renderDocumentPng(doc, out.string(), RenderOptions{0.5, false});
  ASSERT_TRUE(std::filesystem::exists(out));
  EXPECT_GT(std::filesystem::file_size(out), 100u);
  size_t files = 0;
  for ([[maybe_unused]] auto& e : std::filesystem::directory_iterator(dir)) ++files;
  EXPECT_EQ(files, 1u) << "no temporary file left behind";
  EXPECT_THROW(lb::render::renderDocumentPng(doc, (dir / "missing" / "x.png").string()), std::runtime_error);
  std::filesystem::remove_all(dir);
}

TEST_F(Render, AreaIsTheArtboardOrTheBoundsOfAllArt) {
  addMesh(1, 1, 3);
  doc.artboard.reset();
  const AIRealRect r = lb::render::renderArea(doc);
  EXPECT_PT_NEAR((AIRealPoint{r.left, r.bottom}), (AIRealPoint{10, 10}), 1e-9);
  EXPECT_PT_NEAR((AIRealPoint{r.right, r.top}), (AIRealPoint{90, 90}), 1e-9);
}
