// File names, data file headers, the project file, active files and the
// choice of the project.
#include "framework/projects.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "framework/files.h"
#include "framework/state.h"
#include "support/checks.h"
#include "support/dialogue_fixture.h"
#include "support/scratch_directory.h"

namespace kntr::framework {
namespace {

using kntr::testing::Contains;
using Lines = std::vector<std::string>;

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
  // The name of `kind` for a buffer of `capacity`, or "failed".
  static std::string name(std::string_view kind, int capacity = FileNameWidth) {
    std::string result;
    bool status = true;
    IQISFN(kind, capacity, result, status);
    return status ? "failed" : result;
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
}

TEST_F(FileNames, TheHandOverFileIgnoresTheProjectAndNoDirectoryMeansHere) {
  const std::string withProject = name("PJTP");
  setProject("ship", "", "ship");
  EXPECT_EQ(name("PJTP") + " " + name("TEMP") + " " + name("ATTB") + " " + name("KNTR"),
            withProject + " KNTR.TMP KNTR.ATB ship.KNT");
}

TEST_F(FileNames, RefusalsSayWhy) {
  EXPECT_EQ(name("    "), "failed");
  EXPECT_EQ(name("ABCD"), "failed");
  // "work/ship" and "KNT" need 9 + 3 + 3 characters.
  EXPECT_EQ(name("KNTR", 15), "work/ship.KNT");
  EXPECT_EQ(name("KNTR", 14), "failed");
  EXPECT_TRUE(Contains(
      output(),
      {"(IQISFN) Unable to return file name for module without identification",
       "Unable to find file extensions for module with ** ABCD ** as identification",
       "(IQISFN) Unable to return file name for module due to space limitations(max number of "
       "characters in file name is   15 <   14)"}));
}

TEST_F(FileNames, SplitAtTheLastSeparator) {
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
}

TEST_F(FileNames, DatesAndTimes) {
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
  const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  for (int m = 1; m <= 12; ++m)
    EXPECT_EQ(date(20010005 + m * 100, 11), std::string("05-") + months[m - 1] + "-2001");
  EXPECT_EQ(date(20261122, 11), "22-Nov-2026");
  EXPECT_EQ(date(20261322, 11), "failed");
  EXPECT_EQ(date(20261122, 10), "failed");
  EXPECT_EQ(time(75309, 8), "07:53:09");
  EXPECT_EQ(time(235959, 7), "failed");
  EXPECT_TRUE(Contains(output(), "(CITD2S) Length of date string must be at least 11 characters"));
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
  Lines writeHeader(const std::string& file, int version) {
    int unit = 0;
    AtomicWriter out;
    EXPECT_STATUS(false, IQFUNT(unit, status));
    EXPECT_EQ(out.open(unit, file), 0);
    program().workFileName = file;
    EXPECT_STATUS(false, PTFLHD(out, version, status));
    EXPECT_EQ(out.commit(), 0);
    return readLines(file);
  }
  // Reads the header of `file`; "failed" in the program field when that failed.
  FileHeader readHeader(const std::string& file) {
    int unit = 0;
    bool status = false;
    IQFUNT(unit, status);
    TextReader in;
    EXPECT_EQ(in.open(unit, file), 0);
    FileHeader header;
    GTFLHD(in, file, header, status);
    if (status) header.program = "failed";
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
  const Lines lines = writeHeader(file, 3);
  ASSERT_EQ(lines.size(), 12u);
  const std::string stars(80, '*');
  EXPECT_EQ(Lines(lines.begin(), lines.begin() + 9),
            (Lines{stars, padded("* PROGRAM: KNTR"), padded("* PROGRAM VERSION: 1998-0223"),
                   padded("* PROJECT: bench"), padded("* IDENTIFICATION: Lens test"),
                   padded("* COMPANY: Yard"),
                   padded("* USER: "),  // a blank user still closes with the star
                   padded("* FILE VERSION:    3"), padded("* COMMENTS:")}));
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
  const FileHeader header = readHeader(file);
  EXPECT_EQ(header.program, "KNTR");
  EXPECT_EQ(header.programVersion, "ERSION: 1998-0223");
  EXPECT_EQ(header.version, 3);
  EXPECT_EQ(header.date, written);
  EXPECT_EQ(program().lastFileDate, written);
}

TEST_F(Headers, LongValueOverwritesTheStarAndTwoDigitVersionsReadBack) {
  program().projectName = std::string(69, 'p');  // "* PROJECT: " + 69 reaches column 80
  program().company = std::string(75, 'c');
  const Lines lines = writeHeader(path("long.KNT"), 12);
  EXPECT_EQ(lines[3], "* PROJECT: " + std::string(69, 'p'));
  EXPECT_EQ(lines[5], "* COMPANY: " + std::string(75, 'c'));
  EXPECT_EQ(lines[7].substr(16, 4), "  12");
  EXPECT_EQ(readHeader(path("long.KNT")).version, 12);
}

TEST_F(Headers, TruncatedOrGarbledHeadersFail) {
  const std::string file = path("bad.KNT");
  for (const std::string& text : {std::string(80, '*') + "\n* PROGRAM: KNTR\n",  // truncated
                                  starHeader(7, "* FILE VERSION:  x3")}) {
    writeFile(file, text);
    EXPECT_EQ(readHeader(file).program, "failed");
    EXPECT_TRUE(Contains(output(), "Attempt to read from file ** " + file + " ** failed"));
  }
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
  EXPECT_STATUS(false, STPJCT(7, status));
  const Lines lines = readLines(path("ship.PJC"));
  ASSERT_EQ(lines.size(), 20u);
  EXPECT_EQ(lines[7].substr(16, 4), "   7");
  EXPECT_EQ(Lines(lines.begin() + 12, lines.end()),
            (Lines{"print-level=standard", "project-identification=Hull 17",
                   "company-identification=Yard", "user-identification=anna",
                   "backup-interval=  30", "view-setup=   2, 1.500E+00,-2.500E-01, 1.000E+03",
                   "float-format=   3", "weight-units=   1"}));

  const ProgramState written = p;
  resetProgramState();
  p.executionMode = ModeBatch;
  setProject(path("ship"), directory().string(), "ship");
  EXPECT_STATUS(false, LDPJCT(status));
  EXPECT_EQ(p.printLevel, 2);
  EXPECT_EQ(p.projectIdentification + p.company + p.user, "Hull 17Yardanna");
  EXPECT_EQ(p.backupInterval, 30);
  EXPECT_EQ(p.viewSetupCode, 2);
  EXPECT_EQ(p.viewSetup, written.viewSetup);
  EXPECT_EQ(p.floatFormat, 3);
  EXPECT_EQ(p.weightUnit, 1);
}

TEST_F(ProjectFile, UnknownWordsAndKeysChangeNothingAndBadFilesFail) {
  writeFile(path("ship.PJC"), starHeader(7, "* FILE VERSION:    1") +
                                  "print-level=expert\ncolour-scheme=dark\nno equals sign here\n"
                                  "user-identification=bo\nbackup-interval= 12 \n");
  program().printLevel = 2;
  EXPECT_STATUS(false, LDPJCT(status));
  EXPECT_EQ(program().printLevel, 2);
  EXPECT_EQ(program().user, "bo");
  EXPECT_EQ(program().backupInterval, 12);

  writeFile(path("ship.PJC"), starHeader(-1, "") + "backup-interval=many\n");
  EXPECT_STATUS(true, LDPJCT(status));
  std::filesystem::remove(path("ship.PJC"));
  EXPECT_STATUS(true, LDPJCT(status));
  EXPECT_TRUE(Contains(output(), {"Attempt to read from file ** " + path("ship.PJC") + " ** failed",
                                  "Project file ** " + path("ship.PJC") + " ** does not exist"}));
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
  static std::string entry(int k) {
    const ActiveFile& a = activeFiles()[static_cast<std::size_t>(k)];
    return a.identifier + " " + a.name + " " + a.date + " " + a.time;
  }
};

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
  EXPECT_TRUE(Contains(output(), {"(ISDSFA) No module identity for entity    2!",
                                  "Unable to load file for module with ** LIST ** as identity"}));
  ASSERT_EQ(activeFiles().size(), 1u);
  EXPECT_EQ(entry(0), "KNTR " + path("ship.KNT") + " 01-Mar-2024 12:00:00");

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
  registerActiveFile("M999", "extra", "02-Jan-2000", "01:00:00");
  EXPECT_TRUE(Contains(output(), "Unable to register more active files\n(maximum is 24)"));
  ASSERT_EQ(activeFiles().size(), 24u);
  for (int i = 1; i <= MaxActiveFiles; ++i)
    EXPECT_EQ(entry(i - 1),
              "M" + std::to_string(100 + i) + " f" + std::to_string(i) + " 01-Jan-2000 00:00:00");
  // An entry already there is still updated.
  registerActiveFile("M105", "again", "03-Jan-2000", "02:00:00");
  EXPECT_EQ(entry(4), "M105 again 03-Jan-2000 02:00:00");
}

TEST_F(ProjectFile, FileInformationShowsTheLastHeadersDateAndTime) {
  program().executionMode = ModeAlone;
  program().lastFileDate = "09-Sep-2009";
  program().lastFileTime = "";
  type("\n");
  PRFILI();
  const std::string dots(32, '.');
  EXPECT_TRUE(Contains(output(), "File information\n\nLast date modified " + dots +
                                     " : 09-Sep-2009\nLast modified time " + dots + " :"));
}

// --- Choosing the project -------------------------------------------------------

class ProjectDialogue : public kntr::testing::DialogueTest, public kntr::testing::ScratchDirectory {
 protected:
  void SetUp() override {
    DialogueTest::SetUp();
    ProgramState& p = program();
    p.executionMode = ModeAlone;
    p.SPNAME = "KNTR";
    p.SPVERS = "1998-0223";
    p.projectName = "old";
    p.projectBaseName = "old";
  }
  void select(const std::string& keys, bool expectFailure = false) {
    script(keys);
    bool status = !expectFailure;
    SLPROJ(status);
    EXPECT_EQ(status, expectFailure);
    EXPECT_FALSE(inputLeft()) << "keys left over";
  }
  // Writes the project file of "hull" with the user "bo".
  void writeHull() {
    program().projectName = path("hull");
    program().projectDirectory = directory().string();
    program().user = "bo";
    program().backupInterval = 40;
    bool status = true;
    STPJCT(status);
    ASSERT_FALSE(status);
  }
};

TEST_F(ProjectDialogue, NewProjectAsksForIdentificationAndWritesTheFile) {
  program().defaultUser = "guest";
  const std::string file = path("ship.PJC");
  // RETURN for the user takes the configured default.
  select(file + "\n" + "yes\n" + "Yard\n" + "\n");
  EXPECT_EQ(program().projectName, path("ship"));
  EXPECT_EQ(program().projectDirectory, directory().string());
  EXPECT_EQ(program().projectBaseName, "ship");
  EXPECT_EQ(program().company, "Yard");
  EXPECT_EQ(program().user, "guest");
  const std::vector<std::string> lines = readLines(file);
  ASSERT_EQ(lines.size(), 20u);
  EXPECT_EQ(std::vector<std::string>(lines.begin() + 13, lines.begin() + 16),
            (std::vector<std::string>{"project-identification=", "company-identification=Yard",
                                      "user-identification=guest"}));
  EXPECT_TRUE(Contains(output(), "OK to create new project ** " + path("ship") + " ** ? (yes/no)"));
}

TEST_F(ProjectDialogue, NoOrReturnGoesBackToTheNameAndAbortGivesUp) {
  select(path("a") + "\n" + "\n" + path("b") + "\n" + "no\n" + "$\n", true);
  EXPECT_EQ(occurrences(output(), "OK to create new project"), 2);
  // The project is still the one from before.
  EXPECT_EQ(program().projectName, "old");
  EXPECT_EQ(program().projectBaseName, "old");
  EXPECT_TRUE(listing().empty());

  // The special command runs the same selection.
  IZPROJ();
  ASSERT_EQ(services().selectProject, &SLPROJ);
  script("$\n");
  EXPECT_STATUS(true, services().selectProject(status));
}

TEST_F(ProjectDialogue, ExistingProjectIsLoadedAndIsTheNextDefault) {
  writeHull();
  resetProgramState();
  program().executionMode = ModeAlone;
  // A name without the extension names the same project.
  select(path("hull") + "\n");
  EXPECT_EQ(program().projectName, path("hull"));
  EXPECT_EQ(program().user, "bo");
  EXPECT_EQ(program().backupInterval, 40);
  EXPECT_EQ(output().find("OK to create"), std::string::npos);

  program().user = "changed";
  select("\n");
  EXPECT_TRUE(Contains(output(), "(default " + path("hull.PJC") + ")"));
  EXPECT_EQ(program().user, "bo");
}

TEST_F(ProjectDialogue, IdentificationCannotBeAborted) {
  program().company = "Yard";
  script("$\n\n\nanna\n");
  EXPECT_STATUS(false, ASKIDN(status));
  EXPECT_FALSE(inputLeft());
  EXPECT_TRUE(Contains(output(), "No abort possibility"));
  EXPECT_EQ(program().company, "Yard");
  EXPECT_EQ(program().user, "anna");
}

}  // namespace
}  // namespace kntr::framework
