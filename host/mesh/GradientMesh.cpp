#include "host/mesh/GradientMesh.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/mesh/Bezier.h"

namespace lb::host {

using namespace bez;
using P = AIRealPoint;

namespace {

struct Joint {
  VertexId id = kNoVertex;  // kNoVertex: a knot
  bool selected = false;
  bool smooth[2] = {false, false};
};

struct Run {
  std::vector<P> pts;         // 3m + 1
  std::vector<Joint> joints;  // m - 1
  int pieces() const { return (static_cast<int>(pts.size()) - 1) / 3; }
};

struct Node {
  VertexId id = kNoVertex;
  P p{0, 0};
  AIColor color{};
  double opacity = 1.0;
  bool selected = false;
  bool smooth[4] = {false, false, false, false};
};

enum : int8_t { kDead = 0, kNodeLoc = 1, kInnerLoc = 2 };

struct Loc {
  int8_t kind = kDead;
  int8_t axis = 0;
  int32_t i = 0, j = 0, a = 0;  // node (i, j); or run (axis, i, j) and anchor a
};

AIColor white() {
  AIColor c{};
  c.kind = kThreeColor;
  c.c.rgb = {1, 1, 1};
  return c;
}

Run straightRun(P a, P b) {
  Run r;
  r.pts = {a, lerp(a, b, 1.0 / 3.0), lerp(a, b, 2.0 / 3.0), b};
  return r;
}

// Opposite handles on one line through the anchor.
bool collinear(P in, P anchor, P out) {
  const P a = in - anchor, b = out - anchor;
  const double la = std::hypot(a.h, a.v), lb = std::hypot(b.h, b.v);
  if (la < 1e-12 || lb < 1e-12) return false;
  const double cross = a.h * b.v - a.v * b.h, dot = a.h * b.h + a.v * b.v;
  return std::abs(cross) <= 1e-9 * la * lb && dot < 0;
}

int componentCount(AIColorTag kind) {
  switch (kind) {
    case kGrayColor: return 1;
    case kThreeColor: return 3;
    case kFourColor: return 4;
    default: return 0;
  }
}

void colorComponents(const AIColor& c, double* out) {
  switch (c.kind) {
    case kGrayColor: out[0] = c.c.g.gray; break;
    case kThreeColor: out[0] = c.c.rgb.red, out[1] = c.c.rgb.green, out[2] = c.c.rgb.blue; break;
    case kFourColor:
      out[0] = c.c.f.cyan, out[1] = c.c.f.magenta, out[2] = c.c.f.yellow, out[3] = c.c.f.black;
      break;
    default: break;
  }
}

AIColor colorFromComponents(AIColorTag kind, const double* v) {
  AIColor c{};
  c.kind = kind;
  switch (kind) {
    case kGrayColor: c.c.g.gray = v[0]; break;
    case kThreeColor: c.c.rgb = {v[0], v[1], v[2]}; break;
    case kFourColor: c.c.f = {v[0], v[1], v[2], v[3]}; break;
    default: break;
  }
  return c;
}

// Shape-preserving slopes of a piecewise cubic Hermite interpolant
// through (x[k], y[k]); symmetric under reversing the data.
void pchipSlopes(int n, const double* x, const double* y, ptrdiff_t ys, double* d, ptrdiff_t ds) {
  auto Y = [&](int k) { return y[k * ys]; };
  if (n < 2) return;
  if (n == 2) {
    const double del = (Y(1) - Y(0)) / (x[1] - x[0]);
    d[0] = d[ds] = del;
    return;
  }
  auto h = [&](int k) { return x[k + 1] - x[k]; };
  auto del = [&](int k) { return (Y(k + 1) - Y(k)) / h(k); };
  for (int k = 1; k < n - 1; ++k) {
    const double d0 = del(k - 1), d1 = del(k);
    if (d0 * d1 <= 0) {
      d[k * ds] = 0;
    } else {
      const double w1 = 2 * h(k) + h(k - 1), w2 = h(k) + 2 * h(k - 1);
      d[k * ds] = (w1 + w2) / (w1 / d0 + w2 / d1);
    }
  }
  auto endSlope = [](double h0, double h1, double del0, double del1) {
    double s = ((2 * h0 + h1) * del0 - h0 * del1) / (h0 + h1);
    if (s * del0 <= 0)
      s = 0;
    else if (del0 * del1 <= 0 && std::abs(s) > std::abs(3 * del0))
      s = 3 * del0;
    return s;
  };
  d[0] = endSlope(h(0), h(1), del(0), del(1));
  d[(n - 1) * ds] = endSlope(h(n - 2), h(n - 3), del(n - 2), del(n - 3));
}

inline double H0(double s) { return (2 * s - 3) * s * s + 1; }
inline double H1(double s) { return (3 - 2 * s) * s * s; }
inline double G0(double s) { return ((s - 2) * s + 1) * s; }
inline double G1(double s) { return (s - 1) * s * s; }

}  // namespace

// ---------------------------------------------------------------------------

struct GradientMesh::Impl {
  int I = 1, J = 1;
  std::vector<double> u{0, 1}, v{0, 1};
  std::vector<Node> nodes;
  std::vector<Run> runsI;  // I * (J + 1): index i + j * I
  std::vector<Run> runsJ;  // (I + 1) * J: index i + j * (I + 1)
  std::vector<Loc> locs;   // by vertex id

  // Colour field cache: per node, components of the mesh kind + opacity.
  mutable bool dirty = true;
  mutable AIColorTag kind = kThreeColor;
  mutable int nc = 3;
  mutable std::vector<double> val, du, dv;

  Node& nodeAt(int i, int j) { return nodes[i + j * (I + 1)]; }
  const Node& nodeAt(int i, int j) const { return nodes[i + j * (I + 1)]; }
  bool runExists(int axis, int i, int j) const {
    return axis == 0 ? (i >= 0 && i < I && j >= 0 && j <= J) : (i >= 0 && i <= I && j >= 0 && j < J);
  }
  Run& runAt(int axis, int i, int j) { return axis == 0 ? runsI[i + j * I] : runsJ[i + j * (I + 1)]; }
  const Run& runAt(int axis, int i, int j) const {
    return axis == 0 ? runsI[i + j * I] : runsJ[i + j * (I + 1)];
  }
  void runEndNode(int axis, int i, int j, int* ei, int* ej) const {
    *ei = axis == 0 ? i + 1 : i;
    *ej = axis == 0 ? j : j + 1;
  }

  VertexId newId(const Loc& l) {
    locs.push_back(l);
    return static_cast<VertexId>(locs.size() - 1);
  }
  const Loc* loc(VertexId id) const {
    if (id >= locs.size() || locs[id].kind == kDead) return nullptr;
    return &locs[id];
  }

  void reindexRun(int axis, int i, int j) {
    const Run& r = runAt(axis, i, j);
    for (size_t k = 0; k < r.joints.size(); ++k)
      if (r.joints[k].id != kNoVertex)
        locs[r.joints[k].id] = Loc{kInnerLoc, static_cast<int8_t>(axis), i, j, static_cast<int32_t>(k + 1)};
  }

