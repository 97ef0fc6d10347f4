#include "machine/machine/MTKReader.h"

#include <gtest/gtest.h>

#include <sstream>

#include "machine/machine/InfiniteRotaryAxisDefinition.h"
#include "machine/machine/LimitedRotaryAxisDefinition.h"
#include "machine/machine/LinearAxisDefinition.h"
#include "machine/machine/MTKReaderException.h"
#include "machine/machine/MTKWriter.h"
#include "support/JsonText.h"
#include "util/utility/JsonUtils.h"
#include "util/utility/LocaleRegistry.h"

using machine::KinematicsDefinition;
using machine::MTKReader;
using machine::MTKReadErrorType;
using machine::PartDefinition;
using machine::PartType;
using mtkit_test::parseJson;

namespace {

std::wstring const kSyntax =
    L"The file reader encountered a syntax error:\n\n";
std::wstring const kUnexpected =
    L"Unable to load the machine configuration file because the file reader has encountered an unexpected problem.";
std::wstring const kUnits =
    L"Can't read the units. All units must be specified in \"mm\" or \"degrees\".\n\nCode example:\n";
std::wstring const kUnitsExample =
    L"\"units\": {\n    \"angle\": \"degrees\",\n    \"length\": \"mm\"\n}";
std::wstring const kBadVector =
    L"Can't read the location of a point or the direction of a vector. Points and direction values must contain X, Y, and Z numerical values.\n\nCode example:\n";
std::wstring const kBadVectorExample =
    L"\"axis_of_rotation\": {\n    \"point\": [\n        0,\n        0,\n        85\n    ],\n    \"direction\": [\n        1,\n        0,\n        0,\n    ]\n}";
std::wstring const kMinSpeed =
    L"Invalid minimum spindle speed: %1.  The minimum spindle speed must not be negative.";
std::wstring const kMaxSpeed =
    L"Invalid maximum spindle speed: %1.  The maximum spindle speed must not be negative.";
std::wstring const kSpeeds =
    L"Invalid spindle speeds: \"min_speed\" = %1, \"max_speed\" = %2.  The minimum spindle speed must not be greater than the maximum spindle speed.";
std::wstring const kPeakBelowMin =
    L"Invalid peak torque speed: %1.  The peak torque speed must not be smaller than the minimum spindle speed.";
std::wstring const kPeakAboveMax =
    L"Invalid peak torque speed: %1.  The peak torque speed must not be greater than the maximum spindle speed.";
std::wstring const kToolLength =
    L"Invalid maximum tool length: %1. The maximum tool length must not be negative.";
std::wstring const kToolDiameter =
    L"Invalid maximum tool diameter: %1. The maximum tool diameter must not be negative.";
std::wstring const kToolInterface =
    L"Invalid tool interface: \"tool_interface\" must be an array of strings.";
std::wstring const kIndexCount =
    L"Invalid index count: %1. The index count must not be negative.";
std::wstring const kExpectedNumber =
    L"Can't read a value. Expected to read a numerical value but did not find one. An example of where only numerical values must be specified is the movement range of a part.\n\nCode example:\n";
std::wstring const kExpectedNumberExample =
    L"\"parts\": [\n    {\n        ...\n        \"min\": -88,\n        \"max\": 88,\n        \"home\": 0,\n        ...";
std::wstring const kExpectedString =
    L"Can't read a value. Expected to read a string but did not find one. Examples of where strings are expected are the name and type of a part.\n\nCode example:\n";
std::wstring const kExpectedStringExample =
    L"\"parts\": [\n    {\n        ...\n        \"name\": \"z\",\n        \"type\": \"linear\",\n        ...";
std::wstring const kBadPartType =
    L"The \"type\" of a machine part is not supported. Supported types are \"linear\", \"rotary\", \"static\", \"head\", and \"table\".\n\nCode example:\n";
std::wstring const kBadPartTypeExample =
    L"\"parts\": [\n    {\n        ...\n        \"type\": \"linear\",\n        ...";
std::wstring const kBadControl =
    L"The method of control specified for a part is not supported. Supported controls are \"driven\", \"secondary\", \"automatic\", \"link\", \"subordinate\", and \"manual\".\n\nCode example:\n";
std::wstring const kBadControlExample =
    L"\"parts\": [\n    {\n        ...\n        \"control\": \"driven\",\n        ...";
std::wstring const kBadConvention =
    L"The \"rotation\" convention specified is not supported. Supported conventions are \"right-handed\", and \"left-handed\".\n\nCode example:\n";
std::wstring const kBadConventionExample =
    L"\"convention\": {\n    \"rotation\": \"right-handed\",\n    ...";
std::wstring const kBadAttachFrame =
    L"Can't create an attach frame. An attach frame is where you connect something to a part. For example, defining an attach frame to connect a tool to the machine's head.\nThe attach frames' axes must be perpendicular. Specify the location of its center point and the direction of its Z and X axes.\n\nCode example:\n";
std::wstring const kBadAttachFrameExample =
    L"\"attach_frame\": {\n    \"point\": [\n        0,\n        0,\n        0\n    ],\n    \"z_direction\": [\n        0,\n        0,\n        1\n    ],\n    \"x_direction\": [\n        1,\n        0,\n        0\n    ]\n}";
std::wstring const kErrorHeading =
    L"Error reading Machine Tool Kinematics (MTK) data from machine file:\n\n";
std::wstring const kWriteFailed =
    L"Error, couldn't write .MTK file. Please contact Vantora.";
std::wstring const kWriteFailedDisc =
    L"Error, couldn't write .MTK file. This may be due to a permission error or if you're out of disc space.";

std::string const kUnitsJson = R"("units": {"length": "mm", "angle": "degrees"})";

/// An MTK document with good units and the given parts array.
std::string doc(std::string const& parts) { return "{" + kUnitsJson + R"(, "parts": )" + parts + "}"; }

machine::MTKReadResult readText(std::string const& text) {
  std::istringstream in(text);
  return MTKReader::read(in);
}

std::unique_ptr<KinematicsDefinition> readOk(std::string const& text) {
  machine::MTKReadResult result = readText(text);
  EXPECT_EQ(result.getReadErrorType(), MTKReadErrorType::NONE) << std::string(result.getReadErrorMessage().begin(), result.getReadErrorMessage().end());
  return result.getKinematicsDefinition();
}

/// Reads, expects a failure of `type`, and returns the stored message (the
/// text without its heading).
std::wstring readError(std::string const& text, MTKReadErrorType type) {
  machine::MTKReadResult const result = readText(text);
  EXPECT_EQ(result.getReadErrorType(), type);
  std::wstring const full = result.getReadErrorMessage();
  EXPECT_EQ(full.rfind(kErrorHeading, 0), 0u);
  return full.substr(std::wstring(kErrorHeading).size());
}

bool sameJson(Json::Value const& a, Json::Value const& b) { return Orvo::JsonUtils::areEqual(a, b, 0.0); }

PartDefinition const& part(KinematicsDefinition const& k, char const* id) { return **k.find(Orvo::MachinePartId(id)); }

std::string const kLinearX = R"({"id": "x", "type": "linear", "control": "driven", "direction": [1, 0, 0])";
std::string const kRotaryC = R"({"id": "c", "type": "rotary", "control": "driven", "axis_of_rotation": {"point": [0, 0, 0], "direction": [0, 0, 1]})";

}  // namespace

