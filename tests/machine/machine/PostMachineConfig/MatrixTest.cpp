#include "machine/machine/PostMachineConfig/Matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <type_traits>
#include <vector>

#include "machine/machine/PostMachineConfig/EulerAngles.h"
#include "machine/machine/PostMachineConfig/ScriptingUtils.h"
#include "support/AssertRecorder.h"
#include "util/utility/ScriptException.h"

using com::vantora::EulerAngles;
using com::vantora::Matrix;
using com::vantora::Vector;

namespace {

constexpr char const* kMatrixPath = "machine\\machine\\PostMachineConfig\\Matrix";
constexpr wchar_t const* kDeprecation = L"Matrix.getEuler() is deprecated. Use Matrix.getEuler2() instead.";

void expectMatrix(Matrix const& m, std::vector<double> const& rowMajor, double tolerance = 0) {
  ASSERT_EQ(9u, rowMajor.size());
  for (unsigned int r = 0; r < 3; ++r)
    for (unsigned int c = 0; c < 3; ++c)
      EXPECT_NEAR(rowMajor[3 * r + c], m[r][c], tolerance) << "element " << r << ", " << c;
}

void expectSameMatrix(Matrix const& expected, Matrix const& actual, double tolerance = 0) {
  for (unsigned int r = 0; r < 3; ++r)
    for (unsigned int c = 0; c < 3; ++c)
      EXPECT_NEAR(expected[r][c], actual[r][c], tolerance) << "element " << r << ", " << c;
}

void expectVector(Vector const& v, double x, double y, double z, double tolerance = 0) {
  EXPECT_NEAR(x, v.x, tolerance);
  EXPECT_NEAR(y, v.y, tolerance);
  EXPECT_NEAR(z, v.z, tolerance);
}

template <typename F>
std::wstring scriptFailure(F&& f) {
  try {
    f();
  } catch (Orvo::ScriptException const& e) {
    return e.getMessage();
  }
  return std::wstring();
}

Matrix withForward(Vector const& forward) {
  Matrix m;
  m.setForward(forward);
  return m;
}

/// A rotation with no special angles.
Matrix generic() { return Matrix::getXYZRotation(Vector(0.3, -0.7, 1.1)); }

/// Collects what reaches the script-warning hook and removes the hook after.
class WarningCollector {
public:
  WarningCollector() {
    com::vantora::setScriptWarningHook([this](std::wstring const& text) { warnings.push_back(text); });
  }
  ~WarningCollector() { com::vantora::setScriptWarningHook({}); }
  std::vector<std::wstring> warnings;
};

/// The convention whose packed order is `order`.
unsigned int conventionOfPackedOrder(unsigned int order) {
  for (unsigned int c = 0; c < 24; ++c)
    if (EulerAngles::packedOrder(c) == order) return c;
  ADD_FAILURE() << "no convention with packed order " << order;
  return 0;
}

// Edge cases.

TEST(Matrix, GetEuler2GetEulerAndGetEulerRotationOf24FailWithInvalidEulerConvention) {
  Matrix const m = generic();
  EXPECT_EQ(L"Invalid Euler convention.", scriptFailure([&] { m.getEuler2(24); }));
  EXPECT_EQ(L"Invalid Euler convention.", scriptFailure([&] { m.getEuler(24); }));
  EXPECT_EQ(L"Invalid Euler convention.", scriptFailure([&] { Matrix::getEulerRotation(24, Vector(0.1, 0.2, 0.3)); }));
  EXPECT_EQ(L"Invalid Euler convention.", scriptFailure([&] { m.getEuler2(1000); }));
  EXPECT_NO_THROW(m.getEuler2(23));
  EXPECT_NO_THROW(Matrix::getEulerRotation(23, Vector(0.1, 0.2, 0.3)));
}

TEST(Matrix, GetEuler2OfGetEulerRotationGivesAnglesBackForEachConvention) {
  for (unsigned int c = 0; c < 24; ++c) {
    bool const repeated = (EulerAngles::packedOrder(c) & 2u) != 0;
    // With a repeated axis the middle angle comes out in 0..pi, negated for odd parity.
    double const sign = (EulerAngles::packedOrder(c) & 4u) != 0 ? -1 : 1;
    // Middle angle inside its principal range and away from its gimbal point.
    for (Vector const& v : {Vector(0.3, repeated ? sign * 1.2 : -0.4, -2.9),
                            Vector(-3.1, repeated ? sign * 2.5 : 1.5, 0.01),
                            Vector(3.14159, repeated ? sign * 0.02 : -1.55, -3.14159)}) {
      Vector const back = Matrix::getEulerRotation(c, v).getEuler2(c);
      expectVector(back, v.x, v.y, v.z, 1e-9);
    }
  }
}

TEST(Matrix, AtGimbalPointThirdAngleComesOutZero) {
  for (unsigned int c = 0; c < 24; ++c) {
    unsigned int const order = EulerAngles::packedOrder(c);
    bool const repeated = (order & 2u) != 0;
    bool const rotating = (order & 1u) != 0;
    double const sign = (order & 4u) != 0 ? -1 : 1;
    for (double middle : repeated ? std::vector<double>{0.0, sign * M_PI} : std::vector<double>{M_PI / 2, -M_PI / 2}) {
      Matrix const m = Matrix::getEulerRotation(c, Vector(0.4, middle, -1.3));
      Vector const v = m.getEuler2(c);
      // In a rotating frame the angles come out exchanged, so the zero stands first.
      EXPECT_EQ(0.0, rotating ? v.x : v.z) << EulerAngles::conventionName(c) << " at " << middle;
      EXPECT_NEAR(middle, v.y, 1e-12) << EulerAngles::conventionName(c);
      // The two outer angles merge into one, and the matrix is reproduced.
      expectSameMatrix(m, Matrix::getEulerRotation(c, v), 1e-12);
    }
  }
}

TEST(Matrix, GetEuler18OnIdentityEqualsGetEuler2Of14AndWarnsWhileGetEuler2NeverWarns) {
  WarningCollector collector;
  Matrix const identity;
  Vector const deprecated = identity.getEuler(18);
  ASSERT_EQ(1u, collector.warnings.size());
  EXPECT_EQ(kDeprecation, collector.warnings[0]);
  Vector const current = identity.getEuler2(14);
  EXPECT_EQ(current.x, deprecated.x);
  EXPECT_EQ(current.y, deprecated.y);
  EXPECT_EQ(current.z, deprecated.z);
  // Away from the identity the two differ in meaning, and still getEuler2 is silent.
  Matrix const m = generic();
  for (unsigned int c = 0; c < 24; ++c) m.getEuler2(c);
  EXPECT_EQ(1u, collector.warnings.size());
  Vector const a = m.getEuler(18), b = m.getEuler2(14);
  EXPECT_EQ(b.x, a.x);
  EXPECT_EQ(b.y, a.y);
  EXPECT_EQ(b.z, a.z);
  EXPECT_NE(m.getEuler2(18).x, a.x);
}

TEST(Matrix, GetTiltAndTilt02OnIdentityYieldsZeroAndFailsWhenForwardIsNotAlongZ) {
  expectVector(Matrix().getTiltAndTilt(0, 2), 0, 0, 0);
  for (Vector const& f : {Vector(1, 0, 0), Vector(0, 0.6, 0.8), Vector(0.6, 0, -0.8)}) {
    EXPECT_EQ(L"Axis combination not supported for Matrix.getTiltAndTilt().",
              scriptFailure([&] { withForward(f).getTiltAndTilt(0, 2); }));
  }
}

TEST(Matrix, GetTurnAndTilt20And02GiveTheSameResult) {
  for (Vector const& f : {Vector(0.6, 0, 0.8), Vector(0, -0.6, 0.8), Vector(0.48, 0.6, -0.64), Vector(-1, 0, 0)}) {
    Matrix const m = withForward(f);
    Vector const a = m.getTurnAndTilt(2, 0), b = m.getTurnAndTilt(0, 2);
    EXPECT_EQ(a.x, b.x);
    EXPECT_EQ(a.y, b.y);
    EXPECT_EQ(a.z, b.z);
    Vector const c = m.getTurnAndTilt(2, 1), d = m.getTurnAndTilt(1, 2);
    EXPECT_EQ(c.x, d.x);
    EXPECT_EQ(c.y, d.y);
    EXPECT_EQ(c.z, d.z);
  }
}

TEST(Matrix, GetTurnAndTilt01FailsOnForwardMinusZAndYieldsZeroOnForwardPlusZ) {
  EXPECT_EQ(L"Axis combination not supported for Matrix.getTurnAndTilt().",
            scriptFailure([] { withForward(Vector(0, 0, -1)).getTurnAndTilt(0, 1); }));
  expectVector(withForward(Vector(0, 0, 1)).getTurnAndTilt(0, 1), 0, 0, 0);
}

TEST(Matrix, GetColumn3FailsWithInvalidRow) {
  Matrix const m;
  EXPECT_EQ(L"Invalid row.", scriptFailure([&] { m.getColumn(3); }));
}

TEST(Matrix, NormalizeWithEqualRightAndUpLengthsKeepsUpDirection) {
  // Right and up both of length 2, not perpendicular; forward along Z.
  double const s = std::sqrt(2.0);
  Matrix m(Vector(2, 0, 0), Vector(s, s, 0), Vector(0, 0, 3));
  m.normalize();
  expectVector(m.getUp(), s / 2, s / 2, 0, 1e-15);
  expectVector(m.getForward(), 0, 0, 1);
  expectVector(m.getRight(), s / 2, -s / 2, 0, 1e-15);
}

// Construction and element access.

TEST(Matrix, DefaultIsIdentityAndIsAScriptObject) {
  static_assert(std::is_base_of<Orvo::ScriptObject, Matrix>::value, "a script object");
  Matrix const m;
  EXPECT_TRUE(m.isIdentity());
  EXPECT_STREQ("ScriptObject", m.getBaseClass());
}

TEST(Matrix, Constructors) {
  expectMatrix(Matrix(2.5), {2.5, 0, 0, 0, 2.5, 0, 0, 0, 2.5});
  double const values[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  expectMatrix(Matrix(values), {1, 2, 3, 4, 5, 6, 7, 8, 9});
  Matrix const columns(Vector(1, 2, 3), Vector(4, 5, 6), Vector(7, 8, 9));
  expectMatrix(columns, {1, 4, 7, 2, 5, 8, 3, 6, 9});
  expectVector(columns.getRight(), 1, 2, 3);
  expectVector(columns.getUp(), 4, 5, 6);
  expectVector(columns.getForward(), 7, 8, 9);
  expectSameMatrix(Matrix::getAxisRotation(Vector(0, 0.6, 0.8), 0.7), Matrix(Vector(0, 0.6, 0.8), 0.7));
}

TEST(Matrix, ElementProxiesReadAndWrite) {
  Matrix m;
  m[1][2] = 5;
  EXPECT_EQ(5, m[1][2]);
  m[2][0] = m[1][2];
  EXPECT_EQ(5, m[2][0]);
  double const read = m[0][0];
  EXPECT_EQ(1, read);
  m(3, 7);
  EXPECT_EQ(7, m.getElement(1, 0));
  Matrix const& c = m;
  EXPECT_EQ(5, c[1][2]);
}

TEST(Matrix, ColumnIndexOfRowProxyAsserts) {
  mtkit_test::AssertRecorder rec;
  Matrix m;
  m[0][1] = 4;
  Matrix const& c = m;
  EXPECT_EQ(4, c[0][1]);
  EXPECT_TRUE(rec.takeTexts().empty());
  // The row proxy goes on past its check and reads on into the next row.
  EXPECT_EQ(0, c[0][3]);
  double const next = m[0][4];
  EXPECT_EQ(1, next);
  auto const failures = rec.take();
  ASSERT_EQ(2u, failures.size());
  EXPECT_EQ("column < 3", failures[0].expression);
  EXPECT_EQ("column < 3", failures[1].expression);
  EXPECT_EQ(kMatrixPath, failures[0].file);
}

TEST(Matrix, FlatIndexAboveEightAssertsAndIsDropped) {
  mtkit_test::AssertRecorder rec;
  Matrix m;
  m(8, 4);
  EXPECT_EQ(4, m[2][2]);
  EXPECT_TRUE(rec.takeTexts().empty());
  m(9, 3);
  EXPECT_EQ(std::vector<std::string>{"index < Orvo::lengthOf(m_matrix)"}, rec.takeTexts());
  expectMatrix(m, {1, 0, 0, 0, 1, 0, 0, 0, 4});
}

TEST(Matrix, CheckedElementAccessFailsWithInvalidElement) {
  Matrix m;
  m.setElement(2, 1, 6);
  EXPECT_EQ(6, m.getElement(2, 1));
  EXPECT_EQ(L"Invalid element.", scriptFailure([&] { m.getElement(3, 0); }));
  EXPECT_EQ(L"Invalid element.", scriptFailure([&] { m.getElement(0, 3); }));
  EXPECT_EQ(L"Invalid element.", scriptFailure([&] { m.setElement(3, 0, 9); }));
  EXPECT_EQ(L"Invalid element.", scriptFailure([&] { m.setElement(1, 7, 9); }));
  expectMatrix(m, {1, 0, 0, 0, 1, 0, 0, 6, 1});
}

TEST(Matrix, RowsAndColumnsFailWithInvalidRow) {
  Matrix m;
  m.setRow(1, Vector(4, 5, 6));
  expectVector(m.getRow(1), 4, 5, 6);
  m.setColumn(2, Vector(7, 8, 9));
  expectVector(m.getColumn(2), 7, 8, 9);
  expectMatrix(m, {1, 0, 7, 4, 5, 8, 0, 0, 9});
  EXPECT_EQ(L"Invalid row.", scriptFailure([&] { m.getRow(3); }));
  EXPECT_EQ(L"Invalid row.", scriptFailure([&] { m.setRow(3, Vector(1, 1, 1)); }));
  EXPECT_EQ(L"Invalid row.", scriptFailure([&] { m.setColumn(3, Vector(1, 1, 1)); }));
  expectMatrix(m, {1, 0, 7, 4, 5, 8, 0, 0, 9});
}

TEST(Matrix, NamedColumns) {
  Matrix m;
  m.setRight(Vector(1, 2, 3));
  m.setUp(Vector(4, 5, 6));
  m.setForward(Vector(7, 8, 9));
  expectMatrix(m, {1, 4, 7, 2, 5, 8, 3, 6, 9});
  expectVector(m.getColumn(0), 1, 2, 3);
  expectVector(m.getColumn(1), 4, 5, 6);
}

// Plain algebra.

TEST(Matrix, ElementWiseAlgebra) {
  double const values[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  Matrix const a(values);
  Matrix b(1.0);
  b.add(a);
  expectMatrix(b, {2, 2, 3, 4, 6, 6, 7, 8, 10});
  b.subtract(Matrix());
  expectMatrix(b, {1, 2, 3, 4, 5, 6, 7, 8, 9});
  expectMatrix(Matrix::sum(a, a), {2, 4, 6, 8, 10, 12, 14, 16, 18});
  expectMatrix(Matrix::diff(a, Matrix(1.0)), {0, 2, 3, 4, 4, 6, 7, 8, 8});
  expectMatrix(a.getNegated(), {-1, -2, -3, -4, -5, -6, -7, -8, -9});
  b.negate();
  expectMatrix(b, {-1, -2, -3, -4, -5, -6, -7, -8, -9});
  expectMatrix(a.getTransposed(), {1, 4, 7, 2, 5, 8, 3, 6, 9});
  Matrix t(a);
  t.transpose();
  expectMatrix(t, {1, 4, 7, 2, 5, 8, 3, 6, 9});
  expectMatrix(a.multiplyValue(2), {2, 4, 6, 8, 10, 12, 14, 16, 18});
  expectMatrix(a, {1, 2, 3, 4, 5, 6, 7, 8, 9});
}

TEST(Matrix, MultiplyMatrixGivesThisTimesArgumentAndKeepsThis) {
  double const av[9] = {1, 2, 0, 0, 1, 0, 0, 0, 1};
  double const bv[9] = {1, 0, 0, 3, 1, 0, 0, 0, 1};
  Matrix const a(av), b(bv);
  expectMatrix(a.multiplyMatrix(b), {7, 2, 0, 3, 1, 0, 0, 0, 1});
  expectMatrix(b.multiplyMatrix(a), {1, 2, 0, 3, 7, 0, 0, 0, 1});
  expectMatrix(a, {1, 2, 0, 0, 1, 0, 0, 0, 1});
}

TEST(Matrix, MultiplyVectorAndTransposedVector) {
  double const values[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  Matrix const a(values);
  expectVector(a.multiplyVector(Vector(1, 0, -1)), -2, -2, -2);
  expectVector(a.multiplyTransposedVector(Vector(1, 0, -1)), -6, -6, -6);
}

TEST(Matrix, NormsAndExactTests) {
  double const values[9] = {1, -2, 2, 0, 0, 0, 0, 0, -4};
  Matrix const a(values);
  EXPECT_EQ(9, a.getN1());
  EXPECT_EQ(5, a.getN2());
  EXPECT_TRUE(Matrix(0.0).isZero());
  EXPECT_FALSE(Matrix().isZero());
  Matrix nearly;
  nearly[0][1] = 1e-300;
  EXPECT_FALSE(nearly.isIdentity());
  Matrix zeroish(0.0);
  zeroish[2][2] = -1e-300;
  EXPECT_FALSE(zeroish.isZero());
}

TEST(Matrix, ConversionsKeepRowMajorOrder) {
  double const values[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  Orvo::Matrix3x3 const m3 = Matrix::getAsMatrix3x3(Matrix(values));
  EXPECT_EQ(Orvo::Matrix3x3(values), m3);
  EXPECT_EQ(2, m3(0, 1));
  expectMatrix(Matrix::getAsMatrix(m3), {1, 2, 3, 4, 5, 6, 7, 8, 9});
}

TEST(Matrix, ToStringFillsTheTemplateRowByRow) {
  EXPECT_EQ(L"[[1, 0, 0], [0, 1, 0], [0, 0, 1]]", Matrix().toString());
  double const values[9] = {0.5, -2, 3, 4, 5, 6, 7, 8, 1e-20};
  EXPECT_EQ(L"[[0.5, -2, 3], [4, 5, 6], [7, 8, 1e-20]]", Matrix(values).toString());
}

// Rotations.

TEST(Matrix, ElementaryRotationsTurnTheFrame) {
  double const c = std::cos(0.3), s = std::sin(0.3);
  expectMatrix(Matrix::getXRotation(0.3), {1, 0, 0, 0, c, s, 0, -s, c});
  expectMatrix(Matrix::getYRotation(0.3), {c, 0, -s, 0, 1, 0, s, 0, c});
  expectMatrix(Matrix::getZRotation(0.3), {c, s, 0, -s, c, 0, 0, 0, 1});
  // A quarter turn of the frame about Z shows the world X as minus Y.
  expectVector(Matrix::getZRotation(M_PI / 2).multiplyVector(Vector(1, 0, 0)), 0, -1, 0, 1e-15);
}

TEST(Matrix, RotateStandsTheRotationOnTheLeft) {
  Matrix const start = generic();
  Matrix m(start);
  m.rotateX(0.4);
  expectSameMatrix(Matrix::getXRotation(0.4).multiplyMatrix(start), m);
  m = start;
  m.rotateY(-0.9);
  expectSameMatrix(Matrix::getYRotation(-0.9).multiplyMatrix(start), m);
  m = start;
  m.rotateZ(2.0);
  expectSameMatrix(Matrix::getZRotation(2.0).multiplyMatrix(start), m);
}

TEST(Matrix, GetXYZRotationIsActiveAboutXThenYThenZ) {
  Vector const a(0.3, -0.7, 1.1);
  Matrix const expected = Matrix::getZRotation(-a.z).multiplyMatrix(Matrix::getYRotation(-a.y)).multiplyMatrix(
      Matrix::getXRotation(-a.x));
  expectSameMatrix(expected, Matrix::getXYZRotation(a));
  // A quarter turn about X carries Y onto Z, and then one about Z carries X onto Y.
  expectVector(Matrix::getXYZRotation(Vector(M_PI / 2, 0, 0)).multiplyVector(Vector(0, 1, 0)), 0, 0, 1, 1e-15);
  expectVector(Matrix::getXYZRotation(Vector(M_PI / 2, 0, M_PI / 2)).multiplyVector(Vector(1, 0, 0)), 0, 1, 0,
               1e-15);
  expectVector(Matrix::getXYZRotation(Vector(M_PI / 2, 0, M_PI / 2)).multiplyVector(Vector(0, 1, 0)), 0, 0, 1,
               1e-15);
}

TEST(Matrix, GetAxisRotationIsActiveAndFollowsTheTable) {
  expectVector(Matrix::getAxisRotation(Vector(0, 0, 1), M_PI / 2).multiplyVector(Vector(1, 0, 0)), 0, 1, 0, 1e-15);
  Vector const u(2.0 / 7, 3.0 / 7, 6.0 / 7);
  double const angle = 0.8, c = std::cos(angle), s = std::sin(angle), t = 1 - c;
  double const x = u.x, y = u.y, z = u.z;
  expectMatrix(Matrix::getAxisRotation(u, angle),
               {x * x * t + c, x * y * t - z * s, x * z * t + y * s, x * y * t + z * s, y * y * t + c,
                y * z * t - x * s, x * z * t - y * s, y * z * t + x * s, z * z * t + c});
  Orvo::Matrix3x3 const reference = Orvo::Matrix3x3::getAxisRotation(Orvo::Vector3D(2, 3, 6), angle);
  expectSameMatrix(Matrix::getAsMatrix(reference), Matrix::getAxisRotation(u, angle), 1e-15);
}

TEST(Matrix, AxisOfLengthOtherThanOneAssertsWithinOneBillionth) {
  mtkit_test::AssertRecorder rec;
  Matrix::getAxisRotation(Vector(0, 0, 1 + 5e-10), 0.5);
  Matrix(Vector(0, 1 - 5e-10, 0), 0.5);
  EXPECT_TRUE(rec.takeTexts().empty());
  Matrix const m = Matrix::getAxisRotation(Vector(0, 0, 2), M_PI / 2);
  Matrix(Vector(0, 0, 0), 0.1);
  auto const failures = rec.take();
  ASSERT_EQ(2u, failures.size());
  EXPECT_EQ("EXPECTS:Orvo::Math::areSame(axis.getLength(), 1)", failures[0].expression);
  EXPECT_EQ("EXPECTS:Orvo::Math::areSame(axis.getLength(), 1)", failures[1].expression);
  EXPECT_EQ(kMatrixPath, failures[0].file);
  // The table is applied to the axis as given.
  EXPECT_NEAR(4 * (1 - std::cos(M_PI / 2)) + std::cos(M_PI / 2), m[2][2], 1e-15);
}

TEST(Matrix, NamedEulerFormsUseTheStaticConvention) {
  Vector const v(0.3, 0.5, -0.2);
  expectSameMatrix(Matrix::getEulerRotation(Matrix::EULER_XYX_S, v), Matrix::getEulerXYXRotation(v));
  expectSameMatrix(Matrix::getEulerRotation(Matrix::EULER_XYZ_S, v), Matrix::getEulerXYZRotation(v));
  expectSameMatrix(Matrix::getEulerRotation(Matrix::EULER_XZX_S, v), Matrix::getEulerXZXRotation(v));
  expectSameMatrix(Matrix::getEulerRotation(Matrix::EULER_XZY_S, v), Matrix::getEulerXZYRotation(v));
  expectSameMatrix(Matrix::getEulerRotation(Matrix::EULER_YXY_S, v), Matrix::getEulerYXYRotation(v));
  expectSameMatrix(Matrix::getEulerRotation(Matrix::EULER_YXZ_S, v), Matrix::getEulerYXZRotation(v));
  expectSameMatrix(Matrix::getEulerRotation(Matrix::EULER_YZX_S, v), Matrix::getEulerYZXRotation(v));
  expectSameMatrix(Matrix::getEulerRotation(Matrix::EULER_YZY_S, v), Matrix::getEulerYZYRotation(v));
  expectSameMatrix(Matrix::getEulerRotation(Matrix::EULER_ZXY_S, v), Matrix::getEulerZXYRotation(v));
  expectSameMatrix(Matrix::getEulerRotation(Matrix::EULER_ZXZ_S, v), Matrix::getEulerZXZRotation(v));
  expectSameMatrix(Matrix::getEulerRotation(Matrix::EULER_ZYX_S, v), Matrix::getEulerZYXRotation(v));
  expectSameMatrix(Matrix::getEulerRotation(Matrix::EULER_ZYZ_S, v), Matrix::getEulerZYZRotation(v));
  // XYZ static is the same active rotation as getXYZRotation.
  expectSameMatrix(Matrix::getXYZRotation(v), Matrix::getEulerXYZRotation(v), 1e-15);
}

TEST(Matrix, EulerConventionValuesAndPackedOrders) {
  EXPECT_EQ(0u, Matrix::EULER_XZX_S);
  EXPECT_EQ(11u, Matrix::EULER_XYZ_R);
  EXPECT_EQ(18u, Matrix::EULER_XYZ_S);
  EXPECT_EQ(23u, Matrix::EULER_YXZ_R);
  unsigned int const packed[24] = {6, 14, 22, 7,  15, 23, 4, 12, 20, 5, 13, 21,
                                   2, 10, 18, 3, 11, 19, 0, 8,  16, 1, 9,  17};
  for (unsigned int c = 0; c < 24; ++c) EXPECT_EQ(packed[c], EulerAngles::packedOrder(c)) << c;
}

// The deprecated path.

TEST(Matrix, GetEulerReadsItsArgumentAsPackedOrder) {
  WarningCollector collector;
  Matrix const m = generic();
  for (unsigned int arg = 0; arg < 24; ++arg) {
    Vector const deprecated = m.getEuler(arg);
    Vector const meant = m.getEuler2(conventionOfPackedOrder(arg));
    EXPECT_EQ(meant.x, deprecated.x) << arg;
    EXPECT_EQ(meant.y, deprecated.y) << arg;
    EXPECT_EQ(meant.z, deprecated.z) << arg;
  }
  EXPECT_EQ(24u, collector.warnings.size());
}

TEST(Matrix, EulerShortcutsGoThroughTheDeprecatedPath) {
  WarningCollector collector;
  Matrix const m = generic();
  auto const same = [](Vector const& a, Vector const& b) { return a.x == b.x && a.y == b.y && a.z == b.z; };
  EXPECT_TRUE(same(m.getEuler(18), m.getEulerXYZ()));
  EXPECT_TRUE(same(m.getEuler(14), m.getEulerZXZ()));
  EXPECT_TRUE(same(m.getEuler(8), m.getEulerZYX()));
  EXPECT_TRUE(same(m.getEuler(2), m.getEulerZYZ()));
  // 18 decodes as ZXZ static.
  EXPECT_TRUE(same(m.getEuler2(Matrix::EULER_ZXZ_S), m.getEulerXYZ()));
  EXPECT_FALSE(same(m.getEuler2(Matrix::EULER_XYZ_S), m.getEulerXYZ()));
  ASSERT_EQ(10u, collector.warnings.size());
  for (auto const& w : collector.warnings) EXPECT_EQ(kDeprecation, w);
}

TEST(Matrix, GetEulerWithoutHookOnlyComputes) {
  com::vantora::setScriptWarningHook({});
  Matrix const m = generic();
  Vector const v = m.getEuler(0);
  Vector const w = m.getEuler2(Matrix::EULER_XYZ_S);
  EXPECT_EQ(w.x, v.x);
  EXPECT_EQ(w.z, v.z);
}

TEST(Matrix, EmptyHookUninstalls) {
  std::vector<std::wstring> warnings;
  com::vantora::setScriptWarningHook([&](std::wstring const& text) { warnings.push_back(text); });
  Matrix().getEuler(3);
  com::vantora::setScriptWarningHook(nullptr);
  Matrix().getEuler(3);
  EXPECT_EQ(1u, warnings.size());
}

TEST(Matrix, GetEulerOfInvalidConventionDoesNotWarn) {
  WarningCollector collector;
  EXPECT_THROW(Matrix().getEuler(24), Orvo::ScriptException);
  EXPECT_TRUE(collector.warnings.empty());
}

// Tilt and turn.

TEST(Matrix, TiltDecompositionsCheckTheirCoordinates) {
  Matrix const m = withForward(Vector(0.6, 0, 0.8));
  for (auto const& call : {+[](Matrix const& x, unsigned a, unsigned b) { x.getTiltAndTilt(a, b); },
                           +[](Matrix const& x, unsigned a, unsigned b) { x.getTurnAndTilt(a, b); }}) {
    EXPECT_EQ(L"Invalid primary coordinate.", scriptFailure([&] { call(m, 3, 0); }));
    EXPECT_EQ(L"Invalid primary coordinate.", scriptFailure([&] { call(m, 3, 3); }));
    EXPECT_EQ(L"Invalid secondary coordinate.", scriptFailure([&] { call(m, 0, 3); }));
    EXPECT_EQ(L"Primary and secondary must be different.", scriptFailure([&] { call(m, 1, 1); }));
    // The checks come before the forward column is looked at.
    EXPECT_EQ(L"Primary and secondary must be different.",
              scriptFailure([&] { call(withForward(Vector(0, 0, 1)), 2, 2); }));
  }
}

TEST(Matrix, GetTiltAndTiltAlongZ) {
  for (unsigned int p = 0; p < 3; ++p)
    for (unsigned int s = 0; s < 3; ++s)
      if (p != s) expectVector(withForward(Vector(0, 0.0001, 0.99999999)).getTiltAndTilt(p, s), 0, 0, 0);
  Matrix const down = withForward(Vector(0, 0, -1));
  expectVector(down.getTiltAndTilt(0, 1), M_PI, 0, 0);
  expectVector(down.getTiltAndTilt(1, 0), 0, M_PI, 0);
  EXPECT_EQ(L"Not supported.", scriptFailure([&] { down.getTiltAndTilt(0, 2); }));
  EXPECT_EQ(L"Not supported.", scriptFailure([&] { down.getTiltAndTilt(2, 1); }));
}

TEST(Matrix, GetTiltAndTiltAngles) {
  double const r = std::sqrt(0.5);
  Matrix const m = withForward(Vector(0.5, 0.5, r));
  expectVector(m.getTiltAndTilt(0, 1), -std::asin(0.5), std::atan2(0.5, r), 0);
  expectVector(m.getTiltAndTilt(1, 0), std::atan2(-0.5, r), std::asin(0.5), 0);
  EXPECT_EQ(L"Axis combination not supported for Matrix.getTiltAndTilt().",
            scriptFailure([&] { m.getTiltAndTilt(2, 0); }));
  EXPECT_EQ(L"Axis combination not supported for Matrix.getTiltAndTilt().",
            scriptFailure([&] { m.getTiltAndTilt(1, 2); }));
  // Rotating Z by the first angle about X and then the second about Y gives the forward column.
  Vector const t = withForward(Vector(0.48, -0.6, 0.64)).getTiltAndTilt(0, 1);
  Matrix const rot = Matrix::getAxisRotation(Vector(0, 1, 0), t.y).multiplyMatrix(
      Matrix::getAxisRotation(Vector(1, 0, 0), t.x));
  expectVector(rot.multiplyVector(Vector(0, 0, 1)), 0.48, -0.6, 0.64, 1e-15);
}

TEST(Matrix, GetTiltAndTiltWrapsMinusPiToPi) {
  // atan2(-0.0, negative) is -pi, which the wrapping step turns into pi.
  Vector const t = withForward(Vector(0.6, 0.0, -0.8)).getTiltAndTilt(1, 0);
  EXPECT_EQ(M_PI, t.x);
  EXPECT_DOUBLE_EQ(std::asin(0.6), t.y);
}

TEST(Matrix, GetTurnAndTiltAlongZ) {
  expectVector(withForward(Vector(0, 0, 1)).getTurnAndTilt(0, 2), 0, 0, 0);
  Matrix const down = withForward(Vector(0, 0, -1));
  expectVector(down.getTurnAndTilt(0, 2), M_PI, 0, 0);
  expectVector(down.getTurnAndTilt(2, 1), 0, M_PI, 0);
  EXPECT_EQ(L"Axis combination not supported for Matrix.getTurnAndTilt().",
            scriptFailure([&] { down.getTurnAndTilt(1, 0); }));
}

TEST(Matrix, GetTurnAndTiltAngles) {
  double const r = std::sqrt(0.5);
  // Pair (0, 2): y above 0 negates the tilt and turns back a quarter.
  expectVector(withForward(Vector(0.5, 0.5, r)).getTurnAndTilt(0, 2), -M_PI / 4, 0, -M_PI / 4, 1e-15);
  expectVector(withForward(Vector(0.5, -0.5, r)).getTurnAndTilt(0, 2), M_PI / 4, 0, M_PI / 4, 1e-15);
  // Pair (1, 2): x at or below 0 turns back a half and negates the tilt; the turn is wrapped.
  expectVector(withForward(Vector(0.5, 0.5, r)).getTurnAndTilt(1, 2), 0, M_PI / 4, M_PI / 4, 1e-15);
  expectVector(withForward(Vector(-0.5, -0.5, r)).getTurnAndTilt(1, 2), 0, -M_PI / 4, M_PI / 4, 1e-15);
  EXPECT_EQ(L"Axis combination not supported for Matrix.getTurnAndTilt().",
            scriptFailure([&] { withForward(Vector(0.6, 0, 0.8)).getTurnAndTilt(0, 1); }));
}

TEST(Matrix, FailedDecompositionLeavesMatrixUnchanged) {
  Matrix const m = generic();
  Matrix copy(m);
  EXPECT_THROW(copy.getTiltAndTilt(0, 2), Orvo::ScriptException);
  EXPECT_THROW(copy.getEuler2(99), Orvo::ScriptException);
  expectSameMatrix(m, copy);
}

// Orientation, normalisation, clamping.

TEST(Matrix, GetOrientationFromDirection) {
  EXPECT_TRUE(Matrix::getOrientationFromDirection(Vector(0, 0, 1)).isIdentity());
  expectMatrix(Matrix::getOrientationFromDirection(Vector(1, 0, 0)), {0, 0, 1, -1, 0, 0, 0, -1, 0}, 1e-15);
  for (Vector const& f : {Vector(0.6, 0, 0.8), Vector(0, -0.8, 0.6), Vector(0.48, 0.6, -0.64), Vector(0, 0, -1)}) {
    Matrix const m = Matrix::getOrientationFromDirection(f);
    expectVector(m.getForward(), f.x, f.y, f.z);
    Matrix const shouldBeIdentity = m.getTransposed().multiplyMatrix(m);
    expectMatrix(shouldBeIdentity, {1, 0, 0, 0, 1, 0, 0, 0, 1}, 1e-15);
    expectVector(Vector::cross(m.getRight(), m.getUp()), f.x, f.y, f.z, 1e-15);
  }
}

TEST(Matrix, GetOrientationFromDirectionAssertsUnitLength) {
  mtkit_test::AssertRecorder rec;
  Matrix::getOrientationFromDirection(Vector(0, 0, 1 + 5e-10));
  EXPECT_TRUE(rec.takeTexts().empty());
  Matrix::getOrientationFromDirection(Vector(0, 0, 2));
  EXPECT_EQ(std::vector<std::string>{"EXPECTS:Orvo::Math::areSame(forward.getLength(), 1)"}, rec.takeTexts());
}

TEST(Matrix, NormalizeKeepsForwardAndTrustsTheLongerColumn) {
  // Right longer than up: the right direction is kept.
  Matrix m(Vector(3, 0, 0.3), Vector(0.2, 1, 0), Vector(0, 0, 2));
  m.normalize();
  expectVector(m.getForward(), 0, 0, 1);
  expectVector(m.getRight(), 1, 0, 0, 1e-15);
  expectVector(m.getUp(), 0, 1, 0, 1e-15);
  // Up longer: its direction is kept.
  Matrix n(Vector(1, 0.5, 0), Vector(0, 3, 0), Vector(0, 0.1, 1));
  n.normalize();
  Vector const f = Vector(0, 0.1, 1).getNormalized();
  expectVector(n.getForward(), f.x, f.y, f.z);
  expectVector(n.getRight(), 1, 0, 0, 1e-15);
  Matrix const check = n.getTransposed().multiplyMatrix(n);
  expectMatrix(check, {1, 0, 0, 0, 1, 0, 0, 0, 1}, 1e-15);
}

TEST(Matrix, ClampSnapsInTheOrderOfItsTests) {
  double const values[9] = {0.5, 0.7, -0.7, 2, -0.05, 1.05, -1.05, 0.35, -0.45};
  Matrix m(values);
  m.clamp(0.6);
  // 0.5 is within 0.6 of both 0 and 1; the test for 0 comes first.
  expectMatrix(m, {0, 1, -1, 2, 0, 1, -1, 0, 0});
  Matrix n(values);
  n.clamp(0.1);
  expectMatrix(n, {0.5, 0.7, -0.7, 2, 0, 1, -1, 0.35, -0.45});
  Matrix exact;
  exact.clamp(0);
  EXPECT_TRUE(exact.isIdentity());
}

}  // namespace
