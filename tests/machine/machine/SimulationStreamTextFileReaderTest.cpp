#include "machine/machine/SimulationStreamTextFileReader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <clocale>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "machine/machine/MockSimulationStream.h"
#include "machine/machine/TextFileSimulationStream.h"
#include "support/AssertRecorder.h"
#include "support/TextFileSupport.h"

using namespace machine;
using mtkit_test::TempFile;
using Orvo::Point3D;
using Orvo::Vector3D;
using Method = MockSimulationStream::Method;

namespace {

std::string const kHeader = "TextFileSimulationStream: 1 0\n";

class FailableMock final : public MockSimulationStream {
public:
  void fail() { setIsOk(false); }
};

/// Reads `bytes` as a file into a fresh mock; `ok` is the reader's verdict.
std::shared_ptr<MockSimulationStream> importText(std::string const& name, std::string const& bytes, bool& ok) {
  TempFile const file(name);
  file.write(bytes);
  auto mock = std::make_shared<MockSimulationStream>();
  SimulationStreamTextFileReader reader(mock);
  reader.import(file.path());
  ok = reader.isOk();
  return mock;
}

std::shared_ptr<MockSimulationStream> importText(std::string const& name, std::string const& bytes) {
  bool ok = false;
  auto mock = importText(name, bytes, ok);
  EXPECT_TRUE(ok);
  return mock;
}

/// The methods recorded after the implied or read API version.
std::vector<Method> methodsOf(MockSimulationStream const& mock) {
  std::vector<Method> methods;
  for (int i = 0; i < mock.numCalls(); ++i) methods.push_back(mock.call(i).method);
  return methods;
}

/// The NC output read back from one NcOutput line with `field` as its string.
std::string ncOutputOf(std::string const& name, std::string const& field) {
  auto const mock = importText(name, kHeader + "NcOutput: 1 " + field + "\n");
  if (mock->countOf("doOnNcOutput") != 1) return "<no NcOutput>";
  return mock->ncOutput(0);
}

class LocaleGuard {
public:
  LocaleGuard() : m_saved(std::setlocale(LC_ALL, nullptr)) {}
  ~LocaleGuard() { std::setlocale(LC_ALL, m_saved.c_str()); }

private:
  std::string m_saved;
};

}  // namespace

// Edge cases.

TEST(SimulationStreamTextFileReader, TheStringOfTheBytes7_34_92_200IsWrittenWithTheEscapesBetweenTwoDoubleQuotesAndReadsBackTheSame) {
  std::string const bytes = {'\x07', '"', '\\', static_cast<char>(200)};
  TempFile const file("reader_escapes_round_trip");
  {
    TextFileSimulationStream stream(file.path());
    stream.onNcOutput(bytes);
  }
  EXPECT_EQ(file.read(), kHeader + "ApiVersion: 1 0\nNcOutput: 1 \"\\a\\\"\\\\\\310\"\n");
  auto mock = std::make_shared<MockSimulationStream>();
  SimulationStreamTextFileReader reader(mock);
  reader.import(file.path());
  EXPECT_TRUE(reader.isOk());
  ASSERT_EQ(mock->countOf("doOnNcOutput"), 1);
  EXPECT_EQ(mock->ncOutput(0), bytes);
}

TEST(SimulationStreamTextFileReader, BackslashEReadsAsByte27BackslashQAsBackslashAndQAndBackslash7xAsByte7AndX) {
  EXPECT_EQ(ncOutputOf("reader_escape_e", "\"\\e\""), std::string(1, '\x1b'));
  EXPECT_EQ(ncOutputOf("reader_escape_q", "\"\\q\""), std::string("\\q"));
  EXPECT_EQ(ncOutputOf("reader_escape_7x", "\"\\7x\""), std::string("\x07x"));
}

TEST(SimulationStreamTextFileReader, SectionOneWithNoWordReadFromAFileOpensAnOperationSection) {
  auto const mock = importText("reader_section_no_word", kHeader + "Section: 1\n");
  ASSERT_EQ(mock->countOf("doOnSection"), 1);
  EXPECT_EQ(mock->section(0), SimulationStream::SectionType::Operation);
}

TEST(SimulationStreamTextFileReader, AnAxisOrderingRecordWithVersionDigit1Count2AndTokensXAndYGivesTwoAxesWithEmptyPartIds) {
  auto const mock = importText("reader_ordering_v1", kHeader + "AxisOrdering: 1 2 X Y\n");
  ASSERT_EQ(mock->countOf("doOnAxisOrdering"), 1);
  Orvo::AxisOrdering const ordering = mock->axisOrdering(0);
  ASSERT_EQ(ordering.size(), 2);
  EXPECT_EQ(ordering.axisName(0).name(), "X");
  EXPECT_EQ(ordering.axisName(1).name(), "Y");
  EXPECT_EQ(ordering.machinePartId(0).id(), "");
  EXPECT_EQ(ordering.machinePartId(1).id(), "");
}

