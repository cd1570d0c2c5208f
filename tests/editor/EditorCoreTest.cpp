// The editor's core without a window: history, hit testing, the
// direct-selection tool's clicks, rectangles and drags, and the canvas
// view's coordinates, cached picture and selection marks.
#include <gtest/gtest.h>

#include "app/editor/EditorCore.h"
#include "render/Render.h"
#include "io/Lbdoc.h"
#include "support/Engine.h"
#include "support/MeshRecipe.h"

namespace {
using lb::editor::Hit;
using lb::host::Document;
using lb::host::GradientMesh;
using lbtest::NodeSet;
using lbtest::SelectedNodes;

// A 2 x 1 mesh of 100-unit cells at (0, 0), nothing selected, and a square
// path beside it.
std::unique_ptr<Document> MeshAndPath() {
  lbtest::MeshRecipe m = lbtest::Coded(2, 1);
  m.artSelected = false;
  m.dx = m.dy = 100;
  nlohmann::json doc = lbtest::DocJson(m);
  nlohmann::json path = {{"type", "path"},
                         {"closed", true},
                         {"segments",
                          {{{"p", {300, 0}}}, {{"p", {350, 0}}}, {{"p", {350, 50}}}, {{"p", {300, 50}}}}}};
  doc["layers"][0]["children"].push_back(path);
  return lb::io::readDocument(doc.dump());
}

ArtObject* Mesh(Document& d) {
  for (ArtObject* a : d.allArt())
    if (a->type == kMeshArt) return a;
  return nullptr;
}

// The document of MeshAndPath, its mesh art and the mesh.
class Editor : public ::testing::Test {
 protected:
  std::unique_ptr<Document> doc = MeshAndPath();
  ArtObject* mesh = Mesh(*doc);
  GradientMesh& m = *mesh->mesh;
};

TEST(History, UndoAndRedoWalkTheSnapshots) {
  lb::editor::History<std::string> h;
  h.push("a");
  h.push("b");
  EXPECT_EQ(h.undo("c"), "b");
  EXPECT_EQ(h.undo("b"), "a");
  EXPECT_FALSE(h.canUndo());
  EXPECT_EQ(h.redo("a"), "b");
  EXPECT_EQ(h.redoCount(), 1u);
  h.push("x");  // a new change drops what could be redone
  EXPECT_FALSE(h.canRedo());
  EXPECT_EQ(h.undoCount(), 2u);
}

// The history's snapshots are copies of the document: a copy must write
// the same file, selection, ids and styles included, and stay apart from
// the original.
TEST(History, DocumentCopyWritesTheSameFile) {
  auto doc = MeshAndPath();
  ArtObject* art = Mesh(*doc);
  doc->setSelected(art, true);
  art->mesh->clearSelection();
  art->mesh->setSelected(art->mesh->node(1, 1), true);
  art->id = "mesh1";
  doc->keyArtId = "mesh1";
  lb::host::GraphicStyle style;
  style.name = "Blue";
  doc->addStyle(style);
  const std::string text = lb::io::writeDocument(*doc);
  auto copy = doc->clone();
  EXPECT_EQ(lb::io::writeDocument(*copy), text);
  EXPECT_EQ(copy->findById("mesh1"), Mesh(*copy));
  lb::editor::moveVertex(Mesh(*copy), Mesh(*copy)->mesh->node(1, 1), 5, 0);
  EXPECT_EQ(lb::io::writeDocument(*doc), text);
}

TEST_F(Editor, HitTestFindsWhatLiesUnderThePoint) {
  const struct {
    const char* name;
    AIRealPoint p;
    Hit::Kind kind;
    int i, j;  // the node hit, for vertices
  } cases[] = {{"corner", {0, 0}, Hit::kVertex, 0, 0},      {"withinTolerance", {203, 97}, Hit::kVertex, 2, 1},
               {"middleNode", {100, 4}, Hit::kVertex, 1, 0}, {"insideCell", {50, 50}, Hit::kNone, 0, 0},
               {"justOutside", {106, 0}, Hit::kNone, 0, 0},  {"path", {320, 20}, Hit::kPath, 0, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Hit h = lb::editor::hitTest(*doc, c.p, 5);
    ASSERT_EQ(h.kind, c.kind);
    if (c.kind == Hit::kVertex) {
      EXPECT_EQ(h.vertex, h.art->mesh->node(c.i, c.j));
    }
  }
}

TEST_F(Editor, ClickShiftClickAndEmptyClick) {
  EXPECT_TRUE(lb::editor::clickSelect(*doc, lb::editor::hitTest(*doc, {0, 0}, 5), false));
  EXPECT_TRUE(mesh->selected());
  EXPECT_EQ(SelectedNodes(m), (NodeSet{{0, 0}}));
  // The same click again changes nothing.
  EXPECT_FALSE(lb::editor::clickSelect(*doc, lb::editor::hitTest(*doc, {0, 0}, 5), false));
  lb::editor::clickSelect(*doc, lb::editor::hitTest(*doc, {100, 0}, 5), true);
  EXPECT_EQ(SelectedNodes(m), (NodeSet{{0, 0}, {1, 0}}));
  lb::editor::clickSelect(*doc, lb::editor::hitTest(*doc, {0, 0}, 5), true);  // toggles off
  EXPECT_EQ(SelectedNodes(m), (NodeSet{{1, 0}}));
  // The handles of selected vertices are hit before anything else.
  const Hit handle = lb::editor::hitTest(*doc, m.tangent(m.node(1, 0), lb::host::kDirIFwd), 2);
  EXPECT_EQ(handle.kind, Hit::kHandle);
  EXPECT_EQ(handle.dir, lb::host::kDirIFwd);
  // A plain click elsewhere moves the selection, a click on nothing clears it.
  lb::editor::clickSelect(*doc, lb::editor::hitTest(*doc, {320, 20}, 5), false);
  EXPECT_FALSE(mesh->selected());
  EXPECT_TRUE(m.isSelectionEmpty());
  EXPECT_TRUE(lb::editor::clickSelect(*doc, Hit{}, false));
  for (ArtObject* a : doc->allArt()) EXPECT_FALSE(a->selected());
}

TEST_F(Editor, RectangleSelectsTheVerticesInside) {
  EXPECT_TRUE(lb::editor::rectSelect(*doc, AIRealRect{-10, 110, 150, 90}, false));
  EXPECT_TRUE(mesh->selected());
  EXPECT_EQ(SelectedNodes(m), (NodeSet{{0, 1}, {1, 1}}));
  // With Shift the earlier selection stays.
  lb::editor::rectSelect(*doc, AIRealRect{190, 10, 210, -10}, true);
  EXPECT_EQ(SelectedNodes(m), (NodeSet{{0, 1}, {1, 1}, {2, 0}}));
  lb::editor::rectSelect(*doc, AIRealRect{190, 10, 210, -10}, false);
  EXPECT_EQ(SelectedNodes(m), (NodeSet{{2, 0}}));
}

TEST_F(Editor, DraggingAVertexTakesItsHandles) {
  const auto v = m.node(1, 0);
  const AIRealPoint h = m.tangent(v, lb::host::kDirIFwd);
  lb::editor::moveVertex(mesh, v, 5, -3);
  EXPECT_PT_NEAR(m.point(v), (AIRealPoint{105, -3}), 1e-12);
  EXPECT_PT_NEAR(m.tangent(v, lb::host::kDirIFwd), (AIRealPoint{h.h + 5, h.v - 3}), 1e-12);
  lb::editor::moveHandle(mesh, v, lb::host::kDirIFwd, 0, 10);
  EXPECT_DOUBLE_EQ(m.tangent(v, lb::host::kDirIFwd).v, h.v + 7);
  EXPECT_DOUBLE_EQ(m.point(v).v, -3);
}

// View and document coordinates round-trip; the picture is rendered only
// when stale.
TEST_F(Editor, CanvasCoordinatesAndCachedPicture) {
  lb::editor::CanvasView view;
  view.fit(*doc, 800, 600);
  double x, y;
  view.toView(AIRealPoint{100, 50}, &x, &y);
  EXPECT_PT_NEAR(view.toDoc(x, y), (AIRealPoint{100, 50}), 1e-9);
  // Zooming about a point keeps that point still.
  view.setZoom(view.zoom() * 2, x, y);
  EXPECT_PT_NEAR(view.toDoc(x, y), (AIRealPoint{100, 50}), 1e-9);
  EXPECT_TRUE(view.refresh(*doc));
  EXPECT_FALSE(view.refresh(*doc));
  view.invalidate();
  EXPECT_TRUE(view.refresh(*doc));
  view.panBy(10, 0);  // panning reuses the picture
  EXPECT_FALSE(view.refresh(*doc));
}

// Pixels of the w x h view that differ from the renderer's picture with
// the selection overlay, where the picture is shown, by more than
// `tolerance` in a channel.
int DiffsFromRenderer(const Document& doc, lb::editor::CanvasView& view, int w, int h, int tolerance = 0) {
  cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, w, h);
  cairo_t* cr = cairo_create(s);
  view.paint(cr, doc, w, h);
  cairo_destroy(cr);
  cairo_surface_flush(s);
  const lb::render::Image ref = lb::render::renderDocument(doc, {view.zoom(), true});  // with the selection
  const auto* px = reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(s));
  const int stride = cairo_image_surface_get_stride(s) / 4;
  const int ox = static_cast<int>(std::round(view.panX())), oy = static_cast<int>(std::round(view.panY()));
  int diffs = 0;
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      const int rx = x - ox, ry = y - oy;
      if (rx < 0 || ry < 0 || rx >= ref.width || ry >= ref.height) continue;
      const uint32_t a = px[y * stride + x], b = ref.at(rx, ry);
      for (int shift = 0; shift < 24; shift += 8)
        if (std::abs(int((a >> shift) & 0xFF) - int((b >> shift) & 0xFF)) > tolerance) {
          ++diffs;
          break;
        }
    }
  cairo_surface_destroy(s);
  return diffs;
}

