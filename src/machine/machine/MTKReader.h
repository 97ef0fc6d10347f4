#pragma once
// Reads an MTK document into a KinematicsDefinition.
//
// Two entry points that report differently: the stream form reports every
// failure in its result; the value form returns only a units failure in its
// result and lets MTKReaderException and any other exception pass.

#include <json/value.h>

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "machine/machine/ControlType.h"
#include "machine/machine/Handedness.h"
#include "machine/machine/MTKIOConverter.h"
#include "machine/machine/MTKReadResult.h"
#include "machine/machine/PartDefinition.h"
#include "machine/machine/PartType.h"
#include "util/utility/math/Point3D.h"
#include "util/utility/math/Vector3D.h"

namespace machine {

class MTKReader {
public:
  static MTKReadResult read(std::istream& in);
  static MTKReadResult read(Json::Value const& root);

private:
  static MTKIOConverter readConventions(Json::Value const& conventions);
  static bool checkUnits(Json::Value const& root);
  static std::vector<std::unique_ptr<PartDefinition>> readParts(Json::Value const& parts,
                                                                MTKIOConverter const& converter);
  static std::unique_ptr<AxisDefinition> readAxis(Json::Value const& element, PartType type,
                                                  MTKIOConverter const& converter);
  static std::optional<Orvo::Frame> parseAttachFrame(Json::Value const& value);
  static std::optional<SpindleDefinition> parseSpindle(Json::Value const& value);
  static std::optional<ToolStationDefinition> parseToolStation(Json::Value const& value);
  static std::optional<ToolStationInterfaceName> parseToolInterface(Json::Value const& value);
  static std::optional<TurretDefinition> parseTurretDefinition(Json::Value const& value);
  static PartType parseType(std::string const& word);
  static ControlType parseControlType(std::string const& word);
  static Handedness parseHandedness(std::string const& word);
  static double asDouble(Json::Value const& value);
  static std::string asString(Json::Value const& value);
  static Orvo::Vector3D asVector(Json::Value const& value);
  static Orvo::Point3D asPoint(Json::Value const& value);
};

}  // namespace machine
