#pragma once
// A rigid motion: a rotation matrix R and a translation t, p -> R p + t.

#include "util/utility/Angle.h"
#include "util/utility/Basic.h"
#include "util/utility/math/Frame.h"
#include "util/utility/math/Matrix3x3.h"
#include "util/utility/math/Point3D.h"
#include "util/utility/math/Vector3D.h"

namespace Orvo {

/// Arguments of the translating constructor.
struct Translation3DArgs {
  Vector3D translation;
};

/// Arguments of the rotating constructor: a point on the axis, the axis
/// direction, and the angle by its sine and cosine.
struct Rotation3DArgs {
  Point3D point;
  Vector3D vector;
  double m_s;
  double m_c;

  Rotation3DArgs(Point3D const& point_, Vector3D const& vector_, double sine, double cosine) noexcept
      : point(point_),
        vector(vector_),
        m_s(sine),
        m_c(cosine) {
    // One look at the testing flag on this hot path, not four.
    if (__builtin_expect(_debug::isTesting(), 0)) {
      AngleChecks::checkedSineOrCosine(sine);
      AngleChecks::checkedSineOrCosine(cosine);
      AngleChecks::checkSineCosinePair(m_s, m_c);
    }
  }
};

class Transform3D {
public:
  static constexpr char const orvoAssertSourcePath[] = "util\\utility/math/Transform3D";

  /// The identity.
  constexpr Transform3D() noexcept : m_c0(1, 0, 0), m_c1(0, 1, 0), m_c2(0, 0, 1), m_t(0, 0, 0) {}
  constexpr explicit Transform3D(IdentityTag) noexcept : Transform3D() {}
  constexpr Transform3D(Matrix3x3 const& rotation, Vector3D const& translation) noexcept
      : m_c0(rotation.column(0)), m_c1(rotation.column(1)), m_c2(rotation.column(2)), m_t(translation) {}

  explicit Transform3D(Translation3DArgs const& args) noexcept
      : m_c0(1, 0, 0), m_c1(0, 1, 0), m_c2(0, 0, 1), m_t(args.translation) {
    Vector3D const& translation = args.translation;
    ORVO_ASSERT(!translation.isNaN());
  }

  /// Right-handed rotation about the line through args.point along args.vector.
  explicit Transform3D(Rotation3DArgs const& args) noexcept {
    Vector3D const& vector = args.vector;
    if (__builtin_expect(_debug::isTesting(), 0)) {
      ORVO_ASSERT(!vector.isNaN());
      ORVO_ASSERT(vector.isProper());
    }
    double const len2 = vector.lengthSquared();
    // Directions from the definitions are unit already, up to the rounding of
    // their normalisation: skip the root then.
    Vector3D const u = (std::fabs(len2 - 1.0) <= 4.5e-16) ? vector : vector / std::sqrt(len2);
    double const s = args.m_s;
    double const c = args.m_c;
    double const t = 1.0 - c;
    m_c0 = Vector3D(t * u.x * u.x + c, t * u.x * u.y + s * u.z, t * u.x * u.z - s * u.y);
    m_c1 = Vector3D(t * u.x * u.y - s * u.z, t * u.y * u.y + c, t * u.y * u.z + s * u.x);
    m_c2 = Vector3D(t * u.x * u.z + s * u.y, t * u.y * u.z - s * u.x, t * u.z * u.z + c);
    Vector3D const p = args.point.asVector();
    m_t = p - turn(p);
  }

  /// The rotation, row-major.
  constexpr Matrix3x3 rotation() const noexcept { return Matrix3x3(m_c0, m_c1, m_c2); }
  constexpr Vector3D translation() const noexcept { return m_t; }

  /// A point takes rotation and translation.
  /// Summed as two pairs, which halves the chain of dependent additions.
  constexpr Point3D operator()(Point3D const& p) const noexcept {
    return {(m_c0.x * p.x + m_c1.x * p.y) + (m_c2.x * p.z + m_t.x),
            (m_c0.y * p.x + m_c1.y * p.y) + (m_c2.y * p.z + m_t.y),
            (m_c0.z * p.x + m_c1.z * p.y) + (m_c2.z * p.z + m_t.z)};
  }
  /// A vector takes the rotation only.
  constexpr Vector3D operator()(Vector3D const& v) const noexcept { return turn(v); }

