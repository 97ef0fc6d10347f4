// The bridge to the look-ahead compensator. These tests look only at the
// call pattern: motions carry no compensation side (the compensator then
// hands them back as they went in), or, where a side is needed, only the
// bridge's own reaction is checked and never the compensated geometry.

#include "machine/machine/RadiusCompensationSimulationStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "machine/machine/MockSimulationStream.h"
#include "machine/machine/NcCodeTiltedWorkPlaneOff.h"
#include "support/AssertRecorder.h"

using namespace machine;
using Orvo::Point3D;
using Orvo::Vector3D;
using Section = SimulationStream::SectionType;

namespace machine {
struct RadiusCompensationSimulationStreamTestAccess {
  static void warn(RadiusCompensationSimulationStream& stream, unsigned int lineNumber, std::string const& text) {
    stream.onCompensatorWarning(lineNumber, text);
  }
};
}  // namespace machine

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kPi = 3.14159265358979323846;

MotionSettings motion(unsigned int side = 0) {
  return MotionSettings(Orvo::NCStream::getMovementFlags(Orvo::NCStream::MOVEMENT_CUTTING) | side,
                        NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
}

Orvo::AxisValues values(std::vector<double> const& numbers) {
  return Orvo::AxisValues(std::vector<Orvo::AxisValue>(numbers.begin(), numbers.end()));
}

Orvo::Frame frame(Point3D origin, Vector3D x = {1, 0, 0}, Vector3D z = {0, 0, 1}) {
  return *Orvo::Frame::make(origin, x, z);
}

void expectNear(Point3D const& a, Point3D const& b, double tolerance = 1e-9) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

void expectNear(Vector3D const& a, Vector3D const& b, double tolerance = 1e-9) {
  expectNear(a.asPoint(), b.asPoint(), tolerance);
}

/// The bridge in front of a recording stream, with an ordering of X, Y, Z.
struct Chain {
  Chain() {
    auto owner = std::make_unique<MockSimulationStream>();
    mock = owner.get();
    bridge = std::make_unique<RadiusCompensationSimulationStream>(std::move(owner));
    Orvo::AxisOrdering ordering;
    ordering.append(Orvo::AxisInfo("x", "X"));
    ordering.append(Orvo::AxisInfo("y", "Y"));
    ordering.append(Orvo::AxisInfo("z", "Z"));
    in().onAxisOrdering(ordering);
  }
  SimulationStream& in() { return *bridge; }
  Orvo::NCStream& out() { return *bridge; }
  /// Gives the compensator a tool of radius 5 in a millimetre context, so
  /// that motions with a side are compensated (and held by the look-ahead).
  void withTool() {
    in().onNCContext(Orvo::NCContext(Orvo::NCUnit::MILLIMETER, 0.005, "job"));
    in().onNCTool(Orvo::NCTool(7, Orvo::ToolGeometry(10, 0, 20, 50)));
  }

  /// What reached the next stream, by event name without "doOn", leaving
  /// out the implied version and the ordering.
  std::vector<std::string> events() const {
    std::vector<std::string> names;
    for (int i = 0; i < mock->numCalls(); ++i) {
      std::string const& name = mock->call(i).methodName;
      if (name == "doOnApiVersion" || name == "doOnAxisOrdering") continue;
      names.push_back(name.substr(4));
    }
    return names;
  }
  int count(char const* method) const { return mock->countOf(method); }

  MockSimulationStream* mock;
  std::unique_ptr<RadiusCompensationSimulationStream> bridge;
};

using Names = std::vector<std::string>;

/// A terminal that leaves its record behind when it is destroyed.
struct SurvivingMock : MockSimulationStream {
  explicit SurvivingMock(Names& log) : m_log(log) {}
  ~SurvivingMock() override {
    for (int i = 0; i < numCalls(); ++i) m_log.push_back(call(i).methodName);
  }
  Names& m_log;
};

}  // namespace

// ---------------------------------------------------------------------------
// Edge cases

TEST(RadiusCompensationSimulationStream, MotionsInABeforeOperationSectionReachTheNextStreamAtOnceTransformedTwice) {
  Chain c;
  // Three frames that each move the compensator's space: the TPCS frame at
  // (10, 20, 30) turned 90 degrees about Z, the user table attachment 5 up.
  c.in().onTaggedFrame(Orvo::TaggedFrame("TPCS", "ModelCS", frame({10, 20, 30}, {0, 1, 0})));
  c.in().onTaggedFrame(Orvo::TaggedFrame("UserTableAttach", "TableAttach", frame({0, 0, 5})));
  c.in().onTaggedFrame(Orvo::TaggedFrame("PartReference", "ModelCS", frame({1, 2, 3})));
  // Into the compensator's space and back: each leg alone would move the point.
  Point3D const p(40, -7, 12);
  Point3D const there = c.bridge->toCompensator()(p);
  EXPECT_GT((there - p).length(), 1.0);

  c.in().onSection(Section::BeforeOperation);
  EXPECT_EQ(c.count("doOnSection"), 1);
  c.in().onRapid(p, motion());
  ASSERT_EQ(c.count("doOnRapid"), 1);
  expectNear(c.mock->rapid(0).target, p);
  c.in().onLinear(Point3D(1, 2, 3), 500, motion());
  ASSERT_EQ(c.count("doOnLinear"), 1);
  expectNear(c.mock->linear(0).target, Point3D(1, 2, 3));
  EXPECT_EQ(c.mock->linear(0).feed, 500);
  c.in().onRapid5D(Point3D(4, 5, 6), Vector3D(0, 0.6, 0.8), motion());
  ASSERT_EQ(c.count("doOnRapid5D"), 1);
  expectNear(c.mock->rapid5D(0).target, Point3D(4, 5, 6));
  expectNear(c.mock->rapid5D(0).toolAxis, Vector3D(0, 0.6, 0.8));
  c.in().onLinear5D(Point3D(7, 8, 9), Vector3D(0.6, 0, 0.8), 250, motion());
  ASSERT_EQ(c.count("doOnLinear5D"), 1);
  expectNear(c.mock->linear5D(0).target, Point3D(7, 8, 9));
  expectNear(c.mock->linear5D(0).toolAxis, Vector3D(0.6, 0, 0.8));
  EXPECT_EQ(c.events(), (Names{"TaggedFrame", "TaggedFrame", "TaggedFrame", "Section", "Rapid", "Linear", "Rapid5D",
                               "Linear5D"}));
  // The flags, with their modes in the high bits, come back whole.
  EXPECT_EQ(c.mock->rapid(0).settings, motion());
}

