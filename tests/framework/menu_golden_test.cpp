// The module's main menu drawn by TXMENU, compared with screens checked in
// under tests/framework/golden/.
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "framework/menus.h"
#include "framework/state.h"
#include "support/dialogue_fixture.h"

namespace kntr::framework {
namespace {

// The main menu with a bounding box given and no curves yet.
const std::array<std::string, 12> mainMenuRows{"Modify bounding box",
                                               "Key-in profile",
                                               "Digitize profile",
                                               "Manipulate profile",
                                               "",
                                               "( Print profile )",
                                               "( Plot profile )",
                                               "",
                                               "Setup{NWM",
                                               "File{NWM",
                                               "",
                                               "EXIT"};

std::vector<std::string> goldenScreen(const std::string& name) {
  std::ifstream file(std::string(KNTR_SOURCE_DIR) + "/tests/framework/golden/" + name);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

class MainMenu : public kntr::testing::DialogueTest {
 protected:
  // Draws the main menu on a screen of the given size, answers RETURN, and
  // returns the screen as it stood at the prompt.
  std::vector<std::string> draw(int columns, int lines, int& selection) {
    resize(columns, lines);
    ProgramState& p = program();
    p.SPNAME = "KNTR";
    p.SPVERS = "1998-0223";
    p.packageName = "Tarvik";
    p.packageVersion = "2016A";
    type("\n");
    bool abort = true;
    bool status = true;
    selection = 0;
    TXMENU("MANIPULATE KNTR DATA", mainMenuRows, 12, " ", abort, selection, status);
    EXPECT_FALSE(abort);
    EXPECT_FALSE(status);
    return screen();
  }

  void expectGolden(int columns, int lines, const std::string& name) {
    int selection = 0;
    const std::vector<std::string> shown = draw(columns, lines, selection);
    EXPECT_EQ(selection, 9);  // RETURN takes the default: EXIT, the ninth numbered row
    const std::vector<std::string> expected = goldenScreen(name);
    ASSERT_EQ(expected.size(), static_cast<std::size_t>(lines)) << "golden file " << name;
    ASSERT_EQ(shown.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
      EXPECT_EQ(shown[i], expected[i]) << "screen row " << i + 1;
  }
};

TEST_F(MainMenu, At80By24) {
  expectGolden(80, 24, "main_menu_80x24.txt");
}

TEST_F(MainMenu, At132By50) {
  expectGolden(132, 50, "main_menu_132x50.txt");
}

}  // namespace
}  // namespace kntr::framework
