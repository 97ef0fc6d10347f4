#pragma once
// Writes controller configurations in their JSON form: a stand-alone
// document that maps configuration names to configuration objects, or, by
// toJson, one configuration object, the body of a "controller" feature.

#include <json/value.h>

#include <ostream>
#include <vector>

#include "machine/machine/AxisConfiguration.h"
#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/WriterStatus.h"

namespace machine {

class ControllerConfigurationsWriter {
public:
  /// Configurations without axes are left out, as they couldn't be read
  /// back; with nothing left, nothing is written and the result is success.
  WriterStatus write(std::ostream& out, std::vector<ControllerConfiguration> const& configurations);
  WriterStatus write(std::ostream& out, ControllerConfiguration const& configuration);

  /// The configuration object.
  static Json::Value toJson(ControllerConfiguration const& configuration);

private:
  static Json::Value axisConfigurationToJson(AxisConfiguration const* configuration);
  static void buildTree(ControllerConfiguration const& configuration, Json::Value& root);
  static WriterStatus writeOut(std::ostream& out, Json::Value& root);
};

}  // namespace machine
