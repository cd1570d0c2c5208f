// "Sew docked meshes together or make mesh from docked paths": two or more
// selected meshes join into one; with fewer, the selected paths become one
// mesh.
#include "HostRefs.h"
#include "Operations.h"
#include "color/ColorOpacity.h"
#include "construct/Construct.h"
#include "sew/Sew.h"

namespace {

}  // namespace

int MeshAddMany(int mode) {
  CColorOpacity::sm_bUseAll = 1;
  int result = 0;
  try {
    SelectedArt paths(kPathArt);
    SelectedArt meshes(kMeshArt);
    if (meshes.size() >= 2) {
      result = JoinDockedMeshes(meshes.data(), meshes.size(), mode) != 0 ? 1 : 0;
    } else if (paths.size() >= 4) {
      AIArtHandle mesh = nullptr;
      CManyPathesToMesh builder;
      builder.Init(paths.data(), paths.size(), &mesh);
      builder.Go();
    }
  } catch (int) {
    result = 1;
  }
  CColorOpacity::sm_bUseAll = 0;
  return result;
}
