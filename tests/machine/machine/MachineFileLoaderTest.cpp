#include "machine/machine/MachineFileLoader.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "machine/machine/Part.h"
#include "support/AssertRecorder.h"
#include "support/TextFileSupport.h"

using machine::MachineFileLoader;

namespace {

std::string example(char const* relative) { return std::string(MTKIT_EXAMPLES_DIR) + "/" + relative; }

std::string readWhole(std::string const& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string const kMachineHeading = "Error reading Machine Definition data from machine file:\n\n";
std::string const kMtkHeading = "Error reading Machine Tool Kinematics (MTK) data from machine file:\n\n";

/// Three parts on a bed: an X axis carrying the table, and the head.
std::string smallMtk(char const* direction) {
  return std::string(R"({"units": {"length": "mm", "angle": "degrees"}, "parts": [{"id": "bed", )"
                     R"("type": "static", "parts": [{"id": "x_axis", "type": "linear", "name": "X", )"
                     R"("control": "driven", "direction": )") +
         direction + R"(, "parts": [{"id": "table", "type": "table"}]}, {"id": "head", "type": "head"}]}]})";
}

/// The 3-axis example with its controller's head id replaced.
std::string vmcWithHeadId(std::string const& id) {
  std::string text = readWhole(example("machines/vmc_3axis.json"));
  std::string const key = "\"head_info_part_id\": \"spindle_head\"";
  auto const at = text.find(key);
  EXPECT_NE(at, std::string::npos);
  if (at != std::string::npos) text.replace(at, key.size(), "\"head_info_part_id\": \"" + id + "\"");
  return text;
}

}  // namespace

// --- reading ----------------------------------------------------------------

TEST(MachineFileLoader, ReadFileGivesEveryByteOfTheFile) {
  std::string const bytes("{\0\xff\n}", 5);
  mtkit_test::TempFile const file("loader_bytes", ".bin");
  file.write(bytes);
  auto const read = MachineFileLoader::readFile(file.path().string());
  EXPECT_TRUE(read.ok());
  EXPECT_EQ(read.errorNumber, 0);
  EXPECT_EQ(read.error, "");
  EXPECT_EQ(read.text, bytes);
}

TEST(MachineFileLoader, AMissingFileGivesTheOperatingSystemsReasonAndErrno) {
  for (auto const& read : {MachineFileLoader::readFile("/nonexistent/machine.json"),
                           MachineFileLoader::checkReadable("/nonexistent/machine.json")}) {
    EXPECT_FALSE(read.ok());
    EXPECT_EQ(read.errorNumber, ENOENT);
    EXPECT_EQ(read.error, "cannot read '/nonexistent/machine.json': No such file or directory");
    EXPECT_EQ(read.text, "");
  }
}

TEST(MachineFileLoader, ADirectoryIsRefusedAsIsADirectory) {
  std::string const directory = std::filesystem::temp_directory_path().string();
  for (auto const& read : {MachineFileLoader::readFile(directory), MachineFileLoader::checkReadable(directory)}) {
    EXPECT_EQ(read.errorNumber, EISDIR);
    EXPECT_EQ(read.error, "cannot read '" + directory + "': Is a directory");
  }
  auto const loaded = MachineFileLoader::load(directory);
  EXPECT_FALSE(loaded.ok());
  EXPECT_EQ(loaded.errorNumber, EISDIR);
  EXPECT_EQ(loaded.error, "cannot read '" + directory + "': Is a directory");
}

TEST(MachineFileLoader, AFileWithoutReadPermissionIsRefusedAsPermissionDenied) {
  if (::geteuid() == 0) GTEST_SKIP() << "root reads a file whatever its mode";
  mtkit_test::TempFile const file("loader_locked", ".json");
  file.write("{}");
  std::filesystem::permissions(file.path().string(), std::filesystem::perms::none);
  auto const read = MachineFileLoader::readFile(file.path().string());
  EXPECT_EQ(read.errorNumber, EACCES);
  EXPECT_EQ(read.error, "cannot read '" + file.path().string() + "': Permission denied");
  EXPECT_EQ(MachineFileLoader::checkReadable(file.path().string()).errorNumber, EACCES);
}

TEST(MachineFileLoader, CheckReadableOfAReadableFileIsOkWithoutText) {
  mtkit_test::TempFile const file("loader_readable", ".json");
  file.write("{}");
  auto const read = MachineFileLoader::checkReadable(file.path().string());
  EXPECT_TRUE(read.ok());
  EXPECT_EQ(read.error, "");
  EXPECT_EQ(read.text, "");
}

// --- which reader -------------------------------------------------------------

TEST(MachineFileLoader, AnExampleMachineFileLoadsAsAMachine) {
  auto const loaded = MachineFileLoader::load(example("machines/vmc_3axis.json"));
  ASSERT_TRUE(loaded.ok()) << loaded.error;
  EXPECT_EQ(loaded.kind, MachineFileLoader::LoadedFile::Kind::MACHINE);
  EXPECT_TRUE(loaded.machine);
  EXPECT_FALSE(loaded.kinematics);
  EXPECT_EQ(loaded.path, example("machines/vmc_3axis.json"));
  EXPECT_EQ(loaded.error, "");
}

TEST(MachineFileLoader, UnitsWithoutGeneralIsAnMtkFileWhateverItsName) {
  auto const loaded = MachineFileLoader::loadText(smallMtk("[1, 0, 0]"), "k.json");
  ASSERT_TRUE(loaded.ok()) << loaded.error;
  EXPECT_EQ(loaded.kind, MachineFileLoader::LoadedFile::Kind::MTK);
  EXPECT_TRUE(loaded.kinematics);
  EXPECT_FALSE(loaded.machine);
}

TEST(MachineFileLoader, UnitsWithGeneralIsAMachineFile) {
  // The machine file reader keeps a feature type it does not know unread.
  auto const loaded = MachineFileLoader::loadText(R"({"general": {}, "units": {}})", "m.json");
  ASSERT_TRUE(loaded.ok()) << loaded.error;
  EXPECT_EQ(loaded.kind, MachineFileLoader::LoadedFile::Kind::MACHINE);
  EXPECT_TRUE(loaded.machine);
}

TEST(MachineFileLoader, ANameEndingInMtkIsAnMtkFileWhateverItsContent) {
  auto const loaded = MachineFileLoader::loadText(R"({"general": {}})", "g.mtk");
  EXPECT_FALSE(loaded.ok());
  EXPECT_EQ(loaded.kind, MachineFileLoader::LoadedFile::Kind::MTK);
  EXPECT_EQ(loaded.error.rfind("'g.mtk' is not an MTK file:\n" + kMtkHeading, 0), 0u) << loaded.error;
}

// --- refusals -------------------------------------------------------------------

TEST(MachineFileLoader, AnEmptyFileSaysSo) {
  EXPECT_EQ(MachineFileLoader::loadText("", "empty.json").error,
            "'empty.json' is not a machine file: the file is empty");
  EXPECT_EQ(MachineFileLoader::loadText("", "empty.mtk").error, "'empty.mtk' is not an MTK file: the file is empty");
  mtkit_test::TempFile const file("loader_empty", ".json");
  file.write("");
  auto const loaded = MachineFileLoader::load(file.path().string());
  EXPECT_EQ(loaded.errorNumber, 0);
  EXPECT_EQ(loaded.error, "'" + file.path().string() + "' is not a machine file: the file is empty");
}

TEST(MachineFileLoader, NestingDeeperThanTheReadersLimitIsSaidInWords) {
  // One level more than the parser's 1000, and objects as well as arrays.
  std::string objects;
  for (int i = 0; i < 1001; ++i) objects += "{\"a\":";
  for (std::string const& text : {std::string(1001, '['), objects}) {
    EXPECT_EQ(MachineFileLoader::loadText(text, "deep.json").error,
              "'deep.json' is not a machine file: its JSON nests deeper than 1000 levels of arrays and objects, the "
              "most the reader takes");
    EXPECT_EQ(MachineFileLoader::loadText(text, "deep.mtk").error,
              "'deep.mtk' is not an MTK file: its JSON nests deeper than 1000 levels of arrays and objects, the most "
              "the reader takes");
  }
}

TEST(MachineFileLoader, NestingJustWithinTheLimitIsNotRefusedForItsDepth) {
  auto const loaded = MachineFileLoader::loadText(std::string(1000, '[') + std::string(1000, ']'), "deep_ok.json");
  EXPECT_EQ(loaded.error, "'deep_ok.json' is not a machine file: the document is an array, where a machine file is a "
                          "JSON object");
}

TEST(MachineFileLoader, ADocumentThatIsNotAnObjectIsNoMachineFile) {
  struct Case {
    char const* text;
    char const* kind;
  } const cases[] = {{"[]", "an array"}, {"null", "null"}, {"12", "a number"}, {"-1.5", "a number"},
                     {"\"x\"", "a string"}, {"true", "a boolean"}};
  for (auto const& c : cases)
    EXPECT_EQ(MachineFileLoader::loadText(c.text, "n.json").error,
              std::string("'n.json' is not a machine file: the document is ") + c.kind +
                  ", where a machine file is a JSON object")
        << c.text;
}

TEST(MachineFileLoader, MtkErrorsShowTheReadersFullMessageWithoutTheFinalLineBreak) {
  auto const loaded = MachineFileLoader::loadText(
      R"({"units": {"length": "mm", "angle": "degrees"}, "parts": [{"id": "a", "type": "root"}]})", "bad.mtk");
  EXPECT_FALSE(loaded.ok());
  EXPECT_EQ(loaded.error, "'bad.mtk' is not an MTK file:\n" + kMtkHeading +
                              "The \"type\" of a machine part is not supported. Supported types are \"linear\", "
                              "\"rotary\", \"static\", \"head\", and \"table\".\n\nCode example:\n\"parts\": [\n    "
                              "{\n        ...\n        \"type\": \"linear\",\n        ...");
}

TEST(MachineFileLoader, MachineFileErrorIsTheReadersExactText) {
  auto const loaded = MachineFileLoader::loadText(R"({"general": {"minimumRevision": 45806}})", "newer.json");
  EXPECT_FALSE(loaded.ok());
  EXPECT_EQ(loaded.error, "'newer.json' is not a machine file:\n" + kMachineHeading +
                              "The machine has newer version, and cannot be loaded.");
}

TEST(MachineFileLoader, SyntaxErrorCarriesTheParsersPosition) {
  auto const loaded = MachineFileLoader::loadText("{\"general\": ", "truncated.json");
  EXPECT_EQ(loaded.error.rfind("'truncated.json' is not a machine file:\n" + kMachineHeading +
                                   "The file reader encountered a syntax error:\n\n* Line 1, Column 13",
                               0),
            0u)
      << loaded.error;
  EXPECT_NE(loaded.error.back(), '\n');
}

TEST(MachineFileLoader, AKinematicsThatFailsInsideAMachineFileShowsTheMtkReadersMessage) {
  // The machine file reader alone can only say "Unknown exception" here.
  std::string text = readWhole(example("machines/vmc_3axis.json"));
  auto const max = text.find("\"max\":");
  ASSERT_NE(max, std::string::npos);
  auto const end = text.find_first_of(",\n}", max + 6);
  text.replace(max, end - max, "\"max\": \"inf\"");
  auto const loaded = MachineFileLoader::loadText(text, "max_inf.json");
  EXPECT_FALSE(loaded.ok());
  EXPECT_EQ(loaded.error,
            "'max_inf.json' is not a machine file: its kinematics \"default\" cannot be read:\n" + kMtkHeading +
                "Can't read a value. Expected to read a numerical value but did not find one. An example of where "
                "only numerical values must be specified is the movement range of a part.\n\nCode example:\n"
                "\"parts\": [\n    {\n        ...\n        \"min\": -88,\n        \"max\": 88,\n        "
                "\"home\": 0,\n        ...");
}

// --- building the machine -----------------------------------------------------------

TEST(MachineFileLoader, AnExampleMachineIsBuiltWithTheChainAxesFirst) {
  auto const built = MachineFileLoader::loadMachine(example("machines/headtable_5axis.json"));
  ASSERT_TRUE(built.ok()) << built.error;
  EXPECT_EQ(built.error, "");
  ASSERT_TRUE(built.machine->headPart());
  ASSERT_TRUE(built.machine->tablePart());
  EXPECT_EQ(built.machine->headPart()->definition()->identifier().id(), "b_head");
  EXPECT_EQ(built.machine->tablePart()->definition()->identifier().id(), "rotary_table");
  std::string names;
  Orvo::AxisOrdering const& ordering = built.machine->axisOrdering();
  for (int i = 0; i < ordering.size(); ++i) names += ordering.axisName(i).name() + " ";
  EXPECT_EQ(names, "X Y Z B C ");
}

TEST(MachineFileLoader, AnMtkFileIsBuiltWithTheDefaultController) {
  auto const built = MachineFileLoader::build(MachineFileLoader::loadText(smallMtk("[1, 0, 0]"), "small.mtk"));
  ASSERT_TRUE(built.ok()) << built.error;
  EXPECT_EQ(built.machine->headPart()->definition()->identifier().id(), "head");
  EXPECT_EQ(built.machine->tablePart()->definition()->identifier().id(), "table");
  EXPECT_EQ(built.machine->axisOrdering().size(), 1);
}

TEST(MachineFileLoader, AFileThatDidNotLoadPassesOnItsErrorAndErrno) {
  auto const missing = MachineFileLoader::loadMachine("/nonexistent/machine.json");
  EXPECT_FALSE(missing.ok());
  EXPECT_EQ(missing.errorNumber, ENOENT);
  EXPECT_EQ(missing.error, "cannot read '/nonexistent/machine.json': No such file or directory");
  auto const broken = MachineFileLoader::build(MachineFileLoader::loadText("", "empty.mtk"));
  EXPECT_EQ(broken.errorNumber, 0);
  EXPECT_EQ(broken.error, "'empty.mtk' is not an MTK file: the file is empty");
}

TEST(MachineFileLoader, AMachineFileWithoutKinematicsNamesTheFile) {
  auto const loaded = MachineFileLoader::loadText("{}", "no_features.json");
  ASSERT_TRUE(loaded.ok()) << loaded.error;
  EXPECT_EQ(MachineFileLoader::build(loaded).error, "'no_features.json' has no kinematics");
  // A definition has no file to name.
  EXPECT_EQ(MachineFileLoader::build(*loaded.machine, "").error, "the machine definition has no kinematics");
  EXPECT_EQ(MachineFileLoader::build(*loaded.machine, "here: ").error,
            "here: the machine definition has no kinematics");
}

TEST(MachineFileLoader, AKinematicsThatCannotBeMovedListsEachProblemOnALineOfItsOwn) {
  mtkit_test::AssertRecorder asserts;
  std::vector<std::string> const zeroDirection = {"m_direction.isNormalized()"};
  // The format takes a zero direction; the axis definition notes it each
  // time the check asks for it.
  auto const loaded = MachineFileLoader::loadText(smallMtk("[0, 0, 0]"), "zero.mtk");
  ASSERT_TRUE(loaded.ok()) << loaded.error;
  EXPECT_TRUE(asserts.takeTexts().empty());
  EXPECT_EQ(MachineFileLoader::build(loaded).error,
            "'zero.mtk': the kinematics cannot be moved:\n"
            "  part \"x_axis\": the axis direction is zero or not a finite vector");
  EXPECT_EQ(asserts.takeTexts(), zeroDirection);
  EXPECT_EQ(MachineFileLoader::build(*loaded.kinematics, "").error,
            "the kinematics cannot be moved:\n"
            "  part \"x_axis\": the axis direction is zero or not a finite vector");
  EXPECT_EQ(asserts.takeTexts(), zeroDirection);
  // Two problems, two lines, in the check's order.
  auto const headless = MachineFileLoader::loadText(
      R"({"units": {"length": "mm", "angle": "degrees"}, "parts": [{"id": "bed", "type": "static"}]})", "bare.mtk");
  ASSERT_TRUE(headless.ok()) << headless.error;
  EXPECT_EQ(MachineFileLoader::build(headless).error,
            "'bare.mtk': the kinematics cannot be moved:\n  the kinematics has no head part\n  the kinematics has no "
            "table part");
}

TEST(MachineFileLoader, AControllerNamingAMissingPartIsRefused) {
  auto const loaded = MachineFileLoader::loadText(vmcWithHeadId("nowhere"), "nowhere.json");
  ASSERT_TRUE(loaded.ok()) << loaded.error;
  EXPECT_EQ(MachineFileLoader::build(loaded).error,
            "'nowhere.json': the controller names a head or table part that is not in the kinematics");
  EXPECT_EQ(MachineFileLoader::build(*loaded.machine, "").error,
            "the controller names a head or table part that is not in the kinematics");
}

TEST(MachineFileLoader, AControllerWhoseHeadPartHasNoHeadBelowItGivesNoHead) {
  // The table is a part of the kinematics, and no head hangs below it.
  auto const loaded = MachineFileLoader::loadText(vmcWithHeadId("table"), "headless.json");
  ASSERT_TRUE(loaded.ok()) << loaded.error;
  EXPECT_EQ(MachineFileLoader::build(loaded).error, "'headless.json': the machine has no head");
}
