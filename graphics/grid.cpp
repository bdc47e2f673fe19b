#include "graphics/grid.h"

#include <cmath>
#include <cstdlib>
#include <algorithm>

#include "framework/format.h"
#include "framework/text.h"
#include "graphics/plotstate.h"

namespace kntr::graphics {

namespace {

struct StepRow {
  double step;
  int period;
};

// Ascending steps: each decade as 1, 2.5 and 5 of its unit.
constexpr StepRow stepTable[GridSteps] = {
    {0.001, 10}, {0.0025, 4}, {0.005, 2}, {0.01, 10}, {0.025, 4}, {0.05, 2},
    {0.1, 10},   {0.25, 4},   {0.5, 2},   {1, 10},    {2.5, 4},   {5, 2},
    {10, 10},    {25, 4},     {50, 2},    {100, 10},  {250, 4},   {500, 2}};

// First row whose lattice has at most GridLines lines over the extent.
int firstFitting(double extent) {
  for (int row = 0; row < GridSteps; ++row)
    if (std::trunc(extent / stepTable[row].step) + 1.0 <= GridLines) return row;
  return -1;
}

// A lattice value as a label: fixed with three decimals inside +-100000,
// else one digit before the point and an exponent.
std::string numberText(double v) {
  const std::string text = (v > -100000.0 && v < 100000.0) ? fmt::F(v, 10, 3) : fmt::PE(v, 10, 3);
  return fmt::stripped(text);
}

bool divisible(long i, int p) { return i % p == 0; }

}  // namespace

bool gridStep(double w, double h, double& step, int& period) {
  const int rx = firstFitting(w);
  const int ry = firstFitting(h);
  if (rx < 0 || ry < 0) return false;
  const int row = std::max(rx, ry);
  step = stepTable[row].step;
  period = stepTable[row].period;
  return true;
}

void GGRID2(bool& failed) {
  failed = false;
  const Rectangle g = plotState().grid;
  // the axes through the origin, where the rectangle holds it
  GCOLOR(1);
  bool verticalAxis = false, horizontalAxis = false;
  if (g.xmin <= 0.0 && 0.0 <= g.xmax) {
    GMOVE2(0.0, g.ymin);
    GDRAW2(0.0, g.ymax);
    verticalAxis = true;
  }
  if (g.ymin <= 0.0 && 0.0 <= g.ymax) {
    GMOVE2(g.xmin, 0.0);
    GDRAW2(g.xmax, 0.0);
    horizontalAxis = true;
  }
  // outline of the grid rectangle
  GCOLOR(5);
  GMOVE2(g.xmin, g.ymin);
  GDRAW2(g.xmax, g.ymin);
  GDRAW2(g.xmax, g.ymax);
  GDRAW2(g.xmin, g.ymax);
  GDRAW2(g.xmin, g.ymin);

  double s = 0.0;
  int p = 0;
  if (!gridStep(g.xmax - g.xmin, g.ymax - g.ymin, s, p)) return;
  const long i0 = static_cast<long>(std::trunc(g.xmin / s));
  const long i1 = static_cast<long>(std::trunc(g.xmax / s));
  const long j0 = static_cast<long>(std::trunc(g.ymin / s));
  const long j1 = static_cast<long>(std::trunc(g.ymax / s));
  bool status = false;
  GTSIZE(0.4, status);

  int rowLabels = 0, columnLabels = 0;
  auto rowLabel = [&](long j) {
    GLORG(8);
    GMOVE2(g.xmin, j * s);
    GCOLOR(3);
    GWTEXT(numberText(j * s));
    ++rowLabels;
  };
  auto columnLabel = [&](long i) {
    GLORG(6);
    GMOVE2(i * s, g.ymin);
    GCOLOR(3);
    GWTEXT(numberText(i * s));
    ++columnLabels;
  };
  hairlines(true);
  for (long i = i0; i <= i1; ++i) {
    for (long j = j0; j <= j1; ++j) {
      const bool major = (i == 0 && j == 0) || (divisible(i, p) && divisible(j, p));
      GMSIZE(major ? 0.8 : 0.4);
      GCOLOR(major ? 3 : 7);
      GMOVE2(i * s, j * s);
      GMARK2(1);
      if (i == i0 && (!verticalAxis || divisible(j, p))) rowLabel(j);
      if (j == j0 && (!horizontalAxis || divisible(i, p))) columnLabel(i);
    }
  }
  // a view between two major lines still gets numbers at its ends
  if (horizontalAxis && columnLabels <= 1) {
    columnLabel(i0);
    columnLabel(i1);
  }
  if (verticalAxis && rowLabels <= 1) {
    rowLabel(j0);
    rowLabel(j1);
  }
  hairlines(false);
  GTANGL(0.0);
  GMSIZE(0.4);
}

void SPSFFM(double value, std::string& text, int length, int& used) {
  used = 0;
  if (length < 16) {
    framework::ERRSCN("(SPSFFM) cannot write float number to character string)");
    text.clear();
    return;
  }
  text = fmt::stripped(fmt::F(value, 16, 2));
  used = fmt::trimmedLength(text);
}

void SPSIFM(long long value, std::string& text, int length, int& used) {
  used = 0;
  const std::string digits = std::to_string(value);
  if (static_cast<int>(digits.size()) > length) {
    framework::ERRSCN("(SPSIFM) cannot write integer number to character string)");
    text.clear();
    return;
  }
  text = digits;
  used = static_cast<int>(digits.size());
}

}  // namespace kntr::graphics
