#include "machine/machine/MachineFeatureDefinition.h"

#include "util/utility/JsonUtils.h"

namespace machine {

std::string const MachineFeatureDefinition::defaultId = "default";

MachineFeatureDefinition::MachineFeatureDefinition() : m_featureId(defaultId) {}

MachineFeatureDefinition::MachineFeatureDefinition(std::string const& featureId) : m_featureId(featureId) {}

MachineFeatureDefinition::MachineFeatureDefinition(MachineFeatureDefinition const& other) = default;

MachineFeatureDefinition& MachineFeatureDefinition::operator=(MachineFeatureDefinition const& other) = default;

MachineFeatureDefinition::~MachineFeatureDefinition() = default;

bool MachineFeatureDefinition::equals(MachineFeatureDefinition const& other, double tolerance) const {
  Json::Value const theirs = other.getPersistData();
  Json::Value const mine = getPersistData();
  return Orvo::JsonUtils::areEqual(mine, theirs, tolerance);
}

}  // namespace machine
