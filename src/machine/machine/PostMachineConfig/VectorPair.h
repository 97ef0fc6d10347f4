#pragma once
// Two vectors, as the orientation solver hands back its two ABC solutions.

#include "machine/machine/PostMachineConfig/Vector.h"
#include "util/utility/ScriptObject.h"

namespace com {
namespace vantora {

class VectorPair : public Orvo::ScriptObject {
public:
  Vector first;
  Vector second;

  VectorPair() noexcept = default;
  VectorPair(Vector const& first_, Vector const& second_) noexcept : first(first_), second(second_) {}
  VectorPair(VectorPair const&) noexcept = default;
  VectorPair& operator=(VectorPair const&) noexcept = default;

  char const* getBaseClass() const noexcept override;
  ~VectorPair() override = default;
};

}  // namespace vantora
}  // namespace com
