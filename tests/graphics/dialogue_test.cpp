#include "graphics/dialogue.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "framework/input.h"
#include "framework/menus.h"
#include "framework/state.h"
#include "graphics/view.h"
#include "platform/window.h"
#include "support/checks.h"
#include "support/dialogue_fixture.h"
#include "support/scratch_directory.h"

namespace kntr::graphics {
namespace {

using kntr::testing::Contains;

int redraws = 0;
void countingClient(bool erase, bool, bool& status) {
  status = false;
  if (!erase) ++redraws;
}

// The graphic dialogue on the headless window, scaled to a 10 x 5 box.
class GraphicDialogue : public kntr::testing::DialogueTest {
 protected:
  void SetUp() override {
    DialogueTest::SetUp();
    ::unsetenv("DISPLAY");
    resetPlotState();
    resetViewState();
    redraws = 0;
    bool failed = false;
    OPNWIN(countingClient, failed);
    ASSERT_FALSE(failed);
    G2SCLT(0.0, 10.0, 0.0, 5.0);
    GCLIPM("digit");
  }
  void TearDown() override {
    CLSWIN();
    DialogueTest::TearDown();
  }
  // Asks one question with the lines of `keys` to answer it.
  GraphicAnswer ask(const std::string& keys, int expected = 2, bool* aborted = nullptr) {
    script(keys);
    GraphicAnswer answer;
    bool abort = false, status = false;
    GQUEST("Digitize or input a point", "", "Help of the point", expected, answer, abort, status);
    if (aborted) *aborted = abort;
    return answer;
  }
  static std::array<std::string, 3> threeItems() { return {"One", "Two{nlines", "RETURN"}; }
};

TEST_F(GraphicDialogue, PicksAnswerAsPositionsItemsOrNotAtAll) {
  const auto items = threeItems();
  GITEMS("POINTS", items);
  // A pixel in the heading band lies outside every box: the question comes
  // again, and the item of the next line answers it.
  GraphicAnswer a = ask("#pixel 3, 3\n#item 2\n");
  EXPECT_EQ(a.kind, ItemInput);
  EXPECT_EQ(a.item, 2);
  EXPECT_EQ(occurrences(output(), "Digitize or input a point"), 2);
  // A pick inside the picture is a position at exactly the model point.
  a = ask("#pick 4, 2*1.5\n");
  EXPECT_EQ(a.kind, PositionInput);
  EXPECT_DOUBLE_EQ(a.x, 4.0);
  EXPECT_DOUBLE_EQ(a.y, 3.0);
  // A pixel on the second box selects it: its centre in surface fractions.
  const PlotState& s = plotState();
  const double top = 1.0 - (FrameWidth / 3 + 0.05), bottom = FrameWidth / 3 + 0.1;
  const double v = top - 3 * (top - bottom) / 24;
  const double u = (0.8 + 1.0 - frameWidthX() / 3) / 2;
  ASSERT_EQ(menuItemAt(u, v, 3), 2);
  a = ask("#pixel " + std::to_string(u * (s.widthUnits - 1)) + ", " +
          std::to_string((1 - v) * (s.heightUnits - 1)) + "\n");
  EXPECT_EQ(a.kind, ItemInput);
  EXPECT_EQ(a.item, 2);
  // An item number beyond the menu is refused (the error waits for a key).
  a = ask("#item 4\n\n#item 3\n");
  EXPECT_EQ(a.item, 3);
  EXPECT_TRUE(Contains(output(), "Input must be an integer number in [1-3]"));
}

TEST_F(GraphicDialogue, KeyboardHelpAndAbort) {
  GraphicAnswer a = ask("1.5 2.5\n");
  ASSERT_EQ(a.kind, KeyboardInput);
  std::array<double, 2> values{0.0, 0.0};
  bool deflt = false, status = false;
  framework::GTREAL(values, deflt, status);
  EXPECT_EQ(values[0], 1.5);
  EXPECT_EQ(values[1], 2.5);
  // Help shows the question's help and the graphic answers, then asks again;
  // an empty answer without a default is refused.
  a = ask("?\n\n\n\n$\n");
  EXPECT_TRUE(Contains(output(), {"Help of the point", "#pick x, y", "No default values available"}));
  bool aborted = false;
  ask("$\n", 2, &aborted);
  EXPECT_TRUE(aborted);
  // The events that are not in this version answer so and ask again.
  a = ask("#redo\n\n1 1\n");
  EXPECT_EQ(a.kind, KeyboardInput);
  EXPECT_TRUE(Contains(output(), "Not implemented in this version"));
}

TEST_F(GraphicDialogue, GraphicLoadConfirmationTakesOnlyKeys) {
  script("#pick 5, 2\n\nyes\n");
  bool answer = false;
  framework::OKLOAD(true, answer);
  EXPECT_TRUE(answer);
  EXPECT_TRUE(Contains(output(), "Only keyboard input is allowed!"));
  EXPECT_FALSE(inputLeft());
}

TEST_F(GraphicDialogue, MenusRefuseThirteenItemsAndStackTheirHeadings) {
  std::array<std::string, 13> many;
  many.fill("Item");
  const auto three = threeItems();
  GITEMS("FIRST", three);
  script("\n");
  GITEMS("TOO MANY", std::span<const std::string>(many));
  EXPECT_TRUE(Contains(output(), {"Attempt to exceed maximum number of items", "(maximum is 12 < 13)"}));
  GraphicMenu& m = graphicMenu();
  EXPECT_EQ(m.count, 3);
  EXPECT_EQ(m.heading, "FIRST");
  // Twelve are drawn.
  std::array<std::string, 12> twelve;
  twelve.fill("Item");
  GITEMS("SECOND", twelve);
  EXPECT_EQ(m.count, 12);
  GITEMS("THIRD", three);
  ASSERT_EQ(m.headings, 3);
  // Back up the tree: the stack is cut back to the repeated heading.
  GITEMS("SECOND", three);
  EXPECT_EQ(m.headings, 2);
  EXPECT_EQ(m.stack[1], "SECOND");
  GITEMS("OTHER", three);
  EXPECT_EQ(m.headings, 3);
  EXPECT_EQ(m.stack[2], "OTHER");
  // A blank heading is not stacked.
  script("\n");
  GITEMS("  ", three);
  EXPECT_TRUE(Contains(output(), "(GITEMS) Unable to stack menu without heading"));
  EXPECT_EQ(m.headings, 3);
}

TEST(Breadcrumb, KeepsTheLevelsNearestTheCurrentWithinFiftySixCharacters) {
  const std::string short3[3] = {"PROFILE MANIPULATION", "DISPLAY OPTIONS", "DISPLAY CONTROL"};
  EXPECT_EQ(breadcrumbText(short3, 3), "/PROFILE MANIPULATION /DISPLAY OPTIONS");
  EXPECT_EQ(breadcrumbText(short3, 1), "");
  // Six levels of 24 characters: only two fit, the two below the current.
  std::string deep[6];
  for (int k = 0; k < 6; ++k) deep[k] = std::string(23, 'A' + k) + std::to_string(k);
  const std::string crumb = breadcrumbText(deep, 6);
  EXPECT_LE(crumb.size(), 56u);
  EXPECT_EQ(crumb, "/" + deep[3] + " /" + deep[4]);
}

TEST_F(GraphicDialogue, PicturesOfTheWindow) {
  kntr::testing::ScratchDirectory dir;
  const auto items = threeItems();
  GITEMS("POINTS", items);
  ask("#picture " + dir.path("w.png") + "\n#picture " + dir.path("w.svg") +
      "\n#picture w.txt\n\n#item 1\n");
  std::ifstream png(dir.path("w.png"), std::ios::binary);
  char header[24] = {};
  png.read(header, 24);
  ASSERT_TRUE(png.good());
  const auto be = [&](int at) {
    return (static_cast<unsigned char>(header[at]) << 24) |
           (static_cast<unsigned char>(header[at + 1]) << 16) |
           (static_cast<unsigned char>(header[at + 2]) << 8) | static_cast<unsigned char>(header[at + 3]);
  };
  EXPECT_EQ(be(16), platform::HeadlessWidth);
  EXPECT_EQ(be(20), platform::HeadlessHeight);
  const std::string text = dir.readFile(dir.path("w.svg"));
  EXPECT_TRUE(Contains(text, "<svg"));
  EXPECT_TRUE(Contains(output(), "Picture file name must end in .png, .svg or .pdf"));
  // The vector picture drew the picture through the client once more.
  EXPECT_GE(redraws, 1);
}

TEST_F(GraphicDialogue, PanelButtonsZoomThePicture) {
  const Rectangle before = plotState().margin;
  const auto items = threeItems();
  GITEMS("POINTS", items);
  // IN, its centre by default (the middle of the view), then an item.
  ask("#button in\n\n#item 1\n");
  const Rectangle after = plotState().margin;
  EXPECT_NEAR(after.xmax - after.xmin, (before.xmax - before.xmin) / 2, 1e-9);
  EXPECT_NEAR(after.xmin + after.xmax, before.xmin + before.xmax, 1e-9);
  EXPECT_EQ(redraws, 1);
  // ZBX with the same position twice: nothing is redrawn.
  ask("#button ZBX\n#pick 5, 2\n#pick 5, 2\n#item 1\n");
  EXPECT_EQ(redraws, 1);
  // An unknown label is refused.
  ask("#button XX\n\n#item 1\n");
  EXPECT_TRUE(Contains(output(), "Unknown button: XX"));
}

TEST_F(GraphicDialogue, RubberBandZoomAndResize) {
  const auto items = threeItems();
  GITEMS("POINTS", items);
  viewState().DYNGRF = true;
  // The box follows the moves; the press of the second corner zooms to it.
  ask("#button ZBX\n#pick 1, 1\n#move 3, 3\n#move 4, 3\n#pick 5, 4\n#item 1\n");
  const Rectangle& m = plotState().margin;
  EXPECT_TRUE(viewState().ZOOMED);
  EXPECT_NEAR((m.xmin + m.xmax) / 2, 3.0, 1e-9);
  EXPECT_NEAR((m.ymin + m.ymax) / 2, 2.5, 1e-9);
  EXPECT_LE(m.xmin, 1.0 + 1e-9);
  EXPECT_GE(m.ymax, 4.0 - 1e-9);
  EXPECT_LT(m.xmax - m.xmin, 10.0);
  // A new size: the surface is taken, the picture redrawn, the view kept.
  const Rectangle scale = plotState().scale;
  const int before = redraws;
  platform::cwResize(800, 500);
  EXPECT_EQ(plotState().widthUnits, 800);
  EXPECT_EQ(plotState().heightUnits, 500);
  EXPECT_DOUBLE_EQ(plotState().asprto, 500.0 / 800.0);
  EXPECT_EQ(redraws, before + 1);
  EXPECT_DOUBLE_EQ(plotState().scale.xmin, scale.xmin);
  EXPECT_DOUBLE_EQ(plotState().scale.ymax, scale.ymax);
  platform::cwResize(platform::HeadlessWidth, platform::HeadlessHeight);
}

TEST_F(GraphicDialogue, DigitizerCalibrationAllowsFiveDegreesAndNotSix) {
  // Fix-point (1, 1) at model (0, 0); (4, 1) at X = 3; the third point on a
  // line 6 degrees off the perpendicular, then 5 degrees off.
  const double tan6 = std::tan(6 * 3.14159265358979323846 / 180);
  const double tan5 = std::tan(5 * 3.14159265358979323846 / 180);
  auto attempt = [](double r3) {
    char number[40];
    std::snprintf(number, sizeof number, "%.17g", r3);
    return "#pick 1, 1\n0 0\n#pick 4, 1\n3\n#pick " + std::string(number) + ", 4\n3\n";
  };
  script(attempt(1 - 3 * tan6) + "\n" + attempt(1 - 3 * tan5));
  bool failed = false;
  DGSCAL(3, 1, 0, failed);
  EXPECT_FALSE(failed);
  EXPECT_EQ(occurrences(output(), "(DGSCAL) Inaccurate scaling detected, try again!"), 1);
  EXPECT_FALSE(inputLeft());
  double x = 0, y = 0;
  DG2WLD(4, 1, x, y, failed);
  EXPECT_NEAR(x, 3.0, 1e-9);
  EXPECT_NEAR(y, 0.0, 1e-9);
  DG2WLD(1 - 3 * tan5, 4, x, y, failed);
  EXPECT_NEAR(x, 0.0, 1e-5);
  EXPECT_NEAR(y, 3.0, 1e-9);
}

TEST(GraphicEventsInTerminalMode, AreRefusedAndListed) {
  EXPECT_TRUE(framework::graphicEventWord("pick"));
  EXPECT_TRUE(framework::graphicEventWord("Picture"));
  EXPECT_FALSE(framework::graphicEventWord("DATE"));
}

class TerminalEvents : public kntr::testing::DialogueTest {};

TEST_F(TerminalEvents, AskAgainWithOnlyAvailableInGraphicMode) {
  script("#pick 1, 2\n\n#?\n\n1 2\n");
  bool abort = false, status = false;
  framework::ASKQST("Input two values", "", "", 2, abort, status);
  EXPECT_TRUE(Contains(output(), {"Only available in graphic mode", "PICTURE file", "UNDO"}));
  EXPECT_FALSE(inputLeft());
}

}  // namespace
}  // namespace kntr::graphics
