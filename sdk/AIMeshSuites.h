// Host suites of the gradient-mesh engine: mesh, vertex iterator, segment
// iterator, selection, patch iterator and hit testing.
//
// Conventions (see docs/host-conventions.md):
//  * A mesh of I x J cells has nodes (i, j), 0 <= i <= I, 0 <= j <= J.
//  * A vertex numbers its segments in the order I backward, J backward,
//    I forward, J forward, skipping missing directions.
//  * Iterators and selections are reference counted: every one handed out
//    must be Released by whoever obtained it.
//  * Knots of a segment are numbered 0..CountKnots-1 from the segment's
//    start. A segment with n knots has 3n + 4 Bezier points: start anchor,
//    its out handle, then (in, anchor, out) per knot, then the end's in
//    handle and the end anchor.
#pragma once

#include "AITypes.h"

enum AIMeshAxis : int32_t { kAIMeshIAxis = 0, kAIMeshJAxis = 1 };
enum AIMeshAxisSense : int32_t { kAIMeshAxisIncreasing = 0, kAIMeshAxisDecreasing = 1 };
constexpr AIMeshAxisSense kAIMeshForward = kAIMeshAxisIncreasing;
constexpr AIMeshAxisSense kAIMeshBackward = kAIMeshAxisDecreasing;

struct _AIMeshVertexIterator;
using AIMeshVertexIterator = _AIMeshVertexIterator*;
struct _AIMeshSegmentIterator;
using AIMeshSegmentIterator = _AIMeshSegmentIterator*;
struct _AIMeshPatchIterator;
using AIMeshPatchIterator = _AIMeshPatchIterator*;
struct _AIMeshSelection;
using AIMeshSelection = _AIMeshSelection*;

// ---- AI Mesh Suite 6 ---------------------------------------------------
constexpr const char* kAIMeshSuite = "AI Mesh Suite";
constexpr int32_t kAIMeshSuiteVersion = 6;
struct AIMeshSuite {
  // Makes the mesh a fresh I x J grid: straight runs, even relative
  // positions, default colour (white) and opacity (1).
  AIErr (*InitCartesian)(AIArtHandle mesh, int32_t i, int32_t j);
  AIErr (*GetSize)(AIArtHandle mesh, int32_t* i, int32_t* j);
  // An iterator standing on node (i, j); release it.
  AIErr (*GetNode)(AIArtHandle mesh, int32_t i, int32_t j, AIMeshVertexIterator* vertex);
  AIErr (*GetStartVertex)(AIArtHandle mesh, AIMeshVertexIterator* vertex);
  AIErr (*GetStartSegment)(AIArtHandle mesh, AIMeshSegmentIterator* segment);
  AIErr (*GetStartPatch)(AIArtHandle mesh, AIMeshPatchIterator* patch);
  // The visible selection: changing it changes what the user sees.
  AIErr (*GetSelection)(AIArtHandle mesh, AIMeshSelection* selection);
  // A new selection object of the mesh, empty or full, not the visible one.
  AIErr (*NewSelection)(AIArtHandle mesh, AIBoolean all, AIMeshSelection* selection);
  // Relative position in [0, 1] of line i (constant i) or line j.
  AIErr (*GetRelativeU)(AIArtHandle mesh, int32_t i, AIReal* u);
  AIErr (*GetRelativeV)(AIArtHandle mesh, int32_t j, AIReal* v);
  // u = index of the cell split + fraction in (0, 1); *i receives the new
  // line's index.
  AIErr (*InsertU)(AIArtHandle mesh, AIReal u, int32_t* i);
  AIErr (*InsertV)(AIArtHandle mesh, AIReal v, int32_t* j);
  // Removes the line of constant i where u is an integer, and the line of
  // constant j where v is an integer. Border lines cannot be removed.
  AIErr (*DeleteGridLines)(AIArtHandle mesh, AIReal u, AIReal v);
  // (u, v) relative coordinates in [0, 1].
  AIErr (*EvalPoint)(AIArtHandle mesh, AIRealPoint uv, AIRealPoint* point);
  AIErr (*EvalColor)(AIArtHandle mesh, AIRealPoint uv, AIColor* color);
  AIErr (*EvalOpacity)(AIArtHandle mesh, AIRealPoint uv, AIReal* opacity);
  // Maps a document point back to (u, v); *onMesh says whether it lies on
  // the mesh.
  AIErr (*InvertPoint)(AIArtHandle mesh, AIRealPoint point, AIRealPoint* uv, AIBoolean* onMesh);
  AIErr (*Transform)(AIArtHandle mesh, const AIRealMatrix* matrix);
};

