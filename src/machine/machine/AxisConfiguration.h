#pragma once
// The controller's settings for one part of the machine: how its axis is
// homed, limited, reset and driven. Everything has a default, so a part
// without settings behaves as a default-built AxisConfiguration.

#include <optional>

#include "machine/machine/AnglePreference.h"
#include "machine/machine/CopyTag.h"
#include "machine/machine/ResetAxisPreference.h"
#include "nc/AxisName.h"
#include "nc/AxisValue.h"
#include "nc/AxisValueRange.h"
#include "util/utility/Speed.h"

namespace machine {

class AxisConfiguration {
public:
  AxisConfiguration() = default;
  AxisConfiguration(CopyTag, AxisConfiguration const& other);
  virtual ~AxisConfiguration();

  bool isReversed() const noexcept { return m_isReversed; }
  Orvo::AxisValue const& zeroPositionOffset() const noexcept { return m_zeroPositionOffset; }
  ResetAxisPreference const& whenToReset() const noexcept { return m_whenToReset; }
  /// Overrides the axis definition's home for the runtime axis.
  std::optional<Orvo::AxisValue> const& home() const noexcept { return m_home; }
  /// Narrows the axis's range; infinite when it doesn't.
  Orvo::AxisValueRange const& restrictedRange() const noexcept { return m_restrictedRange; }
  /// Overrides the axis definition's name for the runtime axis.
  std::optional<Orvo::AxisName> const& name() const noexcept { return m_name; }
  std::optional<Orvo::Quantity::Speed> const& maxNormalSpeed() const noexcept { return m_maxNormalSpeed; }
  std::optional<Orvo::Quantity::Speed> const& maxRapidSpeed() const noexcept { return m_maxRapidSpeed; }
  std::optional<int> const& coordinate() const noexcept { return m_coordinate; }
  bool isTCPEnabled() const noexcept { return m_tcp; }
  AnglePreference const& preference() const noexcept { return m_preference; }
  /// Makes an unlimited axis wrap around; infinite when it doesn't.
  Orvo::AxisValueRange const& wrapAroundAtRange() const noexcept { return m_wrapAroundAtRange; }

  // Setters store their argument unchecked: a file's values are validated by
  // its reader, and a bad part id shows when a machine is built.
  void setIsReversed(bool reversed) noexcept { m_isReversed = reversed; }
  void setZeroPositionOffset(Orvo::AxisValue const& offset) noexcept { m_zeroPositionOffset = offset; }
  void setWhenToReset(ResetAxisPreference const& whenToReset) noexcept { m_whenToReset = whenToReset; }
  void setHome(std::optional<Orvo::AxisValue> const& home) noexcept { m_home = home; }
  void setRestrictedRange(Orvo::AxisValueRange const& range) { m_restrictedRange = range; }
  void setName(std::optional<Orvo::AxisName> const& name) { m_name = name; }
  void setMaxNormalSpeed(std::optional<Orvo::Quantity::Speed> const& speed) noexcept { m_maxNormalSpeed = speed; }
  void setMaxRapidSpeed(std::optional<Orvo::Quantity::Speed> const& speed) noexcept { m_maxRapidSpeed = speed; }
  void setCoordinate(std::optional<int> const& coordinate) noexcept { m_coordinate = coordinate; }
  void setTCPEnabled(bool enabled) noexcept { m_tcp = enabled; }
  void setPreference(AnglePreference const& preference) noexcept { m_preference = preference; }
  void setWrapAroundAtRange(Orvo::AxisValueRange const& range) { m_wrapAroundAtRange = range; }

  bool hasRestrictedLimits() const noexcept { return !m_restrictedRange.isInfinite(); }
  bool hasWrapAroundAtLimits() const noexcept { return !m_wrapAroundAtRange.isInfinite(); }

  /// All twelve fields, values compared exactly.
  friend bool operator==(AxisConfiguration const& a, AxisConfiguration const& b);
  friend bool operator!=(AxisConfiguration const& a, AxisConfiguration const& b) { return !(a == b); }

private:
  // Copies are written out with CopyTag, as for every deep copy.
  AxisConfiguration(AxisConfiguration const&) = default;
  AxisConfiguration& operator=(AxisConfiguration const&) = default;

  bool m_isReversed = false;
  Orvo::AxisValue m_zeroPositionOffset{0.0};
  ResetAxisPreference m_whenToReset{ResetAxisValue::NEVER};
  std::optional<Orvo::AxisValue> m_home;
  Orvo::AxisValueRange m_restrictedRange;
  std::optional<Orvo::AxisName> m_name;
  std::optional<Orvo::Quantity::Speed> m_maxNormalSpeed;
  std::optional<Orvo::Quantity::Speed> m_maxRapidSpeed;
  std::optional<int> m_coordinate;
  bool m_tcp = true;
  AnglePreference m_preference{AnglePreferenceValue::NO_PREFERENCE};
  Orvo::AxisValueRange m_wrapAroundAtRange;
};

}  // namespace machine
