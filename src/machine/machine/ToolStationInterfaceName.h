#pragma once
// The tool interface of a tool station (such as HSK63A). Normalised on the
// way in: line breaks removed, then an all-ASCII name is upper-cased so that
// it compares without regard to case; a name with any other byte keeps its
// case entirely.

#include <string>
#include <string_view>

namespace machine {

class ToolStationInterfaceName {
public:
  explicit ToolStationInterfaceName(std::string const& name);
  explicit ToolStationInterfaceName(std::string_view const& name);
  explicit ToolStationInterfaceName(char const* name);
  ToolStationInterfaceName(ToolStationInterfaceName const&) = default;
  ToolStationInterfaceName& operator=(ToolStationInterfaceName const&) = default;

  std::string const& name() const noexcept { return m_name; }

  friend bool operator==(ToolStationInterfaceName const& a, ToolStationInterfaceName const& b) noexcept {
    return a.m_name == b.m_name;
  }
  friend bool operator!=(ToolStationInterfaceName const& a, ToolStationInterfaceName const& b) noexcept {
    return !(a == b);
  }

private:
  static std::string normalise(std::string_view text);
  std::string m_name;
};

}  // namespace machine
