#include "platform/cairodevice.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cerrno>
#include <cstdio>
#include <csetjmp>
#include <cstring>
#include <vector>

// libjpeg needs FILE declared before it
#include <jpeglib.h>

namespace kntr::platform {

namespace {

// A temporary name beside the file it will replace.
std::string temporaryName(const std::string& path) {
  return path + ".part" + std::to_string(::getpid());
}

// Line width in device units for width index 1..3.
double lineWidthOf(int index) { return index <= 1 ? 1.0 : index == 2 ? 2.0 : 3.0; }

// A libjpeg error: back to the caller through the jump buffer, so a bad
// file is refused instead of ending the program.
struct JpegError {
  jpeg_error_mgr manager;
  std::jmp_buf jump;
};

void jpegFailed(j_common_ptr info) {
  std::longjmp(reinterpret_cast<JpegError*>(info->err)->jump, 1);
}

// A JPEG file as an image surface, or null when it cannot be read.
cairo_surface_t* readJpeg(const char* path) {
  std::FILE* file = std::fopen(path, "rb");
  if (!file) return nullptr;
  jpeg_decompress_struct info;
  JpegError error;
  info.err = jpeg_std_error(&error.manager);
  error.manager.error_exit = jpegFailed;
  cairo_surface_t* volatile surface = nullptr;
  if (setjmp(error.jump)) {
    jpeg_destroy_decompress(&info);
    std::fclose(file);
    if (surface) cairo_surface_destroy(surface);
    return nullptr;
  }
  jpeg_create_decompress(&info);
  jpeg_stdio_src(&info, file);
  jpeg_read_header(&info, TRUE);
  info.out_color_space = JCS_RGB;
  jpeg_start_decompress(&info);
  const int w = static_cast<int>(info.output_width), h = static_cast<int>(info.output_height);
  surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, w, h);
  cairo_surface_flush(surface);
  unsigned char* data = cairo_image_surface_get_data(surface);
  const int stride = cairo_image_surface_get_stride(surface);
  std::vector<unsigned char> row(3 * static_cast<std::size_t>(w));
  while (info.output_scanline < info.output_height) {
    const int y = static_cast<int>(info.output_scanline);
    JSAMPROW rows[1] = {row.data()};
    jpeg_read_scanlines(&info, rows, 1);
    for (int x = 0; x < w; ++x) {
      const std::uint32_t v = (std::uint32_t(row[3 * x]) << 16) |
                              (std::uint32_t(row[3 * x + 1]) << 8) | row[3 * x + 2];
      std::memcpy(data + y * stride + 4 * x, &v, 4);
    }
  }
  cairo_surface_mark_dirty(surface);
  jpeg_finish_decompress(&info);
  jpeg_destroy_decompress(&info);
  std::fclose(file);
  return surface;
}

// A picture file, PNG or JPEG by its first bytes, as an image surface.
cairo_surface_t* readPicture(const std::string& path) {
  unsigned char magic[2] = {0, 0};
  if (std::FILE* f = std::fopen(path.c_str(), "rb")) {
    if (std::fread(magic, 1, 2, f) != 2) magic[0] = 0;
    std::fclose(f);
  }
  if (magic[0] == 0xFF && magic[1] == 0xD8) {
    if (cairo_surface_t* s = readJpeg(path.c_str())) return s;
    return cairo_image_surface_create(CAIRO_FORMAT_INVALID, 0, 0);
  }
  return cairo_image_surface_create_from_png(path.c_str());
}

}  // namespace

PictureKind pictureKind(std::string_view fileName) {
  const auto dot = fileName.rfind('.');
  if (dot == std::string_view::npos) return PictureKind::None;
  std::string ext(fileName.substr(dot + 1));
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (ext == "png") return PictureKind::Png;
  if (ext == "svg") return PictureKind::Svg;
  if (ext == "pdf") return PictureKind::Pdf;
  return PictureKind::None;
}