// ---- AI Mesh Vertex Suite 4 --------------------------------------------
constexpr const char* kAIMeshVertexIteratorSuite = "AI Mesh Vertex Suite";
constexpr int32_t kAIMeshVertexIteratorSuiteVersion = 4;
struct AIMeshVertexIteratorSuite {
  AIErr (*Copy)(AIMeshVertexIterator vertex, AIMeshVertexIterator* clone);
  int32_t (*AddRef)(AIMeshVertexIterator vertex);
  int32_t (*Release)(AIMeshVertexIterator vertex);
  AIBoolean (*IsEqual)(AIMeshVertexIterator a, AIMeshVertexIterator b);  // same vertex
  AIBoolean (*AtEnd)(AIMeshVertexIterator vertex);
  // Steps in the mesh's vertex walk order (nodes in row order, i fastest).
  AIErr (*Next)(AIMeshVertexIterator vertex);
  // Steps to the next vertex along the grid line in +I / -I / +J / -J.
  // Stepping off the mesh leaves the iterator at its end.
  AIErr (*NextI)(AIMeshVertexIterator vertex);
  AIErr (*PrevI)(AIMeshVertexIterator vertex);
  AIErr (*NextJ)(AIMeshVertexIterator vertex);
  AIErr (*PrevJ)(AIMeshVertexIterator vertex);
  AIBoolean (*IsNode)(AIMeshVertexIterator vertex);
  // Node indices; for a non-node vertex, those of the node behind it on
  // its line.
  AIErr (*GetNodeIndex)(AIMeshVertexIterator vertex, int32_t* i, int32_t* j);
  int32_t (*CountSegments)(AIMeshVertexIterator vertex);
  // Index of the segment leaving in (axis, sense), or -1.
  int32_t (*GetSegmentIndex)(AIMeshVertexIterator vertex, int32_t axis, int32_t sense);
  // The segment of the given index, oriented away from this vertex.
  AIErr (*GetSegment)(AIMeshVertexIterator vertex, int32_t index, AIMeshSegmentIterator* segment);
  AIErr (*GetPoint)(AIMeshVertexIterator vertex, AIRealPoint* point);
  AIErr (*SetPoint)(AIMeshVertexIterator vertex, const AIRealPoint* point);
  AIErr (*GetTangent)(AIMeshVertexIterator vertex, int32_t index, AIRealPoint* handle);
  AIErr (*SetTangent)(AIMeshVertexIterator vertex, int32_t index, const AIRealPoint* handle);
  AIBoolean (*GetSmooth)(AIMeshVertexIterator vertex, int32_t index);
  AIErr (*SetSmooth)(AIMeshVertexIterator vertex, int32_t index, AIBoolean smooth);
  // Colour and opacity: a node's own; a non-node vertex reports the
  // surface's value at its place, and setting them there is refused.
  AIErr (*GetColor)(AIMeshVertexIterator vertex, AIColor* color);
  AIErr (*SetColor)(AIMeshVertexIterator vertex, const AIColor* color);
  AIErr (*GetOpacity)(AIMeshVertexIterator vertex, AIReal* opacity);
  AIErr (*SetOpacity)(AIMeshVertexIterator vertex, AIReal opacity);
  AIErr (*GetUV)(AIMeshVertexIterator vertex, AIRealPoint* uv);
};

