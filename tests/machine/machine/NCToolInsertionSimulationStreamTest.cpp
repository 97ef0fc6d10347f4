#include "machine/machine/NCToolInsertionSimulationStream.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "machine/machine/MockSimulationStream.h"
#include "support/AssertRecorder.h"

using namespace machine;
using Section = SimulationStream::SectionType;

namespace {
/// The insertion link with a finder that notes the ids it is asked for and
/// answers with a tool whose number is 100 plus the id.
struct Chain {
  Chain() {
    auto owner = std::make_unique<MockSimulationStream>();
    mock = owner.get();
    stream = std::make_unique<NCToolInsertionSimulationStream>(
        [this](int id) {
          asked.push_back(id);
          return Orvo::NCTool(100 + id, Orvo::ToolGeometry(6, 0, 20, 60));
        },
        std::move(owner));
  }
  std::vector<int> asked;
  MockSimulationStream* mock;
  std::unique_ptr<NCToolInsertionSimulationStream> stream;
};
}  // namespace

TEST(NCToolInsertionSimulationStream, OnSectionNoToolCallsNoToolFinder) {
  Chain c;
  c.stream->onOperationId(4);
  c.stream->onSection(Section::NoTool);
  EXPECT_TRUE(c.asked.empty());
  EXPECT_EQ(c.mock->countOf("doOnNCTool"), 0);
  EXPECT_EQ(c.mock->section(0), Section::NoTool);
}

TEST(NCToolInsertionSimulationStream, OnSectionOperationCallsItWithTheLastOperationIdOr0WhenNoneHasCome) {
  Chain c;
  c.stream->onSection(Section::Operation);
  c.stream->onSectionEnd();
  c.stream->onOperationId(7);
  c.stream->onOperationId(9);
  c.stream->onSection(Section::Operation);
  c.stream->onSectionEnd();
  c.stream->onSection(Section::BeforeOperation);
  EXPECT_EQ(c.asked, (std::vector<int>{0, 9, 9}));
  ASSERT_EQ(c.mock->countOf("doOnNCTool"), 3);
  EXPECT_EQ(c.mock->ncTool(0).getNumber(), 100);
  EXPECT_EQ(c.mock->ncTool(1).getNumber(), 109);
  EXPECT_EQ(c.mock->operationId(1), 9);
  // Each tool stands right before its section.
  for (int i = 0; i < 3; ++i) {
    int const at = c.mock->positionsOf("doOnNCTool")[static_cast<std::size_t>(i)];
    EXPECT_EQ(c.mock->call(at + 1).methodName, "doOnSection");
  }
}

TEST(NCToolInsertionSimulationStream, AnOnNCToolFromTheProducerNeverReachesTheStreamBehind) {
  Chain c;
  c.stream->onNCTool(Orvo::NCTool(55, Orvo::ToolGeometry(3, 0, 10, 40)));
  EXPECT_EQ(c.mock->countOf("doOnNCTool"), 0);
  c.stream->onSection(Section::Operation);
  ASSERT_EQ(c.mock->countOf("doOnNCTool"), 1);
  EXPECT_EQ(c.mock->ncTool(0).getNumber(), 100);
}

TEST(NCToolInsertionSimulationStream, AnEmptyToolFinderFailsInATestRunAndThrowsWhenCalled) {
  mtkit_test::AssertRecorder recorder;
  auto owner = std::make_unique<MockSimulationStream>();
  MockSimulationStream* mock = owner.get();
  NCToolInsertionSimulationStream stream(NCToolInsertionSimulationStream::ToolFinder(), std::move(owner));
  EXPECT_EQ(recorder.takeTexts(), std::vector<std::string>{"EXPECTS:toolFinder"});
  stream.onSection(Section::NoTool);
  EXPECT_EQ(recorder.takeTexts(), std::vector<std::string>{"EXPECTS:m_toolFinder"});
  EXPECT_EQ(mock->countOf("doOnSection"), 1);
  EXPECT_THROW(stream.onSection(Section::Operation), std::bad_function_call);
  EXPECT_EQ(recorder.takeTexts(), std::vector<std::string>{"EXPECTS:m_toolFinder"});
  EXPECT_EQ(mock->countOf("doOnSection"), 1);
}