// Edge cases of the format.

TEST(MTKReader, OnlyUnitsReadsEmptyRightHandedAndWritesBackWithoutParts) {
  auto const k = readOk("{" + kUnitsJson + "}");
  ASSERT_NE(k, nullptr);
  EXPECT_TRUE(k->allParts().empty());
  EXPECT_EQ(k->mtkIOConverter().externalHandedness(), machine::Handedness::RIGHT_HANDED);
  Json::Value const out = machine::MTKWriter::toJson(*k);
  EXPECT_EQ(out.getMemberNames(), (std::vector<std::string>{"conventions", "units"}));
  EXPECT_EQ(out["conventions"]["rotation"].asString(), "right-handed");
  EXPECT_EQ(out["units"]["length"].asString(), "mm");
  EXPECT_EQ(out["units"]["angle"].asString(), "degrees");
}

TEST(MTKReader, LengthOtherThanMmFailsAsUnitsAndMissingLengthAsExpectedString) {
  EXPECT_EQ(readError(R"({"units": {"length": "inch", "angle": "degrees"}})", MTKReadErrorType::UNITS),
            kUnits + kUnitsExample);
  // Another length means the angle isn't read at all: a bad angle goes unseen.
  EXPECT_EQ(readError(R"({"units": {"length": "MM", "angle": 5}})", MTKReadErrorType::UNITS), kUnits + kUnitsExample);
  EXPECT_EQ(readError(R"({"units": {"length": "mm", "angle": "radians"}})", MTKReadErrorType::UNITS),
            kUnits + kUnitsExample);
  EXPECT_EQ(readError(R"({"units": {"angle": "degrees"}})", MTKReadErrorType::EXPECTED_STRING),
            kExpectedString + kExpectedStringExample);
  EXPECT_EQ(readError(R"({"units": {"length": "mm"}})", MTKReadErrorType::EXPECTED_STRING),
            kExpectedString + kExpectedStringExample);
  EXPECT_EQ(readError(R"({"parts": []})", MTKReadErrorType::EXPECTED_STRING), kExpectedString + kExpectedStringExample);
}

