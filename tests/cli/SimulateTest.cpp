// `mtkit simulate` as installed, on the installed machines and streams: the
// summary, the travel check, --strict and its check of each stream line.

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "cli/CliSupport.h"

using namespace mtkit_cli;

TEST(Simulate, ReplaysTheInstalledExampleStream) {
  std::string const machine = example("machines/trunnion_5axis.json");
  std::string const stream = example("streams/trunnion_5axis_swarf.txt");
  ToolRun const r = run("simulate " + quoted(machine) + " " + quoted(stream) + " --solver-only --poses 1");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "");
  EXPECT_EQ(r.out.rfind("machine:        " + machine + " (X Y Z A C)\n", 0), 0u) << r.out;
  EXPECT_TRUE(contains(r.out, "\nchain:          solver only, then the travel check\n")) << r.out;
  EXPECT_TRUE(contains(r.out, "\nfirst poses:\n  line ")) << r.out;
}

TEST(Simulate, TakesAnMtkFileForTheMachine) {
  std::string const mtk = example("mtk/trunnion_5axis.mtk");
  std::string const stream = example("streams/trunnion_5axis_swarf.txt");
  ToolRun const r = run("simulate " + quoted(mtk) + " " + quoted(stream) + " --solver-only --poses 0");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out.rfind("machine:        " + mtk + " (X Y Z A C)\n", 0), 0u) << r.out;
}

namespace {

/// A stream file of `text` in the scratch folder, removed at the end.
class StreamFile {
public:
  StreamFile(std::string const& name, std::string const& text)
      : m_path((std::filesystem::temp_directory_path() /
                ("mtkit_cli_" + std::to_string(::getpid()) + "_" + name + ".txt"))
                   .string()) {
    std::ofstream(m_path, std::ios::binary) << text;
  }
  ~StreamFile() {
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
  }
  StreamFile(StreamFile const&) = delete;
  StreamFile& operator=(StreamFile const&) = delete;
  std::string const& path() const { return m_path; }

private:
  std::string m_path;
};

std::string const kHeader = "TextFileSimulationStream: 1 0\n";
/// The trunnion's ordering, as its bundled stream has it.
std::string const kTrunnionOrdering =
    "AxisOrdering: 2 5 \"X\" \"x_axis\" \"Y\" \"y_axis\" \"Z\" \"z_axis\" \"A\" \"a_axis\" \"C\" \"c_axis\"\n";

/// The lines of `text` that begin with `prefix`, or contain it.
std::vector<std::string> linesWith(std::string const& text, std::string const& part) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line))
    if (line.find(part) != std::string::npos) lines.push_back(line);
  return lines;
}

/// The post's own solution of each move, from the NC blocks of a bundled
/// stream ("N10 G0 X111.567 Y-108.468 Z478.013 B22.269 C-62.727"): the
/// value of `axis` in each block, in order.
std::vector<double> ncValues(std::string const& stream, char axis) {
  std::ifstream in(stream, std::ios::binary);
  std::vector<double> values;
  std::string line;
  while (std::getline(in, line)) {
    if (line.rfind("NcOutput: 1 \"N", 0) != 0) continue;
    auto const at = line.find(std::string(" ") + axis);
    if (at == std::string::npos) continue;
    values.push_back(std::stod(line.substr(at + 2)));
  }
  return values;
}

/// "-74.203", "3000": how the summary writes a number (three decimals at most).
std::string compact(double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.3f", value);
  std::string text = buffer;
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

}  // namespace

TEST(Simulate, EveryBundledProgramButTheOutOfTravelOneRunsInsideItsMachinesTravel) {
  for (auto const& [machineName, streamName] :
       std::vector<std::pair<std::string, std::string>>{{"trunnion_5axis", "trunnion_5axis_swarf"},
                                                        {"headhead_5axis", "headhead_5axis_swarf"},
                                                        {"headtable_5axis", "headtable_5axis_swarf"},
                                                        {"vmc_3axis", "vmc_3axis_pocket"},
                                                        {"vmc_3axis", "vmc_3axis_contour"}}) {
    for (std::string const chain : {"", " --solver-only"}) {
      ToolRun const r = run("simulate " + quoted(example("machines/" + machineName + ".json")) + " " +
                            quoted(example("streams/" + streamName + ".txt")) + " --strict" + chain);
      EXPECT_EQ(r.status, 0) << streamName << chain << "\n" << r.err << r.out;
      EXPECT_EQ(r.err, "") << streamName << chain;
      EXPECT_TRUE(contains(r.out, "\nover-travel:    none (")) << streamName << chain << "\n" << r.out;
      EXPECT_TRUE(contains(r.out, "\nsolve failures: 0\n")) << streamName << chain;
      EXPECT_TRUE(contains(r.out, "\nmalformed lines: 0\n")) << streamName << chain;
    }
  }
}

