#pragma once
// Reads controller configurations from their JSON form: a stand-alone
// document that maps configuration names to configuration objects, or one
// configuration object, the body of a "controller" feature.
//
// Failures are exceptions: std::runtime_error, or std::out_of_range for an
// unknown reset or angle preference word.

#include <json/value.h>

#include <istream>
#include <memory>
#include <string>
#include <vector>

#include "machine/machine/AxisConfiguration.h"
#include "machine/machine/ControllerConfiguration.h"

namespace machine {

class ControllerConfigurationsReader {
public:
  /// Every configuration of the document, in the order of their names.
  static std::vector<ControllerConfiguration> read(std::istream& in);
  /// One configuration object, named `name`.
  static ControllerConfiguration read(std::string const& name, Json::Value const& value);

private:
  static ControllerConfiguration::AxisConfigurationMap parseAxisConfigs(Json::Value const& parts);
  static std::unique_ptr<AxisConfiguration> parseAxisConfig(Json::Value const& value);
  static void parseGeneralConfig(ControllerConfiguration& configuration, Json::Value const& value);
};

}  // namespace machine
