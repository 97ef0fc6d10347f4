#pragma once
// One solid of a machine that a simulation can make meet another: what kind
// of solid it is and the part that carries it.

#include <string>

#include "machine/machine/InteractSolidType.h"
#include "nc/MachinePartId.h"

namespace machine {

class InteractSolid {
public:
  InteractSolid(InteractSolidType type, Orvo::MachinePartId const& partId);

  InteractSolidType type() const noexcept { return m_type; }
  Orvo::MachinePartId const& partDefinitionID() const noexcept { return m_partId; }

  /// Type and part id equal.
  friend bool operator==(InteractSolid const& a, InteractSolid const& b) noexcept {
    return a.m_type == b.m_type && a.m_partId == b.m_partId;
  }
  friend bool operator!=(InteractSolid const& a, InteractSolid const& b) noexcept { return !(a == b); }

  /// The localised name of the type ("Tool", "Flute", ...); for a machine
  /// part, the part's id.
  std::wstring description() const;
  /// "word:id", for developers.
  std::string debugDescription() const;

private:
  InteractSolidType m_type;
  Orvo::MachinePartId m_partId;
};

}  // namespace machine
