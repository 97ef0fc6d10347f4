// mtkit simulate, run as a program on the bundled machines and streams and
// on streams written here.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <future>
#include <sstream>
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

std::string quoted(std::string const& text) { return "'" + text + "'"; }

/// The AxisOrdering line of a bundled stream: the machine's own part ids.
std::string orderingLineOf(std::string const& stream) {
  std::ifstream in(stream, std::ios::binary);
  std::string line;
  while (std::getline(in, line))
    if (line.rfind("AxisOrdering:", 0) == 0) return line + "\n";
  return "AxisOrdering: missing\n";
}

std::vector<std::string> linesOf(std::string const& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) lines.push_back(line);
  return lines;
}

/// The number after "label" in the summary, -1 if it is not there.
long summaryNumber(std::string const& out, std::string const& label) {
  auto const at = out.find(label);
  if (at == std::string::npos) return -1;
  return std::stol(out.substr(at + label.size()));
}

}  // namespace

TEST(SimulateCommand, TheBundledFiveAxisSwarfStreamSolvesEveryPlaceholderAndPrintsTheSummary) {
  auto const result = runTool("simulate " + quoted(kTrunnion) + " " + quoted(kSwarf));
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("machine:        " + kTrunnion + " (X Y Z A C)\n"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("sections:       1 (Operation 1)\n"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("issues:         1 (code 19 warning: 1)\n"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("solve failures: 0\n"), std::string::npos) << result.out;
  EXPECT_GT(summaryNumber(result.out, "poses:          "), 180);
  EXPECT_GT(summaryNumber(result.out, "events:         "), 500);
  EXPECT_NE(result.out.find("first poses:\n  line "), std::string::npos) << result.out;
  EXPECT_EQ(result.out.find("nan"), std::string::npos) << result.out;
}

TEST(SimulateCommand, EveryBundledStreamRunsOnItsMachineWithoutASolveFailure) {
  for (auto const& [machineName, streamName] :
       {std::pair<std::string, std::string>{"trunnion_5axis", "trunnion_5axis_swarf"},
        {"headhead_5axis", "headhead_5axis_swarf"},
        {"headhead_5axis", "headhead_5axis_swarf_out_of_travel"},
        {"headtable_5axis", "headtable_5axis_swarf"},
        {"vmc_3axis", "vmc_3axis_pocket"},
        {"vmc_3axis", "vmc_3axis_contour"}}) {
    auto const result = runTool("simulate " + quoted(kExamples + "/machines/" + machineName + ".json") + " " +
                                quoted(kExamples + "/streams/" + streamName + ".txt"));
    EXPECT_EQ(result.status, 0) << streamName << ": " << result.err;
    EXPECT_NE(result.out.find("solve failures: 0\n"), std::string::npos) << streamName << ": " << result.out;
  }
}

TEST(SimulateCommand, CsvOutputHasAHeaderOfTheAxisNamesAndARowPerPose) {
  TempFile const csv("simulate_pocket_csv");
  auto const result =
      runTool("simulate " + quoted(kVmc) + " " + quoted(kPocket) + " -o " + quoted(csv.path().string()) + " --csv");
  ASSERT_EQ(result.status, 0) << result.err;
  auto const lines = linesOf(csv.read());
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines[0], "pose,line,operation,section,X,Y,Z");
  EXPECT_EQ(static_cast<long>(lines.size()) - 1, summaryNumber(result.out, "poses:          "));
  EXPECT_EQ(lines[1].rfind("1,", 0), 0u) << lines[1];
  // Operation 2, first section, and no unsolved axis anywhere.
  EXPECT_NE(lines[1].find(",2,1,"), std::string::npos) << lines[1];
  EXPECT_EQ(csv.read().find("nan"), std::string::npos);
}

TEST(SimulateCommand, TextOutputIsAStreamFileWithTheSolvedAxisValues) {
  TempFile const text("simulate_swarf_text");
  auto const result =
      runTool("simulate " + quoted(kTrunnion) + " " + quoted(kSwarf) + " -o " + quoted(text.path().string()));
  ASSERT_EQ(result.status, 0) << result.err;
  std::string const bytes = text.read();
  EXPECT_EQ(bytes.rfind("TextFileSimulationStream: 1 0\n", 0), 0u);
  EXPECT_NE(bytes.find("\nAxisValues: 1 5 "), std::string::npos);
  EXPECT_EQ(bytes.find("nan"), std::string::npos);
  // Replayed once more through the solver alone, it has no placeholders left
  // and the same poses. (The standard chain would send the real values again
  // ahead of the motions its look-ahead held.)
  auto const again =
      runTool("simulate " + quoted(kTrunnion) + " " + quoted(text.path().string()) + " --solver-only");
  ASSERT_EQ(again.status, 0) << again.err;
  EXPECT_EQ(summaryNumber(again.out, "poses:          "), summaryNumber(result.out, "poses:          "));
}

TEST(SimulateCommand, IssuesAreCountedByCodeAndSeverityAndOnlyTheSolversCountAsSolveFailures) {
  TempFile const stream("simulate_issues");
  stream.write("TextFileSimulationStream: 1 0\n" + orderingLineOf(kSwarf) +
               "Section: 1 BeforeOperation\nWarning: 1 19 \"w\"\nError: 1 42 \"e\"\nError: 1 8 \"from the post\"\n"
               "SectionEnd: 1\nSection: 1 Operation\nSectionEnd: 1\n");
  auto const result = runTool("simulate " + quoted(kTrunnion) + " " + quoted(stream.path().string()));
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("sections:       2 (Operation 1, BeforeOperation 1)\n"), std::string::npos)
      << result.out;
  EXPECT_NE(result.out.find("issues:         3 (code 8 error: 1, code 19 warning: 1, code 42 error: 1)\n"),
            std::string::npos)
      << result.out;
  EXPECT_NE(result.out.find("solve failures: 0\n"), std::string::npos) << result.out;
}

