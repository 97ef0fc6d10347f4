#pragma once
// A position in space.

#include <cmath>

#include "util/utility/math/Vector3D.h"

namespace Orvo {

/// A length tolerance.
class LinearTolerance {
public:
  constexpr explicit LinearTolerance(double value) noexcept : m_value(value) {}
  constexpr double get() const noexcept { return m_value; }

private:
  double m_value;
};

class Point3D {
public:
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  constexpr Point3D() noexcept = default;
  constexpr Point3D(double x_, double y_, double z_) noexcept : x(x_), y(y_), z(z_) {}

  void setX(double v) noexcept { x = v; }
  void setY(double v) noexcept { y = v; }
  void setZ(double v) noexcept { z = v; }

  friend constexpr Vector3D operator-(Point3D const& a, Point3D const& b) noexcept { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
  friend constexpr Point3D operator+(Point3D const& p, Vector3D const& v) noexcept { return {p.x + v.x, p.y + v.y, p.z + v.z}; }
  friend constexpr Point3D operator-(Point3D const& p, Vector3D const& v) noexcept { return {p.x - v.x, p.y - v.y, p.z - v.z}; }
  Point3D& operator+=(Vector3D const& v) noexcept { x += v.x; y += v.y; z += v.z; return *this; }
  Point3D& operator-=(Vector3D const& v) noexcept { x -= v.x; y -= v.y; z -= v.z; return *this; }
  friend constexpr bool operator==(Point3D const& a, Point3D const& b) noexcept { return a.x == b.x && a.y == b.y && a.z == b.z; }
  friend constexpr bool operator!=(Point3D const& a, Point3D const& b) noexcept { return !(a == b); }

  constexpr Vector3D asVector() const noexcept { return {x, y, z}; }

  /// True when the two points lie within the tolerance of each other.
  bool coincident(Point3D const& other, LinearTolerance tolerance) const noexcept {
    return (*this - other).lengthSquared() <= tolerance.get() * tolerance.get();
  }
};

/// Free form of Point3D::coincident.
inline bool coincident(Point3D const& a, Point3D const& b, LinearTolerance tolerance) noexcept {
  return a.coincident(b, tolerance);
}

}  // namespace Orvo

namespace Orvo {
inline Point3D Vector3D::asPoint() const noexcept { return Point3D(x, y, z); }
}  // namespace Orvo
