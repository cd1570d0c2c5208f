// Reading and writing .lbdoc documents (JSON).
#pragma once

#include <memory>
#include <string>

#include "host/Document.h"
#include "io/FormatError.h"

namespace lb::io {

// Parses a whole document. Throws FormatError naming the JSON path of the
// offending value (for example "layers[0].children[2].nodes[5].p"); for
// malformed JSON the path is the line and column.
std::unique_ptr<lb::host::Document> readDocument(const std::string& text);
// As readDocument; the message also names the file. A file that cannot be
// read throws FormatError with the file name as path.
std::unique_ptr<lb::host::Document> readDocumentFile(const std::string& path);

// Every key written explicitly; doubles round-trip exactly.
std::string writeDocument(const lb::host::Document& doc);
// Streams the document to an open file descriptor. Throws
// std::system_error when a write fails.
void writeDocumentTo(int fd, const lb::host::Document& doc);
// Writes to a temporary file in the same directory and renames it over
// path, so that a failed write never leaves a partial or emptied file.
// Throws std::runtime_error on failure.
void writeDocumentFileAtomic(const lb::host::Document& doc, const std::string& path);

}  // namespace lb::io
