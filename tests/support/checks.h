// Test support: short checks of texts shown and of routine status flags.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace kntr::testing {

// Passes when `text` holds every one of `pieces`; a failure names the
// missing pieces and prints the text.
inline ::testing::AssertionResult Contains(const std::string& text,
                                           std::initializer_list<std::string> pieces) {
  std::string missing;
  for (const std::string& piece : pieces)
    if (text.find(piece) == std::string::npos) missing += "[" + piece + "] ";
  if (missing.empty()) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << missing << "not in:\n" << text;
}
inline ::testing::AssertionResult Contains(const std::string& text, const std::string& piece) {
  return Contains(text, {piece});
}

}  // namespace kntr::testing

// Runs a call whose last argument is `status`, preset to the opposite of
// `expected` so that the routine is seen to set it, and checks the result:
//   EXPECT_STATUS(false, RDCONF(name, status));
#define EXPECT_STATUS(expected, ...)               \
  do {                                             \
    bool status = !(expected);                     \
    __VA_ARGS__;                                   \
    EXPECT_EQ(status, (expected)) << #__VA_ARGS__; \
  } while (false)
