// The gradient-mesh engine: vertex ids, walks, segments, selection, raw access.
//
// Geometry lives in MeshGeometry.cpp, the colour field in ColorField.cpp and
// grid-line edits in GridEdits.cpp; MeshImpl_p.h describes the storage.
#include "host/mesh/GradientMesh.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/mesh/MeshImpl_p.h"

namespace lb::host {

using namespace bez;

bool collinear(P in, P anchor, P out) {
  const P a = in - anchor, b = out - anchor;
  // sqrt rather than hypot: coordinates are bounded far below overflow, and
  // hypot's extra care is slow; line insertions call this for every new node.
  const double la = std::sqrt(a.h * a.h + a.v * a.v), lb = std::sqrt(b.h * b.h + b.v * b.v);
  if (la < 1e-12 || lb < 1e-12) return false;
  const double cross = a.h * b.v - a.v * b.h, dot = a.h * b.h + a.v * b.v;
  return std::abs(cross) <= 1e-9 * la * lb && dot < 0;
}

// ---- vertices in runs ----------------------------------------------------------

// Reached through the span's slots: the run's start node, its end node (the
// next column's cell along I, the next row's along J) or an inner vertex.
VertexId GradientMesh::Impl::anchorId(const Span& sp, int a) const {
  const Run& r = runOf(sp);
  if (a == 0) return cells[sp.cs][sp.rs].node.id;
  if (a == r.pieces()) {
    const int32_t cs = sp.axis == 0 ? col[sp.i + 1] : sp.cs;
    const int32_t rs = sp.axis == 0 ? sp.rs : row[sp.j + 1];
    return cells[cs][rs].node.id;
  }
  return r.joints[a - 1].id;
}
int GradientMesh::Impl::nextVertexAnchor(const Run& r, int a) {
  const int m = r.pieces();
  for (int b = a + 1; b < m; ++b)
    if (r.joints[b - 1].id != kNoVertex) return b;
  return m;
}
int GradientMesh::Impl::prevVertexAnchor(const Run& r, int a) {
  for (int b = a - 1; b > 0; --b)
    if (r.joints[b - 1].id != kNoVertex) return b;
  return 0;
}
VertexId GradientMesh::Impl::firstInner(const Run& r, int after) {
  for (int b = after + 1; b < r.pieces(); ++b)
    if (r.joints[b - 1].id != kNoVertex) return r.joints[b - 1].id;
  return kNoVertex;
}

bool GradientMesh::Impl::computeSpan(SegmentRef s, Span* out) const {
  const Where l = loc(s.start);
  // A gone vertex has no directions; a node has those that stay inside the
  // grid, a non-node vertex the two along its run.
  if (s.dir < 0 || s.dir > 3 || !((l.dirs >> s.dir) & 1u)) return false;
  Span sp;
  sp.axis = dirAxis(s.dir);
  sp.fwd = dirForward(s.dir);
  if (l.kind == kNodeLoc) {
    if (sp.fwd) {
      sp.i = l.i, sp.j = l.j;
      sp.cs = l.cs, sp.rs = l.rs;
      sp.a0 = 0;
      sp.a1 = nextVertexAnchor(runOf(sp), 0);
    } else {
      sp.i = sp.axis == 0 ? l.i - 1 : l.i;
      sp.j = sp.axis == 0 ? l.j : l.j - 1;
      sp.cs = sp.axis == 0 ? col[sp.i] : l.cs;
      sp.rs = sp.axis == 0 ? l.rs : row[sp.j];
      const Run& r = runOf(sp);
      sp.a1 = r.pieces();
      sp.a0 = prevVertexAnchor(r, sp.a1);
    }
  } else {
    sp.i = l.i, sp.j = l.j;
    sp.cs = l.cs, sp.rs = l.rs;
    const Run& r = runOf(sp);
    if (sp.fwd) {
      sp.a0 = l.a;
      sp.a1 = nextVertexAnchor(r, l.a);
    } else {
      sp.a1 = l.a;
      sp.a0 = prevVertexAnchor(r, l.a);
    }
  }
  *out = sp;
  return true;
}

void GradientMesh::Impl::setNodePoint(int i, int j, P p) {
  Node& n = nodeAt(i, j);
  // The ends of the runs at a node always equal its point, so setting the
  // point it already has changes nothing (copies set each node once per run).
  if (n.p.h == p.h && n.p.v == p.v) return;
  n.p = p;
  if (runExists(0, i, j)) runAt(0, i, j).pts.front() = p;
  if (runExists(0, i - 1, j)) runAt(0, i - 1, j).pts.back() = p;
  if (runExists(1, i, j)) runAt(1, i, j).pts.front() = p;
  if (runExists(1, i, j - 1)) runAt(1, i, j - 1).pts.back() = p;
}
void GradientMesh::Impl::setRunPoint(int axis, int i, int j, int idx, P p) {
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


GradientMesh::GradientMesh() : impl_(std::make_unique<Impl>()), life_(LifeToken::make()) { impl_->init(1, 1); }
GradientMesh::~GradientMesh() { life_.expire(); }
GradientMesh::GradientMesh(const GradientMesh& o) : impl_(std::make_unique<Impl>(*o.impl_)), life_(LifeToken::make()) {
  if (impl_->deadSlots() > 0) impl_->compact();
}
GradientMesh& GradientMesh::operator=(const GradientMesh& o) {
  if (this != &o) {
    *impl_ = *o.impl_;
    if (impl_->deadSlots() > 0) impl_->compact();
    life_.expire();
    life_ = LifeToken::make();
  }
  return *this;
}

int GradientMesh::sizeI() const { return impl_->I; }
int GradientMesh::sizeJ() const { return impl_->J; }

// ---- vertices --------------------------------------------------------------

size_t GradientMesh::nodeCount() const { return static_cast<size_t>(impl_->I + 1) * (impl_->J + 1); }
size_t GradientMesh::vertexCount() const {
  size_t n = nodeCount();
  impl_->forEachJoint([&](const Joint& jt) { n += jt.id != kNoVertex; });
  return n;
}
VertexId GradientMesh::node(int i, int j) const {
  const Impl& m = *impl_;
  if (i < 0 || j < 0 || i > m.I || j > m.J) return kNoVertex;
  // Walks that turn a grid (rotations, mirrored copies) ask for the nodes of
  // one row, column after column; the cells of neighbouring columns lie far
  // apart, so they are fetched ahead: the node and both runs of each.
  for (const int n : {i - 1, i + 1})
    if (n >= 0 && n <= m.I) {
      const char* c = reinterpret_cast<const char*>(&m.cellAt(n, j));
      for (size_t off = 0; off < sizeof(Cell); off += 64) __builtin_prefetch(c + off);
    }
  return m.nodeAt(i, j).id;
}
bool GradientMesh::alive(VertexId v) const { return static_cast<bool>(impl_->loc(v)); }
bool GradientMesh::isNode(VertexId v) const {
  const Where l = impl_->loc(v);
  return l && l.kind == kNodeLoc;
}
bool GradientMesh::nodeIndex(VertexId v, int* i, int* j) const {
  const Where l = impl_->loc(v);
  if (!l) return false;
  *i = l.i, *j = l.j;
  return true;
}
int GradientMesh::vertexAxis(VertexId v) const {
  const Where l = impl_->loc(v);
  return l && l.kind == kInnerLoc ? l.axis : -1;
}

VertexId GradientMesh::firstVertex() const { return impl_->nodeAt(0, 0).id; }

VertexId GradientMesh::nextVertex(VertexId v) const {
  const Impl& m = *impl_;
  const Where l = m.loc(v);
  if (!l) return kNoVertex;
  const int i = l.i, j = l.j;
  VertexId n = kNoVertex;
  if (l.kind == kNodeLoc) {
    if (i < m.I) n = Impl::firstInner(m.runAt(0, i, j), 0);
    if (n == kNoVertex && j < m.J) n = Impl::firstInner(m.runAt(1, i, j), 0);
  } else {
    n = Impl::firstInner(m.runAt(l.axis, i, j), l.a);
    if (n == kNoVertex && l.axis == 0 && j < m.J) n = Impl::firstInner(m.runAt(1, i, j), 0);
  }
  if (n != kNoVertex) return n;
  if (i < m.I) return m.nodeAt(i + 1, j).id;
  if (j < m.J) return m.nodeAt(0, j + 1).id;
  return kNoVertex;
}

VertexId GradientMesh::neighbour(VertexId v, int dir) const { return segmentEnd(SegmentRef{v, dir}); }

namespace {
// Bits set in a four-direction mask (std::popcount is a library call on
// the baseline x86-64 target, and this is asked for every segment index).
int directionCount(unsigned mask) {
  static constexpr int8_t kCount[16] = {0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4};
  return kCount[mask & 15u];
}
// The direction of the index-th set bit of a four-direction mask, or -1.
constexpr auto kDirOfIndex = [] {
  std::array<std::array<int8_t, 4>, 16> t{};
  for (unsigned m = 0; m < 16; ++m) {
    int k = 0;
    for (auto& d : t[m]) d = -1;
    for (int d = 0; d < 4; ++d)
      if ((m >> d) & 1u) t[m][k++] = static_cast<int8_t>(d);
  }
  return t;
}();
// The direction of segment `index` at a located vertex, or -1.
int dirAt(const Where& l, int index) {
  return index >= 0 && index <= 3 ? kDirOfIndex[l.dirs & 15u][static_cast<size_t>(index)] : -1;
}
}  // namespace

bool GradientMesh::hasSegment(VertexId v, int dir) const {
  return dir >= 0 && dir <= 3 && ((impl_->segmentMask(v) >> dir) & 1u);
}
int GradientMesh::segmentCount(VertexId v) const { return directionCount(impl_->segmentMask(v)); }
int GradientMesh::segmentIndex(VertexId v, int dir) const {
  if (dir < 0 || dir > 3) return -1;
  const unsigned mask = impl_->segmentMask(v);
  if (!((mask >> dir) & 1u)) return -1;
  return directionCount(mask & ((1u << dir) - 1u));
}

int GradientMesh::segmentDir(VertexId v, int index) const { return dirAt(impl_->loc(v), index); }

AIRealPoint GradientMesh::point(VertexId v) const {
  const Where l = impl_->loc(v);
  if (!l) return {0, 0};
  if (l.kind == kNodeLoc) return impl_->cellOf(l).node.p;
  return impl_->cellOf(l).run[l.axis].pts[3 * l.a];
}
void GradientMesh::setPoint(VertexId v, AIRealPoint p) {
  const Where l = impl_->loc(v);
  if (!l) return;
  if (l.kind == kNodeLoc)
    impl_->setNodePoint(l.i, l.j, p);
  else
    impl_->cellOf(l).run[l.axis].pts[3 * l.a] = p;
}

AIRealPoint GradientMesh::tangent(VertexId v, int dir) const {
  Impl::Span sp;
  if (!impl_->span(SegmentRef{v, dir}, &sp)) return point(v);
  const Run& r = impl_->runOf(sp);
  return sp.fwd ? r.pts[3 * sp.a0 + 1] : r.pts[3 * sp.a1 - 1];
}
void GradientMesh::setTangent(VertexId v, int dir, AIRealPoint h) {
  Impl::Span sp;
  if (!impl_->span(SegmentRef{v, dir}, &sp)) return;
  Run& r = impl_->runOf(sp);
  (sp.fwd ? r.pts[3 * sp.a0 + 1] : r.pts[3 * sp.a1 - 1]) = h;
}

// The smooth flag of a located vertex in direction dir, or null when the
// vertex is gone or (a non-node vertex) has no flag across its line.
bool* GradientMesh::Impl::smoothFlag(const Where& l, int dir) {
  if (!l || dir < 0 || dir > 3) return nullptr;
  if (l.kind == kNodeLoc) return &cellOf(l).node.smooth[dir];
  if (dirAxis(dir) != l.axis) return nullptr;
  return &cellOf(l).run[l.axis].joints[l.a - 1].smooth[dirForward(dir) ? 1 : 0];
}

bool GradientMesh::smooth(VertexId v, int dir) const {
  const bool* f = impl_->smoothFlag(impl_->loc(v), dir);
  return f && *f;
}
void GradientMesh::setSmooth(VertexId v, int dir, bool on) {
  if (bool* f = impl_->smoothFlag(impl_->loc(v), dir)) *f = on;
}

int GradientMesh::smoothAt(VertexId v, int index) const {
  const Where l = impl_->loc(v);
  const bool* f = impl_->smoothFlag(l, dirAt(l, index));
  return f ? *f : -1;
}
bool GradientMesh::setSmoothAt(VertexId v, int index, bool on) {
  const Where l = impl_->loc(v);
  bool* f = impl_->smoothFlag(l, dirAt(l, index));
  if (f) *f = on;
  return f != nullptr;
}

AIColor GradientMesh::color(VertexId v) const {
  AIColor c{};
  colorOf(v, &c);
  return c;
}
double GradientMesh::opacity(VertexId v) const {
  double o = 0;
  opacityOf(v, &o);
  return o;
}
namespace {
// A node's own paint field, or the surface's value (eval at its uv) at a
// non-node vertex; false for a gone vertex.
template <class T, class Eval>
bool paintOf(const GradientMesh& m, const GradientMesh::Impl& impl, VertexId v, T Node::*field, Eval eval, T* out) {
  const Where l = impl.loc(v);
  if (!l) return false;
  *out = l.kind == kNodeLoc ? impl.cellOf(l).node.*field : eval(m.uv(v));
  return true;
}
}  // namespace
bool GradientMesh::colorOf(VertexId v, AIColor* out) const {
  return paintOf(*this, *impl_, v, &Node::color, [&](AIRealPoint q) { return evalColor(q.h, q.v); }, out);
}
bool GradientMesh::opacityOf(VertexId v, double* out) const {
  return paintOf(*this, *impl_, v, &Node::opacity, [&](AIRealPoint q) { return evalOpacity(q.h, q.v); }, out);
}
bool GradientMesh::setColor(VertexId v, const AIColor& c) {
  const Where l = impl_->loc(v);
  if (!l || l.kind != kNodeLoc) return false;
  impl_->cellOf(l).node.color = c;
  impl_->paintChanged();
  return true;
}
bool GradientMesh::setOpacity(VertexId v, double o) {
  const Where l = impl_->loc(v);
  if (!l || l.kind != kNodeLoc) return false;
  impl_->cellOf(l).node.opacity = o;
  impl_->paintChanged();
  return true;
}
AIRealPoint GradientMesh::uv(VertexId v) const {
  const Impl& m = *impl_;
  const Where l = m.loc(v);
  if (!l) return {0, 0};
  if (l.kind == kNodeLoc) return {m.u[l.i], m.v[l.j]};
  const double s = static_cast<double>(l.a) / m.cellOf(l).run[l.axis].pieces();
  if (l.axis == 0) return {m.u[l.i] + s * (m.u[l.i + 1] - m.u[l.i]), m.v[l.j]};
  return {m.u[l.i], m.v[l.j] + s * (m.v[l.j + 1] - m.v[l.j])};
}

// ---- selection -------------------------------------------------------------

namespace {
// Calls f on the selected flag of every vertex, column by column: the
// order cells lie in memory (the order of the calls does not matter).
template <class M, class F>
void forEachSelFlag(M& m, F f) {
  for (int i = 0; i <= m.I; ++i)
    for (int j = 0; j <= m.J; ++j) {
      auto& c = m.cellAt(i, j);
      f(c.node.selected);
      for (int axis = 0; axis < 2; ++axis)
        if (m.runExists(axis, i, j))
          for (auto& jt : c.run[axis].joints)
            if (jt.id != kNoVertex) f(jt.selected);
    }
}
// Before a vertex of a wholly selected mesh is deselected: the flags, not
// yet written, all become true.
void spreadWholeSelection(GradientMesh::Impl& m) {
  if (!m.allSelected) return;
  forEachSelFlag(m, [](bool& s) { s = true; });
  m.allSelected = false;
}
}  // namespace

bool GradientMesh::selected(VertexId v) const {
  const Where l = impl_->loc(v);
  if (!l) return false;
  if (impl_->allSelected) return true;
  if (l.kind == kNodeLoc) return impl_->cellOf(l).node.selected;
  return impl_->cellOf(l).run[l.axis].joints[l.a - 1].selected;
}
void GradientMesh::setSelected(VertexId v, bool on) {
  const Where l = impl_->loc(v);
  if (!l) return;
  if (on) {
    impl_->noneSelected = false;
    if (impl_->allSelected) return;
  } else {
    spreadWholeSelection(*impl_);
  }
  if (l.kind == kNodeLoc)
    impl_->cellOf(l).node.selected = on;
  else
    impl_->cellOf(l).run[l.axis].joints[l.a - 1].selected = on;
}

void GradientMesh::selectAll() {
  impl_->noneSelected = false;
  impl_->allSelected = true;
}
void GradientMesh::clearSelection() {
  if (impl_->noneSelected) return;
  forEachSelFlag(*impl_, [](bool& s) { s = false; });
  impl_->noneSelected = true;
  impl_->allSelected = false;
}
size_t GradientMesh::selectedCount() const {
  if (impl_->allSelected) return vertexCount();
  size_t n = 0;
  forEachSelFlag(*impl_, [&](const bool& s) { n += s; });
  return n;
}
bool GradientMesh::isSelectionEmpty() const {
  if (impl_->noneSelected) return true;
  if (impl_->allSelected) return false;  // a mesh always has vertices
  return selectedCount() == 0;
}
bool GradientMesh::isSelectionFull() const { return impl_->allSelected || selectedCount() == vertexCount(); }
std::vector<VertexId> GradientMesh::vertices() const {
  std::vector<VertexId> out;
  for (VertexId v = firstVertex(); v != kNoVertex; v = nextVertex(v)) out.push_back(v);
  return out;
}

// ---- segments --------------------------------------------------------------

bool GradientMesh::segmentValid(SegmentRef s) const { return impl_->spanOf(s) != nullptr; }

SegmentRef GradientMesh::firstSegment() const { return SegmentRef{impl_->nodeAt(0, 0).id, kDirIFwd}; }

SegmentRef GradientMesh::nextSegment(SegmentRef s) const {
  const Impl& m = *impl_;
  Impl::Span sp;
  if (!m.span(s, &sp)) return SegmentRef{};
  const Run& r = m.runOf(sp);
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
  const Impl::Span* sp = impl_->spanOf(s);
  if (!sp) return kNoVertex;
  return impl_->anchorId(*sp, sp->fwd ? sp->a1 : sp->a0);
}
int GradientMesh::knotCount(SegmentRef s) const {
  const Impl::Span* sp = impl_->spanOf(s);
  return sp ? sp->a1 - sp->a0 - 1 : -1;
}
std::vector<AIRealPoint> GradientMesh::segmentPoints(SegmentRef s) const {
  Impl::Span sp;
  if (!impl_->span(s, &sp)) return {};
  const Run& r = impl_->runOf(sp);
  std::vector<AIRealPoint> out(r.pts.begin() + 3 * sp.a0, r.pts.begin() + 3 * sp.a1 + 1);
  if (!sp.fwd) std::reverse(out.begin(), out.end());
  return out;
}
bool GradientMesh::getSegmentPoints(SegmentRef s, int start, int count, AIRealPoint* out) const {
  const Impl::Span* found = impl_->spanOf(s);
  if (!found) return false;
  const Impl::Span& sp = *found;
  const int n = 3 * (sp.a1 - sp.a0) + 1;
  if (start < 0 || count < 0 || start + count > n) return false;
  const P* d = impl_->runOf(sp).pts.data();
  if (sp.fwd) {
    std::copy(d + 3 * sp.a0 + start, d + 3 * sp.a0 + start + count, out);
  } else {
    for (int k = 0; k < count; ++k) out[k] = d[3 * sp.a1 - start - k];
  }
  return true;
}
bool GradientMesh::setSegmentPoints(SegmentRef s, int start, int count, const AIRealPoint* pts) {
  const Impl::Span* found = impl_->spanOf(s);  // (writing points changes no span)
  if (!found) return false;
  const Impl::Span& sp = *found;
  const int n = 3 * (sp.a1 - sp.a0) + 1;
  if (start < 0 || count < 0 || start + count > n) return false;
  if (count == 0) return true;
  Run& r = impl_->runOf(sp);
  const int last = static_cast<int>(r.pts.size()) - 1;
  // Run indices of the first and last point written; the points between
  // them lie inside the run, where no other run shares them.
  const int first = sp.fwd ? 3 * sp.a0 + start : 3 * sp.a1 - start;
  const int final = sp.fwd ? first + count - 1 : first - count + 1;
  P* d = r.pts.data();
  if (count > 2) {
    if (sp.fwd)
      std::copy(pts + 1, pts + count - 1, d + first + 1);
    else
      for (int k = 1; k + 1 < count; ++k) d[first - k] = pts[k];
  }
  // An end shared with other runs goes through the node, and only when it
  // moves (a run's end always equals its node's point).
  auto putEnd = [&](int idx, P p) {
    if (idx > 0 && idx < last)
      d[idx] = p;
    else if (d[idx].h != p.h || d[idx].v != p.v)
      impl_->setRunPoint(sp.axis, sp.i, sp.j, idx, p);
  };
  putEnd(first, pts[0]);
  if (count > 1) putEnd(final, pts[count - 1]);
  return true;
}

bool GradientMesh::insertKnots(SegmentRef s, int m, int n) {
  Impl::Span sp;
  if (!impl_->span(s, &sp)) return false;  // (before the edit: a remembered span serves)
  const int K = sp.a1 - sp.a0 - 1;
  if (m < 0 || m > K || n < 0) return false;
  if (n == 0) return true;
  {
    const Impl::Restructuring restructuring(*impl_);
    impl_->insertKnotsAt(sp, m, n);
  }
  // The segment now spans n more pieces, and is usually written next.
  sp.a1 += n;
  impl_->remember(s, sp);
  return true;
}

void GradientMesh::Impl::insertKnotsAt(const Span& sp, int m, int n) {
  const int K = sp.a1 - sp.a0 - 1;
  Run& r = runOf(sp);
  if (n == 1 && r.pts.size() == 4) {
    // One knot into a run of one piece (a fresh run taking a copied run's
    // structure): the steps below for one cut at the middle, written in
    // place; the run has no vertex to re-index.
    P L[4], R[4];
    bez::split(r.pts.data(), 0.5, L, R);
    P* d = r.pts.resizeForOverwrite(7);
    d[6] = d[3];
    d[1] = L[1], d[2] = L[2], d[3] = L[3], d[4] = R[1], d[5] = R[2];
    *r.joints.resizeForOverwrite(1) = Joint{};
    return;
  }
  const int piece = sp.fwd ? sp.a0 + m : sp.a0 + (K - m);
  // The piece is cut into n + 1 equal-parameter parts in place: room for
  // 3n points opens after its start, then every part is written over it.
  P rest[4];
  std::copy(&r.pts[3 * piece], &r.pts[3 * piece] + 4, rest);
  const P end = rest[3];
  P* out = r.pts.insertGap(static_cast<size_t>(3 * piece + 1), static_cast<size_t>(3 * n));
  for (int c = n + 1; c > 1; --c) {
    P L[4], R[4];
    bez::split(rest, 1.0 / c, L, R);
    out = std::copy(L + 1, L + 4, out);
    std::copy(R, R + 4, rest);
  }
  out = std::copy(rest + 1, rest + 3, out);
  *out = end;
  r.joints.insert(static_cast<size_t>(piece), static_cast<size_t>(n), Joint{});
  reindexRun(sp.axis, sp.i, sp.j);
}

bool GradientMesh::deleteKnots(SegmentRef s, int m, int n) {
  const Impl::Restructuring restructuring(*impl_);
  Impl::Span sp;
  if (!impl_->span(s, &sp)) return false;
  const int K = sp.a1 - sp.a0 - 1;
  if (m < 0 || n < 0 || m + n > K) return false;
  if (n == 0) return true;
  Run& r = impl_->runOf(sp);
  const int b = sp.fwd ? sp.a0 + 1 + m : sp.a1 - m - n;  // first removed anchor
  // Keep up to the out handle of anchor b-1 and from the in handle of anchor b+n.
  r.pts.erase(static_cast<size_t>(3 * (b - 1) + 2), static_cast<size_t>(3 * n));
  r.joints.erase(static_cast<size_t>(b - 1), static_cast<size_t>(n));
  impl_->reindexRun(sp.axis, sp.i, sp.j);
  return true;
}

VertexId GradientMesh::split(SegmentRef s, int k) {
  Impl::Span sp;
  if (!impl_->span(s, &sp)) return kNoVertex;  // (before the edit: a remembered span serves)
  const Impl::Restructuring restructuring(*impl_);
  const int K = sp.a1 - sp.a0 - 1;
  if (k < 0 || k >= K) return kNoVertex;
  const int a = sp.fwd ? sp.a0 + 1 + k : sp.a1 - 1 - k;
  Run& r = impl_->runOf(sp);
  Joint& jt = r.joints[a - 1];
  jt.id = impl_->newId(Loc::inner(sp.axis, sp.cs, sp.rs, a));
  // The new vertex joins the selection when the segment it cuts was selected.
  jt.selected = selected(impl_->anchorId(sp, sp.a0)) && selected(impl_->anchorId(sp, sp.a1));
  jt.smooth[0] = jt.smooth[1] = collinear(r.pts[3 * a - 1], r.pts[3 * a], r.pts[3 * a + 1]);
  return jt.id;
}

int GradientMesh::join(SegmentRef s) {
  const Impl::Restructuring restructuring(*impl_);
  Impl::Span sp;
  if (!impl_->span(s, &sp)) return -1;
  Run& r = impl_->runOf(sp);
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
  Run& r = impl_->runOf(sp);
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

// ---- raw access ------------------------------------------------------------

MeshNodeData GradientMesh::nodeData(int i, int j) const {
  const Node& n = impl_->nodeAt(i, j);
  MeshNodeData d;
  d.p = n.p;
  d.color = n.color;
  d.opacity = n.opacity;
  d.selected = impl_->allSelected || n.selected;
  std::copy(n.smooth, n.smooth + 4, d.smooth);
  return d;
}
void GradientMesh::setNodeData(int i, int j, const MeshNodeData& d) {
  impl_->setNodePoint(i, j, d.p);
  Node& n = impl_->nodeAt(i, j);
  n.color = d.color;
  n.opacity = d.opacity;
  if (!d.selected) spreadWholeSelection(*impl_);
  n.selected = d.selected;
  if (d.selected) impl_->noneSelected = false;
  std::copy(d.smooth, d.smooth + 4, n.smooth);
  impl_->paintChanged();
}
MeshRunData GradientMesh::runData(int axis, int i, int j) const {
  MeshRunData d;
  if (!impl_->runExists(axis, i, j)) return d;
  const Run& r = impl_->runAt(axis, i, j);
  d.points.assign(r.pts.begin(), r.pts.end());
  for (const Joint& jt : r.joints) {
    MeshRunData::Inner in;
    in.vertex = jt.id != kNoVertex;
    in.selected = in.vertex && (impl_->allSelected || jt.selected);
    in.smooth[0] = in.vertex && jt.smooth[0];
    in.smooth[1] = in.vertex && jt.smooth[1];
    d.inner.push_back(in);
  }
  return d;
}
bool GradientMesh::setRunData(int axis, int i, int j, const MeshRunData& d) {
  const Impl::Restructuring restructuring(*impl_);
  if (!impl_->runExists(axis, i, j)) return false;
  if (d.points.size() < 4 || (d.points.size() - 1) % 3 != 0 || d.inner.size() != (d.points.size() - 1) / 3 - 1)
    return false;
  for (const MeshRunData::Inner& in : d.inner)
    if (in.vertex && !in.selected) spreadWholeSelection(*impl_);
  Run& r = impl_->runAt(axis, i, j);
  for (const Joint& jt : r.joints)
    if (jt.id != kNoVertex) impl_->locs[jt.id].kind = kDead;
  r.pts.assign(d.points.data(), d.points.data() + d.points.size());
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
    if (jt.selected) impl_->noneSelected = false;
    jt.smooth[0] = d.inner[k].smooth[0];
    jt.smooth[1] = d.inner[k].smooth[1];
  }
  impl_->reindexRun(axis, i, j);
  return true;
}
std::span<const AIRealPoint> GradientMesh::runPoints(int axis, int i, int j) const {
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

}  // namespace lb::host
