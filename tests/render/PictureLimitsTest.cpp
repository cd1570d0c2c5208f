// Pictures of any document: areas too large are cut to a bounded picture,
// art far away or with unusable geometry is left out instead of failing,
// and the PNG writer keeps every pixel.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <limits>
#include <string>
#include <unistd.h>

#include "render/Png.h"
#include "Scenes.h"
#include "interchange/Pictures.h"

using lb::host::Document;
using lb::render::Image;
using lb::render::RenderOptions;
using namespace lbtest;

namespace {

constexpr double kFar = 2147483647.0;  // 2^31 - 1
const double kNaN = std::numeric_limits<double>::quiet_NaN();

struct LimitCase {
  const char* name;
  std::function<void(Document&, ArtObject*)> build;
  double scale;
  int width, height;  // expected picture size
  int probeX, probeY;  // a pixel, and whether it is black (else white)
  bool probeBlack;
  bool selection = false;  // with the selection overlay
};

class PictureLimits : public ::testing::TestWithParam<LimitCase> {};

TEST_P(PictureLimits, RendersABoundedPicture) {
  const LimitCase& c = GetParam();
  Document doc;
  ArtObject* layer = doc.addLayer("Layer 1");
  doc.artboard = AIRealRect{0, 100, 100, 0};  // unless the case sets its own or none
  c.build(doc, layer);
  Image img;
  ASSERT_NO_THROW(img = lb::render::renderDocument(doc, RenderOptions{c.scale, c.selection}));
  EXPECT_EQ(std::make_pair(img.width, img.height), std::make_pair(c.width, c.height));
  EXPECT_LE(static_cast<double>(img.width) * img.height, 64.0 * 1024 * 1024);
  ASSERT_EQ(img.pixels.size(), static_cast<size_t>(img.width) * img.height);
  EXPECT_EQ(img.at(c.probeX, c.probeY), c.probeBlack ? 0xff000000u : 0xffffffffu);
}

INSTANTIATE_TEST_SUITE_P(
    Areas, PictureLimits,
    ::testing::Values(
        // Bounds of all art reach 2^31: the picture keeps the top-left corner.
        LimitCase{"ArtNearTwoToThe31",
                  [](Document& d, ArtObject* l) {
                    d.artboard.reset();
                    addRect(d, l, 0, kFar - 10, 10, kFar);
                    addRect(d, l, kFar - 1, 0, kFar, 1);
                  },
                  1, 16384, 4096, 5, 5, true},
        LimitCase{"HugeArtboardAtScaleTwo",
                  [](Document& d, ArtObject* l) {
                    d.artboard = AIRealRect{-kFar, kFar, kFar, -kFar};
                    addMesh(d, l, -kFar, kFar - 4, -kFar + 4, kFar);
                  },
                  2, 16384, 4096, 7, 7, true},
        LimitCase{"TallArtboardKeepsItsWidth",
                  [](Document& d, ArtObject* l) {
                    d.artboard = AIRealRect{0, 1e7, 100, 0};
                    addMesh(d, l, 0, 1e7 - 10, 10, 1e7);
                  },
                  1, 100, 16384, 9, 9, true},
        // Art reaching far beyond the picture is drawn where it is inside.
        LimitCase{"PathReachingFarAway",
                  [](Document& d, ArtObject* l) { addRect(d, l, 50, -kFar, kFar, 50); },
                  1, 100, 100, 75, 75, true},
        LimitCase{"MeshReachingFarAway",
                  [](Document& d, ArtObject* l) { addMesh(d, l, 50, -1e7, 1e7, 50); },
                  1, 100, 100, 75, 75, true},
        LimitCase{"SelectedMeshReachingFarAway",
                  [](Document& d, ArtObject* l) {
                    ArtObject* a = addMesh(d, l, 50, -kFar, kFar, 50);
                    a->userAttr |= kArtSelected;
                    a->mesh->selectAll();
                  },
                  1, 100, 100, 75, 75, true, true},
        LimitCase{"PathWithHugeAndNaNPoints",
                  [](Document& d, ArtObject* l) {
                    addRect(d, l, 0, 0, 10, 10);
                    addRect(d, l, 50, -1e300, 1e300, 50);
                    addRect(d, l, 0, 0, 100, kNaN);
                  },
                  1, 100, 100, 75, 75, true},
        LimitCase{"SelectedMeshWithANaNNodeOrColour",
                  [](Document& d, ArtObject* l) {
                    ArtObject* a = addMesh(d, l, 0, 0, 50, 50);
                    auto n = a->mesh->nodeData(1, 1);
                    n.p.h = kNaN;
                    a->mesh->setNodeData(1, 1, n);
                    a->userAttr |= kArtSelected;
                    a->mesh->selectAll();
                    ArtObject* b = addMesh(d, l, 60, 60, 100, 100);
                    auto m = b->mesh->nodeData(0, 0);
                    m.color.c.rgb = {kNaN, 0, 0};
                    m.opacity = kNaN;
                    b->mesh->setNodeData(0, 0, m);
                  },
                  1, 100, 100, 25, 75, false, true},
        LimitCase{"ArtFarAwayIsLeftOut",
                  [](Document& d, ArtObject* l) {
                    addMesh(d, l, kFar - 10, kFar - 10, kFar, kFar);
                    addRect(d, l, -kFar, -kFar, -kFar + 10, -kFar + 10);
                  },
                  1, 100, 100, 50, 50, false},
        // Images whose matrix cairo cannot invert are left out.
        LimitCase{"RasterWithZeroMatrix",
                  [](Document& d, ArtObject* l) { addRaster(d, l, AIRealMatrix{0, 0, 0, 0, 0, 0}); },
                  1, 100, 100, 0, 99, false},
        LimitCase{"RasterFlattenedToALine",
                  [](Document& d, ArtObject* l) { addRaster(d, l, AIRealMatrix{10, 10, 20, 20, 0, 0}); },
                  1, 100, 100, 5, 95, false},
        LimitCase{"RasterWithNaNMatrix",
                  [](Document& d, ArtObject* l) {
                    addRaster(d, l, AIRealMatrix{kNaN, 0, 0, 10, 0, 0});
                    addRect(d, l, 0, 0, 10, 10);
                  },
                  1, 100, 100, 5, 95, true},
        LimitCase{"NaNArtboard",
                  [](Document& d, ArtObject*) { d.artboard = AIRealRect{kNaN, kNaN, kNaN, kNaN}; },
                  1, 1, 1, 0, 0, false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(PictureLimitsScale, ScalesOutsideTheUsableRangeAreRefused) {
  Document doc;
  doc.addLayer("Layer 1");
  for (double s : {0.0, -1.0, 1e-5, 2e4, kNaN, std::numeric_limits<double>::infinity()})
    EXPECT_THROW(lb::render::renderDocument(doc, RenderOptions{s, false}), std::runtime_error) << s;
  EXPECT_NO_THROW(lb::render::renderDocument(doc, RenderOptions{1e-4, false}));
}

TEST(PngWriter, EveryPixelSurvivesTheRoundTrip) {
  const auto path = (std::filesystem::temp_directory_path() / ("lb-png-" + std::to_string(::getpid()) + ".png")).string();
  struct Case {
    const char* name;
    std::vector<uint32_t> pixels;  // 3 x 2, premultiplied
  };
  const Case cases[] = {
      {"Opaque", {0xff000000u, 0xffffffffu, 0xff123456u, 0xffff0000u, 0xff00ff00u, 0xff0000ffu}},
      {"Translucent", {0x00000000u, 0x80400000u, 0x80808080u, 0x01010101u, 0xfe7f3f1fu, 0xffabcdefu}},
  };
  for (const Case& c : cases) {
    // Rows of 4 pixels, of which 3 are the picture: the stride is honoured.
    std::vector<uint32_t> rows{c.pixels[0], c.pixels[1], c.pixels[2], 0xdeadbeefu,
                               c.pixels[3], c.pixels[4], c.pixels[5], 0xdeadbeefu};
    ASSERT_EQ(lb::render::writePng(path, rows.data(), 3, 2, 4), "") << c.name;
    int w = 0, h = 0;
    const std::vector<uint32_t> back = lb::test::readArgb(path, &w, &h);
    ASSERT_EQ(std::make_pair(w, h), std::make_pair(3, 2)) << c.name;
    for (size_t k = 0; k < 6; ++k)
      for (int shift : {0, 8, 16, 24})
        EXPECT_NEAR(static_cast<int>((back[k] >> shift) & 255), static_cast<int>((c.pixels[k] >> shift) & 255), 1)
            << c.name << " pixel " << k << " bits " << shift;
  }
  std::filesystem::remove(path);
  EXPECT_NE(lb::render::writePng("/nonexistent-dir/x.png", cases[0].pixels.data(), 3, 2, 3), "");
  EXPECT_NE(lb::render::writePng(path, cases[0].pixels.data(), 0, 2, 3), "");
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
