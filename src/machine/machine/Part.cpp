#include "machine/machine/Part.h"

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\Part";
}

namespace machine {

Part::Part(PartDefinition const* definition, AxisConfiguration const* configuration) : m_definition(definition) {
  ORVO_ASSERT(m_definition);
  if (m_definition && m_definition->axisDefinition()) m_axis.emplace(m_definition->axisDefinition(), configuration);
}

Part::~Part() = default;

PartDefinition const* Part::definition() const {
  ENSURES(m_definition);
  return m_definition;
}

std::optional<Orvo::AxisInfo> Part::axisInfo() const {
  if (!m_axis) return std::nullopt;
  return Orvo::AxisInfo(m_definition->identifier(), m_axis->name().value_or(Orvo::AxisName("")));
}

DisplayName Part::displayName() const {
  if (m_axis) {
    if (auto const name = m_axis->name()) return DisplayName(name->name());
  }
  if (auto const& shown = m_definition->displayName()) return *shown;
  return DisplayName(m_definition->identifier().id());
}

Part const* Part::parent() const noexcept {
  if (!m_parent || m_parent->m_definition->type() == PartType::ROOT) return nullptr;
  return m_parent;
}

template <typename Self, typename Match>
std::optional<Part*> Part::findImpl(Self& self, Match const& match) {
  for (auto const& child : self.m_children) {
    if (match(*child)) return child.get();
    if (auto found = findImpl(*child, match)) return found;
  }
  return std::nullopt;
}

std::optional<Part const*> Part::find(Orvo::MachinePartId const& identifier) const {
  auto const found = findImpl(*this, [&](Part const& p) { return p.m_definition->id() == identifier; });
  if (!found) return std::nullopt;
  return *found;
}

std::optional<Part*> Part::findNonConst(Orvo::MachinePartId const& identifier) {
  return findImpl(*this, [&](Part const& p) { return p.m_definition->id() == identifier; });
}

std::optional<Part*> Part::findPartByName(Orvo::AxisName const& name) const {
  return findImpl(*this, [&](Part const& p) {
    if (!p.m_axis) return false;
    auto const axisName = p.m_axis->name();
    return axisName && *axisName == name;
  });
}

void Part::addChild(std::unique_ptr<Part> child) {
  child->m_parent = this;
  // A part moved under a new parent has no valid place yet.
  child->invalidateTransforms();
  m_children.push_back(std::move(child));
}

void Part::setAxisValue(Orvo::AxisValue value) {
  if (!m_axis) return;
  if (value != m_axis->value()) {
    m_axis->setValue(value);
    invalidateTransforms();
  }
}

void Part::invalidateTransforms() noexcept {
  // The invariant guarantees an invalid part has an invalid subtree.
  if (!m_transformValid) return;
  m_transformValid = false;
  for (auto const& child : m_children) child->invalidateTransforms();
}

void Part::calculateTransform() const {
  if (m_transformValid) return;
  if (!m_parent) {
    // The root: no parent, no placement, and no axis.
    m_transformFromBase = m_axis ? m_axis->transformation() : Orvo::Transform3D();
  } else {
    Orvo::Transform3D const& p = m_parent->transform3DFromBase();
    // activeTransform3D(identity frame, F) is frameToWorld(F), and exactly
    // so: the identity's inverse and the composition with it only multiply
    // by one and add zeros. Taking frameToWorld directly skips that work in
    // the inner loop.
    Orvo::Transform3D const a = Orvo::frameToWorld(m_parent->m_definition->attachFrame());
    // For the same reason a part without an axis composes with nothing.
    m_transformFromBase = m_axis ? compose(p, compose(a, m_axis->transformation())) : compose(p, a);
  }
  m_transformValid = true;
}

Orvo::Transform3D Part::transform3DFromBaseAsModelled() const {
  Part const* const up = parent();
  Orvo::Transform3D const q = up ? up->transform3DFromBaseAsModelled() : Orvo::Transform3D();
  Orvo::Frame const attach = m_parent ? m_parent->m_definition->attachFrame() : Orvo::Frame(Orvo::IdentityTag{});
  return compose(q, Orvo::activeTransform3D(Orvo::Frame(Orvo::IdentityTag{}), attach));
}

void Part::visitChainToBase(Part const* part, std::function<void(Part const&)> const& visit) {
  for (; part; part = part->parent()) visit(*part);
}

}  // namespace machine
