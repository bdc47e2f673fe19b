#include "framework/projects.h"

#include <gtest/gtest.h>

#include <array>
#include <regex>
#include <string>
#include <vector>

#include "framework/files.h"
#include "framework/state.h"
#include "support/scratch_directory.h"
#include "support/text_checks.h"

namespace kntr::framework {
namespace {

using kntr::testing::Contains;

// Sets the current project as the project selection does.
void setProject(const std::string& name, const std::string& directory, const std::string& base) {
  program().projectName = name;
  program().projectDirectory = directory;
  program().projectBaseName = base;
}

// A 12-line header of stars in which line `at` (0-based) is `text`.
std::string starHeader(int at, const std::string& text) {
  std::string header;
  for (int i = 0; i < HeaderLines; ++i) header += (i == at ? text : "*") + std::string("\n");
  return header;
}

class FileNames : public kntr::testing::ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    program().executionMode = ModeBatch;  // error waits return at once
    program().SPNAME = "KNTR";
    setProject("work/ship", "work", "ship");
  }
  std::string name(std::string_view kind) {
    std::string result;
    bool status = true;
    IQISFN(kind, result, status);
    EXPECT_FALSE(status) << kind;
    return result;
  }
};

TEST_F(FileNames, EveryKindInEveryNameType) {
  const struct {
    const char* kind;
    const char* shortName;
    const char* longName;  // nullptr: not checked
  } cases[] = {
      {"KNTR", "work/ship.KNT", "work/ship.KNTR"}, {"PJCT", "work/ship.PJC", "work/ship.PJCT"},
      {"TVEW", "work/ship.TVW", "work/ship.TVEW"}, {"LIST", "work/ship.LST", nullptr},
      {"PJTP", "PJCT.TMP", "PJCT.TEMP"},           {"BCKP", "work/ship.KNB", "work/ship.KNTR-BCKP"},
      {"ATTB", "work/KNTR.ATB", "work/KNTR.ATTB"}, {"TEMP", "work/KNTR.TMP", "work/KNTR.TEMP"},
  };
  for (int type : {NamesUnixShort, NamesUnixLong, NamesDos}) {
    program().fileNameType = type;
    for (const auto& c : cases) {
      const char* expected = type == NamesUnixShort ? c.shortName : c.longName;
      if (expected) {
        EXPECT_EQ(name(c.kind), expected) << type;
      }
    }
  }
  const auto extensions = [](int type, std::string_view module) {
    program().fileNameType = type;
    std::string text, backup;
    bool status = false;
    IQFEXT(module, text, backup, status);
    return status ? "failed" : text + "," + backup;
  };
  EXPECT_EQ(extensions(NamesUnixShort, "KNTR"), "KNT,KNB");
  EXPECT_EQ(extensions(NamesUnixShort, "PJCT"), "PJC,");
  EXPECT_EQ(extensions(NamesUnixLong, "KNTR"), "KNTR,");
  EXPECT_EQ(extensions(NamesUnixLong, ""), "failed");
  EXPECT_TRUE(Contains(output(),
                       "(IQISFN) Unable to return file extension for module without "
                       "identification"));
}

TEST_F(FileNames, TheHandOverFileNeverDependsOnTheProject) {
  const std::string withProject = name("PJTP");
  setProject("/far/away/other", "/far/away", "other");
  EXPECT_EQ(name("PJTP"), withProject);
  setProject("", "", "");
  EXPECT_EQ(name("PJTP"), withProject);
  EXPECT_EQ(withProject.find('/'), std::string::npos);
  // A project without a directory puts its files in the current one.
  setProject("ship", "", "ship");
  EXPECT_EQ(name("TEMP"), "KNTR.TMP");
  EXPECT_EQ(name("ATTB"), "KNTR.ATB");
  EXPECT_EQ(name("KNTR"), "ship.KNT");
}

