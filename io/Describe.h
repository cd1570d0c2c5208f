// The short human-readable summary of a document (the `info` command).
#pragma once

#include <string>

#include "host/Document.h"

namespace lb::io {

// One line for the document (layers, styles, artboard, key object), then
// the art tree indented by depth, top of the paint order first: type, name,
// id, attributes, and for meshes the grid size and the vertex selection.
std::string describeDocument(const lb::host::Document& doc);

}  // namespace lb::io
