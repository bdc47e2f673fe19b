// Plot files: the PostScript, EPSF and HP-GL texts of a known profile
// against checked copies, their rendering by ghostscript and hp2xx against the
// picture of the drawing core, the page scale, and the records' rules.
#include "graphics/hardcopy.h"

#include <cairo.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "framework/files.h"
#include "framework/state.h"
#include "framework/system.h"
#include "graphics/plotstate.h"
#include "platform/cairodevice.h"
#include "profile/block.h"
#include "profile/datafile.h"
#include "profile/polylines.h"
#include "support/checks.h"
#include "support/scratch_directory.h"

namespace kntr::graphics {
namespace {

using kntr::testing::Contains;
using kntr::testing::ScratchDirectory;

std::string source(const std::string& path) { return std::string(KNTR_SOURCE_DIR) + "/" + path; }

std::string readText(const std::string& name) { return ScratchDirectory::readFile(name); }

// The file with its creation date masked.
std::string masked(const std::string& text) {
  return std::regex_replace(text, std::regex("%%CreationDate: [^\n]*"),
                            "%%CreationDate: DATE at TIME");
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> out;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) out.push_back(line);
  return out;
}

// The coordinates of every "mt" and "lt" record of a PostScript text.
std::vector<std::pair<double, double>> postScriptPoints(const std::string& text) {
  std::vector<std::pair<double, double>> points;
  for (const std::string& line : lines(text)) {
    std::istringstream in(line);
    std::string first;
    in >> first;
    if (first == "st") first.clear();
    double x = 0.0, y = 0.0;
    std::string op;
    std::istringstream again(first.empty() ? line.substr(line.find("st") + 2) : line);
    if (again >> x >> y >> op && (op == "mt" || op == "lt")) points.emplace_back(x, y);
  }
  return points;
}

int run(const std::string& command) { return std::system(command.c_str()); }

bool have(const char* tool) { return run(std::string("command -v ") + tool + " >/dev/null") == 0; }

class Hardcopy : public kntr::testing::ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    framework::program().executionMode = framework::ModeBatch;
    framework::program().packageVersion = "2016A";
    framework::program().projectName = "golden";
    resetPlotState();
    GINIT(1);
    bool loaded = false, status = false;
    profile::GTKNTR(source("data/bench/spline-lens.kntr"), false, loaded, status);
    ASSERT_TRUE(loaded && !status) << output();
  }
  void TearDown() override {
    framework::simulateWriteFailureAfter(-1);
    framework::systemHooks() = {};
    ConsoleTest::TearDown();
  }

  // The profile's curves in colours 2 and 4 inside a frame of the box.
  static void drawProfile() {
    const profile::ProfileData& p = profile::profile();
    GMARG(0.05, 0.05, 0.05, 0.05);
    G2SCLT(p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4));
    GCLIPM("plot");
    static profile::ProfilePolylines poly;
    bool status = false;
    profile::IQPPOL(profile::MaxCurves, profile::MaxPolylinePoints, poly, status);
    ASSERT_FALSE(status);
    for (int c = 1; c <= poly.curves; ++c) {
      std::vector<double> x, y;
      for (int i = 1; i <= poly.points(c); ++i) {
        x.push_back(poly.xy(c, i).x);
        y.push_back(poly.xy(c, i).y);
      }
      GSETIN("lincol", c == 1 ? 2 : 4, status);
      GPOLY2(static_cast<int>(x.size()), x.data(), y.data());
    }
    GSETIN("lincol", 1, status);
    GFRAME("scale");
    flushPlot();
  }

  // Opens `medium` on `file`, draws the profile and closes; the page size.
  void plot(const PlotMedium& medium, const std::string& file, double aspect = 0.0) {
    double w = 0.0, h = 0.0, a = aspect;
    EXPECT_STATUS(false, openPlotMedium(OpenHardcopy, MediumFile, medium, file, "", w, h, a,
                                        status));
    drawProfile();
    EXPECT_STATUS(false, CLSDEV(OpenHardcopy, true, status));
  }

  static PlotMedium medium(const char* type, const char* model = "") {
    PlotMedium m;
    m.type = type;
    m.model = model;
    return m;
  }

  // Dark pixels of a PNG, as a mask of its width and height.
  struct Mask {
    int width = 0, height = 0;
    std::vector<bool> on;
    bool at(int x, int y) const {
      return x >= 0 && y >= 0 && x < width && y < height && on[std::size_t(y * width + x)];
    }
    int count() const { return static_cast<int>(std::count(on.begin(), on.end(), true)); }
  };
  static Mask readMask(const std::string& png, bool darkOnLight) {
    Mask m;
    cairo_surface_t* s = cairo_image_surface_create_from_png(png.c_str());
    if (cairo_surface_status(s) != CAIRO_STATUS_SUCCESS) {
      cairo_surface_destroy(s);
      return m;
    }
    cairo_surface_flush(s);
    m.width = cairo_image_surface_get_width(s);
    m.height = cairo_image_surface_get_height(s);
    const int stride = cairo_image_surface_get_stride(s);
    const unsigned char* data = cairo_image_surface_get_data(s);
    m.on.assign(std::size_t(m.width * m.height), false);
    for (int y = 0; y < m.height; ++y)
      for (int x = 0; x < m.width; ++x) {
        const unsigned char* p = data + y * stride + 4 * x;
        const int sum = p[0] + p[1] + p[2];
        m.on[std::size_t(y * m.width + x)] = darkOnLight ? sum < 600 : sum > 150;
      }
    cairo_surface_destroy(s);
    return m;
  }

  // Share of the marked pixels of `a` that have a marked pixel of `b` within
  // `reach` after mapping a's pixel through `map`.
  template <class Map>
  static double overlap(const Mask& a, const Mask& b, int reach, Map map) {
    int hits = 0, total = 0;
    for (int y = 0; y < a.height; ++y)
      for (int x = 0; x < a.width; ++x) {
        if (!a.at(x, y)) continue;
        ++total;
        int bx = 0, by = 0;
        map(x, y, bx, by);
        bool found = false;
        for (int dy = -reach; dy <= reach && !found; ++dy)
          for (int dx = -reach; dx <= reach && !found; ++dx) found = b.at(bx + dx, by + dy);
        hits += found;
      }
    return total == 0 ? 0.0 : double(hits) / total;
  }

  // The drawing core's picture of the profile on an image of w x h pixels.
  Mask corePicture(int w, int h) {
    auto image = platform::CairoDevice::image(w, h);
    EXPECT_TRUE(image);
    attachDevice(DeviceWindow, image.get());
    drawProfile();
    std::string error;
    EXPECT_TRUE(image->writePng(scratch.path("core.png"), error)) << error;
    attachDevice(DeviceNoDrawing, nullptr);
    return readMask(scratch.path("core.png"), false);
  }

  ScratchDirectory scratch;
};

