// Paged tables on the screen and on a printer.
#include "framework/tables.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/format.h"
#include "framework/printers.h"
#include "framework/state.h"
#include "support/printer_fixture.h"

namespace kntr::framework {
namespace {

using kntr::testing::PrinterTest;

// A table of two head lines and one foot line.
constexpr const char* Head = "Numbers{nwl=======";
constexpr const char* Foot = "-------";

std::string rowText(int row) {
  return "row " + fmt::I(row, 3);
}

class Table : public PrinterTest {
 protected:
  // Runs a table of `rows` rows whose row requests carry `limit`; the rows
  // handed out, in order.
  std::vector<int> run(int rows, int limit) {
    std::vector<int> given;
    bool status = true;
    IZTABL(Head, Foot, rows, status);
    EXPECT_FALSE(status);
    if (status) return given;
    int row = 0;
    bool done = false;
    for (GTTROW(limit, row, done); !done; GTTROW(limit, row, done)) {
      given.push_back(row);
      PTTROW(rowText(row));
      if (given.size() > 1000) {
        ADD_FAILURE() << "the table does not end";
        break;
      }
    }
    return given;
  }
  static std::vector<int> range(int first, int last) {
    std::vector<int> rows;
    for (int k = first; k <= last; ++k) rows.push_back(k);
    return rows;
  }
  static std::vector<int> join(std::vector<int> a, const std::vector<int>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
  }
};

TEST_F(Table, OneScreenEndsAtReturn) {
  type("\n");
  EXPECT_EQ(run(5, 5), range(1, 5));
  EXPECT_NE(output().find("Numbers\n=======\nrow   1\nrow   2\nrow   3\nrow   4\nrow   5\n"
                          "-------\n"),
            std::string::npos);
  EXPECT_FALSE(inputLeft());
}

TEST_F(Table, PagesForwardAndBackOnTheScreen) {
  // 24 lines: 17 rows a page besides head, foot and the paging question.
  // The first page goes out and the second, which does not fit under it,
  // waits for the question; "+" shows it alone, "-" goes back to the first,
  // and RETURN ends at the question after it.
  type("+\n-\n\n");
  const std::vector<int> given = run(30, 30);
  const std::vector<int> first = range(1, 17), second = range(18, 30);
  EXPECT_EQ(given, join(join(join(join(first, second), second), first), second));
  EXPECT_NE(output().find("Input +, -, NNN, +NNN, -NNN or <R> to quit ?"), std::string::npos);
  EXPECT_FALSE(inputLeft());
}

TEST_F(Table, PageNumberAnswerJumps) {
  type("3\n\n");
  const std::vector<int> given = run(40, 40);
  // Page 1, page 2 refused under it, then page 3 on its own.
  EXPECT_EQ(given, join(join(range(1, 17), range(18, 34)), range(35, 40)));
}

TEST_F(Table, RowRequestCountCutsTheTable) {
  type("\n");
  EXPECT_EQ(run(8, 3), range(1, 3));
  type("\n");
  EXPECT_EQ(run(3, 8), range(1, 3));
  // No rows at all still shows the head and the foot.
  type("\n");
  output();
  EXPECT_TRUE(run(4, 0).empty());
  EXPECT_NE(output().find("Numbers\n=======\n-------\n"), std::string::npos);
}

TEST_F(Table, ScreenTooSmallForOneRow) {
  resize(80, 7);
  type("\n");
  bool status = false;
  IZTABL(Head, Foot, 3, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("Attempt to exceed number of lines on screen"), std::string::npos);
  int row = 0;
  bool done = false;
  GTTROW(3, row, done);
  EXPECT_TRUE(done);
}

TEST_F(Table, PrintedPageByPageUnderThePageHeads) {
  open("", 20);
  // First page: 20 - 11 (head box) - 3 (head, foot) - 2 (gap) = 4 rows;
  // later pages: 20 - 3 (head line) - 3 - 2 = 12 rows.
  EXPECT_EQ(run(30, 30), range(1, 30));
  const std::vector<std::string> lines = finish();
  ASSERT_EQ(lines.size(), 20u * 3u + 3u + 3u + 2u + 2u);
  EXPECT_EQ(lines[11], "Numbers");
  EXPECT_EQ(lines[13], "row   1");
  EXPECT_EQ(lines[16], "row   4");
  EXPECT_EQ(lines[17], "-------");
  EXPECT_EQ(lines[20].substr(0, 12), "Module: KNTR");
  EXPECT_EQ(lines[23], "Numbers");
  EXPECT_EQ(lines[25], "row   5");
  EXPECT_EQ(lines[36], "row  16");
  EXPECT_EQ(lines[37], "-------");
  EXPECT_EQ(lines[40].substr(lines[40].size() - 4), "   3");
  EXPECT_EQ(lines[45], "row  17");
  EXPECT_EQ(lines[60].substr(lines[60].size() - 4), "   4");
  EXPECT_EQ(lines[65], "row  29");
  EXPECT_EQ(lines[66], "row  30");
  EXPECT_EQ(lines[67], "-------");
}

TEST_F(Table, PrinterPageTooShort) {
  open("", 8);
  type("\n");
  bool status = false;
  IZTABL(Head, Foot, 3, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("Attempt to exceed number of lines on printer"), std::string::npos);
}

}  // namespace
}  // namespace kntr::framework
