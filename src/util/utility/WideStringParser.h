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

  /// Reads a number of `text` at `position`, by the same rules and with the
  /// same result as `readNumber` on the same characters, and moves
  /// `position` past it. For readers that hold narrow text (a document's
  /// UTF-8) and should not widen it first; bytes above ASCII are never part
  /// of a number.
  static bool readNumber(std::string_view text, std::size_t& position, double& value);
  /// The same on wide text.
  static bool readNumber(std::wstring_view text, std::size_t& position, double& value);

private:
  std::wstring m_text;
  std::size_t m_position = 0;
};

}  // namespace Orvo
