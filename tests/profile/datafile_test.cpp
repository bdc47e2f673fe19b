#include "profile/datafile.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "framework/files.h"
#include "framework/projects.h"
#include "framework/state.h"
#include "profile/block.h"
#include "profile/module.h"
#include "support/scratch_directory.h"

namespace kntr::profile {
namespace {

namespace fw = framework;

// The 12 header lines with the given file version.
std::string header(int version) {
  std::string v = std::to_string(version);
  v.insert(0, 4 - std::min<std::size_t>(4, v.size()), ' ');
  std::string text = std::string(80, '*') + "\n* PROGRAM: KNTR\n* PROGRAM VERSION: 1998-0223\n";
  text += "* PROJECT: t\n* IDENTIFICATION:\n* COMPANY:\n* USER:\n";
  text += "* FILE VERSION: " + v + "\n* COMMENTS:\n* DATE: 01-Jan-2020\n* TIME: 00:00:00\n";
  return text + std::string(80, '*') + "\n";
}

bool sameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// Every field that the data file holds, compared bit for bit.
void expectFileFieldsIdentical(const ProfileData& a, const ProfileData& b) {
  EXPECT_EQ(a.PRFTYP, b.PRFTYP);
  EXPECT_TRUE(sameBits(a.SPLACC, b.SPLACC));
  ASSERT_EQ(a.NPRCRV, b.NPRCRV);
  for (int k = 1; k <= 4; ++k) EXPECT_TRUE(sameBits(a.PRBBOX(k), b.PRBBOX(k))) << k;
  for (int k = 1; k <= 2; ++k) EXPECT_TRUE(sameBits(a.PRREFP(k), b.PRREFP(k))) << k;
  for (int c = 1; c <= a.NPRCRV; ++c) {
    ASSERT_EQ(a.NPRPNT(c), b.NPRPNT(c)) << c;
    EXPECT_EQ(a.PRCLSD(c), b.PRCLSD(c)) << c;
    EXPECT_EQ(a.PRPARM(c), b.PRPARM(c)) << c;
    for (int j = 1; j <= a.NPRPNT(c); ++j) {
      const int t = a.PRPTYP(c, j);
      EXPECT_EQ(t, b.PRPTYP(c, j)) << c << "," << j;
      EXPECT_TRUE(sameBits(a.PRPNTS(c, j)(1), b.PRPNTS(c, j)(1))) << c << "," << j;
      EXPECT_TRUE(sameBits(a.PRPNTS(c, j)(2), b.PRPNTS(c, j)(2))) << c << "," << j;
      EXPECT_TRUE(sameBits(a.PRKWGT(c, j), b.PRKWGT(c, j))) << c << "," << j;
      const bool lead = t == LeadingTangent || t == BothTangents || t == EqualTangents;
      const bool trail = t == TrailingTangent || t == BothTangents;
      if (lead) {
        EXPECT_TRUE(sameBits(a.PRTANV(c, j)(1), b.PRTANV(c, j)(1)));
        EXPECT_TRUE(sameBits(a.PRTANV(c, j)(2), b.PRTANV(c, j)(2)));
        EXPECT_TRUE(sameBits(a.PRTANL(c, j)(1), b.PRTANL(c, j)(1)));
      }
      if (trail) {
        EXPECT_TRUE(sameBits(a.PRTANV(c, j)(3), b.PRTANV(c, j)(3)));
        EXPECT_TRUE(sameBits(a.PRTANV(c, j)(4), b.PRTANV(c, j)(4)));
      }
      if (trail || t == EqualTangents) {
        EXPECT_TRUE(sameBits(a.PRTANL(c, j)(2), b.PRTANL(c, j)(2)));
      }
    }
  }
}

// A full profile: 10 curves of 100 points, every point type, open and closed
// curves, and reals that need all 17 digits, tiny and huge ones, and -0.0.
// Fields the file does not hold for a type stay at their reset values.
void fillProfile(unsigned seed) {
  resetProfileBlock();
  ProfileData& p = profile();
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> uniform(-50.0, 50.0);
  auto value = [&](int k) {
    switch (k % 7) {
      case 0:
        return uniform(random) / 3.0;
      case 1:
        return std::ldexp(uniform(random), -1070);  // subnormal
      case 2:
        return uniform(random) * 1e300;
      case 3:
        return -0.0;
      case 4:
        return static_cast<double>(static_cast<int>(uniform(random)));
      default:
        return uniform(random);
    }
  };
  p.PRFTYP = SplineProfile;
  p.SPLACC = 0.1 / 3.0;
  p.NPRCRV = MaxCurves;
  p.PRBBOX(1) = -100.0 / 7.0;
  p.PRBBOX(2) = 100.0 / 7.0;
  p.PRBBOX(3) = -1e-3 / 3.0;
  p.PRBBOX(4) = 1e5 / 3.0;
  p.PRREFP(1) = value(0);
  p.PRREFP(2) = -0.0;
  int k = 0;
  for (int c = 1; c <= MaxCurves; ++c) {
    p.NPRPNT(c) = MaxCurvePoints;
    p.PRCLSD(c) = c % 2 == 0;
    p.PRPARM(c) = 1 + c % 5;
    for (int j = 1; j <= MaxCurvePoints; ++j, ++k) {
      const int t = 1 + (j + c) % 8;
      p.PRPTYP(c, j) = t;
      p.PRPNTS(c, j)(1) = value(k);
      p.PRPNTS(c, j)(2) = value(k + 3);
      if (t == Knuckle) p.PRKWGT(c, j) = j % 3 == 0 ? 1.0 : std::abs(uniform(random)) / 50.0;
      if (t == LeadingTangent || t == BothTangents || t == EqualTangents) {
        p.PRTANV(c, j)(1) = value(k + 1);
        p.PRTANV(c, j)(2) = value(k + 2);
        p.PRTANL(c, j)(1) = value(k + 4);
      }
      if (t == TrailingTangent || t == BothTangents) {
        p.PRTANV(c, j)(3) = value(k + 5);
        p.PRTANV(c, j)(4) = value(k + 6);
      }
      if (t == TrailingTangent || t == BothTangents || t == EqualTangents)
        p.PRTANL(c, j)(2) = value(k + 2);
    }
  }
}

class DataFile : public kntr::testing::ScratchTest {
 protected:
  void SetUp() override {
    ScratchTest::SetUp();
    resetProfileBlock();
    fw::program().executionMode = fw::ModeBatch;  // error waits return at once
    fw::program().SPNAME = "KNTR";
    fw::program().SPVERS = "1998-0223";
    fw::program().projectName = path("ship");
    fw::program().projectDirectory = directory().string();
    fw::program().projectBaseName = "ship";
  }
  void TearDown() override {
    fw::simulateWriteFailureAfter(-1);
    ScratchTest::TearDown();
  }

