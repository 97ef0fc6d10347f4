#include "machine/machine/MachineMotionSimulationStream.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/PersistSupport.h"

using machine::MachineMotionSimulationStream;
using machine::SimulationStream;
using mtkit_test::makeOrdering;

namespace {

void identify(MachineMotionSimulationStream& stream, int toolpath) {
  stream.onMachineId(1);
  stream.onNcProgramId(2);
  stream.onOperationId(toolpath);
}

Orvo::AxisValues values(std::vector<Orvo::AxisValue> v) { return Orvo::AxisValues(std::move(v)); }

}  // namespace

TEST(MachineMotionSimulationStream, OnSectionBeforeOperationWithAValidContextOpensNoMotionAndAxisValuesThatFollowAreIgnored) {
  MachineMotionSimulationStream stream;
  stream.onAxisOrdering(makeOrdering({{"x", "X"}}));
  identify(stream, 3);
  stream.onSection(SimulationStream::SectionType::BeforeOperation);
  stream.onAxisValues(values({1.0}));
  stream.onSectionEnd();
  EXPECT_TRUE(stream.isOk());
  EXPECT_TRUE(stream.motionRange().empty());
  // The next Operation section records its own first values, not the ones
  // that came before it.
  stream.onSection(SimulationStream::SectionType::Operation);
  stream.onAxisValues(values({2.0}));
  stream.onSectionEnd();
  ASSERT_EQ(stream.motionRange().size(), 1u);
  EXPECT_EQ(stream.motionRange()[0].axisValues(0), values({2.0}));
}

TEST(MachineMotionSimulationStream, TwoOnAxisValuesInAnOperationSectionKeepOnlyTheFirst) {
  MachineMotionSimulationStream stream;
  stream.onAxisOrdering(makeOrdering({{"x", "X"}, {"c", "C"}}));
  identify(stream, 3);
  stream.onSection(SimulationStream::SectionType::Operation);
  stream.onAxisValues(values({1.0, 90.0}));
  stream.onAxisValues(values({5.0, 180.0}));
  stream.onSectionEnd();
  ASSERT_EQ(stream.motionRange().size(), 1u);
  machine::MachineMotion const& motion = stream.motionRange()[0];
  EXPECT_EQ(motion.numEntities(), 1);
  EXPECT_EQ(motion.axisValues(0), values({1.0, 90.0}));
  EXPECT_EQ(motion.context(), mtkit_test::makeContext(1, 2, 3, 0));
  EXPECT_TRUE(motion.isValid());
}

TEST(MachineMotionSimulationStream, OnSectionEndWithNoSectionIsHarmless) {
  MachineMotionSimulationStream stream;
  stream.onSectionEnd();
  stream.onSectionEnd();
  EXPECT_TRUE(stream.isOk());
  EXPECT_TRUE(stream.motionRange().empty());
  // And it leaves the stream usable.
  stream.onAxisOrdering(makeOrdering({{"x", "X"}}));
  identify(stream, 3);
  stream.onSection(SimulationStream::SectionType::Operation);
  stream.onAxisValues(values({4.0}));
  stream.onSectionEnd();
  EXPECT_EQ(stream.motionRange().size(), 1u);
}

TEST(MachineMotionSimulationStream, OnAxisOrderingInsideASectionChangesTheCurrentMotionsOrderingToo) {
  MachineMotionSimulationStream stream;
  stream.onAxisOrdering(makeOrdering({{"x", "X"}}));
  identify(stream, 3);
  stream.onSection(SimulationStream::SectionType::Operation);
  Orvo::AxisOrdering const later = makeOrdering({{"x", "X"}, {"b", "B"}});
  stream.onAxisOrdering(later);
  stream.onAxisValues(values({1.0, 2.0}));
  stream.onSectionEnd();
  ASSERT_EQ(stream.motionRange().size(), 1u);
  EXPECT_EQ(stream.motionRange()[0].axisOrdering(0), later);
  // The stored ordering serves the next section as well.
  stream.onOperationId(4);
  stream.onSection(SimulationStream::SectionType::Operation);
  stream.onSectionEnd();
  ASSERT_EQ(stream.motionRange().size(), 2u);
  EXPECT_EQ(stream.motionRange()[1].axisOrdering(0), later);
}

TEST(MachineMotionSimulationStream, BeforeAnyOrderingAMotionHasTheOrderingOfOneEmptyEntry) {
  MachineMotionSimulationStream stream;
  identify(stream, 3);
  stream.onSection(SimulationStream::SectionType::Operation);
  stream.onSectionEnd();
  ASSERT_EQ(stream.motionRange().size(), 1u);
  EXPECT_EQ(stream.motionRange()[0].axisOrdering(0).size(), 1);
  EXPECT_EQ(stream.motionRange()[0].axisOrdering(0), Orvo::AxisOrdering(1));
  EXPECT_EQ(stream.motionRange()[0].numEntities(), 0);
}

