#include "util/utility/VariableSet.h"

namespace Orvo {

VariableSet::VariableSet(std::initializer_list<Variant> values) : m_values(values) {}

VariableSet& VariableSet::add(Variant const& value) {
  m_values.push_back(value);
  return *this;
}

VariableSet& VariableSet::set(std::wstring const& name, Variant const& value) {
  m_named[name] = value;
  return *this;
}

Variant VariableSet::get(std::wstring const& name) const {
  auto const found = m_named.find(name);
  return found == m_named.end() ? Variant() : found->second;
}

}  // namespace Orvo
