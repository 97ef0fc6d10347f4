#pragma once
// A direction or displacement in space. Distinct from Point3D on purpose: a
// transform moves a point but only turns a vector.

#include <cmath>

namespace Orvo {

class Point3D;

class Vector3D {
public:
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  constexpr Vector3D() noexcept = default;
  constexpr Vector3D(double x_, double y_, double z_) noexcept : x(x_), y(y_), z(z_) {}

  void setX(double v) noexcept { x = v; }
  void setY(double v) noexcept { y = v; }
  void setZ(double v) noexcept { z = v; }

  static constexpr double dot(Vector3D const& a, Vector3D const& b) noexcept {
    return a.x * b.x + a.y * b.y + a.z * b.z;
  }
  static constexpr Vector3D cross(Vector3D const& a, Vector3D const& b) noexcept {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
  }

  constexpr Vector3D operator-() const noexcept { return {-x, -y, -z}; }
  Vector3D& operator*=(double s) noexcept { x *= s; y *= s; z *= s; return *this; }
  Vector3D& operator/=(double s) noexcept { x /= s; y /= s; z /= s; return *this; }
  Vector3D& operator+=(Vector3D const& v) noexcept { x += v.x; y += v.y; z += v.z; return *this; }
  Vector3D& operator-=(Vector3D const& v) noexcept { x -= v.x; y -= v.y; z -= v.z; return *this; }
  friend constexpr Vector3D operator+(Vector3D const& a, Vector3D const& b) noexcept { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
  friend constexpr Vector3D operator-(Vector3D const& a, Vector3D const& b) noexcept { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
  friend constexpr Vector3D operator*(Vector3D const& a, double s) noexcept { return {a.x * s, a.y * s, a.z * s}; }
  friend constexpr Vector3D operator*(double s, Vector3D const& a) noexcept { return {a.x * s, a.y * s, a.z * s}; }
  friend constexpr Vector3D operator/(Vector3D const& a, double s) noexcept { return {a.x / s, a.y / s, a.z / s}; }
  friend constexpr bool operator==(Vector3D const& a, Vector3D const& b) noexcept { return a.x == b.x && a.y == b.y && a.z == b.z; }
  friend constexpr bool operator!=(Vector3D const& a, Vector3D const& b) noexcept { return !(a == b); }

  constexpr double lengthSquared() const noexcept { return dot(*this, *this); }
  double length() const noexcept { return std::sqrt(lengthSquared()); }

  inline Point3D asPoint() const noexcept;

  /// A unit vector in the same direction; a zero vector gives non-finite numbers.
  Vector3D getNormalized() const noexcept { return *this / length(); }
  void normalize() noexcept { *this /= length(); }

  /// Unit length within 1e-9 (relative), which every normalised input of the
  /// library meets after one normalisation and a few rotations.
  bool isNormalized() const noexcept { return std::fabs(lengthSquared() - 1.0) <= 2e-9; }
  /// Length within `tolerance` of zero.
  bool isZero(double tolerance) const noexcept { return lengthSquared() <= tolerance * tolerance; }
  bool isNaN() const noexcept { return std::isnan(x) || std::isnan(y) || std::isnan(z); }
  /// A usable direction: finite and not zero.
  bool isProper() const noexcept {
    return std::isfinite(x) && std::isfinite(y) && std::isfinite(z) && lengthSquared() > 0.0;
  }
};

}  // namespace Orvo

// Point3D completes Vector3D::asPoint.
#include "util/utility/math/Point3D.h"