// The view's marks, drawn apart for the part around the view, must land
// exactly where the renderer's overlay puts them: after a pan, after a
// pan beyond the part they cover, and after a change of selection.
TEST(CanvasMarks, LandWhereTheRendererDrawsThem) {
  const struct { const char* name; double zoom, panX, panY; } cases[] = {
      {"whole", 0.4, 5, 10}, {"oneToOne", 1, -20.4, 15.6}, {"magnified", 2.5, -180.7, -60.2}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto doc = MeshAndPath();
    ArtObject* art = Mesh(*doc);
    GradientMesh& m = *art->mesh;
    doc->setSelected(art, true);
    m.clearSelection();
    m.setSelected(m.node(0, 0), true);
    m.setSelected(m.node(1, 1), true);
    const int w = 160, h = 120;
    lb::editor::CanvasView view;
    view.fit(*doc, w, h);
    view.setZoom(c.zoom, 0, 0);
    view.panBy(c.panX - view.panX(), c.panY - view.panY());
    EXPECT_EQ(DiffsFromRenderer(*doc, view, w, h), 0);
    view.panBy(-70, 0);  // past the quarter view the marks cover around it
    EXPECT_EQ(DiffsFromRenderer(*doc, view, w, h), 0);
    m.setSelected(m.node(2, 0), true);
    m.setSelected(m.node(0, 0), false);
    view.invalidateMarks();
    EXPECT_EQ(DiffsFromRenderer(*doc, view, w, h), 0);
  }
}

