// The printer line engine, page heads, print jobs and the output target
// question.
#include "framework/printers.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "framework/configuration.h"
#include "framework/files.h"
#include "framework/state.h"
#include "framework/system.h"
#include "framework/text.h"
#include "support/printer_fixture.h"

namespace kntr::framework {
namespace {

using kntr::testing::PrinterTest;

// Replaces the printer's token table with `tokens`.
void setTokens(std::initializer_list<PrinterToken> tokens) {
  PrinterState& s = printerState();
  s.tokenCount = 0;
  for (const PrinterToken& t : tokens) s.token(++s.tokenCount) = t;
}

const PrinterToken& token(const std::string& name) {
  const PrinterState& s = printerState();
  for (int k = 1; k <= s.tokenCount; ++k)
    if (s.token(k).name == name) return s.token(k);
  static const PrinterToken none;
  ADD_FAILURE() << "no token " << name;
  return none;
}

// --- PRLINE --------------------------------------------------------------------

class PrinterLine : public PrinterTest {};

TEST_F(PrinterLine, ToggleWrittenTwiceReturnsToEarlierState) {
  open("");
  setTokens(
      {{"UDL", "<u>", "</u>", TokenToggles, false}, {"HGL", "<b>", "</b>", TokenToggles, false}});
  PRLINE("a{udlb{udlc");
  EXPECT_FALSE(token("UDL").mark);
  PRLINE("{udlx{hgly{udlz{udlw");
  EXPECT_TRUE(token("UDL").mark);
  EXPECT_TRUE(token("HGL").mark);
  // Every text starts with all tokens off.
  PRLINE("{udlagain");
  EXPECT_EQ(finishBody(),
            (std::vector<std::string>{"a<u>b</u>c", "<u>x<b>y</u>z<u>w", "<u>again"}));
}

TEST_F(PrinterLine, GroupMemberClearsTheOthers) {
  open("");
  setTokens({{"RED", "[r]", "", TokenGroupMember, false},
             {"GRE", "[g]", "", TokenGroupMember, false},
             {"UDL", "_", "-", TokenToggles, false}});
  PRLINE("{udl{red a {gre b {red c");
  EXPECT_TRUE(token("RED").mark);
  EXPECT_FALSE(token("GRE").mark);
  EXPECT_TRUE(token("UDL").mark);  // a toggle is no member of the group
  PRLINE("{gre{gre d");
  EXPECT_TRUE(token("GRE").mark);
  EXPECT_FALSE(token("RED").mark);
  EXPECT_EQ(finishBody(), (std::vector<std::string>{"_[r] a [g] b [r] c", "[g][g] d"}));
}

TEST_F(PrinterLine, LinesBracesAndUnknownTokens) {
  open("");
  setTokens({{"BEL", "*", "#", 7, false}});
  const int before = printerState().linesUsed;
  PRLINE("one{nwltwo{{three{bel{bel{xyz{CYAfour{nwl");
  EXPECT_EQ(printerState().linesUsed, before + 3);
  PRLINE("");
  EXPECT_EQ(printerState().linesUsed, before + 4);
  EXPECT_EQ(finishBody(), (std::vector<std::string>{"one", "two{three**four", "", ""}));
}

TEST_F(PrinterLine, PlainModelDrawsBoxesWithPlusMinusAndBar) {
  open("");
  PRLINE(
      "{ulc{hln{tdn{hln{urc{nwl{vln{udl{hgl{ita{std x{vln{nwl{trg{hln{crs{hln{tlf{nwl"
      "{llc{hln{tup{hln{lrc");
  EXPECT_EQ(finishBody(), (std::vector<std::string>{"+-+-+", "! x!", "+-+-+", "+-+-+"}));
}

TEST_F(PrinterLine, UnknownModelPrintsPlainCharacters) {
  open("NoSuchPrinter-9000");
  PRLINE("{ulc{hln{vln");
  EXPECT_EQ(finishBody(), (std::vector<std::string>{"+-!"}));
}

TEST_F(PrinterLine, PclModelSendsSetupEscapesAndLineDrawing) {
  open("DeskJet+");
  PRLINE("{udlu{udl{hglb{hgl{itai{ita{ulc{hln{vln");
  bool status = true;
  CLPRNT(true, status);
  EXPECT_FALSE(status);
  const std::string text = readFile(path("out.lst"));
  const std::string esc = "\x1b";
  // Set-up first, then the page head with line-drawing characters and
  // carriage returns before each line feed.
  EXPECT_EQ(text.rfind(esc + "(10U" + esc + "(s12H" + esc + "(s3T" + esc + "&a10L" + "\xda", 0),
            0u);
  EXPECT_NE(text.find("\xc4\xbf\r\n"), std::string::npos);
  EXPECT_NE(text.find(esc + "&dDu" + esc + "&d@" + esc + "(s3Bb" + esc + "(s0B" + esc + "(s1Si" +
                      esc + "(s0S\xda\xc4\xb3\r\n"),
            std::string::npos);
  // The wrap-up ends the job and ejects the page.
  EXPECT_EQ(text.substr(text.size() - 6), esc + "&a0L\f");
  EXPECT_EQ(text.find('{'), std::string::npos);
}

TEST_F(PrinterLine, LineDrawingSetOfTheHp92286) {
  open("LaserJet-HP92286J");
  PRLINE("{hln");
  const std::string esc = "\x1b";
  const std::vector<std::string> body = finishBody();
  // The line, and the form feed that ends the job.
  ASSERT_EQ(body.size(), 2u);
  EXPECT_EQ(body[0], esc + "(2Q\xc4" + esc + "(0U\r");
  EXPECT_EQ(body[1], "\f");
}

TEST_F(PrinterLine, ModelsTellUnderlineApart) {
  IZPRMD("LaserJet-III");
  EXPECT_EQ(token("UDL").on, "\x1b&d0D");
  EXPECT_EQ(printerState().setup, "\x1b(10u(s12H");
  IZPRMD("HP2934");
  EXPECT_EQ(token("UDL").on, "\x1b&dD");
  EXPECT_EQ(printerState().setup, "\x1b(8U\x1b(s12H\x1b(s3T\x1b(s0Q\x1b&a10L");
  EXPECT_EQ(printerState().wrap, "\x1b&a0L\f");
  IZPRMD("LaserJet-II");
  EXPECT_EQ(printerState().wrap, "\f");
  IZPRMD("PostScript");
  EXPECT_EQ(token("ULC").on, "+");
  EXPECT_TRUE(printerState().setup.empty());
  EXPECT_TRUE(knownPrinterModel("WIN32PRINTER"));
  EXPECT_FALSE(knownPrinterModel("LaserJet"));
}

TEST_F(PrinterLine, WriteFailureEndsTheJobAndReturnsToTheScreen) {
  open("");
  simulateWriteFailureAfter(0);
  type("\n");
  PRLINE("lost");
  EXPECT_NE(output().find("Attempt to write to file ** " + path("out.lst") + " ** failed"),
            std::string::npos);
  EXPECT_TRUE(printJobFailed());
  EXPECT_FALSE(printerState().open);
  EXPECT_EQ(program().listingTarget, TargetScreen);
  PRLINE("ignored");  // nothing more happens
  bool status = false;
  CLPRNT(true, status);
  EXPECT_TRUE(status);
  EXPECT_FALSE(printJobFailed());
  EXPECT_FALSE(fileExists(path("out.lst")));
  EXPECT_FALSE(inputLeft());
}

TEST_F(PrinterLine, JobThrownAwayLeavesNoFile) {
  open("");
  PRLINE("draft");
  bool status = true;
  CLPRNT(false, status);
  EXPECT_FALSE(status);
  EXPECT_FALSE(fileExists(path("out.lst")));
  EXPECT_EQ(program().listingTarget, TargetScreen);
}

// --- PRPHED --------------------------------------------------------------------

class PageHead : public PrinterTest {};

TEST_F(PageHead, FirstPageBox) {
  configuration().printerHeadingName = "KNTR profile listings";
  open("");
  const std::vector<std::string> lines = finish();
  ASSERT_EQ(lines.size(), 11u);
  const std::string rule(77, '-');
  EXPECT_EQ(lines[0], "+" + rule + "+");
  EXPECT_EQ(lines[1],
            "!" + std::string(27, '-') + " KNTR profile listings " + std::string(27, '-') + "!");
  EXPECT_EQ(lines[2],
            "! Package: Tarvik - 2016A" + std::string(28, ' ') + "Module: KNTR - 1998-0223 !");
  EXPECT_EQ(lines[3], "+" + rule + "+");
  EXPECT_EQ(lines[4], "! Project  : demo" + std::string(61, ' ') + "!");
  EXPECT_EQ(lines[5], "! Company  : ACME" + std::string(61, ' ') + "!");
  EXPECT_EQ(lines[6], "! User     : me" + std::string(63, ' ') + "!");
  EXPECT_TRUE(std::regex_match(
      lines[7], std::regex(R"(! Date     : \d\d-[A-Z][a-z]{2}-\d{4} {39}Time: \d\d:\d\d:\d\d !)")))
      << lines[7];
  EXPECT_EQ(lines[8], "+" + rule + "+");
  EXPECT_EQ(lines[9], "");
  EXPECT_EQ(lines[10], "");
  for (int k = 0; k <= 8; ++k) EXPECT_EQ(lines[static_cast<std::size_t>(k)].size(), 79u) << k;
}

TEST_F(PageHead, LongIdentificationKeepsItsLast64Characters) {
  std::string project = "/ships/";
  for (char c = 'a'; project.size() < 90; c = c == 'z' ? 'a' : static_cast<char>(c + 1))
    project.push_back(c);
  program().projectName = project;
  program().company = std::string(70, 'C') + "{red}";
  open("");
  const std::vector<std::string> lines = finish();
  ASSERT_GE(lines.size(), 6u);
  EXPECT_EQ(lines[4], "! Project  : " + project.substr(project.size() - 64) + " !");
  // Braces in a value print as typed.
  EXPECT_EQ(lines[5], "! Company  : " + std::string(59, 'C') + "{red} !");
}

TEST_F(PageHead, ListingTitleUnderTheBox) {
  printerState().listingTitle = "Program configuration";
  open("");
  const std::vector<std::string> lines = finish();
  ASSERT_EQ(lines.size(), 13u);
  EXPECT_EQ(lines[8], "+" + std::string(77, '-') + "+");
  EXPECT_EQ(lines[9],
            "!" + std::string(28, ' ') + "Program configuration" + std::string(28, ' ') + "!");
  EXPECT_TRUE(printerState().listingTitle.empty());  // one job only
}

TEST_F(PageHead, LaterPagesFillThePageAndCarryOneLine) {
  open("", 20);
  const std::string date = printerState().date;
  const std::string time = printerState().time;
  PRLINE("body");
  PRPHED();
  PRLINE("more");
  PRPHED();
  const std::vector<std::string> lines = finish();
  ASSERT_EQ(lines.size(), 20u + 20u + 3u);
  EXPECT_EQ(lines[11], "body");
  for (int k = 12; k < 20; ++k) EXPECT_EQ(lines[static_cast<std::size_t>(k)], "") << k;
  const std::string shortDate = date.substr(0, 7) + date.substr(9, 2);
  EXPECT_EQ(lines[20], "Module: KNTR; pjc: demo           ; date: " + shortDate +
                           "; time: " + time + "; page:    2");
  EXPECT_EQ(lines[21], "");
  EXPECT_EQ(lines[22], "");
  EXPECT_EQ(lines[23], "more");
  EXPECT_EQ(lines[40], "Module: KNTR; pjc: demo           ; date: " + shortDate +
                           "; time: " + time + "; page:    3");
}

// --- Print jobs and spooling -----------------------------------------------------

class PrintJob : public PrinterTest {
 protected:
  void SetUp() override {
    PrinterTest::SetUp();
    const char* path = std::getenv("PATH");
    savedPath_ = path ? path : "";
    std::filesystem::create_directory(directory() / "bin");
    configuration().spoolDirectory = directory().string();
  }
  void TearDown() override {
    ::setenv("PATH", savedPath_.c_str(), 1);
    PrinterTest::TearDown();
  }
  // Puts a fake "lp" first in PATH: it records its arguments and copies the
  // file it is given, then exits with `code`.
  void fakeLp(int code) {
    const std::string script = path("bin/lp");
    writeFile(script,
              "#!/bin/sh\n"
              "echo \"$@\" > '" +
                  path("lp.args") +
                  "'\n"
                  "for a; do last=\"$a\"; done\n"
                  "cp \"$last\" '" +
                  path("lp.copy") +
                  "'\n"
                  "exit " +
                  std::to_string(code) + "\n");
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    ::setenv("PATH", (path("bin") + ":" + savedPath_).c_str(), 1);
  }
  std::string savedPath_;
};

TEST_F(PrintJob, SystemPrinterSpoolsThroughLpWithTheQueueName) {
  fakeLp(0);
  addPrinter(DeviceTable::System, "office");
  EXPECT_EQ(spoolFileName(), path("spool.prnt"));
  EXPECT_EQ(spoolCommand(1, spoolFileName()), "lp -d office " + path("spool.prnt"));
  bool status = true;
  OPPRNT(TargetSystemPrinter, spoolFileName(), SystemPrinterModel, 66,
         spoolCommand(1, spoolFileName()), status);
  ASSERT_FALSE(status);
  EXPECT_EQ(program().listingTarget, TargetSystemPrinter);
  PRPAGE("{cya{ulc{hln{urc{nwl{vln{gre ok{vln");
  CLPRNT(true, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(program().listingTarget, TargetScreen);
  EXPECT_EQ(readLines(path("lp.args")),
            (std::vector<std::string>{"-d office " + path("spool.prnt")}));
  const std::vector<std::string> printed = readLines(path("lp.copy"));
  ASSERT_EQ(printed.size(), 11u + 2u + 2u);
  EXPECT_EQ(printed[11], "+-+");
  EXPECT_EQ(printed[12], "! ok!");
}

TEST_F(PrintJob, ConfiguredCommandAndQuotedSpoolName) {
  addPrinter(DeviceTable::System, "laser", "LaserJet-III", "lp -d laser -o raw");
  EXPECT_EQ(spoolCommand(1, "/tmp/my spool"), "lp -d laser -o raw '/tmp/my spool'");
  configuration().spoolDirectory.clear();
  EXPECT_EQ(spoolFileName(), "spool.prnt");
}

TEST_F(PrintJob, FailingQueueIsReported) {
  fakeLp(3);
  addPrinter(DeviceTable::System, "office");
  bool status = true;
  OPPRNT(TargetSystemPrinter, spoolFileName(), SystemPrinterModel, 66,
         spoolCommand(1, spoolFileName()), status);
  ASSERT_FALSE(status);
  type("\n");
  CLPRNT(true, status);
  EXPECT_TRUE(status);
  const std::string said = output();
  EXPECT_NE(said.find("Attempt to call operating system failed"), std::string::npos) << said;
  EXPECT_NE(said.find("(error is    3)"), std::string::npos) << said;
}

TEST_F(PrintJob, UnopenableFileIsReported) {
  type("\n");
  bool status = false;
  OPPRNT(TargetFilePrinter, path("no/such/dir/out.lst"), "", 66, "", status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("Attempt to open file"), std::string::npos);
  EXPECT_EQ(program().listingTarget, TargetScreen);
  EXPECT_FALSE(printerState().open);
}

// --- SLPRNT --------------------------------------------------------------------

struct Variant {
  int printers;
  int files;
  const char* question;
  const char* refusal;
  int cancel;
};

class TargetQuestion : public PrinterTest, public ::testing::WithParamInterface<Variant> {};

TEST_P(TargetQuestion, OffersWhatTheConfigurationHas) {
  const Variant v = GetParam();
  for (int i = 1; i <= v.printers; ++i) addPrinter(DeviceTable::System, "p" + std::to_string(i));
  for (int i = 1; i <= v.files; ++i) addPrinter(DeviceTable::File, "f" + std::to_string(i));
  // A number past cancel, a word, then cancel.
  type(std::to_string(v.cancel + 1) + "\n\n" + std::to_string(v.cancel) + "\n");
  bool abort = false, status = true;
  SLPRNT(abort, status);
  EXPECT_TRUE(abort);
  EXPECT_FALSE(status);
  const std::string said = output();
  EXPECT_EQ(occurrences(said, v.question), 2) << said;
  EXPECT_EQ(occurrences(said, std::string(v.refusal) + "\n"), 1) << said;
  EXPECT_NE(said.find("(default 1 (screen))"), std::string::npos);
  EXPECT_FALSE(inputLeft());

  // The default is the screen.
  type("\n");
  SLPRNT(abort, status);
  EXPECT_FALSE(abort);
  EXPECT_FALSE(status);
  EXPECT_EQ(program().listingTarget, TargetScreen);
}

INSTANTIATE_TEST_SUITE_P(
    Variants, TargetQuestion,
    ::testing::Values(Variant{0, 0, "Printer is? (screen = 1, cancel = 2)",
                              "Input must be either 1, 2", 2},
                      Variant{0, 1, "Printer is? (screen = 1, file = 2, cancel = 3)",
                              "Input must be either 1, 2, 3", 3},
                      Variant{2, 0, "Printer is? (screen = 1, printer = 2, cancel = 3)",
                              "Input must be either 1, 2, 3", 3},
                      Variant{1, 3, "Printer is? (screen = 1, printer = 2, file = 3, cancel = 4)",
                              "Input must be either 1, 2, 3 or 4", 4}));

TEST_F(PrinterTest, FilePrinterAsksForTheFileAndItsOverwrite) {
  addPrinter(DeviceTable::File, "first");
  addPrinter(DeviceTable::File, "listing", "DeskJet+", "", 72);
  configuration().filePrinters.defaultIndex = 2;
  const std::string name = path("taken.lst");
  writeFile(name, "old\n");
  // File printer; the default entry; the taken name, refused; then a new one.
  type("2\n\n" + name + "\nno\n" + path("new.lst") + "\n");
  bool abort = true, status = true;
  SLPRNT(abort, status);
  EXPECT_FALSE(abort);
  ASSERT_FALSE(status);
  const std::string said = output();
  EXPECT_NE(said.find("FILE PRINTERS"), std::string::npos);
  EXPECT_NE(said.find("Input name of print file? (max 80 characters)"), std::string::npos);
  EXPECT_NE(said.find("(default listing)"), std::string::npos);
  EXPECT_NE(said.find("OK to overwrite file ** " + name + " ** ? (yes/no)"), std::string::npos);
  EXPECT_EQ(program().listingTarget, TargetFilePrinter);
  EXPECT_EQ(printerState().model, "DeskJet+");
  EXPECT_EQ(printerState().linesPerPage, 72);
  CLPRNT(true, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(readFile(name), "old\n");
  EXPECT_TRUE(fileExists(path("new.lst")));
  EXPECT_FALSE(inputLeft());
}

TEST_F(PrinterTest, SystemPrinterPickedFromTheMenu) {
  configuration().spoolDirectory = directory().string();
  addPrinter(DeviceTable::System, "office", "", "true");
  addPrinter(DeviceTable::System, "plotroom", "PostScript", "true");
  type("2\n2\n");
  bool abort = true, status = true;
  SLPRNT(abort, status);
  ASSERT_FALSE(status);
  EXPECT_NE(output().find("PRINTERS"), std::string::npos);
  EXPECT_EQ(program().listingTarget, TargetSystemPrinter);
  EXPECT_EQ(printerState().model, "PostScript");
  EXPECT_EQ(printerState().command, "true " + path("spool.prnt"));
  CLPRNT(true, status);
  EXPECT_FALSE(status);
  EXPECT_TRUE(fileExists(path("spool.prnt")));
}

TEST_F(PrinterTest, AbortInThePrinterMenuAsksAgain) {
  addPrinter(DeviceTable::System, "office");
  type("2\n$\n1\n");
  bool abort = true, status = true;
  SLPRNT(abort, status);
  EXPECT_FALSE(abort);
  EXPECT_FALSE(status);
  EXPECT_EQ(program().listingTarget, TargetScreen);
  EXPECT_EQ(occurrences(output(), "Printer is?"), 2);
}

TEST_F(PrinterTest, ScreenListingsStayOnTheScreenWithoutAJob) {
  type("\n");
  PRPAGE("on screen");
  EXPECT_NE(output().find("on screen"), std::string::npos);
  EXPECT_FALSE(printerState().open);
}

}  // namespace
}  // namespace kntr::framework
