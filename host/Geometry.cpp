// Cubic Bezier and matrix arithmetic: evaluation, division, length, bounds.
#include "host/Geometry.h"

#include <algorithm>
#include <cmath>

namespace lb::host::geom {
namespace {

AIRealPoint lerp(const AIRealPoint& a, const AIRealPoint& b, double t) {
  return {a.h + t * (b.h - a.h), a.v + t * (b.v - a.v)};
}

// sqrt first: hypot's care against overflow is slow, and lengths are asked
// for every piece of every line; hypot only where the squares overflow.
double dist(const AIRealPoint& a, const AIRealPoint& b) {
  const double dh = b.h - a.h, dv = b.v - a.v;
  const double d = std::sqrt(dh * dh + dv * dv);
  return std::isfinite(d) && d > 1e-150 ? d : std::hypot(dh, dv);
}

double polygonLength(const AIRealBezier& b) { return dist(b.p0, b.p1) + dist(b.p1, b.p2) + dist(b.p2, b.p3); }

// One level of the length below: true, with the length in *len, when the
// curve needs no halving.
inline bool levelLength(const AIRealBezier& b, double flatness, int depth, double* len) {
  const double poly = polygonLength(b);
  const double chord = dist(b.p0, b.p3);
  if (!std::isfinite(poly) || !std::isfinite(chord)) {
    *len = poly + chord;
    return true;
  }
  *len = 0.5 * (poly + chord);
  return poly - chord < std::max(flatness, 1e-7 * poly) || depth >= 20;
}
double lengthRec(const AIRealBezier& b, double flatness, int depth);
// The length of b at `depth` as the sum of its halves' at the next level.
double halvesLength(const AIRealBezier& b, double flatness, int depth) {
  AIRealBezier l, r;
  divide(b, 0.5, &l, &r);
  return lengthRec(l, flatness, depth + 1) + lengthRec(r, flatness, depth + 1);
}
// Halves the curve until its control polygon is within the flatness of its
// chord. The tolerance is also relative to the curve's size, so huge
// coordinates do not force a full-depth subdivision, and non-finite input
// returns at once: the work is bounded on every input.
double lengthRec(const AIRealBezier& b, double flatness, int depth) {
  double len = 0;
  return levelLength(b, flatness, depth, &len) ? len : halvesLength(b, flatness, depth);
}

// Parameters in (0, 1) where one coordinate of the cubic has a zero
// derivative; the coordinate is given by its four control values.
int extrema(double p0, double p1, double p2, double p3, double out[2]) {
  // B'(t)/3 = a t^2 + b t + c
  const double a = -p0 + 3 * p1 - 3 * p2 + p3;
  const double b = 2 * (p0 - 2 * p1 + p2);
  const double c = p1 - p0;
  int n = 0;
  auto add = [&](double t) {
    if (t > 0 && t < 1) out[n++] = t;
  };
  const double scale = std::max({std::fabs(a), std::fabs(b), std::fabs(c)});
  if (scale == 0) return 0;
  if (std::fabs(a) <= 1e-12 * scale) {
    if (b != 0) add(-c / b);
    return n;
  }
  const double disc = b * b - 4 * a * c;
  if (disc < 0) return 0;
  const double s = std::sqrt(disc);
  add((-b + s) / (2 * a));
  add((-b - s) / (2 * a));
  return n;
}

void include(AIRealRect& r, const AIRealPoint& p) {
  r.left = std::min(r.left, p.h);
  r.right = std::max(r.right, p.h);
  r.bottom = std::min(r.bottom, p.v);
  r.top = std::max(r.top, p.v);
}

}  // namespace

AIRealPoint evaluate(const AIRealBezier& b, double t) {
  const double s = 1 - t;
  const double w0 = s * s * s, w1 = 3 * s * s * t, w2 = 3 * s * t * t, w3 = t * t * t;
  return {w0 * b.p0.h + w1 * b.p1.h + w2 * b.p2.h + w3 * b.p3.h,
          w0 * b.p0.v + w1 * b.p1.v + w2 * b.p2.v + w3 * b.p3.v};
}

AIRealPoint tangent(const AIRealBezier& b, double t) {
  const double s = 1 - t;
  const double w0 = 3 * s * s, w1 = 6 * s * t, w2 = 3 * t * t;
  return {w0 * (b.p1.h - b.p0.h) + w1 * (b.p2.h - b.p1.h) + w2 * (b.p3.h - b.p2.h),
          w0 * (b.p1.v - b.p0.v) + w1 * (b.p2.v - b.p1.v) + w2 * (b.p3.v - b.p2.v)};
}

void divide(const AIRealBezier& b, double t, AIRealBezier* left, AIRealBezier* right) {
  const AIRealPoint a1 = lerp(b.p0, b.p1, t), a2 = lerp(b.p1, b.p2, t), a3 = lerp(b.p2, b.p3, t);
  const AIRealPoint b1 = lerp(a1, a2, t), b2 = lerp(a2, a3, t);
  const AIRealPoint m = lerp(b1, b2, t);
  const AIRealBezier l{b.p0, a1, b1, m};
  const AIRealBezier r{m, b2, a3, b.p3};
  if (left) *left = l;
  if (right) *right = r;
}

double length(const AIRealBezier& b, double flatness) {
  if (!(flatness > 0)) flatness = 1e-6 * polygonLength(b);
  if (!(flatness > 0)) return 0;  // all four points coincide
  // The first level here, without a call: most pieces are flat enough at once.
  double len = 0;
  return levelLength(b, flatness, 0, &len) ? len : halvesLength(b, flatness, 0);
}

AIRealRect bounds(const AIRealBezier& b) {
  AIRealRect r{b.p0.h, b.p0.v, b.p0.h, b.p0.v};
  include(r, b.p3);
  double ts[4];
  int n = extrema(b.p0.h, b.p1.h, b.p2.h, b.p3.h, ts);
  n += extrema(b.p0.v, b.p1.v, b.p2.v, b.p3.v, ts + n);
  for (int k = 0; k < n; ++k) include(r, evaluate(b, ts[k]));
  return r;
}

void unite(AIRealRect& r, const AIRealRect& o) {
  r.left = std::min(r.left, o.left);
  r.right = std::max(r.right, o.right);
  r.bottom = std::min(r.bottom, o.bottom);
  r.top = std::max(r.top, o.top);
}

AIRealPoint transform(const AIRealMatrix& m, const AIRealPoint& p) {
  return {m.a * p.h + m.c * p.v + m.tx, m.b * p.h + m.d * p.v + m.ty};
}

AIRealMatrix concat(const AIRealMatrix& a, const AIRealMatrix& b) {
  // b(a(p)): linear part b * a, translation b applied to a's translation.
  return {b.a * a.a + b.c * a.b, b.b * a.a + b.d * a.b, b.a * a.c + b.c * a.d,
          b.b * a.c + b.d * a.d, b.a * a.tx + b.c * a.ty + b.tx, b.b * a.tx + b.d * a.ty + b.ty};
}

bool invert(AIRealMatrix& m) {
  const double det = m.a * m.d - m.b * m.c;
  if (det == 0 || !std::isfinite(det)) return false;
  const AIRealMatrix r{m.d / det,
                       -m.b / det,
                       -m.c / det,
                       m.a / det,
                       (m.c * m.ty - m.d * m.tx) / det,
                       (m.b * m.tx - m.a * m.ty) / det};
  m = r;
  return true;
}

}  // namespace lb::host::geom
