#include "platform/console.h"

#include <gtest/gtest.h>

namespace kntr::platform {
namespace {

class MemoryConsole : public ::testing::Test {
 protected:
  void SetUp() override { testconsole::attach("", 40, 10, 100, 50); }
  void TearDown() override { testconsole::detach(); }
};

TEST_F(MemoryConsole, LineEditingWithBackspace) {
  testconsole::feed("abx\bc\n\b\b\bz\n");
  int button = -1, column = 0, row = 0, length = 0;
  std::string line;
  WinConF::getStrMouse(button, column, row, length, line);
  EXPECT_EQ(button, 0);
  EXPECT_EQ(line, "abc");
  EXPECT_EQ(length, 3);
  // Backspace at the start of a line does nothing.
  WinConF::getStrMouse(button, column, row, length, line);
  EXPECT_EQ(line, "z");
}

TEST_F(MemoryConsole, MouseReportsEndTheLineWithButtonAndCell) {
  // Typed text, then a left press and release, a wheel turn, a right press.
  testconsole::feed("12\x1b[<0;7;3M");
  testconsole::feed("\x1b[<0;7;3m\x1b[<64;1;1M\x1b[A\x1b[<2;40;10M");
  int button = 0, column = 0, row = 0, length = 0;
  std::string line;
  WinConF::getStrMouse(button, column, row, length, line);
  EXPECT_EQ(button, 1);
  EXPECT_EQ(column, 7);
  EXPECT_EQ(row, 3);
  EXPECT_EQ(length, 2);  // what was typed before the click
  WinConF::getStrMouse(button, column, row, length, line);
  EXPECT_EQ(button, 3);  // right button: the number of buttons
  EXPECT_EQ(column, 40);
  EXPECT_EQ(row, 10);
  EXPECT_EQ(length, 0);
}

TEST_F(MemoryConsole, CarriageReturnLineFeedIsOneLineEnd) {
  testconsole::feed("a\r\nb\n");
  std::string line;
  WinConF::getString(line);
  EXPECT_EQ(line, "a");
  WinConF::getString(line);
  EXPECT_EQ(line, "b");
  EXPECT_TRUE(testconsole::inputExhausted());
}

TEST_F(MemoryConsole, SizeRequestsBeyondTheLargestAreIgnored) {
  int columns = 0, lines = 0;
  WinConF::setSize(200, 20);
  WinConF::getSize(columns, lines);
  EXPECT_EQ(columns, 40);
  EXPECT_EQ(lines, 10);
  WinConF::setSize(80, 24);
  WinConF::getSize(columns, lines);
  EXPECT_EQ(columns, 80);
  EXPECT_EQ(lines, 24);
}

TEST_F(MemoryConsole, CursorIsClippedAndClearingKeepsIt) {
  WinConF::setPosition(-5, 99);
  int column = -1, row = -1;
  WinConF::getPosition(column, row);
  EXPECT_EQ(column, 0);
  EXPECT_EQ(row, 9);
  WinConF::setPosition(3, 2);
  WinConF::putString("xy");
  WinConF::clearScreen();
  WinConF::getPosition(column, row);
  EXPECT_EQ(column, 5);
  EXPECT_EQ(row, 2);
  for (const auto& r : testconsole::screen()) EXPECT_EQ(r, "");
  WinConF::setLowerLeft();
  WinConF::getPosition(column, row);
  EXPECT_EQ(row, 9);
}

TEST_F(MemoryConsole, ColourZeroKeepsTheForeground) {
  WinConF::setColor(5, 0);
  WinConF::setColor(0, 3);
  int foreground = 0, background = 0;
  WinConF::getColor(foreground, background);
  EXPECT_EQ(foreground, 5);
  EXPECT_EQ(background, 3);
  WinConF::setColor(9, 0);  // not in the table: white
  WinConF::getColor(foreground, background);
  EXPECT_EQ(foreground, 8);
}

TEST_F(MemoryConsole, EndOfInputCallsTheHandlerAndExits) {
  EXPECT_EXIT(
      {
        setEndOfInputHandler([] {
          writeStandardOutput("handled\n");
          std::exit(3);
        });
        std::string line;
        WinConF::getString(line);
      },
      ::testing::ExitedWithCode(3), "");
}

}  // namespace
}  // namespace kntr::platform
