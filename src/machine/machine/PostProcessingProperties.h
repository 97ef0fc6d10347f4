#pragma once
// What a host needs to post-process for a machine: the post-processor file,
// a flat map of named property values, and an output folder. The "post"
// feature.

#include <json/value.h>

#include <map>
#include <string>

#include "machine/machine/CopyTag.h"
#include "machine/machine/MachineFeatureDefinitionImpl.h"
#include "util/utility/VariableSet.h"
#include "util/utility/Variant.h"

namespace machine {

class PostProcessingProperties
    : public MachineFeatureDefinitionImpl<PostProcessingProperties, MachineFeatureDefinition> {
public:
  using PropertyMap = std::map<std::string, Orvo::Variant>;

  /// No path, no folder, no properties.
  PostProcessingProperties();
  explicit PostProcessingProperties(std::string const& featureId);
  /// Reads a "post" body. "properties" is read only beside "path", each value
  /// a JSON scalar; "output_folder" is read on its own. A "properties" that
  /// isn't an object is ignored. Throws std::runtime_error on a path or
  /// folder that isn't a string and on a property that isn't a scalar.
  PostProcessingProperties(std::string const& featureId, Json::Value const& data);
  PostProcessingProperties(CopyTag, PostProcessingProperties const& other);

  static std::string featureTypeIdStatic();

  /// "path" and "output_folder" when not empty, "properties" only beside the
  /// path and when there are any; JSON null when nothing is written.
  Json::Value getPersistData() const override;

  std::string const& postPath() const noexcept { return m_postPath; }
  void setPostPath(std::string const& path) { m_postPath = path; }
  std::string const& outputFolder() const noexcept { return m_outputFolder; }
  void setOutputFolder(std::string const& folder) { m_outputFolder = folder; }

  /// A copy of the value; empty for an unknown name.
  Orvo::Variant propertyValue(std::string const& name) const;
  /// Inserts or overwrites.
  void setProperty(std::string const& name, Orvo::Variant const& value);
  void clearProperties() { m_properties.clear(); }
  PropertyMap const& properties() const noexcept { return m_properties; }

  /// The properties as named values under their wide names, for a script.
  Orvo::VariableSet asVariableSet() const;

private:
  std::string m_postPath;
  std::string m_outputFolder;
  PropertyMap m_properties;
};

}  // namespace machine
