// The mesh suites: mesh, vertex iterator, segment iterator, selection,
// patch iterator and hit testing, over the gradient-mesh engine.
//
// Iterators and selections are reference-counted host objects. Each holds
// the mesh it was made from and the mesh's life token, so an iterator that
// outlives its mesh (art disposed, mesh replaced) reports AtEnd and its
// calls fail with kIterAtEndErr instead of touching freed memory. Vertices
// are held by stable id: an iterator on a vertex that an edit removed is
// AtEnd too.
#include <algorithm>
#include <memory>
#include <vector>

#include "host/Document.h"
#include "host/Host.h"
#include "host/SuiteRegistry.h"
#include "host/mesh/GradientMesh.h"

using lb::host::GradientMesh;
using lb::host::kNoVertex;
using lb::host::SegmentRef;
using lb::host::VertexId;

struct MeshRef {
  GradientMesh* mesh = nullptr;
  lb::host::LifeToken life;  // set together with mesh, never without it
  bool live() const { return life.alive(); }
};

struct _AIMeshVertexIterator {
  int32_t refs = 1;
  MeshRef m;
  VertexId id = kNoVertex;
  _AIMeshVertexIterator* nextFree = nullptr;  // while kept for reuse
  bool valid() const { return m.live() && m.mesh->alive(id); }
};

struct _AIMeshSegmentIterator {
  int32_t refs = 1;
  MeshRef m;
  SegmentRef seg;
  _AIMeshSegmentIterator* nextFree = nullptr;  // while kept for reuse
  bool valid() const { return m.live() && m.mesh->segmentValid(seg); }
};

struct _AIMeshPatchIterator {
  int32_t refs = 1;
  MeshRef m;
  int i = 0, j = 0;
  bool valid() const { return m.live() && i >= 0 && j >= 0 && i < m.mesh->sizeI() && j < m.mesh->sizeJ(); }
};

// The visible selection reads and writes the mesh's own flags; any other
// selection object is a set of vertex ids of its own.
struct _AIMeshSelection {
  int32_t refs = 1;
  MeshRef m;
  bool visible = false;
  ArtObject* art = nullptr;    // the mesh art of a visible selection
  std::vector<uint8_t> flags;  // by vertex id, detached selections only

  bool contains(VertexId v) const {
    if (!m.live() || !m.mesh->alive(v)) return false;
    if (visible) return m.mesh->selected(v);
    return v < flags.size() && flags[v];
  }
  void set(VertexId v, bool on) {
    if (!m.live() || !m.mesh->alive(v)) return;
    if (visible) {
      m.mesh->setSelected(v, on);
      // Selecting a vertex the user sees selects the mesh art too (its
      // attribute bit only: the rest of the vertex selection is kept).
      const lb::host::Document* doc = lb::host::Host::currentDocument();
      if (on && art && art->mesh.get() == m.mesh && (!doc || doc->contains(art))) art->userAttr |= kArtSelected;
      return;
    }
    if (v >= flags.size()) flags.resize(static_cast<size_t>(v) + 1, 0);
    flags[v] = on;
  }
};

namespace lb::host {
namespace {

// ---- object lifetime -----------------------------------------------------

MeshRef refOf(GradientMesh* mesh) { return MeshRef{mesh, mesh->lifeToken()}; }

// Vertex and segment iterators are made and released by the million when a
// command walks a big mesh, so released ones are kept for reuse instead of
// going back to the allocator. The address sanitizer build frees them at
// once, so that a use after release is still reported.
//
// The kept ones form a list linked through their `nextFree` field.
template <class T>
class IterPool {
 public:
  T* get() {
    if (!head_) return new T;
    T* o = head_;
    head_ = o->nextFree;
    --kept_;
    o->refs = 1;
    return o;
  }
  void put(T* o) {
#if defined(__SANITIZE_ADDRESS__)
    delete o;
#else
    if (kept_ >= kKeep) {
      delete o;
      return;
    }
    // The mesh and its life token stay until reuse: the next iterator is
    // most often on the same mesh, and then taking the token costs nothing.
    // (A kept token of a gone mesh holds only its small shared flag.)
    o->refs = 0;  // a second release of a kept iterator does nothing
    o->nextFree = head_;
    head_ = o;
    ++kept_;
#endif
  }

