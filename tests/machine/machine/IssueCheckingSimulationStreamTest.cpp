#include "machine/machine/IssueCheckingSimulationStream.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "machine/machine/MockSimulationStream.h"

using namespace machine;
using IssueCode = SimulationStream::IssueCode;

namespace {
struct Chain {
  Chain() {
    auto owner = std::make_unique<MockSimulationStream>();
    mock = owner.get();
    stream = std::make_unique<IssueCheckingSimulationStream>(std::move(owner));
  }
  MockSimulationStream* mock;
  std::unique_ptr<IssueCheckingSimulationStream> stream;
};
}  // namespace

TEST(IssueCheckingSimulationStream, WithCode19ItStoresNothingAndForwardsNothing) {
  Chain c;
  c.stream->onIssue(static_cast<IssueCode>(19), std::string("Feed reduced."));
  EXPECT_TRUE(c.stream->simulationErrorRange().empty());
  EXPECT_EQ(c.mock->countOf("doOnIssue"), 0);
}

TEST(IssueCheckingSimulationStream, WithCode8ItStoresOneErrorAndForwardsNothing) {
  Chain c;
  c.stream->onIssue(static_cast<IssueCode>(8), std::string("No solve."));
  ASSERT_EQ(c.stream->simulationErrorRange().size(), 1u);
  EXPECT_EQ(c.stream->simulationErrorRange()[0], SimulationError(IssueCode::SOLVE_FAILED, "No solve."));
  EXPECT_EQ(c.mock->countOf("doOnIssue"), 0);
}

TEST(IssueCheckingSimulationStream, ErrorsOfAnyOtherCodeAreKeptInOrderAndWideTextsAsUtf8) {
  Chain c;
  c.stream->onIssue(static_cast<IssueCode>(15), std::wstring(L"plan \u00e9"));
  c.stream->onIssue(static_cast<IssueCode>(1234), std::string("unknown to the library"));
  c.stream->onIssue(static_cast<IssueCode>(19), std::string("dropped"));
  ASSERT_EQ(c.stream->simulationErrorRange().size(), 2u);
  EXPECT_EQ(static_cast<int>(c.stream->simulationErrorRange()[0].errorCode()), 15);
  EXPECT_EQ(c.stream->simulationErrorRange()[0].errorString(), "plan \xc3\xa9");
  EXPECT_EQ(static_cast<int>(c.stream->simulationErrorRange()[1].errorCode()), 1234);
}

TEST(IssueCheckingSimulationStream, EveryOtherEventIsForwarded) {
  Chain c;
  c.stream->onSpindleSpeed(5000);
  c.stream->onSection(SimulationStream::SectionType::NoTool);
  c.stream->onNcOutput(std::string("M3"));
  EXPECT_EQ(c.mock->countOf("doOnSpindleSpeed"), 1);
  EXPECT_EQ(c.mock->countOf("doOnSection"), 1);
  EXPECT_EQ(c.mock->ncOutput(0), "M3");
}
