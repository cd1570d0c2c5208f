// The host's gradient-mesh engine: one mesh of I x J patches.
//
// Structure. Nodes (i, j), 0 <= i <= I, 0 <= j <= J, sit at the crossings of
// the grid lines. The curve between two adjacent nodes of a line is a run: a
// chain of m cubic pieces (3m + 1 points). The m - 1 interior anchors of a
// run are either non-node vertices or hidden knots. A segment is the chain
// between two adjacent vertices of a line.
//
// Vertices (nodes and non-node vertices) carry stable ids: an id keeps
// naming the same vertex across every edit until that vertex stops being a
// vertex (its line deleted, joined into a knot). Ids are never reused
// within one mesh object, so iterators can hold them safely.
//
// Directions at a vertex are numbered in segment order: 0 = I backward,
// 1 = J backward, 2 = I forward, 3 = J forward. A vertex's segment index is
// the rank of the direction among the directions it has a segment in.
//
// Chain parameterisation: the m pieces of a run (or of a segment) share the
// parameter range [0, 1] equally; piece q covers [q/m, (q+1)/m].
//
// Geometry inside patch (i, j) is the bilinearly blended Coons patch of its
// four boundary runs; relative coordinates (u, v) map linearly onto the
// patch's local (s, t). Colour and opacity are interpolated in (u, v):
// bicubic Hermite with shape-preserving (monotone) slopes at the nodes, no
// twist, clamped to the range of the cell's four corner values, so the
// field is C1 across patch borders wherever the clamp is not active and
// never leaves the range of the node values.
//
// Cost. Reading or writing one vertex is O(1); inserting or deleting one
// grid line is O(I + J) (order tables over stable cell storage, see
// MeshImpl_p.h); the colour field is rebuilt lazily, once, on the first
// evaluation after a change.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "AIMeshSuites.h"
#include "host/Color.h"

namespace lb::host {

using VertexId = uint32_t;
constexpr VertexId kNoVertex = 0xffffffffu;

// Directions at a vertex, in segment-numbering order.
enum MeshDir : int { kDirIBack = 0, kDirJBack = 1, kDirIFwd = 2, kDirJFwd = 3 };
constexpr int meshDir(int axis, int sense) { return (axis & 1) + (sense == kAIMeshAxisDecreasing ? 0 : 2); }
constexpr int dirAxis(int dir) { return dir & 1; }
constexpr bool dirForward(int dir) { return dir >= 2; }
constexpr int dirOpposite(int dir) { return dir ^ 2; }

// A segment seen from one of its ends: the start vertex and the direction
// in which it leaves that vertex.
struct SegmentRef {
  VertexId start = kNoVertex;
  int dir = kDirIFwd;
  bool operator==(const SegmentRef&) const = default;
};

// Node content, as the file reader and writer see it.
struct MeshNodeData {
  AIRealPoint p{0, 0};
  AIColor color{};
  double opacity = 1.0;
  bool selected = false;
  bool smooth[4] = {false, false, false, false};  // by direction
};

// One run as the file reader and writer see it.
struct MeshRunData {
  struct Inner {
    bool vertex = false;
    bool selected = false;
    bool smooth[2] = {false, false};  // backward, forward
  };
  std::vector<AIRealPoint> points;  // 3m + 1
  std::vector<Inner> inner;         // m - 1
};

// A shared flag that says whether an object still exists. Iterators made by
// the million hold one each, so it is counted without atomic operations:
// the host and its objects live on one thread.
class LifeToken {
 public:
  // A fresh token for a living object.
  static LifeToken make() { return LifeToken(new State{1, true}); }
  LifeToken() = default;
  LifeToken(const LifeToken& o) : s_(o.s_) {
    if (s_) ++s_->holders;
  }
  LifeToken& operator=(const LifeToken& o) {
    if (s_ == o.s_) return *this;  // iterators reused on the same mesh
    LifeToken copy(o);
    std::swap(s_, copy.s_);
    return *this;
  }
  ~LifeToken() {
    if (s_ && --s_->holders == 0) delete s_;
  }
  bool alive() const { return s_ && s_->alive; }
  // Called by the owner when the object goes: every holder sees it dead.
  void expire() {
    if (s_) s_->alive = false;
  }

