#include "machine/machine/PostMachineConfig/MultiAxisRetractAndReconfigure.h"

namespace com {
namespace vantora {
namespace post {

bool operator==(MultiAxisRetractAndReconfigure const& a, MultiAxisRetractAndReconfigure const& b) noexcept {
  return a.m_reconfigure == b.m_reconfigure && a.m_rewindPreference == b.m_rewindPreference &&
         a.m_retractPreference == b.m_retractPreference && a.m_rewindStrategy == b.m_rewindStrategy &&
         a.m_stockExpansion.x == b.m_stockExpansion.x && a.m_stockExpansion.y == b.m_stockExpansion.y &&
         a.m_stockExpansion.z == b.m_stockExpansion.z && a.m_safeRetractDistance == b.m_safeRetractDistance &&
         a.m_safeRetractFeedrate == b.m_safeRetractFeedrate && a.m_safePlungeFeedrate == b.m_safePlungeFeedrate;
}

}  // namespace post
}  // namespace vantora
}  // namespace com
