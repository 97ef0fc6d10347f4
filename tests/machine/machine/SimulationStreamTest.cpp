#include "machine/machine/SimulationStream.h"

#include <gtest/gtest.h>

#include <memory>

#include "machine/machine/ForwardingSimulationStream.h"
#include "machine/machine/MockSimulationStream.h"
#include "machine/machine/NcCodeTiltedWorkPlaneOff.h"
#include "support/AssertRecorder.h"

using namespace machine;
using Orvo::Point3D;
using Orvo::Vector3D;

namespace {

// A link that keeps the base's version check, so that the contract itself
// can be watched through the mock behind it.
class PlainLink final : public ForwardingSimulationStream {
public:
  using ForwardingSimulationStream::ForwardingSimulationStream;
  ~PlainLink() override = default;
  void fail() { setIsOk(false); }
};

class FailableMock final : public MockSimulationStream {
public:
  void fail() { setIsOk(false); }
};

struct Chain {
  Chain() {
    auto mockOwner = std::make_unique<FailableMock>();
    mock = mockOwner.get();
    link = std::make_unique<PlainLink>(std::move(mockOwner));
  }
  FailableMock* mock;
  std::unique_ptr<PlainLink> link;
};

MotionSettings settings() { return MotionSettings(); }

Orvo::AxisOrdering threeAxes() {
  Orvo::AxisOrdering o;
  o.append(Orvo::AxisInfo("x", "X"));
  o.append(Orvo::AxisInfo("y", "Y"));
  o.append(Orvo::AxisInfo("z", "Z"));
  return o;
}

}  // namespace

TEST(SimulationStream, EventOnAFreshStreamCallsSlot1OnceWith1And0BeforeItsOwnSlot) {
  MockSimulationStream mock;
  mock.onSpindleSpeed(1000.0);
  mock.onSpindleSpeed(2000.0);
  ASSERT_EQ(mock.numCalls(), 3);
  EXPECT_EQ(mock.call(0).methodName, "doOnApiVersion");
  EXPECT_EQ(mock.apiVersion(0).major, 1);
  EXPECT_EQ(mock.apiVersion(0).minor, 0);
  EXPECT_EQ(mock.call(1).methodName, "doOnSpindleSpeed");
  EXPECT_EQ(mock.countOf("doOnApiVersion"), 1);
}

TEST(SimulationStream, ApiVersion1And0ThenAnEventCallsSlot1Once) {
  MockSimulationStream mock;
  mock.onApiVersion(1, 0);
  mock.onSectionEnd();
  EXPECT_EQ(mock.countOf("doOnApiVersion"), 1);
  EXPECT_EQ(mock.positionsOf("doOnSectionEnd"), std::vector<int>{1});
}

TEST(SimulationStream, ApiVersion2And0TurnsABaseStreamNotOkAndALaterLinearIsDropped) {
  Chain c;
  c.link->onApiVersion(2, 0);
  EXPECT_FALSE(c.link->isOk());
  c.link->onLinear(Point3D(1, 2, 3), 100.0, settings());
  EXPECT_EQ(c.mock->numCalls(), 0);
  EXPECT_EQ(c.mock->countOf("doOnLinear"), 0);
}

TEST(SimulationStream, ApiVersion1And1AlsoFailsAnd1AndMinus3Passes) {
  Chain failing;
  failing.link->onApiVersion(1, 1);
  EXPECT_FALSE(failing.link->isOk());
  Chain passing;
  passing.link->onApiVersion(1, -3);
  EXPECT_TRUE(passing.link->isOk());
  passing.link->onRapid(Point3D(1, 2, 3), settings());
  EXPECT_EQ(passing.mock->countOf("doOnRapid"), 1);
}

TEST(SimulationStream, ApiVersionIsNotHandedOnAndTheNextLinkImplies1And0) {
  Chain c;
  c.link->onApiVersion(1, -3);
  c.link->onSectionEnd();
  ASSERT_EQ(c.mock->countOf("doOnApiVersion"), 1);
  EXPECT_EQ(c.mock->apiVersion(0).minor, 0);
}

