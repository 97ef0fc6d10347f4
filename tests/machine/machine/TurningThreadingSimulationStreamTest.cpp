#include "machine/machine/TurningThreadingSimulationStream.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "machine/machine/MockSimulationStream.h"
#include "support/AssertRecorder.h"

using namespace machine;

namespace {

Orvo::AxisValues values(std::vector<double> const& numbers) {
  return Orvo::AxisValues(std::vector<Orvo::AxisValue>(numbers.begin(), numbers.end()));
}

Orvo::AxisOrdering ordering(std::vector<char const*> const& names) {
  Orvo::AxisOrdering o;
  for (char const* name : names) o.append(Orvo::AxisInfo(name, name));
  return o;
}

SimulationStreamCommand command(int value) { return SimulationStreamCommand(value); }

/// A threading tool with the given pitch.
Orvo::NCTool threadingTool(double pitch, int unit = Orvo::NCUnit::MILLIMETER) {
  return Orvo::NCTool(3, Orvo::ToolGeometry(), unit, pitch);
}

/// X, Z, C in front of a recording stream.
struct Chain {
  explicit Chain(std::vector<char const*> const& names = {"X", "Z", "C"}) {
    auto owner = std::make_unique<MockSimulationStream>();
    mock = owner.get();
    stream = std::make_unique<TurningThreadingSimulationStream>(std::move(owner));
    stream->onAxisOrdering(ordering(names));
  }
  double lastC() const { return mock->axisValues(mock->countOf("doOnAxisValues") - 1)[2].value(); }
  MockSimulationStream* mock;
  std::unique_ptr<TurningThreadingSimulationStream> stream;
};

}  // namespace

TEST(TurningThreadingSimulationStream, ThreadingWithPitch2mmAndZFrom10To6AddsMinus720DegreesOrPlus720AfterCommand5) {
  for (bool reversed : {false, true}) {
    Chain c;
    c.stream->onNCTool(threadingTool(2.0));
    if (reversed) c.stream->onCommand(command(5));
    c.stream->onAxisValues(values({20, 10, 0}));
    c.stream->onCommand(command(12));
    c.stream->onAxisValues(values({20, 6, 0}));
    // 4 mm of Z at 2 mm a turn: two turns, negative for a falling Z.
    EXPECT_EQ(c.lastC(), reversed ? 720.0 : -720.0);
    EXPECT_EQ(c.mock->axisValues(1)[1].value(), 6.0);
    EXPECT_EQ(c.mock->axisValues(1)[0].value(), 20.0);
  }
}

TEST(TurningThreadingSimulationStream, Command4TurnsTheSpindleBackToItsOwnSense) {
  Chain c;
  c.stream->onNCTool(threadingTool(2.0));
  c.stream->onCommand(command(5));
  c.stream->onCommand(command(4));
  c.stream->onAxisValues(values({20, 10, 0}));
  c.stream->onCommand(command(12));
  c.stream->onAxisValues(values({20, 9, 0}));
  EXPECT_EQ(c.lastC(), -180.0);
}

TEST(TurningThreadingSimulationStream, ThePitchOfAnInchToolIsTakenInMillimetres) {
  Chain c;
  c.stream->onNCTool(threadingTool(0.1, Orvo::NCUnit::INCH));  // 2.54 mm
  c.stream->onAxisValues(values({20, 10, 0}));
  c.stream->onCommand(command(12));
  c.stream->onAxisValues(values({20, 10 - 5.08, 0}));
  EXPECT_NEAR(c.lastC(), -720.0, 1e-9);
}

TEST(TurningThreadingSimulationStream, AfterCommand13TheNextThreadingPassStartsAtAngle0) {
  Chain c;
  c.stream->onNCTool(threadingTool(2.0));
  c.stream->onAxisValues(values({20, 10, 0}));
  c.stream->onCommand(command(12));
  c.stream->onAxisValues(values({20, 8, 0}));
  EXPECT_EQ(c.lastC(), -360.0);
  c.stream->onCommand(command(13));
  EXPECT_EQ(c.stream->spindleAngle(), 0.0);
  EXPECT_FALSE(c.stream->isThreading());
  // Back up outside threading: Z is followed, C passes as it is.
  c.stream->onAxisValues(values({20, 10, 45}));
  EXPECT_EQ(c.lastC(), 45.0);
  c.stream->onCommand(command(12));
  c.stream->onAxisValues(values({20, 9, 45}));
  EXPECT_EQ(c.lastC(), -180.0);
}

TEST(TurningThreadingSimulationStream, AMoveWithNoZChangeKeepsTheIncomingC) {
  Chain c;
  c.stream->onNCTool(threadingTool(2.0));
  c.stream->onAxisValues(values({20, 10, 0}));
  c.stream->onCommand(command(12));
  c.stream->onAxisValues(values({20, 9, 0}));
  EXPECT_EQ(c.lastC(), -180.0);
  c.stream->onAxisValues(values({25, 9, 33}));
  EXPECT_EQ(c.lastC(), 33.0);
  EXPECT_EQ(c.stream->spindleAngle(), -180.0);
}

TEST(TurningThreadingSimulationStream, AMachineWithoutACAxisGetsItsAxisValuesUnchangedAndAMachineWithoutZAsWell) {
  for (auto const& names : {std::vector<char const*>{"X", "Z", "B"}, std::vector<char const*>{"X", "Y", "C"}}) {
    Chain c(names);
    c.stream->onNCTool(threadingTool(2.0));
    c.stream->onAxisValues(values({20, 10, 7}));
    c.stream->onCommand(command(12));
    c.stream->onAxisValues(values({20, 6, 7}));
    EXPECT_EQ(c.mock->axisValues(1), values({20, 6, 7})) << names[1] << names[2];
  }
}

TEST(TurningThreadingSimulationStream, APitchNotAbove0FailsInATestRunAndLeavesTheValuesAsTheyAre) {
  mtkit_test::AssertRecorder recorder;
  Chain c;
  c.stream->onNCTool(threadingTool(0.0));
  c.stream->onAxisValues(values({20, 10, 0}));
  c.stream->onCommand(command(12));
  c.stream->onAxisValues(values({20, 6, 12}));
  EXPECT_EQ(recorder.takeTexts(), std::vector<std::string>{"pitch > 0"});
  EXPECT_EQ(c.mock->axisValues(1), values({20, 6, 12}));
}

TEST(TurningThreadingSimulationStream, CommandsAndToolsAreForwarded) {
  Chain c;
  c.stream->onNCTool(threadingTool(1.5));
  for (int value : {4, 5, 12, 13, 9}) c.stream->onCommand(command(value));
  EXPECT_EQ(c.mock->countOf("doOnCommand"), 5);
  EXPECT_EQ(c.mock->command(4), command(9));
  EXPECT_EQ(c.mock->ncTool(0).getThreadPitch(), 1.5);
}
