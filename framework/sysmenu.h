// The system menu: what every module offers besides its own data.
//
// Project settings, program attributes, files on disk, the log level, a look
// at the processes and the operating system, the module's limits, error
// reports by mail, and listings of the configuration.
//
//   SYMENU  the menu "PROGRAM MANIPULATION " and its sub-menus
//   EMRPER  send an error report by mail
//
// Error reports go to ErrorReportAddress through the machine's "mail"
// program; without one the report is refused with "Attempt to execute E-mail
// program failed".
#pragma once

namespace kntr::framework {

// Where error reports are mailed: a local alias that the site points at its
// support.
inline constexpr const char* ErrorReportAddress = "tarvik-support";
// Kinds of error report.
inline constexpr int GeneralErrorReport = 1;
inline constexpr int ModuleErrorReport = 2;
// Length of an answer to the file questions of the menu.
inline constexpr int MenuFileNameLength = 80;

// SYMENU: run the system menu until the user leaves it by RETURN or "$".
//   status: set when the screen is too small for the menu.
void SYMENU(bool& status);

// EMRPER: ask for a description and mail an error report of `kind`
// (GeneralErrorReport, ModuleErrorReport).
//   status: set when the mail program is missing or fails (the user has been
//   told), or the kind is unknown.
void EMRPER(int kind, bool& status);

}  // namespace kntr::framework
