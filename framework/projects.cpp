#include "framework/projects.h"

#include <ctime>

#include "framework/format.h"

namespace kntr::framework {

namespace {
const char* const monthNames[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                    "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

bool localNow(std::tm& now) {
  const std::time_t t = std::time(nullptr);
  if (t == static_cast<std::time_t>(-1)) return false;
  const std::tm* local = std::localtime(&t);
  if (!local) return false;
  now = *local;
  return true;
}
}  // namespace

void GTDATE(std::string& date) {
  std::tm now{};
  if (!localNow(now)) {
    date = "01-Jan-1900";
    return;
  }
  std::string day = std::to_string(now.tm_mday);
  if (day.size() < 2) day = "0" + day;
  date = day + "-" + monthNames[now.tm_mon] + "-" + std::to_string(now.tm_year + 1900);
}

void GTTIME(std::string& time) {
  std::tm now{};
  if (!localNow(now)) {
    time = "00:00:00";
    return;
  }
  auto two = [](int v) { return std::string(v < 10 ? "0" : "") + std::to_string(v); };
  time = two(now.tm_hour) + ":" + two(now.tm_min) + ":" + two(now.tm_sec);
}

}  // namespace kntr::framework
