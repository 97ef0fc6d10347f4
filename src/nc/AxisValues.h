#pragma once
// One value per entry of an AxisOrdering.

#include <vector>

#include "nc/AxisValue.h"

namespace Orvo {

class AxisValues : public persist::PersistentObject {
public:
  /// Stored as "AxisValues", version 1: the numbers as the std::vector
  /// compound "m_values" of doubles.
  static persist::PersistClass const iceStaticClass;

  AxisValues() = default;
  explicit AxisValues(int count) : m_values(count > 0 ? static_cast<std::size_t>(count) : 0u) {}
  explicit AxisValues(std::vector<AxisValue> values) : m_values(std::move(values)) {}
  AxisValues(AxisValues const&) = default;
  AxisValues(AxisValues&&) noexcept = default;
  AxisValues& operator=(AxisValues const&) = default;
  AxisValues& operator=(AxisValues&&) noexcept = default;
  ~AxisValues() override = default;

  persist::PersistClass const& iceDynamicClass() const override { return iceStaticClass; }
  void iceListMembers(persist::Persist const& persist) override;

  int size() const noexcept { return static_cast<int>(m_values.size()); }
  AxisValue value(int index) const { return m_values.at(static_cast<std::size_t>(index)); }
  AxisValue operator[](int index) const { return m_values[static_cast<std::size_t>(index)]; }
  void setValue(int index, AxisValue const& value) { m_values.at(static_cast<std::size_t>(index)) = value; }
  std::vector<AxisValue> const& values() const noexcept { return m_values; }

  /// Element by element, with the NaN rule of AxisValue.
  friend bool operator==(AxisValues const& a, AxisValues const& b) noexcept { return a.m_values == b.m_values; }
  friend bool operator!=(AxisValues const& a, AxisValues const& b) noexcept { return !(a == b); }

private:
  std::vector<AxisValue> m_values;
};

}  // namespace Orvo
