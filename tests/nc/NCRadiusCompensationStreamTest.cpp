#include "nc/NCRadiusCompensationStream.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "nc/NCUnit.h"
#include "nc/ToolGeometry.h"
#include "support/AssertRecorder.h"
#include "support/RecordingNCStream.h"

namespace {

using mtkit_test::NCCall;
using mtkit_test::RecordingNCStream;
using Orvo::NCContext;
using Orvo::NCRadiusCompensationStream;
using Orvo::NCStream;
using Orvo::NCTool;
using Orvo::NCUnit;
using Orvo::Point3D;
using Orvo::ScopePointer;
using Orvo::ToolGeometry;
using Orvo::Vector3D;

constexpr unsigned int kCut = 3;  // MOVEMENT_CUTTING
constexpr unsigned int kLeft = kCut | 128u;
constexpr unsigned int kRight = kCut | 256u;
constexpr double kPi = 3.14159265358979323846;
constexpr double kExact = 1e-9;

Vector3D const kUp(0, 0, 1);
Vector3D const kDown(0, 0, -1);

struct Warning {
  unsigned int line;
  std::string text;
};

// A compensator writing into a recorder, with a tool of the given diameter
// in millimetres.
struct Rig {
  mtkit_test::AssertRecorder asserts;
  RecordingNCStream out;
  NCRadiusCompensationStream comp{ScopePointer<NCStream>(&out)};
  std::vector<Warning> warnings;

  explicit Rig(double diameter, std::size_t lookAhead = 100) {
    comp.setLookAhead(lookAhead);
    comp.setWarningHandler([this](unsigned int line, std::string const& text) { warnings.push_back({line, text}); });
    comp.onTool(NCTool(1, ToolGeometry(diameter, 0.0, 20.0, 50.0)));
  }
  ~Rig() { EXPECT_TRUE(asserts.takeTexts().empty()); }

  unsigned int nextLine = 1;
  void line(Point3D const& p, unsigned int flags) {
    comp.onLineNumber(nextLine++);
    comp.onLinear(p, 500.0, flags);
  }
  void rapid(Point3D const& p, unsigned int flags = 1u) {
    comp.onLineNumber(nextLine++);
    comp.onRapid(p, flags);
  }
  void ccw(Point3D const& centre, Point3D const& end, unsigned int flags, Vector3D const& normal = kUp) {
    comp.onLineNumber(nextLine++);
    comp.onCCWArc(centre, end, normal, 400.0, flags);
  }

