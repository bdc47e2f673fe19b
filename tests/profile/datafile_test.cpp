#include "profile/datafile.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "framework/files.h"
#include "framework/state.h"
#include "profile/block.h"
#include "support/scratch_directory.h"

namespace kntr::profile {
namespace {

namespace fw = framework;
using A2 = Array1<double, 2>;
using A4 = Array1<double, 4>;

// The 12 header lines with the given (one-digit) file version.
std::string header(int version) {
  return std::string(80, '*') + "\n* PROGRAM: KNTR\n* PROGRAM VERSION: 1998-0223\n* PROJECT: t\n" +
         "* IDENTIFICATION:\n* COMPANY:\n* USER:\n* FILE VERSION:    " + std::to_string(version) +
         "\n* COMMENTS:\n* DATE: 01-Jan-2020\n* TIME: 00:00:00\n" + std::string(80, '*') + "\n";
}

// Whether a point of this type has a record after its own.
bool hasExtraRecord(int type) {
  return type == Knuckle || (type >= LeadingTangent && type <= EqualTangents);
}

// The bits of every real the file holds, so that -0.0 and 0.0 differ.
// Fields a type does not hold are compared too: they stay at their reset
// values on both sides.
std::vector<std::uint64_t> realBits(const ProfileData& p) {
  std::vector<std::uint64_t> bits;
  auto add = [&](double v) { bits.push_back(std::bit_cast<std::uint64_t>(v)); };
  add(p.SPLACC);
  for (int k = 1; k <= 4; ++k) add(p.PRBBOX(k));
  for (int k = 1; k <= 2; ++k) add(p.PRREFP(k));
  for (int c = 1; c <= p.NPRCRV; ++c) {
    for (int j = 1; j <= p.NPRPNT(c); ++j) {
      for (int k = 1; k <= 2; ++k) add(p.PRPNTS(c, j)(k));
      add(p.PRKWGT(c, j));
      for (int k = 1; k <= 4; ++k) add(p.PRTANV(c, j)(k));
      for (int k = 1; k <= 2; ++k) add(p.PRTANL(c, j)(k));
    }
  }
  return bits;
}

// A full profile: 10 curves of 100 points, every point type, open and closed
// curves, and reals that need all 17 digits, subnormal and huge ones, and
// -0.0. Only the fields the file holds for a type are set.
void fillProfile(unsigned seed) {
  resetProfileBlock();
  ProfileData& p = profile();
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> uniform(-50.0, 50.0);
  // By k: a third, a subnormal, a huge value, -0.0, an integer, a plain one.
  auto value = [&](int k) {
    const double u = uniform(random);
    const double kinds[] = {u / 3.0, std::ldexp(u, -1070), u * 1e300, -0.0, std::trunc(u), u};
    return kinds[std::min(k % 7, 5)];
  };
  p.SPLACC = 0.1 / 3.0;
  p.NPRCRV = MaxCurves;
  p.PRBBOX = A4{{-100.0 / 7.0, 100.0 / 7.0, -1e-3 / 3.0, 1e5 / 3.0}};
  p.PRREFP = A2{{value(0), -0.0}};
  int k = 0;
  for (int c = 1; c <= MaxCurves; ++c) {
    p.NPRPNT(c) = MaxCurvePoints;
    p.PRCLSD(c) = c % 2 == 0;
    p.PRPARM(c) = 1 + c % 5;
    for (int j = 1; j <= MaxCurvePoints; ++j, ++k) {
      const int t = 1 + (j + c) % 8;
      p.PRPTYP(c, j) = t;
      p.PRPNTS(c, j) = A2{{value(k), value(k + 3)}};
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
      if (t >= TrailingTangent && t <= EqualTangents) p.PRTANL(c, j)(2) = value(k + 2);
    }
  }
}

class DataFile : public kntr::testing::ScratchTest {
 protected:
  void SetUp() override {
    ScratchTest::SetUp();
    resetProfileBlock();
    fw::program().executionMode = fw::ModeBatch;  // an error waits for no RETURN
    fw::program().SPNAME = "KNTR";
    fw::program().SPVERS = "1998-0223";
    fw::program().projectName = path("ship");
  }
  void TearDown() override {
    fw::simulateWriteFailureAfter(-1);
    ScratchTest::TearDown();
  }

