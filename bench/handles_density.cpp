// Density of a large mesh through the panel dispatcher: doubling a whole
// 128 x 128 mesh along both axes (to 256 x 256) and along I only, and
// halving a 256 x 256 mesh back to 128 x 128.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

#include "LBModule.h"
#include "host/Document.h"
#include "host/Host.h"
#include "io/Lbdoc.h"

namespace {

using nlohmann::json;


// A whole-selected n x n mesh on a gently warped grid with straight runs
// and varying opacity.
std::string MeshDocument(int n) {
  json nodes = json::array();
  for (int j = 0; j <= n; ++j)
    for (int i = 0; i <= n; ++i)
      nodes.push_back({{"p", {10.0 * i + std::sin(0.3 * j), 10.0 * j + std::cos(0.2 * i)}},
                       {"color", {{"rgb", {double(i) / n, double(j) / n, 0.5}}}},
                       {"opacity", 0.5 + 0.5 * std::sin(0.1 * (i + j)) * 0.5}});
  json art = {{"type", "mesh"}, {"id", "m"}, {"size", {n, n}}, {"selected", true}, {"nodes", nodes}};
  json layer = {{"name", "Layer 1"}, {"children", {art}}};
  return json({{"latticebender", 1}, {"layers", {layer}}}).dump();
}

void RunDensity(benchmark::State& state, int n, int id, bool alt, int wantI, int wantJ) {
  const std::string text = MeshDocument(n);
  lb::host::Host host(lb::io::readDocument(text));
  host.loadPlugin();
  for (auto _ : state) {
    state.PauseTiming();
    host.setDocument(lb::io::readDocument(text));
    state.ResumeTiming();
    host.runCommand(id, alt, false);
    state.PauseTiming();
    const ArtObject* art = host.document().findById("m");
    if (!art || art->mesh->sizeI() != wantI || art->mesh->sizeJ() != wantJ)
      state.SkipWithError("unexpected mesh size");
    state.ResumeTiming();
  }
  host.shutdownPlugin();
}

void BM_DensityDouble128BothAxes(benchmark::State& state) { RunDensity(state, 128, kCmdDensityInc, false, 256, 256); }
void BM_DensityDouble128AlongI(benchmark::State& state) { RunDensity(state, 128, kCmdDensityInc, true, 256, 128); }
void BM_DensityHalve256BothAxes(benchmark::State& state) { RunDensity(state, 256, kCmdDensityDec, false, 128, 128); }

BENCHMARK(BM_DensityDouble128BothAxes)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_DensityDouble128AlongI)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_DensityHalve256BothAxes)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