 private:
  struct State {
    uint32_t holders;
    bool alive;
  };
  explicit LifeToken(State* s) : s_(s) {}
  State* s_ = nullptr;
};

class GradientMesh {
 public:
  GradientMesh();
  ~GradientMesh();
  GradientMesh(const GradientMesh&);
  // Assignment gives the mesh new content; iterators on the old content end.
  GradientMesh& operator=(const GradientMesh&);

  // Fresh grid of i x j cells spanning the unit square: straight runs with
  // handles at one and two thirds, even relative positions, white RGB
  // nodes of opacity 1, nothing selected, no smooth flags.
  void initCartesian(int i, int j);
  int sizeI() const;
  int sizeJ() const;

  // Token that expires when this mesh object is destroyed or assigned to.
  const LifeToken& lifeToken() const { return life_; }

  // ---- vertices -------------------------------------------------------
  size_t nodeCount() const;
  size_t vertexCount() const;  // nodes and non-node vertices
  VertexId node(int i, int j) const;  // kNoVertex out of range
  bool alive(VertexId v) const;
  bool isNode(VertexId v) const;
  // Node indices; for a non-node vertex those of the start node of its run.
  bool nodeIndex(VertexId v, int* i, int* j) const;
  // Axis of the line a non-node vertex lies on (-1 for nodes and dead ids).
  int vertexAxis(VertexId v) const;

  // Walk order: nodes in row order (i fastest, then j); after node (i, j)
  // the non-node vertices of its forward I run, then of its forward J run.
  VertexId firstVertex() const;
  VertexId nextVertex(VertexId v) const;  // kNoVertex at the end
  // Adjacent vertex along the line in direction dir, or kNoVertex.
  VertexId neighbour(VertexId v, int dir) const;

  bool hasSegment(VertexId v, int dir) const;
  int segmentCount(VertexId v) const;
  int segmentIndex(VertexId v, int dir) const;  // -1 when none
  int segmentDir(VertexId v, int index) const;  // -1 when none

  AIRealPoint point(VertexId v) const;
  // Moves the anchor only; handles stay where they are.
  void setPoint(VertexId v, AIRealPoint p);
  // Handle of the vertex on its segment in direction dir: point 1 of that
  // segment seen from the vertex.
  AIRealPoint tangent(VertexId v, int dir) const;
  void setTangent(VertexId v, int dir, AIRealPoint h);
  bool smooth(VertexId v, int dir) const;
  void setSmooth(VertexId v, int dir, bool on);
  // The same by segment index at the vertex (one look-up for both steps):
  // -1 / false when the vertex has no segment of that index.
  int smoothAt(VertexId v, int index) const;
  bool setSmoothAt(VertexId v, int index, bool on);
  // A node's own colour/opacity; a non-node vertex reports the surface's.
  AIColor color(VertexId v) const;
  double opacity(VertexId v) const;
  // The same, false (and *out untouched) for a gone vertex.
  bool colorOf(VertexId v, AIColor* out) const;
  bool opacityOf(VertexId v, double* out) const;
  bool setColor(VertexId v, const AIColor& c);  // false for non-node vertices
  bool setOpacity(VertexId v, double o);        // false for non-node vertices
  AIRealPoint uv(VertexId v) const;

  // ---- selection of vertices (the visible one) ------------------------
  bool selected(VertexId v) const;
  void setSelected(VertexId v, bool on);
  void selectAll();
  void clearSelection();
  bool isSelectionEmpty() const;
  bool isSelectionFull() const;
  size_t selectedCount() const;
  // Every live vertex id, in walk order.
  std::vector<VertexId> vertices() const;

