// Building one mesh from an n x n grid of docked paths (every third path
// bent through a middle anchor, every other one drawn backwards): docking
// of the ends, grid recognition ring by ring, and the mesh with its knots.
#include "LBModule.h"
#include <benchmark/benchmark.h>

#include <string>

#include <nlohmann/json.hpp>

#include "host/Document.h"
#include "host/Host.h"
#include "io/Lbdoc.h"

namespace {

using nlohmann::json;

json Point(double h, double v) { return json::array({h, v}); }

json GridPath(double ah, double av, double bh, double bv, bool bend, bool reverse) {
  json segs = json::array();
  if (bend) {
    const double mh = (ah + bh) / 2 + (av == bv ? 0.0 : 2.0), mv = (av + bv) / 2 + (av == bv ? 2.0 : 0.0);
    segs = {{{"p", Point(ah, av)}},
            {{"p", Point(mh, mv)}, {"in", Point(mh - (bh - ah) / 6, mv - (bv - av) / 6)},
             {"out", Point(mh + (bh - ah) / 6, mv + (bv - av) / 6)}},
            {{"p", Point(bh, bv)}}};
  } else {
    segs = {{{"p", Point(ah, av)}}, {{"p", Point(bh, bv)}}};
  }
  if (reverse) {
    json r = json::array();
    for (auto it = segs.rbegin(); it != segs.rend(); ++it) {
      json s = *it;
      if (s.contains("in")) std::swap(s["in"], s["out"]);
      r.push_back(s);
    }
    segs = r;
  }
  return {{"type", "path"}, {"selected", true}, {"segments", segs}};
}

// Rows first, then columns, as a person draws a grid.
std::string GridDocument(int n) {
  json paths = json::array();
  int serial = 0;
  auto add = [&](double ah, double av, double bh, double bv) {
    paths.push_back(GridPath(ah, av, bh, bv, serial % 3 == 2, serial % 2 == 1));
    ++serial;
  };
  for (int j = 0; j <= n; ++j)
    for (int i = 0; i < n; ++i) add(10.0 * i, 10.0 * j, 10.0 * (i + 1), 10.0 * j);
  for (int i = 0; i <= n; ++i)
    for (int j = 0; j < n; ++j) add(10.0 * i, 10.0 * j, 10.0 * i, 10.0 * (j + 1));
  json layer = {{"name", "Layer 1"}, {"children", paths}};
  json doc = {{"latticebender", 1}, {"layers", json::array({layer})}};
  return doc.dump();
}

void BM_MeshFromDockedPaths(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::string text = GridDocument(n);
  lb::host::Host host(lb::io::readDocument(text));
  host.loadPlugin();
  for (auto _ : state) {
    state.PauseTiming();
    host.setDocument(lb::io::readDocument(text));
    state.ResumeTiming();
    host.runCommand(kCmdSewDocked, false, false);
  }
  state.SetItemsProcessed(state.iterations() * 2 * n * (n + 1));
  state.SetLabel("paths per second");
}
BENCHMARK(BM_MeshFromDockedPaths)->Arg(16)->Arg(32)->Arg(64)->Arg(128)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
