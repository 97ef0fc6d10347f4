#pragma once
// The name a part shows to users. Line breaks are removed from texts on the
// way in; copies keep what they copy.

#include <string>
#include <string_view>

namespace machine {

class DisplayName {
public:
  explicit DisplayName(std::string const& name);
  explicit DisplayName(std::string_view const& name);
  explicit DisplayName(char const* name);
  DisplayName(DisplayName const&) = default;
  DisplayName& operator=(DisplayName const&) = default;

  std::string const& name() const noexcept { return m_name; }
  char const* c_str() const noexcept { return m_name.c_str(); }

  friend bool operator==(DisplayName const& a, DisplayName const& b) noexcept { return a.m_name == b.m_name; }
  friend bool operator!=(DisplayName const& a, DisplayName const& b) noexcept { return !(a == b); }

  /// The text without its carriage returns and line feeds.
  static std::string removeLineBreaks(std::string_view text);

private:
  std::string m_name;
};

}  // namespace machine