TEST(SimulationStreamTextFileReader, AnAxisOrderingRecordWithVersionDigit3IsSkippedAndAFollowingAxisValuesThenFailsTheReader) {
  bool ok = true;
  auto const mock = importText("reader_ordering_v3",
                               kHeader + "AxisOrdering: 3 2 \"X\" \"x\" \"Y\" \"y\"\nAxisValues: 1 2 1 2\nSectionEnd: 1\n", ok);
  EXPECT_FALSE(ok);
  EXPECT_EQ(mock->countOf("doOnAxisOrdering"), 0);
  EXPECT_EQ(mock->countOf("doOnAxisValues"), 0);
  // import ended at the failing record.
  EXPECT_EQ(mock->countOf("doOnSectionEnd"), 0);
}

TEST(SimulationStreamTextFileReader, ALinearLineWithVersionDigit2IsSkippedAndTheImportGoesOn) {
  auto const mock =
      importText("reader_linear_v2", kHeader + "Linear: 2 1 2 3 100 3\nLinear: 1 4 5 6 200 3\nSectionEnd: 1\n");
  ASSERT_EQ(mock->countOf("doOnLinear"), 1);
  EXPECT_EQ(mock->linear(0).target, Point3D(4, 5, 6));
  EXPECT_EQ(mock->linear(0).feed, 200.0);
  EXPECT_EQ(mock->countOf("doOnSectionEnd"), 1);
}

TEST(SimulationStreamTextFileReader, AWarningLineWithCode8ReachesOnIssue8WhichThenCountsAsAnError) {
  auto const mock = importText("reader_warning_8", kHeader + "Warning: 1 8 \"no solution\"\n");
  ASSERT_EQ(mock->countOf("doOnIssue"), 1);
  EXPECT_EQ(mock->issue(0).code, SimulationStream::IssueCode::SOLVE_FAILED);
  EXPECT_EQ(mock->issue(0).message, "no solution");
  EXPECT_TRUE(SimulationStream::severityOfIssue(mock->issue(0).code).isError());
}

TEST(SimulationStreamTextFileReader, AFileThatEndsInTheMiddleOfALineLosesThatLine) {
  auto const mock = importText("reader_partial_line", kHeader + "MachineId: 1 4\nMachineId: 1 5");
  ASSERT_EQ(mock->countOf("doOnMachineId"), 1);
  EXPECT_EQ(mock->machineId(0), 4);
}

TEST(SimulationStreamTextFileReader, ATargetStreamThatTurnedNotOkDoesNotStopTheReader) {
  TempFile const file("reader_target_not_ok");
  file.write(kHeader + "MachineId: 1 4\nSectionEnd: 1\nMachineId: 1 5\nAxisOrdering: 1 1 X\n");
  auto mock = std::make_shared<FailableMock>();
  mock->onMachineId(1);
  mock->fail();
  int const before = mock->numCalls();
  SimulationStreamTextFileReader reader(mock);
  reader.import(file.path());
  EXPECT_TRUE(reader.isOk());
  EXPECT_EQ(mock->numCalls(), before);
  // It read to the end: the last line's ordering was offered and dropped.
  EXPECT_EQ(reader.lineNumber(), 5);
}

// Records.