  std::vector<NCCall> motions() const {
    std::vector<NCCall> m;
    for (auto const& c : out.calls)
      if (RecordingNCStream::isMotion(c.name)) m.push_back(c);
    return m;
  }
};

::testing::AssertionResult near3(Point3D const& got, double x, double y, double z, double tol = kExact) {
  if (std::fabs(got.x - x) <= tol && std::fabs(got.y - y) <= tol && std::fabs(got.z - z) <= tol)
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "(" << got.x << ", " << got.y << ", " << got.z << ") is not (" << x << ", "
                                       << y << ", " << z << ")";
}

void expectLine(NCCall const& c, double x, double y, double z = 0.0) {
  EXPECT_EQ(c.name, "onLinear");
  EXPECT_TRUE(near3(c.p, x, y, z));
}

void expectArc(NCCall const& c, double cx, double cy, double x, double y, Vector3D const& normal) {
  EXPECT_EQ(c.name, "onCCWArc");
  EXPECT_TRUE(near3(Point3D(c.q.x, c.q.y, 0.0), cx, cy, 0.0));
  EXPECT_TRUE(near3(c.p, x, y, 0.0));
  EXPECT_EQ(c.v, normal);
}

// ------------------------------------------------------------- the queue

TEST(NCRadiusCompensationStream, LookAheadIsAtLeastOne) {
  RecordingNCStream out;
  NCRadiusCompensationStream comp{ScopePointer<NCStream>(&out)};
  EXPECT_EQ(comp.getLookAhead(), 1u);
  comp.setLookAhead(0);
  EXPECT_EQ(comp.getLookAhead(), 1u);
  comp.setLookAhead(100);
  EXPECT_EQ(comp.getLookAhead(), 100u);
}

TEST(NCRadiusCompensationStream, UncompensatedMotionsGoOutAsTheyComeInAndOtherEventsWaitForTheirMotion) {
  Rig rig(10.0, 2);
  rig.comp.onOpen();
  rig.comp.onLineNumber(1);
  EXPECT_TRUE(rig.out.calls.empty());
  rig.comp.onLinear(Point3D(1, 0, 0), 100.0, kCut);
  // No look-ahead for a motion without a side: it goes out at once, with
  // what came before it.
  EXPECT_EQ(rig.out.names(), (std::vector<std::string>{"onTool", "onOpen", "onLineNumber", "onLinear"}));
  rig.comp.onToolpathEntityIndex(Orvo::ToolpathEntityIndex(7));
  rig.comp.onLineNumber(2);
  EXPECT_EQ(rig.out.calls.size(), 4u) << "the entity index and marker 2 wait for their motion";
  rig.comp.onRapid(Point3D(2, 0, 0), 1u);
  rig.comp.onClose();
  EXPECT_EQ(rig.out.names(), (std::vector<std::string>{"onTool", "onOpen", "onLineNumber", "onLinear",
                                                       "onToolpathEntityIndex", "onLineNumber", "onRapid", "onClose"}));
  EXPECT_EQ(rig.out.calls[4].number, 7u);
  EXPECT_EQ(rig.out.calls[5].number, 2u);
  EXPECT_TRUE(near3(rig.out.calls[6].p, 2, 0, 0));
  EXPECT_EQ(rig.out.calls[6].flags, 1u);
  EXPECT_EQ(rig.out.calls[3].feed, 100.0);
}

TEST(NCRadiusCompensationStream, CompensatedMotionsWaitForTheLookAheadAndComeOutInOrder) {
  Rig rig(10.0, 2);
  rig.rapid(Point3D(-10, 0, 0));
  EXPECT_EQ(rig.out.names(), (std::vector<std::string>{"onTool", "onLineNumber", "onRapid"}));
  // A run on the left of +X: the offset path is at y = 5.
  rig.line(Point3D(0, 0, 0), kLeft);
  rig.comp.onToolpathEntityIndex(Orvo::ToolpathEntityIndex(7));
  rig.line(Point3D(10, 0, 0), kLeft);
  EXPECT_EQ(rig.out.calls.size(), 3u) << "two compensated motions held";
  rig.line(Point3D(20, 0, 0), kLeft);
  // The oldest, the lead-in, goes out with its marker; the entity index and
  // marker 3 wait for the motion that followed them.
  EXPECT_EQ(rig.out.calls.size(), 5u);
  EXPECT_EQ(rig.out.calls[4].name, "onLinear");
  EXPECT_TRUE(near3(rig.out.calls[4].p, 0, 5, 0));
  // A motion without a side ends the run and brings everything out, itself
  // last: the lead-out from the offset path to its own end point.
  rig.line(Point3D(30, 0, 0), kCut);
  EXPECT_EQ(rig.out.names(),
            (std::vector<std::string>{"onTool", "onLineNumber", "onRapid", "onLineNumber", "onLinear",
                                      "onToolpathEntityIndex", "onLineNumber", "onLinear", "onLineNumber", "onLinear",
                                      "onLineNumber", "onLinear"}));
  EXPECT_EQ(rig.out.calls[5].number, 7u);
  EXPECT_EQ(rig.out.calls[6].number, 3u);
  EXPECT_TRUE(near3(rig.out.calls[7].p, 10, 5, 0));
  EXPECT_TRUE(near3(rig.out.calls[9].p, 20, 5, 0));
  EXPECT_EQ(rig.out.calls[10].number, 5u);
  EXPECT_TRUE(near3(rig.out.calls[11].p, 30, 0, 0));
}

TEST(NCRadiusCompensationStream, MarkersAheadOfMotionsAfterDelay) {
  Rig rig(10.0, 3);
  for (unsigned int n = 1; n <= 6; ++n) {
    rig.comp.onLineNumber(n);
    rig.comp.onLinear(Point3D(n, 0, 0), 100.0, kLeft);
  }
  rig.comp.onClose();
  // Each marker comes out right ahead of the motion that followed it (on the
  // offset path at y = 5; the lead-out added by the flush has none).
  std::vector<NCCall> const& calls = rig.out.calls;
  unsigned int expected = 1;
  for (std::size_t k = 0; k < calls.size(); ++k) {
    if (calls[k].name != "onLineNumber") continue;
    EXPECT_EQ(calls[k].number, expected);
    ASSERT_LT(k + 1, calls.size());
    EXPECT_EQ(calls[k + 1].name, "onLinear");
    EXPECT_TRUE(near3(calls[k + 1].p, expected, 5, 0));
    ++expected;
  }
  EXPECT_EQ(expected, 7u);
}

TEST(NCRadiusCompensationStream, ReentrantMarkerPassesStraightThrough) {
  Rig rig(10.0, 2);
  // The output calls back with a marker of its own whenever a linear reaches
  // it, as the bridge does at a section end.
  unsigned int reentered = 100;
  rig.out.afterCall = [&](std::string const& name) {
    if (name == "onLinear") rig.comp.onLineNumber(reentered++);
  };
  for (unsigned int n = 1; n <= 4; ++n) {
    rig.comp.onLineNumber(n);
    rig.comp.onLinear(Point3D(n, 0, 0), 100.0, kCut);
  }
  rig.comp.onClose();
  std::vector<std::pair<std::string, unsigned int>> seen;
  for (auto const& c : rig.out.calls)
    if (c.name == "onLineNumber" || c.name == "onLinear") seen.emplace_back(c.name, c.number);
  std::vector<std::pair<std::string, unsigned int>> const expected = {
      {"onLineNumber", 1}, {"onLinear", 0},       {"onLineNumber", 100}, {"onLineNumber", 2},
      {"onLinear", 0},     {"onLineNumber", 101}, {"onLineNumber", 3},   {"onLinear", 0},
      {"onLineNumber", 102}, {"onLineNumber", 4}, {"onLinear", 0},       {"onLineNumber", 103}};
  EXPECT_EQ(seen, expected);
}

TEST(NCRadiusCompensationStream, CompensationModeOffFlushesEverything) {
  Rig rig(10.0, 100);
  rig.rapid(Point3D(-10, 0, 0));
  rig.line(Point3D(0, 0, 0), kLeft);
  rig.line(Point3D(10, 0, 0), kLeft);
  rig.comp.onLineNumber(4);
  EXPECT_EQ(rig.out.calls.size(), 3u);
  rig.comp.onRadiusCompensationMode(false);
  // The held run, a lead-out back to the programmed point, the marker that
  // waited, then the mode.
  EXPECT_EQ(rig.out.names(),
            (std::vector<std::string>{"onTool", "onLineNumber", "onRapid", "onLineNumber", "onLinear", "onLineNumber",
                                      "onLinear", "onLinear", "onLineNumber", "onRadiusCompensationMode"}));
  EXPECT_TRUE(near3(rig.out.calls[6].p, 10, 5, 0));
  EXPECT_TRUE(near3(rig.out.calls[7].p, 10, 0, 0));
  EXPECT_EQ(rig.out.calls[8].number, 4u);
  EXPECT_EQ(rig.out.calls.back().number, 0u);
}

TEST(NCRadiusCompensationStream, SectionEndComesAfterTheHeldMotions) {
  Rig rig(10.0, 100);
  rig.comp.onSection();
  rig.line(Point3D(1, 0, 0), kCut);
  rig.comp.onSectionEnd();
  EXPECT_EQ(rig.out.names(),
            (std::vector<std::string>{"onTool", "onSection", "onLineNumber", "onLinear", "onSectionEnd"}));
}

TEST(NCRadiusCompensationStream, IsCompensatingFollowsTheFlagsOfTheLastMotion) {
  Rig rig(10.0);
  EXPECT_FALSE(rig.comp.isCompensating());
  rig.line(Point3D(0, 0, 0), kLeft);
  EXPECT_TRUE(rig.comp.isCompensating());
  rig.line(Point3D(10, 0, 0), kCut);
  EXPECT_FALSE(rig.comp.isCompensating());
  rig.line(Point3D(10, 10, 0), kRight);
  EXPECT_TRUE(rig.comp.isCompensating());
  rig.comp.onRadiusCompensationMode(false);
  EXPECT_FALSE(rig.comp.isCompensating());
}

// -------------------------------------------------------------- geometry

// The square with corners (+-10, +-10), counterclockwise, from and back to
// the middle of its bottom edge.
void square(Rig& rig, unsigned int flags) {
  rig.line(Point3D(10, -10, 0), flags);
  rig.line(Point3D(10, 10, 0), flags);
  rig.line(Point3D(-10, 10, 0), flags);
  rig.line(Point3D(-10, -10, 0), flags);
  rig.line(Point3D(0, -10, 0), flags);
}

TEST(NCRadiusCompensationStream, SquareOutsideGetsArcsAtItsCorners) {
  // Counterclockwise, the right is outside. Tool radius 2.
  Rig rig(4.0);
  rig.rapid(Point3D(0, -20, 0));
  rig.line(Point3D(0, -10, 0), kRight);  // lead-in
  square(rig, kRight);
  rig.line(Point3D(0, -20, 0), kCut);  // lead-out
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 12u);
  EXPECT_EQ(m[0].name, "onRapid");
  // The lead-in ends on the bottom edge moved out by the radius.
  expectLine(m[1], 0, -12);
  EXPECT_EQ(m[1].flags, kRight);
  expectLine(m[2], 10, -12);
  expectArc(m[3], 10, -10, 12, -10, kUp);
  expectLine(m[4], 12, 10);
  expectArc(m[5], 10, 10, 10, 12, kUp);
  expectLine(m[6], -10, 12);
  expectArc(m[7], -10, 10, -12, 10, kUp);
  expectLine(m[8], -12, -10);
  expectArc(m[9], -10, -10, -10, -12, kUp);
  expectLine(m[10], 0, -12);
  // The lead-out runs from the offset back to the programmed point.
  expectLine(m[11], 0, -20);
  EXPECT_EQ(m[11].flags, kCut);
  for (std::size_t k = 2; k <= 10; ++k) {
    EXPECT_EQ(m[k].flags, kRight);
    EXPECT_EQ(m[k].feed, 500.0);
  }
  EXPECT_TRUE(rig.warnings.empty());
}

