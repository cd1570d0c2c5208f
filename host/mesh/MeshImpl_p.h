// Private storage of the gradient-mesh engine, shared by its source files.
//
// Storage. Every node lives in a cell together with the two runs that leave
// it forwards (along I and along J). Cells are addressed by a column slot and
// a row slot that never change while the node exists; the order tables `col`
// and `row` map the logical indices i and j to slots, and `colPos` / `rowPos`
// map slots back (-1 for a deleted line). Inserting or deleting a grid line
// therefore touches the order tables, the cells of that one line and the runs
// that cross it: O(I + J), never the whole mesh.
//
// Vertex ids index `locs`, which records where a vertex lives in slot
// coordinates, so a node's location survives insertions elsewhere unchanged.
#pragma once

#include <cstdint>
#include <vector>

#include "host/Color.h"
#include "host/mesh/Bezier.h"
#include "host/mesh/CellColumn.h"
#include "host/mesh/GradientMesh.h"
#include "host/mesh/InlineVec.h"

namespace lb::host {

using P = AIRealPoint;

// An interior anchor of a run: a non-node vertex (with an id) or a knot.
struct Joint {
  VertexId id = kNoVertex;  // kNoVertex: a knot
  bool selected = false;
  bool smooth[2] = {false, false};  // backward, forward
};

// The chain between two adjacent nodes of a grid line.
// Up to two pieces are stored inline (see InlineVec).
struct Run {
  InlineVec<P, 7> pts;         // 3m + 1
  InlineVec<Joint, 1> joints;  // m - 1
  int pieces() const { return (static_cast<int>(pts.size()) - 1) / 3; }
};

struct Node {
  VertexId id = kNoVertex;
  P p{0, 0};
  AIColor color{};
  double opacity = 1.0;
  bool selected = false;
  bool smooth[4] = {false, false, false, false};  // by direction
};

// A node and the runs leaving it forwards: run[0] along I, run[1] along J.
// Runs past the last line of their axis stay empty.
struct Cell {
  Node node;
  Run run[2];
};

// A cell's only resources are its runs' heap blocks: while no run anywhere
// holds one (runs of up to two pieces never do), a column drops its cells
// without walking them.
template <>
inline bool droppableWithoutDestructor<Cell>() {
  return !decltype(Run::pts)::anyOnHeap() && !decltype(Run::joints)::anyOnHeap();
}

enum : int8_t { kDead = 0, kNodeLoc = 1, kInnerLoc = 2 };

// Where a vertex lives, in slot coordinates: a node, or anchor a of the run
// along `axis` that leaves the node in cell (cs, rs); with the directions
// it has segments in (bit d for direction d).
//
// A node's directions are those that stay inside the grid. They never
// change while it lives: lines are inserted and deleted strictly inside
// the grid, so a node on the border stays there and an inner one inside.
struct Loc {
  int8_t kind = kDead;
  int8_t axis = 0;
  uint8_t dirs = 0;
  int32_t cs = 0, rs = 0, a = 0;
  static Loc node(int32_t cs, int32_t rs, unsigned dirs) {
    return Loc{kNodeLoc, 0, static_cast<uint8_t>(dirs), cs, rs, 0};
  }
  // A non-node vertex has the two directions along its run.
  static Loc inner(int axis, int32_t cs, int32_t rs, int32_t a) {
    const unsigned dirs = axis == 0 ? (1u << kDirIFwd) | (1u << kDirIBack) : (1u << kDirJFwd) | (1u << kDirJBack);
    return Loc{kInnerLoc, static_cast<int8_t>(axis), static_cast<uint8_t>(dirs), cs, rs, a};
  }
};
// The directions of a node at (i, j) of an I x J grid.
constexpr unsigned nodeDirs(int i, int j, int I, int J) {
  return (i > 0 ? 1u << kDirIBack : 0u) | (j > 0 ? 1u << kDirJBack : 0u) | (i < I ? 1u << kDirIFwd : 0u) |
         (j < J ? 1u << kDirJFwd : 0u);
}

// A vertex's location in logical indices, with the slots of its cell.
struct Where {
  int8_t kind = kDead;
  int8_t axis = 0;
  uint8_t dirs = 0;
  int32_t i = 0, j = 0, a = 0;
  int32_t cs = 0, rs = 0;
  explicit operator bool() const { return kind != kDead; }
};

// The node between the two halves of a run split at a chain parameter.
struct SplitPoint {
  P point{};
  VertexId reuse = kNoVertex;  // the interior vertex that becomes the node
  bool selected = false;
  bool smooth[2] = {false, false};
};

// Work buffer of a grid-line insertion (an iso-curve's breakpoints), kept
// between insertions so that inserting many lines does not allocate; never
// copied.
struct EditScratch {
  std::vector<double> cuts;
  EditScratch() = default;
  EditScratch(const EditScratch&) {}
  EditScratch& operator=(const EditScratch&) { return *this; }
};

// Opposite handles on one line through the anchor.
bool collinear(P in, P anchor, P out);

struct GradientMesh::Impl {
  int I = 1, J = 1;
  std::vector<double> u{0, 1}, v{0, 1};
  std::vector<int32_t> col, row;        // logical index -> slot
  std::vector<int32_t> colPos, rowPos;  // slot -> logical index, -1 when deleted
  std::vector<CellColumn<Cell>> cells;  // [column slot][row slot]
  std::vector<Loc> locs;                 // by vertex id

