#pragma once
// Angles: the radian value type and the checks that guard a sine/cosine pair.

#include <cmath>

#include "util/utility/Basic.h"

namespace Orvo {

/// A double in radians.
class Radian {
public:
  constexpr Radian() noexcept = default;
  constexpr explicit Radian(double value) noexcept : m_value(value) {}
  constexpr double get() const noexcept { return m_value; }
  constexpr explicit operator double() const noexcept { return m_value; }
  friend constexpr bool operator==(Radian a, Radian b) noexcept { return a.m_value == b.m_value; }
  friend constexpr bool operator!=(Radian a, Radian b) noexcept { return !(a == b); }

private:
  double m_value = 0.0;
};

/// Degrees to radians with the factor the axis transformations use.
constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr double kDegreesPerRadian = 57.29577951308232;

namespace AngleChecks {
inline constexpr char const orvoAssertSourcePath[] = "util\\utility/Angle";

/// A sine or a cosine must lie in [-1, 1].
inline double checkedSineOrCosine(double t) {
  ORVO_ASSERT(t >= -1);
  ORVO_ASSERT(t <= 1);
  return t;
}

/// A sine and a cosine must describe one angle.
inline void checkSineCosinePair(double m_s, double m_c) {
  ORVO_ASSERT(std::fabs(std::sqrt(m_s * m_s + m_c * m_c) - 1) < 1e-12);
}
}  // namespace AngleChecks

}  // namespace Orvo
