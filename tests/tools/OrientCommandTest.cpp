#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tools/ToolRunner.h"

using mtkit_test::quoted;
using mtkit_test::runTool;

namespace {

std::filesystem::path example(char const* relative) { return std::filesystem::path(MTKIT_EXAMPLES_DIR) / relative; }

}  // namespace

TEST(OrientCommand, GivesBothSolutionsTheChosenOneAndThePosition) {
  // The trunnion, tool direction (0, 1, 2)/sqrt(5): tilted 26.565 degrees
  // from Z towards +Y. A turns the part about X and C about Z: either
  // A = 26.565 with C = 0 or A = -26.565 with C = 180. A prefers negative.
  // With the previous C at 170, the closest is also C = 180.
  auto const r = runTool("orient " + quoted(example("machines/trunnion_5axis.json")) +
                         " --direction 0,0.5,1 --previous 0,0,170 --tip 10,20,30");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "");
  std::string const head = "configuration:  " + example("machines/trunnion_5axis.json").string() +
                           " (5 axes, table-table)\n";
  EXPECT_EQ(r.out.substr(0, head.size()), head);
  EXPECT_EQ(r.out.substr(head.size()),
            "direction:      0.000000 0.447214 0.894427 (normalised)\n"
            "solution 1:     A=26.565051 C=0.000000 deg\n"
            "solution 2:     A=-26.565051 C=180.000000 deg\n"
            "by preference:  A=-26.565051 C=180.000000 deg\n"
            "closest to previous A=0.000000 C=170.000000 deg:\n"
            "                A=-26.565051 C=180.000000 deg\n"
            "tip:            X=10.000000 Y=20.000000 Z=30.000000 mm\n"
            "position:       X=10.000000 Y=20.000000 Z=30.000000 mm  (axes with TCP left to the control)\n"
            // Without TCP the table's turns carry the tip: C = 180 takes
            // (10, 20, 30) to (-10, -20, 30), then A = -26.565 about X through
            // (0, 0, -120) (the table's own pivot, as the file gives it)
            // takes y = -20, z = 150 above the pivot to
            // y = -20 cos(a) - 150 sin(a) and z = -20 sin(a) + 150 cos(a) - 120,
            // with a = -26.565: 49.193496 and 23.108351.
            "without TCP:    X=-10.000000 Y=49.193496 Z=23.108351 mm\n");
}

TEST(OrientCommand, AVerticalToolNeedsNoTurn) {
  auto const r = runTool("orient " + quoted(example("machines/headhead_5axis.json")) + " --direction 0,0,1");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("solution 1:     B=0.000000 C=0.000000 deg\n"), std::string::npos) << r.out;
}

TEST(OrientCommand, RefusesAZeroDirectionAndAMachineWithoutRotaryAxes) {
  auto const zero = runTool("orient " + quoted(example("machines/headhead_5axis.json")) + " --direction 0,0,0");
  EXPECT_EQ(zero.status, 2);
  EXPECT_EQ(zero.err, "mtkit orient: --direction 0,0,0 has no length; give the tool direction I,J,K\n");
  auto const flat = runTool("orient " + quoted(example("machines/vmc_3axis.json")) + " --direction 0,0,1");
  EXPECT_EQ(flat.status, 1);
  EXPECT_EQ(flat.err, "mtkit orient: '" + example("machines/vmc_3axis.json").string() +
                          "' has no rotary axes (3 axes): the tool always points along the spindle\n");
  auto const missing = runTool("orient " + quoted(example("machines/headhead_5axis.json")));
  EXPECT_EQ(missing.status, 2);
}

TEST(OrientCommand, SolutionsOutOfRangeAreMarked) {
  // The trunnion's A stops at -110 and 30: a tool pointing straight down
  // (0, 0, -1) needs A = 180, which neither solution has in range, and
  // the preference step cannot bring it in.
  auto const r = runTool("orient " + quoted(example("machines/trunnion_5axis.json")) + " --direction 0,0,-1");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("(out of range: A)"), std::string::npos) << r.out;
}