  void rebuildLocs() {
    for (auto& l : locs) l.kind = kDead;
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i <= I; ++i) locs[nodeAt(i, j).id] = Loc{kNodeLoc, 0, i, j, 0};
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i < I; ++i) reindexRun(0, i, j);
    for (int j = 0; j < J; ++j)
      for (int i = 0; i <= I; ++i) reindexRun(1, i, j);
  }

  void init(int i, int j) {
    I = i, J = j;
    locs.clear();
    nodes.assign(static_cast<size_t>((I + 1) * (J + 1)), Node{});
    u.resize(I + 1), v.resize(J + 1);
    for (int k = 0; k <= I; ++k) u[k] = static_cast<double>(k) / I;
    for (int k = 0; k <= J; ++k) v[k] = static_cast<double>(k) / J;
    u[I] = 1, v[J] = 1;
    for (int b = 0; b <= J; ++b)
      for (int a = 0; a <= I; ++a) {
        Node& n = nodeAt(a, b);
        n.p = {static_cast<double>(a) / I, static_cast<double>(b) / J};
        n.color = white();
        n.id = newId(Loc{kNodeLoc, 0, a, b, 0});
      }
    runsI.assign(static_cast<size_t>(I * (J + 1)), Run{});
    runsJ.assign(static_cast<size_t>((I + 1) * J), Run{});
    for (int b = 0; b <= J; ++b)
      for (int a = 0; a < I; ++a) runAt(0, a, b) = straightRun(nodeAt(a, b).p, nodeAt(a + 1, b).p);
    for (int b = 0; b < J; ++b)
      for (int a = 0; a <= I; ++a) runAt(1, a, b) = straightRun(nodeAt(a, b).p, nodeAt(a, b + 1).p);
    dirty = true;
  }

  // ---- vertices in runs ----
  VertexId anchorId(int axis, int i, int j, int a) const {
    const Run& r = runAt(axis, i, j);
    if (a == 0) return nodeAt(i, j).id;
    if (a == r.pieces()) {
      int ei, ej;
      runEndNode(axis, i, j, &ei, &ej);
      return nodeAt(ei, ej).id;
    }
    return r.joints[a - 1].id;
  }
  static int nextVertexAnchor(const Run& r, int a) {
    const int m = r.pieces();
    for (int b = a + 1; b < m; ++b)
      if (r.joints[b - 1].id != kNoVertex) return b;
    return m;
  }
  static int prevVertexAnchor(const Run& r, int a) {
    for (int b = a - 1; b > 0; --b)
      if (r.joints[b - 1].id != kNoVertex) return b;
    return 0;
  }
  static VertexId firstInner(const Run& r, int after) {
    for (int b = after + 1; b < r.pieces(); ++b)
      if (r.joints[b - 1].id != kNoVertex) return r.joints[b - 1].id;
    return kNoVertex;
  }

  struct Span {
    int axis = 0, i = 0, j = 0, a0 = 0, a1 = 0;
    bool fwd = true;
  };
  bool span(SegmentRef s, Span* out) const {
    const Loc* l = loc(s.start);
    if (!l || s.dir < 0 || s.dir > 3) return false;
    Span sp;
    sp.axis = dirAxis(s.dir);
    sp.fwd = dirForward(s.dir);
    if (l->kind == kNodeLoc) {
      if (sp.fwd) {
        sp.i = l->i, sp.j = l->j;
        if (!runExists(sp.axis, sp.i, sp.j)) return false;
        sp.a0 = 0;
        sp.a1 = nextVertexAnchor(runAt(sp.axis, sp.i, sp.j), 0);
      } else {
        sp.i = sp.axis == 0 ? l->i - 1 : l->i;
        sp.j = sp.axis == 0 ? l->j : l->j - 1;
        if (!runExists(sp.axis, sp.i, sp.j)) return false;
        const Run& r = runAt(sp.axis, sp.i, sp.j);
        sp.a1 = r.pieces();
        sp.a0 = prevVertexAnchor(r, sp.a1);
      }
    } else {
      if (l->axis != sp.axis) return false;
      sp.i = l->i, sp.j = l->j;
      const Run& r = runAt(sp.axis, sp.i, sp.j);
      if (sp.fwd) {
        sp.a0 = l->a;
        sp.a1 = nextVertexAnchor(r, l->a);
      } else {
        sp.a1 = l->a;
        sp.a0 = prevVertexAnchor(r, l->a);
      }
    }
    *out = sp;
    return true;
  }

  void setNodePoint(int i, int j, P p) {
    nodeAt(i, j).p = p;
    if (runExists(0, i, j)) runAt(0, i, j).pts.front() = p;
    if (runExists(0, i - 1, j)) runAt(0, i - 1, j).pts.back() = p;
    if (runExists(1, i, j)) runAt(1, i, j).pts.front() = p;
    if (runExists(1, i, j - 1)) runAt(1, i, j - 1).pts.back() = p;
  }
  void setRunPoint(int axis, int i, int j, int idx, P p) {
    Run& r = runAt(axis, i, j);
    if (idx == 0) {
      setNodePoint(i, j, p);
    } else if (idx == static_cast<int>(r.pts.size()) - 1) {
      int ei, ej;
      runEndNode(axis, i, j, &ei, &ej);
      setNodePoint(ei, ej, p);
    } else {
      r.pts[idx] = p;
    }
  }

  // ---- chains ----
  static void chainEval(const Run& r, double s, P* p, P* d) {
    const int m = r.pieces();
    const double x = std::clamp(s, 0.0, 1.0) * m;
    int q = std::min(static_cast<int>(x), m - 1);
    const double t = x - q;
    *p = cubicAt(&r.pts[3 * q], t);
    if (d) *d = m * cubicDeriv(&r.pts[3 * q], t);
  }

  void patchEval(int i, int j, double s, double t, P* p, P* ps, P* pt) const {
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
    p->h = t1 * b.h + t * tt.h + s1 * l.h + s * r.h -
           (s1 * t1 * p00.h + s * t1 * p10.h + s1 * t * p01.h + s * t * p11.h);
    p->v = t1 * b.v + t * tt.v + s1 * l.v + s * r.v -
           (s1 * t1 * p00.v + s * t1 * p10.v + s1 * t * p01.v + s * t * p11.v);
    if (ps) {
      ps->h = t1 * bd.h + t * td.h - l.h + r.h - (-t1 * p00.h + t1 * p10.h - t * p01.h + t * p11.h);
      ps->v = t1 * bd.v + t * td.v - l.v + r.v - (-t1 * p00.v + t1 * p10.v - t * p01.v + t * p11.v);
    }
    if (pt) {
      pt->h = -b.h + tt.h + s1 * ld.h + s * rd.h - (-s1 * p00.h - s * p10.h + s1 * p01.h + s * p11.h);
      pt->v = -b.v + tt.v + s1 * ld.v + s * rd.v - (-s1 * p00.v - s * p10.v + s1 * p01.v + s * p11.v);
    }
  }

  // ---- colour field ----
  void buildColor() const {
    if (!dirty) return;
    kind = nodes[0].color.kind;
    nc = componentCount(kind);
    const int C = nc + 1;
    const size_t N = nodes.size();
    val.assign(N * C, 0);
    du.assign(N * C, 0);
    dv.assign(N * C, 0);
    for (size_t k = 0; k < N; ++k) {
      if (nc > 0) {
        AIColor c = nodes[k].color.kind == kNoneColor ? white() : nodes[k].color;
        colorComponents(convertColor(c, kind), &val[k * C]);
      }
      val[k * C + nc] = nodes[k].opacity;
    }
    for (int c = 0; c < C; ++c) {
      for (int j = 0; j <= J; ++j) {
        const size_t base = static_cast<size_t>(j * (I + 1)) * C + c;
        pchipSlopes(I + 1, u.data(), &val[base], C, &du[base], C);
      }
      for (int i = 0; i <= I; ++i) {
        const size_t base = static_cast<size_t>(i) * C + c;
        const ptrdiff_t stride = static_cast<ptrdiff_t>(I + 1) * C;
        pchipSlopes(J + 1, v.data(), &val[base], stride, &dv[base], stride);
      }
    }
    dirty = false;
  }

  // Component c (nc = opacity) in cell (i, j) at local (s, t).
  double fieldAt(int i, int j, double s, double t, int c) const {
    const int C = nc + 1;
    const size_t n00 = static_cast<size_t>(i + j * (I + 1)) * C + c;
    const size_t n10 = n00 + C, n01 = n00 + static_cast<size_t>(I + 1) * C, n11 = n01 + C;
    const double hu = u[i + 1] - u[i], hv = v[j + 1] - v[j];
    const double h0s = H0(s), h1s = H1(s), g0s = G0(s), g1s = G1(s);
    const double h0t = H0(t), h1t = H1(t), g0t = G0(t), g1t = G1(t);
    const double f00 = val[n00], f10 = val[n10], f01 = val[n01], f11 = val[n11];
    double f = h0s * h0t * f00 + h1s * h0t * f10 + h0s * h1t * f01 + h1s * h1t * f11 +
               hu * (g0s * h0t * du[n00] + g1s * h0t * du[n10] + g0s * h1t * du[n01] + g1s * h1t * du[n11]) +
               hv * (h0s * g0t * dv[n00] + h1s * g0t * dv[n10] + h0s * g1t * dv[n01] + h1s * g1t * dv[n11]);
    const double lo = std::min(std::min(f00, f10), std::min(f01, f11));
    const double hi = std::max(std::max(f00, f10), std::max(f01, f11));
    return std::clamp(f, lo, hi);
  }

  AIColor colorAt(int i, int j, double s, double t) const {
    buildColor();
    if (nc == 0) {
      AIColor c{};
      c.kind = kind;
      return c;
    }
    double comps[4];
    for (int c = 0; c < nc; ++c) comps[c] = fieldAt(i, j, s, t, c);
    return colorFromComponents(kind, comps);
  }
  double opacityAt(int i, int j, double s, double t) const {
    buildColor();
    return fieldAt(i, j, s, t, nc);
  }

  void clampCell(int* i, int* j, double* s, double* t) const {
    *i = std::clamp(*i, 0, I - 1);
    *j = std::clamp(*j, 0, J - 1);
    *s = std::isfinite(*s) ? std::clamp(*s, 0.0, 1.0) : 0.0;
    *t = std::isfinite(*t) ? std::clamp(*t, 0.0, 1.0) : 0.0;
  }

  // Cell and local coordinate of a relative coordinate.
  static void locate(const std::vector<double>& g, double x, int* cell, double* local) {
    const int n = static_cast<int>(g.size()) - 1;
    if (!(x >= 0)) x = 0;  // also NaN
    if (x > 1) x = 1;
    int k = static_cast<int>(std::upper_bound(g.begin(), g.end(), x) - g.begin()) - 1;
    k = std::clamp(k, 0, n - 1);
    *cell = k;
    *local = std::clamp((x - g[k]) / (g[k + 1] - g[k]), 0.0, 1.0);
  }

  // ---- structural edits ----
  void transpose() {
    std::vector<Node> nn(nodes.size());
    const int nI = J, nJ = I;
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i <= I; ++i) {
        Node n = nodeAt(i, j);
        std::swap(n.smooth[0], n.smooth[1]);
        std::swap(n.smooth[2], n.smooth[3]);
        nn[j + i * (nI + 1)] = n;
      }
    std::vector<Run> nrI(static_cast<size_t>(nI * (nJ + 1))), nrJ(static_cast<size_t>((nI + 1) * nJ));
    for (int j = 0; j < J; ++j)
      for (int i = 0; i <= I; ++i) nrI[j + i * nI] = std::move(runAt(1, i, j));
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i < I; ++i) nrJ[j + i * (nI + 1)] = std::move(runAt(0, i, j));
    nodes = std::move(nn);
    runsI = std::move(nrI);
    runsJ = std::move(nrJ);
    std::swap(I, J);
    std::swap(u, v);
    rebuildLocs();
    dirty = true;
  }

  struct SplitInfo {
    Run left, right;
    P point{};
    VertexId reuse = kNoVertex;  // the vertex that becomes the node
    bool selected = false;
    bool smooth[2] = {false, false};
  };

  // Splits a run at chain parameter f. A new point cut inside a segment
  // is selected when both ends of that segment are (startSel / endSel are
  // the run's nodes).
  static SplitInfo splitRun(const Run& r, double f, bool startSel, bool endSel) {
    SplitInfo out;
    const int m = r.pieces();
    const double x = f * m;
    int q = std::min(static_cast<int>(x), m - 1);
    double t = x - q;
    int atAnchor = -1;
    if (t < 1e-9 && q > 0) atAnchor = q;
    if (t > 1 - 1e-9 && q + 1 < m) atAnchor = q + 1;
    if (atAnchor > 0) {
      const int a = atAnchor;
      out.left.pts.assign(r.pts.begin(), r.pts.begin() + 3 * a + 1);
      out.right.pts.assign(r.pts.begin() + 3 * a, r.pts.end());
      out.left.joints.assign(r.joints.begin(), r.joints.begin() + (a - 1));
      out.right.joints.assign(r.joints.begin() + a, r.joints.end());
      const Joint& jt = r.joints[a - 1];
      out.point = r.pts[3 * a];
      out.reuse = jt.id;
      if (jt.id != kNoVertex) {
        out.selected = jt.selected;
        out.smooth[0] = jt.smooth[0], out.smooth[1] = jt.smooth[1];
      } else {
        const bool sm = collinear(r.pts[3 * a - 1], r.pts[3 * a], r.pts[3 * a + 1]);
        out.smooth[0] = out.smooth[1] = sm;
        const int a0 = prevVertexAnchor(r, a), a1 = nextVertexAnchor(r, a);
        out.selected = (a0 == 0 ? startSel : r.joints[a0 - 1].selected) &&
                       (a1 == m ? endSel : r.joints[a1 - 1].selected);
      }
      return out;
    }
    t = std::clamp(t, 1e-12, 1 - 1e-12);
    P L[4], R[4];
    bez::split(&r.pts[3 * q], t, L, R);
    out.left.pts.assign(r.pts.begin(), r.pts.begin() + 3 * q);
    out.left.pts.insert(out.left.pts.end(), L, L + 4);
    out.right.pts.assign(R, R + 4);
    out.right.pts.insert(out.right.pts.end(), r.pts.begin() + 3 * q + 4, r.pts.end());
    out.left.joints.assign(r.joints.begin(), r.joints.begin() + q);
    out.right.joints.assign(r.joints.begin() + q, r.joints.end());
    out.point = L[3];
    out.smooth[0] = out.smooth[1] = true;
    const int a0 = prevVertexAnchor(r, q + 1), a1 = nextVertexAnchor(r, q);
    const bool s0 = a0 == 0 ? startSel : r.joints[a0 - 1].selected;
    const bool s1 = a1 == m ? endSel : r.joints[a1 - 1].selected;
    out.selected = s0 && s1;
    return out;
  }

  // The curve of constant s = f across patch (k, j), exactly: a chain with
  // breakpoints where either side run has one.
  Run isoCurve(int k, int j, double f, P start, P end) const {
    const Run& L = runAt(1, k, j);
    const Run& R = runAt(1, k + 1, j);
    const Run& B = runAt(0, k, j);
    const Run& T = runAt(0, k, j + 1);
    const P p00 = nodeAt(k, j).p, p10 = nodeAt(k + 1, j).p, p01 = nodeAt(k, j + 1).p, p11 = nodeAt(k + 1, j + 1).p;
    P bf, tf;
    chainEval(B, f, &bf, nullptr);
    chainEval(T, f, &tf, nullptr);
    const P A = bf - (1 - f) * p00 - f * p10;
    const P Cc = tf - (1 - f) * p01 - f * p11;
    const int mL = L.pieces(), mR = R.pieces();
    std::vector<double> br;
    for (int a = 0; a <= mL; ++a) br.push_back(static_cast<double>(a) / mL);
    for (int b = 0; b <= mR; ++b) br.push_back(static_cast<double>(b) / mR);
    std::sort(br.begin(), br.end());
    std::vector<double> cuts;
    for (double x : br)
      if (cuts.empty() || x - cuts.back() > 1e-12) cuts.push_back(x);
    cuts.back() = 1;
    auto sub = [](const Run& r, double t0, double t1, P* out) {
      const int m = r.pieces();
      const double mid = 0.5 * (t0 + t1) * m;
      const int q = std::min(static_cast<int>(mid), m - 1);
      subCurve(&r.pts[3 * q], std::clamp(t0 * m - q, 0.0, 1.0), std::clamp(t1 * m - q, 0.0, 1.0), out);
    };
    Run out;
    for (size_t c = 0; c + 1 < cuts.size(); ++c) {
      const double t0 = cuts[c], t1 = cuts[c + 1];
      P ls[4], rs[4];
      sub(L, t0, t1, ls);
      sub(R, t0, t1, rs);
      const P l0 = (1 - t0) * A + t0 * Cc, l1 = (1 - t1) * A + t1 * Cc;
      const P lin[4] = {l0, lerp(l0, l1, 1.0 / 3.0), lerp(l0, l1, 2.0 / 3.0), l1};
      for (int q = (c == 0 ? 0 : 1); q < 4; ++q) out.pts.push_back((1 - f) * ls[q] + f * rs[q] + lin[q]);
    }
    out.joints.assign(static_cast<size_t>(out.pieces() - 1), Joint{});
    out.pts.front() = start;
    out.pts.back() = end;
    return out;
  }

  int insertLineU(double uu) {
    if (!(uu > 0 && uu < I)) return -1;
    const int k = static_cast<int>(std::floor(uu));
    const double f = uu - k;
    if (f < 1e-9 || f > 1 - 1e-9) return -1;
    const double unew = u[k] + f * (u[k + 1] - u[k]);
    std::vector<AIColor> cols(J + 1);
    std::vector<double> ops(J + 1);
    for (int j = 0; j <= J; ++j) {
      const int cj = std::min(j, J - 1);
      const double t = j == J ? 1.0 : 0.0;
      cols[j] = colorAt(k, cj, f, t);
      ops[j] = opacityAt(k, cj, f, t);
    }
    std::vector<SplitInfo> splits(J + 1);
    for (int j = 0; j <= J; ++j)
      splits[j] = splitRun(runAt(0, k, j), f, nodeAt(k, j).selected, nodeAt(k + 1, j).selected);
    std::vector<Run> iso(J);
    for (int j = 0; j < J; ++j) iso[j] = isoCurve(k, j, f, splits[j].point, splits[j + 1].point);

    const int nI = I + 1;
    std::vector<Node> nn(static_cast<size_t>((nI + 1) * (J + 1)));
    std::vector<Run> nrI(static_cast<size_t>(nI * (J + 1))), nrJ(static_cast<size_t>((nI + 1) * J));
    for (int j = 0; j <= J; ++j) {
      for (int i = 0; i <= nI; ++i) {
        Node& d = nn[i + j * (nI + 1)];
        if (i <= k) {
          d = nodeAt(i, j);
        } else if (i > k + 1) {
          d = nodeAt(i - 1, j);
        } else {
          SplitInfo& s = splits[j];
          d.id = s.reuse != kNoVertex ? s.reuse : newId(Loc{});
          d.p = s.point;
          d.color = cols[j];
          if (d.color.kind == kNoneColor && nodes[0].color.kind != kNoneColor) d.color = white();
          d.opacity = ops[j];
          d.selected = s.selected;
          d.smooth[kDirIBack] = s.smooth[0];
          d.smooth[kDirIFwd] = s.smooth[1];
        }
      }
      for (int i = 0; i < nI; ++i) {
        Run& d = nrI[i + j * nI];
        if (i < k)
          d = std::move(runAt(0, i, j));
        else if (i == k)
          d = std::move(splits[j].left);
        else if (i == k + 1)
          d = std::move(splits[j].right);
        else
          d = std::move(runAt(0, i - 1, j));
      }
    }
    for (int j = 0; j < J; ++j)
      for (int i = 0; i <= nI; ++i) {
        Run& d = nrJ[i + j * (nI + 1)];
        if (i <= k)
          d = std::move(runAt(1, i, j));
        else if (i == k + 1)
          d = std::move(iso[j]);
        else
          d = std::move(runAt(1, i - 1, j));
      }
    nodes = std::move(nn);
    runsI = std::move(nrI);
    runsJ = std::move(nrJ);
    I = nI;
    u.insert(u.begin() + k + 1, unew);
    for (int j = 1; j < J; ++j) {
      Node& n = nodeAt(k + 1, j);
      const bool sm = collinear(runAt(1, k + 1, j - 1).pts.end()[-2], n.p, runAt(1, k + 1, j).pts[1]);
      n.smooth[kDirJBack] = n.smooth[kDirJFwd] = sm;
    }
    rebuildLocs();
    dirty = true;
    return k + 1;
  }

  void deleteLineU(int k) {
    const int nI = I - 1;
    std::vector<Node> nn(static_cast<size_t>((nI + 1) * (J + 1)));
    std::vector<Run> nrI(static_cast<size_t>(nI * (J + 1))), nrJ(static_cast<size_t>((nI + 1) * J));
    for (int j = 0; j <= J; ++j) {
      for (int i = 0; i <= nI; ++i) nn[i + j * (nI + 1)] = nodeAt(i < k ? i : i + 1, j);
      for (int i = 0; i < nI; ++i) {
        Run& d = nrI[i + j * nI];
        if (i < k - 1) {
          d = std::move(runAt(0, i, j));
        } else if (i == k - 1) {
          Run& l = runAt(0, k - 1, j);
          Run& r = runAt(0, k, j);
          const Node& gone = nodeAt(k, j);
          d.pts = std::move(l.pts);
          d.pts.insert(d.pts.end(), r.pts.begin() + 1, r.pts.end());
          d.joints = std::move(l.joints);
          Joint jt;
          jt.id = gone.id;
          jt.selected = gone.selected;
          jt.smooth[0] = gone.smooth[kDirIBack];
          jt.smooth[1] = gone.smooth[kDirIFwd];
          d.joints.push_back(jt);
          d.joints.insert(d.joints.end(), r.joints.begin(), r.joints.end());
        } else {
          d = std::move(runAt(0, i + 1, j));
        }
      }
    }
    for (int j = 0; j < J; ++j)
      for (int i = 0; i <= nI; ++i) nrJ[i + j * (nI + 1)] = std::move(runAt(1, i < k ? i : i + 1, j));
    nodes = std::move(nn);
    runsI = std::move(nrI);
    runsJ = std::move(nrJ);
    I = nI;
    u.erase(u.begin() + k);
    rebuildLocs();
    dirty = true;
  }
};