 private:
  static constexpr size_t kKeep = 1024;
  T* head_ = nullptr;
  size_t kept_ = 0;
};

// The pools are constant-initialised and never destroyed (their destructor
// is trivial), so an iterator released by a static object's destructor at
// exit still has one. The host runs on one thread.
template <class T>
IterPool<T>& poolOf() {
  static constinit IterPool<T> pool;
  return pool;
}

[[gnu::always_inline]] inline AIMeshVertexIterator newVertex(GradientMesh* mesh, const LifeToken& life, VertexId id) {
  auto* it = poolOf<_AIMeshVertexIterator>().get();
  it->m.mesh = mesh;
  it->m.life = life;
  it->id = id;
  ++liveCounters().vertexIterators;
  return it;
}
[[gnu::always_inline]] inline AIMeshVertexIterator newVertex(const MeshRef& m, VertexId id) {
  return newVertex(m.mesh, m.life, id);
}
// A mesh taken from its art: no reference of its own to copy.
AIMeshVertexIterator newVertex(GradientMesh* mesh, VertexId id) { return newVertex(mesh, mesh->lifeToken(), id); }
AIMeshSegmentIterator newSegment(const MeshRef& m, SegmentRef s) {
  auto* it = poolOf<_AIMeshSegmentIterator>().get();
  it->m = m;
  it->seg = s;
  ++liveCounters().segmentIterators;
  return it;
}
AIMeshPatchIterator newPatch(const MeshRef& m, int i, int j) {
  auto* it = new _AIMeshPatchIterator;
  it->m = m;
  it->i = i, it->j = j;
  ++liveCounters().patchIterators;
  return it;
}
AIMeshSelection newSelection(const MeshRef& m, bool visible) {
  auto* s = new _AIMeshSelection;
  s->m = m;
  s->visible = visible;
  ++liveCounters().selections;
  return s;
}

template <class T>
int32_t addRef(T* o) {
  return o ? ++o->refs : 0;
}
template <class T>
void dispose(T* o) {
  delete o;
}
void dispose(_AIMeshVertexIterator* o) { poolOf<_AIMeshVertexIterator>().put(o); }
void dispose(_AIMeshSegmentIterator* o) { poolOf<_AIMeshSegmentIterator>().put(o); }

template <class T>
int32_t release(T* o, long Counters::*counter) {
  if (!o || o->refs <= 0) return 0;
  const int32_t left = --o->refs;
  if (left == 0) {
    --(liveCounters().*counter);
    dispose(o);
  }
  return left;
}

AIErr meshOf(AIArtHandle art, GradientMesh** out) {
  if (!art) return kBadParameterErr;
  if (const Document* doc = Host::currentDocument(); doc && !doc->contains(art)) return kNoSuchArtErr;
  if (art->type != kMeshArt) return kWrongArtTypeErr;
  if (!art->mesh) art->mesh = std::make_unique<GradientMesh>();
  *out = art->mesh.get();
  return kNoErr;
}

// kBadParameterErr for a null iterator or selection, kIterAtEndErr for one
// whose mesh or vertex is gone.
template <class T>
AIErr checkIter(const T* it) {
  if (!it) return kBadParameterErr;
  return it->valid() ? kNoErr : kIterAtEndErr;
}

// The hottest calls leave the vertex's or segment's own validity to the
// engine call, which fails on a gone vertex or segment, and only look
// again to tell the two errors apart when it did fail: one look-up instead
// of two on the common path, the same results on every path.

// kBadParameterErr for a null iterator, kIterAtEndErr when its mesh is gone.
template <class T>
AIErr checkMesh(const T* it) {
  if (!it) return kBadParameterErr;
  return it->m.live() ? kNoErr : kIterAtEndErr;
}
// After an engine call on a live mesh failed: the iterator's thing is gone
// (kIterAtEndErr) or the arguments were wrong (kBadParameterErr).
template <class T>
AIErr failure(const T* it) {
  return it->valid() ? kBadParameterErr : kIterAtEndErr;
}

// ---- AI Mesh Suite ---------------------------------------------------------

AIErr InitCartesian(AIArtHandle art, int32_t i, int32_t j) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (i < 1 || j < 1) return kBadParameterErr;
  m->initCartesian(i, j);
  return kNoErr;
}
AIErr GetSize(AIArtHandle art, int32_t* i, int32_t* j) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (i) *i = m->sizeI();
  if (j) *j = m->sizeJ();
  return kNoErr;
}
AIErr GetNode(AIArtHandle art, int32_t i, int32_t j, AIMeshVertexIterator* vertex) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (!vertex) return kBadParameterErr;
  const VertexId id = m->node(i, j);
  if (id == kNoVertex) return kBadParameterErr;
  *vertex = newVertex(m, id);
  return kNoErr;
}
AIErr GetStartVertex(AIArtHandle art, AIMeshVertexIterator* vertex) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (!vertex) return kBadParameterErr;
  *vertex = newVertex(refOf(m), m->firstVertex());
  return kNoErr;
}
AIErr GetStartSegment(AIArtHandle art, AIMeshSegmentIterator* segment) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (!segment) return kBadParameterErr;
  *segment = newSegment(refOf(m), m->firstSegment());
  return kNoErr;
}
AIErr GetStartPatch(AIArtHandle art, AIMeshPatchIterator* patch) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (!patch) return kBadParameterErr;
  *patch = newPatch(refOf(m), 0, 0);
  return kNoErr;
}
AIErr GetSelection(AIArtHandle art, AIMeshSelection* selection) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (!selection) return kBadParameterErr;
  *selection = newSelection(refOf(m), true);
  (*selection)->art = art;
  return kNoErr;
}
AIErr NewSelection(AIArtHandle art, AIBoolean all, AIMeshSelection* selection) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (!selection) return kBadParameterErr;
  AIMeshSelection s = newSelection(refOf(m), false);
  if (all)
    for (VertexId v : m->vertices()) s->set(v, true);
  *selection = s;
  return kNoErr;
}
AIErr GetRelativeU(AIArtHandle art, int32_t i, AIReal* u) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (!u || i < 0 || i > m->sizeI()) return kBadParameterErr;
  *u = m->relativeU(i);
  return kNoErr;
}
AIErr GetRelativeV(AIArtHandle art, int32_t j, AIReal* v) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (!v || j < 0 || j > m->sizeJ()) return kBadParameterErr;
  *v = m->relativeV(j);
  return kNoErr;
}
AIErr InsertU(AIArtHandle art, AIReal u, int32_t* i) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  const int r = m->insertU(u);
  if (r < 0) return kBadParameterErr;
  if (i) *i = r;
  return kNoErr;
}
AIErr InsertV(AIArtHandle art, AIReal v, int32_t* j) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  const int r = m->insertV(v);
  if (r < 0) return kBadParameterErr;
  if (j) *j = r;
  return kNoErr;
}
AIErr DeleteGridLines(AIArtHandle art, AIReal u, AIReal v) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  return m->deleteGridLines(u, v) ? kNoErr : kBadParameterErr;
}
AIErr EvalPoint(AIArtHandle art, AIRealPoint uv, AIRealPoint* point) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (!point) return kBadParameterErr;
  *point = m->evalPoint(uv.h, uv.v);
  return kNoErr;
}
AIErr EvalColor(AIArtHandle art, AIRealPoint uv, AIColor* color) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (!color) return kBadParameterErr;
  *color = m->evalColor(uv.h, uv.v);
  return kNoErr;
}
AIErr EvalOpacity(AIArtHandle art, AIRealPoint uv, AIReal* opacity) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (!opacity) return kBadParameterErr;
  *opacity = m->evalOpacity(uv.h, uv.v);
  return kNoErr;
}
AIErr InvertPoint(AIArtHandle art, AIRealPoint point, AIRealPoint* uv, AIBoolean* onMesh) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (!uv) return kBadParameterErr;
  const bool on = m->invertPoint(point, uv);
  if (onMesh) *onMesh = on;
  return kNoErr;
}
AIErr Transform(AIArtHandle art, const AIRealMatrix* matrix) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (!matrix) return kBadParameterErr;
  m->transform(*matrix);
  return kNoErr;
}

