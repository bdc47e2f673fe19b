#include "profile/exchange.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "framework/files.h"
#include "framework/format.h"
#include "framework/input.h"
#include "framework/menus.h"
#include "framework/projects.h"
#include "framework/state.h"
#include "framework/text.h"
#include "profile/block.h"
#include "profile/curveinput.h"
#include "profile/polylines.h"

namespace kntr::profile {

namespace fw = framework;

namespace {

// The polylines of the profile, made for each export.
ProfilePolylines& exportLines() {
  static ProfilePolylines lines;
  return lines;
}

// Colours of the curves' layers, by the drawing programs' colour numbers.
constexpr std::array<int, 7> layerColours = {1, 5, 3, 6, 4, 2, 8};
// Stroke colours of the curves' paths.
constexpr std::array<const char*, 7> pathColours = {"#d62728", "#1f77b4", "#2ca02c", "#9467bd",
                                                    "#17becf", "#bcbd22", "#7f7f7f"};

// Asks before an existing file is replaced. False when the file is not to
// be written; `status` is set when the user said no.
bool mayWrite(std::string_view name, bool& status) {
  if (!fw::fileExists(name)) return true;
  bool overwrite = false, cancelled = false;
  fw::askYesNo("OK to overwrite the file ** {gre" + std::string(name) + "{yel ** ? (yes/no)", false,
               "no", "This will leave the file with the latest modified data",
               !fw::program().terminalInput, overwrite, cancelled);
  if (cancelled) return false;
  status = !overwrite;
  return overwrite;
}

// Writes the lines of a drawing to `name` and puts it in place whole.
void writeDrawing(std::string_view name, const std::vector<std::string>& lines, bool& status) {
  if (!mayWrite(name, status)) return;
  fw::AtomicWriter file;
  if (!fw::openOnFreeUnit(file, name, status)) return;
  fw::PUTSCN("Storing profile drawing in ** {GRE" + std::string(name) + "{YEL **");
  fw::writeLinesAndCommit(file, name, lines, status);
}

// The profile as polylines; false after a failure has been told.
bool makeLines(bool& status) {
  IQPPOL(MaxCurves, MaxPolylinePoints, exportLines(), status);
  return !status;
}

// One group code and value of a DXF file: two lines.
void dxf(std::vector<std::string>& out, int code, const std::string& value) {
  std::string group = std::to_string(code);
  if (group.size() < 3) group.insert(0, 3 - group.size(), ' ');
  out.push_back(group);
  out.push_back(value);
}

// A point of a DXF entity: codes 10, 20, 30.
void dxfPoint(std::vector<std::string>& out, double x, double y) {
  dxf(out, 10, fmt::exact(x));
  dxf(out, 20, fmt::exact(y));
  dxf(out, 30, "0.0");
}

std::string layerName(int c) {
  return "CURVE" + std::to_string(c);
}

// Asks for a file name until one is given; false on abort.
bool askName(std::string_view question, std::string& name) {
  for (;;) {
    bool abort = false, failed = false;
    fw::ASKQST(question, "", "", 1, abort, failed);
    if (abort) return false;
    if (failed) continue;
    std::array<std::string, 1> texts{""};
    bool deflt = false;
    fw::GTCHAR(texts, ExchangeFileNameLength, deflt, failed);
    if (failed) continue;
    name = std::string(fmt::trimmed(texts[0]));
    if (!name.empty()) return true;
  }
}

// ---- offset tables ---------------------------------------------------------

// One good row of an offset table.
struct OffsetRow {
  int row = 0;
  std::string curve;
  double x = 0.0, y = 0.0;
  bool knuckle = false;
};

std::string trimmedCopy(std::string_view text) {
  std::size_t a = 0, b = text.size();
  while (a < b && std::isspace(static_cast<unsigned char>(text[a]))) ++a;
  while (b > a && std::isspace(static_cast<unsigned char>(text[b - 1]))) --b;
  std::string out(text.substr(a, b - a));
  // A field in double quotes, as spreadsheets write text.
  if (out.size() >= 2 && out.front() == '"' && out.back() == '"')
    out = out.substr(1, out.size() - 2);
  return out;
}

// The fields of a row, trimmed; empty fields at its end are dropped.
std::vector<std::string> splitRow(const std::string& line) {
  std::vector<std::string> fields;
  std::size_t start = 0;
  for (;;) {
    const std::size_t comma = line.find(',', start);
    fields.push_back(trimmedCopy(std::string_view(line).substr(
        start, comma == std::string::npos ? std::string::npos : comma - start)));
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  while (!fields.empty() && fields.back().empty()) fields.pop_back();
  return fields;
}

bool parseNumber(const std::string& text, double& value) {
  if (text.empty()) return false;
  char* end = nullptr;
  errno = 0;
  value = std::strtod(text.c_str(), &end);
  return *end == '\0' && errno == 0 && std::isfinite(value);
}

bool lowerEquals(const std::string& text, std::string_view word) {
  if (text.size() != word.size()) return false;
  for (std::size_t k = 0; k < text.size(); ++k)
    if (std::tolower(static_cast<unsigned char>(text[k])) != word[k]) return false;
  return true;
}

// The coincidence test with a given accuracy.
bool within(double accuracy, double ax, double ay, double bx, double by) {
  const double dx = std::fabs(ax - bx), dy = std::fabs(ay - by);
  return dx < accuracy && dy < accuracy && std::sqrt(dx * dx + dy * dy) < accuracy;
}

}  // namespace

void PTPDXF(std::string_view name, bool& status) {
  status = false;
  if (!makeLines(status)) return;
  const ProfileData& p = profile();
  const ProfilePolylines& lines = exportLines();
  const bool spline = p.PRFTYP == SplineProfile;
  std::vector<std::string> out;

  dxf(out, 999, "KNTR profile");
  dxf(out, 0, "SECTION");
  dxf(out, 2, "HEADER");
  dxf(out, 9, "$ACADVER");
  dxf(out, 1, "AC1009");
  dxf(out, 9, "$EXTMIN");
  dxfPoint(out, p.PRBBOX(1), p.PRBBOX(3));
  dxf(out, 9, "$EXTMAX");
  dxfPoint(out, p.PRBBOX(2), p.PRBBOX(4));
  dxf(out, 0, "ENDSEC");

  // A layer per curve, and one for the reference point.
  dxf(out, 0, "SECTION");
  dxf(out, 2, "TABLES");
  dxf(out, 0, "TABLE");
  dxf(out, 2, "LTYPE");
  dxf(out, 70, "1");
  dxf(out, 0, "LTYPE");
  dxf(out, 2, "CONTINUOUS");
  dxf(out, 70, "0");
  dxf(out, 3, "Solid line");
  dxf(out, 72, "65");
  dxf(out, 73, "0");
  dxf(out, 40, "0.0");
  dxf(out, 0, "ENDTAB");
  dxf(out, 0, "TABLE");
  dxf(out, 2, "LAYER");
  dxf(out, 70, std::to_string(lines.curves + 1));
  for (int c = 0; c <= lines.curves; ++c) {
    dxf(out, 0, "LAYER");
    dxf(out, 2, c == 0 ? "REFERENCE" : layerName(c));
    dxf(out, 70, "0");
    dxf(out, 62, std::to_string(c == 0 ? 7 : layerColours[static_cast<std::size_t>(c - 1) % 7]));
    dxf(out, 6, "CONTINUOUS");
  }
  dxf(out, 0, "ENDTAB");
  dxf(out, 0, "ENDSEC");

  dxf(out, 0, "SECTION");
  dxf(out, 2, "ENTITIES");
  dxf(out, 0, "POINT");
  dxf(out, 8, "REFERENCE");
  dxfPoint(out, p.PRREFP(1), p.PRREFP(2));
  for (int c = 1; c <= lines.curves; ++c) {
    const int n = lines.points(c);
    if (n < 1) continue;
    // Flags: 1 closed, 4 spline-fit.
    const bool fitted = spline && n >= 2 && p.NPRPNT(c) >= 2;
    dxf(out, 0, "POLYLINE");
    dxf(out, 8, layerName(c));
    dxf(out, 66, "1");
    dxfPoint(out, 0.0, 0.0);
    dxf(out, 70, std::to_string((p.PRCLSD(c) ? 1 : 0) + (fitted ? 4 : 0)));
    if (fitted) dxf(out, 75, "6");
    auto vertex = [&](double x, double y, int flags) {
      dxf(out, 0, "VERTEX");
      dxf(out, 8, layerName(c));
      dxfPoint(out, x, y);
      dxf(out, 70, std::to_string(flags));
    };
    // The frame: the offset points (16); then the fitted points (8).
    if (fitted) {
      for (int j = 1; j <= p.NPRPNT(c); ++j) vertex(p.PRPNTS(c, j)(1), p.PRPNTS(c, j)(2), 16);
    }
    for (int i = 1; i <= n; ++i) vertex(lines.xy(c, i).x, lines.xy(c, i).y, fitted ? 8 : 0);
    dxf(out, 0, "SEQEND");
    dxf(out, 8, layerName(c));
  }
  dxf(out, 0, "ENDSEC");
  dxf(out, 0, "EOF");
  writeDrawing(name, out, status);
}

void PTPSVG(std::string_view name, bool& status) {
  status = false;
  if (!makeLines(status)) return;
  const ProfileData& p = profile();
  const ProfilePolylines& lines = exportLines();
  const double width = p.PRBBOX(2) - p.PRBBOX(1), height = p.PRBBOX(4) - p.PRBBOX(3);
  const double larger = std::max({width, height, 1e-300});
  // 800 units on the larger side of the picture.
  const std::string pictureWidth = fmt::exact(std::max(1.0, std::round(800.0 * width / larger)));
  const std::string pictureHeight = fmt::exact(std::max(1.0, std::round(800.0 * height / larger)));
  std::vector<std::string> out;
  out.push_back("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
  // The view box in turned coordinates: Y runs from -max Y to -min Y.
  out.push_back("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + pictureWidth +
                "\" height=\"" + pictureHeight + "\" viewBox=\"" + fmt::exact(p.PRBBOX(1)) + " " +
                fmt::exact(-p.PRBBOX(4)) + " " + fmt::exact(width) + " " + fmt::exact(height) +
                "\">");
  out.push_back("  <title>" +
                std::string(p.PRFTYP == SplineProfile ? "Spline profile" : "Polyline profile") +
                "</title>");
  out.push_back("  <g transform=\"scale(1,-1)\" fill=\"none\" stroke-width=\"1\">");
  for (int c = 1; c <= lines.curves; ++c) {
    const int n = lines.points(c);
    if (n < 1) continue;
    std::string d;
    for (int i = 1; i <= n; ++i) {
      d += (i == 1 ? "M " : " L ") + fmt::exact(lines.xy(c, i).x) + " " +
           fmt::exact(lines.xy(c, i).y);
    }
    if (p.PRCLSD(c)) d += " Z";
    out.push_back("    <path id=\"curve" + std::to_string(c) + "\" stroke=\"" +
                  pathColours[static_cast<std::size_t>(c - 1) % 7] +
                  "\" vector-effect=\"non-scaling-stroke\" d=\"" + d + "\"/>");
  }
  out.push_back("    <circle id=\"reference\" cx=\"" + fmt::exact(p.PRREFP(1)) + "\" cy=\"" +
                fmt::exact(p.PRREFP(2)) + "\" r=\"" + fmt::exact(0.005 * larger) +
                "\" fill=\"black\"/>");
  out.push_back("  </g>");
  out.push_back("</svg>");
  writeDrawing(name, out, status);
}

void GTOFFT(std::string_view name, bool fitBox, Array1<double, 4>& box,
            const Array1<double, 2>& ref, int profileType, bool& status) {
  status = false;
  if (!fw::fileExists(name)) {
    fw::fail("\"{GRE" + std::string(name) + "{RED\" is non-existent!", status);
    return;
  }
  fw::TextReader file;
  if (!fw::openOnFreeUnit(file, name, status)) return;
  fw::PUTSCN("{CSB{YELLoading offset table from \"{GRE" + std::string(name) + "{YEL\"");
  const std::string where = " of \"{GRE" + std::string(name) + "{RED\": ";
  auto bad = [&](int row, const std::string& problem) {
    fw::fail("Row " + std::to_string(row) + where + problem, status);
  };

  // Read and check each row by itself.
  std::vector<OffsetRow> rows;
  bool first = true;
  for (;;) {
    std::string line;
    const int io = file.readLine(line);
    if (io == -1) break;
    if (io != 0) {
      fw::IOERRM('R', name, io);
      status = true;
      return;
    }
    const int row = file.lineNumber();
    if (static_cast<int>(line.size()) > MaxOffsetRowLength) {
      bad(row, "row is too long!");
      return;
    }
    const std::vector<std::string> fields = splitRow(line);
    if (fields.empty() || fields[0].rfind('#', 0) == 0) continue;
    const bool header = first && lowerEquals(fields[0], "curve");
    first = false;
    if (header) continue;
    if (fields.size() < 3 || fields[0].empty() || fields[1].empty() || fields[2].empty()) {
      bad(row, "curve, X and Y must be given!");
      return;
    }
    if (fields.size() > 4) {
      bad(row, "more than four fields!");
      return;
    }
    OffsetRow r;
    r.row = row;
    r.curve = fields[0];
    if (!parseNumber(fields[1], r.x)) {
      bad(row, "\"" + fields[1] + "\" is not a number!");
      return;
    }
    if (!parseNumber(fields[2], r.y)) {
      bad(row, "\"" + fields[2] + "\" is not a number!");
      return;
    }
    if (fields.size() == 4 && !fields[3].empty()) {
      const std::string& type = fields[3];
      if (type == "1" || lowerEquals(type, "cc")) {
        r.knuckle = false;
      } else if (type == "2" || lowerEquals(type, "k") || lowerEquals(type, "knuckle")) {
        r.knuckle = true;
      } else {
        bad(row, "point type must be 1 (CC) or 2 (Knuckle)!");
        return;
      }
    }
    rows.push_back(std::move(r));
  }
  if (rows.empty()) {
    fw::fail("\"{GRE" + std::string(name) + "{RED\" holds no offset points!", status);
    return;
  }

  // The box: given, or the points' own with a margin.
  Array1<double, 4> useBox = box;
  if (fitBox) {
    useBox = {rows[0].x, rows[0].x, rows[0].y, rows[0].y};
    for (const OffsetRow& r : rows) {
      useBox(1) = std::min(useBox(1), r.x);
      useBox(2) = std::max(useBox(2), r.x);
      useBox(3) = std::min(useBox(3), r.y);
      useBox(4) = std::max(useBox(4), r.y);
    }
    double margin = 0.05 * std::max(useBox(2) - useBox(1), useBox(4) - useBox(3));
    if (margin <= 0.0) margin = std::max(1.0, std::fabs(useBox(1)) + std::fabs(useBox(3)));
    useBox(1) -= margin;
    useBox(2) += margin;
    useBox(3) -= margin;
    useBox(4) += margin;
  }
  const double accuracy = 0.001 * std::max(useBox(2) - useBox(1), useBox(4) - useBox(3));

  // Group the rows into curves and check them against the box, the limits
  // and each other.
  struct CurveRows {
    std::string label;
    std::vector<const OffsetRow*> points;
  };
  std::vector<CurveRows> curves;
  for (const OffsetRow& r : rows) {
    if (r.x < useBox(1) || r.x > useBox(2) || r.y < useBox(3) || r.y > useBox(4)) {
      bad(r.row, "point is outside the bounding box!");
      return;
    }
    if (curves.empty() || curves.back().label != r.curve) {
      for (const CurveRows& earlier : curves) {
        if (earlier.label == r.curve) {
          bad(r.row, "the rows of curve \"" + r.curve + "\" must stand together!");
          return;
        }
      }
      if (static_cast<int>(curves.size()) == MaxCurves) {
        bad(r.row, "Max number of profile curves exceeded!");
        return;
      }
      curves.push_back({r.curve, {}});
    }
    std::vector<const OffsetRow*>& points = curves.back().points;
    if (!points.empty() && within(accuracy, points.back()->x, points.back()->y, r.x, r.y)) {
      bad(r.row, "Two points was coincidental!");
      return;
    }
    // One row more than the limit is allowed if it closes the curve.
    if (static_cast<int>(points.size()) > MaxCurvePoints ||
        (static_cast<int>(points.size()) == MaxCurvePoints &&
         !within(accuracy, points.front()->x, points.front()->y, r.x, r.y))) {
      bad(r.row, "Max number of profile curve points exceeded!");
      return;
    }
    points.push_back(&r);
  }

  // All good: the new profile, keeping the settings.
  ProfileData& p = profile();
  const ProfileData old = p;
  p = ProfileData{};
  p.FRLOCL = old.FRLOCL;
  p.FRRSTR = old.FRRSTR;
  p.FRRDST = old.FRRDST;
  p.FRMITR = old.FRMITR;
  p.MESHON = old.MESHON;
  p.MESHLP = old.MESHLP;
  p.MESHAU = old.MESHAU;
  p.MESHDN = old.MESHDN;
  p.MESHQL = old.MESHQL;
  p.SHOWIP = old.SHOWIP;
  p.SHOWCP = old.SHOWCP;
  p.SHOWLS = old.SHOWLS;
  p.SHOWGR = old.SHOWGR;
  p.SHOWSP = old.SHOWSP;
  p.PRFTYP = profileType == PolylineProfile ? PolylineProfile : SplineProfile;
  p.PRBBOX = useBox;
  p.PRREFP = ref;
  p.BBOXOK = true;
  IZACCY();
  p.NPRCRV = static_cast<int>(curves.size());
  for (int c = 1; c <= p.NPRCRV; ++c) {
    const std::vector<const OffsetRow*>& points = curves[static_cast<std::size_t>(c - 1)].points;
    int n = static_cast<int>(points.size());
    // A last row on the first point closes the curve.
    const bool closed = n >= 3 && within(accuracy, points.front()->x, points.front()->y,
                                         points.back()->x, points.back()->y);
    if (closed) n -= 1;
    p.NPRPNT(c) = n;
    p.PRCLSD(c) = closed;
    p.PRPARM(c) = ChordLength;
    for (int j = 1; j <= n; ++j) {
      const OffsetRow& r = *points[static_cast<std::size_t>(j - 1)];
      p.PRPNTS(c, j) = {r.x, r.y};
      const bool knuckle = p.PRFTYP == PolylineProfile || r.knuckle;
      p.PRPTYP(c, j) = knuckle ? Knuckle : ContinuousCurvature;
      p.PRKWGT(c, j) = knuckle ? 1.0 : 0.0;
    }
  }
  p.CURCRV = 1;
  p.CURPNT = 1;
  p.MODFLG = true;
  box = useBox;
}

void XPPROF(int format, bool& status) {
  status = false;
  if (profile().NPRCRV == 0) {
    fw::fail("No profile curves available!", status);
    return;
  }
  std::string name;
  if (!askName(format == DxfDrawing ? "Input name (full) for DXF file (max 80 char)"
                                    : "Input name (full) for SVG file (max 80 char)",
               name))
    return;
  if (format == DxfDrawing)
    PTPDXF(name, status);
  else
    PTPSVG(name, status);
}

void INOFFT(bool& imported, bool& status) {
  status = false;
  imported = false;
  ProfileData& p = profile();
  if (p.NPRCRV >= 1) {
    bool answer = false;
    fw::OKLOAD(!fw::program().terminalInput, answer);
    if (!answer) return;
  }
  std::string name;
  if (!askName("Input name (full) for offset table (max 80 char)", name)) return;

  // The box, the reference point and the kind are asked into the block;
  // they go back with everything else when the import does not happen.
  static ProfileData saved;
  saved = p;
  bool cancelled = false;
  INBBOX(p.BBOXOK, cancelled, status);
  if (status || cancelled) {
    p = saved;
    return;
  }
  INREFP(status);
  if (status) {
    p = saved;
    return;
  }
  const std::array<std::string, 3> rows{"Cubic spline profile", "Polyline profile", "CANCEL"};
  bool abort = false, failed = false;
  int selection = 1;
  fw::TXMENU("PROFILE TYPE", rows, 1, "Select profile type", abort, selection, failed);
  if (abort || failed || selection == 3) {
    p = saved;
    return;
  }
  Array1<double, 4> box = p.PRBBOX;
  const Array1<double, 2> ref = p.PRREFP;
  p = saved;
  GTOFFT(name, false, box, ref, selection == 1 ? SplineProfile : PolylineProfile, status);
  imported = !status;
}

}  // namespace kntr::profile
