#pragma once
// The classes a reader may create behind an owned pointer, by their stored
// names. A host fills one with the populators of the libraries whose objects
// it restores (Orvo::NcClassDatabasePopulator, and for machine motions
// machine::MachineClassDatabasePopulator) and hands it to the readers.
//
// A name may be added for a class whose own name differs, so that a renamed
// class still reads the files that carry its old name.

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "nc/PersistClass.h"

namespace persist {

class PersistClassDatabase {
public:
  PersistClassDatabase() = default;

  /// Adds `name` for `persistClass`. Adding a name again for the same class
  /// does nothing, so populators may run more than once; for another class it
  /// fails an assertion and keeps the first.
  void add(char const* name, PersistClass const& persistClass);

  /// The class of that stored name; null when there is none.
  PersistClass const* find(std::string_view name) const noexcept;

  std::size_t size() const noexcept { return m_entries.size(); }
  /// Names and classes in the order they were added.
  std::vector<std::pair<std::string, PersistClass const*>> const& entries() const noexcept { return m_entries; }

private:
  std::vector<std::pair<std::string, PersistClass const*>> m_entries;
  std::map<std::string, PersistClass const*, std::less<>> m_byName;
};

}  // namespace persist
