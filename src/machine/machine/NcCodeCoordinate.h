#pragma once
// One coordinate of an NC-code movement: a post-space X, Y or Z, or the
// position of a named machine axis.

#include <optional>

#include "nc/AxisName.h"
#include "nc/AxisValue.h"

namespace machine {

enum class NcCodeCoordinateType : int {
  X = 0,
  Y = 1,
  Z = 2,
  MACHINE_AXIS = 3,
};

class NcCodeCoordinate {
public:
  /// A post-space coordinate; `type` must not be MACHINE_AXIS.
  NcCodeCoordinate(NcCodeCoordinateType type, double value);
  /// A machine axis; the value is kept as its mm().
  NcCodeCoordinate(Orvo::AxisName const& axisName, Orvo::AxisValue const& axisValue);

  NcCodeCoordinateType type() const noexcept { return m_type; }
  /// Set only for a machine axis.
  std::optional<Orvo::AxisName> const& axisName() const noexcept { return m_axisName; }
  /// Requires a machine axis.
  Orvo::AxisValue axisValue() const noexcept;
  double value() const noexcept { return m_value; }

  friend bool operator==(NcCodeCoordinate const& a, NcCodeCoordinate const& b) noexcept {
    return a.m_type == b.m_type && a.m_axisName == b.m_axisName && a.m_value == b.m_value;
  }
  friend bool operator!=(NcCodeCoordinate const& a, NcCodeCoordinate const& b) noexcept { return !(a == b); }

private:
  NcCodeCoordinateType m_type;
  std::optional<Orvo::AxisName> m_axisName;
  double m_value;
};

}  // namespace machine
