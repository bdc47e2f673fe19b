#include "support/mesh_shapes.h"

#include <algorithm>
#include <cmath>

namespace kntr::testing::shapes {

namespace {
constexpr double pi = 3.141592653589793;

// Closed segments ab and cd share a point.
bool segmentsMeet(XY a, XY b, XY c, XY d) {
  if (properlyCross(a, b, c, d)) return true;
  const double d1 = cross(a, b, c), d2 = cross(a, b, d);
  const double d3 = cross(c, d, a), d4 = cross(c, d, b);
  auto onSegment = [](XY p, XY q, XY r) {  // r on pq, given collinear
    return std::min(p.x, q.x) <= r.x && r.x <= std::max(p.x, q.x) && std::min(p.y, q.y) <= r.y &&
           r.y <= std::max(p.y, q.y);
  };
  return (d1 == 0 && onSegment(a, b, c)) || (d2 == 0 && onSegment(a, b, d)) ||
         (d3 == 0 && onSegment(c, d, a)) || (d4 == 0 && onSegment(c, d, b));
}

}  // namespace

Polygon rectangle(double x0, double y0, double x1, double y1) {
  return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

Polygon circle(double cx, double cy, double r, int n, double phase) {
  Polygon p;
  for (int i = 0; i < n; ++i) {
    const double a = phase + 2.0 * pi * i / n;
    p.push_back({cx + r * std::cos(a), cy + r * std::sin(a)});
  }
  return p;
}

Polygon lShape(double w, double h, double a) {
  return {{0, 0}, {w, 0}, {w, a}, {a, a}, {a, h}, {0, h}};
}

Polygon comb(int teeth) {
  // Teeth 1 wide, gaps 1 wide, 4 tall, on a bar 1 high.
  Polygon p;
  const double width = 2.0 * teeth - 1.0;
  p.push_back({0, 0});
  p.push_back({width, 0});
  for (int k = teeth - 1; k >= 0; --k) {
    const double x1 = 2.0 * k + 1.0;
    const double x0 = 2.0 * k;
    p.push_back({x1, 5.0});
    p.push_back({x0, 5.0});
    if (k > 0) {
      p.push_back({x0, 1.0});
      p.push_back({x0 - 1.0, 1.0});
    }
  }
  return p;
}

Polygon shipSection(int n) {
  const double halfBreadth = 8.0, depth = 10.0, camber = 0.3;
  const int deck = n / 10;
  const int side = (n - deck) / 2;
  Polygon p;
  // Keel to deck on the starboard side: breadth grows as 3t^2 - 2t^3, so the
  // lower part is hollow (reflex corners) and the upper part full.
  for (int i = 0; i < side; ++i) {
    const double t = static_cast<double>(i) / side;
    p.push_back(
        {halfBreadth * (3 * t * t - 2 * t * t * t) + 0.05 * std::sin(5 * pi * t), depth * t});
  }
  // The deck, cambered, from starboard to port.
  for (int i = 0; i < deck; ++i) {
    const double s = -1.0 + 2.0 * i / deck;
    p.push_back({-s * halfBreadth, depth + camber * (1.0 - s * s)});
  }
  // Port side, deck down to the keel.
  for (int i = side; i > 0; --i) {
    const double t = static_cast<double>(i) / side;
    p.push_back(
        {-(halfBreadth * (3 * t * t - 2 * t * t * t) + 0.05 * std::sin(5 * pi * t)), depth * t});
  }
  while (static_cast<int>(p.size()) < n) {
    // Fill up with points on the flat keel line near the keel.
    const XY last = p.back();
    p.push_back({last.x * 0.5, last.y * 0.5});
  }
  return p;
}

Polygon reversed(const Polygon& p) {
  return Polygon(p.rbegin(), p.rend());
}

Polygon randomStar(std::mt19937& random, double cx, double cy, double rMin, double rMax, int n) {
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  std::vector<double> angles(n);
  for (double& a : angles) a = 2.0 * pi * unit(random);
  std::sort(angles.begin(), angles.end());
  Polygon p;
  for (int i = 0; i < n; ++i) {
    if (i > 0 && angles[i] - angles[i - 1] < 1e-3) continue;
    const double r = rMin + (rMax - rMin) * unit(random);
    p.push_back({cx + r * std::cos(angles[i]), cy + r * std::sin(angles[i])});
  }
  // With a gap of more than half a turn between two corners the centre lies
  // outside, and the walk can come out clockwise.
  if (signedArea(p) < 0.0) p = reversed(p);
  return p;
}

Polygon randomTangle(std::mt19937& random, double cx, double cy, double r, int n) {
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  Polygon p;
  for (int i = 0; i < n; ++i) p.push_back({cx + r * unit(random), cy + r * unit(random)});
  // Each reversal shortens the closed walk, so this ends.
  for (bool changed = true; changed;) {
    changed = false;
    for (int i = 0; i < n && !changed; ++i) {
      for (int j = i + 2; j < n && !changed; ++j) {
        if (i == 0 && j == n - 1) continue;
        if (properlyCross(p[i], p[i + 1], p[j], p[(j + 1) % n])) {
          std::reverse(p.begin() + i + 1, p.begin() + j + 1);
          changed = true;
        }
      }
    }
  }
  if (signedArea(p) < 0.0) p = reversed(p);
  return p;
}

bool isSimpleRegion(const TestRegion& region) {
  std::vector<std::pair<XY, XY>> edges;
  std::vector<std::pair<int, int>> owner;  // polygon, index
  for (std::size_t k = 0; k < region.polygons.size(); ++k) {
    const Polygon& p = region.polygons[k];
    if (p.size() < 3) return false;
    for (std::size_t i = 0; i < p.size(); ++i) {
      edges.push_back({p[i], p[(i + 1) % p.size()]});
      owner.push_back({static_cast<int>(k), static_cast<int>(i)});
    }
  }
  for (std::size_t i = 0; i < edges.size(); ++i) {
    if (edges[i].first == edges[i].second) return false;
    for (std::size_t j = i + 1; j < edges.size(); ++j) {
      const bool samePolygon = owner[i].first == owner[j].first;
      const int size = static_cast<int>(region.polygons[owner[i].first].size());
      const int gap = std::abs(owner[i].second - owner[j].second);
      const bool neighbours = samePolygon && (gap == 1 || gap == size - 1);
      if (neighbours) {
        // Only the shared corner may be common: not collinear and folding back.
        const XY a = edges[i].first, b = edges[i].second;
        const XY c = edges[j].first, d = edges[j].second;
        const XY shared = (b == c) ? b : a;
        const XY u = (b == c) ? a : b;
        const XY v = (b == c) ? d : c;
        if (cross(shared, u, v) == 0 &&
            (u.x - shared.x) * (v.x - shared.x) + (u.y - shared.y) * (v.y - shared.y) > 0) {
          return false;
        }
        continue;
      }
      if (segmentsMeet(edges[i].first, edges[i].second, edges[j].first, edges[j].second)) {
        return false;
      }
    }
  }
  return true;
}

TestRegion randomRegion(std::mt19937& random, int maxHoles, bool grid, bool tangled) {
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  std::uniform_int_distribution<int> corners(3, 40);
  auto snap = [&](Polygon p) {
    if (!grid) return p;
    Polygon q;
    for (XY v : p) {
      XY s{std::round(v.x * 4.0) / 4.0, std::round(v.y * 4.0) / 4.0};
      if (q.empty() || !(q.back() == s)) q.push_back(s);
    }
    while (q.size() > 1 && q.front() == q.back()) q.pop_back();
    if (signedArea(q) < 0.0) q = reversed(q);
    return q;
  };
  for (;;) {
    TestRegion region;
    region.polygons.push_back(snap(tangled
                                       ? randomTangle(random, 0.0, 0.0, 10.0, corners(random))
                                       : randomStar(random, 0.0, 0.0, 4.0, 10.0, corners(random))));
    if (region.polygons[0].size() < 3 || !isSimpleRegion(region)) continue;
    const int holes = std::uniform_int_distribution<int>(0, maxHoles)(random);
    for (int tries = 0; tries < 50 && static_cast<int>(region.polygons.size()) <= holes; ++tries) {
      const XY c{-8.0 + 16.0 * unit(random), -8.0 + 16.0 * unit(random)};
      const double r = 0.3 + 1.2 * unit(random);
      if (!insidePolygon(c, region.polygons[0])) continue;
      bool clear = true;
      for (std::size_t k = 1; k < region.polygons.size() && clear; ++k) {
        clear = !insidePolygon(c, region.polygons[k]);
      }
      for (std::size_t k = 0; k < region.polygons.size() && clear; ++k) {
        const Polygon& p = region.polygons[k];
        for (std::size_t i = 0; i < p.size() && clear; ++i) {
          clear = distanceToSegment(c, p[i], p[(i + 1) % p.size()]) > r + 0.3;
        }
      }
      if (!clear) continue;
      TestRegion trial = region;
      trial.polygons.push_back(
          snap(randomStar(random, c.x, c.y, 0.4 * r, r, corners(random) / 2 + 3)));
      if (trial.polygons.back().size() < 3 || !isSimpleRegion(trial)) continue;
      region = trial;
    }
    return region;
  }
}

}  // namespace kntr::testing::shapes
