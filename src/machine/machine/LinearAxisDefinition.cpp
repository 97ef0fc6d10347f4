#include "machine/machine/LinearAxisDefinition.h"

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\LinearAxisDefinition";
}

namespace machine {

LinearAxisDefinition::LinearAxisDefinition(ControlType defaultControl, Orvo::AxisValue const& valueAsModelled,
                                           Orvo::AxisValue const& defaultHome,
                                           std::optional<Orvo::AxisName> const& name,
                                           std::optional<Orvo::AxisValue> const& stepSize,
                                           Orvo::Vector3D const& direction, std::optional<Orvo::AxisValue> const& min,
                                           std::optional<Orvo::AxisValue> const& max)
    : AxisDefinition(defaultControl, valueAsModelled, defaultHome, name, stepSize),
      m_physicalRange(Orvo::AxisValueRange::make(min, max).value_or(Orvo::AxisValueRange())),
      m_direction(direction.getNormalized()) {}

Orvo::Transform3D LinearAxisDefinition::transformation(Orvo::AxisValue value) const {
  double const delta = value.value() - valueAsModelled().value();
  return Orvo::Transform3D(Orvo::Translation3DArgs{m_direction * delta});
}

void LinearAxisDefinition::setDirection(Orvo::Vector3D const& direction) { m_direction = direction.getNormalized(); }

Orvo::Vector3D LinearAxisDefinition::direction() const {
  ORVO_ASSERT(m_direction.isNormalized());
  return m_direction;
}

std::optional<Orvo::AxisValue> LinearAxisDefinition::physicalMin() const {
  if (m_physicalRange.isInfinite()) return std::nullopt;
  return m_physicalRange.min();
}

std::optional<Orvo::AxisValue> LinearAxisDefinition::physicalMax() const {
  if (m_physicalRange.isInfinite()) return std::nullopt;
  return m_physicalRange.max();
}

}  // namespace machine
