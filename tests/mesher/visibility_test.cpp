// The visibility scan against a direct test of every sight line, and the
// Voronoi neighbours among the candidates it leaves.
#include "mesher/visibility.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>
#include <vector>

#include "mesher/halfedge.h"
#include "mesher/limits.h"
#include "mesher/reflex.h"
#include "support/mesh_fixture.h"
#include "support/mesh_shapes.h"

namespace kntr::mesher {
namespace {

using testing::MesherTest;
namespace shapes = testing::shapes;

// Counterclockwise angle from direction a to direction b, in [0, 2 pi).
double turn(XY a, XY b) {
  double t = std::atan2(b.y, b.x) - std::atan2(a.y, a.x);
  while (t < 0) t += 2 * Pi;
  while (t >= 2 * Pi) t -= 2 * Pi;
  return t;
}

// Is q seen from corner r of the polygon `poly` (r = poly[0])? The sight
// line must leave r into the polygon and cross no edge. With `grazing`, a
// sight line that touches a corner on its way counts as open (a point of a
// shadow's edge is seen past the corner that casts it); without, it counts
// as blocked (the random polygons avoid such lines among their corners).
bool seen(const shapes::Polygon& poly, XY q, int skipEdge, bool grazing) {
  const XY r = poly[0];
  const XY next = poly[1], previous = poly.back();
  const XY dq{q.x - r.x, q.y - r.y};
  const double wedge = turn({next.x - r.x, next.y - r.y}, {previous.x - r.x, previous.y - r.y});
  double at = turn({next.x - r.x, next.y - r.y}, dq);
  if (grazing && at > 2 * Pi - 1e-9) at -= 2 * Pi;  // just before the first side
  const double margin = grazing ? -1e-9 : 1e-9;
  if (!(at > margin && at < wedge - margin) && !(q == next) && !(q == previous)) return false;
  const int n = static_cast<int>(poly.size());
  for (int i = 0; i < n; ++i) {
    if (i == skipEdge) continue;
    const XY a = poly[i], b = poly[(i + 1) % n];
    if (a == q || b == q || a == r || b == r) continue;
    if (grazing) {
      // Crossing inside both, away from the ends by a margin.
      const double det = (q.x - r.x) * (b.y - a.y) - (q.y - r.y) * (b.x - a.x);
      if (det == 0) continue;
      const double s = ((a.x - r.x) * (b.y - a.y) - (a.y - r.y) * (b.x - a.x)) / det;
      const double t = ((a.x - r.x) * (q.y - r.y) - (a.y - r.y) * (q.x - r.x)) / det;
      if (s > 1e-7 && s < 1 - 1e-7 && t > 1e-7 && t < 1 - 1e-7) return false;
      continue;
    }
    if (testing::properlyCross(r, q, a, b)) return false;
    if (std::fabs(testing::cross(r, q, a)) < 1e-12 &&
        (a.x - r.x) * (q.x - a.x) + (a.y - r.y) * (q.y - a.y) > 0) {
      return false;
    }
  }
  return true;
}

// Rotate a polygon so that corner k comes first.
shapes::Polygon from(const shapes::Polygon& p, int k) {
  shapes::Polygon q(p.begin() + k, p.end());
  q.insert(q.end(), p.begin(), p.begin() + k);
  return q;
}

// Run the scan from poly[0] over the chain poly[1..] and hold what it sees
// against the sight lines.
void expectScanMatchesSightLines(const shapes::Polygon& poly, const std::string& what) {
  const int n = static_cast<int>(poly.size()) - 2;  // last chain index
  std::vector<double> x, y;
  for (std::size_t i = 1; i < poly.size(); ++i) {
    x.push_back(poly[i].x);
    y.push_back(poly[i].y);
  }
  std::vector<int> label(x.size(), 0);
  int top = -1;
  bool status = true;
  IQVSPG(poly[0].x, poly[0].y, n, View0<double>(x.data(), n + 1), View0<double>(y.data(), n + 1),
         View0<int>(label.data(), n + 1), top, status);
  ASSERT_FALSE(status) << what;
  std::set<int> found;
  double previous = -1.0;
  const XY r = poly[0];
  const XY first{poly[1].x - r.x, poly[1].y - r.y};
  for (int i = 0; i <= top; ++i) {
    const int l = label[i];
    const XY p{x[i], y[i]};
    ASSERT_GE(l, -n) << what;
    ASSERT_LE(l, n) << what;
    if (l >= 0) {
      EXPECT_EQ(p, poly[l + 1]) << what << " point " << i;
      found.insert(l);
    } else {
      // On the inside of the edge from chain point -l - 1 to -l.
      const XY a = poly[-l], b = poly[-l + 1];
      EXPECT_NEAR(testing::cross(a, b, p) / std::hypot(b.x - a.x, b.y - a.y), 0.0, 1e-9) << what;
      EXPECT_TRUE(seen(poly, p, -l, true))
          << what << " edge point " << i << " (" << p.x << ", " << p.y << ") label " << l;
    }
    // Counterclockwise around R, never turning back.
    double at = turn(first, {p.x - r.x, p.y - r.y});
    if (at > 2 * Pi - 1e-9) at -= 2 * Pi;  // on the first ray, rounded below it
    const double a = (i == 0) ? 0.0 : at;
    EXPECT_GE(a, previous - 1e-9) << what << " point " << i;
    previous = a;
  }
  std::set<int> expected;
  for (int i = 0; i <= n; ++i) {
    if (seen(poly, poly[i + 1], -1, false)) expected.insert(i);
  }
  EXPECT_EQ(found, expected) << what;
}

TEST_F(MesherTest, IqvspgMatchesSightLines) {
  // From every reflex corner of random polygons.
  std::mt19937 random(4242);
  int scans = 0;
  for (int trial = 0; trial < 400; ++trial) {
    const shapes::Polygon p = trial % 2 == 0 ? shapes::randomStar(random, 0, 0, 2, 10, 30)
                                             : shapes::randomTangle(random, 0, 0, 10, 25);
    if (!shapes::isSimpleRegion({{p}})) continue;
    const int n = static_cast<int>(p.size());
    for (int k = 0; k < n; ++k) {
      const XY a = p[(k + n - 1) % n], b = p[k], c = p[(k + 1) % n];
      if (IQANGL(a.x, a.y, b.x, b.y, c.x, c.y) <= Pi) continue;
      expectScanMatchesSightLines(
          from(p, k), "trial " + std::to_string(trial) + " corner " + std::to_string(k));
      ++scans;
    }
  }
  EXPECT_GT(scans, 1000);
}

// Two near points at 60 and 120 degrees around R = (0, 0), and one ten
// times as far at 90 between them: its Voronoi cell does not border R's.
// (How the candidates are spaced and thinned shows in the separator angles
// of every decomposition.)
TEST_F(MesherTest, MkvonbKeepsTheVoronoiNeighbours) {
  std::vector<double> x = {1, 0.5, 0, -0.5, -1}, y = {0, std::sqrt(0.75), 10, std::sqrt(0.75), 0};
  std::vector<int> stack(5);
  std::vector<double> cx(5), cy(5);
  int top = -2;
  bool status = true;
  MKVONB(0, 0, 4, View0<const double>(x.data(), 5), View0<const double>(y.data(), 5), top,
         View0<int>(stack.data(), 5), View0<double>(cx.data(), 5), View0<double>(cy.data(), 5),
         status);
  ASSERT_FALSE(status);
  ASSERT_EQ(top, 3);
  EXPECT_EQ((std::vector<int>(stack.begin(), stack.begin() + 4)), (std::vector<int>{0, 1, 3, 4}));

  // Two points on one sight line.
  x = {1, 2};
  y = {0, 0};
  MKVONB(0, 0, 1, View0<const double>(x.data(), 2), View0<const double>(y.data(), 2), top,
         View0<int>(stack.data(), 2), View0<double>(cx.data(), 2), View0<double>(cy.data(), 2),
         status);
  expectFailure(status, "(MKVONB) Encountered parallel edges when intersecting!");
}

}  // namespace
}  // namespace kntr::mesher
