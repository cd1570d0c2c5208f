// Per-group and per-mesh workers of the brush mesh grid commands (142, 143).
#pragma once

#include "AIMeshSuites.h"

// Makes the "MeshGrid" group of one mesh directly above it. Returns 0, or
// 1 when a host error stopped it (the partial group stays).
int _MakeMeshGridForBrush(AIArtHandle mesh);
// Recognises a brush mesh grid: 0 with the grid size in *a and *b, or 1
// when the group does not have the structure or its counts do not match.
int BmgCounts(AIArtHandle group, int* a, int* b);
// Builds an a x b mesh directly above a recognised group from its edge and
// tile paths. Returns 0, or 1 after a host error.
int _MakeMeshFromBrushGrid(AIArtHandle group, int a, int b);
