#pragma once
// The three-component value that post-processor scripts see: positions,
// directions, ABC and UVW angle triples. Angles are radians unless an
// operation says otherwise.
//
// The tolerance argument of isZero, isNonZero, areDifferent, areParallel,
// arePerpendicular and areSameDirection follows one rule that scripts rely
// on: a value from 1 up counts decimal places (truncated; both vectors are
// rounded to that many places and compared with 1e-9, or against exact zero
// for isZero), a value below 1 is an absolute tolerance.

#include <cmath>
#include <string>

#include "util/utility/ScriptObject.h"
#include "util/utility/math/Point3D.h"
#include "util/utility/math/Vector3D.h"

namespace com {
namespace vantora {

class Vector : public Orvo::ScriptObject {
public:
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  Vector() noexcept = default;
  Vector(double x_, double y_, double z_) noexcept : x(x_), y(y_), z(z_) {}
  Vector(Vector const&) noexcept = default;
  Vector& operator=(Vector const&) noexcept = default;

  char const* getBaseClass() const noexcept override;
  ~Vector() override = default;

  // Changing the vector.
  void add(Vector const& v) noexcept { x += v.x; y += v.y; z += v.z; }
  void subtract(Vector const& v) noexcept { x -= v.x; y -= v.y; z -= v.z; }
  void multiply(double f) noexcept { x *= f; y *= f; z *= f; }
  /// No check for a zero divisor.
  void divide(double f) noexcept { x /= f; y /= f; z /= f; }
  void negate() noexcept { x = -x; y = -y; z = -z; }
  /// Scales to unit length; the zero vector stays zero.
  void normalize() noexcept {
    double const length = getLength();
    if (length > 0) multiply(1 / length);
  }
  void setX(double value) noexcept { x = value; }
  void setY(double value) noexcept { y = value; }
  void setZ(double value) noexcept { z = value; }
  /// Throws "Invalid coordinate." for an index above 2.
  void setCoordinate(unsigned int index, double value);
  /// Exchanges two coordinates; throws "Invalid coordinate." for an index above 2.
  void swapCoords(unsigned int i, unsigned int j);

  // Reading the vector.
  double getX() const noexcept { return x; }
  double getY() const noexcept { return y; }
  double getZ() const noexcept { return z; }
  /// Throws "Invalid coordinate." for an index above 2.
  double getCoordinate(unsigned int index) const;
  double getLength() const noexcept { return std::sqrt(x * x + y * y + z * z); }
  double getLength2() const noexcept { return x * x + y * y + z * z; }
  double getMaximum() const noexcept;
  double getMinimum() const noexcept;
  Vector getAbsolute() const noexcept { return Vector(std::fabs(x), std::fabs(y), std::fabs(z)); }
  Vector getNegated() const noexcept { return Vector(-x, -y, -z); }
  /// The unit vector; the zero vector gives the zero vector.
  Vector getNormalized() const noexcept {
    double const length = getLength();
    if (length > 0) return Vector(x / length, y / length, z / length);
    return Vector();
  }
  double getXYAngle() const noexcept { return std::atan2(y, x); }
  /// The angle from +Z; 0 for the zero vector.
  double getZAngle() const noexcept;
  bool isZero(double tolerance) const;
  bool isNonZero(double tolerance) const { return !isZero(tolerance); }
  Vector toDeg() const noexcept;
  Vector toRad() const noexcept;
  /// "(x, y, z)", each double in the shortest form that reads back to it
  /// ("0.1", "1", "1e-20"), whatever the process locale.
  std::wstring toString() const;

  // Static operations.
  static Vector sum(Vector const& a, Vector const& b) noexcept { return Vector(a.x + b.x, a.y + b.y, a.z + b.z); }
  static Vector diff(Vector const& a, Vector const& b) noexcept { return Vector(a.x - b.x, a.y - b.y, a.z - b.z); }
  static Vector product(Vector const& v, double f) noexcept { return Vector(v.x * f, v.y * f, v.z * f); }
  static double dot(Vector const& a, Vector const& b) noexcept { return a.x * b.x + a.y * b.y + a.z * b.z; }
  static Vector cross(Vector const& a, Vector const& b) noexcept {
    return Vector(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
  }
  static double getDistance(Vector const& a, Vector const& b) noexcept { return std::sqrt(getDistance2(a, b)); }
  static double getDistance2(Vector const& a, Vector const& b) noexcept {
    return sqr(a.x - b.x) + sqr(a.y - b.y) + sqr(a.z - b.z);
  }
  /// The angle between the directions; a zero vector counts as perpendicular.
  static double getAngle(Vector const& a, Vector const& b) noexcept;
  /// (1 - u) a + u b, for any u.
  static Vector lerp(Vector const& a, Vector const& b, double u) noexcept;
  /// point + distance * direction, with the direction as given.
  static Vector translatePoint(Vector const& point, Vector const& direction, double distance) noexcept;
  static Vector getBySpherical(double xyAngle, double zAngle, double radius) noexcept;
  static Vector getAsVector(Orvo::Point3D const& p) noexcept { return Vector(p.x, p.y, p.z); }
  static Vector getAsVector(Orvo::Vector3D const& v) noexcept { return Vector(v.x, v.y, v.z); }
  static Orvo::Vector3D getAsVector3D(Vector const& v) noexcept { return Orvo::Vector3D(v.x, v.y, v.z); }
  /// dot(a, b) >= 0.999999999 on the vectors as given, not normalised.
  static bool isSameDirection(Vector const& a, Vector const& b) noexcept;
  static bool areDifferent(Vector const& a, Vector const& b, double tolerance);
  static bool areParallel(Vector const& a, Vector const& b, double tolerance);
  static bool arePerpendicular(Vector const& a, Vector const& b, double tolerance);
  static bool areSameDirection(Vector const& a, Vector const& b, double tolerance);
  static double pointLineDistance(Vector const& p, Vector const& a, Vector const& b) noexcept;
  /// The normal is used as given; pass a unit normal.
  static double pointPlaneDistance(Vector const& p, Vector const& planePoint, Vector const& normal) noexcept;
  static double pointSegmentDistance(Vector const& p, Vector const& a, Vector const& b) noexcept;
  static Vector projectPointToLine(Vector const& p, Vector const& a, Vector const& b) noexcept;
  /// The normal is used as given: a normal longer than 1 misses the plane.
  static Vector projectPointToPlane(Vector const& p, Vector const& planePoint, Vector const& normal) noexcept;
  /// Rounds each coordinate to `decimalPlaces` places, halves away from zero.
  static Vector round(Vector const& v, unsigned int decimalPlaces);
  /// Throws "Invalid vector coordinates." unless every coordinate lies in
  /// -1e9..1e9 (a NaN does not).
  static void validate(Vector const& v);

private:
  static double sqr(double value) noexcept { return value * value; }
};

}  // namespace vantora
}  // namespace com