TEST(RadiusCompensationSimulationStream,
     InAnOperationSectionNcOutputLinearSectionEndGiveTheNcOutputBeforeTheLinearAndTheLinearBeforeTheSectionEnd) {
  Chain c;
  c.in().onSection(Section::Operation);
  c.in().onNcOutput(std::string("N10 G1 X1"));
  c.in().onLinear(Point3D(1, 0, 0), 800, motion());
  // Whatever the look-ahead let out so far (with a look-ahead of 100 it
  // holds the linear), the section end brings everything out in order.
  c.in().onSectionEnd();
  EXPECT_EQ(c.events(), (Names{"Section", "NcOutput", "Linear", "SectionEnd"}));
  EXPECT_EQ(c.mock->ncOutput(0), "N10 G1 X1");
}

TEST(RadiusCompensationSimulationStream, APlaceholderFollowedByTwoMotionsGivesTwoCopiesOfThePlaceholderOneAheadOfEach) {
  Chain c;
  c.in().onSection(Section::Operation);
  c.in().onAxisValues(values({kNaN, kNaN, kNaN}));
  c.in().onLinear(Point3D(1, 0, 0), 800, motion());
  c.in().onLinear(Point3D(2, 0, 0), 800, motion());
  c.in().onSectionEnd();
  EXPECT_EQ(c.events(), (Names{"Section", "AxisValues", "Linear", "AxisValues", "Linear", "SectionEnd"}));
  for (int i = 0; i < 2; ++i)
    for (int axis = 0; axis < 3; ++axis) EXPECT_TRUE(std::isnan(c.mock->axisValues(i)[axis].value()));
}

TEST(RadiusCompensationSimulationStream, AHelixOfSweptAngleExactly6_220353454107791IsNoFullTurn) {
  double const limit = 6.220353454107791;  // 0.99 of two pi
  EXPECT_NEAR(limit, 0.99 * 2.0 * kPi, 1e-15);
  double const above = std::nextafter(limit, 7.0);
  // A circle of radius 10 about the origin from (10, 0, 0).
  auto circle = [](double sweep) {
    return Orvo::Helix(Vector3D(0, 0, 0), Vector3D(0, 0, 1), Vector3D(1, 0, 0), Vector3D(0, 1, 0), 10, 0, sweep);
  };
  {
    // Past the compensator, a full turn comes out with its own sweep, and an
    // arc is rebuilt from the last position out (here a quarter turn round)
    // to its end.
    Chain c;
    c.in().onSection(Section::BeforeOperation);
    c.in().onRapid(Point3D(0, 10, 0), motion());
    c.in().onHelical(circle(limit), Point3D(), 600, motion());
    c.in().onRapid(Point3D(0, 10, 0), motion());
    c.in().onHelical(circle(above), Point3D(), 600, motion());
    ASSERT_EQ(c.count("doOnHelical"), 2);
    EXPECT_NEAR(c.mock->helical(0).helix.sweep(), limit - kPi / 2, 1e-9);
    EXPECT_EQ(c.mock->helical(1).helix.sweep(), above);
  }
  {
    // With a compensation side, only a full turn is refused.
    mtkit_test::AssertRecorder recorder;
    Chain c;
    c.in().onSection(Section::Operation);
    c.in().onHelical(circle(limit), Point3D(), 600, motion(Orvo::NCStream::COMPENSATION_SIDE_1));
    EXPECT_TRUE(recorder.takeTexts().empty());
    c.in().onHelical(circle(above), Point3D(), 600, motion(Orvo::NCStream::COMPENSATION_SIDE_2));
    EXPECT_EQ(recorder.takeTexts(), Names{"Trying to compensate a multi-turn helix.  The flags will be wrong."});
    // Both side bits at once are no side: the full turn goes past.
    c.in().onHelical(circle(above), Point3D(), 600, motion(384u));
    EXPECT_TRUE(recorder.takeTexts().empty());
    int const helices = c.count("doOnHelical");
    ASSERT_GE(helices, 1);
    EXPECT_EQ(c.mock->helical(helices - 1).settings.flags() & 384u, 384u);
  }
}

