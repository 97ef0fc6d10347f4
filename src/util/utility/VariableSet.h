#pragma once
// The arguments of a message, in the order of its placeholders %1, %2, ...,
// and beside them a set of named values (the properties a post-processor
// reads by name). The two parts are independent of each other.

#include <cstddef>
#include <initializer_list>
#include <map>
#include <string>
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

  /// Sets the named value `name`, replacing what it held.
  VariableSet& set(std::wstring const& name, Variant const& value);
  /// The named value, or an empty Variant for a name never set.
  Variant get(std::wstring const& name) const;
  bool has(std::wstring const& name) const { return m_named.count(name) != 0; }
  /// The named values, sorted by name.
  std::map<std::wstring, Variant> const& named() const noexcept { return m_named; }

private:
  std::vector<Variant> m_values;
  std::map<std::wstring, Variant> m_named;
};

}  // namespace Orvo
