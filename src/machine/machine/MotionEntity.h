#pragma once
// One recorded set of machine axis values of a MachineMotion.

#include "nc/AxisValues.h"
#include "nc/PersistClass.h"
#include "nc/PersistentObject.h"

namespace machine {

class MotionEntity : public persist::PersistentObject {
public:
  /// Stored as "MotionEntity", version 1: the object member "m_axisValues".
  static persist::PersistClass const iceStaticClass;

  MotionEntity() = default;
  explicit MotionEntity(Orvo::AxisValues axisValues) : m_axisValues(std::move(axisValues)) {}
  MotionEntity(MotionEntity const&) = default;
  MotionEntity(MotionEntity&&) noexcept = default;
  MotionEntity& operator=(MotionEntity const&) = default;
  MotionEntity& operator=(MotionEntity&&) noexcept = default;
  ~MotionEntity() override;

  persist::PersistClass const& iceDynamicClass() const override { return iceStaticClass; }
  void iceListMembers(persist::Persist const& persist) override;

  Orvo::AxisValues const& axisValues() const noexcept { return m_axisValues; }

private:
  Orvo::AxisValues m_axisValues;
};

}  // namespace machine