TEST(Simulate, TheBundledProgramsAreTheOnesTheReadmeNames) {
  std::vector<std::string> streams;
  for (auto const& entry : std::filesystem::directory_iterator(example("streams")))
    if (entry.path().extension() == ".txt") streams.push_back(entry.path().filename().string());
  std::sort(streams.begin(), streams.end());
  EXPECT_EQ(streams, (std::vector<std::string>{"headhead_5axis_swarf.txt", "headhead_5axis_swarf_out_of_travel.txt",
                                               "headtable_5axis_swarf.txt", "trunnion_5axis_swarf.txt",
                                               "vmc_3axis_contour.txt", "vmc_3axis_pocket.txt"}));
}

TEST(Simulate, TheOutOfTravelExampleNamesEachAxisItsPosesValuesTravelAndFirstLines) {
  std::string const machine = example("machines/headhead_5axis.json");
  std::string const stream = example("streams/headhead_5axis_swarf_out_of_travel.txt");
  ToolRun const r = run("simulate " + quoted(machine) + " " + quoted(stream) + " --solver-only");
  ASSERT_EQ(r.status, 0) << r.err;

  // What to expect, from the post's own NC blocks: the part stands at the
  // table origin, which this machine's X (0..3000), Y (0..2000) and Z
  // (-1000..0) cannot reach. Every move has a block, and the moves are laid
  // out from line 15 on as block, placeholder, motion (three lines each), with
  // the post's warning after the third; so the motion of block k (from 0)
  // stands at line 17 + 3k, one further from the fourth block on.
  struct Travel {
    char axis;
    double min, max;
  };
  std::vector<std::string> axesOut;
  long posesOut = 0;
  std::vector<bool> poseOut;
  std::string expectedLines;
  for (Travel const travel : {Travel{'X', 0, 3000}, Travel{'Y', 0, 2000}, Travel{'Z', -1000, 0}}) {
    std::vector<double> const values = ncValues(stream, travel.axis);
    ASSERT_EQ(values.size(), 185u) << travel.axis;
    poseOut.resize(values.size(), false);
    long count = 0;
    double lowest = 0, highest = 0;
    std::vector<long> lines;
    for (std::size_t k = 0; k < values.size(); ++k) {
      double const v = values[k];
      if (v >= travel.min && v <= travel.max) continue;
      if (count == 0 || v < lowest) lowest = v;
      if (count == 0 || v > highest) highest = v;
      ++count;
      poseOut[k] = true;
      if (lines.size() < 3) lines.push_back(17 + 3 * static_cast<long>(k) + (k >= 3 ? 1 : 0));
    }
    if (count == 0) continue;
    axesOut.push_back(std::string(1, travel.axis));
    std::string const unit = "mm";
    std::string text = "  " + std::string(1, travel.axis) + ": " + std::to_string(count) + " poses, " +
                       compact(lowest) + " to " + compact(highest) + " mm, outside " + compact(travel.min) + ".." +
                       compact(travel.max) + " mm; first at lines ";
    for (std::size_t i = 0; i < lines.size(); ++i) text += (i ? ", " : "") + std::to_string(lines[i]);
    EXPECT_TRUE(contains(r.out, "\n" + text + "\n")) << text << "\n" << r.out;
  }
  for (bool out : poseOut) posesOut += out;
  EXPECT_EQ(axesOut, (std::vector<std::string>{"X", "Y", "Z"}));
  EXPECT_TRUE(contains(r.out, "\nover-travel:    " + std::to_string(posesOut) + " of 185 poses\n")) << r.out;
  // The rotary axes stay inside: B within -105..105, C within -355..355.
  EXPECT_TRUE(linesWith(r.out, "  B: ").empty()) << r.out;
  EXPECT_TRUE(linesWith(r.out, "  C: ").empty()) << r.out;
  EXPECT_EQ(r.err, line("simulate", "warning: " + std::to_string(posesOut) +
                                        " poses are out of the machine's travel (X, Y, Z); --strict makes that an error"));
}

