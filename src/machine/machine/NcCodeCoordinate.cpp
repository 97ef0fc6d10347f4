#include "machine/machine/NcCodeCoordinate.h"

#include "util/utility/Basic.h"

namespace machine {

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\NcCodeCoordinate";
}  // namespace

NcCodeCoordinate::NcCodeCoordinate(NcCodeCoordinateType type, double value) : m_type(type), m_value(value) {
  EXPECTS(type != NcCodeCoordinateType::MACHINE_AXIS);
}

NcCodeCoordinate::NcCodeCoordinate(Orvo::AxisName const& axisName, Orvo::AxisValue const& axisValue)
    : m_type(NcCodeCoordinateType::MACHINE_AXIS), m_axisName(axisName), m_value(axisValue.mm()) {}

Orvo::AxisValue NcCodeCoordinate::axisValue() const noexcept {
  EXPECTS(m_type == NcCodeCoordinateType::MACHINE_AXIS);
  return Orvo::AxisValue(m_value);
}

}  // namespace machine
