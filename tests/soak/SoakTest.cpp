// Random command soak: random documents, every command id with every
// modifier pair and checkbox state, checked after each command for mesh
// invariants, a byte-identical write/read round trip and the host's
// live-object counters. LB_SOAK_STEPS sets the number of commands (default
// 3000), LB_SOAK_SEED the seed.
#include "LBModule.h"
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <random>
#include <sstream>
#include <string>

#include "host/Document.h"
#include "host/Host.h"
#include "host/SuiteRegistry.h"
#include "host/mesh/GradientMesh.h"
#include "io/Lbdoc.h"

namespace {

using lb::host::GradientMesh;
using lb::host::kNoVertex;
using lb::host::SegmentRef;
using lb::host::VertexId;

long EnvLong(const char* name, long fallback) {
  const char* v = std::getenv(name);
  return v && *v ? std::strtol(v, nullptr, 10) : fallback;
}

class Rand {
 public:
  explicit Rand(uint64_t seed) : g_(seed) {}
  int Int(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(g_); }
  double Real(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(g_); }
  bool Chance(double p) { return Real(0, 1) < p; }

 private:
  std::mt19937_64 g_;
};

AIColor RandomColor(Rand& r) {
  AIColor c{};
  switch (r.Int(0, 5)) {
    case 0: c.kind = kGrayColor, c.c.g.gray = r.Real(0, 1); break;
    case 1: c.kind = kFourColor, c.c.f = {r.Real(0, 1), r.Real(0, 1), r.Real(0, 1), r.Real(0, 1)}; break;
    default: c.kind = kThreeColor, c.c.rgb = {r.Real(0, 1), r.Real(0, 1), r.Real(0, 1)}; break;
  }
  return c;
}

// A mesh on a jittered grid with curved runs, knots, non-node vertices, mixed
// paints and smooth flags and a partial selection.
std::unique_ptr<GradientMesh> RandomMesh(Rand& r, double originH) {
  auto m = std::make_unique<GradientMesh>();
  const int I = r.Int(1, 6), J = r.Int(1, 6);
  m->initCartesian(I, J);
  for (int j = 0; j <= J; ++j)
    for (int i = 0; i <= I; ++i) {
      lb::host::MeshNodeData d = m->nodeData(i, j);
      d.p = {originH + 20.0 * i + r.Real(-4, 4), 20.0 * j + r.Real(-4, 4)};
      d.color = RandomColor(r);
      d.opacity = r.Chance(0.7) ? 1.0 : r.Real(0, 1);
      for (bool& s : d.smooth) s = r.Chance(0.5);
      m->setNodeData(i, j, d);
    }
  for (int axis = 0; axis < 2; ++axis)
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i <= I; ++i) {
        if (axis == 0 ? i == I : j == J) continue;
        const int ei = axis == 0 ? i + 1 : i, ej = axis == 0 ? j : j + 1;
        const AIRealPoint a = m->nodeData(i, j).p, b = m->nodeData(ei, ej).p;
        const int pieces = r.Chance(0.6) ? 1 : r.Int(2, 3);
        lb::host::MeshRunData run;
        run.points.push_back(a);
        for (int q = 1; q <= 3 * pieces; ++q) {
          const double t = static_cast<double>(q) / (3 * pieces);
          run.points.push_back({a.h + t * (b.h - a.h) + (q % 3 ? r.Real(-3, 3) : 0),
                                a.v + t * (b.v - a.v) + (q % 3 ? r.Real(-3, 3) : 0)});
        }
        run.points.back() = b;
        run.inner.resize(static_cast<size_t>(pieces - 1));
        for (auto& in : run.inner) {
          in.vertex = r.Chance(0.5);
          in.selected = in.vertex && r.Chance(0.5);
          in.smooth[0] = in.smooth[1] = in.vertex && r.Chance(0.5);
        }
        m->setRunData(axis, i, j, run);
      }
  if (r.Chance(0.3)) {
    m->selectAll();
  } else {
    for (VertexId v : m->vertices()) m->setSelected(v, r.Chance(0.4));
  }
  return m;
}

ArtObject* AddPath(lb::host::Document& doc, ArtObject* layer, Rand& r) {
  auto path = std::make_unique<ArtObject>();
  path->type = kPathArt;
  const int n = r.Int(2, 6);
  const double h0 = r.Real(-40, 140), v0 = r.Real(-40, 140);
  for (int k = 0; k < n; ++k) {
    AIPathSegment s{};
    s.p = {h0 + 25.0 * k + r.Real(-5, 5), v0 + r.Real(-20, 20)};
    s.in = r.Chance(0.5) ? s.p : AIRealPoint{s.p.h - 5, s.p.v + r.Real(-5, 5)};
    s.out = r.Chance(0.5) ? s.p : AIRealPoint{s.p.h + 5, s.p.v + r.Real(-5, 5)};
    s.corner = r.Chance(0.5);
    path->segments.push_back(s);
  }
  path->closed = r.Chance(0.3);
  path->style.fillPaint = r.Chance(0.5);
  path->style.fill.color = RandomColor(r);
  path->style.strokePaint = true;
  path->style.stroke.color = RandomColor(r);
  path->style.stroke.width = 1;
  if (r.Chance(0.6)) path->userAttr = kArtSelected;
  return doc.appendChild(layer, std::move(path));
}

