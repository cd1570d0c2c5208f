// Conversion between meshes and grids of single-cubic-sided patches.
#include "io/svg/MeshGrid.h"

#include <algorithm>
#include <cmath>

#include "host/Color.h"
#include "render/PatchColour.h"

namespace lb::io::svg {

using lb::host::GradientMesh;

void MeshGrid::resize(int c, int r) {
  cols = c;
  rows = r;
  corner.assign(static_cast<size_t>(c + 1) * (r + 1), AIRealPoint{0, 0});
  colour.assign(corner.size(), GridColour{});
  hside.assign(static_cast<size_t>(c) * (r + 1), {});
  vside.assign(static_cast<size_t>(c + 1) * r, {});
}

namespace {

void addCuts(std::vector<double>& at, size_t pieces) {
  for (size_t q = 1; q < pieces; ++q) at.push_back(static_cast<double>(q) / pieces);
}

void finishCuts(std::vector<double>& at, int cuts) {
  at.push_back(0.0);
  at.push_back(1.0);
  for (int q = 1; q < cuts; ++q) at.push_back(static_cast<double>(q) / cuts);
  std::sort(at.begin(), at.end());
  at.erase(std::unique(at.begin(), at.end(), [](double a, double b) { return b - a < 1e-9; }), at.end());
}

// Where global grid line k lies: the patch index along the axis and the
// local parameter, plus the next cut of the same patch (the far end of
// the grid side that starts there).
struct LinePlace {
  int patch;
  double at, next;
};

std::vector<LinePlace> places(const std::vector<std::vector<double>>& cuts) {
  std::vector<LinePlace> out;
  for (size_t p = 0; p < cuts.size(); ++p)
    for (size_t k = 0; k + 1 < cuts[p].size(); ++k)
      out.push_back({static_cast<int>(p), cuts[p][k], cuts[p][k + 1]});
  out.push_back({static_cast<int>(cuts.size()) - 1, 1.0, 1.0});
  return out;
}

// Inner control points of the cubic through p0, p1 (at 1/3), p2 (at 2/3), p3.
std::array<AIRealPoint, 2> controlsThrough(AIRealPoint p0, AIRealPoint p1, AIRealPoint p2, AIRealPoint p3) {
  return {AIRealPoint{(-5 * p0.h + 18 * p1.h - 9 * p2.h + 2 * p3.h) / 6, (-5 * p0.v + 18 * p1.v - 9 * p2.v + 2 * p3.v) / 6},
          AIRealPoint{(2 * p0.h - 9 * p1.h + 18 * p2.h - 5 * p3.h) / 6, (2 * p0.v - 9 * p1.v + 18 * p2.v - 5 * p3.v) / 6}};
}

}  // namespace

MeshGrid gridFromMesh(const GradientMesh& mesh, double minCell) {
  const int I = mesh.sizeI(), J = mesh.sizeJ();
  std::vector<std::vector<double>> S(I), T(J);
  std::vector<int> cutsS(I, 1), cutsT(J, 1);
  for (int j = 0; j < J; ++j)
    for (int i = 0; i < I; ++i) {
      const lb::render::PatchSamples p = lb::render::samplePatch(mesh, i, j);
      using lb::render::polygonLength;
      const double lenS = std::max(polygonLength(mesh.runPoints(0, i, j)), polygonLength(mesh.runPoints(0, i, j + 1)));
      const double lenT = std::max(polygonLength(mesh.runPoints(1, i, j)), polygonLength(mesh.runPoints(1, i + 1, j)));
      cutsS[i] = std::max(cutsS[i], lb::render::colourCuts(p.bendS, lenS, minCell));
      cutsT[j] = std::max(cutsT[j], lb::render::colourCuts(p.bendT, lenT, minCell));
    }
  for (int i = 0; i < I; ++i) {
    for (int j = 0; j <= J; ++j) addCuts(S[i], (mesh.runPoints(0, i, j).size() - 1) / 3);
    finishCuts(S[i], cutsS[i]);
  }
  for (int j = 0; j < J; ++j) {
    for (int i = 0; i <= I; ++i) addCuts(T[j], (mesh.runPoints(1, i, j).size() - 1) / 3);
    finishCuts(T[j], cutsT[j]);
  }
  const std::vector<LinePlace> PA = places(S), PB = places(T);
  MeshGrid g;
  g.resize(static_cast<int>(PA.size()) - 1, static_cast<int>(PB.size()) - 1);
  for (int b = 0; b <= g.rows; ++b)
    for (int a = 0; a <= g.cols; ++a) {
      const LinePlace& pa = PA[a];
      const LinePlace& pb = PB[b];
      g.at(a, b) = mesh.patchPoint(pa.patch, pb.patch, pa.at, pb.at);
      g.colourAt(a, b) = lb::render::patchRgba(mesh, pa.patch, pb.patch, pa.at, pb.at);
    }
  for (int b = 0; b <= g.rows; ++b)
    for (int a = 0; a < g.cols; ++a) {
      const LinePlace& pa = PA[a];
      const LinePlace& pb = PB[b];
      const double h = pa.next - pa.at;
      g.hside[a + b * g.cols] =
          controlsThrough(g.at(a, b), mesh.patchPoint(pa.patch, pb.patch, pa.at + h / 3, pb.at),
                          mesh.patchPoint(pa.patch, pb.patch, pa.at + 2 * h / 3, pb.at), g.at(a + 1, b));
    }
  for (int b = 0; b < g.rows; ++b)
    for (int a = 0; a <= g.cols; ++a) {
      const LinePlace& pa = PA[a];
      const LinePlace& pb = PB[b];
      const double h = pb.next - pb.at;
      g.vside[a + b * (g.cols + 1)] =
          controlsThrough(g.at(a, b), mesh.patchPoint(pa.patch, pb.patch, pa.at, pb.at + h / 3),
                          mesh.patchPoint(pa.patch, pb.patch, pa.at, pb.at + 2 * h / 3), g.at(a, b + 1));
    }
  // Sides on the mesh's own runs are copied from the runs, so the border
  // and the grid lines of the mesh are written exactly.
  for (int b = 0; b <= g.rows; ++b) {
    if (PB[b].at != 0 && !(b == g.rows)) continue;
    const int j = b == g.rows ? J : PB[b].patch;
    for (int a = 0; a < g.cols; ++a) {
      const auto& pts = mesh.runPoints(0, PA[a].patch, j);
      const size_t m = (pts.size() - 1) / 3;
      const double q0 = PA[a].at * m, q1 = PA[a].next * m;
      if (std::fabs(q0 - std::round(q0)) < 1e-9 && std::fabs(q1 - std::round(q1)) < 1e-9 &&
          std::lround(q1) - std::lround(q0) == 1) {
        const size_t k = static_cast<size_t>(std::lround(q0)) * 3;
        g.hside[a + b * g.cols] = {pts[k + 1], pts[k + 2]};
        g.at(a, b) = pts[k];
        g.at(a + 1, b) = pts[k + 3];
      }
    }
  }
  for (int a = 0; a <= g.cols; ++a) {
    if (PA[a].at != 0 && !(a == g.cols)) continue;
    const int i = a == g.cols ? I : PA[a].patch;
    for (int b = 0; b < g.rows; ++b) {
      const auto& pts = mesh.runPoints(1, i, PB[b].patch);
      const size_t m = (pts.size() - 1) / 3;
      const double q0 = PB[b].at * m, q1 = PB[b].next * m;
      if (std::fabs(q0 - std::round(q0)) < 1e-9 && std::fabs(q1 - std::round(q1)) < 1e-9 &&
          std::lround(q1) - std::lround(q0) == 1) {
        const size_t k = static_cast<size_t>(std::lround(q0)) * 3;
        g.vside[a + b * (g.cols + 1)] = {pts[k + 1], pts[k + 2]};
        g.at(a, b) = pts[k];
        g.at(a, b + 1) = pts[k + 3];
      }
    }
  }
  return g;
}

std::unique_ptr<GradientMesh> meshFromGrid(const MeshGrid& g) {
  auto mesh = std::make_unique<GradientMesh>();
  mesh->initCartesian(g.cols, g.rows);
  for (int b = 0; b <= g.rows; ++b)
    for (int a = 0; a <= g.cols; ++a) {
      lb::host::MeshNodeData d;
      d.p = g.at(a, b);
      const GridColour& c = g.colourAt(a, b);
      d.color.kind = kThreeColor;
      d.color.c.rgb = {c.r, c.g, c.b};
      d.opacity = c.a;
      mesh->setNodeData(a, b, d);
    }
  for (int b = 0; b <= g.rows; ++b)
    for (int a = 0; a < g.cols; ++a) {
      lb::host::MeshRunData r;
      const auto& h = g.hside[a + b * g.cols];
      r.points = {g.at(a, b), h[0], h[1], g.at(a + 1, b)};
      mesh->setRunData(0, a, b, r);
    }
  for (int b = 0; b < g.rows; ++b)
    for (int a = 0; a <= g.cols; ++a) {
      lb::host::MeshRunData r;
      const auto& v = g.vside[a + b * (g.cols + 1)];
      r.points = {g.at(a, b), v[0], v[1], g.at(a, b + 1)};
      mesh->setRunData(1, a, b, r);
    }
  return mesh;
}

}  // namespace lb::io::svg
