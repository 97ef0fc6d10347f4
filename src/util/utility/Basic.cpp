#include "util/utility/Basic.h"

#include <mutex>

namespace {
constexpr char const* orvoAssertSourcePath = "util\\utility/Basic";

std::mutex& failureMutex() {
  static std::mutex m;
  return m;
}
std::vector<Orvo::_debug::FailedAssert>& failures() {
  static std::vector<Orvo::_debug::FailedAssert> f;
  return f;
}
}  // namespace

namespace Orvo {
namespace _debug {
namespace detail {
std::atomic<bool> g_testing{false};
}

void setTesting(bool testing) { detail::g_testing.store(testing, std::memory_order_relaxed); }

void failTestForAssert(char const* expression, char const* file, unsigned int line) {
  std::lock_guard<std::mutex> lock(failureMutex());
  failures().push_back(FailedAssert{expression ? expression : "", file ? file : "", line});
}

std::vector<FailedAssert> takeFailedAsserts() {
  std::lock_guard<std::mutex> lock(failureMutex());
  std::vector<FailedAssert> out;
  out.swap(failures());
  return out;
}
}  // namespace _debug

double clamp(double value, double minimum, double maximum) {
  ORVO_ASSERT(minimum <= maximum);
  if (value < minimum) return minimum;
  if (value > maximum) return maximum;
  return value;
}

}  // namespace Orvo
