// Sewing two n x n meshes (n = 32, 64, 128) by moving vertices, by adding a
// row, and with unequal sides (n against n / 2), and joining k x k blocks
// of docked 16 x 16 meshes (k = 2, 4, 8); reported as time per node of the
// result so that growth with size can be read off.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "LBModule.h"
#include "host/Document.h"
#include "host/Host.h"
#include "host/mesh/GradientMesh.h"

namespace {

using lb::host::GradientMesh;

constexpr double kCell = 10.0;

// An I x J mesh of kCell cells with its node (0, 0) at (h0, v0): straight
// runs with one knot each, a different colour and opacity on every node.
std::unique_ptr<GradientMesh> GridMesh(int I, int J, double h0, double v0, double w) {
  auto m = std::make_unique<GradientMesh>();
  m->initCartesian(I, J);
  auto at = [&](int i, int j) { return AIRealPoint{h0 + w * i, v0 + kCell * j}; };
  for (int j = 0; j <= J; ++j)
    for (int i = 0; i <= I; ++i) {
      lb::host::MeshNodeData d = m->nodeData(i, j);
      d.p = at(i, j);
      d.color.kind = kThreeColor;
      d.color.c.rgb = {static_cast<AIReal>(double(i) / I), static_cast<AIReal>(double(j) / J), 0.5};
      d.opacity = 0.5 + 0.25 * std::sin(0.1 * (i + j));
      m->setNodeData(i, j, d);
    }
  for (int axis = 0; axis < 2; ++axis)
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i <= I; ++i) {
        if (axis == 0 ? (i == I) : (j == J)) continue;
        const AIRealPoint a = at(i, j), b = axis == 0 ? at(i + 1, j) : at(i, j + 1);
        lb::host::MeshRunData r;
        r.points.resize(7);
        for (int k = 0; k <= 6; ++k) r.points[k] = {a.h + (b.h - a.h) * k / 6, a.v + (b.v - a.v) * k / 6};
        r.inner.resize(1);
        m->setRunData(axis, i, j, r);
      }
  m->selectAll();
  return m;
}

void AddMesh(lb::host::Document& doc, ArtObject* layer, std::unique_ptr<GradientMesh> mesh) {
  auto art = std::make_unique<ArtObject>();
  art->type = kMeshArt;
  art->userAttr = kArtSelected;
  art->mesh = std::move(mesh);
  doc.appendChild(layer, std::move(art));
}

// Two n x n meshes, the second docked on top of the first; with `half` the
// second has n / 2 cells along the seam.
std::unique_ptr<lb::host::Document> PairDocument(int n, bool half) {
  auto doc = std::make_unique<lb::host::Document>();
  ArtObject* layer = doc->addLayer("Layer 1");
  AddMesh(*doc, layer, GridMesh(n, n, 0, 0, kCell));
  const int top = half ? n / 2 : n;
  AddMesh(*doc, layer, GridMesh(top, n, 0, n * kCell, kCell * n / top));
  return doc;
}

// A k x k block of docked 16 x 16 meshes.
std::unique_ptr<lb::host::Document> BlockDocument(int k) {
  auto doc = std::make_unique<lb::host::Document>();
  ArtObject* layer = doc->addLayer("Layer 1");
  for (int r = 0; r < k; ++r)
    for (int c = 0; c < k; ++c) AddMesh(*doc, layer, GridMesh(16, 16, 16 * kCell * c, 16 * kCell * r, kCell));
  return doc;
}

template <class MakeDoc>
void Run(benchmark::State& state, int id, MakeDoc make, double resultNodes) {
  lb::host::Host host(make());
  host.loadPlugin();
  for (auto _ : state) {
    state.PauseTiming();
    host.setDocument(make());
    state.ResumeTiming();
    host.runCommand(id, false, false);
  }
  host.shutdownPlugin();
  state.counters["ns_per_node"] =
      benchmark::Counter(resultNodes * 1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void BM_SewMove(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  Run(state, kCmdSewMeshMove, [n] { return PairDocument(n, false); }, double(n + 1) * (2 * n + 1));
}
void BM_SewAddRow(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  Run(state, kCmdSewMeshAdd, [n] { return PairDocument(n, false); }, double(n + 1) * (2 * n + 2));
}
void BM_SewMoveUnequal(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  Run(state, kCmdSewMeshMove, [n] { return PairDocument(n, true); }, double(n + 1) * (2 * n + 1));
}
void BM_JoinBlock(benchmark::State& state) {
  const int k = static_cast<int>(state.range(0));
  Run(state, kCmdSewDocked, [k] { return BlockDocument(k); }, double(16 * k + 1) * (16 * k + 1));
}

BENCHMARK(BM_SewMove)->Arg(32)->Arg(64)->Arg(128)->Unit(benchmark::kMillisecond)->MinTime(0.2);
BENCHMARK(BM_SewAddRow)->Arg(32)->Arg(64)->Arg(128)->Unit(benchmark::kMillisecond)->MinTime(0.2);
BENCHMARK(BM_SewMoveUnequal)->Arg(32)->Arg(64)->Arg(128)->Unit(benchmark::kMillisecond)->MinTime(0.2);
BENCHMARK(BM_JoinBlock)->Arg(2)->Arg(4)->Arg(8)->Unit(benchmark::kMillisecond)->MinTime(0.2);

}  // namespace

BENCHMARK_MAIN();