TEST(SimulateCommand, AMissingMachineOrStreamFileIsAClearErrorWithStatus1) {
  auto const noMachine = runTool("simulate /nonexistent/machine.json " + quoted(kSwarf));
  EXPECT_EQ(noMachine.status, 1);
  EXPECT_NE(noMachine.err.find("mtkit simulate: cannot read '/nonexistent/machine.json': No such file or directory"),
            std::string::npos)
      << noMachine.err;
  auto const noStream = runTool("simulate " + quoted(kTrunnion) + " /nonexistent/stream.txt");
  EXPECT_EQ(noStream.status, 1);
  EXPECT_NE(noStream.err.find("mtkit simulate: cannot read '/nonexistent/stream.txt': No such file or directory"),
            std::string::npos)
      << noStream.err;
}

TEST(SimulateCommand, AMachineFileThatIsNotAMachineIsAClearErrorWithStatus1) {
  auto const result = runTool("simulate " + quoted(kSwarf) + " " + quoted(kSwarf));
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("is not a machine file"), std::string::npos) << result.err;
}

TEST(SimulateCommand, AFileWithoutTheStreamHeaderIsRefusedWithStatus1) {
  auto const result = runTool("simulate " + quoted(kTrunnion) + " " + quoted(kTrunnion));
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("is not a simulation stream text file: its first line is not "
                            "\"TextFileSimulationStream: 1 0\""),
            std::string::npos)
      << result.err;
}

TEST(SimulateCommand, AxisValuesThatDoNotFitTheOrderingReportTheLine) {
  TempFile const stream("simulate_bad_count");
  stream.write("TextFileSimulationStream: 1 0\n" + orderingLineOf(kSwarf) +
               "Section: 1 Operation\nAxisValues: 1 3 1 2 3\nSectionEnd: 1\n");
  auto const result = runTool("simulate " + quoted(kTrunnion) + " " + quoted(stream.path().string()));
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find(stream.path().string() +
                            ":4: the number of axis values does not fit the axis ordering (5 axes)"),
            std::string::npos)
      << result.err;
}

TEST(SimulateCommand, AxisValuesBeforeAnyOrderingReportTheLineAndSaySo) {
  TempFile const stream("simulate_no_ordering");
  stream.write("TextFileSimulationStream: 1 0\nSection: 1 Operation\nAxisValues: 1 3 1 2 3\n");
  auto const result = runTool("simulate " + quoted(kTrunnion) + " " + quoted(stream.path().string()));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "mtkit simulate: " + stream.path().string() + ":3: axis values come before any axis ordering\n");
}

TEST(SimulateCommand, AStreamOfAnotherFormatVersionIsRefusedWithThatVersion) {
  TempFile const stream("simulate_version");
  stream.write("TextFileSimulationStream: 2 0\nSection: 1 Operation\n");
  auto const result = runTool("simulate " + quoted(kTrunnion) + " " + quoted(stream.path().string()));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "mtkit simulate: " + stream.path().string() + ":1: the file is in format 2.0, and only 1.0 is read\n");
}

