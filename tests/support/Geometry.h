// Tests: geometry predicates — points equal within a tolerance, angles, and chains of cubics.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "AITypes.h"

namespace lbtest {

constexpr double kPi = 3.141592653589793, kDeg = kPi / 180.0;

inline ::testing::AssertionResult Near(double a, double b, double tol) {
  if (std::fabs(a - b) <= tol) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << a << " vs " << b;
}
inline ::testing::AssertionResult PtNear(AIRealPoint a, AIRealPoint b, double tol) {
  if (std::fabs(a.h - b.h) <= tol && std::fabs(a.v - b.v) <= tol) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "(" << a.h << ", " << a.v << ") vs (" << b.h << ", " << b.v << ")";
}
#define EXPECT_PT_NEAR(a, b, tol) EXPECT_TRUE(::lbtest::PtNear((a), (b), (tol)))

inline AIRealPoint Polar(AIRealPoint p, double len, double a) { return {p.h + len * std::cos(a), p.v + len * std::sin(a)}; }
inline double Angle(AIRealPoint a, AIRealPoint b) { return std::atan2(b.v - a.v, b.h - a.h); }
inline double Dist(AIRealPoint a, AIRealPoint b) { return std::hypot(b.h - a.h, b.v - a.v); }
// a - b folded into [-pi, pi].
inline double AngleDiff(double a, double b) { return std::remainder(a - b, 2 * kPi); }

// A chain of cubic pieces: 3m + 1 points.
using Chain = std::vector<AIRealPoint>;
// How far chain b (sampled densely) strays from chain a, end points included.
double ChainDeviation(const Chain& a, const Chain& b);

}  // namespace lbtest
