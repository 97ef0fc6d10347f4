#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "tools/ToolRunner.h"

using mtkit_test::quoted;
using mtkit_test::runTool;
using mtkit_test::writeTemp;

namespace {

std::filesystem::path example(char const* relative) { return std::filesystem::path(MTKIT_EXAMPLES_DIR) / relative; }

std::string const kHeading = "Error reading Machine Definition data from machine file:\n\n";
std::string const kSyntax = "The file reader encountered a syntax error:\n\n";

}  // namespace

TEST(CheckCommand, EveryExampleMachineChecksWithOneLineSummary) {
  for (auto const& entry : std::filesystem::directory_iterator(example("machines"))) {
    auto const run = runTool("check " + quoted(entry.path()));
    EXPECT_EQ(run.status, 0) << entry.path() << run.err;
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 1) << run.out;
    EXPECT_NE(run.out.find("machine file OK"), std::string::npos) << run.out;
    EXPECT_TRUE(run.err.empty());
  }
}

TEST(CheckCommand, SummaryCountsFeaturesPartsAndAxes) {
  auto const run = runTool("check " + quoted(example("machines/vmc_3axis.json")));
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, example("machines/vmc_3axis.json").string() +
                         ": machine file OK: \"Orvo Demo Works VM-3 760\", 7 features (controller \"default\": 3 axes; "
                         "interactions \"default\"; kinematics \"default\": 7 parts, 3 axes; machining \"default\"; "
                         "post \"default\"; post_settings \"default\"; tooling \"default\")\n");
}

TEST(CheckCommand, MtkFileChecks) {
  auto const run = runTool("check " + quoted(example("mtk/headtable_5axis.mtk")));
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, example("mtk/headtable_5axis.mtk").string() + ": MTK file OK: 9 parts, 5 axes, left-handed\n");
  // An MTK document in a .json file is recognised by its "units".
  auto const json = writeTemp("plain_mtk.json", R"({"units": {"length": "mm", "angle": "degrees"}})");
  auto const plain = runTool("check " + quoted(json));
  std::filesystem::remove(json);
  // It reads, but a tree without head and table cannot be moved.
  EXPECT_EQ(plain.status, 1);
  EXPECT_TRUE(plain.out.empty());
  EXPECT_EQ(plain.err, json.string() +
                           ": MTK file read, but its kinematics cannot be moved:\n"
                           "  the kinematics has no head part\n"
                           "  the kinematics has no table part\n");
}

TEST(CheckCommand, MtkErrorsShowTheStreamReadersFullMessage) {
  auto const file = writeTemp("bad.mtk", R"({"units": {"length": "mm", "angle": "degrees"}, "parts": [{"id": "a", "type": "root"}]})");
  auto const run = runTool("check " + quoted(file));
  std::filesystem::remove(file);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "Error reading Machine Tool Kinematics (MTK) data from machine file:\n\nThe \"type\" of a machine part is "
            "not supported. Supported types are \"linear\", \"rotary\", \"static\", \"head\", and \"table\".\n\nCode "
            "example:\n\"parts\": [\n    {\n        ...\n        \"type\": \"linear\",\n        ...\n");
  EXPECT_TRUE(run.out.empty());
}

TEST(CheckCommand, MachineFileErrorIsReadersExactText) {
  auto const file = writeTemp("newer.json", R"({"general": {"minimumRevision": 45806}})");
  auto const run = runTool("check " + quoted(file));
  std::filesystem::remove(file);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, kHeading + "The machine has newer version, and cannot be loaded.\n");
}