TEST(NCRadiusCompensationStream, SquareInsideIsTrimmedAtItsCorners) {
  // Counterclockwise, the left is inside. Tool radius 2.
  Rig rig(4.0);
  rig.rapid(Point3D(0, 0, 0));
  rig.line(Point3D(0, -10, 0), kLeft);
  square(rig, kLeft);
  rig.line(Point3D(0, 0, 0), kCut);
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 8u);
  expectLine(m[1], 0, -8);
  expectLine(m[2], 8, -8);
  expectLine(m[3], 8, 8);
  expectLine(m[4], -8, 8);
  expectLine(m[5], -8, -8);
  expectLine(m[6], 0, -8);
  expectLine(m[7], 0, 0);
  EXPECT_TRUE(rig.warnings.empty());
}

TEST(NCRadiusCompensationStream, SquareClockwiseOnBothSides) {
  // Clockwise the sides swap: the left is outside, and the corner arcs turn
  // clockwise.
  {
    Rig rig(4.0);
    rig.rapid(Point3D(0, -20, 0));
    rig.line(Point3D(0, -10, 0), kLeft);
    rig.line(Point3D(-10, -10, 0), kLeft);
    rig.line(Point3D(-10, 10, 0), kLeft);
    rig.line(Point3D(10, 10, 0), kLeft);
    rig.line(Point3D(10, -10, 0), kLeft);
    rig.line(Point3D(0, -10, 0), kLeft);
    rig.line(Point3D(0, -20, 0), kCut);
    rig.comp.onClose();
    std::vector<NCCall> const m = rig.motions();
    ASSERT_EQ(m.size(), 12u);
    expectLine(m[1], 0, -12);
    expectLine(m[2], -10, -12);
    expectArc(m[3], -10, -10, -12, -10, kDown);
    expectLine(m[4], -12, 10);
    expectArc(m[5], -10, 10, -10, 12, kDown);
    expectLine(m[6], 10, 12);
    expectArc(m[7], 10, 10, 12, 10, kDown);
    expectLine(m[8], 12, -10);
    expectArc(m[9], 10, -10, 10, -12, kDown);
    expectLine(m[10], 0, -12);
  }
  {
    Rig rig(4.0);
    rig.rapid(Point3D(0, 0, 0));
    rig.line(Point3D(0, -10, 0), kRight);
    rig.line(Point3D(-10, -10, 0), kRight);
    rig.line(Point3D(-10, 10, 0), kRight);
    rig.line(Point3D(10, 10, 0), kRight);
    rig.line(Point3D(10, -10, 0), kRight);
    rig.line(Point3D(0, -10, 0), kRight);
    rig.line(Point3D(0, 0, 0), kCut);
    rig.comp.onClose();
    std::vector<NCCall> const m = rig.motions();
    ASSERT_EQ(m.size(), 8u);
    expectLine(m[1], 0, -8);
    expectLine(m[2], -8, -8);
    expectLine(m[3], -8, 8);
    expectLine(m[4], 8, 8);
    expectLine(m[5], 8, -8);
    expectLine(m[6], 0, -8);
  }
}

