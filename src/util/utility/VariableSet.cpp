#include "util/utility/VariableSet.h"

namespace Orvo {

VariableSet::VariableSet(std::initializer_list<Variant> values) : m_values(values) {}

VariableSet& VariableSet::add(Variant const& value) {
  m_values.push_back(value);
  return *this;
}

}  // namespace Orvo
