#pragma once
// A helical arc: a circle about an axis through `center`, swept
// counterclockwise about `normal` (right hand), rising along the normal
// evenly with the angle. A plane arc is a helix of height 0.
//
// Stored numbers, in order (the order a text record writes them in):
//   center (x, y, z)   the centre, in the plane of the start point
//   normal (x, y, z)   unit axis; the sweep turns about it
//   xAxis  (x, y, z)   unit, from the centre towards the start point
//   yAxis  (x, y, z)   unit, normal x xAxis
//   radius             distance of the start point from the axis
//   height             travel along the normal from start to end
//   sweep              swept angle in radians, positive counterclockwise
// The point at angle t in [0, sweep] is
//   center + radius (cos t xAxis + sin t yAxis) + (t / sweep) height normal.

#include <array>

#include "util/utility/math/Point3D.h"
#include "util/utility/math/Vector3D.h"

namespace Orvo {

class Helix {
public:
  static constexpr int kNumStoredValues = 15;

  /// A helix of no size at the origin about +Z, with no sweep.
  Helix() noexcept = default;
  /// From start to end, counterclockwise about `normal`; the sweep is the
  /// angle from the start to the end seen along the normal, in (0, 2 pi], so
  /// an end above the start gives a full turn. The end's distance from the
  /// axis is not checked: the radius is the start's.
  Helix(Point3D const& center, Point3D const& start, Point3D const& end, Vector3D const& normal) noexcept;
  /// The same with a sweep given in radians, which may exceed a turn.
  Helix(Point3D const& center, Point3D const& start, Point3D const& end, double sweep,
        Vector3D const& normal) noexcept;
  /// The stored numbers as they are, in their stored order.
  Helix(Vector3D const& center, Vector3D const& normal, Vector3D const& xAxis, Vector3D const& yAxis,
        double radius, double height, double sweep) noexcept;

  Vector3D const& center() const noexcept { return m_center; }
  Vector3D const& normal() const noexcept { return m_normal; }
  Vector3D const& xAxis() const noexcept { return m_xAxis; }
  Vector3D const& yAxis() const noexcept { return m_yAxis; }
  double radius() const noexcept { return m_radius; }
  double height() const noexcept { return m_height; }
  double sweep() const noexcept { return m_sweep; }

  /// The point at `fraction` of the sweep, 0 the start and 1 the end.
  Vector3D getPoint(double fraction) const noexcept;
  Vector3D getStart() const noexcept { return getPoint(0.0); }
  Vector3D getEnd() const noexcept { return getPoint(1.0); }

  /// The 15 stored numbers in their stored order.
  std::array<double, kNumStoredValues> storedValues() const noexcept;

  friend bool operator==(Helix const& a, Helix const& b) noexcept { return a.storedValues() == b.storedValues(); }
  friend bool operator!=(Helix const& a, Helix const& b) noexcept { return !(a == b); }

private:
  void setFrom(Point3D const& center, Point3D const& start, Point3D const& end, Vector3D const& normal) noexcept;

  Vector3D m_center{0, 0, 0};
  Vector3D m_normal{0, 0, 1};
  Vector3D m_xAxis{1, 0, 0};
  Vector3D m_yAxis{0, 1, 0};
  double m_radius = 0.0;
  double m_height = 0.0;
  double m_sweep = 0.0;
};

}  // namespace Orvo
