#pragma once
// A set of named axis positions.

#include "nc/AxisName.h"
#include "nc/AxisOrdering.h"
#include "nc/AxisValue.h"
#include "nc/AxisValues.h"

namespace machine {

class Pose {
public:
  Pose(Orvo::AxisOrdering const& ordering, Orvo::AxisValues const& values);
  Pose(Pose const&) = default;
  Pose(Pose&&) noexcept = default;
  Pose& operator=(Pose const&) = default;
  Pose& operator=(Pose&&) noexcept = default;

  int size() const;
  /// A name that isn't in the ordering reads the first axis: a miss is not
  /// noticed, and callers must not depend on it being noticed.
  Orvo::AxisValue value(Orvo::AxisName const& name) const;
  /// As value(): an unknown name overwrites the first axis.
  void set_value(Orvo::AxisName const& name, Orvo::AxisValue const& value);

  Orvo::AxisOrdering const& axisOrdering() const noexcept { return m_axis_ordering; }
  Orvo::AxisValues const& axisValues() const noexcept { return m_axis_data; }

private:
  int indexOf(Orvo::AxisName const& name) const { return m_axis_ordering.index(name).value_or(0); }

  Orvo::AxisOrdering m_axis_ordering;
  Orvo::AxisValues m_axis_data;
};

}  // namespace machine
