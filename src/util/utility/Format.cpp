#include "util/utility/Format.h"

#include <charconv>
#include <cmath>
#include <cstdint>

#include "util/utility/Messages.h"
#include "util/utility/ParseException.h"
#include "util/utility/Variant.h"

namespace Orvo {

std::wstring Format::getAsPosixWString(double value) { return Messages::utf8ToWide(Variant::formatDouble(value)); }

namespace {

std::string quoted(std::wstring const& text) { return Messages::wideToUtf8(text); }
std::string quoted(std::string_view utf8) { return std::string(utf8); }

// One reading of each for wide and UTF-8 text. Every character of a number
// is ASCII, and UTF-8 codes nothing else with bytes below 0x80, so both read
// the same texts the same way.
template <typename Text>
unsigned int readUnsigned(Text const& text) {
  if (text.empty()) throw ParseException("Expected an unsigned number, got an empty text.");
  std::uint64_t value = 0;
  for (auto const c : text) {
    if (c < '0' || c > '9') throw ParseException("Expected an unsigned number, got '" + quoted(text) + "'.");
    value = value * 10 + static_cast<unsigned>(c - '0');
    if (value > 0xFFFFFFFFull) throw ParseException("The number '" + quoted(text) + "' is too large.");
  }
  return static_cast<unsigned int>(value);
}

template <typename Text>
double readDouble(Text const& text) {
  // Only ASCII can be part of a number; anything else fails below. Short
  // texts, which is all of them in practice, need no allocation.
  char buffer[64];
  std::string longText;
  char* narrow = buffer;
  if (text.size() > sizeof buffer) {
    longText.resize(text.size());
    narrow = longText.data();
  }
  std::size_t size = 0;
  for (auto const c : text) narrow[size++] = c > 0 && c < 128 ? static_cast<char>(c) : '?';
  double value = 0;
  char const* const begin = narrow;
  char const* const end = begin + size;
  // from_chars takes no leading '+'; files don't write one either.
  auto const r = std::from_chars(begin, end, value, std::chars_format::general);
  if (size == 0 || r.ec != std::errc() || r.ptr != end)
    throw ParseException("Expected a number, got '" + quoted(text) + "'.");
  return value;
}

}  // namespace

unsigned int Format::parseUnsigned(std::wstring const& text) { return readUnsigned(text); }
unsigned int Format::parseUnsigned(std::string_view utf8) { return readUnsigned(utf8); }
double Format::parseDouble(std::wstring const& text) { return readDouble(text); }
double Format::parseDouble(std::string_view utf8) { return readDouble(utf8); }

}  // namespace Orvo