TEST(SimulationStreamTextFileReader, EveryRecordTheWriterWritesReadsBackAsItsEvent) {
  TempFile const file("reader_every_record");
  MotionSettings const settings(Orvo::NCStream::MOVEMENT_CUTTING, NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                                NcCodeRotaryAxisTraverseMode::SHORTEST);
  Orvo::Helix const helix(Point3D(0, 0, 0), Point3D(10, 0, 0), Point3D(0, 10, -1), Vector3D(0, 0, 1));
  auto const frame = *Orvo::Frame::make(Point3D(1.1, 2.2, 3.3), Vector3D(0, 1, 0), Vector3D(0, 0, 1));
  Orvo::AxisOrdering ordering;
  ordering.append(Orvo::AxisInfo("linear x", "X"));
  ordering.append(Orvo::AxisInfo("table c", "C"));
  Orvo::AxisValues const values(std::vector<Orvo::AxisValue>{0.1, -1.0 / 3.0});
  {
    TextFileSimulationStream stream(file.path());
    stream.onApiVersion(1, 0);
    stream.onAxisOrdering(ordering);
    stream.onAxisValues(values);
    stream.onNcOutput(std::string("N10 G1"));
    stream.onNcProgramId(7);
    stream.onOperationId(-12);
    stream.onMachineId(3);
    stream.onCommand(SimulationStreamCommand(Orvo::NCStream::COMMAND_COOLANT_ON));
    stream.onPatternOpen(4);
    stream.onPatternClose(5);
    stream.onPatternChildInstance(6);
    stream.onSection(SimulationStream::SectionType::AfterOperation);
    stream.onSectionEnd();
    stream.onWorkOffset(54);
    stream.onIssue(SimulationStream::IssueCode::POST_WARNING, std::string("careful"));
    stream.onNCContext(Orvo::NCContext());
    stream.onNCTool(Orvo::NCTool());
    stream.onSimGroup(std::string("g"));
    stream.onSimGroupEnd(std::string("g"));
    stream.onTaggedFrame(Orvo::TaggedFrame("ToolReference", "Table", frame));
    stream.onLinear(Point3D(0.1, 0.2, 0.3), 1234.5, settings);
    stream.onRapid(Point3D(1e21, -0.0, 5e-324), settings);
    stream.onHelical(helix, Point3D(0, 10, -1), 300.0, settings);
    stream.onLinear5D(Point3D(1, 2, 3), Vector3D(0, 0.6, 0.8), 500.25, settings);
    stream.onRapid5D(Point3D(-1, -2, -3), Vector3D(0.6, 0, 0.8), settings);
    stream.onSpindleSpeed(12000.5);
  }
  auto mock = std::make_shared<MockSimulationStream>();
  SimulationStreamTextFileReader reader(mock);
  mtkit_test::AssertRecorder recorder;
  reader.import(file.path());
  EXPECT_TRUE(recorder.takeTexts().empty());
  ASSERT_TRUE(reader.isOk());
  EXPECT_EQ(methodsOf(*mock),
            (std::vector<Method>{Method::DoOnApiVersion, Method::DoOnAxisOrdering, Method::DoOnAxisValues,
                                 Method::DoOnNcOutput, Method::DoOnNcProgramId, Method::DoOnOperationId,
                                 Method::DoOnMachineId, Method::DoOnCommand, Method::DoOnPatternOpen,
                                 Method::DoOnPatternClose, Method::DoOnPatternChildInstance, Method::DoOnSection,
                                 Method::DoOnSectionEnd, Method::DoOnWorkOffset, Method::DoOnIssue,
                                 Method::DoOnSimGroup, Method::DoOnSimGroupEnd, Method::DoOnTaggedFrame,
                                 Method::DoOnLinear, Method::DoOnRapid, Method::DoOnHelical, Method::DoOnLinear5D,
                                 Method::DoOnRapid5D, Method::DoOnSpindleSpeed}));
  EXPECT_EQ(mock->apiVersion(0).major, 1);
  EXPECT_EQ(mock->apiVersion(0).minor, 0);
  EXPECT_EQ(mock->axisOrdering(0), ordering);
  EXPECT_EQ(mock->axisValues(0), values);
  EXPECT_EQ(mock->ncOutput(0), "N10 G1");
  EXPECT_EQ(mock->ncProgramId(0), 7);
  EXPECT_EQ(mock->operationId(0), -12);
  EXPECT_EQ(mock->machineId(0), 3);
  EXPECT_EQ(mock->command(0), SimulationStreamCommand(Orvo::NCStream::COMMAND_COOLANT_ON));
  EXPECT_EQ(mock->patternOpen(0), 4);
  EXPECT_EQ(mock->patternClose(0), 5);
  EXPECT_EQ(mock->patternChildInstance(0), 6);
  EXPECT_EQ(mock->section(0), SimulationStream::SectionType::AfterOperation);
  EXPECT_EQ(mock->workOffset(0), 54);
  EXPECT_EQ(mock->issue(0).code, SimulationStream::IssueCode::POST_WARNING);
  EXPECT_EQ(mock->issue(0).message, "careful");
  EXPECT_EQ(mock->onSimGroup(0), "g");
  EXPECT_EQ(mock->onSimGroupEnd(0), "g");
  EXPECT_EQ(mock->taggedFrame(0), Orvo::TaggedFrame("ToolReference", "Table", frame));
  EXPECT_EQ(mock->linear(0).target, Point3D(0.1, 0.2, 0.3));
  EXPECT_EQ(mock->linear(0).feed, 1234.5);
  EXPECT_EQ(mock->linear(0).settings, settings);
  EXPECT_EQ(mock->rapid(0).target, Point3D(1e21, -0.0, 5e-324));
  EXPECT_TRUE(std::signbit(mock->rapid(0).target.y));
  EXPECT_EQ(mock->rapid(0).settings, settings);
  EXPECT_EQ(mock->helical(0).helix, helix);
  EXPECT_EQ(mock->helical(0).end, Point3D(0, 10, -1));
  EXPECT_EQ(mock->helical(0).feed, 300.0);
  EXPECT_EQ(mock->linear5D(0).toolAxis, Vector3D(0, 0.6, 0.8));
  EXPECT_EQ(mock->linear5D(0).feed, 500.25);
  EXPECT_EQ(mock->rapid5D(0).target, Point3D(-1, -2, -3));
  EXPECT_EQ(mock->rapid5D(0).settings, settings);
  EXPECT_EQ(mock->spindleSpeed(0), 12000.5);
}

