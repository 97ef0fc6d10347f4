#include "machine/machine/TextFileSimulationStream.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <string>

#include "machine/machine/NcCodeTiltedWorkPlaneOff.h"
#include "support/AssertRecorder.h"
#include "support/TextFileSupport.h"

using namespace machine;
using mtkit_test::printfG17;
using mtkit_test::TempFile;
using Orvo::Point3D;
using Orvo::Vector3D;

namespace {

std::string const kHeader = "TextFileSimulationStream: 1 0\n";
std::string const kImpliedVersion = "ApiVersion: 1 0\n";

/// Keeps the C library's locale as it was when the test began.
class LocaleGuard {
public:
  LocaleGuard() : m_saved(std::setlocale(LC_ALL, nullptr)) {}
  ~LocaleGuard() { std::setlocale(LC_ALL, m_saved.c_str()); }

private:
  std::string m_saved;
};

/// One of every event the file carries, with numbers that need all 17 digits.
void writeEveryRecord(SimulationStream& stream) {
  stream.onApiVersion(1, 0);
  Orvo::AxisOrdering ordering;
  ordering.append(Orvo::AxisInfo("linear x", "X"));
  ordering.append(Orvo::AxisInfo("table\"c", "C"));
  stream.onAxisOrdering(ordering);
  stream.onAxisValues(Orvo::AxisValues(std::vector<Orvo::AxisValue>{0.1, -1.0 / 3.0}));
  stream.onNcOutput(std::string("N10 G1 X1.5\t(cut)"));
  stream.onNcProgramId(7);
  stream.onOperationId(-12);
  stream.onMachineId(3);
  stream.onCommand(SimulationStreamCommand(Orvo::NCStream::COMMAND_COOLANT_ON));
  stream.onPatternOpen(4);
  stream.onPatternClose(5);
  stream.onPatternChildInstance(6);
  stream.onSection(SimulationStream::SectionType::BeforeOperation);
  stream.onSectionEnd();
  stream.onWorkOffset(54);
  stream.onIssue(SimulationStream::IssueCode::POST_WARNING, std::string("watch out"));
  stream.onIssue(SimulationStream::IssueCode::SOLVE_FAILED, std::string("no solution"));
  stream.onNCContext(Orvo::NCContext(1, 0.01, "program"));
  stream.onNCTool(Orvo::NCTool());
  stream.onSimGroup(std::string("group 1"));
  stream.onSimGroupEnd(std::string("group 1"));
  auto const frame = Orvo::Frame::make(Point3D(1.1, 2.2, 3.3), Vector3D(0, 1, 0), Vector3D(0, 0, 1));
  stream.onTaggedFrame(Orvo::TaggedFrame("ToolReference", "Table", *frame));
  MotionSettings const settings(Orvo::NCStream::MOVEMENT_CUTTING, NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                                NcCodeRotaryAxisTraverseMode::SHORTEST);
  stream.onLinear(Point3D(0.1, 0.2, 0.3), 1234.5, settings);
  stream.onRapid(Point3D(1e21, -0.0, 5e-324), MotionSettings());
  Orvo::Helix const helix(Point3D(0, 0, 0), Point3D(10, 0, 0), Point3D(0, 10, -1), Vector3D(0, 0, 1));
  stream.onHelical(helix, Point3D(0, 10, -1), 300.0, settings);
  stream.onLinear5D(Point3D(1, 2, 3), Vector3D(0, 0.6, 0.8), 500.25, settings);
  stream.onRapid5D(Point3D(-1, -2, -3), Vector3D(0.6, 0, 0.8), settings);
  stream.onSpindleSpeed(12000.5);
}

/// The bytes writeEveryRecord must produce, built with printf's "%.17g".
std::string expectedEveryRecord() {
  MotionSettings const settings(Orvo::NCStream::MOVEMENT_CUTTING, NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                                NcCodeRotaryAxisTraverseMode::SHORTEST);
  std::string const flags = std::to_string(settings.flags());
  auto g = printfG17;
  Orvo::Helix const helix(Point3D(0, 0, 0), Point3D(10, 0, 0), Point3D(0, 10, -1), Vector3D(0, 0, 1));
  std::string helixNumbers;
  for (double v : helix.storedValues()) helixNumbers += (helixNumbers.empty() ? "" : " ") + g(v);
  auto const frame = Orvo::Frame::make(Point3D(1.1, 2.2, 3.3), Vector3D(0, 1, 0), Vector3D(0, 0, 1));
  Point3D const o = frame->origin();
  Vector3D const x = frame->xAxis();
  Vector3D const z = frame->zAxis();
  return kHeader + "ApiVersion: 1 0\n" +
         "AxisOrdering: 2 2 \"X\" \"linear x\" \"C\" \"table\\\"c\"\n" +
         "AxisValues: 1 2 " + g(0.1) + " " + g(-1.0 / 3.0) + "\n" +
         "NcOutput: 1 \"N10 G1 X1.5\\t(cut)\"\n" +
         "NcProgramId: 1 7\n" +
         "OperationId: 1 -12\n" +
         "MachineId: 1 3\n" +
         "Command: 1 9\n" +
         "PatternOpen: 1 4\n" +
         "PatternClose: 1 5\n" +
         "PatternChildInstance: 1 6\n" +
         "Section: 1 BeforeOperation\n" +
         "SectionEnd: 1\n" +
         "WorkOffset: 1 54\n" +
         "Warning: 1 19 \"watch out\"\n" +
         "Error: 1 8 \"no solution\"\n" +
         "NCContext: 1\n" +
         "NCTool: 1\n" +
         "SimGroup: 1 \"group 1\"\n" +
         "SimGroupEnd: 1 \"group 1\"\n" +
         "TaggedFrame: 1 \"ToolReference\" \"Table\" " + g(o.x) + " " + g(o.y) + " " + g(o.z) + " " + g(x.x) + " " +
         g(x.y) + " " + g(x.z) + " " + g(z.x) + " " + g(z.y) + " " + g(z.z) + "\n" +
         "Linear: 1 " + g(0.1) + " " + g(0.2) + " " + g(0.3) + " " + g(1234.5) + " " + flags + "\n" +
         "Rapid: 1 " + g(1e21) + " " + g(-0.0) + " " + g(5e-324) + " 0\n" +
         "Helical: 1 " + helixNumbers + " " + g(0) + " " + g(10) + " " + g(-1) + " " + g(300) + " " + flags + "\n" +
         "Linear5D: 1 1 2 3 0 " + g(0.6) + " " + g(0.8) + " " + g(500.25) + " " + flags + "\n" +
         "Rapid5D: 1 -1 -2 -3 " + g(0.6) + " 0 " + g(0.8) + " " + flags + "\n" +
         "SpindleSpeed: 1 " + g(12000.5) + "\n";
}

std::string writeEveryRecordToFile(std::string const& name) {
  TempFile const file(name);
  {
    TextFileSimulationStream stream(file.path());
    writeEveryRecord(stream);
    EXPECT_TRUE(stream.isOk());
  }
  return file.read();
}

}  // namespace

