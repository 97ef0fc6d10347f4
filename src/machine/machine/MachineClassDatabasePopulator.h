#pragma once
// Fills a class database for a host that restores machine motions: the NC
// foundation's classes, then "MachineMotion" and "MachineMotions".
// MotionEntity has a class record of its own but is stored only in place
// and is not added.

namespace persist {
class PersistClassDatabase;
}

namespace machine {

class MachineClassDatabasePopulator {
public:
  void populate(persist::PersistClassDatabase& database) const;
};

}  // namespace machine
