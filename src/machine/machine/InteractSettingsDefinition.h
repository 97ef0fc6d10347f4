#pragma once
// The "interactions" feature: for pairs of solids of a machine, what a
// simulation does when they meet. The list is generated from the kinematic
// tree by a fixed policy (generatePairs), can be edited, and is stored.

#include <json/value.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "machine/machine/CopyTag.h"
#include "machine/machine/InteractPair.h"
#include "machine/machine/InteractSetting.h"
#include "machine/machine/InteractSolid.h"
#include "machine/machine/MachineFeatureDefinitionImpl.h"
#include "nc/MachinePartId.h"

namespace machine {

class KinematicsDefinition;
class PartDefinition;

class InteractSettingsDefinition
    : public MachineFeatureDefinitionImpl<InteractSettingsDefinition, MachineFeatureDefinition> {
public:
  /// The feature "default" with no pairs.
  InteractSettingsDefinition();
  /// Reads the body of an "interactions" feature. A pair without exactly
  /// two solids, or a solid of an unknown type, throws std::runtime_error;
  /// a solid's "id" that isn't a string throws as JsonUtils::parseStr does.
  InteractSettingsDefinition(std::string const& featureId, Json::Value const& data);
  InteractSettingsDefinition(CopyTag, InteractSettingsDefinition const& other);
  InteractSettingsDefinition(InteractSettingsDefinition const& other);
  InteractSettingsDefinition& operator=(InteractSettingsDefinition const& other);
  ~InteractSettingsDefinition() override;

  static std::string featureTypeIdStatic();

  Json::Value getPersistData() const override;

  /// Appends the pair, or, when an entry has the same solids in either
  /// order, replaces only that entry's setting: the last setting wins.
  void add(InteractPair const& pair);
  void add(std::vector<InteractPair> const& pairs);

  /// Drops every pair, then generatePairs.
  void generateDefaultPairs(KinematicsDefinition const& kinematics);
  /// Rebuilds the list from the tree; pairs that survive keep the settings
  /// they had.
  void generatePairs(KinematicsDefinition const& kinematics);

  // The pointers stay valid only until the list changes.
  /// The pairs with this solid on either side, in list order.
  std::vector<InteractPair const*> findBySolid(InteractSolid const& solid) const;
  std::vector<InteractPair*> findBySolid(InteractSolid const& solid);
  /// The pairs with a solid of this part on either side, in list order.
  std::vector<InteractPair const*> findById(Orvo::MachinePartId const& partId) const;
  std::vector<InteractPair*> findById(Orvo::MachinePartId const& partId);

  bool isEmpty() const noexcept { return m_pairs.empty(); }
  std::size_t numberOfPairs() const noexcept { return m_pairs.size(); }
  /// Expects an index below numberOfPairs(); beyond it throws std::out_of_range.
  InteractPair pair(std::size_t index) const;

  /// The solids a part carries: a table its stock and fixture, a head its
  /// tool, a turret its active and inactive tools, each after the part
  /// itself. Empty for a null part.
  static std::vector<InteractSolid> createSolids(PartDefinition const* part);

private:
  // A pair is looked up by its two solids in a fixed order, so that a pair
  // and its reverse find the same entry: generation adds each pair of a tree
  // twice, and a linear search would make it quartic in the parts. Part ids
  // are numbered as they come, which keeps the key a single integer.
  using PairKey = std::uint64_t;
  std::uint32_t partIndex(Orvo::MachinePartId const& partId);
  static PairKey keyOf(InteractSolidType typeA, std::uint32_t partA, InteractSolidType typeB, std::uint32_t partB);
  /// add() with the key already known.
  void add(PairKey key, InteractSolid const& a, InteractSolid const& b, InteractSetting const& setting);

  // The solids of a part with its number, kept while pairs are generated.
  struct PartSolids {
    std::vector<InteractSolid> solids;
    std::uint32_t partIndex;
  };
  PartSolids const& solidsOf(PartDefinition const* part);

  InteractPair* find(InteractSolid const& a, InteractSolid const& b);
  void clear();

  void buildChainAgainstChain(PartDefinition const* part, PartDefinition const* partChain, InteractSetting setting);
  void buildPartAgainstChain(PartDefinition const* part, PartDefinition const* partChain, InteractSetting setting);
  void buildPartAgainstPart(PartDefinition const* partA, PartDefinition const* partB, InteractSetting setting);
  void buildTableItemsAgainstTableAxes(PartDefinition const* table, PartDefinition const* axes,
                                       InteractSetting setting);

  std::vector<InteractPair> m_pairs;
  std::unordered_map<PairKey, std::size_t> m_index;
  std::unordered_map<std::string, std::uint32_t> m_partIndex;
  std::unordered_map<PartDefinition const*, PartSolids> m_generationSolids;
};

}  // namespace machine