TEST(CheckCommand, TruncatedEmptyBinaryHugeAndDeepFilesGetReadersError) {
  std::string binary;
  for (int i = 0; i < 4096; ++i) binary.push_back(static_cast<char>((i * 131 + 7) % 256));
  // Large, and broken only at its very end.
  std::string const huge = "{\"general\": {\"description\": \"" + std::string(8 * 1024 * 1024, 'x') + "\"}";
  std::string const deep = std::string(1000000, '[');
  struct Case {
    char const* name;
    std::string text;
  } const cases[] = {{"truncated.json", R"({"general": {"vendor": "A)"},
                     {"empty.json", ""},
                     {"binary.json", binary},
                     {"huge.json", huge},
                     {"deep.json", deep},
                     {"deep.mtk", deep}};
  for (auto const& c : cases) {
    auto const file = writeTemp(c.name, c.text);
    auto const run = runTool("check " + quoted(file));
    std::filesystem::remove(file);
    EXPECT_EQ(run.status, 1) << c.name;
    EXPECT_TRUE(run.out.empty()) << c.name;
    bool const mtk = std::string(c.name).find(".mtk") != std::string::npos;
    std::string const heading = mtk ? "Error reading Machine Tool Kinematics (MTK) data from machine file:\n\n" : kHeading;
    EXPECT_EQ(run.err.rfind(heading, 0), 0u) << c.name << ": " << run.err.substr(0, 200);
  }
}

TEST(CheckCommand, SyntaxErrorCarriesParserPosition) {
  auto const file = writeTemp("truncated2.json", "{\"general\": ");
  auto const run = runTool("check " + quoted(file));
  std::filesystem::remove(file);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err.rfind(kHeading + kSyntax + "* Line 1, Column 13", 0), 0u) << run.err;
}

TEST(CheckCommand, MissingFileAndWrongArguments) {
  auto const missing = runTool("check /nonexistent/machine.json");
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "cannot open /nonexistent/machine.json\n");
  EXPECT_EQ(runTool("check").status, 2);
  EXPECT_EQ(runTool("check a b").status, 2);
}

namespace {

/// The trunnion example with the A axis's direction made zero, which the
/// machine file format accepts.
std::filesystem::path trunnionWithZeroDirection(char const* name) {
  std::string text = mtkit_test::readWhole(example("machines/trunnion_5axis.json"));
  // The first axis of rotation in the file is A's, along (1, 0, 0).
  auto const axis = text.find("\"axis_of_rotation\"");
  auto const one = text.find("1,", text.find("\"direction\"", axis));
  EXPECT_NE(axis, std::string::npos);
  EXPECT_NE(one, std::string::npos);
  if (one != std::string::npos) text.replace(one, 2, "0,");
  return writeTemp(name, text);
}

}  // namespace

TEST(CheckCommand, AZeroAxisDirectionIsRefusedWithTheDefinitionChecksText) {
  auto const file = trunnionWithZeroDirection("zero_direction.json");
  auto const run = runTool("check " + quoted(file));
  std::filesystem::remove(file);
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(run.out.empty()) << run.out;
  EXPECT_EQ(run.err, file.string() +
                         ": machine file read, but its kinematics \"default\" cannot be moved:\n"
                         "  part \"a_axis\": the axis direction is zero or not a finite vector\n");
}

TEST(CheckCommand, FkIkAndSimulateRefuseAZeroAxisDirectionWithTheSameText) {
  auto const file = trunnionWithZeroDirection("zero_direction_fk.json");
  std::string const stream = example("streams/trunnion_5axis_swarf.txt").string();
  for (std::string const command : {"fk", "ik", "simulate"}) {
    std::string const args = command == "fk"   ? " A=10"
                             : command == "ik" ? " --tip 0,0,0"
                                               : " " + mtkit_test::quoted(stream);
    auto const run = runTool(command + " " + quoted(file) + args);
    EXPECT_EQ(run.status, 1) << command;
    EXPECT_TRUE(run.out.empty()) << command << ": " << run.out;
    EXPECT_EQ(run.err, "mtkit " + command + ": '" + file.string() +
                           "': the kinematics cannot be moved:\n"
                           "  part \"a_axis\": the axis direction is zero or not a finite vector\n")
        << command;
  }
  std::filesystem::remove(file);
}