TEST(MachineMotionSimulationStream, ASectionInAContextThatIsNotValidEndsTheStreamAndKeepsWhatWasRecorded) {
  MachineMotionSimulationStream stream;
  stream.onAxisOrdering(makeOrdering({{"x", "X"}}));
  identify(stream, 3);
  stream.onSection(SimulationStream::SectionType::Operation);
  stream.onAxisValues(values({1.0}));
  stream.onSectionEnd();
  ASSERT_EQ(stream.motionRange().size(), 1u);

  MachineMotionSimulationStream unidentified;
  unidentified.onMachineId(1);
  unidentified.onNcProgramId(2);  // no toolpath: not valid
  unidentified.onSection(SimulationStream::SectionType::NoTool);
  EXPECT_FALSE(unidentified.isOk());
  unidentified.onOperationId(3);
  unidentified.onSection(SimulationStream::SectionType::Operation);
  unidentified.onSectionEnd();
  EXPECT_TRUE(unidentified.motionRange().empty());
}

TEST(MachineMotionSimulationStream, AMotionWhoseSectionNeverEndedStaysOut) {
  MachineMotionSimulationStream stream;
  stream.onAxisOrdering(makeOrdering({{"x", "X"}}));
  identify(stream, 3);
  stream.onSection(SimulationStream::SectionType::Operation);
  stream.onAxisValues(values({1.0}));
  // A second Operation replaces the first, which never ended.
  stream.onOperationId(4);
  stream.onSection(SimulationStream::SectionType::Operation);
  stream.onAxisValues(values({2.0}));
  EXPECT_TRUE(stream.motionRange().empty());
  stream.onSectionEnd();
  ASSERT_EQ(stream.motionRange().size(), 1u);
  EXPECT_EQ(stream.motionRange()[0].context().toolpathId(), 4);
  EXPECT_EQ(stream.motionRange()[0].axisValues(0), values({2.0}));
}

TEST(MachineMotionSimulationStream, TheContextLivesAcrossSectionsWithItsPatternsAndWorkOffset) {
  MachineMotionSimulationStream stream;
  stream.onAxisOrdering(makeOrdering({{"x", "X"}}));
  identify(stream, 3);
  stream.onWorkOffset(54);
  stream.onPatternOpen(7);
  stream.onPatternChildInstance(2);
  stream.onSection(SimulationStream::SectionType::Operation);
  stream.onSectionEnd();
  stream.onPatternChildInstance(3);
  stream.onSection(SimulationStream::SectionType::Operation);
  stream.onSectionEnd();
  stream.onPatternClose(999);  // the argument is ignored
  stream.onSection(SimulationStream::SectionType::Operation);
  stream.onSectionEnd();
  ASSERT_EQ(stream.motionRange().size(), 3u);
  EXPECT_EQ(stream.motionRange()[0].context(), mtkit_test::makeContext(1, 2, 3, 54, {{7, 2}}));
  EXPECT_EQ(stream.motionRange()[1].context(), mtkit_test::makeContext(1, 2, 3, 54, {{7, 3}}));
  EXPECT_EQ(stream.motionRange()[2].context(), mtkit_test::makeContext(1, 2, 3, 54));
}

TEST(MachineMotionSimulationStream, MotionsToolsOutputIssuesAndCommandsAreIgnored) {
  MachineMotionSimulationStream stream;
  stream.onAxisOrdering(makeOrdering({{"x", "X"}}));
  identify(stream, 3);
  stream.onSection(SimulationStream::SectionType::Operation);
  stream.onNcOutput(std::string("G1 X1"));
  stream.onIssue(SimulationStream::IssueCode::SOLVE_FAILED, std::string("failed"));
  stream.onLinear(Orvo::Point3D(1, 2, 3), 100.0, machine::MotionSettings());
  stream.onRapid(Orvo::Point3D(1, 2, 3), machine::MotionSettings());
  stream.onSpindleSpeed(1000.0);
  stream.onTCPCoordMode(true);
  stream.onAxisValues(values({7.0}));
  stream.onSectionEnd();
  EXPECT_TRUE(stream.isOk());
  ASSERT_EQ(stream.motionRange().size(), 1u);
  EXPECT_EQ(stream.motionRange()[0].axisValues(0), values({7.0}));
}
