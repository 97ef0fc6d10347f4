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
  EXPECT_NE(r.out.find("axes: X=10.000000 Y=20.000000 Z=30.000000 B=90.000000 C=0.000000\n"), std::string::npos)
      << r.out;
  EXPECT_NE(r.out.find("tool tip: -150.000000 10.000000 175.000000\n"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("tool axis: 1.000000 0.000000 0.000000\n"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("  origin: -150.000000 10.000000 175.000000\n"), std::string::npos) << r.out;
}

TEST_F(FkCommand, UnknownAxisNameIsAClearErrorWithStatus1) {
  auto const r = runTool("fk '" + s_file + "' Q=1");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "mtkit fk: the machine has no axis named 'Q' (axes: X Y Z B C)\n");
}

TEST_F(FkCommand, MalformedValuesAreClearErrorsWithStatus1) {
  auto r = runTool("fk '" + s_file + "' X=abc");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit fk: 'abc' is not a number (in 'X=abc')\n");
  r = runTool("fk '" + s_file + "' X");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit fk: expected AXIS=VALUE, got 'X'\n");
  r = runTool("fk '" + s_file + "' X=");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit fk: '' is not a number (in 'X=')\n");
}

TEST_F(FkCommand, BadFilesAndMachinesWithoutHeadOrTableExitWithStatus1) {
  auto r = runTool("fk /nonexistent/machine.json");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit fk: cannot open '/nonexistent/machine.json'\n");

  std::filesystem::path const junk = std::filesystem::temp_directory_path() / "fk_junk.json";
  { std::ofstream(junk) << "{ not json"; }
  r = runTool("fk '" + junk.string() + "'");
  std::filesystem::remove(junk);
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err.rfind("mtkit fk: '" + junk.string() + "' is not a machine file: ", 0), 0u) << r.err;

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
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit fk: expected a machine file: mtkit fk FILE [AXIS=VALUE...]\n");
}
