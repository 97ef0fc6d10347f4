#include "machine/machine/InteractSolid.h"

#include "util/utility/LocaleRegistry.h"
#include "util/utility/Messages.h"

namespace machine {

namespace {

std::wstring localised(wchar_t const* text) { return Orvo::LocaleRegistry::get().registerMessage(text, text).text(); }

}  // namespace

InteractSolid::InteractSolid(InteractSolidType type, Orvo::MachinePartId const& partId)
    : m_type(type), m_partId(partId) {}

std::wstring InteractSolid::description() const {
  switch (m_type) {
    case InteractSolidType::TOOL:
      return localised(L"Tool");
    case InteractSolidType::TOOL_CUTTER:
      return localised(L"Flute");
    case InteractSolidType::TOOL_NONCUTTER:
      return localised(L"Holder");
    case InteractSolidType::STOCK:
      return localised(L"Stock");
    case InteractSolidType::FIXTURE:
      return localised(L"Fixture");
    case InteractSolidType::MODEL:
      return localised(L"Model");
    case InteractSolidType::MACHINE_PART:
      return Orvo::Messages::utf8ToWide(m_partId.id());
    case InteractSolidType::TURRET_ACTIVE_TOOL:
      return localised(L"Active Tool");
    case InteractSolidType::TURRET_INACTIVE_TOOL:
      return localised(L"Inactive Tool");
  }
  // A value cast from outside the enumeration has no name of its own.
  return Orvo::Messages::utf8ToWide(m_partId.id());
}

std::string InteractSolid::debugDescription() const {
  auto const& keyMap = Orvo::EnumTraits<InteractSolidType>::keyMap();
  for (auto const& entry : keyMap)
    if (entry.second == m_type) return entry.first + ":" + m_partId.id();
  return std::to_string(static_cast<int>(m_type)) + ":" + m_partId.id();
}

}  // namespace machine
