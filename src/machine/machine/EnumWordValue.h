#pragma once
// A value of a small enumeration that the controller settings write as a
// word ("no preference", "on rewind"): the value, its word both ways, and
// equality. `Derived` names itself and inherits the constructors; the
// table of words is the specialisation of enumWords<Enum>().

#include <initializer_list>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>

namespace machine {

/// The words of the enumerators of `Enum`, and the enumerators of the words.
template <typename Enum>
class EnumWords {
public:
  EnumWords(std::initializer_list<std::pair<Enum const, std::string>> words) : m_valueToText(words) {
    for (auto const& entry : m_valueToText) m_textToValue.emplace(entry.second, entry.first);
  }
  /// An unknown word throws std::out_of_range with "invalid map<K, T> key".
  Enum value(std::string const& word) const {
    auto const it = m_textToValue.find(word);
    if (it == m_textToValue.end()) throwInvalidKey();
    return it->second;
  }
  /// A value outside the table throws as an unknown word does.
  std::string const& word(Enum value) const {
    auto const it = m_valueToText.find(value);
    if (it == m_valueToText.end()) throwInvalidKey();
    return it->second;
  }

private:
  std::map<Enum, std::string> m_valueToText;
  std::map<std::string, Enum> m_textToValue;

  // The message of a failed key lookup that the files' readers and their
  // callers have always seen, kept word for word rather than the standard
  // library's own text, so callers that show or match it keep working.
  [[noreturn]] static void throwInvalidKey() { throw std::out_of_range("invalid map<K, T> key"); }
};

/// The table of `Enum`'s words, built on first use and kept for the life of
/// the process: one explicit specialisation for each enumeration, defined
/// beside its class.
template <typename Enum>
EnumWords<Enum> const& enumWords();

template <typename Derived, typename Enum>
class EnumWordValue {
public:
  Enum value() const noexcept { return m_value; }
  /// The word of the value. A value outside the enumeration throws
  /// std::out_of_range as an unknown word does.
  std::string const& toString() const { return enumWords<Enum>().word(m_value); }
  std::wstring toWString() const {
    // The words are plain ASCII, so widening each byte is the UTF-8 decoding.
    std::string const& text = toString();
    return std::wstring(text.begin(), text.end());
  }

  friend bool operator==(Derived const& a, Derived const& b) noexcept { return a.m_value == b.m_value; }
  friend bool operator!=(Derived const& a, Derived const& b) noexcept { return !(a == b); }

  // Zero rather than indeterminate, so that a value read before persistence
  // fills it in is still defined; each enumeration's zero is its default.
  EnumWordValue() noexcept = default;
  EnumWordValue(Enum value) noexcept : m_value(value) {}
  /// Looks the word up; an unknown word throws std::out_of_range with
  /// "invalid map<K, T> key".
  explicit EnumWordValue(std::string const& text) : m_value(enumWords<Enum>().value(text)) {}

protected:
  // Only as the base of `Derived`.
  ~EnumWordValue() = default;

private:
  Enum m_value = Enum{};
};

}  // namespace machine
