#include "machine/machine/AxisDefinition.h"

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\AxisDefinition";
}

namespace machine {

AxisDefinition::AxisDefinition(ControlType defaultControl, Orvo::AxisValue const& valueAsModelled,
                               Orvo::AxisValue const& defaultHome, std::optional<Orvo::AxisName> const& name,
                               std::optional<Orvo::AxisValue> const& stepSize)
    : m_defaultControl(defaultControl),
      m_valueAsModelled(valueAsModelled),
      m_defaultHome(defaultHome),
      m_name(name),
      m_stepSize(stepSize) {
  ORVO_ASSERT((!stepSize || stepSize->value() > 0) && "Step size must be positive if set.");
}

AxisDefinition::~AxisDefinition() = default;

bool AxisDefinition::hasPhysicalLimits() const { return !physicalRange().isInfinite(); }

Orvo::AxisValueRange AxisDefinition::physicalRange() const {
  auto const range = Orvo::AxisValueRange::make(physicalMin(), physicalMax());
  return range ? *range : Orvo::AxisValueRange();
}

void AxisDefinition::setStepSize(std::optional<Orvo::AxisValue> const& stepSize) {
  EXPECTS(!stepSize || stepSize->value() >= 0);
  m_stepSize = stepSize;
}

}  // namespace machine
