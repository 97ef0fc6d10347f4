#pragma once
// The failure a script-facing operation throws. Its text is a fixed English
// sentence that scripts and their authors read, so it is kept wide for the
// script side and in UTF-8 for what().

#include <exception>
#include <string>

namespace Orvo {

class ScriptException : public std::exception {
public:
  explicit ScriptException(std::wstring message);

  /// The message in UTF-8.
  char const* what() const noexcept override;
  /// The message as the script sees it.
  std::wstring const& getMessage() const noexcept { return m_message; }

private:
  std::wstring m_message;
  std::string m_utf8;
};

}  // namespace Orvo
