#include "framework/configuration.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "framework/state.h"
#include "support/checks.h"
#include "support/scratch_directory.h"

namespace kntr::framework {
namespace {

namespace fs = std::filesystem;
using kntr::testing::Contains;

// Runs in a scratch directory that holds the site directory ("site") and a
// home directory ("home"), with the environment variables that this code
// reads saved and put back afterwards.
class Configure : public kntr::testing::ScratchTest {
 protected:
  void SetUp() override {
    ScratchTest::SetUp();
    resetCommandLine();
    resetConfiguration();
    resetTerminal();
    program().packageVersion = "2016A";
    fs::create_directories(directory() / "site");
    fs::create_directories(directory() / "home" / "T-cnfg");
    for (const char* name : {"HOME", "TARVIKRC", "KNTR_SITE_CONFIG_DIR", "TERM", "COLUMNS", "LINES",
                             "DISPLAY", "WMDIR"}) {
      const char* value = std::getenv(name);
      saved_[name] = value ? std::optional<std::string>(value) : std::nullopt;
      ::unsetenv(name);
    }
    ::setenv("HOME", path("home").c_str(), 1);
    ::setenv("KNTR_SITE_CONFIG_DIR", path("site").c_str(), 1);
  }
  void TearDown() override {
    for (const auto& [name, value] : saved_)
      value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
    resetConfiguration();
    resetTerminal();
    resetCommandLine();
    ScratchTest::TearDown();
  }

  // Writes a file below the scratch directory and gives its full name.
  std::string write(const std::string& relative, const std::string& text) {
    fs::create_directories(fs::path(path(relative)).parent_path());
    writeFile(path(relative), text);
    return path(relative);
  }
  std::string siteFile(const std::string& text) { return write("site/Tarvik-2016A.rc", text); }
  std::string userFile(const std::string& text) {
    return write("home/T-cnfg/Tarvik-2016A.ini", text);
  }
  // Reads `text` as a configuration file; true when that failed.
  bool read(const std::string& text) {
    bool status = true;
    RDCONF(write("read.rc", text), status);
    return status;
  }
  // The printers of a table, "name command lines" each, "; " between.
  static std::string printers(DeviceTable table = DeviceTable::System) {
    std::string all;
    for (int k = 1; k <= printerCount(table); ++k) {
      const PrinterEntry& e = printer(table, k);
      all += (k > 1 ? "; " : "") + e.name + " " + e.command + " " + std::to_string(e.linesPerPage);
    }
    return all;
  }

