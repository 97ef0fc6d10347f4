#pragma once
// A text that could not be read as the format it claims to be: malformed XML,
// a number that is not one. Where the text came from a document, the line
// and column of the failure are part of the message and kept apart as well.

#include <cstddef>
#include <stdexcept>
#include <string>

namespace Orvo {

class ParseException : public std::runtime_error {
public:
  explicit ParseException(std::string const& message);
  /// `message` followed by " at line L, column C." (both counted from 1).
  ParseException(std::string const& message, std::size_t line, std::size_t column);

  /// 0 when the failure has no place in a document.
  std::size_t line() const noexcept { return m_line; }
  std::size_t column() const noexcept { return m_column; }

private:
  std::size_t m_line = 0;
  std::size_t m_column = 0;
};

}  // namespace Orvo