TEST(RadiusCompensationSimulationStream, AFullTurnHelixWithoutCompensationComesOutAheadOfMovesStillHeldByTheLookAhead) {
  Chain c;
  c.in().onSection(Section::Operation);
  c.in().onLinear(Point3D(10, 0, 0), 800, motion());
  c.in().onLinear(Point3D(10, 0, -1), 800, motion());
  Orvo::Helix const twoTurns(Vector3D(0, 0, -1), Vector3D(0, 0, 1), Vector3D(1, 0, 0), Vector3D(0, 1, 0), 10, -2,
                             4 * kPi);
  c.in().onHelical(twoTurns, Point3D(10, 0, -3), 600, motion());
  // The helix came out during the call, past the look-ahead. Moves still
  // held at that point would come out after it, and only they; here none
  // is, since the compensator lets motions without a side go at once and
  // lets its look-ahead go when compensation is switched off.
  ASSERT_EQ(c.count("doOnHelical"), 1);
  int const helixAt = c.mock->positionsOf("doOnHelical")[0];
  int const heldAtHelix = 2 - c.count("doOnLinear");
  c.in().onSectionEnd();
  EXPECT_EQ(c.count("doOnLinear"), 2);
  std::vector<int> const linears = c.mock->positionsOf("doOnLinear");
  EXPECT_EQ(std::count_if(linears.begin(), linears.end(), [helixAt](int p) { return p > helixAt; }), heldAtHelix);
  // Its sweep is its own: two turns.
  EXPECT_EQ(c.mock->helical(0).helix.sweep(), 4 * kPi);
  expectNear(c.mock->helical(0).end, Point3D(10, 0, -3));
}

TEST(RadiusCompensationSimulationStream,
     DoOnHelicalIgnoresItsEndArgumentAndTheArcStartsAtTheLastPositionThatLeftThisStreamNotAtTheHelixsOwnStart) {
  for (Section const section : {Section::BeforeOperation, Section::Operation}) {
    Chain c;
    c.in().onSection(section);
    c.in().onRapid(Point3D(0, -10, 0), motion());
    // A quarter turn of radius 10 from (10, 0, 0) to (0, 10, 0), given an end
    // far away.
    Orvo::Helix const quarter(Point3D(0, 0, 0), Point3D(10, 0, 0), Point3D(0, 10, 0), Vector3D(0, 0, 1));
    c.in().onHelical(quarter, Point3D(99, 99, 99), 600, motion());
    c.in().onSectionEnd();
    ASSERT_EQ(c.count("doOnHelical"), 1);
    auto const arc = c.mock->helical(0);
    expectNear(arc.end, Point3D(0, 10, 0));
    expectNear(arc.helix.getStart().asPoint(), Point3D(0, -10, 0));
    expectNear(arc.helix.getEnd().asPoint(), Point3D(0, 10, 0));
    expectNear(arc.helix.center().asPoint(), Point3D(0, 0, 0));
    // From -90 to 90 degrees, counterclockwise about +Z: half a turn.
    EXPECT_NEAR(arc.helix.sweep(), kPi, 1e-12);
    EXPECT_EQ(arc.feed, 600);
  }
}

TEST(RadiusCompensationSimulationStream, ATaggedFrameWithTagTPCSAndABaseOtherThanModelCSChangesNothingHereAndIsForwarded) {
  Chain c;
  Orvo::TaggedFrame const tpcsOfTable("TPCS", "TableAttach", frame({10, 0, 0}));
  c.in().onTaggedFrame(tpcsOfTable);
  EXPECT_EQ(c.bridge->toCompensator(), Orvo::Transform3D());
  EXPECT_EQ(c.bridge->toStream(), Orvo::Transform3D());
  ASSERT_EQ(c.count("doOnTaggedFrame"), 1);
  EXPECT_EQ(c.mock->taggedFrame(0), tpcsOfTable);
}

TEST(RadiusCompensationSimulationStream, OnAxisValuesWithARealFirstValueInAnOperationSectionIsForwardedAtOnceAndMayOvertakeHeldMotions) {
  Chain c;
  c.in().onSection(Section::Operation);
  c.in().onLinear(Point3D(1, 0, 0), 800, motion());
  bool const linearHeld = c.count("doOnLinear") == 0;
  c.in().onAxisValues(values({1, 2, 3}));
  ASSERT_EQ(c.count("doOnAxisValues"), 1);
  EXPECT_EQ(c.mock->axisValues(0), values({1, 2, 3}));
  c.in().onSectionEnd();
  ASSERT_EQ(c.count("doOnLinear"), 1);
  if (linearHeld) {
    EXPECT_LT(c.mock->positionsOf("doOnAxisValues")[0], c.mock->positionsOf("doOnLinear")[0]);
  }
}

// ---------------------------------------------------------------------------
// Markers and NC output

TEST(RadiusCompensationSimulationStream, NcOutputComesOutJustAheadOfTheMotionThatFollowedItHoweverLongTheLookAheadHeldIt) {
  Chain c;
  c.in().onSection(Section::Operation);
  int const moves = 250;  // more than twice the look-ahead
  for (int i = 0; i < moves; ++i) {
    c.in().onNcOutput("N" + std::to_string(i));
    c.in().onLinear(Point3D(i, 0, 0), 800, motion());
  }
  c.in().onSectionEnd();
  Names const events = c.events();
  ASSERT_EQ(events.size(), 2u + 2u * moves);
  EXPECT_EQ(events.front(), "Section");
  EXPECT_EQ(events.back(), "SectionEnd");
  for (int i = 0; i < moves; ++i) {
    EXPECT_EQ(events[1 + 2 * i], "NcOutput");
    EXPECT_EQ(events[2 + 2 * i], "Linear");
    EXPECT_EQ(c.mock->ncOutput(i), "N" + std::to_string(i));
    EXPECT_EQ(c.mock->linear(i).target, Point3D(i, 0, 0));
  }
}

