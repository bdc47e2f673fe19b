// Zero-based windows on the mesher's work vectors.
//
// The visibility work set of a reflex corner (point lists, labels, angles,
// candidate lists) counts from 0: point 0 is the corner's successor and the
// scan uses the low end of the same lists as its stack. View0 keeps that
// numbering readable; it is bounds-checked by assert like the one-based views.
#pragma once

#include <cassert>
#include <type_traits>

#include "framework/onebased.h"

namespace kntr::mesher {

template <class T>
class View0 {
 public:
  constexpr View0() = default;
  constexpr View0(T* data, int size) : data_(data), size_(size) {}
  // A read-only view of writable storage.
  template <class U>
    requires std::is_same_v<const U, T>
  constexpr View0(const View0<U>& other) : data_(other.data()), size_(other.size()) {}
  // Elements first .. first + size - 1 of a one-based view, renumbered from 0.
  constexpr View0(View1<T> from, int first, int size) : data_(from.data() + (first - 1)), size_(size) {
    assert(first >= 1 && size >= 0 && first - 1 + size <= from.size());
  }

  constexpr T& operator()(int i) const {
    assert(i >= 0 && i < size_);
    return data_[i];
  }
  constexpr int size() const { return size_; }
  constexpr T* data() const { return data_; }
  // The part from element `first` on, again counted from 0.
  constexpr View0 from(int first) const {
    assert(first >= 0 && first <= size_);
    return View0(data_ + first, size_ - first);
  }

 private:
  T* data_ = nullptr;
  int size_ = 0;
};

}  // namespace kntr::mesher
