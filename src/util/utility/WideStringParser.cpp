#include "util/utility/WideStringParser.h"

#include <charconv>
#include <cmath>
#include <string>
#include <system_error>
#include <utility>

namespace Orvo {

WideStringParser::WideStringParser(std::wstring text) : m_text(std::move(text)) {}

void WideStringParser::skipSpaces() noexcept {
  while (isAtSpace()) ++m_position;
}

namespace {

using Orvo::WideStringParser;

// One scanner for wide and narrow text, so that both read exactly the same
// numbers with exactly the same values. Short decimals have been taken by
// readShortDecimal before this is reached; this reads them the same way.
template <typename Char>
bool scanNumber(Char const* text, std::size_t size, std::size_t& position, double& value) {
  std::size_t end = position;
  bool negative = false;
  if (end < size && (text[end] == Char('+') || text[end] == Char('-'))) negative = text[end++] == Char('-');
  std::size_t const mantissa = end;
  std::size_t digits = 0;
  while (end < size && WideStringParser::isDigit(text[end])) ++end, ++digits;
  if (end < size && text[end] == Char('.')) {
    ++end;
    while (end < size && WideStringParser::isDigit(text[end])) ++end, ++digits;
  }
  if (digits == 0) return false;
  if (end < size && (text[end] == Char('e') || text[end] == Char('E'))) {
    std::size_t exponent = end + 1;
    if (exponent < size && (text[exponent] == Char('+') || text[exponent] == Char('-'))) ++exponent;
    if (exponent < size && WideStringParser::isDigit(text[exponent])) {
      end = exponent;
      while (end < size && WideStringParser::isDigit(text[end])) ++end;
    }
  }
  // Everything between mantissa and end is ASCII, so narrowing each character
  // is exact; from_chars then reads it the same way in every locale. The sign
  // is applied here because from_chars accepts no "+". A number longer than
  // the buffer (only digits, in practice) goes through a string.
  char buffer[64];
  std::string longNumber;
  char* narrow = buffer;
  std::size_t const length = end - mantissa;
  if (length > sizeof buffer) {
    longNumber.resize(length);
    narrow = longNumber.data();
  }
  for (std::size_t i = 0; i < length; ++i) narrow[i] = static_cast<char>(text[mantissa + i]);
  double parsed = 0.0;
  auto const result = std::from_chars(narrow, narrow + length, parsed);
  if (result.ec != std::errc() || result.ptr != narrow + length || !std::isfinite(parsed)) return false;
  value = negative ? -parsed : parsed;
  position = end;
  return true;
}

}  // namespace

bool WideStringParser::readNumber(double& value) {
  return readNumber(std::wstring_view(m_text), m_position, value);
}

bool WideStringParser::readAnyNumber(std::string_view text, std::size_t& position, double& value) {
  return scanNumber(text.data(), text.size(), position, value);
}

bool WideStringParser::readAnyNumber(std::wstring_view text, std::size_t& position, double& value) {
  return scanNumber(text.data(), text.size(), position, value);
}

std::wstring WideStringParser::readWord() {
  std::size_t const start = m_position;
  while (!isAtEnd() && !isSpace(m_text[m_position])) ++m_position;
  return m_text.substr(start, m_position - start);
}

}  // namespace Orvo
