#include "machine/machine/DefinitionCheck.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

#include "machine/machine/MTKReader.h"
#include "support/AssertRecorder.h"
#include "support/TestMachines.h"

using machine::DefinitionCheck;
using namespace mtkit_test;

namespace {

std::vector<std::string> messages(machine::KinematicsDefinition const& kinematics) {
  std::vector<std::string> texts;
  for (auto const& problem : DefinitionCheck::check(kinematics)) texts.push_back(problem.message);
  return texts;
}

/// base - x - head and base - table, with the X part given.
machine::KinematicsDefinition withX(PartPtr x) {
  std::vector<PartPtr> base;
  x->addChild(staticPart("head", machine::PartType::HEAD));
  base.push_back(std::move(x));
  base.push_back(staticPart("table", machine::PartType::TABLE));
  return kinematicsOf(std::move(base));
}

double const inf = std::numeric_limits<double>::infinity();

/// Reading a degenerate direction is itself a contract failure in a test
/// run: the check reads it through direction(), which asserts.
void expectDirectionAssertions(mtkit_test::AssertRecorder& recorder, std::size_t count) {
  EXPECT_EQ(recorder.takeTexts(), std::vector<std::string>(count, "m_direction.isNormalized()"));
}

}  // namespace

TEST(DefinitionCheck, TheTestMachinesAndEveryExampleKinematicsPass) {
  EXPECT_TRUE(DefinitionCheck::isUsable(threeAxisKinematics()));
  EXPECT_TRUE(DefinitionCheck::isUsable(twoAxisKinematics()));
  EXPECT_TRUE(DefinitionCheck::isUsable(fiveAxisKinematics()));
  for (char const* name : {"headtable_5axis.mtk", "millturn_turret.mtk", "trunnion_5axis.mtk"}) {
    std::ifstream in(std::string(MTKIT_EXAMPLES_DIR) + "/mtk/" + name, std::ios::binary);
    machine::MTKReadResult result = machine::MTKReader::read(in);
    auto const kinematics = result.getKinematicsDefinition();
    ASSERT_TRUE(kinematics) << name;
    EXPECT_EQ(messages(*kinematics), std::vector<std::string>{}) << name;
  }
}

TEST(DefinitionCheck, AZeroLinearDirectionIsReported) {
  mtkit_test::AssertRecorder recorder;
  auto const kinematics = withX(linearPart("x", "X", {0, 0, 0}));
  auto const problems = DefinitionCheck::check(kinematics);
  ASSERT_EQ(problems.size(), 1u);
  ASSERT_TRUE(problems[0].part.has_value());
  EXPECT_EQ(problems[0].part->id(), "x");
  EXPECT_EQ(problems[0].message, "part \"x\": the axis direction is zero or not a finite vector");
  EXPECT_EQ(problems[0].kind, DefinitionCheck::Kind::DIRECTION);
  expectDirectionAssertions(recorder, 1);
}

TEST(DefinitionCheck, AZeroDirectionReadFromAnMtkFileIsReported) {
  mtkit_test::AssertRecorder recorder;
  std::istringstream in(R"({"units": {"length": "mm", "angle": "degrees"}, "parts": [
      {"id": "x", "name": "X", "control": "driven", "type": "linear", "direction": [0, 0, 0], "parts": [{"id": "h", "type": "head"}]},
      {"id": "t", "type": "table"}]})");
  machine::MTKReadResult result = machine::MTKReader::read(in);
  auto const kinematics = result.getKinematicsDefinition();
  ASSERT_TRUE(kinematics);  // the format allows it
  EXPECT_EQ(messages(*kinematics),
            std::vector<std::string>{"part \"x\": the axis direction is zero or not a finite vector"});
  expectDirectionAssertions(recorder, 1);
}

TEST(DefinitionCheck, AnInfiniteRotaryDirectionAndPointAreReported) {
  mtkit_test::AssertRecorder recorder;
  auto const kinematics = withX(rotaryPart("x", "A", {inf, 0, 0}, {inf, 0, 0}));
  EXPECT_EQ(messages(kinematics),
            (std::vector<std::string>{"part \"x\": the axis direction is zero or not a finite vector",
                                      "part \"x\": the axis point (inf, 0, 0) is not finite"}));
  expectDirectionAssertions(recorder, 1);
}

TEST(DefinitionCheck, APointBeyondTheMaximumMagnitudeIsReportedAndOneAtItIsNot) {
  EXPECT_TRUE(DefinitionCheck::isUsable(withX(rotaryPart("x", "A", {0, -1e9, 0}, {1, 0, 0}))));
  EXPECT_EQ(messages(withX(rotaryPart("x", "A", {0, -2e9, 0}, {1, 0, 0}))),
            std::vector<std::string>{"part \"x\": the axis point (0, -2e+09, 0) lies beyond 1e+09"});
}

