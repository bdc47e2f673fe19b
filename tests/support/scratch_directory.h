// Test support: a private scratch directory on disk, and a console test that
// owns one.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "support/console_fixture.h"

namespace kntr::testing {

// A fresh directory for the life of the object, removed with everything in it.
class ScratchDirectory {
 public:
  ScratchDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kntr-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) ADD_FAILURE() << "no scratch directory";
    directory_ = pattern;
  }
  ~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
  }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;

  // A path inside the scratch directory.
  std::string path(const std::string& name) const { return (directory_ / name).string(); }
  const std::filesystem::path& directory() const { return directory_; }

  static std::string readFile(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  static std::vector<std::string> readLines(const std::string& name) {
    std::istringstream in(readFile(name));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
  }
  static void writeFile(const std::string& name, const std::string& text) {
    std::ofstream out(name, std::ios::binary);
    out << text;
  }
  // Names of the files in the scratch directory.
  std::vector<std::string> listing() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory_))
      names.push_back(entry.path().filename().string());
    return names;
  }

 private:
  std::filesystem::path directory_;
};

// A memory-console test with its own scratch directory.
class ScratchTest : public ConsoleTest, public ScratchDirectory {};

}  // namespace kntr::testing