// ---- AI Mesh Vertex Suite --------------------------------------------------

AIErr VCopy(AIMeshVertexIterator v, AIMeshVertexIterator* clone) {
  if (!v || !clone) return kBadParameterErr;
  *clone = newVertex(v->m, v->id);
  return kNoErr;
}
int32_t VAddRef(AIMeshVertexIterator v) { return addRef(v); }
int32_t VRelease(AIMeshVertexIterator v) { return release(v, &Counters::vertexIterators); }
AIBoolean VIsEqual(AIMeshVertexIterator a, AIMeshVertexIterator b) {
  if (!a || !b) return false;
  const bool ea = !a->valid(), eb = !b->valid();
  if (ea || eb) return ea && eb && a->m.mesh == b->m.mesh;
  return a->m.mesh == b->m.mesh && a->id == b->id;
}
AIBoolean VAtEnd(AIMeshVertexIterator v) { return !v || !v->valid(); }
AIErr VNext(AIMeshVertexIterator v) {
  if (AIErr err = checkIter(v)) return err;
  v->id = v->m.mesh->nextVertex(v->id);
  return kNoErr;
}
AIErr step(AIMeshVertexIterator v, int dir) {
  if (AIErr err = checkIter(v)) return err;
  v->id = v->m.mesh->neighbour(v->id, dir);
  return kNoErr;
}
AIErr VNextI(AIMeshVertexIterator v) { return step(v, kDirIFwd); }
AIErr VPrevI(AIMeshVertexIterator v) { return step(v, kDirIBack); }
AIErr VNextJ(AIMeshVertexIterator v) { return step(v, kDirJFwd); }
AIErr VPrevJ(AIMeshVertexIterator v) { return step(v, kDirJBack); }
AIBoolean VIsNode(AIMeshVertexIterator v) { return v && v->m.live() && v->m.mesh->isNode(v->id); }
AIErr VGetNodeIndex(AIMeshVertexIterator v, int32_t* i, int32_t* j) {
  if (AIErr err = checkIter(v)) return err;
  int a = 0, b = 0;
  v->m.mesh->nodeIndex(v->id, &a, &b);
  if (i) *i = a;
  if (j) *j = b;
  return kNoErr;
}
// A gone vertex has no segments: counts 0, indices -1.
int32_t VCountSegments(AIMeshVertexIterator v) {
  return v && v->m.live() ? v->m.mesh->segmentCount(v->id) : 0;
}
int32_t VGetSegmentIndex(AIMeshVertexIterator v, int32_t axis, int32_t sense) {
  if (!v || !v->m.live() || axis < 0 || axis > 1 || sense < 0 || sense > 1) return -1;
  return v->m.mesh->segmentIndex(v->id, meshDir(axis, sense));
}
// Direction of segment `index` at the vertex, or the error: kIterAtEndErr
// for a gone vertex, kBadParameterErr for an index it does not have.
AIErr dirOfIndex(AIMeshVertexIterator v, int32_t index, int* dir) {
  if (AIErr err = checkMesh(v)) return err;
  *dir = v->m.mesh->segmentDir(v->id, index);
  return *dir >= 0 ? kNoErr : failure(v);
}
AIErr VGetSegment(AIMeshVertexIterator v, int32_t index, AIMeshSegmentIterator* segment) {
  int d = -1;
  if (AIErr err = dirOfIndex(v, index, &d)) return err;
  if (!segment) return kBadParameterErr;
  *segment = newSegment(v->m, SegmentRef{v->id, d});
  return kNoErr;
}
AIErr VGetPoint(AIMeshVertexIterator v, AIRealPoint* p) {
  if (AIErr err = checkIter(v)) return err;
  if (!p) return kBadParameterErr;
  *p = v->m.mesh->point(v->id);
  return kNoErr;
}
AIErr VSetPoint(AIMeshVertexIterator v, const AIRealPoint* p) {
  if (AIErr err = checkIter(v)) return err;
  if (!p) return kBadParameterErr;
  v->m.mesh->setPoint(v->id, *p);
  return kNoErr;
}
AIErr VGetTangent(AIMeshVertexIterator v, int32_t index, AIRealPoint* h) {
  int d = -1;
  if (AIErr err = dirOfIndex(v, index, &d)) return err;
  if (!h) return kBadParameterErr;
  *h = v->m.mesh->tangent(v->id, d);
  return kNoErr;
}
AIErr VSetTangent(AIMeshVertexIterator v, int32_t index, const AIRealPoint* h) {
  int d = -1;
  if (AIErr err = dirOfIndex(v, index, &d)) return err;
  if (!h) return kBadParameterErr;
  v->m.mesh->setTangent(v->id, d, *h);
  return kNoErr;
}
AIBoolean VGetSmooth(AIMeshVertexIterator v, int32_t index) {
  return v && v->m.live() && v->m.mesh->smoothAt(v->id, index) > 0;
}
AIErr VSetSmooth(AIMeshVertexIterator v, int32_t index, AIBoolean smooth) {
  if (AIErr err = checkMesh(v)) return err;
  return v->m.mesh->setSmoothAt(v->id, index, smooth != 0) ? kNoErr : failure(v);
}
AIErr VGetColor(AIMeshVertexIterator v, AIColor* c) {
  if (AIErr err = checkMesh(v)) return err;
  if (!c) return failure(v);
  return v->m.mesh->colorOf(v->id, c) ? kNoErr : kIterAtEndErr;
}
AIErr VSetColor(AIMeshVertexIterator v, const AIColor* c) {
  if (AIErr err = checkMesh(v)) return err;
  if (!c) return failure(v);
  return v->m.mesh->setColor(v->id, *c) ? kNoErr : failure(v);
}
AIErr VGetOpacity(AIMeshVertexIterator v, AIReal* o) {
  if (AIErr err = checkMesh(v)) return err;
  if (!o) return failure(v);
  return v->m.mesh->opacityOf(v->id, o) ? kNoErr : kIterAtEndErr;
}
AIErr VSetOpacity(AIMeshVertexIterator v, AIReal o) {
  if (AIErr err = checkMesh(v)) return err;
  return v->m.mesh->setOpacity(v->id, o) ? kNoErr : failure(v);
}
AIErr VGetUV(AIMeshVertexIterator v, AIRealPoint* uv) {
  if (AIErr err = checkIter(v)) return err;
  if (!uv) return kBadParameterErr;
  *uv = v->m.mesh->uv(v->id);
  return kNoErr;
}

