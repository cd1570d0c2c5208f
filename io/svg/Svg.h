// SVG export and import of documents (mesh gradients as SVG 2 meshgradient).
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/Document.h"
#include "io/FormatError.h"

namespace lb::io::svg {

// What a format could not hold, collected while writing or reading, for
// one warning line.
struct Losses {
  std::set<std::string> items;
  void add(const std::string& what) { items.insert(what); }
  bool empty() const { return items.empty(); }
  // "a, b, c"
  std::string text() const;
};

// Document coordinates map to SVG user space as x = h, y = -v (exact in
// floating point); the artboard (or the art's bounds) [left, bottom, right,
// top] becomes viewBox="left -top width height".
std::string writeSvg(const lb::host::Document& doc, Losses* losses);

// Parses SVG text. Elements whose ids are in `select` become selected art.
// Throws FormatError naming the element and the offending value.
std::unique_ptr<lb::host::Document> readSvg(const std::string& text, const std::vector<std::string>& select,
                                            Losses* losses);

}  // namespace lb::io::svg
