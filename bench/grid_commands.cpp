// Structural commands (density, UV reset, grid direction, right-angle
// handles) on whole-selected n x n meshes at n = 64, 128 and 256, reported
// as time per node so that growth with size can be read off.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "LBModule.h"
#include "host/Document.h"
#include "host/Host.h"
#include "host/mesh/GradientMesh.h"

namespace {

using lb::host::GradientMesh;

// A warped n x n mesh whose runs are curved and carry one knot each, with a
// different colour and opacity on every node.
const GradientMesh& TemplateMesh(int n) {
  static std::unique_ptr<GradientMesh> cache[3];
  const int slot = n == 64 ? 0 : n == 128 ? 1 : 2;
  if (cache[slot] && cache[slot]->sizeI() == n) return *cache[slot];
  auto m = std::make_unique<GradientMesh>();
  m->initCartesian(n, n);
  auto at = [](int i, int j) { return AIRealPoint{10.0 * i + std::sin(0.3 * j), 10.0 * j + std::cos(0.2 * i)}; };
  for (int j = 0; j <= n; ++j)
    for (int i = 0; i <= n; ++i) {
      lb::host::MeshNodeData d = m->nodeData(i, j);
      d.p = at(i, j);
      d.color.kind = kThreeColor;
      d.color.c.rgb = {static_cast<AIReal>(double(i) / n), static_cast<AIReal>(double(j) / n), 0.5};
      d.opacity = 0.5 + 0.25 * std::sin(0.1 * (i + j));
      m->setNodeData(i, j, d);
    }
  for (int axis = 0; axis < 2; ++axis)
    for (int j = 0; j <= n; ++j)
      for (int i = 0; i <= n; ++i) {
        if (axis == 0 ? (i == n) : (j == n)) continue;
        const AIRealPoint a = at(i, j), b = axis == 0 ? at(i + 1, j) : at(i, j + 1);
        const AIRealPoint mid{(a.h + b.h) / 2 + (axis ? 1.0 : 0.0), (a.v + b.v) / 2 + (axis ? 0.0 : 1.0)};
        lb::host::MeshRunData r;
        r.points = {a,
                    {a.h + (mid.h - a.h) / 3, a.v + (mid.v - a.v) / 3},
                    {mid.h - (mid.h - a.h) / 3, mid.v - (mid.v - a.v) / 3},
                    mid,
                    {mid.h + (b.h - mid.h) / 3, mid.v + (b.v - mid.v) / 3},
                    {b.h - (b.h - mid.h) / 3, b.v - (b.v - mid.v) / 3},
                    b};
        r.inner.resize(1);
        m->setRunData(axis, i, j, r);
      }
  m->selectAll();
  cache[slot] = std::move(m);
  return *cache[slot];
}

std::unique_ptr<lb::host::Document> MeshDocument(int n) {
  auto doc = std::make_unique<lb::host::Document>();
  ArtObject* layer = doc->addLayer("Layer 1");
  auto art = std::make_unique<ArtObject>();
  art->type = kMeshArt;
  art->id = std::string(1, 'm');  // (GCC 12 warns falsely on assigning a literal here)
  art->userAttr = kArtSelected;
  art->mesh = std::make_unique<GradientMesh>(TemplateMesh(n));
  doc->appendChild(layer, std::move(art));
  return doc;
}

void RunCommand(benchmark::State& state, int id, bool alt, bool ctrl) {
  const int n = static_cast<int>(state.range(0));
  lb::host::Host host(MeshDocument(n));
  host.loadPlugin();
  for (auto _ : state) {
    state.PauseTiming();
    host.setDocument(MeshDocument(n));
    state.ResumeTiming();
    host.runCommand(id, alt, ctrl);
  }
  host.shutdownPlugin();
  const double nodes = double(n + 1) * (n + 1);
  state.counters["ns_per_node"] =
      benchmark::Counter(nodes * 1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

#define LB_GRID_BENCH(name, id, alt, ctrl)                                                  \
  void name(benchmark::State& state) { RunCommand(state, id, alt, ctrl); }                  \
  BENCHMARK(name)->Arg(64)->Arg(128)->Arg(256)->Unit(benchmark::kMillisecond)->MinTime(0.2)

LB_GRID_BENCH(BM_DensityDoubleBoth, kCmdDensityInc, false, false);
LB_GRID_BENCH(BM_DensityDoubleI, kCmdDensityInc, true, false);
LB_GRID_BENCH(BM_DensityHalveBoth, kCmdDensityDec, false, false);
LB_GRID_BENCH(BM_UvResetSmart, kCmdUvReset, false, false);
LB_GRID_BENCH(BM_UvResetLinear, kCmdUvReset, false, true);
LB_GRID_BENCH(BM_RotateClockwise, kCmdDirRotate, false, false);
LB_GRID_BENCH(BM_RotateCounterClockwise, kCmdDirRotate, true, false);
LB_GRID_BENCH(BM_FlipI, kCmdDirRotate, false, true);
LB_GRID_BENCH(BM_FlipJ, kCmdDirRotate, true, true);
LB_GRID_BENCH(BM_HandlesRightAngle, kCmdHandles90, false, false);

}  // namespace

BENCHMARK_MAIN();
