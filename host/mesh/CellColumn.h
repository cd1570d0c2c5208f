// CellColumn: the cells of one column slot of a mesh, grown without moving
// the cells it already holds.
//
// Inserting a grid line across the columns appends one cell to every
// column. A std::vector would move each whole column on every doubling (a
// move and a destruction per cell, and fresh pages for the new block).
// Here a column is one block of the size it was made with, followed by
// fixed-size chunks for the cells appended later: appending never moves a
// cell. A short column grows its first block instead (by realloc, in one
// copy, up to a chunk's size), so small meshes keep one small block per
// column. Copying a column gathers it into one block again.
//
// realloc moves elements by copying their bytes, which is valid only for
// elements that hold no pointer to themselves and are not registered
// elsewhere by address. Mesh cells qualify (plain values, and InlineVec,
// which finds its inline buffer from its own address each time).
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace lb::host {

// True when dropping cells of type T without running their destructors
// leaks nothing at this moment; a cell type can say so for itself.
template <class T>
bool droppableWithoutDestructor() {
  return std::is_trivially_destructible_v<T>;
}

template <class T>
class CellColumn {
 public:
  CellColumn() = default;
  explicit CellColumn(size_t n) {
    reserve(n);
    for (; size_ < n; ++size_) new (head_ + size_) T();
  }
  CellColumn(const CellColumn& o) {
    reserve(o.size_);
    for (; size_ < o.size_; ++size_) new (head_ + size_) T(o[size_]);
  }
  CellColumn(CellColumn&& o) noexcept { take(o); }
  CellColumn& operator=(const CellColumn& o) {
    if (this != &o) *this = CellColumn(o);
    return *this;
  }
  CellColumn& operator=(CellColumn&& o) noexcept {
    if (this != &o) {
      release();
      take(o);
    }
    return *this;
  }
  ~CellColumn() { release(); }

  size_t size() const { return size_; }
  T& operator[](size_t k) { return k < headCap_ ? head_[k] : chunk(k); }
  const T& operator[](size_t k) const { return k < headCap_ ? head_[k] : chunk(k); }

  // Room for n cells in the first block; only before cells go to chunks.
  void reserve(size_t n) {
    if (n <= headCap_ || !chunks_.empty()) return;
    // (void*: the elements are relocatable by their bytes, see above.)
    void* p = std::realloc(static_cast<void*>(head_), n * sizeof(T));
    if (!p) throw std::bad_alloc();
    head_ = static_cast<T*>(p);
    headCap_ = n;
  }
  T& emplace_back() {
    T* at = slotForAppend();
    new (at) T();
    ++size_;
    return *at;
  }
  void push_back(T&& v) {
    new (slotForAppend()) T(std::move(v));
    ++size_;
  }

 private:
  static constexpr size_t kChunk = 64;

  T& chunk(size_t k) const { return chunks_[(k - headCap_) / kChunk][(k - headCap_) % kChunk]; }

  // Raw storage for cell size_.
  T* slotForAppend() {
    if (size_ < headCap_) return head_ + size_;
    if (chunks_.empty() && headCap_ < kChunk) {
      // Four times at a step (up to one chunk's size): a column grown line
      // by line from two cells is copied three times instead of five.
      reserve(headCap_ ? std::min(4 * headCap_, kChunk) : 4);
      return head_ + size_;
    }
    if ((size_ - headCap_) % kChunk == 0) {
      void* p = std::malloc(kChunk * sizeof(T));
      if (!p) throw std::bad_alloc();
      chunks_.push_back(static_cast<T*>(p));
    }
    return &chunk(size_);
  }
  void take(CellColumn& o) {
    head_ = std::exchange(o.head_, nullptr);
    size_ = std::exchange(o.size_, 0);
    headCap_ = std::exchange(o.headCap_, 0);
    chunks_ = std::move(o.chunks_);
    o.chunks_.clear();
  }
  void release() {
    // Running every cell's destructor walks the whole column through memory.
    if (!droppableWithoutDestructor<T>())
      for (size_t k = 0; k < size_; ++k) (*this)[k].~T();
    std::free(head_);
    for (T* c : chunks_) std::free(c);
    head_ = nullptr;
    size_ = headCap_ = 0;
    chunks_.clear();
  }

  T* head_ = nullptr;
  size_t size_ = 0, headCap_ = 0;
  std::vector<T*> chunks_;
};

}  // namespace lb::host