TEST(NCRadiusCompensationStream, CircleOnBothSides) {
  // A whole turn of radius 10 about the origin from (10, 0), tool radius 3.
  struct Case {
    unsigned int flags;
    Vector3D normal;
    double offsetRadius;
    Point3D from;
  };
  Case const cases[] = {
      {kRight, kUp, 13.0, Point3D(20, 0, 0)},   // counterclockwise, right: outside
      {kLeft, kUp, 7.0, Point3D(0, 0, 0)},      // counterclockwise, left: inside
      {kLeft, kDown, 13.0, Point3D(20, 0, 0)},  // clockwise, left: outside
      {kRight, kDown, 7.0, Point3D(0, 0, 0)},   // clockwise, right: inside
  };
  for (Case const& k : cases) {
    Rig rig(6.0);
    rig.rapid(k.from);
    rig.line(Point3D(10, 0, 0), k.flags);
    rig.ccw(Point3D(0, 0, 0), Point3D(10, 0, 0), k.flags, k.normal);
    rig.line(k.from, kCut);
    rig.comp.onClose();
    std::vector<NCCall> const m = rig.motions();
    ASSERT_EQ(m.size(), 4u);
    expectLine(m[1], k.offsetRadius, 0);
    // A whole turn goes out with its sweep, so that no reader takes it for
    // no turn at all.
    EXPECT_EQ(m[2].name, "onCircular");
    EXPECT_TRUE(near3(m[2].q, 0, 0, 0));
    EXPECT_TRUE(near3(m[2].p, k.offsetRadius, 0, 0));
    EXPECT_EQ(m[2].v, k.normal);
    EXPECT_NEAR(m[2].sweep, 2.0 * kPi, kExact);
    EXPECT_EQ(m[2].feed, 400.0);
    expectLine(m[3], k.from.x, k.from.y);
    EXPECT_TRUE(rig.warnings.empty());
  }
}


TEST(NCRadiusCompensationStream, SmallOutsideCornerBetweenLinesIsJoinedWithinTheTolerance) {
  // A turn to the left of atan(0.05) with the tool on the right, radius 5.
  // The offsets meet at the corner plus (n0 + n1) r / (1 + cos turn), which
  // is (10 + 2.5 / (10 + sqrt(100.25)), -5): 0.0016 farther from the corner
  // than the radius.
  double const L = std::sqrt(100.25);
  Point3D const meet(10.0 + 2.5 / (10.0 + L), -5.0, 0.0);
  Point3D const end(20.0 + 5.0 * 0.5 / L, 0.5 - 5.0 * 10.0 / L, 0.0);
  for (double tolerance : {0.01, 0.001}) {
    Rig rig(10.0);
    rig.comp.onContext(NCContext(NCUnit::MILLIMETER, tolerance));
    rig.rapid(Point3D(0, -10, 0));
    rig.line(Point3D(0, 0, 0), kRight);
    rig.line(Point3D(10, 0, 0), kRight);
    rig.line(Point3D(20, 0.5, 0), kRight);
    rig.line(Point3D(20, 10, 0), kCut);
    rig.comp.onClose();
    std::vector<NCCall> const m = rig.motions();
    if (tolerance > 0.0016) {
      ASSERT_EQ(m.size(), 5u);
      expectLine(m[1], 0, -5);
      EXPECT_TRUE(near3(m[2].p, meet.x, meet.y, 0));
      EXPECT_TRUE(near3(m[3].p, end.x, end.y, 0));
    } else {
      // Beyond the tolerance: the arc about the corner.
      ASSERT_EQ(m.size(), 6u);
      expectLine(m[2], 10, -5);
      expectArc(m[3], 10, 0, 10 + 5.0 * 0.5 / L, -5.0 * 10.0 / L, kUp);
      EXPECT_TRUE(near3(m[4].p, end.x, end.y, 0));
    }
  }
}

// ---------------------------------------------------------------- gouges

std::string const kCutOut1 =
    ": cutter compensation cut out a loop that would gouge the contour, which is narrower than the tool here; ";

TEST(NCRadiusCompensationStream, InsideArcSmallerThanTheRadiusIsRemovedWithAWarning) {
  // A corner with a fillet of radius 2 cut with a tool of radius 5 from
  // inside: the fillet's offset reverses; the path goes straight from the
  // bottom's offset to the wall's, where they cross at (5, 5).
  Rig rig(10.0);
  rig.rapid(Point3D(-20, 10, 0));                              // 1
  rig.line(Point3D(-20, 0, 0), kLeft);                         // 2 lead-in
  rig.line(Point3D(8, 0, 0), kLeft);                           // 3
  rig.ccw(Point3D(8, 2, 0), Point3D(10, 2, 0), kLeft);         // 4 the fillet
  rig.line(Point3D(10, 20, 0), kLeft);                         // 5
  rig.line(Point3D(0, 30, 0), kCut);                           // 6 lead-out
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 5u);
  expectLine(m[1], -20, 5);
  expectLine(m[2], 5, 5);
  expectLine(m[3], 5, 20);
  expectLine(m[4], 0, 30);
  // The middle of the fillet, (8 + sqrt 2, 2 - sqrt 2), is sqrt(2) (3 +
  // sqrt 2) = 6.24 from (5, 5): more than the radius and the tolerance.
  ASSERT_EQ(rig.warnings.size(), 1u);
  EXPECT_EQ(rig.warnings[0].line, 4u);
  EXPECT_EQ(rig.warnings[0].text, "Line 4" + kCutOut1 + "1 move is left uncut.");
  // Marker 4 still comes out, ahead of the wall's motion.
  std::vector<unsigned int> markers;
  for (auto const& c : rig.out.calls)
    if (c.name == "onLineNumber") markers.push_back(c.number);
  EXPECT_EQ(markers, (std::vector<unsigned int>{1, 2, 3, 4, 5, 6}));
}

