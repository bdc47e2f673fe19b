#include "profile/module.h"

#include <gtest/gtest.h>

#include "graphics/plotstate.h"
#include "profile/block.h"
#include "support/console_fixture.h"

namespace kntr::profile {
namespace {

TEST(ProfileReset, ResetPutsEveryFieldAtItsDefault) {
  resetProfileBlock();
  ProfileData& p = profile();
  p.NPRCRV = 3;
  p.PRFTYP = PolylineProfile;
  p.PRPARM(7) = Foley;
  p.BBOXOK = p.SNAPOK = p.HLPLOK = p.MARKOK = p.MODFLG = true;
  p.CURCRV = 2;
  p.CURPNT = 5;
  p.HILSEG(1) = 3;
  p.FRLOCL = false;
  p.FRRSTR = true;
  p.FRRDST = 7.0;
  p.FRMITR = 9;
  p.MESHON = p.MESHAU = p.MESHLP = p.SHOWIP = p.SHOWCP = true;
  p.SHOWLS = p.SHOWGR = false;
  p.MESHQL = 0.5;
  p.MESHDN = 10;
  p.PRBBOX(1) = 0.0;
  p.PRBBOX(2) = 20.0;
  p.PRBBOX(3) = -5.0;
  p.PRBBOX(4) = 5.0;
  bool status = true;
  RSKNTR(status);
  EXPECT_FALSE(status);
  EXPECT_EQ(p.NPRCRV, 0);
  EXPECT_EQ(p.PRFTYP, SplineProfile);
  for (int c = 1; c <= MaxCurves; ++c) EXPECT_EQ(p.PRPARM(c), ChordLength);
  EXPECT_FALSE(p.BBOXOK || p.SNAPOK || p.HLPLOK || p.MARKOK || p.MODFLG);
  EXPECT_EQ(p.CURCRV, 0);
  EXPECT_EQ(p.CURPNT, 0);
  EXPECT_EQ(p.HILSEG(1), 0);
  EXPECT_TRUE(p.FRLOCL);
  EXPECT_FALSE(p.FRRSTR);
  EXPECT_EQ(p.FRRDST, 1.0);
  EXPECT_EQ(p.FRMITR, 1);
  EXPECT_FALSE(p.MESHON || p.MESHAU || p.MESHLP || p.SHOWIP || p.SHOWCP);
  EXPECT_TRUE(p.SHOWLS && p.SHOWGR);
  EXPECT_EQ(p.MESHQL, 0.85);
  EXPECT_EQ(p.MESHDN, 1000);
  // The accuracy follows the larger side of the box.
  EXPECT_DOUBLE_EQ(p.SPLACC, 0.02);
}

TEST(ProfileReset, CoincidenceIsStrictInEachTest) {
  resetProfileBlock();
  profile().SPLACC = 0.01;
  EXPECT_TRUE(coincident(1.0, 1.0, 1.005, 1.005));
  EXPECT_FALSE(coincident(1.0, 1.0, 1.01, 1.0));       // X difference not below
  EXPECT_FALSE(coincident(1.0, 1.0, 1.008, 1.008));    // distance 0.0113 not below
  profile().SPLACC = 0.0;
  EXPECT_FALSE(coincident(1.0, 1.0, 1.0, 1.0));        // no box yet: nothing coincides
}

TEST(MainMenu, RowsShowTheirStateAndKeepTheirSpelling) {
  resetProfileBlock();
  auto rows = mainMenuRows();
  EXPECT_EQ(rows[0], "Input bounding box");
  EXPECT_EQ(rows[1], "( Key-in profile )");
  EXPECT_EQ(rows[3], "( Manipulate profile)");
  EXPECT_EQ(rows[4], "");
  EXPECT_EQ(rows[5], "( Print profile )");
  EXPECT_EQ(rows[8], "Setup{NWM");
  EXPECT_EQ(rows[11], "EXIT");
  profile().BBOXOK = true;
  rows = mainMenuRows();
  EXPECT_EQ(rows[0], "Modify bounding box");
  EXPECT_EQ(rows[3], "Manipulate profile");
  EXPECT_EQ(rows[6], "( Plot profile )");
  profile().NPRCRV = 1;
  rows = mainMenuRows();
  EXPECT_EQ(rows[5], "Print profile");
  EXPECT_EQ(rows[6], "Plot profile");
}

TEST(PlotScale, BoxScaleKeepsEqualUnitsOnBothAxes) {
  graphics::resetPlotState();
  resetProfileBlock();
  ProfileData& p = profile();
  p.PRBBOX(1) = -1.0;
  p.PRBBOX(2) = 11.0;
  p.PRBBOX(3) = -4.0;
  p.PRBBOX(4) = 4.0;
  bool status = true;
  SCKNTR(status);
  EXPECT_FALSE(status);
  double value = 0.0;
  graphics::GINQRL("xaxmin", value, status);
  EXPECT_EQ(value, -1.0);
  graphics::GINQRL("yaxmax", value, status);
  EXPECT_EQ(value, 4.0);
  // The plot rectangle has the surface's aspect and contains the box.
  const auto& s = graphics::plotState();
  const double width = s.plot.xmax - s.plot.xmin;
  const double height = s.plot.ymax - s.plot.ymin;
  EXPECT_NEAR(height / width, s.asprto, 1e-12);
  EXPECT_LE(s.margin.xmin, -1.0 + 1e-12);
  EXPECT_GE(s.margin.xmax, 11.0 - 1e-12);
  EXPECT_LE(s.margin.ymin, -4.0 + 1e-12);
  EXPECT_GE(s.margin.ymax, 4.0 - 1e-12);
}

using Limits = kntr::testing::ConsoleTest;

TEST_F(Limits, LimitsPageNamesBothLimits) {
  type("\n");
  bool status = true;
  PRMLIM(status);
  EXPECT_FALSE(status);
  const std::string shown = output();
  EXPECT_NE(shown.find("Module limitations\n\nMax number of profile curves ...................... :   10\n"
                       "Max number of profile curves points ............... :  100\n"),
            std::string::npos)
      << shown;
}

}  // namespace
}  // namespace kntr::profile
