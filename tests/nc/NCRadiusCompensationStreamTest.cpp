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

TEST(NCRadiusCompensationStream, UncompensatedEventsComeOutDelayedAndInOrder) {
  Rig rig(10.0, 2);
  rig.comp.onOpen();
  rig.comp.onLineNumber(1);
  rig.comp.onLinear(Point3D(1, 0, 0), 100.0, kCut);
  rig.comp.onToolpathEntityIndex(Orvo::ToolpathEntityIndex(7));
  rig.comp.onLineNumber(2);
  rig.comp.onRapid(Point3D(2, 0, 0), 1u);
  EXPECT_TRUE(rig.out.calls.empty());
  rig.comp.onLineNumber(3);
  rig.comp.onLinear(Point3D(3, 0, 0), 100.0, kCut);
  // The oldest motion goes out with what came before it; the entity index
  // and marker 2 wait for the rapid that followed them.
  EXPECT_EQ(rig.out.names(),
            (std::vector<std::string>{"onTool", "onOpen", "onLineNumber", "onLinear"}));
  rig.comp.onClose();
  EXPECT_EQ(rig.out.names(),
            (std::vector<std::string>{"onTool", "onOpen", "onLineNumber", "onLinear", "onToolpathEntityIndex",
                                      "onLineNumber", "onRapid", "onLineNumber", "onLinear", "onClose"}));
  EXPECT_EQ(rig.out.calls[4].number, 7u);
  EXPECT_EQ(rig.out.calls[5].number, 2u);
  EXPECT_TRUE(near3(rig.out.calls[6].p, 2, 0, 0));
  EXPECT_EQ(rig.out.calls[6].flags, 1u);
  EXPECT_EQ(rig.out.calls[8].feed, 100.0);
}

TEST(NCRadiusCompensationStream, MarkersAheadOfMotionsAfterDelay) {
  Rig rig(10.0, 3);
  for (unsigned int n = 1; n <= 6; ++n) {
    rig.comp.onLineNumber(n);
    rig.comp.onLinear(Point3D(n, 0, 0), 100.0, kCut);
  }
  rig.comp.onClose();
  // Each marker comes out right ahead of the motion that followed it.
  std::vector<NCCall> const& calls = rig.out.calls;
  unsigned int expected = 1;
  for (std::size_t k = 0; k < calls.size(); ++k) {
    if (calls[k].name != "onLineNumber") continue;
    EXPECT_EQ(calls[k].number, expected);
    ASSERT_LT(k + 1, calls.size());
    EXPECT_EQ(calls[k + 1].name, "onLinear");
    EXPECT_TRUE(near3(calls[k + 1].p, expected, 0, 0));
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
  rig.line(Point3D(1, 0, 0), kCut);
  rig.line(Point3D(2, 0, 0), kCut);
  EXPECT_TRUE(rig.out.calls.empty());
  rig.comp.onRadiusCompensationMode(false);
  EXPECT_EQ(rig.out.names(), (std::vector<std::string>{"onTool", "onLineNumber", "onLinear", "onLineNumber",
                                                        "onLinear", "onRadiusCompensationMode"}));
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

}  // namespace