// ---------------------------------------------------------------------------

GradientMesh::GradientMesh() : impl_(std::make_unique<Impl>()), life_(std::make_shared<int>(0)) {
  impl_->init(1, 1);
}
GradientMesh::~GradientMesh() = default;
GradientMesh::GradientMesh(const GradientMesh& o)
    : impl_(std::make_unique<Impl>(*o.impl_)), life_(std::make_shared<int>(0)) {}
GradientMesh& GradientMesh::operator=(const GradientMesh& o) {
  if (this != &o) {
    *impl_ = *o.impl_;
    life_ = std::make_shared<int>(0);
  }
  return *this;
}

void GradientMesh::initCartesian(int i, int j) { impl_->init(std::max(i, 1), std::max(j, 1)); }
int GradientMesh::sizeI() const { return impl_->I; }
int GradientMesh::sizeJ() const { return impl_->J; }
std::weak_ptr<const void> GradientMesh::lifeToken() const { return std::static_pointer_cast<const void>(life_); }

// ---- vertices --------------------------------------------------------------

size_t GradientMesh::nodeCount() const { return impl_->nodes.size(); }
size_t GradientMesh::vertexCount() const {
  size_t n = impl_->nodes.size();
  for (const auto* set : {&impl_->runsI, &impl_->runsJ})
    for (const Run& r : *set)
      for (const Joint& j : r.joints) n += j.id != kNoVertex;
  return n;
}
VertexId GradientMesh::node(int i, int j) const {
  if (i < 0 || j < 0 || i > impl_->I || j > impl_->J) return kNoVertex;
  return impl_->nodeAt(i, j).id;
}
bool GradientMesh::alive(VertexId v) const { return impl_->loc(v) != nullptr; }
bool GradientMesh::isNode(VertexId v) const {
  const Loc* l = impl_->loc(v);
  return l && l->kind == kNodeLoc;
}
bool GradientMesh::nodeIndex(VertexId v, int* i, int* j) const {
  const Loc* l = impl_->loc(v);
  if (!l) return false;
  *i = l->i, *j = l->j;
  return true;
}
int GradientMesh::vertexAxis(VertexId v) const {
  const Loc* l = impl_->loc(v);
  return l && l->kind == kInnerLoc ? l->axis : -1;
}

