#include "util/utility/Speed.h"

namespace Orvo {
namespace Quantity {
namespace {
// How many base units (mm/min) one of the given unit is.
double factor(Speed::SpeedUnit unit) noexcept {
  switch (unit) {
    case Speed::SpeedUnit::MILLIMETRES_PER_SECOND: return 60.0;
    case Speed::SpeedUnit::MILLIMETRES_PER_MINUTE: return 1.0;
    case Speed::SpeedUnit::METRES_PER_MINUTE: return 1000.0;
    case Speed::SpeedUnit::INCHES_PER_MINUTE: return 25.4;
  }
  return 1.0;
}
}  // namespace

Speed::Speed(double value, SpeedUnit unit) noexcept : m_value(value * factor(unit)) {}

double Speed::get(SpeedUnit unit) const noexcept {
  return m_value / factor(unit);
}

}  // namespace Quantity
}  // namespace Orvo