TEST(MTKReader, UnknownRotationWithWrongUnitsFailsAsBadConvention) {
  EXPECT_EQ(readError(R"({"conventions": {"rotation": "sideways"}, "units": {"length": "inch"}})",
                      MTKReadErrorType::BAD_CONVENTION),
            kBadConvention + kBadConventionExample);
  EXPECT_EQ(readError(R"({"conventions": {"rotation": 1}, "units": {"length": "inch"}})",
                      MTKReadErrorType::EXPECTED_STRING),
            kExpectedString + kExpectedStringExample);
}

TEST(MTKReader, StaticPartWithControlOrMinReadsAndLosesThem) {
  auto const k = readOk(doc(R"([{"id": "s", "type": "static", "control": "bogus", "min": "low", "direction": 3}])"));
  ASSERT_NE(k, nullptr);
  EXPECT_EQ(part(*k, "s").axisDefinition(), nullptr);
  Json::Value const out = machine::MTKWriter::toJson(*k);
  EXPECT_EQ(out["parts"][0].getMemberNames(), (std::vector<std::string>{"id", "type"}));
}

TEST(MTKReader, LinearPartAttachFrameIsReadAndDroppedOnWriteHeadAlwaysGetsOne) {
  auto const k = readOk(doc("[" + kLinearX +
                            R"(, "attach_frame": {"point": [1, 2, 3], "z_direction": [0, 1, 0], "x_direction": [1, 0, 0]},
      "parts": [{"id": "h", "type": "head"}]}])"));
  ASSERT_NE(k, nullptr);
  EXPECT_EQ(part(*k, "x").attachFrame().origin(), Orvo::Point3D(1, 2, 3));
  EXPECT_EQ(part(*k, "x").attachFrame().zAxis(), Orvo::Vector3D(0, 1, 0));
  Json::Value const out = machine::MTKWriter::toJson(*k);
  EXPECT_FALSE(out["parts"][0].isMember("attach_frame"));
  Json::Value const& head = out["parts"][0]["parts"][0];
  EXPECT_PRED2(sameJson, head["attach_frame"], parseJson(R"({"point": [0, 0, 0], "z_direction": [0, 0, 1], "x_direction": [1, 0, 0]})"));
}

TEST(MTKReader, RotaryWithMinAloneIsInfiniteAndWritesNoMin) {
  auto const k = readOk(doc("[" + kRotaryC + R"(, "min": -90}, {"id": "b", "type": "rotary", "control": "driven",
      "axis_of_rotation": {"point": [0, 0, 0], "direction": [0, 1, 0]}, "min": -90, "max": 90}])"));
  ASSERT_NE(k, nullptr);
  EXPECT_NE(dynamic_cast<machine::InfiniteRotaryAxisDefinition const*>(part(*k, "c").axisDefinition()), nullptr);
  EXPECT_FALSE(part(*k, "c").axisDefinition()->physicalMin().has_value());
  auto const* b = dynamic_cast<machine::LimitedRotaryAxisDefinition const*>(part(*k, "b").axisDefinition());
  ASSERT_NE(b, nullptr);
  EXPECT_EQ(b->physicalMin()->value(), -90);
  Json::Value const out = machine::MTKWriter::toJson(*k);
  EXPECT_FALSE(out["parts"][0].isMember("min"));
  EXPECT_EQ(out["parts"][1]["min"].asDouble(), -90);
  EXPECT_EQ(out["parts"][1]["max"].asDouble(), 90);
}

TEST(MTKReader, StringHomeEndsAsUnexpectedOnStream) {
  EXPECT_EQ(readError(doc("[" + kLinearX + R"(, "home": "zero"}])"), MTKReadErrorType::UNEXPECTED), kUnexpected);
  // The value entry point lets the library's exception pass.
  EXPECT_ANY_THROW(MTKReader::read(parseJson(doc("[" + kLinearX + R"(, "home": "zero"}])"))));
}

