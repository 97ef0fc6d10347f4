#include "nc/Helix.h"

#include <cmath>

namespace Orvo {

namespace {
constexpr double kTwoPi = 6.283185307179586;

// A unit vector square to `n`, for a helix whose start lies on its axis.
Vector3D anyPerpendicular(Vector3D const& n) noexcept {
  Vector3D const seed = std::fabs(n.x) < 0.9 ? Vector3D(1, 0, 0) : Vector3D(0, 1, 0);
  return Vector3D::cross(n, Vector3D::cross(seed, n)).getNormalized();
}
}  // namespace

Helix::Helix(Point3D const& center, Point3D const& start, Point3D const& end, Vector3D const& normal) noexcept {
  setFrom(center, start, end, normal);
  Vector3D const e = end - m_center.asPoint();
  Vector3D const radial = e - m_normal * Vector3D::dot(e, m_normal);
  double angle = std::atan2(Vector3D::dot(radial, m_yAxis), Vector3D::dot(radial, m_xAxis));
  // The end on the start's ray means a whole turn: an arc back to its start
  // is a circle.
  if (angle <= 0.0) angle += kTwoPi;
  m_sweep = angle;
}

Helix::Helix(Point3D const& center, Point3D const& start, Point3D const& end, double sweep,
             Vector3D const& normal) noexcept {
  setFrom(center, start, end, normal);
  m_sweep = sweep;
}

Helix::Helix(Vector3D const& center, Vector3D const& normal, Vector3D const& xAxis, Vector3D const& yAxis,
             double radius, double height, double sweep) noexcept
    : m_center(center),
      m_normal(normal),
      m_xAxis(xAxis),
      m_yAxis(yAxis),
      m_radius(radius),
      m_height(height),
      m_sweep(sweep) {}

void Helix::setFrom(Point3D const& center, Point3D const& start, Point3D const& end,
                    Vector3D const& normal) noexcept {
  m_normal = normal.getNormalized();
  // The centre is moved along the axis into the start's plane, so that the
  // height counts from the start.
  Vector3D const s = start - center;
  m_center = center.asVector() + m_normal * Vector3D::dot(s, m_normal);
  Vector3D const radial = start - m_center.asPoint();
  m_radius = radial.length();
  m_xAxis = m_radius > 0.0 ? radial / m_radius : anyPerpendicular(m_normal);
  m_yAxis = Vector3D::cross(m_normal, m_xAxis);
  m_height = Vector3D::dot(end - start, m_normal);
}

Vector3D Helix::getPoint(double fraction) const noexcept {
  double const t = fraction * m_sweep;
  return m_center + m_xAxis * (m_radius * std::cos(t)) + m_yAxis * (m_radius * std::sin(t)) +
         m_normal * (fraction * m_height);
}

std::array<double, Helix::kNumStoredValues> Helix::storedValues() const noexcept {
  return {m_center.x, m_center.y, m_center.z, m_normal.x, m_normal.y, m_normal.z, m_xAxis.x, m_xAxis.y,
          m_xAxis.z,  m_yAxis.x,  m_yAxis.y,  m_yAxis.z,  m_radius,   m_height,   m_sweep};
}

}  // namespace Orvo