TEST_F(FileNames, RefusalsSayWhy) {
  const auto refused = [&](std::string_view kind, int capacity, const std::string& message) {
    std::string result;
    bool status = false;
    IQISFN(kind, capacity, result, status);
    EXPECT_TRUE(status) << kind;
    EXPECT_TRUE(Contains(output(), message));
  };
  refused("    ", FileNameWidth, "(IQISFN) Unable to return file name for module without identification");
  refused("ABCD", FileNameWidth,
          "Unable to find file extensions for module with ** ABCD ** as identification");
  // "work/ship" and "KNT" need 9 + 3 + 3 characters.
  refused("KNTR", 14,
          "(IQISFN) Unable to return file name for module due to space limitations(max number "
          "of characters in file name is   15 <   14)");
  std::string result;
  bool status = true;
  IQISFN("KNTR", 15, result, status);
  EXPECT_FALSE(status);
  EXPECT_EQ(result, "work/ship.KNT");
}

TEST_F(FileNames, SplitAtTheLastSeparatorAndTruncateKeepingTheEnd) {
  const auto split = [](std::string_view full) {
    std::string directory = "?", base = "?";
    bool status = false;
    SPFLNM(full, directory, base, status);
    return status ? "failed" : directory + "|" + base;
  };
  EXPECT_EQ(split("a/b/c.KNT"), "a/b|c.KNT");
  EXPECT_EQ(split("/c"), "|c");
  EXPECT_EQ(split("dir/"), "dir|");
  EXPECT_EQ(split("name"), "|name");
  EXPECT_EQ(split("/top/x"), "/top|x");
  EXPECT_EQ(split("a/b  "), "a|b");
  EXPECT_EQ(split("   "), "failed");
  EXPECT_TRUE(Contains(output(), "(SPFLNM) Full file name length must be positive"));

  const auto cut = [](std::string_view name, int length) {
    std::string kept;
    bool status = false;
    TCFLNM(name, length, kept, status);
    return status ? "failed" : kept;
  };
  EXPECT_EQ(cut("abc", 5), "abc");
  EXPECT_EQ(cut("abcde", 5), "abcde");
  EXPECT_EQ(cut("/long/path/ship.KNT", 8), "ship.KNT");
  EXPECT_EQ(cut("abc", 0), "failed");
  EXPECT_TRUE(Contains(output(), "(TCFLNM) File name truncation length must be positive"));
  EXPECT_EQ(cut("", 10), "failed");
  EXPECT_TRUE(Contains(output(), "(TCFLNM) Unable to truncate zero length file name"));
}

TEST_F(FileNames, DatesAndTimes) {
  const auto split = [](std::string_view date) {
    int day = 0, month = 0, year = 0;
    bool status = false;
    DATE2I(date, day, month, year, status);
    return status ? "failed" : std::to_string(year * 10000 + month * 100 + day);
  };
  const auto date = [](int value, int capacity) {
    std::string text;
    bool status = false;
    CITD2S(value, capacity, text, status);
    return status ? "failed" : text;
  };
  const auto time = [](int value, int capacity) {
    std::string text;
    bool status = false;
    CITT2S(value, capacity, text, status);
    return status ? "failed" : text;
  };
  EXPECT_EQ(split("07-Aug-1998"), "19980807");
  EXPECT_EQ(split("07-aug-1998"), "failed");  // the case of the month counts
  EXPECT_EQ(split("7-Aug-98"), "failed");
  EXPECT_TRUE(Contains(output(), "(DATE2I) Legnth of date string must be at least 11 characters"));
  EXPECT_EQ(date(20261122, 11), "22-Nov-2026");
  EXPECT_EQ(date(19980101, 11), "01-Jan-1998");
  EXPECT_EQ(date(20261322, 11), "failed");
  EXPECT_EQ(date(20261122, 10), "failed");
  EXPECT_TRUE(Contains(output(), "(CITD2S) Length of date string must be at least 11 characters"));
  EXPECT_EQ(time(75309, 8), "07:53:09");
  EXPECT_EQ(time(235959, 7), "failed");
  // Today's date reads back through DATE2I.
  std::string today;
  GTDATE(today);
  EXPECT_EQ(date(std::stoi(split(today)), 11), today);
}

