// Test support: checks on the texts a dialogue showed.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace kntr::testing {

// Passes when `text` holds `piece`; a failure prints both.
inline ::testing::AssertionResult Contains(const std::string& text, const std::string& piece) {
  if (text.find(piece) != std::string::npos) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "[" << piece << "] not in:\n" << text;
}

}  // namespace kntr::testing
