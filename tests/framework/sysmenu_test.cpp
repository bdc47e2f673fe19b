// The system menu and its sub-menus, with the operating system's commands
// recorded instead of run.
#include "framework/sysmenu.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "framework/configuration.h"
#include "framework/files.h"
#include "framework/printers.h"
#include "framework/state.h"
#include "framework/system.h"
#include "support/checks.h"
#include "support/printer_fixture.h"

namespace kntr::framework {
namespace {

using kntr::testing::Contains;
using Texts = std::vector<std::string>;

// Commands asked of the operating system, and the exit code they all get.
Texts commands;
int exitCode = 0;
// The text of the mail's report file, read while the mail "runs".
std::string mailedReport;

int recordCommand(std::string_view command) {
  commands.emplace_back(command);
  const std::string text(command);
  const std::size_t from = text.find("< '");
  if (text.rfind("mail -s", 0) == 0 && from != std::string::npos)
    mailedReport =
        kntr::testing::ScratchDirectory::readFile(text.substr(from + 3, text.size() - from - 4));
  return exitCode;
}

// A line of a configuration listing: the label, dots to column 44, the value.
std::string entry(const std::string& label, const std::string& value) {
  return label + " " + std::string(43 - label.size(), '.') + " : " + value;
}

bool limitsPrinted = false;
void printLimits(bool& status) {
  status = false;
  limitsPrinted = true;
}

class SystemMenu : public kntr::testing::PrinterTest {
 protected:
  void SetUp() override {
    PrinterTest::SetUp();
    commands.clear();
    mailedReport.clear();
    exitCode = 0;
    systemHooks().runCommand = recordCommand;
    configuration().spoolDirectory = directory().string();
  }
  // Runs the menu on `keys`, which must be used up; returns what it said.
  std::string run(const std::string& keys) {
    type(keys);
    EXPECT_STATUS(false, SYMENU(status));
    EXPECT_FALSE(inputLeft());
    return output();
  }
};

TEST_F(SystemMenu, ItemsAndTheirDialogues) {
  const struct {
    std::string keys;
    Texts shown;
    Texts commands;  // asked of the operating system, in order
  } cases[] = {
      {"11\n", {"PROGRAM MANIPULATION", "1.  ... Project manipulation", "11. ... RETURN"}, {}},
      {"$\n", {}, {}},
      {"3\n1\n\n\n1\n2\n\n5\n11\n", {}, {"ls -a", "ls -l"}},
      {"3\n4\n" + path("nope") + "\n\n$\n5\n11\n",
       {"File ** " + path("nope") + " ** does not exist"},
       {}},
      {"7\n\n11\n", {"No module limitations available"}, {}},
      {"8\n\n11\n", {"Not implemented in this version\n(version is 1998-0223)"}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.keys);
    commands.clear();
    const std::string said = run(c.keys);
    for (const std::string& piece : c.shown) EXPECT_TRUE(Contains(said, piece));
    EXPECT_EQ(commands, c.commands);
  }
  commands.clear();
  const std::string said = run("5\n\n\n5\n2\n\n5\n3\n\n1\n\n11\n");
  EXPECT_EQ(commands, (Texts{"ps -u `whoami`", "ps -lu `whoami`", "ps -u `whoami`"}));
  EXPECT_TRUE(Contains(said,
                       "Input process list option? (standard = 1, extended = 2)\n"
                       "(default 1 (standard)))"));
  EXPECT_EQ(occurrences(said, "Input must be either 1 or 2"), 1);

  limitsPrinted = false;
  callbacks().limits = printLimits;
  run("7\n11\n");
  EXPECT_TRUE(limitsPrinted);
}

TEST_F(SystemMenu, SettingsOfTheProjectAttributesAndLog) {
  program().projectName = path("ship");
  program().projectDirectory = directory().string();
  program().projectBaseName = "ship";
  std::string said = run("1\n3\n3\n2\nBigCo\nann\n4\n11\n");
  EXPECT_TRUE(Contains(said, {"PROJECT MANIPULATION", "PRINTOUT LEVEL", "3.  ... Advanced"}));
  EXPECT_EQ(program().printLevel, 3);
  EXPECT_EQ(program().company, "BigCo");
  EXPECT_EQ(program().user, "ann");
  // The project file keeps the new identification at once.
  EXPECT_TRUE(Contains(readFile(path("ship.PJC")), {"=BigCo", "=ann"}));

  said = run("2\n1\n2\n2\n1\n3\n0\n\n12\n4\n11\n");
  EXPECT_TRUE(
      Contains(said, {"PROGRAM ATTRIBUTES", "1.  ... F10.3", "2.  ... 1PE10.3", "3.  ... E10.3",
                      "2.  ... ton", "Temporary file interval must be positive", "(default 25)"}));
  EXPECT_EQ(program().floatFormat, 2);
  EXPECT_EQ(program().weightUnit, 1);
  EXPECT_EQ(program().weightUnitText, "kg");
  EXPECT_EQ(program().backupInterval, 12);

  said = run("4\n3\n11\n");
  EXPECT_TRUE(Contains(said, {"LOG LEVEL", "3.  ... Log (1) + (2) + messages & inputs"}));
  EXPECT_EQ(program().logLevel, 3);
  run("4\n$\n11\n");
  EXPECT_EQ(program().logLevel, 3);
}

TEST_F(SystemMenu, RenameCopyAndDelete) {
  const std::string a = path("a.txt"), b = path("b.txt"), c = path("c.txt");
  writeFile(a, "alpha\n");
  writeFile(c, "gamma\n");
  // Rename a to b; copy b onto c, declining once; delete b, declining once.
  const std::string said =
      run("3\n2\n" + a + "\n" + b + "\n" + "3\n" + b + "\n" + c + "\nno\n" + c + "\nyes\n" + "4\n" +
          b + "\nno\n" + "4\n" + b + "\nyes\n" + "5\n11\n");
  EXPECT_FALSE(fileExists(a));
  EXPECT_FALSE(fileExists(b));
  EXPECT_EQ(readFile(c), "alpha\n");
  EXPECT_EQ(occurrences(said, "OK to overwrite file ** " + c + " ** ? (yes/no)"), 2);
  EXPECT_EQ(occurrences(said, "OK to delete file ** " + b + " ** ? (yes/no)"), 2);
}

TEST_F(SystemMenu, ShellFromTheEnvironment) {
  const char* saved = std::getenv("SHELL");
  const std::string old = saved ? saved : "";
  ::setenv("SHELL", "/bin/myshell", 1);
  const std::string said = run("6\n11\n");
  saved ? ::setenv("SHELL", old.c_str(), 1) : ::unsetenv("SHELL");
  EXPECT_EQ(commands, Texts{"/bin/myshell"});
  EXPECT_TRUE(Contains(said, "Type exit to return to KNTR"));
}

TEST_F(SystemMenu, ErrorReportsByMail) {
  exitCode = 1;  // no mail program
  std::string said = run("9\n1\n\n4\n11\n");
  EXPECT_EQ(occurrences(said, "Attempt to execute E-mail program failed"), 1);
  EXPECT_TRUE(Contains(said, "ERRORS & MAIL"));
  EXPECT_EQ(commands, Texts(1, "command -v mail >/dev/null 2>&1"));

  exitCode = 0;
  commands.clear();
  said = run("9\n2\n'spline breaks'\n3\n\n4\n11\n");
  const std::string report = path("spool.prnt.mail");
  EXPECT_EQ(commands, (Texts{"command -v mail >/dev/null 2>&1",
                             "mail -s 'Tarvik error report for KNTR 1998-0223' tarvik-support < '" +
                                 report + "'",
                             "command -v mail >/dev/null 2>&1", "mail"}));
  EXPECT_TRUE(Contains(mailedReport,
                       {"Module  : KNTR 1998-0223\n", "Project : demo\n", "\nspline breaks\n"}));
  EXPECT_FALSE(fileExists(report));
  EXPECT_EQ(said.find("Attempt to execute E-mail program failed"), std::string::npos);

  // The check finds the program, the sending fails.
  type("'x'\n\n");
  systemHooks().runCommand = [](std::string_view command) {
    return std::string(command).rfind("command -v", 0) == 0 ? 0 : 1;
  };
  EXPECT_STATUS(true, EMRPER(GeneralErrorReport, status));
  EXPECT_TRUE(Contains(output(), "Attempt to execute E-mail program failed"));
}

TEST_F(SystemMenu, ConfigurationPrintedOnAFilePrinter) {
  addPrinter(DeviceTable::System, "office", "PostScript", "lp -d office");
  addPrinter(DeviceTable::System, "draft");
  addPrinter(DeviceTable::File, "listing", "", "", 20);
  Configuration& c = configuration();
  PlotterEntry& plotter = c.filePlotters.entry(++c.filePlotters.count);
  plotter.name = "postscript";
  plotter.interface = "PostScript";
  plotter.model = "default";
  c.printerHeadingName = "Site one";
  const std::string file = path("config.lst");
  run("10\n8\n3\n\n" + file + "\n9\n11\n");
  const std::string text = readFile(file);
  EXPECT_EQ(text.find("{"), std::string::npos);
  EXPECT_TRUE(Contains(
      text, {"- Site one -", "Program configuration", entry("Display type", "standard-color"),
             "Printer 1", entry("Name", "office"), entry("Interface", "PostScript"),
             entry("Command", "lp -d office") + "\n", entry("Command", "lp -d draft (standard)"),
             entry("Interface", "WIN32PRINTER"), "File printer 1",
             entry("Interface", "(plain characters)"), entry("Lines per page", "20"),
             "No plotters defined", "File plotter 1", entry("Maximum paper size", "A4"),
             "Miscellaneous", "Miscellaneous (continued)", "page:    2"}));
}

}  // namespace
}  // namespace kntr::framework