TEST(SimulateCommand, AnOrderingThatNamesAPartTheMachineLacksReportsTheLine) {
  TempFile const stream("simulate_bad_part");
  stream.write("TextFileSimulationStream: 1 0\nMachineId: 1 1\nAxisOrdering: 2 1 \"Q\" \"no such part\"\n");
  auto const result = runTool("simulate " + quoted(kTrunnion) + " " + quoted(stream.path().string()));
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find(":3: the axis ordering names part 'no such part' (axis Q), which the machine does not "
                            "have (axes: X Y Z A C)"),
            std::string::npos)
      << result.err;
}

TEST(SimulateCommand, BadArgumentsAreUsageErrorsWithStatus2) {
  std::string const help = "Run 'mtkit simulate --help' for its arguments.\n";
  auto const none = runTool("simulate");
  EXPECT_EQ(none.status, 2);
  EXPECT_EQ(none.err, "mtkit simulate: MACHINE is required\n" + help);
  auto const one = runTool("simulate " + quoted(kTrunnion));
  EXPECT_EQ(one.status, 2);
  EXPECT_EQ(one.err, "mtkit simulate: STREAM is required\n" + help);
  auto const unknown = runTool("simulate " + quoted(kTrunnion) + " " + quoted(kSwarf) + " --fast");
  EXPECT_EQ(unknown.status, 2);
  EXPECT_EQ(unknown.err, "mtkit simulate: The following argument was not expected: --fast\n" + help);
  auto const noOut = runTool("simulate " + quoted(kTrunnion) + " " + quoted(kSwarf) + " -o");
  EXPECT_EQ(noOut.status, 2);
  auto const poses = runTool("simulate " + quoted(kTrunnion) + " " + quoted(kSwarf) + " --poses 1.5");
  EXPECT_EQ(poses.status, 2);
  EXPECT_EQ(poses.err, "mtkit simulate: --poses: '1.5' is not a count (a whole number not below 0)\n" + help);
  auto const idle = runTool("simulate " + quoted(kTrunnion) + " " + quoted(kSwarf) + " --follow --idle -1");
  EXPECT_EQ(idle.status, 2);
  EXPECT_NE(idle.err.find("--idle"), std::string::npos) << idle.err;
}

TEST(SimulateCommand, OptionsThatDoNothingInTheCombinationAreWarnedAbout) {
  auto const csv = runTool("simulate " + quoted(kTrunnion) + " " + quoted(kSwarf) + " --csv --poses 0");
  EXPECT_EQ(csv.status, 0) << csv.err;
  EXPECT_EQ(csv.err, "mtkit simulate: warning: --csv does nothing without -o OUT\n");
  auto const idle = runTool("simulate " + quoted(kTrunnion) + " " + quoted(kSwarf) + " --idle 2 --poses 0");
  EXPECT_EQ(idle.status, 0) << idle.err;
  EXPECT_EQ(idle.err, "mtkit simulate: warning: --idle does nothing without --follow\n");
}

TEST(SimulateCommand, AnOutputThatCannotBeWrittenIsAClearErrorWithStatus1) {
  auto const result = runTool("simulate " + quoted(kTrunnion) + " " + quoted(kSwarf) + " -o /nonexistent/out.txt");
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("cannot write '/nonexistent/out.txt'"), std::string::npos) << result.err;
}

TEST(SimulateCommand, FollowReadsAFileThatIsStillGrowingUntilItKeepsItsSizeForTheIdleTime) {
  // No sleeps and no race: the hidden --test-wait-fifo option turns each of
  // the tool's one-second waits into a read from a FIFO that this test holds.
  // The tool opens the FIFO at its first wait, after it has read the file to
  // its end, and this test's end of it opens only then. The file grows, the
  // FIFO closes, and from then on each wait counts as its second at once: the
  // tool sees the growth, then the size kept for the idle time, and ends.
  TempFile const stream("simulate_follow");
  TempFile const fifo("simulate_follow_fifo");
  ASSERT_EQ(::mkfifo(fifo.path().c_str(), 0600), 0);
  std::string const ordering = orderingLineOf(kSwarf);
  stream.write("TextFileSimulationStream: 1 0\n" + ordering + "Section: 1 Operation\nSectionEnd: 1\nSection: 1 ");
  auto run = std::async(std::launch::async, [&]() {
    return runTool("simulate " + quoted(kTrunnion) + " " + quoted(stream.path().string()) +
                   " --follow --idle 3 --test-wait-fifo " + quoted(fifo.path().string()));
  });
  // A writer's non-blocking open of a FIFO fails until a reader has it open.
  int writer = -1;
  while ((writer = ::open(fifo.path().c_str(), O_WRONLY | O_NONBLOCK)) < 0 &&
         run.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready) {
  }
  if (writer < 0) FAIL() << "the tool ended without waiting for the file to grow: " << run.get().err;
  stream.append("NoTool\nSectionEnd: 1\n");
  ::close(writer);
  auto const result = run.get();
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("sections:       2 (Operation 1, NoTool 1)\n"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find(", 6 lines\n"), std::string::npos) << result.out;
}

