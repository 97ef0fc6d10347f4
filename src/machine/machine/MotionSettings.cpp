#include "machine/machine/MotionSettings.h"

#include "util/utility/Basic.h"

namespace machine {

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\MotionSettings";
}  // namespace

MotionSettings::MotionSettings(unsigned int flags, NcCodeKinematicInterpolationMode interpolationMode,
                               NcCodeRotaryAxisTraverseMode rotaryTraverseMode) noexcept
    : m_flags(flags) {
  ORVO_ASSERT((m_flags & FLAG_RESERVED_MASK) == 0);
  setInterpolationMode(interpolationMode);
  setRotaryTraverseMode(rotaryTraverseMode);
}

MotionSettings::MotionSettings(Orvo::NCStream::Movement movement, NcCodeKinematicInterpolationMode interpolationMode,
                               NcCodeRotaryAxisTraverseMode rotaryTraverseMode) noexcept
    : m_flags(Orvo::NCStream::getMovementFlags(movement)) {
  setInterpolationMode(interpolationMode);
  setRotaryTraverseMode(rotaryTraverseMode);
}

bool MotionSettings::setFlagsChecked(unsigned int flags) noexcept {
  if ((m_flags & FLAG_RESERVED_MASK) != 0) return false;
  m_flags = flags;
  return true;
}

void MotionSettings::setMovement(Orvo::NCStream::Movement movement) noexcept {
  m_flags = (m_flags & FLAG_RESERVED_MASK) | Orvo::NCStream::getMovementFlags(movement);
}

NcCodeKinematicInterpolationMode MotionSettings::interpolationMode() const noexcept {
  return static_cast<NcCodeKinematicInterpolationMode>((m_flags & kInterpolationMask) >> kInterpolationShift);
}

void MotionSettings::setInterpolationMode(NcCodeKinematicInterpolationMode mode) noexcept {
  m_flags = (m_flags & ~kInterpolationMask) |
            ((static_cast<std::uint32_t>(mode) << kInterpolationShift) & kInterpolationMask);
}

NcCodeRotaryAxisTraverseMode MotionSettings::rotaryTraverseMode() const noexcept {
  return static_cast<NcCodeRotaryAxisTraverseMode>((m_flags & kRotaryTraverseMask) >> kRotaryTraverseShift);
}

void MotionSettings::setRotaryTraverseMode(NcCodeRotaryAxisTraverseMode mode) noexcept {
  m_flags = (m_flags & ~kRotaryTraverseMask) |
            ((static_cast<std::uint32_t>(mode) << kRotaryTraverseShift) & kRotaryTraverseMask);
}

void MotionSettings::mergeMachineInterpolation(NcCodeKinematicInterpolationMode mode) noexcept {
  NcCodeKinematicInterpolationMode const currentMode = interpolationMode();
  EXPECTS(currentMode != machine::NcCodeKinematicInterpolationMode::MIXED);
  if (currentMode == NcCodeKinematicInterpolationMode::TCP_ONLY) setInterpolationMode(mode);
}

}  // namespace machine
