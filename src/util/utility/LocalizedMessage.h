#pragma once
// A user-facing text: its key (the English text), its default text, and its
// text in the locale the host chose, with placeholders filled.

#include <string>

#include "util/utility/VariableSet.h"

namespace Orvo {

class LocalizedMessage {
public:
  LocalizedMessage(std::wstring key, std::wstring defaultText);

  std::wstring const& key() const noexcept { return m_key; }
  std::wstring const& defaultText() const noexcept { return m_defaultText; }
  /// The translation of the registry's current locale, else the default.
  std::wstring text() const;
  /// text() with %1 ... %9 filled from `arguments`.
  std::wstring text(VariableSet const& arguments) const;
  /// text() in UTF-8.
  std::string utf8() const;

private:
  std::wstring m_key;
  std::wstring m_defaultText;
};

}  // namespace Orvo
