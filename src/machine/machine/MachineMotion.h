#pragma once
// The record of one Operation section of a post-processor run: what
// identifies the operation (its motion context), what the axis values mean
// (the axis ordering), and the axis values the operation starts from.
//
// Persistent with a layout that has grown over three versions. Version 1
// kept context and ordering in place under "m_context" and "m_axisOrdering";
// version 2 added the context behind the pointer "m_context_versioned", and
// version 3 the ordering behind "m_axisOrdering_versioned". A writer puts
// default objects under the two old keys and the true data under the new
// ones; a stream too old for a new key gets it from the old one.

#include <memory>
#include <vector>

#include "machine/machine/CopyTag.h"
#include "machine/machine/MotionEntity.h"
#include "nc/AxisOrdering.h"
#include "nc/AxisValues.h"
#include "nc/MotionContext.h"
#include "nc/PersistClass.h"
#include "nc/PersistentObject.h"

namespace machine {

class MachineMotion : public persist::PersistentObject {
public:
  /// Selects the deep copy; there is no ordinary copy constructor.
  using Copy = CopyTag;

  static inline int const s_version = 3;
  /// Stored as "MachineMotion", at s_version.
  static persist::PersistClass const iceStaticClass;

  /// Both pointers null, no entities, not valid: the target of a read.
  MachineMotion() = default;
  /// Takes the context and is valid; asserts "EXPECTS:m_context->isValid()".
  explicit MachineMotion(Orvo::MotionContext context);
  MachineMotion(Copy, MachineMotion const& other);
  MachineMotion(MachineMotion&&) noexcept = default;
  MachineMotion& operator=(MachineMotion&&) noexcept = default;
  ~MachineMotion() override;

  static int currentVersion() noexcept { return s_version; }

  /// The held context; a default context while none is held.
  Orvo::MotionContext const& context() const noexcept;
  /// Asserts "EXPECTS:context.isValid()"; replaces the held context.
  void setContext(Orvo::MotionContext context);
  /// The held ordering, whatever the argument; an empty ordering while none
  /// is held.
  Orvo::AxisOrdering const& axisOrdering(int) const noexcept;
  void setAxisOrdering(Orvo::AxisOrdering ordering);

  void appendEntity(Orvo::AxisValues values);
  int numEntities() const noexcept { return static_cast<int>(m_entityArray.size()); }
  /// Asserts "EXPECTS:i < numEntities()". Out of range outside tests it
  /// gives the first entity, or empty values when there is none.
  Orvo::AxisValues const& axisValues(int i) const;

  void invalidate() noexcept { m_isValid = false; }
  bool isValid() const noexcept { return m_isValid; }

  /// Context, ordering, number of entities, each entity's axis values and
  /// validity. A null pointer equals only a null pointer.
  friend bool operator==(MachineMotion const& a, MachineMotion const& b);
  friend bool operator!=(MachineMotion const& a, MachineMotion const& b) { return !(a == b); }

  persist::PersistClass const& iceDynamicClass() const override { return iceStaticClass; }
  /// directMembers within begin and end of the class.
  void iceListMembers(persist::Persist const& persist) override;
  /// The members, with the framework's version gates 2 and 3.
  void directMembers(persist::Persist const& persist);
  /// An object member `name` holding the members of layout `version`, which
  /// the container gives explicitly (1 to currentVersion()).
  void serializeVersionedMembers(persist::Persist const& persist, char const* name, int version);

private:
  /// The four members every version has: context and ordering in place (into
  /// the temporaries), validity and the entities.
  void unversionedMembers(persist::Persist const& persist, Orvo::MotionContext& context,
                          Orvo::AxisOrdering& ordering);

  std::unique_ptr<Orvo::MotionContext> m_context;
  std::unique_ptr<Orvo::AxisOrdering> m_axisOrdering;
  std::vector<MotionEntity> m_entityArray;
  bool m_isValid = false;
};

}  // namespace machine
