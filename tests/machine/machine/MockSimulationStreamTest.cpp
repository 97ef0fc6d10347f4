#include "machine/machine/MockSimulationStream.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <variant>

using namespace machine;

namespace {
class FailableMock final : public MockSimulationStream {
public:
  void fail() { setIsOk(false); }
};
}  // namespace

TEST(MockSimulationStream, OnAFreshStreamTheFirstEventRecordsApiVersion1And0AheadOfItself) {
  MockSimulationStream mock;
  mock.onMachineId(4);
  ASSERT_EQ(mock.numCalls(), 2);
  EXPECT_EQ(mock.call(0).method, MockSimulationStream::Method::DoOnApiVersion);
  EXPECT_EQ(mock.apiVersion(0).major, 1);
  EXPECT_EQ(mock.apiVersion(0).minor, 0);
  EXPECT_EQ(mock.call(1).methodName, "doOnMachineId");
  EXPECT_EQ(mock.machineId(0), 4);
}

TEST(MockSimulationStream, PositionsOfEqualsRecentPositionsOfWithStart0) {
  MockSimulationStream mock;
  mock.onSpindleSpeed(1.0);
  mock.onWorkOffset(1);
  mock.onSpindleSpeed(2.0);
  mock.onSpindleSpeed(3.0);
  EXPECT_EQ(mock.positionsOf("doOnSpindleSpeed"), (std::vector<int>{1, 3, 4}));
  EXPECT_EQ(mock.positionsOf("doOnSpindleSpeed"), mock.recentPositionsOf("doOnSpindleSpeed", 0));
  EXPECT_EQ(mock.recentPositionsOf("doOnSpindleSpeed", 2), (std::vector<int>{3, 4}));
  EXPECT_TRUE(mock.recentPositionsOf("doOnSpindleSpeed", 5).empty());
  EXPECT_EQ(mock.spindleSpeed(2), 3.0);
}

TEST(MockSimulationStream, CountOfAMethodNeverCalledIs0WhileATypedReaderForItThrows) {
  MockSimulationStream mock;
  mock.onSectionEnd();
  EXPECT_EQ(mock.countOf("doOnRapid"), 0);
  EXPECT_TRUE(mock.positionsOf("doOnRapid").empty());
  EXPECT_THROW(mock.rapid(0), std::out_of_range);
  EXPECT_THROW(mock.apiVersion(1), std::out_of_range);
}

TEST(MockSimulationStream, ReaderOfACallThatHoldsAnotherPayloadThrows) {
  MockSimulationStream mock;
  mock.onSectionEnd();
  EXPECT_TRUE(std::holds_alternative<std::monostate>(mock.call(1).payload));
  EXPECT_NO_THROW(mock.apiVersion(0));
}

TEST(MockSimulationStream, OnceSetIsOkFalseHasHappenedNothingIsRecorded) {
  FailableMock mock;
  mock.onWorkOffset(1);
  int const before = mock.numCalls();
  mock.fail();
  mock.onWorkOffset(2);
  mock.onApiVersion(1, 0);
  mock.onToolpathEntityIndex(Orvo::ToolpathEntityIndex(3));
  EXPECT_EQ(mock.numCalls(), before);
}

TEST(MockSimulationStream, NeverFailsByItselfEvenOnAVersionItWouldNotAccept) {
  MockSimulationStream mock;
  mock.onApiVersion(2, 0);
  mock.onSectionEnd();
  EXPECT_TRUE(mock.isOk());
  EXPECT_EQ(mock.apiVersion(0).major, 2);
  EXPECT_EQ(mock.countOf("doOnSectionEnd"), 1);
}

TEST(MockSimulationStream, AsStringNamesEveryMethodAndUnknownOtherwise) {
  EXPECT_EQ(MockSimulationStream::asString(MockSimulationStream::Method::DoOnApiVersion), "doOnApiVersion");
  EXPECT_EQ(MockSimulationStream::asString(MockSimulationStream::Method::DoOnKinematicInterpolationMode),
            "doOnKinematicInterpolationMode");
  EXPECT_EQ(MockSimulationStream::asString(MockSimulationStream::Method::DoOnToolpathEntityIndex),
            "doOnToolpathEntityIndex");
  EXPECT_EQ(MockSimulationStream::asString(static_cast<MockSimulationStream::Method>(32)), "UNKNOWN");
  EXPECT_EQ(MockSimulationStream::asString(static_cast<MockSimulationStream::Method>(-1)), "UNKNOWN");
}

TEST(MockSimulationStream, PrintWritesOneMethodTextPerLine) {
  MockSimulationStream mock;
  mock.onSectionEnd();
  testing::internal::CaptureStdout();
  mock.print();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "doOnApiVersion\ndoOnSectionEnd\n");
}