// ---- AI Mesh Segment Suite -------------------------------------------------

AIErr SCopy(AIMeshSegmentIterator s, AIMeshSegmentIterator* clone) {
  if (!s || !clone) return kBadParameterErr;
  *clone = newSegment(s->m, s->seg);
  return kNoErr;
}
int32_t SAddRef(AIMeshSegmentIterator s) { return addRef(s); }
int32_t SRelease(AIMeshSegmentIterator s) { return release(s, &Counters::segmentIterators); }
// The same segment in either orientation.
AIBoolean SIsEqual(AIMeshSegmentIterator a, AIMeshSegmentIterator b) {
  if (!a || !b) return false;
  const bool ea = !a->valid(), eb = !b->valid();
  if (ea || eb) return ea && eb && a->m.mesh == b->m.mesh;
  if (a->m.mesh != b->m.mesh) return false;
  return a->seg == b->seg || a->m.mesh->reversed(a->seg) == b->seg;
}
AIBoolean SAtEnd(AIMeshSegmentIterator s) { return !s || !s->valid(); }
AIErr SNext(AIMeshSegmentIterator s) {
  if (AIErr err = checkIter(s)) return err;
  s->seg = s->m.mesh->nextSegment(s->seg);
  return kNoErr;
}
AIErr SNextOnAxis(AIMeshSegmentIterator s) {
  if (AIErr err = checkMesh(s)) return err;
  // No next segment: the walk has left the axis, or this segment was gone.
  const SegmentRef next = s->m.mesh->nextOnAxis(s->seg);
  if (next.start == kNoVertex && !s->valid()) return kIterAtEndErr;
  s->seg = next;
  return kNoErr;
}
AIErr SPrevOnAxis(AIMeshSegmentIterator s) {
  if (AIErr err = checkIter(s)) return err;
  s->seg = s->m.mesh->prevOnAxis(s->seg);
  return kNoErr;
}
int32_t SGetAxis(AIMeshSegmentIterator s) { return s && s->valid() ? dirAxis(s->seg.dir) : -1; }
int32_t SGetSense(AIMeshSegmentIterator s) {
  if (!s || !s->valid()) return -1;
  return dirForward(s->seg.dir) ? kAIMeshAxisIncreasing : kAIMeshAxisDecreasing;
}
AIErr SReverse(AIMeshSegmentIterator s) {
  if (AIErr err = checkIter(s)) return err;
  s->seg = s->m.mesh->reversed(s->seg);
  return kNoErr;
}
AIErr SGetStart(AIMeshSegmentIterator s, AIMeshVertexIterator* v) {
  if (AIErr err = checkIter(s)) return err;
  if (!v) return kBadParameterErr;
  *v = newVertex(s->m, s->seg.start);
  return kNoErr;
}
AIErr SGetEnd(AIMeshSegmentIterator s, AIMeshVertexIterator* v) {
  if (AIErr err = checkMesh(s)) return err;
  const VertexId end = s->m.mesh->segmentEnd(s->seg);  // none only for a gone segment
  if (end == kNoVertex) return kIterAtEndErr;
  if (!v) return kBadParameterErr;
  *v = newVertex(s->m, end);
  return kNoErr;
}
// A gone segment has no knots (the engine says -1) and no points.
int32_t SCountKnots(AIMeshSegmentIterator s) {
  return s && s->m.live() ? std::max(s->m.mesh->knotCount(s->seg), 0) : 0;
}
AIErr SInsertKnots(AIMeshSegmentIterator s, int32_t m, int32_t n) {
  if (AIErr err = checkMesh(s)) return err;
  return s->m.mesh->insertKnots(s->seg, m, n) ? kNoErr : failure(s);
}
AIErr SDeleteKnots(AIMeshSegmentIterator s, int32_t m, int32_t n) {
  if (AIErr err = checkMesh(s)) return err;
  return s->m.mesh->deleteKnots(s->seg, m, n) ? kNoErr : failure(s);
}
int32_t SCountPoints(AIMeshSegmentIterator s) {
  const int32_t knots = s && s->m.live() ? s->m.mesh->knotCount(s->seg) : -1;
  return knots < 0 ? 0 : 3 * knots + 4;
}
AIErr SGetPoints(AIMeshSegmentIterator s, int32_t start, int32_t count, AIRealPoint* points) {
  if (AIErr err = checkMesh(s)) return err;
  if (count > 0 && !points) return failure(s);
  return s->m.mesh->getSegmentPoints(s->seg, start, count, points) ? kNoErr : failure(s);
}
AIErr SSetPoints(AIMeshSegmentIterator s, int32_t start, int32_t count, const AIRealPoint* points) {
  if (AIErr err = checkMesh(s)) return err;
  if (count > 0 && !points) return failure(s);
  return s->m.mesh->setSegmentPoints(s->seg, start, count, points) ? kNoErr : failure(s);
}
AIErr SSplit(AIMeshSegmentIterator s, int32_t k) {
  if (AIErr err = checkIter(s)) return err;
  return s->m.mesh->split(s->seg, k) != kNoVertex ? kNoErr : kBadParameterErr;
}
AIErr SJoin(AIMeshSegmentIterator s, int32_t* knot) {
  if (AIErr err = checkIter(s)) return err;
  const int k = s->m.mesh->join(s->seg);
  if (k < 0) return kBadParameterErr;
  if (knot) *knot = k;
  return kNoErr;
}
AIErr SGetControl(AIMeshSegmentIterator s, AIRealPoint* control) {
  if (AIErr err = checkIter(s)) return err;
  if (!control) return kBadParameterErr;
  *control = s->m.mesh->control(s->seg);
  return kNoErr;
}
AIErr SReshape(AIMeshSegmentIterator s, AIReal t, const AIRealPoint* point) {
  if (AIErr err = checkIter(s)) return err;
  if (!point) return kBadParameterErr;
  return s->m.mesh->reshape(s->seg, t, *point) ? kNoErr : kBadParameterErr;
}

