// Per-mesh workers of the knot and vertex commands (134, 135). Each returns
// 0, or 1 when a host error ended its work on the mesh (changes made so far
// stay).
#pragma once

#include "AIMeshSuites.h"

// Splits every segment whose two end vertices are selected (all of them
// when the whole mesh is) at each of its knots.
int _KnotsSplit(AIArtHandle mesh);
// Deletes the knots of those segments; with correct nonzero each segment
// becomes one cubic keeping the handles at its two ends.
int _KnotsDel(AIArtHandle mesh, int correct);
// Deletes the selected non-node vertices; the host reshapes each curve.
int _VerticesDel(AIArtHandle mesh);
// Deletes the selected non-node vertices; each stretch that loses points
// becomes one cubic between its neighbouring knots or vertices, with their
// handles, and every other knot stays.
int _VerticesDelCorr(AIArtHandle mesh);
// Makes the segment one cubic from its start to its end vertex, with the
// handles it had at both ends. Returns 0.
int __SegControlsToPoints(AIMeshSegmentIterator segment);
