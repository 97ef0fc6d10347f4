#pragma once
// Contract assertions and small numeric helpers shared by the whole library.
//
// An assertion acts only while the process runs under test
// (Orvo::_debug::isTesting()). It then records the failed condition with its
// text, source path and line, and the code carries on as if the check had
// passed: an assertion is never a means of recovery. Outside tests the
// condition is not evaluated at all.
//
// Each translation unit (or class) that asserts names its source path in a
// constant called `orvoAssertSourcePath`, which the macros pick up by ordinary
// name lookup, so a header-defined class can report its own path.

#include <atomic>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace Orvo {
namespace _debug {

struct FailedAssert {
  std::string expression;
  std::string file;
  unsigned int line = 0;
};

namespace detail {
extern std::atomic<bool> g_testing;
}

/// True while the process runs under test; false at start.
inline bool isTesting() { return detail::g_testing.load(std::memory_order_relaxed); }
void setTesting(bool testing);

/// Records one failed assertion.
void failTestForAssert(char const* expression, char const* file, unsigned int line);

/// The failures recorded so far, oldest first; clears the record.
std::vector<FailedAssert> takeFailedAsserts();

}  // namespace _debug

/// Clamps `value` into [minimum, maximum]; asserts "minimum <= maximum".
double clamp(double value, double minimum, double maximum);

namespace Math {
/// True when |a - b| <= tolerance.
inline bool areSame(double a, double b, double tolerance = 1e-12) {
  return std::fabs(a - b) <= tolerance;
}
}  // namespace Math

/// Number of elements of a built-in array.
template <typename T, std::size_t N>
constexpr std::size_t lengthOf(T const (&)[N]) noexcept {
  return N;
}

}  // namespace Orvo

#define ORVO_CHECK_IMPL(text, cond)                                                      \
  do {                                                                                   \
    if (__builtin_expect(::Orvo::_debug::isTesting(), 0) && !(cond))                     \
      ::Orvo::_debug::failTestForAssert(text, orvoAssertSourcePath, __LINE__);           \
  } while (false)

/// Plain assertion: its text is the bare condition.
#define ORVO_ASSERT(cond) ORVO_CHECK_IMPL(#cond, cond)
/// Precondition: its text is the condition behind "EXPECTS:".
#define EXPECTS(cond) ORVO_CHECK_IMPL("EXPECTS:" #cond, cond)
/// Postcondition or invariant: its text is the condition behind "ENSURES:".
#define ENSURES(cond) ORVO_CHECK_IMPL("ENSURES:" #cond, cond)
