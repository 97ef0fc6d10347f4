#include "util/utility/math/Transform3D.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "support/AssertRecorder.h"
#include "util/utility/math/TransformTestSupport.h"

using namespace Orvo;
using mtkit_test::expectNear;

namespace {
Transform3D rotation(Point3D p, Vector3D v, double degrees) {
  double const r = degrees * kRadiansPerDegree;
  return Transform3D(Rotation3DArgs(p, v, std::sin(r), std::cos(r)));
}
Transform3D translation(double x, double y, double z) { return Transform3D(Translation3DArgs{Vector3D(x, y, z)}); }
}  // namespace

TEST(Transform3D, IdentityReadsOneZeroZeroThenZeroTranslation) {
  Transform3D const t;
  double const expected[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  for (int i = 0; i < 9; ++i) EXPECT_EQ(t.rotation().data()[i], expected[i]);
  EXPECT_EQ(t.translation(), Vector3D(0, 0, 0));
}

TEST(Transform3D, ComposeAppliesSecondArgumentFirst) {
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> u(-100, 100);
  for (int i = 0; i < 100; ++i) {
    Transform3D const a = compose(rotation(Point3D(u(rng), u(rng), u(rng)), Vector3D(u(rng), u(rng), u(rng)), u(rng)),
                                  translation(u(rng), u(rng), u(rng)));
    Transform3D const b = rotation(Point3D(u(rng), u(rng), u(rng)), Vector3D(u(rng), u(rng), u(rng)), u(rng));
    Point3D const p(u(rng), u(rng), u(rng));
    expectNear(compose(a, b)(p), a(b(p)), 1e-9);
  }
  // Order matters: translating then rotating differs from the reverse.
  Transform3D const r = rotation(Point3D(0, 0, 0), Vector3D(0, 0, 1), 90);
  Transform3D const t = translation(1, 0, 0);
  expectNear(compose(r, t)(Point3D(0, 0, 0)), Point3D(0, 1, 0));
  expectNear(compose(t, r)(Point3D(0, 0, 0)), Point3D(1, 0, 0));
}

TEST(Transform3D, VectorIsNotTranslated) {
  Transform3D const t = compose(translation(5, 6, 7), rotation(Point3D(1, 2, 3), Vector3D(0, 0, 1), 90));
  expectNear(t(Vector3D(1, 0, 0)), Vector3D(0, 1, 0));
  expectNear(translation(5, 6, 7)(Vector3D(1, 2, 3)), Vector3D(1, 2, 3));
}

TEST(Transform3D, RotationIsRightHandedAboutALineThroughThePoint) {
  Transform3D const t = rotation(Point3D(10, 0, 0), Vector3D(0, 0, 2), 90);
  expectNear(t(Point3D(11, 0, 0)), Point3D(10, 1, 0));
  expectNear(t(Point3D(10, 0, 5)), Point3D(10, 0, 5));  // points on the axis stay
}

TEST(Transform3D, InverseUndoes) {
  Transform3D const t = compose(translation(1, 2, 3), rotation(Point3D(4, 5, 6), Vector3D(1, 1, 0), 33));
  Point3D const p(7, -8, 9);
  expectNear(t.inverse()(t(p)), p, 1e-12);
  expectNear(compose(t, t.inverse())(p), p, 1e-12);
}

TEST(Transform3D, NaNTranslationFails) {
  mtkit_test::AssertRecorder rec;
  double const nan = std::numeric_limits<double>::quiet_NaN();
  Transform3D const t(Translation3DArgs{Vector3D(nan, 0, 0)});
  (void)t;
  auto const f = rec.take();
  ASSERT_EQ(f.size(), 1u);
  EXPECT_EQ(f[0].expression, "!translation.isNaN()");
  EXPECT_EQ(f[0].file, "util\\utility/math/Transform3D");
}

TEST(Transform3D, NaNOrZeroRotationDirectionFails) {
  mtkit_test::AssertRecorder rec;
  double const nan = std::numeric_limits<double>::quiet_NaN();
  Transform3D const a(Rotation3DArgs(Point3D(), Vector3D(nan, 0, 0), 0, 1));
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"!vector.isNaN()", "vector.isProper()"}));
  Transform3D const b(Rotation3DArgs(Point3D(), Vector3D(0, 0, 0), 0, 1));
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"vector.isProper()"}));
  (void)a;
  (void)b;
}

