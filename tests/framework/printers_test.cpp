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
#include "support/checks.h"
#include "support/printer_fixture.h"

namespace kntr::framework {
namespace {

using kntr::testing::Contains;
using kntr::testing::PrinterTest;
using Lines = std::vector<std::string>;

const std::string esc = "\x1b";

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

using PrinterLine = PrinterTest;

TEST_F(PrinterLine, TogglesFlipAndGroupMembersClearTheOthers) {
  open("");
  setTokens({{"UDL", "<u>", "</u>", TokenToggles, false},
             {"HGL", "<b>", "</b>", TokenToggles, false},
             {"RED", "[r]", "", TokenGroupMember, false},
             {"GRE", "[g]", "", TokenGroupMember, false}});
  PRLINE("a{udlb{udlc");  // twice: back where it was
  EXPECT_FALSE(token("UDL").mark);
  PRLINE("{udlx{hgly{udlz{udlw");
  EXPECT_TRUE(token("UDL").mark);
  EXPECT_TRUE(token("HGL").mark);
  PRLINE("{udlagain");  // every text starts with all tokens off
  PRLINE("{udl{red a {gre b {red c");
  EXPECT_TRUE(token("RED").mark);
  EXPECT_FALSE(token("GRE").mark);
  EXPECT_TRUE(token("UDL").mark);  // a toggle is no member of the group
  PRLINE("{gre{gre d");
  EXPECT_TRUE(token("GRE").mark);
  EXPECT_FALSE(token("RED").mark);
  EXPECT_EQ(finishBody(), (Lines{"a<u>b</u>c", "<u>x<b>y</u>z<u>w", "<u>again",
                                 "<u>[r] a [g] b [r] c", "[g][g] d"}));
}

TEST_F(PrinterLine, LinesBracesAndUnknownTokens) {
  open("");
  setTokens({{"BEL", "*", "#", 7, false}});
  const int before = printerState().linesUsed;
  PRLINE("one{nwltwo{{three{bel{bel{xyz{CYAfour{nwl");
  EXPECT_EQ(printerState().linesUsed, before + 3);
  PRLINE("");
  EXPECT_EQ(printerState().linesUsed, before + 4);
  EXPECT_EQ(finishBody(), (Lines{"one", "two{three**four", "", ""}));
}

TEST_F(PrinterLine, PlainAndUnknownModelsDrawBoxesWithPlusMinusAndBar) {
  for (const char* model : {"", "NoSuchPrinter-9000"}) {
    open(model);
    PRLINE(
        "{ulc{hln{tdn{hln{urc{nwl{vln{udl{hgl{ita{std x{vln{nwl{trg{hln{crs{hln{tlf{nwl"
        "{llc{hln{tup{hln{lrc");
    EXPECT_EQ(finishBody(), (Lines{"+-+-+", "! x!", "+-+-+", "+-+-+"})) << model;
  }
}

TEST_F(PrinterLine, PclModelsSendSetupEscapesAndLineDrawing) {
  open("DeskJet+");
  PRLINE("{udlu{udl{hglb{hgl{itai{ita{ulc{hln{vln");
  EXPECT_STATUS(false, CLPRNT(true, status));
  const std::string text = readFile(path("out.lst"));
  // Set-up first, then the page head with line-drawing characters and
  // carriage returns before each line feed.
  EXPECT_EQ(text.rfind(esc + "(10U" + esc + "(s12H" + esc + "(s3T" + esc + "&a10L" + "\xda", 0),
            0u);
  EXPECT_TRUE(Contains(text, "\xc4\xbf\r\n"));
  EXPECT_TRUE(Contains(text, esc + "&dDu" + esc + "&d@" + esc + "(s3Bb" + esc + "(s0B" + esc +
                                 "(s1Si" + esc + "(s0S\xda\xc4\xb3\r\n"));
  // The wrap-up ends the job and ejects the page.
  EXPECT_EQ(text.substr(text.size() - 6), esc + "&a0L\f");
  EXPECT_EQ(text.find('{'), std::string::npos);

  // The line-drawing set of the HP92286: the line, and the closing form feed.
  open("LaserJet-HP92286J");
  PRLINE("{hln");
  EXPECT_EQ(finishBody(), (Lines{esc + "(2Q\xc4" + esc + "(0U\r", "\f"}));
}

TEST_F(PrinterLine, WriteFailureEndsTheJobAndReturnsToTheScreen) {
  open("");
  simulateWriteFailureAfter(0);
  type("\n");
  PRLINE("lost");
  EXPECT_TRUE(Contains(output(), "Attempt to write to file ** " + path("out.lst") + " ** failed"));
  EXPECT_TRUE(printJobFailed());
  EXPECT_FALSE(printerState().open);
  EXPECT_EQ(program().listingTarget, TargetScreen);
  PRLINE("ignored");  // nothing more happens
  EXPECT_STATUS(true, CLPRNT(true, status));
  EXPECT_FALSE(printJobFailed());
  EXPECT_FALSE(fileExists(path("out.lst")));
  EXPECT_FALSE(inputLeft());

  // A job thrown away leaves no file either.
  simulateWriteFailureAfter(-1);
  open("");
  PRLINE("draft");
  EXPECT_STATUS(false, CLPRNT(false, status));
  EXPECT_FALSE(fileExists(path("out.lst")));
  EXPECT_EQ(program().listingTarget, TargetScreen);
}

// --- PRPHED --------------------------------------------------------------------

using PageHead = PrinterTest;

TEST_F(PageHead, FirstPageBox) {
  configuration().printerHeadingName = "KNTR profile listings";
  open("");
  const Lines lines = finish();
  ASSERT_EQ(lines.size(), 11u);
  const std::string rule = "+" + std::string(77, '-') + "+";
  const std::string dashes(27, '-');
  EXPECT_EQ(
      Lines(lines.begin(), lines.begin() + 7),
      (Lines{rule, "!" + dashes + " KNTR profile listings " + dashes + "!",
             "! Package: Tarvik - 2016A" + std::string(28, ' ') + "Module: KNTR - 1998-0223 !",
             rule, "! Project  : demo" + std::string(61, ' ') + "!",
             "! Company  : ACME" + std::string(61, ' ') + "!",
             "! User     : me" + std::string(63, ' ') + "!"}));
  EXPECT_TRUE(std::regex_match(
      lines[7], std::regex(R"(! Date     : \d\d-[A-Z][a-z]{2}-\d{4} {39}Time: \d\d:\d\d:\d\d !)")))
      << lines[7];
  EXPECT_EQ(Lines(lines.begin() + 8, lines.end()), (Lines{rule, "", ""}));
  for (int k = 0; k <= 8; ++k) EXPECT_EQ(lines[static_cast<std::size_t>(k)].size(), 79u) << k;
}

TEST_F(PageHead, LongValuesKeepTheirLast64CharactersAndATitleStandsUnderTheBox) {
  std::string project = "/ships/";
  for (char c = 'a'; project.size() < 90; c = c == 'z' ? 'a' : static_cast<char>(c + 1))
    project.push_back(c);
  program().projectName = project;
  program().company = std::string(70, 'C') + "{red}";
  printerState().listingTitle = "Program configuration";
  open("");
  const Lines lines = finish();
  ASSERT_EQ(lines.size(), 13u);
  EXPECT_EQ(lines[4], "! Project  : " + project.substr(project.size() - 64) + " !");
  // Braces in a value print as typed.
  EXPECT_EQ(lines[5], "! Company  : " + std::string(59, 'C') + "{red} !");
  EXPECT_EQ(lines[8], "+" + std::string(77, '-') + "+");
  EXPECT_EQ(lines[9],
            "!" + std::string(28, ' ') + "Program configuration" + std::string(28, ' ') + "!");
  EXPECT_TRUE(printerState().listingTitle.empty());  // one job only
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
    writeFile(script, "#!/bin/sh\necho \"$@\" > '" + path("lp.args") +
                          "'\nfor a; do last=\"$a\"; done\ncp \"$last\" '" + path("lp.copy") +
                          "'\nexit " + std::to_string(code) + "\n");
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    ::setenv("PATH", (path("bin") + ":" + savedPath_).c_str(), 1);
  }
  // Opens a job on the first system printer.
  void openSpooled() {
    bool status = true;
    OPPRNT(TargetSystemPrinter, spoolFileName(), SystemPrinterModel, 66,
           spoolCommand(1, spoolFileName()), status);
    ASSERT_FALSE(status);
  }
  std::string savedPath_;
};

TEST_F(PrintJob, SystemPrinterSpoolsThroughLpWithTheQueueName) {
  fakeLp(0);
  addPrinter(DeviceTable::System, "office");
  EXPECT_EQ(spoolFileName(), path("spool.prnt"));
  EXPECT_EQ(spoolCommand(1, spoolFileName()), "lp -d office " + path("spool.prnt"));
  openSpooled();
  EXPECT_EQ(program().listingTarget, TargetSystemPrinter);
  PRPAGE("{cya{ulc{hln{urc{nwl{vln{gre ok{vln");
  EXPECT_STATUS(false, CLPRNT(true, status));
  EXPECT_EQ(program().listingTarget, TargetScreen);
  EXPECT_EQ(readLines(path("lp.args")), (Lines{"-d office " + path("spool.prnt")}));
  const Lines printed = readLines(path("lp.copy"));
  ASSERT_EQ(printed.size(), 11u + 2u + 2u);
  EXPECT_EQ(printed[11], "+-+");
  EXPECT_EQ(printed[12], "! ok!");

  // A queue that fails is reported.
  fakeLp(3);
  openSpooled();
  type("\n");
  EXPECT_STATUS(true, CLPRNT(true, status));
  EXPECT_TRUE(Contains(output(), {"Attempt to call operating system failed", "(error is    3)"}));
}

TEST_F(PrintJob, ConfiguredCommandQuotedSpoolNameAndUnopenableFile) {
  addPrinter(DeviceTable::System, "laser", "LaserJet-III", "lp -d laser -o raw");
  EXPECT_EQ(spoolCommand(1, "/tmp/my spool"), "lp -d laser -o raw '/tmp/my spool'");
  configuration().spoolDirectory.clear();
  EXPECT_EQ(spoolFileName(), "spool.prnt");

  type("\n");
  EXPECT_STATUS(true, OPPRNT(TargetFilePrinter, path("no/such/dir/out.lst"), "", 66, "", status));
  EXPECT_TRUE(Contains(output(), "Attempt to open file"));
  EXPECT_EQ(program().listingTarget, TargetScreen);
  EXPECT_FALSE(printerState().open);
}

// --- SLPRNT --------------------------------------------------------------------

using PrinterChoice = PrinterTest;

TEST_F(PrinterChoice, TheQuestionOffersWhatTheConfigurationHas) {
  const struct {
    int printers;
    int files;
    const char* question;
    const char* refusal;
    int cancel;
  } variants[] = {
      {0, 0, "Printer is? (screen = 1, cancel = 2)", "Input must be either 1, 2", 2},
      {0, 1, "Printer is? (screen = 1, file = 2, cancel = 3)", "Input must be either 1, 2, 3", 3},
      {2, 0, "Printer is? (screen = 1, printer = 2, cancel = 3)", "Input must be either 1, 2, 3",
       3},
      {1, 3, "Printer is? (screen = 1, printer = 2, file = 3, cancel = 4)",
       "Input must be either 1, 2, 3 or 4", 4}};
  for (const auto& v : variants) {
    SCOPED_TRACE(v.question);
    resetConfiguration();
    for (int i = 1; i <= v.printers; ++i) addPrinter(DeviceTable::System, "p" + std::to_string(i));
    for (int i = 1; i <= v.files; ++i) addPrinter(DeviceTable::File, "f" + std::to_string(i));
    // A number past cancel, a word, then cancel; then RETURN: the screen.
    type(std::to_string(v.cancel + 1) + "\n\n" + std::to_string(v.cancel) + "\n");
    bool abort = false, status = true;
    SLPRNT(abort, status);
    EXPECT_TRUE(abort);
    EXPECT_FALSE(status);
    const std::string said = output();
    EXPECT_EQ(occurrences(said, v.question), 2) << said;
    EXPECT_EQ(occurrences(said, std::string(v.refusal) + "\n"), 1) << said;
    EXPECT_TRUE(Contains(said, "(default 1 (screen))"));
    EXPECT_FALSE(inputLeft());
    type("\n");
    SLPRNT(abort, status);
    EXPECT_FALSE(abort);
    EXPECT_FALSE(status);
    EXPECT_EQ(program().listingTarget, TargetScreen);
  }
}

TEST_F(PrinterChoice, FilePrinterAsksForTheFileAndItsOverwrite) {
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
  EXPECT_TRUE(
      Contains(said, {"FILE PRINTERS", "Input name of print file? (max 80 characters)",
                      "(default listing)", "OK to overwrite file ** " + name + " ** ? (yes/no)"}));
  EXPECT_EQ(program().listingTarget, TargetFilePrinter);
  EXPECT_EQ(printerState().model, "DeskJet+");
  EXPECT_EQ(printerState().linesPerPage, 72);
  CLPRNT(true, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(readFile(name), "old\n");
  EXPECT_TRUE(fileExists(path("new.lst")));
  EXPECT_FALSE(inputLeft());
}

TEST_F(PrinterChoice, AbortInThePrinterMenuAsksAgain) {
  addPrinter(DeviceTable::System, "office");
  type("2\n$\n1\n");
  bool abort = true, status = true;
  SLPRNT(abort, status);
  EXPECT_FALSE(abort);
  EXPECT_FALSE(status);
  EXPECT_EQ(program().listingTarget, TargetScreen);
  EXPECT_EQ(occurrences(output(), "Printer is?"), 2);
}

}  // namespace
}  // namespace kntr::framework
