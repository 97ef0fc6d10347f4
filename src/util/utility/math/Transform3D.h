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
        m_s(AngleChecks::checkedSineOrCosine(sine)),
        m_c(AngleChecks::checkedSineOrCosine(cosine)) {
    AngleChecks::checkSineCosinePair(m_s, m_c);
  }
};

class Transform3D {
public:
  static constexpr char const orvoAssertSourcePath[] = "util\\utility/math/Transform3D";

  /// The identity.
  constexpr Transform3D() noexcept : m_rotation(Matrix3x3::getIdentity()), m_translation(0, 0, 0) {}
  constexpr explicit Transform3D(IdentityTag) noexcept : Transform3D() {}
  constexpr Transform3D(Matrix3x3 const& rotation, Vector3D const& translation) noexcept
      : m_rotation(rotation), m_translation(translation) {}

  explicit Transform3D(Translation3DArgs const& args) noexcept
      : m_rotation(Matrix3x3::getIdentity()), m_translation(args.translation) {
    Vector3D const& translation = args.translation;
    ORVO_ASSERT(!translation.isNaN());
  }

  /// Right-handed rotation about the line through args.point along args.vector.
  explicit Transform3D(Rotation3DArgs const& args) noexcept {
    Vector3D const& vector = args.vector;
    ORVO_ASSERT(!vector.isNaN());
    ORVO_ASSERT(vector.isProper());
    double const len2 = vector.lengthSquared();
    // Directions from the definitions are unit already; skip the root then.
    Vector3D const u = (len2 == 1.0) ? vector : vector / std::sqrt(len2);
    m_rotation = Matrix3x3::getAxisRotation(u, args.m_s, args.m_c);
    Vector3D const p = args.point.asVector();
    m_translation = p - m_rotation * p;
  }

  constexpr Matrix3x3 const& rotation() const noexcept { return m_rotation; }
  constexpr Vector3D const& translation() const noexcept { return m_translation; }

  /// A point takes rotation and translation.
  constexpr Point3D operator()(Point3D const& p) const noexcept {
    Vector3D const r = m_rotation * p.asVector();
    return {r.x + m_translation.x, r.y + m_translation.y, r.z + m_translation.z};
  }
  /// A vector takes the rotation only.
  constexpr Vector3D operator()(Vector3D const& v) const noexcept { return m_rotation * v; }

  /// The inverse motion (the rotation is orthonormal, so its transpose).
  constexpr Transform3D inverse() const noexcept {
    Matrix3x3 const rt = m_rotation.transposed();
    return Transform3D(rt, -(rt * m_translation));
  }

  friend constexpr bool operator==(Transform3D const& a, Transform3D const& b) noexcept {
    return a.m_rotation == b.m_rotation && a.m_translation == b.m_translation;
  }
  friend constexpr bool operator!=(Transform3D const& a, Transform3D const& b) noexcept { return !(a == b); }

private:
  Matrix3x3 m_rotation;
  Vector3D m_translation;
};

/// The motion that applies b first and a second: compose(a, b)(p) == a(b(p)).
constexpr Transform3D compose(Transform3D const& a, Transform3D const& b) noexcept {
  return Transform3D(a.rotation() * b.rotation(), a.rotation() * b.translation() + a.translation());
}

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