  std::map<std::string, std::optional<std::string>> saved_;
};

TEST_F(Configure, CommandLineOptionsTakeTheNextArgument) {
  program().arguments = {"kntr",  "stray", "-colu",   "132",   "-Lines",      "40",    "-term",
                         "vt100", "-conf", "site.rc", "-file", "profile.knt", "-lines"};
  EXPECT_STATUS(false, GTPGOP(status));
  const CommandLineOptions& o = commandLine();
  EXPECT_TRUE(o.columnsGiven);
  EXPECT_EQ(o.columns, 132);
  EXPECT_FALSE(o.linesGiven);  // "-Lines" is not an option: case counts; "-lines" has no value
  EXPECT_EQ(o.terminal, "vt100");
  EXPECT_EQ(o.configuration, "site.rc");
  EXPECT_EQ(o.file, "profile.knt");
  EXPECT_EQ(o.fileLength, 5);  // the terminal name's length, kept as it always was
  // A word that looks like an option is named; other words pass in silence.
  EXPECT_EQ(output(), " (GTPGOP) Unknown option ** -Lines ** ignored\n");

  // A size that is no number stops the scan.
  resetCommandLine();
  program().arguments = {"kntr", "-columns", "8x", "-lines", "30"};
  EXPECT_STATUS(true, GTPGOP(status));
  EXPECT_EQ(output(), " (GTPGOP) I/O problems\n (I/O status is  915)\n");
  EXPECT_FALSE(commandLine().linesGiven);
  resetCommandLine();
  program().arguments = {"kntr", "-line", "99999999999"};
  EXPECT_STATUS(true, GTPGOP(status));
  EXPECT_EQ(output(), " (GTPGOP) I/O problems\n (I/O status is  981)\n");
}

// --- one configuration file -------------------------------------------------------

TEST_F(Configure, CommentsAreCutAndDetailsGoToTheLatestEntry) {
  EXPECT_FALSE(
      read("# define-printer=x\n"
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
           "plotter-maximum-paper-size=3\n"));
  EXPECT_EQ(printers(), "office lp -d office 72; hall  66");
  EXPECT_EQ(configuration().printerHeadingName, "Shipyard");
  EXPECT_EQ(printers(DeviceTable::File), "listing  60");
  ASSERT_EQ(plotterCount(DeviceTable::System), 1);
  const PlotterEntry& ps = plotter(DeviceTable::System, 1);
  EXPECT_EQ(ps.xSize, 150.0);
  EXPECT_EQ(ps.yOffset, -7.0);
  EXPECT_EQ(ps.maximumPaperSize, 3);
  EXPECT_EQ(ps.ySize, 0.0);
  EXPECT_EQ(output(), "");
}

TEST_F(Configure, TheTwentyFifthPlotterIsRefused) {
  std::string text;
  for (int i = 1; i <= 25; ++i) text += "define-plotter=p" + std::to_string(i) + "\n";
  EXPECT_TRUE(read(text + "plotter-model=late\n"));
  EXPECT_EQ(output(), "Maximum number of plotter definition exceeded\n(maximum is 24)\n");
  EXPECT_EQ(plotterCount(DeviceTable::System), 24);
  EXPECT_EQ(plotter(DeviceTable::System, 24).name, "p24");
  EXPECT_EQ(plotter(DeviceTable::System, 24).model, "");  // reading stopped there

  resetConfiguration();
  text.clear();
  for (int i = 1; i <= 25; ++i) text += "define-file-prt=f" + std::to_string(i) + "\n";
  EXPECT_TRUE(read(text));
  EXPECT_EQ(output(), "Maximum number of file printer definition exceeded (maximum is 24)\n");
  EXPECT_EQ(printerCount(DeviceTable::File), 24);
}

TEST_F(Configure, KeywordsAreFoundAnywhereInTheLineInTableOrder) {
  EXPECT_FALSE(
      read("default-company=spool-directory\n"  // spool comes first
           "define-printer=list\n"              // not the list switch
           "xx-show-time=5\n"                   // not anchored
           "SHOW-TIME=9\n"                      // case counts
           "no keyword here\n"));
  EXPECT_EQ(configuration().spoolDirectory, "spool-directory");
  EXPECT_EQ(configuration().defaultCompany, "");
  EXPECT_EQ(printers(), "list  66");
  EXPECT_FALSE(configuration().list);
  EXPECT_EQ(program().showTime, 5);
}

TEST_F(Configure, WordsNumbersAndMissingFiles) {
  read("display-type=extended-color\nfile-name-type=dos\nfile-name-type=vms\n");
  EXPECT_EQ(configuration().displayType, DisplayExtendedColour);
  EXPECT_EQ(program().fileNameType, 3);  // the unknown word left it
  EXPECT_FALSE(read("display-type=colour\nfile-name-type=unix-long\n"));
  EXPECT_EQ(configuration().displayType, DisplayMonochrome);
  EXPECT_EQ(program().fileNameType, 2);

  // A number that does not convert stops the file.
  EXPECT_TRUE(read("define-printer=a\nprinter-lines=7x\nshow-time=9\n"));
  EXPECT_EQ(output(), "Attempt to read from internal file failed\n(I/O status is  915)\n");
  EXPECT_EQ(program().showTime, 2);
  EXPECT_TRUE(read("display-percent-vertical=\n"));
  output();
  EXPECT_STATUS(true, RDCONF(path("none.rc"), status));
  EXPECT_EQ(output(), "Configuration file ** " + path("none.rc") + " ** does not exist\n");
}

TEST_F(Configure, DeletingKeepsTheDefaultOnItsEntry) {
  EXPECT_FALSE(
      read("define-printer=a\ndefine-printer=b\ndefine-printer=c\ndefault-printer=c\n"
           "delete-printer=a\ndefault-printer=unknown\ndelete-printer=unknown\n"));
  EXPECT_EQ(printers(), "b  66; c  66");
  EXPECT_EQ(defaultPrinter(DeviceTable::System), 2);
  EXPECT_EQ(findPrinter(DeviceTable::System, "b"), 1);
  read("delete-printer=c\n");
  EXPECT_EQ(defaultPrinter(DeviceTable::System), 1);  // no named default: the first
  EXPECT_FALSE(read("delete-all-printers\nprinter-lines=5\n"));
  EXPECT_EQ(printers(), "");
  EXPECT_EQ(defaultPrinter(DeviceTable::System), 0);
}

// --- finding the files ----------------------------------------------------------

TEST_F(Configure, SiteThenUserAndTheLaterWins) {
  siteFile("show-time=4\ndefine-printer=site\nprinter-lines=50\ndefault-user=anna\n");
  userFile("show-time=0\ndefine-printer=site\nprinter-lines=70\ndefine-printer=mine\n");
  program().defaultCompany = "from an earlier reading";
  EXPECT_STATUS(false, CFSETP(status));
  const Configuration& c = configuration();
  ASSERT_EQ(c.fileCount, 2);
  EXPECT_EQ(c.files(1), path("site/Tarvik-2016A.rc"));
  EXPECT_EQ(c.files(2), path("home/T-cnfg/Tarvik-2016A.ini"));
  EXPECT_EQ(program().showTime, 0);
  // A name defined again starts an entry of its own.
  EXPECT_EQ(printers(), "site  50; site  70; mine  66");
  EXPECT_EQ(program().defaultUser, "anna");
  EXPECT_EQ(program().defaultCompany, "");
  EXPECT_EQ(output(), "");
}

TEST_F(Configure, MissingTarvikrcWarnsSkipsTheUserFileAndReadsTheSite) {
  write("site/Tarvik.rc", "define-printer=general\n");  // the fallback site file
  userFile("define-printer=mine\n");
  const std::string missing = "/no/such/dir/" + std::string(80, 'x') + ".rc";
  ::setenv("TARVIKRC", missing.c_str(), 1);
  EXPECT_STATUS(false, CFSETP(status));
  EXPECT_EQ(output(),
            " Configuration file\n ** " + missing.substr(missing.size() - 73) +
                " **\n defined by environment variable\n ** TARVIKRC ** does not exist\n");
  EXPECT_EQ(configuration().fileCount, 1);
  EXPECT_EQ(printers(), "general  66");

  // An existing one takes the user's place.
  ::setenv("TARVIKRC", write("env.rc", "define-printer=env\n").c_str(), 1);
  EXPECT_STATUS(false, CFSETP(status));
  EXPECT_EQ(configuration().fileCount, 2);
  EXPECT_EQ(printers(), "general  66; env  66");
}

// A site file named on the command line is read by the scripted session
// session_print_configured.
TEST_F(Configure, TheInstallationChoosesTheSiteFile) {
  siteFile("define-printer=site\n");
  program().installationPath = path("inst");
  write("inst/config/Tarvik.ini", "define-printer=installed\n");
  EXPECT_STATUS(false, CFSETP(status));
  EXPECT_EQ(printers(), "installed  66");
}

TEST_F(Configure, NoFilesMeansMinimumConfigurationAndNoHomeStopsAfterALine) {
  EXPECT_STATUS(false, CFSETP(status));
  EXPECT_EQ(output(), " No configuration files available\n using minimum configuration\n");

  siteFile("define-printer=site\n");
  ::unsetenv("HOME");
  type("\n");
  EXPECT_STATUS(true, CFSETP(status));
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
  EXPECT_STATUS(false, CFSETP(status));
  EXPECT_EQ(output(), "   3:\n   4:show-time=4 # four\n   1:list=off\n");
  EXPECT_EQ(program().showTime, 5);
}

TEST_F(Configure, ConfigCommandReadsAgainFromDefaults) {
  siteFile("define-printer=a\nshow-time=7\nfile-name-type=dos\n");
  IZCONF();
  ASSERT_NE(services().readConfiguration, nullptr);
  EXPECT_STATUS(false, services().readConfiguration(status));
  EXPECT_EQ(printers(), "a  66");
  siteFile("define-printer=b\ndefine-printer=c\n");
  EXPECT_STATUS(false, services().readConfiguration(status));
  EXPECT_EQ(printers(), "b  66; c  66");
  EXPECT_EQ(program().showTime, 2);
  EXPECT_EQ(program().fileNameType, 1);
}

// --- terminals --------------------------------------------------------------------

const std::string esc = "\x1b";

// The sequences that switch `names` on, one after the other.
std::string on(std::initializer_list<const char*> names) {
  std::string all;
  for (const char* name : names) {
    const TerminalToken* t = findTerminalToken(name);
    all += t ? t->on : std::string("<no ") + name + ">";
  }
  return all;
}

TEST_F(Configure, BuiltInXterm) {
  for (const char* type : {"xterm", "xterm-256color"}) {  // today's emulators are xterms
    ::setenv("TERM", type, 1);
    EXPECT_STATUS(false, IZTERM(status));
    EXPECT_EQ(terminal().name, type);
    EXPECT_EQ(program().screenColumns, 80);
    EXPECT_EQ(program().screenLines, 24);
    EXPECT_EQ(
        on({"CSB", "UDL", "BLD", "INV", "BLK", "NWM", "NWL"}),
        esc + "[2J" + esc + "[24;1H" + esc + "[4m" + esc + "[1m" + esc + "[7m" + esc + "[5m ->\n");
    EXPECT_EQ(findTerminalToken("UDL")->kind, TokenToggle);
    EXPECT_EQ(output(), "");
  }
}

TEST_F(Configure, BuiltInHptermWithThirtySixLinesAndSizeOverrides) {
  commandLine().terminal = "hpterm-36";
  commandLine().terminalGiven = true;
  ::setenv("TERM", "xterm", 1);
  EXPECT_STATUS(false, IZTERM(status));
  EXPECT_EQ(program().screenColumns, 80);
  EXPECT_EQ(program().screenLines, 36);
  EXPECT_EQ(
      on({"CST", "UDL", "HGL", "BCK", "MAG", "NWM"}),
      esc + "&a0y0C" + esc + "J" + esc + "&dD" + esc + "&dsD" + esc + "&v0S" + esc + "&v7S ->");
  EXPECT_EQ(findTerminalToken("UDL")->off, esc + "&d@");

  ::setenv("COLUMNS", "120", 1);
  commandLine().lines = 40;
  commandLine().linesGiven = true;
  EXPECT_STATUS(false, IZTERM(status));
  EXPECT_EQ(program().screenColumns, 120);
  EXPECT_EQ(program().screenLines, 40);

  ::setenv("COLUMNS", "wide", 1);
  type("\n");
  EXPECT_STATUS(true, IZTERM(status));
  EXPECT_TRUE(Contains(output(), "Attempt to read from file ** INTERNAL ** failed"));
}

TEST_F(Configure, UnknownTerminalGetsTheMinimalTable) {
  ::setenv("TERM", "teletype", 1);
  type("\n");
  EXPECT_STATUS(false, IZTERM(status));
  EXPECT_TRUE(Contains(output(), "Undefined terminal type ** teletype **"));
  const TerminalTable& t = terminal();
  ASSERT_EQ(t.count, 4);
  EXPECT_EQ(t.token(1).name + t.token(2).name + t.token(3).name, "CSTCSBNWL");
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
  configuration().primaryTerminalDirectory = path("terms/first");
  configuration().secondaryTerminalDirectory = path("terms/second");
  ::setenv("TERM", "myterm", 1);
  EXPECT_STATUS(false, IZTERM(status));
  EXPECT_EQ(output(), "");
  const TerminalTable& t = terminal();
  EXPECT_EQ(program().screenColumns, 100);
  EXPECT_EQ(program().screenLines, 30);
  ASSERT_EQ(t.count, 3);
  EXPECT_EQ(t.token(1).on, esc + "[H" + esc + "[2J");
  EXPECT_EQ(t.token(2).name, "UDL");
  EXPECT_EQ(t.token(2).on, esc + "[4m;x");
  EXPECT_EQ(t.token(2).off, esc + "[24m");
  EXPECT_EQ(t.token(2).kind, TokenToggle);
  EXPECT_EQ(t.token(3).on, " ->");

  type("\n");
  EXPECT_STATUS(true, RDTERM(write("bad.TERM", "terminal-output=LONG;a;b\n"), status));
  EXPECT_TRUE(Contains(output(), "INTERNAL"));
}

// The screen's size for the menus: what an option, the environment or a
// definition file fixes holds against the console's own size, which stands
// in for a built-in terminal's default.
TEST_F(Configure, ScreenSizeOfOptionsAndDefinitionsHoldsAgainstTheConsole) {
  write("terms/long.TERM", "lines=40\n");
  configuration().primaryTerminalDirectory = path("terms");
  resize(132, 50);  // the console
  ::setenv("TERM", "xterm", 1);
  EXPECT_STATUS(false, IZTERM(status));
  takeConsoleSize();
  EXPECT_EQ(program().screenColumns, 132);
  EXPECT_EQ(program().screenLines, 50);
  ::setenv("TERM", "long", 1);
  ::setenv("COLUMNS", "90", 1);
  EXPECT_STATUS(false, IZTERM(status));
  takeConsoleSize();
  EXPECT_EQ(program().screenColumns, 90);
  EXPECT_EQ(program().screenLines, 40);
}

}  // namespace
}  // namespace kntr::framework