  // Colour field cache: per node in row order, the components of the mesh's
  // colour kind followed by the opacity, with their slopes along u and v.
  // Rebuilt lazily on the first evaluation after a change.
  mutable bool dirty = true;
  // Every node has the very same paint: a fresh grid and the lines added to
  // it, until a node's colour or opacity is set. A new line's nodes then
  // take that paint without looking at their neighbours.
  bool uniformPaint = true;
  // No vertex is selected: a fresh grid, or a cleared selection, until a
  // vertex is selected. Edits keep it (a vertex they make is selected only
  // when selected ones bound it), and clearing then has nothing to do.
  bool noneSelected = true;
  // Every vertex is selected, whatever the flags say: selecting a whole
  // mesh writes no flag. Edits keep it (a vertex they make between selected
  // ones is selected); deselecting one vertex first sets every flag.
  bool allSelected = false;
  void paintChanged() {
    dirty = true;
    uniformPaint = false;
  }
  mutable AIColorTag kind = kThreeColor;
  mutable int nc = 3;
  mutable std::vector<double> val, du, dv;

  mutable EditScratch scratch;

  // ---- addressing ----
  Cell& cellAt(int i, int j) { return cells[col[i]][row[j]]; }
  const Cell& cellAt(int i, int j) const { return cells[col[i]][row[j]]; }
  Node& nodeAt(int i, int j) { return cellAt(i, j).node; }
  const Node& nodeAt(int i, int j) const { return cellAt(i, j).node; }
  bool runExists(int axis, int i, int j) const {
    return axis == 0 ? (i >= 0 && i < I && j >= 0 && j <= J) : (i >= 0 && i <= I && j >= 0 && j < J);
  }
  Run& runAt(int axis, int i, int j) { return cellAt(i, j).run[axis]; }
  const Run& runAt(int axis, int i, int j) const { return cellAt(i, j).run[axis]; }
  static void runEndNode(int axis, int i, int j, int* ei, int* ej) {
    *ei = axis == 0 ? i + 1 : i;
    *ej = axis == 0 ? j : j + 1;
  }
  // Cell a along axis `axis` and b across it: (i, j) = (a, b) for axis 0,
  // (b, a) for axis 1.
  Cell& cellOnAxis(int axis, int a, int b) { return axis == 0 ? cellAt(a, b) : cellAt(b, a); }
  const Cell& cellOnAxis(int axis, int a, int b) const { return axis == 0 ? cellAt(a, b) : cellAt(b, a); }
  int count(int axis) const { return axis == 0 ? I : J; }

  // ---- vertex ids ----
  VertexId newId(const Loc& l) {
    restructured();
    locs.push_back(l);
    return static_cast<VertexId>(locs.size() - 1);
  }
  Where loc(VertexId id) const {
    if (id >= locs.size() || locs[id].kind == kDead) return Where{};
    const Loc& l = locs[id];
    return Where{l.kind, l.axis, l.dirs, colPos[l.cs], rowPos[l.rs], l.a, l.cs, l.rs};
  }
  // The cell a located vertex lives in (a node's own cell, or the start
  // cell of a non-node vertex's run), reached by its slots directly.
  Cell& cellOf(const Where& l) { return cells[l.cs][l.rs]; }
  const Cell& cellOf(const Where& l) const { return cells[l.cs][l.rs]; }
  void setNodeLoc(VertexId id, int i, int j) {
    restructured();
    locs[id] = Loc::node(col[i], row[j], nodeDirs(i, j, I, J));
  }
  // Records the location of every vertex inside run (axis, i, j).
  void reindexRun(int axis, int i, int j);
  // The same for the run along `axis` leaving the cell in slots (cs, rs).
  void reindexRunAt(int axis, int32_t cs, int32_t rs);
  // Marks every vertex inside a run dead.
  void killRun(const Run& r);

  // Bit d set when vertex v has a segment in direction d: a node has those
  // that stay inside the grid, a non-node vertex the two along its run.
  unsigned segmentMask(VertexId v) const { return loc(v).dirs; }

