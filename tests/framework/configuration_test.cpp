#include "framework/configuration.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "framework/state.h"
#include "support/console_fixture.h"

namespace kntr::framework {
namespace {

namespace fs = std::filesystem;

// Runs with a scratch directory that holds the site directory ("site") and a
// home directory ("home"), and with the environment variables that this code
// reads saved and put back afterwards.
class Configure : public kntr::testing::ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    resetCommandLine();
    resetConfiguration();
    resetTerminal();
    program().packageVersion = "2016A";
    static int serial = 0;
    root_ = fs::temp_directory_path() /
            ("kntr-config-" + std::to_string(::getpid()) + "-" + std::to_string(++serial));
    fs::create_directories(root_ / "site");
    fs::create_directories(root_ / "home" / "T-cnfg");
    for (const char* name : {"HOME", "TARVIKRC", "KNTR_SITE_CONFIG_DIR", "TERM", "COLUMNS", "LINES",
                             "DISPLAY", "WMDIR"}) {
      const char* value = std::getenv(name);
      saved_[name] = value ? std::optional<std::string>(value) : std::nullopt;
      ::unsetenv(name);
    }
    ::setenv("HOME", (root_ / "home").c_str(), 1);
    ::setenv("KNTR_SITE_CONFIG_DIR", (root_ / "site").c_str(), 1);
  }
  void TearDown() override {
    for (const auto& [name, value] : saved_) {
      if (value)
        ::setenv(name.c_str(), value->c_str(), 1);
      else
        ::unsetenv(name.c_str());
    }
    fs::remove_all(root_);
    resetConfiguration();
    resetTerminal();
    resetCommandLine();
    ConsoleTest::TearDown();
  }

  // Writes a file below the scratch directory and gives its full name.
  std::string write(const std::string& relative, const std::string& text) {
    const fs::path path = root_ / relative;
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
    return path.string();
  }
  std::string siteFile(const std::string& text) { return write("site/Tarvik-2016A.rc", text); }
  std::string userFile(const std::string& text) {
    return write("home/T-cnfg/Tarvik-2016A.ini", text);
  }

  void arguments(std::vector<std::string> words) {
    words.insert(words.begin(), "kntr");
    program().arguments = words;
  }

  fs::path root_;
  std::map<std::string, std::optional<std::string>> saved_;
};

// --- command line ---------------------------------------------------------------

TEST_F(Configure, OptionsTakeTheNextArgumentAndAValuelessLastOptionIsIgnored) {
  arguments({"stray", "-colu", "132", "-Lines", "40", "-term", "vt100", "-conf", "site.rc", "-file",
             "profile.knt", "-lines"});
  bool status = true;
  GTPGOP(status);
  EXPECT_FALSE(status);
  const CommandLineOptions& o = commandLine();
  EXPECT_TRUE(o.columnsGiven);
  EXPECT_EQ(o.columns, 132);
  EXPECT_FALSE(o.linesGiven);  // "-Lines" is not an option: case counts
  EXPECT_EQ(o.terminal, "vt100");
  EXPECT_EQ(o.configuration, "site.rc");
  EXPECT_EQ(o.file, "profile.knt");
  EXPECT_EQ(o.fileLength, 5);  // the terminal name's length, kept as it always was
  EXPECT_EQ(output(), "");
}

TEST_F(Configure, ColumnsThatAreNoNumberStopTheScan) {
  arguments({"-columns", "8x", "-lines", "30"});
  bool status = false;
  GTPGOP(status);
  EXPECT_TRUE(status);
  EXPECT_EQ(output(), " (GTPGOP) I/O problems\n (I/O status is  915)\n");
  EXPECT_FALSE(commandLine().linesGiven);

  resetCommandLine();
  arguments({"-line", "99999999999"});
  GTPGOP(status);
  EXPECT_TRUE(status);
  EXPECT_EQ(output(), " (GTPGOP) I/O problems\n (I/O status is  981)\n");
}

// --- one configuration file -------------------------------------------------------