TEST(DefinitionCheck, ALimitedRotaryMinimumAboveItsMaximumIsReported) {
  auto const kinematics = withX(limitedRotaryPart("x", "A", {0, 0, 0}, {1, 0, 0}, 30, -120));
  EXPECT_EQ(messages(kinematics), std::vector<std::string>{"part \"x\": the minimum 30 is above the maximum -120"});
  EXPECT_TRUE(DefinitionCheck::isUsable(withX(limitedRotaryPart("x", "A", {0, 0, 0}, {1, 0, 0}, 30, 30))));
}

TEST(DefinitionCheck, ANonFiniteLimitIsReported) {
  auto const kinematics = withX(limitedRotaryPart("x", "A", {0, 0, 0}, {1, 0, 0}, -inf, std::nan("")));
  EXPECT_EQ(messages(kinematics),
            (std::vector<std::string>{"part \"x\": the minimum -inf is not finite",
                                      "part \"x\": the maximum nan is not finite"}));
}

TEST(DefinitionCheck, NonFiniteAxisValuesAreReported) {
  auto x = linearPart("x", "X", {1, 0, 0});
  auto axis = x->axisDefinition()->clone();
  axis->setValueAsModelled(inf);
  axis->setDefaultHome(-inf);
  axis->setDefaultToolChangePosition(Orvo::AxisValue(5e9));
  x->setAxisDefinition(std::move(axis));
  EXPECT_EQ(messages(withX(std::move(x))),
            (std::vector<std::string>{"part \"x\": the value as modelled inf is not finite",
                                      "part \"x\": the home position -inf is not finite",
                                      "part \"x\": the tool change position 5e+09 lies beyond 1e+09"}));
}

TEST(DefinitionCheck, AnAttachFrameOutOfReachIsReported) {
  auto x = linearPart("x", "X", {1, 0, 0});
  x->setAttachFrame(frameAt(0, 0, 5e9));  // Frame::make itself refuses a non-finite origin
  EXPECT_EQ(messages(withX(std::move(x))),
            std::vector<std::string>{"part \"x\": the attach frame's origin (0, 0, 5e+09) lies beyond 1e+09"});
}

TEST(DefinitionCheck, ATreeWithoutHeadOrTableIsReportedAsAWhole) {
  std::vector<PartPtr> base;
  base.push_back(linearPart("x", "X", {1, 0, 0}));
  auto const problems = DefinitionCheck::check(kinematicsOf(std::move(base)));
  ASSERT_EQ(problems.size(), 2u);
  EXPECT_FALSE(problems[0].part.has_value());
  EXPECT_EQ(problems[0].message, "the kinematics has no head part");
  EXPECT_EQ(problems[0].kind, DefinitionCheck::Kind::NO_HEAD);
  EXPECT_EQ(problems[1].kind, DefinitionCheck::Kind::NO_TABLE);
  EXPECT_EQ(problems[1].message, "the kinematics has no table part");
  EXPECT_EQ(messages(kinematicsOf({})),
            (std::vector<std::string>{"the kinematics has no head part", "the kinematics has no table part"}));
}

TEST(DefinitionCheck, PartsAreReportedInTreeOrderBeforeTheTree) {
  mtkit_test::AssertRecorder recorder;
  std::vector<PartPtr> base;
  base.push_back(with(linearPart("a", "X", {0, 0, 0}), linearPart("b", "Y", {0, 0, 0})));
  base.push_back(linearPart("c", "Z", {0, 0, 0}));
  EXPECT_EQ(messages(kinematicsOf(std::move(base))),
            (std::vector<std::string>{"part \"a\": the axis direction is zero or not a finite vector",
                                      "part \"b\": the axis direction is zero or not a finite vector",
                                      "part \"c\": the axis direction is zero or not a finite vector",
                                      "the kinematics has no head part", "the kinematics has no table part"}));
  expectDirectionAssertions(recorder, 3);
}

TEST(DefinitionCheck, EachProblemHasItsKind) {
  auto const kinds = [](machine::KinematicsDefinition const& kinematics) {
    std::vector<DefinitionCheck::Kind> result;
    for (auto const& problem : DefinitionCheck::check(kinematics)) result.push_back(problem.kind);
    return result;
  };
  using K = DefinitionCheck::Kind;
  EXPECT_EQ(kinds(withX(rotaryPart("x", "A", {inf, 0, 0}, {1, 0, 0}))), std::vector<K>{K::NOT_FINITE});
  EXPECT_EQ(kinds(withX(rotaryPart("x", "A", {2e9, 0, 0}, {1, 0, 0}))), std::vector<K>{K::OUT_OF_REACH});
  EXPECT_EQ(kinds(withX(limitedRotaryPart("x", "A", {0, 0, 0}, {1, 0, 0}, 1, 0))), std::vector<K>{K::REVERSED_RANGE});
}
