#include "util/utility/WideStringParser.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>
#include <system_error>
#include <utility>

namespace Orvo {

WideStringParser::WideStringParser(std::wstring text) : m_text(std::move(text)) {}

void WideStringParser::skipSpaces() noexcept {
  while (isAtSpace()) ++m_position;
}

namespace {

bool isDigit(wchar_t c) noexcept { return c >= L'0' && c <= L'9'; }
bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

// 10^0 to 10^15, every one exactly a double: the divisors of the short
// decimals read below, which have at most 15 digits.
constexpr double kExactPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// One scanner for wide and narrow text, so that both read exactly the same
// numbers with exactly the same values.
template <typename Char>
bool scanNumber(Char const* text, std::size_t size, std::size_t& position, double& value) {
  std::size_t end = position;
  bool negative = false;
  if (end < size && (text[end] == Char('+') || text[end] == Char('-'))) negative = text[end++] == Char('-');
  std::size_t const mantissa = end;
  std::size_t digits = 0;
  std::size_t fractionDigits = 0;
  // The digits as one integer while it is exact: below 10^15 < 2^53.
  std::uint64_t integer = 0;
  while (end < size && isDigit(text[end])) {
    if (digits < 15) integer = integer * 10 + static_cast<std::uint64_t>(text[end] - Char('0'));
    ++end, ++digits;
  }
  if (end < size && text[end] == Char('.')) {
    ++end;
    while (end < size && isDigit(text[end])) {
      if (digits < 15) integer = integer * 10 + static_cast<std::uint64_t>(text[end] - Char('0'));
      ++end, ++digits, ++fractionDigits;
    }
  }
  if (digits == 0) return false;
  bool exponentPart = false;
  if (end < size && (text[end] == Char('e') || text[end] == Char('E'))) {
    std::size_t exponent = end + 1;
    if (exponent < size && (text[exponent] == Char('+') || text[exponent] == Char('-'))) ++exponent;
    if (exponent < size && isDigit(text[exponent])) {
      end = exponent;
      while (end < size && isDigit(text[end])) ++end;
      exponentPart = true;
    }
  }
  // Most numbers in machine files are short decimals such as "400" or
  // "0.001". With at most 15 digits and no exponent, the integer of the
  // digits and the power of ten are both exact doubles, so their quotient is
  // the correctly rounded value, the one from_chars gives.
  if (!exponentPart && digits <= 15) {
    double const parsed = static_cast<double>(integer) / kExactPowersOfTen[fractionDigits];
    value = negative ? -parsed : parsed;
    position = end;
    return true;
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
  return scanNumber(m_text.data(), m_text.size(), m_position, value);
}

bool WideStringParser::readNumber(std::string_view text, std::size_t& position, double& value) {
  return scanNumber(text.data(), text.size(), position, value);
}

bool WideStringParser::readNumber(std::wstring_view text, std::size_t& position, double& value) {
  return scanNumber(text.data(), text.size(), position, value);
}

std::wstring WideStringParser::readWord() {
  std::size_t const start = m_position;
  while (!isAtEnd() && !isSpace(m_text[m_position])) ++m_position;
  return m_text.substr(start, m_position - start);
}

}  // namespace Orvo
