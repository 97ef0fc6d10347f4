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
  EXPECT_EQ(plain.err, "mtkit check: '" + json.string() +
                           "': MTK file read, but its kinematics cannot be moved:\n"
                           "  the kinematics has no head part\n"
                           "  the kinematics has no table part\n");
}

TEST(CheckCommand, MtkErrorsShowTheStreamReadersFullMessage) {
  auto const file = writeTemp("bad.mtk", R"({"units": {"length": "mm", "angle": "degrees"}, "parts": [{"id": "a", "type": "root"}]})");
  auto const run = runTool("check " + quoted(file));
  std::filesystem::remove(file);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "mtkit check: '" + file.string() + "' is not an MTK file:\n"
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
  EXPECT_EQ(run.err, "mtkit check: '" + file.string() + "' is not a machine file:\n" + kHeading +
                         "The machine has newer version, and cannot be loaded.\n");
}

TEST(CheckCommand, TruncatedBinaryAndHugeFilesGetTheReadersErrorAfterTheFileName) {
  std::string binary;
  for (int i = 0; i < 4096; ++i) binary.push_back(static_cast<char>((i * 131 + 7) % 256));
  // Large, and broken only at its very end.
  std::string const huge = "{\"general\": {\"description\": \"" + std::string(8 * 1024 * 1024, 'x') + "\"}";
  struct Case {
    char const* name;
    std::string text;
  } const cases[] = {{"truncated.json", R"({"general": {"vendor": "A)"},
                     {"binary.json", binary},
                     {"huge.json", huge},
                     {"truncated.mtk", R"({"units": {"length": "mm")"}};
  for (auto const& c : cases) {
    auto const file = writeTemp(c.name, c.text);
    auto const run = runTool("check " + quoted(file));
    std::filesystem::remove(file);
    EXPECT_EQ(run.status, 1) << c.name;
    EXPECT_TRUE(run.out.empty()) << c.name;
    bool const mtk = std::string(c.name).find(".mtk") != std::string::npos;
    std::string const first = "mtkit check: '" + file.string() + "' is not " + (mtk ? "an MTK file" : "a machine file") +
                              ":\n" +
                              (mtk ? "Error reading Machine Tool Kinematics (MTK) data from machine file:\n\n" : kHeading);
    EXPECT_EQ(run.err.rfind(first, 0), 0u) << c.name << ": " << run.err.substr(0, 200);
  }
}

TEST(CheckCommand, AnEmptyFileSaysSo) {
  for (char const* name : {"empty.json", "empty.mtk"}) {
    auto const file = writeTemp(name, "");
    auto const run = runTool("check " + quoted(file));
    std::filesystem::remove(file);
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.out.empty());
    std::string const kind = std::string(name) == "empty.mtk" ? "an MTK file" : "a machine file";
    EXPECT_EQ(run.err, "mtkit check: '" + file.string() + "' is not " + kind + ": the file is empty\n");
  }
}

TEST(CheckCommand, NestingDeeperThanTheReadersLimitIsSaidInWords) {
  // 1001 levels is one more than the parser takes; a million would be as much
  // a stack overflow for a recursive parser without a limit. Objects nest as
  // deep as arrays do.
  std::string objects;
  for (int i = 0; i < 100000; ++i) objects += "{\"a\":";
  for (std::string const& text : {std::string(1001, '['), std::string(1000000, '['), objects}) {
    for (char const* name : {"deep.json", "deep.mtk"}) {
      auto const file = writeTemp(name, text);
      auto const run = runTool("check " + quoted(file));
      std::filesystem::remove(file);
      EXPECT_EQ(run.status, 1) << name;
      EXPECT_TRUE(run.out.empty());
      std::string const kind = std::string(name) == "deep.mtk" ? "an MTK file" : "a machine file";
      EXPECT_EQ(run.err, "mtkit check: '" + file.string() + "' is not " + kind +
                             ": its JSON nests deeper than 1000 levels of arrays and objects, the most the reader "
                             "takes\n")
          << text.size();
    }
  }
}

TEST(CheckCommand, NestingJustWithinTheLimitIsNotRefusedForItsDepth) {
  // 1000 levels of arrays: valid JSON as deep as the reader goes, whose root
  // is an array and so no machine file.
  auto const file = writeTemp("deep_ok.json", std::string(1000, '[') + std::string(1000, ']'));
  auto const run = runTool("check " + quoted(file));
  std::filesystem::remove(file);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "mtkit check: '" + file.string() +
                         "' is not a machine file: the document is an array, where a machine file is a JSON object\n");
}

TEST(CheckCommand, SyntaxErrorCarriesParserPosition) {
  auto const file = writeTemp("truncated2.json", "{\"general\": ");
  auto const run = runTool("check " + quoted(file));
  std::filesystem::remove(file);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err.rfind("mtkit check: '" + file.string() + "' is not a machine file:\n" + kHeading + kSyntax +
                              "* Line 1, Column 13",
                          0),
            0u)
      << run.err;
}

