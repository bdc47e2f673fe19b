// Test support: run framework code against the memory console.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/state.h"
#include "platform/console.h"

namespace kntr::testing {

// Attaches the memory console with scripted input for the life of a test
// and resets the framework state.
class ConsoleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    framework::resetProgramState();
    platform::testconsole::attach("");
  }
  void TearDown() override { platform::testconsole::detach(); }

  // Keystrokes the user will type.
  void type(const std::string& keys) { platform::testconsole::feed(keys); }
  std::string output() { return platform::testconsole::takeOutput(); }
  std::vector<std::string> screen() { return platform::testconsole::screen(); }
  void resize(int columns, int lines) {
    platform::testconsole::attach("", columns, lines);
    framework::program().screenColumns = columns;
    framework::program().screenLines = lines;
  }
};

}  // namespace kntr::testing
