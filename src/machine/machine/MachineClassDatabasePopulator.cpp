#include "machine/machine/MachineClassDatabasePopulator.h"

#include "machine/machine/MachineMotion.h"
#include "machine/machine/MachineMotions.h"
#include "nc/NcClassDatabasePopulator.h"
#include "nc/PersistClassDatabase.h"

namespace machine {

void MachineClassDatabasePopulator::populate(persist::PersistClassDatabase& database) const {
  Orvo::NcClassDatabasePopulator().populate(database);
  database.add("MachineMotion", MachineMotion::iceStaticClass);
  database.add("MachineMotions", MachineMotions::iceStaticClass);
}

}  // namespace machine
