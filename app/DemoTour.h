// The demo: a colourful gradient mesh and a tour of panel commands on it.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/Document.h"

namespace lb::app {

// Which vertices of the demo mesh are selected before a step runs.
struct DemoSelection {
  DemoSelection() = default;
  DemoSelection(bool whole, std::vector<std::pair<int, int>> selected, std::string pathIds = "")
      : wholeMesh(whole), nodes(std::move(selected)), paths(std::move(pathIds)) {}
  bool wholeMesh = false;
  std::vector<std::pair<int, int>> nodes;  // (i, j) of selected nodes
  // Paths whose id starts with this are selected (none when empty).
  std::string paths;
};

struct DemoStep {
  const char* title;  // what the step shows
  const char* stem;   // file name stem
  DemoSelection selection;
  int id;
  bool alt = false;
  bool ctrl = false;
};

// The tour, in order.
const std::vector<DemoStep>& demoTour();

// The demo document as .lbdoc text: a 6 x 5 mesh with RGB colours varying
// across it, a few knots and non-node vertices, `selection` applied, a
// stroked path below it, and beside it a filled shape and a 3 x 2 grid of
// docked paths.
std::string demoDocumentText(const DemoSelection& selection);
std::unique_ptr<lb::host::Document> demoDocument(const DemoSelection& selection);

// Runs the tour into `dir`; prints a summary to stdout. Returns an exit
// status.
int runDemo(const std::string& dir);

}  // namespace lb::app
