#include "nc/MotionContext.h"

#include "nc/Persist.h"
#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "nc\\MotionContext";
}

namespace Orvo {

persist::PersistClass const MotionContext::iceStaticClass{"MotionContext", 1,
                                                          &persist::makePersistent<MotionContext>};

MotionContext::~MotionContext() = default;

void MotionContext::openPattern(int patternId) { m_patterns.push_back(PatternLevel{patternId, 0}); }

void MotionContext::closePattern() noexcept {
  if (!m_patterns.empty()) m_patterns.pop_back();
}

void MotionContext::setPatternInstance(int instance) noexcept {
  if (!m_patterns.empty()) m_patterns.back().instance = instance;
}

}  // namespace Orvo

namespace Orvo {

void MotionContext::iceListMembers(persist::Persist const& persist) {
  persist.beginClass(iceStaticClass);
  directMembers(persist, iceStaticClass.version());
  persist.endClass();
}

void MotionContext::serializeVersionedMembers(persist::Persist const& persist, char const* name, int version) {
  EXPECTS(version > 0);
  EXPECTS(version <= iceStaticClass.version());
  persist.beginObjectMember(name, iceDynamicClass());
  persist.beginClass(iceStaticClass);
  directMembers(persist, version);
  persist.endClass();
  persist.endObjectMember();
}

void MotionContext::directMembers(persist::Persist const& persist, int) {
  // Version 1 is the only layout so far.
  persist::serialize(persist, "m_machineId", m_machineId);
  persist::serialize(persist, "m_ncProgramId", m_ncProgramId);
  persist::serialize(persist, "m_toolpathId", m_toolpathId);
  persist::serialize(persist, "m_workOffset", m_workOffset);
  persist::serializeVector(persist, "m_patterns", m_patterns, [](persist::Persist const& p, PatternLevel& level) {
    p.beginCompound("MotionContext::PatternLevel", "item");
    p.value("patternId", level.patternId);
    p.value("instance", level.instance);
    p.endCompound();
  });
}

}  // namespace Orvo
