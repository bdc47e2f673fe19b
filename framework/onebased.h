// One-based fixed arrays and views.
//
// Every index in the system counts from 1, in memory as in files. These small
// wrappers keep that meaning in the code, so loops read
// `for (int i = 1; i <= n; ++i) a(i) = ...` with no `- 1` in the arithmetic.
// Bounds are checked by assert, that is in debug and sanitizer builds.
#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <type_traits>

namespace kntr {

// Array1<T, N>: N elements, indexed 1..N.
template <class T, int N>
struct Array1 {
  static_assert(N > 0);
  std::array<T, N> items{};

  constexpr T& operator()(int i) {
    assert(i >= 1 && i <= N);
    return items[static_cast<std::size_t>(i - 1)];
  }
  constexpr const T& operator()(int i) const {
    assert(i >= 1 && i <= N);
    return items[static_cast<std::size_t>(i - 1)];
  }
  static constexpr int size() { return N; }
  constexpr T* data() { return items.data(); }
  constexpr const T* data() const { return items.data(); }
  constexpr void fill(const T& value) { items.fill(value); }
  friend bool operator==(const Array1&, const Array1&) = default;
};

// Array2<T, R, C>: an R by C table, indexed (1..R, 1..C), rows contiguous.
template <class T, int R, int C>
struct Array2 {
  static_assert(R > 0 && C > 0);
  std::array<T, static_cast<std::size_t>(R) * C> items{};

  constexpr T& operator()(int i, int j) {
    assert(i >= 1 && i <= R && j >= 1 && j <= C);
    return items[static_cast<std::size_t>(i - 1) * C + static_cast<std::size_t>(j - 1)];
  }
  constexpr const T& operator()(int i, int j) const {
    assert(i >= 1 && i <= R && j >= 1 && j <= C);
    return items[static_cast<std::size_t>(i - 1) * C + static_cast<std::size_t>(j - 1)];
  }
  static constexpr int rows() { return R; }
  static constexpr int columns() { return C; }
  constexpr void fill(const T& value) { items.fill(value); }
  friend bool operator==(const Array2&, const Array2&) = default;
};

// View1<T>: a one-based window on storage that someone else owns, such as a
// caller's result array. Element 1 is data[0].
template <class T>
class View1 {
 public:
  constexpr View1() = default;
  constexpr View1(T* data, int size) : data_(data), size_(size) {}
  template <int N>
  constexpr View1(Array1<T, N>& a) : data_(a.data()), size_(N) {}
  // A read-only view of writable storage.
  template <class U>
    requires std::is_same_v<const U, T>
  constexpr View1(const View1<U>& other) : data_(other.data()), size_(other.size()) {}
  template <class U, int N>
    requires std::is_same_v<const U, T>
  constexpr View1(const Array1<U, N>& a) : data_(a.data()), size_(N) {}

  constexpr T& operator()(int i) const {
    assert(i >= 1 && i <= size_);
    return data_[i - 1];
  }
  constexpr int size() const { return size_; }
  constexpr T* data() const { return data_; }
  // The part from element `first` on, again counted from 1.
  constexpr View1 from(int first) const {
    assert(first >= 1 && first <= size_ + 1);
    return View1(data_ + (first - 1), size_ - (first - 1));
  }

 private:
  T* data_ = nullptr;
  int size_ = 0;
};

// A point of the plane, used wherever the system stores x, y pairs.
struct XY {
  double x = 0.0;
  double y = 0.0;
  friend bool operator==(const XY&, const XY&) = default;
};

}  // namespace kntr
