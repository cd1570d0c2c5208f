// Document reading and writing: a bent, coloured N x N mesh document
// (N = 64, 128, 256) parsed into a document and written back to text,
// reported as bytes per second and time per mesh node.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <cmath>

#include "host/Document.h"
#include "host/mesh/GradientMesh.h"
#include "io/Lbdoc.h"

namespace {

// The text of a document holding one n x n mesh with every node moved off
// the grid and coloured, as the writer writes it.
const std::string& meshDocument(int n) {
  static std::string texts[3];
  std::string& text = texts[n == 64 ? 0 : n == 128 ? 1 : 2];
  if (!text.empty()) return text;
  lb::host::Document doc;
  doc.addLayer("Layer 1");
  ArtObject* art = nullptr;
  doc.newArt(kMeshArt, kPlaceAboveAll, nullptr, &art);
  art->mesh->initCartesian(n, n);
  for (int j = 0; j <= n; ++j)
    for (int i = 0; i <= n; ++i) {
      auto d = art->mesh->nodeData(i, j);
      d.p = {i * 10 + std::sin(j * 0.37) * 3.1234567, j * 10 + std::cos(i * 0.21) * 2.7654321};
      d.color.kind = kThreeColor;
      d.color.c.rgb = {std::fmod(i * 0.618034, 1.0), std::fmod(j * 0.414214, 1.0), std::fmod((i + j) * 0.732051, 1.0)};
      d.opacity = std::fmod((i * j) * 0.1234567, 1.0);
      art->mesh->setNodeData(i, j, d);
    }
  text = lb::io::writeDocument(doc);
  return text;
}

void setCounters(benchmark::State& state, size_t bytes, int n) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes));
  const double nodes = static_cast<double>(n + 1) * (n + 1);
  state.counters["nodes"] = nodes;
  state.counters["file_MB"] = static_cast<double>(bytes) / 1e6;
  state.counters["per_node"] = benchmark::Counter(nodes, benchmark::Counter::kIsIterationInvariantRate |
                                                             benchmark::Counter::kInvert);
}

void BM_Load(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::string& text = meshDocument(n);
  for (auto _ : state) {
    auto doc = lb::io::readDocument(text);
    benchmark::DoNotOptimize(doc.get());
  }
  setCounters(state, text.size(), n);
}

void BM_Save(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::string& text = meshDocument(n);
  const auto doc = lb::io::readDocument(text);
  for (auto _ : state) {
    const std::string out = lb::io::writeDocument(*doc);
    benchmark::DoNotOptimize(out.data());
  }
  setCounters(state, text.size(), n);
}

// Saving as the command line does: streamed to a file descriptor.
void BM_SaveStream(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::string& text = meshDocument(n);
  const auto doc = lb::io::readDocument(text);
  const int fd = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  for (auto _ : state) lb::io::writeDocumentTo(fd, *doc);
  ::close(fd);
  setCounters(state, text.size(), n);
}

}  // namespace

BENCHMARK(BM_Load)->Arg(64)->Arg(128)->Arg(256)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Save)->Arg(64)->Arg(128)->Arg(256)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveStream)->Arg(64)->Arg(128)->Arg(256)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