// --- Headers -----------------------------------------------------------------

class Headers : public kntr::testing::ScratchTest {
 protected:
  void SetUp() override {
    ScratchTest::SetUp();
    ProgramState& p = program();
    p.executionMode = ModeBatch;
    p.SPNAME = "KNTR";
    p.SPVERS = "1998-0223";
    p.projectName = "bench";
    p.projectIdentification = "Lens test";
    p.company = "Yard";
    p.user = "";
  }
  // Writes a header of `version` into `file` and returns its lines.
  std::vector<std::string> writeHeader(const std::string& file, int version) {
    int unit = 0;
    bool status = true;
    IQFUNT(unit, status);
    AtomicWriter out;
    EXPECT_EQ(out.open(unit, file), 0);
    program().workFileName = file;
    PTFLHD(out, version, status);
    EXPECT_FALSE(status);
    EXPECT_EQ(out.commit(), 0);
    return readLines(file);
  }
  FileHeader readHeader(const std::string& file, bool& status) {
    int unit = 0;
    IQFUNT(unit, status);
    TextReader in;
    EXPECT_EQ(in.open(unit, file), 0);
    FileHeader header;
    GTFLHD(in, file, header, status);
    return header;
  }
  static std::string padded(const std::string& text) {
    std::string line = text;
    line.resize(79, ' ');
    return line + "*";
  }
};

TEST_F(Headers, FixedLayoutWithStarInColumn80ReadsBack) {
  const std::string file = path("h.KNT");
  const std::vector<std::string> lines = writeHeader(file, 3);
  ASSERT_EQ(lines.size(), 12u);
  const std::string stars(80, '*');
  const std::vector<std::string> fixed = {
      stars,
      padded("* PROGRAM: KNTR"),
      padded("* PROGRAM VERSION: 1998-0223"),
      padded("* PROJECT: bench"),
      padded("* IDENTIFICATION: Lens test"),
      padded("* COMPANY: Yard"),
      padded("* USER: "),  // a blank user still closes with the star
      padded("* FILE VERSION:    3"),
      padded("* COMMENTS:")};
  EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.begin() + 9), fixed);
  EXPECT_EQ(lines[7].substr(16, 4), "   3");
  EXPECT_TRUE(
      std::regex_match(lines[9], std::regex(R"(\* DATE: \d\d-[A-Z][a-z][a-z]-\d{4} {60}\*)")))
      << lines[9];
  EXPECT_TRUE(std::regex_match(lines[10], std::regex(R"(\* TIME: \d\d:\d\d:\d\d {63}\*)")))
      << lines[10];
  EXPECT_EQ(lines[11], stars);
  for (const std::string& line : lines) EXPECT_EQ(line.size(), 80u);
  // What was written is what the state keeps as the last file date and time.
  const std::string written = program().lastFileDate;
  EXPECT_EQ(lines[9].substr(8, 11), written);
  EXPECT_EQ(lines[10].substr(8, 8), program().lastFileTime);

  // Reading it back keeps the program version as its fixed columns have it.
  program().lastFileDate.clear();
  bool status = true;
  const FileHeader header = readHeader(file, status);
  ASSERT_FALSE(status);
  EXPECT_EQ(header.program, "KNTR");
  EXPECT_EQ(header.programVersion, "ERSION: 1998-0223");
  EXPECT_EQ(header.version, 3);
  EXPECT_EQ(header.date, written);
  EXPECT_EQ(program().lastFileDate, written);
}

TEST_F(Headers, LongValueOverwritesTheStarAndIsNotCut) {
  program().projectName = std::string(69, 'p');  // "* PROJECT: " + 69 reaches column 80
  program().company = std::string(75, 'c');
  const std::vector<std::string> lines = writeHeader(path("long.KNT"), 12);
  EXPECT_EQ(lines[3], "* PROJECT: " + std::string(69, 'p'));
  EXPECT_EQ(lines[5], "* COMPANY: " + std::string(75, 'c'));
  EXPECT_EQ(lines[7].substr(16, 4), "  12");
}

