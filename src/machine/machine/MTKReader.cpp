#include "machine/machine/MTKReader.h"

#include <exception>
#include <istream>
#include <stdexcept>
#include <utility>

#include "machine/machine/InfiniteRotaryAxisDefinition.h"
#include "machine/machine/LimitedRotaryAxisDefinition.h"
#include "machine/machine/LinearAxisDefinition.h"
#include "machine/machine/MTKReaderException.h"
#include "util/utility/EnumBitsetJson.h"
#include "util/utility/JsonUtils.h"
#include "util/utility/LocaleRegistry.h"
#include "util/utility/Messages.h"
#include "util/utility/VariableSet.h"

namespace machine {

namespace {

// The user-facing texts, English being key and default; code examples are
// appended after localisation and never translated. Oddities in them (the
// offered "automatic", the singular "convention", the stray comma) are kept:
// users and their documentation know these texts as they are.
constexpr wchar_t const kSyntax[] =
    L"The file reader encountered a syntax error:\n\n";
constexpr wchar_t const kUnexpected[] =
    L"Unable to load the machine configuration file because the file reader has encountered an unexpected problem.";
constexpr wchar_t const kUnits[] =
    L"Can't read the units. All units must be specified in \"mm\" or \"degrees\".\n\nCode example:\n";
constexpr wchar_t const kUnitsExample[] =
    L"\"units\": {\n    \"angle\": \"degrees\",\n    \"length\": \"mm\"\n}";
constexpr wchar_t const kBadVector[] =
    L"Can't read the location of a point or the direction of a vector. Points and direction values must contain X, Y, and Z numerical values.\n\nCode example:\n";
constexpr wchar_t const kBadVectorExample[] =
    L"\"axis_of_rotation\": {\n    \"point\": [\n        0,\n        0,\n        85\n    ],\n    \"direction\": [\n        1,\n        0,\n        0,\n    ]\n}";
constexpr wchar_t const kMinSpeed[] =
    L"Invalid minimum spindle speed: %1.  The minimum spindle speed must not be negative.";
constexpr wchar_t const kMaxSpeed[] =
    L"Invalid maximum spindle speed: %1.  The maximum spindle speed must not be negative.";
constexpr wchar_t const kSpeeds[] =
    L"Invalid spindle speeds: \"min_speed\" = %1, \"max_speed\" = %2.  The minimum spindle speed must not be greater than the maximum spindle speed.";
constexpr wchar_t const kPeakBelowMin[] =
    L"Invalid peak torque speed: %1.  The peak torque speed must not be smaller than the minimum spindle speed.";
constexpr wchar_t const kPeakAboveMax[] =
    L"Invalid peak torque speed: %1.  The peak torque speed must not be greater than the maximum spindle speed.";
constexpr wchar_t const kToolLength[] =
    L"Invalid maximum tool length: %1. The maximum tool length must not be negative.";
constexpr wchar_t const kToolDiameter[] =
    L"Invalid maximum tool diameter: %1. The maximum tool diameter must not be negative.";
constexpr wchar_t const kToolInterface[] =
    L"Invalid tool interface: \"tool_interface\" must be an array of strings.";
constexpr wchar_t const kIndexCount[] =
    L"Invalid index count: %1. The index count must not be negative.";
constexpr wchar_t const kExpectedNumber[] =
    L"Can't read a value. Expected to read a numerical value but did not find one. An example of where only numerical values must be specified is the movement range of a part.\n\nCode example:\n";
constexpr wchar_t const kExpectedNumberExample[] =
    L"\"parts\": [\n    {\n        ...\n        \"min\": -88,\n        \"max\": 88,\n        \"home\": 0,\n        ...";
constexpr wchar_t const kExpectedString[] =
    L"Can't read a value. Expected to read a string but did not find one. Examples of where strings are expected are the name and type of a part.\n\nCode example:\n";
constexpr wchar_t const kExpectedStringExample[] =
    L"\"parts\": [\n    {\n        ...\n        \"name\": \"z\",\n        \"type\": \"linear\",\n        ...";
constexpr wchar_t const kBadPartType[] =
    L"The \"type\" of a machine part is not supported. Supported types are \"linear\", \"rotary\", \"static\", \"head\", and \"table\".\n\nCode example:\n";
constexpr wchar_t const kBadPartTypeExample[] =
    L"\"parts\": [\n    {\n        ...\n        \"type\": \"linear\",\n        ...";
constexpr wchar_t const kBadControl[] =
    L"The method of control specified for a part is not supported. Supported controls are \"driven\", \"secondary\", \"automatic\", \"link\", \"subordinate\", and \"manual\".\n\nCode example:\n";
constexpr wchar_t const kBadControlExample[] =
    L"\"parts\": [\n    {\n        ...\n        \"control\": \"driven\",\n        ...";
constexpr wchar_t const kBadConvention[] =
    L"The \"rotation\" convention specified is not supported. Supported conventions are \"right-handed\", and \"left-handed\".\n\nCode example:\n";
constexpr wchar_t const kBadConventionExample[] =
    L"\"convention\": {\n    \"rotation\": \"right-handed\",\n    ...";
constexpr wchar_t const kBadAttachFrame[] =
    L"Can't create an attach frame. An attach frame is where you connect something to a part. For example, defining an attach frame to connect a tool to the machine's head.\nThe attach frames' axes must be perpendicular. Specify the location of its center point and the direction of its Z and X axes.\n\nCode example:\n";
constexpr wchar_t const kBadAttachFrameExample[] =
    L"\"attach_frame\": {\n    \"point\": [\n        0,\n        0,\n        0\n    ],\n    \"z_direction\": [\n        0,\n        0,\n        1\n    ],\n    \"x_direction\": [\n        1,\n        0,\n        0\n    ]\n}";

std::wstring localised(wchar_t const* text) { return Orvo::LocaleRegistry::get().registerMessage(text, text).text(); }

[[noreturn]] void fail(MTKReadErrorType type, wchar_t const* text, wchar_t const* example) {
  throw MTKReaderException(type, localised(text) + example);
}

[[noreturn]] void fail(MTKReadErrorType type, wchar_t const* text, Orvo::VariableSet const& arguments) {
  throw MTKReaderException(type, Orvo::LocaleRegistry::get().registerMessage(text, text).text(arguments));
}

}  // namespace

MTKReadResult MTKReader::read(std::istream& in) {
  try {
    Json::Value root;
    std::string errors;
    if (!Orvo::JsonUtils::parse(in, root, errors))
      return MTKReadResult(MTKReadErrorType::SYNTAX, localised(kSyntax) + Orvo::Messages::utf8ToWide(errors));
    return read(root);
  } catch (MTKReaderException const& e) {
    return MTKReadResult(e.type(), e.message());
  } catch (std::exception const&) {
    return MTKReadResult(MTKReadErrorType::UNEXPECTED, localised(kUnexpected));
  }
}

MTKReadResult MTKReader::read(Json::Value const& root) {
  MTKIOConverter const converter = readConventions(root["conventions"]);
  if (!checkUnits(root)) return MTKReadResult(MTKReadErrorType::UNITS, localised(kUnits) + kUnitsExample);
  auto baseParts = readParts(root["parts"], converter);
  return MTKReadResult(std::make_unique<KinematicsDefinition>(std::move(baseParts), converter));
}

MTKIOConverter MTKReader::readConventions(Json::Value const& conventions) {
  MTKIOConverter converter;
  if (conventions.isMember("rotation")) converter.setExternalHandedness(parseHandedness(asString(conventions["rotation"])));
  return converter;
}

bool MTKReader::checkUnits(Json::Value const& root) {
  Json::Value const& units = root["units"];
  if (asString(units["length"]) != "mm") return false;
  return asString(units["angle"]) == "degrees";
}

std::vector<std::unique_ptr<PartDefinition>> MTKReader::readParts(Json::Value const& parts,
                                                                  MTKIOConverter const& converter) {
  std::vector<std::unique_ptr<PartDefinition>> result;
  // A value with no elements (also a missing one, or a string) gives no parts.
  if (parts.size() == 0) return result;
  result.reserve(parts.size());
  for (Json::ArrayIndex i = 0; i < parts.size(); ++i) {
    Json::Value const& element = parts[i];
    Orvo::MachinePartId const id(asString(element["id"]));
    PartType const type = parseType(asString(element["type"]));
    std::optional<Orvo::Frame> const attachFrame = parseAttachFrame(element["attach_frame"]);
    std::unique_ptr<AxisDefinition> axis = readAxis(element, type, converter);
    std::optional<SpindleDefinition> const spindle = parseSpindle(element["spindle"]);
    std::optional<ToolStationDefinition> const toolStation = parseToolStation(element["tool_station"]);
    auto part = std::make_unique<PartDefinition>(id, type, attachFrame, spindle, toolStation, std::move(axis));
    Json::Value const& displayName = element["display_name"];
    if (!displayName.isNull()) part->setDisplayName(DisplayName(asString(displayName)));
    part->setTurretDefinition(parseTurretDefinition(element["turret"]));
    for (auto& child : readParts(element["parts"], converter)) part->addChild(std::move(child));
    result.push_back(std::move(part));
  }
  return result;
}

std::unique_ptr<AxisDefinition> MTKReader::readAxis(Json::Value const& element, PartType type,
                                                    MTKIOConverter const& converter) {
  if (type != PartType::LINEAR && type != PartType::ROTARY) return nullptr;
  ControlType const control = parseControlType(asString(element["control"]));
  std::optional<Orvo::AxisName> name;
  std::optional<Orvo::AxisValue> stepSize, min, max, toolChangePosition;
  if (element.isMember("name")) name = Orvo::AxisName(asString(element["name"]));
  if (element.isMember("step_size")) stepSize = asDouble(element["step_size"]);
  if (element.isMember("min")) min = asDouble(element["min"]);
  if (element.isMember("max")) max = asDouble(element["max"]);
  // jsoncpp's own conversion, unchecked: a missing key is 0, and a string
  // throws a library error that ends as an unexpected failure.
  Orvo::AxisValue const home = element["home"].asDouble();
  Orvo::AxisValue const valueAsModelled = element["value_as_modelled"].asDouble();
  if (element.isMember("tool_change_position")) toolChangePosition = asDouble(element["tool_change_position"]);

  std::unique_ptr<AxisDefinition> axis;
  if (type == PartType::LINEAR) {
    Orvo::Vector3D const direction = asVector(element["direction"]);
    axis = std::make_unique<LinearAxisDefinition>(control, valueAsModelled, home, name, stepSize, direction, min, max);
  } else {
    Json::Value const& axisOfRotation = element["axis_of_rotation"];
    Orvo::Point3D const point = asPoint(axisOfRotation["point"]);
    // Both conversions are the one rule (a left-handed file flips), so the
    // name of the direction doesn't matter here.
    Orvo::Vector3D const direction = converter.convertAxialVectorToExternal(asVector(axisOfRotation["direction"]));
    std::optional<Orvo::Point3D> offset;
    if (element.isMember("offset")) offset = asPoint(element["offset"]);
    std::unique_ptr<RotaryAxisDefinition> rotary;
    // Only both limits make a limited axis: one alone is dropped, and the
    // axis turns without end.
    if (min && max)
      rotary = std::make_unique<LimitedRotaryAxisDefinition>(control, valueAsModelled, home, name, stepSize, point,
                                                             direction, *min, *max);
    else
      rotary = std::make_unique<InfiniteRotaryAxisDefinition>(control, valueAsModelled, home, name, stepSize, point,
                                                              direction);
    rotary->setOffset(offset);
    axis = std::move(rotary);
  }
  axis->setDefaultToolChangePosition(toolChangePosition);
  return axis;
}

std::optional<Orvo::Frame> MTKReader::parseAttachFrame(Json::Value const& value) {
  if (value.isNull()) return std::nullopt;
  Orvo::Point3D const point = asPoint(value["point"]);
  Orvo::Vector3D const zDirection = asVector(value["z_direction"]);
  Orvo::Vector3D const xDirection = asVector(value["x_direction"]);
  std::optional<Orvo::Frame> frame = Orvo::Frame::make(point, xDirection, zDirection);
  if (!frame) fail(MTKReadErrorType::BAD_ATTACH_FRAME, kBadAttachFrame, kBadAttachFrameExample);
  return frame;
}

std::optional<SpindleDefinition> MTKReader::parseSpindle(Json::Value const& value) {
  if (value.isNull()) return std::nullopt;
  std::optional<double> minSpeed, maxSpeed, power, peakTorque, peakTorqueSpeed;
  std::string description;
  if (value.isMember("min_speed")) minSpeed = asDouble(value["min_speed"]);
  if (value.isMember("max_speed")) maxSpeed = asDouble(value["max_speed"]);
  if (value.isMember("power")) power = asDouble(value["power"]);
  if (value.isMember("peak_torque")) peakTorque = asDouble(value["peak_torque"]);
  if (value.isMember("peak_torque_speed")) peakTorqueSpeed = asDouble(value["peak_torque_speed"]);
  if (value.isMember("description")) description = asString(value["description"]);

  auto const arg = [&value](char const* key) { return Orvo::Variant(value[key].asDouble()); };
  if (minSpeed && *minSpeed < 0) fail(MTKReadErrorType::BAD_SPINDLE, kMinSpeed, {arg("min_speed")});
  if (maxSpeed && *maxSpeed < 0) fail(MTKReadErrorType::BAD_SPINDLE, kMaxSpeed, {arg("max_speed")});
  if (minSpeed && maxSpeed && *minSpeed > *maxSpeed)
    fail(MTKReadErrorType::BAD_SPINDLE, kSpeeds, {arg("min_speed"), arg("max_speed")});
  if (minSpeed && peakTorqueSpeed && *minSpeed > *peakTorqueSpeed)
    fail(MTKReadErrorType::BAD_SPINDLE, kPeakBelowMin, {arg("peak_torque_speed")});
  if (peakTorqueSpeed && maxSpeed && *peakTorqueSpeed > *maxSpeed)
    fail(MTKReadErrorType::BAD_SPINDLE, kPeakAboveMax, {arg("peak_torque_speed")});
  return SpindleDefinition(minSpeed, maxSpeed, power, peakTorque, peakTorqueSpeed, description);
}

std::optional<ToolStationDefinition> MTKReader::parseToolStation(Json::Value const& value) {
  using Orvo::Quantity::Distance;
  if (value.isNull()) return std::nullopt;
  std::optional<Distance> maxToolLength, maxToolDiameter;
  if (value.isMember("max_tool_length")) maxToolLength = Distance(asDouble(value["max_tool_length"]));
  if (value.isMember("max_tool_diameter")) maxToolDiameter = Distance(asDouble(value["max_tool_diameter"]));
  Orvo::EnumBitset<MachineCoolant> coolants;
  if (value.isMember("coolants")) coolants = Orvo::EnumBitsetJson::load<MachineCoolant>(value["coolants"]);
  std::optional<ToolStationInterfaceName> toolInterface = parseToolInterface(value["tool_interface"]);
  if (maxToolLength && maxToolLength->get() < 0)
    fail(MTKReadErrorType::BAD_TOOL_STATION, kToolLength, {Orvo::Variant(maxToolLength->get())});
  if (maxToolDiameter && maxToolDiameter->get() < 0)
    fail(MTKReadErrorType::BAD_TOOL_STATION, kToolDiameter, {Orvo::Variant(maxToolDiameter->get())});
  return ToolStationDefinition(maxToolLength, maxToolDiameter, coolants, std::move(toolInterface));
}

std::optional<ToolStationInterfaceName> MTKReader::parseToolInterface(Json::Value const& value) {
  if (value.isNull()) return std::nullopt;
  if (!value.isArray()) throw MTKReaderException(MTKReadErrorType::BAD_TOOL_STATION, localised(kToolInterface));
  if (value.empty()) return std::nullopt;
  return ToolStationInterfaceName(value[0].asString());
}

std::optional<TurretDefinition> MTKReader::parseTurretDefinition(Json::Value const& value) {
  if (value.isNull()) return std::nullopt;
  int indexCount = 0;
  if (value.isMember("index_count")) indexCount = Orvo::JsonUtils::parseInt(value["index_count"]);
  if (indexCount < 0) fail(MTKReadErrorType::BAD_TURRET, kIndexCount, {Orvo::Variant(indexCount)});
  return TurretDefinition(static_cast<unsigned int>(indexCount));
}

PartType MTKReader::parseType(std::string const& word) {
  if (word == "linear") return PartType::LINEAR;
  if (word == "rotary") return PartType::ROTARY;
  if (word == "static") return PartType::STATIC;
  if (word == "head") return PartType::HEAD;
  if (word == "table") return PartType::TABLE;
  fail(MTKReadErrorType::BAD_PART_TYPE, kBadPartType, kBadPartTypeExample);
}

ControlType MTKReader::parseControlType(std::string const& word) {
  if (word == "driven") return ControlType::DRIVEN;
  if (word == "secondary") return ControlType::SECONDARY;
  if (word == "ancillary") return ControlType::ANCILLARY;
  if (word == "link") return ControlType::LINK;
  if (word == "subordinate") return ControlType::SUBORDINATE;
  if (word == "manual") return ControlType::MANUAL;
  fail(MTKReadErrorType::BAD_CONTROL, kBadControl, kBadControlExample);
}

Handedness MTKReader::parseHandedness(std::string const& word) {
  if (word == "right-handed") return Handedness::RIGHT_HANDED;
  if (word == "left-handed") return Handedness::LEFT_HANDED;
  fail(MTKReadErrorType::BAD_CONVENTION, kBadConvention, kBadConventionExample);
}

double MTKReader::asDouble(Json::Value const& value) {
  if (!value.isDouble()) fail(MTKReadErrorType::EXPECTED_NUMBER, kExpectedNumber, kExpectedNumberExample);
  return value.asDouble();
}

std::string MTKReader::asString(Json::Value const& value) {
  if (!value.isString()) fail(MTKReadErrorType::EXPECTED_STRING, kExpectedString, kExpectedStringExample);
  return value.asString();
}

Orvo::Vector3D MTKReader::asVector(Json::Value const& value) {
  double xyz[3];
  if (!Orvo::JsonUtils::getThreeDoubles(value, xyz)) fail(MTKReadErrorType::BAD_VECTOR, kBadVector, kBadVectorExample);
  return Orvo::Vector3D(xyz[0], xyz[1], xyz[2]);
}

Orvo::Point3D MTKReader::asPoint(Json::Value const& value) {
  Orvo::Vector3D const v = asVector(value);
  return Orvo::Point3D(v.x, v.y, v.z);
}

}  // namespace machine
