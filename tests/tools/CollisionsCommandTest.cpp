#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "tools/ToolRunner.h"

using mtkit_test::quoted;
using mtkit_test::runTool;
using mtkit_test::writeTemp;

namespace {

std::filesystem::path example(char const* relative) { return std::filesystem::path(MTKIT_EXAMPLES_DIR) / relative; }

bool contains(std::string const& text, std::string const& part) { return text.find(part) != std::string::npos; }

}  // namespace

TEST(CollisionsCommand, PrintsEveryPairOfTheVmcWithSolidsTypesAndFlags) {
  auto const run = runTool("collisions " + quoted(example("machines/vmc_3axis.json")));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(run.err.empty());
  std::string const path = example("machines/vmc_3axis.json").string();
  // A heading and the 41 pairs of this machine, one a line.
  EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 42) << run.out;
  EXPECT_EQ(run.out.rfind(path + ": 41 pairs from kinematics \"default\", settings kept from interactions \"default\"\n"
                                 "  bed machine_part - y_axis machine_part: ignore\n"
                                 "  bed machine_part - x_axis machine_part: ignore\n"
                                 "  bed machine_part - table machine_part: check_collisions\n"
                                 "  bed machine_part - table stock: check_collisions\n",
                          0),
            0u)
      << run.out;
  EXPECT_TRUE(contains(run.out, "\n  table stock - spindle_head tool: check_collisions\n"));
  EXPECT_TRUE(contains(run.out, "\n  x_axis machine_part - table fixture: ignore\n"));
  EXPECT_TRUE(contains(run.out, "\n  z_axis machine_part - spindle_head tool: ignore\n"));
}

TEST(CollisionsCommand, KeepsCutStockOfTheFileAndGeneratesFromAnMtkFile) {
  std::string const machineText = R"({
    "interactions": {"default": {"pairs": [
      {"setting": ["cut_stock", "check_collisions"],
       "solids": [{"id": "table", "type": "stock"}, {"id": "head", "type": "tool"}]}]}},
    "kinematics": {"default": {"units": {"length": "mm", "angle": "degrees"},
      "conventions": {"rotation": "right-handed"}, "parts": [
      {"id": "x", "type": "linear", "control": "driven", "direction": [1, 0, 0], "parts": [{"id": "head", "type": "head"}]},
      {"id": "table", "type": "table"}]}}})";
  auto const file = writeTemp("collisions_machine.json", machineText);
  auto const run = runTool("collisions " + quoted(file));
  std::filesystem::remove(file);
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, file.string() +
                         ": 11 pairs from kinematics \"default\", settings kept from interactions \"default\"\n"
                         "  x machine_part - table machine_part: check_collisions\n"
                         "  x machine_part - table stock: check_collisions\n"
                         "  x machine_part - table fixture: check_collisions\n"
                         "  head machine_part - table machine_part: check_collisions\n"
                         "  head machine_part - table stock: check_collisions\n"
                         "  head machine_part - table fixture: check_collisions\n"
                         "  head tool - table machine_part: check_collisions\n"
                         "  head tool - table stock: check_collisions cut_stock\n"
                         "  head tool - table fixture: check_collisions\n"
                         "  x machine_part - head machine_part: ignore\n"
                         "  x machine_part - head tool: ignore\n");

  auto const mtk = runTool("collisions " + quoted(example("mtk/headtable_5axis.mtk")));
  ASSERT_EQ(mtk.status, 0) << mtk.err;
  EXPECT_TRUE(contains(mtk.out, ": 62 pairs from kinematics \"default\"\n")) << mtk.out;
}

TEST(CollisionsCommand, MachineWithoutKinematicsFails) {
  auto const file = writeTemp("collisions_empty.json", "{}");
  auto const run = runTool("collisions " + quoted(file));
  std::filesystem::remove(file);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "mtkit collisions: '" + file.string() + "' has no kinematics to generate pairs from\n");
  EXPECT_TRUE(run.out.empty());
}

TEST(CollisionsCommand, UnreadableFileFailsWithTheReadersError) {
  auto const file = writeTemp("collisions_bad.json",
                              R"({"interactions": {"default": {"pairs": [{"solids": []}]}}})");
  auto const run = runTool("collisions " + quoted(file));
  std::filesystem::remove(file);
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(contains(run.err, "Must have exactly two solids in an InteractPair.")) << run.err;
}

TEST(CollisionsCommand, WrongArgumentsGiveUsage) {
  auto const run = runTool("collisions");
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "mtkit collisions: MACHINE is required\nRun 'mtkit collisions --help' for its arguments.\n");
}
