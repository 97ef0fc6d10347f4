#include "machine/machine/MotionEntity.h"

#include "nc/Persist.h"

namespace machine {

persist::PersistClass const MotionEntity::iceStaticClass{"MotionEntity", 1, &persist::makePersistent<MotionEntity>};

MotionEntity::~MotionEntity() = default;

void MotionEntity::iceListMembers(persist::Persist const& persist) {
  persist.beginClass(iceStaticClass);
  persist::serialize(persist, "m_axisValues", m_axisValues);
  persist.endClass();
}

}  // namespace machine
