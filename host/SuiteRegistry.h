// The host's table of suites, served by name and version through the
// basic suite, and the live-object counters every suite keeps up to date.
#pragma once

#include <cstdint>

#include "host/Host.h"

namespace lb::host {

// Adds (or replaces) the suite table served for (name, version).
void registerSuite(const char* name, int32_t version, const void* table);
// The table for (name, version), or null.
const void* findSuite(const char* name, int32_t version);

// Counters of live host objects (iterators, selections, acquisitions,
// memory handles). Suites increment on hand-out and decrement on release.
// (Constant-initialised and inline: iterators bump it by the million.)
inline Counters& liveCounters() {
  static constinit Counters counters;
  return counters;
}

// Each group of suites registers itself; Host's constructor calls all three.
void registerFrameSuites();     // basic, access, plug-ins, blocks, context, menu, notifier,
                                // user, Unicode string, data filter; calls registerPanelSuites()
void registerPanelSuites();     // panel, UI theme
void registerDocumentSuites();  // art, path, path style, art style, blend style, matching
                                // art, MdMemory, real math, real Bezier, random, raster, placed
void registerMeshSuites();      // mesh, vertex, segment, selection, patch, hit

}  // namespace lb::host
