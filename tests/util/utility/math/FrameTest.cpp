#include "util/utility/math/Frame.h"

#include <gtest/gtest.h>

#include "util/utility/math/TransformTestSupport.h"
#include "util/utility/math/Transform3D.h"

using namespace Orvo;
using mtkit_test::expectNear;

TEST(Frame, IdentityFrameIsTheWorld) {
  Frame const f(IdentityTag{});
  EXPECT_EQ(f.origin(), Point3D(0, 0, 0));
  EXPECT_EQ(f.xAxis(), Vector3D(1, 0, 0));
  EXPECT_EQ(f.zAxis(), Vector3D(0, 0, 1));
  EXPECT_EQ(f.yAxis(), Vector3D(0, 1, 0));
}

TEST(Frame, MakeRefusesParallelOrZeroDirections) {
  EXPECT_FALSE(Frame::make(Point3D(), Vector3D(1, 0, 0), Vector3D(2, 0, 0)));
  EXPECT_FALSE(Frame::make(Point3D(), Vector3D(0, 0, 0), Vector3D(0, 0, 1)));
  EXPECT_FALSE(Frame::make(Point3D(), Vector3D(1, 0, 0), Vector3D(0, 0, 0)));
}

TEST(Frame, MakeNormalisesAndOrthogonalisesX) {
  auto const f = Frame::make(Point3D(1, 2, 3), Vector3D(2, 0, 1), Vector3D(0, 0, 5));
  ASSERT_TRUE(f);
  expectNear(f->zAxis(), Vector3D(0, 0, 1));
  expectNear(f->xAxis(), Vector3D(1, 0, 0));
  expectNear(f->yAxis(), Vector3D(0, 1, 0));
}

TEST(Frame, TransformedByCarriesOriginAndAxes) {
  Frame const f(IdentityTag{});
  Transform3D const t(Rotation3DArgs(Point3D(0, 0, 0), Vector3D(0, 0, 1), 1.0, 0.0));
  Frame const g = f.transformedBy(compose(Transform3D(Translation3DArgs{Vector3D(1, 1, 1)}), t));
  expectNear(g.origin(), Point3D(1, 1, 1));
  expectNear(g.xAxis(), Vector3D(0, 1, 0));
  expectNear(g.zAxis(), Vector3D(0, 0, 1));
}
