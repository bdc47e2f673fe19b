#include "graphics/view.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/checks.h"
#include "support/console_fixture.h"

namespace kntr::graphics {
namespace {

using kntr::testing::Contains;
constexpr double Pi = 3.14159265358979323846;

int draws = 0, erases = 0;
void client(bool erase, bool, bool& status) {
  status = false;
  (erase ? erases : draws)++;
}

// Views of a 10 x 10 box on a square surface without margins, so that the
// first view has magnification 1.
class Views : public kntr::testing::ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    resetPlotState();
    resetViewState();
    rescalePlotState(1001, 1001, 100.0, 100.0);
    GMARG(0, 0, 0, 0);
    G2SCLT(0, 10, 0, 10);
    bool failed = false;
    SPBBOX(0, 10, 0, 10, 0, 0, failed);
    setViewClient(client);
    draws = erases = 0;
  }
  void TearDown() override {
    setViewClient(nullptr);
    ConsoleTest::TearDown();
  }
  static double width() { return plotState().margin.xmax - plotState().margin.xmin; }
};

TEST_F(Views, TenZoomsInStopAtThePrecisionThreshold) {
  bool failed = false;
  for (int k = 1; k <= 9; ++k) zoomAbout(5, 5, true, failed);
  EXPECT_NEAR(viewState().ZOOMMG, 512.0, 1e-6);
  EXPECT_TRUE(viewState().ZOOMED);
  const Rectangle before = plotState().margin;
  type("\n");
  zoomAbout(5, 5, true, failed);
  EXPECT_TRUE(Contains(output(), "(LZOMOK) Zoom magnification exceeds precision threshold!"));
  EXPECT_FALSE(viewState().ZOOMED);
  EXPECT_DOUBLE_EQ(plotState().margin.xmin, before.xmin);
  EXPECT_DOUBLE_EQ(plotState().margin.xmax, before.xmax);
  // A refused zoom still goes through the redraw.
  EXPECT_EQ(draws, 10);
  EXPECT_EQ(erases, 10);
}

TEST_F(Views, PreviousTwiceReturnsToTheFirstView) {
  bool failed = false;
  zoomAbout(2, 3, true, failed);
  const Rectangle zoomed = plotState().margin;
  GZPREV(failed);
  EXPECT_NEAR(width(), 10.0, 1e-9);
  EXPECT_FALSE(viewState().ZOOMED);  // the view applied is wider than the one left
  GZPREV(failed);
  EXPECT_NEAR(plotState().margin.xmin, zoomed.xmin, 1e-9);
  EXPECT_NEAR(plotState().margin.ymax, zoomed.ymax, 1e-9);
  EXPECT_TRUE(viewState().ZOOMED);
}

TEST_F(Views, PanMovesByAFractionAndZoomAboutAPointKeepsIt) {
  bool failed = false;
  GPANVW(4, failed);  // PR
  EXPECT_NEAR(plotState().margin.xmin, 2.5, 1e-9);
  GPANVW(1, failed);  // PU
  EXPECT_NEAR(plotState().margin.ymin, 2.5, 1e-9);
  // The wheel: (4, 6) stays where it stands in the view.
  const Rectangle r = plotState().margin;
  const double u = (4 - r.xmin) / (r.xmax - r.xmin), v = (6 - r.ymin) / (r.ymax - r.ymin);
  GZOOMA(4, 6, 1.25, failed);
  const Rectangle z = plotState().margin;
  EXPECT_NEAR((4 - z.xmin) / (z.xmax - z.xmin), u, 1e-9);
  EXPECT_NEAR((6 - z.ymin) / (z.ymax - z.ymin), v, 1e-9);
  EXPECT_NEAR(z.xmax - z.xmin, 8.0, 1e-9);
  GPANBY(-1.0, 0.5, failed);
  EXPECT_NEAR(plotState().margin.xmin, z.xmin - 1.0, 1e-9);
  EXPECT_NEAR(plotState().margin.ymin, z.ymin + 0.5, 1e-9);
}

