#include "nc/NCUnit.h"

#include <limits>

namespace Orvo {

namespace {
// Millimetres in one unit, by unit number.
constexpr double kMillimetresPerUnit[] = {25.4, 1.0, 10.0, 1000.0, 304.8};
}  // namespace

bool NCUnit::isKnownUnit(int unit) noexcept { return unit >= INCH && unit <= FOOT; }

double NCUnit::getUnitConversionFactor(int fromUnit, int toUnit) noexcept {
  if (!isKnownUnit(fromUnit) || !isKnownUnit(toUnit)) return std::numeric_limits<double>::quiet_NaN();
  if (fromUnit == toUnit) return 1.0;
  return kMillimetresPerUnit[fromUnit] / kMillimetresPerUnit[toUnit];
}

}  // namespace Orvo