TEST(TextFileSimulationStream, AFreshFileHoldsExactlyTheHeaderLine) {
  TempFile const file("text_header");
  {
    TextFileSimulationStream stream(file.path());
    EXPECT_TRUE(stream.isOk());
  }
  EXPECT_EQ(file.read(), "TextFileSimulationStream: 1 0\n");
}

TEST(TextFileSimulationStream, EveryRecordIsWrittenWithItsExactLinePattern) {
  std::string const bytes = writeEveryRecordToFile("text_every_record");
  EXPECT_EQ(bytes, expectedEveryRecord());
}

TEST(TextFileSimulationStream, TheFirstEventWritesTheImpliedApiVersionLine) {
  TempFile const file("text_implied_version");
  {
    TextFileSimulationStream stream(file.path());
    stream.onMachineId(2);
  }
  EXPECT_EQ(file.read(), kHeader + kImpliedVersion + "MachineId: 1 2\n");
}

TEST(TextFileSimulationStream, AnyApiVersionIsWrittenAndTheStreamStaysOk) {
  TempFile const file("text_any_version");
  {
    TextFileSimulationStream stream(file.path());
    stream.onApiVersion(7, -3);
    stream.onSectionEnd();
    EXPECT_TRUE(stream.isOk());
  }
  EXPECT_EQ(file.read(), kHeader + "ApiVersion: 7 -3\nSectionEnd: 1\n");
}