TEST(SimulationStream, ToolpathEntityIndexOnAFreshStreamReachesSlot31WithoutSlot1AndTheNextGuardedEventStillCallsSlot1) {
  MockSimulationStream mock;
  mock.onToolpathEntityIndex(Orvo::ToolpathEntityIndex(7));
  ASSERT_EQ(mock.numCalls(), 1);
  EXPECT_EQ(mock.call(0).methodName, "doOnToolpathEntityIndex");
  EXPECT_EQ(mock.toolpathEntityIndex(0), 7u);
  mock.onWorkOffset(54);
  ASSERT_EQ(mock.numCalls(), 3);
  EXPECT_EQ(mock.call(1).methodName, "doOnApiVersion");
  EXPECT_EQ(mock.workOffset(0), 54);
}

TEST(SimulationStream, AfterSetIsOkFalseToolpathEntityIndexIsDroppedAsWell) {
  FailableMock mock;
  mock.fail();
  mock.onToolpathEntityIndex(Orvo::ToolpathEntityIndex(1));
  mock.onApiVersion(1, 0);
  mock.onIssue(SimulationStream::IssueCode::SOLVE_FAILED, std::string("lost"));
  EXPECT_EQ(mock.numCalls(), 0);
  EXPECT_FALSE(mock.isOk());
}

TEST(SimulationStream, AxisOrderingWithThreeAxesMakesNumAxesInOrdering3AndBeforeAnyOrderingItIsMinus1) {
  MockSimulationStream mock;
  EXPECT_EQ(mock.numAxesInOrdering(), -1);
  mock.onAxisOrdering(threeAxes());
  EXPECT_EQ(mock.numAxesInOrdering(), 3);
  EXPECT_EQ(mock.axisOrdering(0), threeAxes());
}

TEST(SimulationStream, AxisValuesOfTheWrongCountAssertAndPassOn) {
  mtkit_test::AssertRecorder rec;
  MockSimulationStream mock;
  mock.onAxisOrdering(threeAxes());
  mock.onAxisValues(Orvo::AxisValues(3));
  EXPECT_TRUE(rec.takeTexts().empty());
  mock.onAxisValues(Orvo::AxisValues(2));
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"avs.size() == m_numAxesInOrdering"});
  EXPECT_EQ(mock.countOf("doOnAxisValues"), 2);
}

TEST(SimulationStream, FailedTailDoesNotChangeIsOkOfItsHead) {
  Chain c;
  c.mock->fail();
  c.link->onRapid(Point3D(1, 2, 3), settings());
  c.link->onSectionEnd();
  EXPECT_TRUE(c.link->isOk());
  EXPECT_FALSE(c.mock->isOk());
  EXPECT_EQ(c.mock->numCalls(), 0);
}

TEST(SimulationStream, ReleaseOnAForwardingStreamLeavesForwardStreamNull) {
  Chain c;
  std::unique_ptr<SimulationStream> tail(c.link->release());
  EXPECT_EQ(c.link->forwardStream(), nullptr);
  EXPECT_EQ(tail.get(), c.mock);
  c.link.reset();  // destroying the link leaves the released tail alive
  tail->onSectionEnd();
  EXPECT_EQ(c.mock->countOf("doOnSectionEnd"), 1);
}

TEST(SimulationStream, ForwardingLinkAssertsOnANullNextStream) {
  mtkit_test::AssertRecorder rec;
  PlainLink const link(nullptr);
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"EXPECTS:forwardStream()"});
}

