#include "graphics/strokes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "framework/configuration.h"
#include "framework/state.h"
#include "graphics/plotstate.h"
#include "support/checks.h"
#include "support/recording_device.h"
#include "support/scratch_directory.h"

namespace kntr::graphics {
namespace {

using kntr::testing::Contains;
using kntr::testing::RecordingDevice;
using Line = RecordingDevice::Line;

std::string fontFile(const std::string& name) {
  return std::string(KNTR_SOURCE_DIR) + "/data/fonts/" + name;
}

// A glyph as the font file gives it, read here independently of the loader.
struct FileGlyph {
  int left = 0, right = 0;
  std::vector<std::array<int, 4>> points;
};

std::vector<FileGlyph> readFontFile(const std::string& name) {
  std::ifstream in(fontFile(name));
  std::vector<FileGlyph> glyphs;
  for (int c = FirstCharacter; c <= LastCharacter; ++c) {
    int n = 0;
    FileGlyph g;
    if (!(in >> n >> g.left >> g.right)) break;
    g.points.resize(n);
    for (auto& p : g.points) in >> p[0] >> p[1] >> p[2] >> p[3];
    glyphs.push_back(g);
  }
  return glyphs;
}

// Text drawn on a recording page of 1001 x 1001 units over the unit square,
// so that device units are thousandths of world units, at a height that
// makes one font unit one device unit. The text position is the middle.
class StrokeText : public kntr::testing::ScratchTest {
 protected:
  void SetUp() override {
    ScratchTest::SetUp();
    framework::resetConfiguration();
    resetPlotState();
    resetStrokes();
    attachDevice(DevicePageFile, &device);
    GCLIPM("off");
    TextState& s = textState();
    s.x = 0.5;
    s.y = 0.5;
    s.height = CapitalHeight / 1000.0;
  }
  void TearDown() override {
    attachDevice(DeviceNoDrawing, nullptr);
    ScratchTest::TearDown();
  }
  // The lines that `text` draws, in font units from the text position.
  std::vector<Line> draw(const std::string& text) {
    device.forget();
    EXPECT_STATUS(false, GDWTXT(text, status));
    std::vector<Line> lines;
    for (const Line& l : device.drawn)
      lines.push_back(Line{l.x0 - 500.0, l.y0 - 500.0, l.x1 - 500.0, l.y1 - 500.0, l.colour});
    return lines;
  }
  // The one line of a text made of the letter I, which in the simplex font
  // is a stroke from the top of a capital (21) to the baseline, 4 units
  // right of the pen; checked to be vertical.
  static void expectI(const Line& l, double penX, double baseline, double height = 21.0) {
    EXPECT_NEAR(l.x0, penX + 4.0 * height / 21.0, 1e-9);
    EXPECT_NEAR(l.x1, l.x0, 1e-9);
    EXPECT_NEAR(l.y0, baseline + height, 1e-9);
    EXPECT_NEAR(l.y1, baseline, 1e-9);
  }
  RecordingDevice device;
};

TEST_F(StrokeText, EveryPrintableCharacterHasStrokesInTheFirstFiveFonts) {
  for (int font = 1; font <= 5; ++font) {
    textState().font = font;
    for (int c = 33; c <= 126; ++c)
      EXPECT_FALSE(draw(std::string(1, char(c))).empty()) << "font " << font << " code " << c;
  }
  // The PostScript names hold the same glyphs.
  for (int font = 6; font <= 10; ++font) EXPECT_STATUS(false, LDFONT(font, status));
}

TEST_F(StrokeText, WidthsAreTheSumsOfTheGlyphExtents) {
  const std::vector<FileGlyph> simplex = readFontFile("sfsrom.fsa");
  const std::vector<FileGlyph> complex = readFontFile("sfcrom.fsa");
  ASSERT_EQ(simplex.size(), 96u);
  ASSERT_EQ(complex.size(), 96u);
  const auto width = [](const std::vector<FileGlyph>& font, const std::string& text) {
    double sum = 0.0;
    for (char c : text) sum += font[c - FirstCharacter].right - font[c - FirstCharacter].left;
    return sum;
  };
  TextExtent e;
  EXPECT_STATUS(false, GWTEXT("Hull 42, frame {{7}", 1.0, e, status));
  EXPECT_EQ(e.lines, 1);
  EXPECT_DOUBLE_EQ(e.widths[0], width(simplex, "Hull 42, frame {7}"));
  EXPECT_DOUBLE_EQ(e.height, 21.0);

  // Half size, a second font and a second line.
  EXPECT_STATUS(false, GWTEXT("AB{nx{4yz", 0.5, e, status));
  EXPECT_EQ(e.lines, 2);
  EXPECT_DOUBLE_EQ(e.widths[0], 0.5 * width(simplex, "AB"));
  EXPECT_DOUBLE_EQ(e.widths[1], 0.5 * (width(simplex, "x") + width(complex, "yz")));
  EXPECT_DOUBLE_EQ(e.height, 0.5 * (42.0 + 21.0));

  // The drawn text ends where the measure says: the pen of the next glyph.
  const std::vector<Line> lines = draw("Hull{dI");
  expectI(lines.back(), width(simplex, "Hull"), 0.0, 42.0);
}

TEST_F(StrokeText, TokensMoveThePen) {
  std::vector<Line> l = draw("I");
  ASSERT_EQ(l.size(), 1u);
  expectI(l[0], 0.0, 0.0);

  l = draw("I{+I{-I");  // up half a character, and back
  ASSERT_EQ(l.size(), 3u);
  expectI(l[1], 8.0, 10.5);
  expectI(l[2], 16.0, 0.0);

  l = draw("{hI{dI");  // half size, then double of that
  ASSERT_EQ(l.size(), 2u);
  expectI(l[0], 0.0, 0.0, 10.5);
  expectI(l[1], 4.0, 0.0);

  l = draw("{hI{+I{uI{oI");  // half a character is now 5.25, half the text 10.5
  ASSERT_EQ(l.size(), 4u);
  expectI(l[1], 4.0, 5.25, 10.5);
  expectI(l[2], 8.0, 15.75, 10.5);
  expectI(l[3], 12.0, 5.25, 10.5);

  l = draw("II{bI");  // back one character: over the second I
  ASSERT_EQ(l.size(), 3u);
  expectI(l[2], 8.0, 0.0);

  l = draw("III{cI");  // back to the line's start
  ASSERT_EQ(l.size(), 4u);
  expectI(l[3], 0.0, 0.0);

  l = draw("II{nI");  // next line, two character heights down; the block
  ASSERT_EQ(l.size(), 3u);  // stands on the last baseline
  expectI(l[0], 0.0, 42.0);
  expectI(l[2], 0.0, 0.0);

  l = draw("{{I");  // one brace, then the pen after it
  const std::vector<FileGlyph> simplex = readFontFile("sfsrom.fsa");
  const FileGlyph& brace = simplex['{' - FirstCharacter];
  int braceLines = 0;
  for (const auto& p : brace.points) braceLines += p[2] == 1;
  ASSERT_EQ(int(l.size()), braceLines + 1);
  expectI(l.back(), brace.right - brace.left, 0.0);

  // A brace before anything else is drawn as it stands, with what follows.
  EXPECT_EQ(draw("{xI").size(), draw("{{xI").size());
}

TEST_F(StrokeText, DigitTokensChooseTheFont) {
  textState().font = 4;
  const std::vector<Line> complex = draw("R");
  textState().font = 5;
  const std::vector<Line> greek = draw("R");
  textState().font = 1;
  const std::vector<Line> simplex = draw("R");
  ASSERT_NE(complex.size(), simplex.size());
  // "{0" is font 10, the greek glyphs under their PostScript name.
  const std::vector<Line> chosen = draw("{4R{1R{0R");
  ASSERT_EQ(chosen.size(), complex.size() + simplex.size() + greek.size());
  EXPECT_DOUBLE_EQ(chosen[0].x0, complex[0].x0);
  EXPECT_DOUBLE_EQ(chosen.back().y1, greek.back().y1);
}

TEST_F(StrokeText, AlignmentPlacesEachLineOfTheBlock) {
  // "II" is 16 units wide, "I" 8; one line is 21 high, two are 63.
  struct Case {
    int alignment;
    double firstPen, firstBaseline;
  };
  for (const Case& c : {Case{1, 0.0, 0.0}, Case{2, 0.0, -10.5}, Case{3, 0.0, -21.0},
                        Case{4, -8.0, 0.0}, Case{5, -8.0, -10.5}, Case{9, -16.0, -21.0}}) {
    textState().Alignment = c.alignment;
    const std::vector<Line> l = draw("II");
    ASSERT_EQ(l.size(), 2u);
    expectI(l[0], c.firstPen, c.firstBaseline);
  }
  // Several lines: each line's own width meets the alignment.
  textState().Alignment = 7;  // ends at the position, last baseline on it
  std::vector<Line> l = draw("II{nI");
  ASSERT_EQ(l.size(), 3u);
  expectI(l[0], -16.0, 42.0);
  expectI(l[2], -8.0, 0.0);
  textState().Alignment = 6;  // middles on it, top of the block on it
  l = draw("I{nII");
  ASSERT_EQ(l.size(), 3u);
  expectI(l[0], -4.0, -21.0);
  expectI(l[1], -8.0, -63.0);

  // Turned a quarter: the upright I lies along -x, its line offset along y.
  textState().Alignment = 1;
  textState().TextAngle = 90.0;
  l = draw("I");
  ASSERT_EQ(l.size(), 1u);
  EXPECT_NEAR(l[0].x0, -21.0, 1e-9);
  EXPECT_NEAR(l[0].y0, 4.0, 1e-9);
  EXPECT_NEAR(l[0].x1, 0.0, 1e-9);
  EXPECT_NEAR(l[0].y1, 4.0, 1e-9);
}

TEST_F(StrokeText, ColumnTokenLinesUpTheColons) {
  // Each header line starts its blanks again from the line's start, so the
  // colons stand where ten blanks end, whatever the name before them.
  const std::vector<Line> colonAlone = draw("{2          :");
  ASSERT_FALSE(colonAlone.empty());
  for (const char* line : {"{2Company{C          : {3", "{2User{C          : {3",
                           "{2Project{C          : {3"}) {
    const std::vector<Line> l = draw(line);
    ASSERT_GT(l.size(), colonAlone.size());
    const std::size_t skip = l.size() - colonAlone.size();
    for (std::size_t k = 0; k < colonAlone.size(); ++k) {
      EXPECT_DOUBLE_EQ(l[skip + k].x0, colonAlone[k].x0) << line;
      EXPECT_DOUBLE_EQ(l[skip + k].y1, colonAlone[k].y1) << line;
    }
  }
}

TEST_F(StrokeText, TwentyFourLineBreaksAtMost) {
  std::string text = "I";
  for (int k = 0; k < MaxTextLineBreaks; ++k) text += "{nI";
  const std::vector<Line> l = draw(text);
  ASSERT_EQ(l.size(), 25u);
  expectI(l[24], 0.0, 0.0);
  expectI(l[0], 0.0, 24 * 42.0);

  device.forget();
  type("\n");
  EXPECT_STATUS(true, GDWTXT(text + "{nI", status));
  EXPECT_TRUE(device.drawn.empty());
  EXPECT_TRUE(Contains(output(), {"PLOT ERROR FROM SUBROUTINE ** GDWTXT **",
                                  "(No more than 24 new-lines in a string)"}));
  TextExtent e;
  type("\n");
  EXPECT_STATUS(true, GWTEXT(text + "{n", 1.0, e, status));
  EXPECT_EQ(e.lines, 0);
  EXPECT_TRUE(Contains(output(), "PLOT ERROR FROM SUBROUTINE ** GWTEXT **"));

  type("\n");
  EXPECT_STATUS(true, GDWTXT("tab\there", status));
  EXPECT_TRUE(Contains(output(), "(text string not legal"));
}

TEST_F(StrokeText, FontLoadsAndThePathRule) {
  type("\n");
  EXPECT_STATUS(true, LDFONT(11, status));
  EXPECT_TRUE(Contains(output(), "Font number is invalid!"));
  type("\n");
  EXPECT_STATUS(true, LDFONT(0, status));

  // With nothing configured the source tree's fonts are found.
  EXPECT_EQ(fontPath("sfsrom.fsa"), fontFile("sfsrom.fsa"));
  // A project directory that holds a font file comes first.
  writeFile(path("sfsrom.fsa"), "");
  framework::program().projectDirectory = directory().string();
  EXPECT_EQ(fontPath("sfsrom.fsa"), path("sfsrom.fsa"));
  // A configured font directory comes before that, with its config/fonts.
  std::filesystem::create_directories(directory() / "site/config/fonts");
  writeFile(path("site/config/fonts/sfsrom.fsa"), "");
  framework::configuration().primaryFontDirectory = path("site");
  EXPECT_EQ(fontPath("sfsrom.fsa"), path("site/config/fonts/sfsrom.fsa"));
  // With no file anywhere, the first candidate names the failure.
  EXPECT_EQ(fontPath("nofont.fsa"), path("site/config/fonts/nofont.fsa"));

  // A file cut short after "A" keeps the characters read so far: the
  // records of three numbers start the characters, and "B" is the 35th.
  std::istringstream in(readFile(fontFile("sfsrom.fsa")));
  std::string cut;
  int characters = 0;
  for (std::string line; std::getline(in, line);) {
    std::istringstream fields(line);
    int a, b, c, d;
    if (!(fields >> a >> b >> c >> d) && ++characters == 'B' - FirstCharacter + 1) break;
    cut += line + "\n";
  }
  writeFile(path("site/config/fonts/sfsrom.fsa"), cut + "  9 -9\n");
  type("\n");
  EXPECT_STATUS(true, LDFONT(1, status));
  EXPECT_TRUE(Contains(output(), "sfsrom.fsa"));
  EXPECT_FALSE(draw("A").empty());
  EXPECT_TRUE(draw("B").empty());

  // An unreadable marker file: reported by name, no markers.
  writeFile(path("site/config/fonts/sfmark.fsa"), "2\n1\n0.5 x 0\n");
  type("\n");
  EXPECT_STATUS(true, LDMARK(status));
  EXPECT_TRUE(Contains(output(), "sfmark.fsa"));
  device.forget();
  GDMARK(1, 0.5, 0.5, 1.0);
  EXPECT_TRUE(device.drawn.empty());
}

TEST_F(StrokeText, MarkersKeepTheirShapeOnUnequalScales) {
  // Ten world units across, one up, on a square page.
  GMARG(0.0, 0.0, 0.0, 0.0);
  G2SCAL(0.0, 10.0, 0.0, 1.0);
  bool failed = false;
  GSETIN("mrkcol", 5, failed);
  GMSIZE(2.0);
  GMOVE2(5.0, 0.5);
  device.forget();
  GMARK2(4);  // the square
  ASSERT_EQ(device.drawn.size(), 4u);
  double xmin = 1e9, xmax = -1e9, ymin = 1e9, ymax = -1e9;
  for (const Line& l : device.drawn) {
    EXPECT_EQ(l.colour, 5);
    xmin = std::min({xmin, l.x0, l.x1});
    xmax = std::max({xmax, l.x0, l.x1});
    ymin = std::min({ymin, l.y0, l.y1});
    ymax = std::max({ymax, l.y0, l.y1});
  }
  // The Hershey square is 12 of the marker's 14 units across (kept to four
  // decimals in the file); size 2 is twice 0.025 of the 1000 units of the
  // page's height.
  EXPECT_NEAR(xmax - xmin, 2.0 * 25.0 * 12.0 / 14.0, 0.01);
  EXPECT_NEAR(ymax - ymin, xmax - xmin, 1e-9);
  EXPECT_NEAR((xmin + xmax) / 2.0, 500.0, 1e-9);
  EXPECT_NEAR((ymin + ymax) / 2.0, 500.0, 1e-9);
  EXPECT_EQ(plotState().penX, 5.0);
  EXPECT_EQ(plotState().penY, 0.5);

  // A text on the same surface: an upright I stays upright and 21 high.
  textState().x = 5.0;
  textState().y = 0.5;
  const std::vector<Line> l = draw("I");
  ASSERT_EQ(l.size(), 1u);
  expectI(l[0], 0.0, 0.0);

  // Marker 1, the plus of curve points, and a kind that does not exist.
  device.forget();
  GMARK2(1);
  EXPECT_EQ(device.drawn.size(), 2u);
  device.forget();
  GMARK2(33);
  EXPECT_TRUE(device.drawn.empty());
}

TEST_F(StrokeText, TextAtThePenTakesTheTextAttributes) {
  bool failed = false;
  GSETIN("txtcol", 6, failed);
  GSETRL("txthgh", CapitalHeight / 1000.0, failed);
  GLORG(7);
  GMOVE2(0.5, 0.5);
  GWTEXT("II   ");
  ASSERT_EQ(device.drawn.size(), 2u);
  EXPECT_EQ(device.drawn[0].colour, 6);
  EXPECT_NEAR(device.drawn[0].x0, 500.0 - 16.0 + 4.0, 1e-9);  // ends at the pen
  EXPECT_EQ(plotState().penX, 0.5);
  int origin = 0;
  GINQIN("txtlrg", origin, failed);
  EXPECT_EQ(origin, 1);  // back to the default after the text

  // A frame asked for the text class boxes the next text only.
  GFRAME("text");
  device.forget();
  GWTEXT("II");
  EXPECT_EQ(device.drawn.size(), 2u + 4u);
  device.forget();
  GWTEXT("II");
  EXPECT_EQ(device.drawn.size(), 2u);

  device.forget();
  GWTEXT("    ");
  EXPECT_TRUE(device.drawn.empty());
}

}  // namespace
}  // namespace kntr::graphics