TEST(MTKReader, ZeroHomeAndMissingHomeWriteTheSame) {
  auto const zero = readOk(doc("[" + kLinearX + R"(, "home": 0, "value_as_modelled": 0}])"));
  auto const missing = readOk(doc("[" + kLinearX + "}]"));
  Json::Value const a = machine::MTKWriter::toJson(*zero);
  EXPECT_EQ(a, machine::MTKWriter::toJson(*missing));
  EXPECT_FALSE(a["parts"][0].isMember("home"));
  EXPECT_FALSE(a["parts"][0].isMember("value_as_modelled"));
  auto const set = readOk(doc("[" + kLinearX + R"(, "home": 12.5, "value_as_modelled": -3}])"));
  Json::Value const b = machine::MTKWriter::toJson(*set);
  EXPECT_EQ(b["parts"][0]["home"].asDouble(), 12.5);
  EXPECT_EQ(b["parts"][0]["value_as_modelled"].asDouble(), -3);
}

TEST(MTKReader, LeftHandedFileFlipsRotaryDirectionButNotLinear) {
  auto const k = readOk(R"({"conventions": {"rotation": "left-handed"}, )" + kUnitsJson + R"(, "parts": [)" + kLinearX +
                        "}, " + kRotaryC + "}]}");
  ASSERT_NE(k, nullptr);
  EXPECT_EQ(k->mtkIOConverter().externalHandedness(), machine::Handedness::LEFT_HANDED);
  EXPECT_EQ(part(*k, "c").axisDefinition()->direction(), Orvo::Vector3D(0, 0, -1));
  EXPECT_EQ(part(*k, "x").axisDefinition()->direction(), Orvo::Vector3D(1, 0, 0));
  Json::Value const out = machine::MTKWriter::toJson(*k);
  EXPECT_EQ(out["conventions"]["rotation"].asString(), "left-handed");
  EXPECT_PRED2(sameJson, out["parts"][1]["axis_of_rotation"]["direction"], parseJson("[0, 0, 1]"));
  EXPECT_PRED2(sameJson, out["parts"][0]["direction"], parseJson("[1, 0, 0]"));
}

TEST(MTKReader, ToolStationWithoutCoolantsWritesNullAndReadsBackNone) {
  auto const k = readOk(doc(R"([{"id": "h", "type": "head", "tool_station": {}}])"));
  ASSERT_TRUE(part(*k, "h").toolStationDefinition().has_value());
  EXPECT_TRUE(part(*k, "h").toolStationDefinition()->coolants().none());
  Json::Value const out = machine::MTKWriter::toJson(*k);
  Json::Value const& station = out["parts"][0]["tool_station"];
  EXPECT_EQ(station.getMemberNames(), std::vector<std::string>{"coolants"});
  EXPECT_TRUE(station["coolants"].isNull());
  auto const back = MTKReader::read(out);
  machine::MTKReadResult again = MTKReader::read(out);
  auto const k2 = again.getKinematicsDefinition();
  EXPECT_TRUE(part(*k2, "h").toolStationDefinition()->coolants().none());
}

TEST(MTKReader, CoolantsStringAndSingleElementArrayMeanTheSame) {
  auto const a = readOk(doc(R"([{"id": "h", "type": "head", "tool_station": {"coolants": "flood"}}])"));
  auto const b = readOk(doc(R"([{"id": "h", "type": "head", "tool_station": {"coolants": ["flood"]}}])"));
  EXPECT_EQ(part(*a, "h").toolStationDefinition(), part(*b, "h").toolStationDefinition());
  EXPECT_TRUE(part(*a, "h").toolStationDefinition()->supportsCoolant(machine::MachineCoolant::FLOOD));
  EXPECT_EQ(machine::MTKWriter::toJson(*a)["parts"][0]["tool_station"]["coolants"], parseJson(R"(["flood"])"));
  auto const c = readOk(doc(R"([{"id": "h", "type": "head", "tool_station": {"coolants": ["through_tool", "air", "flood"]}}])"));
  EXPECT_EQ(machine::MTKWriter::toJson(*c)["parts"][0]["tool_station"]["coolants"],
            parseJson(R"(["air", "flood", "through_tool"])"));
}

TEST(MTKReader, ToolInterfaceOfTwoStringsKeepsFirst) {
  auto const k = readOk(doc(R"([{"id": "h", "type": "head", "tool_station": {"tool_interface": ["hsk63a", "BT40"]}}])"));
  ASSERT_TRUE(part(*k, "h").toolStationDefinition()->toolInterface().has_value());
  EXPECT_EQ(part(*k, "h").toolStationDefinition()->toolInterface()->name(), "HSK63A");
  EXPECT_EQ(machine::MTKWriter::toJson(*k)["parts"][0]["tool_station"]["tool_interface"], parseJson(R"(["HSK63A"])"));
  auto const none = readOk(doc(R"([{"id": "h", "type": "head", "tool_station": {"tool_interface": []}}])"));
  EXPECT_FALSE(part(*none, "h").toolStationDefinition()->toolInterface().has_value());
}

