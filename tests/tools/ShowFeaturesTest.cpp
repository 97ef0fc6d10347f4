// What `mtkit show` prints for the tooling, machining time, post and additive
// features, and for a feature type it doesn't read.

#include <gtest/gtest.h>

#include <filesystem>

#include "tools/ToolRunner.h"

using mtkit_test::quoted;
using mtkit_test::runTool;

namespace {
std::filesystem::path example(char const* relative) { return std::filesystem::path(MTKIT_EXAMPLES_DIR) / relative; }

bool contains(std::string const& text, std::string const& part) { return text.find(part) != std::string::npos; }
}  // namespace

TEST(ShowFeatures, AdditiveGantryShowsEveryFeatureSection) {
  auto const run = runTool("show " + quoted(example("machines/headhead_5axis.json")));
  ASSERT_EQ(run.status, 0) << run.err;
  std::string const& out = run.out;
  EXPECT_TRUE(contains(out, "feature additive_extruder \"default\" (default)\n  \"E1 wire head\", nozzle 1.2, filament "
                            "2.85, fan on, max volume per second 40, max temperature 280, offset (0, 120, -35)\n"))
      << out;
  EXPECT_TRUE(contains(out, "feature limits \"default\" (default)\n  bed temperature max 90, speed max XY 15000 Z 3000, "
                            "acceleration max XY 1500 Z 100\n  home (0, 0, 800), park (2900, 1900, 800)\n"));
  EXPECT_TRUE(contains(out, "feature machining \"default\" (default)\n  feedrate ratio 1, tool change time 15\n"));
  EXPECT_TRUE(contains(out, "feature platform \"default\" (default)\n  dimensions: size (3000, 2000, 800), origin (0, 0, "
                            "0), clearance 5, frame width 20, ceiling clearance 50, corner radius 0\n  mesh: "
                            "\"meshes/gantry_bed.stl\", model \"gantry_bed\", no-build zone mesh \"\", model \"\", "
                            "positioning on, scaling off\n"));
  EXPECT_TRUE(contains(out, "feature post \"default\" (default)\n  post: \"posts/headhead_5axis.cps\", output folder: "
                            "(none), 2 properties\n  deposition_rate = 2.5\n  program_name = \"gantry\"\n"));
  EXPECT_TRUE(contains(out, "feature post_settings \"default\" (default)\n  post: \"posts/headhead_5axis.cps\", 5 "
                            "settings\n  additive.bed_heating = true\n  additive.layer_pause = \"M0\" (disabled)\n  "
                            "coolant.coolants.0.off = 9\n  coolant.coolants.1.off = 9\n  coolant.coolants.1.on = 8\n"));
  EXPECT_TRUE(contains(out, "feature tooling \"default\" (default)\n  tool changer: no, preload: no, 1 tools\n"));
  EXPECT_TRUE(contains(out, "additive"));
}

TEST(ShowFeatures, MachineWithoutAdditiveShowsBracketedCoolantTextAndUnnamedAbsentGroups) {
  auto const run = runTool("show " + quoted(example("machines/vmc_3axis.json")));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(contains(run.out, "  coolant.coolants.2.on = \"[7, 8]\"\n")) << run.out;
  EXPECT_TRUE(contains(run.out, "  safety.home_command = \"G28\" (disabled)\n"));
  EXPECT_TRUE(contains(run.out, "  tool changer: yes, preload: no, 24 tools\n"));
  EXPECT_FALSE(contains(run.out, "feature platform"));
  // Counted in the file: 41 pairs, 18 of them with "check_collisions", none with "cut_stock".
  EXPECT_TRUE(contains(run.out, "feature interactions \"default\" (default)\n  41 pairs, 18 checked for collisions, 0 "
                                "cutting stock\n"));
}

TEST(ShowFeatures, UnreadTypeShowsItsKeysAndEmptyPlatformShowsNoGroups) {
  auto const file = mtkit_test::writeTemp(
      "show_features.json", R"({"gadgets": {"default": {"tolerance": 1, "mode": "x"}}, "platform": {"default": {}}})");
  auto const run = runTool("show " + quoted(file));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(contains(run.out, "feature gadgets \"default\" (default)\n  (kept unread; keys: mode tolerance)\n"))
      << run.out;
  EXPECT_TRUE(contains(run.out, "feature platform \"default\" (default)\n  dimensions: (none)\n  mesh: (none)\n"));
  std::filesystem::remove(file);
}

TEST(ShowFeatures, MultiAxisPreferencesShowTheirFlagsAndOptions) {
  auto const run = runTool("show " + quoted(example("machines/trunnion_5axis.json")));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_NE(run.out.find("feature multiaxis \"default\" (default)\n"
                         "  virtual tool tip off, tilted work plane on\n"
                         "  singularity: adjust true, angle 0.17453292519943295, cone 0.05235987755982989, "
                         "linearization_tolerance 0.04, method \"rotary\", tolerance 0.04\n"
                         "  feedrate: max_feedrate 1000, method \"inverse time\", unit \"minutes\"\n"
                         "  retract_and_reconfigure: enabled true, retract_preference \"RetractAtApex\", "
                         "rewind_preference \"RewindAtLinear\", rewind_strategy \"MinimizeRewinds\", "
                         "safe_plunge_feedrate 500, safe_retract_distance 50, safe_retract_feedrate 5000, "
                         "stock_expansion (2.5, 2.5, 2.5)\n"),
            std::string::npos)
      << run.out;
}