std::unique_ptr<lb::host::Document> RandomDocument(Rand& r) {
  auto doc = std::make_unique<lb::host::Document>();
  ArtObject* layer = doc->addLayer("Layer 1");
  const int meshes = r.Int(1, 3);
  for (int k = 0; k < meshes; ++k) {
    auto art = std::make_unique<ArtObject>();
    art->type = kMeshArt;
    art->mesh = RandomMesh(r, 150.0 * k);
    art->opacity = r.Chance(0.8) ? 1.0 : r.Real(0.2, 1);
    // An unselected mesh has no vertex selection.
    if (r.Chance(0.85))
      art->userAttr = kArtSelected;
    else
      art->mesh->clearSelection();
    doc->appendChild(layer, std::move(art));
  }
  for (int k = r.Int(0, 2); k > 0; --k) AddPath(*doc, layer, r);
  return doc;
}

// Structural invariants of a mesh that every edit must keep and the file
// does not show; the empty string when they hold. (Grid size, relative
// positions and the shape of every run are checked by reading the written
// document back.)
std::string MeshProblem(const GradientMesh& m) {
  std::ostringstream out;
  // Every node once in the walk, in row order, each knowing its place.
  size_t walked = 0, nodes = 0;
  int lastI = -1, lastJ = 0;
  for (VertexId v = m.firstVertex(); v != kNoVertex; v = m.nextVertex(v)) {
    if (++walked > m.vertexCount()) return "vertex walk does not end";
    if (!m.alive(v)) return "dead vertex in walk";
    int i = -1, j = -1;
    if (!m.nodeIndex(v, &i, &j)) return "vertex without place";
    if (m.isNode(v)) {
      ++nodes;
      if (m.node(i, j) != v) return "node id mismatch";
      if (!(j > lastJ || (j == lastJ && i == lastI + 1)) && !(i == 0 && j == lastJ + 1)) {
        out << "node walk out of order at " << i << "," << j;
        return out.str();
      }
      lastI = i, lastJ = j;
    }
    // Neighbours are mutual.
    for (int d = 0; d < 4; ++d) {
      if (!m.hasSegment(v, d)) continue;
      const VertexId n = m.neighbour(v, d);
      if (n == kNoVertex || m.neighbour(n, lb::host::dirOpposite(d)) != v) return "neighbours not mutual";
    }
    const AIRealPoint p = m.point(v);
    if (!std::isfinite(p.h) || !std::isfinite(p.v)) return "non-finite vertex";
  }
  if (walked != m.vertexCount()) return "walk misses vertices";
  if (nodes != m.nodeCount()) return "walk misses nodes";
  // The segment walk covers every run once.
  size_t segments = 0;
  for (SegmentRef s = m.firstSegment(); s.start != kNoVertex; s = m.nextSegment(s)) {
    if (++segments > 4 * m.vertexCount() + 8) return "segment walk does not end";
    if (m.segmentEnd(s) == kNoVertex) return "segment without end";
  }
  return "";
}

TEST(Soak, RandomCommandsKeepDocumentsSound) {
  const long steps = EnvLong("LB_SOAK_STEPS", 3000);
  const uint64_t seed = static_cast<uint64_t>(EnvLong("LB_SOAK_SEED", 20261124));
  Rand r(seed);
  long done = 0;
  lb::host::Host host(RandomDocument(r));
  host.loadPlugin();
  while (done < steps) {
    host.setDocument(RandomDocument(r));
    // A few commands on the same document, so that edits compound.
    for (int k = r.Int(3, 12); k > 0 && done < steps; --k, ++done) {
      const int id = r.Int(kCmdFirst, kCmdLast);
      const bool alt = r.Chance(0.5), ctrl = r.Chance(0.5);
      const bool useColor = r.Chance(0.8), useOpacity = r.Chance(0.5);
      const lb::host::Counters before = lb::host::liveCounters();
      host.runCommand(id, alt, ctrl, useColor, useOpacity);
      std::ostringstream what;
      what << "step " << done << " (seed " << seed << "): command " << id << (alt ? "+alt" : "")
           << (ctrl ? "+ctrl" : "");
      ASSERT_TRUE(before == lb::host::liveCounters()) << what.str() << " leaked host objects";
      // The file format writes a selected mesh with no selected vertex as
      // wholly selected, so such a document is compared after one more read.
      bool emptySelection = false;
      for (ArtObject* art : host.document().allArt())
        if (art->type == kMeshArt && art->mesh) {
          ASSERT_EQ(MeshProblem(*art->mesh), "") << what.str();
          emptySelection = emptySelection || (art->selected() && art->mesh->isSelectionEmpty());
        }
      std::string text, again;
      ASSERT_NO_THROW({
        text = lb::io::writeDocument(host.document());
        if (emptySelection) text = lb::io::writeDocument(*lb::io::readDocument(text));
        again = lb::io::writeDocument(*lb::io::readDocument(text));
      }) << what.str() << ": the written document does not read back";
      ASSERT_EQ(text, again) << what.str() << ": write/read round trip differs";
    }
  }
  host.shutdownPlugin();
}

}  // namespace
