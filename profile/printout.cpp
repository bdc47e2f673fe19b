#include "profile/printout.h"

#include <cctype>
#include <string>
#include <string_view>

#include "framework/format.h"
#include "framework/printers.h"
#include "framework/state.h"
#include "framework/tables.h"
#include "framework/text.h"
#include "profile/block.h"
#include "profile/sectionprops.h"

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

// Widths of the point table's cells, between the vertical lines.
constexpr int NumberCell = 6;
constexpr int ValueCell = 12;
constexpr int TypeCell = 21;

// The name of a point type in the table, in its 21 columns.
std::string typeText(int type) {
  static constexpr const char* names[] = {
      " Knuckle",       " Continous curvature", " Leading tangent", " Trailing tangent",
      " Both tangents", " Equal tangents",      " Leading sheer",   " Trailing sheer"};
  if (type < Knuckle || type > TrailingSheer) return fmt::pad("", TypeCell);
  return fmt::pad(names[type - 1], TypeCell);
}

// A rule of the table: the left token, the cells' runs of "{hln" joined by
// the crossing token, and the right token.
std::string rule(std::string_view left, std::string_view joint, std::string_view right) {
  std::string text(left);
  text += fmt::repeat("{hln", NumberCell);
  for (int k = 1; k <= 3; ++k) {
    text += joint;
    text += fmt::repeat("{hln", ValueCell);
  }
  text += joint;
  text += fmt::repeat("{hln", TypeCell);
  text += right;
  return text;
}

}  // namespace

std::string pointTableHead() {
  return "{yel{udlProfile offset point definition{udl"
         "{nwl{nwl" +
         rule("{cya{ulc", "{tdn", "{urc") +
         "{nwl{vln"
         "{yelPoint {cya{vln"
         "{yel   X-coord  {cya{vln"
         "{yel   Y-coord  {cya{vln"
         "{yel   Knuckle  {cya{vln"
         "{yel     Point type      {cya{vln"
         "{nwl{vln"
         "{yelnumber{cya{vln"
         "{yel     [m]    {cya{vln"
         "{yel     [m]    {cya{vln"
         "{yel   weight   {cya{vln"
         "{yel                     {cya{vln"
         "{nwl" +
         rule("{trg", "{crs", "{tlf");
}

std::string pointTableFoot() {
  return rule("{cya{llc", "{tup", "{lrc");
}

std::string pointTableRow(int c, int j) {
  const ProfileData& p = profile();
  const int type = p.PRPTYP(c, j);
  // A polyline's points have no type of their own: a single minus sign.
  const std::string kind =
      p.PRFTYP == SplineProfile ? typeText(type) : fmt::pad(fmt::padLeft("-", 10), TypeCell);
  std::string text = "{cya{vln {gre" + fmt::I(j, 4) + " {cya{vln";
  text += " {gre" + fmt::PE(p.PRPNTS(c, j)(1), 10, 3) + " {cya{vln";
  text += " {gre" + fmt::PE(p.PRPNTS(c, j)(2), 10, 3) + " {cya{vln";
  if (type == Knuckle)
    text += " {gre" + fmt::PE(p.PRKWGT(c, j), 10, 3) + " {cya{vln";
  else
    text += " {gre         - {cya{vln";
  text += "{gre" + kind + "{cya{vln";
  return text;
}

void PRPRPN(bool& status) {
  status = false;
  const ProfileData& p = profile();
  if (p.NPRCRV <= 0) {
    framework::fail("(PRPRPN) No profile curves available!", status);
    return;
  }
  // The current curve; a block without one shows its first curve.
  const int c = (p.CURCRV >= 1 && p.CURCRV <= p.NPRCRV) ? p.CURCRV : 1;
  framework::IZTABL(pointTableHead(), pointTableFoot(), p.NPRPNT(c), status);
  if (status) return;
  // The rows are asked for by the point count of the first curve slot, as
  // they always have been: a current curve with more points than the first
  // curve is cut at the first curve's count.
  int row = 0;
  bool done = false;
  for (framework::GTTROW(p.NPRPNT(1), row, done); !done; framework::GTTROW(p.NPRPNT(1), row, done))
    framework::PTTROW(pointTableRow(c, row));
  if (framework::printJobFailed()) status = true;
}

void PRKNTR(bool& status) {
  PROUTL(status);
  if (status) return;
  if (framework::printJobFailed()) {
    status = true;
    return;
  }
  if (profile().SHOWSP) {
    PRSECP(status);
    if (status) return;
  }
  PRPRPN(status);
}

void PROUTL(bool& status) {
  status = false;
  const ProfileData& p = profile();
  if (p.NPRCRV <= 0) {
    framework::fail("No profile curves available!", status);
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