TEST(RadiusCompensationSimulationStream, NcOutputKeepsItsOrderWhenItsQueueGrowsWhileMotionsComeOut) {
  Chain c;
  c.in().onSection(Section::Operation);
  // Move i has i % 7 blocks ahead of it, and the last move 300: the queue
  // grows while the look-ahead lets motions out from its front.
  Names expected{"Section"};
  std::vector<std::string> texts;
  for (int i = 0; i < 240; ++i) {
    int const blocks = i == 239 ? 300 : i % 7;
    for (int k = 0; k < blocks; ++k) {
      texts.push_back(std::to_string(i) + "." + std::to_string(k));
      c.in().onNcOutput(texts.back());
      expected.push_back("NcOutput");
    }
    c.in().onLinear(Point3D(i, 0, 0), 800, motion());
    expected.push_back("Linear");
  }
  c.in().onSectionEnd();
  expected.push_back("SectionEnd");
  EXPECT_EQ(c.events(), expected);
  ASSERT_EQ(c.count("doOnNcOutput"), static_cast<int>(texts.size()));
  for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(c.mock->ncOutput(static_cast<int>(i)), texts[i]);
}

TEST(RadiusCompensationSimulationStream, TheLookAheadHolds100Motions) {
  EXPECT_EQ(RadiusCompensationSimulationStream::kLookAhead, 100u);
  Chain c;
  c.withTool();
  c.in().onSection(Section::Operation);
  c.in().onRapid(Point3D(-10, 0, 0), motion());
  EXPECT_EQ(c.count("doOnRapid"), 1) << "an uncompensated motion is not held";
  // A compensated run on the left of +X, offset to y = 5.
  for (int i = 0; i < 100; ++i) c.in().onLinear(Point3D(i, 0, 0), 800, motion(Orvo::NCStream::COMPENSATION_SIDE_1));
  EXPECT_EQ(c.count("doOnLinear"), 0);
  c.in().onLinear(Point3D(100, 0, 0), 800, motion(Orvo::NCStream::COMPENSATION_SIDE_1));
  ASSERT_EQ(c.count("doOnLinear"), 1);
  // The lead-in, to where the offset path starts.
  expectNear(c.mock->linear(0).target, Point3D(0, 5, 0));
}

TEST(RadiusCompensationSimulationStream, EachUncompensatedMotionComesOutAtOnceWithItsOwnPlaceholder) {
  Chain c;
  c.withTool();
  c.in().onSection(Section::Operation);
  for (int i = 1; i <= 3; ++i) {
    c.in().onAxisValues(values({kNaN, kNaN, 10.0 * i}));
    c.in().onLinear(Point3D(i, 0, 0), 800, motion());
    EXPECT_EQ(c.count("doOnLinear"), i);
  }
  c.in().onSectionEnd();
  EXPECT_EQ(c.events(), (Names{"NCContext", "NCTool", "Section", "AxisValues", "Linear", "AxisValues", "Linear",
                               "AxisValues", "Linear", "SectionEnd"}));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(c.mock->axisValues(i)[2].value(), 10.0 * (i + 1));
}

/// In an Operation section, an uncompensated rapid to (-10, 0, 0), then a
/// compensated run along +X, motion i to (10 i, 0, 0) after a placeholder
/// whose third value is `third(i)`.
template <typename Third>
void compensatedRunWithPlaceholders(Chain& c, int motions, Third third) {
  c.withTool();
  c.in().onSection(Section::Operation);
  c.in().onRapid(Point3D(-10, 0, 0), motion());
  for (int i = 0; i < motions; ++i) {
    c.in().onAxisValues(values({kNaN, kNaN, third(i)}));
    c.in().onLinear(Point3D(10 * i, 0, 0), 800, motion(Orvo::NCStream::COMPENSATION_SIDE_1));
  }
}

TEST(RadiusCompensationSimulationStream, MotionsHeldInACompensatedRunComeOutWithTheLastPlaceholderReceived) {
  Chain c;
  compensatedRunWithPlaceholders(c, 3, [](int i) { return 10.0 * (i + 1); });
  EXPECT_EQ(c.count("doOnLinear"), 0);
  c.in().onSectionEnd();
  // Three motions of the run and the lead-out of the flush, each after a
  // copy of the last placeholder.
  ASSERT_EQ(c.count("doOnLinear"), 4);
  ASSERT_EQ(c.count("doOnAxisValues"), 4);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(c.mock->axisValues(i)[2].value(), 30.0);
}

TEST(RadiusCompensationSimulationStream, AMotionThatEndsACompensatedRunLetsTheRunGoWithItsOwnPlaceholder) {
  // The placeholder of the motion without a side arrives before that motion
  // lets the run go, so the held motions come out after a copy of it.
  Chain c;
  compensatedRunWithPlaceholders(c, 2, [](int) { return 30.0; });
  c.in().onAxisValues(values({kNaN, kNaN, 40.0}));
  c.in().onLinear(Point3D(20, 0, 0), 800, motion());
  // The lead-in, the contour move and the lead-out, all at once.
  ASSERT_EQ(c.count("doOnLinear"), 3);
  ASSERT_EQ(c.count("doOnAxisValues"), 3);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(c.mock->axisValues(i)[2].value(), 40.0);
  c.in().onSectionEnd();
  EXPECT_EQ(c.count("doOnLinear"), 3);
}

