#include "platform/console.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace kntr::platform {
namespace {

class MemoryConsole : public ::testing::Test {
 protected:
  void SetUp() override { testconsole::attach("", 40, 10, 100, 50); }
  void TearDown() override { testconsole::detach(); }
  // Reads one line: "button column row length [text]".
  static std::string read() {
    int button = -1, column = 0, row = 0, length = 0;
    std::string line;
    WinConF::getStrMouse(button, column, row, length, line);
    return std::to_string(button) + " " + std::to_string(column) + " " + std::to_string(row) + " " +
           std::to_string(length) + " [" + line.substr(0, static_cast<std::size_t>(length)) + "]";
  }
};

TEST_F(MemoryConsole, LinesEditAndMouseReportsEndThemWithButtonAndCell) {
  testconsole::feed("abx\bc\n\b\b\bz\n");
  EXPECT_EQ(read(), "0 0 0 3 [abc]");
  EXPECT_EQ(read(), "0 0 0 1 [z]");  // backspace at the start of a line does nothing
  // Typed text, then a left press and release, a wheel turn, a right press.
  testconsole::feed("12\x1b[<0;7;3M");
  testconsole::feed("\x1b[<0;7;3m\x1b[<64;1;1M\x1b[A\x1b[<2;40;10M");
  EXPECT_EQ(read(), "1 7 3 2 [12]");  // what was typed before the click
  EXPECT_EQ(read(), "3 40 10 0 []");  // right button: the number of buttons
  // On a two-button mouse the right button gives 2: the default answer.
  ::setenv("KNTR_MOUSE_BUTTONS", "2", 1);
  testconsole::feed("\x1b[<2;40;10M");
  EXPECT_EQ(read(), "2 40 10 0 []");
  ::unsetenv("KNTR_MOUSE_BUTTONS");
  testconsole::feed("a\r\nb\n");      // CR LF is one line end
  std::string line;
  WinConF::getString(line);
  EXPECT_EQ(line, "a");
  WinConF::getString(line);
  EXPECT_EQ(line, "b");
  EXPECT_TRUE(testconsole::inputExhausted());
}

TEST_F(MemoryConsole, ColourZeroKeepsTheColourAndUnknownOnesAreWhite) {
  int foreground = 0, background = 0;
  WinConF::setColor(5, 0);
  WinConF::setColor(0, 3);
  WinConF::getColor(foreground, background);
  EXPECT_EQ(std::vector<int>({foreground, background}), std::vector<int>({5, 3}));
  WinConF::setColor(9, 0);  // not in the table: white
  WinConF::getColor(foreground, background);
  EXPECT_EQ(foreground, 8);
}

}  // namespace
}  // namespace kntr::platform
