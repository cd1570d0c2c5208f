// The document model: art tree, paint orders, walks, matching and selection.
#include "host/Document.h"

ArtObject::ArtObject() = default;
ArtObject::~ArtObject() = default;

namespace lb::host {

Document::Document() = default;
Document::~Document() = default;

}  // namespace lb::host
