#include "profile/pointpick.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "framework/format.h"
#include "framework/input.h"
#include "framework/text.h"
#include "graphics/dialogue.h"
#include "graphics/plotstate.h"
#include "profile/block.h"

namespace kntr::profile {

namespace {

namespace fw = framework;
namespace gr = graphics;

struct Candidate {
  double distance;
  int curve, point;
};

}  // namespace

void IQPPNT(double x, double y, int& curve, int& point, int& result, bool& status) {
  status = false;
  result = PointNothingNear;
  double xmin = 0.0, xmax = 0.0, ymin = 0.0, ymax = 0.0;
  gr::GINQRL("xmgmin", xmin, status);
  if (!status) gr::GINQRL("xmgmax", xmax, status);
  if (!status) gr::GINQRL("ymgmin", ymin, status);
  if (!status) gr::GINQRL("ymgmax", ymax, status);
  if (status) return;
  const double tolerance = PointPickShare * std::max(xmax - xmin, ymax - ymin);

  const ProfileData& p = profile();
  std::array<Candidate, MaxPointCandidates> candidates;
  int count = 0;
  for (int c = 1; c <= p.NPRCRV; ++c) {
    for (int j = 1; j <= p.NPRPNT(c); ++j) {
      const double d = std::hypot(p.PRPNTS(c, j)(1) - x, p.PRPNTS(c, j)(2) - y);
      if (d > tolerance) continue;
      if (count == MaxPointCandidates) {
        // too many within reach: the first one, and no clear choice
        curve = candidates[0].curve;
        point = candidates[0].point;
        result = PointAmbiguous;
        return;
      }
      candidates[count++] = Candidate{d, c, j};
    }
  }
  if (count == 0) return;
  std::stable_sort(candidates.begin(), candidates.begin() + count,
                   [](const Candidate& a, const Candidate& b) { return a.distance < b.distance; });
  curve = candidates[0].curve;
  point = candidates[0].point;
  result = PointFound;
  if (count == 1 || candidates[0].distance == 0.0) return;
  const Candidate& second = candidates[1];
  if (second.curve == curve && second.point == point) return;
  if (second.distance / candidates[0].distance < PointPickRatio) result = PointAmbiguous;
}

void SLPRPN(std::string_view question, std::string_view help, const PointPickTexts& texts,
            int& item, bool& cancel, bool& status) {
  status = false;
  item = 0;
  cancel = false;
  ProfileData& p = profile();
  for (;;) {
    gr::GraphicAnswer answer;
    bool failed = false;
    gr::GQUEST(question, fmt::I(p.CURPNT, 4), help, 1, answer, cancel, failed);
    if (cancel) return;
    if (failed) continue;
    if (answer.kind == gr::ItemInput) {
      item = answer.item;
      return;
    }
    if (answer.kind == gr::PositionInput) {
      int curve = 0, point = 0, result = 0;
      IQPPNT(answer.x, answer.y, curve, point, result, status);
      if (status) return;
      if (result == PointNothingNear) {
        fw::ERRSCN(texts.nothingNear);
        continue;
      }
      if (result == PointAmbiguous) {
        fw::ERRSCN(texts.ambiguous);
        continue;
      }
      p.CURCRV = curve;
      p.CURPNT = point;
      return;
    }
    std::array<int, 1> number{p.CURPNT};
    bool none = false;
    fw::GTINTV(number, none, failed);
    if (failed) continue;
    if (number[0] < 1) {
      fw::ERRSCN("Point number must be positive!");
      continue;
    }
    if (p.CURCRV < 1 || number[0] > p.NPRPNT(p.CURCRV)) {
      fw::ERRSCN(texts.tooHigh);
      continue;
    }
    p.CURPNT = number[0];
    return;
  }
}

}  // namespace kntr::profile
