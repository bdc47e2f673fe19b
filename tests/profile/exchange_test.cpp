// Offset tables read into a new profile (good tables, each kind of bad row,
// the limits), and the exchange rows of the file menu. The DXF and SVG
// files are read back by independent readers in
// tests/scripts/session_exchange_readers.sh.
#include "profile/exchange.h"

#include <gtest/gtest.h>

#include <string>

#include "framework/files.h"
#include "profile/block.h"
#include "profile/datafile.h"
#include "support/curve_builder.h"
#include "support/dialogue_fixture.h"
#include "support/scratch_directory.h"

namespace kntr::profile {
namespace {

constexpr auto npos = std::string::npos;

class OffsetTable : public kntr::testing::DialogueTest, public kntr::testing::ScratchDirectory {
 protected:
  void SetUp() override {
    DialogueTest::SetUp();
    resetProfileBlock();
  }
  // Reads `text` as a table into a spline profile in the box 0..10 x 0..5,
  // reference point (1, 2); true when it was imported.
  bool import(const std::string& text, bool fitBox = false) {
    const std::string name = path("table.csv");
    writeFile(name, text);
    Array1<double, 4> box = {0.0, 10.0, 0.0, 5.0};
    bool status = false;
    script("\n");
    GTOFFT(name, fitBox, box, Array1<double, 2>{1.0, 2.0}, SplineProfile, status);
    return !status;
  }
};

TEST_F(OffsetTable, GoodTableMakesANewProfile) {
  // An old profile with settings of its own: the curves go, the settings stay.
  kntr::testing::addCurve({{1, 1}, {2, 2}}, false);
  profile().MESHDN = 321;
  const std::string table =
      "Curve, X, Y, Type\n"
      "# the hull: closed by its last row\n"
      "hull, 0, 0, 2\n"
      "hull, 5, 4\n"
      "\n"
      "hull, 10, 0, K\n"
      "hull, 0.0004, 0.0, 1\n"
      "\"deck\", 1, 4.5, cc\n"
      "deck,9,4.5,,\n";
  ASSERT_TRUE(import(table)) << output();
  const ProfileData& p = profile();
  EXPECT_EQ(p.NPRCRV, 2);
  EXPECT_EQ(p.PRFTYP, SplineProfile);
  EXPECT_TRUE(p.BBOXOK);
  EXPECT_EQ(p.PRBBOX, (Array1<double, 4>{0.0, 10.0, 0.0, 5.0}));
  EXPECT_EQ(p.PRREFP, (Array1<double, 2>{1.0, 2.0}));
  EXPECT_DOUBLE_EQ(p.SPLACC, 0.01);
  EXPECT_EQ(p.MESHDN, 321);
  // The last row of the hull lies within the accuracy of its first: closed.
  EXPECT_EQ(p.NPRPNT(1), 3);
  EXPECT_TRUE(p.PRCLSD(1));
  EXPECT_EQ(p.PRPTYP(1, 1), Knuckle);
  EXPECT_EQ(p.PRKWGT(1, 1), 1.0);
  EXPECT_EQ(p.PRPTYP(1, 2), ContinuousCurvature);
  EXPECT_EQ(p.PRKWGT(1, 2), 0.0);
  EXPECT_EQ(p.PRPTYP(1, 3), Knuckle);
  EXPECT_EQ(p.PRPNTS(1, 2), (Array1<double, 2>{5.0, 4.0}));
  EXPECT_EQ(p.NPRPNT(2), 2);
  EXPECT_FALSE(p.PRCLSD(2));
  EXPECT_EQ(p.PRPNTS(2, 1), (Array1<double, 2>{1.0, 4.5}));
  EXPECT_EQ(p.PRPARM(1), ChordLength);
  EXPECT_EQ(p.CURCRV, 1);
  EXPECT_TRUE(p.MODFLG);

  // Without a box the points' own, a twentieth of the larger side wider.
  ASSERT_TRUE(import("a,2,1\na,6,3\n", true));
  EXPECT_EQ(profile().PRBBOX, (Array1<double, 4>{1.8, 6.2, 0.8, 3.2}));
}

TEST_F(OffsetTable, BadRowIsNamedAndNothingIsImported) {
  const struct {
    const char* table;
    const char* message;
  } cases[] = {
      {"a,1,1\na,2\na,3,3\n", "Row 2 of \"%\": curve, X and Y must be given!"},
      {"a,1,1\n,2,2\n", "Row 2 of \"%\": curve, X and Y must be given!"},
      {"curve,x,y\na,1,1\na,2,2\n\na,3,4O\n", "Row 5 of \"%\": \"4O\" is not a number!"},
      {"a,1,1\na,1e999,1\n", "Row 2 of \"%\": \"1e999\" is not a number!"},
      {"a,1,1\na,11,1\n", "Row 2 of \"%\": point is outside the bounding box!"},
      {"a,1,-0.5\n", "Row 1 of \"%\": point is outside the bounding box!"},
      {"a,1,1,3\n", "Row 1 of \"%\": point type must be 1 (CC) or 2 (Knuckle)!"},
      {"a,1,1,1,1\n", "Row 1 of \"%\": more than four fields!"},
      {"a,1,1\nb,2,2\na,3,3\n", "Row 3 of \"%\": the rows of curve \"a\" must stand together!"},
      {"a,1,1\na,1.005,1\n", "Row 2 of \"%\": Two points was coincidental!"},
      {"# nothing\n\n", "\"%\" holds no offset points!"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.table);
    resetProfileBlock();
    kntr::testing::setBox(-1, 1, -1, 1);
    kntr::testing::addCurve({{0, 0}, {0.5, 0.5}}, true);
    const ProfileData before = profile();
    EXPECT_FALSE(import(c.table));
    std::string message = c.message;
    message.replace(message.find('%'), 1, path("table.csv"));
    EXPECT_NE(output().find(message), npos) << message;
    EXPECT_TRUE(profile() == before);
  }

  resetProfileBlock();
  Array1<double, 4> box{};
  bool status = false;
  script("\n");
  GTOFFT(path("missing.csv"), true, box, Array1<double, 2>{}, SplineProfile, status);
  EXPECT_TRUE(status);
  EXPECT_NE(output().find("\"" + path("missing.csv") + "\" is non-existent!"), npos);
}

TEST_F(OffsetTable, LimitsOfCurvesAndPoints) {
  // Ten curves fit, the eleventh is refused at its first row.
  std::string table;
  for (int c = 1; c <= 11; ++c) table += std::to_string(c) + ",1,1\n";
  EXPECT_FALSE(import(table));
  EXPECT_NE(output().find("Row 11 of \"" + path("table.csv") +
                          "\": Max number of profile curves exceeded!"),
            npos);
  table.erase(table.rfind("11,"));
  ASSERT_TRUE(import(table));
  EXPECT_EQ(profile().NPRCRV, 10);

  // A hundred points fit, and a row that closes them; any other row more is refused.
  table.clear();
  for (int j = 0; j < 100; ++j) table += "a," + std::to_string(j * 0.09) + ",1\n";
  ASSERT_TRUE(import(table + "a,0,1\n"));
  EXPECT_EQ(profile().NPRPNT(1), 100);
  EXPECT_TRUE(profile().PRCLSD(1));
  EXPECT_FALSE(import(table + "a,5,4\n"));
  EXPECT_NE(output().find("Row 101 of \"" + path("table.csv") +
                          "\": Max number of profile curve points exceeded!"),
            npos);
}

TEST_F(OffsetTable, FileMenuImportsAndExports) {
  const std::string table = path("menu.csv");
  writeFile(table, "a,1,1\na,4,3\na,8,1\na,1,1\n");
  kntr::testing::setBox(0, 1, 0, 1);
  kntr::testing::addCurve({{0.1, 0.1}, {0.2, 0.9}}, false);
  const ProfileData before = profile();
  bool status = false;

  // A cancel at the box leaves everything as it was, the box included.
  script("9\nyes\n" + table + "\n0 10\n$\n11\n");
  FLKNTR(status);
  EXPECT_TRUE(profile() == before);

  // Load confirmation, table, box, reference point, profile type.
  script("9\nyes\n" + table + "\n0 10\n0 5\n2 3\n2\n\n11\n");
  FLKNTR(status);
  EXPECT_FALSE(inputLeft());
  std::string said = output();
  EXPECT_NE(said.find("Import offset table"), npos);
  EXPECT_NE(said.find("Input name (full) for offset table (max 80 char)"), npos);
  const ProfileData& p = profile();
  ASSERT_EQ(p.NPRCRV, 1);
  EXPECT_EQ(p.PRFTYP, PolylineProfile);
  EXPECT_EQ(p.NPRPNT(1), 3);
  EXPECT_TRUE(p.PRCLSD(1));
  EXPECT_EQ(p.PRBBOX, (Array1<double, 4>{0.0, 10.0, 0.0, 5.0}));
  EXPECT_EQ(p.PRREFP, (Array1<double, 2>{2.0, 3.0}));

  // Both drawings, then the section properties setting turned on.
  const std::string dxf = path("menu.dxf"), svg = path("menu.svg");
  script("7\n" + dxf + "\n8\n" + svg + "\n10\n11\n");
  FLKNTR(status);
  EXPECT_FALSE(inputLeft());
  said = output();
  EXPECT_NE(said.find("Export profile as DXF"), npos);
  EXPECT_NE(said.find("Section properties in printout on/OFF"), npos);
  EXPECT_TRUE(p.SHOWSP);
  EXPECT_NE(said.find("Storing profile drawing in ** " + dxf + " **"), npos);
  EXPECT_NE(readFile(dxf).find("AC1009"), npos);
  EXPECT_NE(readFile(svg).find("<path id=\"curve1\""), npos);
}

}  // namespace
}  // namespace kntr::profile
