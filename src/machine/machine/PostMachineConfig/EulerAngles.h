#pragma once
// The twenty-four Euler conventions in the packed-order encoding, in both
// directions: angles to a rotation matrix and back.
//
// A packed order holds, from bit 0 up: the frame (0 static, 1 rotating), the
// repetition (1 when the first and last axes are the same), the parity (1
// odd) and, in bits 3-4, the index of the inner axis. The matrices are
// row-major nine doubles.

#include <cmath>
#include <cstddef>

#include "util/utility/Basic.h"

namespace com {
namespace vantora {

class EulerAngles {
public:
  static constexpr unsigned int conventionCount = 24;

  /// A packed order taken apart.
  struct Order {
    unsigned int i;
    unsigned int j;
    unsigned int k;
    bool oddParity;
    bool repeated;
    bool rotatingFrame;
  };

  /// The packed order of a convention below conventionCount.
  static unsigned int packedOrder(unsigned int convention) noexcept { return at(kPackedOrders, convention); }

  /// The name of a convention below conventionCount, such as "EULER_XYZ_S".
  static char const* conventionName(unsigned int convention) noexcept;

  static Order decode(unsigned int packedOrder) noexcept {
    Order order;
    order.rotatingFrame = (packedOrder & 1u) != 0;
    order.repeated = (packedOrder & 2u) != 0;
    order.oddParity = (packedOrder & 4u) != 0;
    unsigned int const n = order.oddParity ? 1u : 0u;
    order.i = at(kSafe, (packedOrder >> 3) & 3u);
    order.j = at(kNext, order.i + n);
    order.k = at(kNext, order.i + 1 - n);
    return order;
  }

  /// The rotation matrix of the angles (a, b, c) in `order`.
  static void toMatrix(Order const& order, double a, double b, double c, double (&m)[9]) noexcept {
    if (order.rotatingFrame) {
      double const t = a;
      a = c;
      c = t;
    }
    if (order.oddParity) {
      a = -a;
      b = -b;
      c = -c;
    }
    double const ci = std::cos(a), si = std::sin(a);
    double const cj = std::cos(b), sj = std::sin(b);
    double const ch = std::cos(c), sh = std::sin(c);
    double const cc = ci * ch, cs = ci * sh, sc = si * ch, ss = si * sh;
    unsigned int const i = order.i, j = order.j, k = order.k;
    if (order.repeated) {
      m[3 * i + i] = cj;
      m[3 * i + j] = sj * si;
      m[3 * i + k] = sj * ci;
      m[3 * j + i] = sj * sh;
      m[3 * j + j] = -cj * ss + cc;
      m[3 * j + k] = -cj * cs - sc;
      m[3 * k + i] = -sj * ch;
      m[3 * k + j] = cj * sc + cs;
      m[3 * k + k] = cj * cc - ss;
    } else {
      m[3 * i + i] = cj * ch;
      m[3 * i + j] = sj * sc - cs;
      m[3 * i + k] = sj * cc + ss;
      m[3 * j + i] = cj * sh;
      m[3 * j + j] = sj * ss + cc;
      m[3 * j + k] = sj * cs - sc;
      m[3 * k + i] = -sj;
      m[3 * k + j] = cj * si;
      m[3 * k + k] = cj * ci;
    }
  }

  /// The angles (a, b, c) of the rotation matrix `m` in `order`.
  static void fromMatrix(Order const& order, double const (&m)[9], double& a, double& b, double& c) noexcept {
    // Sixteen times the double-precision epsilon: below it the middle angle
    // is taken to be at its gimbal point and the third angle is set to 0.
    constexpr double e = 3.552713678800501e-15;
    unsigned int const i = order.i, j = order.j, k = order.k;
    if (order.repeated) {
      double const sy = std::sqrt(m[3 * i + j] * m[3 * i + j] + m[3 * i + k] * m[3 * i + k]);
      if (sy > e) {
        a = std::atan2(m[3 * i + j], m[3 * i + k]);
        b = std::atan2(sy, m[3 * i + i]);
        c = std::atan2(m[3 * j + i], -m[3 * k + i]);
      } else {
        a = std::atan2(-m[3 * j + k], m[3 * j + j]);
        b = std::atan2(sy, m[3 * i + i]);
        c = 0;
      }
    } else {
      double const cy = std::sqrt(m[3 * i + i] * m[3 * i + i] + m[3 * j + i] * m[3 * j + i]);
      if (cy > e) {
        a = std::atan2(m[3 * k + j], m[3 * k + k]);
        b = std::atan2(-m[3 * k + i], cy);
        c = std::atan2(m[3 * j + i], m[3 * i + i]);
      } else {
        a = std::atan2(-m[3 * j + k], m[3 * j + j]);
        b = std::atan2(-m[3 * k + i], cy);
        c = 0;
      }
    }
    if (order.oddParity) {
      a = -a;
      b = -b;
      c = -c;
    }
    if (order.rotatingFrame) {
      double const t = a;
      a = c;
      c = t;
    }
  }

private:
  static constexpr char const orvoAssertSourcePath[] = "machine\\machine\\PostMachineConfig\\EulerAngles";

  // Indexed by convention value.
  static constexpr unsigned int kPackedOrders[conventionCount] = {6,  14, 22, 7,  15, 23, 4,  12, 20, 5,  13, 21,
                                                                  2,  10, 18, 3,  11, 19, 0,  8,  16, 1,  9,  17};
  static constexpr unsigned int kSafe[4] = {0, 1, 2, 0};
  static constexpr unsigned int kNext[4] = {1, 2, 0, 1};

  template <typename T, std::size_t N>
  static T at(T const (&X)[N], unsigned int i) noexcept {
    ORVO_ASSERT(i < Orvo::lengthOf(X));
    return X[i];
  }
};

}  // namespace vantora
}  // namespace com