TEST(NCRadiusCompensationStream, NotchNarrowerThanTheToolIsRemovedWithAWarning) {
  // Along the top of a part (tool on the left, above), a notch 6 wide and
  // 10 deep, tool radius 5. The arcs about the notch's two upper corners
  // cross at (3, sqrt(5^2 - 3^2)) = (3, 4), and the path crosses from one to
  // the other there.
  Rig rig(10.0);
  rig.rapid(Point3D(-30, 10, 0));      // 1
  rig.line(Point3D(-30, 0, 0), kLeft);  // 2 lead-in
  rig.line(Point3D(0, 0, 0), kLeft);    // 3
  rig.line(Point3D(0, -10, 0), kLeft);  // 4 down the notch
  rig.line(Point3D(6, -10, 0), kLeft);  // 5 its floor
  rig.line(Point3D(6, 0, 0), kLeft);    // 6 up
  rig.line(Point3D(40, 0, 0), kLeft);   // 7
  rig.line(Point3D(40, 10, 0), kCut);   // 8 lead-out
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 7u);
  expectLine(m[1], -30, 5);
  expectLine(m[2], 0, 5);
  expectArc(m[3], 0, 0, 3, 4, kDown);
  expectArc(m[4], 6, 0, 6, 5, kDown);
  expectLine(m[5], 40, 5);
  expectLine(m[6], 40, 10);
  // The walls and the floor are left uncut: their middles, (0, -5),
  // (3, -10), (6, -5), are sqrt(90), 14 and sqrt(90) from (3, 4).
  ASSERT_EQ(rig.warnings.size(), 1u);
  EXPECT_EQ(rig.warnings[0].line, 4u);
  EXPECT_EQ(rig.warnings[0].text, "Line 4" + kCutOut1 + "3 moves are left uncut.");
  // The arc about the first corner belongs to the move down the notch, the
  // one about the second to the move after the notch.
  std::vector<std::string> order;
  for (auto const& c : rig.out.calls)
    if (c.name == "onLineNumber")
      order.push_back(std::to_string(c.number));
    else if (RecordingNCStream::isMotion(c.name))
      order.push_back(c.name);
  EXPECT_EQ(order, (std::vector<std::string>{"1", "onRapid", "2", "onLinear", "3", "onLinear", "4", "onCCWArc", "5",
                                             "6", "7", "onCCWArc", "onLinear", "8", "onLinear"}));
}

TEST(NCRadiusCompensationStream, SlotAsWideAsTheToolIsCutWithoutWarning) {
  // A slot exactly the tool's diameter: the tool goes down its middle to the
  // floor and back up, and the floor is touched at its middle.
  Rig rig(10.0);
  rig.rapid(Point3D(-30, 10, 0));
  rig.line(Point3D(-30, 0, 0), kLeft);
  rig.line(Point3D(0, 0, 0), kLeft);
  rig.line(Point3D(0, -10, 0), kLeft);
  rig.line(Point3D(10, -10, 0), kLeft);
  rig.line(Point3D(10, 0, 0), kLeft);
  rig.line(Point3D(40, 0, 0), kLeft);
  rig.line(Point3D(40, 10, 0), kCut);
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 9u);
  expectLine(m[2], 0, 5);
  expectArc(m[3], 0, 0, 5, 0, kDown);
  expectLine(m[4], 5, -5);
  expectLine(m[5], 5, 0);
  expectArc(m[6], 10, 0, 10, 5, kDown);
  expectLine(m[7], 40, 5);
  EXPECT_TRUE(rig.warnings.empty());
}

TEST(NCRadiusCompensationStream, NoPathWithinTheLookAheadKeepsTheToolWhereItIsClearAndWarns) {
  // A pocket 4 wide with a tool of radius 5: no point of the offset path is
  // clear of the far wall, so the tool never leads in.
  Rig rig(10.0);
  rig.rapid(Point3D(-10, 2, 0));        // 1
  rig.line(Point3D(0, 2, 0), kLeft);    // 2 lead-in
  rig.line(Point3D(0, 0, 0), kLeft);    // 3
  rig.line(Point3D(20, 0, 0), kLeft);   // 4
  rig.line(Point3D(20, 4, 0), kLeft);   // 5
  rig.line(Point3D(0, 4, 0), kLeft);    // 6
  rig.line(Point3D(-10, 2, 0), kCut);   // 7 lead-out
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 2u);
  EXPECT_EQ(m[0].name, "onRapid");
  expectLine(m[1], -10, 2);
  ASSERT_EQ(rig.warnings.size(), 1u);
  EXPECT_EQ(rig.warnings[0].line, 3u);
  EXPECT_EQ(rig.warnings[0].text,
            "Line 3: cutter compensation found no path clear of the contour within the look-ahead of 100 moves; the "
            "tool stays where the path was last clear, and 4 moves are left uncut.");
}

