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
#include "support/printer_fixture.h"

namespace kntr::framework {
namespace {

// Commands asked of the operating system, and the exit code they all get.
std::vector<std::string>& commands() {
  static std::vector<std::string> list;
  return list;
}
int& exitCode() {
  static int code = 0;
  return code;
}
// The text of the mail's report file, read while the mail "runs".
std::string& mailedReport() {
  static std::string text;
  return text;
}

int recordCommand(std::string_view command) {
  commands().emplace_back(command);
  const std::string text(command);
  if (text.rfind("mail -s", 0) == 0) {
    const std::size_t from = text.find("< '");
    if (from != std::string::npos) {
      const std::string name = text.substr(from + 3, text.size() - from - 4);
      mailedReport() = kntr::testing::ScratchDirectory::readFile(name);
    }
  }
  return exitCode();
}

// A line of a configuration listing: the label, dots to column 44, the value.
std::string entry(const std::string& label, const std::string& value) {
  return label + " " + std::string(43 - label.size(), '.') + " : " + value;
}

class SystemMenu : public kntr::testing::PrinterTest {
 protected:
  void SetUp() override {
    PrinterTest::SetUp();
    commands().clear();
    mailedReport().clear();
    exitCode() = 0;
    systemHooks().runCommand = recordCommand;
    configuration().spoolDirectory = directory().string();
  }
  // Runs the menu on `keys`, which must be used up; returns what it said.
  std::string run(const std::string& keys) {
    type(keys);
    bool status = true;
    SYMENU(status);
    EXPECT_FALSE(status);
    EXPECT_FALSE(inputLeft());
    return output();
  }
};

TEST_F(SystemMenu, TenItemsAndReturn) {
  const std::string said = run("11\n");
  for (const char* row :
       {"1.  ... Project manipulation", "2.  ... Attributes", "3.  ... File manipulation",
        "4.  ... Log file", "5.  ... User processes", "6.  ... Operating system",
        "7.  ... Print module limitations", "8.  ... Test plot scaling", "9.  ... Errors & mail",
        "10. ... Print configuration", "11. ... RETURN", "PROGRAM MANIPULATION"})
    EXPECT_NE(said.find(row), std::string::npos) << row;
  run("$\n");
}

TEST_F(SystemMenu, TooSmallScreen) {
  resize(80, 15);
  type("\n");
  bool status = false;
  SYMENU(status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("Screen is to small to display menu"), std::string::npos);
}

TEST_F(SystemMenu, ProjectManipulation) {
  const std::string said = run("1\n3\n3\n2\nBigCo\nann\n4\n11\n");
  EXPECT_NE(said.find("PROJECT MANIPULATION"), std::string::npos);
  EXPECT_NE(said.find("PRINTOUT LEVEL"), std::string::npos);
  EXPECT_NE(said.find("3.  ... Advanced"), std::string::npos);
  EXPECT_EQ(program().printLevel, 3);
  EXPECT_EQ(program().company, "BigCo");
  EXPECT_EQ(program().user, "ann");
}

TEST_F(SystemMenu, Attributes) {
  const std::string said = run("2\n1\n2\n2\n1\n3\n0\n\n12\n4\n11\n");
  EXPECT_NE(said.find("PROGRAM ATTRIBUTES"), std::string::npos);
  EXPECT_NE(said.find("1.  ... F10.3"), std::string::npos);
  EXPECT_NE(said.find("2.  ... 1PE10.3"), std::string::npos);
  EXPECT_NE(said.find("3.  ... E10.3"), std::string::npos);
  EXPECT_NE(said.find("2.  ... ton"), std::string::npos);
  EXPECT_NE(said.find("Temporary file interval must be positive"), std::string::npos);
  EXPECT_NE(said.find("(default 25)"), std::string::npos);
  EXPECT_EQ(program().floatFormat, 2);
  EXPECT_EQ(program().weightUnit, 1);
  EXPECT_EQ(program().weightUnitText, "kg");
  EXPECT_EQ(program().backupInterval, 12);
}

TEST_F(SystemMenu, LogLevel) {
  const std::string said = run("4\n3\n11\n");
  EXPECT_NE(said.find("LOG LEVEL"), std::string::npos);
  EXPECT_NE(said.find("3.  ... Log (1) + (2) + messages & inputs"), std::string::npos);
  EXPECT_EQ(program().logLevel, 3);
  run("4\n$\n11\n");
  EXPECT_EQ(program().logLevel, 3);
}

TEST_F(SystemMenu, ProcessList) {
  const std::string said = run("5\n\n\n5\n2\n\n5\n3\n\n1\n\n11\n");
  EXPECT_EQ(commands(),
            (std::vector<std::string>{"ps -u `whoami`", "ps -lu `whoami`", "ps -u `whoami`"}));
  EXPECT_NE(said.find("Input process list option? (standard = 1, extended = 2)\n"
                      "(default 1 (standard)))"),
            std::string::npos);
  EXPECT_EQ(occurrences(said, "Input must be either 1 or 2"), 1);
}

TEST_F(SystemMenu, FileListing) {
  run("3\n1\n\n\n1\n2\n\n5\n11\n");
  EXPECT_EQ(commands(), (std::vector<std::string>{"ls -a", "ls -l"}));
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

TEST_F(SystemMenu, MissingFileIsRefused) {
  const std::string said = run("3\n4\n" + path("nope") + "\n\n$\n5\n11\n");
  EXPECT_NE(said.find("File ** " + path("nope") + " ** does not exist"), std::string::npos);
}

TEST_F(SystemMenu, ShellFromTheEnvironment) {
  const char* saved = std::getenv("SHELL");
  const std::string old = saved ? saved : "";
  ::setenv("SHELL", "/bin/myshell", 1);
  const std::string said = run("6\n11\n");
  if (saved)
    ::setenv("SHELL", old.c_str(), 1);
  else
    ::unsetenv("SHELL");
  EXPECT_EQ(commands(), (std::vector<std::string>{"/bin/myshell"}));
  EXPECT_NE(said.find("Type exit to return to KNTR"), std::string::npos);
}

bool limitsPrinted = false;
void printLimits(bool& status) {
  status = false;
  limitsPrinted = true;
}

TEST_F(SystemMenu, ModuleLimitsThroughTheModulesCallback) {
  const std::string without = run("7\n\n11\n");
  EXPECT_NE(without.find("No module limitations available"), std::string::npos);
  limitsPrinted = false;
  callbacks().limits = printLimits;
  run("7\n11\n");
  EXPECT_TRUE(limitsPrinted);
}

TEST_F(SystemMenu, TestPlotScalingIsNotInThisVersion) {
  const std::string said = run("8\n\n11\n");
  EXPECT_NE(said.find("Not implemented in this version\n(version is 1998-0223)"),
            std::string::npos);
}

TEST_F(SystemMenu, NoMailProgram) {
  exitCode() = 1;
  const std::string said = run("9\n1\n\n2\n\n3\n\n4\n11\n");
  EXPECT_EQ(occurrences(said, "Attempt to execute E-mail program failed"), 3);
  EXPECT_NE(said.find("ERRORS & MAIL"), std::string::npos);
  for (const std::string& command : commands())
    EXPECT_EQ(command, "command -v mail >/dev/null 2>&1");
}

TEST_F(SystemMenu, ErrorReportByMail) {
  const std::string said = run("9\n2\n'spline breaks'\n3\n\n4\n11\n");
  ASSERT_EQ(commands().size(), 4u);
  const std::string report = path("spool.prnt.mail");
  EXPECT_EQ(commands()[0], "command -v mail >/dev/null 2>&1");
  EXPECT_EQ(commands()[1],
            "mail -s 'Tarvik error report for KNTR 1998-0223' tarvik-support < '" + report + "'");
  EXPECT_EQ(commands()[2], "command -v mail >/dev/null 2>&1");
  EXPECT_EQ(commands()[3], "mail");
  EXPECT_NE(mailedReport().find("Module  : KNTR 1998-0223\n"), std::string::npos);
  EXPECT_NE(mailedReport().find("Project : demo\n"), std::string::npos);
  EXPECT_NE(mailedReport().find("\nspline breaks\n"), std::string::npos);
  EXPECT_FALSE(fileExists(report));
  EXPECT_EQ(said.find("Attempt to execute E-mail program failed"), std::string::npos);
}

TEST_F(SystemMenu, FailingMailIsReported) {
  type("'x'\n\n");
  // The check finds the program, the sending fails.
  systemHooks().runCommand = [](std::string_view command) {
    return std::string(command).rfind("command -v", 0) == 0 ? 0 : 1;
  };
  bool status = false;
  EMRPER(GeneralErrorReport, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("Attempt to execute E-mail program failed"), std::string::npos);
  type("\n");
  EMRPER(7, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("PROGRAM ERROR FROM SUBROUTINE ** EMRPER **"), std::string::npos);
}

TEST_F(SystemMenu, ConfigurationOnTheScreen) {
  const std::string said = run("10\n1\n1\n\n9\n11\n");
  EXPECT_NE(said.find("PRINT CONFIGURATION"), std::string::npos);
  EXPECT_NE(said.find("Printer is? (screen = 1, cancel = 2)"), std::string::npos);
  EXPECT_NE(said.find("Display\n\n" + entry("Graphics window width (% of screen)", "80.00") + "\n"),
            std::string::npos);
  EXPECT_NE(said.find(entry("Display type", "standard-color")), std::string::npos);
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
  for (const std::string& piece :
       {std::string("- Site one -"), std::string("Program configuration"),
        entry("Display type", "standard-color"), std::string("Printer 1"), entry("Name", "office"),
        entry("Interface", "PostScript"), entry("Command", "lp -d office") + "\n",
        entry("Command", "lp -d draft (standard)"), entry("Interface", "WIN32PRINTER"),
        std::string("File printer 1"), entry("Interface", "(plain characters)"),
        entry("Lines per page", "20"), std::string("No plotters defined"),
        std::string("File plotter 1"), entry("Maximum paper size", "A4"),
        std::string("Miscellaneous"), std::string("Miscellaneous (continued)"),
        std::string("page:    2")})
    EXPECT_NE(text.find(piece), std::string::npos) << piece;
}

}  // namespace
}  // namespace kntr::framework
