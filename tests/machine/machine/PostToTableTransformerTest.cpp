#include "machine/machine/PostToTableTransformer.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/AssertRecorder.h"

using machine::PostToTableTransformer;
using Mode = machine::PostToTableTransformer::CalculationMode;
using Orvo::Frame;
using Orvo::IdentityTag;
using Orvo::Point3D;
using Orvo::TaggedFrame;
using Orvo::Vector3D;

namespace {
void expectNear(Point3D const& a, Point3D const& b) {
  EXPECT_NEAR(a.x, b.x, 1e-12);
  EXPECT_NEAR(a.y, b.y, 1e-12);
  EXPECT_NEAR(a.z, b.z, 1e-12);
}
Frame frame(Point3D const& o, Vector3D const& x, Vector3D const& z) { return *Frame::make(o, x, z); }
Frame const identity{IdentityTag{}};
Frame const shifted = frame(Point3D(10, 0, 0), Vector3D(1, 0, 0), Vector3D(0, 0, 1));
Frame const turned = frame(Point3D(0, 0, 0), Vector3D(0, 1, 0), Vector3D(0, 0, 1));
}  // namespace

TEST(PostToTableTransformer, NewTransformerMapsEveryPointToItselfAndUpdateKeepsItSo) {
  PostToTableTransformer t;
  EXPECT_EQ(t.convertFromPostToTable(Point3D(1, 2, 3)), Point3D(1, 2, 3));
  EXPECT_EQ(t.postToTableCoordinateTransform(), Orvo::Transform3D());
  EXPECT_EQ(t.calculationMode(), Mode::WORK_ORIGIN_TPCS_ORIENTATION);
  t.update();
  EXPECT_EQ(t.convertFromPostToTable(Point3D(1, 2, 3)), Point3D(1, 2, 3));
  EXPECT_EQ(t.postOutputFrameInNcTable(), identity);
}

TEST(PostToTableTransformer, TaggedFrameWithAnUnknownTagChangesNoFrame) {
  PostToTableTransformer t;
  t.onTaggedFrame(TaggedFrame("Somewhere", "ModelCS", shifted));
  t.onTaggedFrame(TaggedFrame("", "", shifted));
  EXPECT_EQ(t.convertFromPostToTable(Point3D(1, 2, 3)), Point3D(1, 2, 3));
  t.setCalculationMode(Mode::TCP_WORK_CS);
  EXPECT_EQ(t.convertFromPostToTable(Point3D(1, 2, 3)), Point3D(1, 2, 3));
}

TEST(PostToTableTransformer, WorkCSOnBaseTPCSIsIgnored) {
  PostToTableTransformer t;
  t.setCalculationMode(Mode::TCP_WORK_CS);
  t.onTaggedFrame(TaggedFrame("WorkCS", "TPCS", shifted));
  EXPECT_EQ(t.convertFromPostToTable(Point3D(1, 2, 3)), Point3D(1, 2, 3));
  t.onTaggedFrame(TaggedFrame("WorkCS", "ModelCS", shifted));
  EXPECT_EQ(t.convertFromPostToTable(Point3D(1, 2, 3)), Point3D(11, 2, 3));
}

TEST(PostToTableTransformer, ToolReferenceOnBaseToolCSChangesNothingHere) {
  PostToTableTransformer t;
  for (Mode mode : {Mode::WORK_ORIGIN_TPCS_ORIENTATION, Mode::TCP_WORK_CS, Mode::SET_TILTED_WORK_PLANE}) {
    t.setCalculationMode(mode);
    t.onTaggedFrame(TaggedFrame("ToolReference", "ToolCS", shifted));
    EXPECT_EQ(t.convertFromPostToTable(Point3D(1, 2, 3)), Point3D(1, 2, 3));
  }
}

TEST(PostToTableTransformer, WorkOriginTpcsOrientationUsesTheOriginOfTheOneAndTheAxesOfTheOtherWhileTcpWorkCsUsesTheWorkCsWhole) {
  PostToTableTransformer t;
  t.onTaggedFrame(TaggedFrame("WorkCS", "ModelCS", shifted));
  t.onTaggedFrame(TaggedFrame("TPCS", "ModelCS", turned));
  expectNear(t.convertFromPostToTable(Point3D(1, 0, 0)), Point3D(10, 1, 0));
  t.setCalculationMode(Mode::TCP_WORK_CS);
  expectNear(t.convertFromPostToTable(Point3D(1, 0, 0)), Point3D(11, 0, 0));
  // Frames outlive a mode change: switching back restores the first result.
  t.setCalculationMode(Mode::WORK_ORIGIN_TPCS_ORIENTATION);
  expectNear(t.convertFromPostToTable(Point3D(1, 0, 0)), Point3D(10, 1, 0));
}

