#include "util/utility/LocalizedMessage.h"

#include <utility>

#include "util/utility/LocaleRegistry.h"
#include "util/utility/Messages.h"

namespace Orvo {

LocalizedMessage::LocalizedMessage(std::wstring key, std::wstring defaultText)
    : m_key(std::move(key)), m_defaultText(std::move(defaultText)) {}

std::wstring LocalizedMessage::text() const { return LocaleRegistry::get().lookup(m_key, m_defaultText); }

std::wstring LocalizedMessage::text(VariableSet const& arguments) const {
  return Variant::getSubstitution(text(), arguments.values());
}

std::string LocalizedMessage::utf8() const { return Messages::wideToUtf8(text()); }

}  // namespace Orvo
