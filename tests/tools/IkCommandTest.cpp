#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "support/TestMachines.h"
#include "tools/ToolRunner.h"

using mtkit_test::runTool;

namespace {

class IkCommand : public ::testing::Test {
protected:
  static void SetUpTestSuite() {
    s_five = mtkit_test::writeMachineFile("ik_five", mtkit_test::fiveAxisKinematics());
    s_two = mtkit_test::writeMachineFile("ik_two", mtkit_test::twoAxisKinematics());
  }
  static void TearDownTestSuite() {
    std::filesystem::remove(s_five);
    std::filesystem::remove(s_two);
  }
  static std::string s_five;
  static std::string s_two;
};

std::string IkCommand::s_five;
std::string IkCommand::s_two;

}  // namespace

TEST_F(IkCommand, SolvesTheLinearAxesForTheTipAndPrintsEveryAxisAndTheDistance) {
  // B = 90, C = 0: the tip at (-150, 10, 175) in table coordinates needs
  // X = 10, Y = 20, Z = 30 (the fk test's pose).
  auto const r = runTool("ik '" + s_five + "' --tip -150,10,175 B=90 X=500");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out,
            "axes:\n  X=10.000000 mm\n  Y=20.000000 mm\n  Z=30.000000 mm\n  B=90.000000 deg\n  C=0.000000 deg\n"
            "tool length: 0.000000 mm\n"
            "tool tip: -150.000000 10.000000 175.000000 mm\n"
            "tool axis: 1.000000 0.000000 0.000000\n"
            "distance left: 0.000000 mm\n");
}

TEST_F(IkCommand, AToolLengthIsTakenOffAlongTheToolAxis) {
  // The tool axis is +X at B = 90, from the tip into the spindle: a 25.5 mm
  // tool reaches the same tip with the head 25.5 further back along it,
  // X = 10 + 25.5.
  auto const r = runTool("ik '" + s_five + "' --tip -150,10,175 B=90 --tool-length 25.5");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out,
            "axes:\n  X=35.500000 mm\n  Y=20.000000 mm\n  Z=30.000000 mm\n  B=90.000000 deg\n  C=0.000000 deg\n"
            "tool length: 25.500000 mm\n"
            "tool tip: -150.000000 10.000000 175.000000 mm\n"
            "tool axis: 1.000000 0.000000 0.000000\n"
            "distance left: 0.000000 mm\n");
}

TEST_F(IkCommand, ATwoLinearMachineReportsTheDistanceLeft) {
  auto const r = runTool("ik '" + s_two + "' --tip 7,-3,5");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out,
            "axes:\n  X=7.000000 mm\n  Y=-3.000000 mm\ntool length: 0.000000 mm\ntool tip: 7.000000 -3.000000 0.000000 "
            "mm\ntool axis: 0.000000 0.000000 1.000000\ndistance left: 5.000000 mm\n");
}

TEST_F(IkCommand, BadArgumentsAreUsageErrorsWithStatus2) {
  std::string const help = "Run 'mtkit ik --help' for its arguments.\n";
  auto r = runTool("ik '" + s_five + "'");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "mtkit ik: --tip is required\n" + help);
  r = runTool("ik '" + s_five + "' --tip 1,2");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "mtkit ik: --tip: '1,2' is not a point X,Y,Z of three finite numbers\n" + help);
  r = runTool("ik '" + s_five + "' --tip 1,2,inf");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "mtkit ik: --tip: '1,2,inf' is not a point X,Y,Z of three finite numbers\n" + help);
  r = runTool("ik '" + s_five + "' --tip");
  EXPECT_EQ(r.status, 2);
  EXPECT_NE(r.err.find("--tip"), std::string::npos) << r.err;
  r = runTool("ik '" + s_five + "' --tip 1,2,3 A=5");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "mtkit ik: the machine has no axis named 'A' (axes: X Y Z B C, or their part ids)\n");
  r = runTool("ik '" + s_five + "' --tip 1,2,3 B=x");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "mtkit ik: AXIS=VALUE: 'x' is not a number (in 'B=x')\n" + help);
  r = runTool("ik /nonexistent.json --tip 1,2,3");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit ik: cannot read '/nonexistent.json': No such file or directory\n");
}

