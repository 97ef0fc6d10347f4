#include "machine/machine/MTKWriter.h"

#include <exception>
#include <ios>
#include <ostream>
#include <string>

#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/LinearAxisDefinition.h"
#include "machine/machine/RotaryAxisDefinition.h"
#include "util/utility/Basic.h"
#include "util/utility/EnumBitsetJson.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\MTKWriter";

Json::Value threeDoubles(double x, double y, double z) {
  Json::Value v(Json::arrayValue);
  v.append(x);
  v.append(y);
  v.append(z);
  return v;
}

Json::Value toJson(Orvo::Vector3D const& v) { return threeDoubles(v.x, v.y, v.z); }
Json::Value toJson(Orvo::Point3D const& p) { return threeDoubles(p.x, p.y, p.z); }

}  // namespace

namespace machine {

Json::Value MTKWriter::toJson(KinematicsDefinition const& kinematics) {
  Json::Value root;
  root["units"]["length"] = "mm";
  root["units"]["angle"] = "degrees";
  MTKIOConverter const& converter = kinematics.mtkIOConverter();
  root["conventions"]["rotation"] =
      static_cast<int>(converter.externalHandedness()) == 0 ? "right-handed" : "left-handed";
  for (PartDefinition const& part : kinematics.baseParts()) root["parts"].append(partToJson(part, converter));
  return root;
}

WriterStatus MTKWriter::write(std::ostream& out, KinematicsDefinition const& kinematics) {
  Json::Value document;
  try {
    document = toJson(kinematics);
  } catch (std::exception const&) {
    return WriterStatus("Error, couldn't write .MTK file. Please contact Vantora.");
  }
  try {
    out << document.toStyledString() << std::endl;
  } catch (std::ios_base::failure const&) {
    return WriterStatus(
        "Error, couldn't write .MTK file. This may be due to a permission error or if you're out of disc space.");
  }
  return WriterStatus();
}

Json::Value MTKWriter::partToJson(PartDefinition const& part, MTKIOConverter const& converter) {
  Json::Value json;
  json["id"] = part.identifier().id();
  PartType const type = part.type();
  json["type"] = partTypeToString(type);
  if (type == PartType::HEAD || type == PartType::TABLE) json["attach_frame"] = attachFrameToJson(part.attachFrame());

  if (AxisDefinition const* axis = part.axisDefinition()) {
    json["control"] = controlTypeToString(axis->defaultControl());
    if (auto const name = axis->name()) json["name"] = name->name();
    if (auto const step = axis->stepSize()) json["step_size"] = step->value();
    if (auto const min = axis->physicalMin()) json["min"] = min->value();
    if (auto const max = axis->physicalMax()) json["max"] = max->value();
    // Exactly unequal to 0, so a NaN is written too.
    if (axis->defaultHome().value() != 0) json["home"] = axis->defaultHome().value();
    if (axis->valueAsModelled().value() != 0) json["value_as_modelled"] = axis->valueAsModelled().value();
    if (auto const toolChange = axis->defaultToolChangePosition()) json["tool_change_position"] = toolChange->value();
    if (type == PartType::LINEAR) {
      json["direction"] = ::toJson(axis->direction());
    } else if (type == PartType::ROTARY) {
      auto const* rotaryAxis = dynamic_cast<RotaryAxisDefinition const*>(axis);
      ORVO_ASSERT(rotaryAxis != nullptr);
      if (rotaryAxis) {
        json["axis_of_rotation"] = axisOfRotationToJson(*rotaryAxis, converter);
        if (auto const offset = rotaryAxis->offset()) json["offset"] = ::toJson(*offset);
      }
    }
  }

  if (auto const& spindle = part.spindleDefinition()) json["spindle"] = spindleDefinitionToJson(*spindle);
  if (auto const& station = part.toolStationDefinition()) json["tool_station"] = toolStationDefinitionToJson(*station);
  if (auto const& turret = part.turretDefinition()) json["turret"] = turretDefinitionToJson(*turret);
  if (auto const& displayName = part.displayName()) json["display_name"] = displayName->name();
  for (PartDefinition const& child : part.children()) json["parts"].append(partToJson(child, converter));
  return json;
}

Json::Value MTKWriter::attachFrameToJson(Orvo::Frame const& frame) {
  Json::Value json;
  json["point"] = ::toJson(frame.origin());
  json["z_direction"] = ::toJson(frame.zAxis());
  json["x_direction"] = ::toJson(frame.xAxis());
  return json;
}

Json::Value MTKWriter::axisOfRotationToJson(RotaryAxisDefinition const& axis, MTKIOConverter const& converter) {
  Json::Value json;
  json["point"] = ::toJson(axis.point());
  json["direction"] = ::toJson(converter.convertAxialVectorToExternal(axis.direction()));
  return json;
}

Json::Value MTKWriter::spindleDefinitionToJson(SpindleDefinition const& spindle) {
  Json::Value json(Json::objectValue);
  if (auto const v = spindle.minSpeed()) json["min_speed"] = *v;
  if (auto const v = spindle.maxSpeed()) json["max_speed"] = *v;
  if (auto const v = spindle.power()) json["power"] = *v;
  if (auto const v = spindle.peakTorque()) json["peak_torque"] = *v;
  if (auto const v = spindle.peakTorqueSpeed()) json["peak_torque_speed"] = *v;
  if (!spindle.description().empty()) json["description"] = spindle.description();
  return json;
}

Json::Value MTKWriter::toolStationDefinitionToJson(ToolStationDefinition const& station) {
  Json::Value json(Json::objectValue);
  if (auto const v = station.maxToolLength()) json["max_tool_length"] = v->get();
  if (auto const v = station.maxToolDiameter()) json["max_tool_diameter"] = v->get();
  json["coolants"] = Orvo::EnumBitsetJson::save(station.coolants());
  if (auto const toolInterface = station.toolInterface()) {
    Json::Value names(Json::arrayValue);
    names.append(toolInterface->name());
    json["tool_interface"] = names;
  }
  return json;
}

Json::Value MTKWriter::turretDefinitionToJson(TurretDefinition const& turret) {
  Json::Value json;
  json["index_count"] = Json::UInt(turret.indexCount());
  return json;
}

char const* MTKWriter::partTypeToString(PartType partType) {
  switch (partType) {
    case PartType::LINEAR: return "linear";
    case PartType::ROTARY: return "rotary";
    case PartType::STATIC: return "static";
    case PartType::HEAD: return "head";
    default: break;
  }
  ORVO_ASSERT(partType == PartType::TABLE);
  return "table";
}

char const* MTKWriter::controlTypeToString(ControlType control) {
  switch (control) {
    case ControlType::DRIVEN: return "driven";
    case ControlType::SECONDARY: return "secondary";
    case ControlType::ANCILLARY: return "ancillary";
    case ControlType::LINK: return "link";
    case ControlType::SUBORDINATE: return "subordinate";
    default: break;
  }
  ORVO_ASSERT(control == ControlType::MANUAL);
  return "manual";
}

}  // namespace machine
