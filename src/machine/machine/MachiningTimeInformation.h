#pragma once
// The factors of a machining-time estimate: how the programmed feed relates
// to the real one, and how long a tool change takes. The "machining" feature.

#include <json/value.h>

#include <string>

#include "machine/machine/CopyTag.h"
#include "machine/machine/MachineFeatureDefinitionImpl.h"

namespace machine {

class MachiningTimeInformation
    : public MachineFeatureDefinitionImpl<MachiningTimeInformation, MachineFeatureDefinition> {
public:
  /// A feedrate ratio of 1 and a tool change of 15.
  MachiningTimeInformation();
  /// Reads a "machining" body; every key is optional and a missing one keeps
  /// its default. Throws std::runtime_error on a value that isn't a number.
  MachiningTimeInformation(std::string const& featureId, Json::Value const& data);
  MachiningTimeInformation(CopyTag, MachiningTimeInformation const& other);

  static std::string featureTypeIdStatic();

  /// Both keys, always.
  Json::Value getPersistData() const override;

  double feedrateRatio() const noexcept { return m_feedrateRatio; }
  void setFeedrateRatio(double value) noexcept { m_feedrateRatio = value; }
  double toolChangeTime() const noexcept { return m_toolChangeTime; }
  void setToolChangeTime(double value) noexcept { m_toolChangeTime = value; }

private:
  double m_feedrateRatio = 1.0;
  double m_toolChangeTime = 15.0;
};

}  // namespace machine