// --- The files against their checked copies ---------------------------------

TEST_F(Hardcopy, FilesOfTheKnownProfileMatchTheCheckedCopies) {
  struct Case {
    PlotMedium medium;
    const char* golden;
  };
  PlotMedium epsf = medium(TypePostScript, ModelEpsf);
  epsf.xSize = 0.16;  // m: a page of 160 mm x 80 mm
  epsf.ySize = 0.08;
  const Case cases[] = {{medium(TypePostScript), "spline-lens.ps"},
                        {medium(TypeColourPostScript), "spline-lens-colour.ps"},
                        {epsf, "spline-lens.eps"},
                        {medium(TypeHpgl), "spline-lens.hpgl"},
                        {medium(TypeHpgl2, "DesignJet"), "spline-lens-designjet.hpgl"}};
  const bool update = std::getenv("KNTR_UPDATE_GOLDEN") != nullptr;
  for (const Case& c : cases) {
    const std::string file = scratch.path(c.golden);
    plot(c.medium, file);
    const std::string golden = source(std::string("tests/graphics/golden/") + c.golden);
    if (update) run("cp " + file + " " + golden);
    EXPECT_EQ(masked(readText(file)), masked(readText(golden))) << c.golden;
  }
}

TEST_F(Hardcopy, PostScriptRecordsStandInTheirOrder) {
  const std::string file = scratch.path("a4.ps");
  plot(medium(TypePostScript), file);
  const std::vector<std::string> text = lines(readText(file));
  ASSERT_GT(text.size(), 40u);
  // The head, the turned page and the width line.
  const std::vector<std::string> head{"%!PS-Adobe-2.0", "%%BeginComments",
                                      "%%CreationProgram: Tarvik PostScript interface version 2016A"};
  for (std::size_t k = 0; k < head.size(); ++k) EXPECT_EQ(text[k], head[k]);
  const std::string all = readText(file);
  EXPECT_TRUE(Contains(all, {"%%EndComments\n%%BeginProlog\n%%Abbreviations\n/cp { closepath } def\n"
                             "/fi { fill } def\n/lt { lineto } def\n/mt { moveto } def\n"
                             "/np { newpath } def\n/sc { setrgbcolor } def\n/st { stroke } def\n"
                             "/sw { setlinewidth } def\n",
                             "/clw { clp clip } def\n%%EndProlog\n%%BeginTransformation\n90 rotate\n"
                             "0 -595 translate\n40 68 translate\n%%EndTransformation\n"
                             "%%BeginGraphics\n     0.00000 sw np\n",
                             "%%BoundingBox: 17 40 527 825\n"}));
  // The trailer.
  const std::vector<std::string> tail(text.end() - 4, text.end());
  EXPECT_EQ(tail, (std::vector<std::string>{"st", "%%EndGraphics", "showpage", "%%Trailer"}));
  // Plain PostScript draws every colour black.
  EXPECT_TRUE(Contains(all, "st 0.0000 0.0000 0.0000 sc"));
  EXPECT_EQ(all.find(" 1.0000 sc"), std::string::npos);
}