// ---- AI Mesh Selection Suite -----------------------------------------------

// A copy is a selection object of its own holding the same vertices.
AIErr SelCopy(AIMeshSelection s, AIMeshSelection* clone) {
  if (!s || !clone) return kBadParameterErr;
  AIMeshSelection c = newSelection(s->m, false);
  if (s->m.live())
    for (VertexId v : s->m.mesh->vertices())
      if (s->contains(v)) c->set(v, true);
  *clone = c;
  return kNoErr;
}
int32_t SelAddRef(AIMeshSelection s) { return addRef(s); }
int32_t SelRelease(AIMeshSelection s) { return release(s, &Counters::selections); }
AIBoolean SelIsEmpty(AIMeshSelection s) {
  if (!s || !s->m.live()) return true;
  if (s->visible) return s->m.mesh->isSelectionEmpty();
  for (VertexId v = 0; v < s->flags.size(); ++v)
    if (s->flags[v] && s->m.mesh->alive(v)) return false;
  return true;
}
AIBoolean SelIsFull(AIMeshSelection s) {
  if (!s || !s->m.live()) return false;
  if (s->visible) return s->m.mesh->isSelectionFull();
  for (VertexId v : s->m.mesh->vertices())
    if (!s->contains(v)) return false;
  return true;
}
bool sameMesh(AIMeshSelection s, const MeshRef& m) { return s->m.live() && m.live() && s->m.mesh == m.mesh; }
AIBoolean SelContainsVertex(AIMeshSelection s, AIMeshVertexIterator v) {
  if (!s || !v || !v->valid() || !sameMesh(s, v->m)) return false;
  return s->contains(v->id);
}
AIErr SelSelectVertex(AIMeshSelection s, AIMeshVertexIterator v, AIBoolean select) {
  if (!s || !v) return kBadParameterErr;
  if (!v->valid()) return kIterAtEndErr;
  if (!sameMesh(s, v->m)) return kBadParameterErr;
  s->set(v->id, select != 0);
  return kNoErr;
}
// A segment is selected when both its end vertices are.
AIBoolean SelContainsSegment(AIMeshSelection s, AIMeshSegmentIterator g) {
  if (!s || !g || !g->valid() || !sameMesh(s, g->m)) return false;
  return s->contains(g->seg.start) && s->contains(g->m.mesh->segmentEnd(g->seg));
}
AIErr SelSelectSegment(AIMeshSelection s, AIMeshSegmentIterator g, AIBoolean select) {
  if (!s || !g) return kBadParameterErr;
  if (!g->valid()) return kIterAtEndErr;
  if (!sameMesh(s, g->m)) return kBadParameterErr;
  s->set(g->seg.start, select != 0);
  s->set(g->m.mesh->segmentEnd(g->seg), select != 0);
  return kNoErr;
}