TEST(TextFileSimulationStream, EachSectionTypeIsItsWordAndAnOtherValueLeavesTheLineWithoutWordOrLineFeed) {
  TempFile const file("text_sections");
  {
    TextFileSimulationStream stream(file.path());
    stream.onSection(SimulationStream::SectionType::Operation);
    stream.onSection(SimulationStream::SectionType::AfterOperation);
    stream.onSection(SimulationStream::SectionType::NoTool);
    stream.onSection(SimulationStream::SectionType::INVALID);
    stream.onSectionEnd();
  }
  EXPECT_EQ(file.read(), kHeader + kImpliedVersion +
                             "Section: 1 Operation\nSection: 1 AfterOperation\nSection: 1 NoTool\n"
                             "Section: 1SectionEnd: 1\n");
}

TEST(TextFileSimulationStream, EveryByteIsWrittenByItsEscapeRule) {
  std::string all;
  for (int b = 0; b < 256; ++b) all.push_back(static_cast<char>(b));
  TempFile const file("text_escape_all");
  {
    TextFileSimulationStream stream(file.path());
    stream.onNcOutput(all);
  }
  std::string expected = "\"";
  for (int b = 0; b < 256; ++b) {
    switch (b) {
      case 7: expected += "\\a"; break;
      case 8: expected += "\\b"; break;
      case 9: expected += "\\t"; break;
      case 10: expected += "\\n"; break;
      case 11: expected += "\\v"; break;
      case 12: expected += "\\f"; break;
      case 13: expected += "\\r"; break;
      case '"': expected += "\\\""; break;
      case '\\': expected += "\\\\"; break;
      default:
        if (b >= 32 && b <= 126) {
          expected.push_back(static_cast<char>(b));
        } else {
          char octal[8];
          std::snprintf(octal, sizeof octal, "\\%03o", static_cast<unsigned>(b));
          expected += octal;
        }
    }
  }
  expected += "\"";
  EXPECT_EQ(file.read(), kHeader + kImpliedVersion + "NcOutput: 1 " + expected + "\n");
  // Byte 27 in particular is octal: "\e" is only ever read.
  EXPECT_NE(file.read().find("\\033"), std::string::npos);
}

TEST(TextFileSimulationStream, DoublesAreWrittenAsPrintfG17WritesThemInTheCLocale) {
  std::mt19937_64 random(20261122);
  std::uniform_int_distribution<std::uint64_t> bits;
  std::vector<double> values = {0.0,
                                -0.0,
                                1.0,
                                0.1,
                                1e16,
                                1e17,
                                123456789012345678.0,
                                1e-5,
                                1e-4,
                                std::numeric_limits<double>::max(),
                                std::numeric_limits<double>::min(),
                                std::numeric_limits<double>::denorm_min(),
                                std::numeric_limits<double>::quiet_NaN(),
                                -std::numeric_limits<double>::quiet_NaN(),
                                std::numeric_limits<double>::infinity(),
                                -std::numeric_limits<double>::infinity()};
  for (int i = 0; i < 2000; ++i) {
    std::uint64_t const b = bits(random);
    double d;
    std::memcpy(&d, &b, sizeof d);
    values.push_back(d);
    values.push_back(std::uniform_real_distribution<double>(-1e4, 1e4)(random));
  }
  TempFile const file("text_doubles");
  std::string expected = kHeader + kImpliedVersion;
  {
    TextFileSimulationStream stream(file.path());
    for (double v : values) {
      stream.onSpindleSpeed(v);
      expected += "SpindleSpeed: 1 " + printfG17(v) + "\n";
    }
  }
  EXPECT_EQ(file.read(), expected);
}

