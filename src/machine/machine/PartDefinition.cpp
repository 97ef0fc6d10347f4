#include "machine/machine/PartDefinition.h"

#include <algorithm>

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\PartDefinition";
}

namespace machine {

PartDefinition::PartDefinition(Orvo::MachinePartId const& identifier, PartType type)
    : m_type(type), m_attachFrame(Orvo::IdentityTag{}), m_identifier(identifier) {}

PartDefinition::PartDefinition(Orvo::MachinePartId const& identifier, PartType type,
                               std::optional<Orvo::Frame> const& attachFrame,
                               std::optional<SpindleDefinition> const& spindle,
                               std::optional<ToolStationDefinition> const& toolStation,
                               std::unique_ptr<AxisDefinition> axis)
    : m_type(type),
      m_attachFrame(attachFrame.value_or(Orvo::Frame(Orvo::IdentityTag{}))),
      m_spindle(spindle),
      m_toolStation(toolStation),
      m_identifier(identifier),
      m_axisDefinition(std::move(axis)) {
  ORVO_ASSERT((!m_axisDefinition || m_type == PartType::LINEAR || m_type == PartType::ROTARY) &&
              "Only linear or rotary axis parts should have axis definitions.");
}

PartDefinition::PartDefinition(CopyTag, PartDefinition const& other)
    : PartDefinition(CopyWithoutChildrenTag{}, other) {
  m_children.reserve(other.m_children.size());
  for (auto const& child : other.m_children) {
    auto copy = std::make_unique<PartDefinition>(CopyTag{}, *child);
    copy->m_parent = this;
    m_children.push_back(std::move(copy));
  }
}

PartDefinition::PartDefinition(CopyWithoutChildrenTag, PartDefinition const& other)
    : m_type(other.m_type), m_attachFrame(other.m_attachFrame) {
  copySettingsFrom(other);
}

PartDefinition::~PartDefinition() = default;

PartDefinition const* PartDefinition::parent() const noexcept {
  if (m_parent && m_parent->m_type == PartType::ROOT) return nullptr;
  return m_parent;
}

std::optional<PartDefinition const*> PartDefinition::find(Orvo::MachinePartId const& identifier) const {
  if (m_identifier == identifier) return this;
  for (auto const& child : m_children)
    if (auto found = child->find(identifier)) return found;
  return std::nullopt;
}

PartDefinition const* PartDefinition::findByType(PartType type) const {
  if (m_type == type) return this;
  for (auto const& child : m_children)
    if (auto const* found = child->findByType(type)) return found;
  return nullptr;
}

PartType PartDefinition::chainType() const {
  if (m_type == PartType::HEAD || m_type == PartType::TABLE) return m_type;
  for (auto const& child : m_children) {
    PartType const t = child->chainType();
    if (t == PartType::HEAD || t == PartType::TABLE) return t;
  }
  return PartType::STATIC;
}

void PartDefinition::visitChainToBase(std::function<void(PartDefinition const&)> const& visit) const {
  for (PartDefinition const* p = this; p && p->m_type != PartType::ROOT; p = p->m_parent) visit(*p);
}

void PartDefinition::setAxisDefinition(std::unique_ptr<AxisDefinition> axis) {
  ORVO_ASSERT(m_type != PartType::HEAD && m_type != PartType::TABLE);
  m_axisDefinition = std::move(axis);
  if (!m_axisDefinition)
    m_type = PartType::STATIC;
  else
    m_type = m_axisDefinition->axisType() == AxisType::LINEAR ? PartType::LINEAR : PartType::ROTARY;
}

void PartDefinition::addChild(std::unique_ptr<PartDefinition> child) {
  child->m_parent = this;
  m_children.push_back(std::move(child));
}

void PartDefinition::attachPart(std::unique_ptr<PartDefinition> part, PartDefinition const* parent) {
  ORVO_ASSERT(parent == find(parent->m_identifier));
  findNonConst(parent)->addChild(std::move(part));
}

std::unique_ptr<PartDefinition> PartDefinition::detachPart(PartDefinition const* part) {
  ORVO_ASSERT(part != this && part == find(part->m_identifier));
  PartDefinition* const node = findNonConst(part);
  std::unique_ptr<PartDefinition> detachedPart = node->m_parent ? node->m_parent->removeChild(node) : nullptr;
  ORVO_ASSERT(detachedPart);
  return detachedPart;
}

std::unique_ptr<PartDefinition> PartDefinition::removeChild(PartDefinition const* child) {
  auto const childIter = std::find_if(m_children.begin(), m_children.end(),
                                      [child](std::unique_ptr<PartDefinition> const& c) { return c.get() == child; });
  ORVO_ASSERT(childIter != m_children.end());
  if (childIter == m_children.end()) return nullptr;
  std::unique_ptr<PartDefinition> removed = std::move(*childIter);
  m_children.erase(childIter);
  removed->m_parent = nullptr;
  return removed;
}

void PartDefinition::editPart(PartDefinition const* existingPart, PartDefinition const& settings) {
  ORVO_ASSERT(existingPart == find(existingPart->m_identifier));
  findNonConst(existingPart)->copySettingsFrom(settings);
}

PartDefinition* PartDefinition::findNonConst(PartDefinition const* part) {
  ORVO_ASSERT(part == find(part->m_identifier));
  // The pointer was handed out by this very tree, so the node is not const.
  return const_cast<PartDefinition*>(part);
}

void PartDefinition::copySettingsFrom(PartDefinition const& other) {
  m_identifier = other.m_identifier;
  m_type = other.m_type;
  m_attachFrame = other.m_attachFrame;
  m_spindle = other.m_spindle;
  m_toolStation = other.m_toolStation;
  m_turret = other.m_turret;
  m_axisDefinition = other.m_axisDefinition ? other.m_axisDefinition->clone() : nullptr;
  m_displayName = other.m_displayName;
}

}  // namespace machine