// ---- AI Mesh Patch Suite ---------------------------------------------------

AIErr PCopy(AIMeshPatchIterator p, AIMeshPatchIterator* clone) {
  if (!p || !clone) return kBadParameterErr;
  *clone = newPatch(p->m, p->i, p->j);
  return kNoErr;
}
int32_t PAddRef(AIMeshPatchIterator p) { return addRef(p); }
int32_t PRelease(AIMeshPatchIterator p) { return release(p, &Counters::patchIterators); }
AIBoolean PAtEnd(AIMeshPatchIterator p) { return !p || !p->valid(); }
AIErr PNext(AIMeshPatchIterator p) {
  if (!p) return kBadParameterErr;
  if (!p->valid()) return kIterAtEndErr;
  if (++p->i >= p->m.mesh->sizeI()) p->i = 0, ++p->j;
  return kNoErr;
}
AIErr PGetCell(AIMeshPatchIterator p, int32_t* i, int32_t* j) {
  if (!p) return kBadParameterErr;
  if (!p->valid()) return kIterAtEndErr;
  if (i) *i = p->i;
  if (j) *j = p->j;
  return kNoErr;
}
AIErr PGetCorner(AIMeshPatchIterator p, int32_t k, AIMeshVertexIterator* vertex) {
  if (!p || !vertex || k < 0 || k > 3) return kBadParameterErr;
  if (!p->valid()) return kIterAtEndErr;
  static const int di[4] = {0, 1, 1, 0}, dj[4] = {0, 0, 1, 1};
  *vertex = newVertex(p->m, p->m.mesh->node(p->i + di[k], p->j + dj[k]));
  return kNoErr;
}