TEST(TextFileSimulationStream, UnderAProcessLocaleWithADecimalCommaTheBytesAreTheSame) {
  std::string const inC = writeEveryRecordToFile("text_locale_c");
  LocaleGuard const guard;
  if (!std::setlocale(LC_ALL, "de_DE.UTF-8") && !std::setlocale(LC_ALL, "de_DE.utf8"))
    GTEST_SKIP() << "the de_DE.UTF-8 locale is not installed (scripts/setup.sh generates it)";
  ASSERT_EQ(printfG17(0.5), "0,5") << "the locale in force does not use a decimal comma";
  std::string const inGerman = writeEveryRecordToFile("text_locale_de");
  EXPECT_EQ(inGerman, inC);
  EXPECT_EQ(inGerman.find(','), std::string::npos);
}

TEST(TextFileSimulationStream, OnTCPCoordModeOnAWriterLeavesTheFileUnchanged) {
  TempFile const file("text_tcp");
  {
    TextFileSimulationStream stream(file.path());
    stream.onSectionEnd();
    stream.onTCPCoordMode(true);
    stream.onTCPCoordMode(false);
    EXPECT_TRUE(stream.isOk());
  }
  EXPECT_EQ(file.read(), kHeader + kImpliedVersion + "SectionEnd: 1\n");
}

TEST(TextFileSimulationStream, TiltedWorkPlaneAndToolpathEntityIndexWriteNothing) {
  TempFile const file("text_twp");
  {
    TextFileSimulationStream stream(file.path());
    stream.onSectionEnd();
    stream.onTiltedWorkPlane(NcCodeTiltedWorkPlaneOff());
    stream.onToolpathEntityIndex(Orvo::ToolpathEntityIndex(5));
  }
  EXPECT_EQ(file.read(), kHeader + kImpliedVersion + "SectionEnd: 1\n");
}

TEST(TextFileSimulationStream, NcCodeMovementAndRetractWriteNothingAndFailATestRunWithTheirTexts) {
  mtkit_test::AssertRecorder recorder;
  TempFile const file("text_nc_code");
  {
    TextFileSimulationStream stream(file.path());
    stream.onNcCodeMovement(NcCodeMovement(NcCodeCoordProgrammingMode::CARTESIAN, NcCodeMotionProgrammingMode::RAPID,
                                           NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                                           NcCodeRotaryAxisTraverseMode::DIRECT));
    stream.onRetractAlongToolAxisToLimit();
    EXPECT_TRUE(stream.isOk());
  }
  EXPECT_EQ(recorder.takeTexts(),
            (std::vector<std::string>{
                "Sending `NcCodeMovement`s through a sim stream text file is not implemented.",
                "Sending `RetractAlongToolAxisToLimit`s through a sim stream text file is not implemented."}));
  EXPECT_EQ(file.read(), kHeader + kImpliedVersion);
}

TEST(TextFileSimulationStream, AFileThatCannotBeOpenedLeavesTheStreamNotOkFromTheStart) {
  TextFileSimulationStream stream(std::filesystem::path("/nonexistent-directory/for/sure/out.txt"));
  EXPECT_FALSE(stream.isOk());
  stream.onSectionEnd();
  EXPECT_FALSE(stream.isOk());
}

TEST(TextFileSimulationStream, AWriteErrorMakesTheStreamNotOkAtThatEvent) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full to fail the writes";
  TextFileSimulationStream stream(std::filesystem::path("/dev/full"));
  // The header sits in the 32768-byte buffer: nothing has failed yet.
  EXPECT_TRUE(stream.isOk());
  std::string const text(1000, 'x');
  int events = 0;
  while (stream.isOk() && events < 100) {
    stream.onNcOutput(text);
    ++events;
  }
  EXPECT_FALSE(stream.isOk());
  // It failed when the buffer first spilled, after about 32 of these lines.
  EXPECT_GE(events, 30);
  EXPECT_LE(events, 34);
}

TEST(TextFileSimulationStream, TheFileIsWrittenInSteps32768BytesLong) {
  TempFile const file("text_buffer");
  TextFileSimulationStream stream(file.path());
  std::string const text(100, 'y');
  std::uintmax_t size = 0;
  for (int i = 0; i < 1000 && size == 0; ++i) {
    stream.onNcOutput(text);
    size = std::filesystem::file_size(file.path());
  }
  EXPECT_EQ(size, 32768u);
}