TEST_F(Headers, TwoDigitVersionAndBlankFields) {
  const std::string file = path("two.KNT");
  std::string text = std::string(80, '*') + "\n";
  text += padded("* PROGRAM: ") + "\n";  // blank program
  text += padded("* PROGRAM VERSION: 2001-0101") + "\n";
  for (int i = 0; i < 4; ++i) text += padded("*") + "\n";
  text += padded("* FILE VERSION:   12") + "\n";
  text += padded("* COMMENTS:") + "\n";
  text += "* DATE:\n";  // short line: blank date
  text += padded("* TIME: 23:59:58") + "\n";
  text += std::string(80, '*') + "\n";
  writeFile(file, text);
  bool status = true;
  const FileHeader header = readHeader(file, status);
  ASSERT_FALSE(status);
  EXPECT_EQ(header.version, 12);
  EXPECT_EQ(header.program, "?");
  EXPECT_EQ(header.programVersion, "ERSION: 2001-0101");
  EXPECT_EQ(header.date, "?");
  EXPECT_EQ(header.time, "23:59:58");
}

TEST_F(Headers, ReadFailuresAndUnitsNotOpen) {
  const std::string file = path("bad.KNT");
  for (const std::string& text : {std::string(80, '*') + "\n* PROGRAM: KNTR\n",  // truncated
                                  starHeader(7, "* FILE VERSION:  x3")}) {
    writeFile(file, text);
    bool status = false;
    readHeader(file, status);
    EXPECT_TRUE(status);
    EXPECT_TRUE(Contains(output(), "Attempt to read from file ** " + file + " ** failed"));
  }
  TextReader closed;
  FileHeader header;
  bool status = false;
  GTFLHD(closed, "none", header, status);
  EXPECT_TRUE(status);
  EXPECT_TRUE(Contains(output(), "(GTFLHD) read UNIT is not open\n(unit is    0)"));
  AtomicWriter notOpen;
  PTFLHD(notOpen, 3, status);
  EXPECT_TRUE(status);
  EXPECT_TRUE(Contains(output(), "(PTFLHD) read UNIT is not open\n(unit is    0)"));
}

// --- Project file ------------------------------------------------------------

class ProjectFile : public kntr::testing::ScratchTest {
 protected:
  void SetUp() override {
    ScratchTest::SetUp();
    program().executionMode = ModeBatch;
    program().SPNAME = "KNTR";
    program().SPVERS = "1998-0223";
    setProject(path("ship"), directory().string(), "ship");
  }
  // Forgets the state and reads the project file again.
  void reload(bool& status) {
    resetProgramState();
    program().executionMode = ModeBatch;
    setProject(path("ship"), directory().string(), "ship");
    LDPJCT(status);
  }
};

TEST_F(ProjectFile, WritesTheKeysInOrderAndReadsThemBack) {
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

  p.printLevel = 3;
  p.viewSetupCode = 4;
  p.viewSetup = {0.125, 2.0, -3.0};
  p.floatFormat = 2;
  STPJCT(status);
  const ProgramState written = p;
  reload(status);
  ASSERT_FALSE(status);
  EXPECT_EQ(p.printLevel, 3);
  EXPECT_EQ(p.projectIdentification, written.projectIdentification);
  EXPECT_EQ(p.company, written.company);
  EXPECT_EQ(p.user, written.user);
  EXPECT_EQ(p.backupInterval, 30);
  EXPECT_EQ(p.viewSetupCode, 4);
  EXPECT_EQ(p.viewSetup, written.viewSetup);
  EXPECT_EQ(p.floatFormat, 2);
  EXPECT_EQ(p.weightUnit, 1);
}

