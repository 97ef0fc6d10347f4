#include "nc/PersistClassDatabase.h"

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "nc\\PersistClassDatabase";
}

namespace persist {

void PersistClassDatabase::add(char const* name, PersistClass const& persistClass) {
  std::string const key(name ? name : "");
  auto const it = m_byName.find(key);
  PersistClass const* const existing = it == m_byName.end() ? nullptr : it->second;
  EXPECTS(!existing || existing == &persistClass);
  if (existing) return;
  m_byName.emplace(key, &persistClass);
  m_entries.emplace_back(key, &persistClass);
}

PersistClass const* PersistClassDatabase::find(std::string_view name) const noexcept {
  auto const it = m_byName.find(name);
  return it == m_byName.end() ? nullptr : it->second;
}

}  // namespace persist