TEST_F(Hardcopy, ModelsAndPapersGiveTheirPages) {
  PlotMedium m = medium(TypePostScript);
  PageLayout page = postScriptLayout(m);
  EXPECT_EQ(page.unitsX, 785);  // 277 mm
  EXPECT_EQ(page.unitsY, 510);  // 180 mm
  EXPECT_EQ(page.originX, 40);
  EXPECT_EQ(page.originY, 68);
  m.xSize = 250.0;  // a configured page and offset
  m.ySize = 170.0;
  m.xOffset = 10.0;
  m.penWidth = 3.0;
  page = postScriptLayout(m);
  EXPECT_EQ(page.unitsX, 708);
  EXPECT_EQ(page.originX, 28);
  EXPECT_EQ(page.originY, 0);
  EXPECT_DOUBLE_EQ(page.lineWidth, 0.72);
  m = medium(TypePostScript);
  m.paper = 3;
  page = postScriptLayout(m);
  EXPECT_EQ(page.unitsX, 1133);
  EXPECT_EQ(page.originX, 33);
  m.paper = 1;
  EXPECT_EQ(postScriptLayout(m).originX, 18);
  m = medium(TypePostScript, "Kyocera-FS-5500/PF-2");
  m.paper = 3;
  page = postScriptLayout(m);
  EXPECT_EQ(page.before, "!R! CASS 3; SPSZ 10; SPO L; EXIT;");
  EXPECT_EQ(page.unitsX, 1162);
  m = medium(TypePostScript, "QMS-Colorscript-210");
  m.xOffset = 5.0;
  m.yOffset = 10.0;
  page = postScriptLayout(m);
  EXPECT_EQ(page.originX, 28);  // the offsets swapped
  EXPECT_EQ(page.originY, 14);
  // An EPSF page with no size takes the picture's aspect at 180 mm.
  m = medium(TypePostScript, ModelEpsf);
  m.boxAspect = 0.5;
  page = postScriptLayout(m);
  EXPECT_DOUBLE_EQ(page.widthMm, 180.0);
  EXPECT_DOUBLE_EQ(page.heightMm, 90.0);

  m = medium(TypeHpgl);
  page = hpglLayout(m);
  EXPECT_EQ(page.unitsX, 10870);
  EXPECT_EQ(page.originY, 100);
  EXPECT_FALSE(page.hpgl2);
  m.paper = 0;
  EXPECT_EQ(hpglLayout(m).unitsY, 32360);
  m.model = "DraftPro-DXL";
  EXPECT_EQ(hpglLayout(m).originX, -22660);
  m.model = "LaserJet-III";
  EXPECT_TRUE(hpglLayout(m).hpgl2);
}

TEST_F(Hardcopy, HpglRecordsAndModelLines) {
  PlotMedium m = medium(TypeHpgl2, "DesignJet");
  const std::string file = scratch.path("designjet.hpgl");
  double w = 0, h = 0, a = 0;
  EXPECT_STATUS(false, openPlotMedium(OpenHardcopy, MediumFile, m, file, "", w, h, a, status));
  EXPECT_EQ(plotState().device, DevicePlotter2);
  EXPECT_NEAR(w, 271.75, 1e-9);
  EXPECT_TRUE(Contains(output(), "Making HP-GL/2 output"));
  GMARG(0, 0, 0, 0);
  G2SCAL(0.0, 10869.0, 0.0, 7199.0);
  GMOVE2(100.0, 200.0);
  GDRAW2(300.0, 200.0);
  GMOVE2(300.0, 200.0);  // already there: no new move
  GDRAW2(300.0, 400.0);
  EXPECT_STATUS(false, CLSDEV(OpenHardcopy, true, status));
  const std::vector<std::string> text = lines(readText(file));
  ASSERT_GE(text.size(), 7u);
  EXPECT_EQ(text[0], "\x1b%-1BBP       1,TAR-DESI;");
  EXPECT_EQ(text[1], "IN;IP       0,     100,   10869,    7299;");
  EXPECT_EQ(text[2], "SP       1;PA       0,     100;");
  const std::string all = readText(file);
  EXPECT_TRUE(Contains(all, "PU     100,     300;\nPD     300,     300;\nPD     300,     500;\n"));
  EXPECT_EQ(text.back(), "SP;");
}