TEST(MTKReader, EmptySpindleObjectIsPresentSpindleWithAllValuesUnset) {
  auto const k = readOk(doc(R"([{"id": "h", "type": "head", "spindle": {}}, {"id": "t", "type": "table", "spindle": null}])"));
  auto const& spindle = part(*k, "h").spindleDefinition();
  ASSERT_TRUE(spindle.has_value());
  EXPECT_FALSE(spindle->minSpeed() || spindle->maxSpeed() || spindle->power() || spindle->peakTorque() ||
               spindle->peakTorqueSpeed());
  EXPECT_EQ(spindle->description(), "");
  EXPECT_FALSE(part(*k, "t").spindleDefinition().has_value());
  EXPECT_EQ(machine::MTKWriter::toJson(*k)["parts"][0]["spindle"], Json::Value(Json::objectValue));
}

TEST(MTKReader, ZeroMaxToolLengthAndZeroIndexCountAreValid) {
  auto const k = readOk(doc(R"([{"id": "h", "type": "head", "tool_station": {"max_tool_length": 0, "max_tool_diameter": 0}},
      {"id": "t", "type": "rotary", "control": "driven", "axis_of_rotation": {"point": [0, 0, 0], "direction": [1, 0, 0]},
       "turret": {"index_count": 0}}, {"id": "u", "type": "static", "turret": {}}])"));
  ASSERT_NE(k, nullptr);
  EXPECT_EQ(part(*k, "h").toolStationDefinition()->maxToolLength()->get(), 0.0);
  EXPECT_EQ(part(*k, "t").turretDefinition()->indexCount(), 0u);
  EXPECT_EQ(part(*k, "u").turretDefinition()->indexCount(), 0u);
  EXPECT_TRUE(machine::MTKWriter::toJson(*k)["parts"][2]["turret"]["index_count"].isUInt());
}

TEST(MTKReader, SpindleMinEqualMaxAndPeakTorqueSpeedAtEitherLimitAreValid) {
  EXPECT_NE(readOk(doc(R"([{"id": "h", "type": "head", "spindle": {"min_speed": 100, "max_speed": 100, "peak_torque_speed": 100}}])")),
            nullptr);
  EXPECT_NE(readOk(doc(R"([{"id": "h", "type": "head", "spindle": {"min_speed": 0, "max_speed": 100, "peak_torque_speed": 0}}])")),
            nullptr);
  EXPECT_NE(readOk(doc(R"([{"id": "h", "type": "head", "spindle": {"min_speed": 0, "max_speed": 100, "peak_torque_speed": 100}}])")),
            nullptr);
}

// Messages, each with its code example.

TEST(MTKReader, SyntaxErrorCarriesParserText) {
  std::wstring const message = readError(R"({"units": )", MTKReadErrorType::SYNTAX);
  EXPECT_EQ(message.rfind(kSyntax, 0), 0u);
  EXPECT_GT(message.size(), std::wstring(kSyntax).size());
  EXPECT_EQ(readError("", MTKReadErrorType::SYNTAX).rfind(kSyntax, 0), 0u);
}

TEST(MTKReader, DeeplyNestedTextFailsWithoutCrashing) {
  std::string const deep = std::string(100000, '[') + std::string(100000, ']');
  machine::MTKReadResult const result = readText(deep);
  EXPECT_NE(result.getReadErrorType(), MTKReadErrorType::NONE);
}

TEST(MTKReader, NonStringPartIdOrTypeFailsAsExpectedString) {
  EXPECT_EQ(readError(doc(R"([{"id": 3, "type": "static"}])"), MTKReadErrorType::EXPECTED_STRING),
            kExpectedString + kExpectedStringExample);
  EXPECT_EQ(readError(doc(R"([{"id": "a"}])"), MTKReadErrorType::EXPECTED_STRING),
            kExpectedString + kExpectedStringExample);
}

TEST(MTKReader, UnknownPartTypeFailsAsBadPartType) {
  EXPECT_EQ(readError(doc(R"([{"id": "a", "type": "root"}])"), MTKReadErrorType::BAD_PART_TYPE),
            kBadPartType + kBadPartTypeExample);
}

