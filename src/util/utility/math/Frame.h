#pragma once
// A right-handed orthonormal frame: an origin, an X axis and a Z axis; the Y
// axis follows as Z x X.

#include <optional>

#include "util/utility/math/Point3D.h"
#include "util/utility/math/Vector3D.h"

namespace Orvo {

/// Selects the identity transform or the world frame.
struct IdentityTag {};

class Transform3D;

class Frame {
public:
  /// The world frame: origin at zero, axes along the world's X and Z.
  constexpr explicit Frame(IdentityTag) noexcept : m_origin(0, 0, 0), m_xAxis(1, 0, 0), m_zAxis(0, 0, 1) {}

  /// A frame from an origin and two directions. The Z direction is kept and
  /// the X direction is made orthogonal to it (Gram-Schmidt), so a slightly
  /// skewed pair from a file still gives an orthonormal frame. Empty when the
  /// directions are not usable or are parallel.
  static std::optional<Frame> make(Point3D const& origin, Vector3D const& xDirection, Vector3D const& zDirection);

  constexpr Point3D origin() const noexcept { return m_origin; }
  constexpr Vector3D xAxis() const noexcept { return m_xAxis; }
  constexpr Vector3D zAxis() const noexcept { return m_zAxis; }
  constexpr Vector3D yAxis() const noexcept { return Vector3D::cross(m_zAxis, m_xAxis); }

  /// The frame carried by the motion.
  inline Frame transformedBy(Transform3D const& t) const noexcept;

  friend constexpr bool operator==(Frame const& a, Frame const& b) noexcept {
    return a.m_origin == b.m_origin && a.m_xAxis == b.m_xAxis && a.m_zAxis == b.m_zAxis;
  }
  friend constexpr bool operator!=(Frame const& a, Frame const& b) noexcept { return !(a == b); }

private:
  constexpr Frame(Point3D const& o, Vector3D const& x, Vector3D const& z) noexcept : m_origin(o), m_xAxis(x), m_zAxis(z) {}

  Point3D m_origin;
  Vector3D m_xAxis;
  Vector3D m_zAxis;
};

}  // namespace Orvo

// Transform3D completes Frame::transformedBy.
#include "util/utility/math/Transform3D.h"
