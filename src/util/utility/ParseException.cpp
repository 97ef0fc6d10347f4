#include "util/utility/ParseException.h"

namespace Orvo {

ParseException::ParseException(std::string const& message) : std::runtime_error(message) {}

ParseException::ParseException(std::string const& message, std::size_t line, std::size_t column)
    : std::runtime_error(message + " at line " + std::to_string(line) + ", column " + std::to_string(column) + "."),
      m_line(line),
      m_column(column) {}

}  // namespace Orvo
