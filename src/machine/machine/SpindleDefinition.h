#pragma once
// What a spindle can do. Units are carried as they come from the file.

#include <optional>
#include <string>

namespace machine {

class SpindleDefinition {
public:
  /// Power and both torque values empty.
  SpindleDefinition(std::optional<double> minSpeed, std::optional<double> maxSpeed, std::string description);
  SpindleDefinition(std::optional<double> minSpeed, std::optional<double> maxSpeed, std::optional<double> power,
                    std::optional<double> peakTorque, std::optional<double> peakTorqueSpeed, std::string description);
  SpindleDefinition(SpindleDefinition const&) = default;
  SpindleDefinition& operator=(SpindleDefinition const&) = default;

  std::optional<double> minSpeed() const noexcept { return m_minSpeed; }
  std::optional<double> maxSpeed() const noexcept { return m_maxSpeed; }
  std::optional<double> power() const noexcept { return m_power; }
  std::optional<double> peakTorque() const noexcept { return m_peakTorque; }
  std::optional<double> peakTorqueSpeed() const noexcept { return m_peakTorqueSpeed; }
  std::string description() const { return m_description; }

  // Each setter checks only what it states; the value is stored whatever the
  // check found.
  void setMinSpeed(std::optional<double> minSpeed);
  void setMaxSpeed(std::optional<double> maxSpeed);
  void setPower(std::optional<double> power);
  void setPeakTorque(std::optional<double> peakTorque);
  void setPeakTorqueSpeed(std::optional<double> peakTorqueSpeed);
  void setDescription(std::string const& description);

  friend bool operator==(SpindleDefinition const& a, SpindleDefinition const& b) noexcept;
  friend bool operator!=(SpindleDefinition const& a, SpindleDefinition const& b) noexcept { return !(a == b); }

private:
  std::optional<double> m_minSpeed;
  std::optional<double> m_maxSpeed;
  std::optional<double> m_power;
  std::optional<double> m_peakTorque;
  std::optional<double> m_peakTorqueSpeed;
  std::string m_description;
};

}  // namespace machine
