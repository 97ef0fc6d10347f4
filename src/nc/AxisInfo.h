#pragma once
// Which part an axis moves and how the NC program names it.

#include <string>

#include "nc/AxisName.h"
#include "nc/MachinePartId.h"

namespace Orvo {

class AxisInfo {
public:
  AxisInfo() = default;
  AxisInfo(MachinePartId partId, AxisName axisName) : m_partId(std::move(partId)), m_axisName(std::move(axisName)) {}
  /// Identifier then axis name.
  AxisInfo(std::string const& partId, std::string const& axisName) : m_partId(partId), m_axisName(axisName) {}
  AxisInfo(char const* partId, char const* axisName) : m_partId(partId), m_axisName(axisName) {}

  MachinePartId const& machinePartId() const noexcept { return m_partId; }
  AxisName const& axisName() const noexcept { return m_axisName; }

  friend bool operator==(AxisInfo const& a, AxisInfo const& b) noexcept {
    return a.m_partId == b.m_partId && a.m_axisName == b.m_axisName;
  }
  friend bool operator!=(AxisInfo const& a, AxisInfo const& b) noexcept { return !(a == b); }

private:
  MachinePartId m_partId;
  AxisName m_axisName;
};

}  // namespace Orvo
