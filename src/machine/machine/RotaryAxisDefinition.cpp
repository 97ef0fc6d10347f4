#include "machine/machine/RotaryAxisDefinition.h"

#include <cmath>

#include "util/utility/Angle.h"
#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\RotaryAxisDefinition";
}

namespace machine {

RotaryAxisDefinition::RotaryAxisDefinition(ControlType defaultControl, Orvo::AxisValue const& valueAsModelled,
                                           Orvo::AxisValue const& defaultHome,
                                           std::optional<Orvo::AxisName> const& name,
                                           std::optional<Orvo::AxisValue> const& stepSize,
                                           Orvo::Point3D const& point, Orvo::Vector3D const& direction)
    : AxisDefinition(defaultControl, valueAsModelled, defaultHome, name, stepSize),
      m_point(point),
      m_direction(direction.getNormalized()) {}

Orvo::Transform3D RotaryAxisDefinition::transformation(Orvo::AxisValue value) const {
  double const radians = (value.value() - valueAsModelled().value()) * 0.017453292519943295;
  return Orvo::Transform3D(Orvo::Rotation3DArgs(m_point, m_direction, std::sin(radians), std::cos(radians)));
}

void RotaryAxisDefinition::setDirection(Orvo::Vector3D const& direction) { m_direction = direction.getNormalized(); }

Orvo::Vector3D RotaryAxisDefinition::direction() const {
  ORVO_ASSERT(m_direction.isNormalized());
  return m_direction;
}

void RotaryAxisDefinition::setAxisOfRotation(Orvo::Point3D const& point, Orvo::Vector3D const& direction) {
  m_point = point;
  m_direction = direction.getNormalized();
}

std::unique_ptr<RotaryAxisDefinition> RotaryAxisDefinition::clone() const {
  return std::unique_ptr<RotaryAxisDefinition>(static_cast<RotaryAxisDefinition*>(doClone().release()));
}

}  // namespace machine
