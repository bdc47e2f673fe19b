// The drawing device on Cairo: an image in memory (written as PNG), an SVG
// file or a PDF file, and any Cairo surface another binding hands over (the
// window's off-screen buffer).
//
// Lines of one colour are gathered into one path and stroked when the colour
// changes, a fill or clear comes, or the picture is flushed, so a full
// picture costs a few strokes rather than one per segment.
//
//   CairoDevice::image   a device on an image of W x H pixels
//   CairoDevice::file    a device writing an SVG or PDF file of W x H pixels
//   CairoDevice::finish  end the picture; a file device commits its file
//   CairoDevice::writePng  write the image as a PNG file
//   pictureKind          the kind of picture a file name asks for, by extension
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/drawing.h"

typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;

namespace kntr::platform {

enum class PictureKind { None, Png, Svg, Pdf };

// pictureKind: the picture kind of a file name by its extension (.png, .svg,
// .pdf, in either case); None for any other.
PictureKind pictureKind(std::string_view fileName);

class CairoDevice : public Device {
 public:
  // image: an antialiased image of width x height pixels, cleared to the
  // background; `dpi` gives the millimetre size. Null when Cairo refuses.
  static std::unique_ptr<CairoDevice> image(int width, int height, double dpi = 96.0);
  // file: an SVG or PDF picture of width x height units written to `path`
  // (through a temporary file, renamed by finish). Null, with `error` set,
  // when the file cannot be made.
  static std::unique_ptr<CairoDevice> file(PictureKind kind, const std::string& path, int width,
                                           int height, double dpi, std::string& error);
  // onSurface: draw on a surface that another binding owns.
  static std::unique_ptr<CairoDevice> onSurface(cairo_surface_t* surface, int width, int height,
                                                double dpi);
  ~CairoDevice() override;

  int width() const override { return width_; }
  int height() const override { return height_; }
  double widthMm() const override { return width_ * 25.4 / dpi_; }
  double heightMm() const override { return height_ * 25.4 / dpi_; }
  void move(double x, double y) override;
  void draw(double x, double y) override;
  void color(int lineWidth, int colour) override;
  void polygon(int n, const double* xy) override;
  void clear(double left, double top, double right, double bottom) override;
  void clip(double x1, double y1, double x2, double y2) override;
  void palette(int table) override;
  void hairline(bool on) override;
  void flush() override;
  bool picture(const std::string& path, double left, double top, double right,
             double bottom) override;

  // paperColours: draw with the paper table (white ground, black lines).
  void paperColours(bool on);
  // finish: end the picture; for a file device, commit the file. False, with
  // `error` set, when the file could not be completed (it is then removed).
  bool finish(std::string& error);
  // writePng: the image (or the surface) as a PNG file, through a temporary
  // file; false with `error` set on failure, and nothing left behind.
  bool writePng(const std::string& path, std::string& error);
  // pixel: the colour of one pixel of an image device (tests, checks).
  Rgb pixel(int x, int y);
  cairo_surface_t* surface() const { return surface_; }
  cairo_t* context() const { return cr_; }

 private:
  CairoDevice(cairo_surface_t* surface, bool owned, int width, int height, double dpi);
  void strokePending();
  void rasterLine(double x0, double y0, double x1, double y1);
  void setSource(int colour);

  cairo_surface_t* surface_ = nullptr;
  cairo_t* cr_ = nullptr;
  bool owned_ = true;
  int width_ = 0, height_ = 0;
  double dpi_ = 96.0;
  int table_ = 1;
  PaletteMode mode_ = PaletteMode::Screen;
  int colour_ = 1;
  int lineWidth_ = 1;
  bool pending_ = false;
  double penX_ = 0.0, penY_ = 0.0;
  bool hairline_ = false;
  // Hairlines on an image are set straight into its pixels.
  bool image_ = false;
  unsigned char* pixels_ = nullptr;
  int stride_ = 0;
  int rasterColour_ = -1;
  std::uint32_t rasterValue_ = 0;
  int clipLeft_ = 0, clipTop_ = 0, clipRight_ = 0, clipBottom_ = 0;
  std::string path_, temporary_;
  // The last image read, kept for the next picture.
  std::string imagePath_;
  cairo_surface_t* image_surface_ = nullptr;
};

}  // namespace kntr::platform
