#include "nc/AxisOrdering.h"

namespace Orvo {

std::optional<int> AxisOrdering::index(AxisName const& name) const noexcept {
  for (std::size_t i = 0; i < m_entries.size(); ++i)
    if (m_entries[i].axisName() == name) return static_cast<int>(i);
  return std::nullopt;
}

}  // namespace Orvo