// ---- AI Mesh Hit Suite -----------------------------------------------------

AIErr HitVertex(AIArtHandle art, AIRealPoint point, AIReal tolerance, AIMeshVertexIterator* vertex) {
  GradientMesh* m = nullptr;
  if (AIErr err = meshOf(art, &m)) return err;
  if (!vertex) return kBadParameterErr;
  const VertexId v = m->hitVertex(point, tolerance);
  *vertex = v == kNoVertex ? nullptr : newVertex(refOf(m), v);
  return kNoErr;
}

const AIMeshSuite gMesh = {
    .InitCartesian = InitCartesian,
    .GetSize = GetSize,
    .GetNode = GetNode,
    .GetStartVertex = GetStartVertex,
    .GetStartSegment = GetStartSegment,
    .GetStartPatch = GetStartPatch,
    .GetSelection = GetSelection,
    .NewSelection = NewSelection,
    .GetRelativeU = GetRelativeU,
    .GetRelativeV = GetRelativeV,
    .InsertU = InsertU,
    .InsertV = InsertV,
    .DeleteGridLines = DeleteGridLines,
    .EvalPoint = EvalPoint,
    .EvalColor = EvalColor,
    .EvalOpacity = EvalOpacity,
    .InvertPoint = InvertPoint,
    .Transform = Transform,
};

