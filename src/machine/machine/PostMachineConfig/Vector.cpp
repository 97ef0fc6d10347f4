#include "machine/machine/PostMachineConfig/Vector.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "util/utility/Basic.h"
#include "util/utility/ScriptException.h"
#include "util/utility/Variant.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\PostMachineConfig\\Vector";

[[noreturn]] __attribute__((cold)) void throwInvalidCoordinate() {
  throw Orvo::ScriptException(L"Invalid coordinate.");
}

double clampToUnit(double value) noexcept { return std::min(std::max(value, -1.0), 1.0); }

/// The number of decimal places a tolerance from 1 up stands for.
unsigned int placesOf(double tolerance) noexcept { return static_cast<unsigned int>(tolerance); }

void checkTolerance(double tolerance) { ORVO_ASSERT(0 <= tolerance && tolerance <= 9); }
}  // namespace

namespace com {
namespace vantora {

char const* Vector::getBaseClass() const noexcept { return "ScriptObject"; }

void Vector::setCoordinate(unsigned int index, double value) {
  switch (index) {
    case 0: x = value; return;
    case 1: y = value; return;
    case 2: z = value; return;
    default: throwInvalidCoordinate();
  }
}

void Vector::swapCoords(unsigned int i, unsigned int j) {
  ORVO_ASSERT(i != j);
  if (i > 2 || j > 2) throwInvalidCoordinate();
  double* const coordinates[3] = {&x, &y, &z};
  std::swap(*coordinates[i], *coordinates[j]);
}

double Vector::getCoordinate(unsigned int index) const {
  switch (index) {
    case 0: return x;
    case 1: return y;
    case 2: return z;
    default: throwInvalidCoordinate();
  }
}

double Vector::getMaximum() const noexcept { return std::max(std::max(x, y), z); }

double Vector::getMinimum() const noexcept { return std::min(std::min(x, y), z); }

double Vector::getZAngle() const noexcept {
  double const length = getLength();
  if (length == 0) return 0;
  return std::acos(clampToUnit(z / length));
}

bool Vector::isZero(double tolerance) const {
  checkTolerance(tolerance);
  if (tolerance >= 1) {
    Vector const r = round(*this, placesOf(tolerance));
    return r.x == 0 && r.y == 0 && r.z == 0;
  }
  return std::fabs(x) <= tolerance && std::fabs(y) <= tolerance && std::fabs(z) <= tolerance;
}

Vector Vector::toDeg() const noexcept {
  constexpr double f = 57.29577951308232;
  return Vector(x * f, y * f, z * f);
}

Vector Vector::toRad() const noexcept {
  constexpr double f = 0.017453292519943295;
  return Vector(x * f, y * f, z * f);
}

std::wstring Vector::toString() const {
  return Orvo::Variant::getSubstitution(L"(%1, %2, %3)", {Orvo::Variant(x), Orvo::Variant(y), Orvo::Variant(z)});
}

double Vector::getAngle(Vector const& a, Vector const& b) noexcept {
  return std::acos(clampToUnit(dot(a.getNormalized(), b.getNormalized())));
}

Vector Vector::lerp(Vector const& a, Vector const& b, double u) noexcept {
  return sum(product(a, 1 - u), product(b, u));
}

Vector Vector::translatePoint(Vector const& point, Vector const& direction, double distance) noexcept {
  return sum(point, product(direction, distance));
}

Vector Vector::getBySpherical(double xyAngle, double zAngle, double radius) noexcept {
  return Vector(radius * std::sin(zAngle) * std::cos(xyAngle), radius * std::sin(zAngle) * std::sin(xyAngle),
                radius * std::cos(zAngle));
}

bool Vector::isSameDirection(Vector const& a, Vector const& b) noexcept { return dot(a, b) >= 0.999999999; }

bool Vector::areDifferent(Vector const& a, Vector const& b, double tolerance) {
  checkTolerance(tolerance);
  if (tolerance >= 1) {
    unsigned int const places = placesOf(tolerance);
    return areDifferent(round(a, places), round(b, places), 1e-9);
  }
  return std::fabs(a.x - b.x) > tolerance || std::fabs(a.y - b.y) > tolerance || std::fabs(a.z - b.z) > tolerance;
}

bool Vector::areParallel(Vector const& a, Vector const& b, double tolerance) {
  checkTolerance(tolerance);
  if (tolerance >= 1) {
    unsigned int const places = placesOf(tolerance);
    return areParallel(round(a, places), round(b, places), 1e-9);
  }
  double const n = dot(a.getNormalized(), b.getNormalized());
  return 1 - std::fabs(n) < tolerance;
}

bool Vector::arePerpendicular(Vector const& a, Vector const& b, double tolerance) {
  checkTolerance(tolerance);
  if (tolerance >= 1) {
    unsigned int const places = placesOf(tolerance);
    return arePerpendicular(round(a, places), round(b, places), 1e-9);
  }
  double const n = dot(a.getNormalized(), b.getNormalized());
  return std::fabs(n) < tolerance;
}

bool Vector::areSameDirection(Vector const& a, Vector const& b, double tolerance) {
  checkTolerance(tolerance);
  if (tolerance >= 1) {
    unsigned int const places = placesOf(tolerance);
    return areSameDirection(round(a, places), round(b, places), 1e-9);
  }
  double const n = dot(a.getNormalized(), b.getNormalized());
  return n >= 1 - tolerance;
}

double Vector::pointLineDistance(Vector const& p, Vector const& a, Vector const& b) noexcept {
  return getDistance(p, projectPointToLine(p, a, b));
}

double Vector::pointPlaneDistance(Vector const& p, Vector const& planePoint, Vector const& normal) noexcept {
  return getDistance(p, projectPointToPlane(p, planePoint, normal));
}

double Vector::pointSegmentDistance(Vector const& p, Vector const& a, Vector const& b) noexcept {
  Vector const q = projectPointToLine(p, a, b);
  double const length = getDistance(a, b);
  // A foot beyond either end means the nearest point is an end point; a foot
  // exactly on an end point is still measured to the foot.
  if (getDistance(a, q) > length || getDistance(b, q) > length) {
    return std::min(getDistance(a, p), getDistance(b, p));
  }
  return getDistance(p, q);
}

Vector Vector::projectPointToLine(Vector const& p, Vector const& a, Vector const& b) noexcept {
  Vector const d = diff(b, a).getNormalized();
  return sum(a, product(d, dot(diff(p, a), d)));
}

Vector Vector::projectPointToPlane(Vector const& p, Vector const& planePoint, Vector const& normal) noexcept {
  return diff(p, product(normal, dot(normal, diff(p, planePoint))));
}

Vector Vector::round(Vector const& v, unsigned int decimalPlaces) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wtype-limits"
  ORVO_ASSERT(0 <= decimalPlaces && decimalPlaces <= 9);
#pragma GCC diagnostic pop
  double const scale = std::pow(10.0, static_cast<double>(decimalPlaces));
  // Multiplying by the reciprocal, not dividing by the scale, is what scripts
  // have always seen; the last bit can differ.
  double const inverse = 1 / scale;
  return Vector(std::round(v.x * scale) * inverse, std::round(v.y * scale) * inverse,
                std::round(v.z * scale) * inverse);
}

void Vector::validate(Vector const& v) {
  auto const inRange = [](double value) { return value >= -1e9 && value <= 1e9; };
  if (!(inRange(v.x) && inRange(v.y) && inRange(v.z))) throw Orvo::ScriptException(L"Invalid vector coordinates.");
}

}  // namespace vantora
}  // namespace com
