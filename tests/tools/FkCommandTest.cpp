#include <gtest/gtest.h>

#include <filesystem>

#include "support/TestMachines.h"
#include "tools/ToolRunner.h"

using mtkit_test::runTool;

namespace {

class FkCommand : public ::testing::Test {
protected:
  static void SetUpTestSuite() { s_file = mtkit_test::writeMachineFile("fk_five", mtkit_test::fiveAxisKinematics()); }
  static void TearDownTestSuite() { std::filesystem::remove(s_file); }
  static std::string s_file;
};

std::string FkCommand::s_file;

}  // namespace

TEST_F(FkCommand, PrintsHeadFrameToolTipAndToolAxisInTableCoordinates) {
  auto const r = runTool("fk '" + s_file + "' X=10 Y=20 Z=30 B=90 C=0");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "");
  // A machine file keeps the attach frames of the head and the table only,
  // so z's and b's offsets are gone: B turns the head's attach point, 140
  // below the pivot at (10, 20, 180), onto -X, giving (-130, 20, 180), with
  // Z along +X; the table's attach frame stands at (20, 10, 5).
  EXPECT_EQ(r.out,
            "axes:\n  X=10.000000 mm\n  Y=20.000000 mm\n  Z=30.000000 mm\n  B=90.000000 deg\n  C=0.000000 deg\n"
            "tool length: 0.000000 mm\n"
            "head attach frame in table coordinates:\n"
            "  origin: -150.000000 10.000000 175.000000 mm\n"
            "  x axis: 0.000000 0.000000 -1.000000\n"
            "  y axis: 0.000000 1.000000 0.000000\n"
            "  z axis: 1.000000 0.000000 0.000000\n"
            "tool tip: -150.000000 10.000000 175.000000 mm\n"
            "tool axis: 1.000000 0.000000 0.000000\n");
}

TEST_F(FkCommand, AToolLengthPutsTheTipThatFarAlongTheToolAxis) {
  // The pose above, whose tool axis is +X (from the tip into the spindle,
  // the pivot lying on +X of the attach point): a 25.5 mm tool reaches out
  // the other way, from x = -150 to -175.5, and leaves the attach frame where
  // it is.
  auto const r = runTool("fk '" + s_file + "' X=10 Y=20 Z=30 B=90 --tool-length 25.5");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("tool length: 25.500000 mm\n"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("  origin: -150.000000 10.000000 175.000000 mm\n"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("tool tip: -175.500000 10.000000 175.000000 mm\n"), std::string::npos) << r.out;
}

TEST_F(FkCommand, AnAxisIsNamedByItsNameOrItsPartId) {
  auto const byName = runTool("fk '" + s_file + "' X=10 B=90");
  auto const byId = runTool("fk '" + s_file + "' x=10 b=90");
  ASSERT_EQ(byId.status, 0) << byId.err;
  EXPECT_EQ(byId.out, byName.out);
  EXPECT_NE(byId.out.find("  X=10.000000 mm\n"), std::string::npos) << byId.out;
}

TEST_F(FkCommand, UnknownAxisNameIsAUsageErrorWithStatus2) {
  auto const r = runTool("fk '" + s_file + "' Q=1");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "mtkit fk: the machine has no axis named 'Q' (axes: X Y Z B C, or their part ids)\n");
}

TEST_F(FkCommand, MalformedValuesAreUsageErrorsWithStatus2) {
  std::string const help = "Run 'mtkit fk --help' for its arguments.\n";
  auto r = runTool("fk '" + s_file + "' X=abc");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "mtkit fk: AXIS=VALUE: 'abc' is not a number (in 'X=abc')\n" + help);
  r = runTool("fk '" + s_file + "' X");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "mtkit fk: AXIS=VALUE: expected AXIS=VALUE, got 'X'\n" + help);
  r = runTool("fk '" + s_file + "' X=");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "mtkit fk: AXIS=VALUE: '' is not a number (in 'X=')\n" + help);
  r = runTool("fk '" + s_file + "' X=1e400");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "mtkit fk: AXIS=VALUE: '1e400' is not a number (in 'X=1e400')\n" + help);
  r = runTool("fk '" + s_file + "' --tool-length -1");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "mtkit fk: --tool-length: '-1' is not a number not below 0\n" + help);
}

TEST_F(FkCommand, BadFilesAndMachinesWithoutHeadOrTableExitWithStatus1) {
  auto r = runTool("fk /nonexistent/machine.json");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit fk: cannot read '/nonexistent/machine.json': No such file or directory\n");

  std::filesystem::path const junk = std::filesystem::temp_directory_path() / "fk_junk.json";
  { std::ofstream(junk) << "{ not json"; }
  r = runTool("fk '" + junk.string() + "'");
  std::filesystem::remove(junk);
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err.rfind("mtkit fk: '" + junk.string() + "' is not a machine file:\nError reading Machine Definition", 0),
            0u)
      << r.err;

  std::vector<mtkit_test::PartPtr> noHead;
  noHead.push_back(mtkit_test::linearPart("x", "X", {1, 0, 0}));
  noHead.push_back(mtkit_test::staticPart("table", machine::PartType::TABLE));
  std::string const headless = mtkit_test::writeMachineFile("fk_headless", mtkit_test::kinematicsOf(std::move(noHead)));
  r = runTool("fk '" + headless + "'");
  std::filesystem::remove(headless);
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit fk: '" + headless + "': the kinematics cannot be moved:\n  the kinematics has no head part\n");

  std::vector<mtkit_test::PartPtr> noTable;
  noTable.push_back(mtkit_test::with(mtkit_test::linearPart("x", "X", {1, 0, 0}),
                                     mtkit_test::staticPart("head", machine::PartType::HEAD)));
  std::string const tableless = mtkit_test::writeMachineFile("fk_tableless", mtkit_test::kinematicsOf(std::move(noTable)));
  r = runTool("fk '" + tableless + "'");
  std::filesystem::remove(tableless);
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit fk: '" + tableless + "': the kinematics cannot be moved:\n  the kinematics has no table part\n");

  r = runTool("fk");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "mtkit fk: FILE is required\nRun 'mtkit fk --help' for its arguments.\n");
}
