#include "machine/machine/AnglePreference.h"

#include <stdexcept>

#include "nc/Persist.h"

namespace machine {

namespace {
// The message of a failed key lookup that the files' readers and their
// callers have always seen, kept word for word rather than the standard
// library's own text, so callers that show or match it keep working.
constexpr char const* kInvalidKey = "invalid map<K, T> key";
}  // namespace

persist::PersistClass const AnglePreference::iceStaticClass{"AnglePreference", 1};
persist::PersistEnum const AnglePreference::iceValueEnum{"AnglePreferenceValue", -1, 1};

void AnglePreference::iceListMembers(persist::Persist const& persist) {
  persist.beginClass(iceStaticClass);
  persist::serializeEnum(persist, "m_value", m_value, iceValueEnum);
  persist.endClass();
}

AnglePreference::AnglePreference(std::string const& text) {
  auto const& table = textToValue();
  auto const it = table.find(text);
  if (it == table.end()) throw std::out_of_range(kInvalidKey);
  m_value = it->second;
}

std::string const& AnglePreference::toString() const {
  auto const& table = valueToText();
  auto const it = table.find(m_value);
  if (it == table.end()) throw std::out_of_range(kInvalidKey);
  return it->second;
}

std::wstring AnglePreference::toWString() const {
  // The words are plain ASCII, so widening each byte is the UTF-8 decoding.
  std::string const& text = toString();
  return std::wstring(text.begin(), text.end());
}

std::map<AnglePreferenceValue, std::string> const& AnglePreference::valueToText() {
  static std::map<AnglePreferenceValue, std::string> const table{
      {AnglePreferenceValue::NEGATIVE, "negative"},
      {AnglePreferenceValue::NO_PREFERENCE, "no preference"},
      {AnglePreferenceValue::POSITIVE, "positive"},
  };
  return table;
}

std::map<std::string, AnglePreferenceValue> const& AnglePreference::textToValue() {
  static std::map<std::string, AnglePreferenceValue> const table = [] {
    std::map<std::string, AnglePreferenceValue> inverse;
    for (auto const& entry : valueToText()) inverse.emplace(entry.second, entry.first);
    return inverse;
  }();
  return table;
}

}  // namespace machine
