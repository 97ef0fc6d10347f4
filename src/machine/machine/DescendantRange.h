#pragma once
// A snapshot of the descendants of one part (not the part itself), depth
// first in pre-order, children in their stored order. Later changes to the
// tree don't show in it.

#include <cstddef>
#include <vector>

#include "machine/machine/PartDefinition.h"
#include "util/utility/Subrange.h"

namespace machine {

class DescendantRange {
public:
  using PointerVector = std::vector<PartDefinition const*>;
  using const_iterator = Orvo::DereferenceIterator<PointerVector::const_iterator, PartDefinition const>;

  explicit DescendantRange(PartDefinition const& node);

  const_iterator begin() const { return const_iterator(m_parts.begin()); }
  const_iterator end() const { return const_iterator(m_parts.end()); }
  bool empty() const noexcept { return m_parts.empty(); }
  std::size_t size() const noexcept { return m_parts.size(); }
  PartDefinition const& operator[](std::size_t i) const { return *m_parts[i]; }
  PointerVector const& parts() const noexcept { return m_parts; }

private:
  void collect(PartDefinition const& node);

  PointerVector m_parts;
};

}  // namespace machine
