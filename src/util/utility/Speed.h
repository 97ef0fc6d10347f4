#pragma once
// Speeds. The base unit is millimetres per minute, the unit of every feed in
// the library, and SpeedUnit value 1 names it too, so the speeds that files
// carry in unit 1 read and write back bit for bit.

namespace Orvo {
namespace Quantity {

class Speed {
public:
  enum class SpeedUnit : int {
    MILLIMETRES_PER_SECOND = 0,
    MILLIMETRES_PER_MINUTE = 1,
    METRES_PER_MINUTE = 2,
    INCHES_PER_MINUTE = 3,
  };

  constexpr Speed() noexcept = default;
  constexpr explicit Speed(double baseValue) noexcept : m_value(baseValue) {}
  Speed(double value, SpeedUnit unit) noexcept;

  constexpr double get() const noexcept { return m_value; }
  double get(SpeedUnit unit) const noexcept;

  friend constexpr bool operator==(Speed a, Speed b) noexcept { return a.m_value == b.m_value; }
  friend constexpr bool operator!=(Speed a, Speed b) noexcept { return !(a == b); }

private:
  double m_value = 0.0;  // millimetres per minute
};

}  // namespace Quantity
}  // namespace Orvo
