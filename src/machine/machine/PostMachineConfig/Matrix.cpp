#include "machine/machine/PostMachineConfig/Matrix.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "machine/machine/PostMachineConfig/EulerAngles.h"
#include "machine/machine/PostMachineConfig/ScriptingUtils.h"
#include "util/utility/ScriptException.h"
#include "util/utility/Variant.h"

namespace com {
namespace vantora {

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 2 * kPi;
constexpr double kHalfPi = kPi / 2;

// The forward column counts as along +Z or -Z from this dot product up.
constexpr double kAlongZ = 0.9999999;

[[noreturn]] __attribute__((cold)) void fail(wchar_t const* message) { throw Orvo::ScriptException(message); }

double clampToUnit(double value) noexcept { return std::min(std::max(value, -1.0), 1.0); }

/// One whole turn off an angle above pi, or onto one at or below -pi; the
/// step is taken once, as the decompositions have always done.
double wrap(double angle) noexcept {
  if (angle > kPi) return angle - kTwoPi;
  if (angle <= -kPi) return angle + kTwoPi;
  return angle;
}

Vector wrap(Vector const& v) noexcept { return Vector(wrap(v.x), wrap(v.y), wrap(v.z)); }

/// The three checks getTiltAndTilt and getTurnAndTilt share.
void checkCoordinatePair(unsigned int primary, unsigned int secondary) {
  if (primary > 2) fail(L"Invalid primary coordinate.");
  if (secondary > 2) fail(L"Invalid secondary coordinate.");
  if (primary == secondary) fail(L"Primary and secondary must be different.");
}

}  // namespace

Matrix::Matrix(double const* const values) noexcept {
  for (unsigned int n = 0; n < 9; ++n) m_matrix[n] = values[n];
}

Matrix::Matrix(Vector const& axis, double angle) noexcept {
  checkUnitAxis(axis);
  fillAxisRotation(axis, angle);
}

void Matrix::failInvalidEulerConvention() { fail(L"Invalid Euler convention."); }

char const* Matrix::getBaseClass() const noexcept { return "ScriptObject"; }

// Plain algebra.

void Matrix::add(Matrix const& m) noexcept {
  for (unsigned int n = 0; n < 9; ++n) m_matrix[n] += m.m_matrix[n];
}

void Matrix::subtract(Matrix const& m) noexcept {
  for (unsigned int n = 0; n < 9; ++n) m_matrix[n] -= m.m_matrix[n];
}

Matrix Matrix::sum(Matrix const& a, Matrix const& b) noexcept {
  Matrix r(a);
  r.add(b);
  return r;
}

Matrix Matrix::diff(Matrix const& a, Matrix const& b) noexcept {
  Matrix r(a);
  r.subtract(b);
  return r;
}

void Matrix::negate() noexcept {
  for (double& e : m_matrix) e = -e;
}

Matrix Matrix::getNegated() const noexcept {
  Matrix r(*this);
  r.negate();
  return r;
}

void Matrix::transpose() noexcept {
  std::swap(m_matrix[1], m_matrix[3]);
  std::swap(m_matrix[2], m_matrix[6]);
  std::swap(m_matrix[5], m_matrix[7]);
}

Matrix Matrix::getTransposed() const noexcept {
  Matrix r(*this);
  r.transpose();
  return r;
}

Matrix Matrix::multiplyMatrix(Matrix const& m) const noexcept {
  Matrix r(Uninitialized{});
  double const* const a = m_matrix;
  double const* const b = m.m_matrix;
  for (unsigned int i = 0; i < 3; ++i)
    for (unsigned int j = 0; j < 3; ++j)
      r.m_matrix[3 * i + j] = a[3 * i] * b[j] + a[3 * i + 1] * b[3 + j] + a[3 * i + 2] * b[6 + j];
  return r;
}

Matrix Matrix::multiplyValue(double value) const noexcept {
  Matrix r(*this);
  for (double& e : r.m_matrix) e *= value;
  return r;
}

Vector Matrix::multiplyVector(Vector const& v) const noexcept {
  double const* const m = m_matrix;
  return Vector(m[0] * v.x + m[1] * v.y + m[2] * v.z, m[3] * v.x + m[4] * v.y + m[5] * v.z,
                m[6] * v.x + m[7] * v.y + m[8] * v.z);
}

Vector Matrix::multiplyTransposedVector(Vector const& v) const noexcept {
  double const* const m = m_matrix;
  return Vector(m[0] * v.x + m[3] * v.y + m[6] * v.z, m[1] * v.x + m[4] * v.y + m[7] * v.z,
                m[2] * v.x + m[5] * v.y + m[8] * v.z);
}

void Matrix::rotateX(double angle) noexcept { *this = getXRotation(angle).multiplyMatrix(*this); }

void Matrix::rotateY(double angle) noexcept { *this = getYRotation(angle).multiplyMatrix(*this); }

void Matrix::rotateZ(double angle) noexcept { *this = getZRotation(angle).multiplyMatrix(*this); }

double Matrix::getN1() const noexcept {
  double n = 0;
  for (double e : m_matrix) n += std::fabs(e);
  return n;
}

double Matrix::getN2() const noexcept {
  double n = 0;
  for (double e : m_matrix) n += sqr(e);
  return std::sqrt(n);
}

bool Matrix::isIdentity() const noexcept {
  static constexpr double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  for (unsigned int n = 0; n < 9; ++n)
    if (m_matrix[n] != identity[n]) return false;
  return true;
}

bool Matrix::isZero() const noexcept {
  for (double e : m_matrix)
    if (e != 0) return false;
  return true;
}

Orvo::Matrix3x3 Matrix::getAsMatrix3x3(Matrix const& m) noexcept { return Orvo::Matrix3x3(m.m_matrix); }

Matrix Matrix::getAsMatrix(Orvo::Matrix3x3 const& m) noexcept { return Matrix(m.data()); }

std::wstring Matrix::toString() const {
  std::vector<Orvo::Variant> values(m_matrix, m_matrix + 9);
  return Orvo::Variant::getSubstitution(L"[[%1, %2, %3], [%4, %5, %6], [%7, %8, %9]]", values);
}

// Checked access.

double Matrix::getElement(unsigned int row, unsigned int column) const {
  if (row > 2 || column > 2) fail(L"Invalid element.");
  return m_matrix[3 * row + column];
}

void Matrix::setElement(unsigned int row, unsigned int column, double value) {
  if (row > 2 || column > 2) fail(L"Invalid element.");
  m_matrix[3 * row + column] = value;
}

Vector Matrix::getRow(unsigned int i) const {
  if (i > 2) fail(L"Invalid row.");
  return Vector(m_matrix[3 * i], m_matrix[3 * i + 1], m_matrix[3 * i + 2]);
}

void Matrix::setRow(unsigned int i, Vector const& v) {
  if (i > 2) fail(L"Invalid row.");
  m_matrix[3 * i] = v.x;
  m_matrix[3 * i + 1] = v.y;
  m_matrix[3 * i + 2] = v.z;
}

Vector Matrix::getColumn(unsigned int i) const {
  if (i > 2) fail(L"Invalid row.");
  return Vector(m_matrix[i], m_matrix[3 + i], m_matrix[6 + i]);
}

void Matrix::setColumn(unsigned int i, Vector const& v) {
  if (i > 2) fail(L"Invalid row.");
  setColumnUnchecked(i, v);
}

// Rotation factories.

Matrix Matrix::getXRotation(double angle) noexcept {
  double const c = std::cos(angle), s = std::sin(angle);
  double const m[9] = {1, 0, 0, 0, c, s, 0, -s, c};
  return Matrix(m);
}

Matrix Matrix::getYRotation(double angle) noexcept {
  double const c = std::cos(angle), s = std::sin(angle);
  double const m[9] = {c, 0, -s, 0, 1, 0, s, 0, c};
  return Matrix(m);
}

Matrix Matrix::getZRotation(double angle) noexcept {
  double const c = std::cos(angle), s = std::sin(angle);
  double const m[9] = {c, s, 0, -s, c, 0, 0, 0, 1};
  return Matrix(m);
}

Matrix Matrix::getXYZRotation(Vector const& angles) noexcept {
  return getZRotation(-angles.z).multiplyMatrix(getYRotation(-angles.y)).multiplyMatrix(getXRotation(-angles.x));
}

Matrix Matrix::getOrientationFromDirection(Vector const& forward) noexcept {
  // Unit length within 1e-9, as for an axis.
  ORVO_CHECK_IMPL("EXPECTS:Orvo::Math::areSame(forward.getLength(), 1)",
                  Orvo::Math::areSame(forward.getLength(), 1, 1e-9));
  Vector const zAxis(0, 0, 1);
  Vector right = std::fabs(Vector::dot(forward, zAxis)) < 0.5 ? Vector::cross(forward, zAxis)
                                                               : Vector::cross(Vector(0, 1, 0), forward);
  right.normalize();
  Vector const up = Vector::cross(forward, right);
  return Matrix(right, up, forward);
}

Matrix Matrix::getEulerXYXRotation(Vector const& angles) { return getEulerRotation(EULER_XYX_S, angles); }
Matrix Matrix::getEulerXYZRotation(Vector const& angles) { return getEulerRotation(EULER_XYZ_S, angles); }
Matrix Matrix::getEulerXZXRotation(Vector const& angles) { return getEulerRotation(EULER_XZX_S, angles); }
Matrix Matrix::getEulerXZYRotation(Vector const& angles) { return getEulerRotation(EULER_XZY_S, angles); }
Matrix Matrix::getEulerYXYRotation(Vector const& angles) { return getEulerRotation(EULER_YXY_S, angles); }
Matrix Matrix::getEulerYXZRotation(Vector const& angles) { return getEulerRotation(EULER_YXZ_S, angles); }
Matrix Matrix::getEulerYZXRotation(Vector const& angles) { return getEulerRotation(EULER_YZX_S, angles); }
Matrix Matrix::getEulerYZYRotation(Vector const& angles) { return getEulerRotation(EULER_YZY_S, angles); }
Matrix Matrix::getEulerZXYRotation(Vector const& angles) { return getEulerRotation(EULER_ZXY_S, angles); }
Matrix Matrix::getEulerZXZRotation(Vector const& angles) { return getEulerRotation(EULER_ZXZ_S, angles); }
Matrix Matrix::getEulerZYXRotation(Vector const& angles) { return getEulerRotation(EULER_ZYX_S, angles); }
Matrix Matrix::getEulerZYZRotation(Vector const& angles) { return getEulerRotation(EULER_ZYZ_S, angles); }

// Decompositions.

Vector Matrix::getEuler(unsigned int convention) const {
  if (convention >= EulerAngles::conventionCount) failInvalidEulerConvention();
  sendScriptWarning(L"Matrix.getEuler() is deprecated. Use Matrix.getEuler2() instead.");
  // The argument is decoded as a packed order, not looked up as a convention:
  // existing scripts depend on the angles this gives.
  Vector r;
  EulerAngles::fromMatrix(EulerAngles::decode(convention), m_matrix, r.x, r.y, r.z);
  return r;
}

Vector Matrix::getEulerXYZ() const { return getEuler(EULER_XYZ_S); }
Vector Matrix::getEulerZXZ() const { return getEuler(EULER_ZXZ_S); }
Vector Matrix::getEulerZYX() const { return getEuler(EULER_ZYX_S); }
Vector Matrix::getEulerZYZ() const { return getEuler(EULER_ZYZ_S); }

Vector Matrix::getTiltAndTilt(unsigned int primary, unsigned int secondary) const {
  checkCoordinatePair(primary, secondary);
  Vector const forward = getForward();
  if (Vector::dot(forward, Vector(0, 0, 1)) >= kAlongZ) return Vector(0, 0, 0);
  if (Vector::dot(forward, Vector(0, 0, -1)) >= kAlongZ) {
    if (primary == 0 && secondary == 1) return Vector(kPi, 0, 0);
    if (primary == 1 && secondary == 0) return Vector(0, kPi, 0);
    fail(L"Not supported.");
  }
  double first = 0;
  double second = 0;
  if (primary == 0 && secondary == 1) {
    first = -std::asin(clampToUnit(forward.y));
    second = std::atan2(forward.x, forward.z);
  } else if (primary == 1 && secondary == 0) {
    first = std::atan2(-forward.y, forward.z);
    second = std::asin(clampToUnit(forward.x));
  } else {
    fail(L"Axis combination not supported for Matrix.getTiltAndTilt().");
  }
  return wrap(Vector(first, second, 0));
}

Vector Matrix::getTurnAndTilt(unsigned int primary, unsigned int secondary) const {
  checkCoordinatePair(primary, secondary);
  unsigned int const lower = std::min(primary, secondary);
  unsigned int const higher = std::max(primary, secondary);
  Vector const forward = getForward();
  if (Vector::dot(forward, Vector(0, 0, 1)) >= kAlongZ) return Vector(0, 0, 0);
  if (Vector::dot(forward, Vector(0, 0, -1)) >= kAlongZ) {
    if (lower == 0 && higher == 2) return Vector(kPi, 0, 0);
    if (lower == 1 && higher == 2) return Vector(0, kPi, 0);
    fail(L"Axis combination not supported for Matrix.getTurnAndTilt().");
  }
  double tilt = std::acos(clampToUnit(forward.z));
  double turn = std::atan2(forward.y, forward.x);
  Vector result;
  if (lower == 0 && higher == 2) {
    if (forward.y <= 0) {
      turn += kHalfPi;
    } else {
      turn -= kHalfPi;
      tilt = -tilt;
    }
    result = Vector(tilt, 0, turn);
  } else if (lower == 1 && higher == 2) {
    if (forward.x <= 0) {
      turn -= kPi;
      tilt = -tilt;
    }
    result = Vector(0, tilt, turn);
  } else {
    fail(L"Axis combination not supported for Matrix.getTurnAndTilt().");
  }
  return wrap(result);
}

// Others.

void Matrix::clamp(double tolerance) noexcept {
  for (double& e : m_matrix) {
    if (tolerance > std::fabs(e)) {
      e = 0;
    } else if (tolerance > std::fabs(e - 1)) {
      e = 1;
    } else if (tolerance > std::fabs(e + 1)) {
      e = -1;
    }
  }
}

void Matrix::normalize() noexcept {
  Vector right = getRight();
  Vector up = getUp();
  Vector forward = getForward();
  forward.normalize();
  // Whichever of right and up is longer is trusted more; a tie goes to up.
  if (up.getLength2() >= right.getLength2()) {
    up.normalize();
    right = Vector::cross(up, forward);
    right.normalize();
    up = Vector::cross(forward, right);
  } else {
    right.normalize();
    up = Vector::cross(forward, right);
    up.normalize();
    right = Vector::cross(up, forward);
  }
  setColumnUnchecked(0, right);
  setColumnUnchecked(1, up);
  setColumnUnchecked(2, forward);
}

}  // namespace vantora
}  // namespace com
