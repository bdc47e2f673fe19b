// Zero-based work lists carved from the auxiliary vectors.
//
// Several work lists of the mesher count from 0 and are closed: entry n
// repeats entry 0 (a polygon's corners, the shrunk polygon, the walk around a
// row mesh). View0 keeps that numbering in the code. It is a window on room
// that a caller left in IntAux or RealAux, bounds-checked by assert like the
// one-based views.
//
// A closed list x[0..n] seen from element 1 on is a one-based view of the
// same n points (point n being point 0), which is how the one-based polygon
// routines read it: see `cyclic`.
#pragma once

#include <cassert>

#include "framework/onebased.h"

namespace kntr::mesher {

template <class T>
class View0 {
 public:
  constexpr View0() = default;
  constexpr View0(T* data, int size) : data_(data), size_(size) {}
  template <class U>
  requires std::is_same_v<const U, T>
  constexpr View0(const View0<U>& other) : data_(other.data()), size_(other.size()) {}

  constexpr T& operator()(int i) const {
    assert(i >= 0 && i < size_);
    return data_[i];
  }
  constexpr int size() const { return size_; }
  constexpr T* data() const { return data_; }

 private:
  T* data_ = nullptr;
  int size_ = 0;
};

// `count` items of `room` from item `first` (one-based), numbered from 0.
template <class T>
View0<T> carve0(View1<T> room, int first, int count) {
  assert(first >= 1 && count >= 0 && first - 1 + count <= room.size());
  return View0<T>(room.data() + (first - 1), count);
}

// `count` items of `room` from item `first` (one-based), numbered from 1.
template <class T>
View1<T> carve1(View1<T> room, int first, int count) {
  assert(first >= 1 && count >= 0 && first - 1 + count <= room.size());
  return View1<T>(room.data() + (first - 1), count);
}

// The points 1..n of a closed list x[0..n], as a one-based view.
template <class T>
View1<T> cyclic(View0<T> closed, int n) {
  assert(n >= 0 && n + 1 <= closed.size());
  return View1<T>(closed.data() + 1, n);
}

}  // namespace kntr::mesher
