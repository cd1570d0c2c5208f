// Knots and vertices (134, 135, every variant) and the brush mesh grid
// round trip (142 then 143) on whole-selected n x n meshes at n = 32, 64
// and 128, reported as time per node so that growth with size can be read.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "LBModule.h"
#include "host/Document.h"
#include "host/Host.h"
#include "host/mesh/GradientMesh.h"

namespace {

using lb::host::GradientMesh;

// A warped n x n mesh whose runs each carry a knot and a non-node vertex,
// with a different colour and opacity on every node.
const GradientMesh& TemplateMesh(int n) {
  static std::unique_ptr<GradientMesh> cache[3];
  const int slot = n == 32 ? 0 : n == 64 ? 1 : 2;
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
        lb::host::MeshRunData r;
        r.points.push_back(a);
        for (int q = 1; q <= 3; ++q) {
          const double t0 = (q - 1) / 3.0, t1 = q / 3.0, bend = q == 2 ? 1.0 : 0.0;
          auto lerp = [&](double t, double off) {
            return AIRealPoint{a.h + (b.h - a.h) * t + (axis ? off : 0.0), a.v + (b.v - a.v) * t + (axis ? 0.0 : off)};
          };
          r.points.push_back(lerp(t0 + (t1 - t0) / 3, bend));
          r.points.push_back(lerp(t1 - (t1 - t0) / 3, bend));
          r.points.push_back(q == 3 ? b : lerp(t1, q == 1 ? 1.0 : -1.0));
        }
        r.inner.resize(2);
        r.inner[1].vertex = true;
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
  art->userAttr = kArtSelected;
  art->mesh = std::make_unique<GradientMesh>(TemplateMesh(n));
  doc->appendChild(layer, std::move(art));
  return doc;
}

// Runs first (and then second, when nonzero) on a fresh copy of the mesh.
void RunCommands(benchmark::State& state, int id, bool alt, bool ctrl, int second = 0) {
  const int n = static_cast<int>(state.range(0));
  lb::host::Host host(MeshDocument(n));
  host.loadPlugin();
  for (auto _ : state) {
    state.PauseTiming();
    host.setDocument(MeshDocument(n));
    state.ResumeTiming();
    host.runCommand(id, alt, ctrl);
    if (second) host.runCommand(second, false, false);
  }
  host.shutdownPlugin();
  const double nodes = double(n + 1) * (n + 1);
  state.counters["ns_per_node"] =
      benchmark::Counter(nodes * 1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

#define LB_KNOTS_BENCH(name, ...)                                                    \
  void name(benchmark::State& state) { RunCommands(state, __VA_ARGS__); }            \
  BENCHMARK(name)->Arg(32)->Arg(64)->Arg(128)->Unit(benchmark::kMillisecond)->MinTime(0.2)

LB_KNOTS_BENCH(BM_KnotsToVertices, kCmdKnotsToVertices, false, false);
LB_KNOTS_BENCH(BM_KnotsDeleteCorrected, kCmdKnotsToVertices, true, false);
LB_KNOTS_BENCH(BM_KnotsDeletePlain, kCmdKnotsToVertices, false, true);
LB_KNOTS_BENCH(BM_VerticesToKnots, kCmdVerticesToKnots, false, false);
LB_KNOTS_BENCH(BM_VerticesDeleteCorrected, kCmdVerticesToKnots, true, false);
LB_KNOTS_BENCH(BM_VerticesDeletePlain, kCmdVerticesToKnots, false, true);
LB_KNOTS_BENCH(BM_BrushGridRoundTrip, kCmdBmgCreate, false, false, kCmdBmgToMesh);

}  // namespace

BENCHMARK_MAIN();