TEST_F(Hardcopy, LongPathsAreStrokedEveryTwoHundredDraws) {
  const std::string file = scratch.path("long.ps");
  double w = 0, h = 0, a = 0;
  EXPECT_STATUS(false, openPlotMedium(OpenHardcopy, MediumFile, medium(TypePostScript), file, "",
                                      w, h, a, status));
  GMARG(0, 0, 0, 0);
  G2SCAL(0.0, 1.0, 0.0, 1.0);
  std::vector<double> x, y;
  for (int k = 0; k <= 450; ++k) {
    x.push_back(k / 450.0);
    y.push_back(0.5 + 0.4 * std::sin(k / 20.0));
  }
  GPOLY2(static_cast<int>(x.size()), x.data(), y.data());
  EXPECT_STATUS(false, CLSDEV(OpenHardcopy, true, status));
  // 450 draws: a new path after the 200th and the 400th, from the last point.
  int restarts = 0, sinceRestart = 0, longest = 0;
  for (const std::string& line : lines(readText(file))) {
    if (line.size() > 3 && line.compare(line.size() - 3, 3, " lt") == 0) ++sinceRestart;
    if (line.rfind("st ", 0) == 0 && line.find(" mt") != std::string::npos) {
      ++restarts;
      longest = std::max(longest, sinceRestart);
      sinceRestart = 0;
    }
  }
  EXPECT_EQ(restarts, 2);
  EXPECT_EQ(longest, PostScriptPathLimit);
}

// --- Rendering --------------------------------------------------------------

TEST_F(Hardcopy, GhostscriptRendersWhatTheDrawingCoreDraws) {
  if (!have("gs")) GTEST_SKIP() << "ghostscript (gs) is not installed";
  // EPSF: an upright page, one point a pixel at 72 dpi.
  PlotMedium epsf = medium(TypePostScript, ModelEpsf);
  const std::string eps = scratch.path("p.eps");
  plot(epsf, eps, 0.8);
  const PageLayout page = postScriptLayout([&] {
    PlotMedium m = epsf;
    m.boxAspect = 0.8;
    return m;
  }());
  const std::string epsPng = scratch.path("eps.png");
  ASSERT_EQ(run("gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=png16m -r72 -dEPSCrop -sOutputFile=" +
                epsPng + " " + eps + " 2>" + scratch.path("gs.err")),
            0)
      << readText(scratch.path("gs.err"));
  EXPECT_EQ(readText(scratch.path("gs.err")), "");
  const Mask core = corePicture(page.unitsX, page.unitsY);
  const Mask rendered = readMask(epsPng, true);
  ASSERT_EQ(rendered.width, page.unitsX);
  ASSERT_GT(core.count(), 500);
  auto same = [](int x, int y, int& bx, int& by) { bx = x, by = y; };
  EXPECT_GT(overlap(core, rendered, 2, same), 0.97);
  EXPECT_GT(overlap(rendered, core, 2, same), 0.97);

  // PostScript: the landscape page turned onto portrait A4.
  const std::string ps = scratch.path("p.ps");
  plot(medium(TypePostScript), ps);
  const std::string psPng = scratch.path("ps.png");
  ASSERT_EQ(run("gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=png16m -r72 -sPAPERSIZE=a4 "
                "-sOutputFile=" +
                psPng + " " + ps + " 2>" + scratch.path("gs.err")),
            0)
      << readText(scratch.path("gs.err"));
  EXPECT_EQ(readText(scratch.path("gs.err")), "");
  const PageLayout a4 = postScriptLayout(medium(TypePostScript));
  const Mask landscape = corePicture(a4.unitsX, a4.unitsY);
  const Mask portrait = readMask(psPng, true);
  ASSERT_EQ(portrait.width, 595);
  ASSERT_EQ(portrait.height, 842);
  // A picture pixel (x, row) stands at page point (x, H - 1 - row), which the
  // turn puts at paper (595 - 68 - y, 40 + x), and the paper's row counts down.
  auto turned = [&](int x, int row, int& bx, int& by) {
    const int y = a4.unitsY - 1 - row;
    bx = 595 - a4.originY - y;
    by = 842 - (a4.originX + x);
  };
  EXPECT_GT(overlap(landscape, portrait, 2, turned), 0.97);
  EXPECT_GT(portrait.count(), landscape.count() / 2);
}

