#include "machine/machine/PostMachineConfig/MultiAxisFeedrate.h"

namespace com {
namespace vantora {
namespace post {

MultiAxisFeedrate::MultiAxisFeedrate(FeedMode mode, InverseTimeUnits units, double maximum) noexcept
    : m_feedMode(mode), m_maximumFeedrate(maximum), m_inverseTimeUnits(units) {}

MultiAxisFeedrate::MultiAxisFeedrate(FeedMode mode, double maximum, double outputTolerance) noexcept
    : m_feedMode(mode), m_maximumFeedrate(maximum), m_DPMOutputTolerance(outputTolerance) {}

bool operator==(MultiAxisFeedrate const& a, MultiAxisFeedrate const& b) noexcept {
  return a.m_feedMode == b.m_feedMode && a.m_maximumFeedrate == b.m_maximumFeedrate &&
         a.m_inverseTimeUnits == b.m_inverseTimeUnits && a.m_DPMOutputTolerance == b.m_DPMOutputTolerance &&
         a.m_DPMPulseWeight == b.m_DPMPulseWeight && a.m_DPMType == b.m_DPMType;
}

}  // namespace post
}  // namespace vantora
}  // namespace com
