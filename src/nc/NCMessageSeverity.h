#pragma once
// How grave a message to the user is. Levels are ordered: a higher level is
// graver.

namespace Orvo {

class NCMessageSeverity {
public:
  enum Level : int {
    NONE = 0,
    INFORMATION = 1,
    WARNING = 2,
    ERROR = 3,
    FATAL = 4,
  };

  constexpr NCMessageSeverity() noexcept = default;
  constexpr explicit NCMessageSeverity(int level) noexcept : m_level(level) {}

  constexpr int level() const noexcept { return m_level; }
  constexpr bool isInformation() const noexcept { return m_level == INFORMATION; }
  constexpr bool isWarning() const noexcept { return m_level == WARNING; }
  /// An error or worse.
  constexpr bool isError() const noexcept { return m_level >= ERROR; }

  friend constexpr bool operator==(NCMessageSeverity a, NCMessageSeverity b) noexcept { return a.m_level == b.m_level; }
  friend constexpr bool operator!=(NCMessageSeverity a, NCMessageSeverity b) noexcept { return !(a == b); }

private:
  int m_level = NONE;
};

}  // namespace Orvo
