#include "machine/machine/SpindleDefinition.h"

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\SpindleDefinition";
}

namespace machine {

SpindleDefinition::SpindleDefinition(std::optional<double> minSpeed, std::optional<double> maxSpeed,
                                     std::string description)
    : m_minSpeed(minSpeed), m_maxSpeed(maxSpeed), m_description(std::move(description)) {
  EXPECTS(!minSpeed || *minSpeed >= 0);
  EXPECTS(!maxSpeed || *maxSpeed >= 0);
  EXPECTS(!minSpeed || !maxSpeed || *minSpeed <= *maxSpeed);
}

SpindleDefinition::SpindleDefinition(std::optional<double> minSpeed, std::optional<double> maxSpeed,
                                     std::optional<double> power, std::optional<double> peakTorque,
                                     std::optional<double> peakTorqueSpeed, std::string description)
    : m_minSpeed(minSpeed),
      m_maxSpeed(maxSpeed),
      m_power(power),
      m_peakTorque(peakTorque),
      m_peakTorqueSpeed(peakTorqueSpeed),
      m_description(std::move(description)) {
  EXPECTS(!minSpeed || *minSpeed >= 0);
  EXPECTS(!maxSpeed || *maxSpeed >= 0);
  EXPECTS(!minSpeed || !maxSpeed || *minSpeed <= *maxSpeed);
  EXPECTS(!power || *power >= 0);
  EXPECTS(!peakTorque || *peakTorque >= 0);
  EXPECTS(!peakTorqueSpeed || *peakTorqueSpeed >= 0);
}

void SpindleDefinition::setMinSpeed(std::optional<double> minSpeed) {
  EXPECTS(!minSpeed || *minSpeed >= 0);
  EXPECTS(!minSpeed || !maxSpeed() || *minSpeed <= *maxSpeed());
  m_minSpeed = minSpeed;
}

void SpindleDefinition::setMaxSpeed(std::optional<double> maxSpeed) {
  EXPECTS(!maxSpeed || *maxSpeed >= 0);
  EXPECTS(!minSpeed() || !maxSpeed || *minSpeed() <= *maxSpeed);
  m_maxSpeed = maxSpeed;
}

void SpindleDefinition::setPower(std::optional<double> power) { m_power = power; }

void SpindleDefinition::setPeakTorque(std::optional<double> peakTorque) { m_peakTorque = peakTorque; }

void SpindleDefinition::setPeakTorqueSpeed(std::optional<double> peakTorqueSpeed) {
  EXPECTS(!peakTorqueSpeed || *peakTorqueSpeed >= 0);
  EXPECTS(!minSpeed() || !peakTorqueSpeed || *minSpeed() <= *peakTorqueSpeed);
  EXPECTS(!maxSpeed() || !peakTorqueSpeed || *peakTorqueSpeed <= *maxSpeed());
  m_peakTorqueSpeed = peakTorqueSpeed;
}

void SpindleDefinition::setDescription(std::string const& description) { m_description = description; }

bool operator==(SpindleDefinition const& a, SpindleDefinition const& b) noexcept {
  return a.m_minSpeed == b.m_minSpeed && a.m_maxSpeed == b.m_maxSpeed && a.m_power == b.m_power &&
         a.m_peakTorque == b.m_peakTorque && a.m_peakTorqueSpeed == b.m_peakTorqueSpeed &&
         a.m_description == b.m_description;
}

}  // namespace machine
