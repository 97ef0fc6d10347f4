#include "util/utility/Format.h"

#include <charconv>
#include <cmath>
#include <cstdint>

#include "util/utility/Messages.h"
#include "util/utility/ParseException.h"
#include "util/utility/Variant.h"

namespace Orvo {

std::wstring Format::getAsPosixWString(double value) { return Messages::utf8ToWide(Variant::formatDouble(value)); }

unsigned int Format::parseUnsigned(std::wstring const& text) {
  if (text.empty()) throw ParseException("Expected an unsigned number, got an empty text.");
  std::uint64_t value = 0;
  for (wchar_t const c : text) {
    if (c < L'0' || c > L'9') throw ParseException("Expected an unsigned number, got '" + Messages::wideToUtf8(text) + "'.");
    value = value * 10 + static_cast<unsigned>(c - L'0');
    if (value > 0xFFFFFFFFull) throw ParseException("The number '" + Messages::wideToUtf8(text) + "' is too large.");
  }
  return static_cast<unsigned int>(value);
}

double Format::parseDouble(std::wstring const& text) {
  // Only ASCII can be part of a number; anything else fails below.
  std::string narrow;
  narrow.reserve(text.size());
  for (wchar_t const c : text) narrow.push_back(c > 0 && c < 128 ? static_cast<char>(c) : '?');
  double value = 0;
  char const* const begin = narrow.data();
  char const* const end = begin + narrow.size();
  // from_chars takes no leading '+'; files don't write one either.
  auto const r = std::from_chars(begin, end, value, std::chars_format::general);
  if (narrow.empty() || r.ec != std::errc() || r.ptr != end)
    throw ParseException("Expected a number, got '" + Messages::wideToUtf8(text) + "'.");
  return value;
}

}  // namespace Orvo
