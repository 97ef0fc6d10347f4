#pragma once

#include "machine/machine/AxisDefinition.h"

namespace machine {

/// An axis that translates its part along a direction.
class LinearAxisDefinition : public AxisDefinition {
public:
  /// The direction is normalised on the way in; the physical range is
  /// make(min, max), or the infinite range when that gives nothing.
  LinearAxisDefinition(ControlType defaultControl, Orvo::AxisValue const& valueAsModelled,
                       Orvo::AxisValue const& defaultHome, std::optional<Orvo::AxisName> const& name,
                       std::optional<Orvo::AxisValue> const& stepSize, Orvo::Vector3D const& direction,
                       std::optional<Orvo::AxisValue> const& min, std::optional<Orvo::AxisValue> const& max);

  /// Translation by (value - value as modelled) along the direction.
  Orvo::Transform3D transformation(Orvo::AxisValue value) const override;
  AxisType axisType() const override { return AxisType::LINEAR; }
  void setDirection(Orvo::Vector3D const& direction) override;
  Orvo::Vector3D direction() const override;
  std::optional<Orvo::AxisValue> physicalMin() const override;
  std::optional<Orvo::AxisValue> physicalMax() const override;
  Orvo::AxisValueRange physicalRange() const override { return m_physicalRange; }

  void setPhysicalRange(Orvo::AxisValueRange const& range) { m_physicalRange = range; }

  std::unique_ptr<LinearAxisDefinition> clone() const { return std::make_unique<LinearAxisDefinition>(*this); }
  LinearAxisDefinition(LinearAxisDefinition const&) = default;

protected:
  std::unique_ptr<AxisDefinition> doClone() const override { return clone(); }

private:
  Orvo::AxisValueRange m_physicalRange;
  Orvo::Vector3D m_direction;
};

}  // namespace machine
