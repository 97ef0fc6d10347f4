// Randomised checks of the twenty-four Euler conventions, with a fixed seed.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <string>

#include "machine/machine/PostMachineConfig/EulerAngles.h"
#include "machine/machine/PostMachineConfig/Matrix.h"

using com::vantora::EulerAngles;
using com::vantora::Matrix;
using com::vantora::Vector;

namespace {

constexpr int kSamples = 10000;
constexpr double kPi = 3.141592653589793;
// Keeps the middle angle this far from its gimbal point.
constexpr double kGimbalMargin = 1e-3;

/// A convention as its name reads: three axes (0 X, 1 Y, 2 Z) and the frame.
struct Convention {
  unsigned int value;
  char const* name;
  std::array<unsigned int, 3> axes;
  bool rotating;
};

std::array<unsigned int, 3> axesOf(char const* letters) {
  return {static_cast<unsigned int>(letters[0] - 'X'), static_cast<unsigned int>(letters[1] - 'X'),
          static_cast<unsigned int>(letters[2] - 'X')};
}

std::array<Convention, 24> conventions() {
  struct Named {
    unsigned int value;
    char const* name;
    char const* letters;
    bool rotating;
  };
  static constexpr Named named[24] = {
      {Matrix::EULER_XZX_S, "EULER_XZX_S", "XZX", false}, {Matrix::EULER_YXY_S, "EULER_YXY_S", "YXY", false},
      {Matrix::EULER_ZYZ_S, "EULER_ZYZ_S", "ZYZ", false}, {Matrix::EULER_XZX_R, "EULER_XZX_R", "XZX", true},
      {Matrix::EULER_YXY_R, "EULER_YXY_R", "YXY", true},  {Matrix::EULER_ZYZ_R, "EULER_ZYZ_R", "ZYZ", true},
      {Matrix::EULER_XZY_S, "EULER_XZY_S", "XZY", false}, {Matrix::EULER_YXZ_S, "EULER_YXZ_S", "YXZ", false},
      {Matrix::EULER_ZYX_S, "EULER_ZYX_S", "ZYX", false}, {Matrix::EULER_YZX_R, "EULER_YZX_R", "YZX", true},
      {Matrix::EULER_ZXY_R, "EULER_ZXY_R", "ZXY", true},  {Matrix::EULER_XYZ_R, "EULER_XYZ_R", "XYZ", true},
      {Matrix::EULER_XYX_S, "EULER_XYX_S", "XYX", false}, {Matrix::EULER_YZY_S, "EULER_YZY_S", "YZY", false},
      {Matrix::EULER_ZXZ_S, "EULER_ZXZ_S", "ZXZ", false}, {Matrix::EULER_XYX_R, "EULER_XYX_R", "XYX", true},
      {Matrix::EULER_YZY_R, "EULER_YZY_R", "YZY", true},  {Matrix::EULER_ZXZ_R, "EULER_ZXZ_R", "ZXZ", true},
      {Matrix::EULER_XYZ_S, "EULER_XYZ_S", "XYZ", false}, {Matrix::EULER_YZX_S, "EULER_YZX_S", "YZX", false},
      {Matrix::EULER_ZXY_S, "EULER_ZXY_S", "ZXY", false}, {Matrix::EULER_ZYX_R, "EULER_ZYX_R", "ZYX", true},
      {Matrix::EULER_XZY_R, "EULER_XZY_R", "XZY", true},  {Matrix::EULER_YXZ_R, "EULER_YXZ_R", "YXZ", true}};
  std::array<Convention, 24> out{};
  for (unsigned int n = 0; n < 24; ++n)
    out[n] = Convention{named[n].value, named[n].name, axesOf(named[n].letters), named[n].rotating};
  return out;
}

/// The axis that follows `axis` in the cyclic order X, Y, Z.
unsigned int nextAxis(unsigned int axis) { return (axis + 1) % 3; }

/// The axis the angles are decoded from first: the first axis of a static
/// frame, the last of a rotating one.
unsigned int innerAxis(Convention const& c) { return c.rotating ? c.axes[2] : c.axes[0]; }

/// Odd when the middle axis does not follow the inner axis cyclically.
bool oddParity(Convention const& c) { return c.axes[1] != nextAxis(innerAxis(c)); }

bool repeated(Convention const& c) { return c.axes[0] == c.axes[2]; }

unsigned int expectedPackedOrder(Convention const& c) {
  return (innerAxis(c) << 3) | (oddParity(c) ? 4u : 0u) | (repeated(c) ? 2u : 0u) | (c.rotating ? 1u : 0u);
}

using M3 = std::array<double, 9>;

/// The right-handed active rotation by `angle` about world axis `axis`.
M3 activeRotation(unsigned int axis, double angle) {
  double const c = std::cos(angle), s = std::sin(angle);
  switch (axis) {
    case 0: return {1, 0, 0, 0, c, -s, 0, s, c};
    case 1: return {c, 0, s, 0, 1, 0, -s, 0, c};
    default: return {c, -s, 0, s, c, 0, 0, 0, 1};
  }
}

M3 times(M3 const& a, M3 const& b) {
  double const* const x = a.data();
  double const* const y = b.data();
  // Written out: the property tests also run in unoptimised sanitizer builds.
  return {x[0] * y[0] + x[1] * y[3] + x[2] * y[6], x[0] * y[1] + x[1] * y[4] + x[2] * y[7],
          x[0] * y[2] + x[1] * y[5] + x[2] * y[8], x[3] * y[0] + x[4] * y[3] + x[5] * y[6],
          x[3] * y[1] + x[4] * y[4] + x[5] * y[7], x[3] * y[2] + x[4] * y[5] + x[5] * y[8],
          x[6] * y[0] + x[7] * y[3] + x[8] * y[6], x[6] * y[1] + x[7] * y[4] + x[8] * y[7],
          x[6] * y[2] + x[7] * y[5] + x[8] * y[8]};
}

M3 toArray(Matrix const& m) {
  Orvo::Matrix3x3 const plain = Matrix::getAsMatrix3x3(m);
  M3 r;
  for (unsigned int e = 0; e < 9; ++e) r[e] = plain.data()[e];
  return r;
}

/// Static axes: the first rotation about the first axis is applied first, so
/// it stands rightmost. Rotating axes: each rotation is about the axis the
/// previous ones carried along, which composes left to right.
M3 expectedRotation(Convention const& c, Vector const& angles) {
  M3 const r1 = activeRotation(c.axes[0], angles.x);
  M3 const r2 = activeRotation(c.axes[1], angles.y);
  M3 const r3 = activeRotation(c.axes[2], angles.z);
  return c.rotating ? times(times(r1, r2), r3) : times(times(r3, r2), r1);
}

/// Random angles inside the principal range of `c`, the middle one away from
/// its gimbal point. With a repeated axis the middle angle lies in 0..pi, or
/// in -pi..0 for odd parity; otherwise in -pi/2..pi/2.
Vector sampleAngles(Convention const& c, std::mt19937_64& random) {
  std::uniform_real_distribution<double> outer(-kPi, kPi);
  double middle;
  if (repeated(c)) {
    std::uniform_real_distribution<double> m(kGimbalMargin, kPi - kGimbalMargin);
    middle = oddParity(c) ? -m(random) : m(random);
  } else {
    std::uniform_real_distribution<double> m(-kPi / 2 + kGimbalMargin, kPi / 2 - kGimbalMargin);
    middle = m(random);
  }
  double const a = outer(random);
  double const b = middle;
  double const z = outer(random);
  return Vector(a, b, z);
}

/// The difference of two angles, up to whole turns.
double angleDistance(double a, double b) { return std::fabs(std::remainder(a - b, 2 * kPi)); }

TEST(MatrixProperty, PackedOrderFollowsFromAxesFrameAndParity) {
  for (Convention const& c : conventions()) {
    EXPECT_EQ(expectedPackedOrder(c), EulerAngles::packedOrder(c.value)) << c.name;
    EXPECT_EQ(std::string(c.name), EulerAngles::conventionName(c.value));
  }
}

TEST(MatrixProperty, GetEuler2OfGetEulerRotationGivesAnglesBackForEachConvention) {
  std::mt19937_64 random(20261122);
  for (Convention const& c : conventions()) {
    int failures = 0;
    for (int n = 0; n < kSamples && failures < 5; ++n) {
      Vector const v = sampleAngles(c, random);
      Vector const back = Matrix::getEulerRotation(c.value, v).getEuler2(c.value);
      bool const ok = angleDistance(back.x, v.x) <= 1e-9 && std::fabs(back.y - v.y) <= 1e-9 &&
                      angleDistance(back.z, v.z) <= 1e-9;
      if (!ok) {
        ++failures;
        ADD_FAILURE() << c.name << ": " << std::string(v.toString().begin(), v.toString().end()) << " came back as "
                      << std::string(back.toString().begin(), back.toString().end());
      }
    }
  }
}

TEST(MatrixProperty, GetEulerRotationIsTheProductOfElementaryRotations) {
  std::mt19937_64 random(5551212);
  for (Convention const& c : conventions()) {
    int failures = 0;
    for (int n = 0; n < kSamples && failures < 5; ++n) {
      Vector const v = sampleAngles(c, random);
      M3 const actual = toArray(Matrix::getEulerRotation(c.value, v));
      M3 const expected = expectedRotation(c, v);
      for (unsigned int e = 0; e < 9; ++e) {
        if (!(std::fabs(expected[e] - actual[e]) <= 1e-12)) {
          ++failures;
          ADD_FAILURE() << c.name << " element " << e << ": " << actual[e] << " instead of " << expected[e];
          break;
        }
      }
    }
  }
}

TEST(MatrixProperty, ElementaryFrameRotationsAreTransposedActiveRotations) {
  std::mt19937_64 random(42);
  std::uniform_real_distribution<double> angle(-2 * kPi, 2 * kPi);
  for (int n = 0; n < 1000; ++n) {
    double const a = angle(random);
    Matrix const frames[3] = {Matrix::getXRotation(a), Matrix::getYRotation(a), Matrix::getZRotation(a)};
    for (unsigned int axis = 0; axis < 3; ++axis) {
      M3 const active = activeRotation(axis, a);
      for (unsigned int e = 0; e < 9; ++e) ASSERT_EQ(active[3 * (e % 3) + e / 3], frames[axis][e / 3][e % 3]);
    }
  }
}

}  // namespace
