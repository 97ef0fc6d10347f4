#pragma once

#include "machine/machine/RotaryAxisDefinition.h"

namespace machine {

/// A rotary axis with physical end stops.
class LimitedRotaryAxisDefinition : public RotaryAxisDefinition {
public:
  LimitedRotaryAxisDefinition(ControlType defaultControl, Orvo::AxisValue const& valueAsModelled,
                              Orvo::AxisValue const& defaultHome, std::optional<Orvo::AxisName> const& name,
                              std::optional<Orvo::AxisValue> const& stepSize, Orvo::Point3D const& point,
                              Orvo::Vector3D const& direction, Orvo::AxisValue const& physicalMin,
                              Orvo::AxisValue const& physicalMax);

  std::optional<Orvo::AxisValue> physicalMin() const override { return m_physicalMin; }
  std::optional<Orvo::AxisValue> physicalMax() const override { return m_physicalMax; }
  void setPhysicalMin(Orvo::AxisValue const& value) noexcept { m_physicalMin = value; }
  void setPhysicalMax(Orvo::AxisValue const& value) noexcept { m_physicalMax = value; }

  std::unique_ptr<LimitedRotaryAxisDefinition> clone() const {
    return std::make_unique<LimitedRotaryAxisDefinition>(*this);
  }
  LimitedRotaryAxisDefinition(LimitedRotaryAxisDefinition const&) = default;

protected:
  std::unique_ptr<AxisDefinition> doClone() const override { return clone(); }

private:
  Orvo::AxisValue m_physicalMin;
  Orvo::AxisValue m_physicalMax;
};

}  // namespace machine
