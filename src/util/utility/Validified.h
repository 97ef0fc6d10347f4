#pragma once
// A parsed value together with whether the parse succeeded.

#include <utility>

#include "util/utility/Basic.h"

namespace Orvo {

template <typename T>
class Validified {
public:
  static constexpr char const orvoAssertSourcePath[] = "util\\utility/Validified";

  /// An invalid result; its value is default-constructed.
  Validified() = default;
  /// A valid result.
  Validified(T value) : m_value(std::move(value)), m_valid(true) {}
  Validified(T value, bool valid) : m_value(std::move(value)), m_valid(valid) {}

  bool isValid() const noexcept { return m_valid; }
  explicit operator bool() const noexcept { return m_valid; }

  /// The value; asserts that the parse succeeded.
  T const& value() const {
    ORVO_ASSERT(m_valid);
    return m_value;
  }

private:
  T m_value{};
  bool m_valid = false;
};

}  // namespace Orvo
