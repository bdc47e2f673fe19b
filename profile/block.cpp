#include "profile/block.h"

#include <algorithm>
#include <cmath>

namespace kntr::profile {

namespace {
ProfileData& instance() {
  static ProfileData data;
  return data;
}
}  // namespace

ProfileData& profile() { return instance(); }

void resetProfileBlock() { instance() = ProfileData{}; }

void IZACCY() {
  ProfileData& p = profile();
  p.SPLACC = 0.001 * std::max(p.PRBBOX(2) - p.PRBBOX(1), p.PRBBOX(4) - p.PRBBOX(3));
}

bool coincident(double ax, double ay, double bx, double by) {
  const double accuracy = profile().SPLACC;
  const double dx = std::fabs(ax - bx);
  const double dy = std::fabs(ay - by);
  return dx < accuracy && dy < accuracy && std::sqrt(dx * dx + dy * dy) < accuracy;
}

}  // namespace kntr::profile
