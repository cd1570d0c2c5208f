// Handle geometry shared by the commands: one-third handles for straight
// path pieces, corner/smooth flags of path points and of mesh vertices,
// and the pixel-perfect switch of helper art.
//
// The constants are single-precision values widened to double and are used
// exactly so: results must match, bit for bit, what a single-precision
// one third and tolerances give.
#pragma once

#include "AIArtSuites.h"
#include "AIMeshSuites.h"

// One third, rounded to single precision (not 0.3333333333333333).
constexpr double kLbOneThird = 0.3333333432674408;
// Angle tolerance (2^-16) for the corner test of path points.
constexpr double kLbPathSmoothTolerance = 1.52587890625e-05;
// Angle tolerance (10 x 2^-16) for the smooth test of mesh vertices.
constexpr double kLbMeshSmoothTolerance = 0.000152587890625;

// Gives one-third handles to every straight piece of the path whose two
// facing handles are both retracted (handle equal to its anchor). Each new
// handle is the host's interpolation of (other anchor, own anchor) at one
// third, so it lies a third of the chord away from its own anchor; the
// piece keeps its straight shape. With `closed` nonzero the closing piece
// (last anchor back to anchor 0) is treated too; the array then must hold
// at least one segment.
void ZF_AIPathSegment_0h_to_0p33h(AIPathSegment* segs, int count, int closed);

// Sets every segment's corner flag: 0 (smooth) when, seen from its
// in-handle, the anchor and the out-handle lie in the same direction
// (within kLbPathSmoothTolerance), 1 otherwise.
void ZF_AIPathSegment_check_smooth(AIPathSegment* segs, int count);

// Sets the smooth flag of the vertex's I-forward segment (alongI) and
// J-forward segment (alongJ) from the positions of its opposite handles.
// An axis on which the vertex lacks one of the two segments keeps its
// flags. Host errors are thrown as int (see HostRefs.h). Returns 0.
int ZF_MeshVertex_CheckSmooth(AIMeshVertexIterator vertex, int alongI, int alongJ);

// Runs ZF_MeshVertex_CheckSmooth along both axes on every node of the mesh
// (row by row, i fastest); non-node vertices are not visited. Host errors
// are thrown as int. Returns 0.
int ZF_MeshNodes_CheckSmooth(AIArtHandle mesh);

// Sets the pixel-perfect property of *art and returns the host's result.
AIErr ZF_SetPixelPerfect(AIArtHandle* art, int pixelPerfect);