TEST_F(Views, ViewMatrixIsOrthonormalAndFacesTheViewer) {
  bool failed = false;
  for (int up : {1, -1, 2, -2, 3, -3}) {
    GVIEWS(up, 0.3, -0.5, 0.8, failed);
    ASSERT_FALSE(failed) << up;
    const auto& m = viewState().VMATRX;
    for (int i = 1; i <= 3; ++i)
      for (int j = 1; j <= 3; ++j) {
        double dot = 0;
        for (int k = 1; k <= 3; ++k) dot += m(i, k) * m(j, k);
        EXPECT_NEAR(dot, i == j ? 1.0 : 0.0, 1e-12) << up << " " << i << j;
      }
    // right x up = normal for a positive up axis; a negative one turns the
    // up row over and keeps the right row, so the cross is the opposite.
    const double hand = up > 0 ? 1.0 : -1.0;
    const double cross[3] = {m(1, 2) * m(2, 3) - m(1, 3) * m(2, 2),
                             m(1, 3) * m(2, 1) - m(1, 1) * m(2, 3),
                             m(1, 1) * m(2, 2) - m(1, 2) * m(2, 1)};
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(cross[k], hand * m(3, k + 1), 1e-12) << up;
    EXPECT_GT(m(2, std::abs(up)) * (up > 0 ? 1 : -1), 0.0) << up;
  }
  // Looking along the up axis: refused, matrix unchanged.
  const auto kept = viewState().VMATRX;
  type("\n");
  GVIEWS(3, 0, 0, 2, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(Contains(output(), "It is not possible to look at the construction from the Z direction"));
  EXPECT_EQ(viewState().VMATRX, kept);
}

TEST_F(Views, AnglesAndNormalsRoundTrip) {
  bool failed = false;
  for (int up : {1, -1, 2, -2, 3, -3})
    for (double a : {-1.2, -0.3, 0.0, 0.7, 1.4})
      for (double b : {-1.5, -0.2, 0.0, 1.0, 2.5, 4.0}) {
        double nx, ny, nz, a2, b2;
        AB2XYZ(up, a, b, nx, ny, nz, failed);
        EXPECT_NEAR(nx * nx + ny * ny + nz * nz, 1.0, 1e-12);
        XYZ2AB(up, 3 * nx, 3 * ny, 3 * nz, a2, b2, failed);
        EXPECT_NEAR(a2, a, 1e-9) << up << " " << a << " " << b;
        EXPECT_NEAR(b2, b, 1e-9) << up << " " << a << " " << b;
      }
  type("\n");
  double x, y, z;
  AB2XYZ(4, 0, 0, x, y, z, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(Contains(output(), "(AB2XYZ) Illegal up-axis specifier!"));
}

TEST_F(Views, RotationOnlyForTurnableKinds) {
  bool failed = false;
  GROTAT(1, failed);
  EXPECT_EQ(draws + erases, 0);  // kind 1: not even a redraw
  viewState().VIEWKD = 2;
  double a0, b0, a, b;
  XYZ2AB(3, 1, 1, 1, a0, b0, failed);
  GROTAT(1, failed);  // EU
  const auto& n = viewState().VNORML;
  XYZ2AB(3, n(1), n(2), n(3), a, b, failed);
  EXPECT_NEAR(a, a0 + 15 * Pi / 180, 1e-9);
  GROTAT(4, failed);  // ER
  XYZ2AB(3, n(1), n(2), n(3), a, b, failed);
  EXPECT_NEAR(b, b0 + 15 * Pi / 180, 1e-9);
  // Past the pole the elevation stops just short of it.
  for (int k = 0; k < 10; ++k) GROTAT(1, failed);
  XYZ2AB(3, n(1), n(2), n(3), a, b, failed);
  EXPECT_NEAR(a, 0.999 * Pi / 2, 1e-9);
  EXPECT_EQ(draws, 12);
}

TEST_F(Views, BoxOfAFlatCurveIsWidened) {
  bool failed = false;
  SPBBOX(0, 3, 0, 4, 0, 0, failed);
  const auto& b = viewState().VWBBOX;
  EXPECT_DOUBLE_EQ(b(5), -0.05);
  EXPECT_DOUBLE_EQ(b(6), 0.05);
  EXPECT_DOUBLE_EQ(b(2), 3.0);
  type("\n");
  SPBBOX(1, 1, 2, 2, 3, 3, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(Contains(output(), "(SPBBOX) Encountered zero size view bounding box!"));
}

TEST(LinesAndPlanes, CutsAndFits) {
  bool hit, between, failed;
  double point[3];
  const double origin[3] = {0, 0, 0}, up[3] = {0, 0, 2};
  const double p[3] = {1, 2, -1}, q[3] = {3, 2, 3};
  CUTPLN(origin, up, p, q, hit, between, point, failed);
  ASSERT_TRUE(hit);
  EXPECT_TRUE(between);
  EXPECT_NEAR(point[0], 1.5, 1e-12);
  EXPECT_NEAR(point[1], 2.0, 1e-12);
  EXPECT_NEAR(point[2], 0.0, 1e-12);
  // Both on one side: a hit, not between; parallel: no hit.
  const double r[3] = {1, 2, 1};
  CUTPLN(origin, up, r, q, hit, between, point, failed);
  EXPECT_TRUE(hit);
  EXPECT_FALSE(between);
  const double s[3] = {5, 7, 1};
  CUTPLN(origin, up, r, s, hit, between, point, failed);
  EXPECT_FALSE(hit);
  // A line across a box meets two faces.
  bool found;
  double first[3], second[3];
  const double a[3] = {-1, 1, 0.5}, b[3] = {5, 2, 0.5};
  FTL2BX(a, b, 0, 4, 0, 3, 0, 1, found, first, second, failed);
  ASSERT_TRUE(found);
  EXPECT_NEAR(first[0], 0.0, 1e-12);
  EXPECT_NEAR(first[1], 1 + 1.0 / 6, 1e-12);
  EXPECT_NEAR(second[0], 4.0, 1e-12);
  EXPECT_NEAR(second[1], 1 + 5.0 / 6, 1e-12);
}

TEST_F(Views, DigitizerPositionsMapBackToTheModel) {
  // A tablet turned by 3 degrees, scaled by 40 and shifted: r, s of model
  // points. The calibration takes three of them; the map gives a fourth.
  const double t = 3 * Pi / 180, k = 40, r0 = 100, s0 = 70;
  auto tablet = [&](double x, double y, double& r, double& s) {
    r = r0 + k * (std::cos(t) * x - std::sin(t) * y);
    s = s0 + k * (std::sin(t) * x + std::cos(t) * y);
  };
  ViewState& v = viewState();
  v.X1 = 1;
  v.Y1 = 2;
  tablet(1, 2, v.r1, v.s1);
  v.X2 = 6;
  tablet(6, 2, v.r2, v.s2);
  v.Y3 = 5;
  tablet(1, 5, v.r3, v.s3);
  double r, s, x, y;
  bool failed = false;
  tablet(3.5, 4.25, r, s);
  DG2WLD(r, s, x, y, failed);
  EXPECT_FALSE(failed);
  EXPECT_NEAR(x, 3.5, 1e-9);
  EXPECT_NEAR(y, 4.25, 1e-9);
  type("\n");
  v.X2 = v.X1;
  DG2WLD(r, s, x, y, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(Contains(output(), "(DG2WLD) Illegal digitizer scaling detected!"));
}

TEST_F(Views, PanelCellsAndLabels) {
  plotState().asprto = 0.75;
  const double right = 1.0 - 0.03 * 0.75 / 3;
  const double w = (right - 0.8) / 6, h = (0.1 - 0.0075) / 4;
  EXPECT_EQ(panelIndex(0.8 + 0.5 * w, 0.1 - 0.5 * h), 1);
  EXPECT_EQ(panelIndex(0.8 + 3.5 * w, 0.1 - 0.5 * h), 4);
  EXPECT_EQ(panelIndex(right - 0.5 * w, 0.0075 + 0.5 * h), 24);
  EXPECT_EQ(panelIndex(0.5, 0.05), 0);
  EXPECT_EQ(panelIndex(0.9, 0.2), 0);
  EXPECT_EQ(panelIndexOf("zbx"), 3);
  EXPECT_EQ(panelIndexOf("ALL"), 16);
  EXPECT_EQ(panelIndexOf("-"), 0);
  // The toggles invert their flags without touching the view.
  bool failed = false;
  GPANEL(panelIndexOf("ASC"), failed);
  EXPECT_FALSE(viewState().AUTOSC);
  GPANEL(panelIndexOf("DYN"), failed);
  EXPECT_TRUE(viewState().DYNGRF);
  EXPECT_EQ(draws, 0);
}

}  // namespace
}  // namespace kntr::graphics
