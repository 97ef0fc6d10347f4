#pragma once
// The position of one axis: millimetres for a linear axis, degrees for a
// rotary one. A small polymorphic value because it takes part in persistence.

#include "nc/PersistClass.h"
#include "nc/PersistentObject.h"
#include "util/utility/Angle.h"

namespace persist {
class Persist;
}

namespace Orvo {

class AxisValue : public persist::PersistentObject {
public:
  /// Stored as "AxisValue", version 1: the one double "m_value".
  static persist::PersistClass const iceStaticClass;

  /// Zero; the target of a read from persistence.
  AxisValue() noexcept = default;
  AxisValue(double value) noexcept : m_value(value) {}
  /// From radians: stored as degrees.
  AxisValue(Radian angle) noexcept : m_value(angle.get() * kDegreesPerRadian) {}
  AxisValue(AxisValue const&) noexcept = default;
  AxisValue(AxisValue&&) noexcept = default;
  AxisValue& operator=(AxisValue const&) noexcept = default;
  AxisValue& operator=(AxisValue&&) noexcept = default;
  ~AxisValue() override = default;

  persist::PersistClass const& iceDynamicClass() const override { return iceStaticClass; }
  void iceListMembers(persist::Persist const& persist) override;

  double value() const noexcept { return m_value; }
  /// The stored number read as a length (also for a rotary axis, whose value
  /// is then returned as it is).
  double mm() const noexcept { return m_value; }
  /// The stored number read as degrees, in radians.
  Radian radians() const noexcept { return Radian(m_value * kRadiansPerDegree); }

  /// Exact comparison; a NaN value is unequal to everything, itself included.
  /// Exact on purpose: a tolerance would keep a cached transform across a
  /// very small move.
  friend bool operator==(AxisValue const& a, AxisValue const& b) noexcept { return a.m_value == b.m_value; }
  friend bool operator!=(AxisValue const& a, AxisValue const& b) noexcept { return !(a == b); }

private:
  double m_value = 0.0;
};

}  // namespace Orvo
