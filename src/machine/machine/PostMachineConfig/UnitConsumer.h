#pragma once
// The unit mapping of script-facing objects. A script works in its own unit,
// millimetres or inches; the objects hold lengths in millimetres. Angles are
// radians on both sides and pass unchanged.
//
// Every consumer is on one program-wide list while it exists: it adds itself
// when it is made, copies included, and removes itself when it is destroyed,
// both under Orvo::Process::mutex. Script-facing values are passed around by
// value, so this is kept to a few pointer updates under the lock: the list is
// linked through the consumers themselves and allocates nothing, and an
// object that holds further consumers (an axis holds its range) may list
// them all under one taking of the lock. Its limit is that of a standard
// list of consumer pointers; a consumer made beyond it throws
// std::length_error "list too long".
//
// A new consumer starts in millimetre mode. No program-wide inch default is
// offered: the library never switches one on, and an embedding application
// sets the mode of the consumers it hands out with setInchMode.

#include <cstddef>
#include <initializer_list>

#include "machine/machine/PostMachineConfig/Vector.h"

namespace com {
namespace vantora {
namespace post {

class UnitConsumer {
public:
  /// The factors of inch mode: external to internal, and back.
  static constexpr double INCH_TO_MILLIMETRE = 25.4;
  static constexpr double MILLIMETRE_TO_INCH = 0.03937007874015748;

  double mapToInternalXYZ(double value) const noexcept { return value * m_toInternal; }
  double mapToExternalXYZ(double value) const noexcept { return value * m_toExternal; }
  Vector mapToInternalXYZ(Vector const& value) const noexcept { return Vector::product(value, m_toInternal); }
  Vector mapToExternalXYZ(Vector const& value) const noexcept { return Vector::product(value, m_toExternal); }
  double mapToInternalABC(double value) const noexcept { return value; }
  double mapToExternalABC(double value) const noexcept { return value; }
  Vector mapToInternalABC(Vector const& value) const noexcept { return value; }
  Vector mapToExternalABC(Vector const& value) const noexcept { return value; }

  /// Switches this consumer alone between inches (true) and millimetres.
  void setInchMode(bool inch) noexcept;
  bool isInchMode() const noexcept { return m_toInternal != 1.0; }

  /// How many consumers exist now.
  static std::size_t getNumberOfConsumers();
  /// The most consumers that may exist at once.
  static std::size_t getListLimit();
  /// Lowers the limit while Orvo::_debug::isTesting() is true, so that a test
  /// can reach it; 0 restores the standard limit. Outside tests it does nothing.
  static void setListLimitUnderTest(std::size_t limit);

protected:
  /// Chooses a constructor that leaves the consumer off the list, for an
  /// owner that lists it together with others through enlistTogether.
  struct ListedByOwner {};

  /// Millimetre mode. Throws std::length_error "list too long" at the limit.
  UnitConsumer();
  /// Takes the other's mode, and a place of its own on the list.
  UnitConsumer(UnitConsumer const& other);
  UnitConsumer(ListedByOwner) noexcept {}
  UnitConsumer(UnitConsumer const& other, ListedByOwner) noexcept
      : m_toInternal(other.m_toInternal), m_toExternal(other.m_toExternal) {}
  /// Takes the other's mode; the place on the list stays.
  UnitConsumer& operator=(UnitConsumer const& other) noexcept {
    m_toInternal = other.m_toInternal;
    m_toExternal = other.m_toExternal;
    return *this;
  }
  // Not virtual: a consumer is only ever a base, never deleted through it.
  // Leaves the list unless its owner took it off already.
  ~UnitConsumer();

  /// Lists the consumers that are not listed yet, under one lock: all of
  /// them, or none when they would pass the limit.
  static void enlistTogether(std::initializer_list<UnitConsumer*> consumers);
  /// Takes the listed ones off, under one lock (none when none is listed);
  /// their destructors then leave the list alone.
  static void delistTogether(std::initializer_list<UnitConsumer*> consumers) noexcept;

private:
  void linkLocked() noexcept;
  void unlinkLocked() noexcept;

  double m_toInternal = 1.0;
  double m_toExternal = 1.0;
  UnitConsumer* m_previous = nullptr;
  UnitConsumer* m_next = nullptr;
  // Read and written only by the thread that makes or destroys this
  // consumer, so it needs no lock; the links above are other threads' too.
  bool m_listed = false;
};

}  // namespace post
}  // namespace vantora
}  // namespace com
