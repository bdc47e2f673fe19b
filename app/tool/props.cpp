// kntr-tool props FILE: the section properties of the region that the
// profile's closed curves bound, one "name value" pair a line.
#include <string>

#include "app/tool/tool.h"
#include "profile/sectionprops.h"

namespace kntr::tool {

int propsCommand(const Arguments& arguments) {
  if (arguments.size() != 1) return usage("props FILE");
  if (!loadProfile(arguments[0])) return 1;
  profile::SectionProperties props;
  bool status = false;
  profile::IQSECP(props, status);
  if (status) return fail("");
  const std::pair<const char*, double> lines[] = {
      {"area", props.area}, {"xc", props.xc},   {"yc", props.yc}, {"ixx", props.ixx},
      {"iyy", props.iyy},   {"ixy", props.ixy}, {"sx", props.sx}, {"sy", props.sy}};
  std::string out;
  for (const auto& [name, value] : lines)
    out += std::string(name) + " " + fullPrecision(value) + "\n";
  print(out);
  return 0;
}

}  // namespace kntr::tool
