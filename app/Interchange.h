// The interchange subcommands (import, export) and format-aware reading
// and writing of documents for the other subcommands.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/Document.h"

namespace CLI {
class App;
}

namespace lb::app {

// True when the path names an SVG file (by its extension).
bool isSvgPath(const std::string& path);

// Warning lines of a read or a write: what a format cannot hold. Without
// one, the lines go to stderr.
using Warnings = std::vector<std::string>;

// Reads .svg (with `select` naming the ids to select) or .lbdoc. Throws
// lb::io::FormatError for bad input; one warning line names whatever the
// document cannot hold.
std::unique_ptr<lb::host::Document> readAnyDocument(const std::string& path, const std::vector<std::string>& select,
                                                    Warnings* warnings = nullptr);

// Writes by the extension: .svg, .pdf, .png, else .lbdoc; atomically. One
// warning line names what the format cannot hold. Throws
// std::runtime_error on failure and leaves no file behind.
void writeAnyDocument(const lb::host::Document& doc, const std::string& path, double scale = 1,
                      Warnings* warnings = nullptr);

// True when the path ends in .svg, .pdf or .png (any case): what
// writeAnyDocument exports.
bool isExportPath(const std::string& path);

// The document as SVG text; one warning line on stderr names what SVG
// cannot hold.
std::string svgText(const lb::host::Document& doc);

// Splits "a,b,c" into ids.
std::vector<std::string> splitIds(const std::string& text);

// The import and export subcommands.
class InterchangeCommands {
 public:
  explicit InterchangeCommands(CLI::App& app);
  // When one of them was parsed: runs it, sets *status and returns true.
  bool run(int* status);

 private:
  CLI::App* import_;
  CLI::App* export_;
  std::string in_, out_, select_;
  double scale_ = 1;
};

}  // namespace lb::app
