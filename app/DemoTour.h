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
  bool wholeMesh = false;
  std::vector<std::pair<int, int>> nodes;  // (i, j) of selected nodes
};

// What the demo document holds besides the demo mesh and the guide path.
enum class DemoScene {
  kMesh,    // nothing else
  kPhoto,   // a selected photo-like raster image under the mesh
  kSwatch,  // a small selected mesh of bold colours beside it, on top
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
};

// The tour, in order.
const std::vector<DemoStep>& demoTour();

// The demo document as .lbdoc text: a 6 x 5 mesh with RGB colours varying
// across it, a few knots and non-node vertices, `selection` applied, and a
// stroked path beside it; `scene` adds an image or a second mesh.
std::string demoDocumentText(const DemoSelection& selection, DemoScene scene = DemoScene::kMesh);
std::unique_ptr<lb::host::Document> demoDocument(const DemoSelection& selection, DemoScene scene = DemoScene::kMesh);

// Runs the tour into `dir`; prints a summary to stdout. Returns an exit
// status.
int runDemo(const std::string& dir);

}  // namespace lb::app