TEST_F(Hardcopy, Hp2xxReadsHpglAndHpgl2) {
  if (!have("hp2xx")) GTEST_SKIP() << "hp2xx is not installed";
  for (const char* type : {TypeHpgl, TypeHpgl2}) {
    const std::string file = scratch.path("p.hpgl");
    plot(medium(type), file);
    const std::string svg = scratch.path("p.svg");
    ASSERT_EQ(run("hp2xx -q -m svg -f " + svg + " " + file + " </dev/null >" +
                  scratch.path("hp2xx.out") + " 2>&1"),
              0)
        << type;
    const std::string picture = readText(svg);
    const std::string text = readText(file);
    // Every pen-down record comes out as a line of the picture.
    int draws = 0, segments = 0;
    for (std::size_t at = text.find("PD"); at != std::string::npos; at = text.find("PD", at + 1))
      ++draws;
    for (std::size_t at = picture.find("L "); at != std::string::npos;
         at = picture.find("L ", at + 1))
      ++segments;
    EXPECT_GT(draws, 30) << type;
    EXPECT_EQ(segments, draws) << type;
    EXPECT_EQ(picture.find("nan"), std::string::npos) << type;
  }
}

TEST_F(Hardcopy, EpsfBoundingBoxEnclosesEveryPoint) {
  // A picture larger than its page: the file keeps to the box it declares.
  const std::string file = scratch.path("big.eps");
  double w = 0, h = 0, a = 0.5;
  EXPECT_STATUS(false, openPlotMedium(OpenHardcopy, MediumFile, medium(TypePostScript, ModelEpsf),
                                      file, "", w, h, a, status));
  EXPECT_NEAR(w, 180.0, 1e-9);
  EXPECT_NEAR(h, 90.0, 1e-9);
  GMARG(0, 0, 0, 0);
  G2SCAL(0.0, 1.0, 0.0, 1.0);
  GCLIPM("off");
  GMOVE2(-0.5, -0.5);
  GDRAW2(1.5, 1.2);
  GDRAW2(0.5, 0.5);
  drawProfile();
  EXPECT_STATUS(false, CLSDEV(OpenHardcopy, true, status));
  const std::string text = readText(file);
  std::smatch box;
  ASSERT_TRUE(std::regex_search(text, box,
                                std::regex("%%BoundingBox: (\\d+) (\\d+) (\\d+) (\\d+)")));
  const double x1 = std::stod(box[1]), y1 = std::stod(box[2]), x2 = std::stod(box[3]),
               y2 = std::stod(box[4]);
  EXPECT_EQ(x2, 510.0);
  const auto points = postScriptPoints(text);
  ASSERT_GT(points.size(), 30u);
  for (const auto& [x, y] : points) {
    EXPECT_TRUE(x >= x1 && x <= x2 && y >= y1 && y <= y2) << x << " " << y;
  }
  EXPECT_EQ(lines(text).back(), "%%Trailer");
  EXPECT_EQ(text.find("showpage"), std::string::npos);
}

TEST_F(Hardcopy, ABoxAtOneToAThousandMeasuresItsSizeOnA4) {
  const std::string file = scratch.path("scale.ps");
  double w = 0, h = 0, a = 0;
  EXPECT_STATUS(false, openPlotMedium(OpenHardcopy, MediumFile, medium(TypePostScript), file, "",
                                      w, h, a, status));
  // A 100 x 50 m box at 1:1000: 100 mm x 50 mm.
  scaleToPaper(0.0, 100.0, 0.0, 50.0, 1000.0);
  GCLIPM("plot");
  GMOVE2(0.0, 0.0);
  GDRAW2(100.0, 0.0);
  GDRAW2(100.0, 50.0);
  GDRAW2(0.0, 50.0);
  GDRAW2(0.0, 0.0);
  EXPECT_STATUS(false, CLSDEV(OpenHardcopy, true, status));
  const auto points = postScriptPoints(readText(file));
  ASSERT_EQ(points.size(), 5u) << readText(file);
  double xmin = 1e9, xmax = -1e9, ymin = 1e9, ymax = -1e9;
  for (const auto& [x, y] : points) {
    xmin = std::min(xmin, x), xmax = std::max(xmax, x);
    ymin = std::min(ymin, y), ymax = std::max(ymax, y);
  }
  const double mmPerPoint = 25.4 / 72.0;
  EXPECT_NEAR((xmax - xmin) * mmPerPoint, 100.0, 0.5);
  EXPECT_NEAR((ymax - ymin) * mmPerPoint, 50.0, 0.5);
}

