// kntr-tool plot: the picture of a profile as the display shows it, written
// as a PNG, SVG or PDF file, or as a PostScript, EPSF, HP-GL or HP-GL/2 plot
// file on a paper of A4 to A0, fitted to the page or at a scale of 1:N.
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string>

#include "app/tool/tool.h"
#include "graphics/hardcopy.h"
#include "graphics/plotstate.h"
#include "graphics/strokes.h"
#include "platform/cairodevice.h"
#include "platform/console.h"
#include "profile/block.h"
#include "profile/display.h"

namespace kntr::tool {

namespace {

const char* const plotUsage =
    "plot FILE [--size WxH] [--mesh N] [--quality] [--comb] [--grid|--no-grid] "
    "[--scale 1:N] [--paper A4|A3|A2|A1|A0] (--png|--svg|--pdf|--ps|--eps|--hpgl|--hpgl2) OUT";

// The plot file kinds: the option, the language and the model.
struct PlotFileKind {
  const char* option;
  const char* type;
  const char* model;
};
const PlotFileKind plotFileKinds[] = {{"--ps", graphics::TypePostScript, ""},
                                      {"--eps", graphics::TypePostScript, graphics::ModelEpsf},
                                      {"--hpgl", graphics::TypeHpgl, ""},
                                      {"--hpgl2", graphics::TypeHpgl2, ""}};

// "1:N" or "N" with N above 0.
bool parseScale(const std::string& text, double& denominator) {
  const std::string number = text.rfind("1:", 0) == 0 ? text.substr(2) : text;
  return parseReal(number, denominator) && denominator > 0.0;
}

// "A4" .. "A0" as a paper code.
bool parsePaper(const std::string& text, int& paper) {
  if (text.size() != 2 || (text[0] != 'A' && text[0] != 'a') || text[1] < '0' || text[1] > '4')
    return false;
  paper = text[1] - '0';
  return true;
}

// Room around the box for the grid's numbers.
constexpr double PlotMargin = 0.08;
// Largest side of a picture, in pixels.
constexpr int MaxPictureSide = 20000;

bool parseSize(const std::string& text, int& width, int& height) {
  const auto x = text.find_first_of("xX");
  if (x == std::string::npos) return false;
  return parseInteger(text.substr(0, x), width) && parseInteger(text.substr(x + 1), height) &&
         width >= 16 && height >= 16 && width <= MaxPictureSide && height <= MaxPictureSide;
}

// The picture fitted with a margin (denominator 0) or at 1:denominator; a
// plot file gets the plot's heading as well.
void drawScaled(double denominator, bool& status) {
  const profile::ProfileData& p = profile::profile();
  if (denominator > 0.0) {
    graphics::scaleToPaper(p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4), denominator);
    graphics::GCLIPM("plot");
    profile::DPKNTR(false, false, status);
  } else {
    graphics::GMARG(PlotMargin, PlotMargin, PlotMargin, PlotMargin);
    graphics::GCLIPM("plot");
    profile::DPKNTR(false, true, status);
  }
  if (!status && graphics::hardcopyOpen())
    graphics::GPHEAD(p.PRFTYP == profile::SplineProfile ? "Spline profile" : "Polyline profile",
                     status);
}

}  // namespace

int plotCommand(const Arguments& arguments) {
  if (arguments.empty()) return usage(plotUsage);
  int width = 1280, height = 960, triangles = 0;
  bool grid = true, comb = false, quality = false;
  platform::PictureKind kind = platform::PictureKind::None;
  std::string out;
  const PlotFileKind* plotFile = nullptr;
  double denominator = 0.0;
  int paper = graphics::PaperA4;
  for (std::size_t k = 1; k < arguments.size(); ++k) {
    const std::string& option = arguments[k];
    const bool hasValue = k + 1 < arguments.size();
    if (option == "--size" && hasValue) {
      if (!parseSize(arguments[++k], width, height)) return usage(plotUsage);
    } else if (option == "--mesh" && hasValue) {
      if (!parseInteger(arguments[++k], triangles) || triangles < 1) return usage(plotUsage);
    } else if (option == "--comb") {
      comb = true;
    } else if (option == "--quality") {
      quality = true;
    } else if (option == "--grid") {
      grid = true;
    } else if (option == "--no-grid") {
      grid = false;
    } else if (option == "--scale" && hasValue) {
      if (!parseScale(arguments[++k], denominator)) return usage(plotUsage);
    } else if (option == "--paper" && hasValue) {
      if (!parsePaper(arguments[++k], paper)) return usage(plotUsage);
    } else if (hasValue && kind == platform::PictureKind::None && !plotFile &&
               std::any_of(std::begin(plotFileKinds), std::end(plotFileKinds),
                           [&](const PlotFileKind& f) { return option == f.option; })) {
      for (const PlotFileKind& f : plotFileKinds)
        if (option == f.option) plotFile = &f;
      out = arguments[++k];
    } else if (!plotFile && (option == "--png" || option == "--svg" || option == "--pdf") && hasValue &&
               kind == platform::PictureKind::None) {
      kind = option == "--png"   ? platform::PictureKind::Png
             : option == "--svg" ? platform::PictureKind::Svg
                                 : platform::PictureKind::Pdf;
      out = arguments[++k];
    } else {
      return usage(plotUsage);
    }
  }
  if (kind == platform::PictureKind::None && !plotFile) return usage(plotUsage);

  if (!loadProfile(arguments[0])) return 1;
  profile::ProfileData& p = profile::profile();
  if (!p.BBOXOK) return fail("The profile has no bounding box: nothing to plot");
  p.SHOWGR = grid;
  p.SHOWCB = comb;
  p.MESHQC = quality;
  if (triangles > 0) {
    p.MESHON = true;
    p.MESHDN = triangles;
  }

  bool status = false;
  graphics::loadPlotFonts(status);
  if (status) return fail("");

  if (plotFile) {
    // A plot file through the plot drivers: A4 unless asked, the model's
    // offsets, the thinnest pen; an EPSF page takes the box's aspect.
    graphics::PlotMedium medium;
    medium.type = plotFile->type;
    medium.model = plotFile->model;
    medium.paper = paper;
    double widthMm = 0.0, heightMm = 0.0;
    double aspect = (p.PRBBOX(4) - p.PRBBOX(3)) / std::max(1e-12, p.PRBBOX(2) - p.PRBBOX(1));
    graphics::GINIT(1);
    graphics::openPlotMedium(graphics::OpenHardcopy, graphics::MediumFile, medium, out, "",
                             widthMm, heightMm, aspect, status);
    if (status) return fail("");
    bool drawn = false;
    drawScaled(denominator, drawn);
    bool closed = false;
    graphics::CLSDEV(graphics::OpenHardcopy, !drawn, closed);
    if (drawn || closed) return fail("");
    platform::testconsole::takeOutput();
    return 0;
  }

  std::string error;
  std::unique_ptr<platform::CairoDevice> device =
      kind == platform::PictureKind::Png
          ? platform::CairoDevice::image(width, height)
          : platform::CairoDevice::file(kind, out, width, height, 96.0, error);
  if (!device) return fail("Cannot make the picture " + out + ": " + error);
  graphics::GINIT(1);
  graphics::attachDevice(graphics::DeviceWindow, device.get());
  drawScaled(denominator, status);
  graphics::attachDevice(graphics::DeviceNoDrawing, nullptr);
  if (status) return fail("");
  const bool written =
      kind == platform::PictureKind::Png ? device->writePng(out, error) : device->finish(error);
  if (!written) return fail("Cannot write the picture " + out + ": " + error);
  return 0;
}

}  // namespace kntr::tool
