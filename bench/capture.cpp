// Colour capture from a 1024 x 1024 RGB image into one square mesh selected
// as a whole, run through the loaded module as the panel runs it. Reports
// the time per node, which must stay flat from 64 x 64 to 256 x 256 cells.
#include "LBModule.h"
#include <benchmark/benchmark.h>

#include <cmath>

#include "commands/color/ColourDoc.h"

namespace {

constexpr int kSide = 1024;

// A smooth photo-like picture: colour waves across the image.
coltest::ImageRecipe Photo() {
  coltest::ImageRecipe im;
  im.width = im.height = kSide;
  im.matrix = {1, 0, 0, 1, 0, kSide};
  im.pixels.resize(size_t(kSide) * kSide * 3);
  for (int row = 0; row < kSide; ++row)
    for (int x = 0; x < kSide; ++x) {
      uint8_t *p = &im.pixels[(size_t(row) * kSide + x) * 3];
      p[0] = uint8_t(127.5 + 127.5 * std::sin(x * 0.011));
      p[1] = uint8_t(127.5 + 127.5 * std::sin(row * 0.007 + 1.0));
      p[2] = uint8_t(127.5 + 127.5 * std::cos((x + row) * 0.005));
    }
  return im;
}

void Capture(benchmark::State &state, bool edge) {
  const int n = static_cast<int>(state.range(0));
  coltest::MeshRecipe mesh;
  mesh.I = mesh.J = n;
  mesh.whole = true;
  // Inside the image, a little away from its edges.
  mesh.x0 = mesh.y0 = 10.0;
  mesh.dx = mesh.dy = (kSide - 20.0) / n;
  mesh.colorAt = [](int, int) { return coltest::GrayPaint(0.5); };
  static const coltest::ImageRecipe photo = Photo();
  coltest::Session session(coltest::DocJson(std::vector<nlohmann::json>{coltest::MeshJson(mesh), coltest::ImageJson(photo)}));
  for (auto _ : state) session.run(kCmdColorCapture, false, !edge, true, true);
  const double nodes = double(n + 1) * double(n + 1);
  state.counters["nodes"] = nodes;
  state.counters["per_node"] =
      benchmark::Counter(nodes, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

const bool kRegistered = [] {
  benchmark::RegisterBenchmark("CaptureFromRaster", Capture, true)
      ->Arg(64)
      ->Arg(128)
      ->Arg(256)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("CaptureFromRasterNoEdge", Capture, false)
      ->Arg(64)
      ->Arg(128)
      ->Arg(256)
      ->Unit(benchmark::kMillisecond);
  return true;
}();

}  // namespace

BENCHMARK_MAIN();