// --- Failures and spooling ----------------------------------------------------

TEST_F(Hardcopy, AFullDiskIsReportedOnceAndLeavesNoFile) {
  const std::string file = scratch.path("full.ps");
  framework::simulateWriteFailureAfter(2000);
  double w = 0, h = 0, a = 0;
  EXPECT_STATUS(false, openPlotMedium(OpenHardcopy, MediumFile, medium(TypePostScript), file, "",
                                      w, h, a, status));
  drawProfile();
  EXPECT_TRUE(plotState().deviceFailed);
  EXPECT_STATUS(true, CLSDEV(OpenHardcopy, true, status));
  const std::string said = output();
  EXPECT_TRUE(Contains(said, "full.ps"));
  EXPECT_FALSE(framework::fileExists(file));
  EXPECT_EQ(plotState().device, DeviceNoDrawing);  // the state before the plot is back
}

std::string lastCommand;
int recordCommand(std::string_view command) {
  lastCommand = std::string(command);
  return lastCommand.find("refuse") == std::string::npos ? 0 : 1;
}

TEST_F(Hardcopy, PlotterFilesAreSpooledByTheirCommand) {
  EXPECT_EQ(expandSpoolCommand("lp -d pen", "spool.plot"), "lp -d pen spool.plot");
  EXPECT_EQ(expandSpoolCommand("cat %s > /dev/lp0", "spool.plot"), "cat spool.plot > /dev/lp0");
  framework::systemHooks().runCommand = recordCommand;
  const std::string file = scratch.path("spool.plot");
  double w = 0, h = 0, a = 0;
  EXPECT_STATUS(false, openPlotMedium(OpenHardcopy, MediumPlotter, medium(TypeHpgl), file,
                                      "lp -d pen", w, h, a, status));
  drawProfile();
  EXPECT_STATUS(false, CLSDEV(OpenHardcopy, true, status));
  EXPECT_EQ(lastCommand, "lp -d pen " + file);
  EXPECT_TRUE(framework::fileExists(file));
  output();
  EXPECT_STATUS(false, openPlotMedium(OpenHardcopy, MediumPlotter, medium(TypeHpgl), file,
                                      "refuse %s now", w, h, a, status));
  EXPECT_STATUS(true, CLSDEV(OpenHardcopy, true, status));
  EXPECT_TRUE(Contains(output(), "Attempt to spool file to plotter failed"));
  EXPECT_TRUE(Contains(lastCommand, "refuse " + file + " now"));
}

TEST_F(Hardcopy, MediaThatWriteNoPlotFileSaySo) {
  double w = 0, h = 0, a = 0;
  EXPECT_STATUS(true, openPlotMedium(OpenFull, MediumFile, medium(TypeMetafile),
                                     scratch.path("m.svg"), "", w, h, a, status));
  EXPECT_TRUE(Contains(output(), "MetaFile only available as hardcopy option"));
  EXPECT_STATUS(true, openPlotMedium(OpenFull, MediumFile, medium(TypeCgm),
                                     scratch.path("m.cgm"), "", w, h, a, status));
  EXPECT_TRUE(Contains(output(), {"Making CGM output", "CGM output is not written by this version"}));
  EXPECT_FALSE(framework::fileExists(scratch.path("m.cgm")));
  EXPECT_STATUS(true, openPlotMedium(OpenHardcopy, MediumFile, medium("Calcomp"),
                                     scratch.path("m.plt"), "", w, h, a, status));
  EXPECT_TRUE(Contains(output(), "(unknown device type Calcomp)"));
  // The metafile as a hardcopy is an SVG picture.
  const std::string svg = scratch.path("m.svg");
  plot(medium(TypeMetafile), svg);
  EXPECT_TRUE(Contains(readText(svg), {"<svg", "path"}));
}

}  // namespace
}  // namespace kntr::graphics
