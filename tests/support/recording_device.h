// Test support: a drawing device that records what it is asked to draw.
//
// Attach it with graphics::attachDevice (DevicePageFile keeps positions
// unrounded, DeviceWindow rounds them and counts rows downward); each call
// is kept as an Operation, and lines() gives the drawn segments in device
// units.
#pragma once

#include <string>
#include <vector>

#include "platform/drawing.h"

namespace kntr::testing {

class RecordingDevice : public platform::Device {
 public:
  enum class Kind { Move, Draw, Colour, Polygon, Clear, Clip, Palette, Flush };
  struct Operation {
    Kind kind = Kind::Move;
    double x = 0.0, y = 0.0;    // move, draw; first corner of clear, clip
    double x2 = 0.0, y2 = 0.0;  // second corner of clear, clip
    int colour = 0;             // colour, palette
    int lineWidth = 0;
    std::vector<double> points;  // polygon, x y pairs
  };
  struct Line {
    double x0, y0, x1, y1;
    int colour;
  };

  RecordingDevice(int width = 1001, int height = 1001, double widthMm = 200.0,
                  double heightMm = 200.0)
      : width_(width), height_(height), widthMm_(widthMm), heightMm_(heightMm) {}

  int width() const override { return width_; }
  int height() const override { return height_; }
  double widthMm() const override { return widthMm_; }
  double heightMm() const override { return heightMm_; }
  bool rowsDown() const override { return rowsDown_; }
  void setRowsDown(bool down) { rowsDown_ = down; }

  void move(double x, double y) override {
    operations.push_back(at(Kind::Move, x, y));
    penX_ = x;
    penY_ = y;
  }
  void draw(double x, double y) override {
    operations.push_back(at(Kind::Draw, x, y));
    drawn.push_back(Line{penX_, penY_, x, y, colour_});
    penX_ = x;
    penY_ = y;
  }
  void color(int lineWidth, int colour) override {
    Operation op = at(Kind::Colour);
    op.colour = colour;
    op.lineWidth = lineWidth;
    operations.push_back(op);
    colour_ = colour;
  }
  void polygon(int n, const double* xy) override {
    Operation op = at(Kind::Polygon);
    op.colour = colour_;
    op.points.assign(xy, xy + 2 * n);
    operations.push_back(op);
  }
  void clear(double left, double top, double right, double bottom) override {
    operations.push_back(at(Kind::Clear, left, top, right, bottom));
  }
  void clip(double x1, double y1, double x2, double y2) override {
    operations.push_back(at(Kind::Clip, x1, y1, x2, y2));
  }
  void palette(int table) override {
    Operation op = at(Kind::Palette);
    op.colour = table;
    operations.push_back(op);
  }
  void flush() override { operations.push_back(at(Kind::Flush)); }

  // Forget what was recorded.
  void forget() {
    operations.clear();
    drawn.clear();
  }
  // Number of recorded operations of a kind.
  int count(Kind kind) const {
    int n = 0;
    for (const Operation& op : operations) n += op.kind == kind;
    return n;
  }

  std::vector<Operation> operations;
  std::vector<Line> drawn;  // every draw as a segment, with the colour in use

 private:
  static Operation at(Kind kind, double x = 0.0, double y = 0.0, double x2 = 0.0, double y2 = 0.0) {
    Operation op;
    op.kind = kind;
    op.x = x;
    op.y = y;
    op.x2 = x2;
    op.y2 = y2;
    return op;
  }
  int width_, height_;
  double widthMm_, heightMm_;
  bool rowsDown_ = true;
  double penX_ = 0.0, penY_ = 0.0;
  int colour_ = -1;
};

}  // namespace kntr::testing