  // ---- segments -------------------------------------------------------
  bool segmentValid(SegmentRef s) const;
  // Walk order: runs along I row by row (j = 0..J, i = 0..I-1), then runs
  // along J column by column (i = 0..I, j = 0..J-1); each run's segments in
  // order, oriented forward. An invalid ref (start kNoVertex) is the end.
  SegmentRef firstSegment() const;
  SegmentRef nextSegment(SegmentRef s) const;
  SegmentRef nextOnAxis(SegmentRef s) const;
  SegmentRef prevOnAxis(SegmentRef s) const;
  SegmentRef reversed(SegmentRef s) const;
  VertexId segmentEnd(SegmentRef s) const;
  int knotCount(SegmentRef s) const;
  // Bezier points in the segment's orientation (3 knots + 4).
  std::vector<AIRealPoint> segmentPoints(SegmentRef s) const;
  // Copies points [start, start+count) in the segment's orientation into
  // out; false when the range is outside the segment.
  bool getSegmentPoints(SegmentRef s, int start, int count, AIRealPoint* out) const;
  // Sets points [start, start+count). Anchors at the ends move the vertices.
  bool setSegmentPoints(SegmentRef s, int start, int count, const AIRealPoint* pts);
  // Subdivides the piece that ends at knot m (m = knots: the last piece)
  // into n + 1 equal-parameter pieces; the shape stays exactly.
  bool insertKnots(SegmentRef s, int m, int n);
  // Removes knots m..m+n-1; the merged piece keeps its outer handles.
  bool deleteKnots(SegmentRef s, int m, int n);
  // Knot k becomes a vertex; returns its id (kNoVertex on failure).
  VertexId split(SegmentRef s, int k);
  // Joins the segment with the following one at its end vertex, which must
  // not be a node; returns the index of the knot it became, -1 on failure.
  int join(SegmentRef s);
  // Overall control at the chain's start: point 1 of the segment (the
  // first piece's out handle), so a chain flattened to one cubic keeps it.
  AIRealPoint control(SegmentRef s) const;
  // Deforms the chain so that it passes through p at chain parameter t in
  // (0, 1): inside a piece both inner handles move; at a knot the knot
  // moves with its handles.
  bool reshape(SegmentRef s, double t, AIRealPoint p);

  // ---- grid -----------------------------------------------------------
  double relativeU(int i) const;
  double relativeV(int j) const;
  const std::vector<double>& relativeUs() const;
  const std::vector<double>& relativeVs() const;
  // Inserts a line of constant i at u = cell + fraction; returns its index
  // or -1 when u is not strictly inside a cell.
  int insertU(double u);
  int insertV(double v);
  // Removes the interior line of constant i where u is an integer and of
  // constant j where v is; false when no line was removed.
  bool deleteGridLines(double u, double v);

  // ---- evaluation -----------------------------------------------------
  // Mixed colour kinds: every node is converted to the kind of node (0, 0)
  // before interpolating. A none node counts as white; a mesh whose node
  // (0, 0) is none evaluates to none.
  AIRealPoint evalPoint(double u, double v) const;
  AIColor evalColor(double u, double v) const;
  double evalOpacity(double u, double v) const;
  // Point / colour / opacity of patch (i, j) at local (s, t) in [0, 1].
  AIRealPoint patchPoint(int i, int j, double s, double t) const;
  // Point and its partial derivatives by s and t.
  void patchDerivs(int i, int j, double s, double t, AIRealPoint* p, AIRealPoint* ps, AIRealPoint* pt) const;
  AIColor patchColor(int i, int j, double s, double t) const;
  double patchOpacity(int i, int j, double s, double t) const;
  // Maps a document point to (u, v); true when it lies on the mesh. When
  // it does not, *uv is the nearest place found.
  bool invertPoint(AIRealPoint p, AIRealPoint* uv) const;

  // ---- whole mesh ------------------------------------------------------
  // Bounds of every grid line's curve.
  AIRealRect bounds() const;
  void transform(const AIRealMatrix& m);
  // The vertex nearest p within tolerance, or kNoVertex.
  VertexId hitVertex(AIRealPoint p, double tolerance) const;

  // ---- raw access for the file reader/writer and the renderer ----------
  MeshNodeData nodeData(int i, int j) const;
  void setNodeData(int i, int j, const MeshNodeData& d);
  // Run from node (i, j) along axis (0: I, 1: J).
  MeshRunData runData(int axis, int i, int j) const;
  // Replaces a run; its end points must be the nodes' points (they are
  // forced to them). Returns false when the shape of data is wrong.
  bool setRunData(int axis, int i, int j, const MeshRunData& d);
  // Control points of a run (3m + 1), for drawing.
  std::span<const AIRealPoint> runPoints(int axis, int i, int j) const;
  // Sets the relative positions; false unless strictly increasing from 0
  // to 1 with the right counts.
  bool setRelative(const std::vector<double>& u, const std::vector<double>& v);

  // The engine's storage, defined in MeshImpl_p.h for the engine's own
  // source files.
  struct Impl;

 private:
  std::unique_ptr<Impl> impl_;
  LifeToken life_;
};

}  // namespace lb::host
