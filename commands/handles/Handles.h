// Handle commands: smoothing, one-third and zero-length handles, and
// right-angled handles at nodes. The public commands (Operations.h) walk
// the selected meshes and call the workers below once per mesh; other
// commands call the workers directly on a mesh whose selection they have
// just made.
//
// Workers return 0 when they finished and 1 when a host error stopped
// them (every iterator and selection they held is released either way).
#pragma once

#include "AIMeshSuites.h"

namespace lb::handles {

// Turns the handles h1 and h2 of point p so that they lie on one straight
// line through p, perpendicular to the plain average of their angles; each
// keeps its length. The handle with the larger angle gets the average plus
// a quarter turn. Returns 0.
int SmoothHandlePair(const AIRealPoint& p, AIRealPoint& h1, AIRealPoint& h2);

// Smooths the opposite handles of every selected vertex along I and/or J;
// with `corners` set, each selected corner node's two handles are made
// opposite (180 degrees apart).
int _SmoothNodes(AIArtHandle mesh, long alongI, long alongJ, long corners);

// One-third handles: each handle of a selected vertex keeps its direction
// (a retracted one turns towards the segment's far end) and gets one third
// of the straight distance to the vertex at the segment's far end. With
// `between` set, only segments whose far end is selected too, restricted
// to the I segments (alongI only) or J segments (alongJ only).
int _Nodes13(AIArtHandle mesh, long between, long alongI, long alongJ);

// Zero handles: retracts handles of selected vertices into their vertex
// and clears their smooth flags; `between`, alongI and alongJ filter the
// segments as for _Nodes13.
int _Nodes0(AIArtHandle mesh, long between, long alongI, long alongJ);

// Sets the I handles and J handles of every selected node at right angles:
// with both flags each axis turns half the way, with one flag only that
// axis turns. Non-node vertices are not touched.
int _Angle90Deg(AIArtHandle mesh, long actJ, long actI);

}  // namespace lb::handles
