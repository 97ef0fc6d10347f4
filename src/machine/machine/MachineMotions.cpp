#include "machine/machine/MachineMotions.h"

#include <algorithm>

#include "nc/Persist.h"

namespace machine {

persist::PersistClass const MachineMotions::iceStaticClass{"MachineMotions", MachineMotions::s_version,
                                                           &persist::makePersistent<MachineMotions>};

MachineMotions::MachineMotions(Copy, MachineMotions const& other) {
  m_container.reserve(other.m_container.size());
  for (MachineMotion const& motion : other.m_container) m_container.emplace_back(Copy{}, motion);
}

MachineMotions::~MachineMotions() = default;

void MachineMotions::insert(MachineMotion&& motion) {
  erase(motion.context());
  m_container.push_back(std::move(motion));
}

void MachineMotions::erase(Orvo::MotionContext const& context) {
  m_container.erase(std::remove_if(m_container.begin(), m_container.end(),
                                   [&context](MachineMotion const& m) { return m.context() == context; }),
                    m_container.end());
}

MachineMotion const* MachineMotions::find(Orvo::MotionContext const& context) const {
  for (MachineMotion const& motion : m_container)
    if (motion.context() == context) return &motion;
  return nullptr;
}

void MachineMotions::invalidate() noexcept {
  for (MachineMotion& motion : m_container) motion.invalidate();
}

void MachineMotions::iceListMembers(persist::Persist const& persist) {
  persist.beginClass(iceStaticClass);
  directMembers(persist);
  persist.endClass();
}

void MachineMotions::directMembers(persist::Persist const& persist) {
  // The old layout's vector: always empty on writing.
  std::vector<MachineMotion> old;
  persist::serializeVector(persist, "m_container", old,
                           [](persist::Persist const& p, MachineMotion& motion) { persist::serialize(p, "item", motion); });
  if (!old.empty()) {
    m_container = std::move(old);
    return;
  }
  persist.versionGate(1002);
  // The framework refuses a version outside the ones the motions know.
  int motionVersion = MachineMotion::currentVersion();
  persist.value("motionVersion", motionVersion, 1, MachineMotion::currentVersion());
  std::uint64_t size = persist.isReading() ? 0u : static_cast<std::uint64_t>(m_container.size());
  persist.value("m_container_size", size);
  persist.beginArray("m_container_versioned", size);
  if (persist.isReading()) {
    // Resized only now that the stream has shown it holds that many.
    m_container.clear();
    m_container.resize(static_cast<std::size_t>(size));
  }
  for (MachineMotion& motion : m_container) {
    persist.beginCompound("MachineMotion", "motion");
    motion.serializeVersionedMembers(persist, "motion", motionVersion);
    persist.endCompound();
  }
  persist.endArray();
}

}  // namespace machine
