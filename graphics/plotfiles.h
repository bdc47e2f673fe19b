// Plot files: the page description and pen plotter languages that a plot
// can be written in, as drawing devices.
//
// A plot file device writes the text of its language as the plot state
// draws: a header and set-up when it opens, one record per primitive, a
// trailer when it is finished. The file is written under a temporary name
// and put in place only by finish(); a write that fails is reported once,
// marks the device as failed (later primitives write nothing) and sets the
// plot state's device-failed flag.
//
// PostScript draws in points on a page turned by 90 degrees (landscape);
// EPSF draws in points on an upright page of its own size; HP-GL and
// HP-GL/2 draw in plotter units of 0.025 mm from an origin of the paper.
//
//   PlotMedium          what the device tables say about one plot medium
//   PageLayout          the page a medium gives: size, units, offsets, set-up
//   postScriptLayout    the page of a PostScript or EPSF medium
//   hpglLayout          the page of an HP-GL or HP-GL/2 medium
//   PlotFileDevice      the common part: the file, its failure, the finish
//   PostScriptDevice    PostScript, colour PostScript and EPSF
//   HpglDevice          HP-GL and HP-GL/2
#pragma once

#include <string>
#include <string_view>

#include "framework/files.h"
#include "platform/drawing.h"

namespace kntr::graphics {

// Paper codes.
inline constexpr int PaperA0 = 0;
inline constexpr int PaperA4 = 4;
// Draws in one PostScript path before it is stroked and begun again.
inline constexpr int PostScriptPathLimit = 200;
// HP-GL plotter unit, in millimetres.
inline constexpr double PlotterUnitMm = 0.025;
// Pens of a pen plotter that colours go round.
inline constexpr int PlotterPens = 8;
// Longer side of an EPSF page whose size is not configured, in millimetres.
inline constexpr double DefaultEpsfSideMm = 180.0;

// Device type texts.
inline constexpr const char* TypePostScript = "PostScript";
inline constexpr const char* TypeColourPostScript = "ColorPostScript";
inline constexpr const char* TypeHpgl = "HP-GL";
inline constexpr const char* TypeHpgl2 = "HP-GL/2";
inline constexpr const char* TypeCgm = "CGM";
inline constexpr const char* TypeMetafile = "MetaFile";
inline constexpr const char* TypeWindowPlotter = "WIN32PLOTTER";
inline constexpr const char* ModelEpsf = "EPSF";

struct PlotMedium {
  std::string type;   // DeviceType: the language
  std::string model;  // DeviceModel
  int paper = PaperA4;
  double xSize = 0.0, ySize = 0.0;      // configured page size, mm (0: the model's)
  double xOffset = 0.0, yOffset = 0.0;  // configured page offset, mm
  double penWidth = 0.0;                // 1/300 inch; 0 the thinnest line
  double boxAspect = 0.0;  // height / width of the picture, for an unsized EPSF page
};

struct PageLayout {
  double widthMm = 0.0, heightMm = 0.0;  // the drawing surface
  int unitsX = 0, unitsY = 0;            // PageUnits
  int originX = 0, originY = 0;          // offset (points) or origin (plotter units)
  int paperShort = 0;                    // PostScript: the paper's short side, points
  double lineWidth = 0.0;                // PostScript: points
  std::string before;                    // the model's text before the set-up
  bool hpgl2 = false;                    // HP-GL/2 by type or model
};

// True for the languages written by the devices below.
bool postScriptType(std::string_view type);
bool hpglType(std::string_view type);

// The page of a PostScript (or EPSF, by model) medium.
PageLayout postScriptLayout(const PlotMedium& medium);
// The page of an HP-GL or HP-GL/2 medium.
PageLayout hpglLayout(const PlotMedium& medium);

// What the file heads show: the program's version, project, date and time.
struct PlotFileStamp {
  std::string version, project, date, time;
};

class PlotFileDevice : public platform::Device {
 public:
  ~PlotFileDevice() override = default;
  int width() const override { return layout_.unitsX; }
  int height() const override { return layout_.unitsY; }
  double widthMm() const override { return layout_.widthMm; }
  double heightMm() const override { return layout_.heightMm; }
  bool rowsDown() const override { return false; }
  void clear(double, double, double, double) override {}

  // open: start the file and write its head and set-up. The open failure is
  // reported (IOERRM) and sets status.
  void open(std::string_view fileName, const PlotFileStamp& stamp, bool& status);
  // finish: with `keep`, write the trailer and put the file in place; without,
  // throw it away. A failure is reported and sets status.
  void finish(bool keep, bool& status);
  bool failed() const { return failed_; }
  const PageLayout& layout() const { return layout_; }
  const std::string& fileName() const { return fileName_; }

 protected:
  PlotFileDevice(const PlotMedium& medium, const PageLayout& layout)
      : medium_(medium), layout_(layout) {}
  // One record; a failure is reported once and stops later records.
  void line(std::string_view text);
  virtual void head(const PlotFileStamp& stamp) = 0;
  virtual void trailer() = 0;

  PlotMedium medium_;
  PageLayout layout_;

 private:
  framework::AtomicWriter file_;
  std::string fileName_;
  bool failed_ = false;
};

class PostScriptDevice : public PlotFileDevice {
 public:
  explicit PostScriptDevice(const PlotMedium& medium);
  void move(double x, double y) override;
  void draw(double x, double y) override;
  void color(int lineWidth, int colour) override;
  void polygon(int n, const double* xy) override;
  void clip(double x1, double y1, double x2, double y2) override;
  void flush() override;
  bool epsf() const { return epsf_; }

 private:
  void head(const PlotFileStamp& stamp) override;
  void trailer() override;
  bool epsf_ = false;
  double penX_ = 0.0, penY_ = 0.0;
  bool pathHasPoint_ = false;  // the path has a current point
  int draws_ = 0;              // draws since the path began
};

class HpglDevice : public PlotFileDevice {
 public:
  explicit HpglDevice(const PlotMedium& medium);
  void move(double x, double y) override;
  void draw(double x, double y) override;
  void color(int lineWidth, int colour) override;
  void polygon(int n, const double* xy) override;
  void clip(double x1, double y1, double x2, double y2) override;

 private:
  void head(const PlotFileStamp& stamp) override;
  void trailer() override;
  long penX_ = 0, penY_ = 0;
  bool penKnown_ = false;
  int pen_ = 1;
};

}  // namespace kntr::graphics
