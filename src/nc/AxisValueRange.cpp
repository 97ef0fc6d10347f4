#include "nc/AxisValueRange.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Orvo {

std::optional<AxisValueRange> AxisValueRange::make(std::optional<AxisValue> const& minimum,
                                                   std::optional<AxisValue> const& maximum) {
  if (!minimum || !maximum) return std::nullopt;
  if (!(minimum->value() <= maximum->value())) return std::nullopt;  // also refuses NaN
  return AxisValueRange(*minimum, *maximum);
}

bool AxisValueRange::contains(AxisValue const& value) const noexcept {
  double const v = value.value();
  if (m_infinite) return !std::isnan(v);
  return m_min.value() <= v && v <= m_max.value();
}

std::optional<AxisValueRange> AxisValueRange::intersect(AxisValueRange const& other) const {
  if (m_infinite) return other;
  if (other.m_infinite) return *this;
  double const lo = std::max(m_min.value(), other.m_min.value());
  double const hi = std::min(m_max.value(), other.m_max.value());
  if (!(lo <= hi)) return std::nullopt;
  return AxisValueRange(lo, hi);
}

double AxisValueRange::difference() const noexcept {
  if (m_infinite) return std::numeric_limits<double>::infinity();
  return m_max.value() - m_min.value();
}

AxisValue AxisValueRange::remapCyclic(AxisValue const& value) const noexcept {
  double const v = value.value();
  if (m_infinite || !std::isfinite(v) || contains(value)) return value;
  double const lo = m_min.value();
  double const hi = m_max.value();
  // First candidate in [lo, lo + 360).
  double shifted = v - 360.0 * std::floor((v - lo) / 360.0);
  if (shifted < lo) shifted += 360.0;  // rounding at the boundary
  if (shifted <= hi) return shifted;
  // Narrower than a turn: nearest of the candidates on either side.
  double const below = shifted - 360.0;
  return (shifted - hi) <= (lo - below) ? shifted : below;
}

bool operator==(AxisValueRange const& a, AxisValueRange const& b) noexcept {
  if (a.m_infinite || b.m_infinite) return a.m_infinite == b.m_infinite;
  return a.m_min == b.m_min && a.m_max == b.m_max;
}

}  // namespace Orvo
