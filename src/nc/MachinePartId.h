#pragma once
// The text identifier of a part of the machine; a key of ordered maps.

#include <string>

namespace Orvo {

class MachinePartId {
public:
  MachinePartId() = default;
  MachinePartId(std::string const& id) : m_id(id) {}
  MachinePartId(char const* id) : m_id(id ? id : "") {}
  MachinePartId(MachinePartId const&) = default;
  MachinePartId(MachinePartId&&) noexcept = default;
  MachinePartId& operator=(MachinePartId const&) = default;
  MachinePartId& operator=(MachinePartId&&) noexcept = default;
  virtual ~MachinePartId() = default;

  std::string id() const { return m_id; }
  char const* c_str() const noexcept { return m_id.c_str(); }

  friend bool operator==(MachinePartId const& a, MachinePartId const& b) noexcept { return a.m_id == b.m_id; }
  friend bool operator!=(MachinePartId const& a, MachinePartId const& b) noexcept { return !(a == b); }
  /// Byte-wise order of the texts: a strict weak order independent of locale.
  friend bool operator<(MachinePartId const& a, MachinePartId const& b) noexcept { return a.m_id < b.m_id; }

private:
  std::string m_id;
};

}  // namespace Orvo
