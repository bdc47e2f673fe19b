// The printed point table of the current curve, and the whole printout.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "framework/printers.h"
#include "framework/state.h"
#include "profile/block.h"
#include "profile/printout.h"
#include "support/printer_fixture.h"

namespace kntr::profile {
namespace {

std::vector<std::string> golden(const std::string& name) {
  std::ifstream file(std::string(KNTR_SOURCE_DIR) + "/tests/profile/golden/" + name);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

class PointTable : public kntr::testing::PrinterTest {
 protected:
  void SetUp() override {
    PrinterTest::SetUp();
    resetProfileBlock();
    ProfileData& p = profile();
    // Curve 1: one point of every type; curve 2: three knuckles.
    p.PRFTYP = SplineProfile;
    p.NPRCRV = 2;
    p.NPRPNT(1) = 8;
    const double xy[8][2] = {{0.0, 0.0},        {1.25, -2.5}, {12.5, 3.0},       {-0.001, 100.0},
                             {1234.6, -0.0625}, {7.0, 7.0},   {99999.0, 1.0e-7}, {-3.5, 2.0}};
    for (int j = 1; j <= 8; ++j) {
      p.PRPNTS(1, j)(1) = xy[j - 1][0];
      p.PRPNTS(1, j)(2) = xy[j - 1][1];
      p.PRPTYP(1, j) = j;
      p.PRKWGT(1, j) = 0.0;
    }
    p.PRKWGT(1, 1) = 0.5;
    p.PRKWGT(1, 2) = 0.75;  // kept by a tangent editor: not shown for type 2
    p.NPRPNT(2) = 3;
    for (int j = 1; j <= 3; ++j) {
      p.PRPNTS(2, j)(1) = 10.0 * j;
      p.PRPNTS(2, j)(2) = -1.0 * j;
      p.PRPTYP(2, j) = Knuckle;
      p.PRKWGT(2, j) = 1.0;
    }
    p.CURCRV = 1;
  }
  // The table as printed on a plain file printer, from its title to its foot.
  std::vector<std::string> printed() {
    open("");
    bool status = true;
    PRPRPN(status);
    EXPECT_FALSE(status);
    std::vector<std::string> lines = finishBody();
    while (!lines.empty() && lines.back().empty()) lines.pop_back();
    return lines;
  }
};

TEST_F(PointTable, GoldenSplineTable) {
  const std::vector<std::string> lines = printed();
  EXPECT_EQ(lines, golden("point_table_spline.txt"));
  for (std::size_t k = 2; k < lines.size(); ++k) EXPECT_EQ(lines[k].size(), 69u) << k;
}

TEST_F(PointTable, PolylineTypeColumnHasOneMinusSign) {
  profile().PRFTYP = PolylineProfile;
  profile().CURCRV = 2;
  const std::vector<std::string> lines = printed();
  ASSERT_EQ(lines.size(), 10u);
  EXPECT_EQ(lines[6], "!    1 !  1.000E+01 ! -1.000E+00 !  1.000E+00 !         -           !");
  EXPECT_EQ(lines[8], "!    3 !  3.000E+01 ! -3.000E+00 !  1.000E+00 !         -           !");
}

TEST_F(PointTable, RowsFollowTheFirstCurvesCount) {
  // The current curve has 3 points, the first slot 8: the table has 3 rows.
  profile().CURCRV = 2;
  EXPECT_EQ(printed().size(), 6u + 3u + 1u);
  // The first slot with fewer points than the current curve cuts its rows.
  profile().NPRPNT(1) = 2;
  EXPECT_EQ(printed().size(), 6u + 2u + 1u);
  profile().NPRPNT(1) = 0;
  EXPECT_EQ(printed().size(), 6u + 1u);
}

TEST_F(PointTable, TokensOfTheHeadAndRows) {
  EXPECT_EQ(
      pointTableFoot(),
      "{cya{llc{hln{hln{hln{hln{hln{hln{tup" + std::string() +
          "{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{tup"
          "{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{tup"
          "{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{tup"
          "{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln{hln"
          "{lrc");
  EXPECT_EQ(pointTableRow(1, 1),
            "{cya{vln {gre   1 {cya{vln {gre 0.000E+00 {cya{vln {gre 0.000E+00 {cya{vln"
            " {gre 5.000E-01 {cya{vln{gre Knuckle             {cya{vln");
  EXPECT_EQ(pointTableRow(1, 3),
            "{cya{vln {gre   3 {cya{vln {gre 1.250E+01 {cya{vln {gre 3.000E+00 {cya{vln"
            " {gre         - {cya{vln{gre Leading tangent     {cya{vln");
  const std::string head = pointTableHead();
  EXPECT_EQ(head.rfind("{yel{udlProfile offset point definition{udl{nwl{nwl{cya{ulc", 0), 0u);
  EXPECT_NE(head.find("{nwl{vln{yelPoint {cya{vln{yel   X-coord  {cya{vln{yel   Y-coord  {cya{vln"
                      "{yel   Knuckle  {cya{vln{yel     Point type      {cya{vln{nwl{vln"
                      "{yelnumber{cya{vln{yel     [m]    {cya{vln{yel     [m]    {cya{vln"
                      "{yel   weight   {cya{vln{yel                     {cya{vln{nwl{trg"),
            std::string::npos);
}

TEST_F(PointTable, NoCurves) {
  profile().NPRCRV = 0;
  type("\n");
  bool status = false;
  PRPRPN(status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(PRPRPN) No profile curves available!"), std::string::npos);
}

TEST_F(PointTable, ProfilePrintoutOnTheScreen) {
  // The outline page waits for RETURN, the table for its paging answer.
  type("\n\n");
  bool status = true;
  PRKNTR(status);
  EXPECT_FALSE(status);
  const std::string said = output();
  const std::size_t outline = said.find("Profile outline");
  const std::size_t table = said.find("Profile offset point definition");
  ASSERT_NE(outline, std::string::npos);
  ASSERT_NE(table, std::string::npos);
  EXPECT_LT(outline, table);
  EXPECT_NE(said.find("!    8 ! -3.500E+00 !  2.000E+00 !          - ! Trailing sheer      !\n"
                      "+------+------------+------------+------------+---------------------+"),
            std::string::npos);
  EXPECT_FALSE(inputLeft());
}

TEST_F(PointTable, ProfilePrintoutOnAFilePrinterTranslatesEveryToken) {
  open("");
  bool status = true;
  PRKNTR(status);
  EXPECT_FALSE(status);
  bool closed = true;
  framework::CLPRNT(true, closed);
  EXPECT_FALSE(closed);
  const std::string text = readFile(path("out.lst"));
  EXPECT_EQ(text.find('{'), std::string::npos);
  EXPECT_NE(text.find("Profile outline \n"), std::string::npos);
  EXPECT_NE(text.find("Number of curves .................................. :    2\n"),
            std::string::npos);
  EXPECT_NE(text.find("!    5 !  1.235E+03 ! -6.250E-02 !          - ! Both tangents       !\n"),
            std::string::npos);
}

TEST_F(PointTable, PrintoutStopsWhenTheJobBreaksOff) {
  open("");
  framework::simulateWriteFailureAfter(0);
  type("\n");
  bool status = false;
  PRKNTR(status);
  EXPECT_TRUE(status);
  const std::string said = output();
  EXPECT_NE(said.find("Attempt to write to file"), std::string::npos);
  // Nothing of the printout reaches the screen instead.
  EXPECT_EQ(said.find("Profile offset point definition"), std::string::npos);
  EXPECT_FALSE(inputLeft());
}

}  // namespace
}  // namespace kntr::profile
