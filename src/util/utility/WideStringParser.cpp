#include "util/utility/WideStringParser.h"

#include <charconv>
#include <cmath>
#include <string>
#include <system_error>
#include <utility>

namespace Orvo {

namespace {
bool isDigit(wchar_t c) noexcept { return c >= L'0' && c <= L'9'; }
}  // namespace

WideStringParser::WideStringParser(std::wstring text) : m_text(std::move(text)) {}

void WideStringParser::skipSpaces() noexcept {
  while (isAtSpace()) ++m_position;
}

bool WideStringParser::readNumber(double& value) {
  std::size_t const size = m_text.size();
  std::size_t end = m_position;
  bool negative = false;
  if (end < size && (m_text[end] == L'+' || m_text[end] == L'-')) negative = m_text[end++] == L'-';
  std::size_t const mantissa = end;
  std::size_t digits = 0;
  while (end < size && isDigit(m_text[end])) ++end, ++digits;
  if (end < size && m_text[end] == L'.') {
    ++end;
    while (end < size && isDigit(m_text[end])) ++end, ++digits;
  }
  if (digits == 0) return false;
  if (end < size && (m_text[end] == L'e' || m_text[end] == L'E')) {
    std::size_t exponent = end + 1;
    if (exponent < size && (m_text[exponent] == L'+' || m_text[exponent] == L'-')) ++exponent;
    if (exponent < size && isDigit(m_text[exponent])) {
      end = exponent;
      while (end < size && isDigit(m_text[end])) ++end;
    }
  }
  // Everything between mantissa and end is ASCII, so narrowing each character
  // is exact; from_chars then reads it the same way in every locale. The sign
  // is applied here because from_chars accepts no "+".
  std::string narrow;
  narrow.reserve(end - mantissa);
  for (std::size_t i = mantissa; i < end; ++i) narrow.push_back(static_cast<char>(m_text[i]));
  double parsed = 0.0;
  auto const result = std::from_chars(narrow.data(), narrow.data() + narrow.size(), parsed);
  if (result.ec != std::errc() || result.ptr != narrow.data() + narrow.size() || !std::isfinite(parsed))
    return false;
  value = negative ? -parsed : parsed;
  m_position = end;
  return true;
}

std::wstring WideStringParser::readWord() {
  std::size_t const start = m_position;
  while (!isAtEnd() && !isSpace(m_text[m_position])) ++m_position;
  return m_text.substr(start, m_position - start);
}

}  // namespace Orvo
