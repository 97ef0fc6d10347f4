#pragma once
// A closed interval of axis values, or the infinite range.

#include <optional>

#include "nc/AxisValue.h"

namespace Orvo {

class AxisValueRange {
public:
  /// The infinite range.
  AxisValueRange() noexcept = default;
  /// Minimum then maximum; both may be equal.
  AxisValueRange(AxisValue const& minimum, AxisValue const& maximum) noexcept
      : m_infinite(false), m_min(minimum), m_max(maximum) {}
  AxisValueRange(AxisValueRange const&) = default;
  AxisValueRange& operator=(AxisValueRange const&) = default;
  virtual ~AxisValueRange() = default;

  /// The range from minimum to maximum when both are present, not NaN and in
  /// order; empty otherwise (one end missing, ends reversed), which callers
  /// treat as the infinite range.
  static std::optional<AxisValueRange> make(std::optional<AxisValue> const& minimum,
                                            std::optional<AxisValue> const& maximum);

  bool isInfinite() const noexcept { return m_infinite; }
  /// Both ends count. The infinite range contains every number but NaN.
  bool contains(AxisValue const& value) const noexcept;
  /// Empty when the two do not overlap; the infinite range yields the other.
  std::optional<AxisValueRange> intersect(AxisValueRange const& other) const;
  /// Maximum minus minimum; +infinity for the infinite range, so that an
  /// unlimited axis always counts as able to turn a whole revolution.
  double difference() const noexcept;
  AxisValue min() const noexcept { return m_min; }
  AxisValue max() const noexcept { return m_max; }

  /// The value moved by whole turns (360) into the range. The infinite range
  /// and values already inside leave it unchanged. When no whole-turn shift
  /// lands inside (a range narrower than a turn), the shifted value nearest
  /// to the range is returned.
  AxisValue remapCyclic(AxisValue const& value) const noexcept;

  friend bool operator==(AxisValueRange const& a, AxisValueRange const& b) noexcept;
  friend bool operator!=(AxisValueRange const& a, AxisValueRange const& b) noexcept { return !(a == b); }

private:
  bool m_infinite = true;
  AxisValue m_min;
  AxisValue m_max;
};

}  // namespace Orvo
