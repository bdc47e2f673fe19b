#include "graphics/plotfiles.h"

#include <algorithm>
#include <cmath>

#include "framework/format.h"
#include "framework/projects.h"
#include "framework/text.h"
#include "graphics/plotstate.h"

namespace kntr::graphics {


namespace {

constexpr double PointsPerMm = 72.0 / 25.4;
constexpr char Escape = '\x1b';

// Short side of the ISO papers A0..A4, in points.
constexpr int paperShortPoints[5] = {2384, 1684, 1191, 842, 595};

// HP-GL pages by paper code A0..A4: units along x and y, and the y offset.
struct HpglPaper {
  int unitsX, unitsY, yOffset;
};
constexpr HpglPaper hpglPapers[5] = {
    {45320, 32360, 0}, {31400, 22480, 0}, {22480, 14560, 0}, {15970, 10870, 0}, {10870, 7200, 100}};

int paperIndex(int paper) { return std::clamp(paper, PaperA0, PaperA4); }

int pageUnits(double mm) { return static_cast<int>(std::trunc(72.0 * mm / 25.4)); }

// A real coordinate of a PostScript record.
std::string real(double value) { return fmt::F(value, 12, 5); }

// An integer of an HP-GL record.
std::string integer(long value) { return fmt::I(value, 8); }

// Cut the segment to the rectangle [0, xmax] x [0, ymax]; false when none
// of it is inside.
bool cutToPage(double xmax, double ymax, double& x0, double& y0, double& x1, double& y1) {
  double t0 = 0.0, t1 = 1.0;
  const double dx = x1 - x0, dy = y1 - y0;
  const double p[4] = {-dx, dx, -dy, dy};
  const double q[4] = {x0, xmax - x0, y0, ymax - y0};
  for (int k = 0; k < 4; ++k) {
    if (p[k] == 0.0) {
      if (q[k] < 0.0) return false;
      continue;
    }
    const double t = q[k] / p[k];
    if (p[k] < 0.0) {
      if (t > t1) return false;
      t0 = std::max(t0, t);
    } else {
      if (t < t0) return false;
      t1 = std::min(t1, t);
    }
  }
  // Ends inside the page stay exactly as they were.
  const double ax = x0 + t0 * dx, ay = y0 + t0 * dy;
  if (t1 < 1.0) {
    x1 = x0 + t1 * dx;
    y1 = y0 + t1 * dy;
  }
  if (t0 > 0.0) {
    x0 = ax;
    y0 = ay;
  }
  return true;
}

}  // namespace

bool postScriptType(std::string_view type) {
  return type == TypePostScript || type == TypeColourPostScript;
}

bool hpglType(std::string_view type) { return type == TypeHpgl || type == TypeHpgl2; }

PageLayout postScriptLayout(const PlotMedium& m) {
  PageLayout page;
  const int paper = paperIndex(m.paper);
  const bool sized = m.xSize > 0.0 && m.ySize > 0.0;
  const bool offset = m.xOffset != 0.0 || m.yOffset != 0.0;
  if (m.model == ModelEpsf) {
    if (sized) {
      page.widthMm = 1000.0 * m.xSize;
      page.heightMm = 1000.0 * m.ySize;
    } else {
      // The picture's own aspect, the longer side at the default length.
      const double aspect = m.boxAspect > 0.0 ? m.boxAspect : 180.0 / 277.0;
      page.widthMm = aspect <= 1.0 ? DefaultEpsfSideMm : DefaultEpsfSideMm / aspect;
      page.heightMm = aspect <= 1.0 ? DefaultEpsfSideMm * aspect : DefaultEpsfSideMm;
    }
  } else if (m.model == "Kyocera-FS-5500/PF-2" && paper == 3) {
    page.widthMm = 410.0;
    page.heightMm = 287.0;
    page.before = "!R! CASS 3; SPSZ 10; SPO L; EXIT;";
  } else if (m.model == "QMS-Colorscript-210") {
    page.widthMm = sized ? m.xSize : 245.0;
    page.heightMm = sized ? m.ySize : 195.0;
    page.originX = offset ? static_cast<int>(std::lround(m.yOffset * PointsPerMm)) : 94;
    page.originY = offset ? static_cast<int>(std::lround(m.xOffset * PointsPerMm)) : 20;
  } else if (paper == 4) {
    page.widthMm = sized ? m.xSize : 277.0;
    page.heightMm = sized ? m.ySize : 180.0;
    page.originX = offset ? static_cast<int>(std::lround(m.xOffset * PointsPerMm)) : 40;
    page.originY = offset ? static_cast<int>(std::lround(m.yOffset * PointsPerMm)) : 68;
  } else if (paper == 3) {
    page.widthMm = 400.0;
    page.heightMm = 277.0;
    page.originX = 33;
    page.originY = 68;
  } else {
    page.widthMm = 277.0;
    page.heightMm = 180.0;
    page.originX = 18;
    page.originY = 18;
  }
  page.unitsX = std::max(2, pageUnits(page.widthMm));
  page.unitsY = std::max(2, pageUnits(page.heightMm));
  page.paperShort = paperShortPoints[paper];
  page.lineWidth = m.penWidth > 0.0 ? 72.0 * m.penWidth / 300.0 : 0.0;
  return page;
}

PageLayout hpglLayout(const PlotMedium& m) {
  PageLayout page;
  const HpglPaper& paper = hpglPapers[paperIndex(m.paper)];
  page.unitsX = paper.unitsX;
  page.unitsY = paper.unitsY;
  page.widthMm = PlotterUnitMm * paper.unitsX;
  page.heightMm = PlotterUnitMm * paper.unitsY;
  page.originX = 0;
  page.originY = paper.yOffset;
  page.hpgl2 = m.type == TypeHpgl2;
  if (m.model == "DesignJet") {
    page.before = std::string(1, Escape) + "%-1BBP       1,TAR-DESI;";
    page.hpgl2 = true;
  } else if (m.model == "DraftPro-DXL") {
    page.originX = -paper.unitsX / 2;
    page.originY = -paper.unitsY / 2;
  } else if (m.model == "LaserJet-III") {
    page.before = std::string(1, Escape) + "E" + Escape + "&l1O" + Escape + "{0B";
    page.hpgl2 = true;
  }
  return page;
}

// ---------------------------------------------------------------------------
// The file.

void PlotFileDevice::open(std::string_view fileName, const PlotFileStamp& stamp, bool& status) {
  status = false;
  fileName_ = std::string(fileName);
  if (!framework::openOnFreeUnit(file_, fileName_, status)) {
    failed_ = true;
    return;
  }
  head(stamp);
  if (failed_) status = true;
}

void PlotFileDevice::line(std::string_view text) {
  if (failed_) return;
  const int io = file_.writeLine(text);
  if (io == 0) return;
  failed_ = true;
  plotState().deviceFailed = true;
  framework::IOERRM('W', fileName_, io);
}

void PlotFileDevice::finish(bool keep, bool& status) {
  status = false;
  if (!file_.isOpen()) {
    status = failed_;
    return;
  }
  if (keep && !failed_) trailer();
  if (!keep || failed_) {
    file_.abandon();
    status = failed_;
    return;
  }
  const int io = file_.commit();
  if (io != 0) {
    failed_ = true;
    framework::IOERRM('C', fileName_, io);
    status = true;
  }
}

// ---------------------------------------------------------------------------
// PostScript.

PostScriptDevice::PostScriptDevice(const PlotMedium& medium)
    : PlotFileDevice(medium, postScriptLayout(medium)), epsf_(medium.model == ModelEpsf) {}

void PostScriptDevice::head(const PlotFileStamp& stamp) {
  const int w = layout_.unitsX, h = layout_.unitsY;
  const std::string size = std::to_string(w) + " " + std::to_string(h);
  if (epsf_) {
    line("%!PS-Adobe-3.0 EPSF-3.0");
    line("%%BeginComments");
    line("%%Title: " + stamp.project);
    line("%%Creator: Tarvik PostScript interface version " + stamp.version);
    line("%%CreationDate: " + stamp.date + " at " + stamp.time);
    line("%%BoundingBox: 0 0 " + size);
    line("%%EndComments");
  } else {
    // The page is turned: x runs up the paper from the offset, y runs from
    // the offset at the paper's right edge towards the left.
    const int ox = layout_.originX, oy = layout_.originY, s = layout_.paperShort;
    line("%!PS-Adobe-2.0");
    line("%%BeginComments");
    line("%%CreationProgram: Tarvik PostScript interface version " + stamp.version);
    line("%%CreationDate: " + stamp.date + " at " + stamp.time);
    line("%%Dimensions: " + std::to_string(ox) + " " + std::to_string(oy) + " " + size);
    line("%%BoundingBox: " + std::to_string(s - oy - h) + " " + std::to_string(ox) + " " +
         std::to_string(s - oy) + " " + std::to_string(ox + w));
    line("%%EndComments");
    line("%%BeginProlog");
    if (medium_.model == "COMPAQ-PAGEMARQ") {
      if (medium_.paper == 3) line("<< /PageSize [842 1191] >> setpagedevice");
      if (medium_.paper == 4) line("<< /PageSize [595 842] >> setpagedevice");
    }
    if (!layout_.before.empty()) line(layout_.before);
  }
  for (const char* abbreviation :
       {"%%Abbreviations", "/cp { closepath } def", "/fi { fill } def", "/lt { lineto } def",
        "/mt { moveto } def", "/np { newpath } def", "/sc { setrgbcolor } def",
        "/st { stroke } def", "/sw { setlinewidth } def"})
    line(abbreviation);
  line("/clp { /yclip2 exch def /xclip2 exch def /yclip1 exch def /xclip1 exch def");
  line("  np xclip1 yclip1 mt xclip2 yclip1 lt xclip2 yclip2 lt xclip1 yclip2 lt cp } def");
  line("/clw { clp clip } def");
  if (!epsf_) {
    line("%%EndProlog");
    line("%%BeginTransformation");
    line("90 rotate");
    // Onto the paper: the turned page's bottom edge lies along the paper's
    // right edge.
    line("0 " + std::to_string(-layout_.paperShort) + " translate");
    line(std::to_string(layout_.originX) + " " + std::to_string(layout_.originY) + " translate");
    line("%%EndTransformation");
    line("%%BeginGraphics");
  }
  line(real(layout_.lineWidth) + " sw np");
  pathHasPoint_ = false;
  draws_ = 0;
}

void PostScriptDevice::trailer() {
  line("st");
  if (epsf_) {
    line("%%Trailer");
    return;
  }
  line("%%EndGraphics");
  line("showpage");
  line("%%Trailer");
  if (medium_.model == "Kyocera-FS-5500/PF-2") line("!R! RES; EXIT;");
}

void PostScriptDevice::move(double x, double y) {
  // A move to where the path stands (up to rounding) keeps the path going.
  if (pathHasPoint_ && std::abs(x - penX_) < 1e-4 && std::abs(y - penY_) < 1e-4) return;
  penX_ = x;
  penY_ = y;
  // The move is written with the next draw, once the segment is cut to the
  // page.
  pathHasPoint_ = false;
}

void PostScriptDevice::draw(double x, double y) {
  const double startX = penX_, startY = penY_;
  double x0 = startX, y0 = startY, x1 = x, y1 = y;
  penX_ = x;
  penY_ = y;
  if (!cutToPage(layout_.unitsX, layout_.unitsY, x0, y0, x1, y1)) {
    pathHasPoint_ = false;
    return;
  }
  // A path begins, or goes on from where the page cut the line.
  if (!pathHasPoint_ || x0 != startX || y0 != startY) line(real(x0) + real(y0) + " mt");
  line(real(x1) + real(y1) + " lt");
  pathHasPoint_ = x1 == x && y1 == y;
  if (++draws_ >= PostScriptPathLimit) {
    line("st " + real(x1) + real(y1) + " mt");
    draws_ = 0;
  }
}

void PostScriptDevice::color(int, int colour) {
  double r = 0.0, g = 0.0, b = 0.0;
  if (medium_.type == TypeColourPostScript) {
    const platform::Rgb c =
        platform::paletteColour(plotState().palette, colour, platform::PaletteMode::Paper);
    r = c.red / 255.0;
    g = c.green / 255.0;
    b = c.blue / 255.0;
  } else if (colour == 0) {
    r = g = b = 1.0;  // the paper
  }
  // Each component in its field of 6, a blank between (1.0000 fills it).
  line("st " + fmt::F(r, 6, 4) + " " + fmt::F(g, 6, 4) + " " + fmt::F(b, 6, 4) + " sc");
  pathHasPoint_ = false;
  draws_ = 0;
}

void PostScriptDevice::polygon(int n, const double* xy) {
  if (n < 3) return;
  line("st np");
  line(real(xy[0]) + real(xy[1]) + " mt");
  for (int k = 1; k < n; ++k) line(real(xy[2 * k]) + real(xy[2 * k + 1]) + " lt");
  line("cp fi np");
  pathHasPoint_ = false;
  draws_ = 0;
}

void PostScriptDevice::clip(double x1, double y1, double x2, double y2) {
  line("st " + real(x1) + real(y1) + real(x2) + real(y2) + " clw np");
  pathHasPoint_ = false;
  draws_ = 0;
}

void PostScriptDevice::flush() {
  if (draws_ == 0) return;
  line("stroke");
  line("np");
  pathHasPoint_ = false;
  draws_ = 0;
}

// ---------------------------------------------------------------------------
// HP-GL.

HpglDevice::HpglDevice(const PlotMedium& medium) : PlotFileDevice(medium, hpglLayout(medium)) {}

void HpglDevice::head(const PlotFileStamp&) {
  if (!layout_.before.empty()) line(layout_.before);
  const long x0 = layout_.originX, y0 = layout_.originY;
  line("IN;IP" + integer(x0) + "," + integer(y0) + "," + integer(x0 + layout_.unitsX - 1) + "," +
       integer(y0 + layout_.unitsY - 1) + ";");
  line("SP       1;PA" + integer(x0) + "," + integer(y0) + ";");
  penX_ = x0;
  penY_ = y0;
  penKnown_ = true;
  pen_ = 1;
}

void HpglDevice::trailer() {
  line("SP;");
  if (medium_.model == "LaserJet-III")
    line(std::string(1, Escape) + "{0A" + std::string(1, Escape) + "E");
}

void HpglDevice::move(double x, double y) {
  const long px = std::lround(x) + layout_.originX, py = std::lround(y) + layout_.originY;
  if (penKnown_ && px == penX_ && py == penY_) return;
  line("PU" + integer(px) + "," + integer(py) + ";");
  penX_ = px;
  penY_ = py;
  penKnown_ = true;
}

void HpglDevice::draw(double x, double y) {
  const long px = std::lround(x) + layout_.originX, py = std::lround(y) + layout_.originY;
  line("PD" + integer(px) + "," + integer(py) + ";");
  penX_ = px;
  penY_ = py;
  penKnown_ = true;
}

void HpglDevice::color(int, int colour) {
  const int pen = colour <= 0 ? 0 : (colour - 1) % PlotterPens + 1;
  if (pen == pen_) return;
  line("SP" + integer(pen) + ";");
  pen_ = pen;
}

void HpglDevice::polygon(int n, const double* xy) {
  if (n < 2) return;
  move(xy[0], xy[1]);
  for (int k = 1; k < n; ++k) draw(xy[2 * k], xy[2 * k + 1]);
  draw(xy[0], xy[1]);
}

void HpglDevice::clip(double x1, double y1, double x2, double y2) {
  const long ox = layout_.originX, oy = layout_.originY;
  line("IW" + integer(std::lround(x1) + ox) + "," + integer(std::lround(y1) + oy) + "," +
       integer(std::lround(x2) + ox) + "," + integer(std::lround(y2) + oy) + ";");
}

}  // namespace kntr::graphics
