// The MdMemory suite: host-owned blocks reached through a handle (a pointer
// to the block pointer). Live handles are counted; a command must dispose
// of every handle it was given.
#include <cstdlib>
#include <cstring>
#include <unordered_set>

#include "host/SuiteRegistry.h"
#include "host/suites/ArtSuiteCommon.h"

namespace lb::host::suites {
namespace {

struct Block {
  void* data = nullptr;  // first member: the handle is &data
  size_t size = 0;
};

std::unordered_set<Block*>& liveBlocks() {
  static std::unordered_set<Block*> blocks;
  return blocks;
}

Block* blockOf(AIMdMemoryHandle handle) {
  if (!handle) return nullptr;
  Block* b = reinterpret_cast<Block*>(handle);
  return liveBlocks().count(b) ? b : nullptr;
}

AIErr MdMemoryNewHandle(size_t size, AIMdMemoryHandle* handle) { return newMemoryHandle(size, handle); }

AIErr MdMemoryDisposeHandle(AIMdMemoryHandle handle) { return disposeMemoryHandle(handle); }

AIErr MdMemoryGetSize(AIMdMemoryHandle handle, size_t* size) {
  Block* b = blockOf(handle);
  if (!b || !size) return kBadParameterErr;
  *size = b->size;
  return kNoErr;
}

AIErr MdMemoryResize(AIMdMemoryHandle handle, size_t newSize) {
  Block* b = blockOf(handle);
  if (!b) return kBadParameterErr;
  void* p = std::realloc(b->data, newSize ? newSize : 1);
  if (!p) return kOutOfMemoryErr;
  if (newSize > b->size) std::memset(static_cast<char*>(p) + b->size, 0, newSize - b->size);
  b->data = p;
  b->size = newSize;
  return kNoErr;
}

const AIMdMemorySuite kMdMemorySuite = {
    .MdMemoryNewHandle = MdMemoryNewHandle,
    .MdMemoryDisposeHandle = MdMemoryDisposeHandle,
    .MdMemoryGetSize = MdMemoryGetSize,
    .MdMemoryResize = MdMemoryResize,
};

}  // namespace

AIErr newMemoryHandle(size_t size, AIMdMemoryHandle* handle) {
  if (!handle) return kBadParameterErr;
  *handle = nullptr;
  auto* b = new Block;
  b->data = std::calloc(size ? size : 1, 1);
  if (!b->data) {
    delete b;
    return kOutOfMemoryErr;
  }
  b->size = size;
  liveBlocks().insert(b);
  ++liveCounters().memoryHandles;
  *handle = &b->data;
  return kNoErr;
}

AIErr disposeMemoryHandle(AIMdMemoryHandle handle) {
  Block* b = blockOf(handle);
  if (!b) return kBadParameterErr;
  liveBlocks().erase(b);
  std::free(b->data);
  delete b;
  --liveCounters().memoryHandles;
  return kNoErr;
}

void registerMemorySuite() { registerSuite(kAIMdMemorySuite, kAIMdMemorySuiteVersion, &kMdMemorySuite); }

}  // namespace lb::host::suites