TEST(RadiusCompensationSimulationStream, NcOutputAfterTheLastMotionOfASectionComesOutAheadOfTheSectionEnd) {
  Chain c;
  c.in().onSection(Section::Operation);
  c.in().onLinear(Point3D(1, 0, 0), 800, motion());
  c.in().onNcOutput(std::string("M5"));
  c.in().onNcOutput(std::string("M9"));
  c.in().onSectionEnd();
  EXPECT_EQ(c.events(), (Names{"Section", "Linear", "NcOutput", "NcOutput", "SectionEnd"}));
  EXPECT_EQ(c.mock->ncOutput(0), "M5");
  EXPECT_EQ(c.mock->ncOutput(1), "M9");
  // A next section starts with nothing left over.
  c.in().onSection(Section::Operation);
  c.in().onNcOutput(std::string("N100"));
  c.in().onLinear(Point3D(2, 0, 0), 800, motion());
  c.in().onSectionEnd();
  EXPECT_EQ(c.events(), (Names{"Section", "Linear", "NcOutput", "NcOutput", "SectionEnd", "Section", "NcOutput",
                               "Linear", "SectionEnd"}));
}

TEST(RadiusCompensationSimulationStream, NcOutputOutsideAnOperationSectionGoesOnAtOnce) {
  Chain c;
  c.in().onNcOutput(std::string("%"));
  EXPECT_EQ(c.events(), Names{"NcOutput"});
  c.in().onSection(Section::AfterOperation);
  c.in().onNcOutput(std::string("M30"));
  EXPECT_EQ(c.events(), (Names{"NcOutput", "Section", "NcOutput"}));
  c.in().onSectionEnd();
  c.in().onSection(Section::Operation);
  c.in().onSectionEnd();
  c.in().onNcOutput(std::string("N9999"));
  EXPECT_EQ(c.events().back(), "NcOutput");
  EXPECT_EQ(c.mock->ncOutput(2), "N9999");
}

TEST(RadiusCompensationSimulationStream, SimGroupsGoOnAtOnceAndKeepTheNcOutputOnEitherSideApart) {
  Chain c;
  c.in().onSection(Section::Operation);
  c.in().onNcOutput(std::string("N10"));
  c.in().onLinear(Point3D(1, 0, 0), 800, motion());
  c.in().onNcOutput(std::string("N20"));
  c.in().onSimGroup(std::string("contour"));
  EXPECT_EQ(c.count("doOnSimGroup"), 1);
  c.in().onNcOutput(std::string("N30"));
  c.in().onLinear(Point3D(2, 0, 0), 800, motion());
  c.in().onSimGroupEnd(std::string("contour"));
  EXPECT_EQ(c.count("doOnSimGroupEnd"), 1);
  c.in().onSectionEnd();
  EXPECT_EQ(c.mock->onSimGroup(0), "contour");
  // N20 went in under the group's marker, N30 under the second linear's:
  // both come out ahead of that linear, in order.
  Names events = c.events();
  events.erase(std::remove_if(events.begin(), events.end(),
                              [](std::string const& e) { return e == "SimGroup" || e == "SimGroupEnd"; }),
               events.end());
  EXPECT_EQ(events, (Names{"Section", "NcOutput", "Linear", "NcOutput", "NcOutput", "Linear", "SectionEnd"}));
  EXPECT_EQ(c.mock->ncOutput(1), "N20");
  EXPECT_EQ(c.mock->ncOutput(2), "N30");
}

// ---------------------------------------------------------------------------
// Axis values

TEST(RadiusCompensationSimulationStream, RealValuesAreSentAgainAheadOfEveryLaterMotionAndOfTheFirstMotionOfALaterOperationSection) {
  Chain c;
  c.in().onSection(Section::Operation);
  c.in().onAxisValues(values({1, 2, 3}));
  c.in().onLinear(Point3D(1, 0, 0), 800, motion());
  c.in().onLinear(Point3D(2, 0, 0), 800, motion());
  c.in().onSectionEnd();
  c.in().onSection(Section::Operation);
  c.in().onLinear(Point3D(3, 0, 0), 800, motion());
  c.in().onSectionEnd();
  // Each linear after the first of the first section, and the first of the
  // second section, has the values right ahead of it.
  std::vector<int> const linears = c.mock->positionsOf("doOnLinear");
  ASSERT_EQ(linears.size(), 3u);
  for (int i : {1, 2}) EXPECT_EQ(c.mock->call(linears[i] - 1).methodName, "doOnAxisValues") << i;
  for (int i = 0; i < c.count("doOnAxisValues"); ++i) EXPECT_EQ(c.mock->axisValues(i), values({1, 2, 3}));
}

TEST(RadiusCompensationSimulationStream, AxisValuesOutsideAnOperationSectionGoOnAndAreNotRepeated) {
  Chain c;
  c.in().onSection(Section::BeforeOperation);
  c.in().onAxisValues(values({kNaN, kNaN, 3}));
  c.in().onRapid(Point3D(1, 0, 0), motion());
  c.in().onRapid(Point3D(2, 0, 0), motion());
  EXPECT_EQ(c.events(), (Names{"Section", "AxisValues", "Rapid", "Rapid"}));
}

