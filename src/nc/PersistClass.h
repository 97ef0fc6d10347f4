#pragma once
// The record of one persistent class: the name under which it is stored, its
// current layout version, and, for a class that can stand behind an owned
// pointer, how to make an empty one for a reader to fill.
//
// Records are static objects (a class's `iceStaticClass`) built by constant
// initialisation, so they are complete before any code runs and may be used
// from other static initialisers.

#include <memory>

namespace persist {

class PersistentObject;

class PersistClass {
public:
  using Factory = std::unique_ptr<PersistentObject> (*)();

  /// `name` is a static text; `version` counts from 1 and grows with every
  /// change of the member layout that the class's version gates read.
  constexpr PersistClass(char const* name, int version, Factory factory = nullptr) noexcept
      : m_name(name), m_version(version), m_factory(factory) {}
  PersistClass(PersistClass const&) = delete;
  PersistClass& operator=(PersistClass const&) = delete;

  constexpr char const* name() const noexcept { return m_name; }
  constexpr int version() const noexcept { return m_version; }
  /// Whether create() makes objects: only classes derived from
  /// PersistentObject can stand behind an owned pointer.
  constexpr bool canCreate() const noexcept { return m_factory != nullptr; }
  /// A new default object of the class; null when the class has no factory.
  std::unique_ptr<PersistentObject> create() const;

private:
  char const* m_name;
  int m_version;
  Factory m_factory;
};

/// The factory of a default-constructible class derived from PersistentObject.
template <class T>
std::unique_ptr<PersistentObject> makePersistent() {
  return std::unique_ptr<PersistentObject>(new T());
}

}  // namespace persist
