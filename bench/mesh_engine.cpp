// Engine costs: building and walking a 256 x 256 mesh (through the suites,
// as commands do), inserting a grid line through it, and evaluating colour
// at a million points.
#include <benchmark/benchmark.h>

#include "AIMeshSuites.h"
#include "host/Document.h"
#include "host/Host.h"
#include "host/SuiteRegistry.h"
#include "host/mesh/GradientMesh.h"

namespace {

void paint(lb::host::GradientMesh& m) {
  for (int j = 0; j <= m.sizeJ(); ++j)
    for (int i = 0; i <= m.sizeI(); ++i) {
      auto n = m.nodeData(i, j);
      n.color.kind = kThreeColor;
      n.color.c.rgb = {(i % 7) / 6.0, (j % 5) / 4.0, ((i + j) % 3) / 2.0};
      n.opacity = ((i * j) % 4) / 3.0;
      m.setNodeData(i, j, n);
    }
}

void BM_BuildAndWalk256(benchmark::State& state) {
  lb::host::Host host;
  ArtObject* art = nullptr;
  host.document().newArt(kMeshArt, kPlaceAboveAll, nullptr, &art);
  auto* ms = static_cast<const AIMeshSuite*>(lb::host::findSuite(kAIMeshSuite, kAIMeshSuiteVersion));
  auto* vs = static_cast<const AIMeshVertexIteratorSuite*>(
      lb::host::findSuite(kAIMeshVertexIteratorSuite, kAIMeshVertexIteratorSuiteVersion));
  auto* ss = static_cast<const AIMeshSegmentIteratorSuite*>(
      lb::host::findSuite(kAIMeshSegmentIteratorSuite, kAIMeshSegmentIteratorSuiteVersion));
  for (auto _ : state) {
    ms->InitCartesian(art, 256, 256);
    long vertices = 0, segments = 0;
    AIMeshVertexIterator v = nullptr;
    ms->GetStartVertex(art, &v);
    for (; !vs->AtEnd(v); vs->Next(v)) {
      AIRealPoint p;
      vs->GetPoint(v, &p);
      benchmark::DoNotOptimize(p);
      ++vertices;
    }
    vs->Release(v);
    AIMeshSegmentIterator g = nullptr;
    ms->GetStartSegment(art, &g);
    for (; !ss->AtEnd(g); ss->Next(g)) ++segments;
    ss->Release(g);
    if (vertices != 257 * 257 || segments != 2 * 256 * 257) state.SkipWithError("wrong walk");
  }
}
BENCHMARK(BM_BuildAndWalk256)->Unit(benchmark::kMillisecond);

void BM_InsertLine256(benchmark::State& state) {
  lb::host::GradientMesh base;
  base.initCartesian(256, 256);
  paint(base);
  for (auto _ : state) {
    state.PauseTiming();
    lb::host::GradientMesh m = base;
    state.ResumeTiming();
    benchmark::DoNotOptimize(m.insertU(127.5));
  }
}
BENCHMARK(BM_InsertLine256)->Unit(benchmark::kMillisecond);

void BM_EvalColor1M(benchmark::State& state) {
  lb::host::GradientMesh m;
  m.initCartesian(64, 64);
  paint(m);
  for (auto _ : state) {
    double sum = 0;
    for (int k = 0; k < 1000; ++k)
      for (int l = 0; l < 1000; ++l) sum += m.evalColor(k / 999.0, l / 999.0).c.rgb.red;
    benchmark::DoNotOptimize(sum);
  }
}
BENCHMARK(BM_EvalColor1M)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