TEST_F(Configure, CommentsAreCutAndDetailsGoToTheLatestEntry) {
  const std::string file = write("a.rc",
                                 "# define-printer=x\n"
                                 "printer-lines=10\n"  // no printer yet: nothing to change
                                 "define-printer=office # on the second floor\n"
                                 "printer-command=lp -d office#2\n"
                                 "printer-lines= 72 \n"
                                 "define-printer=hall\n"
                                 "printer-heading-name=Shipyard   \n"
                                 "define-file-prt=listing\n"
                                 "file-prt-lines=60\n"
                                 "define-plotter=ps\n"
                                 "plotter-x-size=1.5D2\n"
                                 "plotter-y-offset=-7\n"
                                 "plotter-maximum-paper-size=3\n");
  bool status = true;
  RDCONF(file, status);
  EXPECT_FALSE(status);
  const Configuration& c = configuration();
  ASSERT_EQ(printerCount(DeviceTable::System), 2);
  EXPECT_EQ(printer(DeviceTable::System, 1).name, "office");
  EXPECT_EQ(printer(DeviceTable::System, 1).command, "lp -d office");
  EXPECT_EQ(printer(DeviceTable::System, 1).linesPerPage, 72);
  EXPECT_EQ(printer(DeviceTable::System, 2).linesPerPage, DefaultPrinterLines);
  EXPECT_EQ(c.printerHeadingName, "Shipyard");
  ASSERT_EQ(printerCount(DeviceTable::File), 1);
  EXPECT_EQ(printer(DeviceTable::File, 1).linesPerPage, 60);
  ASSERT_EQ(plotterCount(DeviceTable::System), 1);
  EXPECT_EQ(plotter(DeviceTable::System, 1).xSize, 150.0);
  EXPECT_EQ(plotter(DeviceTable::System, 1).yOffset, -7.0);
  EXPECT_EQ(plotter(DeviceTable::System, 1).maximumPaperSize, 3);
  EXPECT_EQ(plotter(DeviceTable::System, 1).ySize, 0.0);
  EXPECT_EQ(output(), "");
}

TEST_F(Configure, TheTwentyFifthPlotterIsRefused) {
  std::string text;
  for (int i = 1; i <= 25; ++i) text += "define-plotter=p" + std::to_string(i) + "\n";
  text += "plotter-model=late\n";
  bool status = false;
  RDCONF(write("many.rc", text), status);
  EXPECT_TRUE(status);
  EXPECT_EQ(output(), "Maximum number of plotter definition exceeded\n(maximum is 24)\n");
  EXPECT_EQ(plotterCount(DeviceTable::System), 24);
  EXPECT_EQ(plotter(DeviceTable::System, 24).name, "p24");
  EXPECT_EQ(plotter(DeviceTable::System, 24).model, "");  // reading stopped there

  resetConfiguration();
  text.clear();
  for (int i = 1; i <= 25; ++i) text += "define-file-prt=f" + std::to_string(i) + "\n";
  RDCONF(write("files.rc", text), status);
  EXPECT_TRUE(status);
  EXPECT_EQ(output(), "Maximum number of file printer definition exceeded (maximum is 24)\n");
  EXPECT_EQ(printerCount(DeviceTable::File), 24);
}

TEST_F(Configure, KeywordsAreFoundAnywhereInTheLineInTableOrder) {
  const std::string file = write("order.rc",
                                 "default-company=spool-directory\n"  // spool comes first
                                 "define-printer=list\n"              // not the list switch
                                 "xx-show-time=5\n"                   // not anchored
                                 "SHOW-TIME=9\n"                      // case counts
                                 "no keyword here\n");
  bool status = true;
  RDCONF(file, status);
  EXPECT_FALSE(status);
  const Configuration& c = configuration();
  EXPECT_EQ(c.spoolDirectory, "spool-directory");
  EXPECT_EQ(c.defaultCompany, "");
  EXPECT_EQ(printer(DeviceTable::System, 1).name, "list");
  EXPECT_FALSE(c.list);
  EXPECT_EQ(program().showTime, 5);
}

TEST_F(Configure, DisplayTypeAndFileNameTypeWords) {
  bool status = false;
  RDCONF(write("words.rc", "display-type=extended-color\nfile-name-type=dos\nfile-name-type=vms\n"),
         status);
  EXPECT_EQ(configuration().displayType, DisplayExtendedColour);
  EXPECT_EQ(program().fileNameType, 3);  // the unknown word left it
  RDCONF(write("colour.rc", "display-type=colour\nfile-name-type=unix-long\n"), status);
  EXPECT_FALSE(status);
  EXPECT_EQ(configuration().displayType, DisplayMonochrome);
  EXPECT_EQ(program().fileNameType, 2);
}

