#include "framework/projects.h"

#include <gtest/gtest.h>

#include <array>
#include <regex>
#include <string>
#include <vector>

#include "framework/files.h"
#include "framework/state.h"
#include "support/scratch_directory.h"

namespace kntr::framework {
namespace {

using kntr::testing::ScratchTest;

class FileNames : public kntr::testing::ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    program().executionMode = ModeBatch;  // error waits return at once
    program().SPNAME = "KNTR";
    program().projectName = "work/ship";
    program().projectDirectory = "work";
    program().projectBaseName = "ship";
  }
  std::string name(std::string_view kind) {
    std::string result;
    bool status = true;
    IQISFN(kind, result, status);
    EXPECT_FALSE(status) << kind;
    return result;
  }
};

TEST_F(FileNames, ShortFormForEveryKind) {
  program().fileNameType = NamesUnixShort;
  EXPECT_EQ(name("KNTR"), "work/ship.KNT");
  EXPECT_EQ(name("PJCT"), "work/ship.PJC");
  EXPECT_EQ(name("TVEW"), "work/ship.TVW");
  EXPECT_EQ(name("LIST"), "work/ship.LST");
  EXPECT_EQ(name("PJTP"), "PJCT.TMP");
  EXPECT_EQ(name("BCKP"), "work/ship.KNB");
  EXPECT_EQ(name("ATTB"), "work/KNTR.ATB");
  EXPECT_EQ(name("TEMP"), "work/KNTR.TMP");
}

TEST_F(FileNames, LongFormForEveryKind) {
  for (int type : {NamesUnixLong, NamesDos}) {
    program().fileNameType = type;
    EXPECT_EQ(name("KNTR"), "work/ship.KNTR");
    EXPECT_EQ(name("PJCT"), "work/ship.PJCT");
    EXPECT_EQ(name("TVEW"), "work/ship.TVEW");
    EXPECT_EQ(name("PJTP"), "PJCT.TEMP");
    EXPECT_EQ(name("BCKP"), "work/ship.KNTR-BCKP");
    EXPECT_EQ(name("ATTB"), "work/KNTR.ATTB");
    EXPECT_EQ(name("TEMP"), "work/KNTR.TEMP");
  }
}

TEST_F(FileNames, HandOverFileNeverDependsOnTheProject) {
  const std::string withProject = name("PJTP");
  program().projectName = "/far/away/other";
  program().projectDirectory = "/far/away";
  program().projectBaseName = "other";
  EXPECT_EQ(name("PJTP"), withProject);
  program().projectName.clear();
  program().projectDirectory.clear();
  program().projectBaseName.clear();
  EXPECT_EQ(name("PJTP"), withProject);
  EXPECT_EQ(withProject.find('/'), std::string::npos);
}

TEST_F(FileNames, ProjectWithoutDirectoryPutsGroupFilesInTheCurrentOne) {
  program().projectName = "ship";
  program().projectDirectory.clear();
  program().projectBaseName = "ship";
  EXPECT_EQ(name("TEMP"), "KNTR.TMP");
  EXPECT_EQ(name("ATTB"), "KNTR.ATB");
  EXPECT_EQ(name("KNTR"), "ship.KNT");
}

TEST_F(FileNames, RefusesBlankAndUnknownModulesAndShortBuffers) {
  std::string result = "old";
  bool status = false;
  IQISFN("    ", result, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(IQISFN) Unable to return file name for module without identification"),
            std::string::npos);

  IQISFN("ABCD", result, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("Unable to find file extensions for module with ** ABCD ** as "
                          "identification"),
            std::string::npos);

  // "work/ship" and "KNT" need 9 + 3 + 3 characters.
  IQISFN("KNTR", 15, result, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(result, "work/ship.KNT");
  IQISFN("KNTR", 14, result, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(IQISFN) Unable to return file name for module due to space "
                          "limitations(max number of characters in file name is   15 <   14)"),
            std::string::npos);
}