TEST(Transform3D, BadSineAndCosineFailWithAnglePath) {
  mtkit_test::AssertRecorder rec;
  Rotation3DArgs const args(Point3D(), Vector3D(0, 0, 1), 2.0, 0.0);
  (void)args;
  auto const f = rec.take();
  ASSERT_EQ(f.size(), 2u);
  EXPECT_EQ(f[0].expression, "t <= 1");
  EXPECT_EQ(f[0].file, "util\\utility/Angle");
  EXPECT_EQ(f[1].expression, "std::fabs(std::sqrt(m_s * m_s + m_c * m_c) - 1) < 1e-12");
}

TEST(Transform3D, CoordinateTransformOfOriginOfFGivesItsCoordinatesInG) {
  Frame const f = *Frame::make(Point3D(10, 20, 30), Vector3D(0, 1, 0), Vector3D(1, 0, 0));
  Frame const g = *Frame::make(Point3D(1, 2, 3), Vector3D(0, 0, 1), Vector3D(0, 1, 0));
  // f's origin has coordinates (0,0,0) in f. In g: d = (9,18,27) from g's origin,
  // g's axes x=(0,0,1), y = z cross x = (0,1,0)x(0,0,1) = (1,0,0), z=(0,1,0).
  Point3D const inG = coordinateTransform3D(f, g)(Point3D(0, 0, 0));
  expectNear(inG, Point3D(27, 9, 18));
  // Same through the world frame.
  expectNear(coordinateTransform3D(IdentityTag{}, g)(f.origin()), inG);
}

TEST(Transform3D, ActiveTransformCarriesFromOntoTo) {
  Frame const f = *Frame::make(Point3D(1, 0, 0), Vector3D(1, 0, 0), Vector3D(0, 0, 1));
  Frame const g = *Frame::make(Point3D(0, 5, 0), Vector3D(0, 1, 0), Vector3D(0, 0, 1));
  Transform3D const t = activeTransform3D(f, g);
  Frame const moved = f.transformedBy(t);
  expectNear(moved.origin(), g.origin());
  expectNear(moved.xAxis(), g.xAxis());
  expectNear(moved.zAxis(), g.zAxis());
}

TEST(Transform3D, HasIdentityRotationOnlyForAnExactIdentityRotation) {
  EXPECT_TRUE(Transform3D().hasIdentityRotation());
  EXPECT_TRUE(translation(1, -2, 3).hasIdentityRotation());
  // A turn by 0 about any line is exactly the identity rotation.
  EXPECT_TRUE(Transform3D(Rotation3DArgs(Point3D(1, 2, 3), Vector3D(0.6, 0, 0.8), 0.0, 1.0)).hasIdentityRotation());
  // About X its first column is still (1, 0, 0).
  EXPECT_FALSE(rotation(Point3D(0, 0, 0), Vector3D(1, 0, 0), 90).hasIdentityRotation());
  EXPECT_FALSE(rotation(Point3D(0, 0, 0), Vector3D(0, 0, 1), 1e-6).hasIdentityRotation());
}

TEST(Transform3D, ComposedWithTranslationIsComposeWithATranslation) {
  std::mt19937 engine(11u);
  std::uniform_real_distribution<double> u(-100.0, 100.0);
  for (int i = 0; i < 100; ++i) {
    Transform3D const a = compose(translation(u(engine), u(engine), u(engine)),
                                  rotation(Point3D(u(engine), u(engine), u(engine)),
                                           Vector3D(u(engine), u(engine), u(engine) + 200.0), u(engine)));
    Transform3D const b = translation(u(engine), u(engine), u(engine));
    Transform3D const expected = compose(a, b);
    Transform3D const actual = a.composedWithTranslation(b);
    EXPECT_TRUE(actual == expected) << i;
    EXPECT_EQ(actual.translation(), expected.translation()) << i;
  }
}
