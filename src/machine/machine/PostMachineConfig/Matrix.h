#pragma once
// The 3x3 rotation matrix that post-processor scripts see, row-major. Column
// 0 is right, column 1 is up, column 2 is forward (the tool direction).
// All angles are radians.
//
// getXRotation, getYRotation and getZRotation turn the frame, not the point:
// their sine stands where the table below puts it, which is the transpose of
// the usual active rotation. getAxisRotation and the Euler conventions build
// active rotations.

#include <string>

#include <cmath>

#include "machine/machine/PostMachineConfig/EulerAngles.h"
#include "machine/machine/PostMachineConfig/Vector.h"
#include "util/utility/Basic.h"
#include "util/utility/ScriptObject.h"
#include "util/utility/math/Matrix3x3.h"

namespace com {
namespace vantora {

class Matrix : public Orvo::ScriptObject {
  static constexpr char const orvoAssertSourcePath[] = "machine\\machine\\PostMachineConfig\\Matrix";

public:
  /// Three axes, static (_S) or rotating (_R) frame.
  enum EulerConvention : unsigned int {
    EULER_XZX_S = 0,
    EULER_YXY_S = 1,
    EULER_ZYZ_S = 2,
    EULER_XZX_R = 3,
    EULER_YXY_R = 4,
    EULER_ZYZ_R = 5,
    EULER_XZY_S = 6,
    EULER_YXZ_S = 7,
    EULER_ZYX_S = 8,
    EULER_YZX_R = 9,
    EULER_ZXY_R = 10,
    EULER_XYZ_R = 11,
    EULER_XYX_S = 12,
    EULER_YZY_S = 13,
    EULER_ZXZ_S = 14,
    EULER_XYX_R = 15,
    EULER_YZY_R = 16,
    EULER_ZXZ_R = 17,
    EULER_XYZ_S = 18,
    EULER_YZX_S = 19,
    EULER_ZXY_S = 20,
    EULER_ZYX_R = 21,
    EULER_XZY_R = 22,
    EULER_YXZ_R = 23
  };

  /// One element, for reading and writing through m[row][column].
  class Element {
  public:
    explicit Element(double& value) noexcept : m_value(value) {}
    Element(Element const&) noexcept = default;
    Element& operator=(double value) noexcept {
      m_value = value;
      return *this;
    }
    /// Copies the value, not the reference: m[0][1] = m[1][0] writes an element.
    Element& operator=(Element const& other) noexcept {
      m_value = other.m_value;
      return *this;
    }
    operator double() const noexcept { return m_value; }

  private:
    double& m_value;
  };

  class Row {
  public:
    explicit Row(double* first) noexcept : m_row(first) {}
    Element operator[](unsigned int column) const noexcept {
      ORVO_ASSERT(column < 3);
      return Element(m_row[column]);
    }

  private:
    double* m_row;
  };

  class ConstRow {
  public:
    explicit ConstRow(double const* first) noexcept : m_row(first) {}
    double operator[](unsigned int column) const noexcept {
      ORVO_ASSERT(column < 3);
      return m_row[column];
    }

  private:
    double const* m_row;
  };

  /// The identity.
  Matrix() noexcept : m_matrix{1, 0, 0, 0, 1, 0, 0, 0, 1} {}
  /// `diagonal` on the diagonal, 0 elsewhere.
  explicit Matrix(double diagonal) noexcept : m_matrix{diagonal, 0, 0, 0, diagonal, 0, 0, 0, diagonal} {}
  /// Nine doubles, row by row.
  explicit Matrix(double const* const values) noexcept;
  /// The three vectors become the columns.
  Matrix(Vector const& right, Vector const& up, Vector const& forward) noexcept
      : m_matrix{right.x, up.x, forward.x, right.y, up.y, forward.y, right.z, up.z, forward.z} {}
  /// The active rotation by `angle` about the unit vector `axis`.
  Matrix(Vector const& axis, double angle) noexcept;
  Matrix(Matrix const&) noexcept = default;
  Matrix& operator=(Matrix const&) noexcept = default;

  char const* getBaseClass() const noexcept override;
  ~Matrix() override = default;

