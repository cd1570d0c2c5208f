// Grid-line insertion and deletion, fresh grids and slot compaction.
//
// An insertion splits the runs that cross the new line exactly (de
// Casteljau) and builds the new line's runs as the iso-curves of the Coons
// patches it cuts; the new nodes take the surface's colour and opacity. Both
// operations touch only the cells of one line and the runs crossing it, so
// each costs O(I + J) whatever the size of the mesh.
#include <algorithm>
#include <cmath>

#include "host/mesh/MeshImpl_p.h"

namespace lb::host {

using namespace bez;

namespace {

Run straightRun(P a, P b) {
  Run r;
  r.pts = {a, lerp(a, b, 1.0 / 3.0), lerp(a, b, 2.0 / 3.0), b};
  return r;
}

// Splits a run at chain parameter f in place: the run keeps its left half
// and `right` receives the other. Where f falls on an interior anchor the
// anchor itself becomes the node (a vertex keeps its id). A new point cut
// inside a segment is selected when both ends of that segment are
// (startSel / endSel are the run's nodes).
void splitRun(Run& r, double f, bool startSel, bool endSel, Run& right, SplitPoint& out) {
  using Impl = GradientMesh::Impl;
  const int m = r.pieces();
  out = SplitPoint{};
  if (m == 1) {
    // One piece (every run of a freshly built grid): the general steps
    // below, without the anchor bookkeeping a single piece cannot need.
    P L[4], R[4];
    bez::split(r.pts.data(), std::clamp(f, 1e-12, 1 - 1e-12), L, R);
    out.point = L[3];
    out.selected = startSel && endSel;
    out.smooth[0] = out.smooth[1] = true;
    right.pts.assign(R, R + 4);
    right.joints.clear();
    std::copy(L, L + 4, r.pts.begin());
    return;
  }
  const double x = f * m;
  int q = std::min(static_cast<int>(x), m - 1);
  double t = x - q;
  int atAnchor = -1;
  if (t < 1e-9 && q > 0) atAnchor = q;
  if (t > 1 - 1e-9 && q + 1 < m) atAnchor = q + 1;
  if (atAnchor > 0) {
    const int a = atAnchor;
    const Joint jt = r.joints[a - 1];
    out.point = r.pts[3 * a];
    out.reuse = jt.id;
    if (jt.id != kNoVertex) {
      out.selected = jt.selected;
      out.smooth[0] = jt.smooth[0], out.smooth[1] = jt.smooth[1];
    } else {
      const bool sm = collinear(r.pts[3 * a - 1], r.pts[3 * a], r.pts[3 * a + 1]);
      out.smooth[0] = out.smooth[1] = sm;
      const int a0 = Impl::prevVertexAnchor(r, a), a1 = Impl::nextVertexAnchor(r, a);
      out.selected = (a0 == 0 ? startSel : r.joints[a0 - 1].selected) &&
                     (a1 == m ? endSel : r.joints[a1 - 1].selected);
    }
    right.pts.assign(r.pts.begin() + 3 * a, r.pts.end());
    right.joints.assign(r.joints.begin() + a, r.joints.end());
    r.pts.resize(static_cast<size_t>(3 * a + 1));
    r.joints.resize(static_cast<size_t>(a - 1));
    return;
  }
  t = std::clamp(t, 1e-12, 1 - 1e-12);
  P L[4], R[4];
  bez::split(&r.pts[3 * q], t, L, R);
  out.point = L[3];
  out.smooth[0] = out.smooth[1] = true;
  const int a0 = Impl::prevVertexAnchor(r, q + 1), a1 = Impl::nextVertexAnchor(r, q);
  const bool s0 = a0 == 0 ? startSel : r.joints[a0 - 1].selected;
  const bool s1 = a1 == m ? endSel : r.joints[a1 - 1].selected;
  out.selected = s0 && s1;
  right.pts.reserve(r.pts.size() - 3 * q);
  right.pts.assign(R, R + 4);
  right.pts.insert(right.pts.size(), r.pts.begin() + 3 * q + 4, r.pts.end());
  right.joints.assign(r.joints.begin() + q, r.joints.end());
  r.pts.resize(static_cast<size_t>(3 * q + 4));
  std::copy(L, L + 4, r.pts.begin() + 3 * q);
  r.joints.resize(static_cast<size_t>(q));
}

// Writes to `out` the iso-curve at fraction f of the patch between lines k
// and k + 1 of `axis`, from cross line b to b + 1, exactly: a chain with
// breakpoints wherever either side run has one. Writing S0, S1 for the side
// runs (on lines k and k + 1) and C0, C1 for the crossing runs (on cross
// lines b and b + 1), the Coons patch restricted to the line is
//   (1 - f) S0(t) + f S1(t) + (1 - t) A + t C,
//   A = C0(f) - (1 - f) C0(0) - f C0(1),  C = C1(f) - (1 - f) C1(0) - f C1(1),
// which is a cubic on every piece between the side runs' breakpoints.
//
// cf0 and cf1 are C0(f) and C1(f): each crossing run borders two patches,
// so the caller evaluates it once for both.
void isoCurve(const GradientMesh::Impl& m, int axis, int k, int b, double f, P cf0, P cf1, Run& out) {
  const int cross = 1 - axis;
  const Run& S0 = m.cellOnAxis(axis, k, b).run[cross];
  const Run& S1 = m.cellOnAxis(axis, k + 1, b).run[cross];
  const P a0 = m.cellOnAxis(axis, k, b).node.p, b0 = m.cellOnAxis(axis, k + 1, b).node.p;
  const P a1 = m.cellOnAxis(axis, k, b + 1).node.p, b1 = m.cellOnAxis(axis, k + 1, b + 1).node.p;
  const P A = cf0 - (1 - f) * a0 - f * b0;
  const P Cc = cf1 - (1 - f) * a1 - f * b1;
  const int m0 = S0.pieces(), m1 = S1.pieces();
  out.pts.clear();
  out.joints.clear();
  if (m0 == 1 && m1 == 1) {
    // Both sides one cubic (every run of a freshly built grid): the general
    // steps below over the one interval [0, 1], whose side pieces are the
    // side runs themselves.
    const P l0 = 1.0 * A + 0.0 * Cc, l1 = 0.0 * A + 1.0 * Cc;
    const P lin[4] = {l0, lerp(l0, l1, 1.0 / 3.0), lerp(l0, l1, 2.0 / 3.0), l1};
    P pts[4];
    for (int q = 0; q < 4; ++q) pts[q] = (1 - f) * S0.pts[q] + f * S1.pts[q] + lin[q];
    out.pts.assign(pts, pts + 4);
    return;
  }
  // Breakpoints of both side runs, merged in order, near-duplicates once.
  std::vector<double>& cuts = m.scratch.cuts;
  cuts.clear();
  if (m0 == m1) {
    // The same breakpoints on both sides (the usual case): no merge needed.
    for (int a = 0; a <= m0; ++a) cuts.push_back(static_cast<double>(a) / m0);
  } else {
    for (int a = 0, c = 0; a <= m0 || c <= m1;) {
      const double x0 = a <= m0 ? static_cast<double>(a) / m0 : 2.0;
      const double x1 = c <= m1 ? static_cast<double>(c) / m1 : 2.0;
      const double x = std::min(x0, x1);
      (x0 <= x1 ? a : c)++;
      if (cuts.empty() || x - cuts.back() > 1e-12) cuts.push_back(x);
    }
  }
  cuts.back() = 1;
  auto sub = [](const Run& r, double t0, double t1, P* out) {
    const int pieces = r.pieces();
    const double mid = 0.5 * (t0 + t1) * pieces;
    const int q = std::min(static_cast<int>(mid), pieces - 1);
    subCurve(&r.pts[3 * q], std::clamp(t0 * pieces - q, 0.0, 1.0), std::clamp(t1 * pieces - q, 0.0, 1.0), out);
  };
  out.pts.reserve(3 * (cuts.size() - 1) + 1);
  for (size_t c = 0; c + 1 < cuts.size(); ++c) {
    const double t0 = cuts[c], t1 = cuts[c + 1];
    P ls[4], rs[4];
    sub(S0, t0, t1, ls);
    sub(S1, t0, t1, rs);
    const P l0 = (1 - t0) * A + t0 * Cc, l1 = (1 - t1) * A + t1 * Cc;
    const P lin[4] = {l0, lerp(l0, l1, 1.0 / 3.0), lerp(l0, l1, 2.0 / 3.0), l1};
    for (int q = (c == 0 ? 0 : 1); q < 4; ++q) out.pts.push_back((1 - f) * ls[q] + f * rs[q] + lin[q]);
  }
  out.joints.assign(static_cast<size_t>(out.pieces() - 1), Joint{});
}

}  // namespace

void GradientMesh::Impl::reindexRun(int axis, int i, int j) { reindexRunAt(axis, col[i], row[j]); }
void GradientMesh::Impl::reindexRunAt(int axis, int32_t cs, int32_t rs) {
  restructured();
  const Run& r = cells[cs][rs].run[axis];
  for (size_t k = 0; k < r.joints.size(); ++k)
    if (r.joints[k].id != kNoVertex)
      locs[r.joints[k].id] = Loc::inner(axis, cs, rs, static_cast<int32_t>(k + 1));
}

void GradientMesh::Impl::killRun(const Run& r) {
  restructured();
  for (const Joint& jt : r.joints)
    if (jt.id != kNoVertex) locs[jt.id].kind = kDead;
}

void GradientMesh::Impl::init(int i, int j) {
  const Restructuring restructuring(*this);
  I = i, J = j;
  uniformPaint = true;
  noneSelected = true;
  allSelected = false;
  locs.clear();
  col.resize(I + 1), colPos.resize(I + 1), row.resize(J + 1), rowPos.resize(J + 1);
  for (int k = 0; k <= I; ++k) col[k] = colPos[k] = k;
  for (int k = 0; k <= J; ++k) row[k] = rowPos[k] = k;
  cells.assign(static_cast<size_t>(I + 1), CellColumn<Cell>(static_cast<size_t>(J + 1)));
  u.resize(I + 1), v.resize(J + 1);
  for (int k = 0; k <= I; ++k) u[k] = static_cast<double>(k) / I;
  for (int k = 0; k <= J; ++k) v[k] = static_cast<double>(k) / J;
  u[I] = 1, v[J] = 1;
  locs.reserve(static_cast<size_t>((I + 1) * (J + 1)));
  for (int b = 0; b <= J; ++b)
    for (int a = 0; a <= I; ++a) {
      Node& n = nodeAt(a, b);
      n.p = {static_cast<double>(a) / I, static_cast<double>(b) / J};
      n.color = whiteColor();
      n.id = newId(Loc::node(a, b, nodeDirs(a, b, I, J)));
    }
  for (int b = 0; b <= J; ++b)
    for (int a = 0; a < I; ++a) runAt(0, a, b) = straightRun(nodeAt(a, b).p, nodeAt(a + 1, b).p);
  for (int b = 0; b < J; ++b)
    for (int a = 0; a <= I; ++a) runAt(1, a, b) = straightRun(nodeAt(a, b).p, nodeAt(a, b + 1).p);
  dirty = true;
}

int GradientMesh::Impl::deadSlots() const {
  return static_cast<int>(std::count(colPos.begin(), colPos.end(), -1) +
                          std::count(rowPos.begin(), rowPos.end(), -1));
}

void GradientMesh::Impl::compact() {
  const Restructuring restructuring(*this);
  std::vector<CellColumn<Cell>> fresh(static_cast<size_t>(I + 1));
  for (int i = 0; i <= I; ++i) {
    fresh[i].reserve(static_cast<size_t>(J + 1));
    for (int j = 0; j <= J; ++j) fresh[i].push_back(std::move(cellAt(i, j)));
  }
  cells = std::move(fresh);
  col.resize(I + 1), colPos.resize(I + 1), row.resize(J + 1), rowPos.resize(J + 1);
  for (int k = 0; k <= I; ++k) col[k] = colPos[k] = k;
  for (int k = 0; k <= J; ++k) row[k] = rowPos[k] = k;
  for (int j = 0; j <= J; ++j)
    for (int i = 0; i <= I; ++i) {
      setNodeLoc(nodeAt(i, j).id, i, j);
      if (i < I) reindexRun(0, i, j);
      if (j < J) reindexRun(1, i, j);
    }
}

int GradientMesh::Impl::insertLine(int axis, double at) {
  const Restructuring restructuring(*this);
  const int n = count(axis), m = count(1 - axis);
  if (!(at > 0 && at < n)) return -1;
  const int k = static_cast<int>(std::floor(at));
  const double f = at - k;
  if (f < 1e-9 || f > 1 - 1e-9) return -1;
  std::vector<double>& g = axis == 0 ? u : v;
  const double gnew = g[k] + f * (g[k + 1] - g[k]);
  const bool noneMesh = nodeAt(0, 0).color.kind == kNoneColor;

  // The new line's cells go into a new slot first, outside the order
  // tables: logical indices keep naming the old grid while the new cells
  // are filled, and the line enters the tables after line k at the end.
  // (A column's first cells may move when it grows, so no cell is held
  // across this step.)
  int32_t slot = 0;
  if (axis == 0) {
    slot = static_cast<int32_t>(cells.size());
    cells.emplace_back(rowPos.size());
  } else {
    slot = static_cast<int32_t>(rowPos.size());
    for (size_t c = 0; c < cells.size(); ++c)
      if (colPos[c] >= 0) cells[c].emplace_back();
  }
  auto slotsOf = [&](int b) {
    return axis == 0 ? std::pair<int32_t, int32_t>{slot, row[b]} : std::pair<int32_t, int32_t>{col[b], slot};
  };

  // One pass along the line: crossing run b is evaluated and split, its
  // new node painted, and the new run between nodes b - 1 and b built as
  // the iso-curve of the patch they bound. The iso-curves read only the
  // side runs, the old nodes and the crossing runs' values at f, so each
  // pass step touches a few neighbouring cells.
  const int back = axis, fwd = axis + 2;
  const int cross = 1 - axis, cback = 1 - axis, cfwd = 3 - axis;
  P crossPrev{}, pointPrev{};
  for (int b = 0; b <= m; ++b) {
    const auto [cs, rs] = slotsOf(b);
    Cell& old = cellOnAxis(axis, k, b);
    P crossAt;
    chainEval(old.run[axis], f, &crossAt, nullptr);
    Cell& mid = cells[cs][rs];
    Node& d = mid.node;
    edgePaint(axis, k, b, f, &d.color, &d.opacity);
    if (d.color.kind == kNoneColor && !noneMesh) d.color = whiteColor();
    SplitPoint sp;
    splitRun(old.run[axis], f, old.node.selected, cellOnAxis(axis, k + 1, b).node.selected, mid.run[axis], sp);
    d.id = sp.reuse != kNoVertex ? sp.reuse : newId(Loc{});
    // Its directions are those of its place in the grid with the new line.
    const unsigned dirs = axis == 0 ? nodeDirs(k + 1, b, n + 1, m) : nodeDirs(b, k + 1, m, n + 1);
    locs[d.id] = Loc::node(cs, rs, dirs);
    d.p = sp.point;
    d.selected = sp.selected;
    d.smooth[back] = sp.smooth[0];
    d.smooth[fwd] = sp.smooth[1];
    reindexRunAt(axis, cs, rs);
    if (b > 0) {
      const auto [cs1, rs1] = slotsOf(b - 1);
      Run& iso = cells[cs1][rs1].run[cross];
      isoCurve(*this, axis, k, b - 1, f, crossPrev, crossAt, iso);
      iso.pts.front() = pointPrev;
      iso.pts.back() = sp.point;
      // Node b - 1, when inner, is smooth across the new line where its
      // two new runs meet in a straight line.
      if (b >= 2) {
        const auto [cs2, rs2] = slotsOf(b - 2);
        Node& prev = cells[cs1][rs1].node;
        const bool sm = collinear(cells[cs2][rs2].run[cross].pts.end()[-2], prev.p, iso.pts[1]);
        prev.smooth[cback] = prev.smooth[cfwd] = sm;
      }
    }
    crossPrev = crossAt;
    pointPrev = sp.point;
  }

  // The line enters the order tables after line k.
  if (axis == 0) {
    col.insert(col.begin() + k + 1, slot);
    colPos.push_back(0);
    ++I;
    for (int i = k + 1; i <= I; ++i) colPos[col[i]] = i;
  } else {
    row.insert(row.begin() + k + 1, slot);
    rowPos.push_back(0);
    ++J;
    for (int j = k + 1; j <= J; ++j) rowPos[row[j]] = j;
  }
  g.insert(g.begin() + k + 1, gnew);
  dirty = true;
  return k + 1;
}

void GradientMesh::Impl::deleteLine(int axis, int k) {
  const Restructuring restructuring(*this);
  const int m = count(1 - axis);
  const int back = axis, fwd = axis + 2;
  for (int b = 0; b <= m; ++b) {
    Cell& gone = cellOnAxis(axis, k, b);
    Run& l = cellOnAxis(axis, k - 1, b).run[axis];
    const Run& r = gone.run[axis];
    l.pts.insert(l.pts.size(), r.pts.begin() + 1, r.pts.end());
    Joint jt;
    jt.id = gone.node.id;
    jt.selected = gone.node.selected;
    jt.smooth[0] = gone.node.smooth[back];
    jt.smooth[1] = gone.node.smooth[fwd];
    l.joints.push_back(jt);
    l.joints.insert(l.joints.size(), r.joints.begin(), r.joints.end());
    if (axis == 0)
      reindexRun(axis, k - 1, b);
    else
      reindexRun(axis, b, k - 1);
    if (b < m) killRun(gone.run[1 - axis]);
  }
  if (axis == 0) {
    const int32_t cs = col[k];
    col.erase(col.begin() + k);
    colPos[cs] = -1;
    --I;
    for (int i = k; i <= I; ++i) colPos[col[i]] = i;
    cells[cs] = CellColumn<Cell>();
    u.erase(u.begin() + k);
  } else {
    const int32_t rs = row[k];
    row.erase(row.begin() + k);
    rowPos[rs] = -1;
    --J;
    for (int j = k; j <= J; ++j) rowPos[row[j]] = j;
    for (size_t c = 0; c < cells.size(); ++c)
      if (colPos[c] >= 0) cells[c][rs] = Cell{};
    v.erase(v.begin() + k);
  }
  dirty = true;
  if (deadSlots() > I + J + 2) compact();
}

// ---- public grid edits -------------------------------------------------------

void GradientMesh::initCartesian(int i, int j) { impl_->init(std::max(i, 1), std::max(j, 1)); }

double GradientMesh::relativeU(int i) const { return i >= 0 && i <= impl_->I ? impl_->u[i] : 0; }
double GradientMesh::relativeV(int j) const { return j >= 0 && j <= impl_->J ? impl_->v[j] : 0; }
const std::vector<double>& GradientMesh::relativeUs() const { return impl_->u; }
const std::vector<double>& GradientMesh::relativeVs() const { return impl_->v; }

int GradientMesh::insertU(double u) { return impl_->insertLine(0, u); }
int GradientMesh::insertV(double v) { return impl_->insertLine(1, v); }

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
  if (du) impl_->deleteLine(0, ku);
  if (dv) impl_->deleteLine(1, kv);
  return du || dv;
}

}  // namespace lb::host
