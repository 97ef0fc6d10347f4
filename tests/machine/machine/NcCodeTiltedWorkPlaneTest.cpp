#include "machine/machine/NcCodeTiltedWorkPlane.h"

#include <gtest/gtest.h>

#include <cmath>

#include "machine/machine/NcCodeTiltedWorkPlaneByAlignToPose.h"
#include "machine/machine/NcCodeTiltedWorkPlaneByEulerAngles.h"
#include "machine/machine/NcCodeTiltedWorkPlaneBySpatialAngles.h"
#include "machine/machine/NcCodeTiltedWorkPlaneOff.h"
#include "support/AssertRecorder.h"

using namespace machine;
using Orvo::Frame;
using Orvo::IdentityTag;
using Orvo::Point3D;
using Orvo::Vector3D;

namespace {
void expectNear(Vector3D const& a, Vector3D const& b) {
  EXPECT_NEAR(a.x, b.x, 1e-12);
  EXPECT_NEAR(a.y, b.y, 1e-12);
  EXPECT_NEAR(a.z, b.z, 1e-12);
}
Frame head() { return *Frame::make(Point3D(5, 6, 7), Vector3D(0, 1, 0), Vector3D(1, 0, 0)); }
}  // namespace

TEST(NcCodeTiltedWorkPlane, OffCalculateTiltedFrameAssertsBecauseThePlaneIsNotActive) {
  mtkit_test::AssertRecorder rec;
  NcCodeTiltedWorkPlaneOff const off;
  EXPECT_FALSE(off.isActive());
  Frame const f = off.calculateTiltedFrame(head());
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"EXPECTS:isActive()"});
  EXPECT_EQ(f, Frame(IdentityTag{}));
}

TEST(NcCodeTiltedWorkPlane, AlignToPoseTakesTheHeadAxesAtTheOrigin) {
  mtkit_test::AssertRecorder rec;
  NcCodeTiltedWorkPlaneByAlignToPose const plane;
  EXPECT_TRUE(plane.isActive());
  Frame const f = plane.calculateTiltedFrame(head());
  EXPECT_TRUE(rec.takeTexts().empty());
  EXPECT_EQ(f.origin(), Point3D(0, 0, 0));
  expectNear(f.xAxis(), Vector3D(0, 1, 0));
  expectNear(f.zAxis(), Vector3D(1, 0, 0));
}

TEST(NcCodeTiltedWorkPlane, SpatialAnglesAreConvention21WithTheAnglesReversed) {
  NcCodeTiltedWorkPlaneBySpatialAngles const spatial(0.1, 0.2, 0.3);
  NcCodeTiltedWorkPlaneByEulerAngles const euler(com::vantora::Matrix::EULER_ZYX_R, 0.3, 0.2, 0.1);
  Frame const a = spatial.calculateTiltedFrame(head());
  Frame const b = euler.calculateTiltedFrame(Frame(IdentityTag{}));
  EXPECT_EQ(a, b);
  EXPECT_EQ(a.origin(), Point3D(0, 0, 0));
  EXPECT_NE(a, Frame(IdentityTag{}));
}

TEST(NcCodeTiltedWorkPlane, ZeroSpatialAnglesGiveTheIdentity) {
  Frame const f = NcCodeTiltedWorkPlaneBySpatialAngles(0, 0, 0).calculateTiltedFrame(head());
  expectNear(f.xAxis(), Vector3D(1, 0, 0));
  expectNear(f.zAxis(), Vector3D(0, 0, 1));
  EXPECT_EQ(f.origin(), Point3D(0, 0, 0));
}

TEST(NcCodeTiltedWorkPlane, EulerAnglesFollowTheRotationOfTheConvention) {
  // A quarter turn in a single-axis convention is a rotation about that axis.
  Frame const f = NcCodeTiltedWorkPlaneByEulerAngles(com::vantora::Matrix::EULER_ZYX_R, M_PI / 2, 0, 0)
                      .calculateTiltedFrame(head());
  com::vantora::Matrix const m =
      com::vantora::Matrix::getEulerRotation(com::vantora::Matrix::EULER_ZYX_R, com::vantora::Vector(M_PI / 2, 0, 0));
  Orvo::Matrix3x3 const r = com::vantora::Matrix::getAsMatrix3x3(m);
  expectNear(f.xAxis(), r * Vector3D(1, 0, 0));
  expectNear(f.zAxis(), r * Vector3D(0, 0, 1));
}

TEST(NcCodeTiltedWorkPlane, EulerConventionBeyond23AssertsAndGivesTheIdentity) {
  mtkit_test::AssertRecorder rec;
  NcCodeTiltedWorkPlaneByEulerAngles const plane(static_cast<com::vantora::Matrix::EulerConvention>(24), 0.5, 0, 0);
  Frame const f = plane.calculateTiltedFrame(head());
  EXPECT_EQ(rec.takeTexts(),
            std::vector<std::string>{"m_eulerConvention <= com::vantora::Matrix::EulerConvention::EULER_YXZ_R"});
  EXPECT_EQ(f, Frame(IdentityTag{}));
}
