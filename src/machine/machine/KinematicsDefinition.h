#pragma once
// The "kinematics" feature: the part tree of a machine below a hidden root,
// kept whole while parts are attached, moved and edited. Its persisted form
// is the MTK document.

#include <json/value.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "machine/machine/CopyTag.h"
#include "machine/machine/DescendantRange.h"
#include "machine/machine/MTKIOConverter.h"
#include "machine/machine/MachineFeatureDefinitionImpl.h"
#include "machine/machine/PartDefinition.h"
#include "machine/machine/PartType.h"
#include "nc/MachinePartId.h"

namespace machine {

class KinematicsDefinition : public MachineFeatureDefinitionImpl<KinematicsDefinition, MachineFeatureDefinition> {
public:
  /// The identifier of the hidden root.
  static constexpr char const* rootId = "__root";

  /// Reads `data` as an MTK document. A units failure throws
  /// std::runtime_error with the reader's full message; other read errors
  /// pass as the reader raised them (an MTKReaderException among them).
  KinematicsDefinition(std::string const& id, Json::Value const& data);
  /// Puts the base parts under the root, in order.
  KinematicsDefinition(std::vector<std::unique_ptr<PartDefinition>> baseParts, MTKIOConverter converter);
  /// A deep copy of the tree.
  KinematicsDefinition(CopyTag, KinematicsDefinition const& other);
  KinematicsDefinition(KinematicsDefinition const&) = delete;
  KinematicsDefinition& operator=(KinematicsDefinition const&) = delete;
  ~KinematicsDefinition() override;

  static std::string featureTypeIdStatic();

  /// The tree as an MTK document.
  Json::Value getPersistData() const override;

  /// The root's children.
  PartDefinition::ConstChildRange baseParts() const { return m_root.children(); }
  /// Every part of the machine, the root left out.
  DescendantRange allParts() const { return DescendantRange(m_root); }
  /// As PartDefinition::find on the root; "__root" finds the root itself.
  std::optional<PartDefinition const*> find(Orvo::MachinePartId const& identifier) const;
  /// All parts of that type, ascending by identifier.
  std::vector<PartDefinition const*> getPartsByTypeSorted(PartType type) const;
  MTKIOConverter const& mtkIOConverter() const noexcept { return m_mtkIOConverter; }

  // The only ways to change the tree. Each first checks that the pointer it
  // is given belongs to this tree.
  /// A null parent means the root: the part becomes a base part.
  void attachPart(std::unique_ptr<PartDefinition> part, PartDefinition const* parent);
  std::unique_ptr<PartDefinition> detachPart(PartDefinition const* part);
  void editPart(PartDefinition const* existingPart, PartDefinition const& settings);
  /// Moves a part with its subtree to the end of the new parent's children
  /// (null: the root).
  void transferPartAndLinks(PartDefinition const* part, PartDefinition const* newParent);

private:
  PartDefinition m_root;
  MTKIOConverter m_mtkIOConverter;
};

}  // namespace machine
