#include "machine/machine/MachineDefinitionReaderResult.h"

#include <utility>

#include "util/utility/Basic.h"
#include "util/utility/LocaleRegistry.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\MachineDefinitionReaderResult";
}

namespace machine {

MachineDefinitionReaderResult::MachineDefinitionReaderResult(std::unique_ptr<MachineDefinition> machineDefinition)
    : m_machineDefinition(std::move(machineDefinition)) {
  ORVO_ASSERT(m_machineDefinition);
}

MachineDefinitionReaderResult::MachineDefinitionReaderResult(std::string const& message) : m_message(message) {}

MachineDefinitionReaderResult::MachineDefinitionReaderResult(MachineDefinitionReaderResult&&) noexcept = default;
MachineDefinitionReaderResult& MachineDefinitionReaderResult::operator=(MachineDefinitionReaderResult&&) noexcept =
    default;
MachineDefinitionReaderResult::~MachineDefinitionReaderResult() = default;

std::unique_ptr<MachineDefinition> MachineDefinitionReaderResult::getMachineDefinition() {
  EXPECTS(!isError());
  return std::move(m_machineDefinition);
}

std::string MachineDefinitionReaderResult::getReadErrorMessage() const {
  EXPECTS(isError());
  static wchar_t const heading[] = L"Error reading Machine Definition data from machine file:\n\n";
  return Orvo::LocaleRegistry::get().registerMessage(heading, heading).utf8() + m_message;
}

}  // namespace machine