VertexId GradientMesh::firstVertex() const { return impl_->nodeAt(0, 0).id; }

VertexId GradientMesh::nextVertex(VertexId v) const {
  const Impl& m = *impl_;
  const Loc* l = m.loc(v);
  if (!l) return kNoVertex;
  const int i = l->i, j = l->j;
  VertexId n = kNoVertex;
  if (l->kind == kNodeLoc) {
    if (i < m.I) n = Impl::firstInner(m.runAt(0, i, j), 0);
    if (n == kNoVertex && j < m.J) n = Impl::firstInner(m.runAt(1, i, j), 0);
  } else {
    n = Impl::firstInner(m.runAt(l->axis, i, j), l->a);
    if (n == kNoVertex && l->axis == 0 && j < m.J) n = Impl::firstInner(m.runAt(1, i, j), 0);
  }
  if (n != kNoVertex) return n;
  if (i < m.I) return m.nodeAt(i + 1, j).id;
  if (j < m.J) return m.nodeAt(0, j + 1).id;
  return kNoVertex;
}

VertexId GradientMesh::neighbour(VertexId v, int dir) const { return segmentEnd(SegmentRef{v, dir}); }

bool GradientMesh::hasSegment(VertexId v, int dir) const {
  const Loc* l = impl_->loc(v);
  if (!l || dir < 0 || dir > 3) return false;
  if (l->kind == kInnerLoc) return dirAxis(dir) == l->axis;
  switch (dir) {
    case kDirIBack: return l->i > 0;
    case kDirJBack: return l->j > 0;
    case kDirIFwd: return l->i < impl_->I;
    default: return l->j < impl_->J;
  }
}
int GradientMesh::segmentCount(VertexId v) const {
  int n = 0;
  for (int d = 0; d < 4; ++d) n += hasSegment(v, d);
  return n;
}
int GradientMesh::segmentIndex(VertexId v, int dir) const {
  if (!hasSegment(v, dir)) return -1;
  int n = 0;
  for (int d = 0; d < dir; ++d) n += hasSegment(v, d);
  return n;
}
int GradientMesh::segmentDir(VertexId v, int index) const {
  if (index < 0) return -1;
  for (int d = 0; d < 4; ++d)
    if (hasSegment(v, d) && index-- == 0) return d;
  return -1;
}

