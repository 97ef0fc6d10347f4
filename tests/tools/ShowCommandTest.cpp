#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "tools/ToolRunner.h"

using mtkit_test::quoted;
using mtkit_test::runTool;

namespace {
std::filesystem::path example(char const* relative) { return std::filesystem::path(MTKIT_EXAMPLES_DIR) / relative; }

bool contains(std::string const& text, std::string const& part) { return text.find(part) != std::string::npos; }
}  // namespace

TEST(ShowCommand, MachineFileShowsFeaturesDefaultsTreeHeadAndTable) {
  auto const run = runTool("show " + quoted(example("machines/trunnion_5axis.json")));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(contains(run.out, "defaults: controller=default kinematics=default\n"));
  EXPECT_TRUE(contains(run.out, "feature controller \"default\" (default)\n  head: spindle_head, table: rotary_table\n"));
  EXPECT_TRUE(contains(run.out, "feature controller \"positive_tilt\"\n"));
  EXPECT_TRUE(contains(run.out, "feature kinematics \"default\" (default)\n  right-handed, 9 parts; heads: spindle_head; "
                                "tables: rotary_table\n"));
  EXPECT_TRUE(contains(run.out, "\n        a_axis [rotary] \"A trunnion\" axis A driven, -120..30 deg, step 0.001 deg, about "
                                "(1, 0, 0) through (0, 0, -120)\n"))
      << run.out;
  EXPECT_TRUE(contains(run.out, "\n          c_axis [rotary] \"C rotary table\" axis C driven, unlimited"));
  EXPECT_TRUE(contains(run.out, "spindle_head [head], spindle 50..20000, tool station HSK63A coolants flood,mist,through_tool\n"));
}

TEST(ShowCommand, MtkFileShowsTreeAndFailureShowsError) {
  auto const run = runTool("show " + quoted(example("mtk/millturn_turret.mtk")));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(contains(run.out, ": MTK file\nkinematics\n  right-handed, 18 parts; heads: milling_head, turret_head_1, "
                                "turret_head_2, turret_head_3, turret_head_4; tables: primary_spindle, secondary_spindle\n"));
  EXPECT_TRUE(contains(run.out, "turret [rotary] \"Lower turret\" axis T ancillary, unlimited, step 30 deg"));
  EXPECT_TRUE(contains(run.out, "turret of 12 indexes\n"));
  EXPECT_TRUE(contains(run.out, "\n  head and table by the tree: turret, primary_spindle\n"));
  auto const missing = runTool("show /nonexistent.mtk");
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(runTool("show").status, 2);
}
