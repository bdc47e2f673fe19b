// Listings paged on the screen by SCROLL and PRPAGE.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "framework/state.h"
#include "framework/text.h"
#include "support/checks.h"
#include "support/console_fixture.h"

namespace kntr::framework {
namespace {

using kntr::testing::Contains;

class Paging : public kntr::testing::ConsoleTest {
 protected:
  void SetUp() override {
    ConsoleTest::SetUp();
    resize(40, 12);
    scrollRow() = 1;
  }
  // Runs a listing of `last` blocks of one line each on the answers `keys`
  // until SCROLL ends it; returns the page numbers shown, in order.
  std::vector<int> list(const std::string& keys, int last) {
    type(keys);
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
  // leave no room for the question, so the screen shows two and asks;
  // RETURN at the first question ends the listing.
  EXPECT_EQ(list("\n", 10), (std::vector<int>{1, 2, 3}));
  const auto rows = screen();
  EXPECT_NE(std::find(rows.begin(), rows.end(), "block 2"), rows.end());
  EXPECT_EQ(std::find(rows.begin(), rows.end(), "block 3"), rows.end());
  EXPECT_TRUE(Contains(output(), "Input +, -, NNN, +NNN, -NNN or <R> to quit ?"));
  // The last page asks at once.
  scrollRow() = 1;
  EXPECT_EQ(list("\n", 2), (std::vector<int>{1, 2}));
}

TEST_F(Paging, PlusGoesOnNumbersJumpAndBadAnswersAreRefused) {
  // First screen 1..3 (4 does not fit and steps back to 3), "+" from 3
  // shows 4.., "7" jumps to page 7.
  const auto shown = list("+\n7\n\n", 10);
  ASSERT_GE(shown.size(), 6u);
  EXPECT_EQ(shown[0], 1);
  EXPECT_NE(std::find(shown.begin(), shown.end(), 7), shown.end());
  list("x\n\n\n", 10);
  EXPECT_TRUE(Contains(output(), "Input must be either +, -, NNN, +NNN, -NNN or <R> to quit ?"));
}

TEST_F(Paging, WholeScreenListingMustFit) {
  type("\n\n");
  PRPAGE("a{nwl}b");
  EXPECT_TRUE(Contains(output(), "To continue press RETURN"));
  std::string tall = "x";
  for (int i = 0; i < 9; ++i) tall += "{nwl}x";
  PRPAGE(tall);
  EXPECT_TRUE(Contains(output(), "Attempt to exceed number of lines on screen\n(maximum is   10)"));
  EXPECT_EQ(CNTLIN(tall), 10);
  EXPECT_EQ(CNTLIN("   "), 1);
}

}  // namespace
}  // namespace kntr::framework
