#include "nc/AxisValue.h"

#include "nc/Persist.h"

namespace Orvo {

persist::PersistClass const AxisValue::iceStaticClass{"AxisValue", 1, &persist::makePersistent<AxisValue>};

void AxisValue::iceListMembers(persist::Persist const& persist) {
  persist.beginClass(iceStaticClass);
  persist.value("m_value", m_value);
  persist.endClass();
}

}  // namespace Orvo
