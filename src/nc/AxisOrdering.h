#pragma once
// Which axis stands at which index of an AxisValues.

#include <optional>
#include <vector>

#include "nc/AxisInfo.h"

namespace Orvo {

class AxisOrdering {
public:
  AxisOrdering() = default;
  /// That many empty entries, to be filled by setAxisInfo.
  explicit AxisOrdering(int count) : m_entries(count > 0 ? static_cast<std::size_t>(count) : 0u) {}
  AxisOrdering(AxisOrdering const&) = default;
  AxisOrdering(AxisOrdering&&) noexcept = default;
  AxisOrdering& operator=(AxisOrdering const&) = default;
  AxisOrdering& operator=(AxisOrdering&&) noexcept = default;
  virtual ~AxisOrdering() = default;

  int size() const noexcept { return static_cast<int>(m_entries.size()); }
  void append(AxisInfo const& info) { m_entries.push_back(info); }
  void setAxisInfo(int index, AxisInfo const& info) { m_entries.at(static_cast<std::size_t>(index)) = info; }
  AxisInfo const& axisInfo(int index) const { return m_entries.at(static_cast<std::size_t>(index)); }

  MachinePartId machinePartId(int index) const { return axisInfo(index).machinePartId(); }
  AxisName axisName(int index) const { return axisInfo(index).axisName(); }

  /// The index of the first axis of that name; empty if there is none.
  std::optional<int> index(AxisName const& name) const noexcept;

  friend bool operator==(AxisOrdering const& a, AxisOrdering const& b) noexcept { return a.m_entries == b.m_entries; }
  friend bool operator!=(AxisOrdering const& a, AxisOrdering const& b) noexcept { return !(a == b); }

private:
  std::vector<AxisInfo> m_entries;
};

}  // namespace Orvo
