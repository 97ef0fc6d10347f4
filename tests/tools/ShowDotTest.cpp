#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "tools/ToolRunner.h"

using mtkit_test::quoted;
using mtkit_test::runTool;
using mtkit_test::writeTemp;

namespace {

std::filesystem::path example(std::string const& relative) {
  return std::filesystem::path(MTKIT_EXAMPLES_DIR) / relative;
}

std::vector<std::string> linesOf(std::string const& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// A frame carrying X with the controller's head, a C table and a second head
// ("probe") that nothing drives; the frame's name has quotes to escape.
std::string const kSmallMachine = R"({
  "controller": {"default": {"head_info_part_id": "head", "table_part_id": "table", "parts": {"x": {"name": "X"}}}},
  "kinematics": {"default": {"units": {"length": "mm", "angle": "degrees"},
    "conventions": {"rotation": "right-handed"}, "parts": [
    {"id": "frame", "type": "static", "display_name": "Frame \"F\"", "parts": [
      {"id": "x", "type": "linear", "control": "driven", "name": "X", "direction": [1, 0, 0], "min": -100, "max": 250.5,
       "parts": [{"id": "head", "type": "head"}]},
      {"id": "c", "type": "rotary", "control": "driven", "name": "C",
       "axis_of_rotation": {"point": [0, 0, 0], "direction": [0, 0, 1]},
       "parts": [{"id": "table", "type": "table"}]},
      {"id": "probe", "type": "head"}]}]}}})";

std::string const kIgnored = " [style=dashed, dir=none, constraint=false, color=gray70, penwidth=0.6";
std::string const kChecked = " [style=dashed, dir=none, constraint=false, color=red";

}  // namespace

TEST(ShowDot, SmallMachineGivesTheTreeHeadTableAndMergedPairs) {
  auto const file = writeTemp("dot_machine.json", kSmallMachine);
  auto const run = runTool("show --dot " + quoted(file));
  std::filesystem::remove(file);
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(run.err.empty());
  // The pairs generated for this tree are those `mtkit collisions` lists
  // (40 of them); every pair of parts they join is one dashed line, red when
  // one of its pairs is checked (anything against the table), its solid types
  // in the tooltip when they are not just the two parts.
  std::vector<std::string> const expected{
      "digraph \"" + file.filename().string() + "\" {",
      "  graph [rankdir=TB];",
      "  node [shape=box, fontname=\"Helvetica\", fontsize=10];",
      "  edge [fontname=\"Helvetica\", fontsize=8];",
      R"(  "frame" [label="frame\n[static]\n\"Frame \"F\"\""];)",
      R"(  "x" [label="x\n[linear]\nX along (1, 0, 0)\n-100..250.5 mm"];)",
      R"(  "head" [label="head\n[head]", style=filled, fillcolor="#cfe2ff", penwidth=2.5];)",
      R"(  "c" [label="c\n[rotary]\nC about (0, 0, 1)\nunlimited"];)",
      R"(  "table" [label="table\n[table]", style=filled, fillcolor="#ffe0b3", penwidth=2.5];)",
      R"(  "probe" [label="probe\n[head]", style=filled, fillcolor="#cfe2ff"];)",
      R"(  "frame" -> "x";)",
      R"(  "x" -> "head";)",
      R"(  "frame" -> "c";)",
      R"(  "c" -> "table";)",
      R"(  "frame" -> "probe";)",
      R"(  "frame" -> "x")" + kIgnored + "];",
      R"(  "frame" -> "head")" + kIgnored + R"(, tooltip="machine_part - tool"];)",
      R"(  "frame" -> "c")" + kIgnored + "];",
      R"(  "frame" -> "table")" + kChecked + R"(, tooltip="machine_part - stock\nmachine_part - fixture"];)",
      R"(  "frame" -> "probe")" + kIgnored + R"(, tooltip="machine_part - tool"];)",
      R"(  "x" -> "head")" + kIgnored + R"(, tooltip="machine_part - tool"];)",
      R"(  "x" -> "c")" + kIgnored + "];",
      R"(  "x" -> "table")" + kChecked + R"(, tooltip="machine_part - stock\nmachine_part - fixture"];)",
      R"(  "x" -> "probe")" + kIgnored + R"(, tooltip="machine_part - tool"];)",
      R"(  "head" -> "c")" + kIgnored + R"(, tooltip="tool - machine_part"];)",
      R"(  "head" -> "table")" + kChecked +
          R"(, tooltip="machine_part - stock\nmachine_part - fixture\ntool - machine_part\ntool - stock\ntool - fixture"];)",
      R"(  "head" -> "probe")" + kIgnored + R"(, tooltip="machine_part - tool\ntool - machine_part\ntool - tool"];)",
      R"(  "c" -> "table")" + kIgnored + R"(, tooltip="machine_part - stock\nmachine_part - fixture"];)",
      R"(  "c" -> "probe")" + kIgnored + R"(, tooltip="machine_part - tool"];)",
      R"(  "table" -> "probe")" + kChecked +
          R"(, tooltip="machine_part - tool\nstock - machine_part\nstock - tool\nfixture - machine_part\nfixture - tool"];)",
      "}",
  };
  auto const lines = linesOf(run.out);
  ASSERT_EQ(lines.size(), expected.size()) << run.out;
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(lines[i], expected[i]) << "line " << i + 1;
}