AIRealPoint GradientMesh::point(VertexId v) const {
  const Loc* l = impl_->loc(v);
  if (!l) return {0, 0};
  if (l->kind == kNodeLoc) return impl_->nodeAt(l->i, l->j).p;
  return impl_->runAt(l->axis, l->i, l->j).pts[3 * l->a];
}
void GradientMesh::setPoint(VertexId v, AIRealPoint p) {
  const Loc* l = impl_->loc(v);
  if (!l) return;
  if (l->kind == kNodeLoc)
    impl_->setNodePoint(l->i, l->j, p);
  else
    impl_->runAt(l->axis, l->i, l->j).pts[3 * l->a] = p;
}

AIRealPoint GradientMesh::tangent(VertexId v, int dir) const {
  Impl::Span sp;
  if (!impl_->span(SegmentRef{v, dir}, &sp)) return point(v);
  const Run& r = impl_->runAt(sp.axis, sp.i, sp.j);
  return sp.fwd ? r.pts[3 * sp.a0 + 1] : r.pts[3 * sp.a1 - 1];
}
void GradientMesh::setTangent(VertexId v, int dir, AIRealPoint h) {
  Impl::Span sp;
  if (!impl_->span(SegmentRef{v, dir}, &sp)) return;
  Run& r = impl_->runAt(sp.axis, sp.i, sp.j);
  (sp.fwd ? r.pts[3 * sp.a0 + 1] : r.pts[3 * sp.a1 - 1]) = h;
}

bool GradientMesh::smooth(VertexId v, int dir) const {
  const Loc* l = impl_->loc(v);
  if (!l || dir < 0 || dir > 3) return false;
  if (l->kind == kNodeLoc) return impl_->nodeAt(l->i, l->j).smooth[dir];
  if (dirAxis(dir) != l->axis) return false;
  return impl_->runAt(l->axis, l->i, l->j).joints[l->a - 1].smooth[dirForward(dir) ? 1 : 0];
}
void GradientMesh::setSmooth(VertexId v, int dir, bool on) {
  const Loc* l = impl_->loc(v);
  if (!l || dir < 0 || dir > 3) return;
  if (l->kind == kNodeLoc) {
    impl_->nodeAt(l->i, l->j).smooth[dir] = on;
  } else if (dirAxis(dir) == l->axis) {
    impl_->runAt(l->axis, l->i, l->j).joints[l->a - 1].smooth[dirForward(dir) ? 1 : 0] = on;
  }
}

