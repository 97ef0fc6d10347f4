#pragma once
// Which axis stands at which index of an AxisValues.

#include <optional>
#include <vector>

#include "nc/AxisInfo.h"
#include "nc/PersistClass.h"
#include "nc/PersistentObject.h"

namespace persist {
class Persist;
}

namespace Orvo {

class AxisOrdering : public persist::PersistentObject {
public:
  /// Stored as "AxisOrdering", version 1: the std::vector compound
  /// "m_entries" of "AxisInfo" compounds, each with the texts "m_partId" and
  /// "m_axisName".
  static persist::PersistClass const iceStaticClass;

  AxisOrdering() = default;
  /// That many empty entries, to be filled by setAxisInfo.
  explicit AxisOrdering(int count) : m_entries(count > 0 ? static_cast<std::size_t>(count) : 0u) {}
  AxisOrdering(AxisOrdering const&) = default;
  AxisOrdering(AxisOrdering&&) noexcept = default;
  AxisOrdering& operator=(AxisOrdering const&) = default;
  AxisOrdering& operator=(AxisOrdering&&) noexcept = default;
  ~AxisOrdering() override = default;

  persist::PersistClass const& iceDynamicClass() const override { return iceStaticClass; }
  /// The members at the current version, within begin and end of the class.
  void iceListMembers(persist::Persist const& persist) override;
  /// An object member `name` holding the members of layout `version`, which
  /// a container gives explicitly (1 to iceStaticClass.version()).
  void serializeVersionedMembers(persist::Persist const& persist, char const* name, int version);

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
  void directMembers(persist::Persist const& persist, int version);

  std::vector<AxisInfo> m_entries;
};

}  // namespace Orvo
