#include "nc/NcClassDatabasePopulator.h"

#include "nc/AxisOrdering.h"
#include "nc/AxisValue.h"
#include "nc/AxisValues.h"
#include "nc/MotionContext.h"
#include "nc/PersistClassDatabase.h"

namespace Orvo {

void NcClassDatabasePopulator::populate(persist::PersistClassDatabase& database) const {
  database.add("AxisValue", AxisValue::iceStaticClass);
  database.add("AxisValues", AxisValues::iceStaticClass);
  database.add("AxisOrdering", AxisOrdering::iceStaticClass);
  database.add("MotionContext", MotionContext::iceStaticClass);
}

}  // namespace Orvo
