#pragma once

#include "machine/machine/RotaryAxisDefinition.h"

namespace machine {

/// A rotary axis that turns without end stops: its physical range is infinite.
class InfiniteRotaryAxisDefinition : public RotaryAxisDefinition {
public:
  using RotaryAxisDefinition::RotaryAxisDefinition;

  std::optional<Orvo::AxisValue> physicalMin() const override { return std::nullopt; }
  std::optional<Orvo::AxisValue> physicalMax() const override { return std::nullopt; }

  std::unique_ptr<InfiniteRotaryAxisDefinition> clone() const {
    return std::make_unique<InfiniteRotaryAxisDefinition>(*this);
  }
  InfiniteRotaryAxisDefinition(InfiniteRotaryAxisDefinition const&) = default;

protected:
  std::unique_ptr<AxisDefinition> doClone() const override { return clone(); }
};

}  // namespace machine