TEST(NCRadiusCompensationStream, ContourComingBackBeyondTheLookAheadIsReported) {
  // With a look-ahead of one move, the lead-in goes to the offset of the
  // first wall, (5, 2), before the floor is seen; the floor, 2 away, is then
  // reported as gouged, and the tool stops there.
  Rig rig(10.0, 1);
  rig.rapid(Point3D(-10, 2, 0));        // 1
  rig.line(Point3D(0, 2, 0), kLeft);    // 2 lead-in
  rig.line(Point3D(0, 0, 0), kLeft);    // 3
  rig.line(Point3D(20, 0, 0), kLeft);   // 4
  rig.line(Point3D(20, 4, 0), kLeft);   // 5
  rig.line(Point3D(0, 4, 0), kLeft);    // 6
  rig.line(Point3D(-10, 2, 0), kCut);   // 7 lead-out
  rig.comp.onClose();
  bool reported = false;
  for (Warning const& w : rig.warnings)
    if (w.text == "Line 4: the contour comes within the tool radius of the path already cut, farther back than the "
                  "look-ahead of 1 move; the part may be gouged.") {
      reported = true;
      EXPECT_EQ(w.line, 4u);
    }
  EXPECT_TRUE(reported);
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 3u);
  expectLine(m[1], 5, 2);
  expectLine(m[2], -10, 2);
}

// ----------------------------------------------------- lead-in, lead-out

TEST(NCRadiusCompensationStream, LeadInAndLeadOutAroundArcs) {
  // A run that starts with an arc gets a straight lead-in to the arc's
  // offset start; an uncompensated arc after it gets a straight lead-out to
  // its start.
  Rig rig(4.0);
  rig.rapid(Point3D(10, 0, 0));
  rig.ccw(Point3D(0, 0, 0), Point3D(0, 10, 0), kRight);  // outside: radius 12
  rig.ccw(Point3D(0, 0, 0), Point3D(-10, 0, 0), kCut);
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 5u);
  expectLine(m[1], 12, 0);
  EXPECT_EQ(m[1].flags, kRight);
  EXPECT_EQ(m[1].feed, 400.0);
  expectArc(m[2], 0, 0, 0, 12, kUp);
  EXPECT_EQ(m[2].flags, kRight);
  expectLine(m[3], 0, 10);
  EXPECT_EQ(m[3].flags, kCut);
  EXPECT_EQ(m[4].name, "onCCWArc");
  EXPECT_TRUE(near3(m[4].p, -10, 0, 0));
  EXPECT_EQ(m[4].flags, kCut);
}

TEST(NCRadiusCompensationStream, FlushLeadsOutToTheProgrammedPoint) {
  Rig rig(4.0);
  rig.rapid(Point3D(0, -5, 0));
  rig.line(Point3D(0, 0, 0), kLeft);
  rig.line(Point3D(10, 0, 0), kLeft);
  rig.comp.onRadiusCompensationMode(false);
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 4u);
  expectLine(m[1], 0, 2);
  expectLine(m[2], 10, 2);
  // Back to the programmed end, with the flags less the side.
  expectLine(m[3], 10, 0);
  EXPECT_EQ(m[3].flags, kCut);
  EXPECT_EQ(rig.out.calls.back().name, "onRadiusCompensationMode");
}

TEST(NCRadiusCompensationStream, LeadInIntoAnInsideCornerEndsWhereThePathIsClear) {
  // A closed pocket that starts in its corner: the offset start (-10, -8)
  // would gouge the last wall, so the lead-in ends where the first and last
  // offsets cross, (-8, -8), and so does the last wall's offset.
  Rig rig(4.0);
  rig.rapid(Point3D(0, 0, 0));
  rig.line(Point3D(-10, -10, 0), kLeft);  // lead-in into the corner
  rig.line(Point3D(10, -10, 0), kLeft);
  rig.line(Point3D(10, 10, 0), kLeft);
  rig.line(Point3D(-10, 10, 0), kLeft);
  rig.line(Point3D(-10, -10, 0), kLeft);
  rig.line(Point3D(0, 0, 0), kCut);
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 7u);
  expectLine(m[1], -8, -8);
  expectLine(m[2], 8, -8);
  expectLine(m[3], 8, 8);
  expectLine(m[4], -8, 8);
  expectLine(m[5], -8, -8);
  expectLine(m[6], 0, 0);
  EXPECT_TRUE(rig.warnings.empty());
}

TEST(NCRadiusCompensationStream, ClosingCornerOfAContourLongerThanTheLookAheadIsTrimmed) {
  // The same pocket with its first edge cut into 40 moves and a look-ahead
  // of 4. The lead-in cannot know the last wall yet and gouges it, which is
  // reported when the wall comes; the last wall's offset still stops at the
  // first edge's, because the first pieces of a run are kept. The moves of
  // the first edge beyond (8, -10) are cut out like the corner they fill,
  // and said so: the middle of the first, (8.25, -10), is 2.0156 from the
  // trim point (8, -8), more than the radius and the tolerance.
  Rig rig(4.0, 4);
  rig.rapid(Point3D(0, 0, 0));             // 1
  rig.line(Point3D(-10, -10, 0), kLeft);   // 2 lead-in
  for (int k = 1; k <= 40; ++k) rig.line(Point3D(-10 + 0.5 * k, -10, 0), kLeft);  // 3 .. 42
  rig.line(Point3D(10, 10, 0), kLeft);     // 43
  rig.line(Point3D(-10, 10, 0), kLeft);    // 44
  rig.line(Point3D(-10, -10, 0), kLeft);   // 45
  rig.line(Point3D(0, 0, 0), kCut);        // 46
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_GE(m.size(), 6u);
  expectLine(m[1], -10, -8);
  expectLine(m[m.size() - 4], 8, 8);
  expectLine(m[m.size() - 3], -8, 8);
  // The last cut ends at (-8, -8) on the way down the left wall's offset.
  expectLine(m[m.size() - 2], -8, -8);
  expectLine(m[m.size() - 1], 0, 0);
  expectLine(m[m.size() - 5], 8, -8);
  ASSERT_EQ(rig.warnings.size(), 2u);
  EXPECT_EQ(rig.warnings[0].line, 45u);
  EXPECT_EQ(rig.warnings[0].text,
            "Line 45: the contour comes within the tool radius of the path already cut, farther back than the "
            "look-ahead of 4 moves; the part may be gouged.");
  EXPECT_EQ(rig.warnings[1].line, 39u);
  EXPECT_EQ(rig.warnings[1].text, "Line 39" + kCutOut1 + "4 moves are left uncut.");
}

