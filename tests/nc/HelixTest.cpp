#include "nc/Helix.h"

#include <gtest/gtest.h>

#include <cmath>

using Orvo::Helix;
using Orvo::Point3D;
using Orvo::Vector3D;

namespace {
void expectNear(Vector3D const& a, Vector3D const& b) {
  EXPECT_NEAR(a.x, b.x, 1e-12);
  EXPECT_NEAR(a.y, b.y, 1e-12);
  EXPECT_NEAR(a.z, b.z, 1e-12);
}
}  // namespace

TEST(Helix, QuarterArcFromCentreStartEndNormal) {
  Helix const h(Point3D(0, 0, 0), Point3D(10, 0, 0), Point3D(0, 10, 0), Vector3D(0, 0, 1));
  EXPECT_NEAR(h.sweep(), M_PI / 2, 1e-12);
  EXPECT_DOUBLE_EQ(h.radius(), 10.0);
  EXPECT_DOUBLE_EQ(h.height(), 0.0);
  expectNear(h.getStart(), Vector3D(10, 0, 0));
  expectNear(h.getEnd(), Vector3D(0, 10, 0));
}

TEST(Helix, TurnsCounterclockwiseAboutItsNormal) {
  // About -Z the same two points are three quarters apart.
  Helix const h(Point3D(0, 0, 0), Point3D(10, 0, 0), Point3D(0, 10, 0), Vector3D(0, 0, -1));
  EXPECT_NEAR(h.sweep(), 3 * M_PI / 2, 1e-12);
  expectNear(h.getEnd(), Vector3D(0, 10, 0));
}

TEST(Helix, EndAboveTheStartIsAFullTurnWithHeight) {
  Helix const h(Point3D(0, 0, -5), Point3D(10, 0, 0), Point3D(10, 0, 4), Vector3D(0, 0, 1));
  EXPECT_NEAR(h.sweep(), 2 * M_PI, 1e-12);
  EXPECT_DOUBLE_EQ(h.height(), 4.0);
  expectNear(h.center(), Vector3D(0, 0, 0));
  expectNear(h.getEnd(), Vector3D(10, 0, 4));
}

TEST(Helix, GivenSweepMayExceedATurn) {
  Helix const h(Point3D(0, 0, 0), Point3D(10, 0, 0), Point3D(-10, 0, 6), 3 * M_PI, Vector3D(0, 0, 1));
  EXPECT_DOUBLE_EQ(h.sweep(), 3 * M_PI);
  expectNear(h.getEnd(), Vector3D(-10, 0, 6));
  expectNear(h.getPoint(0.5), Vector3D(0, -10, 3));
}

TEST(Helix, StoredNumbersKeepTheirOrderAndRebuildTheHelix) {
  Helix const h(Point3D(1, 2, 3), Point3D(4, 2, 3), Point3D(1, 5, 7), Vector3D(0, 0, 2));
  auto const v = h.storedValues();
  ASSERT_EQ(v.size(), 15u);
  EXPECT_EQ(v[0], 1.0);
  EXPECT_EQ(v[5], 1.0);   // normal z, normalised
  EXPECT_EQ(v[6], 1.0);   // x axis towards the start
  EXPECT_EQ(v[10], 1.0);  // y axis
  EXPECT_EQ(v[12], 3.0);  // radius
  EXPECT_EQ(v[13], 4.0);  // height
  EXPECT_NEAR(v[14], M_PI / 2, 1e-12);
  Helix const copy(Vector3D(v[0], v[1], v[2]), Vector3D(v[3], v[4], v[5]), Vector3D(v[6], v[7], v[8]),
                   Vector3D(v[9], v[10], v[11]), v[12], v[13], v[14]);
  EXPECT_EQ(copy, h);
  expectNear(copy.getEnd(), Vector3D(1, 5, 7));
}
