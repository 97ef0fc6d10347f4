#include "nc/AxisValues.h"

#include "nc/Persist.h"

namespace Orvo {

persist::PersistClass const AxisValues::iceStaticClass{"AxisValues", 1, &persist::makePersistent<AxisValues>};


void AxisValues::iceListMembers(persist::Persist const& persist) {
  persist.beginClass(iceStaticClass);
  // Plain numbers rather than AxisValue objects: a value's whole state is
  // its double, and the list reads and diffs better so.
  persist::serializeVector(persist, "m_values", m_values, [](persist::Persist const& p, AxisValue& item) {
    double number = item.value();
    p.value("item", number);
    item = AxisValue(number);
  });
  persist.endClass();
}

}  // namespace Orvo
