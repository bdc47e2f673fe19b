// Paged tables: a head, rows and a foot, shown a page at a time on the
// screen or printed page by page.
//
// The caller starts a table with its row count and its head and foot texts,
// then asks for row numbers one at a time and gives the text of each row.
// Whenever the rows of a page are complete the page goes out through SCROLL:
// on the screen the user pages back and forth ("+", "-", a page number) or
// quits with RETURN, and the service hands out the rows of whichever page
// comes next; on a printer the pages follow one another, each under the page
// head. When the service says the table is done, the caller stops.
//
//   IZTABL  start a table
//   GTTROW  the number of the next row to give
//   PTTROW  the text of that row
//
//   int row = 0;
//   bool done = false;
//   IZTABL(head, foot, count, status);
//   for (GTTROW(count, row, done); !done; GTTROW(count, row, done)) PTTROW(rowText(row));
#pragma once

#include <string_view>

namespace kntr::framework {

// IZTABL: start a table of `rows` rows with the formatted texts `head` (the
// lines above the rows) and `foot` (the lines below them). The rows of a page
// are as many as the screen or the printer's page holds with head and foot.
//   status: set when not even one row fits; the message has been shown.
void IZTABL(std::string_view head, std::string_view foot, int rows, bool& status);

// GTTROW: the number of the next row to give. No row beyond `rows` is handed
// out, nor beyond the count the table was started with. `done` comes back
// true when the table has ended: the user quit, the last page was printed,
// or the print job broke off.
void GTTROW(int rows, int& row, bool& done);

// PTTROW: the formatted text of the row GTTROW handed out last: one line.
void PTTROW(std::string_view text);

}  // namespace kntr::framework