TEST(SimulationStream, ForwardingLinkHandsEveryEventOnUnchangedAndInOrder) {
  Chain c;
  SimulationStream& s = *c.link;
  s.onAxisOrdering(threeAxes());
  s.onAxisValues(Orvo::AxisValues(std::vector<Orvo::AxisValue>{1.0, 2.0, 3.0}));
  s.onNcOutput(std::string("G0 X1"));
  s.onNcProgramId(1);
  s.onOperationId(2);
  s.onMachineId(3);
  s.onCommand(SimulationStreamCommand(Orvo::NCStream::COMMAND_START_THREADING));
  s.onPatternOpen(4);
  s.onPatternClose(5);
  s.onPatternChildInstance(6);
  s.onSection(SimulationStream::SectionType::Operation);
  s.onSectionEnd();
  s.onWorkOffset(7);
  s.onIssue(static_cast<SimulationStream::IssueCode>(99), std::string("producer code"));
  s.onNCContext(Orvo::NCContext(Orvo::NCUnit::INCH, 0.001, "prog"));
  s.onNCTool(Orvo::NCTool(5, Orvo::ToolGeometry(6, 0, 0, 0)));
  s.onSimGroup("g");
  s.onSimGroupEnd("g");
  s.onTaggedFrame(Orvo::TaggedFrame("WorkCS", "ModelCS", Orvo::Frame(Orvo::IdentityTag{})));
  MotionSettings const ms(3u, NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::SHORTEST);
  s.onLinear(Point3D(1, 0, 0), 10.0, ms);
  s.onRapid(Point3D(2, 0, 0), ms);
  Orvo::Helix const helix(Point3D(0, 0, 0), Point3D(1, 0, 0), Point3D(0, 1, 0), Vector3D(0, 0, 1));
  s.onHelical(helix, Point3D(0, 1, 0), 20.0, ms);
  s.onLinear5D(Point3D(3, 0, 0), Vector3D(0, 0, 1), 30.0, ms);
  s.onRapid5D(Point3D(4, 0, 0), Vector3D(0, 1, 0), ms);
  NcCodeMovement const movement(NcCodeCoordProgrammingMode::CARTESIAN, NcCodeMotionProgrammingMode::RAPID,
                                NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
  s.onNcCodeMovement(movement);
  s.onTCPCoordMode(true);
  s.onTiltedWorkPlane(NcCodeTiltedWorkPlaneOff());
  s.onRetractAlongToolAxisToLimit();
  s.onSpindleSpeed(1200.0);
  s.onToolpathEntityIndex(Orvo::ToolpathEntityIndex(9));

  std::vector<std::string> const expected{
      "doOnApiVersion",   "doOnAxisOrdering", "doOnAxisValues",  "doOnNcOutput",         "doOnNcProgramId",
      "doOnOperationId",  "doOnMachineId",    "doOnCommand",     "doOnPatternOpen",      "doOnPatternClose",
      "doOnPatternChildInstance", "doOnSection", "doOnSectionEnd", "doOnWorkOffset",     "doOnIssue",
      "doOnNCContext",    "doOnNCTool",       "doOnSimGroup",    "doOnSimGroupEnd",      "doOnTaggedFrame",
      "doOnLinear",       "doOnRapid",        "doOnHelical",     "doOnLinear5D",         "doOnRapid5D",
      "doOnNcCodeMovement", "doOnTCPCoordMode", "doOnTiltedWorkPlane", "doOnRetractAlongToolAxisToLimit",
      "doOnSpindleSpeed", "doOnToolpathEntityIndex"};
  ASSERT_EQ(c.mock->numCalls(), static_cast<int>(expected.size()));
  for (int i = 0; i < c.mock->numCalls(); ++i) EXPECT_EQ(c.mock->call(i).methodName, expected[i]) << i;

  EXPECT_EQ(c.mock->axisValues(0)[2].value(), 3.0);
  EXPECT_EQ(c.mock->ncOutput(0), "G0 X1");
  EXPECT_EQ(c.mock->ncProgramId(0), 1);
  EXPECT_EQ(c.mock->operationId(0), 2);
  EXPECT_EQ(c.mock->machineId(0), 3);
  EXPECT_EQ(c.mock->command(0), SimulationStreamCommand(12));
  EXPECT_EQ(c.mock->patternOpen(0), 4);
  EXPECT_EQ(c.mock->patternClose(0), 5);
  EXPECT_EQ(c.mock->patternChildInstance(0), 6);
  EXPECT_EQ(c.mock->section(0), SimulationStream::SectionType::Operation);
  EXPECT_EQ(c.mock->workOffset(0), 7);
  EXPECT_EQ(static_cast<int>(c.mock->issue(0).code), 99);
  EXPECT_EQ(c.mock->issue(0).message, "producer code");
  EXPECT_EQ(c.mock->ncContext(0), Orvo::NCContext(Orvo::NCUnit::INCH, 0.001, "prog"));
  EXPECT_EQ(c.mock->ncTool(0).getNumber(), 5);
  EXPECT_EQ(c.mock->onSimGroup(0), "g");
  EXPECT_EQ(c.mock->onSimGroupEnd(0), "g");
  EXPECT_EQ(c.mock->taggedFrame(0).tag(), "WorkCS");
  EXPECT_EQ(c.mock->linear(0).target, Point3D(1, 0, 0));
  EXPECT_EQ(c.mock->linear(0).feed, 10.0);
  EXPECT_EQ(c.mock->linear(0).settings, ms);
  EXPECT_EQ(c.mock->rapid(0).target, Point3D(2, 0, 0));
  EXPECT_EQ(c.mock->helical(0).helix, helix);
  EXPECT_EQ(c.mock->helical(0).end, Point3D(0, 1, 0));
  EXPECT_EQ(c.mock->helical(0).feed, 20.0);
  EXPECT_EQ(c.mock->linear5D(0).toolAxis, Vector3D(0, 0, 1));
  EXPECT_EQ(c.mock->linear5D(0).feed, 30.0);
  EXPECT_EQ(c.mock->rapid5D(0).toolAxis, Vector3D(0, 1, 0));
  EXPECT_EQ(c.mock->ncCodeMovement(0), movement);
  EXPECT_TRUE(c.mock->tcpCoordMode(0));
  EXPECT_FALSE(c.mock->tiltedWorkPlane(0));
  EXPECT_EQ(c.mock->spindleSpeed(0), 1200.0);
  EXPECT_EQ(c.mock->toolpathEntityIndex(0), 9u);
}

TEST(SimulationStream, WideStringsArriveAsUtf8) {
  MockSimulationStream mock;
  mock.onNcOutput(std::wstring(L"(\u00c4 \u20ac \U0001F600)"));
  mock.onIssue(SimulationStream::IssueCode::POST_WARNING, std::wstring(L"\u00df"));
  mock.onNcOutput(std::wstring(L"x"));
  EXPECT_EQ(mock.ncOutput(0), "(\xC3\x84 \xE2\x82\xAC \xF0\x9F\x98\x80)");
  EXPECT_EQ(mock.issue(0).message, "\xC3\x9F");
  EXPECT_EQ(mock.issue(0).code, SimulationStream::IssueCode::POST_WARNING);
  EXPECT_EQ(mock.ncOutput(1), "x");
}

TEST(SimulationStream, SeverityOfIssueIsAWarningOnlyFor19) {
  EXPECT_TRUE(SimulationStream::severityOfIssue(SimulationStream::IssueCode::POST_WARNING).isWarning());
  EXPECT_EQ(SimulationStream::severityOfIssue(SimulationStream::IssueCode::POST_WARNING).level(), 2);
  EXPECT_TRUE(SimulationStream::severityOfIssue(SimulationStream::IssueCode::SOLVE_FAILED).isError());
  EXPECT_EQ(SimulationStream::severityOfIssue(static_cast<SimulationStream::IssueCode>(0)).level(), 3);
  EXPECT_EQ(static_cast<int>(SimulationStream::IssueCode::TWP_WHILE_TCP_ACTIVE), 14);
  EXPECT_EQ(static_cast<int>(SimulationStream::IssueCode::TWP_CHANGE_WHILE_COMPENSATING), 17);
}

TEST(SimulationStream, ProducerVersionAbove1And0FailsOnlyTheHeadWhichThenDropsEverything) {
  auto middleOwner = std::make_unique<PlainLink>(std::make_unique<FailableMock>());
  PlainLink* middle = middleOwner.get();
  PlainLink head(std::move(middleOwner));
  head.onApiVersion(1, 2);
  head.onSectionEnd();
  EXPECT_FALSE(head.isOk());
  EXPECT_TRUE(middle->isOk());
  middle->onSectionEnd();
  auto const* tail = static_cast<MockSimulationStream const*>(middle->forwardStream());
  EXPECT_EQ(tail->countOf("doOnSectionEnd"), 1);
  EXPECT_EQ(tail->countOf("doOnApiVersion"), 1);
}

TEST(SimulationStream, CommandsCompareByTheirNumber) {
  EXPECT_EQ(SimulationStreamCommand(Orvo::NCStream::COMMAND_SPINDLE_COUNTERCLOCKWISE), SimulationStreamCommand(5));
  EXPECT_NE(SimulationStreamCommand(4), SimulationStreamCommand(5));
  EXPECT_EQ(static_cast<int>(SimulationStreamCommand(250).command()), 250);
}
