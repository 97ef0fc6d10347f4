#pragma once
// Lengths: a plain millimetre quantity and the checked non-negative distance.

#include <cmath>

#include "util/utility/Basic.h"

namespace Orvo {
namespace Quantity {

/// A length in millimetres.
class Distance {
public:
  constexpr explicit Distance(double millimetres) noexcept : m_value(millimetres) {}
  constexpr double get() const noexcept { return m_value; }
  friend constexpr bool operator==(Distance a, Distance b) noexcept { return a.m_value == b.m_value; }
  friend constexpr bool operator!=(Distance a, Distance b) noexcept { return !(a == b); }

private:
  double m_value;
};

}  // namespace Quantity

/// Tag naming the parameter a checked double stands for.
struct DistanceParameter {};

/// A distance may not be negative, and not negative zero either.
struct NonNegativeDoubleCheck {
  static constexpr char const orvoAssertSourcePath[] = "util\\utility/Distance";
  static void check(double t) {
    // One look at the testing flag: every solve of the machine makes one.
    if (__builtin_expect(_debug::isTesting(), 0)) {
      ORVO_ASSERT(t >= 0);
      ORVO_ASSERT(!std::signbit(t));
    }
  }
};

/// A value of type T, checked on construction by Check::check, that converts
/// implicitly back to T. Parameter only names what the value stands for.
template <typename T, typename Parameter, typename Check>
class NamedCheckedImplicitType {
public:
  NamedCheckedImplicitType(T value) : m_value(value) { Check::check(m_value); }
  operator T() const noexcept { return m_value; }
  T get() const noexcept { return m_value; }

private:
  T m_value;
};

using NonNegativeDistance = NamedCheckedImplicitType<double, DistanceParameter, NonNegativeDoubleCheck>;

}  // namespace Orvo
