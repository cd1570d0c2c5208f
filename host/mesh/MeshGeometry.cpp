// Mesh geometry: Coons patch evaluation, point inversion, bounds, transforms.
//
// Patch (i, j) is the bilinearly blended Coons patch of its four boundary
// runs B (bottom, j), T (top, j + 1), L (left, i) and R (right, i + 1):
//   P(s, t) = (1 - t) B(s) + t T(s) + (1 - s) L(t) + s R(t) - bilinear(corners).
// A run's m cubic pieces share its parameter range equally.
//
// Inversion (document point -> (u, v)) visits the patches whose boundary
// control points, widened by half their extent, contain the point; in each
// it starts Newton's method from the best of a 7 x 7 sample grid. A Newton
// step that would leave the patch is projected: the coordinate that leaves
// stays on the border and the other one is solved for alone. Every loop is
// bounded, and non-finite steps end the iteration.
#include <algorithm>
#include <cmath>
#include <limits>

#include "host/mesh/MeshImpl_p.h"

namespace lb::host {

using namespace bez;

void GradientMesh::Impl::chainEval(const Run& r, double s, P* p, P* d) {
  const int m = r.pieces();
  const double x = (std::isfinite(s) ? std::clamp(s, 0.0, 1.0) : 0.0) * m;
  int q = std::min(static_cast<int>(x), m - 1);
  const double t = x - q;
  *p = cubicAt(&r.pts[3 * q], t);
  if (d) *d = m * cubicDeriv(&r.pts[3 * q], t);
}

void GradientMesh::Impl::patchEval(int i, int j, double s, double t, P* p, P* ps, P* pt) const {
  const Run& B = runAt(0, i, j);
  const Run& T = runAt(0, i, j + 1);
  const Run& L = runAt(1, i, j);
  const Run& R = runAt(1, i + 1, j);
  const P p00 = nodeAt(i, j).p, p10 = nodeAt(i + 1, j).p, p01 = nodeAt(i, j + 1).p, p11 = nodeAt(i + 1, j + 1).p;
  P b, bd, tt, td, l, ld, r, rd;
  chainEval(B, s, &b, &bd);
  chainEval(T, s, &tt, &td);
  chainEval(L, t, &l, &ld);
  chainEval(R, t, &r, &rd);
  const double s1 = 1 - s, t1 = 1 - t;
  p->h = t1 * b.h + t * tt.h + s1 * l.h + s * r.h - (s1 * t1 * p00.h + s * t1 * p10.h + s1 * t * p01.h + s * t * p11.h);
  p->v = t1 * b.v + t * tt.v + s1 * l.v + s * r.v - (s1 * t1 * p00.v + s * t1 * p10.v + s1 * t * p01.v + s * t * p11.v);
  if (ps) {
    ps->h = t1 * bd.h + t * td.h - l.h + r.h - (-t1 * p00.h + t1 * p10.h - t * p01.h + t * p11.h);
    ps->v = t1 * bd.v + t * td.v - l.v + r.v - (-t1 * p00.v + t1 * p10.v - t * p01.v + t * p11.v);
  }
  if (pt) {
    pt->h = -b.h + tt.h + s1 * ld.h + s * rd.h - (-s1 * p00.h - s * p10.h + s1 * p01.h + s * p11.h);
    pt->v = -b.v + tt.v + s1 * ld.v + s * rd.v - (-s1 * p00.v - s * p10.v + s1 * p01.v + s * p11.v);
  }
}

void GradientMesh::Impl::clampCell(int* i, int* j, double* s, double* t) const {
  *i = std::clamp(*i, 0, I - 1);
  *j = std::clamp(*j, 0, J - 1);
  *s = std::isfinite(*s) ? std::clamp(*s, 0.0, 1.0) : 0.0;
  *t = std::isfinite(*t) ? std::clamp(*t, 0.0, 1.0) : 0.0;
}

void GradientMesh::Impl::locate(const std::vector<double>& g, double x, int* cell, double* local) {
  const int n = static_cast<int>(g.size()) - 1;
  if (!(x >= 0)) x = 0;  // also NaN
  if (x > 1) x = 1;
  int k = static_cast<int>(std::upper_bound(g.begin(), g.end(), x) - g.begin()) - 1;
  k = std::clamp(k, 0, n - 1);
  *cell = k;
  *local = std::clamp((x - g[k]) / (g[k + 1] - g[k]), 0.0, 1.0);
}

AIRealPoint GradientMesh::evalPoint(double u, double v) const {
  int i, j;
  double s, t;
  Impl::locate(impl_->u, u, &i, &s);
  Impl::locate(impl_->v, v, &j, &t);
  return patchPoint(i, j, s, t);
}

AIRealPoint GradientMesh::patchPoint(int i, int j, double s, double t) const {
  impl_->clampCell(&i, &j, &s, &t);
  P p;
  impl_->patchEval(i, j, s, t, &p, nullptr, nullptr);
  return p;
}

void GradientMesh::patchDerivs(int i, int j, double s, double t, AIRealPoint* p, AIRealPoint* ps,
                               AIRealPoint* pt) const {
  impl_->clampCell(&i, &j, &s, &t);
  impl_->patchEval(i, j, s, t, p, ps, pt);
}

namespace {

// Newton's method for patchEval(i, j, s, t) = p from (s, t); the result is
// clamped to the patch.
void newtonInPatch(const GradientMesh::Impl& m, int i, int j, P p, double* sIO, double* tIO) {
  double s = *sIO, t = *tIO;
  for (int it = 0; it < 40; ++it) {
    P q, qs, qt;
    m.patchEval(i, j, s, t, &q, &qs, &qt);
    const P e = q - p;
    const double det = qs.h * qt.v - qs.v * qt.h;
    if (!std::isfinite(det) || std::abs(det) < 1e-300) break;
    double ds = (e.h * qt.v - e.v * qt.h) / det;
    double dt = (qs.h * e.v - qs.v * e.h) / det;
    if (!std::isfinite(ds) || !std::isfinite(dt)) break;
    const bool sOut = s - ds < 0 || s - ds > 1, tOut = t - dt < 0 || t - dt > 1;
    if (sOut && !tOut) {
      ds = s - std::clamp(s - ds, 0.0, 1.0);
      const P e2 = e - ds * qs;
      dt = (e2.h * qt.h + e2.v * qt.v) / std::max(1e-300, qt.h * qt.h + qt.v * qt.v);
    } else if (tOut && !sOut) {
      dt = t - std::clamp(t - dt, 0.0, 1.0);
      const P e2 = e - dt * qt;
      ds = (e2.h * qs.h + e2.v * qs.v) / std::max(1e-300, qs.h * qs.h + qs.v * qs.v);
    }
    if (!std::isfinite(ds) || !std::isfinite(dt)) break;
    s = std::clamp(s - ds, 0.0, 1.0);
    t = std::clamp(t - dt, 0.0, 1.0);
    if (std::abs(ds) + std::abs(dt) < 1e-14) break;
  }
  *sIO = s;
  *tIO = t;
}

}  // namespace

bool GradientMesh::invertPoint(AIRealPoint p, AIRealPoint* uvOut) const {
  const Impl& m = *impl_;
  double bestD = std::numeric_limits<double>::infinity();
  int bi = 0, bj = 0;
  double bs = 0, bt = 0;
  constexpr int kSamples = 6;
  const AIRealRect all = bounds();
  const double scale = std::max({1e-12, all.right - all.left, all.top - all.bottom});
  bool exact = false;
  for (int j = 0; j < m.J && !exact; ++j)
    for (int i = 0; i < m.I && !exact; ++i) {
      // Coarse filter on the boundary's control points, widened because
      // the patch interior may bulge past them.
      AIRealRect r{1e300, -1e300, -1e300, 1e300};
      for (const Run* run : {&m.runAt(0, i, j), &m.runAt(0, i, j + 1), &m.runAt(1, i, j), &m.runAt(1, i + 1, j)})
        for (const P& q : run->pts) {
          r.left = std::min(r.left, q.h), r.right = std::max(r.right, q.h);
          r.bottom = std::min(r.bottom, q.v), r.top = std::max(r.top, q.v);
        }
      const double pad = 0.5 * std::max(r.right - r.left, r.top - r.bottom) + 1e-9;
      if (p.h < r.left - pad || p.h > r.right + pad || p.v < r.bottom - pad || p.v > r.top + pad) continue;
      double s = 0, t = 0, ld = std::numeric_limits<double>::infinity();
      for (int b = 0; b <= kSamples; ++b)
        for (int a = 0; a <= kSamples; ++a) {
          const double ss = static_cast<double>(a) / kSamples, tt = static_cast<double>(b) / kSamples;
          const double d = dist(patchPoint(i, j, ss, tt), p);
          if (d < ld) ld = d, s = ss, t = tt;
        }
      newtonInPatch(m, i, j, p, &s, &t);
      const double d = dist(patchPoint(i, j, s, t), p);
      if (d < bestD) bestD = d, bi = i, bj = j, bs = s, bt = t;
      exact = d <= 1e-9 * scale;
    }
  if (!std::isfinite(bestD)) {
    *uvOut = {0, 0};
    return false;
  }
  uvOut->h = m.u[bi] + bs * (m.u[bi + 1] - m.u[bi]);
  uvOut->v = m.v[bj] + bt * (m.v[bj + 1] - m.v[bj]);
  return bestD <= 1e-7 * scale;
}

AIRealRect GradientMesh::bounds() const {
  const Impl& m = *impl_;
  const P p0 = m.nodeAt(0, 0).p;
  AIRealRect r{p0.h, p0.v, p0.h, p0.v};
  for (int j = 0; j <= m.J; ++j)
    for (int i = 0; i <= m.I; ++i)
      for (int axis = 0; axis < 2; ++axis) {
        if (!m.runExists(axis, i, j)) continue;
        const Run& run = m.runAt(axis, i, j);
        for (int q = 0; q < run.pieces(); ++q) addBounds(&run.pts[3 * q], r);
      }
  return r;
}

void GradientMesh::transform(const AIRealMatrix& mx) {
  Impl& m = *impl_;
  auto tf = [&](P& p) {
    const P q = p;
    p.h = mx.a * q.h + mx.c * q.v + mx.tx;
    p.v = mx.b * q.h + mx.d * q.v + mx.ty;
  };
  for (int j = 0; j <= m.J; ++j)
    for (int i = 0; i <= m.I; ++i) {
      Cell& c = m.cellAt(i, j);
      tf(c.node.p);
      for (Run& run : c.run)
        for (P& p : run.pts) tf(p);
    }
}

VertexId GradientMesh::hitVertex(AIRealPoint p, double tolerance) const {
  VertexId best = kNoVertex;
  double bd = tolerance;
  for (VertexId v = firstVertex(); v != kNoVertex; v = nextVertex(v)) {
    const double d = dist(point(v), p);
    if (d <= bd) bd = d, best = v;
  }
  return best;
}

}  // namespace lb::host
