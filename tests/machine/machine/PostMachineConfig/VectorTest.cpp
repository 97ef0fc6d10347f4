#include "machine/machine/PostMachineConfig/Vector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "support/AssertRecorder.h"
#include "util/utility/ScriptException.h"

using com::vantora::Vector;

namespace {

constexpr char const* kVectorPath = "machine\\machine\\PostMachineConfig\\Vector";

void expectVector(Vector const& v, double x, double y, double z, double tolerance = 0) {
  EXPECT_NEAR(x, v.x, tolerance);
  EXPECT_NEAR(y, v.y, tolerance);
  EXPECT_NEAR(z, v.z, tolerance);
}

/// The message of the ScriptException `f` throws; empty if it throws none.
template <typename F>
std::wstring scriptFailure(F&& f) {
  try {
    f();
  } catch (Orvo::ScriptException const& e) {
    return e.getMessage();
  }
  return std::wstring();
}

// Edge cases.

TEST(Vector, GetNormalizedOfZeroVectorYieldsZeroVectorAndNormalizeLeavesItZero) {
  Vector const zero;
  Vector const n = zero.getNormalized();
  EXPECT_EQ(0.0, n.x);
  EXPECT_EQ(0.0, n.y);
  EXPECT_EQ(0.0, n.z);
  EXPECT_FALSE(std::isnan(n.x));
  Vector v;
  v.normalize();
  EXPECT_EQ(0.0, v.x);
  EXPECT_EQ(0.0, v.y);
  EXPECT_EQ(0.0, v.z);
}

TEST(Vector, GetAngleWithZeroVectorYieldsQuarterTurn) {
  EXPECT_EQ(std::acos(0.0), Vector::getAngle(Vector(), Vector(1, 2, 3)));
  EXPECT_EQ(std::acos(0.0), Vector::getAngle(Vector(0, 0, 5), Vector()));
  EXPECT_DOUBLE_EQ(M_PI / 2, Vector::getAngle(Vector(), Vector()));
}

TEST(Vector, IsSameDirectionIsTrueForLengthTwoAndFalseForLengthHalf) {
  EXPECT_TRUE(Vector::isSameDirection(Vector(2, 0, 0), Vector(2, 0, 0)));
  EXPECT_FALSE(Vector::isSameDirection(Vector(0.5, 0, 0), Vector(0.5, 0, 0)));
  EXPECT_TRUE(Vector::isSameDirection(Vector(0, 0, 1), Vector(0, 0, 1)));
}

TEST(Vector, AreDifferentWithThreeComparesAfterRoundingToThreePlaces) {
  EXPECT_FALSE(Vector::areDifferent(Vector(1.0004, 0, 0), Vector(1.0, 0, 0), 3));
  EXPECT_TRUE(Vector::areDifferent(Vector(1.0006, 0, 0), Vector(1.0, 0, 0), 3));
  EXPECT_FALSE(Vector::areDifferent(Vector(0, 0, -2.0004), Vector(0, 0, -2.0), 3));
}

TEST(Vector, AreDifferentBelowOneIsAbsoluteAndFromOneUpCountsPlaces) {
  // 0.5 is an absolute tolerance.
  EXPECT_FALSE(Vector::areDifferent(Vector(1.4, 0, 0), Vector(1.0, 0, 0), 0.5));
  EXPECT_TRUE(Vector::areDifferent(Vector(1.6, 0, 0), Vector(1.0, 0, 0), 0.5));
  EXPECT_FALSE(Vector::areDifferent(Vector(0, 1.5, 0), Vector(0, 1.0, 0), 0.5));
  // 1.9 means one place: 1.04 rounds to 1.0, 1.06 to 1.1.
  EXPECT_FALSE(Vector::areDifferent(Vector(1.04, 0, 0), Vector(1.0, 0, 0), 1.9));
  EXPECT_TRUE(Vector::areDifferent(Vector(1.06, 0, 0), Vector(1.0, 0, 0), 1.9));
  // Were 1.9 absolute, neither would differ.
  EXPECT_TRUE(Vector::areDifferent(Vector(1.06, 0, 0), Vector(1.0, 0, 0), 1.0));
}

TEST(Vector, PointSegmentDistanceWithCoincidentEndPointsYieldsDistanceToThatPoint) {
  Vector const a(1, 2, 3);
  EXPECT_DOUBLE_EQ(5.0, Vector::pointSegmentDistance(Vector(1, 5, 7), a, a));
  EXPECT_DOUBLE_EQ(0.0, Vector::pointSegmentDistance(a, a, a));
}

TEST(Vector, ValidateAcceptsExactly1e9AndRejectsAnythingAbove) {
  EXPECT_NO_THROW(Vector::validate(Vector(1e9, -1e9, 0)));
  double const above = std::nextafter(1e9, 2e9);
  EXPECT_EQ(L"Invalid vector coordinates.", scriptFailure([&] { Vector::validate(Vector(above, 0, 0)); }));
  EXPECT_EQ(L"Invalid vector coordinates.", scriptFailure([] { Vector::validate(Vector(0, -1.0000001e9, 0)); }));
  EXPECT_EQ(L"Invalid vector coordinates.", scriptFailure([] { Vector::validate(Vector(0, 0, 1e10)); }));
}

TEST(Vector, GetCoordinate3FailsWithInvalidCoordinate) {
  Vector const v(1, 2, 3);
  EXPECT_EQ(L"Invalid coordinate.", scriptFailure([&] { v.getCoordinate(3); }));
  EXPECT_THROW(v.getCoordinate(3), Orvo::ScriptException);
}

// Failure texts and contract assertions.

TEST(Vector, ValidateRejectsNaNAndInfinity) {
  double const nan = std::numeric_limits<double>::quiet_NaN();
  double const inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(L"Invalid vector coordinates.", scriptFailure([&] { Vector::validate(Vector(nan, 0, 0)); }));
  EXPECT_EQ(L"Invalid vector coordinates.", scriptFailure([&] { Vector::validate(Vector(0, 0, -inf)); }));
}

TEST(Vector, SetCoordinateAbove2FailsAndLeavesVectorUnchanged) {
  Vector v(1, 2, 3);
  EXPECT_EQ(L"Invalid coordinate.", scriptFailure([&] { v.setCoordinate(3, 9); }));
  expectVector(v, 1, 2, 3);
  v.setCoordinate(0, 7);
  v.setCoordinate(1, 8);
  v.setCoordinate(2, 9);
  expectVector(v, 7, 8, 9);
  EXPECT_EQ(7, v.getCoordinate(0));
  EXPECT_EQ(8, v.getCoordinate(1));
  EXPECT_EQ(9, v.getCoordinate(2));
}

TEST(Vector, SwapCoordsExchangesAndFailsAbove2) {
  Vector v(1, 2, 3);
  v.swapCoords(0, 2);
  expectVector(v, 3, 2, 1);
  v.swapCoords(1, 0);
  expectVector(v, 2, 3, 1);
  EXPECT_EQ(L"Invalid coordinate.", scriptFailure([&] { v.swapCoords(0, 3); }));
  EXPECT_EQ(L"Invalid coordinate.", scriptFailure([&] { v.swapCoords(5, 1); }));
  expectVector(v, 2, 3, 1);
}

TEST(Vector, SwapCoordsOfOneIndexAssertsAndGoesOn) {
  mtkit_test::AssertRecorder rec;
  Vector v(1, 2, 3);
  v.swapCoords(1, 1);
  expectVector(v, 1, 2, 3);
  auto const failures = rec.take();
  ASSERT_EQ(1u, failures.size());
  EXPECT_EQ("i != j", failures[0].expression);
  EXPECT_EQ(kVectorPath, failures[0].file);
}

TEST(Vector, ToleranceOutsideZeroToNineAsserts) {
  mtkit_test::AssertRecorder rec;
  Vector const a(1, 0, 0);
  // The operation goes on with the tolerance as given: nothing is within -0.5.
  EXPECT_TRUE(Vector::areDifferent(a, a, -0.5));
  EXPECT_EQ(std::vector<std::string>{"0 <= tolerance && tolerance <= 9"}, rec.takeTexts());
  Vector::areParallel(a, a, 9.5);
  std::vector<std::string> const texts = rec.takeTexts();
  ASSERT_FALSE(texts.empty());
  EXPECT_EQ("0 <= tolerance && tolerance <= 9", texts[0]);
  Vector::arePerpendicular(a, a, 10);
  Vector::areSameDirection(a, a, -1);
  a.isZero(12);
  for (auto const& f : rec.take()) {
    EXPECT_EQ(kVectorPath, f.file);
    EXPECT_TRUE(f.expression == "0 <= tolerance && tolerance <= 9" ||
                f.expression == "0 <= decimalPlaces && decimalPlaces <= 9")
        << f.expression;
  }
  Vector::areDifferent(a, a, 0);
  Vector::areDifferent(a, a, 9);
  EXPECT_TRUE(rec.takeTexts().empty());
}

TEST(Vector, RoundAboveNinePlacesAsserts) {
  mtkit_test::AssertRecorder rec;
  Vector::round(Vector(1, 2, 3), 10);
  auto const failures = rec.take();
  ASSERT_EQ(1u, failures.size());
  EXPECT_EQ("0 <= decimalPlaces && decimalPlaces <= 9", failures[0].expression);
  EXPECT_EQ(kVectorPath, failures[0].file);
  Vector::round(Vector(1, 2, 3), 9);
  EXPECT_TRUE(rec.takeTexts().empty());
}

// Operations.

TEST(Vector, DefaultIsZeroAndIsAScriptObject) {
  static_assert(std::is_base_of<Orvo::ScriptObject, Vector>::value, "a script object");
  Vector const v;
  expectVector(v, 0, 0, 0);
  EXPECT_STREQ("ScriptObject", v.getBaseClass());
  Vector w(4, 5, 6);
  w = Vector(1, 2, 3);
  expectVector(w, 1, 2, 3);
}

TEST(Vector, InPlaceArithmetic) {
  Vector v(1, 2, 3);
  v.add(Vector(1, 1, 1));
  expectVector(v, 2, 3, 4);
  v.subtract(Vector(2, 2, 2));
  expectVector(v, 0, 1, 2);
  v.multiply(3);
  expectVector(v, 0, 3, 6);
  v.divide(2);
  expectVector(v, 0, 1.5, 3);
  v.negate();
  expectVector(v, -0.0, -1.5, -3);
  v.setX(7);
  v.setY(8);
  v.setZ(9);
  EXPECT_EQ(7, v.getX());
  EXPECT_EQ(8, v.getY());
  EXPECT_EQ(9, v.getZ());
}

TEST(Vector, DivideByZeroIsNotChecked) {
  Vector v(1, -1, 0);
  v.divide(0);
  EXPECT_TRUE(std::isinf(v.x) && v.x > 0);
  EXPECT_TRUE(std::isinf(v.y) && v.y < 0);
  EXPECT_TRUE(std::isnan(v.z));
}

TEST(Vector, LengthsExtremesAndCopies) {
  Vector const v(3, -4, 12);
  EXPECT_EQ(13, v.getLength());
  EXPECT_EQ(169, v.getLength2());
  EXPECT_EQ(12, v.getMaximum());
  EXPECT_EQ(-4, v.getMinimum());
  EXPECT_EQ(-1, Vector(-1, -2, -3).getMaximum());
  expectVector(v.getAbsolute(), 3, 4, 12);
  expectVector(v.getNegated(), -3, 4, -12);
  expectVector(v.getNormalized(), 3.0 / 13, -4.0 / 13, 12.0 / 13, 1e-15);
  Vector n(0, 0, -2);
  n.normalize();
  expectVector(n, 0, 0, -1);
}

TEST(Vector, Angles) {
  EXPECT_DOUBLE_EQ(M_PI / 4, Vector(1, 1, 0).getXYAngle());
  EXPECT_DOUBLE_EQ(-M_PI / 2, Vector(0, -1, 0).getXYAngle());
  EXPECT_EQ(0, Vector().getZAngle());
  EXPECT_EQ(0, Vector(0, 0, 3).getZAngle());
  EXPECT_DOUBLE_EQ(M_PI, Vector(0, 0, -3).getZAngle());
  EXPECT_DOUBLE_EQ(M_PI / 2, Vector(1, 0, 0).getZAngle());
  EXPECT_DOUBLE_EQ(M_PI / 4, Vector(1, 0, 1).getZAngle());
  EXPECT_DOUBLE_EQ(M_PI, Vector::getAngle(Vector(2, 0, 0), Vector(-3, 0, 0)));
  EXPECT_DOUBLE_EQ(M_PI / 2, Vector::getAngle(Vector(2, 0, 0), Vector(0, 5, 0)));
  EXPECT_EQ(0, Vector::getAngle(Vector(1, 1, 1), Vector(1, 1, 1)));
}

TEST(Vector, DegreesAndRadiansUseTheFixedFactors) {
  Vector const d = Vector(1, -2, 0.5).toDeg();
  EXPECT_EQ(57.29577951308232, d.x);
  EXPECT_EQ(-2 * 57.29577951308232, d.y);
  EXPECT_EQ(0.5 * 57.29577951308232, d.z);
  Vector const r = Vector(180, 90, -45).toRad();
  EXPECT_EQ(180 * 0.017453292519943295, r.x);
  EXPECT_EQ(90 * 0.017453292519943295, r.y);
  EXPECT_EQ(-45 * 0.017453292519943295, r.z);
}

TEST(Vector, ToStringFillsTheTemplate) {
  EXPECT_EQ(L"(1, 2.5, -3)", Vector(1, 2.5, -3).toString());
  EXPECT_EQ(L"(0.1, 0, 1e-20)", Vector(0.1, 0, 1e-20).toString());
}

TEST(Vector, StaticArithmetic) {
  Vector const a(1, 2, 3), b(4, 5, 6);
  expectVector(Vector::sum(a, b), 5, 7, 9);
  expectVector(Vector::diff(a, b), -3, -3, -3);
  expectVector(Vector::product(a, 2), 2, 4, 6);
  EXPECT_EQ(32, Vector::dot(a, b));
  expectVector(Vector::cross(a, b), -3, 6, -3);
  expectVector(Vector::cross(Vector(1, 0, 0), Vector(0, 1, 0)), 0, 0, 1);
  EXPECT_EQ(27, Vector::getDistance2(a, b));
  EXPECT_DOUBLE_EQ(std::sqrt(27.0), Vector::getDistance(a, b));
}

TEST(Vector, LerpIsNotLimitedToTheSegment) {
  Vector const a(0, 0, 0), b(2, 4, -2);
  expectVector(Vector::lerp(a, b, 0.5), 1, 2, -1);
  expectVector(Vector::lerp(a, b, 2), 4, 8, -4);
  expectVector(Vector::lerp(a, b, -1), -2, -4, 2);
  expectVector(Vector::lerp(a, b, 0), 0, 0, 0);
}

TEST(Vector, TranslatePointUsesDirectionAsGiven) {
  expectVector(Vector::translatePoint(Vector(1, 1, 1), Vector(0, 0, 2), 3), 1, 1, 7);
}

TEST(Vector, GetBySpherical) {
  expectVector(Vector::getBySpherical(0, 0, 2), 0, 0, 2, 1e-15);
  expectVector(Vector::getBySpherical(M_PI / 2, M_PI / 2, 3), 0, 3, 0, 1e-15);
  expectVector(Vector::getBySpherical(M_PI, M_PI / 2, 1), -1, 0, 0, 1e-15);
  Vector const v = Vector::getBySpherical(0.3, 1.1, 2.5);
  EXPECT_NEAR(0.3, v.getXYAngle(), 1e-15);
  EXPECT_NEAR(1.1, v.getZAngle(), 1e-15);
  EXPECT_NEAR(2.5, v.getLength(), 1e-15);
}

TEST(Vector, ConversionsKeepCoordinates) {
  expectVector(Vector::getAsVector(Orvo::Point3D(1, 2, 3)), 1, 2, 3);
  expectVector(Vector::getAsVector(Orvo::Vector3D(4, 5, 6)), 4, 5, 6);
  Orvo::Vector3D const v = Vector::getAsVector3D(Vector(7, 8, 9));
  EXPECT_EQ(Orvo::Vector3D(7, 8, 9), v);
}

TEST(Vector, IsZeroBelowOneIsAbsolute) {
  EXPECT_TRUE(Vector(0.1, -0.1, 0).isZero(0.1));
  EXPECT_FALSE(Vector(0.1, -0.11, 0).isZero(0.1));
  EXPECT_TRUE(Vector().isZero(0));
  EXPECT_FALSE(Vector(1e-300, 0, 0).isZero(0));
  EXPECT_TRUE(Vector(0.1, -0.11, 0).isNonZero(0.1));
}

TEST(Vector, IsZeroFromOneUpRoundsToPlaces) {
  EXPECT_TRUE(Vector(0.004, -0.004, 0.0049).isZero(2));
  EXPECT_FALSE(Vector(0.005, 0, 0).isZero(2));
  EXPECT_FALSE(Vector(0, -0.005, 0).isZero(2));
  EXPECT_TRUE(Vector(0.04, 0, 0).isZero(1.99));
  EXPECT_FALSE(Vector(0.005, 0, 0).isNonZero(1));
}

TEST(Vector, AreParallelBelowOneIsStrict) {
  Vector const a(1, 0, 0);
  EXPECT_TRUE(Vector::areParallel(a, Vector(-3, 0, 0), 1e-9));
  EXPECT_TRUE(Vector::areParallel(a, Vector(2, 0, 0), 1e-9));
  EXPECT_FALSE(Vector::areParallel(a, Vector(2, 0, 0), 0));
  EXPECT_FALSE(Vector::areParallel(a, Vector(1, 1, 0), 0.2));
  EXPECT_TRUE(Vector::areParallel(a, Vector(1, 1, 0), 0.3));
}

TEST(Vector, ArePerpendicularBelowOneIsStrict) {
  Vector const a(1, 0, 0);
  EXPECT_TRUE(Vector::arePerpendicular(a, Vector(0, 5, 0), 1e-9));
  EXPECT_FALSE(Vector::arePerpendicular(a, Vector(0, 5, 0), 0));
  EXPECT_FALSE(Vector::arePerpendicular(a, Vector(1, 1, 0), 0.7));
  EXPECT_TRUE(Vector::arePerpendicular(a, Vector(1, 1, 0), 0.71));
  // A zero vector points nowhere and so counts as perpendicular.
  EXPECT_TRUE(Vector::arePerpendicular(a, Vector(), 1e-9));
}

TEST(Vector, AreSameDirectionWithZeroHoldsForEqualDirections) {
  Vector const a(0, 0, 1);
  EXPECT_TRUE(Vector::areSameDirection(a, Vector(0, 0, 4), 0));
  EXPECT_FALSE(Vector::areSameDirection(a, Vector(0, 0, -4), 0));
  EXPECT_FALSE(Vector::areSameDirection(a, Vector(0, 1, 1), 0.29));
  EXPECT_TRUE(Vector::areSameDirection(a, Vector(0, 1, 1), 0.3));
}

TEST(Vector, ComparisonsFromOneUpCompareRoundedVectors) {
  // Rounded to one place these become (1, 0, 0) and (1, 0, 0.1)...
  Vector const a(1.02, 0.04, 0), b(0.98, 0, 0.06);
  EXPECT_TRUE(Vector::areDifferent(a, b, 1));
  EXPECT_FALSE(Vector::areParallel(a, b, 1));
  EXPECT_FALSE(Vector::arePerpendicular(a, b, 1));
  EXPECT_FALSE(Vector::areSameDirection(a, b, 1));
  // 1.5 is truncated to one place, where these two both become (1, 0, 0).
  Vector const c(1.02, 0.04, 0), d(0.98, 0, 0.04);
  EXPECT_FALSE(Vector::areDifferent(c, d, 1.5));
  EXPECT_TRUE(Vector::areParallel(c, d, 1.5));
  EXPECT_TRUE(Vector::areSameDirection(c, d, 1.5));
  EXPECT_TRUE(Vector::arePerpendicular(Vector(0.04, 1, 0), Vector(1, 0.04, 0), 1));
}

TEST(Vector, RoundHalvesAwayFromZeroAndMultipliesByReciprocal) {
  Vector const r = Vector::round(Vector(0.125, -0.125, 2.5), 2);
  EXPECT_EQ(std::round(12.5) * (1 / 100.0), r.x);
  EXPECT_EQ(0.13, r.x);
  EXPECT_EQ(-0.13, r.y);
  EXPECT_EQ(2.5, r.z);
  expectVector(Vector::round(Vector(2.5, -2.5, 0.4), 0), 3, -3, 0);
  // Multiplying by 1/1000 rather than dividing by 1000 shows in the last bit.
  double const scaled = std::round(1.001 * 1000);
  EXPECT_EQ(scaled * (1 / 1000.0), Vector::round(Vector(1.001, 0, 0), 3).x);
}

TEST(Vector, ProjectPointToLine) {
  expectVector(Vector::projectPointToLine(Vector(3, 4, 0), Vector(0, 0, 0), Vector(10, 0, 0)), 3, 0, 0);
  expectVector(Vector::projectPointToLine(Vector(-3, 4, 0), Vector(0, 0, 0), Vector(2, 0, 0)), -3, 0, 0);
  // Coincident end points give the end point.
  expectVector(Vector::projectPointToLine(Vector(3, 4, 5), Vector(1, 1, 1), Vector(1, 1, 1)), 1, 1, 1);
}

TEST(Vector, ProjectPointToPlaneUsesNormalAsGiven) {
  expectVector(Vector::projectPointToPlane(Vector(1, 2, 5), Vector(0, 0, 1), Vector(0, 0, 1)), 1, 2, 1);
  // A normal of length 2 misses the plane: 5 - 2 * (2 * 4) = -11.
  expectVector(Vector::projectPointToPlane(Vector(1, 2, 5), Vector(0, 0, 1), Vector(0, 0, 2)), 1, 2, -11);
}

TEST(Vector, PointDistances) {
  EXPECT_DOUBLE_EQ(4, Vector::pointLineDistance(Vector(3, 4, 0), Vector(0, 0, 0), Vector(1, 0, 0)));
  EXPECT_DOUBLE_EQ(4, Vector::pointPlaneDistance(Vector(1, 2, 5), Vector(0, 0, 1), Vector(0, 0, 1)));
  Vector const a(0, 0, 0), b(10, 0, 0);
  EXPECT_DOUBLE_EQ(4, Vector::pointSegmentDistance(Vector(3, 4, 0), a, b));
  EXPECT_DOUBLE_EQ(5, Vector::pointSegmentDistance(Vector(-3, 4, 0), a, b));
  EXPECT_DOUBLE_EQ(5, Vector::pointSegmentDistance(Vector(13, 4, 0), a, b));
  EXPECT_DOUBLE_EQ(4, Vector::pointSegmentDistance(Vector(10, 4, 0), a, b));
}

}  // namespace