CairoDevice::CairoDevice(cairo_surface_t* surface, bool owned, int width, int height, double dpi)
    : surface_(surface), owned_(owned), width_(width), height_(height), dpi_(dpi) {
  cr_ = cairo_create(surface_);
  cairo_set_line_cap(cr_, CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(cr_, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_width(cr_, 1.0);
  image_ = cairo_surface_get_type(surface_) == CAIRO_SURFACE_TYPE_IMAGE;
  clipRight_ = width_ - 1;
  clipBottom_ = height_ - 1;
}

CairoDevice::~CairoDevice() {
  if (image_surface_) cairo_surface_destroy(image_surface_);
  if (cr_) cairo_destroy(cr_);
  if (surface_ && owned_) cairo_surface_destroy(surface_);
  if (!temporary_.empty()) std::remove(temporary_.c_str());
}

std::unique_ptr<CairoDevice> CairoDevice::image(int width, int height, double dpi) {
  if (width < 1 || height < 1) return nullptr;
  cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  if (cairo_surface_status(s) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(s);
    return nullptr;
  }
  std::unique_ptr<CairoDevice> d(new CairoDevice(s, true, width, height, dpi));
  d->clear(0, 0, width, height);
  return d;
}

std::unique_ptr<CairoDevice> CairoDevice::file(PictureKind kind, const std::string& path,
                                               int width, int height, double dpi,
                                               std::string& error) {
  if (width < 1 || height < 1) {
    error = "picture size must be positive";
    return nullptr;
  }
  const std::string temporary = temporaryName(path);
  cairo_surface_t* s = nullptr;
  if (kind == PictureKind::Svg)
    s = cairo_svg_surface_create(temporary.c_str(), width, height);
  else if (kind == PictureKind::Pdf)
    s = cairo_pdf_surface_create(temporary.c_str(), width, height);
  else {
    error = "not a vector picture";
    return nullptr;
  }
  if (cairo_surface_status(s) != CAIRO_STATUS_SUCCESS) {
    error = cairo_status_to_string(cairo_surface_status(s));
    cairo_surface_destroy(s);
    std::remove(temporary.c_str());
    return nullptr;
  }
  std::unique_ptr<CairoDevice> d(new CairoDevice(s, true, width, height, dpi));
  d->path_ = path;
  d->temporary_ = temporary;
  d->clear(0, 0, width, height);
  return d;
}

std::unique_ptr<CairoDevice> CairoDevice::onSurface(cairo_surface_t* surface, int width,
                                                    int height, double dpi) {
  return std::unique_ptr<CairoDevice>(new CairoDevice(surface, false, width, height, dpi));
}

void CairoDevice::setSource(int colour) {
  const Rgb c = paletteColour(table_, colour, mode_);
  cairo_set_source_rgb(cr_, c.red / 255.0, c.green / 255.0, c.blue / 255.0);
}

void CairoDevice::strokePending() {
  if (!pending_) return;
  double x = 0.0, y = 0.0;
  cairo_get_current_point(cr_, &x, &y);
  setSource(colour_);
  cairo_set_line_width(cr_, lineWidthOf(lineWidth_));
  // hairlines: no smoothing and plain ends, which Cairo strokes much faster
  cairo_set_antialias(cr_, hairline_ ? CAIRO_ANTIALIAS_NONE : CAIRO_ANTIALIAS_DEFAULT);
  cairo_set_line_cap(cr_, CAIRO_LINE_CAP_BUTT);
  cairo_set_line_join(cr_, hairline_ ? CAIRO_LINE_JOIN_MITER : CAIRO_LINE_JOIN_BEVEL);
  cairo_stroke(cr_);
  // the pen stays where the last line ended
  cairo_move_to(cr_, x, y);
  pending_ = false;
}

// Pixel positions are the centres of pixels, so one-pixel lines stay sharp.
void CairoDevice::move(double x, double y) {
  cairo_move_to(cr_, x + 0.5, y + 0.5);
  penX_ = x;
  penY_ = y;
}

void CairoDevice::draw(double x, double y) {
  if (hairline_ && image_ && lineWidth_ <= 1) {
    rasterLine(penX_, penY_, x, y);
    penX_ = x;
    penY_ = y;
    return;
  }
  if (!cairo_has_current_point(cr_)) cairo_move_to(cr_, penX_ + 0.5, penY_ + 0.5);
  cairo_line_to(cr_, x + 0.5, y + 0.5);
  penX_ = x;
  penY_ = y;
  pending_ = true;
}

void CairoDevice::color(int lineWidth, int colour) {
  if (colour == colour_ && lineWidth == lineWidth_) return;
  strokePending();
  colour_ = colour;
  lineWidth_ = lineWidth;
}

void CairoDevice::polygon(int n, const double* xy) {
  strokePending();
  if (n < 3) return;
  cairo_new_path(cr_);
  cairo_move_to(cr_, xy[0] + 0.5, xy[1] + 0.5);
  for (int k = 1; k < n; ++k) cairo_line_to(cr_, xy[2 * k] + 0.5, xy[2 * k + 1] + 0.5);
  cairo_close_path(cr_);
  setSource(colour_);
  cairo_set_antialias(cr_, CAIRO_ANTIALIAS_DEFAULT);
  cairo_fill(cr_);
}

void CairoDevice::clear(double left, double top, double right, double bottom) {
  strokePending();
  cairo_new_path(cr_);
  cairo_save(cr_);
  cairo_reset_clip(cr_);
  setSource(0);
  cairo_rectangle(cr_, left, top, right - left + 1.0, bottom - top + 1.0);
  cairo_fill(cr_);
  cairo_restore(cr_);
}

void CairoDevice::clip(double x1, double y1, double x2, double y2) {
  strokePending();
  clipLeft_ = std::max(0, static_cast<int>(std::ceil(x1)));
  clipTop_ = std::max(0, static_cast<int>(std::ceil(y1)));
  clipRight_ = std::min(width_ - 1, static_cast<int>(std::floor(x2)));
  clipBottom_ = std::min(height_ - 1, static_cast<int>(std::floor(y2)));
  cairo_new_path(cr_);
  cairo_reset_clip(cr_);
  cairo_rectangle(cr_, x1, y1, x2 - x1 + 1.0, y2 - y1 + 1.0);
  cairo_clip(cr_);
}

void CairoDevice::palette(int table) {
  strokePending();
  rasterColour_ = -1;
  table_ = table;
}

void CairoDevice::paperColours(bool on) {
  strokePending();
  mode_ = on ? PaletteMode::Paper : PaletteMode::Screen;
  rasterColour_ = -1;
}

void CairoDevice::hairline(bool on) {
  if (on == hairline_) return;
  strokePending();
  if (on && image_) {
    // Cairo must be done with the pixels before they are written here
    cairo_surface_flush(surface_);
    pixels_ = cairo_image_surface_get_data(surface_);
    stride_ = cairo_image_surface_get_stride(surface_);
  } else if (!on && image_) {
    cairo_surface_mark_dirty(surface_);
  }
  hairline_ = on;
}

// A one-pixel line straight into the image, inside the clip rectangle.
void CairoDevice::rasterLine(double x0, double y0, double x1, double y1) {
  if (rasterColour_ != colour_) {
    const Rgb c = paletteColour(table_, colour_, mode_);
    rasterValue_ = (std::uint32_t(c.red) << 16) | (std::uint32_t(c.green) << 8) | c.blue;
    rasterColour_ = colour_;
  }
  const std::uint32_t value = rasterValue_;
  int ax = static_cast<int>(std::lround(x0)), ay = static_cast<int>(std::lround(y0));
  const int bx = static_cast<int>(std::lround(x1)), by = static_cast<int>(std::lround(y1));
  const int dx = std::abs(bx - ax), dy = -std::abs(by - ay);
  const int sx = ax < bx ? 1 : -1, sy = ay < by ? 1 : -1;
  int error = dx + dy;
  for (;;) {
    if (ax >= clipLeft_ && ax <= clipRight_ && ay >= clipTop_ && ay <= clipBottom_)
      std::memcpy(pixels_ + ay * stride_ + 4 * ax, &value, 4);
    if (ax == bx && ay == by) break;
    const int e2 = 2 * error;
    if (e2 >= dy) {
      error += dy;
      ax += sx;
    }
    if (e2 <= dx) {
      error += dx;
      ay += sy;
    }
  }
}

void CairoDevice::flush() {
  strokePending();
  if (hairline_ && image_) cairo_surface_mark_dirty(surface_);
  cairo_surface_flush(surface_);
}

bool CairoDevice::picture(const std::string& path, double left, double top, double right,
                        double bottom) {
  strokePending();
  if (path != imagePath_ || !image_surface_) {
    if (image_surface_) cairo_surface_destroy(image_surface_);
    image_surface_ = readPicture(path);
    imagePath_ = path;
  }
  if (cairo_surface_status(image_surface_) != CAIRO_STATUS_SUCCESS) return false;
  const int w = cairo_image_surface_get_width(image_surface_);
  const int h = cairo_image_surface_get_height(image_surface_);
  if (w < 1 || h < 1 || right <= left || bottom <= top) return false;
  cairo_save(cr_);
  cairo_new_path(cr_);
  cairo_translate(cr_, left, top);
  cairo_scale(cr_, (right - left + 1.0) / w, (bottom - top + 1.0) / h);
  cairo_set_source_surface(cr_, image_surface_, 0.0, 0.0);
  cairo_paint(cr_);
  cairo_restore(cr_);
  return true;
}

bool CairoDevice::finish(std::string& error) {
  flush();
  cairo_surface_finish(surface_);
  const cairo_status_t status = cairo_surface_status(surface_);
  if (status != CAIRO_STATUS_SUCCESS) {
    error = cairo_status_to_string(status);
    if (!temporary_.empty()) std::remove(temporary_.c_str());
    temporary_.clear();
    return false;
  }
  if (temporary_.empty()) return true;
  if (std::rename(temporary_.c_str(), path_.c_str()) != 0) {
    error = std::strerror(errno);
    std::remove(temporary_.c_str());
    temporary_.clear();
    return false;
  }
  temporary_.clear();
  return true;
}

bool CairoDevice::writePng(const std::string& path, std::string& error) {
  flush();
  const std::string temporary = temporaryName(path);
  const cairo_status_t status = cairo_surface_write_to_png(surface_, temporary.c_str());
  if (status != CAIRO_STATUS_SUCCESS) {
    error = cairo_status_to_string(status);
    std::remove(temporary.c_str());
    return false;
  }
  if (std::rename(temporary.c_str(), path.c_str()) != 0) {
    error = std::strerror(errno);
    std::remove(temporary.c_str());
    return false;
  }
  return true;
}

Rgb CairoDevice::pixel(int x, int y) {
  flush();
  if (cairo_surface_get_type(surface_) != CAIRO_SURFACE_TYPE_IMAGE || x < 0 || y < 0 ||
      x >= width_ || y >= height_)
    return Rgb{};
  const unsigned char* data = cairo_image_surface_get_data(surface_);
  const int stride = cairo_image_surface_get_stride(surface_);
  std::uint32_t v;
  std::memcpy(&v, data + y * stride + 4 * x, 4);
  return Rgb{static_cast<std::uint8_t>((v >> 16) & 0xFF), static_cast<std::uint8_t>((v >> 8) & 0xFF),
             static_cast<std::uint8_t>(v & 0xFF)};
}

}  // namespace kntr::platform