TEST(ShowDot, SameFileGivesTheSameText) {
  auto const first = runTool("show --dot " + quoted(example("machines/trunnion_5axis.json")));
  auto const second = runTool("show --dot " + quoted(example("machines/trunnion_5axis.json")));
  ASSERT_EQ(first.status, 0) << first.err;
  EXPECT_EQ(first.out, second.out);
  EXPECT_EQ(first.out.rfind("digraph \"trunnion_5axis.json\" {\n", 0), 0u) << first.out;
}

TEST(ShowDot, MtkFileIsDrawnWithTheTreesHeadAndTable) {
  auto const run = runTool("show --dot " + quoted(example("mtk/trunnion_5axis.mtk")));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_NE(run.out.find(R"(  "base" -> "y_axis";)"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("\"spindle_head\" [label=\"spindle_head\\n[head]\", style=filled, fillcolor=\"#cfe2ff\", "
                         "penwidth=2.5];"),
            std::string::npos)
      << run.out;
}

TEST(ShowDot, FileWithoutKinematicsFails) {
  auto const file = writeTemp("dot_empty.json", "{}");
  auto const run = runTool("show --dot " + quoted(file));
  std::filesystem::remove(file);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "mtkit show: '" + file.string() + "' has no kinematics to draw\n");
  EXPECT_TRUE(run.out.empty());
}

TEST(ShowDot, EveryExampleMachineIsAcceptedByGraphviz) {
  if (::access("/usr/bin/dot", X_OK) != 0) GTEST_SKIP() << "Graphviz's dot is not installed";
  std::vector<std::filesystem::path> files;
  for (char const* folder : {"machines", "mtk"})
    for (auto const& entry : std::filesystem::directory_iterator(example(folder))) files.push_back(entry.path());
  ASSERT_GE(files.size(), 5u);
  for (auto const& file : files) {
    auto const dotFile = std::filesystem::temp_directory_path() / ("mtkit_dot_" + std::to_string(::getpid()) + ".dot");
    auto const run = runTool("show --dot " + quoted(file) + " > " + quoted(dotFile));
    ASSERT_EQ(run.status, 0) << file << ": " << run.err;
    // Graphviz's layout warnings are not failures; a syntax error is.
    int const status = std::system(("/usr/bin/dot -Tsvg " + quoted(dotFile) + " -o /dev/null 2>/dev/null").c_str());
    std::filesystem::remove(dotFile);
    EXPECT_EQ(status, 0) << file;
  }
}
