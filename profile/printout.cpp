#include "profile/printout.h"

#include <cctype>
#include <string>
#include <string_view>

#include "framework/format.h"
#include "framework/state.h"
#include "framework/text.h"
#include "profile/block.h"

namespace kntr::profile {

namespace {

// A real in one of the framework's number formats: "Fw.d", "Ew.d" or
// "1PEw.d". Anything else reads as F10.3.
std::string formatReal(double value, std::string_view format) {
  bool scaled = false;
  if (format.size() >= 2 && format.substr(0, 2) == "1P") {
    scaled = true;
    format.remove_prefix(2);
  }
  if (format.empty()) return fmt::F(value, 10, 3);
  const char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(format[0])));
  int width = 0, decimals = 0;
  std::size_t i = 1;
  for (; i < format.size() && std::isdigit(static_cast<unsigned char>(format[i])); ++i)
    width = width * 10 + (format[i] - '0');
  const bool point = i < format.size() && format[i] == '.';
  if (point)
    for (++i; i < format.size() && std::isdigit(static_cast<unsigned char>(format[i])); ++i)
      decimals = decimals * 10 + (format[i] - '0');
  if (!point || i != format.size() || width < 1 || width > 40 || decimals > width)
    return fmt::F(value, 10, 3);
  if (letter == 'F' && !scaled) return fmt::F(value, width, decimals);
  if (letter == 'E')
    return scaled ? fmt::PE(value, width, decimals) : fmt::E(value, width, decimals);
  return fmt::F(value, 10, 3);
}

}  // namespace

void PROUTL(bool& status) {
  status = false;
  const ProfileData& p = profile();
  if (p.NPRCRV <= 0) {
    framework::ERRSCN("No profile curves available!");
    status = true;
    return;
  }
  const framework::ProgramState& program = framework::program();
  const int index = program.floatFormat;
  const std::string format = (index >= 1 && index <= static_cast<int>(program.floatFormats.size()))
                                 ? program.floatFormats[static_cast<std::size_t>(index - 1)]
                                 : std::string("F10.3");
  const std::string tail = "........... : {GRE";
  const std::string kind = p.PRFTYP == SplineProfile ? "Cubic spline" : "Polyline    ";
  std::string text =
      "{YEL{UDLProfile outline {UDL{NWL{NWL{CYAType ..................................." + tail +
      kind;
  text += "{NWL{CYANumber of curves ......................." + tail + fmt::I(p.NPRCRV, 4) + "{NWL";
  text += "{NWL{CYAX-coordinate of reference point ........" + tail +
          formatReal(p.PRREFP(1), format) + " {CYA[m]";
  text += "{NWL{CYAY-coordinate of reference point ........" + tail +
          formatReal(p.PRREFP(2), format) + " {CYA[m]";
  text += "{NWL";
  framework::PRPAGE(text);
}

}  // namespace kntr::profile