TEST(Simulate, TheOutOfTravelExampleFailsWithStrictAndTheStandardChainKeepsTheMotionsLines) {
  std::string const machine = example("machines/headhead_5axis.json");
  std::string const stream = example("streams/headhead_5axis_swarf_out_of_travel.txt");
  ToolRun const r = run("simulate " + quoted(machine) + " " + quoted(stream) + " --strict");
  EXPECT_EQ(r.status, 1);
  // The compensator holds motions back, but each pose still carries the
  // line of its motion: the first at line 17, then 20 and 23.
  EXPECT_TRUE(contains(r.out, "\n  Z: 185 poses, ")) << r.out;
  EXPECT_TRUE(contains(r.out, "; first at lines 17, 20, 23\n")) << r.out;
  // Each over-travel is an issue of its own (code 100), told once, as such.
  EXPECT_EQ(r.err, line("simulate", "--strict: 185 poses out of travel"));
}

TEST(Simulate, OverTravelIssuesGoToTheOutputWithTheAxisValueRangeAndLine) {
  std::string const machine = example("machines/headhead_5axis.json");
  std::string const stream = example("streams/headhead_5axis_swarf_out_of_travel.txt");
  StreamFile const out("out_of_travel_output", "");
  ToolRun const r = run("simulate " + quoted(machine) + " " + quoted(stream) + " --solver-only -o " + quoted(out.path()));
  ASSERT_EQ(r.status, 0) << r.err;
  std::ifstream in(out.path(), std::ios::binary);
  std::string const text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  // The first pose's Z, from its NC block, three decimals.
  double const z = ncValues(stream, 'Z').at(0);
  std::vector<std::string> const issues = linesWith(text, "Error: 1 100 \"Axis Z is out of travel at line 17: ");
  ASSERT_EQ(issues.size(), 1u) << text.substr(0, 2000);
  EXPECT_TRUE(contains(issues[0], " mm is outside -1000 to 0 mm.\"")) << issues[0];
  double const reported = std::stod(issues[0].substr(issues[0].find(": ", 30) + 2));
  EXPECT_NEAR(reported, z, 0.0005) << issues[0];
}

TEST(Simulate, TheSummaryListsEachIssueWithItsCodeSeverityTextAndLine) {
  ToolRun r = run("simulate " + quoted(example("machines/trunnion_5axis.json")) + " " +
                  quoted(example("streams/trunnion_5axis_swarf.txt")));
  ASSERT_EQ(r.status, 0) << r.err;
  // The post's warning is line 24 of the stream: 14 lines of header and
  // operation, then three moves of three lines each.
  EXPECT_TRUE(contains(r.out, "\nissues:         1 (code 19 warning: 1)\n"
                              "  code 19 warning at line 24: Feed rate 2500 mm/min is above the machine's 5-axis "
                              "limit; 1500 mm/min is used.\n"))
      << r.out;

  // Repeated texts are told once, with their count and first lines.
  StreamFile const repeated("repeated_issues", kHeader + kTrunnionOrdering +
                                                   "Error: 1 42 \"e\"\n"
                                                   "Error: 1 42 \"e\"\n"
                                                   "Warning: 1 19 \"w\"\n"
                                                   "Error: 1 42 \"e\"\n"
                                                   "Error: 1 42 \"e\"\n"
                                                   "Error: 1 42 \"other\"\n");
  r = run("simulate " + quoted(example("machines/trunnion_5axis.json")) + " " + quoted(repeated.path()));
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(contains(r.out, "\nissues:         6 (code 19 warning: 1, code 42 error: 5)\n"
                              "  code 42 error, 4 times, first at lines 3, 4, 6: e\n"
                              "  code 19 warning at line 5: w\n"
                              "  code 42 error at line 8: other\n"
                              "solve failures: 0\n"))
      << r.out;
}

