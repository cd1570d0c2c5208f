// The real math suite (points, angles, matrices), the real Bezier suite and
// the random suite.
#include <cmath>
#include <cstdint>

#include "host/Geometry.h"
#include "host/SuiteRegistry.h"
#include "host/suites/ArtSuiteCommon.h"

namespace lb::host::suites {
namespace {

// ---- AI Real Math Suite ----------------------------------------------------

// Angle of b - a in radians, counterclockwise from +h, in (-pi, pi].
AIReal AIRealPointAngle(const AIRealPoint* a, const AIRealPoint* b) { return std::atan2(b->v - a->v, b->h - a->h); }

AIReal AIRealPointLength(const AIRealPoint* a, const AIRealPoint* b) { return std::hypot(b->h - a->h, b->v - a->v); }

void AIRealPointAdd(const AIRealPoint* a, const AIRealPoint* b, AIRealPoint* r) { *r = {a->h + b->h, a->v + b->v}; }

void AIRealPointSubtract(const AIRealPoint* a, const AIRealPoint* b, AIRealPoint* r) {
  *r = {a->h - b->h, a->v - b->v};
}

void AIRealPointLengthAngle(AIReal length, AIReal angle, AIRealPoint* r) {
  *r = {length * std::cos(angle), length * std::sin(angle)};
}

AIBoolean AIRealPointEqual(const AIRealPoint* a, const AIRealPoint* b) { return a->h == b->h && a->v == b->v; }

// Each coordinate within the tolerance.
AIBoolean AIRealPointClose(const AIRealPoint* a, const AIRealPoint* b, AIReal tolerance) {
  return std::fabs(a->h - b->h) <= tolerance && std::fabs(a->v - b->v) <= tolerance;
}

// t is measured from b: t = 0 gives b, t = 1 gives a.
void AIRealPointInterpolate(const AIRealPoint* a, const AIRealPoint* b, AIReal t, AIRealPoint* r) {
  *r = {b->h + t * (a->h - b->h), b->v + t * (a->v - b->v)};
}

void AIRealMatrixSetIdentity(AIRealMatrix* m) { *m = {1, 0, 0, 1, 0, 0}; }

void AIRealMatrixSetTranslate(AIRealMatrix* m, AIReal tx, AIReal ty) { *m = {1, 0, 0, 1, tx, ty}; }

void AIRealMatrixSetScale(AIRealMatrix* m, AIReal sh, AIReal sv) { *m = {sh, 0, 0, sv, 0, 0}; }

// Counterclockwise by angle radians about the origin.
void AIRealMatrixSetRotate(AIRealMatrix* m, AIReal angle) {
  const double c = std::cos(angle), s = std::sin(angle);
  *m = {c, s, -s, c, 0, 0};
}

// result maps a point by a first, then by b.
void AIRealMatrixConcat(const AIRealMatrix* a, const AIRealMatrix* b, AIRealMatrix* r) { *r = geom::concat(*a, *b); }

AIErr AIRealMatrixInvert(AIRealMatrix* m) {
  if (!m) return kBadParameterErr;
  return geom::invert(*m) ? kNoErr : kBadParameterErr;
}

void AIRealMatrixXformPoint(const AIRealMatrix* m, const AIRealPoint* in, AIRealPoint* out) {
  *out = geom::transform(*m, *in);
}

AIBoolean AIDoubleEqual(double a, double b) { return a == b; }

AIBoolean AIDoubleClose(double a, double b, double tolerance) { return std::fabs(a - b) <= tolerance; }

const AIRealMathSuite kRealMathSuite = {
    .AIRealPointAngle = AIRealPointAngle,
    .AIRealPointLength = AIRealPointLength,
    .AIRealPointAdd = AIRealPointAdd,
    .AIRealPointSubtract = AIRealPointSubtract,
    .AIRealPointLengthAngle = AIRealPointLengthAngle,
    .AIRealPointEqual = AIRealPointEqual,
    .AIRealPointClose = AIRealPointClose,
    .AIRealPointInterpolate = AIRealPointInterpolate,
    .AIRealMatrixSetIdentity = AIRealMatrixSetIdentity,
    .AIRealMatrixSetTranslate = AIRealMatrixSetTranslate,
    .AIRealMatrixSetScale = AIRealMatrixSetScale,
    .AIRealMatrixSetRotate = AIRealMatrixSetRotate,
    .AIRealMatrixConcat = AIRealMatrixConcat,
    .AIRealMatrixInvert = AIRealMatrixInvert,
    .AIRealMatrixXformPoint = AIRealMatrixXformPoint,
    .AIDoubleEqual = AIDoubleEqual,
    .AIDoubleClose = AIDoubleClose,
};

// ---- AI Real Bezier Suite --------------------------------------------------

void Evaluate(const AIRealBezier* b, AIReal t, AIRealPoint* p) { *p = geom::evaluate(*b, t); }
void Tangent(const AIRealBezier* b, AIReal t, AIRealPoint* v) { *v = geom::tangent(*b, t); }
void Divide(const AIRealBezier* b, AIReal t, AIRealBezier* b1, AIRealBezier* b2) { geom::divide(*b, t, b1, b2); }
AIReal Length(const AIRealBezier* b, AIReal flatness) { return geom::length(*b, flatness); }
void Bounds(const AIRealBezier* b, AIRealRect* r) { *r = geom::bounds(*b); }

const AIRealBezierSuite kRealBezierSuite = {
    .Evaluate = Evaluate,
    .Tangent = Tangent,
    .Divide = Divide,
    .Length = Length,
    .Bounds = Bounds,
};

// ---- AI Random Suite -------------------------------------------------------
// A 48-bit linear congruential generator (multiplier 0x5DEECE66D, increment
// 11): the same seed always gives the same sequence.

uint64_t gRandomState = 0;
constexpr uint64_t kRandomMask = (uint64_t(1) << 48) - 1;

void SetRndSeed(int32_t seed) {
  gRandomState = ((uint64_t(uint32_t(seed)) << 16) | 0x330E) & kRandomMask;
}

AIReal FloatRnd() {
  gRandomState = (gRandomState * 0x5DEECE66DULL + 0xB) & kRandomMask;
  return static_cast<double>(gRandomState) / static_cast<double>(uint64_t(1) << 48);
}

const AIRandomSuite kRandomSuite = {
    .FloatRnd = FloatRnd,
    .SetRndSeed = SetRndSeed,
};

}  // namespace

void registerMathSuites() {
  registerSuite(kAIRealMathSuite, kAIRealMathSuiteVersion, &kRealMathSuite);
  registerSuite(kAIRealBezierSuite, kAIRealBezierSuiteVersion, &kRealBezierSuite);
  SetRndSeed(0);  // every host session starts from the same sequence
  registerSuite(kAIRandomSuite, kAIRandomSuiteVersion, &kRandomSuite);
}

}  // namespace lb::host::suites
