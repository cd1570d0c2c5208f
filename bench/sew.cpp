// Sewing two n x n meshes (n = 32, 64, 128) by moving vertices, by adding a
// row, and with unequal sides (n against n / 2), and joining k x k blocks
// of docked 16 x 16 meshes (k = 2, 4, 8); reported as time per node of the
// result so that growth with size can be read off.
#include "LBModule.h"
#include "bench/support/BenchMeshes.h"

namespace {

using lb::bench::GradientMesh;

constexpr double kCell = 10.0;

// An I x J mesh of cells w wide and kCell high with its node (0, 0) at
// (h0, v0), straight runs with one knot each.
std::unique_ptr<GradientMesh> GridMesh(int I, int J, double h0, double v0, double w) {
  return lb::bench::ShapedMesh(
      I, J, [&](int i, int j) { return AIRealPoint{h0 + w * i, v0 + kCell * j}; }, {2, 0.0, 0});
}

std::unique_ptr<lb::host::Document> Document(const std::vector<std::unique_ptr<GradientMesh>>& meshes) {
  std::vector<const GradientMesh*> raw;
  for (const auto& m : meshes) raw.push_back(m.get());
  return lb::bench::MeshDocument(raw);
}

// Two n x n meshes, the second docked on top of the first; with `half` the
// second has n / 2 cells along the seam.
std::unique_ptr<lb::host::Document> PairDocument(int n, bool half) {
  std::vector<std::unique_ptr<GradientMesh>> meshes;
  meshes.push_back(GridMesh(n, n, 0, 0, kCell));
  const int top = half ? n / 2 : n;
  meshes.push_back(GridMesh(top, n, 0, n * kCell, kCell * n / top));
  return Document(meshes);
}

// A k x k block of docked 16 x 16 meshes.
std::unique_ptr<lb::host::Document> BlockDocument(int k) {
  std::vector<std::unique_ptr<GradientMesh>> meshes;
  for (int r = 0; r < k; ++r)
    for (int c = 0; c < k; ++c) meshes.push_back(GridMesh(16, 16, 16 * kCell * c, 16 * kCell * r, kCell));
  return Document(meshes);
}

template <class MakeDoc>
void Run(benchmark::State& state, int id, MakeDoc make, double resultNodes) {
  lb::bench::RunCommands(state, make, resultNodes, id);
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