  // True when `name` was read whole and without failure.
  bool read(const std::string& name, bool quiet = false) {
    bool loaded = false, status = false;
    GTKNTR(name, quiet, loaded, status);
    return !status && loaded;
  }
  // Reads `body` behind a header of the given version.
  bool load(const std::string& body, int version = 3) {
    writeFile(path("in.KNT"), header(version) + body);
    return read(path("in.KNT"), true);
  }
  void save(const std::string& name) {
    bool status = true;
    PTKNTR(name, true, status);
    ASSERT_FALSE(status) << output();
  }
  bool said(const std::string& text) { return output().find(text) != std::string::npos; }
};

TEST_F(DataFile, FullProfileRoundTripIsBitIdenticalAndAnInterruptedSaveKeepsTheFile) {
  const unsigned seed = 20260122;
  SCOPED_TRACE("seed " + std::to_string(seed));
  fillProfile(seed);
  ProfileData written = profile();
  const std::string name = path("full.KNT");
  save(name);
  resetProfileBlock();
  ASSERT_TRUE(read(name)) << output();
  EXPECT_TRUE(realBits(written) == realBits(profile()));
  // Apart from what a load sets, nothing else differs from the saved block.
  written.BBOXOK = true;
  written.CURCRV = 1;
  EXPECT_TRUE(written == profile());

  // Saving the loaded block gives the same records again; their number shows
  // which types carry a second record.
  save(path("again.KNT"));
  const std::vector<std::string> first = readLines(name), second = readLines(path("again.KNT"));
  ASSERT_EQ(first.size(), second.size());
  EXPECT_EQ(first[7].substr(0, 20), "* FILE VERSION:    3");
  EXPECT_TRUE(std::equal(first.begin() + 12, first.end(), second.begin() + 12));
  std::size_t expected = 12 + 3 + MaxCurves;
  for (int c = 1; c <= MaxCurves; ++c) {
    for (int j = 1; j <= MaxCurvePoints; ++j)
      expected += hasExtraRecord(written.PRPTYP(c, j)) ? 2 : 1;
  }
  EXPECT_EQ(first.size(), expected);

  // A save that breaks off half way leaves the file as it was.
  const std::string before = readFile(name);
  profile().PRPNTS(3, 3)(1) = 12345.0;
  fw::simulateWriteFailureAfter(static_cast<long long>(before.size() / 2));
  bool status = false;
  PTKNTR(name, true, status);
  fw::simulateWriteFailureAfter(-1);
  EXPECT_TRUE(status);
  EXPECT_TRUE(said("Attempt to write to file ** " + name + " ** failed\n(Out of free space)"));
  EXPECT_EQ(readFile(name), before);
  EXPECT_EQ(listing().size(), 2u);  // no temporary left behind
}

TEST_F(DataFile, VersionsOtherThanThreeAreRefused) {
  const std::string body = "1 0.01 0\n0 1 0 1\n0 0\n";
  EXPECT_FALSE(load(body, 2));
  EXPECT_TRUE(said("The version of \"" + path("in.KNT") + "\" is obsolete!"));
  EXPECT_FALSE(load(body, 4));
  EXPECT_TRUE(said("The version of \"" + path("in.KNT") + "\" is unsupported!"));
  EXPECT_TRUE(load(body, 3));
}

TEST_F(DataFile, TooManyCurvesOrPointsAreRefusedEarly) {
  // Nothing follows record 1: the refusal comes before the next read.
  EXPECT_FALSE(load("1 0.01 11\n"));
  std::string out = output();
  EXPECT_NE(out.find("Max number of profile curves exceeded!"), std::string::npos);
  EXPECT_EQ(out.find("Incorrect file format"), std::string::npos);
  EXPECT_EQ(profile().NPRCRV, 0);

  EXPECT_FALSE(load("1 0.01 1\n0 1 0 1\n0 0\n101 F 2\n"));
  out = output();
  EXPECT_NE(out.find("Max number of profile curve points exceeded!"), std::string::npos);
  EXPECT_EQ(out.find("Incorrect file format"), std::string::npos);
  EXPECT_EQ(profile().NPRPNT(1), 0);
}

TEST_F(DataFile, LineCounterOfFormatErrors) {
  const std::string start = "1 0.01 2\n0 1 0 1\n0 0\n";
  std::vector<std::pair<std::string, int>> cases = {
      // the file and the line the message gives
      {"1 0.01 x\n", 12},                                  // record 1
      {"1 0.01 2\n0 1 0 z\n", 13},                         // record 2
      {"1 0.01 2\n0 1 0 1\n0 q\n", 14},                    // record 3
      {start + "2 maybe 2\n", 15},                         // curve record: not counted
      {start + "3 F 2\n1 2 0 0\n2 2 1 1\n3 2 x 2\n", 19},  // two plain points count four
      {start + "3 F 2\n1 1 0 0\nw\n", 17},                 // extra record counts before it is read
      {start + "3 F 2\n1 1 0 0\n1.0\n2 9 1 1\n", 17},      // type out of range
      {start + "1 F 2\n1 5 0 0\n1 0 1\n", 17},             // record ends with the file
      {start + "1 F 2\n1 2 0 0\n", 17},                    // second curve missing
  };
  // Malformed reals in the first point.
  for (const char* real :
       {"a", "1.0.0", "1e", "e5", "0x10", "nan", "inf", "1e999", "--1", "", "\"1\"", "*1", "+"})
    cases.emplace_back(start + "3 F 2\n1 2 " + real + " 0\n", 15);
  for (const auto& [body, line] : cases) {
    SCOPED_TRACE(body);
    EXPECT_FALSE(load(body));
    std::string number = std::to_string(line);
    number.insert(0, 6 - number.size(), ' ');
    const std::string out = output();
    EXPECT_NE(out.find("Incorrect file format detected at line " + number + " read from " +
                       path("in.KNT")),
              std::string::npos)
        << out;
  }
  // Integers that are not, counts out of range or negative, a bad logical.
  for (const std::string& body : std::vector<std::string>{
           "1.0 0.01 0\n0 1 0 1\n0 0\n", "1 0.01 99999999999\n0 1 0 1\n0 0\n",
           "1 0.01 -1\n0 1 0 1\n0 0\n", start + "-2 F 2\n", start + "1 X 2\n1 2 0 0\n"}) {
    SCOPED_TRACE(body);
    EXPECT_FALSE(load(body));
    EXPECT_TRUE(said("Incorrect file format detected"));
  }
}

TEST_F(DataFile, FreeFormVariants) {
  // Values a null item, a repeat or a slash leave as they were.
  ProfileData& p = profile();
  p.PRBBOX(2) = 5.0;
  p.PRREFP(1) = 2.5;
  p.PRTANV(1, 2)(2) = 0.8;
  p.PRTANL(2, 2)(2) = 0.5;
  p.PRKWGT(2, 3) = 0.75;  // only a knuckle keeps a weight
  const std::string body =
      "  0 , 1.5D-2,2\n"       // commas, D exponent
      "-1\t1*\n"               // a tab; one null item; the record goes on on the next line
      "\n"                     // a blank line between items
      "-4,\n"                  // a comma and the end of a line make one separator
      "4.0E+00 extra items\n"  // what a record does not need is dropped
      ",7\n"                   // a leading comma: a null item
      "2 .TRUE. 3\n"           // .TRUE.
      "1 1 1 2\n"              // integers for reals
      ".5\n"
      "2 6 +3.0d0 -4q0\n"  // lower-case d and q
      "0.6,,2*1.25\n"      // two commas: a null item; a repeat count
      "3 f 1\n"            // lower-case logical
      "1 3 1e1 1.E1\n"
      "1 0 1.0\n"
      "2 4 5 6\n"
      "0 1/ 9 after a slash\n"  // a slash ends the record
      "3 0 7 8\n";              // type 0 reads as 2, with no extra record
  ASSERT_TRUE(load(body)) << output();
  EXPECT_EQ(p.PRFTYP, PolylineProfile);
  EXPECT_EQ(p.SPLACC, 0.015);
  EXPECT_EQ(p.NPRCRV, 2);
  EXPECT_EQ(p.PRBBOX, (A4{{-1, 5, -4, 4}}));
  EXPECT_EQ(p.PRREFP, (A2{{2.5, 7}}));
  EXPECT_TRUE(p.PRCLSD(1));
  EXPECT_EQ(p.PRPARM(1), 3);
  EXPECT_EQ(p.PRPNTS(1, 1), (A2{{1, 2}}));
  EXPECT_EQ(p.PRKWGT(1, 1), 0.5);
  EXPECT_EQ(p.PRPTYP(1, 2), EqualTangents);
  EXPECT_EQ(p.PRPNTS(1, 2), (A2{{3, -4}}));
  EXPECT_EQ(p.PRTANV(1, 2), (A4{{0.6, 0.8, 0, 0}}));
  EXPECT_EQ(p.PRTANL(1, 2), (A2{{1.25, 1.25}}));
  EXPECT_FALSE(p.PRCLSD(2));
  EXPECT_EQ(p.PRPARM(2), 1);
  EXPECT_EQ(p.PRPNTS(2, 1), (A2{{10, 10}}));
  EXPECT_EQ(p.PRTANL(2, 1)(1), 1.0);
  EXPECT_EQ(p.PRPTYP(2, 2), TrailingTangent);
  EXPECT_EQ(p.PRTANV(2, 2), (A4{{0, 0, 0, 1}}));
  EXPECT_EQ(p.PRTANL(2, 2)(2), 0.5);
  EXPECT_EQ(p.PRPNTS(2, 3), (A2{{7, 8}}));
  EXPECT_EQ(p.PRPTYP(2, 3), ContinuousCurvature);
  EXPECT_EQ(p.PRKWGT(2, 3), 0.0);
}

}  // namespace
}  // namespace kntr::profile
