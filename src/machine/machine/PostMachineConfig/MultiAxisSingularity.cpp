#include "machine/machine/PostMachineConfig/MultiAxisSingularity.h"

namespace com {
namespace vantora {
namespace post {

bool operator==(MultiAxisSingularity const& a, MultiAxisSingularity const& b) noexcept {
  return a.m_adjust == b.m_adjust && a.m_method == b.m_method && a.m_cone == b.m_cone && a.m_angle == b.m_angle &&
         a.m_tolerance == b.m_tolerance && a.m_linearizationTolerance == b.m_linearizationTolerance;
}

}  // namespace post
}  // namespace vantora
}  // namespace com
