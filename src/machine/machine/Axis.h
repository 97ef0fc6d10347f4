#pragma once
// The runtime state of one moving part: its definition, the controller's
// settings for it, where it stands, and the cached motion for that position.

#include <optional>

#include "machine/machine/AnglePreference.h"
#include "machine/machine/AxisConfiguration.h"
#include "machine/machine/AxisDefinition.h"
#include "machine/machine/AxisType.h"
#include "machine/machine/ControlType.h"
#include "machine/machine/NcCodeRotaryAxisTraverseMode.h"
#include "nc/AxisName.h"
#include "nc/AxisValue.h"
#include "nc/AxisValueRange.h"
#include "util/utility/math/Transform3D.h"

namespace machine {

class Part;

class Axis {
public:
  /// The value starts at home(); the transformation is not yet valid.
  Axis(AxisDefinition const* axisDef, AxisConfiguration const* configuration);

  AxisDefinition const* definition() const noexcept { return m_definition; }
  AxisType axisType() const { return m_definition->axisType(); }
  /// The definition's default control.
  ControlType controlType() const noexcept { return m_definition->defaultControl(); }

  Orvo::AxisValue value() const noexcept { return m_value; }
  void setValue(Orvo::AxisValue value) noexcept { m_value = value; }

  /// The configuration's name if it has one, else the definition's.
  std::optional<Orvo::AxisName> name() const;
  /// The configuration's home if it has one, else the definition's default.
  Orvo::AxisValue home() const;
  /// From the definition alone: its tool change position, else its home.
  Orvo::AxisValue toolChangePosition() const;
  /// The configuration's preference for a configured rotary axis, else none.
  AnglePreference anglePreference() const;

  /// The physical range, narrowed by the configuration (wrap-around for an
  /// unlimited axis, then the restricted range). Ranges that don't overlap
  /// collapse to the present value.
  Orvo::AxisValueRange range() const;
  /// An unlimited, unrestricted axis whose wrap-around range spans a turn.
  bool isCyclic() const;
  /// Linear axes always; rotary axes as the configuration says (on without one).
  bool isTcpAxis() const;
  /// A rotary axis free to turn at least a whole revolution.
  bool supportsRotaryTraverseShortestMotion() const;
  /// Where a rotary axis going from `start` to `end` actually stops: the
  /// nearer turn of `end` when shortest motion applies, else `end` itself.
  Orvo::AxisValue calculateRotaryAxisTarget(Orvo::AxisValue const& start, Orvo::AxisValue const& end,
                                            NcCodeRotaryAxisTraverseMode mode) const;
  /// On a cyclic axis, a value outside the wrap-around range is moved to the
  /// turn nearest `reference` and then into the range.
  Orvo::AxisValue remapCyclic(Orvo::AxisValue value, Orvo::AxisValue reference) const;
  /// The position at `fraction` (0 to 1) of the way from start to end.
  Orvo::AxisValue interpolatedAxisValue(Orvo::AxisValue start, Orvo::AxisValue end, double fraction,
                                        NcCodeRotaryAxisTraverseMode mode) const;
  /// |a - b| <= tolerance, with no turn taken into account.
  static bool compareAxisValueWithTolerance(Orvo::AxisValue a, Orvo::AxisValue b, double tolerance);

  /// True when the cached transformation belongs to the present value.
  bool validTransform() const noexcept { return m_value == m_transformValue; }
  /// The motion of the part at the present value, brought up to date first.
  Orvo::Transform3D const& transformation() const {
    if (!validTransform()) calculateTransform();
    return m_transformation;
  }

private:
  friend class Part;

  void calculateTransform() const;

  AxisDefinition const* m_definition;
  AxisConfiguration const* m_configuration;
  Orvo::AxisValue m_value;
  // The cache is filled by const queries, so it is mutable: forward
  // kinematics is a query to callers, and a Machine is for one thread at a time.
  mutable Orvo::AxisValue m_transformValue;
  mutable Orvo::Transform3D m_transformation;
};

}  // namespace machine
