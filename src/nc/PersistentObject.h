#pragma once
// The interface of an object that can be stored behind an owned pointer: a
// reader makes it from its class record and lets it read its members.
// Virtual operations in slot order: destructor, iceDynamicClass,
// iceListMembers.
//
// A persistent value that is only ever stored in place needs neither this
// base nor a factory: persist::serialize finds iceDynamicClass and
// iceListMembers by name.

namespace persist {

class Persist;
class PersistClass;

class PersistentObject {
public:
  // Inline, so that destroying the small values of the axis vocabulary
  // (held by the thousand in poses) costs no call into the library.
  virtual ~PersistentObject() = default;
  /// The record of the object's own (most derived) class.
  virtual PersistClass const& iceDynamicClass() const = 0;
  /// Visits the members between begin and end of the class; one path serves
  /// reading and writing.
  virtual void iceListMembers(Persist const& persist) = 0;

protected:
  PersistentObject() noexcept = default;
  PersistentObject(PersistentObject const&) noexcept = default;
  PersistentObject(PersistentObject&&) noexcept = default;
  PersistentObject& operator=(PersistentObject const&) noexcept = default;
  PersistentObject& operator=(PersistentObject&&) noexcept = default;
};

}  // namespace persist
