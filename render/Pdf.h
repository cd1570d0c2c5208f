// PDF export through cairo's PDF surface: one page, the artboard.
#pragma once

#include <string>

#include "host/Document.h"

namespace lb::render {

// Writes the document as a one-page PDF of the artboard (or the art's
// bounds), one point per document unit. Meshes become smooth shadings
// (cairo writes its mesh patterns as tensor-product patch meshes, PDF
// shading type 7), paths vector paths, images images. Written atomically;
// throws std::runtime_error on failure and leaves no file behind.
void writePdf(const lb::host::Document& doc, const std::string& path);

}  // namespace lb::render
