// mtkit simulate --motions and mtkit motions, run as a program on the bundled
// machines and streams and on the hand-written motions of tests/data.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "support/TextFileSupport.h"
#include "tools/ToolRunner.h"

using mtkit_test::runTool;
using mtkit_test::TempFile;

namespace {

std::string const kExamples = MTKIT_EXAMPLES_DIR;
std::string const kTrunnion = kExamples + "/machines/trunnion_5axis.json";
std::string const kSwarf = kExamples + "/streams/trunnion_5axis_swarf.txt";
std::string const kVmc = kExamples + "/machines/vmc_3axis.json";
std::string const kPocket = kExamples + "/streams/vmc_3axis_pocket.txt";
std::string const kData = MTKIT_TEST_DATA_DIR;

std::string quoted(std::string const& text) { return "'" + text + "'"; }

/// The first pose of simulate's summary, after "line N:", without the
/// units that simulate gives each value: a motions file holds the axes' names
/// but not their kinds, so `motions` prints the numbers alone.
std::string firstPoseOf(std::string const& summary) {
  auto const poses = summary.find("first poses:\n");
  if (poses == std::string::npos) return "no poses";
  auto const colon = summary.find(": ", poses + 13);
  std::string pose = summary.substr(colon + 2, summary.find('\n', colon) - colon - 2);
  for (std::string const unit : {" mm", " deg"})
    for (std::string::size_type at; (at = pose.find(unit)) != std::string::npos;) pose.erase(at, unit.size());
  return pose;
}

std::string readFile(std::string const& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace

TEST(MotionsCommand, SimulateWritesTheMotionOfTheOperationAndMotionsPrintsItsStartingPose) {
  TempFile const motions("motions_swarf");
  auto const run = runTool("simulate " + quoted(kTrunnion) + " " + quoted(kSwarf) + " --motions " +
                           quoted(motions.path().string()));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_NE(run.out.find("motions:        " + motions.path().string() + " (json)\n"), std::string::npos) << run.out;
  EXPECT_EQ(motions.read().rfind("{\n\t\"format\": \"mtkit persist\",\n", 0), 0u);

  auto const shown = runTool("motions " + quoted(motions.path().string()));
  ASSERT_EQ(shown.status, 0) << shown.err;
  // The stream names machine 1, program 1000 and operation 1 at work offset
  // 54, and has one Operation section, which starts at the first pose.
  EXPECT_EQ(shown.out, "motions: " + motions.path().string() +
                           " (json), 1 motion\n"
                           "motion 1: machine 1, program 1000, operation 1, work offset 54\n"
                           "  start: " +
                           firstPoseOf(run.out) + "\n");
}

TEST(MotionsCommand, TheBinaryFormReadsTheSame) {
  TempFile const json("motions_pocket_json");
  TempFile const binary("motions_pocket_binary");
  ASSERT_EQ(runTool("simulate " + quoted(kVmc) + " " + quoted(kPocket) + " --motions " + quoted(json.path().string()))
                .status,
            0);
  auto const run = runTool("simulate " + quoted(kVmc) + " " + quoted(kPocket) + " --motions " +
                           quoted(binary.path().string()) + " --motions-format binary");
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_NE(run.out.find(" (binary)\n"), std::string::npos);
  EXPECT_EQ(binary.read().rfind("MTKP", 0), 0u);
  auto const fromJson = runTool("motions " + quoted(json.path().string()));
  auto const fromBinary = runTool("motions " + quoted(binary.path().string()));
  ASSERT_EQ(fromBinary.status, 0) << fromBinary.err;
  std::string expected = fromJson.out;
  expected.replace(expected.find(json.path().string() + " (json)"), json.path().string().size() + 7,
                   binary.path().string() + " (binary)");
  EXPECT_EQ(fromBinary.out, expected);
  EXPECT_NE(fromJson.out.find("motion 1: machine 1, program 1000, operation 2, work offset 54\n"), std::string::npos)
      << fromJson.out;
}

TEST(MotionsCommand, MotionsPrintsTheHandWrittenFilesOfEveryVersion) {
  std::string const expected =
      " motions\n"
      "motion 1: machine 1, program 2, operation 3, work offset 54, pattern 7 instance 2\n"
      "  start: X=10.500000 Y=-20.250000 Z=300.000000 A=45.000000 C=-90.000000\n"
      "motion 2: machine 1, program 2, operation 4, work offset 0, not valid\n"
      "  start: X=1.000000 Y=2.000000 Z=3.000000\n";
  for (char const* name : {"motions_old_m_array.json", "motions_version1.json", "motions_version2.json",
                           "motions_version3.json"}) {
    std::string const path = kData + "/" + name;
    auto const shown = runTool("motions " + quoted(path));
    ASSERT_EQ(shown.status, 0) << name << ": " << shown.err;
    EXPECT_EQ(shown.out, "motions: " + path + " (json), 2" + expected) << name;
  }
}

TEST(MotionsCommand, AFileThatCannotBeReadGivesTheReadersMessage) {
  auto const missing = runTool("motions /nonexistent/motions.json");
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "mtkit motions: cannot read '/nonexistent/motions.json': No such file or directory\n");

  TempFile const broken("motions_broken");
  std::string text = readFile(kData + "/motions_version3.json");
  text.replace(text.find("\"motionVersion\": 3"), 18, "\"motionVersion\": 9");
  broken.write(text);
  auto const run = runTool("motions " + quoted(broken.path().string()));
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "mtkit motions: " + broken.path().string() +
                         ": persist JSON: at root.motionVersion: expected an integer from 1 to 3, found 9\n");