// ---- AI Mesh Segment Suite 3 -------------------------------------------
constexpr const char* kAIMeshSegmentIteratorSuite = "AI Mesh Segment Suite";
constexpr int32_t kAIMeshSegmentIteratorSuiteVersion = 3;
struct AIMeshSegmentIteratorSuite {
  AIErr (*Copy)(AIMeshSegmentIterator segment, AIMeshSegmentIterator* clone);
  int32_t (*AddRef)(AIMeshSegmentIterator segment);
  int32_t (*Release)(AIMeshSegmentIterator segment);
  AIBoolean (*IsEqual)(AIMeshSegmentIterator a, AIMeshSegmentIterator b);  // same segment
  AIBoolean (*AtEnd)(AIMeshSegmentIterator segment);
  // Walk order: runs along I row by row, then runs along J column by
  // column, each run's segments in order, oriented forward.
  AIErr (*Next)(AIMeshSegmentIterator segment);
  // The following segment on the same grid line in the iterator's direction.
  AIErr (*NextOnAxis)(AIMeshSegmentIterator segment);
  AIErr (*PrevOnAxis)(AIMeshSegmentIterator segment);
  int32_t (*GetAxis)(AIMeshSegmentIterator segment);
  int32_t (*GetSense)(AIMeshSegmentIterator segment);
  AIErr (*Reverse)(AIMeshSegmentIterator segment);
  AIErr (*GetStart)(AIMeshSegmentIterator segment, AIMeshVertexIterator* vertex);
  AIErr (*GetEnd)(AIMeshSegmentIterator segment, AIMeshVertexIterator* vertex);
  int32_t (*CountKnots)(AIMeshSegmentIterator segment);
  // Inserts n knots before knot m (m = CountKnots appends at the end),
  // keeping the curve's shape exactly.
  AIErr (*InsertKnots)(AIMeshSegmentIterator segment, int32_t m, int32_t n);
  // Removes knots m..m+n-1; the merged piece keeps its outer handles.
  AIErr (*DeleteKnots)(AIMeshSegmentIterator segment, int32_t m, int32_t n);
  int32_t (*CountPoints)(AIMeshSegmentIterator segment);  // 3 * knots + 4
  AIErr (*GetPoints)(AIMeshSegmentIterator segment, int32_t start, int32_t count, AIRealPoint* points);
  // Setting point 0 or the last point moves the end vertex (and its handle
  // on this segment along with it is NOT implied: set all points you mean).
  AIErr (*SetPoints)(AIMeshSegmentIterator segment, int32_t start, int32_t count, const AIRealPoint* points);
  // Knot k becomes a vertex; the iterator stays on the first part.
  AIErr (*Split)(AIMeshSegmentIterator segment, int32_t k);
  // Joins with the following segment on the line (the end vertex must not
  // be a node); *knot receives the index of the knot it became.
  AIErr (*Join)(AIMeshSegmentIterator segment, int32_t* knot);
  // Overall control of the chain at its start (see host conventions).
  AIErr (*GetControl)(AIMeshSegmentIterator segment, AIRealPoint* control);
  // Moves the chain so that it passes through point at chain parameter t.
  AIErr (*Reshape)(AIMeshSegmentIterator segment, AIReal t, const AIRealPoint* point);
};

// ---- AI Mesh Selection Suite 3 -----------------------------------------
constexpr const char* kAIMeshSelectionSuite = "AI Mesh Selection Suite";
constexpr int32_t kAIMeshSelectionSuiteVersion = 3;
struct AIMeshSelectionSuite {
  AIErr (*Copy)(AIMeshSelection selection, AIMeshSelection* clone);
  int32_t (*AddRef)(AIMeshSelection selection);
  int32_t (*Release)(AIMeshSelection selection);
  AIBoolean (*IsEmpty)(AIMeshSelection selection);
  AIBoolean (*IsFull)(AIMeshSelection selection);
  AIBoolean (*ContainsVertex)(AIMeshSelection selection, AIMeshVertexIterator vertex);
  AIErr (*SelectVertex)(AIMeshSelection selection, AIMeshVertexIterator vertex, AIBoolean select);
  AIBoolean (*ContainsSegment)(AIMeshSelection selection, AIMeshSegmentIterator segment);
  AIErr (*SelectSegment)(AIMeshSelection selection, AIMeshSegmentIterator segment, AIBoolean select);
};

// ---- AI Mesh Patch Suite 3 ---------------------------------------------
constexpr const char* kAIMeshPatchIteratorSuite = "AI Mesh Patch Suite";
constexpr int32_t kAIMeshPatchIteratorSuiteVersion = 3;
struct AIMeshPatchIteratorSuite {
  AIErr (*Copy)(AIMeshPatchIterator patch, AIMeshPatchIterator* clone);
  int32_t (*AddRef)(AIMeshPatchIterator patch);
  int32_t (*Release)(AIMeshPatchIterator patch);
  AIBoolean (*AtEnd)(AIMeshPatchIterator patch);
  AIErr (*Next)(AIMeshPatchIterator patch);  // cells with i fastest, then j
  AIErr (*GetCell)(AIMeshPatchIterator patch, int32_t* i, int32_t* j);
  // Corner k (0..3: (i,j), (i+1,j), (i+1,j+1), (i,j+1)).
  AIErr (*GetCorner)(AIMeshPatchIterator patch, int32_t k, AIMeshVertexIterator* vertex);
};

// ---- AI Mesh Hit Suite 3 -----------------------------------------------
constexpr const char* kAIMeshHitSuite = "AI Mesh Hit Suite";
constexpr int32_t kAIMeshHitSuiteVersion = 3;
struct AIMeshHitSuite {
  // The vertex within tolerance of point, if any (*vertex null otherwise).
  AIErr (*HitVertex)(AIArtHandle mesh, AIRealPoint point, AIReal tolerance, AIMeshVertexIterator* vertex);
};
