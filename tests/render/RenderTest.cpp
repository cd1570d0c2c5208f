// The picture agrees with the engine: pixels at evaluated points carry the
// evaluated colour and opacity. Art opacity, blending, hidden art, paths,
// images and the selection overlay; atomic PNG output.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <random>

#include "Scenes.h"
#include "support/Geometry.h"

using lb::host::Document;
using lb::host::GradientMesh;
using lb::render::Image;
using lb::render::RenderOptions;
using lbtest::Rgb;
using lbtest::Rgba;

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
        n.color = Rgb(d(rng), d(rng), d(rng));
        a->mesh->setNodeData(i, j, n);
      }
    return a;
  }
  // Pixel colour at a document point.
  static Rgba pixelAt(const Image& img, double scale, AIRealPoint p) {
    double x, y;
    img.toPixel(p, scale, &x, &y);
    return lbtest::rgbaAt(img, static_cast<int>(x), static_cast<int>(y));
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
  ASSERT_EQ(std::make_pair(img.width, img.height), std::make_pair(200, 200));
  int worst = 0, n = 0;
  for (double u = 0.03; u < 1; u += 0.047)
    for (double v = 0.03; v < 1; v += 0.047) {
      const AIRealPoint p = m.evalPoint(u, v);
      double er, eg, eb;
      lb::host::colorToRGB(m.evalColor(u, v), &er, &eg, &eb);
      const Rgba c = pixelAt(img, scale, p);
      EXPECT_EQ(c.a, 255);
      worst = std::max({worst, std::abs(c.r - static_cast<int>(std::lround(er * 255))),
                        std::abs(c.g - static_cast<int>(std::lround(eg * 255))),
                        std::abs(c.b - static_cast<int>(std::lround(eb * 255)))});
      ++n;
    }
  EXPECT_GT(n, 300);
  EXPECT_LE(worst, 8) << "largest channel difference between picture and evaluation";
  // Outside the mesh the page stays white.
  const Rgba page = lbtest::rgbaAt(img, 2, 2);
  EXPECT_EQ(page.r + page.g + page.b, 3 * 255);
}

TEST_F(Render, NodeOpacityArtOpacityAndBlendingAreHonoured) {
  ArtObject* a = addMesh(1, 1, 9);
  GradientMesh& m = *a->mesh;
  lbtest::paintNodes(m, Rgb(0, 0, 1), 0.5);
  auto at = [&](AIRealPoint p) { return pixelAt(lb::render::renderDocument(doc), 1, p); };
  const AIRealPoint mid{50, 50};
  EXPECT_NEAR(at(mid).r, 128, 2);  // half blue over white
  EXPECT_NEAR(at(mid).b, 255, 1);
  a->opacity = 0.5;
  EXPECT_NEAR(at(mid).r, 191, 2);
  // Multiply of blue over a red square below gives black.
  ArtObject* sq = lbtest::addRect(doc, layer, 0, 0, 100, 100, Rgb(1, 0, 0));
  ASSERT_EQ(doc.reorderArt(sq, kPlaceBelow, a), kNoErr);
  a->opacity = 1;
  lbtest::paintNodes(m, Rgb(0, 0, 1));
  a->blendMode = kAIMultiplyBlendingMode;
  const Rgba multiplied = at(mid), red = at({5, 5});
  EXPECT_LT(multiplied.r + multiplied.g + multiplied.b, 6);
  EXPECT_EQ(std::make_pair(red.r, red.g), std::make_pair(255, 0));
  // Hidden art is left out.
  a->userAttr |= kArtHidden;
  const Rgba hidden = at(mid);
  EXPECT_EQ(std::make_pair(hidden.r, hidden.b), std::make_pair(255, 0));
}

TEST_F(Render, RasterPixelsLandWhereTheMatrixPutsThem) {
  // Image (0, 0) at document (20, 60); rows top first: red, green / blue, white.
  ArtObject* ras = lbtest::addRaster(doc, layer, AIRealMatrix{10, 0, 0, 10, 20, 60});
  ras->image.pixels = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255};
  const Image img = lb::render::renderDocument(doc);
  const Rgba topLeft = pixelAt(img, 1, {25, 55}), bottomRight = pixelAt(img, 1, {35, 45}),
             bottomLeft = pixelAt(img, 1, {25, 45});
  EXPECT_EQ(std::make_pair(topLeft.r, topLeft.g), std::make_pair(255, 0));
  EXPECT_EQ(bottomRight.r + bottomRight.g + bottomRight.b, 3 * 255);
  EXPECT_EQ(std::make_pair(bottomLeft.b, bottomLeft.r), std::make_pair(255, 0));
}

TEST_F(Render, SelectionOverlayMarksSelectedVertices) {
  ArtObject* a = addMesh(2, 2, 1);
  a->userAttr |= kArtSelected;
  a->mesh->setSelected(a->mesh->node(1, 1), true);
  const AIRealPoint node = a->mesh->point(a->mesh->node(1, 1));
  const Image plain = lb::render::renderDocument(doc, RenderOptions{1, false});
  const Image over = lb::render::renderDocument(doc, RenderOptions{1, true});
  const Rgba marked = pixelAt(over, 1, node);
  EXPECT_LT(marked.r, 80);
  EXPECT_GT(marked.b, 200);
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