const AIMeshVertexIteratorSuite gVertex = {
    .Copy = VCopy,
    .AddRef = VAddRef,
    .Release = VRelease,
    .IsEqual = VIsEqual,
    .AtEnd = VAtEnd,
    .Next = VNext,
    .NextI = VNextI,
    .PrevI = VPrevI,
    .NextJ = VNextJ,
    .PrevJ = VPrevJ,
    .IsNode = VIsNode,
    .GetNodeIndex = VGetNodeIndex,
    .CountSegments = VCountSegments,
    .GetSegmentIndex = VGetSegmentIndex,
    .GetSegment = VGetSegment,
    .GetPoint = VGetPoint,
    .SetPoint = VSetPoint,
    .GetTangent = VGetTangent,
    .SetTangent = VSetTangent,
    .GetSmooth = VGetSmooth,
    .SetSmooth = VSetSmooth,
    .GetColor = VGetColor,
    .SetColor = VSetColor,
    .GetOpacity = VGetOpacity,
    .SetOpacity = VSetOpacity,
    .GetUV = VGetUV,
};

const AIMeshSegmentIteratorSuite gSegment = {
    .Copy = SCopy,
    .AddRef = SAddRef,
    .Release = SRelease,
    .IsEqual = SIsEqual,
    .AtEnd = SAtEnd,
    .Next = SNext,
    .NextOnAxis = SNextOnAxis,
    .PrevOnAxis = SPrevOnAxis,
    .GetAxis = SGetAxis,
    .GetSense = SGetSense,
    .Reverse = SReverse,
    .GetStart = SGetStart,
    .GetEnd = SGetEnd,
    .CountKnots = SCountKnots,
    .InsertKnots = SInsertKnots,
    .DeleteKnots = SDeleteKnots,
    .CountPoints = SCountPoints,
    .GetPoints = SGetPoints,
    .SetPoints = SSetPoints,
    .Split = SSplit,
    .Join = SJoin,
    .GetControl = SGetControl,
    .Reshape = SReshape,
};

const AIMeshSelectionSuite gSelection = {
    .Copy = SelCopy,
    .AddRef = SelAddRef,
    .Release = SelRelease,
    .IsEmpty = SelIsEmpty,
    .IsFull = SelIsFull,
    .ContainsVertex = SelContainsVertex,
    .SelectVertex = SelSelectVertex,
    .ContainsSegment = SelContainsSegment,
    .SelectSegment = SelSelectSegment,
};

const AIMeshPatchIteratorSuite gPatch = {
    .Copy = PCopy,
    .AddRef = PAddRef,
    .Release = PRelease,
    .AtEnd = PAtEnd,
    .Next = PNext,
    .GetCell = PGetCell,
    .GetCorner = PGetCorner,
};

const AIMeshHitSuite gHit = {
    .HitVertex = HitVertex,
};

}  // namespace

void registerMeshSuites() {
  registerSuite(kAIMeshSuite, kAIMeshSuiteVersion, &gMesh);
  registerSuite(kAIMeshVertexIteratorSuite, kAIMeshVertexIteratorSuiteVersion, &gVertex);
  registerSuite(kAIMeshSegmentIteratorSuite, kAIMeshSegmentIteratorSuiteVersion, &gSegment);
  registerSuite(kAIMeshSelectionSuite, kAIMeshSelectionSuiteVersion, &gSelection);
  registerSuite(kAIMeshPatchIteratorSuite, kAIMeshPatchIteratorSuiteVersion, &gPatch);
  registerSuite(kAIMeshHitSuite, kAIMeshHitSuiteVersion, &gHit);
}

}  // namespace lb::host