TEST_F(ProjectFile, UnknownWordsAndKeysChangeNothingAndBadFilesFail) {
  writeFile(path("ship.PJC"), starHeader(7, "* FILE VERSION:    1") +
                                  "print-level=expert\n"
                                  "colour-scheme=dark\n"
                                  "no equals sign here\n"
                                  "user-identification=bo\n"
                                  "backup-interval= 12 \n");
  program().printLevel = 2;
  bool status = true;
  LDPJCT(status);
  ASSERT_FALSE(status);
  EXPECT_EQ(program().printLevel, 2);
  EXPECT_EQ(program().user, "bo");
  EXPECT_EQ(program().backupInterval, 12);

  writeFile(path("ship.PJC"), starHeader(-1, "") + "backup-interval=many\n");
  LDPJCT(status);
  EXPECT_TRUE(status);
  EXPECT_TRUE(
      Contains(output(), "Attempt to read from file ** " + path("ship.PJC") + " ** failed"));
  std::filesystem::remove(path("ship.PJC"));
  status = false;
  LDPJCT(status);
  EXPECT_TRUE(status);
  EXPECT_TRUE(Contains(output(), "Project file ** " + path("ship.PJC") + " ** does not exist"));
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
};

TEST_F(ActiveFiles, SiblingFilesAreReadForTheirDates) {
  const auto writeDated = [&](const std::string& date, const std::string& time) {
    std::string text = std::string(80, '*') + "\n* PROGRAM: TVEW\n*\n*\n*\n*\n*\n";
    text += "* FILE VERSION:    4\n* COMMENTS:\n* DATE: " + date + "\n* TIME: " + time + "\n";
    writeFile(path("ship.TVW"), text + std::string(80, '*') + "\n");
  };
  writeDated("03-Feb-2025", "10:11:12");
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
  EXPECT_EQ(name + " " + date + " " + time, path("ship.TVW") + " 03-Feb-2025 10:11:12");
  IQACFL("HULL", found, name, date, time);
  EXPECT_FALSE(found);

  // A second load updates the same entry.
  writeDated("04-Feb-2025", "08:00:00");
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
  EXPECT_TRUE(Contains(said, "(ISDSFA) No module identity for entity    2!"));
  EXPECT_TRUE(Contains(said, "Unable to load file for module with ** LIST ** as identity"));
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
  EXPECT_TRUE(Contains(output(), "Unable to register more active files\n(maximum is 24)"));
  ASSERT_EQ(activeFiles().size(), 24u);
  for (std::size_t i = 0; i < before.size(); ++i) {
    EXPECT_EQ(activeFiles()[i].identifier, before[i].identifier);
    EXPECT_EQ(activeFiles()[i].name, before[i].name);
  }
  // An entry already there is still updated.
  registerActiveFile("M105", "again", "03-Jan-2000", "02:00:00");
  EXPECT_EQ(activeFiles()[4].name, "again");
}

TEST_F(ActiveFiles, ListingAndFileInformation) {
  program().executionMode = ModeAlone;
  const std::string longName =
      "/a/very/long/directory/name/that/goes/on/and/on/and/on/for/ever/ship.KNT";
  registerActiveFile("KNTR", longName, "05-May-2025", "06:07:08");
  const std::array<std::string, 2> ids = {"KNTR", "TVEW"};
  type("\n\n");
  bool status = true;
  PRACFL(ids, status);
  EXPECT_FALSE(status);
  const std::string said = output();
  // The name keeps its last 63 characters.
  EXPECT_TRUE(Contains(
      said, "Active files\n\nKNTR file ... : " + longName.substr(longName.size() - 63) + "\n"));
  EXPECT_TRUE(Contains(said, "\nLast saved on : 05-May-2025 at 06:07:08\nTVEW file ... : None"));

  program().lastFileDate = "09-Sep-2009";
  program().lastFileTime = "";
  PRFILI();
  const std::string dots(32, '.');
  EXPECT_TRUE(Contains(output(), "File information\n\nLast date modified " + dots +
                                     " : 09-Sep-2009\nLast modified time " + dots + " :"));
}

}  // namespace
}  // namespace kntr::framework
