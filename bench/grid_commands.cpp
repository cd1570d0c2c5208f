// Structural commands (density, UV reset, grid direction, right-angle
// handles) on whole-selected n x n meshes at n = 64, 128 and 256, reported
// as time per node so that growth with size can be read off.
#include <map>

#include "LBModule.h"
#include "bench/support/BenchMeshes.h"

namespace {

using lb::bench::GradientMesh;

// Runs carry one knot each, at a bent midpoint. Built once per size.
const GradientMesh& TemplateMesh(int n) {
  static std::map<int, std::unique_ptr<GradientMesh>> cache;
  auto& m = cache[n];
  if (!m) m = lb::bench::WarpedMesh(n, {2, 1.0, 0});
  return *m;
}

void RunCommand(benchmark::State& state, int id, bool alt, bool ctrl) {
  const int n = static_cast<int>(state.range(0));
  lb::bench::RunCommands(
      state, [n] { return lb::bench::MeshDocument({&TemplateMesh(n)}); }, double(n + 1) * (n + 1), id, alt, ctrl);
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
