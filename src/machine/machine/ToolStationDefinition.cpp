#include "machine/machine/ToolStationDefinition.h"

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\ToolStationDefinition";
}

namespace machine {

ToolStationDefinition::ToolStationDefinition(std::optional<Distance> maxToolLength,
                                             std::optional<Distance> maxToolDiameter,
                                             Orvo::EnumBitset<MachineCoolant> coolants,
                                             std::optional<ToolStationInterfaceName> toolInterface)
    : m_maxToolLength(maxToolLength),
      m_maxToolDiameter(maxToolDiameter),
      m_coolants(coolants),
      m_toolInterface(std::move(toolInterface)) {
  EXPECTS(!maxToolLength || maxToolLength->get() >= 0);
  EXPECTS(!maxToolDiameter || maxToolDiameter->get() >= 0);
}

void ToolStationDefinition::setToolInterface(std::optional<ToolStationInterfaceName> const& toolInterface) {
  // Out of line and without a move from the argument: GCC 12 warns falsely
  // about a maybe-uninitialised string when an empty optional is moved inline.
  if (toolInterface)
    m_toolInterface.emplace(*toolInterface);
  else
    m_toolInterface.reset();
}

bool operator==(ToolStationDefinition const& a, ToolStationDefinition const& b) noexcept {
  return a.m_maxToolLength == b.m_maxToolLength && a.m_maxToolDiameter == b.m_maxToolDiameter &&
         a.m_coolants == b.m_coolants && a.m_toolInterface == b.m_toolInterface;
}

}  // namespace machine
