#include "profile/printout.h"

#include <gtest/gtest.h>

#include <string>

#include "framework/state.h"
#include "profile/block.h"
#include "support/console_fixture.h"

namespace kntr::profile {
namespace {

class Outline : public kntr::testing::ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    resetProfileBlock();
    ProfileData& p = profile();
    p.NPRCRV = 2;
    p.PRREFP(1) = 1.5;
    p.PRREFP(2) = -1234.5678;
  }
  // The outline as printed, up to the blank lines that fill the page.
  std::string outline() {
    type("\n");
    bool status = true;
    PROUTL(status);
    EXPECT_FALSE(status);
    const std::string text = output();
    return text.substr(0, text.find("\n\n\n"));
  }
};

TEST_F(Outline, SplineProfileInTheDefaultFormat) {
  EXPECT_EQ(outline(),
            "Profile outline \n"
            "\n"
            "Type .............................................. : Cubic spline\n"
            "Number of curves .................................. :    2\n"
            "\n"
            "X-coordinate of reference point ................... :      1.500 [m]\n"
            "Y-coordinate of reference point ................... :  -1234.568 [m]");
}

TEST_F(Outline, PolylineProfileInTheChosenFormats) {
  profile().PRFTYP = PolylineProfile;
  framework::program().floatFormat = 2;
  std::string text = outline();
  EXPECT_NE(text.find("Type .............................................. : Polyline    \n"),
            std::string::npos);
  EXPECT_NE(text.find("reference point ................... :  1.500E+00 [m]\n"), std::string::npos);
  EXPECT_NE(text.find("reference point ................... : -1.235E+03 [m]"), std::string::npos);
  framework::program().floatFormat = 3;
  text = outline();
  EXPECT_NE(text.find("reference point ................... :  0.150E+01 [m]\n"), std::string::npos);
}

TEST_F(Outline, NoCurves) {
  profile().NPRCRV = 0;
  type("\n");
  bool status = false;
  PROUTL(status);
  EXPECT_TRUE(status);
  const std::string said = output();
  EXPECT_NE(said.find("No profile curves available!"), std::string::npos);
  EXPECT_EQ(said.find("Profile outline"), std::string::npos);
}

}  // namespace
}  // namespace kntr::profile