  /// The inverse motion (the rotation is orthonormal, so its transpose).
  constexpr Transform3D inverse() const noexcept {
    Transform3D r(Vector3D(m_c0.x, m_c1.x, m_c2.x), Vector3D(m_c0.y, m_c1.y, m_c2.y),
                  Vector3D(m_c0.z, m_c1.z, m_c2.z), Vector3D(0, 0, 0));
    r.m_t = -Vector3D(Vector3D::dot(m_c0, m_t), Vector3D::dot(m_c1, m_t), Vector3D::dot(m_c2, m_t));
    return r;
  }

  /// Whether the rotation is exactly the identity (a pure translation).
  constexpr bool hasIdentityRotation() const noexcept {
    // Most rotations already differ from the identity in the first number.
    if (__builtin_expect(m_c0.x != 1, 1)) return false;
    return m_c1.y == 1 && m_c2.z == 1 && m_c0.y == 0 && m_c0.z == 0 && m_c1.x == 0 && m_c1.z == 0 && m_c2.x == 0 &&
           m_c2.y == 0;
  }
  /// compose(*this, b) for a `b` with the identity rotation, worked out with
  /// the very operations compose would do that aren't products with 1 or 0:
  /// the same bits for finite numbers, for a quarter of the work.
  constexpr Transform3D composedWithTranslation(Transform3D const& b) const noexcept {
    return Transform3D(m_c0, m_c1, m_c2, turn(b.m_t) + m_t);
  }

  /// The motion that applies b first and a second.
  friend constexpr Transform3D compose(Transform3D const& a, Transform3D const& b) noexcept {
    return Transform3D(a.turn(b.m_c0), a.turn(b.m_c1), a.turn(b.m_c2), a.turn(b.m_t) + a.m_t);
  }

  friend constexpr bool operator==(Transform3D const& a, Transform3D const& b) noexcept {
    return a.m_c0 == b.m_c0 && a.m_c1 == b.m_c1 && a.m_c2 == b.m_c2 && a.m_t == b.m_t;
  }
  friend constexpr bool operator!=(Transform3D const& a, Transform3D const& b) noexcept { return !(a == b); }

private:
  constexpr Transform3D(Vector3D const& c0, Vector3D const& c1, Vector3D const& c2, Vector3D const& t) noexcept
      : m_c0(c0), m_c1(c1), m_c2(c2), m_t(t) {}

  constexpr Vector3D turn(Vector3D const& v) const noexcept {
    return {m_c0.x * v.x + m_c1.x * v.y + m_c2.x * v.z, m_c0.y * v.x + m_c1.y * v.y + m_c2.y * v.z,
            m_c0.z * v.x + m_c1.z * v.y + m_c2.z * v.z};
  }

  // The rotation is kept by columns, then the translation: applying the
  // motion is then a sum of scaled columns, which vectorises without shuffles.
  Vector3D m_c0;
  Vector3D m_c1;
  Vector3D m_c2;
  Vector3D m_t;
};

/// compose(a, b)(p) == a(b(p)); declared here for lookup outside the class.
constexpr Transform3D compose(Transform3D const& a, Transform3D const& b) noexcept;

/// The frame-to-world motion of a frame: its axes as columns, its origin as translation.
constexpr Transform3D frameToWorld(Frame const& f) noexcept {
  return Transform3D(Matrix3x3(f.xAxis(), f.yAxis(), f.zAxis()), f.origin().asVector());
}

/// The motion that carries frame `from` onto frame `to`.
constexpr Transform3D activeTransform3D(Frame const& from, Frame const& to) noexcept {
  return compose(frameToWorld(to), frameToWorld(from).inverse());
}

/// Takes coordinates of a point in frame `from` to its coordinates in frame `to`.
constexpr Transform3D coordinateTransform3D(Frame const& from, Frame const& to) noexcept {
  return compose(frameToWorld(to).inverse(), frameToWorld(from));
}

/// Takes world coordinates to coordinates in frame `to`.
constexpr Transform3D coordinateTransform3D(IdentityTag, Frame const& to) noexcept {
  return frameToWorld(to).inverse();
}

inline Frame Frame::transformedBy(Transform3D const& t) const noexcept {
  return Frame(t(m_origin), t(m_xAxis), t(m_zAxis));
}

}  // namespace Orvo
