#pragma once
// A turret: a rotary part whose heads hang below it, counted by index.

namespace machine {

class TurretDefinition {
public:
  explicit TurretDefinition(unsigned int indexCount) noexcept : m_indexCount(indexCount) {}
  TurretDefinition(TurretDefinition const&) = default;
  TurretDefinition& operator=(TurretDefinition const&) = default;

  unsigned int indexCount() const noexcept { return m_indexCount; }
  void setIndexCount(unsigned int indexCount) noexcept { m_indexCount = indexCount; }

  friend bool operator==(TurretDefinition const& a, TurretDefinition const& b) noexcept {
    return a.m_indexCount == b.m_indexCount;
  }
  friend bool operator!=(TurretDefinition const& a, TurretDefinition const& b) noexcept { return !(a == b); }

private:
  unsigned int m_indexCount;
};

}  // namespace machine
