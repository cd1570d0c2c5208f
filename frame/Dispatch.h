// From a button release to one mesh operation.
#pragma once

#include "AITypes.h"
#include "LBModule.h"

// Runs command `id` as a button release does: frame suites and the host's
// application context around RunLBFunc. Returns the code of the pop.
AIErr BtnsRunLbFunc(int id, bool alt, bool ctrl, bool useColor, bool useOpacity);
// Records the checkbox states, then runs the operation that `id` and the
// modifier pair select (at most one) with the command suites acquired.
AIErr RunLBFunc(int id, bool alt, bool ctrl, bool useColor, bool useOpacity);
