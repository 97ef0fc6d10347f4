#include "machine/machine/ResetAxisPreference.h"

#include <stdexcept>

#include "nc/Persist.h"

namespace machine {

namespace {
// The message of a failed key lookup that the files' readers and their
// callers have always seen, kept word for word rather than the standard
// library's own text, so callers that show or match it keep working.
constexpr char const* kInvalidKey = "invalid map<K, T> key";
}  // namespace

persist::PersistClass const ResetAxisPreference::iceStaticClass{"ResetAxisPreference", 1};
persist::PersistEnum const ResetAxisPreference::iceValueEnum{"ResetAxisValue", 0, 3};

void ResetAxisPreference::iceListMembers(persist::Persist const& persist) {
  persist.beginClass(iceStaticClass);
  persist::serializeEnum(persist, "m_value", m_value, iceValueEnum);
  persist.endClass();
}

ResetAxisPreference::ResetAxisPreference(std::string const& text) {
  auto const& table = textToValue();
  auto const it = table.find(text);
  if (it == table.end()) throw std::out_of_range(kInvalidKey);
  m_value = it->second;
}

std::string const& ResetAxisPreference::toString() const {
  auto const& table = valueToText();
  auto const it = table.find(m_value);
  if (it == table.end()) throw std::out_of_range(kInvalidKey);
  return it->second;
}

std::wstring ResetAxisPreference::toWString() const {
  // The words are plain ASCII, so widening each byte is the UTF-8 decoding.
  std::string const& text = toString();
  return std::wstring(text.begin(), text.end());
}

std::map<ResetAxisValue, std::string> const& ResetAxisPreference::valueToText() {
  static std::map<ResetAxisValue, std::string> const table{
      {ResetAxisValue::NEVER, "never"},
      {ResetAxisValue::BEFORE_EVERY_OPERATION, "before every operation"},
      {ResetAxisValue::ON_REWIND, "on rewind"},
      {ResetAxisValue::BEFORE_AND_ON_REWIND, "before and on rewind"},
  };
  return table;
}

std::map<std::string, ResetAxisValue> const& ResetAxisPreference::textToValue() {
  static std::map<std::string, ResetAxisValue> const table = [] {
    std::map<std::string, ResetAxisValue> inverse;
    for (auto const& entry : valueToText()) inverse.emplace(entry.second, entry.first);
    return inverse;
  }();
  return table;
}

}  // namespace machine
