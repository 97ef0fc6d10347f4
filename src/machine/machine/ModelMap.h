#pragma once

#include "nc/MachinePartId.h"

namespace machine {

class PartModelCollection;

/// Implemented by the host: maps a part of the machine to the host's models
/// of it. No operation of the library takes one; it exists for the host.
class ModelMap {
public:
  /// The models of the part, or null when the host has none for it.
  virtual PartModelCollection const* modelsOf(Orvo::MachinePartId const& part) const = 0;
  virtual ~ModelMap();
};

}  // namespace machine