TEST(CheckCommand, AFileThatCannotBeReadGivesTheOperatingSystemsReason) {
  auto const missing = runTool("check /nonexistent/machine.json");
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "mtkit check: cannot read '/nonexistent/machine.json': No such file or directory\n");
  auto const directory = std::filesystem::temp_directory_path();
  auto const dir = runTool("check " + quoted(directory));
  EXPECT_EQ(dir.status, 1);
  EXPECT_EQ(dir.err, "mtkit check: cannot read '" + directory.string() + "': Is a directory\n");
  if (::geteuid() != 0) {  // root reads a file whatever its mode
    auto const locked = writeTemp("locked.json", "{}");
    std::filesystem::permissions(locked, std::filesystem::perms::none);
    auto const run = runTool("check " + quoted(locked));
    std::filesystem::remove(locked);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "mtkit check: cannot read '" + locked.string() + "': Permission denied\n");
  }
}

TEST(CheckCommand, WrongArgumentsAreUsageErrorsWithStatus2) {
  auto const none = runTool("check");
  EXPECT_EQ(none.status, 2);
  EXPECT_EQ(none.err, "mtkit check: FILE is required\nRun 'mtkit check --help' for its arguments.\n");
  auto const two = runTool("check a b");
  EXPECT_EQ(two.status, 2);
  EXPECT_EQ(two.err, "mtkit check: The following argument was not expected: b\nRun 'mtkit check --help' for its "
                     "arguments.\n");
  auto const option = runTool("check a --fast");
  EXPECT_EQ(option.status, 2);
  EXPECT_NE(option.err.find("--fast"), std::string::npos) << option.err;
}

TEST(CheckCommand, HelpIsTheCommandsOwnAndDoesNotOpenAFile) {
  auto const help = runTool("check --help");
  EXPECT_EQ(help.status, 0);
  EXPECT_TRUE(help.err.empty()) << help.err;
  EXPECT_NE(help.out.find("mtkit check"), std::string::npos) << help.out;
  EXPECT_NE(help.out.find("--strict"), std::string::npos) << help.out;
}

TEST(CheckCommand, AMachineFileWithoutKinematicsIsAWarningAndWithStrictAFailure) {
  auto const empty = writeTemp("no_features.json", "{}");
  auto const tooling = writeTemp("tooling_only.json", R"({"tooling": {"default": {}}})");
  auto run = runTool("check " + quoted(empty));
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, empty.string() + ": machine file read: 0 features\n");
  EXPECT_EQ(run.err, "mtkit check: warning: '" + empty.string() +
                         "' has no features at all, so no kinematics: fk, ik and simulate cannot move it\n");
  run = runTool("check --strict " + quoted(empty));
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.err.find("warning: '" + empty.string() + "' has no features at all"), std::string::npos);
  run = runTool("check " + quoted(tooling) + " --strict");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "mtkit check: warning: '" + tooling.string() +
                         "' has no kinematics: fk, ik and simulate cannot move it\n");
  std::filesystem::remove(empty);
  std::filesystem::remove(tooling);
  // A machine with kinematics gives no warning under --strict.
  run = runTool("check --strict " + quoted(example("machines/vmc_3axis.json")));
  EXPECT_EQ(run.status, 0);
  EXPECT_TRUE(run.err.empty()) << run.err;
}

TEST(CheckCommand, ADocumentThatIsNotAnObjectIsNoMachineFile) {
  struct Case {
    char const* text;
    char const* kind;
  } const cases[] = {{"[]", "an array"}, {"null", "null"}, {"12", "a number"}, {"\"x\"", "a string"},
                     {"true", "a boolean"}};
  for (auto const& c : cases) {
    auto const file = writeTemp("not_object.json", c.text);
    auto const run = runTool("check " + quoted(file));
    std::filesystem::remove(file);
    EXPECT_EQ(run.status, 1) << c.text;
    EXPECT_TRUE(run.out.empty()) << run.out;
    EXPECT_EQ(run.err, "mtkit check: '" + file.string() + "' is not a machine file: the document is " + c.kind +
                           ", where a machine file is a JSON object\n");
  }
}

TEST(CheckCommand, AKinematicsThatFailsInsideAMachineFileShowsTheMtkReadersMessage) {
  // The machine file reader can only say "Unknown exception" here.
  std::string text = mtkit_test::readWhole(example("machines/vmc_3axis.json"));
  auto const max = text.find("\"max\":");
  ASSERT_NE(max, std::string::npos);
  auto const end = text.find_first_of(",\n}", max + 6);
  text.replace(max, end - max, "\"max\": \"inf\"");
  auto const file = writeTemp("max_inf.json", text);
  auto const run = runTool("check " + quoted(file));
  std::filesystem::remove(file);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "mtkit check: '" + file.string() +
                         "' is not a machine file: its kinematics \"default\" cannot be read:\n"
                         "Error reading Machine Tool Kinematics (MTK) data from machine file:\n\n"
                         "Can't read a value. Expected to read a numerical value but did not find one. An example of "
                         "where only numerical values must be specified is the movement range of a part.\n\nCode "
                         "example:\n\"parts\": [\n    {\n        ...\n        \"min\": -88,\n        \"max\": 88,\n   "
                         "     \"home\": 0,\n        ...\n");
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
  EXPECT_EQ(run.err, "mtkit check: '" + file.string() +
                         "': machine file read, but its kinematics \"default\" cannot be moved:\n"
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
