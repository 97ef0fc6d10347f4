#pragma once
// Two solids of a machine and what a simulation does when they meet. The
// pair has no direction: the same two solids in the other order are the
// same pair to hasSameSolids and operator==.

#include <optional>
#include <string>

#include "machine/machine/InteractSetting.h"
#include "machine/machine/InteractSolid.h"

namespace machine {

class InteractPair {
public:
  InteractPair(InteractSolid const& interactand, InteractSolid const& interactor, InteractSetting const& setting);

  InteractSolid const& interactand() const noexcept { return m_interactand; }
  InteractSolid const& interactor() const noexcept { return m_interactor; }
  InteractSetting const& interactSetting() const noexcept { return m_setting; }
  void setInteractSetting(InteractSetting const& setting) noexcept { m_setting = setting; }

  /// The two solids match in either order.
  bool hasSameSolids(InteractPair const& other) const noexcept;
  /// Either solid has that type.
  bool hasSolidOfType(InteractSolidType type) const noexcept;
  /// The other solid; empty when `solid` is neither of the two.
  std::optional<InteractSolid> otherSolid(InteractSolid const& solid) const;

  /// Equal settings and the same solids in either order.
  friend bool operator==(InteractPair const& a, InteractPair const& b) noexcept {
    return a.m_setting == b.m_setting && a.hasSameSolids(b);
  }
  friend bool operator!=(InteractPair const& a, InteractPair const& b) noexcept { return !(a == b); }

  /// "stock:table vs tool:head [CHECK COLLISIONS=true][CUT STOCK=false]".
  std::string debugDescription() const;

private:
  InteractSolid m_interactand;
  InteractSolid m_interactor;
  InteractSetting m_setting;
};

}  // namespace machine
