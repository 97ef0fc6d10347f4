#pragma once
// The feed of an NC-code movement.

namespace machine {

enum class NcCodeFeedrateType : int {
  /// No feed of its own: a high feed move, with value 0.
  NONE = 0,
  MM_PER_MINUTE = 1,
  MM_PER_REV = 2,
};

class NcCodeFeedrate {
public:
  NcCodeFeedrate(NcCodeFeedrateType type, double value) noexcept : m_type(type), m_value(value) {}

  NcCodeFeedrateType type() const noexcept { return m_type; }
  /// The value whatever its type.
  double value() const noexcept { return m_value; }
  /// Requires a feed per minute.
  double mmPerMinute() const noexcept;
  /// Requires a feed per revolution.
  double mmPerRev() const noexcept;

  friend bool operator==(NcCodeFeedrate const& a, NcCodeFeedrate const& b) noexcept {
    return a.m_type == b.m_type && a.m_value == b.m_value;
  }
  friend bool operator!=(NcCodeFeedrate const& a, NcCodeFeedrate const& b) noexcept { return !(a == b); }

private:
  NcCodeFeedrateType m_type;
  double m_value;
};

}  // namespace machine
