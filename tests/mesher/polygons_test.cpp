// Direction, containment, nesting and self-crossing of boundary polygons.
#include "mesher/polygons.h"

#include <gtest/gtest.h>

#include <vector>

#include "mesher/limits.h"
#include "support/mesh_runner.h"
#include "support/mesh_shapes.h"

namespace kntr::mesher {
namespace {

using testing::MesherTest;
namespace shapes = testing::shapes;

// Points and identity index lists of a few polygons for the routines that
// take index lists.
struct PolygonSet {
  std::vector<XY> points;
  std::vector<int> sizes;
  std::vector<int> lists;  // stride `stride`
  int stride = 0;

  explicit PolygonSet(const std::vector<shapes::Polygon>& polygons) {
    for (const auto& p : polygons) stride = std::max(stride, static_cast<int>(p.size()));
    for (const auto& p : polygons) {
      sizes.push_back(static_cast<int>(p.size()));
      const int first = static_cast<int>(points.size());
      for (int j = 0; j < stride; ++j)
        lists.push_back(first + 1 + std::min(j, static_cast<int>(p.size()) - 1));
      points.insert(points.end(), p.begin(), p.end());
    }
  }
  View1<const XY> vertices() const {
    return View1<const XY>(points.data(), static_cast<int>(points.size()));
  }
  View1<const int> list(int k) const {
    return View1<const int>(lists.data() + (k - 1) * stride, stride);
  }
  View1<const int> allLists() const {
    return View1<const int>(lists.data(), static_cast<int>(lists.size()));
  }
  View1<const int> allSizes() const {
    return View1<const int>(sizes.data(), static_cast<int>(sizes.size()));
  }
};

bool counterclockwise(const shapes::Polygon& p, bool& status) {
  PolygonSet set({p});
  bool ccw = false;
  IQPLDR(set.sizes[0], set.list(1), set.vertices(), ccw, status);
  return ccw;
}

TEST_F(MesherTest, IqpldrFindsTheDirection) {
  bool status = true;
  EXPECT_TRUE(counterclockwise(shapes::rectangle(0, 0, 1, 1), status));
  EXPECT_FALSE(status);
  EXPECT_FALSE(counterclockwise(shapes::reversed(shapes::rectangle(0, 0, 1, 1)), status));
  EXPECT_TRUE(counterclockwise(shapes::comb(20), status));
  EXPECT_FALSE(counterclockwise(shapes::reversed(shapes::comb(20)), status));
  EXPECT_TRUE(counterclockwise(shapes::shipSection(300), status));
  EXPECT_FALSE(counterclockwise(shapes::reversed(shapes::circle(0, 0, 1, 64)), status));
  EXPECT_FALSE(status);
}

TEST_F(MesherTest, IqpldrRefusesTooFewOrTooManyPoints) {
  bool status = false;
  counterclockwise({{0, 0}, {1, 0}}, status);
  EXPECT_TRUE(status);
  EXPECT_NE(
      output().find("(IQPLDR) Cannot establish polygon direction for a single point or line!"),
      std::string::npos);
  counterclockwise(shapes::circle(0, 0, 1, MaxPolyPoints + 1), status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(IQPLDR) Max internal number of polygon points exceeded!"),
            std::string::npos);
}

// One repeated point makes one zero-length edge: that passes the test and
// the polygon counts as clockwise, even when it is counterclockwise. Three
// equal points in a row make two zero-length edges at one vertex.
TEST_F(MesherTest, IqpldrCatchesCoincidingPointsOnlyThreeInARow) {
  bool status = true;
  const shapes::Polygon once = {{0, 0}, {1, 0}, {1, 0}, {1, 1}, {0, 1}};
  EXPECT_FALSE(counterclockwise(once, status));
  EXPECT_FALSE(status);
  EXPECT_EQ(output().find("coinciding"), std::string::npos);
  const shapes::Polygon twice = {{0, 0}, {1, 0}, {1, 0}, {1, 0}, {1, 1}, {0, 1}};
  counterclockwise(twice, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(IQPLDR) Found two consecutive coinciding points!"), std::string::npos);
}

TEST(Iqptin, TellsInsideFromOutside) {
  PolygonSet set({shapes::comb(5)});
  auto in = [&](double x, double y) {
    return IQPTIN(x, y, set.sizes[0], set.list(1), set.vertices());
  };
  EXPECT_TRUE(in(0.5, 0.5));   // in the bar
  EXPECT_TRUE(in(0.5, 4.0));   // in the first tooth
  EXPECT_FALSE(in(1.5, 4.0));  // in the first gap
  EXPECT_FALSE(in(-1.0, 0.5));
  EXPECT_FALSE(in(20.0, 20.0));
  // A corner of the polygon itself: its two edges add nothing, the others
  // see it under half a turn, which is not more than pi.
  EXPECT_FALSE(in(0.0, 0.0));
}

struct Groups {
  int count = 0;
  std::vector<std::vector<int>> members;
};

Groups sortPolygons(const std::vector<shapes::Polygon>& polygons, bool& status) {
  PolygonSet set(polygons);
  Array1<int, MaxHoles> sizes;
  Array1<int, MaxHoles * MaxHoles> members;
  Groups groups;
  SORTP2(MaxHoles, static_cast<int>(polygons.size()), set.stride, set.allSizes(), set.allLists(),
         set.vertices(), groups.count, sizes, members, status);
  for (int g = 1; g <= groups.count; ++g) {
    std::vector<int> list;
    for (int k = 1; k <= sizes(g); ++k) list.push_back(members((g - 1) * MaxHoles + k));
    groups.members.push_back(list);
  }
  return groups;
}

// A circle inside a ring inside a square: the square with the ring as its
// hole, and the circle on its own, found in the second pass.
TEST_F(MesherTest, Sortp2NestsCircleRingAndSquare) {
  bool status = true;
  const Groups groups = sortPolygons(
      {shapes::circle(0, 0, 1, 32), shapes::circle(0, 0, 3, 48), shapes::rectangle(-5, -5, 5, 5)},
      status);
  EXPECT_FALSE(status);
  ASSERT_EQ(groups.count, 2);
  EXPECT_EQ(groups.members[0], (std::vector<int>{3, 2}));
  EXPECT_EQ(groups.members[1], (std::vector<int>{1}));
}

TEST_F(MesherTest, Sortp2GivesEachHoleToItsExteriorInPolygonOrder) {
  bool status = true;
  const Groups groups =
      sortPolygons({shapes::rectangle(20, 0, 30, 10), shapes::rectangle(1, 1, 2, 2),
                    shapes::rectangle(0, 0, 10, 10), shapes::rectangle(22, 2, 24, 4),
                    shapes::rectangle(5, 5, 6, 6)},
                   status);
  EXPECT_FALSE(status);
  ASSERT_EQ(groups.count, 2);
  EXPECT_EQ(groups.members[0], (std::vector<int>{1, 4}));
  EXPECT_EQ(groups.members[1], (std::vector<int>{3, 2, 5}));
}

// Touching or crossing polygons are no error: each stands alone when
// neither has all its vertices inside the other.
TEST_F(MesherTest, Sortp2TakesTouchingPolygonsWithoutMessage) {
  bool status = true;
  const Groups groups = sortPolygons(
      {shapes::rectangle(0, 0, 2, 2), shapes::rectangle(2, 0, 4, 2), shapes::rectangle(1, 1, 3, 3)},
      status);
  EXPECT_FALSE(status);
  EXPECT_EQ(output(), "");
  ASSERT_EQ(groups.count, 3);
  EXPECT_EQ(groups.members[0], (std::vector<int>{1}));
  EXPECT_EQ(groups.members[1], (std::vector<int>{2}));
  EXPECT_EQ(groups.members[2], (std::vector<int>{3}));
}

TEST_F(MesherTest, Sortp2RefusesMoreThanItsPolygons) {
  std::vector<shapes::Polygon> many;
  for (int i = 0; i <= MaxSortPolygons; ++i)
    many.push_back(shapes::rectangle(3 * i, 0, 3 * i + 1, 1));
  bool status = false;
  PolygonSet set(many);
  int groups = 0;
  Array1<int, MaxSortPolygons + 1> sizes;
  Array1<int, 10> members;
  SORTP2(MaxHoles, MaxSortPolygons + 1, set.stride, set.allSizes(), set.allLists(), set.vertices(),
         groups, sizes, members, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("(SORTP2) Max internal number of polygons exceeded!"), std::string::npos);
}

TEST_F(MesherTest, MfpldrTurnsClockwisePolygonsAround) {
  shapes::Polygon p = shapes::reversed(shapes::lShape(3, 3, 1));
  bool status = true;
  MFPLDR(static_cast<int>(p.size()), View1<XY>(p.data(), static_cast<int>(p.size())), status);
  EXPECT_FALSE(status);
  EXPECT_EQ(p, shapes::lShape(3, 3, 1));
  MFPLDR(static_cast<int>(p.size()), View1<XY>(p.data(), static_cast<int>(p.size())), status);
  EXPECT_EQ(p, shapes::lShape(3, 3, 1));

  shapes::Polygon big = shapes::reversed(shapes::circle(0, 0, 1, MaxOrientPoints + 1));
  const shapes::Polygon before = big;
  MFPLDR(static_cast<int>(big.size()), View1<XY>(big.data(), static_cast<int>(big.size())), status);
  EXPECT_FALSE(status);
  EXPECT_EQ(big, before);
  EXPECT_NE(output().find("(MFPLDR) Unable to check polygon orientation due to too many points"),
            std::string::npos);
}

bool crossesItself(const shapes::Polygon& p, bool closed) {
  bool crosses = false, status = true;
  IQPLSI(static_cast<int>(p.size()), View1<const XY>(p.data(), static_cast<int>(p.size())), closed,
         crosses, status);
  EXPECT_FALSE(status);
  return crosses;
}

TEST(Iqplsi, FindsAFigureEightButNotSharedEnds) {
  // A figure eight: the path crosses itself in the middle of two segments.
  const shapes::Polygon eight = {{0, 0}, {2, 2}, {2, 0}, {0, 2}};
  EXPECT_TRUE(crossesItself(eight, true));
  // Open, the crossing segment pair is still there.
  EXPECT_TRUE(crossesItself(eight, false));
  // Without its closing segment a zigzag does not cross.
  EXPECT_FALSE(crossesItself({{0, 0}, {2, 2}, {2, 0}, {4, 2}}, false));
  // Simple polygons: neighbouring segments share their ends only.
  EXPECT_FALSE(crossesItself(shapes::comb(20), true));
  EXPECT_FALSE(crossesItself(shapes::shipSection(300), true));
  // A point touched again: segment ends on another segment's end count not.
  EXPECT_FALSE(crossesItself({{0, 0}, {2, 0}, {1, 1}, {2, 2}, {0, 2}, {1, 1}}, true));
  // A crossing made by the closing segment alone.
  const shapes::Polygon bow = {{1, 0}, {1, 1}, {0, 0}, {0, 1}};
  EXPECT_TRUE(crossesItself(bow, true));
  EXPECT_FALSE(crossesItself(bow, false));
}

TEST(Iqsgsg, GivesTheParametersAlongBothSegments) {
  bool found = false;
  double s = 0, t = 0;
  IQSGSG({0, 0}, {4, 0}, {1, -1}, {1, 3}, found, s, t);
  ASSERT_TRUE(found);
  EXPECT_NEAR(s, 0.25, 1e-15);
  EXPECT_NEAR(t, 0.25, 1e-15);
  IQSGSG({0, 0}, {4, 0}, {5, -1}, {5, 3}, found, s, t);
  EXPECT_FALSE(found);
  IQSGSG({0, 0}, {4, 0}, {0, 1}, {4, 1}, found, s, t);
  EXPECT_FALSE(found);
}

}  // namespace
}  // namespace kntr::mesher
