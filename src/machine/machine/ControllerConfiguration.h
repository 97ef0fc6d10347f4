#pragma once
// How the controller drives a machine: which part is the head and which the
// table, the settings of each axis, and the modes and limits of rapid motion.
// A machine definition may hold several of these for one kinematics, each a
// "controller" feature. Its JSON form is written and read by
// ControllerConfigurationsWriter and ControllerConfigurationsReader.

#include <json/value.h>

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "machine/machine/AxisConfiguration.h"
#include "machine/machine/CopyTag.h"
#include "machine/machine/MachineFeatureDefinitionImpl.h"
#include "machine/machine/NcCodeKinematicInterpolationMode.h"
#include "nc/MachinePartId.h"
#include "util/utility/Speed.h"

namespace machine {

class ControllerConfiguration : public MachineFeatureDefinitionImpl<ControllerConfiguration, MachineFeatureDefinition> {
public:
  using AxisConfigurationMap = std::map<Orvo::MachinePartId, std::unique_ptr<AxisConfiguration>>;

  /// Nothing set and no axis configurations.
  ControllerConfiguration();
  ControllerConfiguration(AxisConfigurationMap&& axisConfigurations, std::string const& featureId);
  /// Reads the body of a "controller" feature; throws as
  /// ControllerConfigurationsReader::read does.
  ControllerConfiguration(std::string const& id, Json::Value const& data);
  /// A deep copy, axis configurations included.
  ControllerConfiguration(CopyTag, ControllerConfiguration const& other);
  ControllerConfiguration(ControllerConfiguration&& other);
  ControllerConfiguration& operator=(ControllerConfiguration&& other);
  ~ControllerConfiguration() override;

  static std::string featureTypeIdStatic();

  /// The feature id.
  std::string const& name() const;
  void setName(std::string const& name);

  /// Null when the part has no configuration of its own.
  AxisConfiguration const* axisConfiguration(Orvo::MachinePartId const& partId) const;
  AxisConfigurationMap const& axisConfigurations() const noexcept { return m_axisConfigurations; }
  /// Adds or replaces; what is replaced is destroyed.
  void setAxisConfiguration(Orvo::MachinePartId const& partId, std::unique_ptr<AxisConfiguration> configuration);
  /// Null when the part had none.
  std::unique_ptr<AxisConfiguration> removeAxisConfiguration(Orvo::MachinePartId const& partId);

  /// The HEAD part or a part above it, such as a turret.
  std::optional<Orvo::MachinePartId> headInfoPartId() const { return m_headInfoPartId; }
  void setHeadInfoPartId(std::optional<Orvo::MachinePartId> const& partId) { m_headInfoPartId = partId; }
  std::optional<Orvo::MachinePartId> tablePartId() const { return m_tablePartId; }
  void setTablePartId(std::optional<Orvo::MachinePartId> const& partId) { m_tablePartId = partId; }

  std::optional<Orvo::Quantity::Speed> maxNormalSpeed() const noexcept { return m_maxNormalSpeed; }
  void setMaxNormalSpeed(std::optional<Orvo::Quantity::Speed> const& speed) noexcept { m_maxNormalSpeed = speed; }

  std::optional<unsigned int> maximumBlockProcessingSpeed() const noexcept { return m_maximumBlockProcessingSpeed; }
  /// Once set, the block processing speed cannot be cleared.
  void setMaximumBlockProcessingSpeed(unsigned int blocksPerSecond) noexcept {
    m_maximumBlockProcessingSpeed = blocksPerSecond;
  }

  std::optional<NcCodeKinematicInterpolationMode> nonTcpRapidInterpolationMode() const noexcept {
    return m_nonTcpRapidInterpolationMode;
  }
  /// Expects UNSYNCHRONIZED or SYNCHRONIZED, and stores any mode.
  void setNonTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode mode);
  std::optional<NcCodeKinematicInterpolationMode> tcpRapidInterpolationMode() const noexcept {
    return m_tcpRapidInterpolationMode;
  }
  /// Takes any mode without a check; unlike the non-TCP setter, on purpose.
  void setTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode mode) noexcept {
    m_tcpRapidInterpolationMode = mode;
  }

  /// The ids, speeds, modes, feature id and every axis configuration by value.
  friend bool operator==(ControllerConfiguration const& a, ControllerConfiguration const& b);
  friend bool operator!=(ControllerConfiguration const& a, ControllerConfiguration const& b) { return !(a == b); }

  /// The configuration object of the JSON form.
  Json::Value getPersistData() const override;

private:
  std::optional<Orvo::MachinePartId> m_headInfoPartId;
  std::optional<Orvo::MachinePartId> m_tablePartId;
  std::optional<Orvo::Quantity::Speed> m_maxNormalSpeed;
  std::optional<unsigned int> m_maximumBlockProcessingSpeed;
  std::optional<NcCodeKinematicInterpolationMode> m_nonTcpRapidInterpolationMode;
  std::optional<NcCodeKinematicInterpolationMode> m_tcpRapidInterpolationMode;
  AxisConfigurationMap m_axisConfigurations;
};

}  // namespace machine