TEST_F(Configure, NumbersThatDoNotConvertStopTheFile) {
  bool status = false;
  RDCONF(write("bad.rc", "define-printer=a\nprinter-lines=7x\nshow-time=9\n"), status);
  EXPECT_TRUE(status);
  EXPECT_EQ(output(), "Attempt to read from internal file failed\n(I/O status is  915)\n");
  EXPECT_EQ(program().showTime, 2);
  RDCONF(write("empty.rc", "display-percent-vertical=\n"), status);
  EXPECT_TRUE(status);
  output();
  RDCONF(root_.string() + "/none.rc", status);
  EXPECT_TRUE(status);
  EXPECT_EQ(output(), "Configuration file ** " + root_.string() + "/none.rc ** does not exist\n");
}

TEST_F(Configure, DeletingKeepsTheDefaultOnItsEntry) {
  bool status = false;
  RDCONF(write("del.rc",
               "define-printer=a\ndefine-printer=b\ndefine-printer=c\ndefault-printer=c\n"
               "delete-printer=a\ndefault-printer=unknown\ndelete-printer=unknown\n"),
         status);
  EXPECT_FALSE(status);
  EXPECT_EQ(printerCount(DeviceTable::System), 2);
  EXPECT_EQ(defaultPrinter(DeviceTable::System), 2);
  EXPECT_EQ(printer(DeviceTable::System, defaultPrinter(DeviceTable::System)).name, "c");
  EXPECT_EQ(findPrinter(DeviceTable::System, "b"), 1);
  RDCONF(write("del2.rc", "delete-printer=c\n"), status);
  EXPECT_EQ(defaultPrinter(DeviceTable::System), 1);  // no named default: the first
  RDCONF(write("del3.rc", "delete-all-printers\nprinter-lines=5\n"), status);
  EXPECT_FALSE(status);
  EXPECT_EQ(printerCount(DeviceTable::System), 0);
  EXPECT_EQ(defaultPrinter(DeviceTable::System), 0);
}

// --- finding the files ----------------------------------------------------------

TEST_F(Configure, SiteThenUserAndTheLaterWins) {
  siteFile("show-time=4\ndefine-printer=site\nprinter-lines=50\ndefault-user=anna\n");
  userFile("show-time=0\ndefine-printer=site\nprinter-lines=70\ndefine-printer=mine\n");
  bool status = true;
  CFSETP(status);
  EXPECT_FALSE(status);
  const Configuration& c = configuration();
  ASSERT_EQ(c.fileCount, 2);
  EXPECT_EQ(c.files(1), (root_ / "site/Tarvik-2016A.rc").string());
  EXPECT_EQ(c.files(2), (root_ / "home/T-cnfg/Tarvik-2016A.ini").string());
  EXPECT_EQ(program().showTime, 0);
  ASSERT_EQ(printerCount(DeviceTable::System), 2);
  EXPECT_EQ(printer(DeviceTable::System, 1).linesPerPage, 70);
  EXPECT_EQ(program().defaultUser, "anna");
  EXPECT_EQ(output(), "");
}

TEST_F(Configure, MissingTarvikrcWarnsSkipsTheUserFileAndReadsTheSite) {
  write("site/Tarvik.rc", "define-printer=general\n");  // the fallback site file
  userFile("define-printer=mine\n");
  const std::string missing = "/no/such/dir/" + std::string(80, 'x') + ".rc";
  ::setenv("TARVIKRC", missing.c_str(), 1);
  bool status = true;
  CFSETP(status);
  EXPECT_FALSE(status);
  EXPECT_EQ(output(),
            " Configuration file\n ** " + missing.substr(missing.size() - 73) +
                " **\n defined by environment variable\n ** TARVIKRC ** does not exist\n");
  ASSERT_EQ(configuration().fileCount, 1);
  ASSERT_EQ(printerCount(DeviceTable::System), 1);
  EXPECT_EQ(printer(DeviceTable::System, 1).name, "general");

  // an existing one takes the user's place
  ::setenv("TARVIKRC", write("env.rc", "define-printer=env\n").c_str(), 1);
  CFSETP(status);
  EXPECT_EQ(configuration().fileCount, 2);
  EXPECT_EQ(findPrinter(DeviceTable::System, "env"), 2);
  EXPECT_EQ(findPrinter(DeviceTable::System, "mine"), 0);
}

