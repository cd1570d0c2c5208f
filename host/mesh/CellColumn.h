// CellColumn: the cells of one column slot of a mesh, grown by realloc.
//
// Inserting a grid line across the columns appends one cell to every
// column. With std::vector each growth moves the column cell by cell
// (a move and a destruction per cell); here the block is handed to realloc,
// which extends it in place when it can, copies it in one go otherwise, and
// remaps the pages of a large block instead of copying them.
//
// That is only valid for elements that may be moved by copying their bytes
// and then forgetting the old ones: no element may hold its own address or
// be registered elsewhere by address. Mesh cells qualify (plain values, and
// InlineVec, which finds its inline buffer from its own address each time).
#pragma once

#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

namespace lb::host {

template <class T>
class CellColumn {
 public:
  CellColumn() = default;
  explicit CellColumn(size_t n) {
    reserve(n);
    for (; size_ < n; ++size_) new (data_ + size_) T();
  }
  CellColumn(const CellColumn& o) {
    reserve(o.size_);
    for (; size_ < o.size_; ++size_) new (data_ + size_) T(o.data_[size_]);
  }
  CellColumn(CellColumn&& o) noexcept : data_(o.data_), size_(o.size_), cap_(o.cap_) {
    o.data_ = nullptr;
    o.size_ = o.cap_ = 0;
  }
  CellColumn& operator=(const CellColumn& o) {
    if (this != &o) *this = CellColumn(o);
    return *this;
  }
  CellColumn& operator=(CellColumn&& o) noexcept {
    if (this != &o) {
      release();
      std::swap(data_, o.data_);
      std::swap(size_, o.size_);
      std::swap(cap_, o.cap_);
    }
    return *this;
  }
  ~CellColumn() { release(); }

  size_t size() const { return size_; }
  T& operator[](size_t k) { return data_[k]; }
  const T& operator[](size_t k) const { return data_[k]; }

  void reserve(size_t n) {
    if (n <= cap_) return;
    // (void*: the elements are relocatable by their bytes, see above.)
    void* p = std::realloc(static_cast<void*>(data_), n * sizeof(T));
    if (!p) throw std::bad_alloc();
    data_ = static_cast<T*>(p);
    cap_ = n;
  }
  T& emplace_back() {
    if (size_ == cap_) reserve(cap_ ? 2 * cap_ : 4);
    new (data_ + size_) T();
    return data_[size_++];
  }
  void push_back(T&& v) {
    if (size_ == cap_) reserve(cap_ ? 2 * cap_ : 4);
    new (data_ + size_) T(std::move(v));
    ++size_;
  }

 private:
  void release() {
    for (size_t k = 0; k < size_; ++k) data_[k].~T();
    std::free(data_);
    data_ = nullptr;
    size_ = cap_ = 0;
  }

  T* data_ = nullptr;
  size_t size_ = 0, cap_ = 0;
};

}  // namespace lb::host
