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

// What the demo document holds besides the demo mesh and the guide path.
enum class DemoScene {
  kMesh,    // nothing else
  kPhoto,   // a selected photo-like raster image under the mesh
  kSwatch,  // a small selected mesh of bold colours beside it, on top
  kBorderVertex,  // the mesh's bottom side gets a knot and a selected vertex
  kSewPair, // a selected 2 x 3 mesh just right of the mesh, below it
  kDocked,  // four selected meshes docked in a 2 x 2 block; the demo mesh unselected
};

struct DemoStep {
  const char* title;  // what the step shows
  const char* stem;   // file name stem
  DemoSelection selection;
  int id;
  bool alt = false;
  bool ctrl = false;
  DemoScene scene = DemoScene::kMesh;
  // Draw the selection in the after picture; off where the step's own art
  // (drawn lines and marks) would hide under it.
  bool selectionAfter = true;
  // A command run (without modifiers) to set the scene before the "before"
  // picture, e.g. making the brush mesh grid that the step turns back; 0
  // for none.
  int prepareId = 0;
};

// The tour, in order.
const std::vector<DemoStep>& demoTour();

// The demo document as .lbdoc text: a 6 x 5 mesh with RGB colours varying
// across it, a few knots and non-node vertices, `selection` applied, a
// stroked path below it, and beside it a filled shape and a 3 x 2 grid of
// docked paths; `scene` adds an image or a second mesh.
std::string demoDocumentText(const DemoSelection& selection, DemoScene scene = DemoScene::kMesh);
std::unique_ptr<lb::host::Document> demoDocument(const DemoSelection& selection, DemoScene scene = DemoScene::kMesh);

// Runs the tour into `dir`; prints a summary to stdout. Returns an exit
// status.
int runDemo(const std::string& dir);

}  // namespace lb::app
