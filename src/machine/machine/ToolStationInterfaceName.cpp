#include "machine/machine/ToolStationInterfaceName.h"

#include <cctype>

#include "machine/machine/DisplayName.h"

namespace machine {

std::string ToolStationInterfaceName::normalise(std::string_view text) {
  std::string name = DisplayName::removeLineBreaks(text);
  for (char const c : name)
    if (static_cast<unsigned char>(c) >= 128) return name;
  for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return name;
}

ToolStationInterfaceName::ToolStationInterfaceName(std::string const& name) : m_name(normalise(name)) {}
ToolStationInterfaceName::ToolStationInterfaceName(std::string_view const& name) : m_name(normalise(name)) {}
ToolStationInterfaceName::ToolStationInterfaceName(char const* name)
    : m_name(normalise(name ? std::string_view(name) : std::string_view())) {}

}  // namespace machine
