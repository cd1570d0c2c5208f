// Colour capture (158) through the loaded module: pixel-exact sampling of
// raster and placed images of every accepted kind, edge correction, the
// image that wins, and capture from the bottom mesh's surface.
#include "LBModule.h"
#include <gtest/gtest.h>

#include "AIMeshSuites.h"
#include "ColourDoc.h"
#include "host/SuiteRegistry.h"

using namespace coltest;

namespace {

constexpr int kCapture = kCmdColorCapture;

double Unit(int byte) { return static_cast<double>(static_cast<float>(byte) / 255.0f); }

// A mesh whose node (i, j) lies at the centre of pixel (col0 + i, row0 - j).
MeshRecipe OnPixels(int tag, const ImageRecipe &im, int I, int J, int col0, int row0, NodeSet sel) {
  return Tagged(tag, I, J, std::move(sel), [=](int i, int j) { return im.Centre(col0 + i, row0 - j); });
}

void ExpectRgbOf(const MeshState &m, int i, int j, const std::vector<uint8_t> &px) {
  const json c = m.node(i, j).at("color");
  ASSERT_TRUE(c.contains("rgb")) << c.dump();
  for (int k = 0; k < 3; ++k) EXPECT_EQ(c["rgb"][k].get<double>(), Unit(px[k])) << "channel " << k;
}

// Node (i, j) carries the colour and opacity of node (i, j) of mesh `tag`.
void ExpectPaintOf(const MeshState &m, int tag, int i, int j) {
  EXPECT_EQ(ColorCode(m, i, j), Code(tag, i, j)) << "node (" << i << ", " << j << ")";
  EXPECT_EQ(OpacityCode(m, i, j), Code(tag, i, j)) << "node (" << i << ", " << j << ")";
}

// A w x h image of numbered pixels (see Numbered) in the given space.
ImageRecipe Image(int w, int h, std::vector<double> matrix, const char *space = "rgb", bool alpha = false) {
  ImageRecipe im{.width = w, .height = h, .space = space, .alpha = alpha, .matrix = std::move(matrix), .pixels = {}};
  im.pixels = Numbered(im);
  return im;
}

// Node offsets 0.05 inside the outline, as edge correction samples them.
double Inset(int i, int n) {
  const double step = static_cast<double>(0.05f);
  return double(i) / n + (i == 0 ? step : i == n ? -step : 0);
}

// ---- Raster: pixel-exact, transformed, several meshes
// ------------------------

TEST(CaptureFromRaster, PixelExactThroughATurnedScaledImageIntoSeveralMeshes) {
  // Turned a quarter, scaled by 8 and moved: pixel space to document.
  const ImageRecipe im = Image(5, 4, {0, 8, -8, 0, 50, 20});
  for (bool ctrl : {false, true}) {
    SCOPED_TRACE(ctrl ? "no edge correction" : "edge correction");
    // A: 2 x 1 cells over pixels (1..3, rows 3..2), all selected. B: 1 x 2
    // over pixels (0..1, rows 2..0), two nodes selected. C: node (0, 0) on
    // pixel (4, 3), its other nodes beyond the image's right edge.
    const MeshRecipe a = OnPixels(0, im, 2, 1, 1, 3, Rect(0, 2, 0, 1));
    const MeshRecipe b = OnPixels(1, im, 1, 2, 0, 2, {{0, 1}, {1, 2}});
    const MeshRecipe c = Tagged(2, 1, 1, Rect(0, 1, 0, 1), [&](int i, int j) { return im.Centre(4 + i, 3 + j); });
    Session s(DocJson({MeshJson(a), MeshJson(b), MeshJson(c), ImageJson(im)}));
    s.run(kCapture, false, ctrl, true, true);
    const MeshState ma = s.mesh(0), mb = s.mesh(1), mc = s.mesh(2);
    for (int j = 0; j <= 1; ++j)
      for (int i = 0; i <= 2; ++i) {
        SCOPED_TRACE(testing::Message() << "A node " << i << ", " << j);
        ExpectRgbOf(ma, i, j, im.Pixel(1 + i, 3 - j));
        EXPECT_EQ(OpacityAt(ma, i, j), 1.0);
      }
    EXPECT_EQ(ma.selectedNodes(), Rect(0, 2, 0, 1));
    ExpectRgbOf(mb, 0, 1, im.Pixel(0, 1));
    ExpectRgbOf(mb, 1, 2, im.Pixel(1, 0));
    for (Node n : {Node{0, 0}, Node{1, 0}, Node{0, 2}, Node{1, 1}}) ExpectPaintOf(mb, 1, n.first, n.second);
    EXPECT_EQ(mb.selectedNodes(), (NodeSet{{0, 1}, {1, 2}}));
    // C: one node on the image; the others lie beyond it, lose their
    // selection and keep their paint.
    ExpectRgbOf(mc, 0, 0, im.Pixel(4, 3));
    for (Node n : {Node{1, 0}, Node{0, 1}, Node{1, 1}}) ExpectPaintOf(mc, 2, n.first, n.second);
    EXPECT_EQ(mc.selectedNodes(), (NodeSet{{0, 0}}));
    EXPECT_EQ(s.artCount(), 4u);
  }
}

// ---- Every accepted image kind -------------------------------------------

struct Kind {
  const char *name;
  const char *space;
  bool alpha;
  json fill;
};

const Kind kKinds[] = {
    {"rgb", "rgb", false, nullptr},   {"rgba", "rgb", true, nullptr},   {"cmyk", "cmyk", false, nullptr},
    {"cmyka", "cmyk", true, nullptr}, {"gray", "gray", false, nullptr}, {"graya", "gray", true, nullptr},
    {"grayRgbFill", "gray", false, {{"color", {{"rgb", {0.25, 0.5, 1.0}}}}}},
    {"grayCmykFill", "gray", true, {{"color", {{"cmyk", {0.2, 0.4, 0.6, 0.8}}}}}},
    {"grayGrayFill", "gray", false, {{"color", {{"gray", 0.5}}}}},
};

// The colour and opacity a pixel gives, written as the document writes them.
std::pair<json, double> Expected(const Kind &k, const std::vector<uint8_t> &px) {
  const std::string space = k.space;
  if (space == "rgb") return {{{"rgb", {Unit(px[0]), Unit(px[1]), Unit(px[2])}}}, k.alpha ? Unit(px[3]) : 1.0};
  if (space == "cmyk")
    return {{{"cmyk", {Unit(px[0]), Unit(px[1]), Unit(px[2]), Unit(px[3])}}}, k.alpha ? Unit(px[4]) : 1.0};
  const double op = k.alpha ? Unit(px[1]) : 1.0;
  const double g = px[0];
  if (k.fill.is_object() && k.fill["color"].contains("rgb")) {
    json rgb = json::array();
    for (int c = 0; c < 3; ++c) {
      const double f = k.fill["color"]["rgb"][c].get<double>();
      rgb.push_back((1 - f) * g / 255 + f);
    }
    return {{{"rgb", rgb}}, op};
  }
  if (k.fill.is_object() && k.fill["color"].contains("cmyk")) {
    json cmyk = json::array();
    for (int c = 0; c < 4; ++c) cmyk.push_back((255 - g) * k.fill["color"]["cmyk"][c].get<double>() / 255);
    return {{{"cmyk", cmyk}}, op};
  }
  return {{{"gray", Unit(255 - px[0])}}, op};
}

TEST(CaptureFromRaster, EveryColourSpaceWithAndWithoutAlpha) {
  for (const Kind &k : kKinds) {
    SCOPED_TRACE(k.name);
    ImageRecipe im = Image(3, 2, {4, 0, 0, 4, 10, 10}, k.space, k.alpha);
    im.fill = k.fill;
    Session s(DocJson({MeshJson(OnPixels(0, im, 2, 1, 0, 1, Rect(0, 2, 0, 1))), ImageJson(im)}));
    s.run(kCapture, false, true, true, true);
    const MeshState out = s.mesh(0);
    for (int j = 0; j <= 1; ++j)
      for (int i = 0; i <= 2; ++i) {
        SCOPED_TRACE(testing::Message() << "node " << i << ", " << j);
        const auto [color, opacity] = Expected(k, im.Pixel(i, 1 - j));
        EXPECT_EQ(out.node(i, j).at("color"), color);
        EXPECT_EQ(OpacityAt(out, i, j), opacity);
      }
  }
}

// The checkboxes choose what a node takes; the other keeps its own paint.
// The fill and alpha variants of gray images are rows of the table above.
TEST(CaptureFromRaster, TheCheckboxesChooseColourOrOpacity) {
  ImageRecipe im = Image(2, 1, {10, 0, 0, 10, 0, 10}, "gray");
  im.pixels = {0, 255};
  const MeshRecipe m = OnPixels(0, im, 1, 1, 0, 0, {{0, 0}, {1, 0}});
  for (auto [color, opacity] : {std::pair{true, false}, {false, true}, {false, false}}) {
    SCOPED_TRACE(testing::Message() << color << opacity);
    Session s(DocJson({MeshJson(m), ImageJson(im)}));
    s.run(kCapture, false, true, color, opacity);
    const MeshState out = s.mesh(0);
    if (color) {
      EXPECT_EQ(out.node(0, 0).at("color"), (json{{"gray", 1.0}}));
      EXPECT_EQ(out.node(1, 0).at("color"), (json{{"gray", 0.0}}));
    } else {
      EXPECT_EQ(ColorCode(out, 0, 0), Code(0, 0, 0));
    }
    EXPECT_EQ(OpacityAt(out, 1, 0), opacity ? 1.0 : OpacityOfCode(Code(0, 1, 0)));
    // Only the nodes on the image row were selected, and stay so.
    EXPECT_EQ(out.selectedNodes(), (NodeSet{{0, 0}, {1, 0}}));
  }
}

// ---- Edge correction ------------------------------------------------------

TEST(CaptureFromRaster, EdgeCorrectionSamplesBorderNodesInside) {
  // A 3 x 3 pixel image over document 0..30 x 0..30 (row 0 at the top) and
  // a 2 x 2 mesh exactly on its outline.
  const ImageRecipe im = Image(3, 3, {10, 0, 0, 10, 0, 30});
  MeshRecipe m = Tagged(0, 2, 2, Rect(0, 2, 0, 2));
  m.dx = m.dy = 15;
  for (bool ctrl : {true, false}) {
    SCOPED_TRACE(ctrl ? "no edge correction" : "edge correction");
    Session s(DocJson({MeshJson(m), ImageJson(im)}));
    s.run(kCapture, false, ctrl, true, false);
    const MeshState out = s.mesh(0);
    if (ctrl) {
      // Without correction the outline nodes sample on the image's edge,
      // which is outside it.
      EXPECT_EQ(out.selectedNodes(), (NodeSet{{1, 1}}));
      ExpectRgbOf(out, 1, 1, im.Pixel(1, 1));
      for (int j = 0; j <= 2; ++j)
        for (int i = 0; i <= 2; ++i)
          if (i != 1 || j != 1) ExpectPaintOf(out, 0, i, j);
      continue;
    }
    EXPECT_EQ(out.selectedNodes(), Rect(0, 2, 0, 2));
    for (int j = 0; j <= 2; ++j)
      for (int i = 0; i <= 2; ++i) {
        SCOPED_TRACE(testing::Message() << "node " << i << ", " << j);
        ExpectRgbOf(out, i, j, im.Pixel(int(30 * Inset(i, 2) / 10), int((30 - 30 * Inset(j, 2)) / 10)));
      }
  }
}

// ---- Which image ----------------------------------------------------------

TEST(CaptureFromRaster, TheTopmostSelectedImageWins) {
  // Above the mesh an unselected image; below it two selected ones.
  Session s(DocJson({ImageJson(Plain(1, 2, 3, false)), MeshJson(Tagged(0, 1, 1, Rect(0, 1, 0, 1))),
                     ImageJson(Plain(40, 50, 60, true)), ImageJson(Plain(70, 80, 90, true))}));
  s.run(kCapture, false, false, true, false);
  const MeshState out = s.mesh(1);
  for (int j = 0; j <= 1; ++j)
    for (int i = 0; i <= 1; ++i) ExpectRgbOf(out, i, j, {40, 50, 60});
}

TEST(CaptureFromRaster, NothingToCaptureChangesNothing) {
  const MeshRecipe m = Tagged(0, 1, 1, Rect(0, 1, 0, 1));
  MeshRecipe unselected = m;
  unselected.selected = {};
  unselected.artSelected = false;
  ImageRecipe otherPlaced = Plain(9, 9, 9, true, "placed");
  otherPlaced.placedType = 2;
  const std::pair<const char *, std::vector<json>> cases[] = {
      {"image not selected", {MeshJson(m), ImageJson(Plain(9, 9, 9, false))}},
      {"no mesh", {MeshJson(unselected), ImageJson(Plain(9, 9, 9, true))}},
      {"placed art of another kind", {MeshJson(m), ImageJson(otherPlaced)}},
  };
  for (const auto &[name, arts] : cases) {
    SCOPED_TRACE(name);
    Session s(DocJson(arts));
    const json before = s.written();
    EXPECT_EQ(s.runWritten(kCapture, false, false, true, false), before);
  }
}

// ---- Placed images --------------------------------------------------------

TEST(CaptureFromRaster, PlacedImageKeepsTheSelectionAndLeavesNoArt) {
  ImageRecipe im = Image(4, 4, {10, 0, 0, 10, 0, 40});
  im.type = "placed";
  // A: few nodes selected, one of them beyond the image. B: most selected.
  MeshRecipe a = Tagged(0, 3, 2, {{0, 0}, {3, 1}}, {}, 15);
  NodeSet most = Rect(0, 2, 0, 2);
  most.erase({1, 1});
  MeshRecipe b = Tagged(1, 2, 2, most, {}, 5);
  a.y0 = b.y0 = 5;
  for (bool ctrl : {false, true}) {
    SCOPED_TRACE(ctrl);
    Session s(DocJson({MeshJson(a), MeshJson(b), ImageJson(im)}));
    s.run(kCapture, false, ctrl, true, false);
    ASSERT_EQ(s.artCount(), 3u);
    EXPECT_EQ(Children(s.written()).at(2).at("type"), "placed");
    const MeshState ma = s.mesh(0), mb = s.mesh(1);
    // A's node (3, 1) lies at x = 45, beyond the image.
    EXPECT_EQ(ma.selectedNodes(), (NodeSet{{0, 0}}));
    ExpectPaintOf(ma, 0, 3, 1);
    ExpectRgbOf(ma, 0, 0, im.Pixel(1, 3));
    EXPECT_EQ(mb.selectedNodes(), most);
    ExpectRgbOf(mb, 1, 0, im.Pixel(1, 3));
    ExpectPaintOf(mb, 1, 1, 1);
  }
}

// ---- From the bottom mesh's surface ----------------------------------------

// Square meshes of 2 x 2 cells, 20 units per cell.
MeshRecipe Square(int tag, double x0, double y0, NodeSet sel) {
  MeshRecipe m = Tagged(tag, 2, 2, std::move(sel), {}, x0);
  m.y0 = y0, m.dx = m.dy = 20;
  return m;
}

TEST(CaptureFromMesh, SameOutlineTakesTheNodesOrSamplesInside) {
  const MeshRecipe top = Square(0, 0, 0, Rect(0, 2, 0, 2)), bottom = Square(1, 0, 0, {{1, 1}});
  {
    Session s(DocJson({MeshJson(top), MeshJson(bottom)}));
    s.run(kCapture, true, true, true, true);
    const MeshState out = s.mesh(0);
    for (int j = 0; j <= 2; ++j)
      for (int i = 0; i <= 2; ++i) ExpectPaintOf(out, 1, i, j);
    EXPECT_EQ(out.selectedNodes(), Rect(0, 2, 0, 2));
  }
  Session s(DocJson({MeshJson(top), MeshJson(bottom)}));
  s.run(kCapture, true, false, true, true);
  const MeshState out = s.mesh(0);
  // The middle node is sampled where it is; the others 0.05 inside.
  EXPECT_EQ(ColorCode(out, 1, 1), Code(1, 1, 1));
  const AIMeshSuite *ms = static_cast<const AIMeshSuite *>(lb::host::findSuite(kAIMeshSuite, kAIMeshSuiteVersion));
  ASSERT_NE(ms, nullptr);
  for (int j = 0; j <= 2; ++j)
    for (int i = 0; i <= 2; ++i) {
      if (i == 1 && j == 1) continue;
      SCOPED_TRACE(testing::Message() << "node " << i << ", " << j);
      AIColor c{};
      AIReal op = 1;
      ASSERT_EQ(ms->EvalColor(s.art(1), AIRealPoint{Inset(i, 2), Inset(j, 2)}, &c), kNoErr);
      ASSERT_EQ(ms->EvalOpacity(s.art(1), AIRealPoint{Inset(i, 2), Inset(j, 2)}, &op), kNoErr);
      EXPECT_NEAR(out.node(i, j).at("color").at("gray").get<double>(), c.c.g.gray, 1e-7);
      EXPECT_NEAR(OpacityAt(out, i, j), op, 1e-7);
    }
  // The corner samples inside the mesh, away from any node's own paint.
  EXPECT_EQ(ColorCode(out, 0, 0), -1);
  EXPECT_EQ(out.selectedNodes(), Rect(0, 2, 0, 2));
}

TEST(CaptureFromMesh, SeveralTargetsAndNodesOffTheSource) {
  // Top: shifted by half a cell, so its right column lies beyond the
  // source. Middle: far away, nothing overlaps.
  Session s(DocJson({MeshJson(Square(0, 30, 0, Rect(0, 2, 0, 2))), MeshJson(Square(1, 200, 200, Rect(0, 1, 0, 1))),
                     MeshJson(Square(2, 0, 0, {}))}));
  s.run(kCapture, true, true, true, false);
  const MeshState t = s.mesh(0), a = s.mesh(1);
  // Top node (0, j) at x = 30 lies on source line i = 1.5 -> between nodes;
  // node (1, j) at x = 50 is beyond the source (0..40).
  for (int j = 0; j <= 2; ++j) {
    EXPECT_TRUE(t.selected(0, j));
    EXPECT_NE(ColorCode(t, 0, j), Code(0, 0, j));
    for (int i = 1; i <= 2; ++i) {
      EXPECT_FALSE(t.selected(i, j));
      ExpectPaintOf(t, 0, i, j);
    }
  }
  EXPECT_TRUE(a.selectedNodes().empty());
  for (int j = 0; j <= 2; ++j)
    for (int i = 0; i <= 2; ++i) ExpectPaintOf(a, 1, i, j);
}

}  // namespace
