#pragma once
// The machine motions of a run, at most one for each motion context, in the
// order they were inserted.
//
// Persistent. The oldest layout kept the motions as a plain std::vector
// under "m_container", each by its own member list. The present one (class
// version 1002) leaves that vector empty and follows it with
// "motionVersion", the layout version of the motions, "m_container_size"
// and the array "m_container_versioned" of "MachineMotion" compounds, each
// holding one motion at that version. A stream with motions in the old
// vector is an old one and is read from there.

#include <vector>

#include "machine/machine/CopyTag.h"
#include "machine/machine/MachineMotion.h"
#include "nc/MotionContext.h"
#include "nc/PersistClass.h"
#include "nc/PersistentObject.h"

namespace machine {

class MachineMotions : public persist::PersistentObject {
public:
  /// Selects the deep copy; there is no ordinary copy constructor.
  using Copy = CopyTag;

  /// The version of the class layout, which its version gate reads.
  static inline int const s_version = 1002;
  /// Stored as "MachineMotions", at s_version.
  static persist::PersistClass const iceStaticClass;

  MachineMotions() = default;
  MachineMotions(Copy, MachineMotions const& other);
  MachineMotions(MachineMotions&&) noexcept = default;
  MachineMotions& operator=(MachineMotions&&) noexcept = default;
  ~MachineMotions() override;

  /// Same size and pairwise equal, in order.
  friend bool operator==(MachineMotions const& a, MachineMotions const& b) { return a.m_container == b.m_container; }
  friend bool operator!=(MachineMotions const& a, MachineMotions const& b) { return !(a == b); }

  /// Erases the motions of the same context, then appends.
  void insert(MachineMotion&& motion);
  /// Removes every motion with an equal context; the others keep their order.
  void erase(Orvo::MotionContext const& context);
  /// The first motion with an equal context; null if there is none.
  MachineMotion const* find(Orvo::MotionContext const& context) const;
  void clear() noexcept { m_container.clear(); }
  /// Invalidates every motion and removes none.
  void invalidate() noexcept;
  std::vector<MachineMotion> const& motionRange() const noexcept { return m_container; }

  persist::PersistClass const& iceDynamicClass() const override { return iceStaticClass; }
  /// directMembers within begin and end of the class.
  void iceListMembers(persist::Persist const& persist) override;
  void directMembers(persist::Persist const& persist);

private:
  std::vector<MachineMotion> m_container;
};

}  // namespace machine
