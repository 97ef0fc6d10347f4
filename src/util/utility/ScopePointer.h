#pragma once
// A non-owning pointer to an object whose lifetime is tied to a scope the
// holder does not control (a sibling member, an enclosing object). It says
// in the type that nothing is owned, and it can be cut off with reset()
// before the pointee goes, after which a use is a contract failure and not a
// dangling dereference.

#include "util/utility/Basic.h"

namespace Orvo {

template <typename T>
class ScopePointer {
public:
  ScopePointer() noexcept = default;
  explicit ScopePointer(T* pointee) noexcept : m_pointee(pointee) {}

  T* get() const noexcept { return m_pointee; }
  T& operator*() const noexcept {
    check();
    return *m_pointee;
  }
  T* operator->() const noexcept {
    check();
    return m_pointee;
  }
  explicit operator bool() const noexcept { return m_pointee != nullptr; }

  /// Cuts the pointer off; the pointee is not touched.
  void reset() noexcept { m_pointee = nullptr; }

private:
  static constexpr char const* orvoAssertSourcePath = "util\\utility\\ScopePointer";
  void check() const noexcept { EXPECTS(m_pointee != nullptr); }

  T* m_pointee = nullptr;
};

}  // namespace Orvo
