// The printed profile: its outline, and the point table of the current curve.
#include "profile/printout.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "framework/state.h"
#include "profile/block.h"
#include "support/curve_builder.h"
#include "support/printer_fixture.h"

namespace kntr::profile {
namespace {

constexpr auto npos = std::string::npos;

class Printout : public kntr::testing::PrinterTest {
 protected:
  void SetUp() override {
    PrinterTest::SetUp();
    resetProfileBlock();
    ProfileData& p = profile();
    p.PRREFP(1) = 1.5;
    p.PRREFP(2) = -1234.5678;
    // Curve 1: one point of every type; curve 2: three knuckles.
    kntr::testing::addCurve({{0.0, 0.0},
                             {1.25, -2.5},
                             {12.5, 3.0},
                             {-0.001, 100.0},
                             {1234.6, -0.0625},
                             {7.0, 7.0},
                             {99999.0, 1.0e-7},
                             {-3.5, 2.0}},
                            false);
    for (int j = 1; j <= 8; ++j) p.PRPTYP(1, j) = j;
    p.PRKWGT(1, 1) = 0.5;
    p.PRKWGT(1, 2) = 0.75;  // kept by a tangent editor: not shown for type 2
    kntr::testing::addCurve({{10, -1}, {20, -2}, {30, -3}}, false, Knuckle);
    p.CURCRV = 1;
  }
  // The outline on the screen, up to the blank lines that fill the page.
  std::string outline() {
    type("\n");
    bool status = true;
    PROUTL(status);
    EXPECT_FALSE(status);
    const std::string text = output();
    return text.substr(0, text.find("\n\n\n"));
  }
  // The table as printed on a plain file printer, from its title to its foot.
  std::vector<std::string> table() {
    open("");
    bool status = true;
    PRPRPN(status);
    EXPECT_FALSE(status);
    std::vector<std::string> lines = finishBody();
    while (!lines.empty() && lines.back().empty()) lines.pop_back();
    return lines;
  }
};

TEST_F(Printout, OutlineInTheChosenFormats) {
  EXPECT_EQ(outline(),
            "Profile outline \n"
            "\n"
            "Type .............................................. : Cubic spline\n"
            "Number of curves .................................. :    2\n"
            "\n"
            "X-coordinate of reference point ................... :      1.500 [m]\n"
            "Y-coordinate of reference point ................... :  -1234.568 [m]");
  profile().PRFTYP = PolylineProfile;
  framework::program().floatFormat = 2;
  std::string text = outline();
  EXPECT_NE(text.find("Type .............................................. : Polyline    \n"),
            npos);
  EXPECT_NE(text.find("reference point ................... :  1.500E+00 [m]\n"), npos);
  EXPECT_NE(text.find("reference point ................... : -1.235E+03 [m]"), npos);
  framework::program().floatFormat = 3;
  text = outline();
  EXPECT_NE(text.find("reference point ................... :  0.150E+01 [m]\n"), npos);
}

TEST_F(Printout, NothingToPrintWithoutCurves) {
  profile().NPRCRV = 0;
  type("\n\n");
  bool status = false;
  PROUTL(status);
  EXPECT_TRUE(status);
  const std::string said = output();
  EXPECT_NE(said.find("No profile curves available!"), npos);
  EXPECT_EQ(said.find("Profile outline"), npos);
  status = false;
  PRPRPN(status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(PRPRPN) No profile curves available!"), npos);
  EXPECT_FALSE(inputLeft());
}

TEST_F(Printout, GoldenSplineTable) {
  std::ifstream file(std::string(KNTR_SOURCE_DIR) + "/tests/profile/golden/point_table_spline.txt");
  std::vector<std::string> golden;
  for (std::string line; std::getline(file, line);) golden.push_back(line);
  const std::vector<std::string> lines = table();
  EXPECT_EQ(lines, golden);
  for (std::size_t k = 2; k < lines.size(); ++k) EXPECT_EQ(lines[k].size(), 69u) << k;
  // What only a terminal shows: the corners and joints of the rules, all
  // "+" in a file.
  std::string joints;
  for (const std::string& text : {pointTableHead(), pointTableFoot()}) {
    for (std::size_t at = text.find('{'); at != npos; at = text.find('{', at + 1)) {
      const std::string token = text.substr(at, 4);
      if (std::string("{ulc{urc{llc{lrc{tdn{tup{trg{tlf{crs").find(token) != npos) joints += token;
    }
  }
  EXPECT_EQ(joints, "{ulc{tdn{tdn{tdn{tdn{urc{trg{crs{crs{crs{crs{tlf{llc{tup{tup{tup{tup{lrc");
}

TEST_F(Printout, PolylineRowsFollowTheFirstCurvesCount) {
  // A polyline's type column has one minus sign. The current curve has 3
  // points, the first slot 8: the table has 3 rows.
  profile().PRFTYP = PolylineProfile;
  profile().CURCRV = 2;
  const std::vector<std::string> lines = table();
  ASSERT_EQ(lines.size(), 6u + 3u + 1u);
  EXPECT_EQ(lines[6], "!    1 !  1.000E+01 ! -1.000E+00 !  1.000E+00 !         -           !");
  EXPECT_EQ(lines[8], "!    3 !  3.000E+01 ! -3.000E+00 !  1.000E+00 !         -           !");
  // The first slot with fewer points than the current curve cuts its rows.
  profile().NPRPNT(1) = 2;
  EXPECT_EQ(table().size(), 6u + 2u + 1u);
  profile().NPRPNT(1) = 0;
  EXPECT_EQ(table().size(), 6u + 1u);
}

TEST_F(Printout, PrintoutStopsWhenTheJobBreaksOff) {
  open("");
  framework::simulateWriteFailureAfter(0);
  type("\n");
  bool status = false;
  PRKNTR(status);
  EXPECT_TRUE(status);
  const std::string said = output();
  EXPECT_NE(said.find("Attempt to write to file"), npos);
  // Nothing of the printout reaches the screen instead.
  EXPECT_EQ(said.find("Profile offset point definition"), npos);
  EXPECT_FALSE(inputLeft());
}

}  // namespace
}  // namespace kntr::profile
