// The UV diagnostic: relative positions of every grid line of the selected
// meshes, shown in a message box, and a plain message helper.
#include <cstdio>
#include <new>
#include <string>

#include "MeshSelection.h"
#include "Operations.h"
#include "PluginMain.h"

using lb::s::sMesh;

namespace lb::debug {
namespace {

void AppendValue(std::string& text, double value) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%f", value);
  text += buf;
  text += ", ";
}

}  // namespace

void Alert(char const* text) { PluginAlert(text); }

// "U: " and the position of every line of constant i, then "\nV: " and
// those of constant j, each value followed by ", ". Host results are not
// looked at: a failed size query reads as a 0 x 0 grid, a failed position
// as 0.
int MakeUVText(AIArtHandle mesh, std::string& out) {
  out.clear();
  try {
    int32_t I = 0, J = 0;
    sMesh->GetSize(mesh, &I, &J);
    std::string text = "U: ";
    for (int32_t i = 0; i <= I; ++i) {
      AIReal u = 0.0;
      sMesh->GetRelativeU(mesh, i, &u);
      AppendValue(text, u);
    }
    text += "\nV: ";
    for (int32_t j = 0; j <= J; ++j) {
      AIReal v = 0.0;
      sMesh->GetRelativeV(mesh, j, &v);
      AppendValue(text, v);
    }
    out = std::move(text);
    return 0;
  } catch (const std::bad_alloc&) {
    return 1;
  }
}

int AlertUVs() {
  SelectedMeshList meshes;
  try {
    std::string text;
    for (AIArtHandle mesh : meshes) {
      std::string one;
      MakeUVText(mesh, one);
      text += one;
      text += "\n---------\n";
    }
    Alert(text.c_str());
    return 0;
  } catch (const std::bad_alloc&) {
    return 1;
  }
}

int AlertUV() {
  SelectedMeshList meshes;
  try {
    for (AIArtHandle mesh : meshes) {
      std::string one;
      MakeUVText(mesh, one);
      Alert(one.c_str());
    }
    return 0;
  } catch (const std::bad_alloc&) {
    return 1;
  }
}

}  // namespace lb::debug