AIColor GradientMesh::color(VertexId v) const {
  const Loc* l = impl_->loc(v);
  if (!l) return AIColor{};
  if (l->kind == kNodeLoc) return impl_->nodeAt(l->i, l->j).color;
  const AIRealPoint q = uv(v);
  return evalColor(q.h, q.v);
}
double GradientMesh::opacity(VertexId v) const {
  const Loc* l = impl_->loc(v);
  if (!l) return 0;
  if (l->kind == kNodeLoc) return impl_->nodeAt(l->i, l->j).opacity;
  const AIRealPoint q = uv(v);
  return evalOpacity(q.h, q.v);
}
bool GradientMesh::setColor(VertexId v, const AIColor& c) {
  const Loc* l = impl_->loc(v);
  if (!l || l->kind != kNodeLoc) return false;
  impl_->nodeAt(l->i, l->j).color = c;
  impl_->dirty = true;
  return true;
}
bool GradientMesh::setOpacity(VertexId v, double o) {
  const Loc* l = impl_->loc(v);
  if (!l || l->kind != kNodeLoc) return false;
  impl_->nodeAt(l->i, l->j).opacity = o;
  impl_->dirty = true;
  return true;
}
AIRealPoint GradientMesh::uv(VertexId v) const {
  const Impl& m = *impl_;
  const Loc* l = m.loc(v);
  if (!l) return {0, 0};
  if (l->kind == kNodeLoc) return {m.u[l->i], m.v[l->j]};
  const double s = static_cast<double>(l->a) / m.runAt(l->axis, l->i, l->j).pieces();
  if (l->axis == 0) return {m.u[l->i] + s * (m.u[l->i + 1] - m.u[l->i]), m.v[l->j]};
  return {m.u[l->i], m.v[l->j] + s * (m.v[l->j + 1] - m.v[l->j])};
}

// ---- selection -------------------------------------------------------------

bool GradientMesh::selected(VertexId v) const {
  const Loc* l = impl_->loc(v);
  if (!l) return false;
  if (l->kind == kNodeLoc) return impl_->nodeAt(l->i, l->j).selected;
  return impl_->runAt(l->axis, l->i, l->j).joints[l->a - 1].selected;
}
void GradientMesh::setSelected(VertexId v, bool on) {
  const Loc* l = impl_->loc(v);
  if (!l) return;
  if (l->kind == kNodeLoc)
    impl_->nodeAt(l->i, l->j).selected = on;
  else
    impl_->runAt(l->axis, l->i, l->j).joints[l->a - 1].selected = on;
}

namespace {
template <class F>
void forEachSelFlag(std::vector<Node>& nodes, std::vector<Run>& a, std::vector<Run>& b, F f) {
  for (Node& n : nodes) f(n.selected);
  for (auto* set : {&a, &b})
    for (Run& r : *set)
      for (Joint& j : r.joints)
        if (j.id != kNoVertex) f(j.selected);
}
}  // namespace

void GradientMesh::selectAll() {
  forEachSelFlag(impl_->nodes, impl_->runsI, impl_->runsJ, [](bool& s) { s = true; });
}
void GradientMesh::clearSelection() {
  forEachSelFlag(impl_->nodes, impl_->runsI, impl_->runsJ, [](bool& s) { s = false; });
}
size_t GradientMesh::selectedCount() const {
  size_t n = 0;
  forEachSelFlag(impl_->nodes, impl_->runsI, impl_->runsJ, [&](bool& s) { n += s; });
  return n;
}
bool GradientMesh::isSelectionEmpty() const { return selectedCount() == 0; }
bool GradientMesh::isSelectionFull() const { return selectedCount() == vertexCount(); }
std::vector<VertexId> GradientMesh::vertices() const {
  std::vector<VertexId> out;
  for (VertexId v = firstVertex(); v != kNoVertex; v = nextVertex(v)) out.push_back(v);
  return out;
}

// ---- segments --------------------------------------------------------------

bool GradientMesh::segmentValid(SegmentRef s) const {
  Impl::Span sp;
  return impl_->span(s, &sp);
}

SegmentRef GradientMesh::firstSegment() const { return SegmentRef{impl_->nodeAt(0, 0).id, kDirIFwd}; }

SegmentRef GradientMesh::nextSegment(SegmentRef s) const {
  const Impl& m = *impl_;
  Impl::Span sp;
  if (!m.span(s, &sp)) return SegmentRef{};
  const Run& r = m.runAt(sp.axis, sp.i, sp.j);
  if (sp.a1 < r.pieces()) return SegmentRef{r.joints[sp.a1 - 1].id, meshDir(sp.axis, kAIMeshForward)};
  int axis = sp.axis, i = sp.i, j = sp.j;
  if (axis == 0) {
    if (i + 1 < m.I) {
      ++i;
    } else if (j + 1 <= m.J) {
      i = 0, ++j;
    } else {
      axis = 1, i = 0, j = 0;
    }
  } else {
    if (j + 1 < m.J) {
      ++j;
    } else if (i + 1 <= m.I) {
      ++i, j = 0;
    } else {
      return SegmentRef{};
    }
  }
  return SegmentRef{m.nodeAt(i, j).id, meshDir(axis, kAIMeshForward)};
}

SegmentRef GradientMesh::nextOnAxis(SegmentRef s) const {
  const VertexId e = segmentEnd(s);
  if (e == kNoVertex) return SegmentRef{};
  SegmentRef n{e, s.dir};
  return segmentValid(n) ? n : SegmentRef{};
}
SegmentRef GradientMesh::prevOnAxis(SegmentRef s) const {
  if (!segmentValid(s)) return SegmentRef{};
  const VertexId b = segmentEnd(SegmentRef{s.start, dirOpposite(s.dir)});
  if (b == kNoVertex) return SegmentRef{};
  return SegmentRef{b, s.dir};
}
SegmentRef GradientMesh::reversed(SegmentRef s) const {
  const VertexId e = segmentEnd(s);
  if (e == kNoVertex) return SegmentRef{};
  return SegmentRef{e, dirOpposite(s.dir)};
}
VertexId GradientMesh::segmentEnd(SegmentRef s) const {
  Impl::Span sp;
  if (!impl_->span(s, &sp)) return kNoVertex;
  return impl_->anchorId(sp.axis, sp.i, sp.j, sp.fwd ? sp.a1 : sp.a0);
}
int GradientMesh::knotCount(SegmentRef s) const {
  Impl::Span sp;
  if (!impl_->span(s, &sp)) return -1;
  return sp.a1 - sp.a0 - 1;
}
std::vector<AIRealPoint> GradientMesh::segmentPoints(SegmentRef s) const {
  Impl::Span sp;
  if (!impl_->span(s, &sp)) return {};
  const Run& r = impl_->runAt(sp.axis, sp.i, sp.j);
  std::vector<AIRealPoint> out(r.pts.begin() + 3 * sp.a0, r.pts.begin() + 3 * sp.a1 + 1);
  if (!sp.fwd) std::reverse(out.begin(), out.end());
  return out;
}
bool GradientMesh::setSegmentPoints(SegmentRef s, int start, int count, const AIRealPoint* pts) {
  Impl::Span sp;
  if (!impl_->span(s, &sp)) return false;
  const int n = 3 * (sp.a1 - sp.a0) + 1;
  if (start < 0 || count < 0 || start + count > n) return false;
  for (int k = 0; k < count; ++k) {
    const int p = start + k;
    const int idx = sp.fwd ? 3 * sp.a0 + p : 3 * sp.a1 - p;
    impl_->setRunPoint(sp.axis, sp.i, sp.j, idx, pts[k]);
  }
  return true;
}

bool GradientMesh::insertKnots(SegmentRef s, int m, int n) {
  Impl::Span sp;
  if (!impl_->span(s, &sp)) return false;
  const int K = sp.a1 - sp.a0 - 1;
  if (m < 0 || m > K || n < 0) return false;
  if (n == 0) return true;
  Run& r = impl_->runAt(sp.axis, sp.i, sp.j);
  const int piece = sp.fwd ? sp.a0 + m : sp.a0 + (K - m);
  std::vector<AIRealPoint> chain;
  P rest[4];
  std::copy(&r.pts[3 * piece], &r.pts[3 * piece] + 4, rest);
  chain.push_back(rest[0]);
  for (int c = n + 1; c > 1; --c) {
    P L[4], R[4];
    bez::split(rest, 1.0 / c, L, R);
    chain.insert(chain.end(), L + 1, L + 4);
    std::copy(R, R + 4, rest);
  }
  chain.insert(chain.end(), rest + 1, rest + 4);
  chain.back() = r.pts[3 * piece + 3];
  r.pts.erase(r.pts.begin() + 3 * piece, r.pts.begin() + 3 * piece + 4);
  r.pts.insert(r.pts.begin() + 3 * piece, chain.begin(), chain.end());
  r.joints.insert(r.joints.begin() + piece, static_cast<size_t>(n), Joint{});
  impl_->reindexRun(sp.axis, sp.i, sp.j);
  return true;
}

