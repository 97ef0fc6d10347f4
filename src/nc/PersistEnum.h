#pragma once
// The registration of an enumeration that is stored as its integer value:
// the name that messages give it and the bounds a reader accepts. A value
// outside them is refused on reading and on writing alike.

namespace persist {

class PersistEnum {
public:
  constexpr PersistEnum(char const* name, int minimum, int maximum) noexcept
      : m_name(name), m_minimum(minimum), m_maximum(maximum) {}
  PersistEnum(PersistEnum const&) = delete;
  PersistEnum& operator=(PersistEnum const&) = delete;

  constexpr char const* name() const noexcept { return m_name; }
  constexpr int minimum() const noexcept { return m_minimum; }
  constexpr int maximum() const noexcept { return m_maximum; }
  constexpr bool contains(int value) const noexcept { return value >= m_minimum && value <= m_maximum; }

private:
  char const* m_name;
  int m_minimum;
  int m_maximum;
};

}  // namespace persist
