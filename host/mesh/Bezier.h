// Small cubic Bezier helpers shared by the mesh engine and the renderer.
#pragma once

#include <algorithm>
#include <cmath>

#include "AITypes.h"

namespace lb::host::bez {

inline AIRealPoint operator+(AIRealPoint a, AIRealPoint b) { return {a.h + b.h, a.v + b.v}; }
inline AIRealPoint operator-(AIRealPoint a, AIRealPoint b) { return {a.h - b.h, a.v - b.v}; }
inline AIRealPoint operator*(double s, AIRealPoint a) { return {s * a.h, s * a.v}; }
inline AIRealPoint lerp(AIRealPoint a, AIRealPoint b, double t) { return {a.h + t * (b.h - a.h), a.v + t * (b.v - a.v)}; }
inline double dist(AIRealPoint a, AIRealPoint b) { return std::hypot(a.h - b.h, a.v - b.v); }

inline AIRealPoint cubicAt(const AIRealPoint* c, double t) {
  const double s = 1 - t;
  const double b0 = s * s * s, b1 = 3 * s * s * t, b2 = 3 * s * t * t, b3 = t * t * t;
  return {b0 * c[0].h + b1 * c[1].h + b2 * c[2].h + b3 * c[3].h, b0 * c[0].v + b1 * c[1].v + b2 * c[2].v + b3 * c[3].v};
}

inline AIRealPoint cubicDeriv(const AIRealPoint* c, double t) {
  const double s = 1 - t;
  const double d0 = 3 * s * s, d1 = 6 * s * t, d2 = 3 * t * t;
  return {d0 * (c[1].h - c[0].h) + d1 * (c[2].h - c[1].h) + d2 * (c[3].h - c[2].h),
          d0 * (c[1].v - c[0].v) + d1 * (c[2].v - c[1].v) + d2 * (c[3].v - c[2].v)};
}

// de Casteljau split at t: left = [0, t], right = [t, 1]; left[3] == right[0].
inline void split(const AIRealPoint* c, double t, AIRealPoint* left, AIRealPoint* right) {
  const AIRealPoint p01 = lerp(c[0], c[1], t), p12 = lerp(c[1], c[2], t), p23 = lerp(c[2], c[3], t);
  const AIRealPoint p012 = lerp(p01, p12, t), p123 = lerp(p12, p23, t);
  const AIRealPoint m = lerp(p012, p123, t);
  left[0] = c[0], left[1] = p01, left[2] = p012, left[3] = m;
  right[0] = m, right[1] = p123, right[2] = p23, right[3] = c[3];
}

// The piece of c over [t0, t1] as a cubic of its own.
inline void subCurve(const AIRealPoint* c, double t0, double t1, AIRealPoint* out) {
  AIRealPoint l[4], r[4];
  if (t1 >= 1) {
    std::copy(c, c + 4, r);
  } else {
    split(c, t1, l, r);
    std::copy(l, l + 4, r);
  }
  if (t0 <= 0 || t1 <= 0) {
    std::copy(r, r + 4, out);
    return;
  }
  AIRealPoint a[4], b[4];
  split(r, t0 / t1, a, b);
  std::copy(b, b + 4, out);
}

// Extends rect (left, top, right, bottom; top >= bottom) by the exact
// bounds of one cubic.
inline void addBounds(const AIRealPoint* c, AIRealRect& r) {
  auto add = [&](AIRealPoint p) {
    r.left = std::min(r.left, p.h);
    r.right = std::max(r.right, p.h);
    r.bottom = std::min(r.bottom, p.v);
    r.top = std::max(r.top, p.v);
  };
  add(c[0]);
  add(c[3]);
  for (int axis = 0; axis < 2; ++axis) {
    auto co = [&](int k) { return axis == 0 ? c[k].h : c[k].v; };
    // derivative / 3 = a t^2 + b t + cc
    const double a = -co(0) + 3 * co(1) - 3 * co(2) + co(3);
    const double b = 2 * (co(0) - 2 * co(1) + co(2));
    const double cc = co(1) - co(0);
    double roots[2];
    int n = 0;
    if (std::abs(a) < 1e-14) {
      if (std::abs(b) > 1e-14) roots[n++] = -cc / b;
    } else {
      const double disc = b * b - 4 * a * cc;
      if (disc >= 0) {
        const double sq = std::sqrt(disc);
        roots[n++] = (-b + sq) / (2 * a);
        roots[n++] = (-b - sq) / (2 * a);
      }
    }
    for (int k = 0; k < n; ++k)
      if (roots[k] > 0 && roots[k] < 1) add(cubicAt(c, roots[k]));
  }
}

}  // namespace lb::host::bez
