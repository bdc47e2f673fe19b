// The text routines: formatting tokens, messages and paged listings.
#include "framework/text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/state.h"
#include "support/checks.h"
#include "support/console_fixture.h"

namespace kntr::framework {
namespace {

using kntr::testing::Contains;
using TextTokens = kntr::testing::ConsoleTest;

TEST_F(TextTokens, TokensTranslateOnTheScreen) {
  const struct {
    const char* text;
    const char* shown;
  } cases[] = {
      {"a{{b", "a{b\n"},
      {"{{nwl", "{nwl\n"},
      {"one{NWL}two{nwl}three", "one\n}two\n}three\n"},
      {"", "\n"},
      {"{ulc{hln{hln{urc{nwl{vln  {vln{nwl{llc{tdn{crs{tup{lrc", "+--+\n!  !\n+++++\n"},
      {"Setup{NWM", "Setup->\n"},
      {"a{udl}b{bel}c", "a}b}c\n"},
  };
  for (const auto& c : cases) {
    OUTSCN(c.text);
    EXPECT_EQ(output(), c.shown) << c.text;
  }
}

TEST_F(TextTokens, ColoursSwitchTheForeground) {
  OUTSCN("{NAY}x");
  EXPECT_EQ(platform::testconsole::lastForeground(), 6);  // magenta
  OUTSCN("{red}x{cya}");
  EXPECT_EQ(platform::testconsole::lastForeground(), 4);
  PUTSCN("plain");
  EXPECT_EQ(platform::testconsole::lastForeground(), 7);
}

TEST_F(TextTokens, IllegalTokenAtTheEndKeepsTheTextBeforeIt) {
  OUTSCN("abc{ab");
  const std::string shown = output();
  EXPECT_TRUE(Contains(shown, {"illegal token in position", "           4", "abc\n"}));
}

TEST_F(TextTokens, PutscnLimitIs4092Characters) {
  PUTSCN(std::string(4092, 'x'));
  EXPECT_EQ(output(), std::string(4092, 'x') + "\n");
  type("\n");
  PUTSCN(std::string(4093, 'x'));
  const std::string shown = output();
  EXPECT_TRUE(Contains(shown,
                       "csbMaximum number of characters exceeded in subroutine PUTSCN\n"
                       "(maximum is 4092)"));
  EXPECT_EQ(shown.find(std::string(4093, 'x')), std::string::npos);
}

TEST_F(TextTokens, ErrorsWaitForReturnAndMouseButtonOneKeepsWaiting) {
  type("\x1b[<0;5;5M");  // left click: keeps waiting
  type("\x1b[<1;5;5M");  // middle click ends the pause
  ERRSCN("Something failed");
  EXPECT_TRUE(platform::testconsole::inputExhausted());
  EXPECT_TRUE(Contains(output(), "Something failed\n\n\nTo continue press RETURN"));
  program().executionMode = ModeBatch;  // a batch run does not wait
  PRMESG("note");
  EXPECT_EQ(output(), "note\n\n\n\n\n");
}

TEST_F(TextTokens, IoErrorsNameTheOperationTheFileAndTheReason) {
  EXPECT_EQ(ioStatusReason(908), "{nwl{gre(Could not open file specified)");
  EXPECT_EQ(ioStatusReason(942),
            "{nwl{gre(Error in list-directed read - character data read for assignment to "
            "noncharacter data");
  EXPECT_EQ(ioStatusReason(944), "{nwl{gre(Record too long in direct unformatted I/O");
  EXPECT_EQ(ioStatusReason(963),
            "{nwl{gre(Format error: Trying to scale unscalable format  specifier)");
  EXPECT_EQ(ioStatusReason(962),
            "{nwl{gre(Unexpected character found following a number in the{nwlformat string)");
  EXPECT_EQ(ioStatusReason(976), "{nwl{gre(Unexpected character in \"NAMELIST\" read)");
  for (int code : {906, 911, 919, 928, 932, 934, 935, 936, 938, 941, 943, 946, 949})
    EXPECT_EQ(ioStatusReason(code),
              "{nwl{gre(Unknown error message (I/O status is " + std::to_string(code) + "))");
  type("\n\n");
  IOERRM('R', "", 906);
  EXPECT_TRUE(Contains(output(),
                       "Attempt to read from file ** UNKNOWN ** failed\n"
                       "(Unknown error message (I/O status is 906))"));
  IOINTL('W', 981);
  EXPECT_TRUE(Contains(output(),
                       "Attempt to write to file ** INTERNAL ** failed\n"
                       "(Value out of range in numeric read)"));
}

// --- paged listings ------------------------------------------------------------

// Paging by SCROLL is shown by the table tests, which page through it.
// The last block of a listing is followed by blank lines to the screen's
// end less one (24 - 3 - 1 on 24 lines after a block of two lines), then the
// paging question with its two line ends.
TEST_F(TextTokens, LastPageIsFilledUpToThePagingQuestion) {
  type("\n");
  int current = 1;
  bool status = false;
  SCROLL("a{nwlb", 1, current, status);
  EXPECT_TRUE(status);
  const std::string shown = output();
  const std::size_t from = shown.find("a\nb\n"), to = shown.find("Input +, -, NNN");
  ASSERT_NE(from, std::string::npos);
  ASSERT_NE(to, std::string::npos);
  EXPECT_EQ(shown.substr(from + 4, to - from - 4), std::string(22, '\n'));
}

TEST_F(TextTokens, WholeScreenListingMustFit) {
  resize(40, 12);
  type("\n\n");
  PRPAGE("a{nwl}b");
  EXPECT_TRUE(Contains(output(), "To continue press RETURN"));
  std::string tall = "x";
  for (int i = 0; i < 9; ++i) tall += "{nwl}x";
  PRPAGE(tall);
  EXPECT_TRUE(Contains(output(), "Attempt to exceed number of lines on screen\n(maximum is   10)"));
  EXPECT_EQ(CNTLIN(tall), 10);
  EXPECT_EQ(CNTLIN("   "), 1);
}

}  // namespace
}  // namespace kntr::framework