TEST_F(IkCommand, AMachineWithFewerThanTwoLinearAxesHasNothingToSolve) {
  std::vector<mtkit_test::PartPtr> base;
  base.push_back(mtkit_test::with(mtkit_test::linearPart("x", "X", {1, 0, 0}),
                                  mtkit_test::staticPart("head", machine::PartType::HEAD)));
  base.push_back(mtkit_test::staticPart("table", machine::PartType::TABLE));
  std::string const file = mtkit_test::writeMachineFile("ik_one", mtkit_test::kinematicsOf(std::move(base)));
  auto const r = runTool("ik '" + file + "' --tip 1,2,3");
  std::filesystem::remove(file);
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit ik: '" + file +
                       "': fewer than two primary linear axes on the head and table chains; nothing to solve\n");
}

TEST_F(IkCommand, ParallelLinearAxesHaveNoSolution) {
  std::string const file =
      mtkit_test::writeMachineFile("ik_parallel", mtkit_test::twoAxisKinematics(Orvo::Vector3D(1, 0, 0)));
  auto const r = runTool("ik '" + file + "' --tip 1,2,3");
  std::filesystem::remove(file);
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit ik: no solution: the linear axes are not independent at this pose\n");
}

TEST_F(IkCommand, OnAMillTurnTheAxesOfTheHeadAndTableChainsAreSolved) {
  // The full ordering starts with W, X and X2, which belong to other chains;
  // the tool puts the milling head's X, Y, Z first.
  auto const r = runTool(std::string("ik '") + MTKIT_EXAMPLES_DIR + "/machines/millturn_turret.json' --tip 10,20,30");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out.rfind("axes:\n  X=", 0), 0u) << r.out;
  EXPECT_NE(r.out.find(" mm\n  Y="), std::string::npos) << r.out;
  EXPECT_NE(r.out.find(" mm\n  Z="), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("distance left: 0.000000 mm\n"), std::string::npos) << r.out;
}

TEST_F(IkCommand, ExampleMachinesRoundTripThroughFk) {
  // ik then fk at the solved values puts the tip on the target, one that the
  // axes reach within their travel (Z goes from -600 to 0).
  std::string const file = std::string(MTKIT_EXAMPLES_DIR) + "/machines/headtable_5axis.json";
  auto const ik = runTool("ik '" + file + "' --tip 12.5,-40,-300 B=30 C=-60");
  ASSERT_EQ(ik.status, 0) << ik.err;
  // The axes come as "  NAME=VALUE UNIT" lines after "axes:", ready to be
  // given to fk.
  std::string words;
  std::size_t at = ik.out.find("axes:\n");
  ASSERT_EQ(at, 0u) << ik.out;
  at += 6;
  while (ik.out.compare(at, 2, "  ") == 0) {
    std::size_t const space = ik.out.find(' ', at + 2);
    std::size_t const end = ik.out.find('\n', at);
    words += " " + ik.out.substr(at + 2, space - at - 2);
    at = end + 1;
  }
  auto const fk = runTool("fk '" + file + "'" + words);
  ASSERT_EQ(fk.status, 0) << fk.err;
  // The values travel with six decimals, so the tip is as close as that allows.
  std::size_t const tip = fk.out.find("tool tip: ");
  ASSERT_NE(tip, std::string::npos) << fk.out;
  double x = 0, y = 0, z = 0;
  ASSERT_EQ(std::sscanf(fk.out.c_str() + tip, "tool tip: %lf %lf %lf", &x, &y, &z), 3) << fk.out;
  EXPECT_NEAR(x, 12.5, 1e-5) << words;
  EXPECT_NEAR(y, -40.0, 1e-5) << words;
  EXPECT_NEAR(z, -300.0, 1e-5) << words;
}
