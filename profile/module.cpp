#include "profile/module.h"

#include "framework/format.h"
#include "framework/text.h"
#include "graphics/plotstate.h"
#include "profile/block.h"

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
  p.SHOWIP = false;
  p.SHOWCP = false;
  p.SHOWLS = true;
  p.SHOWGR = true;
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
