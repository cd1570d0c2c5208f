// Cubic Bezier and matrix arithmetic shared by the document (bounds,
// transforms) and the math and Bezier suites.
#pragma once

#include "AITypes.h"

namespace lb::host::geom {

AIRealPoint evaluate(const AIRealBezier& b, double t);
// Derivative dB/dt at t.
AIRealPoint tangent(const AIRealBezier& b, double t);
// Splits at t by de Casteljau: left covers [0, t], right [t, 1].
void divide(const AIRealBezier& b, double t, AIRealBezier* left, AIRealBezier* right);
// Arc length: pieces are halved until the control polygon and the chord of
// each differ by less than flatness; a flat piece counts as the mean of the
// two. A flatness <= 0 is taken as 1e-6 of the control polygon's length.
double length(const AIRealBezier& b, double flatness);
// The bounding box of the curve itself (extrema of the cubic), not of its
// control points. top >= bottom.
AIRealRect bounds(const AIRealBezier& b);
void unite(AIRealRect& r, const AIRealRect& other);

AIRealPoint transform(const AIRealMatrix& m, const AIRealPoint& p);
// a then b: the point is mapped by a first.
AIRealMatrix concat(const AIRealMatrix& a, const AIRealMatrix& b);
// False (m unchanged) when m is singular.
bool invert(AIRealMatrix& m);

}  // namespace lb::host::geom
