// The mesh's colour and opacity field over relative (u, v) coordinates.
//
// Each colour component and the opacity are interpolated separately by a
// bicubic Hermite patch per cell: values at the four corner nodes, slopes
// along u and v at each node from a shape-preserving (PCHIP, Fritsch-Carlson
// weighted harmonic mean) fit along that node's row and column, no twist
// terms. Where neighbouring differences change sign the slope is 0, so the
// field has no overshoot; the result is additionally clamped to the range
// of the cell's four corner values. Slopes depend only on the node's line,
// so the field is C1 across cell borders wherever the clamp is inactive.
//
// Mixed colour kinds: every node is converted to the kind of node (0, 0)
// first; a none node counts as white, and a mesh whose node (0, 0) is none
// evaluates to none (opacity is still interpolated).
#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/mesh/MeshImpl_p.h"

namespace lb::host {

namespace {

inline double H0(double s) { return (2 * s - 3) * s * s + 1; }
inline double H1(double s) { return (3 - 2 * s) * s * s; }
inline double G0(double s) { return ((s - 2) * s + 1) * s; }
inline double G1(double s) { return (s - 1) * s * s; }

// PCHIP slope at index k of n points (x[k], Y(k)); symmetric under
// reversing the data. The same function serves the whole-field build and
// the single-node evaluation of an insertion, so both agree bit for bit.
template <class YF>
double pchipSlopeAt(int n, const double* x, const YF& Y, int k) {
  if (n < 2) return 0;
  auto h = [&](int q) { return x[q + 1] - x[q]; };
  auto del = [&](int q) { return (Y(q + 1) - Y(q)) / h(q); };
  if (n == 2) return del(0);
  auto endSlope = [](double h0, double h1, double del0, double del1) {
    double s = ((2 * h0 + h1) * del0 - h0 * del1) / (h0 + h1);
    if (s * del0 <= 0)
      s = 0;
    else if (del0 * del1 <= 0 && std::abs(s) > std::abs(3 * del0))
      s = 3 * del0;
    return s;
  };
  if (k == 0) return endSlope(h(0), h(1), del(0), del(1));
  if (k == n - 1) return endSlope(h(n - 2), h(n - 3), del(n - 2), del(n - 3));
  const double d0 = del(k - 1), d1 = del(k);
  if (d0 * d1 <= 0) return 0;
  const double w1 = 2 * h(k) + h(k - 1), w2 = h(k) + 2 * h(k - 1);
  return (w1 + w2) / (w1 / d0 + w2 / d1);
}

// Components of a node in the mesh's kind followed by its opacity.
void nodeComponents(const Node& n, AIColorTag kind, int nc, double* out) {
  if (nc > 0 && n.color.kind == kind) {
    colorComponents(n.color, out);  // the usual case: nothing to convert
  } else if (nc > 0) {
    const AIColor c = n.color.kind == kNoneColor ? whiteColor() : n.color;
    colorComponents(convertColor(c, kind), out);
  }
  out[nc] = n.opacity;
}

}  // namespace

void GradientMesh::Impl::buildColor() const {
  if (!dirty) return;
  kind = nodeAt(0, 0).color.kind;
  nc = componentCount(kind);
  const int C = nc + 1;
  const size_t N = static_cast<size_t>(I + 1) * (J + 1);
  val.assign(N * C, 0);
  du.assign(N * C, 0);
  dv.assign(N * C, 0);
  for (int j = 0; j <= J; ++j)
    for (int i = 0; i <= I; ++i) nodeComponents(nodeAt(i, j), kind, nc, &val[(i + j * (I + 1)) * C]);
  for (int c = 0; c < C; ++c) {
    for (int j = 0; j <= J; ++j) {
      const double* y = &val[static_cast<size_t>(j * (I + 1)) * C + c];
      auto Y = [&](int q) { return y[static_cast<size_t>(q) * C]; };
      for (int i = 0; i <= I; ++i) du[(i + j * (I + 1)) * C + c] = pchipSlopeAt(I + 1, u.data(), Y, i);
    }
    for (int i = 0; i <= I; ++i) {
      const double* y = &val[static_cast<size_t>(i) * C + c];
      const size_t stride = static_cast<size_t>(I + 1) * C;
      auto Y = [&](int q) { return y[q * stride]; };
      for (int j = 0; j <= J; ++j) dv[(i + j * (I + 1)) * C + c] = pchipSlopeAt(J + 1, v.data(), Y, j);
    }
  }
  dirty = false;
}

void GradientMesh::Impl::fieldAt(int i, int j, double s, double t, int first, int count, double* out) const {
  const int C = nc + 1;
  const size_t row = static_cast<size_t>(I + 1) * C;
  const size_t base = static_cast<size_t>(i + j * (I + 1)) * C;
  const double hu = u[i + 1] - u[i], hv = v[j + 1] - v[j];
  const double h0s = H0(s), h1s = H1(s), g0s = G0(s), g1s = G1(s);
  const double h0t = H0(t), h1t = H1(t), g0t = G0(t), g1t = G1(t);
  // The basis products are the same for every component: worked out once.
  const double w00 = h0s * h0t, w10 = h1s * h0t, w01 = h0s * h1t, w11 = h1s * h1t;
  const double a00 = g0s * h0t, a10 = g1s * h0t, a01 = g0s * h1t, a11 = g1s * h1t;
  const double b00 = h0s * g0t, b10 = h1s * g0t, b01 = h0s * g1t, b11 = h1s * g1t;
  for (int k = 0; k < count; ++k) {
    const size_t n00 = base + static_cast<size_t>(first + k), n10 = n00 + C, n01 = n00 + row, n11 = n01 + C;
    const double f00 = val[n00], f10 = val[n10], f01 = val[n01], f11 = val[n11];
    const double f = w00 * f00 + w10 * f10 + w01 * f01 + w11 * f11 +
                     hu * (a00 * du[n00] + a10 * du[n10] + a01 * du[n01] + a11 * du[n11]) +
                     hv * (b00 * dv[n00] + b10 * dv[n10] + b01 * dv[n01] + b11 * dv[n11]);
    const double lo = std::min(std::min(f00, f10), std::min(f01, f11));
    const double hi = std::max(std::max(f00, f10), std::max(f01, f11));
    out[k] = std::clamp(f, lo, hi);
  }
}

AIColor GradientMesh::Impl::colorAt(int i, int j, double s, double t) const {
  buildColor();
  if (nc == 0) {
    AIColor c{};
    c.kind = kind;
    return c;
  }
  double comps[4];
  fieldAt(i, j, s, t, 0, nc, comps);
  return colorFromComponents(kind, comps);
}

double GradientMesh::Impl::opacityAt(int i, int j, double s, double t) const {
  buildColor();
  double opacity = 0;
  fieldAt(i, j, s, t, nc, 1, &opacity);
  return opacity;
}

void GradientMesh::Impl::edgePaint(int axis, int k, int b, double f, AIColor* color, double* opacity) const {
  if (uniformPaint) {
    const Node& any = nodeAt(0, 0);
    *color = any.color;
    *opacity = any.opacity;
    return;
  }
  const AIColorTag mk = nodeAt(0, 0).color.kind;
  const int mc = componentCount(mk), C = mc + 1;
  const int n = count(axis), m = count(1 - axis);
  const std::vector<double>& g = axis == 0 ? u : v;
  const int ob = b < m ? b + 1 : m - 1;
  // Nodes k and k + 1 of cross line b, then of the neighbouring cross line.
  const Node* corner[4] = {&cellOnAxis(axis, k, b).node, &cellOnAxis(axis, k + 1, b).node,
                           &cellOnAxis(axis, k, ob).node, &cellOnAxis(axis, k + 1, ob).node};
  // Four corners with the very same paint in the mesh's kind (fresh and
  // flat-coloured meshes): the value is theirs, without converting or
  // comparing component by component. NaN components take the full path.
  {
    const Node& c0 = *corner[0];
    bool same = mc > 0 && c0.color.kind == mk && c0.opacity == c0.opacity;
    for (int q = 1; q < 4; ++q)
      same = same && corner[q]->opacity == c0.opacity &&
             std::memcmp(&corner[q]->color, &c0.color, sizeof(AIColor)) == 0;
    double comps[5];
    if (same) {
      colorComponents(c0.color, comps);
      for (int c = 0; c < mc; ++c) same = same && comps[c] == comps[c];
    }
    if (same) {
      *color = colorFromComponents(mk, comps);
      *opacity = c0.opacity;
      return;
    }
  }
  // Nodes k - 1 .. k + 2 of cross line b decide the slopes at k and k + 1;
  // nodes k and k + 1 of the neighbouring cross line bound the clamp.
  double line[4][5] = {}, other[2][5] = {};
  nodeComponents(*corner[0], mk, mc, line[1]);
  nodeComponents(*corner[1], mk, mc, line[2]);
  nodeComponents(*corner[2], mk, mc, other[0]);
  nodeComponents(*corner[3], mk, mc, other[1]);
  // Where both ends and the clamp's other corners agree, both slopes are 0
  // and the clamp pins the value: the result is that value exactly, and
  // the outer nodes need not be read (fresh and flat-coloured meshes).
  bool flat = true;
  for (int c = 0; c < C; ++c)
    flat = flat && line[1][c] == line[2][c] && other[0][c] == line[1][c] && other[1][c] == line[1][c];
  if (!flat) {
    if (k >= 1) nodeComponents(cellOnAxis(axis, k - 1, b).node, mk, mc, line[0]);
    if (k + 2 <= n) nodeComponents(cellOnAxis(axis, k + 2, b).node, mk, mc, line[3]);
  }
  const double h = g[k + 1] - g[k];
  double out[5];
  for (int c = 0; c < C; ++c) {
    if (flat) {
      out[c] = line[1][c];
      continue;
    }
    auto Y = [&](int a) { return line[a - (k - 1)][c]; };
    const double d0 = pchipSlopeAt(n + 1, g.data(), Y, k), d1 = pchipSlopeAt(n + 1, g.data(), Y, k + 1);
    const double f0 = Y(k), f1 = Y(k + 1);
    const double x = H0(f) * f0 + H1(f) * f1 + h * (G0(f) * d0 + G1(f) * d1);
    const double lo = std::min(std::min(f0, f1), std::min(other[0][c], other[1][c]));
    const double hi = std::max(std::max(f0, f1), std::max(other[0][c], other[1][c]));
    out[c] = std::clamp(x, lo, hi);
  }
  if (mc == 0) {
    *color = AIColor{};
    color->kind = mk;
  } else {
    *color = colorFromComponents(mk, out);
  }
  *opacity = out[mc];
}

// ---- public evaluation -------------------------------------------------------

AIColor GradientMesh::evalColor(double u, double v) const {
  int i, j;
  double s, t;
  Impl::locate(impl_->u, u, &i, &s);
  Impl::locate(impl_->v, v, &j, &t);
  return impl_->colorAt(i, j, s, t);
}

double GradientMesh::evalOpacity(double u, double v) const {
  int i, j;
  double s, t;
  Impl::locate(impl_->u, u, &i, &s);
  Impl::locate(impl_->v, v, &j, &t);
  return impl_->opacityAt(i, j, s, t);
}

AIColor GradientMesh::patchColor(int i, int j, double s, double t) const {
  impl_->clampCell(&i, &j, &s, &t);
  return impl_->colorAt(i, j, s, t);
}

double GradientMesh::patchOpacity(int i, int j, double s, double t) const {
  impl_->clampCell(&i, &j, &s, &t);
  return impl_->opacityAt(i, j, s, t);
}

}  // namespace lb::host
