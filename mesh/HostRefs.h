// Owning holders for the reference-counted objects the host hands out
// (vertex, segment and patch iterators, mesh selections) and the error
// convention of the per-mesh workers.
//
// A holder releases what it holds when it goes out of scope, so a worker
// that throws half-way through a mesh leaks nothing. Pass `put()` to a
// host call that hands out a new object:
//
//   VertexRef node;
//   ThrowIfErr(lb::s::sMesh->GetNode(mesh, i, j, node.put()));
#pragma once

#include <utility>

#include "Suites.h"

// Throws a failing host result as an int; workers catch it, let their
// holders release everything and give up on the current mesh.
inline void ThrowIfErr(AIErr err) {
  if (err != kNoErr) throw static_cast<int>(err);
}

template <class Handle, int32_t (*ReleaseFn)(Handle)>
class HostRef {
 public:
  HostRef() = default;
  // Takes over one reference the caller already owns.
  explicit HostRef(Handle h) : m_h(h) {}
  ~HostRef() { reset(); }
  HostRef(const HostRef&) = delete;
  HostRef& operator=(const HostRef&) = delete;
  HostRef(HostRef&& o) noexcept : m_h(std::exchange(o.m_h, nullptr)) {}
  HostRef& operator=(HostRef&& o) noexcept {
    if (this != &o) {
      reset();
      m_h = std::exchange(o.m_h, nullptr);
    }
    return *this;
  }

  Handle get() const { return m_h; }
  operator Handle() const { return m_h; }
  explicit operator bool() const { return m_h != nullptr; }

  // Releases the current object and returns the slot for a host call that
  // hands out a new one.
  Handle* put() {
    reset();
    return &m_h;
  }
  void reset(Handle h = nullptr) {
    if (m_h) ReleaseFn(m_h);
    m_h = h;
  }
  // Gives up ownership without releasing.
  Handle detach() { return std::exchange(m_h, nullptr); }

 private:
  Handle m_h = nullptr;
};

namespace lb::refs {
inline int32_t ReleaseVertex(AIMeshVertexIterator v) { return lb::s::sMeshVertexIterator->Release(v); }
inline int32_t ReleaseSegment(AIMeshSegmentIterator s) { return lb::s::sMeshSegmentIterator->Release(s); }
inline int32_t ReleasePatch(AIMeshPatchIterator p) { return lb::s::sMeshPatchIterator->Release(p); }
inline int32_t ReleaseSelection(AIMeshSelection s) { return lb::s::sMeshSelection->Release(s); }
}  // namespace lb::refs

using VertexRef = HostRef<AIMeshVertexIterator, lb::refs::ReleaseVertex>;
using SegmentRef = HostRef<AIMeshSegmentIterator, lb::refs::ReleaseSegment>;
using PatchRef = HostRef<AIMeshPatchIterator, lb::refs::ReleasePatch>;
using SelectionRef = HostRef<AIMeshSelection, lb::refs::ReleaseSelection>;

// Convenience: an iterator on node (i, j), or a throw.
inline VertexRef GetNodeRef(AIArtHandle mesh, int32_t i, int32_t j) {
  VertexRef v;
  ThrowIfErr(lb::s::sMesh->GetNode(mesh, i, j, v.put()));
  return v;
}

// Convenience: the mesh's visible selection, or a throw.
inline SelectionRef GetSelectionRef(AIArtHandle mesh) {
  SelectionRef s;
  ThrowIfErr(lb::s::sMesh->GetSelection(mesh, s.put()));
  return s;
}

// The document's selected art of one type, topmost first, from the
// matching-art query; the host's array is disposed when the list goes out of
// scope. A failed query reads as an empty list.
class SelectedArt {
 public:
  explicit SelectedArt(int16_t type) {
    AIMatchingArtSpec wanted{type, kArtSelected, kArtSelected};
    if (lb::s::sAIMatchingArt->GetMatchingArt(&wanted, 1, &m_hArt, &m_nCount) != kNoErr || !m_hArt) {
      if (m_hArt) lb::s::sMdMemory->MdMemoryDisposeHandle(reinterpret_cast<AIMdMemoryHandle>(m_hArt));
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
  AIArtHandle* data() const { return m_hArt ? *m_hArt : nullptr; }
  AIArtHandle operator[](int32_t k) const { return (*m_hArt)[k]; }

 private:
  AIArtHandle** m_hArt = nullptr;
  int32_t m_nCount = 0;
};
