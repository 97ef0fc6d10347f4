#pragma once
// Adds the persistent classes of the NC foundation to a class database, so
// that a reader can create them behind owned pointers.

namespace persist {
class PersistClassDatabase;
}

namespace Orvo {

class NcClassDatabasePopulator {
public:
  /// Adds "AxisValue", "AxisValues", "AxisOrdering" and "MotionContext", in
  /// that order.
  void populate(persist::PersistClassDatabase& database) const;
};

}  // namespace Orvo
