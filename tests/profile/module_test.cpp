#include "profile/module.h"

#include <gtest/gtest.h>

#include "graphics/plotstate.h"
#include "profile/block.h"
#include "profile/datafile.h"
#include "support/console_fixture.h"
#include "support/dialogue_fixture.h"

namespace kntr::profile {
namespace {

TEST(ProfileReset, ResetPutsEveryFieldAtItsDefaultAndKeepsTheBox) {
  resetProfileBlock();
  ProfileData& p = profile();
  p.PRBBOX = Array1<double, 4>{{0.0, 20.0, -5.0, 5.0}};
  ProfileData expected = p;
  for (int c = 1; c <= MaxCurves; ++c) expected.PRPARM(c) = ChordLength;

  p.NPRCRV = 3;
  p.PRFTYP = PolylineProfile;
  p.PRPARM(7) = Foley;
  p.BBOXOK = p.SNAPOK = p.HLPLOK = p.MARKOK = p.MODFLG = true;
  p.CURCRV = 2;
  p.CURPNT = 5;
  p.HILSEG = Array1<int, 2>{{3, 4}};
  p.FRLOCL = false;
  p.FRRSTR = true;
  p.FRRDST = 7.0;
  p.FRMITR = 9;
  p.MESHON = p.MESHAU = p.MESHLP = p.SHOWIP = p.SHOWCP = true;
  p.SHOWLS = p.SHOWGR = false;
  p.MESHQL = 0.5;
  p.MESHDN = 10;
  bool status = true;
  RSKNTR(status);
  EXPECT_FALSE(status);
  EXPECT_DOUBLE_EQ(p.SPLACC, 0.02);  // follows the larger side of the box
  expected.SPLACC = p.SPLACC;
  EXPECT_TRUE(p == expected);
  EXPECT_EQ(p.MESHQL, 0.85);
  EXPECT_EQ(p.MESHDN, 1000);
}

TEST(ProfileReset, CoincidenceIsStrictInEachTest) {
  resetProfileBlock();
  profile().SPLACC = 0.01;
  EXPECT_TRUE(coincident(1.0, 1.0, 1.005, 1.005));
  EXPECT_FALSE(coincident(1.0, 1.0, 1.01, 1.0));     // X difference not below
  EXPECT_FALSE(coincident(1.0, 1.0, 1.008, 1.008));  // distance 0.0113 not below
  profile().SPLACC = 0.0;
  EXPECT_FALSE(coincident(1.0, 1.0, 1.0, 1.0));  // no box yet: nothing coincides
}

TEST(MainMenu, RowsShowTheirStateAndKeepTheirSpelling) {
  resetProfileBlock();
  auto rows = mainMenuRows();
  EXPECT_EQ(rows[0], "Input bounding box");
  EXPECT_EQ(rows[3], "( Manipulate profile)");
  EXPECT_EQ(rows[5], "( Print profile )");
  EXPECT_EQ(rows[8], "Setup{NWM");
  EXPECT_EQ(rows[11], "EXIT");
  profile().BBOXOK = true;
  rows = mainMenuRows();
  EXPECT_EQ(rows[0], "Modify bounding box");
  EXPECT_EQ(rows[1], "Key-in profile");
  EXPECT_EQ(rows[6], "( Plot profile )");
  profile().NPRCRV = 1;
  rows = mainMenuRows();
  EXPECT_EQ(rows[5], "Print profile");
  EXPECT_EQ(rows[6], "Plot profile");
}

TEST(PlotScale, TheViewShowsTheBox) {
  graphics::resetPlotState();
  resetProfileBlock();
  profile().PRBBOX = Array1<double, 4>{{-1.0, 11.0, -4.0, 4.0}};
  bool status = true;
  SCKNTR(status);
  EXPECT_FALSE(status);
  double value = 0.0;
  for (const auto& [name, expected] : {std::pair{"xaxmin", -1.0}, std::pair{"xaxmax", 11.0},
                                       std::pair{"yaxmin", -4.0}, std::pair{"yaxmax", 4.0}}) {
    graphics::GINQRL(name, value, status);
    EXPECT_EQ(value, expected) << name;
  }
}

// A cancelled box question is no failure: the box counts as given and the
// data as modified, as after an answer.
using BoxRow = kntr::testing::DialogueTest;

TEST_F(BoxRow, CancelledBoxQuestionStillMarksTheBoxAndTheData) {
  resetProfileBlock();
  resize(80, 24);
  framework::program().SPNAME = "KNTR";
  framework::program().SPVERS = "1998-0223";
  IZKNTF();
  type("1\n$\n9\nyes\n");
  bool status = true;
  MNKNTR(status);
  EXPECT_FALSE(status);
  EXPECT_TRUE(profile().BBOXOK);
  EXPECT_TRUE(profile().MODFLG);
  EXPECT_NE(output().find("WITHOUT storing modified data"), std::string::npos);
}

using Limits = kntr::testing::ConsoleTest;

TEST_F(Limits, LimitsPageNamesBothLimits) {
  type("\n");
  bool status = true;
  PRMLIM(status);
  EXPECT_FALSE(status);
  const std::string shown = output();
  EXPECT_NE(shown.find(
                "Module limitations\n\nMax number of profile curves ...................... :   10\n"
                "Max number of profile curves points ............... :  100\n"),
            std::string::npos)
      << shown;
}

}  // namespace
}  // namespace kntr::profile