TEST(Simulate, TheSummaryGivesPosesWithTheirUnitsAndATimeWithThreeDigits) {
  ToolRun const r = run("simulate " + quoted(example("machines/trunnion_5axis.json")) + " " +
                        quoted(example("streams/trunnion_5axis_swarf.txt")) + " --poses 1");
  ASSERT_EQ(r.status, 0) << r.err;
  // 185 moves (an approach, two lead-in moves, 180 around the cylinder, a
  // lead-out and a retract), one pose each.
  EXPECT_TRUE(contains(r.out, "\nposes:          185 (X Y Z in mm, A C in deg)\n")) << r.out;
  EXPECT_TRUE(contains(r.out, "\nover-travel:    none (X Y Z A checked; C without limit)\n")) << r.out;
  std::vector<std::string> const time = linesWith(r.out, "time:           ");
  ASSERT_EQ(time.size(), 1u);
  // "4.21 ms", "0.987 ms", "12.30 s": three significant digits.
  std::string const value = time[0].substr(16);
  std::size_t digits = 0;
  bool leading = true;
  for (char c : value.substr(0, value.find(' '))) {
    if (c == '.' || (leading && c == '0')) continue;
    leading = false;
    digits += c >= '0' && c <= '9';
  }
  EXPECT_EQ(digits, 3u) << time[0];
  EXPECT_TRUE(value.size() > 3 && (value.substr(value.size() - 3) == " ms" || value.substr(value.size() - 2) == " s"))
      << time[0];
  // The first pose, with its units: X, Y, Z in mm and A, C in degrees.
  std::vector<std::string> const pose = linesWith(r.out, "  line 17: ");
  ASSERT_EQ(pose.size(), 1u) << r.out;
  EXPECT_TRUE(contains(pose[0], " mm Y=")) << pose[0];
  EXPECT_TRUE(contains(pose[0], " mm A=")) << pose[0];
  EXPECT_TRUE(contains(pose[0], " deg C=")) << pose[0];
  EXPECT_EQ(pose[0].substr(pose[0].size() - 4), " deg") << pose[0];
}

TEST(Simulate, StrictNamesEachMalformedLineAndFieldAndTheReaderStaysLenientWithout) {
  StreamFile const stream("malformed", kHeader + kTrunnionOrdering +
                                           "Section: 1 Operation\n"
                                           "Linear5D: 1 abc def\n"
                                           "SpindleSpeed: 1 1e400\n"
                                           "Linear: 1 1 2 3 100 3 4\n"
                                           "AxisValues: 1 5 1 2 x3 4 5\n"
                                           "Command: 1 1.5\n"
                                           "Warning: 1 19 \"not closed\n"
                                           "Section: 1 Opration\n"
                                           "Spin: 1 2\n"
                                           "Linear: 2 1 2 3 100 3\n"
                                           "SectionEnd: 1\n"
                                           "Rapid: 1 1 2");
  std::string const machine = quoted(example("machines/trunnion_5axis.json"));
  ToolRun const lenient = run("simulate " + machine + " " + quoted(stream.path()));
  EXPECT_EQ(lenient.status, 0) << lenient.err;
  EXPECT_EQ(lenient.err, "");
  EXPECT_FALSE(contains(lenient.out, "\nmalformed lines:")) << lenient.out;

  ToolRun const strict = run("simulate " + machine + " " + quoted(stream.path()) + " --strict");
  EXPECT_EQ(strict.status, 1);
  std::string const at = "mtkit simulate: " + stream.path() + ":";
  EXPECT_EQ(strict.err,
            at + "4: Linear5D: x: 'abc' is not a number; y: 'def' is not a number; z, i, j, k, feed, flags: missing\n" +
                at + "5: SpindleSpeed: speed: '1e400' is beyond the range of a double\n" + at +
                "6: Linear: unexpected '4' after the last field\n" + at + "7: AxisValues: Z: 'x3' is not a number\n" +
                at + "8: Command: command: '1.5' is not an integer\n" + at +
                "9: Warning: message: the string has no closing quote\n" + at +
                "10: Section: section type: 'Opration' is not Operation, BeforeOperation, AfterOperation or NoTool, "
                "so no section opens\n" +
                at + "11: Spin: unknown record; it is skipped\n" + at +
                "12: Linear: version 2 is not read; the record is skipped\n" + at +
                "14: Rapid: z, flags: missing; the line has no line feed: the file ends in the middle of it, and it "
                "is not read\n" +
                "mtkit simulate: --strict: 10 malformed lines\n");
  EXPECT_TRUE(contains(strict.out, "\nmalformed lines: 10\n")) << strict.out;
}

