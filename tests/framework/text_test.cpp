#include "framework/text.h"

#include <gtest/gtest.h>

#include "framework/state.h"
#include "support/console_fixture.h"

namespace kntr::framework {
namespace {

using TextTokens = kntr::testing::ConsoleTest;

TEST_F(TextTokens, BracesAndLineTokens) {
  OUTSCN("a{{b");
  EXPECT_EQ(output(), "a{b\n");
  OUTSCN("{{nwl");
  EXPECT_EQ(output(), "{nwl\n");
  OUTSCN("one{NWL}two{nwl}three");
  EXPECT_EQ(output(), "one\n}two\n}three\n");
  OUTSCN("");
  EXPECT_EQ(output(), "\n");
}

TEST_F(TextTokens, BoxTokensAndMarks) {
  OUTSCN("{ulc{hln{hln{urc{nwl{vln  {vln{nwl{llc{tdn{crs{tup{lrc");
  EXPECT_EQ(output(), "+--+\n!  !\n+++++\n");
  OUTSCN("Setup{NWM");
  EXPECT_EQ(output(), "Setup->\n");
  OUTSCN("a{udl}b{bel}c");
  EXPECT_EQ(output(), "a}b}c\n");
}

TEST_F(TextTokens, ColoursSwitchTheForeground) {
  OUTSCN("{NAY}x");
  EXPECT_EQ(platform::testconsole::lastForeground(), 6);
  OUTSCN("{red}x{cya}");
  EXPECT_EQ(platform::testconsole::lastForeground(), 4);
  PUTSCN("plain");
  EXPECT_EQ(platform::testconsole::lastForeground(), 7);
}

TEST_F(TextTokens, IllegalTokenAtTheEndKeepsTheTextBeforeIt) {
  OUTSCN("abc{ab");
  const std::string shown = output();
  EXPECT_NE(shown.find("illegal token in position"), std::string::npos);
  EXPECT_NE(shown.find("           4"), std::string::npos);
  EXPECT_NE(shown.find("abc\n"), std::string::npos);
}

TEST_F(TextTokens, PutscnLimitIs4092Characters) {
  PUTSCN(std::string(4092, 'x'));
  EXPECT_EQ(output(), std::string(4092, 'x') + "\n");
  type("\n");
  PUTSCN(std::string(4093, 'x'));
  const std::string shown = output();
  EXPECT_NE(shown.find("csbMaximum number of characters exceeded in subroutine PUTSCN\n(maximum is 4092)"),
            std::string::npos);
  EXPECT_EQ(shown.find(std::string(4093, 'x')), std::string::npos);
}

TEST_F(TextTokens, ErrorsWaitForReturnAndMouseButtonOneKeepsWaiting) {
  type("\x1b[<0;5;5M");  // left click: keeps waiting
  type("\x1b[<1;5;5M");  // middle click ends the pause
  ERRSCN("Something failed");
  EXPECT_TRUE(platform::testconsole::inputExhausted());
  EXPECT_NE(output().find("Something failed\n\n\nTo continue press RETURN"), std::string::npos);
}

TEST_F(TextTokens, BatchModeDoesNotWait) {
  program().executionMode = ModeBatch;
  PRMESG("note");
  EXPECT_EQ(output(), "note\n\n\n\n\n");
}

TEST(IoErrorReasons, TableAndUnknownCodes) {
  EXPECT_EQ(ioStatusReason(908), "{nwl{gre(Could not open file specified)");
  EXPECT_EQ(ioStatusReason(942),
            "{nwl{gre(Error in list-directed read - character data read for assignment to "
            "noncharacter data");
  EXPECT_EQ(ioStatusReason(944), "{nwl{gre(Record too long in direct unformatted I/O");
  EXPECT_EQ(ioStatusReason(963),
            "{nwl{gre(Format error: Trying to scale unscalable format  specifier)");
  EXPECT_EQ(ioStatusReason(976), "{nwl{gre(Unexpected character in \"NAMELIST\" read)");
  for (int code : {906, 911, 919, 928, 932, 934, 935, 936, 938, 941, 943, 946, 949})
    EXPECT_EQ(ioStatusReason(code),
              "{nwl{gre(Unknown error message (I/O status is " + std::to_string(code) + "))");
}

TEST_F(TextTokens, IoErrorNamesTheOperationAndTheFile) {
  type("\n");
  IOERRM('R', "", 906);
  EXPECT_NE(output().find("Attempt to read from file ** UNKNOWN ** failed\n(Unknown error message "
                          "(I/O status is 906))"),
            std::string::npos);
  type("\n");
  IOINTL('W', 981);
  EXPECT_NE(output().find("Attempt to write to file ** INTERNAL ** failed\n(Value out of range in "
                          "numeric read)"),
            std::string::npos);
}

}  // namespace
}  // namespace kntr::framework
