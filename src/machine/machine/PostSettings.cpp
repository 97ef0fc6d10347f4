#include "machine/machine/PostSettings.h"

#include <json/value.h>

#include <regex>
#include <stdexcept>

#include "util/utility/JsonUtils.h"

namespace machine {

namespace {

// The node at the dotted name, made as it is found missing. A name with a
// NUL byte in it, which only a damaged or hostile file holds, is split at its
// points here: jsoncpp's Path stops at a NUL without moving on and fills the
// memory with empty steps. Every other name goes through Json::Path.
Json::Value& pathNode(Json::Value& root, std::string const& name) {
  if (name.find('\0') == std::string::npos) return Json::Path(name).make(root);
  Json::Value* node = &root;
  std::size_t begin = 0;
  while (begin <= name.size()) {
    std::size_t const point = name.find('.', begin);
    std::size_t const end = point == std::string::npos ? name.size() : point;
    if (end > begin) node = &(*node)[name.substr(begin, end - begin)];
    if (point == std::string::npos) break;
    begin = point + 1;
  }
  return *node;
}

std::string const coolantPrefix = "coolant.coolants";

bool endsWith(std::string const& text, std::string const& tail) {
  return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

}  // namespace

PostSettings::PostSettings() = default;

PostSettings::PostSettings(std::string const& featureId) : MachineFeatureDefinitionImpl(featureId) {}

PostSettings::PostSettings(std::string const& featureId, Json::Value const& data)
    : MachineFeatureDefinitionImpl(featureId) {
  if (!data.isMember("path")) return;
  m_postPath = Orvo::JsonUtils::parseStr(data["path"]);
  if (!data.isMember("settings") || !data.isMember("settings_version")) return;
  // Only version 1 of the tree is known; another version is dropped without
  // an error, and so is a version that isn't a number.
  Json::Value const& version = data["settings_version"];
  if (!version.isIntegral() || version.isBool() || version.asLargestInt() != 1) return;
  settingsJSONtoParameters(std::string(), data["settings"]);
}

PostSettings::PostSettings(CopyTag, PostSettings const& other) : PostSettings(other) {}

std::string PostSettings::featureTypeIdStatic() { return "post_settings"; }

PostSetting PostSettings::getPostSetting(std::string const& name) const {
  auto const found = m_settings.find(name);
  return found == m_settings.end() ? PostSetting{} : found->second;
}

void PostSettings::setPostSetting(std::string const& name, Orvo::Variant const& value, bool enabled) {
  m_settings[name] = PostSetting{value, enabled};
}

void PostSettings::settingsJSONtoParameters(std::string const& prefix, Json::Value const& value) {
  if (value.isObject() && !value.isMember("value")) {
    for (auto member = value.begin(); member != value.end(); ++member) {
      std::string const name = prefix.empty() ? member.name() : prefix + "." + member.name();
      settingsJSONtoParameters(name, *member);
    }
    return;
  }
  if (value.isArray() && prefix == coolantPrefix) {
    for (Json::Value const& coolant : value) {
      std::string const base = prefix + "." + coolant.get("id", "").asString();
      if (coolant.isMember("on")) settingsJSONtoParameters(base + ".on", coolant["on"]);
      if (coolant.isMember("off")) settingsJSONtoParameters(base + ".off", coolant["off"]);
    }
    return;
  }
  // A leaf. On anything but an object or null, jsoncpp refuses the member
  // access and throws, which fails the read.
  setPostSetting(prefix, parseVariant(value["value"]), value["enabled"].asBool());
}

Orvo::Variant PostSettings::parseVariant(Json::Value const& value) {
  if (!value.isArray()) return Orvo::JsonUtils::parseVariant(value);
  std::string text = "[";
  for (Json::ArrayIndex i = 0; i < value.size(); ++i) {
    if (i > 0) text += ", ";
    text += std::to_string(value[i].asInt());
  }
  return Orvo::Variant(text + "]");
}

Json::Value PostSettings::convertCoolant(Orvo::Variant const& value) {
  std::string const text = value.getAsUtf8();
  try {
    std::size_t used = 0;
    int const number = std::stoi(text, &used);
    if (used == text.size()) return Json::Value(number);
  } catch (...) {
    // Not an integer: try the list, then keep the text.
  }
  static std::regex const list(R"(\[\s*(\d+)\s*(,\s*\d+\s*)*\])", std::regex::ECMAScript);
  if (std::regex_match(text, list)) {
    static std::regex const digits(R"(\d+)", std::regex::ECMAScript);
    Json::Value numbers(Json::arrayValue);
    for (auto match = std::sregex_iterator(text.begin(), text.end(), digits); match != std::sregex_iterator();
         ++match) {
      try {
        numbers.append(std::stoi(match->str()));
      } catch (std::out_of_range const&) {
        // The text users know for an overlong number in a coolant list.
        throw std::out_of_range("stoi argument out of range");
      }
    }
    return numbers;
  }
  return Json::Value(text);
}

Json::Value PostSettings::settingsParametersToJSON() const {
  Json::Value root;
  root["coolant"]["coolants"] = Json::Value(Json::arrayValue);
  std::map<int, Json::Value> coolants;
  for (auto const& [name, setting] : m_settings) {
    if (name.compare(0, coolantPrefix.size(), coolantPrefix) == 0) {
      // The number stands after the prefix and its point, up to the next
      // point; a name without one lets std::stoi or substr throw.
      std::string const rest = name.substr(coolantPrefix.size() + 1);
      int const number = std::stoi(rest.substr(0, rest.find('.')));
      if (setting.value.getAsMessage().empty()) continue;
      Json::Value& coolant = coolants[number];
      coolant["id"] = number;
      Json::Value& side = coolant[endsWith(name, "on") ? "on" : "off"];
      side["value"] = convertCoolant(setting.value);
      side["enabled"] = setting.enabled;
    } else {
      Json::Value node;
      node["enabled"] = setting.enabled;
      node["value"] = Orvo::JsonUtils::variantToJson(setting.value);
      pathNode(root, name) = node;
    }
  }
  Json::Value& list = root["coolant"]["coolants"];
  // Coolants from 1 up; a gap is filled with a stub, which grows the map, so
  // the bound is read anew each round. Coolant 0 comes last, as hosts expect.
  // The loop also stops past the highest number: with a negative number in
  // the map beside 0 (or two negative ones) the size would stay ahead of `i`
  // for ever, and in every other case that bound is never the one that ends
  // the loop.
  int const highest = coolants.empty() ? 0 : coolants.rbegin()->first;
  for (int i = 1; static_cast<std::size_t>(i) < coolants.size() && i <= highest; ++i) {
    Json::Value& coolant = coolants[i];
    if (coolant.isNull()) coolant["id"] = i;
    list.append(coolant);
  }
  list.append(coolants[0]);
  return root;
}

Json::Value PostSettings::getPersistData() const {
  Json::Value data;
  if (m_postPath.empty()) return data;
  data["path"] = m_postPath;
  if (m_settings.empty()) return data;
  data["settings"] = settingsParametersToJSON();
  data["settings_version"] = 1;
  return data;
}

}  // namespace machine
