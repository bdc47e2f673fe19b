#include "profile/module.h"
#include "profile/curvecreate.h"

#include <array>
#include <string>

#include "framework/format.h"
#include "framework/menus.h"
#include "framework/printers.h"
#include "framework/projects.h"
#include "framework/startup.h"
#include "framework/state.h"
#include "framework/sysmenu.h"
#include "framework/text.h"
#include "graphics/hardcopy.h"
#include "graphics/plotstate.h"
#include "graphics/view.h"
#include "platform/console.h"
#include "profile/block.h"
#include "profile/curveinput.h"
#include "profile/datafile.h"
#include "profile/manipulate.h"
#include "profile/plot.h"
#include "profile/printout.h"
#include "profile/undo.h"

namespace kntr::profile {

void IZKNTR(bool& status) {
  status = false;
  ProfileData& p = profile();
  p.NPRCRV = 0;
  p.PRFTYP = SplineProfile;
  for (int c = 1; c <= MaxCurves; ++c) p.PRPARM(c) = ChordLength;
  p.MODFLG = false;
  IZACCY();
  p.MESHON = false;
  p.MESHLP = false;
  p.MESHAU = false;
  p.MESHQL = 0.85;
  p.MESHDN = 1000;
  p.MESHRB = false;
  p.MESHIM = false;
  p.SHOWIP = false;
  p.SHOWCP = false;
  p.SHOWLS = true;
  p.SHOWGR = true;
  p.SHOWCB = false;
  p.MESHQC = false;
}

void RSKNTR(bool& status) {
  IZKNTR(status);
  if (status) return;
  ProfileData& p = profile();
  p.BBOXOK = false;
  p.SNAPOK = false;
  p.HLPLOK = false;
  p.MARKOK = false;
  p.CURCRV = 0;
  p.CURPNT = 0;
  p.HILSEG(1) = 0;
  p.HILSEG(2) = 0;
  p.FRLOCL = true;
  p.FRRSTR = false;
  p.FRRDST = 1.0;
  p.FRMITR = 1;
  p.MODFLG = false;
}

void PRMLIM(bool& status) {
  status = false;
  framework::PRPAGE("{YEL{UDLModule limitations{UDL{NWL"
                    "{NWL{CYAMax number of profile curves ..............." +
                    fmt::repeat(".", 7) + " : {GRE" + fmt::I(MaxCurves, 4) +
                    "{NWL{CYAMax number of profile curves points ........" + fmt::repeat(".", 7) +
                    " : {GRE" + fmt::I(MaxCurvePoints, 4));
}

void SCKNTR(bool& status) {
  status = false;
  const ProfileData& p = profile();
  graphics::G2SCLT(p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4));
}

namespace {

// Selection numbers of the main menu.
enum MainSelection {
  BoxRow = 1,
  KeyInRow,
  DigitizeRow,
  ManipulateRow,
  PrintRow,
  PlotRow,
  SetupRow,
  FileRow,
  ExitRow
};

}  // namespace

int KNTRMN() {
  framework::ProgramState& program = framework::program();
  program.SPNAME = ModuleName;
  program.SPVERS = ModuleVersion;
  framework::callbacks().reset = RSKNTR;
  framework::callbacks().limits = PRMLIM;
  framework::services().testPlot = graphics::PLTSCL;
  IZKNTF();
  IZUNDO();

  bool status = false;
  framework::PGINIT(status);
  if (status) {
    // The start-up failed after telling why: the log gets its exit line and
    // the terminal is given back.
    bool ignored = false;
    framework::CLLGFL(ignored);
    platform::WinConF::terminate();
    return 1;
  }
  RSKNTR(status);
  if (status) return 1;
  // The views start from their defaults: a fixed view of the plane.
  graphics::resetViewState();

  // The module starts in terminal mode.
  program.terminalInput = true;
  if (program.executionMode != framework::ModeAlone &&
      program.executionMode != framework::ModeSystem) {
    framework::PRMESG("Batch mode not supported for KNTR - using interactive mode");
    program.executionMode = framework::ModeAlone;
  }

  MNKNTR(status);
  bool down = false;
  framework::PGEXIT(down);
  return 0;
}

