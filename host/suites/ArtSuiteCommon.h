// Shared pieces of the document suites: the current document, handle
// checks, host memory blocks and the per-file registration functions.
#pragma once

#include <cstddef>

#include "AIArtSuites.h"
#include "host/Document.h"

namespace lb::host::suites {

Document& doc();

// kBadParameterErr for null, kNoSuchArtErr for a handle that is not live in
// the current document.
AIErr checkArt(AIArtHandle art);
// As checkArt, then kWrongArtTypeErr unless the art has the given type.
AIErr checkArt(AIArtHandle art, int16_t type);

// A host memory block. The handle given out is the address of `data`, so
// that *handle is the block's bytes.
AIErr newMemoryHandle(size_t size, AIMdMemoryHandle* handle);
AIErr disposeMemoryHandle(AIMdMemoryHandle handle);

void registerArtSuite();       // art, art style, blend style
void registerPathSuites();     // path, path style
void registerMatchingSuites(); // matching art, MdMemory
void registerMathSuites();     // real math, real Bezier, random
void registerRasterSuites();   // raster, placed

}  // namespace lb::host::suites