bool GradientMesh::deleteKnots(SegmentRef s, int m, int n) {
  Impl::Span sp;
  if (!impl_->span(s, &sp)) return false;
  const int K = sp.a1 - sp.a0 - 1;
  if (m < 0 || n < 0 || m + n > K) return false;
  if (n == 0) return true;
  Run& r = impl_->runAt(sp.axis, sp.i, sp.j);
  const int b = sp.fwd ? sp.a0 + 1 + m : sp.a1 - m - n;  // first removed anchor
  // Keep up to the out handle of anchor b-1 and from the in handle of anchor b+n.
  r.pts.erase(r.pts.begin() + 3 * (b - 1) + 2, r.pts.begin() + 3 * (b + n) - 1);
  r.joints.erase(r.joints.begin() + (b - 1), r.joints.begin() + (b - 1 + n));
  impl_->reindexRun(sp.axis, sp.i, sp.j);
  return true;
}

VertexId GradientMesh::split(SegmentRef s, int k) {
  Impl::Span sp;
  if (!impl_->span(s, &sp)) return kNoVertex;
  const int K = sp.a1 - sp.a0 - 1;
  if (k < 0 || k >= K) return kNoVertex;
  const int a = sp.fwd ? sp.a0 + 1 + k : sp.a1 - 1 - k;
  Run& r = impl_->runAt(sp.axis, sp.i, sp.j);
  Joint& jt = r.joints[a - 1];
  jt.id = impl_->newId(Loc{kInnerLoc, static_cast<int8_t>(sp.axis), sp.i, sp.j, a});
  // The new vertex joins the selection when the segment it cuts was selected.
  jt.selected = selected(impl_->anchorId(sp.axis, sp.i, sp.j, sp.a0)) &&
                selected(impl_->anchorId(sp.axis, sp.i, sp.j, sp.a1));
  jt.smooth[0] = jt.smooth[1] = collinear(r.pts[3 * a - 1], r.pts[3 * a], r.pts[3 * a + 1]);
  return jt.id;
}

int GradientMesh::join(SegmentRef s) {
  Impl::Span sp;
  if (!impl_->span(s, &sp)) return -1;
  Run& r = impl_->runAt(sp.axis, sp.i, sp.j);
  const int a = sp.fwd ? sp.a1 : sp.a0;
  if (a == 0 || a == r.pieces()) return -1;
  Joint& jt = r.joints[a - 1];
  impl_->locs[jt.id].kind = kDead;
  jt = Joint{};
  return sp.a1 - sp.a0 - 1;
}

AIRealPoint GradientMesh::control(SegmentRef s) const {
  const auto pts = segmentPoints(s);
  return pts.size() > 1 ? pts[1] : AIRealPoint{0, 0};
}

bool GradientMesh::reshape(SegmentRef s, double t, AIRealPoint p) {
  Impl::Span sp;
  if (!impl_->span(s, &sp) || !(t > 0 && t < 1)) return false;
  Run& r = impl_->runAt(sp.axis, sp.i, sp.j);
  const int pieces = sp.a1 - sp.a0;
  const double x = (sp.fwd ? t : 1 - t) * pieces;
  const int q = std::min(static_cast<int>(x), pieces - 1);
  const double tau = x - q;
  int anchor = -1;
  if (tau < 1e-9) anchor = sp.a0 + q;
  if (tau > 1 - 1e-9) anchor = sp.a0 + q + 1;
  if (anchor > sp.a0 && anchor < sp.a1) {
    const P d = p - r.pts[3 * anchor];
    for (int k = -1; k <= 1; ++k) r.pts[3 * anchor + k] = r.pts[3 * anchor + k] + d;
    return true;
  }
  if (anchor >= 0) return false;
  const int pr = sp.a0 + q;
  const P d = p - cubicAt(&r.pts[3 * pr], tau);
  const P delta = (1.0 / (3 * tau * (1 - tau))) * d;
  r.pts[3 * pr + 1] = r.pts[3 * pr + 1] + delta;
  r.pts[3 * pr + 2] = r.pts[3 * pr + 2] + delta;
  return true;
}

// ---- grid ------------------------------------------------------------------

double GradientMesh::relativeU(int i) const { return i >= 0 && i <= impl_->I ? impl_->u[i] : 0; }
double GradientMesh::relativeV(int j) const { return j >= 0 && j <= impl_->J ? impl_->v[j] : 0; }
const std::vector<double>& GradientMesh::relativeUs() const { return impl_->u; }
const std::vector<double>& GradientMesh::relativeVs() const { return impl_->v; }

int GradientMesh::insertU(double u) { return impl_->insertLineU(u); }
int GradientMesh::insertV(double v) {
  if (!(v > 0 && v < impl_->J)) return -1;
  impl_->transpose();
  const int r = impl_->insertLineU(v);
  impl_->transpose();
  return r;
}

bool GradientMesh::deleteGridLines(double u, double v) {
  auto interior = [](double x, int n, int* k) {
    if (!std::isfinite(x)) return false;
    const double r = std::round(x);
    if (std::abs(x - r) > 1e-9 || r <= 0 || r >= n) return false;
    *k = static_cast<int>(r);
    return true;
  };
  int ku = 0, kv = 0;
  const bool du = interior(u, impl_->I, &ku), dv = interior(v, impl_->J, &kv);
  if (du) impl_->deleteLineU(ku);
  if (dv) {
    impl_->transpose();
    impl_->deleteLineU(kv);
    impl_->transpose();
  }
  return du || dv;
}

// ---- evaluation ------------------------------------------------------------

AIRealPoint GradientMesh::evalPoint(double u, double v) const {
  int i, j;
  double s, t;
  Impl::locate(impl_->u, u, &i, &s);
  Impl::locate(impl_->v, v, &j, &t);
  return patchPoint(i, j, s, t);
}
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
AIColor GradientMesh::patchColor(int i, int j, double s, double t) const {
  impl_->clampCell(&i, &j, &s, &t);
  return impl_->colorAt(i, j, s, t);
}
double GradientMesh::patchOpacity(int i, int j, double s, double t) const {
  impl_->clampCell(&i, &j, &s, &t);
  return impl_->opacityAt(i, j, s, t);
}