TEST_F(Configure, CommandLineAndInstallationChooseTheSiteFile) {
  siteFile("define-printer=site\n");
  commandLine().configuration = write("mine.rc", "define-printer=chosen\n");
  commandLine().configurationGiven = true;
  bool status = true;
  CFSETP(status);
  EXPECT_EQ(printer(DeviceTable::System, 1).name, "chosen");

  resetCommandLine();
  program().installationPath = (root_ / "inst").string();
  write("inst/config/Tarvik.ini", "define-printer=installed\n");
  CFSETP(status);
  EXPECT_FALSE(status);
  ASSERT_EQ(printerCount(DeviceTable::System), 1);
  EXPECT_EQ(printer(DeviceTable::System, 1).name, "installed");
}

TEST_F(Configure, NoFilesMeansMinimumConfiguration) {
  bool status = true;
  CFSETP(status);
  EXPECT_FALSE(status);
  EXPECT_EQ(output(), " No configuration files available\n using minimum configuration\n");
}

TEST_F(Configure, NoHomeStopsAfterALine) {
  siteFile("define-printer=site\n");
  ::unsetenv("HOME");
  type("\n");
  bool status = false;
  CFSETP(status);
  EXPECT_TRUE(status);
  EXPECT_TRUE(platform::testconsole::inputExhausted());
  EXPECT_EQ(
      output().rfind(" (CFSETP) Unable to get home drive defined by environment variable >HOME<\n"
                     " To continue press <R>\n",
                     0),
      0u);
}

TEST_F(Configure, ListingEchoesLaterLinesOfThisAndTheNextFile) {
  siteFile("show-time=3\nlist=on\n\nshow-time=4 # four\n");
  userFile("list=off\nshow-time=5\n");
  bool status = true;
  CFSETP(status);
  EXPECT_FALSE(status);
  EXPECT_EQ(output(), "   3:\n   4:show-time=4 # four\n   1:list=off\n");
  EXPECT_EQ(program().showTime, 5);
}

TEST_F(Configure, ConfigCommandReadsAgainFromDefaults) {
  const std::string site = siteFile("define-printer=a\nshow-time=7\nfile-name-type=dos\n");
  IZCONF();
  ASSERT_NE(services().readConfiguration, nullptr);
  bool status = true;
  services().readConfiguration(status);
  EXPECT_EQ(printerCount(DeviceTable::System), 1);
  siteFile("define-printer=b\ndefine-printer=c\n");
  services().readConfiguration(status);
  EXPECT_FALSE(status);
  EXPECT_EQ(printerCount(DeviceTable::System), 2);
  EXPECT_EQ(printer(DeviceTable::System, 1).name, "b");
  EXPECT_EQ(program().showTime, 2);
  EXPECT_EQ(program().fileNameType, 1);
}

TEST_F(Configure, SampleFileDefinesItsDevices) {
  bool status = true;
  RDCONF(std::string(KNTR_SOURCE_DIR) + "/data/kntr-sample.rc", status);
  ASSERT_FALSE(status);
  EXPECT_EQ(output(), "");
  ASSERT_EQ(printerCount(DeviceTable::System), 1);
  EXPECT_EQ(printer(DeviceTable::System, 1).command,
            "lp -d " + printer(DeviceTable::System, 1).name);
  EXPECT_EQ(printerCount(DeviceTable::File), 1);
  ASSERT_EQ(plotterCount(DeviceTable::File), 1);
  EXPECT_EQ(plotter(DeviceTable::File, 1).interface, "PostScript");
}

// --- terminals --------------------------------------------------------------------

std::string esc(const std::string& rest) {
  return "\x1b" + rest;
}

TEST_F(Configure, BuiltInXterm) {
  ::setenv("TERM", "xterm", 1);
  bool status = true;
  IZTERM(status);
  EXPECT_FALSE(status);
  EXPECT_EQ(terminal().name, "xterm");
  EXPECT_EQ(program().screenColumns, 80);
  EXPECT_EQ(program().screenLines, 24);
  ASSERT_NE(findTerminalToken("CSB"), nullptr);
  EXPECT_EQ(findTerminalToken("CSB")->on, esc("[2J") + esc("[24;1H"));
  EXPECT_EQ(findTerminalToken("UDL")->on, esc("[4m"));
  EXPECT_EQ(findTerminalToken("UDL")->kind, TokenToggle);
  EXPECT_EQ(findTerminalToken("BLD")->on, esc("[1m"));
  EXPECT_EQ(findTerminalToken("INV")->on, esc("[7m"));
  EXPECT_EQ(findTerminalToken("BLK")->on, esc("[5m"));
  EXPECT_EQ(findTerminalToken("NWM")->on, " ->");
  EXPECT_EQ(findTerminalToken("NWL")->on, "\n");
  EXPECT_EQ(output(), "");

  // today's emulators are of the xterm family
  ::setenv("TERM", "xterm-256color", 1);
  IZTERM(status);
  EXPECT_FALSE(status);
  EXPECT_EQ(findTerminalToken("CSB")->on, esc("[2J") + esc("[24;1H"));
  EXPECT_EQ(output(), "");
}

