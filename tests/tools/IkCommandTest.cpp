#include <gtest/gtest.h>

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
            "X = 10.000000\nY = 20.000000\nZ = 30.000000\nB = 90.000000\nC = 0.000000\n"
            "distance left: 0.000000\n");
}

TEST_F(IkCommand, ATwoLinearMachineReportsTheDistanceLeft) {
  auto const r = runTool("ik '" + s_two + "' --tip 7,-3,5");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "X = 7.000000\nY = -3.000000\ndistance left: 5.000000\n");
}

TEST_F(IkCommand, BadArgumentsAreClearErrorsWithStatus1) {
  auto r = runTool("ik '" + s_five + "'");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit ik: missing --tip X,Y,Z\n");
  r = runTool("ik '" + s_five + "' --tip 1,2");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit ik: '1,2' is not a point X,Y,Z\n");
  r = runTool("ik '" + s_five + "' --tip");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit ik: --tip needs a point X,Y,Z\n");
  r = runTool("ik '" + s_five + "' --tip 1,2,3 A=5");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit ik: the machine has no axis named 'A' (axes: X Y Z B C)\n");
  r = runTool("ik '" + s_five + "' --tip 1,2,3 B=x");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit ik: 'x' is not a number (in 'B=x')\n");
  r = runTool("ik /nonexistent.json --tip 1,2,3");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit ik: cannot open '/nonexistent.json'\n");
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
