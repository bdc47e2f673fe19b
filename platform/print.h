// Print services: plots on a printer, text jobs, and metafiles.
//
// Printers are the print queues of the system's print service (CUPS), reached
// through its commands: "lpstat" lists the queues and names the default one,
// "lp" takes a job. A job is written to a spool file first and handed over
// whole; the spool file is removed once the queue has it (or has refused it).
// A plot on a printer is drawn through Cairo into a PDF page; a text job is
// paged into a plain text file with form feeds; a metafile is an SVG picture.
//
// These operations report nothing themselves: a failure comes back as false
// with the reason in `error`, and the caller tells the user.
//
//   printQueues       the queues that take jobs, and the default one
//   submitPrintFile   hand a file to a queue (the default one when blank)
//   cwOpenPlotter     begin a plot page for a printer queue
//   cwClosePlotter    end the page and hand it to the queue
//   cwOpenPrinter     begin a text job for a printer queue
//   cwPrintLine       one line of the text job, paging as it goes
//   cwClosePrinter    end the text job and hand it to the queue
//   cwOpenMetaFile    begin a metafile picture
//   cwCloseMetaFile   end the metafile and put it in place
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/cairodevice.h"

namespace kntr::platform {

// The printer page of a plot: A4 turned, in points.
inline constexpr double PlotPageWidthMm = 297.0;
inline constexpr double PlotPageHeightMm = 210.0;
inline constexpr double PlotPageDpi = 72.0;
// Lines on a page of a text job.
inline constexpr int TextPageLines = 66;

// printQueues: the names of the queues that accept jobs, and the default
// queue (blank when none is set). False when the print service cannot be
// asked ("lpstat" missing or failing).
bool printQueues(std::vector<std::string>& queues, std::string& defaultQueue, std::string& error);

// submitPrintFile: hand `fileName` to `queue` (the default queue when blank)
// under the job title `title`. False, with lp's own words in `error`, when
// "lp" is missing or refuses the job.
bool submitPrintFile(std::string_view fileName, std::string_view queue, std::string_view title,
                     std::string& error);

// The open plot or text job, and the metafile.
struct PrintJobs {
  std::unique_ptr<CairoDevice> plotPage;  // the plot page while a plot is open
  std::string plotQueue, plotSpool;
  bool textOpen = false;
  std::string textQueue, textSpool, textTitle;
  std::string textPages;  // the text of the job so far
  int textLine = 0;       // lines on the current page
  std::unique_ptr<CairoDevice> metafile;
};
PrintJobs& printJobs();

// cwOpenPlotter: a plot page for `queue`, spooled to `spoolName`; the page is
// the device to draw on (paper colours). Null with `error` set on failure.
CairoDevice* cwOpenPlotter(std::string_view queue, std::string_view spoolName, std::string& error);
// cwClosePlotter: end the page and, with `keep`, submit it. False with
// `error` when the page cannot be written or the queue refuses it.
bool cwClosePlotter(bool keep, std::string& error);

// cwOpenPrinter: a text job named `jobName` for `queue`, spooled to
// `spoolName`.
bool cwOpenPrinter(std::string_view jobName, std::string_view queue, std::string_view spoolName,
                   std::string& error);
// cwPrintLine: one line; past the last line of a page a new page begins.
void cwPrintLine(std::string_view text);
// cwClosePrinter: end the job and submit it.
bool cwClosePrinter(std::string& error);

// cwOpenMetaFile: an SVG picture of widthMm x heightMm written to
// `fileName`; the device to draw on. Null with `error` set on failure.
CairoDevice* cwOpenMetaFile(std::string_view fileName, double widthMm, double heightMm,
                            std::string& error);
// cwCloseMetaFile: end the picture and put the file in place.
bool cwCloseMetaFile(std::string& error);

}  // namespace kntr::platform
