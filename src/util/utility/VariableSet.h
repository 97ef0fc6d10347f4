#pragma once
// The arguments of a message, in the order of its placeholders %1, %2, ...

#include <cstddef>
#include <initializer_list>
#include <vector>

#include "util/utility/Variant.h"

namespace Orvo {

class VariableSet {
public:
  VariableSet() = default;
  VariableSet(std::initializer_list<Variant> values);

  /// Appends the argument for the next placeholder.
  VariableSet& add(Variant const& value);
  std::size_t size() const noexcept { return m_values.size(); }
  bool empty() const noexcept { return m_values.empty(); }
  /// The argument of placeholder %(index + 1).
  Variant const& operator[](std::size_t index) const { return m_values[index]; }
  std::vector<Variant> const& values() const noexcept { return m_values; }

private:
  std::vector<Variant> m_values;
};

}  // namespace Orvo