TEST(SimulateCommand, TheStandardChainIsTheDefaultAndSolverOnlyReplaysThroughTheSolverAlone) {
  // Real axis values and two moves in an Operation section: the solver alone
  // passes the values once; the standard chain's compensation link sends
  // them again ahead of the moves it held.
  TempFile const stream("simulate_chain");
  stream.write("TextFileSimulationStream: 1 0\n" + orderingLineOf(kSwarf) +
               "Section: 1 Operation\nAxisValues: 1 5 1 2 3 4 5\nLinear: 1 0 0 0 100 3\nLinear: 1 1 0 0 100 3\n"
               "SectionEnd: 1\n");
  auto const standard = runTool("simulate " + quoted(kTrunnion) + " " + quoted(stream.path().string()));
  ASSERT_EQ(standard.status, 0) << standard.err;
  EXPECT_NE(standard.out.find("\nchain:          standard (catch errors, radius compensation, solver), then the "
                              "travel check\n"),
            std::string::npos)
      << standard.out;
  EXPECT_GE(summaryNumber(standard.out, "poses:          "), 2);
  auto const alone =
      runTool("simulate " + quoted(kTrunnion) + " " + quoted(stream.path().string()) + " --solver-only");
  ASSERT_EQ(alone.status, 0) << alone.err;
  EXPECT_NE(alone.out.find("\nchain:          solver only, then the travel check\n"), std::string::npos) << alone.out;
  EXPECT_EQ(summaryNumber(alone.out, "poses:          "), 1);
}

TEST(SimulateCommand, ToolsGiveEverySectionButNoToolTheToolOfItsOperation) {
  TempFile const stream("simulate_tools_stream");
  stream.write("TextFileSimulationStream: 1 0\n" + orderingLineOf(kSwarf) +
               "OperationId: 1 3\nSection: 1 BeforeOperation\nSectionEnd: 1\nSection: 1 NoTool\nSectionEnd: 1\n"
               "OperationId: 1 9\nNCTool: 1\nSection: 1 Operation\nSectionEnd: 1\n");
  TempFile const tools("simulate_tools_json");
  tools.write("{ \"3\": { \"tool\": 12, \"radius\": 4, \"unit\": \"mm\" } }");
  TempFile const text("simulate_tools_out");
  auto const result = runTool("simulate " + quoted(kTrunnion) + " " + quoted(stream.path().string()) + " --tools " +
                              quoted(tools.path().string()) + " -o " + quoted(text.path().string()));
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("\ntools:          " + tools.path().string() + ", 1 operation; no tool for operation 9\n"),
            std::string::npos)
      << result.out;
  // One tool ahead of the BeforeOperation and the Operation section, none for
  // NoTool.
  auto const lines = linesOf(text.read());
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "NCTool: 1"), 2);
  auto const firstTool = std::find(lines.begin(), lines.end(), "NCTool: 1");
  auto const firstSection = std::find(lines.begin(), lines.end(), "Section: 1 BeforeOperation");
  EXPECT_LT(firstTool, firstSection);

  // Without --tools there are none: the reader drops the record of a tool,
  // which carries nothing.
  TempFile const plain("simulate_tools_plain");
  auto const without = runTool("simulate " + quoted(kTrunnion) + " " + quoted(stream.path().string()) + " -o " +
                               quoted(plain.path().string()));
  ASSERT_EQ(without.status, 0) << without.err;
  EXPECT_EQ(without.out.find("tools:"), std::string::npos) << without.out;
  auto const plainLines = linesOf(plain.read());
  EXPECT_EQ(std::count(plainLines.begin(), plainLines.end(), "NCTool: 1"), 0);
}