  // Reads `body` behind a header of the given version.
  bool load(const std::string& body, int version = 3, bool* loadedOut = nullptr) {
    const std::string name = path("in.KNT");
    writeFile(name, header(version) + body);
    bool loaded = false, status = false;
    GTKNTR(name, true, loaded, status);
    if (loadedOut) *loadedOut = loaded;
    return !status && loaded;
  }
  void save(const std::string& name) {
    bool status = true;
    PTKNTR(name, true, status);
    ASSERT_FALSE(status) << output();
  }
  // The text of the message "Incorrect file format detected at line ...".
  std::string formatMessage(int line) {
    std::string number = std::to_string(line);
    number.insert(0, 6 - number.size(), ' ');
    return "Incorrect file format detected at line " + number + " read from " + path("in.KNT");
  }
};

TEST_F(DataFile, RoundTripIsBitIdentical) {
  const unsigned seed = 20260122;
  SCOPED_TRACE("seed " + std::to_string(seed));
  fillProfile(seed);
  ProfileData written = profile();
  const std::string name = path("full.KNT");
  save(name);

  resetProfileBlock();
  bool loaded = false, status = true;
  GTKNTR(name, false, loaded, status);
  ASSERT_FALSE(status) << output();
  ASSERT_TRUE(loaded);
  expectFileFieldsIdentical(written, profile());
  // Apart from what a load sets, nothing else differs from the saved block.
  written.BBOXOK = true;
  written.CURCRV = 1;
  EXPECT_TRUE(written == profile());

  // Saving the loaded block gives the same data lines again.
  const std::string again = path("again.KNT");
  save(again);
  const std::vector<std::string> first = readLines(name), second = readLines(again);
  ASSERT_EQ(first.size(), second.size());
  EXPECT_TRUE(std::equal(first.begin() + 12, first.end(), second.begin() + 12));
  // 3 profile records; per curve one record, a point record per point and
  // an extra record for the types 1, 3, 4, 5 and 6.
  std::size_t expected = 12 + 3;
  for (int c = 1; c <= MaxCurves; ++c) {
    expected += 1;
    for (int j = 1; j <= MaxCurvePoints; ++j) {
      const int t = profile().PRPTYP(c, j);
      expected += (t == 2 || t == 7 || t == 8) ? 1 : 2;
    }
  }
  EXPECT_EQ(first.size(), expected);
}

TEST_F(DataFile, HeaderOfASavedFile) {
  fillProfile(7);
  const std::string name = path("h.KNT");
  save(name);
  const std::vector<std::string> lines = readLines(name);
  ASSERT_GT(lines.size(), 12u);
  for (int i = 0; i < 12; ++i) {
    ASSERT_EQ(lines[i].size(), 80u) << i;
    EXPECT_EQ(lines[i][79], '*') << i;
  }
  EXPECT_EQ(lines[7].substr(0, 20), "* FILE VERSION:    3");
  EXPECT_EQ(lines[1].substr(0, 15), "* PROGRAM: KNTR");
}

TEST_F(DataFile, BenchFilesLoadAndSaveToTheSameRecords) {
  for (const char* bench : {"square.kntr", "square-hole.kntr", "spline-lens.kntr"}) {
    const std::string source = std::string("/work/shared/bench/") + bench;
    if (!fw::fileExists(source)) GTEST_SKIP() << "no bench files here";
    SCOPED_TRACE(bench);
    resetProfileBlock();
    bool loaded = false, status = true;
    GTKNTR(source, false, loaded, status);
    ASSERT_FALSE(status) << output();
    ASSERT_TRUE(loaded);
    const std::string copy = path(bench);
    save(copy);
    const std::vector<std::string> original = readLines(source), saved = readLines(copy);
    ASSERT_EQ(original.size(), saved.size());
    for (std::size_t i = 12; i < original.size(); ++i) EXPECT_EQ(saved[i], original[i]) << i + 1;
  }
  // The lens: a spline of 24 points, knuckles at both ends of the long side.
  const ProfileData& p = profile();
  EXPECT_EQ(p.PRFTYP, SplineProfile);
  EXPECT_EQ(p.NPRCRV, 2);
  EXPECT_EQ(p.SPLACC, 0.012);
  EXPECT_EQ(p.NPRPNT(1), 24);
  EXPECT_EQ(p.NPRPNT(2), 8);
  EXPECT_TRUE(p.PRCLSD(1));
  EXPECT_EQ(p.PRPTYP(1, 13), Knuckle);
  EXPECT_EQ(p.PRKWGT(1, 13), 1.0);
  EXPECT_EQ(p.PRPNTS(1, 13)(2), 3.061616997868383e-16);
  EXPECT_EQ(p.PRPTYP(1, 2), ContinuousCurvature);
  EXPECT_TRUE(p.BBOXOK);
  EXPECT_EQ(p.CURCRV, 1);
}

TEST_F(DataFile, VersionsOtherThanThreeAreRefused) {
  const std::string body = "1 0.01 0\n0 1 0 1\n0 0\n";
  EXPECT_FALSE(load(body, 2));
  EXPECT_NE(output().find("The version of \"" + path("in.KNT") + "\" is obsolete!"),
            std::string::npos);
  EXPECT_FALSE(load(body, 4));
  EXPECT_NE(output().find("The version of \"" + path("in.KNT") + "\" is unsupported!"),
            std::string::npos);
  EXPECT_TRUE(load(body, 3));
}

TEST_F(DataFile, TooManyCurvesOrPointsAreRefusedEarly) {
  // Nothing follows record 1: the refusal comes before the next read.
  EXPECT_FALSE(load("1 0.01 11\n"));
  std::string said = output();
  EXPECT_NE(said.find("Max number of profile curves exceeded!"), std::string::npos);
  EXPECT_EQ(said.find("Incorrect file format"), std::string::npos);
  EXPECT_EQ(profile().NPRCRV, 0);

  std::string tenEmptyCurves = "1 0.01 10\n0 1 0 1\n0 0\n";
  for (int c = 0; c < 10; ++c) tenEmptyCurves += "0 F 2\n";
  EXPECT_TRUE(load(tenEmptyCurves));
  EXPECT_EQ(profile().NPRCRV, 10);

  resetProfileBlock();
  EXPECT_FALSE(load("1 0.01 1\n0 1 0 1\n0 0\n101 F 2\n"));
  said = output();
  EXPECT_NE(said.find("Max number of profile curve points exceeded!"), std::string::npos);
  EXPECT_EQ(said.find("Incorrect file format"), std::string::npos);
  EXPECT_EQ(profile().NPRPNT(1), 0);
}

TEST_F(DataFile, TypeZeroLoadsAsContinuousCurvatureWithoutExtraRecord) {
  ASSERT_TRUE(load("0 0.01 1\n0 1 0 1\n0 0\n3 F 2\n1 0 0.1 0.2\n2 1 0.3 0.4\n0.5\n3 0 0.6 0.7\n"))
      << output();
  const ProfileData& p = profile();
  EXPECT_EQ(p.PRFTYP, PolylineProfile);
  EXPECT_EQ(p.PRPTYP(1, 1), ContinuousCurvature);
  EXPECT_EQ(p.PRPTYP(1, 2), Knuckle);
  EXPECT_EQ(p.PRKWGT(1, 2), 0.5);
  EXPECT_EQ(p.PRPTYP(1, 3), ContinuousCurvature);
  EXPECT_EQ(p.PRPNTS(1, 3)(2), 0.7);
}

TEST_F(DataFile, WeightIsClearedForOtherTypes) {
  profile().PRKWGT(1, 1) = 0.75;
  ASSERT_TRUE(load("1 0.01 1\n0 1 0 1\n0 0\n1 T 2\n1 7 0.1 0.2\n"));
  EXPECT_EQ(profile().PRKWGT(1, 1), 0.0);
  EXPECT_EQ(profile().PRPTYP(1, 1), LeadingSheer);
}

TEST_F(DataFile, LineCounterOfFormatErrors) {
  const std::string start = "1 0.01 2\n0 1 0 1\n0 0\n";
  struct Case {
    std::string body;
    int line;  // the number the message gives
  };
  const std::vector<Case> cases = {
      {"1 0.01 x\n", 12},                                  // record 1
      {"1 0.01 2\n0 1 0 z\n", 13},                         // record 2
      {"1 0.01 2\n0 1 0 1\n0 q\n", 14},                    // record 3
      {start + "2 maybe 2\n", 15},                         // curve record: not counted
      {start + "3 F 2\n1 2 a 0\n", 15},                    // first point
      {start + "3 F 2\n1 2 0 0\n2 2 1 1\n3 2 x 2\n", 19},  // two plain points count four
      {start + "3 F 2\n1 1 0 0\nw\n", 17},                 // extra record counts before it is read
      {start + "3 F 2\n1 1 0 0\n1.0\n2 9 1 1\n", 17},      // type out of range
      {start + "1 F 2\n1 5 0 0\n1 0 1\n", 17},             // record ends with the file
      {start + "1 F 2\n1 2 0 0\n", 17},                    // second curve missing
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    EXPECT_FALSE(load(c.body));
    const std::string said = output();
    EXPECT_NE(said.find(formatMessage(c.line)), std::string::npos) << said;
  }
}

TEST_F(DataFile, FreeFormVariants) {
  const std::string body =
      "  1 , 1.5D-2,2\n"          // commas, D exponent
      "-1\t11\n"                  // tabs; the record goes on on the next line
      "\n"                        // a blank line between items
      "-4 4.0E+00 extra items\n"  // what a record does not need is dropped
      "0, 0\n"
      "2 .TRUE. 3\n"  // .TRUE.
      "1 1 1 2\n"     // integers for reals
      ".5\n"
      "2 6 +3.0d0 -4q0\n"  // lower-case d and q
      "0.6 0.8 2*1.25\n"   // repeat count
      "3 f 1\n"            // lower-case logical
      "1 3 1e1 1.E1\n"
      "1 0 1.0\n"
      "2 4 5 6\n"
      "0 1 0.5/ comment after a slash\n"
      "3 2 7 8\n";
  ASSERT_TRUE(load(body)) << output();
  const ProfileData& p = profile();
  EXPECT_EQ(p.SPLACC, 0.015);
  EXPECT_EQ(p.NPRCRV, 2);
  EXPECT_EQ(p.PRBBOX(1), -1.0);
  EXPECT_EQ(p.PRBBOX(2), 11.0);
  EXPECT_EQ(p.PRBBOX(3), -4.0);
  EXPECT_EQ(p.PRBBOX(4), 4.0);
  EXPECT_TRUE(p.PRCLSD(1));
  EXPECT_EQ(p.PRPARM(1), 3);
  EXPECT_EQ(p.PRPNTS(1, 1)(1), 1.0);
  EXPECT_EQ(p.PRPNTS(1, 1)(2), 2.0);
  EXPECT_EQ(p.PRKWGT(1, 1), 0.5);
  EXPECT_EQ(p.PRPTYP(1, 2), EqualTangents);
  EXPECT_EQ(p.PRPNTS(1, 2)(1), 3.0);
  EXPECT_EQ(p.PRPNTS(1, 2)(2), -4.0);
  EXPECT_EQ(p.PRTANV(1, 2)(1), 0.6);
  EXPECT_EQ(p.PRTANL(1, 2)(1), 1.25);
  EXPECT_EQ(p.PRTANL(1, 2)(2), 1.25);
  EXPECT_FALSE(p.PRCLSD(2));
  EXPECT_EQ(p.PRPARM(2), 1);
  EXPECT_EQ(p.PRPNTS(2, 1)(1), 10.0);
  EXPECT_EQ(p.PRPNTS(2, 1)(2), 10.0);
  EXPECT_EQ(p.PRTANL(2, 1)(1), 1.0);
  EXPECT_EQ(p.PRPTYP(2, 2), TrailingTangent);
  EXPECT_EQ(p.PRTANV(2, 2)(3), 0.0);
  EXPECT_EQ(p.PRTANV(2, 2)(4), 1.0);
  EXPECT_EQ(p.PRTANL(2, 2)(2), 0.5);
  EXPECT_EQ(p.PRPNTS(2, 3)(1), 7.0);
}

TEST_F(DataFile, NullItemsKeepWhatWasThere) {
  profile().PRREFP(1) = 2.5;
  profile().PRREFP(2) = -3.5;
  ASSERT_TRUE(load("1 0.01 0\n0 1 0 1\n,,\n"));
  EXPECT_EQ(profile().PRREFP(1), 2.5);
  EXPECT_EQ(profile().PRREFP(2), -3.5);
  ASSERT_TRUE(load("1 0.01 0\n0 1 0 1\n,7\n"));
  EXPECT_EQ(profile().PRREFP(1), 2.5);
  EXPECT_EQ(profile().PRREFP(2), 7.0);
  // "1*" is one null item; a comma and the end of a line make one separator.
  profile().PRBBOX(2) = 5.0;
  ASSERT_TRUE(load("1 0.01 0\n0 1* 0,\n1\n0 0\n"));
  EXPECT_EQ(profile().PRBBOX(2), 5.0);
  EXPECT_EQ(profile().PRBBOX(4), 1.0);
}

TEST_F(DataFile, MalformedItemsAreFormatErrors) {
  const std::string start = "1 0.01 1\n0 1 0 1\n0 0\n1 F 2\n1 2 ";
  for (const char* bad :
       {"1.0.0", "1e", "e5", "0x10", "nan", "inf", "1e999", "--1", "", "\"1\"", "*1", "+"}) {
    SCOPED_TRACE(bad);
    EXPECT_FALSE(load(start + bad + " 0\n"));
    EXPECT_NE(output().find("Incorrect file format detected"), std::string::npos);
  }
  // An integer item must be an integer.
  EXPECT_FALSE(load("1.0 0.01 0\n0 1 0 1\n0 0\n"));
  EXPECT_FALSE(load("1 0.01 99999999999\n0 1 0 1\n0 0\n"));
  EXPECT_FALSE(load("1 0.01 -1\n0 1 0 1\n0 0\n"));
  EXPECT_FALSE(load("1 0.01 1\n0 1 0 1\n0 0\n-2 F 2\n"));
  EXPECT_FALSE(load("1 0.01 1\n0 1 0 1\n0 0\n1 X 2\n1 2 0 0\n"));
}

TEST_F(DataFile, MissingFile) {
  bool loaded = true, status = true;
  GTKNTR(path("none.KNT"), true, loaded, status);
  EXPECT_FALSE(status);
  EXPECT_FALSE(loaded);
  EXPECT_EQ(output().find("non-existent"), std::string::npos);
  GTKNTR(path("none.KNT"), false, loaded, status);
  EXPECT_FALSE(status);
  EXPECT_FALSE(loaded);
  EXPECT_NE(output().find("\"" + path("none.KNT") + "\" is non-existent!"), std::string::npos);
}

TEST_F(DataFile, InterruptedSaveLeavesTheOldFileWhole) {
  fillProfile(11);
  const std::string name = path("keep.KNT");
  save(name);
  const std::string before = readFile(name);
  ASSERT_GT(before.size(), 1000u);

  profile().PRPNTS(3, 3)(1) = 12345.0;
  fw::simulateWriteFailureAfter(static_cast<long long>(before.size() / 2));
  bool status = false;
  PTKNTR(name, true, status);
  fw::simulateWriteFailureAfter(-1);
  EXPECT_TRUE(status);
  const std::string said = output();
  EXPECT_NE(said.find("Attempt to write to file ** " + name + " ** failed\n(Out of free space)"),
            std::string::npos)
      << said;
  EXPECT_EQ(readFile(name), before);
  EXPECT_EQ(listing(), std::vector<std::string>{"keep.KNT"});  // no temporary left behind
}

TEST_F(DataFile, StoringSaysWhereAndTemporaryFileGoesToTheProjectDirectory) {
  fillProfile(3);
  bool status = true;
  STTEMP(status);
  ASSERT_FALSE(status);
  EXPECT_NE(output().find("Storing profile-data in \"" + path("KNTR.TMP") + "\""),
            std::string::npos);
  const ProfileData written = profile();
  resetProfileBlock();
  bool loaded = false;
  GTKNTR(path("KNTR.TMP"), false, loaded, status);
  ASSERT_TRUE(loaded);
  EXPECT_NE(output().find("Loading profile data from \"" + path("KNTR.TMP") + "\""),
            std::string::npos);
  expectFileFieldsIdentical(written, profile());
}

TEST_F(DataFile, QuietSaveOfAnEmptyProfileReloadsWithTheBox) {
  ProfileData& p = profile();
  p.PRBBOX(2) = 4.0;
  p.PRBBOX(4) = 2.0;
  save(path("empty.KNT"));
  resetProfileBlock();
  bool loaded = false, status = true;
  GTKNTR(path("empty.KNT"), false, loaded, status);
  EXPECT_TRUE(loaded);
  EXPECT_TRUE(p.BBOXOK);
  EXPECT_EQ(p.NPRCRV, 0);
  EXPECT_EQ(p.PRBBOX(2), 4.0);
}

TEST_F(DataFile, ActiveFileReaderIsTheModulesLoader) {
  fw::resetActiveFiles();
  IZKNTF();
  fillProfile(5);
  bool status = true;
  STTEMP(status);
  std::string kntr;
  fw::IQISFN("KNTR", kntr, status);
  save(kntr);
  resetProfileBlock();
  const std::array<std::string, 1> ids = {"KNTR"};
  std::array<bool, 1> loaded = {false};
  fw::ISDSFA(ids, loaded, status);
  EXPECT_TRUE(loaded[0]);
  EXPECT_EQ(profile().NPRCRV, MaxCurves);
  ASSERT_EQ(fw::activeFiles().size(), 1u);
  EXPECT_EQ(fw::activeFiles()[0].name, kntr);
  EXPECT_EQ(fw::activeFiles()[0].date, fw::program().lastFileDate);
  EXPECT_EQ(fw::callbacks().backup, &STTEMP);
  fw::resetActiveFiles();
  fw::callbacks() = fw::ModuleCallbacks{};
}

}  // namespace
}  // namespace kntr::profile
