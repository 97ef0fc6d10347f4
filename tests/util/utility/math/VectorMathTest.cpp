#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "util/utility/math/Matrix3x3.h"
#include "util/utility/math/Point3D.h"
#include "util/utility/math/TransformTestSupport.h"
#include "util/utility/math/Vector3D.h"

using namespace Orvo;
using mtkit_test::expectNear;

TEST(Point3D, DifferenceIsAVectorAndAddingMoves) {
  Point3D p(1, 2, 3);
  Vector3D const d = Point3D(4, 6, 8) - p;
  EXPECT_EQ(d, Vector3D(3, 4, 5));
  p += d;
  EXPECT_EQ(p, Point3D(4, 6, 8));
  EXPECT_EQ(p.asVector(), Vector3D(4, 6, 8));
  p.setX(0);
  p.setY(0);
  p.setZ(1);
  EXPECT_EQ(p, Point3D(0, 0, 1));
}

TEST(Point3D, CoincidentWithinTolerance) {
  EXPECT_TRUE(Point3D(0, 0, 0).coincident(Point3D(0.005, 0, 0), LinearTolerance(0.01)));
  EXPECT_FALSE(Point3D(0, 0, 0).coincident(Point3D(0.02, 0, 0), LinearTolerance(0.01)));
  EXPECT_TRUE(coincident(Point3D(1, 1, 1), Point3D(1, 1, 1.001), LinearTolerance(0.01)));
}

TEST(Vector3D, DotAndCross) {
  EXPECT_EQ(Vector3D::dot(Vector3D(1, 2, 3), Vector3D(4, 5, 6)), 32.0);
  EXPECT_EQ(Vector3D::cross(Vector3D(1, 0, 0), Vector3D(0, 1, 0)), Vector3D(0, 0, 1));
  Vector3D v(1, 2, 3);
  v *= 2;
  EXPECT_EQ(v, Vector3D(2, 4, 6));
  EXPECT_EQ(-v, Vector3D(-2, -4, -6));
  EXPECT_EQ(v.asPoint(), Point3D(2, 4, 6));
}

TEST(Vector3D, NormalisationAndPredicates) {
  Vector3D v(3, 0, 4);
  EXPECT_FALSE(v.isNormalized());
  EXPECT_TRUE(v.getNormalized().isNormalized());
  v.normalize();
  expectNear(v, Vector3D(0.6, 0, 0.8));
  EXPECT_TRUE(Vector3D(1e-7, 0, 0).isZero(1e-6));
  EXPECT_FALSE(Vector3D(1e-5, 0, 0).isZero(1e-6));
  double const nan = std::numeric_limits<double>::quiet_NaN();
  double const inf = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(Vector3D(0, nan, 0).isNaN());
  EXPECT_FALSE(Vector3D(0, 1, 0).isNaN());
  EXPECT_TRUE(Vector3D(0, 1, 0).isProper());
  EXPECT_FALSE(Vector3D(0, 0, 0).isProper());
  EXPECT_FALSE(Vector3D(inf, 0, 0).isProper());
  EXPECT_FALSE(Vector3D(nan, 1, 0).isProper());
}

TEST(Matrix3x3, ColumnsConstructorMultipliesAsCombination) {
  Matrix3x3 const m(Vector3D(1, 2, 3), Vector3D(4, 5, 6), Vector3D(7, 8, 10));
  // (a, b, c) -> a*c0 + b*c1 + c*c2
  EXPECT_EQ(m * Vector3D(1, 0, 0), Vector3D(1, 2, 3));
  EXPECT_EQ(m * Vector3D(2, 1, 1), Vector3D(2 + 4 + 7, 4 + 5 + 8, 6 + 6 + 10));
}

TEST(Matrix3x3, RowMajorFromArray) {
  double const a[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  Matrix3x3 const m(a);
  EXPECT_EQ(m(0, 1), 2.0);
  EXPECT_EQ(m(1, 0), 4.0);
}

TEST(Matrix3x3, InverseTimesMatrixIsIdentity) {
  Matrix3x3 const m(Vector3D(1, 2, 3), Vector3D(0, 1, 4), Vector3D(5, 6, 0));
  Matrix3x3 const p = m.getInverse() * m;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(p(i, j), i == j ? 1.0 : 0.0, 1e-12);
}

TEST(Matrix3x3, SingularInverseIsNonFiniteWithoutThrowing) {
  Matrix3x3 const m(Vector3D(1, 2, 3), Vector3D(2, 4, 6), Vector3D(0, 1, 0));
  Matrix3x3 const inv = m.getInverse();
  bool anyNonFinite = false;
  for (int i = 0; i < 9; ++i) anyNonFinite |= !std::isfinite(inv.data()[i]);
  EXPECT_TRUE(anyNonFinite);
}

TEST(Matrix3x3, AxisRotationIsRightHanded) {
  Matrix3x3 const r = Matrix3x3::getAxisRotation(Vector3D(0, 0, 3), M_PI / 2);
  expectNear(r * Vector3D(1, 0, 0), Vector3D(0, 1, 0));
  Matrix3x3 const id = Matrix3x3::getIdentity();
  EXPECT_EQ(id * Vector3D(1, 2, 3), Vector3D(1, 2, 3));
}
