#pragma once
// The flags of one motion in a single word: the movement word of the NC
// stream in the low bits, and in the four high bits the interpolation and
// rotary traverse modes that the machine simulation needs beside it.
//
//   bits 0 to 27   movement flags of Orvo::NCStream (movement, compensation side)
//   bits 28, 29    NcCodeKinematicInterpolationMode
//   bit 30         NcCodeRotaryAxisTraverseMode
//   bit 31         reserved

#include <cstdint>

#include "machine/machine/NcCodeKinematicInterpolationMode.h"
#include "machine/machine/NcCodeRotaryAxisTraverseMode.h"
#include "nc/NCStream.h"

namespace machine {

class MotionSettings {
public:
  /// The bits that belong to this class and not to the movement word.
  static constexpr std::uint32_t FLAG_RESERVED_MASK = 0xF0000000u;

  MotionSettings() noexcept = default;
  /// `flags` must leave the reserved bits clear; the modes are then set.
  MotionSettings(unsigned int flags, NcCodeKinematicInterpolationMode interpolationMode,
                 NcCodeRotaryAxisTraverseMode rotaryTraverseMode) noexcept;
  MotionSettings(Orvo::NCStream::Movement movement, NcCodeKinematicInterpolationMode interpolationMode,
                 NcCodeRotaryAxisTraverseMode rotaryTraverseMode) noexcept;

  /// The whole word, modes included.
  unsigned int flags() const noexcept { return m_flags; }
  /// Overwrites the whole word, modes included, unchecked.
  void setFlags(unsigned int flags) noexcept { m_flags = flags; }
  /// Refuses (false, nothing stored) when the word held already carries a
  /// reserved bit; otherwise stores `flags` whole. It looks at the old word,
  /// not the new one: a word that holds a mode is protected from being
  /// overwritten, while a new word with reserved bits is let through.
  bool setFlagsChecked(unsigned int flags) noexcept;

  Orvo::NCStream::Movement movement() const noexcept { return Orvo::NCStream::getMovement(m_flags); }
  /// Replaces the movement word and keeps the four high bits.
  void setMovement(Orvo::NCStream::Movement movement) noexcept;

  NcCodeKinematicInterpolationMode interpolationMode() const noexcept;
  void setInterpolationMode(NcCodeKinematicInterpolationMode mode) noexcept;
  NcCodeRotaryAxisTraverseMode rotaryTraverseMode() const noexcept;
  void setRotaryTraverseMode(NcCodeRotaryAxisTraverseMode mode) noexcept;

  /// A motion held as TCP_ONLY takes the machine's own mode; any other held
  /// mode stays.
  void mergeMachineInterpolation(NcCodeKinematicInterpolationMode mode) noexcept;

  friend bool operator==(MotionSettings const& a, MotionSettings const& b) noexcept { return a.m_flags == b.m_flags; }
  friend bool operator!=(MotionSettings const& a, MotionSettings const& b) noexcept { return !(a == b); }

private:
  static constexpr unsigned int kInterpolationShift = 28;
  static constexpr std::uint32_t kInterpolationMask = 0x30000000u;
  static constexpr unsigned int kRotaryTraverseShift = 30;
  static constexpr std::uint32_t kRotaryTraverseMask = 0x40000000u;

  std::uint32_t m_flags = 0;
};

}  // namespace machine
