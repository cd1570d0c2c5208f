// Helper art for drawing a mesh's structure: straight lines, one-point
// paths and squares with a plain stroke-only look, the text names of grid
// positions and lines, and the group and style chores the drawing
// commands share.
#pragma once

#include "AIArtSuites.h"
#include "AIMeshSuites.h"

// Every maker creates one new path: inside `group` at its bottom (so the
// first path made into a group stays topmost), or above all art when
// `group` is null. The path gets fill off and a stroke in the host's RGB
// colour kind; a graphic style, when given, then replaces that look; a
// name, when given, becomes the art name. Host failures end the maker
// silently, leaving what was already made.

// An open two-anchor path from *a to *b.
void MakeLine(const AIRealPoint* a, const AIRealPoint* b, AIArtHandle group, const char* name,
              AIArtStyleHandle style, double red = 0.0, double green = 0.0, double blue = 0.0,
              double width = 1.0);
// An open one-anchor path at *p; black stroke of width 1.
void MakePoint(const AIRealPoint* p, AIArtHandle group, const char* name, AIArtStyleHandle style);
// A closed square around *centre with half side `half`, anchors in the
// order (x-h, y-h), (x-h, y+h), (x+h, y+h), (x+h, y-h).
void MakeSquare(const AIRealPoint* centre, double half, AIArtHandle group, const char* name, double red,
                double green, double blue, double width);
// A closed black square of width 1, anchors in the order (x+d, y+d),
// (x+d, y-d), (x-d, y-d), (x-d, y+d).
void MakeSquareMark(const AIRealPoint* centre, int half, const char* name, AIArtHandle group);

// "i,j" in decimal; the buffer needs at most 23 bytes.
void MakeNodeName(int i, int j, char* out);
// "I=n" for axis 0, "J=n" otherwise; the buffer needs at most 14 bytes.
void MakeAxisName(int axis, int n, char* out);

// ---- Shared chores of the drawing commands --------------------------------

// Sets the art name from UTF-8 text; returns the host's result.
AIErr ZF_SetArtName(AIArtHandle art, const char* name);
// A new group placed by (order, prep) and named `name` (when not null);
// null when the host refused the group. A failed naming is ignored.
AIArtHandle ZF_NewGroup(int16_t order, AIArtHandle prep, const char* name);
// Deletes *group when it has no child, and nulls the handle; a null handle
// is left alone. Returns true when the group is gone.
bool ZF_DeleteIfEmpty(AIArtHandle* group);
// The document's graphic style of that name, or null.
AIArtStyleHandle ZF_FindStyle(const char* name);
// The document's graphic style of that name, or `fallback`.
AIArtStyleHandle ZF_FindStyleOr(const char* name, AIArtStyleHandle fallback);
// Reads the path's style, sets fill off and an RGB stroke of the given
// colour and width, and writes it back.
AIErr ZF_SetStrokeLook(AIArtHandle path, double red, double green, double blue, double width);
// Turns a Bezier point list (anchor, out, in, anchor, ...) of n points into
// (n + 2) / 3 path segments: anchor 3m, in handle 3m - 1 (the anchor for the
// first), out handle 3m + 1 (the anchor for the last). Corner flags are
// left at 1.
void ZF_PointsToSegments(const AIRealPoint* pts, int n, AIPathSegment* segs);
