#include "util/utility/ScriptException.h"

#include <utility>

#include "util/utility/Messages.h"

namespace Orvo {

// The UTF-8 form is made once here, so what() cannot fail later.
ScriptException::ScriptException(std::wstring message)
    : m_message(std::move(message)), m_utf8(Messages::wideToUtf8(m_message)) {}

char const* ScriptException::what() const noexcept { return m_utf8.c_str(); }

}  // namespace Orvo