  // Calls f on every interior anchor of every run, in walk order of runs.
  template <class F>
  void forEachJoint(F f) const {
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i <= I; ++i)
        for (int axis = 0; axis < 2; ++axis)
          if (runExists(axis, i, j))
            for (const Joint& jt : runAt(axis, i, j).joints) f(jt);
  }

  void init(int i, int j);
  // Rebuilds the slot storage in logical order, dropping deleted lines.
  void compact();
  int deadSlots() const;

  // ---- vertices in runs ----
  static int nextVertexAnchor(const Run& r, int a);
  static int prevVertexAnchor(const Run& r, int a);
  static VertexId firstInner(const Run& r, int after);

  // A segment as a range of anchors [a0, a1] of one run.
  struct Span {
    int axis = 0, i = 0, j = 0, a0 = 0, a1 = 0;
    int32_t cs = 0, rs = 0;  // slots of the run's start cell
    bool fwd = true;
  };
  Run& runOf(const Span& sp) { return cells[sp.cs][sp.rs].run[sp.axis]; }
  const Run& runOf(const Span& sp) const { return cells[sp.cs][sp.rs].run[sp.axis]; }
  bool span(SegmentRef s, Span* out) const {
    const Span* sp = spanOf(s);
    if (sp) *out = *sp;
    return sp != nullptr;
  }
  // The same without a copy: the span stays valid until the next query or
  // edit. Null for a segment that does not exist.
  const Span* spanOf(SegmentRef s) const {
    if (memo.structure != structure || memo.seg.start != s.start || memo.seg.dir != s.dir) {
      memo.ok = computeSpan(s, &memo.span);
      memo.seg = s;
      memo.structure = structure;
    }
    return memo.ok ? &memo.span : nullptr;
  }
  bool computeSpan(SegmentRef s, Span* out) const;
  // The vertex at anchor a of the span's run.
  VertexId anchorId(const Span& sp, int a) const;
  // Records sp as segment s's span under the current structure stamp.
  void remember(SegmentRef s, const Span& sp) const { memo = SpanMemo{s, structure, true, sp}; }
  // Cuts piece m of the segment at sp into n + 1 equal-parameter pieces.
  void insertKnotsAt(const Span& sp, int m, int n);

  // Structure stamp: changes whenever vertex ids, runs' anchors or the grid
  // lines change, so that a span found earlier can be reused while the stamp
  // is the same. A suite call on a segment asks for its span twice (the
  // validity check, then the work), and walks ask for it again and again.
  // Like the colour field cache, the memo assumes one thread per mesh.
  uint64_t structure = 0;
  void restructured() { ++structure; }
  struct SpanMemo {
    SegmentRef seg{kNoVertex, -1};
    uint64_t structure = ~uint64_t{0};
    bool ok = false;
    Span span;
  };
  mutable SpanMemo memo;
  // Marks the structure changed when made and again when gone, so that no
  // span found half-way through an edit outlives it.
  struct Restructuring {
    Impl& m;
    explicit Restructuring(Impl& impl) : m(impl) { m.restructured(); }
    ~Restructuring() { m.restructured(); }
    Restructuring(const Restructuring&) = delete;
    Restructuring& operator=(const Restructuring&) = delete;
  };

  bool* smoothFlag(const Where& l, int dir);
  const bool* smoothFlag(const Where& l, int dir) const { return const_cast<Impl*>(this)->smoothFlag(l, dir); }

  void setNodePoint(int i, int j, P p);
  void setRunPoint(int axis, int i, int j, int idx, P p);

  // ---- geometry (MeshGeometry.cpp) ----
  static void chainEval(const Run& r, double s, P* p, P* d);
  void patchEval(int i, int j, double s, double t, P* p, P* ps, P* pt) const;
  void clampCell(int* i, int* j, double* s, double* t) const;
  static void locate(const std::vector<double>& g, double x, int* cell, double* local);

  // ---- colour field (ColorField.cpp) ----
  void buildColor() const;
  // Components first .. first + count - 1 of the field (the opacity is
  // component nc) at (s, t) in cell (i, j).
  void fieldAt(int i, int j, double s, double t, int first, int count, double* out) const;
  AIColor colorAt(int i, int j, double s, double t) const;
  double opacityAt(int i, int j, double s, double t) const;
  // Colour and opacity of the surface on cross line b at fraction f of the
  // cell between lines k and k + 1 of `axis`, computed from the nodes of
  // that neighbourhood alone (the same values the full field gives).
  void edgePaint(int axis, int k, int b, double f, AIColor* color, double* opacity) const;

  // ---- grid edits (GridEdits.cpp) ----
  int insertLine(int axis, double at);
  void deleteLine(int axis, int k);
};

}  // namespace lb::host