TEST(Simulate, StrictFailsOnAnErrorIssueAndASolveFailureButNotOnAWarning) {
  std::string const machine = quoted(example("machines/trunnion_5axis.json"));
  StreamFile const warning("strict_warning", kHeader + kTrunnionOrdering + "Warning: 1 19 \"w\"\n");
  ToolRun r = run("simulate " + machine + " " + quoted(warning.path()) + " --strict");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "");

  StreamFile const error("strict_error", kHeader + kTrunnionOrdering + "Error: 1 42 \"e\"\n");
  r = run("simulate " + machine + " " + quoted(error.path()) + " --strict");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit simulate: --strict: 1 error issue\n");
  r = run("simulate " + machine + " " + quoted(error.path()));
  EXPECT_EQ(r.status, 0) << r.err;

  // A tool tip straight down the tool axis at a point the trunnion cannot
  // reach with its tool along +Z: 10 m away in X.
  StreamFile const far("strict_far", kHeader + kTrunnionOrdering +
                                         "Section: 1 NoTool\n"
                                         "AxisValues: 1 5 nan nan nan 0 0\n"
                                         "Rapid: 1 10000 0 0 1\n"
                                         "SectionEnd: 1\n");
  r = run("simulate " + machine + " " + quoted(far.path()) + " --strict --solver-only");
  EXPECT_EQ(r.status, 1);
  // X = 10000 on a travel of -325..325 (the table moves the other way, -X,
  // so X is the tip's X), at the motion's line 5.
  EXPECT_TRUE(contains(r.out, "\nover-travel:    1 of 1 pose\n"
                              "  X: 1 pose at 10000 mm, outside -325..325 mm; first at line 5\n"))
      << r.out;
  EXPECT_TRUE(contains(r.out, "\n  code 100 error, 1 time: out of travel, by axis above\n")) << r.out;
  EXPECT_EQ(r.err, "mtkit simulate: --strict: 1 pose out of travel\n");

  // A tip of NaN is written as the writer writes it, so the line is well
  // formed, but no pose reaches it: the solver's issue 8, at the motion's
  // line, and its unsolved NaN is no pose out of travel.
  StreamFile const unsolvable("strict_unsolvable", kHeader + kTrunnionOrdering +
                                                       "Section: 1 NoTool\n"
                                                       "AxisValues: 1 5 nan nan nan 0 0\n"
                                                       "Rapid: 1 nan 0 0 1\n"
                                                       "SectionEnd: 1\n");
  r = run("simulate " + machine + " " + quoted(unsolvable.path()) + " --strict --solver-only");
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(contains(r.out, "\n  code 8 error at line 5: Post processing failed to solve. This is probably because "
                              "the linear axes are not independent.\nsolve failures: 1\nmalformed lines: 0\n"))
      << r.out;
  EXPECT_TRUE(contains(r.out, "\nover-travel:    none (")) << r.out;
  EXPECT_EQ(r.err, "mtkit simulate: --strict: 1 solve failure\n");
}

TEST(Simulate, StrictWithFollowChecksTheLinesOnceTheFileIsWhole) {
  // A whole file, followed with no idle time: the reader waits one second at
  // its end and finds it unchanged; then the lines are checked.
  StreamFile const stream("strict_follow", kHeader + kTrunnionOrdering + "SpindleSpeed: 1 fast\n");
  ToolRun const r = run("simulate " + quoted(example("machines/trunnion_5axis.json")) + " " + quoted(stream.path()) +
                        " --strict --follow --idle 0");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit simulate: " + stream.path() + ":3: SpindleSpeed: speed: 'fast' is not a number\n" +
                       "mtkit simulate: --strict: 1 malformed line\n");
  EXPECT_TRUE(contains(r.out, "\nmalformed lines: 1\n")) << r.out;
}