TEST(MTKReader, ControlAcceptsAncillaryAndRefusesAutomatic) {
  EXPECT_EQ(readError(doc("[" + kLinearX + R"(, "control": "automatic"}])"), MTKReadErrorType::BAD_CONTROL),
            kBadControl + kBadControlExample);
  char const* words[] = {"driven", "secondary", "ancillary", "link", "subordinate", "manual"};
  for (int i = 0; i < 6; ++i) {
    auto const k = readOk(doc(R"([{"id": "x", "type": "linear", "direction": [1, 0, 0], "control": ")" +
                              std::string(words[i]) + R"("}])"));
    ASSERT_NE(k, nullptr);
    EXPECT_EQ(static_cast<int>(part(*k, "x").axisDefinition()->defaultControl()), i);
    EXPECT_EQ(machine::MTKWriter::toJson(*k)["parts"][0]["control"].asString(), words[i]);
  }
}

TEST(MTKReader, BadVectorsFailAsBadVector) {
  std::wstring const expected = kBadVector + kBadVectorExample;
  EXPECT_EQ(readError(doc(R"([{"id": "x", "type": "linear", "control": "driven", "direction": [1, 0]}])"),
                      MTKReadErrorType::BAD_VECTOR),
            expected);
  EXPECT_EQ(readError(doc(R"([{"id": "x", "type": "linear", "control": "driven"}])"), MTKReadErrorType::BAD_VECTOR),
            expected);
  EXPECT_EQ(readError(doc(R"([{"id": "c", "type": "rotary", "control": "driven", "axis_of_rotation": {"point": [0, 0, "0"], "direction": [0, 0, 1]}}])"),
                      MTKReadErrorType::BAD_VECTOR),
            expected);
  EXPECT_EQ(readError(doc("[" + kRotaryC + R"(, "offset": [true, 0, 0]}])"), MTKReadErrorType::BAD_VECTOR), expected);
}

TEST(MTKReader, NonNumbersInAxisFailAsExpectedNumber) {
  std::wstring const expected = kExpectedNumber + kExpectedNumberExample;
  for (char const* key : {"min", "max", "step_size", "tool_change_position"})
    EXPECT_EQ(readError(doc("[" + kLinearX + ", \"" + key + R"(": "5"}])"), MTKReadErrorType::EXPECTED_NUMBER),
              expected)
        << key;
  EXPECT_EQ(readError(doc(R"([{"id": "h", "type": "head", "spindle": {"power": null}}])"),
                      MTKReadErrorType::EXPECTED_NUMBER),
            expected);
}

TEST(MTKReader, ParallelAttachFrameAxesFailAsBadAttachFrame) {
  EXPECT_EQ(readError(doc(R"([{"id": "h", "type": "head", "attach_frame": {"point": [0, 0, 0], "z_direction": [0, 0, 1], "x_direction": [0, 0, 2]}}])"),
                      MTKReadErrorType::BAD_ATTACH_FRAME),
            kBadAttachFrame + kBadAttachFrameExample);
  EXPECT_EQ(readError(doc(R"([{"id": "h", "type": "head", "attach_frame": {"point": [0, 0, 0], "z_direction": [0, 0, 1]}}])"),
                      MTKReadErrorType::BAD_VECTOR),
            kBadVector + kBadVectorExample);
}

TEST(MTKReader, SpindleChecksInOrderWithSubstitutedValues) {
  auto spindle = [](std::string const& body) {
    return readError(doc(R"([{"id": "h", "type": "head", "spindle": )" + body + "}]"), MTKReadErrorType::BAD_SPINDLE);
  };
  EXPECT_EQ(spindle(R"({"min_speed": -1.5, "max_speed": -2})"),
            L"Invalid minimum spindle speed: -1.5.  The minimum spindle speed must not be negative.");
  EXPECT_EQ(spindle(R"({"max_speed": -2})"),
            L"Invalid maximum spindle speed: -2.  The maximum spindle speed must not be negative.");
  EXPECT_EQ(spindle(R"({"min_speed": 500, "max_speed": 100, "peak_torque_speed": 50})"),
            L"Invalid spindle speeds: \"min_speed\" = 500, \"max_speed\" = 100.  The minimum spindle speed must not be greater than the maximum spindle speed.");
  EXPECT_EQ(spindle(R"({"min_speed": 100, "peak_torque_speed": 50.25})"),
            L"Invalid peak torque speed: 50.25.  The peak torque speed must not be smaller than the minimum spindle speed.");
  EXPECT_EQ(spindle(R"({"max_speed": 100, "peak_torque_speed": 150})"),
            L"Invalid peak torque speed: 150.  The peak torque speed must not be greater than the maximum spindle speed.");
  // No check applies to power or peak torque.
  EXPECT_NE(readOk(doc(R"([{"id": "h", "type": "head", "spindle": {"power": 0, "peak_torque": 0, "description": "main"}}])")),
            nullptr);
}

