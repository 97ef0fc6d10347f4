#include "machine/machine/ControllerConfigurationsWriter.h"

#include <ios>
#include <optional>
#include <string>

#include "machine/machine/NcCodeKinematicInterpolationMode.h"

namespace machine {

namespace {

// The word of a mode, or none for MIXED, which has no word: such a mode is
// left out of the file, as it couldn't be read back.
std::optional<std::string> modeWord(NcCodeKinematicInterpolationMode mode) {
  for (auto const& entry : Orvo::EnumTraits<NcCodeKinematicInterpolationMode>::keyMap())
    if (entry.second == mode) return entry.first;
  return std::nullopt;
}

}  // namespace

WriterStatus ControllerConfigurationsWriter::write(std::ostream& out,
                                                   std::vector<ControllerConfiguration> const& configurations) {
  Json::Value root;
  for (ControllerConfiguration const& configuration : configurations)
    if (!configuration.axisConfigurations().empty()) buildTree(configuration, root);
  return writeOut(out, root);
}

WriterStatus ControllerConfigurationsWriter::write(std::ostream& out, ControllerConfiguration const& configuration) {
  Json::Value root;
  if (!configuration.axisConfigurations().empty()) buildTree(configuration, root);
  return writeOut(out, root);
}

Json::Value ControllerConfigurationsWriter::toJson(ControllerConfiguration const& configuration) {
  Json::Value json;
  for (auto const& entry : configuration.axisConfigurations())
    json["parts"][entry.first.id()] = axisConfigurationToJson(entry.second.get());
  if (auto const speed = configuration.maxNormalSpeed())
    json["max_normal_speed"] = speed->get(Orvo::Quantity::Speed::SpeedUnit::MILLIMETRES_PER_MINUTE);
  if (auto const blocks = configuration.maximumBlockProcessingSpeed())
    json["max_block_processing_speed"] = Json::Value(static_cast<Json::UInt>(*blocks));
  if (auto const mode = configuration.nonTcpRapidInterpolationMode())
    if (auto const word = modeWord(*mode)) json["non_tcp_rapid_interpolation_mode"] = *word;
  if (auto const mode = configuration.tcpRapidInterpolationMode())
    if (auto const word = modeWord(*mode)) json["tcp_rapid_interpolation_mode"] = *word;
  if (auto const table = configuration.tablePartId()) json["table_part_id"] = table->id();
  if (auto const head = configuration.headInfoPartId()) json["head_info_part_id"] = head->id();
  return json;
}

Json::Value ControllerConfigurationsWriter::axisConfigurationToJson(AxisConfiguration const* configuration) {
  // A part entered without settings behaves as one with the defaults, and is
  // written so.
  AxisConfiguration const defaults;
  AxisConfiguration const& axis = configuration ? *configuration : defaults;

  Json::Value json(Json::objectValue);
  if (axis.name()) json["name"] = axis.name()->name();
  if (axis.home()) json["home"] = axis.home()->value();
  json["reversed"] = axis.isReversed();
  json["zero_position_offset"] = axis.zeroPositionOffset().value();
  if (axis.hasRestrictedLimits()) {
    json["restricted_min"] = axis.restrictedRange().min().value();
    json["restricted_max"] = axis.restrictedRange().max().value();
  }
  if (axis.maxNormalSpeed()) json["max_normal_speed"] = axis.maxNormalSpeed()->get();
  if (axis.maxRapidSpeed()) json["max_rapid_speed"] = axis.maxRapidSpeed()->get();
  json["reset"] = axis.whenToReset().toString();
  if (axis.coordinate()) json["coordinate"] = *axis.coordinate();
  json["tcp"] = axis.isTCPEnabled();
  json["preference"] = axis.preference().toString();
  if (axis.hasWrapAroundAtLimits()) {
    json["wrap_around_at_min"] = axis.wrapAroundAtRange().min().value();
    json["wrap_around_at_max"] = axis.wrapAroundAtRange().max().value();
  }
  return json;
}

void ControllerConfigurationsWriter::buildTree(ControllerConfiguration const& configuration, Json::Value& root) {
  root[configuration.name()] = toJson(configuration);
}

WriterStatus ControllerConfigurationsWriter::writeOut(std::ostream& out, Json::Value& root) {
  if (root.empty()) return WriterStatus();
  try {
    out << root.toStyledString() << std::endl;
  } catch (std::ios_base::failure const& e) {
    return WriterStatus(std::string("Write failed, likely out of disk space or permissions missing: ") + e.what());
  }
  return WriterStatus();
}

}  // namespace machine