TEST(SimulationStreamTextFileReader, APlaceholderWithNaNAndInfinitiesSurvivesTheRoundTrip) {
  TempFile const file("reader_nan");
  double const nan = std::numeric_limits<double>::quiet_NaN();
  double const inf = std::numeric_limits<double>::infinity();
  Orvo::AxisOrdering ordering;
  for (char const* name : {"X", "Y", "Z", "A", "C"}) ordering.append(Orvo::AxisInfo("", name));
  {
    TextFileSimulationStream stream(file.path());
    stream.onAxisOrdering(ordering);
    stream.onAxisValues(Orvo::AxisValues(std::vector<Orvo::AxisValue>{nan, -nan, inf, -inf, 12.5}));
  }
  EXPECT_NE(file.read().find("AxisValues: 1 5 nan -nan inf -inf 12.5\n"), std::string::npos) << file.read();
  auto mock = std::make_shared<MockSimulationStream>();
  SimulationStreamTextFileReader reader(mock);
  reader.import(file.path());
  ASSERT_TRUE(reader.isOk());
  Orvo::AxisValues const read = mock->axisValues(0);
  ASSERT_EQ(read.size(), 5);
  EXPECT_TRUE(std::isnan(read[0].value()));
  EXPECT_FALSE(std::signbit(read[0].value()));
  EXPECT_TRUE(std::isnan(read[1].value()));
  EXPECT_TRUE(std::signbit(read[1].value()));
  EXPECT_EQ(read[2].value(), inf);
  EXPECT_EQ(read[3].value(), -inf);
  EXPECT_EQ(read[4].value(), 12.5);
}

TEST(SimulationStreamTextFileReader, UnderAProcessLocaleWithADecimalCommaNumbersReadTheSame) {
  LocaleGuard const guard;
  if (!std::setlocale(LC_ALL, "de_DE.UTF-8") && !std::setlocale(LC_ALL, "de_DE.utf8"))
    GTEST_SKIP() << "the de_DE.UTF-8 locale is not installed (scripts/setup.sh generates it)";
  ASSERT_EQ(std::strtod("0,5", nullptr), 0.5) << "the locale in force does not use a decimal comma";
  // "+0.25" and "0x1p-2" go the strtod way, in the "C" locale all the same.
  auto const mock = importText("reader_locale", kHeader + "SpindleSpeed: 1 1234.5625\nSpindleSpeed: 1 +0.25\n"
                                                          "SpindleSpeed: 1 0x1p-2\nSpindleSpeed: 1 1,5\n");
  ASSERT_EQ(mock->countOf("doOnSpindleSpeed"), 4);
  EXPECT_EQ(mock->spindleSpeed(0), 1234.5625);
  EXPECT_EQ(mock->spindleSpeed(1), 0.25);
  EXPECT_EQ(mock->spindleSpeed(2), 0.25);
  EXPECT_EQ(mock->spindleSpeed(3), 1.0);
}

TEST(SimulationStreamTextFileReader, AMalformedNumberIsParsedAsFarAsItGoes) {
  auto const mock = importText("reader_malformed",
                               kHeader + "SpindleSpeed: 1 abc\nSpindleSpeed: 1 12.5mm\nSpindleSpeed: 1 1e999\n"
                                         "MachineId: 1 x7\nMachineId: 1 99999999999\nLinear: 1 1 2\n");
  ASSERT_EQ(mock->countOf("doOnSpindleSpeed"), 3);
  EXPECT_EQ(mock->spindleSpeed(0), 0.0);
  EXPECT_EQ(mock->spindleSpeed(1), 12.5);
  EXPECT_EQ(mock->spindleSpeed(2), std::numeric_limits<double>::infinity());
  EXPECT_EQ(mock->machineId(0), 0);
  EXPECT_EQ(mock->machineId(1), std::numeric_limits<int>::max());
  EXPECT_EQ(mock->linear(0).target, Point3D(1, 2, 0));
  EXPECT_EQ(mock->linear(0).feed, 0.0);
}

