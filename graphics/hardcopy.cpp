#include "graphics/hardcopy.h"

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "framework/configuration.h"
#include "framework/files.h"
#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/projects.h"
#include "framework/state.h"
#include "framework/system.h"
#include "framework/text.h"
#include "graphics/plotstate.h"
#include "graphics/strokes.h"
#include "platform/print.h"

namespace kntr::graphics {

using framework::DeviceTable;
using framework::ERRSCN;

namespace {

// The open hardcopy: the medium, its device, and the plot state it replaced.
struct HardcopyState {
  bool open = false;
  int medium = MediumDisplay;
  int deviceCode = DeviceWindow;
  PlotMedium description;
  std::string fileName;
  std::string spoolCommand;
  std::unique_ptr<PlotFileDevice> file;  // a plot file's writer
  platform::Device* device = nullptr;    // what is drawn on
  double unitMm = 1.0;                   // millimetres of one device unit
  PlotState saved;                       // the state before the open
  platform::Device* savedDevice = nullptr;
};

HardcopyState& hardcopy() {
  static HardcopyState h;
  return h;
}

// The rows of the menu "PAPER SIZE", A4 first.
const std::array<std::string, 5> paperRows{"A4 (297 mm x 210 mm)", "A3 (420 mm x yyy mm)",
                                           "A2 (xxx mm x yyy mm)", "A1 (xxx mm x yyy mm)",
                                           "A0 (xxx mm x yyy mm)"};

// A file in the spool directory, or in the current one when none is set.
std::string spoolPath(std::string_view name) {
  const std::string directory = fmt::stripped(framework::configuration().spoolDirectory);
  if (directory.empty()) return std::string(name);
  const char separator = framework::program().pathSeparator;
  return directory.back() == separator ? directory + std::string(name)
                                       : directory + separator + std::string(name);
}

// Picks one row of a menu (1-based), 0 on abort.
int pickRow(std::string_view title, const std::vector<std::string>& rows, int deflt,
            std::string_view help, bool& status) {
  bool abort = false;
  int selection = deflt;
  framework::TXMENU(title, rows, deflt, help, abort, selection, status);
  if (status || abort || selection < 1 || selection > static_cast<int>(rows.size())) return 0;
  return selection;
}

// The paper of a device: its menu, limited to the sizes the device has.
// The paper code, or -1 on abort.
int pickPaper(const framework::PlotterEntry& e, bool& status) {
  const int largest = std::clamp(e.maximumPaperSize, PaperA0, PaperA4);
  if (largest == PaperA4) return PaperA4;
  std::vector<std::string> rows(paperRows.begin(), paperRows.begin() + (5 - largest));
  const int choice = pickRow("PAPER SIZE", rows, 1, "The paper size of the plot", status);
  return choice == 0 ? -1 : 5 - choice;
}

// The device index of a table: its menu when there are more than one.
int pickDevice(DeviceTable table, std::string_view title, bool& status) {
  const int count = framework::plotterCount(table);
  if (count == 1) return 1;
  std::vector<std::string> rows;
  for (int i = 1; i <= count; ++i) rows.push_back(fmt::stripped(framework::plotter(table, i).name));
  const int deflt = std::max(1, framework::defaultPlotter(table));
  return pickRow(title, rows, deflt, "Select the device to plot on", status);
}

// The plot file's name: asked, and an existing file only on a yes.
bool askPlotFileName(std::string_view deflt, std::string& fileName, bool& status) {
  for (;;) {
    bool abort = false, failed = false;
    framework::ASKQST("Input name of plot file? (max 80 characters)", deflt,
                      "The plot is written to this file", 1, abort, failed);
    if (abort) return false;
    if (failed) {
      status = true;
      return false;
    }
    std::array<std::string, 1> value{std::string(deflt)};
    bool none = false;
    framework::GTCHAR(value, framework::InputLineLength, none, failed);
    if (failed) continue;
    const std::string name = fmt::stripped(value[0]);
    if (name.empty()) continue;
    if (framework::fileExists(name)) {
      bool overwrite = false, cancelled = false;
      framework::askYesNo("OK to overwrite file ** {gre" + framework::literal(name) +
                              "{yel ** ? (yes/no)",
                          false, "no", "", false, overwrite, cancelled);
      if (!overwrite) continue;
    }
    fileName = name;
    return true;
  }
}

// A failure of the print service, told in the printer error's words.
void printerError(std::string_view what, bool& status) {
  framework::fail("Tarvik printer error{nwl{gre(" + framework::literal(what) + ")", status);
}

// A metafile that cannot be written.
void metafileError(std::string_view fileName, std::string_view what, bool& status) {
  framework::fail("Attempt to write metafile failed{nwl{gre** " + framework::literal(fileName) +
                      " **{nwl{gre(" + framework::literal(what) + ")",
                  status);
}

// The queue of a plot on a printer: the only one, or one of a menu with the
// default queue first chosen. Blank on abort or failure.
std::string pickQueue(bool& status) {
  std::vector<std::string> queues;
  std::string deflt, error;
  if (!platform::printQueues(queues, deflt, error)) {
    printerError(error, status);
    return {};
  }
  if (queues.empty()) {
    framework::fail("No printers available", status);
    return {};
  }
  if (queues.size() == 1) return queues[0];
  int row = 1;
  for (std::size_t k = 0; k < queues.size(); ++k)
    if (queues[k] == deflt) row = static_cast<int>(k) + 1;
  const int choice = pickRow("PRINTERS", queues, row, "Select the printer to plot on", status);
  return choice == 0 ? std::string() : queues[static_cast<std::size_t>(choice - 1)];
}

// What a plot file's head shows.
PlotFileStamp stamp() {
  const framework::ProgramState& p = framework::program();
  PlotFileStamp s;
  s.version = fmt::stripped(p.packageVersion);
  s.project = fmt::stripped(p.projectName);
  framework::GTDATE(s.date);
  framework::GTTIME(s.time);
  return s;
}

// Draw on `device` under `code`, keeping what it replaces.
void takeDevice(HardcopyState& h, int code, platform::Device* device) {
  h.saved = plotState();
  h.savedDevice = platform::currentDevice();
  h.device = device;
  h.deviceCode = code;
  attachDevice(code, device);
  h.open = true;
}

}  // namespace

PlotTitles& plotTitles() {
  static PlotTitles t;
  return t;
}

int mediaCode(int medium, int index, int paper) { return 1000 * medium + 10 * index + paper; }

std::string expandSpoolCommand(std::string_view command, std::string_view fileName) {
  std::string text = fmt::stripped(command);
  const std::size_t at = text.find("%s");
  if (at != std::string::npos) return text.replace(at, 2, fileName);
  return text + " " + std::string(fileName);
}

void SLMEDM(int& code, std::string& fileName, bool& cancelled, bool& status) {
  status = false;
  cancelled = false;
  for (;;) {
    bool abort = false, failed = false;
    framework::ASKQST("Select output media? (display = 1, plotter = 2, file = 3)", "1 (display)",
                      "Where the plot goes: the screen, a plotter or a plot file", 1, abort,
                      failed);
    if (abort) {
      cancelled = true;
      return;
    }
    if (failed) {
      status = true;
      return;
    }
    std::array<int, 1> value{1};
    bool none = false;
    framework::GTINTV(value, none, failed);
    if (failed) continue;
    const int medium = value[0];
    if (medium < MediumDisplay || medium > MediumFile) {
      ERRSCN("Output media must be either 1, 2 or 3");
      continue;
    }
    if (medium == MediumDisplay) {
      code = DisplayMediaCode;
      fileName.clear();
      framework::OUTSCN("{csb");
      return;
    }
    const DeviceTable table = medium == MediumPlotter ? DeviceTable::System : DeviceTable::File;
    if (framework::plotterCount(table) == 0) {
      ERRSCN(medium == MediumPlotter ? "No plotters available" : "No files available");
      continue;
    }
    const int index = pickDevice(table, medium == MediumPlotter ? "PLOTTER" : "FILE", status);
    if (status) return;
    if (index == 0) continue;
    const int paper = pickPaper(framework::plotter(table, index), status);
    if (status) return;
    if (paper < 0) continue;
    if (medium == MediumPlotter) {
      fileName = spoolPath(fmt::stripped(framework::program().plotSpoolName));
    } else {
      const std::string deflt = fmt::stripped(framework::plotter(table, index).name);
      if (!askPlotFileName(deflt, fileName, status)) {
        if (status) return;
        continue;
      }
    }
    code = mediaCode(medium, index, paper);
    return;
  }
}

void openPlotMedium(int mode, int medium, const PlotMedium& d, std::string_view fileName,
                    std::string_view spoolCommand, double& widthMm, double& heightMm,
                    double& aspect, bool& status) {
  status = false;
  HardcopyState& h = hardcopy();
  if (h.open) {
    bool ignored = false;
    CLSDEV(OpenHardcopy, false, ignored);
  }
  h = HardcopyState{};
  h.medium = medium;
  h.description = d;
  h.fileName = std::string(fileName);
  h.spoolCommand = std::string(spoolCommand);

  if (d.type == TypeMetafile) {
    if (mode == OpenFull) {
      framework::fail("MetaFile only available as hardcopy option", status);
      return;
    }
    std::string error;
    const double w = d.xSize > 0.0 ? d.xSize : 277.0, ht = d.ySize > 0.0 ? d.ySize : 180.0;
    platform::CairoDevice* page = platform::cwOpenMetaFile(fileName, w, ht, error);
    if (!page) {
      metafileError(fileName, error, status);
      return;
    }
    h.unitMm = 25.4 / platform::PlotPageDpi;
    takeDevice(h, DeviceMetafile, page);
  } else if (d.type == TypeWindowPlotter) {
    const std::string queue = pickQueue(status);
    if (status || queue.empty()) {
      status = true;
      return;
    }
    std::string error;
    platform::CairoDevice* page =
        platform::cwOpenPlotter(queue, spoolPath(fmt::stripped(framework::program().plotSpoolName) +
                                                 ".pdf"),
                                error);
    if (!page) {
      printerError(error, status);
      return;
    }
    h.unitMm = 25.4 / platform::PlotPageDpi;
    takeDevice(h, DevicePrinterPage, page);
  } else if (postScriptType(d.type) || hpglType(d.type)) {
    PlotMedium described = d;
    if (described.boxAspect <= 0.0) described.boxAspect = aspect;
    if (postScriptType(d.type)) {
      h.file = std::make_unique<PostScriptDevice>(described);
      h.unitMm = 25.4 / 72.0;
    } else {
      h.file = std::make_unique<HpglDevice>(described);
      h.unitMm = PlotterUnitMm;
    }
    h.file->open(fileName, stamp(), status);
    if (status) {
      h.file.reset();
      return;
    }
    int code = DevicePageFile;
    if (hpglType(d.type)) code = h.file->layout().hpgl2 ? DevicePlotter2 : DevicePlotter;
    takeDevice(h, code, h.file.get());
    if (code == DevicePlotter) framework::OUTSCN("{csb{yelMaking {greHP-GL{yel output");
    if (code == DevicePlotter2) framework::OUTSCN("{csb{yelMaking {greHP-GL/2{yel output");
  } else if (d.type == TypeCgm) {
    if (mode == OpenFull) framework::OUTSCN("{csb{yelMaking {greCGM{yel output");
    framework::fail("CGM output is not written by this version{nwl{gre(choose PostScript, EPSF, "
                    "HP-GL or HP-GL/2)",
                    status);
    return;
  } else {
    framework::fail("{nwl{gre(unknown device type " + framework::literal(d.type) + ")", status);
    return;
  }
  widthMm = h.device->widthMm();
  heightMm = h.device->heightMm();
  aspect = heightMm / widthMm;
}

void OPNDEV(int mode, int code, std::string_view fileName, double& widthMm, double& heightMm,
            double& aspect, bool& status) {
  status = false;
  const int medium = code / 1000;
  const int index = (code % 1000) / 10;
  const int paper = code % 10;
  if (medium == MediumDisplay) {
    HardcopyState& h = hardcopy();
    h = HardcopyState{};
    h.medium = MediumDisplay;
    const PlotState& s = plotState();
    widthMm = s.xsizem;
    heightMm = s.ysizem;
    aspect = s.asprto;
    return;
  }
  const DeviceTable table = medium == MediumPlotter ? DeviceTable::System : DeviceTable::File;
  if ((medium != MediumPlotter && medium != MediumFile) || index < 1 ||
      index > framework::plotterCount(table)) {
    framework::fail("{nwl{gre(unknown device type " + std::to_string(code) + ")", status);
    return;
  }
  const framework::PlotterEntry& e = framework::plotter(table, index);
  PlotMedium d;
  d.type = fmt::stripped(e.interface);
  d.model = fmt::stripped(e.model);
  d.paper = paper;
  d.xSize = e.xSize;
  d.ySize = e.ySize;
  d.xOffset = e.xOffset;
  d.yOffset = e.yOffset;
  d.penWidth = e.lineThickness;
  openPlotMedium(mode, medium, d, fileName, medium == MediumPlotter ? e.command : std::string(),
                 widthMm, heightMm, aspect, status);
}

void CLSDEV(int mode, bool keep, bool& status) {
  (void)mode;
  status = false;
  HardcopyState& h = hardcopy();
  if (!h.open) {
    h = HardcopyState{};
    flushPlot();
    return;
  }
  flushPlot();
  // The window gets its picture state back before anything is reported.
  attachDevice(h.saved.device, h.savedDevice);
  plotState() = h.saved;
  plotState().deviceColour = -1;
  h.open = false;

  const std::string& type = h.description.type;
  if (h.file) {
    bool failed = false;
    h.file->finish(keep, failed);
    h.file.reset();
    if (failed) {
      status = true;
      return;
    }
    if (keep && h.medium == MediumPlotter) {
      const std::string command = expandSpoolCommand(h.spoolCommand, h.fileName);
      if (framework::runCommandQuietly(command) != 0) {
        framework::fail("Attempt to spool file to plotter failed{nwl{gre** " +
                            framework::literal(command.size() > 6 ? command.substr(6) : "") +
                            " **",
                        status);
        return;
      }
    }
  } else if (type == TypeWindowPlotter) {
    std::string error;
    if (!platform::cwClosePlotter(keep, error)) printerError(error, status);
  } else if (type == TypeMetafile) {
    std::string error;
    if (!platform::cwCloseMetaFile(error)) metafileError(h.fileName, error, status);
  }
}

bool hardcopyOpen() { return hardcopy().open; }

double hardcopyUnitMm() {
  const HardcopyState& h = hardcopy();
  if (h.open) return h.unitMm;
  const PlotState& s = plotState();
  return s.xsizem / std::max(1, s.widthUnits);
}

void scaleToPaper(double xmin, double xmax, double ymin, double ymax, double denominator) {
  const PlotState& s = plotState();
  const double worldPerUnit = hardcopyUnitMm() * denominator / 1000.0;
  const double halfWidth = 0.5 * (s.widthUnits - 1) * worldPerUnit;
  const double halfHeight = 0.5 * (s.heightUnits - 1) * worldPerUnit;
  const double cx = 0.5 * (xmin + xmax), cy = 0.5 * (ymin + ymax);
  GMARG(0.0, 0.0, 0.0, 0.0);
  G2SCAL(cx - halfWidth, cx + halfWidth, cy - halfHeight, cy + halfHeight);
}

void GPHEAD(std::string_view text, bool& status) {
  status = false;
  const PlotTitles& t = plotTitles();
  const std::string heading = fmt::stripped(text);
  if (!(t.heading && !heading.empty()) && !t.logo) return;
  // What is changed here is put back at the end.
  int clip = ClipOff;
  bool ignored = false;
  GINQIN("iclipx", clip, ignored);
  const TextState saved = textState();
  GCLIPM("off");
  const Rectangle frame = plotState().plot;
  auto place = [&](double fx, double fy) {
    TextState& ts = textState();
    ts.x = frame.xmin + fx * (frame.xmax - frame.xmin);
    ts.y = frame.ymin + fy * (frame.ymax - frame.ymin);
    ts.TextAngle = 0.0;
  };
  if (t.heading && !heading.empty()) {
    place(0.5, 0.95);
    textState().TextSize = 1.0;
    textState().Alignment = 5;
    GDWTXT("{2" + heading, status);
  }
  if (t.logo && !status) {
    const framework::ProgramState& p = framework::program();
    std::string date, time;
    framework::GTDATE(date);
    framework::GTTIME(time);
    place(0.01, 0.01);
    textState().TextSize = 0.5;
    textState().Alignment = 1;
    GDWTXT("{2Company{C          : {3" + fmt::stripped(p.company) + "{N" +
               "{2User{C          : {3" + fmt::stripped(p.user) + "{N" +
               "{2Project{C          : {3" + fmt::stripped(p.projectName) + "{N" +
               "{2Date{C          : {3" + date + " {2at {3" + time,
           status);
  }
  textState() = saved;
  GSETIN("iclipx", clip, ignored);
}

void PLTSCL(bool& status) {
  status = false;
  int code = DisplayMediaCode;
  std::string fileName;
  bool cancelled = false;
  SLMEDM(code, fileName, cancelled, status);
  if (status || cancelled) return;
  double width = 0.0, height = 0.0, aspect = TestFrameHeightMm / TestFrameWidthMm;
  OPNDEV(OpenHardcopy, code, fileName, width, height, aspect, status);
  if (status) return;
  // At 1:1000 one unit is one millimetre of the page.
  int colour = 1, clip = ClipOff;
  bool ignored = false;
  GINQIN("lincol", colour, ignored);
  GINQIN("iclipx", clip, ignored);
  scaleToPaper(0.0, TestFrameWidthMm, 0.0, TestFrameHeightMm, 1000.0);
  GCLIPM("plot");
  GSETIN("lincol", 1, ignored);
  const double w = TestFrameWidthMm, h = TestFrameHeightMm;
  GMOVE2(0.0, 0.0);
  GDRAW2(w, 0.0);
  GDRAW2(w, h);
  GDRAW2(0.0, h);
  GDRAW2(0.0, 0.0);
  for (double x = 10.0; x < w; x += 10.0) {
    GMOVE2(x, 0.0);
    GDRAW2(x, 5.0);
  }
  for (double y = 10.0; y < h; y += 10.0) {
    GMOVE2(0.0, y);
    GDRAW2(5.0, y);
  }
  const TextState saved = textState();
  textState().x = 0.5 * w;
  textState().y = 0.5 * h;
  textState().Alignment = 5;
  textState().TextSize = 1.0;
  bool failed = false;
  GDWTXT("Test plot: frame " + fmt::I(static_cast<long long>(w), 3) + " mm x " +
             fmt::I(static_cast<long long>(h), 3) + " mm, ticks 10 mm",
         failed);
  textState() = saved;
  GSETIN("lincol", colour, ignored);
  GSETIN("iclipx", clip, ignored);
  bool closed = false;
  CLSDEV(OpenHardcopy, true, closed);
  status = closed;
}

void MNPLAT(bool& status) {
  status = false;
  PlotTitles& t = plotTitles();
  for (;;) {
    const std::vector<std::string> rows{
        "Heading on plot .............................. " + framework::logicalStateText(t.heading),
        "Logo on plot ................................. " + framework::logicalStateText(t.logo)};
    bool abort = false;
    int selection = 3;
    framework::TXMENU("PLOT ATTRIBUTES", rows, 3, "Switch the heading and the logo of plots",
                      abort, selection, status);
    if (status || abort || selection < 1 || selection > 2) return;
    if (selection == 1)
      t.heading = !t.heading;
    else
      t.logo = !t.logo;
  }
}

}  // namespace kntr::graphics
