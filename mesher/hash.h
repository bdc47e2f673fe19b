// Hash values of small sets of positive integers, for the topology tables.
//
// A set is written as text, its members' decimal digits joined in ascending
// order with no separator, and the text is hashed by the classic shift and
// fold of the top four bits. So (3, 7) and (7, 3) both hash the text "37".
//
//   IHASH2  hash value of a pair of positive integers, independent of order
//   IHASHN  hash value of up to 10 positive integers, independent of order
#pragma once

#include <cstdint>
#include <string_view>

#include "framework/onebased.h"

namespace kntr::mesher {

inline constexpr int MaxHashKeys = 10;

// IHASH2: a value from 1 to `size` for the pair (a, b), the same for (b, a).
// 0 when a number is not positive.
//   status: set on failure; the message has been shown.
int IHASH2(int a, int b, int size, bool& status);

// IHASHN: a value from 1 to `size` for keys(1..n), the same in any order.
// 0 when there are more than 10 keys or one is not positive.
//   status: set on failure; the message has been shown.
int IHASHN(int n, View1<const int> keys, int size, bool& status);

// The hash of a text: h = 16 h + c over its bytes, folding the top four
// bits back in whenever they are set.
std::uint32_t hashText(std::string_view text);

}  // namespace kntr::mesher
