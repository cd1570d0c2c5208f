// Rendering a 64 x 64 mesh at 1024 x 1024 pixels, next to cairo's own
// mesh-pattern fill of the same patches (one cubic per side, the node
// colours at the corners) as the baseline; and writing the picture as PNG,
// next to cairo's own PNG writer.
#include "render/Render.h"

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <cstdio>
#include <string>
#include <unistd.h>

#include "host/Document.h"
#include "host/mesh/GradientMesh.h"
#include "render/Png.h"

namespace {

// Colours of node (i, j): steps that turn back every few nodes (the colour
// bends inside most patches, which are cut), or a smooth ramp (bilinear
// enough: every patch is one cairo patch).
enum class Colours { Steps, Ramp };

struct Scene {
  lb::host::Document doc;
  ArtObject* art = nullptr;
  explicit Scene(Colours colours) {
    ArtObject* layer = doc.addLayer("Layer 1");
    doc.artboard = AIRealRect{0, 1024, 1024, 0};
    doc.newArt(kMeshArt, kPlaceInsideOnTop, layer, &art);
    auto& m = *art->mesh;
    m.initCartesian(64, 64);
    m.transform(AIRealMatrix{1024, 0, 0, 1024, 0, 0});
    for (int j = 0; j <= 64; ++j)
      for (int i = 0; i <= 64; ++i) {
        auto n = m.nodeData(i, j);
        n.color.kind = kThreeColor;
        if (colours == Colours::Steps)
          n.color.c.rgb = {(i % 7) / 6.0, (j % 5) / 4.0, ((i + j) % 3) / 2.0};
        else
          n.color.c.rgb = {i / 64.0, j / 64.0, (i + j) / 128.0};
        m.setNodeData(i, j, n);
      }
  }
};

void BM_RenderMesh64At1024(benchmark::State& state) {
  Scene scene(static_cast<Colours>(state.range(0)));
  for (auto _ : state) {
    auto img = lb::render::renderDocument(scene.doc);
    benchmark::DoNotOptimize(img.pixels.data());
  }
}
BENCHMARK(BM_RenderMesh64At1024)->ArgName("ramp")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_CairoMeshPattern64At1024(benchmark::State& state) {
  Scene scene(static_cast<Colours>(state.range(0)));
  const auto& m = *scene.art->mesh;
  for (auto _ : state) {
    cairo_surface_t* surf = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1024, 1024);
    cairo_t* cr = cairo_create(surf);
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_paint(cr);
    cairo_matrix_t mx;
    cairo_matrix_init(&mx, 1, 0, 0, -1, 0, 1024);
    cairo_set_matrix(cr, &mx);
    cairo_pattern_t* pat = cairo_pattern_create_mesh();
    for (int j = 0; j < 64; ++j)
      for (int i = 0; i < 64; ++i) {
        const auto& b = m.runPoints(0, i, j);
        const auto& r = m.runPoints(1, i + 1, j);
        const auto& t = m.runPoints(0, i, j + 1);
        const auto& l = m.runPoints(1, i, j);
        cairo_mesh_pattern_begin_patch(pat);
        cairo_mesh_pattern_move_to(pat, b[0].h, b[0].v);
        cairo_mesh_pattern_curve_to(pat, b[1].h, b[1].v, b[2].h, b[2].v, b[3].h, b[3].v);
        cairo_mesh_pattern_curve_to(pat, r[1].h, r[1].v, r[2].h, r[2].v, r[3].h, r[3].v);
        cairo_mesh_pattern_curve_to(pat, t[2].h, t[2].v, t[1].h, t[1].v, t[0].h, t[0].v);
        cairo_mesh_pattern_curve_to(pat, l[2].h, l[2].v, l[1].h, l[1].v, l[0].h, l[0].v);
        const int ci[4] = {i, i + 1, i + 1, i}, cj[4] = {j, j, j + 1, j + 1};
        for (int k = 0; k < 4; ++k) {
          double rr, gg, bb;
          lb::host::colorToRGB(m.nodeData(ci[k], cj[k]).color, &rr, &gg, &bb);
          cairo_mesh_pattern_set_corner_color_rgba(pat, k, rr, gg, bb, m.nodeData(ci[k], cj[k]).opacity);
        }
        cairo_mesh_pattern_end_patch(pat);
      }
    cairo_set_source(cr, pat);
    cairo_rectangle(cr, 0, 0, 1024, 1024);
    cairo_fill(cr);
    cairo_surface_flush(surf);
    benchmark::DoNotOptimize(cairo_image_surface_get_data(surf));
    cairo_pattern_destroy(pat);
    cairo_destroy(cr);
    cairo_surface_destroy(surf);
  }
}
BENCHMARK(BM_CairoMeshPattern64At1024)->ArgName("ramp")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

std::string scratchPng() { return "/tmp/lb-bench-render-" + std::to_string(::getpid()) + ".png"; }

// The whole `render` command's work: draw and write the PNG.
void BM_RenderMeshPng64At1024(benchmark::State& state) {
  Scene scene(Colours::Steps);
  const std::string out = scratchPng();
  for (auto _ : state) lb::render::renderDocumentPng(scene.doc, out);
  std::remove(out.c_str());
}
BENCHMARK(BM_RenderMeshPng64At1024)->Unit(benchmark::kMillisecond);

// PNG writing alone: ours, then cairo's writer on the same picture.
void BM_WritePng1024(benchmark::State& state) {
  Scene scene(Colours::Steps);
  auto img = lb::render::renderDocument(scene.doc);
  const std::string out = scratchPng();
  for (auto _ : state) {
    if (state.range(0) == 0) {
      lb::render::writePng(out, img.pixels.data(), img.width, img.height, img.width);
    } else {
      cairo_surface_t* surf = cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(img.pixels.data()),
                                                                  CAIRO_FORMAT_ARGB32, img.width, img.height, img.width * 4);
      cairo_surface_write_to_png(surf, out.c_str());
      cairo_surface_destroy(surf);
    }
  }
  FILE* f = std::fopen(out.c_str(), "rb");
  if (f) {
    std::fseek(f, 0, SEEK_END);
    state.counters["bytes"] = static_cast<double>(std::ftell(f));
    std::fclose(f);
  }
  std::remove(out.c_str());
}
BENCHMARK(BM_WritePng1024)->ArgName("cairo")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