TEST(MTKReader, ToolStationChecksLengthThenDiameterAndInterface) {
  auto station = [](std::string const& body) {
    return readError(doc(R"([{"id": "h", "type": "head", "tool_station": )" + body + "}]"),
                     MTKReadErrorType::BAD_TOOL_STATION);
  };
  EXPECT_EQ(station(R"({"max_tool_length": -1, "max_tool_diameter": -2})"),
            L"Invalid maximum tool length: -1. The maximum tool length must not be negative.");
  EXPECT_EQ(station(R"({"max_tool_diameter": -2.5})"),
            L"Invalid maximum tool diameter: -2.5. The maximum tool diameter must not be negative.");
  EXPECT_EQ(station(R"({"tool_interface": "HSK63A"})"), kToolInterface);
}

TEST(MTKReader, NegativeIndexCountFailsAsBadTurret) {
  EXPECT_EQ(readError(doc(R"([{"id": "t", "type": "static", "turret": {"index_count": -3}}])"), MTKReadErrorType::BAD_TURRET),
            L"Invalid index count: -3. The index count must not be negative.");
  EXPECT_EQ(readError(doc(R"([{"id": "t", "type": "static", "turret": {"index_count": 2.5}}])"), MTKReadErrorType::UNEXPECTED),
            kUnexpected);
}

TEST(MTKReader, CoolantErrorsEndAsUnexpected) {
  EXPECT_EQ(readError(doc(R"([{"id": "h", "type": "head", "tool_station": {"coolants": 1}}])"), MTKReadErrorType::UNEXPECTED),
            kUnexpected);
  EXPECT_EQ(readError(doc(R"([{"id": "h", "type": "head", "tool_station": {"coolants": ["oil"]}}])"), MTKReadErrorType::UNEXPECTED),
            kUnexpected);
  try {
    MTKReader::read(parseJson(doc(R"([{"id": "h", "type": "head", "tool_station": {"coolants": ["oil"]}}])")));
    FAIL();
  } catch (std::runtime_error const& e) {
    EXPECT_STREQ(e.what(), "oil is not supported");
  }
}

TEST(MTKReader, ReadOrderDecidesWhichErrorShows) {
  // Type before attach frame, attach frame before axis, axis before spindle,
  // spindle before tool station, tool station before display name and turret,
  // and a parent before its children.
  EXPECT_EQ(readError(doc(R"([{"id": "a", "type": "bogus", "attach_frame": 5}])"), MTKReadErrorType::BAD_PART_TYPE),
            kBadPartType + kBadPartTypeExample);
  EXPECT_EQ(readError(doc(R"([{"id": "a", "type": "linear", "control": "bogus", "attach_frame": {"point": 1}}])"),
                      MTKReadErrorType::BAD_VECTOR),
            kBadVector + kBadVectorExample);
  EXPECT_EQ(readError(doc(R"([{"id": "a", "type": "linear", "control": "bogus", "spindle": {"min_speed": -1}}])"),
                      MTKReadErrorType::BAD_CONTROL),
            kBadControl + kBadControlExample);
  EXPECT_EQ(readError(doc(R"([{"id": "a", "type": "head", "spindle": {"min_speed": -1}, "tool_station": {"max_tool_length": -1}}])"),
                      MTKReadErrorType::BAD_SPINDLE)
                .substr(0, 30),
            L"Invalid minimum spindle speed:");
  EXPECT_EQ(readError(doc(R"([{"id": "a", "type": "head", "tool_station": {"max_tool_length": -1}, "display_name": 1, "turret": {"index_count": -1}}])"),
                      MTKReadErrorType::BAD_TOOL_STATION)
                .substr(0, 28),
            L"Invalid maximum tool length:");
  EXPECT_EQ(readError(doc(R"([{"id": "a", "type": "head", "display_name": 1, "turret": {"index_count": -1}}])"),
                      MTKReadErrorType::EXPECTED_STRING),
            kExpectedString + kExpectedStringExample);
  EXPECT_EQ(readError(doc(R"([{"id": "a", "type": "head", "turret": {"index_count": -1}, "parts": [{"id": 1}]}])"),
                      MTKReadErrorType::BAD_TURRET)
                .substr(0, 20),
            L"Invalid index count:");
  // The first bad element of "parts" wins.
  EXPECT_EQ(readError(doc(R"([{"id": "a", "type": "bogus"}, {"id": 1}])"), MTKReadErrorType::BAD_PART_TYPE),
            kBadPartType + kBadPartTypeExample);
}

