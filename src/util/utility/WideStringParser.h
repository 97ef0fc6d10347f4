#pragma once
// Reads values one after the other from a wide text, for the unit-bearing
// strings of scripts and machine configuration files ("10mm", "3.5 deg").
//
// A space is one of the ASCII white-space characters (space, tab, line feed,
// vertical tab, form feed, carriage return), whatever the process locale.
// Numbers are decimal: an optional sign, digits with an optional point
// (".5" and "5." both count), and an optional exponent, which is taken only
// when digits follow its "e" or "E", so that "1em" reads 1 and leaves "em".
// They are read independently of the process locale; infinities, NaN,
// hexadecimal forms and numbers beyond the range of a double are not numbers.

#include <cstddef>
#include <string>
#include <string_view>

namespace Orvo {

class WideStringParser {
public:
  explicit WideStringParser(std::wstring text);

  /// True when nothing is left.
  bool isAtEnd() const noexcept { return m_position >= m_text.size(); }
  /// True when text is left and it starts with a space.
  bool isAtSpace() const noexcept { return !isAtEnd() && isSpace(m_text[m_position]); }

  /// Moves past any spaces.
  void skipSpaces() noexcept;
  /// Reads a number at the present position into `value` and moves past it.
  /// Without a number there, returns false and changes neither `value` nor
  /// the position.
  bool readNumber(double& value);
  /// Reads up to the next space or the end (maybe nothing) and moves past it.
  std::wstring readWord();

  /// How many characters have been read.
  std::size_t getPosition() const noexcept { return m_position; }
  /// What is left to read.
  std::wstring getRemainder() const { return m_text.substr(m_position); }

  static bool isSpace(wchar_t c) noexcept {
    return c == L' ' || c == L'\t' || c == L'\n' || c == L'\v' || c == L'\f' || c == L'\r';
  }
  static bool isSpace(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
  }
  static bool isDigit(wchar_t c) noexcept { return c >= L'0' && c <= L'9'; }
  static bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

  /// Reads a number of `text` at `position`, by the same rules and with the
  /// same result as `readNumber` on the same characters, and moves
  /// `position` past it. For readers that hold narrow text (a document's
  /// UTF-8) and should not widen it first; bytes above ASCII are never part
  /// of a number.
  static bool readNumber(std::string_view text, std::size_t& position, double& value) {
    return readShortDecimal(text.data(), text.size(), position, value) || readAnyNumber(text, position, value);
  }
  /// The same on wide text.
  static bool readNumber(std::wstring_view text, std::size_t& position, double& value) {
    return readShortDecimal(text.data(), text.size(), position, value) || readAnyNumber(text, position, value);
  }

private:
  // 10^0 to 10^15, every one exactly a double.
  static constexpr double kExactPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

  // Most numbers in machine files are short decimals such as "400" or
  // "0.001", read here inline. With at most 15 digits and no exponent, the
  // integer of the digits and the power of ten are both exact doubles, so
  // their quotient is the correctly rounded value, the one from_chars
  // gives. Anything else (no digits, more digits, an "e" after them) is
  // left to readAnyNumber: false here means only "not decided".
  template <typename Char>
  static bool readShortDecimal(Char const* text, std::size_t size, std::size_t& position, double& value) noexcept {
    std::size_t end = position;
    bool negative = false;
    if (end < size && (text[end] == Char('+') || text[end] == Char('-'))) negative = text[end++] == Char('-');
    std::size_t digits = 0;
    std::size_t fractionDigits = 0;
    unsigned long long integer = 0;
    while (end < size && isDigit(text[end])) {
      integer = integer * 10 + static_cast<unsigned long long>(text[end] - Char('0'));
      ++end, ++digits;
    }
    if (end < size && text[end] == Char('.')) {
      ++end;
      while (end < size && isDigit(text[end])) {
        integer = integer * 10 + static_cast<unsigned long long>(text[end] - Char('0'));
        ++end, ++digits, ++fractionDigits;
      }
    }
    // Past 15 digits the integer may have wrapped; it is not used then.
    if (digits == 0 || digits > 15) return false;
    if (end < size && (text[end] == Char('e') || text[end] == Char('E'))) return false;
    // Whole numbers skip the division, which is slow to finish and exact by 1.
    double const parsed = fractionDigits == 0 ? static_cast<double>(integer)
                                              : static_cast<double>(integer) / kExactPowersOfTen[fractionDigits];
    value = negative ? -parsed : parsed;
    position = end;
    return true;
  }

  // Every number, by the rules above: the general reading.
  static bool readAnyNumber(std::string_view text, std::size_t& position, double& value);
  static bool readAnyNumber(std::wstring_view text, std::size_t& position, double& value);

  std::wstring m_text;
  std::size_t m_position = 0;
};

}  // namespace Orvo
