#include "machine/machine/UnknownMachineFeatureDefinition.h"

#include <utility>

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\UnknownMachineFeatureDefinition";
}

namespace machine {

UnknownMachineFeatureDefinition::UnknownMachineFeatureDefinition(std::string const& featureTypeId,
                                                                 std::string const& featureId,
                                                                 Json::Value const& data)
    : MachineFeatureDefinitionImpl(featureId), m_featureTypeId(featureTypeId), m_data(data) {}

UnknownMachineFeatureDefinition::UnknownMachineFeatureDefinition(CopyTag, UnknownMachineFeatureDefinition const& other)
    : UnknownMachineFeatureDefinition(other) {}

UnknownMachineFeatureDefinition::UnknownMachineFeatureDefinition(UnknownMachineFeatureDefinition const& other) =
    default;

UnknownMachineFeatureDefinition::UnknownMachineFeatureDefinition(UnknownMachineFeatureDefinition&& other)
    : MachineFeatureDefinitionImpl(other),
      m_featureTypeId(std::move(other.m_featureTypeId)),
      m_data(std::move(other.m_data)) {}

UnknownMachineFeatureDefinition& UnknownMachineFeatureDefinition::operator=(
    UnknownMachineFeatureDefinition const& other) = default;

UnknownMachineFeatureDefinition& UnknownMachineFeatureDefinition::operator=(
    UnknownMachineFeatureDefinition&& other) {
  MachineFeatureDefinitionImpl::operator=(other);
  m_featureTypeId = std::move(other.m_featureTypeId);
  m_data = std::move(other.m_data);
  return *this;
}

UnknownMachineFeatureDefinition::~UnknownMachineFeatureDefinition() = default;

std::string UnknownMachineFeatureDefinition::featureTypeIdStatic() {
  // The recorded text is the sentence itself, not a stringified condition.
  ORVO_CHECK_IMPL("Unknown Feature should not use Static Feature ID", false);
  return "unknown";
}

}  // namespace machine