  TempFile const truncated("motions_truncated");
  TempFile const whole("motions_whole");
  ASSERT_EQ(runTool("simulate " + quoted(kVmc) + " " + quoted(kPocket) + " --motions " +
                    quoted(whole.path().string()) + " --motions-format binary")
                .status,
            0);
  std::string const bytes = whole.read();
  truncated.write(bytes.substr(0, bytes.size() - 1));
  auto const cut = runTool("motions " + quoted(truncated.path().string()));
  EXPECT_EQ(cut.status, 1);
  EXPECT_NE(cut.err.find(": persist binary: at byte 8: the stream is truncated: the header announces "),
            std::string::npos)
      << cut.err;
}

TEST(MotionsCommand, OptionsAreChecked) {
  auto const noFile = runTool("motions");
  EXPECT_EQ(noFile.status, 2);
  EXPECT_EQ(noFile.err, "mtkit motions: FILE is required\nRun 'mtkit motions --help' for its arguments.\n");
  // Without --motions the format does nothing: a warning, and the run goes on.
  auto const formatAlone =
      runTool("simulate " + quoted(kVmc) + " " + quoted(kPocket) + " --motions-format binary");
  EXPECT_EQ(formatAlone.status, 0);
  EXPECT_EQ(formatAlone.err, "mtkit simulate: warning: --motions-format does nothing without --motions FILE\n");
  auto const badFormat = runTool("simulate " + quoted(kVmc) + " " + quoted(kPocket) +
                                 " --motions /tmp/unused --motions-format xml");
  EXPECT_EQ(badFormat.status, 2);
  EXPECT_EQ(badFormat.err,
            "mtkit simulate: --motions-format: 'xml' is not json or binary\nRun 'mtkit simulate --help' for its "
            "arguments.\n");
}

TEST(MotionsCommand, ASectionWithoutItsOperationCannotBeRecorded) {
  TempFile const stream("motions_no_operation");
  std::string text = readFile(kPocket);
  text.erase(text.find("OperationId: 1 2\n"), 17);
  stream.write(text);
  TempFile const motions("motions_unwritten");
  auto const run = runTool("simulate " + quoted(kVmc) + " " + quoted(stream.path().string()) + " --motions " +
                           quoted(motions.path().string()));
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "mtkit simulate: --motions: a section began before its machine, program and operation were known, so its "
            "motion cannot be told from others\n");
}
