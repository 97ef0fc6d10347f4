#pragma once
// How a machine is post-processed: the post-processor file and its settings,
// the "post_settings" feature. In memory the settings are flat, under dotted
// names ("a.b.c"); in the file they are a tree, "a" / "b" / "c", whose leaves
// are objects with "value" and "enabled". The coolants have a form of their
// own: an array under "coolant" / "coolants" of objects with "id", "on" and
// "off", standing for the settings coolant.coolants.<id>.on and .off.

#include <json/value.h>

#include <map>
#include <string>

#include "machine/machine/CopyTag.h"
#include "machine/machine/MachineFeatureDefinitionImpl.h"
#include "machine/machine/PostSetting.h"
#include "util/utility/Variant.h"

namespace machine {

class PostSettings : public MachineFeatureDefinitionImpl<PostSettings, MachineFeatureDefinition> {
public:
  using SettingMap = std::map<std::string, PostSetting>;

  /// No path and no settings.
  PostSettings();
  explicit PostSettings(std::string const& featureId);
  /// Reads a "post_settings" body. Without "path" nothing else is read; the
  /// settings tree is read only beside a "settings_version" of 1, and any
  /// other version drops it silently. A malformed tree throws (see
  /// settingsJSONtoParameters).
  PostSettings(std::string const& featureId, Json::Value const& data);
  PostSettings(CopyTag, PostSettings const& other);

  static std::string featureTypeIdStatic();

  /// JSON null without a path, whatever the settings hold; else "path", and
  /// with settings also "settings" and "settings_version" 1. Throws as
  /// settingsParametersToJSON does.
  Json::Value getPersistData() const override;

  std::string const& postPath() const noexcept { return m_postPath; }
  void setPostPath(std::string const& path) { m_postPath = path; }

  void clearSettings() { m_settings.clear(); }
  /// A copy of the setting; for an unknown name an empty value, disabled.
  PostSetting getPostSetting(std::string const& name) const;
  /// Inserts or overwrites.
  void setPostSetting(std::string const& name, Orvo::Variant const& value, bool enabled);
  SettingMap const& settings() const noexcept { return m_settings; }

  /// Enters the settings of a JSON tree under `prefix` (empty at the top).
  /// An object without "value" is a branch; any other non-array value is a
  /// leaf, whose "value" and "enabled" are read, so that a plain number,
  /// string or boolean (or an array outside the coolant list) makes jsoncpp
  /// refuse the member access and throw. An array of integers as a value
  /// reads as bracketed text, "[1, 2]". A leaf without "enabled" is disabled.
  void settingsJSONtoParameters(std::string const& prefix, Json::Value const& value);
  /// The settings as a tree. Always holds "coolant" / "coolants", an array
  /// with the coolants 1, 2, ... (missing numbers as stubs with only "id")
  /// and coolant 0 last (JSON null when it has no setting). A coolant setting
  /// with an empty value is left out. The coolant number is read from the
  /// name with std::stoi, whose exceptions pass to the caller for a name that
  /// holds none.
  Json::Value settingsParametersToJSON() const;

private:
  /// An integer for a text of digits, an array of integers for a bracketed
  /// list of them, else the text. A number of the list that overflows an int
  /// throws std::out_of_range "stoi argument out of range".
  static Json::Value convertCoolant(Orvo::Variant const& value);
  /// As Orvo::JsonUtils::parseVariant, but an array becomes the text of its
  /// elements read as integers, "[1, 2, 3]".
  static Orvo::Variant parseVariant(Json::Value const& value);

  std::string m_postPath;
  SettingMap m_settings;
};

}  // namespace machine