// ----------------------------------------------------------- Z, units, 5D

TEST(NCRadiusCompensationStream, ZPassesThroughOnRampsAndHelices) {
  Rig rig(4.0);
  rig.rapid(Point3D(0, -10, 0));
  rig.line(Point3D(0, 0, 0), kLeft);
  rig.line(Point3D(10, 0, -5), kLeft);  // a ramp down
  rig.line(Point3D(10, 10, -5), kLeft);  // inside corner: trimmed at x = 8
  rig.comp.onLineNumber(99);
  rig.comp.onCCWArc(Point3D(0, 10, -5), Point3D(-10, 10, -8), kUp, 300.0, kRight);  // a helix, new run
  rig.line(Point3D(-10, 20, -8), kCut);
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 7u);
  EXPECT_TRUE(near3(m[1].p, 0, 2, 0));
  // The trim point is 8 of the ramp's 10: Z is -4 there.
  EXPECT_TRUE(near3(m[2].p, 8, 2, -4));
  EXPECT_TRUE(near3(m[3].p, 8, 10, -5));
  // The helix's run: lead-in to its offset start (radius 10 + 2), then the
  // helix down to -8.
  EXPECT_TRUE(near3(m[4].p, 12, 10, -5));
  EXPECT_EQ(m[5].name, "onCCWArc");
  EXPECT_TRUE(near3(m[5].p, -12, 10, -8));
  EXPECT_TRUE(near3(Point3D(m[5].q.x, m[5].q.y, 0), 0, 10, 0));
  EXPECT_TRUE(near3(m[6].p, -10, 20, -8));
}

TEST(NCRadiusCompensationStream, PlungeInsideARunMovesOnlyInZWhereTheToolIs) {
  // The plunge at the inside corner (10, 0) goes down at the corner's trim
  // point (8, 2), between the two trimmed offsets.
  Rig rig(4.0);
  rig.rapid(Point3D(0, -10, 0));
  rig.line(Point3D(0, 0, 0), kLeft);
  rig.line(Point3D(10, 0, 0), kLeft);
  rig.line(Point3D(10, 0, -5), kLeft);
  rig.line(Point3D(10, 10, -5), kLeft);
  rig.line(Point3D(0, 20, -5), kCut);
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 6u);
  EXPECT_TRUE(near3(m[1].p, 0, 2, 0));
  EXPECT_TRUE(near3(m[2].p, 8, 2, 0));
  EXPECT_TRUE(near3(m[3].p, 8, 2, -5));
  EXPECT_TRUE(near3(m[4].p, 8, 10, -5));
  EXPECT_TRUE(near3(m[5].p, 0, 20, -5));
}

TEST(NCRadiusCompensationStream, ToolRadiusIsConvertedToTheContextUnit) {
  RecordingNCStream out;
  NCRadiusCompensationStream comp{ScopePointer<NCStream>(&out)};
  comp.setLookAhead(10);
  // Half an inch across: 6.35 mm of radius.
  comp.onTool(NCTool(1, ToolGeometry(0.5, 0, 1, 2), NCUnit::INCH));
  EXPECT_DOUBLE_EQ(comp.getToolRadius(), 6.35);
  comp.onRapid(Point3D(0, -20, 0), 1u);
  comp.onLinear(Point3D(0, 0, 0), 100, kLeft);
  comp.onLinear(Point3D(50, 0, 0), 100, kLeft);
  comp.onLinear(Point3D(50, -20, 0), 100, kCut);
  comp.onClose();
  std::vector<NCCall> m;
  for (auto const& c : out.calls)
    if (RecordingNCStream::isMotion(c.name)) m.push_back(c);
  ASSERT_EQ(m.size(), 4u);
  EXPECT_TRUE(near3(m[1].p, 0, 6.35, 0));
  EXPECT_TRUE(near3(m[2].p, 50, 6.35, 0));
  // 12.7 mm across in a program in inches: a quarter inch of radius.
  comp.onContext(NCContext(NCUnit::INCH, 0.001));
  comp.onTool(NCTool(2, ToolGeometry(12.7, 0, 1, 2), NCUnit::MILLIMETER));
  EXPECT_DOUBLE_EQ(comp.getToolRadius(), 0.25);
}

TEST(NCRadiusCompensationStream, ToolInAnUnknownUnitCompensatesNothingAndWarns) {
  Rig rig(4.0);
  rig.comp.onTool(NCTool(1, ToolGeometry(4.0, 0, 1, 2), 99));
  EXPECT_TRUE(std::isnan(rig.comp.getToolRadius()));
  rig.line(Point3D(0, 0, 0), kCut);
  rig.line(Point3D(10, 0, 0), kLeft);
  rig.line(Point3D(20, 0, 0), kLeft);
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 3u);
  EXPECT_TRUE(near3(m[1].p, 10, 0, 0));
  EXPECT_TRUE(near3(m[2].p, 20, 0, 0));
  // One warning for the stretch, at its first move.
  ASSERT_EQ(rig.warnings.size(), 1u);
  EXPECT_EQ(rig.warnings[0].line, 2u);
  EXPECT_EQ(rig.warnings[0].text,
            "Line 2: the tool radius is not a usable number (is the tool's unit known?); the move is output as "
            "programmed.");
}