TEST_F(Configure, BuiltInHptermWithThirtySixLinesAndSizeOverrides) {
  commandLine().terminal = "hpterm-36";
  commandLine().terminalGiven = true;
  ::setenv("TERM", "xterm", 1);
  bool status = true;
  IZTERM(status);
  EXPECT_FALSE(status);
  EXPECT_EQ(program().screenColumns, 80);
  EXPECT_EQ(program().screenLines, 36);
  EXPECT_EQ(findTerminalToken("CST")->on, esc("&a0y0C") + esc("J"));
  EXPECT_EQ(findTerminalToken("UDL")->on, esc("&dD"));
  EXPECT_EQ(findTerminalToken("UDL")->off, esc("&d@"));
  EXPECT_EQ(findTerminalToken("HGL")->on, esc("&dsD"));
  EXPECT_EQ(findTerminalToken("BCK")->on, esc("&v0S"));
  EXPECT_EQ(findTerminalToken("MAG")->on, esc("&v7S"));
  EXPECT_EQ(findTerminalToken("NWM")->on, " ->");

  ::setenv("COLUMNS", "120", 1);
  commandLine().lines = 40;
  commandLine().linesGiven = true;
  IZTERM(status);
  EXPECT_EQ(program().screenColumns, 120);
  EXPECT_EQ(program().screenLines, 40);

  ::setenv("COLUMNS", "wide", 1);
  type("\n");
  IZTERM(status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("Attempt to read from file ** INTERNAL ** failed"), std::string::npos);
}

TEST_F(Configure, UnknownTerminalGetsTheMinimalTable) {
  ::setenv("TERM", "teletype", 1);
  type("\n");
  bool status = true;
  IZTERM(status);
  EXPECT_FALSE(status);
  EXPECT_NE(output().find("Undefined terminal type ** teletype **"), std::string::npos);
  const TerminalTable& t = terminal();
  ASSERT_EQ(t.count, 4);
  EXPECT_EQ(t.token(1).name, "CST");
  EXPECT_EQ(t.token(2).name, "CSB");
  EXPECT_EQ(t.token(3).name, "NWL");
  EXPECT_EQ(t.columns, 80);
  EXPECT_EQ(t.lines, 24);
}

TEST_F(Configure, DefinitionFileWithItsOwnPunctuationMark) {
  write("terms/second/myterm.TERM",
        "# a terminal of our own\n"
        "columns=100\n"
        "lines=30   # tall enough\n"
        "terminal-output=CST;\\E[H\\E[2J\n"
        "punctuation-mark=|\n"
        "terminal-output=udl|^[[4m;x|\\E[24m\n"
        "terminal-output=NWM| ->\n");
  configuration().primaryTerminalDirectory = (root_ / "terms/first").string();
  configuration().secondaryTerminalDirectory = (root_ / "terms/second").string();
  ::setenv("TERM", "myterm", 1);
  bool status = true;
  IZTERM(status);
  EXPECT_FALSE(status);
  EXPECT_EQ(output(), "");
  const TerminalTable& t = terminal();
  EXPECT_EQ(program().screenColumns, 100);
  EXPECT_EQ(program().screenLines, 30);
  ASSERT_EQ(t.count, 3);
  EXPECT_EQ(t.token(1).on, esc("[H") + esc("[2J"));
  EXPECT_EQ(t.token(2).name, "UDL");
  EXPECT_EQ(t.token(2).on, esc("[4m;x"));
  EXPECT_EQ(t.token(2).off, esc("[24m"));
  EXPECT_EQ(t.token(2).kind, TokenToggle);
  EXPECT_EQ(t.token(3).on, " ->");

  write("bad.TERM", "terminal-output=LONG;a;b\n");
  type("\n");
  RDTERM((root_ / "bad.TERM").string(), status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("INTERNAL"), std::string::npos);
}

}  // namespace
}  // namespace kntr::framework
