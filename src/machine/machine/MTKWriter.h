#pragma once
// Writes a KinematicsDefinition as an MTK document.

#include <json/value.h>

#include <iosfwd>

#include "machine/machine/ControlType.h"
#include "machine/machine/MTKIOConverter.h"
#include "machine/machine/PartType.h"
#include "machine/machine/WriterStatus.h"
#include "util/utility/math/Frame.h"

namespace machine {

class KinematicsDefinition;
class PartDefinition;
class RotaryAxisDefinition;
class SpindleDefinition;
class ToolStationDefinition;
class TurretDefinition;

class MTKWriter {
public:
  /// "units", "conventions" and, when there are base parts, "parts".
  static Json::Value toJson(KinematicsDefinition const& kinematics);
  /// The styled document and an end of line. The stream's exception mask is
  /// the caller's: only a stream that throws can report a write failure.
  static WriterStatus write(std::ostream& out, KinematicsDefinition const& kinematics);

private:
  static Json::Value partToJson(PartDefinition const& part, MTKIOConverter const& converter);
  static Json::Value attachFrameToJson(Orvo::Frame const& frame);
  static Json::Value axisOfRotationToJson(RotaryAxisDefinition const& axis, MTKIOConverter const& converter);
  static Json::Value spindleDefinitionToJson(SpindleDefinition const& spindle);
  static Json::Value toolStationDefinitionToJson(ToolStationDefinition const& station);
  static Json::Value turretDefinitionToJson(TurretDefinition const& turret);
  static char const* partTypeToString(PartType partType);
  static char const* controlTypeToString(ControlType control);
};

}  // namespace machine
