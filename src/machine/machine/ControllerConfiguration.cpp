#include "machine/machine/ControllerConfiguration.h"

#include <utility>

#include "machine/machine/ControllerConfigurationsReader.h"
#include "machine/machine/ControllerConfigurationsWriter.h"
#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\ControllerConfiguration";
}

namespace machine {

ControllerConfiguration::ControllerConfiguration() = default;

ControllerConfiguration::ControllerConfiguration(AxisConfigurationMap&& axisConfigurations,
                                                 std::string const& featureId)
    : MachineFeatureDefinitionImpl(featureId), m_axisConfigurations(std::move(axisConfigurations)) {}

ControllerConfiguration::ControllerConfiguration(std::string const& id, Json::Value const& data)
    : ControllerConfiguration(ControllerConfigurationsReader::read(id, data)) {}

ControllerConfiguration::ControllerConfiguration(CopyTag, ControllerConfiguration const& other)
    : MachineFeatureDefinitionImpl(other),
      m_headInfoPartId(other.m_headInfoPartId),
      m_tablePartId(other.m_tablePartId),
      m_maxNormalSpeed(other.m_maxNormalSpeed),
      m_maximumBlockProcessingSpeed(other.m_maximumBlockProcessingSpeed),
      m_nonTcpRapidInterpolationMode(other.m_nonTcpRapidInterpolationMode),
      m_tcpRapidInterpolationMode(other.m_tcpRapidInterpolationMode) {
  for (auto const& entry : other.m_axisConfigurations)
    m_axisConfigurations.emplace(
        entry.first, entry.second ? std::make_unique<AxisConfiguration>(CopyTag{}, *entry.second) : nullptr);
}

// The feature base has no move of its own; its id is copied.
ControllerConfiguration::ControllerConfiguration(ControllerConfiguration&& other)
    : MachineFeatureDefinitionImpl(other),
      m_headInfoPartId(std::move(other.m_headInfoPartId)),
      m_tablePartId(std::move(other.m_tablePartId)),
      m_maxNormalSpeed(other.m_maxNormalSpeed),
      m_maximumBlockProcessingSpeed(other.m_maximumBlockProcessingSpeed),
      m_nonTcpRapidInterpolationMode(other.m_nonTcpRapidInterpolationMode),
      m_tcpRapidInterpolationMode(other.m_tcpRapidInterpolationMode),
      m_axisConfigurations(std::move(other.m_axisConfigurations)) {}

ControllerConfiguration& ControllerConfiguration::operator=(ControllerConfiguration&& other) {
  if (this == &other) return *this;
  MachineFeatureDefinitionImpl::operator=(other);
  m_headInfoPartId = std::move(other.m_headInfoPartId);
  m_tablePartId = std::move(other.m_tablePartId);
  m_maxNormalSpeed = other.m_maxNormalSpeed;
  m_maximumBlockProcessingSpeed = other.m_maximumBlockProcessingSpeed;
  m_nonTcpRapidInterpolationMode = other.m_nonTcpRapidInterpolationMode;
  m_tcpRapidInterpolationMode = other.m_tcpRapidInterpolationMode;
  m_axisConfigurations = std::move(other.m_axisConfigurations);
  return *this;
}

ControllerConfiguration::~ControllerConfiguration() = default;

std::string ControllerConfiguration::featureTypeIdStatic() { return "controller"; }

std::string const& ControllerConfiguration::name() const { return featureId(); }

void ControllerConfiguration::setName(std::string const& name) { setFeatureId(name); }

AxisConfiguration const* ControllerConfiguration::axisConfiguration(Orvo::MachinePartId const& partId) const {
  auto const it = m_axisConfigurations.find(partId);
  return it == m_axisConfigurations.end() ? nullptr : it->second.get();
}

void ControllerConfiguration::setAxisConfiguration(Orvo::MachinePartId const& partId,
                                                   std::unique_ptr<AxisConfiguration> configuration) {
  m_axisConfigurations[partId] = std::move(configuration);
}

std::unique_ptr<AxisConfiguration> ControllerConfiguration::removeAxisConfiguration(Orvo::MachinePartId const& partId) {
  auto const it = m_axisConfigurations.find(partId);
  if (it == m_axisConfigurations.end()) return nullptr;
  std::unique_ptr<AxisConfiguration> removed = std::move(it->second);
  m_axisConfigurations.erase(it);
  return removed;
}

void ControllerConfiguration::setNonTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode mode) {
  EXPECTS(mode == NcCodeKinematicInterpolationMode::UNSYNCHRONIZED ||
          mode == NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  m_nonTcpRapidInterpolationMode = mode;
}

bool operator==(ControllerConfiguration const& a, ControllerConfiguration const& b) {
  if (a.m_headInfoPartId != b.m_headInfoPartId || a.m_tablePartId != b.m_tablePartId ||
      a.m_maxNormalSpeed != b.m_maxNormalSpeed || a.m_maximumBlockProcessingSpeed != b.m_maximumBlockProcessingSpeed ||
      a.m_nonTcpRapidInterpolationMode != b.m_nonTcpRapidInterpolationMode ||
      a.m_tcpRapidInterpolationMode != b.m_tcpRapidInterpolationMode || a.featureId() != b.featureId() ||
      a.m_axisConfigurations.size() != b.m_axisConfigurations.size())
    return false;
  auto itB = b.m_axisConfigurations.begin();
  for (auto const& entryA : a.m_axisConfigurations) {
    auto const& entryB = *itB++;
    if (entryA.first != entryB.first) return false;
    AxisConfiguration const* axisA = entryA.second.get();
    AxisConfiguration const* axisB = entryB.second.get();
    if (!axisA || !axisB) {
      if (axisA != axisB) return false;
    } else if (*axisA != *axisB) {
      return false;
    }
  }
  return true;
}

Json::Value ControllerConfiguration::getPersistData() const { return ControllerConfigurationsWriter::toJson(*this); }

}  // namespace machine
