// Per-mesh worker of Clone colors; Pattern fill works inline per mesh.
#pragma once

#include "AIMeshSuites.h"

namespace lb::color {
// Copies the selected region of `source` onto the selected region of
// `target`, anchored at their minimum corners; with convertIJ the source's
// I runs along the target's J. With twoOnly the source's selection is
// trimmed to the copied block too. Returns 0, or 1 when a host error
// stopped it.
int _Copy(AIArtHandle source, AIArtHandle target, long convertIJ, long twoOnly);
}  // namespace lb::color
