// SVG export and import: round trips of our own files, Inkscape-style mesh
// gradients, the attribute syntax, bad files and the command line.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <optional>

#include "Pictures.h"
#include "cli/Invoke.h"
#include "support/Geometry.h"
#include "app/DemoTour.h"
#include "app/Interchange.h"
#include "host/Color.h"
#include "io/Lbdoc.h"
#include "io/svg/Svg.h"
#include "io/svg/SvgSyntax.h"

namespace {
namespace fs = std::filesystem;
using clitest::Invoke;
using clitest::Result;
using lb::host::Document;
using lb::io::svg::Losses;
using lb::io::svg::Point;
using lb::test::source;

void deselectAll(Document& doc) {
  for (ArtObject* a : doc.allArt())
    if (!a->isLayer) doc.setSelected(a, false);
}

std::unique_ptr<Document> throughSvg(const Document& doc, Losses* out = nullptr) {
  Losses w, r;
  const std::string svg = lb::io::svg::writeSvg(doc, &w);
  auto back = lb::io::svg::readSvg(svg, {}, &r);
  if (out) *out = w;
  return back;
}

ArtObject* firstOfType(const Document& doc, AIArtType type) {
  for (ArtObject* a : doc.allArt())
    if (a->type == type && !a->isLayer) return a;
  return nullptr;
}

// A colour is 0xRRGGBB (each channel within 1e-9).
::testing::AssertionResult IsRgb(const AIColor& c, unsigned rgb) {
  double ch[3];
  lb::host::colorToRGB(c, &ch[0], &ch[1], &ch[2]);
  for (int k = 0; k < 3; ++k)
    if (std::fabs(ch[k] - ((rgb >> (16 - 8 * k)) & 255) / 255.0) > 1e-9)
      return ::testing::AssertionFailure() << "channel " << k << " is " << ch[k] * 255;
  return ::testing::AssertionSuccess();
}

// ---- round trips of our own files ----------------------------------------

class OwnRoundTrip : public testing::TestWithParam<const char*> {};

// Everything but the selection (which travels through --select) comes back
// exactly: meshes with knots, inner vertices and colour kinds, paths with
// smooth flags, rasters in their own space and depth, the key object.
TEST_P(OwnRoundTrip, DocumentComesBackEqual) {
  auto doc = lb::io::readDocumentFile((source() / "examples" / GetParam()).string());
  deselectAll(*doc);
  Losses losses;
  auto back = throughSvg(*doc, &losses);
  deselectAll(*back);
  EXPECT_EQ(lb::io::writeDocument(*back), lb::io::writeDocument(*doc));
  EXPECT_TRUE(losses.empty()) << losses.text();
}

INSTANTIATE_TEST_SUITE_P(Examples, OwnRoundTrip, testing::Values("mesh.lbdoc", "path.lbdoc", "raster.lbdoc"));

TEST(OwnRoundTrip, GraphicStylesAreNamedAsLost) {
  auto doc = lb::io::readDocumentFile((source() / "examples" / "group.lbdoc").string());
  Losses losses;
  auto back = throughSvg(*doc, &losses);
  EXPECT_NE(losses.text().find("graphic styles"), std::string::npos);
  // The art tree itself survives: same types in the same order.
  auto types = [](const Document& d) {
    std::string t;
    for (ArtObject* a : d.allArt()) t += std::to_string(a->type) + (a->isLayer ? "L" : "") + ",";
    return t;
  };
  EXPECT_EQ(types(*back), types(*doc));
}

TEST(OwnRoundTrip, DemoMeshAndViewBoxMapping) {
  auto doc = lb::app::demoDocument({}, lb::app::DemoScene::kSwatch);
  deselectAll(*doc);
  const std::string svg = lb::io::svg::writeSvg(*doc, nullptr);
  // The artboard [l, b, r, t] is viewBox "l -t (r-l) (t-b)".
  ASSERT_TRUE(doc->artboard);
  const AIRealRect a = *doc->artboard;
  const std::string vb = lb::io::svg::fmt(a.left) + " " + lb::io::svg::fmt(-a.top + 0.0) + " " +
                         lb::io::svg::fmt(a.right - a.left) + " " + lb::io::svg::fmt(a.top - a.bottom);
  EXPECT_NE(svg.find("viewBox=\"" + vb + "\""), std::string::npos) << vb;
  auto back = lb::io::svg::readSvg(svg, {}, nullptr);
  deselectAll(*back);
  EXPECT_EQ(lb::io::writeDocument(*back), lb::io::writeDocument(*doc));
}

// Without our own record of the mesh (as another program would read the
// file), the meshgradient alone gives the same picture: the patches split
// at knots and inner vertices keep the geometry exact.
TEST(MeshGradientOnly, SamePictureAsTheMesh) {
  auto doc = lb::app::demoDocument({}, lb::app::DemoScene::kMesh);
  std::string svg = lb::io::svg::writeSvg(*doc, nullptr);
  svg = lb::test::withoutAttributes(svg, "latticebender:mesh=");
  Losses losses;
  auto back = lb::io::svg::readSvg(svg, {}, &losses);
  const ArtObject* mesh = firstOfType(*back, kMeshArt);
  ASSERT_NE(mesh, nullptr);
  EXPECT_GT(mesh->mesh->sizeI(), firstOfType(*doc, kMeshArt)->mesh->sizeI());
  const double db = lb::test::psnr(lb::test::fromImage(lb::render::renderDocument(*back)),
                                   lb::test::fromImage(lb::render::renderDocument(*doc)));
  EXPECT_GE(db, 40) << db;
}

// A mesh moved in another program (a transform on its group) still reads
// back as our mesh, moved; a mesh whose colours were edited there reads as
// the edited meshgradient.
TEST(MeshGradientOnly, MovedMeshKeepsItsStructureEditedMeshIsReadAsWritten) {
  auto doc = lb::app::demoDocument({}, lb::app::DemoScene::kMesh);
  deselectAll(*doc);
  const ArtObject* orig = firstOfType(*doc, kMeshArt);
  const std::string svg = lb::io::svg::writeSvg(*doc, nullptr);
  const size_t at = svg.rfind("<path", svg.find("latticebender:mesh="));
  const std::string moved = svg.substr(0, at) + "<path transform=\"translate(10,20)\"" + svg.substr(at + 5);
  auto back = lb::io::svg::readSvg(moved, {}, nullptr);
  const ArtObject* m = firstOfType(*back, kMeshArt);
  ASSERT_EQ(std::make_pair(m->mesh->sizeI(), m->mesh->sizeJ()), std::make_pair(orig->mesh->sizeI(), orig->mesh->sizeJ()));
  const AIRealPoint p0 = orig->mesh->nodeData(2, 3).p;
  EXPECT_PT_NEAR(m->mesh->nodeData(2, 3).p, (AIRealPoint{p0.h + 10, p0.v - 20}), 1e-9);

  const size_t stop = svg.find("stop-color:#");
  const std::string edited = svg.substr(0, stop) + "stop-color:#123456" + svg.substr(stop + 18);
  auto e = lb::io::svg::readSvg(edited, {}, nullptr);
  const ArtObject* em = firstOfType(*e, kMeshArt);
  EXPECT_NE(em->mesh->sizeI(), orig->mesh->sizeI());
  EXPECT_TRUE(IsRgb(em->mesh->nodeData(0, em->mesh->sizeJ()).color, 0x123456));
}

// ---- Inkscape's own meshes -----------------------------------------------

struct NodeCase { int i, j; double h, v; unsigned rgb; double opacity; };

TEST(InkscapeMesh, NodesColoursSidesAndThePathBeside) {
  Losses losses;
  auto doc = lb::io::svg::readSvg(lb::test::slurp(source() / "tests/interchange/fixtures/inkscape-mesh.svg"), {}, &losses);
  ASSERT_TRUE(doc->artboard);
  const AIRealRect& ab = *doc->artboard;
  EXPECT_EQ(std::vector<double>({ab.left, ab.top, ab.right, ab.bottom}), std::vector<double>({0, 0, 200, -150}));
  const ArtObject* art = firstOfType(*doc, kMeshArt);
  ASSERT_NE(art, nullptr);
  EXPECT_EQ(art->id, "rect1298");
  const auto& mesh = *art->mesh;
  ASSERT_EQ(std::make_pair(mesh.sizeI(), mesh.sizeJ()), std::make_pair(2, 2));
  // Gradient corner (20 + 30 c, 30 + 30 r), moved by the gradientTransform
  // (5, 7) and the layer (10, 0); SVG row r is mesh row j = 2 - r.
  const NodeCase nodes[] = {
      {0, 2, 35, -37, 0xff0000, 1}, {1, 2, 65, -37, 0x00ff00, 1}, {2, 2, 95, -37, 0xffff00, 1},
      {0, 1, 35, -67, 0xffffff, 1}, {1, 1, 65, -67, 0x0000ff, 1}, {2, 1, 95, -67, 0x00ffff, 1},
      {0, 0, 35, -97, 0x000000, 1}, {1, 0, 65, -97, 0xff00ff, 1}, {2, 0, 95, -97, 0x808080, 0.5},
  };
  for (const NodeCase& c : nodes) {
    SCOPED_TRACE("node " + std::to_string(c.i) + "," + std::to_string(c.j));
    const auto d = mesh.nodeData(c.i, c.j);
    EXPECT_PT_NEAR(d.p, (AIRealPoint{c.h, c.v}), 1e-9);
    EXPECT_TRUE(IsRgb(d.color, c.rgb));
    EXPECT_DOUBLE_EQ(d.opacity, c.opacity);
  }
  // The curved top side of the first patch, an absolute C side read
  // against the run's direction, and an l side with handles at thirds (run
  // (1, 0, 1) goes from node (0, 1) at v = -67 up to (0, 2) at -37).
  struct RunCase {
    int axis, i, j;
    AIRealPoint c1, c2;
  } runs[] = {{0, 0, 2, {45, -32}, {55, -32}}, {1, 2, 1, {95, -57}, {95, -47}}, {1, 0, 1, {35, -57}, {35, -47}}};
  for (const RunCase& rc : runs) {
    const auto& pts = mesh.runPoints(rc.axis, rc.i, rc.j);
    ASSERT_EQ(pts.size(), 4u);
    EXPECT_PT_NEAR(pts[1], rc.c1, 1e-9);
    EXPECT_PT_NEAR(pts[2], rc.c2, 1e-9);
  }
  EXPECT_NE(losses.text().find("clip mesh fills"), std::string::npos);
  // The path beside the mesh: every command, its style and transform.
  ArtObject* wave = doc->findById("wave");
  ASSERT_NE(wave, nullptr);
  const AIPathStyle& ws = wave->style;
  EXPECT_EQ(std::make_tuple(wave->name, wave->opacity, wave->closed, ws.fillPaint, ws.strokePaint,
                            ws.stroke.color.c.rgb.blue, ws.stroke.width),
            std::make_tuple("Wave", 0.5, true, 1, 1, 1.0, 2.0));
  EXPECT_NEAR(ws.fill.color.c.rgb.green, 0x66 / 255.0, 1e-12);
  // h v H V l c s q t (9 pieces), the half-circle arc in 4, the closing line.
  ASSERT_EQ(wave->segments.size(), 14u);
  struct {
    size_t k;
    double h, v;
  } anchors[] = {{0, 20, -120}, {1, 40, -120}, {2, 40, -130}, {3, 60, -130}, {4, 60, -140}, {5, 65, -145},
                 {6, 75, -150}, {7, 85, -155}, {8, 90, -160}, {9, 95, -165}, {13, 105, -165}};
  for (const auto& a : anchors) EXPECT_PT_NEAR(wave->segments[a.k].p, (AIRealPoint{a.h, a.v}), 1e-9) << a.k;
  // s reflects the previous control point, t the previous quadratic one
  // (quadratic control (80, 165) at 2/3).
  EXPECT_PT_NEAR(wave->segments[6].out, (AIRealPoint{75, -155}), 1e-9);
  EXPECT_PT_NEAR(wave->segments[8].out, (AIRealPoint{90, -160 - 5.0 * 2 / 3}), 1e-9);
}

// One patch in bounding-box units on a transformed ellipse, colours as
// presentation attributes: the unit square maps onto the shape's bounds,
// then the element's transform applies.
TEST(InkscapeMesh, BoundingBoxUnitsAndElementTransform) {
  Losses losses;
  auto doc = lb::io::svg::readSvg(
      "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 100 100'><defs>"
      "<meshgradient id='m' x='0' y='0' type='bicubic'><meshrow><meshpatch>"
      "<stop path='l 1,0' stop-color='red'/><stop path='l 0,1' stop-color='lime' stop-opacity='0.25'/>"
      "<stop path='l -1,0' stop-color='blue'/><stop path='l 0,-1' stop-color='#fff'/>"
      "</meshpatch></meshrow></meshgradient></defs>"
      "<ellipse id='e' cx='20' cy='30' rx='10' ry='5' fill='url(#m)' transform='scale(2)'/></svg>",
      {"e"}, &losses);
  const ArtObject* art = doc->findById("e");
  ASSERT_NE(art, nullptr);
  ASSERT_EQ(art->type, kMeshArt);
  EXPECT_EQ(std::make_pair(art->selected(), art->mesh->isSelectionFull()), std::make_pair(true, true));
  // Bounds 10..30 x 25..35, doubled: corners at x 20 and 60, y 50 and 70.
  EXPECT_PT_NEAR(art->mesh->nodeData(0, 1).p, (AIRealPoint{20, -50}), 1e-9);
  EXPECT_PT_NEAR(art->mesh->nodeData(1, 0).p, (AIRealPoint{60, -70}), 1e-9);
  EXPECT_EQ(std::make_pair(art->mesh->nodeData(1, 1).opacity, art->mesh->nodeData(1, 1).color.c.rgb.green),
            std::make_pair(0.25, 1.0));
  EXPECT_NE(losses.text().find("bicubic"), std::string::npos);
}


// ---- syntax ----------------------------------------------------------------

struct PathCase {
  const char* d;
  size_t subpaths;
  size_t points;  // of the first subpath
  Point last;     // last point of the first subpath
  bool closed;
};

// Parsed subpaths of path data; none when it is refused.
std::optional<std::vector<lb::io::svg::SubPath>> ParsePath(const char* d) {
  std::vector<lb::io::svg::SubPath> subs;
  std::string err;
  if (!lb::io::svg::parsePathData(d, &subs, &err)) return std::nullopt;
  return subs;
}

TEST(PathData, EveryCommandForm) {
  const PathCase cases[] = {
      {"M1 2L3 4", 1, 4, {3, 4}, false},
      {"m1,2 3,4", 1, 4, {4, 6}, false},        // implicit lineto after moveto, relative
      {"M1 2 3 4 5 6", 1, 7, {5, 6}, false},   // implicit absolute linetos
      {"M0 0H10V5h-5v-5z", 1, 16, {0, 0}, true},  // four sides and the closing line
      {"M0 0C1 1 2 2 3 3S5 5 6 6", 1, 7, {6, 6}, false},
      {"M0 0Q1 1 2 0T4 0", 1, 7, {4, 0}, false},
      {"M0 0A5 5 0 0 1 10 0", 1, 13, {10, 0}, false},   // a half circle in four pieces
      {"M0 0a5 5 0 1 1 10 0", 1, 13, {10, 0}, false},
      {"M0 0A5 5 0 0110 0", 1, 13, {10, 0}, false},     // flags without separators
      {"M0 0L1 0ZM5 5L6 6", 2, 7, {0, 0}, true},
      {"M0 0L1 0ZL1 1", 2, 7, {0, 0}, true},           // drawing on after Z starts at the start
      {"M-1.5e1-2.5.5.5", 1, 4, {0.5, 0.5}, false},    // compact numbers
  };
  for (const PathCase& c : cases) {
    SCOPED_TRACE(c.d);
    const auto subs = ParsePath(c.d);
    ASSERT_TRUE(subs);
    ASSERT_EQ(subs->size(), c.subpaths);
    EXPECT_EQ(subs->at(0).pts.size(), c.points);
    EXPECT_NEAR(subs->at(0).pts.back().x, c.last.x, 1e-9);
    EXPECT_NEAR(subs->at(0).pts.back().y, c.last.y, 1e-9);
    EXPECT_EQ(subs->at(0).closed, c.closed);
  }
  for (const char* bad : {"L1 2", "M1", "M1 2 L", "M1 2 X3 4", "M0 0 A5 5 0 2 1 10 0", "M0 0Z 3 4", "M1 2 C1 2 3"})
    EXPECT_FALSE(ParsePath(bad)) << bad;
  // The arc's midpoint lies on the circle: sweep 1 from (0,0) to (10,0)
  // with y down passes through (5, -5).
  const auto arc = ParsePath("M0 0A5 5 0 0 1 10 0");
  ASSERT_TRUE(arc);
  EXPECT_NEAR(arc->at(0).pts[6].x, 5, 1e-9);
  EXPECT_NEAR(arc->at(0).pts[6].y, -5, 1e-9);
}

TEST(Transforms, ListsComposeLeftToRight) {
  struct { const char* text; Point in, out; } cases[] = {
      {"translate(10)", {1, 2}, {11, 2}}, {"translate(10,20) scale(2)", {1, 2}, {12, 24}},
      {"scale(2,3)", {1, 1}, {2, 3}}, {"rotate(90)", {1, 0}, {0, 1}}, {"rotate(90 10 10)", {10, 0}, {20, 10}},
      {"matrix(1 0 0 1 5 6)", {0, 0}, {5, 6}}, {"skewX(45)", {0, 1}, {1, 1}}, {"skewY(45)", {1, 0}, {1, 1}},
      {" scale( 2 ) , translate(1 1) ", {0, 0}, {2, 2}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    auto m = lb::io::svg::parseTransform(c.text);
    ASSERT_TRUE(m);
    const Point p = m->apply(c.in);
    EXPECT_NEAR(p.x, c.out.x, 1e-9);
    EXPECT_NEAR(p.y, c.out.y, 1e-9);
  }
  for (const char* bad : {"translate(", "shear(1)", "matrix(1 2 3)", "scale()", "rotate(1 2)"})
    EXPECT_FALSE(lb::io::svg::parseTransform(bad)) << bad;
}

TEST(Colours, FormsAndNames) {
  struct {
    const char* text;
    double r, g, b;
  } cases[] = {{"#f00", 1, 0, 0},       {"#00FF80", 0, 1, 128 / 255.0}, {"rgb(255, 0, 51)", 1, 0, 0.2},
               {"rgb(100%,50%,0%)", 1, 0.5, 0}, {"cornflowerblue", 100 / 255.0, 149 / 255.0, 237 / 255.0},
               {" White ", 1, 1, 1}};
  double r, g, b;
  for (const auto& c : cases) {
    ASSERT_TRUE(lb::io::svg::parseColour(c.text, &r, &g, &b)) << c.text;
    EXPECT_NEAR(r, c.r, 1e-12) << c.text;
    EXPECT_NEAR(g, c.g, 1e-12) << c.text;
    EXPECT_NEAR(b, c.b, 1e-12) << c.text;
  }
  for (const char* bad : {"#ff", "#gggggg", "rgb(1,2)", "notacolour", ""})
    EXPECT_FALSE(lb::io::svg::parseColour(bad, &r, &g, &b)) << bad;
}

TEST(Lengths, Units) {
  for (auto [text, px] : {std::pair{"10", 10.0}, {"10px", 10.0}, {"1in", 96.0}, {"72pt", 96.0}, {"25.4mm", 96.0}})
    EXPECT_NEAR(*lb::io::svg::parseLength(text), px, 1e-12) << text;
  EXPECT_FALSE(lb::io::svg::parseLength("10%") || lb::io::svg::parseLength("abc"));
}

// ---- bad files and losses ---------------------------------------------------

TEST(BadSvg, NamedErrors) {
  struct { const char* svg; const char* names; } cases[] = {
      {"<svg", "XML"},
      {"<html/>", "<svg>"},
      {"<svg viewBox='0 0 -1 5'/>", "viewBox"},
      {"<svg><path id='p' d='M0 0 Q1'/></svg>", "<path id=\"p\">"},
      {"<svg><rect transform='spin(3)' width='1' height='1'/></svg>", "transform"},
      {"<svg><rect fill='#12' width='1' height='1'/></svg>", "colour"},
      {"<svg><rect fill='url(#nope)' width='1' height='1'/></svg>", "nope"},
      {"<svg><defs><meshgradient id='m'/></defs><rect fill='url(#m)' width='1' height='1'/></svg>", "rows"},
      {"<svg><defs><meshgradient id='m' href='#m'><meshrow><meshpatch><stop path='c 1,0 1,0 1,0'/></meshpatch>"
       "</meshrow></meshgradient></defs><rect fill='url(#m)' width='1' height='1'/></svg>",
       "href chain"},
      {"<svg><defs><meshgradient id='m'><meshrow><meshpatch><stop path='c 1,0 1,0 1,0'/></meshpatch>"
       "</meshrow></meshgradient></defs><rect fill='url(#m)' width='1' height='1'/></svg>",
       "too few stops"},
      {"<svg><image href='data:image/png;base64,AAAA' width='1' height='1'/></svg>", "PNG"},
      {nullptr, "nested more than 256"},
  };
  std::string deep = "<svg>";
  for (int k = 0; k < 300; ++k) deep += "<g>";
  for (int k = 0; k < 300; ++k) deep += "</g>";
  deep += "</svg>";
  for (const auto& c : cases) {
    const std::string text = c.svg ? c.svg : deep;
    SCOPED_TRACE(text.substr(0, 80));
    try {
      lb::io::svg::readSvg(text, {}, nullptr);
      ADD_FAILURE() << "accepted";
    } catch (const lb::io::FormatError& e) {
      EXPECT_NE(std::string(e.what()).find(c.names), std::string::npos) << e.what();
    }
  }
}

// Hidden groups keep their children's own state; fill-opacity of art
// painted only with a fill becomes its opacity.
TEST(ReadSvg, HiddenGroupsAndFillOpacity) {
  Losses losses;
  auto doc = lb::io::svg::readSvg(
      "<svg><g id='g' style='display:none'><rect id='r' width='2' height='2' fill='red' fill-opacity='0.5' "
      "opacity='0.5'/></g><rect id='s' width='1' height='1' fill='red' stroke='blue' fill-opacity='0.5'/></svg>",
      {}, &losses);
  EXPECT_EQ(std::make_pair(doc->findById("g")->hidden(), doc->findById("r")->hidden()), std::make_pair(true, false));
  EXPECT_DOUBLE_EQ(doc->findById("r")->opacity, 0.25);
  EXPECT_NE(losses.text().find("fill and stroke opacity"), std::string::npos);
}

// What SVG cannot hold is named and left out; the file stays readable.
TEST(Losses, ExportNamesWhatItLeavesOut) {
  struct {
    const char* what;
    std::function<void(ArtObject&)> make;
  } cases[] = {
      {"placed content that is not an image",
       [](ArtObject& a) {
         a.type = kPlacedArt;
         a.image.width = a.image.height = 1;
         a.image.pixels = {0};
         a.image.placedType = 2;
       }},
      {"art with non-finite coordinates",
       [](ArtObject& a) {
         a.type = kPathArt;
         a.segments = {AIPathSegment{{0, 0}, {0, 0}, {0, 0}, true}, AIPathSegment{{NAN, 1}, {1, 1}, {1, 1}, true}};
         a.segmentSelection = {0, 0};
       }},
  };
  for (const auto& c : cases) {
    Document doc;
    ArtObject* layer = doc.addLayer("L");
    auto art = std::make_unique<ArtObject>();
    c.make(*art);
    doc.appendChild(layer, std::move(art));
    Losses losses;
    const std::string svg = lb::io::svg::writeSvg(doc, &losses);
    EXPECT_EQ(losses.text(), c.what);
    auto back = lb::io::svg::readSvg(svg, {}, nullptr);
    EXPECT_EQ(back->allArt().size(), 1u) << c.what;  // the layer alone
  }
}

TEST(Losses, UnsupportedContentIsNamed) {
  Losses losses;
  auto doc = lb::io::svg::readSvg(
      "<svg><text>hi</text><use href='#r'/><rect id='r' width='2' height='2' style='filter:url(#f)'/></svg>", {}, &losses);
  for (const char* named : {"text", "clones", "filters"}) EXPECT_NE(losses.text().find(named), std::string::npos) << named;
  EXPECT_NE(doc->findById("r"), nullptr);
}

// ---- the command line ---------------------------------------------------------

TEST(Cli, ImportExportAndSelection) {
  const fs::path dir = lb::test::scratchDir("cli");
  const std::string fixture = (source() / "tests/interchange/fixtures/inkscape-mesh.svg").string();
  Result r = Invoke({"import", fixture, "-o", (dir / "m.lbdoc").string(), "--select", "rect1298,wave"});
  ASSERT_EQ(r.status, 0) << r.err;
  // One warning line naming what was not kept.
  EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
  EXPECT_NE(r.err.find("warning"), std::string::npos);
  auto doc = lb::io::readDocumentFile((dir / "m.lbdoc").string());
  const ArtObject* mesh = doc->findById("rect1298");
  ASSERT_NE(mesh, nullptr);
  EXPECT_EQ(std::make_tuple(mesh->selected(), mesh->mesh->isSelectionFull(), doc->findById("wave")->selected()),
            std::make_tuple(true, true, true));

  for (const char* ext : {".svg", ".pdf", ".png"}) {
    const fs::path out = dir / (std::string("m") + ext);
    r = Invoke({"export", (dir / "m.lbdoc").string(), "-o", out.string()});
    EXPECT_EQ(r.status, 0) << ext << r.err;
    EXPECT_GT(fs::file_size(out), 100u) << ext;
  }
  EXPECT_EQ(lb::test::slurp(dir / "m.pdf").substr(0, 5), "%PDF-");
}

TEST(Cli, BadSvgExitsWithThreeAndWritesNothing) {
  const fs::path dir = lb::test::scratchDir("clibad");
  lb::test::spit(dir / "bad.svg", "<svg><path d='M0 0 Q'/></svg>");
  for (const auto& args : std::vector<std::vector<std::string>>{
           {"import", (dir / "bad.svg").string(), "-o", (dir / "out.lbdoc").string()},
           {"export", (dir / "bad.svg").string(), "-o", (dir / "out.svg").string()},
           {"run", (dir / "bad.svg").string(), "-o", (dir / "out.svg").string()}}) {
    Result r = Invoke(args);
    EXPECT_EQ(r.status, 3) << args[0];
    EXPECT_NE(r.err.find("bad.svg"), std::string::npos) << r.err;
    EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
  }
  for (const char* out : {"out.lbdoc", "out.svg"}) EXPECT_FALSE(fs::exists(dir / out)) << out;
  EXPECT_EQ(Invoke({"import", (dir / "bad.lbdoc").string(), "-o", (dir / "x.lbdoc").string()}).status, 2);
  EXPECT_EQ(Invoke({"export", (dir / "bad.svg").string(), "-o", (dir / "x.txt").string()}).status, 2);
}

// `run` reads and writes SVG directly: the selection comes from --select
// and the commands see the mesh as selected.
TEST(Cli, RunOnSvg) {
  const fs::path dir = lb::test::scratchDir("clirun");
  auto doc = lb::app::demoDocument({}, lb::app::DemoScene::kMesh);
  deselectAll(*doc);
  const ArtObject* mesh = firstOfType(*doc, kMeshArt);
  ASSERT_FALSE(mesh->id.empty());
  lb::app::writeAnyDocument(*doc, (dir / "in.svg").string());
  const auto& step = lb::app::demoTour().front();
  std::string cmd = std::to_string(step.id) + (step.alt ? "+alt" : "") + (step.ctrl ? "+ctrl" : "");
  Result r = Invoke({"run", (dir / "in.svg").string(), "-o", (dir / "out.svg").string(), "--select", mesh->id,
                     "--command", cmd});
  ASSERT_EQ(r.status, 0) << r.err;
  const std::string out = lb::test::slurp(dir / "out.svg");
  EXPECT_NE(out.find("<meshgradient"), std::string::npos);
  auto back = lb::io::svg::readSvg(out, {}, nullptr);
  EXPECT_NE(firstOfType(*back, kMeshArt), nullptr);
  // Without -o the result goes to standard output as SVG.
  r = Invoke({"run", (dir / "in.svg").string()});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("<svg"), std::string::npos);
}

}  // namespace
