#include "nc/MotionContext.h"

namespace Orvo {

void MotionContext::openPattern(int patternId) { m_patterns.push_back(PatternLevel{patternId, 0}); }

void MotionContext::closePattern() noexcept {
  if (!m_patterns.empty()) m_patterns.pop_back();
}

void MotionContext::setPatternInstance(int instance) noexcept {
  if (!m_patterns.empty()) m_patterns.back().instance = instance;
}

}  // namespace Orvo
