// Other programs' pictures of our files against our own: Inkscape's
// rendering of the SVG export and poppler's of the PDF export agree with
// `render` on the demo documents (PSNR of at least 35 dB).
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <set>
#include <string>

#include "Pictures.h"
#include "app/DemoTour.h"
#include "app/Interchange.h"
#include "io/Lbdoc.h"
#include "io/svg/Svg.h"

namespace {
namespace fs = std::filesystem;
using lb::test::Picture;

constexpr double kMinPsnr = 35;

// The demo's scenes and a few documents after tour steps (knots, inner
// vertices, an image, a second mesh, a stroked path).
std::vector<std::pair<std::string, std::unique_ptr<lb::host::Document>>> demoDocuments(bool few) {
  std::vector<std::pair<std::string, std::unique_ptr<lb::host::Document>>> docs;
  docs.emplace_back("mesh", lb::app::demoDocument({}, lb::app::DemoScene::kMesh));
  docs.emplace_back("photo", lb::app::demoDocument({}, lb::app::DemoScene::kPhoto));
  docs.emplace_back("swatch", lb::app::demoDocument({}, lb::app::DemoScene::kSwatch));
  static const fs::path dir = [] {
    const fs::path d = lb::test::scratchDir("demo");
    testing::internal::CaptureStdout();
    lb::app::runDemo(d.string());
    testing::internal::GetCapturedStdout();
    return d;
  }();
  // Steps that draw helper art (thin stroked lines) are left out: PDF
  // rasterisers snap and widen hairlines their own way (poppler's stroke
  // adjustment), which says nothing about how meshes are written.
  std::set<std::string> lineArt;
  for (const lb::app::DemoStep& step : lb::app::demoTour())
    if (!step.selectionAfter) lineArt.insert(std::string(step.stem) + "-after");
  std::vector<fs::path> after;
  for (const auto& e : fs::directory_iterator(dir)) {
    const std::string stem = e.path().stem().string();
    const size_t dash = stem.find('-');
    if (e.path().extension() != ".lbdoc" || !stem.ends_with("-after")) continue;
    if (dash != std::string::npos && lineArt.count(stem.substr(dash + 1))) continue;
    after.push_back(e.path());
  }
  std::sort(after.begin(), after.end());
  const size_t step = few ? std::max<size_t>(1, after.size() / 3) : 1;
  for (size_t k = 0; k < after.size(); k += step)
    docs.emplace_back(after[k].stem().string(), lb::io::readDocumentFile(after[k].string()));
  return docs;
}

Picture ours(const lb::host::Document& doc) { return lb::test::fromImage(lb::render::renderDocument(doc)); }

// Each document written as FILE.ext, drawn by `program` as `cmd` (given
// FILE.ext and FILE without extension) into FILE.png, against render.
void ExpectSamePictures(const std::string& program, const std::string& ext, bool few,
                        const std::function<std::string(const std::string&, const std::string&)>& cmd) {
  if (!lb::test::haveProgram(program)) GTEST_SKIP() << program << " is not installed (scripts/install-deps.sh)";
  const fs::path dir = lb::test::scratchDir(program);
  for (const auto& [name, doc] : demoDocuments(few)) {
    const std::string stem = (dir / name).string();
    lb::app::writeAnyDocument(*doc, stem + ext);
    ASSERT_EQ(std::system(cmd(stem + ext, stem).c_str()), 0) << name;
    const double db = lb::test::psnr(lb::test::loadPng(stem + ".png"), ours(*doc));
    EXPECT_GE(db, kMinPsnr) << name;
    std::printf("%-8s %-32s %.1f dB\n", program.c_str(), name.c_str(), db);
  }
}

TEST(ExternalRender, InkscapePictureOfOurSvgMatchesRender) {
  ExpectSamePictures("inkscape", ".svg", true, [](const std::string& svg, const std::string& stem) {
    return "inkscape --export-type=png --export-background=white --export-background-opacity=1 --export-filename='" +
           stem + ".png' '" + svg + "' > /dev/null 2>&1";
  });
}

// One point per document unit: 72 dpi gives one pixel per unit.
TEST(ExternalRender, PopplerPictureOfOurPdfMatchesRender) {
  ExpectSamePictures("pdftoppm", ".pdf", false, [](const std::string& pdf, const std::string& stem) {
    return "pdftoppm -png -r 72 -singlefile '" + pdf + "' '" + stem + "'";
  });
}

// Meshes Inkscape itself wrote: our SVG opened and saved again by Inkscape
// (as plain SVG, without our own attributes) reads back as meshes giving
// the same picture.
TEST(ExternalRender, MeshesSavedByInkscapeReadBack) {
  if (!lb::test::haveProgram("inkscape")) GTEST_SKIP() << "inkscape is not installed (scripts/install-deps.sh)";
  const fs::path dir = lb::test::scratchDir("inkscape-saved");
  std::vector<std::pair<std::string, std::unique_ptr<lb::host::Document>>> docs;
  docs.emplace_back("demo", lb::app::demoDocument({}, lb::app::DemoScene::kSwatch));
  docs.emplace_back("example", lb::io::readDocumentFile((lb::test::source() / "examples" / "mesh.lbdoc").string()));
  for (const auto& [name, doc] : docs) {
    const fs::path svg = dir / (name + ".svg"), saved = dir / (name + "-inkscape.svg");
    lb::app::writeAnyDocument(*doc, svg.string());
    const std::string cmd = "inkscape --export-plain-svg --export-filename='" + saved.string() + "' '" +
                            svg.string() + "' > /dev/null 2>&1";
    ASSERT_EQ(std::system(cmd.c_str()), 0) << name;
    // What a program that keeps only standard SVG leaves of our file.
    const std::string text = lb::test::withoutAttributes(lb::test::slurp(saved), "latticebender:");
    ASSERT_EQ(text.find("latticebender:"), std::string::npos);
    ASSERT_NE(text.find("<meshgradient"), std::string::npos);
    auto back = lb::io::svg::readSvg(text, {}, nullptr);
    size_t meshes = 0, expected = 0;
    for (ArtObject* a : back->allArt()) meshes += a->type == kMeshArt;
    for (ArtObject* a : doc->allArt()) expected += a->type == kMeshArt;
    EXPECT_EQ(meshes, expected) << name;
    const double db = lb::test::psnr(ours(*back), ours(*doc));
    EXPECT_GE(db, 40) << name;
    std::printf("inkscape-saved %-26s %.1f dB\n", name.c_str(), db);
  }
}

}  // namespace
