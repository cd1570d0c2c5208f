// "Sew docked meshes together or make mesh from docked paths": two or more
// selected meshes join into one; with fewer, the selected paths become one
// mesh.
#include "HostRefs.h"
#include "Operations.h"
#include "color/ColorOpacity.h"
#include "construct/Construct.h"
#include "sew/Sew.h"

namespace {

// The selected art of one type, disposed when it goes out of scope. A
// failed query reads as none.
class SelectedArt {
 public:
  explicit SelectedArt(int16_t type) {
    AIMatchingArtSpec wanted{type, kArtSelected, kArtSelected};
    if (lb::s::sAIMatchingArt->GetMatchingArt(&wanted, 1, &m_hArt, &m_nCount) != kNoErr || !m_hArt) {
      Dispose();
      m_nCount = 0;
    }
  }
  ~SelectedArt() { Dispose(); }
  SelectedArt(const SelectedArt&) = delete;
  SelectedArt& operator=(const SelectedArt&) = delete;
  int32_t size() const { return m_nCount; }
  AIArtHandle* data() const { return m_hArt ? *m_hArt : nullptr; }

 private:
  void Dispose() {
    if (m_hArt) lb::s::sMdMemory->MdMemoryDisposeHandle(reinterpret_cast<AIMdMemoryHandle>(m_hArt));
    m_hArt = nullptr;
  }
  AIArtHandle** m_hArt = nullptr;
  int32_t m_nCount = 0;
};

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
