#pragma once
// The whole description of a machine as a host stores it: general data and
// a list of named features, with the default feature of each type.

#include <json/value.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "machine/machine/CopyTag.h"
#include "machine/machine/MachineFeatureDefinition.h"
#include "machine/machine/MachineGeneralDefinition.h"
#include "util/utility/Subrange.h"

namespace machine {

class MachineDefinition {
public:
  using FeatureVector = std::vector<std::unique_ptr<MachineFeatureDefinition>>;
  using DefaultMap = std::map<std::string, std::string>;
  using ConstFeatureRange =
      Orvo::Subrange<Orvo::DereferenceIterator<FeatureVector::const_iterator, MachineFeatureDefinition const>>;

  MachineDefinition();
  MachineDefinition(MachineGeneralDefinition const& general, FeatureVector features, DefaultMap defaults);
  /// A deep copy: each feature is cloned and put in.
  MachineDefinition(CopyTag, MachineDefinition const& other);
  MachineDefinition(MachineDefinition const&) = delete;
  MachineDefinition& operator=(MachineDefinition const&) = delete;
  ~MachineDefinition();

  std::string const& vendor() const noexcept { return m_general.vendor(); }
  std::string const& model() const noexcept { return m_general.model(); }
  std::string const& description() const noexcept { return m_general.description(); }
  Orvo::EnumBitset<MachineCapability> const& capabilities() const noexcept { return m_general.capabilities(); }
  bool supportsCapability(MachineCapability capability) const { return m_general.supportsCapability(capability); }
  void setVendor(std::string const& vendor) { m_general.setVendor(vendor); }
  void setModel(std::string const& model) { m_general.setModel(model); }
  void setDescription(std::string const& description) { m_general.setDescription(description); }
  void setCapability(MachineCapability capability, bool supported) { m_general.setCapability(capability, supported); }
  MachineGeneralDefinition const& generalDefinition() const noexcept { return m_general; }

  /// The features in their stored order.
  ConstFeatureRange getFeatures() const { return Orvo::makeDereferencedRange<MachineFeatureDefinition const>(m_features); }
  /// The recorded defaults, from feature type to feature id.
  DefaultMap const& defaults() const noexcept { return m_defaults; }

  /// The first feature with that type and id, or null.
  MachineFeatureDefinition const* getFeature(std::string const& typeId, std::string const& featureId) const;
  /// The feature the defaults name for the type; without an entry the first
  /// feature of the type. A named default that doesn't exist gives null.
  MachineFeatureDefinition const* getDefaultFeature(std::string const& typeId) const;
  /// Replaces the feature of equal type and id in place and returns it, or
  /// appends and returns null.
  std::unique_ptr<MachineFeatureDefinition> putFeature(std::unique_ptr<MachineFeatureDefinition> feature);
  /// Destroys the feature (found by identity) and drops its default entry.
  /// A pointer not in the list does nothing.
  void removeFeature(MachineFeatureDefinition const* feature);
  /// Records a default only when the type has none yet.
  void setDefaultFeature(std::string const& typeId, std::string const& featureId);

  /// The whole document: "general", "defaults" when any, and each feature
  /// under its type and id.
  Json::Value getPersistData() const;

private:
  MachineGeneralDefinition m_general;
  FeatureVector m_features;
  DefaultMap m_defaults;
};

}  // namespace machine
