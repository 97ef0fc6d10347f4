#include "util/utility/math/Frame.h"

namespace Orvo {

std::optional<Frame> Frame::make(Point3D const& origin, Vector3D const& xDirection, Vector3D const& zDirection) {
  if (!xDirection.isProper() || !zDirection.isProper()) return std::nullopt;
  if (!std::isfinite(origin.x) || !std::isfinite(origin.y) || !std::isfinite(origin.z)) return std::nullopt;
  Vector3D const z = zDirection.getNormalized();
  Vector3D const xUnit = xDirection.getNormalized();
  Vector3D x = xUnit - z * Vector3D::dot(xUnit, z);
  // Directions closer than about 1e-9 rad to parallel span no frame.
  if (x.lengthSquared() < 1e-18) return std::nullopt;
  x.normalize();
  return Frame(origin, x, z);
}

}  // namespace Orvo
