// kntr-tool: batch commands on profile data files.
#pragma once

#include <string>
#include <vector>

namespace kntr::tool {

using Arguments = std::vector<std::string>;

// Each command takes its arguments (after the command word) and returns the
// process status: 0 done, 1 failed (the reason is on standard error),
// 2 wrong usage.
int polylineCommand(const Arguments& arguments);
int fairCommand(const Arguments& arguments);
int meshCommand(const Arguments& arguments);
int plotCommand(const Arguments& arguments);
int exportCommand(const Arguments& arguments);
int importCommand(const Arguments& arguments);
int propsCommand(const Arguments& arguments);

// Loads a profile data file into the profile block; false when it failed.
bool loadProfile(const std::string& name);

// Writes a line of usage help for a command and returns 2.
int usage(const std::string& text);

// Writes text to standard output.
void print(const std::string& text);

// Reports a failure of the tool itself in the system's wording.
int fail(const std::string& text);

// A real at full precision ("%.17g").
std::string fullPrecision(double value);

// Parses a whole decimal number / a real; false when the text is not one.
bool parseInteger(const std::string& text, int& value);
bool parseReal(const std::string& text, double& value);

}  // namespace kntr::tool
