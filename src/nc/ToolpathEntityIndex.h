#pragma once
// The position of one entity (a move, a comment, a command) within the
// toolpath it came from, so that a host can link simulated motion back to
// the toolpath. The largest unsigned value stands for no position.

#include <cstdint>

namespace Orvo {

class ToolpathEntityIndex {
public:
  static constexpr std::uint32_t kNoIndex = 0xFFFFFFFFu;

  constexpr ToolpathEntityIndex() noexcept = default;
  constexpr explicit ToolpathEntityIndex(std::uint32_t index) noexcept : m_index(index) {}

  constexpr std::uint32_t index() const noexcept { return m_index; }
  constexpr bool isValid() const noexcept { return m_index != kNoIndex; }

  friend constexpr bool operator==(ToolpathEntityIndex a, ToolpathEntityIndex b) noexcept { return a.m_index == b.m_index; }
  friend constexpr bool operator!=(ToolpathEntityIndex a, ToolpathEntityIndex b) noexcept { return !(a == b); }

private:
  std::uint32_t m_index = kNoIndex;
};

}  // namespace Orvo
