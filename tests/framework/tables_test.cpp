// Paged tables on the screen and on a printer.
#include "framework/tables.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "framework/format.h"
#include "framework/printers.h"
#include "framework/state.h"
#include "support/checks.h"
#include "support/printer_fixture.h"

namespace kntr::framework {
namespace {

using kntr::testing::Contains;

// A table of two head lines and one foot line.
constexpr const char* Head = "Numbers{nwl=======";
constexpr const char* Foot = "-------";

// The rows of the ranges `first`-`last`, one after the other.
std::vector<int> rows(std::initializer_list<std::pair<int, int>> ranges) {
  std::vector<int> all;
  for (const auto& [first, last] : ranges)
    for (int k = first; k <= last; ++k) all.push_back(k);
  return all;
}

class Table : public kntr::testing::PrinterTest {
 protected:
  // Runs a table of `count` rows whose row requests carry `limit`, on the
  // answers `keys`; the rows handed out, in order.
  std::vector<int> run(const std::string& keys, int count, int limit) {
    type(keys);
    std::vector<int> given;
    bool status = true;
    IZTABL(Head, Foot, count, status);
    EXPECT_FALSE(status);
    if (status) return given;
    int row = 0;
    bool done = false;
    for (GTTROW(limit, row, done); !done && given.size() < 1000; GTTROW(limit, row, done)) {
      given.push_back(row);
      PTTROW("row " + fmt::I(row, 3));
    }
    EXPECT_TRUE(done) << "the table does not end";
    return given;
  }
  // IZTABL refuses a table of three rows with `message`.
  void refused(const std::string& message) {
    type("\n");
    EXPECT_STATUS(true, IZTABL(Head, Foot, 3, status));
    EXPECT_TRUE(Contains(output(), message));
  }
};

TEST_F(Table, OneScreenEndsAtReturnAndTheRowCountCutsTheTable) {
  EXPECT_EQ(run("\n", 5, 5), rows({{1, 5}}));
  EXPECT_TRUE(Contains(output(),
                       "Numbers\n=======\nrow   1\nrow   2\nrow   3\nrow   4\nrow   5\n-------\n"));
  EXPECT_FALSE(inputLeft());
  EXPECT_EQ(run("\n", 8, 3), rows({{1, 3}}));
  EXPECT_EQ(run("\n", 3, 8), rows({{1, 3}}));
  // No rows at all still shows the head and the foot.
  output();
  EXPECT_TRUE(run("\n", 4, 0).empty());
  EXPECT_TRUE(Contains(output(), "Numbers\n=======\n-------\n"));
}

TEST_F(Table, PagesForwardBackAndByNumberOnTheScreen) {
  // 24 lines: 17 rows a page besides head, foot and the paging question.
  // The first page goes out and the second, which does not fit under it,
  // waits for the question; "+" shows it alone, "-" goes back to the first,
  // and RETURN ends at the question after it.
  EXPECT_EQ(run("+\n-\n\n", 30, 30), rows({{1, 17}, {18, 30}, {18, 30}, {1, 17}, {18, 30}}));
  EXPECT_TRUE(Contains(output(), "Input +, -, NNN, +NNN, -NNN or <R> to quit ?"));
  EXPECT_FALSE(inputLeft());
  // Page 1, page 2 refused under it, then page 3 on its own.
  EXPECT_EQ(run("3\n\n", 40, 40), rows({{1, 17}, {18, 34}, {35, 40}}));
  // A word is no page: the question comes again.
  EXPECT_EQ(run("x\n\n\n", 30, 30), rows({{1, 17}, {18, 30}}));
  EXPECT_TRUE(Contains(output(), "Input must be either +, -, NNN, +NNN, -NNN or <R> to quit ?"));
  EXPECT_FALSE(inputLeft());
}

TEST_F(Table, PrintedPageByPageUnderThePageHeads) {
  open("", 20);
  const std::string date = printerState().date;
  const std::string head = "Module: KNTR; pjc: demo           ; date: " + date.substr(0, 9) +
                           "; time: " + printerState().time + "; page:    ";
  // First page: 20 - 11 (head box) - 3 (head, foot) - 2 (gap) = 4 rows;
  // later pages: 20 - 3 (head line) - 3 - 2 = 12 rows.
  EXPECT_EQ(run("", 30, 30), rows({{1, 30}}));
  const std::vector<std::string> lines = finish();
  ASSERT_EQ(lines.size(), 20u * 3u + 3u + 3u + 2u + 2u);
  const std::vector<std::pair<int, std::string>> expected = {
      {11, "Numbers"}, {13, "row   1"}, {16, "row   4"}, {17, "-------"},
      {18, ""},        {19, ""},        {21, ""},        {22, ""},
      {23, "Numbers"}, {25, "row   5"}, {36, "row  16"}, {37, "-------"},
      {45, "row  17"}, {65, "row  29"}, {66, "row  30"}, {67, "-------"}};
  for (const auto& [at, text] : expected) EXPECT_EQ(lines[static_cast<std::size_t>(at)], text);
  // Later pages carry one head line; the pages before are filled up.
  EXPECT_EQ(lines[20], head + "2");
  EXPECT_EQ(lines[40], head + "3");
  EXPECT_EQ(lines[60], head + "4");
}

TEST_F(Table, TooSmallForOneRow) {
  resize(80, 7);
  refused("Attempt to exceed number of lines on screen");
  int row = 0;
  bool done = false;
  GTTROW(3, row, done);
  EXPECT_TRUE(done);
  resize(80, 24);
  open("", 8);
  refused("Attempt to exceed number of lines on printer");
}

}  // namespace
}  // namespace kntr::framework
