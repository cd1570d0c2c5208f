// InlineVec: a vector of trivially copyable elements that keeps up to N of
// them inside itself and only goes to the heap beyond that.
//
// A mesh run holds a handful of control points and joints; with
// std::vector every run costs two heap blocks, and rebuilding or densifying
// a large mesh spends much of its time in the allocator and in cache misses
// on scattered blocks. Runs of up to two pieces fit inline here.
//
// Only what the engine uses is offered. Ranges passed to assign and insert
// must not point into the vector itself.
#pragma once

#include <cassert>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <new>
#include <span>
#include <type_traits>

namespace lb::host {

template <class T, uint32_t N>
class InlineVec {
  static_assert(std::is_trivially_copyable_v<T>, "elements are moved with memcpy");
  static_assert(N > 0);

 public:
  InlineVec() = default;
  InlineVec(std::initializer_list<T> l) { assign(l.begin(), l.end()); }
  InlineVec(const InlineVec& o) { assign(o.begin(), o.end()); }
  InlineVec(InlineVec&& o) noexcept { take(o); }
  InlineVec& operator=(const InlineVec& o) {
    if (this != &o) assign(o.begin(), o.end());
    return *this;
  }
  InlineVec& operator=(InlineVec&& o) noexcept {
    if (this != &o) {
      release();
      take(o);
    }
    return *this;
  }
  InlineVec& operator=(std::initializer_list<T> l) {
    assign(l.begin(), l.end());
    return *this;
  }
  ~InlineVec() { release(); }

  size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  T* data() { return onHeap() ? heap_ : reinterpret_cast<T*>(buf_); }
  const T* data() const { return onHeap() ? heap_ : reinterpret_cast<const T*>(buf_); }
  T* begin() { return data(); }
  T* end() { return data() + size_; }
  const T* begin() const { return data(); }
  const T* end() const { return data() + size_; }
  T& operator[](size_t k) {
    assert(k < size_);
    return data()[k];
  }
  const T& operator[](size_t k) const {
    assert(k < size_);
    return data()[k];
  }
  T& front() { return (*this)[0]; }
  T& back() { return (*this)[size_ - 1]; }
  const T& front() const { return (*this)[0]; }
  const T& back() const { return (*this)[size_ - 1]; }
  operator std::span<const T>() const { return {data(), size_}; }

  void clear() { size_ = 0; }
  void reserve(size_t n) {
    if (n > cap_) grow(n);
  }
  void resize(size_t n, const T& v = T{}) {
    reserve(n);
    T* d = data();
    for (size_t k = size_; k < n; ++k) d[k] = v;
    size_ = static_cast<uint32_t>(n);
  }
  // Resizes to n leaving new elements unset, for the caller to write, and
  // returns the elements.
  T* resizeForOverwrite(size_t n) {
    reserve(n);
    size_ = static_cast<uint32_t>(n);
    return data();
  }
  void push_back(const T& v) {
    if (size_ == cap_) grow(2 * size_t{cap_});
    data()[size_++] = v;
  }
  void assign(const T* first, const T* last) {
    assert(last <= begin() || first >= end());
    const size_t n = static_cast<size_t>(last - first);
    reserve(n);
    if (n) std::memcpy(data(), first, n * sizeof(T));
    size_ = static_cast<uint32_t>(n);
  }
  void assign(size_t n, const T& v) {
    size_ = 0;
    resize(n, v);
  }
  // Inserts [first, last) before position k.
  void insert(size_t k, const T* first, const T* last) {
    assert(last <= begin() || first >= end());
    const size_t n = static_cast<size_t>(last - first);
    open(k, n);
    if (n) std::memcpy(data() + k, first, n * sizeof(T));
  }
  // Opens room for n elements before position k and returns it; the n
  // elements are left unset, for the caller to write.
  T* insertGap(size_t k, size_t n) {
    open(k, n);
    return data() + k;
  }
  // Inserts n copies of v before position k.
  void insert(size_t k, size_t n, const T& v) {
    open(k, n);
    T* d = data() + k;
    for (size_t q = 0; q < n; ++q) d[q] = v;
  }
  // Removes the elements [k, k + n).
  void erase(size_t k, size_t n) {
    assert(k + n <= size_);
    T* d = data();
    std::memmove(d + k, d + k + n, (size_ - k - n) * sizeof(T));
    size_ -= static_cast<uint32_t>(n);
  }

  // True while some vector of this type holds a heap block: until then
  // dropping one without its destructor leaks nothing.
  static bool anyOnHeap() { return heapBlocks_ != 0; }

  friend bool operator==(const InlineVec& a, const InlineVec& b) {
    if (a.size_ != b.size_) return false;
    for (size_t k = 0; k < a.size_; ++k)
      if (!(a.data()[k] == b.data()[k])) return false;
    return true;
  }

 private:
  bool onHeap() const { return cap_ > N; }
  void grow(size_t want) {
    const size_t cap = want < 2 * size_t{cap_} ? 2 * size_t{cap_} : want;
    T* fresh = static_cast<T*>(::operator new(cap * sizeof(T)));
    ++heapBlocks_;
    if (size_) std::memcpy(fresh, data(), size_ * sizeof(T));
    release();
    heap_ = fresh;
    cap_ = static_cast<uint32_t>(cap);
  }
  // Makes room for n elements before position k.
  void open(size_t k, size_t n) {
    assert(k <= size_);
    reserve(size_ + n);
    T* d = data();
    std::memmove(d + k + n, d + k, (size_ - k) * sizeof(T));
    size_ += static_cast<uint32_t>(n);
  }
  void release() {
    if (onHeap()) {
      ::operator delete(heap_);
      --heapBlocks_;
    }
    cap_ = N;
  }
  void take(InlineVec& o) {
    size_ = o.size_;
    cap_ = o.cap_;
    if (o.onHeap())
      heap_ = o.heap_;
    else if (size_)
      std::memcpy(buf_, o.buf_, size_ * sizeof(T));
    o.size_ = 0;
    o.cap_ = N;
  }

  // Heap blocks held by all vectors of this type (the host runs on one thread).
  static inline size_t heapBlocks_ = 0;
  uint32_t size_ = 0;
  uint32_t cap_ = N;
  union {
    T* heap_;
    alignas(T) unsigned char buf_[N * sizeof(T)];
  };
};

}  // namespace lb::host
