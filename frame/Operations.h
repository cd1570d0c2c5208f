// Every mesh operation the dispatcher can call, one per (id, modifiers)
// cell of the command table. The implementations live in commands/<family>/.
#pragma once

#include "AIMeshSuites.h"

// Mesh visualisation
int MakeMeshGrid(int sequencePerSegment, int subSegments);
int MakeMeshDotsGroup();
int MakeMeshCornerNodesAndCoords(long mode);

// Grid structure
int MeshSwapCornerNodeAndVertex();
int KnotsSplit();
int KnotsDel(int correct);
int MeshSegmentsJoin();
int VerticesDel(int correct);

// Mesh construction
int MeshCutter();
int MakeMeshFromPath(int alt);
int MakeMeshGridForBrush(long alt);
int MakeMeshFromBrushGrid(long alt);
int SewPathesNew();
// Builds a mesh from four or more selected docked paths.
int ManyPathesToMesh();

// Sewing
int MeshAddTwo(int reverse, int secondPair, int addRow);
int MeshAddMany(int mode);
int AddRowFromPath(long reverse, int changeSide);
int AddZeroRow();
int DelZeroRow(int oneRow);

namespace lb {
namespace sel {
int Nodes(long mode);
int Full(bool nodesOnly);
int Perim(long rows, long columns, long nodesOnly);
int Cross(long rows, long columns, long nodesOnly);
int Shift(long shiftI, long shiftJ);
}  // namespace sel

namespace color {
int Flip(AIMeshAxis axis);
int Rotate(long clockwise);
int Shift(AIMeshAxis axis, AIMeshAxisSense sense);
int Spread(AIMeshAxis axis, AIMeshAxisSense sense);
int Copy(long fromBottom, long convertIJ);
int Pattern(long onlyI, long onlyJ);
int CatchFromRaster(int edgeCorrection);
int CatchFromMeshSurface(int edgeCorrection);
}  // namespace color

namespace handles {
int SmoothNodes(long alongI, long alongJ, long corners);
int Nodes13or0(long zero, long between, long alongI, long alongJ);
int Angle90Deg(long actJ, long actI);
}  // namespace handles

namespace align {
int NodesAlign(long horizontal, long side);
int NodesSpreadAlongPath(long reverse, long mode, int changeSide);
int Turn180();
}  // namespace align

namespace dens {
int Mul(long alongI, long alongJ);
int Div(long alongI, long alongJ);
}  // namespace dens

namespace dir {
int Rotate(int clockwise);
int Flip(AIMeshAxis axis);
}  // namespace dir

namespace uv {
int ResetLinear();
int ResetRelative();
}  // namespace uv

namespace debug {
int AlertUVs();
}  // namespace debug
}  // namespace lb