void BGKNTR(bool& status) {
  IZKNTR(status);
  if (status) return;
  // Load the project's profile; when there is one, keep a copy of it as it
  // stands now in the backup file.
  const std::array<std::string, 1> kinds{ModuleName};
  std::array<bool, 1> loaded{false};
  framework::ISDSFA(kinds, loaded, status);
  if (status || !loaded[0]) return;
  std::string backup;
  framework::IQISFN("BCKP", backup, status);
  if (status) return;
  PTKNTR(backup, true, status);
}

void MNKNTR(bool& status) {
  status = false;
  ProfileData& p = profile();
  bool ignored = false;
  BGKNTR(ignored);
  for (;;) {
    const auto rows = mainMenuRows();
    bool abort = false;
    bool failed = false;
    int selection = MainMenuRows;
    framework::TXMENU("MANIPULATE KNTR DATA", rows, MainMenuRows, " ", abort, selection, failed);
    if (!abort && !failed && selection == 0) continue;  // the data were replaced: new rows
    if (abort || failed || selection == ExitRow) {
      bool leave = false;
      framework::OKEXIT(p.MODFLG, leave);
      if (leave) return;
      continue;
    }
    bool st = false;
    switch (selection) {
      case KeyInRow:
        if (!p.BBOXOK)
          framework::ERRSCN("Bounding box must be given before keying in profile!");
        else
          KYPRCV(st);  // a key-in alone does not mark the data as modified
        break;
      case DigitizeRow:
        if (!p.BBOXOK)
          framework::ERRSCN("Bounding box must be given before digitizing profile!");
        else
          DGPRCV(st);
        break;
      case ManipulateRow:
        if (!p.BBOXOK)
          framework::ERRSCN("Bounding box must be given before creating profile!");
        else {
          MNPRCV(st);
          if (!st) p.MODFLG = true;
        }
        break;
      case PrintRow: {
        // Where to, then the printout; a job that fails is thrown away.
        bool cancelled = false;
        framework::SLPRNT(cancelled, st);
        if (cancelled || st) break;
        PRKNTR(st);
        bool closed = false;
        framework::CLPRNT(!st, closed);
        break;
      }
      case PlotRow:
        PLKNTR(st);
        break;
      case SetupRow:
        framework::SYMENU(st);
        break;
      case FileRow:
        FLKNTR(st);
        break;
      default: {
        // The box row, and any number outside the menu.
        bool cancelled = false;
        INBBOX(p.BBOXOK, cancelled, st);
        if (st) {
          status = true;
          return;
        }
        // A cancelled question is no failure: the box counts as given.
        (void)cancelled;
        if (!p.BBOXOK) {
          p.BBOXOK = true;
          IZACCY();
        }
        if (fileDisplayHooks().setViewBox)
          fileDisplayHooks().setViewBox(p.PRBBOX(1), p.PRBBOX(2), p.PRBBOX(3), p.PRBBOX(4));
        p.MODFLG = true;
        break;
      }
    }
  }
}

std::array<std::string, MainMenuRows> mainMenuRows() {
  const ProfileData& p = profile();
  const bool box = p.BBOXOK;
  const bool curves = p.NPRCRV > 0;
  return {box ? "Modify bounding box" : "Input bounding box",
          box ? "Key-in profile" : "( Key-in profile )",
          box ? "Digitize profile" : "( Digitize profile )",
          box ? "Manipulate profile" : "( Manipulate profile)",
          "",
          curves ? "Print profile" : "( Print profile )",
          curves ? "Plot profile" : "( Plot profile )",
          "",
          "Setup{NWM",
          "File{NWM",
          "",
          "EXIT"};
}

}  // namespace kntr::profile
