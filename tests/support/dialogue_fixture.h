// Test support: dialogues of the framework against the memory console.
#pragma once

#include <stdexcept>
#include <string>

#include "framework/menus.h"
#include "framework/state.h"
#include "framework/system.h"
#include "support/console_fixture.h"

namespace kntr::testing {

// A console test that also clears the module callbacks, the framework
// services and the system hooks, and turns the end of the scripted input into
// a test failure instead of the end of the process.
class DialogueTest : public ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    framework::callbacks() = {};
    framework::services() = {};
    framework::systemHooks() = {};
    framework::graphicDialogues() = {};
    platform::setEndOfInputHandler(&inputEnded);
  }
  void TearDown() override {
    platform::setEndOfInputHandler(nullptr);
    framework::callbacks() = {};
    framework::services() = {};
    framework::systemHooks() = {};
    framework::graphicDialogues() = {};
    ConsoleTest::TearDown();
  }

  // Starts again on a clear screen of the current size with `keys` to type.
  void script(const std::string& keys) {
    platform::testconsole::attach(keys, framework::program().screenColumns,
                                  framework::program().screenLines);
  }

  bool inputLeft() { return !platform::testconsole::inputExhausted(); }

  // Number of times `piece` occurs in `text`.
  static int occurrences(const std::string& text, const std::string& piece) {
    int count = 0;
    for (std::size_t at = text.find(piece); at != std::string::npos;
         at = text.find(piece, at + piece.size()))
      ++count;
    return count;
  }

 private:
  [[noreturn]] static void inputEnded() { throw std::runtime_error("the scripted input ran out"); }
};

}  // namespace kntr::testing