TEST(MTKReader, ValueEntryPointReturnsUnitsButThrowsOtherErrors) {
  machine::MTKReadResult const units = MTKReader::read(parseJson(R"({"units": {"length": "inch"}})"));
  EXPECT_EQ(units.getReadErrorType(), MTKReadErrorType::UNITS);
  try {
    MTKReader::read(parseJson(doc(R"([{"id": "a", "type": "bogus"}])")));
    FAIL();
  } catch (machine::MTKReaderException const& e) {
    EXPECT_EQ(e.type(), MTKReadErrorType::BAD_PART_TYPE);
    EXPECT_EQ(e.message(), kBadPartType + kBadPartTypeExample);
    EXPECT_STREQ(e.what(), "Unknown exception");
  }
}

TEST(MTKReader, FullTreeReadsEveryKey) {
  auto const k = readOk(doc(R"([{"id": "base", "type": "static", "display_name": "Bed\nframe", "parts": [
      {"id": "y", "type": "linear", "control": "driven", "name": "Y", "direction": [0, 2, 0], "min": -300, "max": 300,
       "home": 10, "step_size": 0.001, "tool_change_position": 250, "value_as_modelled": 5, "parts": [
        {"id": "a", "type": "rotary", "control": "secondary", "name": "A", "min": -120, "max": 30,
         "axis_of_rotation": {"point": [0, 0, 85], "direction": [1, 0, 0]}, "offset": [1, 2, 3], "parts": [
          {"id": "table", "type": "table", "attach_frame": {"point": [0, 0, 100], "z_direction": [0, 0, 1], "x_direction": [1, 0, 0]}}]}]}]}])"));
  ASSERT_NE(k, nullptr);
  EXPECT_EQ(part(*k, "base").displayName()->name(), "Bedframe");
  auto const& y = *part(*k, "y").axisDefinition();
  EXPECT_EQ(y.name()->name(), "Y");
  EXPECT_EQ(y.direction(), Orvo::Vector3D(0, 1, 0));
  EXPECT_EQ(y.physicalMax()->value(), 300);
  EXPECT_EQ(y.defaultHome().value(), 10);
  EXPECT_EQ(y.valueAsModelled().value(), 5);
  EXPECT_EQ(y.stepSize()->value(), 0.001);
  EXPECT_EQ(y.defaultToolChangePosition()->value(), 250);
  auto const* a = dynamic_cast<machine::RotaryAxisDefinition const*>(part(*k, "a").axisDefinition());
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->point(), Orvo::Point3D(0, 0, 85));
  EXPECT_EQ(a->offset(), Orvo::Point3D(1, 2, 3));
  EXPECT_EQ(a->defaultControl(), machine::ControlType::SECONDARY);
  EXPECT_EQ(part(*k, "table").attachFrame().origin(), Orvo::Point3D(0, 0, 100));
  EXPECT_EQ(part(*k, "table").parent(), a == nullptr ? nullptr : &part(*k, "a"));
}

TEST(MTKReader, ReadErrorMessageIsLocalisedThroughRegistry) {
  auto& registry = Orvo::LocaleRegistry::get();
  registry.addTranslation("de", kErrorHeading, L"Fehler beim Lesen der MTK-Daten:\n\n");
  registry.addTranslation("de", kBadPartType, L"Teiletyp nicht unterst\u00fctzt.\n\nCode-Beispiel:\n");
  registry.setLocale("de");
  machine::MTKReadResult const result = readText(doc(R"([{"id": "a", "type": "bogus"}])"));
  std::wstring const translated = result.getReadErrorMessage();
  registry.clearTranslations();
  EXPECT_EQ(result.getReadErrorType(), MTKReadErrorType::BAD_PART_TYPE);
  // The code example is never translated.
  EXPECT_EQ(translated,
            std::wstring(L"Fehler beim Lesen der MTK-Daten:\n\n") + L"Teiletyp nicht unterst\u00fctzt.\n\nCode-Beispiel:\n" +
                kBadPartTypeExample);
  EXPECT_TRUE(registry.isRegistered(kBadPartType));
  EXPECT_EQ(readError(doc(R"([{"id": "a", "type": "bogus"}])"), MTKReadErrorType::BAD_PART_TYPE),
            kBadPartType + kBadPartTypeExample);
}