TEST(SimulateCommand, TheBundledContoursRunWithTheirToolsWithoutASolveFailure) {
  auto const result = runTool("simulate " + quoted(kVmc) + " " + quoted(kExamples + "/streams/vmc_3axis_contour.txt") +
                              " --tools " + quoted(kExamples + "/streams/vmc_3axis_contour_tools.json"));
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find("sections:       2 (Operation 2)\n"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("vmc_3axis_contour_tools.json, 2 operations\n"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("solve failures: 0\n"), std::string::npos) << result.out;
  EXPECT_EQ(result.out.find("nan"), std::string::npos) << result.out;
}

TEST(SimulateCommand, AToolsFileThatCannotBeUsedIsAClearErrorWithStatus1) {
  TempFile const tools("simulate_bad_tools");
  auto run = [&](std::string const& json) {
    tools.write(json);
    return runTool("simulate " + quoted(kTrunnion) + " " + quoted(kSwarf) + " --tools " +
                   quoted(tools.path().string()));
  };
  std::string const where = "mtkit simulate: --tools: '" + tools.path().string() + "'";
  struct Case {
    std::string json;
    std::string message;
  };
  for (Case const& c : std::vector<Case>{
           {"{ \"3\": ", where + " is not JSON: "},
           {"[1, 2]", where + " must be a JSON object that maps operation ids to tools\n"},
           {"{ \"three\": { \"radius\": 1 } }", where + ": \"three\" is not an operation id (a decimal integer)\n"},
           {"{ \"3\": 5 }", where + ", operation \"3\": the tool must be an object\n"},
           {"{ \"3\": { \"tool\": 1 } }", where + ", operation \"3\": \"radius\" must be a number, not negative\n"},
           {"{ \"3\": { \"radius\": -1 } }", where + ", operation \"3\": \"radius\" must be a number, not negative\n"},
           {"{ \"3\": { \"radius\": 1, \"diameter\": 2 } }",
            where + ", operation \"3\": unknown member \"diameter\" (known: tool, radius, unit, thread_pitch)\n"},
           {"{ \"3\": { \"radius\": 1, \"unit\": \"mil\" } }",
            where + ", operation \"3\": \"unit\" must be one of \"mm\", \"cm\", \"m\", \"inch\", \"ft\"\n"},
           {"{ \"3\": { \"radius\": 1, \"tool\": 1.5 } }", where + ", operation \"3\": \"tool\" must be an integer\n"},
           {"{ \"3\": { \"radius\": 1, \"thread_pitch\": \"fine\" } }",
            where + ", operation \"3\": \"thread_pitch\" must be a number, not negative\n"},
           {"{ \"3\": { \"radius\": 1 }, \"03\": { \"radius\": 2 } }",
            where + ", operation \"3\": operation 3 is given twice\n"},
       }) {
    auto const result = run(c.json);
    EXPECT_EQ(result.status, 1) << c.json;
    EXPECT_EQ(result.err.rfind(c.message, 0), 0u) << c.json << "\n" << result.err;
  }
  auto const missing = runTool("simulate " + quoted(kTrunnion) + " " + quoted(kSwarf) + " --tools /nonexistent.json");
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "mtkit simulate: --tools: cannot read '/nonexistent.json': No such file or directory\n");
}

TEST(SimulateCommand, TheReadmeShowsWhatTheToolSaysAboutTheOutOfTravelExample) {
  std::string const command =
      "mtkit simulate examples/machines/headhead_5axis.json examples/streams/headhead_5axis_swarf_out_of_travel.txt "
      "--poses 2";
  std::ifstream in(kExamples + "/../README.md", std::ios::binary);
  std::string const readme((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  auto const start = readme.find("$ " + command + "\n");
  ASSERT_NE(start, std::string::npos);
  auto const begin = start + command.size() + 3;
  std::string const shown = readme.substr(begin, readme.find("```", begin) - begin);

  auto const result = runTool("simulate " + quoted(kExamples + "/machines/headhead_5axis.json") + " " +
                              quoted(kExamples + "/streams/headhead_5axis_swarf_out_of_travel.txt") +
                              " --poses 2");
  EXPECT_EQ(result.status, 0) << result.err;
  // The tool names the files as it was given them; the README from the top
  // of the project. The time differs from run to run.
  std::string said = result.out + result.err;
  for (std::string::size_type at; (at = said.find(kExamples + "/")) != std::string::npos;)
    said.replace(at, kExamples.size() + 1, "examples/");
  auto const withoutTime = [](std::string const& text) {
    std::string kept;
    for (std::string const& line : linesOf(text))
      if (line.rfind("time:", 0) != 0) kept += line + "\n";
    return kept;
  };
  EXPECT_EQ(withoutTime(shown), withoutTime(said));
}
