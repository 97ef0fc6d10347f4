#include "machine/machine/DisplayName.h"

namespace machine {

std::string DisplayName::removeLineBreaks(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (char const c : text)
    if (c != '\r' && c != '\n') out.push_back(c);
  return out;
}

DisplayName::DisplayName(std::string const& name) : m_name(removeLineBreaks(name)) {}
DisplayName::DisplayName(std::string_view const& name) : m_name(removeLineBreaks(name)) {}
DisplayName::DisplayName(char const* name) : m_name(removeLineBreaks(name ? std::string_view(name) : std::string_view())) {}

}  // namespace machine
