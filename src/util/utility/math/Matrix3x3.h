#pragma once
// A 3x3 matrix of doubles, row-major.

#include <cmath>

#include "util/utility/math/Vector3D.h"

namespace Orvo {

class Matrix3x3 {
public:
  /// All zero. Callers assign a matrix whole before they read it.
  constexpr Matrix3x3() noexcept : m{0, 0, 0, 0, 0, 0, 0, 0, 0} {}
  /// Nine numbers, row by row.
  explicit Matrix3x3(double const* rowMajor) noexcept {
    for (int i = 0; i < 9; ++i) m[i] = rowMajor[i];
  }
  constexpr Matrix3x3(double a00, double a01, double a02, double a10, double a11, double a12, double a20,
                      double a21, double a22) noexcept
      : m{a00, a01, a02, a10, a11, a12, a20, a21, a22} {}
  /// The three vectors become the columns: M * (a, b, c) = a*c0 + b*c1 + c*c2.
  constexpr Matrix3x3(Vector3D const& c0, Vector3D const& c1, Vector3D const& c2) noexcept
      : m{c0.x, c1.x, c2.x, c0.y, c1.y, c2.y, c0.z, c1.z, c2.z} {}

  static constexpr Matrix3x3 getIdentity() noexcept { return {1, 0, 0, 0, 1, 0, 0, 0, 1}; }

  /// Right-handed rotation by `angle` radians about `axis` (normalised here).
  static Matrix3x3 getAxisRotation(Vector3D const& axis, double angle) noexcept {
    return getAxisRotation(axis.getNormalized(), std::sin(angle), std::cos(angle));
  }
  /// Right-handed rotation about the unit vector `u` by the angle of sine s and cosine c.
  static constexpr Matrix3x3 getAxisRotation(Vector3D const& u, double s, double c) noexcept {
    double const t = 1.0 - c;
    return {t * u.x * u.x + c,       t * u.x * u.y - s * u.z, t * u.x * u.z + s * u.y,
            t * u.x * u.y + s * u.z, t * u.y * u.y + c,       t * u.y * u.z - s * u.x,
            t * u.x * u.z - s * u.y, t * u.y * u.z + s * u.x, t * u.z * u.z + c};
  }

  constexpr double operator()(int row, int col) const noexcept { return m[row * 3 + col]; }
  double& operator()(int row, int col) noexcept { return m[row * 3 + col]; }
  constexpr double const* data() const noexcept { return m; }

  constexpr Vector3D row(int r) const noexcept { return {m[3 * r], m[3 * r + 1], m[3 * r + 2]}; }
  constexpr Vector3D column(int c) const noexcept { return {m[c], m[3 + c], m[6 + c]}; }

  constexpr Matrix3x3 transposed() const noexcept { return {m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]}; }

  /// The inverse by the adjugate. A singular matrix gives non-finite numbers;
  /// nothing throws, and callers that care test the result.
  Matrix3x3 getInverse() const noexcept {
    double const c00 = m[4] * m[8] - m[5] * m[7];
    double const c01 = m[5] * m[6] - m[3] * m[8];
    double const c02 = m[3] * m[7] - m[4] * m[6];
    double const det = m[0] * c00 + m[1] * c01 + m[2] * c02;
    double const inv = 1.0 / det;
    return {c00 * inv,
            (m[2] * m[7] - m[1] * m[8]) * inv,
            (m[1] * m[5] - m[2] * m[4]) * inv,
            c01 * inv,
            (m[0] * m[8] - m[2] * m[6]) * inv,
            (m[2] * m[3] - m[0] * m[5]) * inv,
            c02 * inv,
            (m[1] * m[6] - m[0] * m[7]) * inv,
            (m[0] * m[4] - m[1] * m[3]) * inv};
  }

  constexpr double determinant() const noexcept {
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) + m[2] * (m[3] * m[7] - m[4] * m[6]);
  }

  friend constexpr Vector3D operator*(Matrix3x3 const& a, Vector3D const& v) noexcept {
    return {a.m[0] * v.x + a.m[1] * v.y + a.m[2] * v.z, a.m[3] * v.x + a.m[4] * v.y + a.m[5] * v.z,
            a.m[6] * v.x + a.m[7] * v.y + a.m[8] * v.z};
  }
  // Written out row by row: each row of the product is a combination of the
  // rows of b, which keeps the work in pairs the compiler can vectorise.
  friend constexpr Matrix3x3 operator*(Matrix3x3 const& a, Matrix3x3 const& b) noexcept {
    double const* x = a.m;
    double const* y = b.m;
    return {x[0] * y[0] + x[1] * y[3] + x[2] * y[6], x[0] * y[1] + x[1] * y[4] + x[2] * y[7],
            x[0] * y[2] + x[1] * y[5] + x[2] * y[8], x[3] * y[0] + x[4] * y[3] + x[5] * y[6],
            x[3] * y[1] + x[4] * y[4] + x[5] * y[7], x[3] * y[2] + x[4] * y[5] + x[5] * y[8],
            x[6] * y[0] + x[7] * y[3] + x[8] * y[6], x[6] * y[1] + x[7] * y[4] + x[8] * y[7],
            x[6] * y[2] + x[7] * y[5] + x[8] * y[8]};
  }
  friend constexpr bool operator==(Matrix3x3 const& a, Matrix3x3 const& b) noexcept {
    for (int i = 0; i < 9; ++i)
      if (a.m[i] != b.m[i]) return false;
    return true;
  }
  friend constexpr bool operator!=(Matrix3x3 const& a, Matrix3x3 const& b) noexcept { return !(a == b); }

private:
  double m[9];
};

}  // namespace Orvo