TEST(RadiusCompensationSimulationStream, AxisValuesBeforeAnySectionFailInATestRun) {
  mtkit_test::AssertRecorder recorder;
  Chain c;
  c.in().onAxisValues(values({1, 2, 3}));
  EXPECT_EQ(recorder.takeTexts(), Names{"EXPECTS:m_sectionType != SectionType::INVALID"});
  EXPECT_EQ(c.count("doOnAxisValues"), 1);
}

TEST(RadiusCompensationSimulationStream, NcOutputInsideASectionOfNoValidTypeFailsInATestRun) {
  mtkit_test::AssertRecorder recorder;
  Chain c;
  c.in().onNcOutput(std::string("before any section"));
  EXPECT_TRUE(recorder.takeTexts().empty());
  c.in().onSection(Section::INVALID);
  c.in().onNcOutput(std::string("N10"));
  EXPECT_EQ(recorder.takeTexts(), Names{"EXPECTS:!m_inSection || m_sectionType != SectionType::INVALID"});
  EXPECT_EQ(c.count("doOnNcOutput"), 2);
}

// ---------------------------------------------------------------------------
// Events beside the motions

TEST(RadiusCompensationSimulationStream, EventsThatSkipTheCompensatorGoOnAtOnceInsideAnOperationSection) {
  Chain c;
  c.in().onSection(Section::Operation);
  c.in().onLinear(Point3D(1, 0, 0), 800, motion());
  c.in().onCommand(SimulationStreamCommand(Orvo::NCStream::COMMAND_COOLANT_ON));
  c.in().onIssue(SimulationStream::IssueCode::SOLVE_FAILED, std::string("text"));
  c.in().onMachineId(1);
  c.in().onNcProgramId(2);
  c.in().onOperationId(3);
  c.in().onPatternOpen(4);
  c.in().onPatternChildInstance(5);
  c.in().onPatternClose(4);
  c.in().onWorkOffset(54);
  NcCodeMovement const movement(NcCodeCoordProgrammingMode::MACHINE_AXES, NcCodeMotionProgrammingMode::RAPID,
                                NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
  c.in().onNcCodeMovement(movement);
  c.in().onTCPCoordMode(true);
  c.in().onTiltedWorkPlane(NcCodeTiltedWorkPlaneOff());
  c.in().onRetractAlongToolAxisToLimit();
  c.in().onSpindleSpeed(12000);
  c.in().onNCTool(Orvo::NCTool(7, Orvo::ToolGeometry(10, 0, 20, 50)));
  c.in().onNCContext(Orvo::NCContext(Orvo::NCUnit::MILLIMETER, 0.005, "job"));
  for (char const* method :
       {"doOnCommand", "doOnIssue", "doOnMachineId", "doOnNcProgramId", "doOnOperationId", "doOnPatternOpen",
        "doOnPatternChildInstance", "doOnPatternClose", "doOnWorkOffset", "doOnNcCodeMovement", "doOnTCPCoordMode",
        "doOnTiltedWorkPlane", "doOnRetractAlongToolAxisToLimit", "doOnSpindleSpeed", "doOnNCTool", "doOnNCContext"})
    EXPECT_EQ(c.count(method), 1) << method;
  EXPECT_EQ(c.mock->ncTool(0).getNumber(), 7);
  EXPECT_EQ(c.mock->ncContext(0).getProgramName(), "job");
  EXPECT_EQ(c.mock->spindleSpeed(0), 12000);
  c.in().onSectionEnd();
  EXPECT_EQ(c.count("doOnLinear"), 1);
}

TEST(RadiusCompensationSimulationStream, AToolpathEntityIndexKeepsItsPlaceAmongTheMotions) {
  Chain c;
  c.in().onSection(Section::Operation);
  c.in().onLinear(Point3D(1, 0, 0), 800, motion());
  c.in().onToolpathEntityIndex(Orvo::ToolpathEntityIndex(7));
  c.in().onLinear(Point3D(2, 0, 0), 800, motion());
  c.in().onSectionEnd();
  EXPECT_EQ(c.events(), (Names{"Section", "Linear", "ToolpathEntityIndex", "Linear", "SectionEnd"}));
  EXPECT_EQ(c.mock->toolpathEntityIndex(0), 7u);
}

TEST(RadiusCompensationSimulationStream, TheThreeFramesSetTheTransformsBetweenStreamAndCompensator) {
  Chain c;
  // TPCS alone: the compensator works in TPCS coordinates.
  c.in().onTaggedFrame(Orvo::TaggedFrame("TPCS", "ModelCS", frame({10, 0, 0}, {0, 1, 0})));
  expectNear(c.bridge->toCompensator()(Point3D(10, 0, 0)), Point3D(0, 0, 0));
  // (10, 1, 0) lies one along the frame's X axis, which is world Y.
  expectNear(c.bridge->toCompensator()(Point3D(10, 1, 0)), Point3D(1, 0, 0));
  expectNear(c.bridge->toStream()(Point3D(1, 0, 0)), Point3D(10, 1, 0));
  // The user table attachment is carried onto the part reference: its origin
  // (0, 0, 5) goes to the part reference's (0, 0, 0), then into TPCS.
  c.in().onTaggedFrame(Orvo::TaggedFrame("UserTableAttach", "TableAttach", frame({0, 0, 5})));
  expectNear(c.bridge->toCompensator()(Point3D(10, 0, 5)), Point3D(0, 0, 0));
  c.in().onTaggedFrame(Orvo::TaggedFrame("PartReference", "ModelCS", frame({0, 0, 2})));
  expectNear(c.bridge->toCompensator()(Point3D(10, 0, 3)), Point3D(0, 0, 0));
  expectNear(c.bridge->toStream()(Point3D(0, 0, 0)), Point3D(10, 0, 3));
  // A known tag on another base, and another tag, change nothing.
  Orvo::Transform3D const before = c.bridge->toCompensator();
  c.in().onTaggedFrame(Orvo::TaggedFrame("UserTableAttach", "ModelCS", frame({50, 0, 0})));
  c.in().onTaggedFrame(Orvo::TaggedFrame("PartReference", "TableAttach", frame({50, 0, 0})));
  c.in().onTaggedFrame(Orvo::TaggedFrame("ToolReference", "ToolCS", frame({50, 0, 0})));
  EXPECT_EQ(c.bridge->toCompensator(), before);
  EXPECT_EQ(c.count("doOnTaggedFrame"), 6);
}

TEST(RadiusCompensationSimulationStream, ArcsComingOutBecomeHelicesFromTheLastPositionAndClockwiseOnesTurnTheirNormal) {
  Chain c;
  c.in().onSection(Section::BeforeOperation);
  c.in().onRapid(Point3D(10, 0, 0), motion());
  // Straight at the NCStream side, as the compensator would call it.
  EXPECT_TRUE(c.out().onCWArc(Point3D(0, 0, 0), Point3D(0, -10, 0), Vector3D(0, 0, 1), 300, 3u));
  EXPECT_TRUE(c.out().onCCWCircle(Point3D(0, 0, 0), Point3D(10, 0, 0), Vector3D(0, 0, 1), 300, 3u));
  EXPECT_TRUE(c.out().onCWCircle(Point3D(0, 0, 0), Point3D(0, 10, 0), Vector3D(0, 0, 1), 300, 3u));
  ASSERT_EQ(c.count("doOnHelical"), 3);
  // Clockwise a quarter turn about +Z is counterclockwise about -Z.
  expectNear(c.mock->helical(0).helix.normal(), Vector3D(0, 0, -1));
  EXPECT_NEAR(c.mock->helical(0).helix.sweep(), kPi / 2, 1e-12);
  expectNear(c.mock->helical(0).helix.getStart().asPoint(), Point3D(10, 0, 0));
  // From (0, -10) counterclockwise to (10, 0): a quarter turn.
  EXPECT_NEAR(c.mock->helical(1).helix.sweep(), kPi / 2, 1e-12);
  expectNear(c.mock->helical(1).helix.getStart().asPoint(), Point3D(0, -10, 0));
  // From (10, 0) clockwise to (0, 10): three quarters.
  EXPECT_NEAR(c.mock->helical(2).helix.sweep(), 3 * kPi / 2, 1e-12);
  EXPECT_EQ(c.mock->helical(2).settings.flags(), 3u);
  EXPECT_EQ(c.mock->helical(2).feed, 300);
}

TEST(RadiusCompensationSimulationStream, MachineAxisOrderingAndValuesOnTheNcStreamSideGoOnAsTheirSimulationEvents) {
  Chain c;
  Orvo::AxisOrdering two;
  two.append(Orvo::AxisInfo("x", "X"));
  two.append(Orvo::AxisInfo("c", "C"));
  EXPECT_TRUE(c.out().onMachineAxisOrdering(two));
  EXPECT_TRUE(c.out().onMachineAxisValues(values({1, 2})));
  EXPECT_EQ(c.events(), Names{"AxisValues"});
  EXPECT_EQ(c.mock->axisOrdering(1), two);
  EXPECT_EQ(c.mock->axisValues(0), values({1, 2}));
}

TEST(RadiusCompensationSimulationStream, WhatTheCompensatorIsToldButHasNoEchoForDoesNothingAndIsTaken) {
  mtkit_test::AssertRecorder recorder;
  Chain c;
  int const before = c.mock->numCalls();
  EXPECT_TRUE(c.out().onOpen());
  EXPECT_TRUE(c.out().onClose());
  EXPECT_TRUE(c.out().onContext(Orvo::NCContext()));
  EXPECT_TRUE(c.out().onTool(Orvo::NCTool()));
  EXPECT_TRUE(c.out().onRadiusCompensationMode(true));
  EXPECT_TRUE(c.out().onRadiusCompensationMode(false));
  EXPECT_EQ(c.mock->numCalls(), before);
  EXPECT_TRUE(recorder.takeTexts().empty());
}

TEST(RadiusCompensationSimulationStream, EveryEventThatCannotComeOutFailsInATestRunWithItsTextAndIsTaken) {
  mtkit_test::AssertRecorder recorder;
  Chain c;
  Orvo::NCStream& out = c.out();
  Point3D const p(1, 2, 3);
  Vector3D const n(0, 0, 1);
  std::vector<Point3D> const points{p, p};
  std::vector<bool> const taken{
      out.onBezier(points, 100, 3u),
      out.onCCWArcExtrude(p, p, n, 100, 1, 3u),
      out.onCWArcExtrude(p, p, n, 100, 1, 3u),
      out.onCircularExtrude(p, p, n, 1, 100, 1, 3u),
      out.onCommand(Orvo::NCStream::COMMAND_STOP),
      out.onComment(std::wstring(L"wide")),
      out.onComment(std::string("narrow")),
      out.onCoolant(1),
      out.onDwell(2.5),
      out.onFrame(Orvo::Frame(Orvo::IdentityTag{})),
      out.onGroup("g"),
      out.onGroupEnd(),
      out.onLinearExtrude(p, 100, 1, 3u),
      out.onMachineCommand(8),
      out.onNURBS(points, {1, 1}, {0, 0, 1, 1}, 1, 100, 3u),
      out.onParameter("a", p),
      out.onParameter("b", 1.5),
      out.onParameter("c", 2),
      out.onParameter("d", std::wstring(L"w")),
      out.onParameter("e", std::string("s")),
      out.onRadiusCompensation(1),
      out.onSkip(),
      out.onSpindleSpeed(1000),
      out.onSpline(points, 100, 3u),
      out.onStock(p, p),
      out.onToolChange(Orvo::NCTool()),
      out.onTurnGroup("t"),
      out.onTurnGroupEnd(),
      out.passThrough(std::wstring(L"wide")),
      out.passThrough(std::string("narrow")),
  };
  EXPECT_EQ(taken, std::vector<bool>(taken.size(), true));
  Names const expected{
      "No code path can lead to onBezier.",
      "No code path can lead to onCCWArcExtrude.",
      "No code path can lead to onCWArcExtrude.",
      "No code path can lead to onCircularExtrude.",
      "No code path can lead to onCommand.",
      "No code path can lead to onComment.",
      "No code path can lead to onComment.",
      "No code path can lead to onCoolant.",
      "No code path can lead to onDwell.",
      "No code path can lead to onFrame.",
      "No code path can lead to onGroup.",
      "No code path can lead to onGroupEnd.",
      "No code path can lead to onLinearExtrude.",
      "No code path can lead to onMachineCommand.",
      "No code path can lead to onNURBS.",
      "No code path can lead to onParameter.",
      "No code path can lead to onParameter.",
      "No code path can lead to onParameter.",
      "No code path can lead to onParameter.",
      "No code path can lead to onParameter.",
      "No code path can lead to onRadiusCompensation.",
      "No code path can lead to onSkip.",
      "No code path can lead to onSpindleSpeed.",
      "No code path can lead to onSpline.",
      "No code path can lead to onStock.",
      "No code path can lead to onToolChange.",
      "No code path can lead to onTurnGroup.",
      "No code path can lead to onTurnGroup.",
      "No code path can lead to passThrough.",
      "No code path can lead to passThrough.",
  };
  EXPECT_EQ(recorder.takeTexts(), expected);
  // 23 texts in all.
  Names distinct = expected;
  std::sort(distinct.begin(), distinct.end());
  distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
  EXPECT_EQ(distinct.size(), 23u);
  EXPECT_EQ(c.mock->numCalls(), 2);  // the implied version and the ordering
}

// ---------------------------------------------------------------------------
// Compensator warnings and the end of the bridge

TEST(RadiusCompensationSimulationStream, ACompensatorWarningComesOutAsPostWarningRightAheadOfTheMotionItConcerns) {
  Chain c;
  c.withTool();
  c.in().onSection(Section::Operation);
  c.in().onNcOutput(std::string("N10"));
  c.in().onLinear(Point3D(1, 0, 0), 800, motion(Orvo::NCStream::COMPENSATION_SIDE_1));
  c.in().onNcOutput(std::string("N20"));
  c.in().onLinear(Point3D(2, 0, 0), 800, motion(Orvo::NCStream::COMPENSATION_SIDE_1));
  ASSERT_EQ(c.count("doOnLinear"), 0) << "the look-ahead holds both motions";
  // The second motion went in under marker 2.
  RadiusCompensationSimulationStreamTestAccess::warn(*c.bridge, 2, "Gouge at the inside corner.");
  EXPECT_EQ(c.count("doOnIssue"), 0);
  c.in().onSectionEnd();
  // The flush adds a lead-out back to the programmed point.
  EXPECT_EQ(c.events(), (Names{"NCContext", "NCTool", "Section", "NcOutput", "Linear", "NcOutput", "Issue", "Linear",
                               "Linear", "SectionEnd"}));
  EXPECT_EQ(static_cast<int>(c.mock->issue(0).code), 19);
  EXPECT_TRUE(SimulationStream::severityOfIssue(c.mock->issue(0).code).isWarning());
  EXPECT_EQ(c.mock->issue(0).message, "Gouge at the inside corner.");
  // One about a motion already out goes on at once.
  RadiusCompensationSimulationStreamTestAccess::warn(*c.bridge, 1, "Late.");
  EXPECT_EQ(c.count("doOnIssue"), 2);
  EXPECT_EQ(c.mock->issue(1).message, "Late.");
}

TEST(RadiusCompensationSimulationStream, TheDestructorClosesTheCompensatorWhileTheNextStreamIsStillAlive) {
  Names log;
  {
    RadiusCompensationSimulationStream bridge(std::make_unique<SurvivingMock>(log));
    SimulationStream& in = bridge;
    in.onSection(Section::Operation);
    for (int i = 0; i < 3; ++i) in.onLinear(Point3D(i, 0, 0), 800, motion());
  }
  EXPECT_EQ(std::count(log.begin(), log.end(), "doOnLinear"), 3);
  EXPECT_EQ(std::count(log.begin(), log.end(), "doOnSection"), 1);
}

TEST(RadiusCompensationSimulationStream, IsCompensatingFollowsTheCompensator) {
  Chain c;
  EXPECT_FALSE(c.bridge->isCompensating());
  c.in().onSection(Section::Operation);
  c.in().onLinear(Point3D(1, 0, 0), 800, motion(Orvo::NCStream::COMPENSATION_SIDE_1));
  EXPECT_TRUE(c.bridge->isCompensating());
}
