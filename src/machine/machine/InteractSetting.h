#pragma once
// What a simulation does when two solids meet: check for a collision,
// remove stock, both or nothing.

#include <string>

namespace machine {

class InteractSetting {
public:
  /// Neither flag set: the pair is ignored.
  InteractSetting() = default;

  bool checkCollisions() const noexcept { return m_checkCollisions; }
  bool cutStock() const noexcept { return m_cutStock; }
  /// True when neither flag is set.
  bool ignore() const noexcept { return !m_checkCollisions && !m_cutStock; }

  // Each returns the object, so that settings can be chained.
  InteractSetting& setCheckCollisions(bool check) noexcept {
    m_checkCollisions = check;
    return *this;
  }
  InteractSetting& setCutStock(bool cut) noexcept {
    m_cutStock = cut;
    return *this;
  }

  friend bool operator==(InteractSetting const& a, InteractSetting const& b) noexcept {
    return a.m_checkCollisions == b.m_checkCollisions && a.m_cutStock == b.m_cutStock;
  }
  friend bool operator!=(InteractSetting const& a, InteractSetting const& b) noexcept { return !(a == b); }

  /// "[CHECK COLLISIONS=true][CUT STOCK=false]", for developers.
  std::string debugDescription() const;

private:
  bool m_checkCollisions = false;
  bool m_cutStock = false;
};

}  // namespace machine