TEST(NCRadiusCompensationStream, NegativeRadiusCompensatesOnTheOtherSide) {
  Rig rig(-4.0);
  rig.rapid(Point3D(0, -10, 0));
  rig.line(Point3D(0, 0, 0), kLeft);
  rig.line(Point3D(10, 0, 0), kLeft);
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 4u);
  expectLine(m[1], 0, -2);
  expectLine(m[2], 10, -2);
}

TEST(NCRadiusCompensationStream, FiveAxisMoveAlongZIsCompensatedInItsFiveAxisForm) {
  Rig rig(4.0);
  rig.rapid(Point3D(0, -10, 0));
  rig.comp.onLinear5D(Point3D(0, 0, 0), kUp, 250.0, kLeft);
  rig.comp.onLinear5D(Point3D(10, 0, 0), kUp, 250.0, kLeft);
  rig.comp.onRapid5D(Point3D(10, 10, 0), kUp, 1u | 128u);
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 5u);
  EXPECT_EQ(m[1].name, "onLinear5D");
  EXPECT_TRUE(near3(m[1].p, 0, 2, 0));
  EXPECT_EQ(m[1].v, kUp);
  EXPECT_EQ(m[1].feed, 250.0);
  EXPECT_EQ(m[2].name, "onLinear5D");
  EXPECT_TRUE(near3(m[2].p, 8, 2, 0));  // trimmed by the rapid's offset x = 8
  EXPECT_EQ(m[3].name, "onRapid5D");
  EXPECT_TRUE(near3(m[3].p, 8, 10, 0));
  EXPECT_EQ(m[3].v, kUp);
  // The flush leads out as a rapid, without the side.
  EXPECT_EQ(m[4].name, "onRapid5D");
  EXPECT_TRUE(near3(m[4].p, 10, 10, 0));
  EXPECT_EQ(m[4].flags, 1u);
  EXPECT_TRUE(rig.warnings.empty());
}

TEST(NCRadiusCompensationStream, TiltedFiveAxisMoveIsOutputAsProgrammedWithAWarning) {
  Rig rig(4.0);
  Vector3D const tilted(0.0, 0.6, 0.8);
  rig.rapid(Point3D(0, -10, 0));
  rig.line(Point3D(0, 0, 0), kLeft);
  rig.line(Point3D(10, 0, 0), kLeft);
  rig.comp.onLineNumber(4);
  rig.comp.onLinear5D(Point3D(20, 0, 0), tilted, 250.0, kLeft);
  rig.comp.onLineNumber(5);
  rig.comp.onLinear5D(Point3D(30, 0, 0), tilted, 250.0, kLeft);
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 5u);
  expectLine(m[2], 10, 2);
  // As programmed: it leads out of the run.
  EXPECT_EQ(m[3].name, "onLinear5D");
  EXPECT_TRUE(near3(m[3].p, 20, 0, 0));
  EXPECT_EQ(m[3].v, tilted);
  EXPECT_EQ(m[3].flags, kLeft);
  EXPECT_TRUE(near3(m[4].p, 30, 0, 0));
  ASSERT_EQ(rig.warnings.size(), 1u);
  EXPECT_EQ(rig.warnings[0].line, 4u);
  EXPECT_EQ(rig.warnings[0].text,
            "Line 4: a 5-axis move whose tool axis is not +Z is not compensated; it is output as programmed.");
}

TEST(NCRadiusCompensationStream, ArcOutsideTheXYPlaneIsOutputAsProgrammedWithAWarning) {
  Rig rig(4.0);
  rig.rapid(Point3D(10, 0, 0));
  rig.comp.onLineNumber(2);
  rig.comp.onCCWArc(Point3D(0, 0, 0), Point3D(0, 0, 10), Vector3D(0, -1, 0), 100.0, kLeft);
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  ASSERT_EQ(m.size(), 2u);
  EXPECT_EQ(m[1].name, "onCCWArc");
  EXPECT_TRUE(near3(m[1].p, 0, 0, 10));
  ASSERT_EQ(rig.warnings.size(), 1u);
  EXPECT_EQ(rig.warnings[0].text,
            "Line 2: an arc outside the XY plane is not compensated; it is output as programmed.");
}

TEST(NCRadiusCompensationStream, CompensatedRapidTurnsItsCornersOnTangentRapidsOutsideTheArc) {
  Rig rig(4.0);
  unsigned int const rapidRight = 1u | 256u;
  rig.rapid(Point3D(0, -20, 0));
  rig.rapid(Point3D(0, -10, 0), rapidRight);
  rig.rapid(Point3D(10, -10, 0), rapidRight);
  rig.rapid(Point3D(10, 10, 0), rapidRight);
  rig.rapid(Point3D(20, 10, 0), 1u);
  rig.comp.onClose();
  std::vector<NCCall> const m = rig.motions();
  // Every motion is a rapid; about the corner (10, -10) the points keep
  // between the radius and the radius plus the tolerance (0.01).
  ASSERT_GE(m.size(), 6u);
  int aroundCorner = 0;
  for (std::size_t k = 1; k < m.size(); ++k) {
    EXPECT_EQ(m[k].name, "onRapid");
    double const d = std::hypot(m[k].p.x - 10, m[k].p.y + 10);
    if (m[k].p.x > 10 - kExact && m[k].p.y < -10 + kExact) {
      ++aroundCorner;
      EXPECT_GE(d, 2.0 - kExact);
      EXPECT_LE(d, 2.0 * (1.0 + 1e-9) + 0.01);
    }
  }
  EXPECT_GE(aroundCorner, 3);
  EXPECT_TRUE(near3(m[2].p, 10, -12, 0));
  EXPECT_TRUE(near3(m[m.size() - 2].p, 12, 10, 0));
  EXPECT_TRUE(near3(m.back().p, 20, 10, 0));
}

}  // namespace
