#pragma once
// The build platform of a machine that builds up material: the "platform"
// feature, two optional groups that are written whole when present.

#include <json/value.h>

#include <optional>
#include <string>

#include "machine/machine/AdditivePlatformDimensions.h"
#include "machine/machine/AdditivePlatformMeshOptions.h"
#include "machine/machine/CopyTag.h"
#include "machine/machine/MachineFeatureDefinitionImpl.h"

namespace machine {

class AdditivePlatformDefinition
    : public MachineFeatureDefinitionImpl<AdditivePlatformDefinition, MachineFeatureDefinition> {
public:
  /// Neither group present.
  AdditivePlatformDefinition();
  /// Reads a "platform" body: a group is present when its key is, even as an
  /// empty object. Throws as the groups' fromJson do.
  AdditivePlatformDefinition(std::string const& featureId, Json::Value const& data);
  AdditivePlatformDefinition(CopyTag, AdditivePlatformDefinition const& other);

  static std::string featureTypeIdStatic();

  /// The present groups with all their keys; JSON null when neither is.
  Json::Value getPersistData() const override;

  std::optional<AdditivePlatformDimensions> dimensions() const { return m_dimensions; }
  void setDimensions(AdditivePlatformDimensions const& value) { m_dimensions = value; }
  std::optional<AdditivePlatformMeshOptions> meshOptions() const { return m_meshOptions; }
  void setMeshOptions(AdditivePlatformMeshOptions const& value) { m_meshOptions = value; }

private:
  std::optional<AdditivePlatformDimensions> m_dimensions;
  std::optional<AdditivePlatformMeshOptions> m_meshOptions;
};

}  // namespace machine
