// The plot dialogue: the set-up menu, the medium, the paper and the file,
// the scale, and the plot file it leaves; its refusals.
#include "profile/plot.h"
#include "profile/display.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "framework/configuration.h"
#include "framework/state.h"
#include "graphics/hardcopy.h"
#include "graphics/plotstate.h"
#include "graphics/strokes.h"
#include "profile/block.h"
#include "profile/datafile.h"
#include "support/checks.h"
#include "support/dialogue_fixture.h"
#include "support/scratch_directory.h"

namespace kntr::profile {
namespace {

using kntr::testing::Contains;
using kntr::testing::ScratchDirectory;

class PlotDialogue : public kntr::testing::DialogueTest {
 protected:
  void SetUp() override {
    DialogueTest::SetUp();
    framework::resetConfiguration();
    graphics::plotTitles() = {};
    graphics::resetPlotState();
    graphics::GINIT(1);
    bool status = false;
    graphics::loadPlotFonts(status);
    ASSERT_FALSE(status) << output();
    bool loaded = false;
    GTKNTR(std::string(KNTR_SOURCE_DIR) + "/data/bench/spline-lens.kntr", false, loaded, status);
    ASSERT_TRUE(loaded && !status);
    output();
  }
  void TearDown() override {
    framework::resetConfiguration();
    DialogueTest::TearDown();
  }
  // A file plotter of `type` that has papers up to `largest`.
  static void filePlotter(const char* type, int largest) {
    framework::Configuration& c = framework::configuration();
    framework::PlotterEntry& e = c.filePlotters.entry(++c.filePlotters.count);
    e.name = "plot.ps";
    e.interface = type;
    e.maximumPaperSize = largest;
  }
  ScratchDirectory scratch;
};

// The coordinates of the PostScript records "x y mt" and "x y lt".
void extents(const std::string& text, double& width, double& height) {
  double xmin = 1e9, xmax = -1e9, ymin = 1e9, ymax = -1e9;
  static const std::regex point("\\s+(-?[0-9.]+)\\s+(-?[0-9.]+) (mt|lt)");
  for (std::sregex_iterator it(text.begin(), text.end(), point), end; it != end; ++it) {
    const double x = std::stod((*it)[1]), y = std::stod((*it)[2]);
    xmin = std::min(xmin, x), xmax = std::max(xmax, x);
    ymin = std::min(ymin, y), ymax = std::max(ymax, y);
  }
  width = xmax - xmin;
  height = ymax - ymin;
}

TEST_F(PlotDialogue, APlotFileAtAScaleOnThePaperChosen) {
  filePlotter("PostScript", 3);
  graphics::plotTitles().heading = false;  // only the box and its numbers
  const std::string file = scratch.path("lens.ps");
  // RETURN past the set-up, a refused medium (and RETURN after the error),
  // file, paper A3, the name, 1:100.
  script("\n4\n\n3\n2\n" + file + "\n100\n");
  EXPECT_STATUS(false, PLKNTR(status));
  const std::string said = output();
  EXPECT_TRUE(Contains(said, {"SETUP OF PLOT ATTRIBUTTES", "Setup of visibility of titles",
                              "/* Setup of Colors", "Output media must be either 1, 2 or 3",
                              "PAPER SIZE", "A4 (297 mm x 210 mm)", "A3 (420 mm x yyy mm)"}));
  EXPECT_FALSE(Contains(said, "A2 (xxx mm x yyy mm)"));  // beyond the device's largest
  const std::string text = ScratchDirectory::readFile(file);
  // A3 PostScript: its page and offset.
  EXPECT_TRUE(Contains(text, {"%%Dimensions: 33 68 1133 785", "showpage"}));
  // At 1:100 the box's 12 m x 8 m are 120 mm x 80 mm: the grid's frame and
  // its numbers beside it.
  double width = 0.0, height = 0.0;
  extents(text, width, height);
  const double pointsPerMm = 72.0 / 25.4;
  EXPECT_GT(width, 120.0 * pointsPerMm - 1.0);
  EXPECT_LT(width, 140.0 * pointsPerMm);
  EXPECT_GT(height, 80.0 * pointsPerMm - 1.0);
  EXPECT_LT(height, 100.0 * pointsPerMm);
  EXPECT_FALSE(inputLeft());
}

TEST_F(PlotDialogue, RefusalsAndCancels) {
  // No plotters configured: said, and the question comes again; "$" ends.
  script("\n2\n\n$\n");
  EXPECT_STATUS(false, PLKNTR(status));
  EXPECT_TRUE(Contains(output(), "No plotters available"));
  script("\n3\n\n$\n");
  EXPECT_STATUS(false, PLKNTR(status));
  EXPECT_TRUE(Contains(output(), "No files available"));
  // The colours of the picture's things, and what it shows.
  script("3\n1\n16\n\n5\n$\n4\n1\n$\n\n$\n");
  EXPECT_STATUS(false, PLKNTR(status));
  EXPECT_TRUE(Contains(output(), {"SETUP OF COLORS", "Colour number must be in [0,15]!",
                                  "VISIBILITY OF LABELS"}));
  EXPECT_EQ(displayLook().colour[ReferenceThing], 5);
  EXPECT_FALSE(displayLook().labels);
  displayLook() = DisplayLook{};
  // The titles' menu switches the heading.
  ASSERT_TRUE(graphics::plotTitles().heading);
  script("2\n1\n\n\n$\n");
  EXPECT_STATUS(false, PLKNTR(status));
  EXPECT_TRUE(Contains(output(), {"PLOT ATTRIBUTES", "Heading on plot ....", "Logo on plot ...."}));
  EXPECT_FALSE(graphics::plotTitles().heading);
  // No curves: nothing is asked.
  profile().NPRCRV = 0;
  script("\n");
  EXPECT_STATUS(true, PLKNTR(status));
  EXPECT_TRUE(Contains(output(), "(PLKNTR) No profile curves available!"));
}

TEST_F(PlotDialogue, TheTestPlotsFrameMeasuresItsSize) {
  filePlotter("PostScript", 4);
  const std::string file = scratch.path("test.ps");
  script("3\n" + file + "\n");
  EXPECT_STATUS(false, graphics::PLTSCL(status));
  double width = 0.0, height = 0.0;
  extents(ScratchDirectory::readFile(file), width, height);
  const double mmPerPoint = 25.4 / 72.0;
  EXPECT_NEAR(width * mmPerPoint, graphics::TestFrameWidthMm, 0.5);
  EXPECT_NEAR(height * mmPerPoint, graphics::TestFrameHeightMm, 0.5);
  EXPECT_FALSE(inputLeft());
}

TEST_F(PlotDialogue, CgmSaysThatThisVersionWritesNone) {
  filePlotter("CGM", 4);
  const std::string file = scratch.path("lens.cgm");
  script("\n3\n" + file + "\n0\n\n");
  EXPECT_STATUS(true, PLKNTR(status));
  EXPECT_TRUE(Contains(output(), "CGM output is not written by this version"));
  EXPECT_FALSE(framework::fileExists(file));
}

}  // namespace
}  // namespace kntr::profile
