#pragma once
// The cutting shape of a tool, in the unit of the tool that holds it.

namespace Orvo {

class ToolGeometry {
public:
  /// A tool of no size.
  ToolGeometry() noexcept = default;
  ToolGeometry(double diameter, double cornerRadius, double fluteLength, double bodyLength) noexcept
      : m_diameter(diameter), m_cornerRadius(cornerRadius), m_fluteLength(fluteLength), m_bodyLength(bodyLength) {}

  double diameter() const noexcept { return m_diameter; }
  /// Half the diameter: the radius that cutter compensation offsets by.
  double radius() const noexcept { return m_diameter / 2.0; }
  double cornerRadius() const noexcept { return m_cornerRadius; }
  double fluteLength() const noexcept { return m_fluteLength; }
  double bodyLength() const noexcept { return m_bodyLength; }

  void setDiameter(double value) noexcept { m_diameter = value; }
  void setCornerRadius(double value) noexcept { m_cornerRadius = value; }
  void setFluteLength(double value) noexcept { m_fluteLength = value; }
  void setBodyLength(double value) noexcept { m_bodyLength = value; }

  friend bool operator==(ToolGeometry const& a, ToolGeometry const& b) noexcept {
    return a.m_diameter == b.m_diameter && a.m_cornerRadius == b.m_cornerRadius &&
           a.m_fluteLength == b.m_fluteLength && a.m_bodyLength == b.m_bodyLength;
  }
  friend bool operator!=(ToolGeometry const& a, ToolGeometry const& b) noexcept { return !(a == b); }

private:
  double m_diameter = 0.0;
  double m_cornerRadius = 0.0;
  double m_fluteLength = 0.0;
  double m_bodyLength = 0.0;
};

}  // namespace Orvo
