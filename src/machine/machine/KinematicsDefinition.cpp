#include "machine/machine/KinematicsDefinition.h"

#include <algorithm>
#include <utility>

#include <stdexcept>

#include "machine/machine/MTKReader.h"
#include "machine/machine/MTKWriter.h"
#include "util/utility/Messages.h"
#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\KinematicsDefinition";
}

namespace machine {

KinematicsDefinition::KinematicsDefinition(std::string const& id, Json::Value const& data)
    : MachineFeatureDefinitionImpl(id), m_root(Orvo::MachinePartId(rootId), PartType::ROOT) {
  MTKReadResult result = MTKReader::read(data);
  if (result.getReadErrorType() != MTKReadErrorType::NONE)
    throw std::runtime_error(Orvo::Messages::wideToUtf8(result.getReadErrorMessage()));
  std::unique_ptr<KinematicsDefinition> const read = result.getKinematicsDefinition();
  for (PartDefinition const& part : read->baseParts())
    m_root.addChild(std::make_unique<PartDefinition>(CopyTag{}, part));
  m_mtkIOConverter = read->mtkIOConverter();
}

KinematicsDefinition::KinematicsDefinition(std::vector<std::unique_ptr<PartDefinition>> baseParts,
                                           MTKIOConverter converter)
    : m_root(Orvo::MachinePartId(rootId), PartType::ROOT), m_mtkIOConverter(converter) {
  for (auto& part : baseParts) m_root.addChild(std::move(part));
}

KinematicsDefinition::KinematicsDefinition(CopyTag, KinematicsDefinition const& other)
    : MachineFeatureDefinitionImpl(other), m_root(CopyTag{}, other.m_root), m_mtkIOConverter(other.m_mtkIOConverter) {}

KinematicsDefinition::~KinematicsDefinition() = default;

std::string KinematicsDefinition::featureTypeIdStatic() { return "kinematics"; }

Json::Value KinematicsDefinition::getPersistData() const { return MTKWriter::toJson(*this); }

std::optional<PartDefinition const*> KinematicsDefinition::find(Orvo::MachinePartId const& identifier) const {
  return m_root.find(identifier);
}

std::vector<PartDefinition const*> KinematicsDefinition::getPartsByTypeSorted(PartType type) const {
  std::vector<PartDefinition const*> parts;
  DescendantRange const all = allParts();
  for (PartDefinition const* part : all.parts())
    if (part->type() == type) parts.push_back(part);
  std::stable_sort(parts.begin(), parts.end(),
                   [](PartDefinition const* a, PartDefinition const* b) { return a->id() < b->id(); });
  return parts;
}

void KinematicsDefinition::attachPart(std::unique_ptr<PartDefinition> part, PartDefinition const* parent) {
  if (!parent) parent = &m_root;
  ORVO_ASSERT(parent == find(parent->identifier()));
  m_root.attachPart(std::move(part), parent);
}

std::unique_ptr<PartDefinition> KinematicsDefinition::detachPart(PartDefinition const* part) {
  ORVO_ASSERT(part == find(part->identifier()));
  return m_root.detachPart(part);
}

void KinematicsDefinition::editPart(PartDefinition const* existingPart, PartDefinition const& settings) {
  ORVO_ASSERT(existingPart == find(existingPart->identifier()));
  m_root.editPart(existingPart, settings);
}

void KinematicsDefinition::transferPartAndLinks(PartDefinition const* part, PartDefinition const* newParent) {
  std::unique_ptr<PartDefinition> detached = detachPart(part);
  if (detached) attachPart(std::move(detached), newParent);
}

}  // namespace machine
