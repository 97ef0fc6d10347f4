#include "machine/machine/InteractPair.h"

namespace machine {

InteractPair::InteractPair(InteractSolid const& interactand, InteractSolid const& interactor,
                           InteractSetting const& setting)
    : m_interactand(interactand), m_interactor(interactor), m_setting(setting) {}

bool InteractPair::hasSameSolids(InteractPair const& other) const noexcept {
  return (m_interactand == other.m_interactand && m_interactor == other.m_interactor) ||
         (m_interactand == other.m_interactor && m_interactor == other.m_interactand);
}

bool InteractPair::hasSolidOfType(InteractSolidType type) const noexcept {
  return m_interactand.type() == type || m_interactor.type() == type;
}

std::optional<InteractSolid> InteractPair::otherSolid(InteractSolid const& solid) const {
  if (solid == m_interactand) return m_interactor;
  if (solid == m_interactor) return m_interactand;
  return std::nullopt;
}

std::string InteractPair::debugDescription() const {
  return m_interactand.debugDescription() + " vs " + m_interactor.debugDescription() + " " +
         m_setting.debugDescription();
}

}  // namespace machine
