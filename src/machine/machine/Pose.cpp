#include "machine/machine/Pose.h"

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\Pose";
}

namespace machine {

Pose::Pose(Orvo::AxisOrdering const& ordering, Orvo::AxisValues const& values)
    : m_axis_ordering(ordering), m_axis_data(values) {}

int Pose::size() const {
  ORVO_ASSERT(m_axis_data.size() == m_axis_ordering.size());
  return m_axis_data.size();
}

Orvo::AxisValue Pose::value(Orvo::AxisName const& name) const { return m_axis_data.value(indexOf(name)); }

void Pose::set_value(Orvo::AxisName const& name, Orvo::AxisValue const& value) {
  m_axis_data.setValue(indexOf(name), value);
}

}  // namespace machine
