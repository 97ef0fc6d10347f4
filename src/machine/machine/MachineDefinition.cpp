#include "machine/machine/MachineDefinition.h"

#include <algorithm>
#include <utility>

namespace machine {

MachineDefinition::MachineDefinition() = default;

MachineDefinition::MachineDefinition(MachineGeneralDefinition const& general, FeatureVector features,
                                     DefaultMap defaults)
    : m_general(general), m_features(std::move(features)), m_defaults(std::move(defaults)) {}

MachineDefinition::MachineDefinition(CopyTag, MachineDefinition const& other)
    : m_general(other.m_general), m_defaults(other.m_defaults) {
  for (auto const& feature : other.m_features) putFeature(feature->clone());
}

MachineDefinition::~MachineDefinition() = default;

MachineFeatureDefinition const* MachineDefinition::getFeature(std::string const& typeId,
                                                              std::string const& featureId) const {
  for (auto const& feature : m_features)
    if (feature->featureTypeId() == typeId && feature->featureId() == featureId) return feature.get();
  return nullptr;
}

MachineFeatureDefinition const* MachineDefinition::getDefaultFeature(std::string const& typeId) const {
  auto const entry = m_defaults.find(typeId);
  bool const named = entry != m_defaults.end();
  for (auto const& feature : m_features) {
    if (feature->featureTypeId() != typeId) continue;
    if (!named || feature->featureId() == entry->second) return feature.get();
  }
  return nullptr;
}

std::unique_ptr<MachineFeatureDefinition> MachineDefinition::putFeature(
    std::unique_ptr<MachineFeatureDefinition> feature) {
  std::string const typeId = feature->featureTypeId();
  for (auto& existing : m_features) {
    if (existing->featureTypeId() == typeId && existing->featureId() == feature->featureId()) {
      existing.swap(feature);
      return feature;
    }
  }
  m_features.push_back(std::move(feature));
  return nullptr;
}

void MachineDefinition::removeFeature(MachineFeatureDefinition const* feature) {
  auto const it = std::find_if(m_features.begin(), m_features.end(),
                               [feature](std::unique_ptr<MachineFeatureDefinition> const& f) { return f.get() == feature; });
  if (it == m_features.end()) return;
  auto const entry = m_defaults.find(feature->featureTypeId());
  if (entry != m_defaults.end() && entry->second == feature->featureId()) m_defaults.erase(entry);
  m_features.erase(it);
}

void MachineDefinition::setDefaultFeature(std::string const& typeId, std::string const& featureId) {
  m_defaults.insert({typeId, featureId});
}

Json::Value MachineDefinition::getPersistData() const {
  Json::Value data;
  Json::Value general = m_general.getPersistData();
  if (!general.isNull()) data["general"] = general;
  if (!m_defaults.empty()) {
    Json::Value& defaults = data["defaults"];
    for (auto const& entry : m_defaults) defaults[entry.first] = entry.second;
  }
  for (auto const& feature : m_features) data[feature->featureTypeId()][feature->featureId()] = feature->getPersistData();
  return data;
}

}  // namespace machine