  // Element access without script checks.
  /// The row is not checked; the column index of the proxy is.
  Row operator[](unsigned int row) noexcept { return Row(m_matrix + 3 * row); }
  ConstRow operator[](unsigned int row) const noexcept { return ConstRow(m_matrix + 3 * row); }
  /// Writes the element at the row-major `index`. A write past the nine
  /// elements is dropped after the assertion rather than corrupting memory.
  void operator()(unsigned int index, double value) noexcept {
    ORVO_ASSERT(index < Orvo::lengthOf(m_matrix));
    if (index < Orvo::lengthOf(m_matrix)) m_matrix[index] = value;
  }

  // Plain algebra.
  void add(Matrix const& m) noexcept;
  void subtract(Matrix const& m) noexcept;
  static Matrix sum(Matrix const& a, Matrix const& b) noexcept;
  static Matrix diff(Matrix const& a, Matrix const& b) noexcept;
  void negate() noexcept;
  Matrix getNegated() const noexcept;
  void transpose() noexcept;
  Matrix getTransposed() const noexcept;
  /// This times `m`, as a new matrix; this matrix is not changed.
  Matrix multiplyMatrix(Matrix const& m) const noexcept;
  /// A new matrix with every element times `value`.
  Matrix multiplyValue(double value) const noexcept;
  /// This times the column vector `v`.
  Vector multiplyVector(Vector const& v) const noexcept;
  /// The transpose of this times `v`.
  Vector multiplyTransposedVector(Vector const& v) const noexcept;
  /// This becomes getXRotation(angle) times this.
  void rotateX(double angle) noexcept;
  void rotateY(double angle) noexcept;
  void rotateZ(double angle) noexcept;
  /// The sum of the absolute values of the elements.
  double getN1() const noexcept;
  /// The square root of the sum of the squares of the elements.
  double getN2() const noexcept;
  /// Exact comparisons, no tolerance.
  bool isIdentity() const noexcept;
  bool isZero() const noexcept;
  static Orvo::Matrix3x3 getAsMatrix3x3(Matrix const& m) noexcept;
  static Matrix getAsMatrix(Orvo::Matrix3x3 const& m) noexcept;
  /// "[[a, b, c], [d, e, f], [g, h, i]]", row by row, each double in the
  /// shortest form that reads back to it, as Vector::toString prints.
  std::wstring toString() const;

  // Checked access for scripts.
  /// Throws "Invalid element." for an index above 2.
  double getElement(unsigned int row, unsigned int column) const;
  void setElement(unsigned int row, unsigned int column, double value);
  /// Throws "Invalid row." for an index above 2.
  Vector getRow(unsigned int i) const;
  void setRow(unsigned int i, Vector const& v);
  /// Throws "Invalid row." too: scripts have always seen that text for a column.
  Vector getColumn(unsigned int i) const;
  void setColumn(unsigned int i, Vector const& v);
  Vector getRight() const noexcept { return Vector(m_matrix[0], m_matrix[3], m_matrix[6]); }
  Vector getUp() const noexcept { return Vector(m_matrix[1], m_matrix[4], m_matrix[7]); }
  Vector getForward() const noexcept { return Vector(m_matrix[2], m_matrix[5], m_matrix[8]); }
  void setRight(Vector const& v) noexcept { setColumnUnchecked(0, v); }
  void setUp(Vector const& v) noexcept { setColumnUnchecked(1, v); }
  void setForward(Vector const& v) noexcept { setColumnUnchecked(2, v); }

  // Rotation factories.
  /// The frame rotations: rows (1, 0, 0), (0, c, s), (0, -s, c).
  static Matrix getXRotation(double angle) noexcept;
  /// Rows (c, 0, -s), (0, 1, 0), (s, 0, c).
  static Matrix getYRotation(double angle) noexcept;
  /// Rows (c, s, 0), (-s, c, 0), (0, 0, 1).
  static Matrix getZRotation(double angle) noexcept;
  /// getZRotation(-z) * getYRotation(-y) * getXRotation(-x): the active
  /// rotation about X first, then Y, then Z.
  static Matrix getXYZRotation(Vector const& angles) noexcept;
  /// The active rotation by `angle` about the unit vector `axis`.
  static Matrix getAxisRotation(Vector const& axis, double angle) noexcept {
    checkUnitAxis(axis);
    Matrix r(Uninitialized{});
    r.fillAxisRotation(axis, angle);
    return r;
  }
  /// Throws "Invalid Euler convention." for a convention above 23.
  static Matrix getEulerRotation(unsigned int convention, Vector const& angles) {
    if (convention >= EulerAngles::conventionCount) failInvalidEulerConvention();
    Matrix r(Uninitialized{});
    EulerAngles::toMatrix(EulerAngles::decode(EulerAngles::packedOrder(convention)), angles.x, angles.y, angles.z,
                          r.m_matrix);
    return r;
  }
  /// A frame whose forward column is the unit vector `forward`.
  static Matrix getOrientationFromDirection(Vector const& forward) noexcept;
  // The static conventions by their letters.
  static Matrix getEulerXYXRotation(Vector const& angles);
  static Matrix getEulerXYZRotation(Vector const& angles);
  static Matrix getEulerXZXRotation(Vector const& angles);
  static Matrix getEulerXZYRotation(Vector const& angles);
  static Matrix getEulerYXYRotation(Vector const& angles);
  static Matrix getEulerYXZRotation(Vector const& angles);
  static Matrix getEulerYZXRotation(Vector const& angles);
  static Matrix getEulerYZYRotation(Vector const& angles);
  static Matrix getEulerZXYRotation(Vector const& angles);
  static Matrix getEulerZXZRotation(Vector const& angles);
  static Matrix getEulerZYXRotation(Vector const& angles);
  static Matrix getEulerZYZRotation(Vector const& angles);

