#include <gtest/gtest.h>

#include "framework/state.h"
#include "framework/text.h"
#include "support/console_fixture.h"

namespace kntr::framework {
namespace {

class Paging : public kntr::testing::ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    resize(40, 12);
    scrollRow() = 1;
  }
  // Runs a listing of `last` blocks of one line each until SCROLL ends it;
  // returns the page numbers shown, in order.
  std::vector<int> list(int last) {
    std::vector<int> shown;
    int current = 1;
    bool status = false;
    for (int guard = 0; guard < 100 && !status; ++guard) {
      shown.push_back(current);
      SCROLL("block " + std::to_string(current), last, current, status);
    }
    return shown;
  }
};

TEST_F(Paging, BlocksFillTheScreenThenAsk) {
  // One-line blocks take 3 lines each. On 12 lines the third block would
  // leave no room for the question, so the screen shows two and asks.
  type("\n");  // RETURN at the first question ends the listing
  const auto shown = list(10);
  EXPECT_EQ(shown, (std::vector<int>{1, 2, 3}));
  const auto rows = screen();
  EXPECT_NE(std::find(rows.begin(), rows.end(), "block 2"), rows.end());
  EXPECT_EQ(std::find(rows.begin(), rows.end(), "block 3"), rows.end());
  EXPECT_NE(output().find("Input +, -, NNN, +NNN, -NNN or <R> to quit ?"), std::string::npos);
}

TEST_F(Paging, PlusGoesOnAndNumbersJump) {
  type("+\n7\n\n");
  const auto shown = list(10);
  // First screen 1..3 (4 does not fit and steps back to 3), "+" from 3
  // shows 4.., "7" jumps to page 7.
  ASSERT_GE(shown.size(), 6u);
  EXPECT_EQ(shown[0], 1);
  EXPECT_NE(std::find(shown.begin(), shown.end(), 7), shown.end());
}

TEST_F(Paging, BadAnswersAreRefused) {
  type("x\n\n\n");
  list(10);
  EXPECT_NE(output().find("Input must be either +, -, NNN, +NNN, -NNN or <R> to quit ?"),
            std::string::npos);
}

TEST_F(Paging, LastPageAsksAtOnce) {
  type("\n");
  const auto shown = list(2);
  EXPECT_EQ(shown, (std::vector<int>{1, 2}));
}

TEST_F(Paging, WholeScreenListingMustFit) {
  type("\n");
  PRPAGE("a{nwl}b");
  EXPECT_NE(output().find("To continue press RETURN"), std::string::npos);
  type("\n");
  std::string tall = "x";
  for (int i = 0; i < 9; ++i) tall += "{nwl}x";
  PRPAGE(tall);
  EXPECT_NE(output().find("Attempt to exceed number of lines on screen\n(maximum is   10)"),
            std::string::npos);
  EXPECT_EQ(CNTLIN(tall), 10);
  EXPECT_EQ(CNTLIN("   "), 1);
}

}  // namespace
}  // namespace kntr::framework
