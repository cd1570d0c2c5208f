// Tests: distance of points and chains of cubics to a chain.
#include "support/Geometry.h"
#include "host/mesh/Bezier.h"

#include <algorithm>

namespace lbtest {
using lb::host::bez::cubicAt;
using lb::host::bez::cubicDeriv;

namespace {
// Distance from p to the chain.
double DistToChain(const Chain& c, AIRealPoint p) {
  double best = 1e300;
  for (size_t q = 0; q + 3 < c.size(); q += 3) {
    const AIRealPoint* b = &c[q];
    double bt = 0, bd = 1e300;
    for (int k = 0; k <= 64; ++k) {  // coarse search, then Newton on the squared distance
      const double t = k / 64.0, d = Dist(cubicAt(b, t), p);
      if (d < bd) bd = d, bt = t;
    }
    for (int it = 0; it < 30; ++it) {
      const AIRealPoint at = cubicAt(b, bt), d1 = cubicDeriv(b, bt);
      const AIRealPoint e{at.h - p.h, at.v - p.v};
      const double h = 1e-6;
      const AIRealPoint hi = cubicDeriv(b, std::min(1.0, bt + h)), lo = cubicDeriv(b, std::max(0.0, bt - h));
      const AIRealPoint d2{(hi.h - lo.h) / (2 * h), (hi.v - lo.v) / (2 * h)};
      const double f = e.h * d1.h + e.v * d1.v;
      const double fp = d1.h * d1.h + d1.v * d1.v + e.h * d2.h + e.v * d2.v;
      if (std::abs(fp) < 1e-300) break;
      bt = std::clamp(bt - f / fp, 0.0, 1.0);
    }
    best = std::min(best, Dist(cubicAt(b, bt), p));
  }
  return best;
}
}  // namespace

double ChainDeviation(const Chain& a, const Chain& b) {
  double worst = std::max(Dist(a.front(), b.front()), Dist(a.back(), b.back()));
  for (size_t q = 0; q + 3 < b.size(); q += 3)
    for (int k = 0; k <= 16; ++k) worst = std::max(worst, DistToChain(a, cubicAt(&b[q], k / 16.0)));
  return worst;
}

}  // namespace lbtest
