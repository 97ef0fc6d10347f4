#pragma once
// A small tagged value: empty, boolean, integer, double or text. Messages
// and script results carry their arguments in it.
//
// How a value prints (getAsMessage, getSubstitution):
// - empty: nothing; a boolean: "true" or "false"; an integer: in decimal;
// - a double: the shortest decimal form that reads back to the same double
//   ("0.1", "1", "-2.5", "1e-20", "1.2345678901234567e+300"), independent of
//   the process locale; NaN prints "nan" and infinities "inf" and "-inf";
// - text: as it is.

#include <cstdint>
#include <string>
#include <vector>

namespace Orvo {

class Variant {
public:
  enum class Type { EMPTY, BOOL, INT, DOUBLE, STRING };

  Variant() noexcept = default;
  Variant(bool value) noexcept : m_type(Type::BOOL), m_int(value ? 1 : 0) {}
  Variant(int value) noexcept : m_type(Type::INT), m_int(value) {}
  Variant(unsigned int value) noexcept : m_type(Type::INT), m_int(value) {}
  Variant(long value) noexcept : m_type(Type::INT), m_int(value) {}
  Variant(long long value) noexcept : m_type(Type::INT), m_int(value) {}
  Variant(double value) noexcept : m_type(Type::DOUBLE), m_double(value) {}
  Variant(std::wstring value) : m_type(Type::STRING), m_string(std::move(value)) {}
  Variant(wchar_t const* value) : m_type(Type::STRING), m_string(value ? value : L"") {}
  /// Text given as UTF-8.
  Variant(std::string const& utf8);
  Variant(char const* utf8);

  Type type() const noexcept { return m_type; }
  bool isEmpty() const noexcept { return m_type == Type::EMPTY; }

  bool asBool() const noexcept;
  std::int64_t asInt() const noexcept;
  double asDouble() const noexcept;
  /// The text of a string value; other kinds print as getAsMessage says.
  std::wstring asString() const { return getAsMessage(); }

  /// The value as text for a message.
  std::wstring getAsMessage() const;
  /// getAsMessage in UTF-8.
  std::string getAsUtf8() const;

  /// Fills %1, %2, ... %9 in `text` with the arguments' messages. A
  /// placeholder without an argument and a lone % stay as they are; "%%"
  /// gives "%".
  static std::wstring getSubstitution(std::wstring const& text, std::vector<Variant> const& arguments);

  /// The shortest round-trip form of a double, as described above.
  static std::string formatDouble(double value);

  friend bool operator==(Variant const& a, Variant const& b) noexcept;
  friend bool operator!=(Variant const& a, Variant const& b) noexcept { return !(a == b); }

private:
  Type m_type = Type::EMPTY;
  std::int64_t m_int = 0;
  double m_double = 0.0;
  std::wstring m_string;
};

}  // namespace Orvo
