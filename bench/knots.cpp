// Knots and vertices (134, 135, every variant) and the brush mesh grid
// round trip (142 then 143) on whole-selected n x n meshes at n = 32, 64
// and 128, reported as time per node so that growth with size can be read.
#include <map>

#include "LBModule.h"
#include "bench/support/BenchMeshes.h"

namespace {

using lb::bench::GradientMesh;

// Runs carry a knot and a non-node vertex each. Built once per size.
const GradientMesh& TemplateMesh(int n) {
  static std::map<int, std::unique_ptr<GradientMesh>> cache;
  auto& m = cache[n];
  if (!m) m = lb::bench::WarpedMesh(n, {3, 1.0, 1u << 2});
  return *m;
}

// Runs first (and then second, when nonzero) on a fresh copy of the mesh.
void RunCommands(benchmark::State& state, int id, bool alt, bool ctrl, int second = 0) {
  const int n = static_cast<int>(state.range(0));
  lb::bench::RunCommands(
      state, [n] { return lb::bench::MeshDocument({&TemplateMesh(n)}); }, double(n + 1) * (n + 1), id, alt, ctrl,
      second);
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
