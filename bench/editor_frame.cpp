// The editor's canvas on a 256 x 256 mesh at 1:1 (1024 x 1024 pixels) with
// selection marks: a frame from the cached picture and marks (what every
// redraw, pan or hover costs), a frame after a change (the picture and the
// marks drawn again), a frame during a drag (the patches around the moved
// node and the marks), a frame after a change of selection (the marks only),
// the undo snapshot of a change (a copy of the document) and the document's
// text, and the hit test of a click.
#include <benchmark/benchmark.h>
#include <cairo.h>

#include "app/editor/EditorCore.h"
#include "host/Document.h"
#include "host/mesh/GradientMesh.h"
#include "io/Lbdoc.h"

namespace {

constexpr int kCells = 256;
constexpr int kViewW = 1200, kViewH = 900;

struct Scene {
  lb::host::Document doc;
  ArtObject* art = nullptr;
  lb::editor::CanvasView view;
  cairo_surface_t* target = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kViewW, kViewH);
  cairo_t* cr = cairo_create(target);

  explicit Scene(bool select = true) {
    ArtObject* layer = doc.addLayer("Layer 1");
    doc.artboard = AIRealRect{0, 1024, 1024, 0};
    doc.newArt(kMeshArt, kPlaceInsideOnTop, layer, &art);
    auto& m = *art->mesh;
    m.initCartesian(kCells, kCells);
    m.transform(AIRealMatrix{1024, 0, 0, 1024, 0, 0});
    for (int j = 0; j <= kCells; ++j)
      for (int i = 0; i <= kCells; ++i) {
        auto n = m.nodeData(i, j);
        n.color.kind = kThreeColor;
        n.color.c.rgb = {i / double(kCells), j / double(kCells), ((i + j) % 7) / 6.0};
        m.setNodeData(i, j, n);
      }
    // A quarter of the nodes selected: their handles are drawn too.
    if (select) {
      doc.setSelected(art, true);
      m.clearSelection();
      for (int j = 0; j < kCells / 2; ++j)
        for (int i = 0; i < kCells / 2; ++i) m.setSelected(m.node(i, j), true);
    }
    view.fit(doc, kViewW, kViewH);
    view.setZoom(1, kViewW / 2.0, kViewH / 2.0);
    view.paint(cr, doc, kViewW, kViewH);
  }
  // One frame of the view, painted into the target.
  void frame() {
    view.paint(cr, doc, kViewW, kViewH);
    cairo_surface_flush(target);
  }
  ~Scene() {
    cairo_destroy(cr);
    cairo_surface_destroy(target);
  }
};

void BM_FrameFromCachedPicture(benchmark::State& state) {
  Scene s;
  for (auto _ : state) {
    s.view.panBy(1, 0);
    s.frame();
  }
}
BENCHMARK(BM_FrameFromCachedPicture)->Unit(benchmark::kMillisecond);

// Arg 1: a quarter of the nodes selected (overlay with handles); 0: none.
void BM_FrameAfterChange(benchmark::State& state) {
  Scene s(state.range(0) != 0);
  for (auto _ : state) {
    s.view.invalidate();
    s.frame();
  }
}
BENCHMARK(BM_FrameAfterChange)->ArgName("selected")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// A frame of a drag: one selected node moved, and only the patches around
// it drawn again (with the marks). Arg 0: the whole picture drawn again
// instead, as before partial redraws.
void BM_FrameDuringDrag(benchmark::State& state) {
  Scene s;
  auto& m = *s.art->mesh;
  const lb::host::VertexId v = m.node(kCells / 4, kCells / 4);
  double step = 0.5;
  for (auto _ : state) {
    if (state.range(0)) s.view.invalidateArea(lb::editor::vertexReach(m, v));
    lb::editor::moveVertex(s.art, v, step, 0);
    step = -step;
    if (state.range(0))
      s.view.invalidateArea(lb::editor::vertexReach(m, v));
    else
      s.view.invalidate();
    s.frame();
  }
}
BENCHMARK(BM_FrameDuringDrag)->ArgName("partial")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// A click that changes the selection: only the marks are drawn again. Arg:
// the zoom (at 4 the view shows a sixteenth of the mesh).
void BM_FrameAfterSelectionChange(benchmark::State& state) {
  Scene s;
  s.view.setZoom(static_cast<double>(state.range(0)), kViewW / 2.0, kViewH / 2.0);
  s.view.paint(s.cr, s.doc, kViewW, kViewH);
  for (auto _ : state) {
    s.view.invalidateMarks();
    s.frame();
  }
}
BENCHMARK(BM_FrameAfterSelectionChange)->ArgName("zoom")->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond);

// The undo snapshot of a change: a copy of the document.
void BM_UndoSnapshot(benchmark::State& state) {
  Scene s;
  for (auto _ : state) {
    auto copy = s.doc.clone();
    benchmark::DoNotOptimize(copy.get());
  }
}
BENCHMARK(BM_UndoSnapshot)->Unit(benchmark::kMillisecond);

// The document's .lbdoc text: what a panel press costs to tell whether its
// command changed anything (and what every snapshot used to cost).
void BM_DocumentText(benchmark::State& state) {
  Scene s;
  for (auto _ : state) {
    std::string text = lb::io::writeDocument(s.doc);
    benchmark::DoNotOptimize(text.data());
  }
}
BENCHMARK(BM_DocumentText)->Unit(benchmark::kMillisecond);

void BM_ClickHitTest(benchmark::State& state) {
  Scene s;
  const AIRealPoint p{1000, 20};  // near a node outside the selection
  for (auto _ : state) {
    auto hit = lb::editor::hitTest(s.doc, p, 5);
    benchmark::DoNotOptimize(hit);
  }
}
BENCHMARK(BM_ClickHitTest)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
