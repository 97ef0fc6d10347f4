#include "machine/machine/LimitedRotaryAxisDefinition.h"

namespace machine {

LimitedRotaryAxisDefinition::LimitedRotaryAxisDefinition(
    ControlType defaultControl, Orvo::AxisValue const& valueAsModelled, Orvo::AxisValue const& defaultHome,
    std::optional<Orvo::AxisName> const& name, std::optional<Orvo::AxisValue> const& stepSize,
    Orvo::Point3D const& point, Orvo::Vector3D const& direction, Orvo::AxisValue const& physicalMin,
    Orvo::AxisValue const& physicalMax)
    : RotaryAxisDefinition(defaultControl, valueAsModelled, defaultHome, name, stepSize, point, direction),
      m_physicalMin(physicalMin),
      m_physicalMax(physicalMax) {}

}  // namespace machine
