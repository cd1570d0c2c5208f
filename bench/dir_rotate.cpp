// Rotating the grid direction of a large mesh with a knot on every run:
// a new 128 x 128 mesh is built line by line and every node, run and knot
// copied into it through the window.
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

#include <nlohmann/json.hpp>

#include "LBModule.h"
#include "host/Document.h"
#include "host/Host.h"
#include "io/Lbdoc.h"

namespace {

using nlohmann::json;

json Point(double h, double v) { return json::array({h, v}); }

std::string MeshDocument(int n) {
  auto node = [](int i, int j) { return Point(10.0 * i + std::sin(0.3 * j), 10.0 * j + std::cos(0.2 * i)); };
  json nodes = json::array();
  for (int j = 0; j <= n; ++j)
    for (int i = 0; i <= n; ++i)
      nodes.push_back({{"p", node(i, j)}, {"color", {{"rgb", {double(i) / n, double(j) / n, 0.5}}}}});
  json runs = json::array();
  for (int axis = 0; axis < 2; ++axis) {
    for (int j = 0; j <= n; ++j) {
      for (int i = 0; i <= n; ++i) {
        if (axis == 0 ? i == n : j == n) continue;
        const json a = node(i, j), b = axis == 0 ? node(i + 1, j) : node(i, j + 1);
        const double ah = a[0], av = a[1], bh = b[0], bv = b[1];
        const double mh = (ah + bh) / 2 + (axis ? 1.0 : 0.0), mv = (av + bv) / 2 + (axis ? 0.0 : 1.0);
        json pts = {a,
                    Point(ah + (mh - ah) / 3, av + (mv - av) / 3),
                    Point(mh - (mh - ah) / 3, mv - (mv - av) / 3),
                    Point(mh, mv),
                    Point(mh + (bh - mh) / 3, mv + (bv - mv) / 3),
                    Point(bh - (bh - mh) / 3, bv - (bv - mv) / 3),
                    b};
        runs.push_back({{"node", {i, j}}, {"axis", axis ? "J" : "I"}, {"points", pts}, {"inner", json::array({{{"kind", "knot"}}})}});
      }
    }
  }
  json mesh = {{"type", "mesh"}, {"size", {n, n}}, {"selected", true}, {"nodes", nodes}, {"runs", runs}};
  json layer = {{"name", "Layer 1"}, {"children", json::array({mesh})}};
  json doc = {{"latticebender", 1}, {"layers", json::array({layer})}};
  return doc.dump();
}

void BM_RotateClockwise128WithKnots(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  lb::host::Host host(lb::io::readDocument(MeshDocument(n)));
  host.loadPlugin();
  for (auto _ : state) host.runCommand(kCmdDirRotate, false, false);
  state.SetItemsProcessed(state.iterations() * (n + 1) * (n + 1));
  state.SetLabel("nodes per second");
}
BENCHMARK(BM_RotateClockwise128WithKnots)->Arg(32)->Arg(128)->Unit(benchmark::kMillisecond);

void BM_SmartReset128WithKnots(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  lb::host::Host host(lb::io::readDocument(MeshDocument(n)));
  host.loadPlugin();
  for (auto _ : state) host.runCommand(kCmdUvReset, false, false);
  state.SetItemsProcessed(state.iterations() * (n + 1) * (n + 1));
}
BENCHMARK(BM_SmartReset128WithKnots)->Arg(128)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
