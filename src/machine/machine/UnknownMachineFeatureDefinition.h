#pragma once
// A feature of a type this library doesn't know: its body is kept unread and
// written back unchanged.

#include <json/value.h>

#include <string>

#include "machine/machine/MachineFeatureDefinitionImpl.h"

namespace machine {

class UnknownMachineFeatureDefinition
    : public MachineFeatureDefinitionImpl<UnknownMachineFeatureDefinition, MachineFeatureDefinition> {
public:
  UnknownMachineFeatureDefinition(std::string const& featureTypeId, std::string const& featureId,
                                  Json::Value const& data);
  UnknownMachineFeatureDefinition(CopyTag, UnknownMachineFeatureDefinition const& other);
  UnknownMachineFeatureDefinition(UnknownMachineFeatureDefinition const& other);
  UnknownMachineFeatureDefinition(UnknownMachineFeatureDefinition&& other);
  UnknownMachineFeatureDefinition& operator=(UnknownMachineFeatureDefinition const& other);
  UnknownMachineFeatureDefinition& operator=(UnknownMachineFeatureDefinition&& other);
  ~UnknownMachineFeatureDefinition() override;

  /// Only there for the template: an unknown feature has no fixed type.
  /// Breaks a test-mode assertion and answers "unknown".
  static std::string featureTypeIdStatic();

  /// The type it was read under.
  std::string featureTypeId() const override { return m_featureTypeId; }
  /// A copy of the body as it was read.
  Json::Value getPersistData() const override { return m_data; }

private:
  std::string m_featureTypeId;
  Json::Value m_data;
};

}  // namespace machine