TEST(SimulationStreamTextFileReader, TheFlagsWordIsReadWholeWithItsHighBits) {
  auto const mock = importText("reader_flags", kHeader + "Rapid: 1 1 2 3 4294967295\nRapid: 1 1 2 3 1342177283\n");
  ASSERT_EQ(mock->countOf("doOnRapid"), 2);
  EXPECT_EQ(mock->rapid(0).settings.flags(), 0xFFFFFFFFu);
  EXPECT_EQ(mock->rapid(1).settings.flags(), 1342177283u);
  EXPECT_EQ(mock->rapid(1).settings.interpolationMode(), NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  EXPECT_EQ(mock->rapid(1).settings.rotaryTraverseMode(), NcCodeRotaryAxisTraverseMode::SHORTEST);
}

TEST(SimulationStreamTextFileReader, AnUnknownKeywordAnEmptyLineAndAnUnknownSectionWordAreSkipped) {
  auto const mock = importText("reader_unknown",
                               kHeader + "Bogus: 1 2 3\n\n   \nlinear: 1 1 2 3 4 0\nSection: 1 Later\nMachineId: 1 9\n");
  EXPECT_EQ(methodsOf(*mock), (std::vector<Method>{Method::DoOnApiVersion, Method::DoOnMachineId}));
}

TEST(SimulationStreamTextFileReader, ContextAndToolLinesSendNothing) {
  auto const mock = importText("reader_context_tool", kHeader + "NCContext: 1\nNCTool: 1\nNCTool: 1 7\n");
  EXPECT_EQ(mock->numCalls(), 0);
}

TEST(SimulationStreamTextFileReader, AnErrorKeywordWithTheWarningCodeStillReadsAsAWarning) {
  auto const mock = importText("reader_error_19", kHeader + "Error: 1 19 \"w\"\n");
  ASSERT_EQ(mock->countOf("doOnIssue"), 1);
  EXPECT_TRUE(SimulationStream::severityOfIssue(mock->issue(0).code).isWarning());
}

TEST(SimulationStreamTextFileReader, AnAxisValuesCountThatDoesNotMatchTheOrderingFailsTheReaderAndEndsTheImport) {
  bool ok = true;
  auto const mock =
      importText("reader_values_count", kHeader + "AxisOrdering: 1 2 X Y\nAxisValues: 1 3 1 2 3\nMachineId: 1 1\n", ok);
  EXPECT_FALSE(ok);
  EXPECT_EQ(mock->countOf("doOnAxisValues"), 0);
  EXPECT_EQ(mock->countOf("doOnMachineId"), 0);
}

TEST(SimulationStreamTextFileReader, AxisValuesWithVersion2OrCount0AreSkippedWithoutFailing) {
  auto const mock =
      importText("reader_values_skip", kHeader + "AxisValues: 2 3 1 2 3\nAxisValues: 1 0\nMachineId: 1 1\n");
  EXPECT_EQ(mock->countOf("doOnAxisValues"), 0);
  EXPECT_EQ(mock->countOf("doOnMachineId"), 1);
}

TEST(SimulationStreamTextFileReader, AnAxisOrderingWithCount0OrACountBeyondItsLineIsSkipped) {
  auto const mock = importText("reader_ordering_skip",
                               kHeader + "AxisOrdering: 2 0\nAxisOrdering: 2 2000000000 X\nAxisOrdering: 1 -1 X\n");
  EXPECT_EQ(mock->countOf("doOnAxisOrdering"), 0);
}

TEST(SimulationStreamTextFileReader, AMissingFileOrAWrongHeaderLeavesTheReaderNotOkWithNoEvent) {
  for (std::string const& bytes :
       {std::string(""), std::string("TextFileSimulationStream: 2 0\nMachineId: 1 1\n"),
        std::string("TextFileSimulationStream: 1 1\nMachineId: 1 1\n"),
        std::string("TextFileSimulationStream 1 0\nMachineId: 1 1\n"),
        std::string("MachineId: 1 1\nTextFileSimulationStream: 1 0\n")}) {
    bool ok = true;
    auto const mock = importText("reader_bad_header", bytes, ok);
    EXPECT_FALSE(ok) << bytes;
    EXPECT_EQ(mock->numCalls(), 0) << bytes;
  }
  auto mock = std::make_shared<MockSimulationStream>();
  SimulationStreamTextFileReader reader(mock);
  reader.import("/nonexistent-directory/stream.txt");
  EXPECT_FALSE(reader.isOk());
  EXPECT_EQ(mock->numCalls(), 0);
}

// Why a reader failed.

namespace {

struct Verdict {
  bool ok;
  SimulationStreamTextFileReader::Failure failure;
  std::string reason;
  long line;
};

Verdict verdictOf(std::string const& name, std::string const& bytes) {
  TempFile const file(name);
  file.write(bytes);
  SimulationStreamTextFileReader reader(std::make_shared<MockSimulationStream>());
  reader.import(file.path());
  return {reader.isOk(), reader.failure(), reader.failureReason(), reader.failureLine()};
}

}  // namespace

TEST(SimulationStreamTextFileReader, AReaderThatIsOkHasNoFailureNoReasonAndNoLine) {
  auto const verdict = verdictOf("reader_failure_none", kHeader + "MachineId: 1 1\n");
  EXPECT_TRUE(verdict.ok);
  EXPECT_EQ(verdict.failure, SimulationStreamTextFileReader::Failure::NONE);
  EXPECT_EQ(verdict.reason, "");
  EXPECT_EQ(verdict.line, 0);
}

TEST(SimulationStreamTextFileReader, AFileThatCannotBeOpenedFailsAsSuchOnLine0) {
  SimulationStreamTextFileReader reader(std::make_shared<MockSimulationStream>());
  reader.import("/nonexistent-directory/stream.txt");
  EXPECT_EQ(reader.failure(), SimulationStreamTextFileReader::Failure::CANNOT_OPEN);
  EXPECT_EQ(reader.failureReason(), "cannot open the file");
  EXPECT_EQ(reader.failureLine(), 0);
}

TEST(SimulationStreamTextFileReader, AFirstLineOfAnotherKeywordIsNotAStreamFile) {
  for (std::string const& bytes : {std::string(""), std::string("TextFileSimulationStream 1 0\n"),
                                   std::string("MachineId: 1 1\nTextFileSimulationStream: 1 0\n")}) {
    auto const verdict = verdictOf("reader_failure_keyword", bytes);
    EXPECT_FALSE(verdict.ok) << bytes;
    EXPECT_EQ(verdict.failure, SimulationStreamTextFileReader::Failure::NOT_A_STREAM_FILE) << bytes;
    EXPECT_EQ(verdict.reason, "its first line is not \"TextFileSimulationStream: 1 0\"") << bytes;
    EXPECT_EQ(verdict.line, 1) << bytes;
  }
}

TEST(SimulationStreamTextFileReader, AHeaderOfAnotherFormatNamesThatFormat) {
  auto const major = verdictOf("reader_failure_major", "TextFileSimulationStream: 2 0\nMachineId: 1 1\n");
  EXPECT_EQ(major.failure, SimulationStreamTextFileReader::Failure::UNSUPPORTED_VERSION);
  EXPECT_EQ(major.reason, "the file is in format 2.0, and only 1.0 is read");
  EXPECT_EQ(major.line, 1);
  auto const minor = verdictOf("reader_failure_minor", "TextFileSimulationStream: 1 1\n");
  EXPECT_EQ(minor.failure, SimulationStreamTextFileReader::Failure::UNSUPPORTED_VERSION);
  EXPECT_EQ(minor.reason, "the file is in format 1.1, and only 1.0 is read");
}

TEST(SimulationStreamTextFileReader, AxisValuesBeforeAnyOrderingFailOnTheirLine) {
  auto const verdict =
      verdictOf("reader_failure_no_ordering", kHeader + "MachineId: 1 1\nMachineId: 1 2\nAxisValues: 1 2 1 2\n");
  EXPECT_FALSE(verdict.ok);
  EXPECT_EQ(verdict.failure, SimulationStreamTextFileReader::Failure::AXIS_VALUES_WITHOUT_ORDERING);
  EXPECT_EQ(verdict.reason, "axis values come before any axis ordering");
  EXPECT_EQ(verdict.line, 4);
}

TEST(SimulationStreamTextFileReader, AxisValuesOfAnotherCountNameBothCountsAndTheirLine) {
  auto const verdict = verdictOf("reader_failure_count",
                                 kHeader + "AxisOrdering: 1 2 X Y\nAxisValues: 1 2 1 2\nAxisValues: 1 3 1 2 3\n"
                                           "AxisValues: 1 1 1\n");
  EXPECT_FALSE(verdict.ok);
  EXPECT_EQ(verdict.failure, SimulationStreamTextFileReader::Failure::AXIS_VALUES_COUNT);
  EXPECT_EQ(verdict.reason, "the number of axis values does not fit the axis ordering (2 axes): the record has 3");
  // The first failure ends the import, so the later count is never looked at.
  EXPECT_EQ(verdict.line, 4);
}

TEST(SimulationStreamTextFileReader, AHeaderWithANegativeMinorIsAccepted) {
  auto const mock = importText("reader_minor_negative", "TextFileSimulationStream: 1 -2\nMachineId: 1 1\n");
  EXPECT_EQ(mock->countOf("doOnMachineId"), 1);
}

TEST(SimulationStreamTextFileReader, BareTokensEndAtBlanksTabsAndCarriageReturnsButNotAtFormFeeds) {
  auto const mock = importText("reader_bare_tokens",
                               kHeader + "SimGroup: 1 \t name rest\nSimGroup: 1 \fname\nSimGroup: 1 a\rb\n"
                                         "SimGroup: 1\nSimGroup: 1 \"open \\\"quoted\\\" to the end\n");
  ASSERT_EQ(mock->countOf("doOnSimGroup"), 5);
  EXPECT_EQ(mock->onSimGroup(0), "name");
  EXPECT_EQ(mock->onSimGroup(1), "\fname");
  EXPECT_EQ(mock->onSimGroup(2), "a");
  EXPECT_EQ(mock->onSimGroup(3), "");
  EXPECT_EQ(mock->onSimGroup(4), "open \"quoted\" to the end");
}

TEST(SimulationStreamTextFileReader, OctalEscapesTakeUpToThreeDigitsAndABackslashAtTheEndOfTheLineEndsTheString) {
  EXPECT_EQ(ncOutputOf("reader_octal_3", "\"\\1011\""), std::string("A1"));
  EXPECT_EQ(ncOutputOf("reader_octal_2", "\"\\12x\""), std::string("\nx"));
  EXPECT_EQ(ncOutputOf("reader_octal_8", "\"\\8\""), std::string("\\8"));
  // The tag ends on the backslash, which then starts the base tag as a bare token.
  auto const mock = importText("reader_backslash_end", kHeader + "TaggedFrame: 1 \"tag\\");
  EXPECT_EQ(mock->countOf("doOnTaggedFrame"), 0);
  auto const framed = importText("reader_backslash_end_2", kHeader + "TaggedFrame: 1 \"tag\\\n");
  ASSERT_EQ(framed->countOf("doOnTaggedFrame"), 1);
  EXPECT_EQ(framed->taggedFrame(0).tag(), "tag");
  EXPECT_EQ(framed->taggedFrame(0).baseFrameTag(), "\\");
}

TEST(SimulationStreamTextFileReader, ATaggedFrameWhoseAxesMakeNoFrameReadsAsTheIdentity) {
  auto const mock = importText("reader_frame_identity", kHeader + "TaggedFrame: 1 \"a\" \"b\" 5 6 7 0 0 1 0 0 1\n");
  ASSERT_EQ(mock->countOf("doOnTaggedFrame"), 1);
  EXPECT_EQ(mock->taggedFrame(0).frame(), Orvo::Frame(Orvo::IdentityTag{}));
}

TEST(SimulationStreamTextFileReader, AHelicalWhoseEndIsNotTheHelixEndFailsATestRunAndIsStillSent) {
  mtkit_test::AssertRecorder recorder;
  auto const mock = importText("reader_helical_end",
                               kHeader + "Helical: 1 0 0 0 0 0 1 1 0 0 0 1 0 10 0 1.5707963267948966 5 5 0 100 3\n");
  EXPECT_EQ(recorder.takeTexts(),
            (std::vector<std::string>{"coincident(end, helix.getEnd().asPoint(), Orvo::LinearTolerance(0.01))"}));
  EXPECT_EQ(mock->countOf("doOnHelical"), 1);
  importText("reader_helical_end_ok",
             kHeader + "Helical: 1 0 0 0 0 0 1 1 0 0 0 1 0 10 0 1.5707963267948966 0 10 0 100 3\n");
  EXPECT_TRUE(recorder.takeTexts().empty());
}

TEST(SimulationStreamTextFileReader, CarriageReturnLineEndsReadLikeLineFeeds) {
  auto const mock = importText("reader_crlf", kHeader + "MachineId: 1 4\r\nSection: 1 NoTool\r\n");
  EXPECT_EQ(mock->machineId(0), 4);
  EXPECT_EQ(mock->section(0), SimulationStream::SectionType::NoTool);
}

TEST(SimulationStreamTextFileReader, ALineLongerThanTheReadBufferIsReadWhole) {
  std::string const text(200000, 'z');
  auto const mock = importText("reader_long_line", kHeader + "NcOutput: 1 \"" + text + "\"\nMachineId: 1 2\n");
  EXPECT_EQ(mock->ncOutput(0), text);
  EXPECT_EQ(mock->machineId(0), 2);
}

// Following a file that is still being written.

TEST(SimulationStreamTextFileReader, WhileTheCallbackSaysPostProcessingGoesOnTheReaderSleepsAndReadsWhatTheWriterAdds) {
  TempFile const file("reader_follow");
  file.write(kHeader + "MachineId: 1 1\nMachineId: 1 ");
  auto mock = std::make_shared<MockSimulationStream>();
  SimulationStreamTextFileReader reader(mock);
  std::vector<std::string> log;
  reader.setIsPostProcessingCompletedCallback([&]() {
    log.push_back("asked");
    if (log.size() == 1) {
      EXPECT_EQ(mock->countOf("doOnMachineId"), 1);
      return false;
    }
    // Done; what comes now is still read in the one more pass. Each later
    // line asks again, and the answer stays true.
    if (log.size() == 3) file.append("MachineId: 1 4\nMachineId: 1 5");
    return true;
  });
  // The writer finishes the partial line and adds one more while the reader
  // sleeps.
  reader.setSleepFunction([&](std::chrono::seconds duration) {
    log.push_back("slept " + std::to_string(duration.count()) + " s");
    file.append("2\nMachineId: 1 3\n");
  });
  reader.import(file.path());
  EXPECT_TRUE(reader.isOk());
  // One sleep of a second, for the one false answer; then one question at
  // the end, and one for the line without its line feed, which is lost.
  EXPECT_EQ(log, (std::vector<std::string>{"asked", "slept 1 s", "asked", "asked"}));
  ASSERT_EQ(mock->countOf("doOnMachineId"), 4);
  EXPECT_EQ(mock->machineId(1), 2);
  EXPECT_EQ(mock->machineId(2), 3);
  EXPECT_EQ(mock->machineId(3), 4);
}

TEST(SimulationStreamTextFileReader, TheReaderSleepsOnceForEachFalseAnswer) {
  TempFile const file("reader_follow_three");
  file.write(kHeader + "MachineId: 1 1\n");
  auto mock = std::make_shared<MockSimulationStream>();
  SimulationStreamTextFileReader reader(mock);
  int answers = 0;
  reader.setIsPostProcessingCompletedCallback([&]() { return ++answers > 3; });
  std::vector<long> sleeps;
  reader.setSleepFunction([&](std::chrono::seconds duration) { sleeps.push_back(duration.count()); });
  reader.import(file.path());
  EXPECT_EQ(answers, 4);
  EXPECT_EQ(sleeps, (std::vector<long>{1, 1, 1}));
  EXPECT_EQ(mock->countOf("doOnMachineId"), 1);
}

TEST(SimulationStreamTextFileReader, WithoutACallbackTheReaderNeverSleeps) {
  TempFile const file("reader_no_callback");
  std::string bytes = kHeader;
  for (int i = 0; i < 100; ++i) bytes += "MachineId: 1 " + std::to_string(i) + "\n";
  file.write(bytes + "MachineId: 1 ");
  auto mock = std::make_shared<MockSimulationStream>();
  SimulationStreamTextFileReader reader(mock);
  int sleeps = 0;
  reader.setSleepFunction([&](std::chrono::seconds) { ++sleeps; });
  reader.import(file.path());
  EXPECT_EQ(sleeps, 0);
  EXPECT_EQ(mock->countOf("doOnMachineId"), 100);
}

TEST(SimulationStreamTextFileReader, ByDefaultAndAfterAnEmptySleepFunctionTheReaderReallySleepsASecond) {
  // The one test that sleeps: the default must be a real one-second sleep.
  // It checks a lower bound only, which a loaded machine can never break.
  TempFile const file("reader_real_sleep");
  file.write(kHeader + "MachineId: 1 1\n");
  SimulationStreamTextFileReader reader(std::make_shared<MockSimulationStream>());
  int replaced = 0;
  reader.setSleepFunction([&](std::chrono::seconds) { ++replaced; });
  reader.setSleepFunction({});
  int answers = 0;
  reader.setIsPostProcessingCompletedCallback([&]() { return ++answers > 1; });
  auto const start = std::chrono::steady_clock::now();
  reader.import(file.path());
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
  EXPECT_EQ(answers, 2);
  EXPECT_EQ(replaced, 0);
}
