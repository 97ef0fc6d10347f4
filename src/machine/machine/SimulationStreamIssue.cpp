#include "machine/machine/SimulationStreamIssue.h"

#include "util/utility/LocaleRegistry.h"
#include "util/utility/Messages.h"
#include "util/utility/VariableSet.h"

namespace machine {

SimulationStreamIssue::SimulationStreamIssue(SimulationStream::IssueCode code, std::string message)
    : m_code(code), m_message(std::move(message)) {}

SimulationStreamIssue::~SimulationStreamIssue() = default;

std::unique_ptr<Orvo::NCMessageCategory> SimulationStreamIssue::clone() const {
  return std::make_unique<SimulationStreamIssue>(*this);
}

bool SimulationStreamIssue::isEquivalent(Orvo::NCMessageCategory const& other) const {
  auto const* issue = dynamic_cast<SimulationStreamIssue const*>(&other);
  return issue && issue->getDisplayText() == getDisplayText();
}

int SimulationStreamIssue::source() const { return SOURCE_POST_PROCESSING; }

std::wstring SimulationStreamIssue::getDisplayText() const {
  Orvo::LocalizedMessage const text =
      Orvo::LocaleRegistry::get().registerMessage(L"Post processing: %1", L"Post processing: %1");
  return text.text(Orvo::VariableSet{Orvo::Variant(Orvo::Messages::utf8ToWide(m_message))});
}

std::wstring SimulationStreamIssue::getShortDisplayText() const {
  return Orvo::LocaleRegistry::get().registerMessage(L"Post-processing warning", L"Post-processing warning").text();
}

std::string SimulationStreamIssue::getIconPath() const { return "Icons/Warning"; }

Orvo::NCMessageSeverity SimulationStreamIssue::severity() const { return SimulationStream::severityOfIssue(m_code); }

}  // namespace machine