TEST(PostToTableTransformer, ConvertFromTableToPostOfConvertFromPostToTableGivesThePoint) {
  PostToTableTransformer t;
  t.onTaggedFrame(TaggedFrame("WorkCS", "ModelCS", shifted));
  t.onTaggedFrame(TaggedFrame("TPCS", "ModelCS", frame(Point3D(0, 0, 0), Vector3D(0, 1, 0), Vector3D(1, 0, 0))));
  t.onTaggedFrame(TaggedFrame("PartReference", "ModelCS", frame(Point3D(1, 2, 3), Vector3D(1, 0, 0), Vector3D(0, 0, 1))));
  t.onTaggedFrame(TaggedFrame("UserTableAttach", "TableAttach", turned));
  t.onTaggedFrame(TaggedFrame("PostOutput", "NCTable", frame(Point3D(0, 5, 0), Vector3D(0, 0, 1), Vector3D(1, 0, 0))));
  Point3D const p(3, -4, 7.5);
  EXPECT_NE(t.convertFromPostToTable(p), p);
  expectNear(t.convertFromTableToPost(t.convertFromPostToTable(p)), p);
}

TEST(PostToTableTransformer, SetTableToPostTransformationThenPostOutputFrameGivesTheIdentityFrameCarriedByIt) {
  PostToTableTransformer t;
  Orvo::Transform3D const motion(Orvo::Rotation3DArgs(Point3D(1, 1, 0), Vector3D(0, 0, 1), 1.0, 0.0));
  t.setTableToPostTransformation(motion);
  EXPECT_EQ(t.postOutputFrameInNcTable(), identity.transformedBy(motion));
  // The post output frame is read as the frame the post output is given in.
  expectNear(t.convertFromPostToTable(Point3D(0, 0, 0)), motion(Point3D(0, 0, 0)));
}

TEST(PostToTableTransformer, VectorPassedThroughConvertFromPostToTableIsNotShiftedByATranslationOfTheWorkCS) {
  PostToTableTransformer t;
  t.setCalculationMode(Mode::TCP_WORK_CS);
  t.onTaggedFrame(TaggedFrame("WorkCS", "ModelCS", frame(Point3D(10, 20, 30), Vector3D(0, 1, 0), Vector3D(0, 0, 1))));
  Vector3D const v = t.convertFromPostToTable(Vector3D(1, 0, 0));
  EXPECT_NEAR(v.x, 0.0, 1e-12);
  EXPECT_NEAR(v.y, 1.0, 1e-12);
  EXPECT_NEAR(v.z, 0.0, 1e-12);
}

TEST(PostToTableTransformer, TiltedWorkPlaneTakesThePlaceOfThePostOutputFrame) {
  mtkit_test::AssertRecorder rec;
  PostToTableTransformer t;
  t.onTaggedFrame(TaggedFrame("WorkCS", "ModelCS", shifted));
  t.onTaggedFrame(TaggedFrame("PostOutput", "NCTable", frame(Point3D(0, 0, 50), Vector3D(1, 0, 0), Vector3D(0, 0, 1))));
  t.setTiltedWorkPlaneInWorkCs(turned);
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"m_calculationMode == CalculationMode::SET_TILTED_WORK_PLANE"});
  // Stored all the same, but without effect in this mode.
  expectNear(t.convertFromPostToTable(Point3D(1, 0, 0)), Point3D(11, 0, 50));
  t.setCalculationMode(Mode::SET_TILTED_WORK_PLANE);
  EXPECT_TRUE(rec.takeTexts().empty());
  expectNear(t.convertFromPostToTable(Point3D(1, 0, 0)), Point3D(10, 1, 0));
}

TEST(PostToTableTransformer, TpcsParallelToNothingFailsTheFrameAssertionAndUsesTheIdentity) {
  mtkit_test::AssertRecorder rec;
  PostToTableTransformer t;
  // A TPCS read from a broken file: no frame spans its axes with the work origin.
  Frame const broken = identity.transformedBy(Orvo::Transform3D(Orvo::Matrix3x3(), Vector3D(0, 0, 0)));
  t.onTaggedFrame(TaggedFrame("WorkCS", "ModelCS", shifted));
  t.onTaggedFrame(TaggedFrame("TPCS", "ModelCS", broken));
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"f"});
  EXPECT_EQ(t.convertFromPostToTable(Point3D(1, 2, 3)), Point3D(1, 2, 3));
}
