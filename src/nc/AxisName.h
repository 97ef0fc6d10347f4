#pragma once
// The name of an axis as an NC program knows it, such as X or C.

#include <string>

namespace Orvo {

class AxisName {
public:
  AxisName() = default;
  AxisName(std::string const& name) : m_name(name) {}
  AxisName(char const* name) : m_name(name ? name : "") {}
  AxisName(AxisName const&) = default;
  AxisName(AxisName&&) noexcept = default;
  AxisName& operator=(AxisName const&) = default;
  AxisName& operator=(AxisName&&) noexcept = default;
  virtual ~AxisName() = default;

  std::string getName() const { return m_name; }
  std::string const& name() const noexcept { return m_name; }

  friend bool operator==(AxisName const& a, AxisName const& b) noexcept { return a.m_name == b.m_name; }
  friend bool operator!=(AxisName const& a, AxisName const& b) noexcept { return !(a == b); }
  friend bool operator<(AxisName const& a, AxisName const& b) noexcept { return a.m_name < b.m_name; }

private:
  std::string m_name;
};

}  // namespace Orvo
