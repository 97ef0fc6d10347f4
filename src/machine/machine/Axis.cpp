#include "machine/machine/Axis.h"

#include <cmath>
#include <limits>
#include <new>
#include <type_traits>

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\Axis";
}

namespace machine {

Axis::Axis(AxisDefinition const* axisDef, AxisConfiguration const* configuration)
    : m_definition(axisDef),
      m_configuration(configuration),
      m_value(0.0),
      // NaN equals no position, so a new axis has no valid transformation,
      // also at value 0.
      m_transformValue(std::numeric_limits<double>::quiet_NaN()),
      m_transformation() {
  ORVO_ASSERT(axisDef);
  if (m_definition) m_value = home();
  ORVO_ASSERT(!validTransform());
}

std::optional<Orvo::AxisName> Axis::name() const {
  if (m_configuration && m_configuration->name()) return m_configuration->name();
  return m_definition->name();
}

Orvo::AxisValue Axis::home() const {
  if (m_configuration && m_configuration->home()) return *m_configuration->home();
  return m_definition->defaultHome();
}

Orvo::AxisValue Axis::toolChangePosition() const {
  return m_definition->defaultToolChangePosition().value_or(m_definition->defaultHome());
}

AnglePreference Axis::anglePreference() const {
  if (axisType() == AxisType::ROTARY && m_configuration) return m_configuration->preference();
  return AnglePreference(AnglePreferenceValue::NO_PREFERENCE);
}

Orvo::AxisValueRange Axis::range() const {
  Orvo::AxisValueRange result = m_definition->physicalRange();
  if (!m_configuration) return result;
  if (result.isInfinite()) result = m_configuration->wrapAroundAtRange();
  if (auto const narrowed = result.intersect(m_configuration->restrictedRange())) return *narrowed;
  return Orvo::AxisValueRange(m_value, m_value);
}

bool Axis::isCyclic() const {
  return m_configuration && !m_configuration->hasRestrictedLimits() && !m_definition->hasPhysicalLimits() &&
         m_configuration->hasWrapAroundAtLimits() && m_configuration->wrapAroundAtRange().difference() >= 360.0;
}

bool Axis::isTcpAxis() const {
  if (axisType() == AxisType::LINEAR) return true;
  if (!m_configuration) return true;
  return m_configuration->isTCPEnabled();
}

bool Axis::supportsRotaryTraverseShortestMotion() const {
  return axisType() == AxisType::ROTARY && !m_definition->hasPhysicalLimits() && !(range().difference() < 360.0);
}

Orvo::AxisValue Axis::calculateRotaryAxisTarget(Orvo::AxisValue const& start, Orvo::AxisValue const& end,
                                                NcCodeRotaryAxisTraverseMode mode) const {
  ORVO_ASSERT(axisType() == machine::AxisType::ROTARY);
  if ((supportsRotaryTraverseShortestMotion() && mode == NcCodeRotaryAxisTraverseMode::SHORTEST) || isCyclic()) {
    double delta = std::fmod(end.value() - start.value(), 360.0);
    // Exactly half a turn stays as it is, either way round.
    if (delta > 180.0)
      delta -= 360.0;
    else if (delta < -180.0)
      delta += 360.0;
    return start.value() + delta;
  }
  return end;
}

Orvo::AxisValue Axis::remapCyclic(Orvo::AxisValue value, Orvo::AxisValue reference) const {
  if (!isCyclic()) return value;
  Orvo::AxisValueRange const& wrap = m_configuration->wrapAroundAtRange();
  if (wrap.contains(value)) return value;
  value = reference.value() + std::remainder(value.value() - reference.value(), 360.0);
  return wrap.remapCyclic(value);
}

Orvo::AxisValue Axis::interpolatedAxisValue(Orvo::AxisValue start, Orvo::AxisValue end, double fraction,
                                            NcCodeRotaryAxisTraverseMode mode) const {
  EXPECTS(0 <= fraction && fraction <= 1);
  Orvo::AxisValue const target =
      supportsRotaryTraverseShortestMotion() ? calculateRotaryAxisTarget(start, end, mode) : end;
  Orvo::AxisValue const value = start.value() + (target.value() - start.value()) * fraction;
  return remapCyclic(value, end);
}

bool Axis::compareAxisValueWithTolerance(Orvo::AxisValue a, Orvo::AxisValue b, double tolerance) {
  return std::fabs(a.mm() - b.mm()) <= tolerance;
}

void Axis::calculateTransform() const {
  if (validTransform()) return;
  // Made in place rather than assigned: the definition then writes the
  // motion straight into the cache, which forward kinematics reads next; a
  // copy through a temporary would read stores still in flight, in other
  // pieces than they were written in, and stall. The motion is trivially
  // destructible, so ending its lifetime needs no call.
  static_assert(std::is_trivially_destructible_v<Orvo::Transform3D>);
  if (m_definition)
    new (&m_transformation) Orvo::Transform3D(m_definition->transformation(m_value));
  else
    new (&m_transformation) Orvo::Transform3D();
  m_transformValue = m_value;
}

}  // namespace machine
