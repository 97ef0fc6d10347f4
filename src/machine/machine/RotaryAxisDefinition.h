#pragma once

#include "machine/machine/AxisDefinition.h"
#include "util/utility/math/Point3D.h"

namespace machine {

/// An axis that turns its part about a line. Abstract: the limited and the
/// infinite kinds differ in their physical range.
class RotaryAxisDefinition : public AxisDefinition {
public:
  /// The direction is normalised on the way in; the offset starts empty.
  RotaryAxisDefinition(ControlType defaultControl, Orvo::AxisValue const& valueAsModelled,
                       Orvo::AxisValue const& defaultHome, std::optional<Orvo::AxisName> const& name,
                       std::optional<Orvo::AxisValue> const& stepSize, Orvo::Point3D const& point,
                       Orvo::Vector3D const& direction);

  /// Rotation by (value - value as modelled) degrees about the line through
  /// point() along direction(), right-handed. The offset takes no part.
  Orvo::Transform3D transformation(Orvo::AxisValue value) const override;
  AxisType axisType() const override { return AxisType::ROTARY; }
  void setDirection(Orvo::Vector3D const& direction) override;
  Orvo::Vector3D direction() const override;

  Orvo::Point3D point() const noexcept { return m_point; }
  /// Carried for the file formats and the post configuration only.
  std::optional<Orvo::Point3D> offset() const noexcept { return m_offset; }
  void setOffset(std::optional<Orvo::Point3D> const& offset) noexcept { m_offset = offset; }
  /// Sets point and direction together (the direction normalised).
  void setAxisOfRotation(Orvo::Point3D const& point, Orvo::Vector3D const& direction);

  std::unique_ptr<RotaryAxisDefinition> clone() const;

protected:
  RotaryAxisDefinition(RotaryAxisDefinition const&) = default;

private:
  Orvo::Point3D m_point;
  Orvo::Vector3D m_direction;
  std::optional<Orvo::Point3D> m_offset;
};

}  // namespace machine
