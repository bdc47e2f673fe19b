// Direction, containment, nesting and self-crossing of boundary polygons.
#include "mesher/polygons.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "mesher/limits.h"
#include "support/mesh_fixture.h"
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
};

bool counterclockwise(const shapes::Polygon& p, bool& status) {
  PolygonSet set({p});
  bool ccw = false;
  IQPLDR(set.sizes[0], set.list(1), set.vertices(), ccw, status);
  return ccw;
}

TEST_F(MesherTest, IqpldrFindsTheDirection) {
  // Random ragged polygons, which the generator turns counterclockwise, and
  // their reverses.
  std::mt19937 random(11);
  bool status = true;
  for (int i = 0; i < 100; ++i) {
    const shapes::Polygon p = shapes::randomTangle(random, 0, 0, 10, 30);
    EXPECT_TRUE(counterclockwise(p, status)) << "seed 11 case " << i;
    EXPECT_FALSE(counterclockwise(shapes::reversed(p), status)) << "seed 11 case " << i;
    ASSERT_FALSE(status) << "seed 11 case " << i;
  }
  // One repeated point makes one zero-length edge: that passes the test and
  // the polygon counts as clockwise, even when it is counterclockwise.
  EXPECT_FALSE(counterclockwise({{0, 0}, {1, 0}, {1, 0}, {1, 1}, {0, 1}}, status));
  EXPECT_FALSE(status);
  EXPECT_EQ(output().find("coinciding"), std::string::npos);
  // Three equal points in a row make two zero-length edges at one vertex.
  counterclockwise({{0, 0}, {1, 0}, {1, 0}, {1, 0}, {1, 1}, {0, 1}}, status);
  expectFailure(status, "(IQPLDR) Found two consecutive coinciding points!");
  counterclockwise({{0, 0}, {1, 0}}, status);
  expectFailure(status, "(IQPLDR) Cannot establish polygon direction for a single point or line!");
  counterclockwise(shapes::circle(0, 0, 1, MaxPolyPoints + 1), status);
  expectFailure(status, "(IQPLDR) Max internal number of polygon points exceeded!");
}

TEST_F(MesherTest, Sortp2GroupsExteriorsWithTheirHoles) {
  using Groups = std::vector<std::vector<int>>;
  struct Case {
    const char* what;
    std::vector<shapes::Polygon> polygons;
    Groups groups;
  };
  const Case cases[] = {
      // The square with the ring as its hole, and the circle on its own,
      // found in the second pass.
      {"circle in a ring in a square",
       {shapes::circle(0, 0, 1, 32), shapes::circle(0, 0, 3, 48), shapes::rectangle(-5, -5, 5, 5)},
       {{3, 2}, {1}}},
      {"holes go to their exteriors in polygon order",
       {shapes::rectangle(20, 0, 30, 10), shapes::rectangle(1, 1, 2, 2),
        shapes::rectangle(0, 0, 10, 10), shapes::rectangle(22, 2, 24, 4),
        shapes::rectangle(5, 5, 6, 6)},
       {{1, 4}, {3, 2, 5}}},
      // Touching or crossing polygons are no error: each stands alone when
      // neither has all its vertices inside the other.
      {"touching and crossing polygons",
       {shapes::rectangle(0, 0, 2, 2), shapes::rectangle(2, 0, 4, 2),
        shapes::rectangle(1, 1, 3, 3)},
       {{1}, {2}, {3}}},
  };
  for (const Case& c : cases) {
    PolygonSet set(c.polygons);
    Array1<int, MaxHoles> sizes;
    Array1<int, MaxHoles * MaxHoles> members;
    int count = 0;
    bool status = true;
    SORTP2(MaxHoles, static_cast<int>(c.polygons.size()), set.stride,
           View1<const int>(set.sizes.data(), static_cast<int>(set.sizes.size())),
           View1<const int>(set.lists.data(), static_cast<int>(set.lists.size())), set.vertices(),
           count, sizes, members, status);
    EXPECT_FALSE(status) << c.what;
    Groups groups(static_cast<std::size_t>(count));
    for (int g = 1; g <= count; ++g)
      for (int k = 1; k <= sizes(g); ++k)
        groups[static_cast<std::size_t>(g - 1)].push_back(members((g - 1) * MaxHoles + k));
    EXPECT_EQ(groups, c.groups) << c.what;
  }
  EXPECT_EQ(output(), "");

  std::vector<shapes::Polygon> many;
  for (int i = 0; i <= MaxSortPolygons; ++i)
    many.push_back(shapes::rectangle(3 * i, 0, 3 * i + 1, 1));
  PolygonSet set(many);
  int groups = 0;
  Array1<int, MaxSortPolygons + 1> sizes;
  Array1<int, 10> members;
  bool status = false;
  SORTP2(MaxHoles, MaxSortPolygons + 1, set.stride,
         View1<const int>(set.sizes.data(), MaxSortPolygons + 1),
         View1<const int>(set.lists.data(), static_cast<int>(set.lists.size())), set.vertices(),
         groups, sizes, members, status);
  expectFailure(status, "(SORTP2) Max internal number of polygons exceeded!");
}

TEST_F(MesherTest, MfpldrTurnsClockwisePolygonsAround) {
  shapes::Polygon p = shapes::reversed(shapes::lShape(3, 3, 1));
  bool status = true;
  for (int twice = 0; twice < 2; ++twice) {
    MFPLDR(static_cast<int>(p.size()), View1<XY>(p.data(), static_cast<int>(p.size())), status);
    EXPECT_FALSE(status);
    EXPECT_EQ(p, shapes::lShape(3, 3, 1));
  }
  shapes::Polygon big = shapes::reversed(shapes::circle(0, 0, 1, MaxOrientPoints + 1));
  const shapes::Polygon before = big;
  MFPLDR(static_cast<int>(big.size()), View1<XY>(big.data(), static_cast<int>(big.size())), status);
  EXPECT_FALSE(status);
  EXPECT_EQ(big, before);
  expectShown("(MFPLDR) Unable to check polygon orientation due to too many points");
}

bool crossesItself(const shapes::Polygon& p, bool closed) {
  bool crosses = false, status = true;
  IQPLSI(static_cast<int>(p.size()), View1<const XY>(p.data(), static_cast<int>(p.size())), closed,
         crosses, status);
  EXPECT_FALSE(status);
  return crosses;
}

TEST(Iqplsi, FindsAFigureEightButNotSharedEnds) {
  // A figure eight: the path crosses itself in the middle of two segments,
  // closed or open.
  const shapes::Polygon eight = {{0, 0}, {2, 2}, {2, 0}, {0, 2}};
  EXPECT_TRUE(crossesItself(eight, true));
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

}  // namespace
}  // namespace kntr::mesher