TEST_F(FileNames, ExtensionsOfAModule) {
  std::string text, backup;
  bool status = true;
  program().fileNameType = NamesUnixShort;
  IQFEXT("KNTR", text, backup, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(text, "KNT");
  EXPECT_EQ(backup, "KNB");
  IQFEXT("PJCT", text, backup, status);
  EXPECT_EQ(text, "PJC");
  EXPECT_EQ(backup, "");
  program().fileNameType = NamesUnixLong;
  IQFEXT("KNTR", text, backup, status);
  EXPECT_EQ(text, "KNTR");
  EXPECT_EQ(backup, "");
  IQFEXT("", text, backup, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(IQISFN) Unable to return file extension for module without "
                          "identification"),
            std::string::npos);
}

TEST_F(FileNames, SplitAtTheLastSeparator) {
  struct Case {
    const char* full;
    const char* directory;
    const char* base;
  };
  const Case cases[] = {
      {"a/b/c.KNT", "a/b", "c.KNT"}, {"/c", "", "c"},         {"dir/", "dir", ""},
      {"name", "", "name"},          {"/top/x", "/top", "x"}, {"a/b  ", "a", "b"},
  };
  for (const Case& c : cases) {
    std::string directory = "?", base = "?";
    bool status = true;
    SPFLNM(c.full, directory, base, status);
    EXPECT_FALSE(status) << c.full;
    EXPECT_EQ(directory, c.directory) << c.full;
    EXPECT_EQ(base, c.base) << c.full;
  }
  std::string directory, base;
  bool status = false;
  SPFLNM("   ", directory, base, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(SPFLNM) Full file name length must be positive"), std::string::npos);
}

TEST_F(FileNames, TruncationKeepsTheEnd) {
  std::string shortName;
  bool status = true;
  TCFLNM("abc", 5, shortName, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(shortName, "abc");
  TCFLNM("abcde", 5, shortName, status);
  EXPECT_EQ(shortName, "abcde");
  TCFLNM("/long/path/ship.KNT", 8, shortName, status);
  EXPECT_EQ(shortName, "ship.KNT");
  TCFLNM("abc", 0, shortName, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(TCFLNM) File name truncation length must be positive"),
            std::string::npos);
  TCFLNM("", 10, shortName, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(TCFLNM) Unable to truncate zero length file name"), std::string::npos);
}

// --- Headers -----------------------------------------------------------------

class Headers : public ScratchTest {
 protected:
  void SetUp() override {
    ScratchTest::SetUp();
    program().executionMode = ModeBatch;
    program().SPNAME = "KNTR";
    program().SPVERS = "1998-0223";
    program().projectName = "bench";
    program().projectIdentification = "Lens test";
    program().company = "Yard";
    program().user = "";
  }
  void writeHeader(const std::string& name, int version) {
    int unit = 0;
    bool status = true;
    IQFUNT(unit, status);
    ASSERT_FALSE(status);
    AtomicWriter out;
    ASSERT_EQ(out.open(unit, name), 0);
    program().workFileName = name;
    PTFLHD(out, version, status);
    ASSERT_FALSE(status);
    ASSERT_EQ(out.commit(), 0);
  }
  FileHeader readHeader(const std::string& name, bool& status) {
    int unit = 0;
    IQFUNT(unit, status);
    TextReader in;
    EXPECT_EQ(in.open(unit, name), 0);
    FileHeader header;
    GTFLHD(in, name, header, status);
    return header;
  }
  static std::string padded(const std::string& text) {
    std::string line = text;
    line.resize(79, ' ');
    return line + "*";
  }
};

TEST_F(Headers, FixedLayoutWithStarInColumn80) {
  const std::string name = path("h.KNT");
  writeHeader(name, 3);
  const std::vector<std::string> lines = readLines(name);
  ASSERT_EQ(lines.size(), 12u);
  const std::string stars(80, '*');
  EXPECT_EQ(lines[0], stars);
  EXPECT_EQ(lines[1], padded("* PROGRAM: KNTR"));
  EXPECT_EQ(lines[2], padded("* PROGRAM VERSION: 1998-0223"));
  EXPECT_EQ(lines[3], padded("* PROJECT: bench"));
  EXPECT_EQ(lines[4], padded("* IDENTIFICATION: Lens test"));
  EXPECT_EQ(lines[5], padded("* COMPANY: Yard"));
  EXPECT_EQ(lines[6], padded("* USER: "));  // a blank user still closes with the star
  EXPECT_EQ(lines[7], padded("* FILE VERSION:    3"));
  EXPECT_EQ(lines[7].substr(16, 4), "   3");
  EXPECT_EQ(lines[8], padded("* COMMENTS:"));
  EXPECT_TRUE(
      std::regex_match(lines[9], std::regex(R"(\* DATE: \d\d-[A-Z][a-z][a-z]-\d{4} {60}\*)")))
      << lines[9];
  EXPECT_TRUE(std::regex_match(lines[10], std::regex(R"(\* TIME: \d\d:\d\d:\d\d {63}\*)")))
      << lines[10];
  EXPECT_EQ(lines[11], stars);
  for (const std::string& line : lines) EXPECT_EQ(line.size(), 80u);
  // What was written is what the state keeps as the last file date and time.
  EXPECT_EQ(lines[9].substr(8, 11), program().lastFileDate);
  EXPECT_EQ(lines[10].substr(8, 8), program().lastFileTime);
}

TEST_F(Headers, LongValueOverwritesTheStarAndIsNotCut) {
  program().projectName = std::string(69, 'p');  // "* PROJECT: " + 69 reaches column 80
  program().company = std::string(75, 'c');
  const std::string name = path("long.KNT");
  writeHeader(name, 12);
  const std::vector<std::string> lines = readLines(name);
  EXPECT_EQ(lines[3], "* PROJECT: " + std::string(69, 'p'));
  EXPECT_EQ(lines[5], "* COMPANY: " + std::string(75, 'c'));
  EXPECT_EQ(lines[7].substr(16, 4), "  12");
}

TEST_F(Headers, ReadBackKeepsTheVersionQuirk) {
  const std::string name = path("rt.KNT");
  writeHeader(name, 3);
  const std::string written = program().lastFileDate;
  program().lastFileDate.clear();
  bool status = true;
  const FileHeader header = readHeader(name, status);
  ASSERT_FALSE(status);
  EXPECT_EQ(header.program, "KNTR");
  EXPECT_EQ(header.programVersion, "ERSION: 1998-0223");
  EXPECT_EQ(header.version, 3);
  EXPECT_EQ(header.date, written);
  EXPECT_EQ(program().lastFileDate, written);
}

TEST_F(Headers, TwoDigitVersionAndBlankFields) {
  const std::string name = path("two.KNT");
  std::string text = std::string(80, '*') + "\n";
  text += padded("* PROGRAM: ") + "\n";  // blank program
  text += padded("* PROGRAM VERSION: 2001-0101") + "\n";
  for (int i = 0; i < 4; ++i) text += padded("*") + "\n";
  text += padded("* FILE VERSION:   12") + "\n";
  text += padded("* COMMENTS:") + "\n";
  text += "* DATE:\n";  // short line: blank date
  text += padded("* TIME: 23:59:58") + "\n";
  text += std::string(80, '*') + "\n";
  writeFile(name, text);
  bool status = true;
  const FileHeader header = readHeader(name, status);
  ASSERT_FALSE(status);
  EXPECT_EQ(header.version, 12);
  EXPECT_EQ(header.program, "?");
  EXPECT_EQ(header.programVersion, "ERSION: 2001-0101");
  EXPECT_EQ(header.date, "?");
  EXPECT_EQ(header.time, "23:59:58");
}

TEST_F(Headers, BenchFileHeader) {
  const std::string name = "/work/shared/bench/square.kntr";
  if (!fileExists(name)) GTEST_SKIP() << "no bench files here";
  bool status = true;
  const FileHeader header = readHeader(name, status);
  ASSERT_FALSE(status);
  EXPECT_EQ(header.program, "KNTR");
  EXPECT_EQ(header.programVersion, "ERSION: 1998-0223");
  EXPECT_EQ(header.version, 3);
  EXPECT_EQ(header.date, "22-Nov-2026");
  EXPECT_EQ(header.time, "01:53:37");
}

TEST_F(Headers, TruncatedOrGarbledHeaderIsAReadFailure) {
  const std::string name = path("bad.KNT");
  writeFile(name, std::string(80, '*') + "\n* PROGRAM: KNTR\n");
  bool status = false;
  readHeader(name, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("Attempt to read from file ** " + name + " ** failed"),
            std::string::npos);

  std::string text;
  for (int i = 0; i < 12; ++i) text += (i == 7 ? "* FILE VERSION:  x3" : "*") + std::string("\n");
  writeFile(name, text);
  readHeader(name, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("Attempt to read from file ** " + name + " ** failed"),
            std::string::npos);
}

TEST_F(Headers, UnitNotOpen) {
  TextReader closed;
  FileHeader header;
  bool status = false;
  GTFLHD(closed, "none", header, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(GTFLHD) read UNIT is not open\n(unit is    0)"), std::string::npos);
  AtomicWriter notOpen;
  PTFLHD(notOpen, 3, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(PTFLHD) read UNIT is not open\n(unit is    0)"), std::string::npos);
}

// --- Project file ------------------------------------------------------------

class ProjectFile : public ScratchTest {
 protected:
  void SetUp() override {
    ScratchTest::SetUp();
    program().executionMode = ModeBatch;
    program().SPNAME = "KNTR";
    program().SPVERS = "1998-0223";
    setProject(path("ship"));
  }
  void setProject(const std::string& name) {
    std::string directory, base;
    bool status = true;
    SPFLNM(name, directory, base, status);
    ASSERT_FALSE(status);
    program().projectName = name;
    program().projectDirectory = directory;
    program().projectBaseName = base;
  }
};

TEST_F(ProjectFile, WritesTheKeysInOrder) {
  ProgramState& p = program();
  p.printLevel = 2;
  p.projectIdentification = "Hull 17";
  p.company = "Yard";
  p.user = "anna";
  p.backupInterval = 30;
  p.viewSetupCode = 2;
  p.viewSetup = {1.5, -0.25, 1000.0};
  p.floatFormat = 3;
  p.weightUnit = 1;
  bool status = true;
  STPJCT(7, status);
  ASSERT_FALSE(status);
  const std::vector<std::string> lines = readLines(path("ship.PJC"));
  ASSERT_EQ(lines.size(), 20u);
  EXPECT_EQ(lines[7].substr(16, 4), "   7");
  const std::vector<std::string> body(lines.begin() + 12, lines.end());
  const std::vector<std::string> expected = {
      "print-level=standard",        "project-identification=Hull 17",
      "company-identification=Yard", "user-identification=anna",
      "backup-interval=  30",        "view-setup=   2, 1.500E+00,-2.500E-01, 1.000E+03",
      "float-format=   3",           "weight-units=   1",
  };
  EXPECT_EQ(body, expected);
}

TEST_F(ProjectFile, ReadsBackWhatWasWritten) {
  ProgramState& p = program();
  p.printLevel = 3;
  p.projectIdentification = "Hull 17";
  p.company = "Yard";
  p.user = "anna";
  p.backupInterval = 7;
  p.viewSetupCode = 4;
  p.viewSetup = {0.125, 2.0, -3.0};
  p.floatFormat = 2;
  p.weightUnit = 1;
  bool status = true;
  STPJCT(status);
  ASSERT_FALSE(status);
  const ProgramState written = p;

  const std::string project = p.projectName;
  resetProgramState();
  program().executionMode = ModeBatch;
  setProject(project);
  LDPJCT(status);
  ASSERT_FALSE(status);
  EXPECT_EQ(p.printLevel, 3);
  EXPECT_EQ(p.projectIdentification, written.projectIdentification);
  EXPECT_EQ(p.company, written.company);
  EXPECT_EQ(p.user, written.user);
  EXPECT_EQ(p.backupInterval, 7);
  EXPECT_EQ(p.viewSetupCode, 4);
  EXPECT_EQ(p.viewSetup, written.viewSetup);
  EXPECT_EQ(p.floatFormat, 2);
  EXPECT_EQ(p.weightUnit, 1);
}

TEST_F(ProjectFile, UnknownWordsAndKeysChangeNothing) {
  std::string text;
  for (int i = 0; i < 12; ++i) text += (i == 7 ? "* FILE VERSION:    1" : "*") + std::string("\n");
  text +=
      "print-level=expert\n"
      "colour-scheme=dark\n"
      "no equals sign here\n"
      "user-identification=bo\n"
      "backup-interval= 12 \n";
  writeFile(path("ship.PJC"), text);
  program().printLevel = 2;
  bool status = true;
  LDPJCT(status);
  ASSERT_FALSE(status);
  EXPECT_EQ(program().printLevel, 2);
  EXPECT_EQ(program().user, "bo");
  EXPECT_EQ(program().backupInterval, 12);
}

TEST_F(ProjectFile, MissingOrBrokenFile) {
  bool status = false;
  LDPJCT(status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("Project file ** " + path("ship.PJC") + " ** does not exist"),
            std::string::npos);

  std::string text;
  for (int i = 0; i < 12; ++i) text += "*\n";
  text += "backup-interval=many\n";
  writeFile(path("ship.PJC"), text);
  LDPJCT(status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("Attempt to read from file ** " + path("ship.PJC") + " ** failed"),
            std::string::npos);
}

TEST_F(ProjectFile, ProjectWithDirectoryKeepsItInEveryDataFile) {
  std::string name;
  bool status = true;
  IQISFN("KNTR", name, status);
  EXPECT_EQ(name, path("ship.KNT"));
  IQISFN("BCKP", name, status);
  EXPECT_EQ(name, path("ship.KNB"));
  IQISFN("TEMP", name, status);
  EXPECT_EQ(name, path("KNTR.TMP"));
}

// --- Active files ------------------------------------------------------------

class ActiveFiles : public ProjectFile {
 protected:
  void SetUp() override {
    ProjectFile::SetUp();
    resetActiveFiles();
  }
  void TearDown() override {
    resetActiveFiles();
    ProjectFile::TearDown();
  }
  // A header-only data file with a chosen date and time.
  void writeDated(const std::string& name, const std::string& date, const std::string& time) {
    std::string text = std::string(80, '*') + "\n* PROGRAM: TVEW\n*\n*\n*\n*\n*\n";
    text += "* FILE VERSION:    4\n* COMMENTS:\n* DATE: " + date + "\n* TIME: " + time + "\n";
    text += std::string(80, '*') + "\n";
    writeFile(name, text);
  }
};

TEST_F(ActiveFiles, SiblingFilesAreReadForTheirDates) {
  writeDated(path("ship.TVW"), "03-Feb-2025", "10:11:12");
  const std::array<std::string, 2> ids = {"TVEW", "HULL"};
  std::array<bool, 2> loaded = {false, true};
  bool status = true;
  ISDSFA(ids, loaded, status);
  EXPECT_FALSE(status);
  EXPECT_TRUE(loaded[0]);
  EXPECT_FALSE(loaded[1]);  // no hull file in this project
  bool found = false;
  std::string name, date, time;
  IQACFL("TVEW", found, name, date, time);
  EXPECT_TRUE(found);
  EXPECT_EQ(name, path("ship.TVW"));
  EXPECT_EQ(date, "03-Feb-2025");
  EXPECT_EQ(time, "10:11:12");
  IQACFL("HULL", found, name, date, time);
  EXPECT_FALSE(found);

  // A second load updates the same entry.
  writeDated(path("ship.TVW"), "04-Feb-2025", "08:00:00");
  ISDSFA(ids, loaded, status);
  ASSERT_EQ(activeFiles().size(), 1u);
  EXPECT_EQ(activeFiles()[0].date, "04-Feb-2025");
}

bool fakeLoaded = false;
void fakeReader(std::string_view, bool& loaded, bool& status) {
  status = false;
  loaded = fakeLoaded;
  program().lastFileDate = "01-Mar-2024";
  program().lastFileTime = "12:00:00";
}

TEST_F(ActiveFiles, ModuleReaderAndRefusals) {
  setDataFileReader("KNTR", fakeReader);
  fakeLoaded = true;
  const std::array<std::string, 3> ids = {"KNTR", "", "LIST"};
  bool status = true;
  ISDSFA(ids, status);
  const std::string said = output();
  EXPECT_NE(said.find("(ISDSFA) No module identity for entity    2!"), std::string::npos);
  EXPECT_NE(said.find("Unable to load file for module with ** LIST ** as identity"),
            std::string::npos);
  ASSERT_EQ(activeFiles().size(), 1u);
  EXPECT_EQ(activeFiles()[0].identifier, "KNTR");
  EXPECT_EQ(activeFiles()[0].name, path("ship.KNT"));
  EXPECT_EQ(activeFiles()[0].date, "01-Mar-2024");

  // A file that cannot be read is not registered.
  resetActiveFiles();
  setDataFileReader("KNTR", fakeReader);
  fakeLoaded = false;
  ISDSFA(std::span<const std::string>(ids.data(), 1), status);
  EXPECT_TRUE(activeFiles().empty());
}

TEST_F(ActiveFiles, TheTwentyFifthIsRefused) {
  for (int i = 1; i <= MaxActiveFiles; ++i)
    registerActiveFile("M" + std::to_string(100 + i), "f" + std::to_string(i), "01-Jan-2000",
                       "00:00:00");
  ASSERT_EQ(activeFiles().size(), 24u);
  output();
  const std::vector<ActiveFile> before(activeFiles().begin(), activeFiles().end());
  registerActiveFile("M999", "extra", "02-Jan-2000", "01:00:00");
  EXPECT_NE(output().find("Unable to register more active files\n(maximum is 24)"),
            std::string::npos);
  ASSERT_EQ(activeFiles().size(), 24u);
  for (std::size_t i = 0; i < before.size(); ++i) {
    EXPECT_EQ(activeFiles()[i].identifier, before[i].identifier);
    EXPECT_EQ(activeFiles()[i].name, before[i].name);
  }
  // An entry already there is still updated.
  registerActiveFile("M105", "again", "03-Jan-2000", "02:00:00");
  EXPECT_EQ(activeFiles()[4].name, "again");
}

TEST_F(ActiveFiles, Listing) {
  program().executionMode = ModeAlone;
  const std::string longName =
      "/a/very/long/directory/name/that/goes/on/and/on/and/on/for/ever/ship.KNT";
  registerActiveFile("KNTR", longName, "05-May-2025", "06:07:08");
  const std::array<std::string, 2> ids = {"KNTR", "TVEW"};
  type("\n");
  bool status = true;
  PRACFL(ids, status);
  EXPECT_FALSE(status);
  const std::string said = output();
  // The name keeps its last 63 characters.
  EXPECT_NE(
      said.find("Active files\n\nKNTR file ... : " + longName.substr(longName.size() - 63) + "\n"),
      std::string::npos)
      << said;
  EXPECT_NE(said.find("\nLast saved on : 05-May-2025 at 06:07:08\nTVEW file ... : None"),
            std::string::npos)
      << said;
}

TEST_F(ActiveFiles, FileInformation) {
  program().executionMode = ModeAlone;
  program().lastFileDate = "09-Sep-2009";
  program().lastFileTime = "";
  type("\n");
  PRFILI();
  const std::string dots(32, '.');
  const std::string said = output();
  EXPECT_NE(said.find("File information\n\nLast date modified " + dots +
                      " : 09-Sep-2009\nLast modified time " + dots + " :"),
            std::string::npos)
      << said;
}

// --- Dates -------------------------------------------------------------------

TEST_F(FileNames, DatesAndTimes) {
  int day = 0, month = 0, year = 0;
  bool status = true;
  DATE2I("07-Aug-1998", day, month, year, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(day, 7);
  EXPECT_EQ(month, 8);
  EXPECT_EQ(year, 1998);
  DATE2I("07-aug-1998", day, month, year, status);  // the case of the month counts
  EXPECT_TRUE(status);
  DATE2I("7-Aug-98", day, month, year, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(DATE2I) Legnth of date string must be at least 11 characters"),
            std::string::npos);

  std::string text;
  CITD2S(20261122, text, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(text, "22-Nov-2026");
  CITD2S(19980101, text, status);
  EXPECT_EQ(text, "01-Jan-1998");
  CITD2S(20261322, text, status);
  EXPECT_TRUE(status);
  CITD2S(20261122, 10, text, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(CITD2S) Length of date string must be at least 11 characters"),
            std::string::npos);
  CITT2S(75309, text, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(text, "07:53:09");
  CITT2S(235959, 7, text, status);
  EXPECT_TRUE(status);

  // Today's date reads back through DATE2I.
  std::string today;
  GTDATE(today);
  DATE2I(today, day, month, year, status);
  EXPECT_FALSE(status);
  std::string again;
  CITD2S(year * 10000 + month * 100 + day, again, status);
  EXPECT_EQ(again, today);
}

}  // namespace
}  // namespace kntr::framework