// Dragging redraws only the patches around what moved; the picture must
// still be the one a full render gives, for a node, an inner vertex and a
// handle, at 1:1 and magnified.
TEST(CanvasDrag, RedrawsTheMovedPatchesAsAFullRenderWould) {
  const struct {
    const char* name;
    bool inner, handle;
    double zoom;
    bool marks;
  } cases[] = {{"node", false, false, 1, false},    {"innerVertex", true, false, 1, false},
               {"handle", false, true, 2.5, false}, {"nodeMarked", false, false, 1, true},
               {"innerMarked", true, false, 1, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    lbtest::MeshRecipe recipe = lbtest::MeshRecipe::Varied(4, 3);
    recipe.artSelected = c.marks;
    auto doc = lb::io::readDocument(lbtest::DocJson(recipe).dump());
    GradientMesh& m = *Mesh(*doc)->mesh;
    lb::host::VertexId v = m.node(2, 1);
    if (c.inner)
      for (lb::host::VertexId u = m.nextVertex(v); u != lb::host::kNoVertex && !m.isNode(u); u = m.nextVertex(u)) v = u;
    ASSERT_EQ(m.isNode(v), !c.inner);
    const int w = 260, h = 200;
    lb::editor::CanvasView view;
    view.fit(*doc, w, h);
    view.setZoom(c.zoom, 0, 0);
    ASSERT_EQ(DiffsFromRenderer(*doc, view, w, h), 0);
    const AIRealRect areaBefore = lb::render::renderArea(*doc);
    for (int step = 0; step < 3; ++step) {
      view.invalidateArea(lb::editor::vertexReach(m, v));
      if (c.handle)
        lb::editor::moveHandle(Mesh(*doc), v, lb::host::kDirIFwd, 4, -3);
      else
        lb::editor::moveVertex(Mesh(*doc), v, 4, -3);
      view.invalidateArea(lb::editor::vertexReach(m, v));
      // Cairo's mesh shading rounds a level differently when it draws a part.
      EXPECT_EQ(DiffsFromRenderer(*doc, view, w, h, 1), 0) << "step " << step;
    }
    // An inner move leaves the drawing area alone, so only the part was redrawn.
    EXPECT_EQ(lb::render::renderArea(*doc).left, areaBefore.left);
  }
}

}  // namespace
