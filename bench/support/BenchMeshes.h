// Meshes and the command loop shared by the command benchmarks: warped,
// coloured grids whose runs carry knots or non-node vertices, documents of
// selected meshes, and a timed loop that runs a command on a fresh copy.
#pragma once

#include <benchmark/benchmark.h>

#include <cmath>
#include <functional>
#include <memory>
#include <vector>

#include "host/Document.h"
#include "host/Host.h"
#include "host/mesh/GradientMesh.h"

namespace lb::bench {

using lb::host::GradientMesh;

// The shape of a benchmark mesh's runs: each run is cut into `pieces`
// pieces of equal length; inner anchor q (1 .. pieces - 1) is pushed
// sideways by +bend for odd q and -bend for even q, and is a vertex when
// bit q of `vertexAnchors` is set (a knot otherwise). Handles sit at the
// thirds between anchors.
struct RunShape {
  int pieces = 2;
  double bend = 1.0;
  unsigned vertexAnchors = 0;
};

// An I x J mesh with node (i, j) at at(i, j), colour (i / I, j / J, 0.5),
// an opacity that varies from node to node, runs of the given shape, and
// every vertex selected.
inline std::unique_ptr<GradientMesh> ShapedMesh(int I, int J, const std::function<AIRealPoint(int, int)>& at,
                                                RunShape shape) {
  auto m = std::make_unique<GradientMesh>();
  m->initCartesian(I, J);
  for (int j = 0; j <= J; ++j)
    for (int i = 0; i <= I; ++i) {
      lb::host::MeshNodeData d = m->nodeData(i, j);
      d.p = at(i, j);
      d.color.kind = kThreeColor;
      d.color.c.rgb = {static_cast<AIReal>(double(i) / I), static_cast<AIReal>(double(j) / J), 0.5};
      d.opacity = 0.5 + 0.25 * std::sin(0.1 * (i + j));
      m->setNodeData(i, j, d);
    }
  const int p = shape.pieces;
  for (int axis = 0; axis < 2; ++axis)
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i <= I; ++i) {
        if (axis == 0 ? (i == I) : (j == J)) continue;
        const AIRealPoint a = at(i, j), b = axis == 0 ? at(i + 1, j) : at(i, j + 1);
        std::vector<AIRealPoint> anchors(static_cast<size_t>(p) + 1);
        for (int q = 0; q <= p; ++q) {
          const double t = double(q) / p, off = (q == 0 || q == p) ? 0.0 : (q % 2 ? shape.bend : -shape.bend);
          anchors[q] = {a.h + (b.h - a.h) * t + (axis ? off : 0.0), a.v + (b.v - a.v) * t + (axis ? 0.0 : off)};
        }
        anchors.front() = a, anchors.back() = b;
        lb::host::MeshRunData r;
        r.points.push_back(a);
        for (int q = 0; q < p; ++q) {
          const AIRealPoint s = anchors[q], e = anchors[q + 1];
          r.points.push_back({s.h + (e.h - s.h) / 3, s.v + (e.v - s.v) / 3});
          r.points.push_back({e.h - (e.h - s.h) / 3, e.v - (e.v - s.v) / 3});
          r.points.push_back(e);
        }
        r.inner.resize(static_cast<size_t>(p) - 1);
        for (int q = 1; q < p; ++q) r.inner[q - 1].vertex = ((shape.vertexAnchors >> q) & 1u) != 0;
        m->setRunData(axis, i, j, r);
      }
  m->selectAll();
  return m;
}

// The warped n x n grid of 10-unit cells the command benchmarks work on.
inline std::unique_ptr<GradientMesh> WarpedMesh(int n, RunShape shape) {
  return ShapedMesh(
      n, n, [](int i, int j) { return AIRealPoint{10.0 * i + std::sin(0.3 * j), 10.0 * j + std::cos(0.2 * i)}; },
      shape);
}

// A document with one layer holding copies of the given meshes, each a
// selected mesh art; the first has the id "m".
inline std::unique_ptr<lb::host::Document> MeshDocument(const std::vector<const GradientMesh*>& meshes) {
  auto doc = std::make_unique<lb::host::Document>();
  ArtObject* layer = doc->addLayer("Layer 1");
  for (const GradientMesh* mesh : meshes) {
    auto art = std::make_unique<ArtObject>();
    art->type = kMeshArt;
    if (mesh == meshes.front()) art->id = std::string(1, 'm');  // (GCC 12 warns falsely on a literal here)
    art->userAttr = kArtSelected;
    art->mesh = std::make_unique<GradientMesh>(*mesh);
    doc->appendChild(layer, std::move(art));
  }
  return doc;
}

// Times `id` (then `second`, when nonzero) on a fresh document from
// make() in each iteration, and reports the time per node of `nodes`.
template <class MakeDoc>
void RunCommands(benchmark::State& state, MakeDoc make, double nodes, int id, bool alt = false, bool ctrl = false,
                 int second = 0) {
  lb::host::Host host(make());
  host.loadPlugin();
  for (auto _ : state) {
    state.PauseTiming();
    host.setDocument(make());
    state.ResumeTiming();
    host.runCommand(id, alt, ctrl);
    if (second) host.runCommand(second, false, false);
  }
  host.shutdownPlugin();
  state.counters["ns_per_node"] =
      benchmark::Counter(nodes * 1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

}  // namespace lb::bench