bool GradientMesh::invertPoint(AIRealPoint p, AIRealPoint* uvOut) const {
  const Impl& m = *impl_;
  double bestD = std::numeric_limits<double>::infinity();
  int bi = 0, bj = 0;
  double bs = 0, bt = 0;
  constexpr int kSamples = 6;
  const AIRealRect all = bounds();
  const double scale = std::max({1e-12, all.right - all.left, all.top - all.bottom});
  for (int j = 0; j < m.J; ++j)
    for (int i = 0; i < m.I; ++i) {
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
      double ls = 0, lt = 0, ld = std::numeric_limits<double>::infinity();
      for (int b = 0; b <= kSamples; ++b)
        for (int a = 0; a <= kSamples; ++a) {
          const double s = static_cast<double>(a) / kSamples, t = static_cast<double>(b) / kSamples;
          const double d = dist(patchPoint(i, j, s, t), p);
          if (d < ld) ld = d, ls = s, lt = t;
        }
      // Newton from the best sample.
      double s = ls, t = lt;
      for (int it = 0; it < 40; ++it) {
        P q, qs, qt;
        m.patchEval(i, j, s, t, &q, &qs, &qt);
        const P e = q - p;
        const double det = qs.h * qt.v - qs.v * qt.h;
        if (std::abs(det) < 1e-300) break;
        double ds = (e.h * qt.v - e.v * qt.h) / det;
        double dt = (qs.h * e.v - qs.v * e.h) / det;
        // Projected step: a coordinate that would leave the patch stays on
        // its border and the other one is solved for alone.
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
        s = std::clamp(s - ds, 0.0, 1.0);
        t = std::clamp(t - dt, 0.0, 1.0);
        if (std::abs(ds) + std::abs(dt) < 1e-14) break;
      }
      const double cs = std::clamp(s, 0.0, 1.0), ct = std::clamp(t, 0.0, 1.0);
      const double d = dist(patchPoint(i, j, cs, ct), p);
      if (d < bestD) bestD = d, bi = i, bj = j, bs = cs, bt = ct;
      if (d <= 1e-9 * scale) {
        bestD = d;
        goto done;
      }
    }
done:
  if (!std::isfinite(bestD)) {
    *uvOut = {0, 0};
    return false;
  }
  uvOut->h = m.u[bi] + bs * (m.u[bi + 1] - m.u[bi]);
  uvOut->v = m.v[bj] + bt * (m.v[bj + 1] - m.v[bj]);
  return bestD <= 1e-7 * scale;
}

// ---- whole mesh ------------------------------------------------------------

AIRealRect GradientMesh::bounds() const {
  const P p0 = impl_->nodes[0].p;
  AIRealRect r{p0.h, p0.v, p0.h, p0.v};
  for (const auto* set : {&impl_->runsI, &impl_->runsJ})
    for (const Run& run : *set)
      for (int q = 0; q < run.pieces(); ++q) addBounds(&run.pts[3 * q], r);
  return r;
}

void GradientMesh::transform(const AIRealMatrix& mx) {
  auto tf = [&](P& p) {
    const P q = p;
    p.h = mx.a * q.h + mx.c * q.v + mx.tx;
    p.v = mx.b * q.h + mx.d * q.v + mx.ty;
  };
  for (Node& n : impl_->nodes) tf(n.p);
  for (auto* set : {&impl_->runsI, &impl_->runsJ})
    for (Run& run : *set)
      for (P& p : run.pts) tf(p);
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

// ---- raw access ------------------------------------------------------------

MeshNodeData GradientMesh::nodeData(int i, int j) const {
  const Node& n = impl_->nodeAt(i, j);
  MeshNodeData d;
  d.p = n.p;
  d.color = n.color;
  d.opacity = n.opacity;
  d.selected = n.selected;
  std::copy(n.smooth, n.smooth + 4, d.smooth);
  return d;
}
void GradientMesh::setNodeData(int i, int j, const MeshNodeData& d) {
  impl_->setNodePoint(i, j, d.p);
  Node& n = impl_->nodeAt(i, j);
  n.color = d.color;
  n.opacity = d.opacity;
  n.selected = d.selected;
  std::copy(d.smooth, d.smooth + 4, n.smooth);
  impl_->dirty = true;
}
MeshRunData GradientMesh::runData(int axis, int i, int j) const {
  MeshRunData d;
  if (!impl_->runExists(axis, i, j)) return d;
  const Run& r = impl_->runAt(axis, i, j);
  d.points = r.pts;
  for (const Joint& jt : r.joints) {
    MeshRunData::Inner in;
    in.vertex = jt.id != kNoVertex;
    in.selected = in.vertex && jt.selected;
    in.smooth[0] = in.vertex && jt.smooth[0];
    in.smooth[1] = in.vertex && jt.smooth[1];
    d.inner.push_back(in);
  }
  return d;
}
bool GradientMesh::setRunData(int axis, int i, int j, const MeshRunData& d) {
  if (!impl_->runExists(axis, i, j)) return false;
  if (d.points.size() < 4 || (d.points.size() - 1) % 3 != 0 || d.inner.size() != (d.points.size() - 1) / 3 - 1)
    return false;
  Run& r = impl_->runAt(axis, i, j);
  for (const Joint& jt : r.joints)
    if (jt.id != kNoVertex) impl_->locs[jt.id].kind = kDead;
  r.pts = d.points;
  int ei, ej;
  impl_->runEndNode(axis, i, j, &ei, &ej);
  r.pts.front() = impl_->nodeAt(i, j).p;
  r.pts.back() = impl_->nodeAt(ei, ej).p;
  r.joints.assign(d.inner.size(), Joint{});
  for (size_t k = 0; k < d.inner.size(); ++k) {
    if (!d.inner[k].vertex) continue;
    Joint& jt = r.joints[k];
    jt.id = impl_->newId(Loc{});
    jt.selected = d.inner[k].selected;
    jt.smooth[0] = d.inner[k].smooth[0];
    jt.smooth[1] = d.inner[k].smooth[1];
  }
  impl_->reindexRun(axis, i, j);
  return true;
}
const std::vector<AIRealPoint>& GradientMesh::runPoints(int axis, int i, int j) const {
  return impl_->runAt(axis, i, j).pts;
}
bool GradientMesh::setRelative(const std::vector<double>& u, const std::vector<double>& v) {
  auto ok = [](const std::vector<double>& g, int n) {
    if (static_cast<int>(g.size()) != n + 1 || g.front() != 0 || g.back() != 1) return false;
    for (int k = 0; k < n; ++k)
      if (!(g[k] < g[k + 1])) return false;
    return true;
  };
  if (!ok(u, impl_->I) || !ok(v, impl_->J)) return false;
  impl_->u = u;
  impl_->v = v;
  impl_->dirty = true;
  return true;
}

// ---- colours ---------------------------------------------------------------

void colorToRGB(const AIColor& c, double* r, double* g, double* b) {
  switch (c.kind) {
    case kGrayColor: *r = *g = *b = 1 - c.c.g.gray; break;
    case kThreeColor: *r = c.c.rgb.red, *g = c.c.rgb.green, *b = c.c.rgb.blue; break;
    case kFourColor:
      *r = (1 - c.c.f.cyan) * (1 - c.c.f.black);
      *g = (1 - c.c.f.magenta) * (1 - c.c.f.black);
      *b = (1 - c.c.f.yellow) * (1 - c.c.f.black);
      break;
    default: *r = *g = *b = 1; break;
  }
}

AIColor convertColor(const AIColor& c, AIColorTag kind) {
  if (c.kind == kind) return c;
  AIColor out{};
  out.kind = kind;
  if (kind == kNoneColor) return out;
  double r, g, b;
  colorToRGB(c, &r, &g, &b);
  switch (kind) {
    case kGrayColor: out.c.g.gray = std::clamp(1 - (0.3 * r + 0.59 * g + 0.11 * b), 0.0, 1.0); break;
    case kThreeColor: out.c.rgb = {r, g, b}; break;
    case kFourColor: {
      const double k = 1 - std::max({r, g, b});
      if (k >= 1) {
        out.c.f = {0, 0, 0, 1};
      } else {
        out.c.f = {(1 - r - k) / (1 - k), (1 - g - k) / (1 - k), (1 - b - k) / (1 - k), k};
      }
      break;
    }
    default: break;
  }
  return out;
}

}  // namespace lb::host
