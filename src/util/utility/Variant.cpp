#include "util/utility/Variant.h"

#include <charconv>
#include <cmath>

#include "util/utility/Messages.h"

namespace Orvo {

Variant::Variant(std::string const& utf8) : m_type(Type::STRING), m_string(Messages::utf8ToWide(utf8)) {}
Variant::Variant(char const* utf8) : m_type(Type::STRING), m_string(Messages::utf8ToWide(utf8 ? utf8 : "")) {}

bool Variant::asBool() const noexcept {
  switch (m_type) {
    case Type::BOOL:
    case Type::INT: return m_int != 0;
    case Type::DOUBLE: return m_double != 0.0;
    case Type::STRING: return m_string == L"true" || m_string == L"1";
    case Type::EMPTY: break;
  }
  return false;
}

std::int64_t Variant::asInt() const noexcept {
  switch (m_type) {
    case Type::BOOL:
    case Type::INT: return m_int;
    case Type::DOUBLE:
      if (!std::isfinite(m_double) || std::fabs(m_double) >= 9.2e18) return 0;
      return static_cast<std::int64_t>(m_double);
    case Type::STRING: {
      std::string const s = Messages::wideToUtf8(m_string);
      std::int64_t v = 0;
      auto const r = std::from_chars(s.data(), s.data() + s.size(), v);
      return r.ec == std::errc() ? v : 0;
    }
    case Type::EMPTY: break;
  }
  return 0;
}

double Variant::asDouble() const noexcept {
  switch (m_type) {
    case Type::BOOL:
    case Type::INT: return static_cast<double>(m_int);
    case Type::DOUBLE: return m_double;
    case Type::STRING: {
      std::string const s = Messages::wideToUtf8(m_string);
      double v = 0.0;
      auto const r = std::from_chars(s.data(), s.data() + s.size(), v);
      return r.ec == std::errc() ? v : 0.0;
    }
    case Type::EMPTY: break;
  }
  return 0.0;
}

std::string Variant::formatDouble(double value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  char buffer[64];
  auto const r = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, r.ptr);
}

std::wstring Variant::getAsMessage() const {
  switch (m_type) {
    case Type::EMPTY: return std::wstring();
    case Type::BOOL: return m_int ? L"true" : L"false";
    case Type::INT: return std::to_wstring(m_int);
    case Type::DOUBLE: return Messages::utf8ToWide(formatDouble(m_double));
    case Type::STRING: return m_string;
  }
  return std::wstring();
}

std::string Variant::getAsUtf8() const { return Messages::wideToUtf8(getAsMessage()); }

std::wstring Variant::getSubstitution(std::wstring const& text, std::vector<Variant> const& arguments) {
  std::wstring out;
  out.reserve(text.size() + 16 * arguments.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    wchar_t const c = text[i];
    if (c == L'%' && i + 1 < text.size()) {
      wchar_t const next = text[i + 1];
      if (next == L'%') {
        out.push_back(L'%');
        ++i;
        continue;
      }
      if (next >= L'1' && next <= L'9') {
        std::size_t const index = static_cast<std::size_t>(next - L'1');
        if (index < arguments.size()) {
          out += arguments[index].getAsMessage();
          ++i;
          continue;
        }
      }
    }
    out.push_back(c);
  }
  return out;
}

bool operator==(Variant const& a, Variant const& b) noexcept {
  if (a.m_type != b.m_type) return false;
  switch (a.m_type) {
    case Variant::Type::EMPTY: return true;
    case Variant::Type::BOOL:
    case Variant::Type::INT: return a.m_int == b.m_int;
    case Variant::Type::DOUBLE: return a.m_double == b.m_double;
    case Variant::Type::STRING: return a.m_string == b.m_string;
  }
  return false;
}

}  // namespace Orvo