  // Decompositions.
  /// The angles of `convention`; throws "Invalid Euler convention." above 23.
  Vector getEuler2(unsigned int convention) const {
    if (convention >= EulerAngles::conventionCount) failInvalidEulerConvention();
    Vector r;
    EulerAngles::fromMatrix(EulerAngles::decode(EulerAngles::packedOrder(convention)), m_matrix, r.x, r.y, r.z);
    return r;
  }
  /// Deprecated and kept as scripts know it: warns, then reads its argument
  /// as a packed order rather than as a convention. Use getEuler2.
  Vector getEuler(unsigned int convention) const;
  /// getEuler(18), which decodes as ZXZ static.
  Vector getEulerXYZ() const;
  /// getEuler(14).
  Vector getEulerZXZ() const;
  /// getEuler(8).
  Vector getEulerZYX() const;
  /// getEuler(2).
  Vector getEulerZYZ() const;
  /// The two tilts about the coordinates `primary` then `secondary` (0 X, 1 Y)
  /// that bring Z onto the forward column.
  Vector getTiltAndTilt(unsigned int primary, unsigned int secondary) const;
  /// A turn about Z and a tilt about X (pair 0, 2) or Y (pair 1, 2) that bring
  /// Z onto the forward column; the order of the two coordinates is free.
  Vector getTurnAndTilt(unsigned int primary, unsigned int secondary) const;

  // Others.
  /// Snaps elements within `tolerance` of 0, 1 or -1 to that value.
  void clamp(double tolerance) noexcept;
  /// Re-orthonormalises the columns, keeping the forward direction.
  void normalize() noexcept;

private:
  // The hot factories fill every element themselves.
  struct Uninitialized {};
  explicit Matrix(Uninitialized) noexcept {}

  [[noreturn]] static void failInvalidEulerConvention();
  /// Asserts that `axis` has unit length within 1e-9, looser than the default
  /// tolerance of areSame; the text names the check as scripts' authors know it.
  static void checkUnitAxis(Vector const& axis) noexcept {
    ORVO_CHECK_IMPL("EXPECTS:Orvo::Math::areSame(axis.getLength(), 1)",
                    Orvo::Math::areSame(axis.getLength(), 1, 1e-9));
  }

  /// The active rotation about `axis`, as given, by `angle`.
  void fillAxisRotation(Vector const& axis, double angle) noexcept {
    double const x = axis.x, y = axis.y, z = axis.z;
    double const c = std::cos(angle), s = std::sin(angle);
    double const t = 1 - c;
    m_matrix[0] = x * x * t + c;
    m_matrix[1] = x * y * t - z * s;
    m_matrix[2] = x * z * t + y * s;
    m_matrix[3] = x * y * t + z * s;
    m_matrix[4] = y * y * t + c;
    m_matrix[5] = y * z * t - x * s;
    m_matrix[6] = x * z * t - y * s;
    m_matrix[7] = y * z * t + x * s;
    m_matrix[8] = z * z * t + c;
  }

  static double sqr(double value) noexcept { return value * value; }
  void setColumnUnchecked(unsigned int i, Vector const& v) noexcept {
    m_matrix[i] = v.x;
    m_matrix[3 + i] = v.y;
    m_matrix[6 + i] = v.z;
  }

  double m_matrix[9];
};

}  // namespace vantora
}  // namespace com
