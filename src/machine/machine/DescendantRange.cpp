#include "machine/machine/DescendantRange.h"

namespace machine {

DescendantRange::DescendantRange(PartDefinition const& node) { collect(node); }

void DescendantRange::collect(PartDefinition const& node) {
  for (PartDefinition const& child : node.children()) {
    m_parts.push_back(&child);
    collect(child);
  }
}

}  // namespace machine
