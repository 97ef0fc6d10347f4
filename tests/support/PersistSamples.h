#pragma once
// Small persistent classes that exercise every operation of the persist
// visitor, for the framework's own tests.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "nc/BinaryPersistReader.h"
#include "nc/BinaryPersistWriter.h"
#include "nc/JsonPersistReader.h"
#include "nc/JsonPersistWriter.h"
#include "nc/Persist.h"
#include "nc/PersistClassDatabase.h"
#include "nc/PersistError.h"

namespace mtkit_test {

/// Version 2 added "m_added" behind a gate.
class Sample : public persist::PersistentObject {
public:
  static persist::PersistClass const iceStaticClass;

  bool flag = false;
  int number = 0;
  std::uint64_t big = 0;
  double real = 0.0;
  std::string text;
  std::optional<int> maybe;
  std::vector<double> list;
  std::unique_ptr<Sample> child;
  int added = -1;

  persist::PersistClass const& iceDynamicClass() const override { return iceStaticClass; }
  void iceListMembers(persist::Persist const& p) override {
    p.beginClass(iceStaticClass);
    persist::serialize(p, "m_flag", flag);
    persist::serialize(p, "m_number", number);
    persist::serialize(p, "m_big", big);
    persist::serialize(p, "m_real", real);
    persist::serialize(p, "m_text", text);
    persist::serialize(p, "m_maybe", maybe);
    persist::serializeVector(p, "m_list", list, [](persist::Persist const& q, double& d) { q.value("item", d); });
    p.ownedPointer("m_child", child);
    p.versionGate(2);
    persist::serialize(p, "m_added", added);
    p.endClass();
  }

  friend bool operator==(Sample const& a, Sample const& b) {
    bool const children = (!a.child && !b.child) || (a.child && b.child && *a.child == *b.child);
    return a.flag == b.flag && a.number == b.number && a.big == b.big && a.real == b.real && a.text == b.text &&
           a.maybe == b.maybe && a.list == b.list && children && a.added == b.added;
  }
};
inline persist::PersistClass const Sample::iceStaticClass{"Sample", 2, &persist::makePersistent<Sample>};

/// A class whose members are listed in two class scopes, its base's and its
/// own, in one object.
class Derived : public Sample {
public:
  static persist::PersistClass const iceStaticClass;
  int own = 0;
  persist::PersistClass const& iceDynamicClass() const override { return iceStaticClass; }
  void iceListMembers(persist::Persist const& p) override {
    p.beginClass(iceStaticClass);
    persist::serialize(p, "m_own", own);
    Sample::iceListMembers(p);
    p.endClass();
  }
};
inline persist::PersistClass const Derived::iceStaticClass{"Derived", 1, &persist::makePersistent<Derived>};

/// Another class, for pointers that hold the wrong kind.
class Other : public persist::PersistentObject {
public:
  static persist::PersistClass const iceStaticClass;
  persist::PersistClass const& iceDynamicClass() const override { return iceStaticClass; }
  void iceListMembers(persist::Persist const& p) override {
    p.beginClass(iceStaticClass);
    p.endClass();
  }
};
inline persist::PersistClass const Other::iceStaticClass{"Other", 1, &persist::makePersistent<Other>};

/// Holds a Sample behind a pointer to its base.
class Holder : public persist::PersistentObject {
public:
  static persist::PersistClass const iceStaticClass;
  std::unique_ptr<Sample> held;
  persist::PersistClass const& iceDynamicClass() const override { return iceStaticClass; }
  void iceListMembers(persist::Persist const& p) override {
    p.beginClass(iceStaticClass);
    p.ownedPointer("m_held", held);
    p.endClass();
  }
};
inline persist::PersistClass const Holder::iceStaticClass{"Holder", 1, &persist::makePersistent<Holder>};

inline persist::PersistClassDatabase const& sampleDatabase() {
  static persist::PersistClassDatabase const database = [] {
    persist::PersistClassDatabase d;
    d.add("Sample", Sample::iceStaticClass);
    d.add("Derived", Derived::iceStaticClass);
    d.add("Other", Other::iceStaticClass);
    d.add("Holder", Holder::iceStaticClass);
    return d;
  }();
  return database;
}

inline Sample fullSample() {
  Sample s;
  s.flag = true;
  s.number = -123456;
  s.big = 18446744073709551615ull;
  s.real = 0.1;
  s.text = "Gr\xc3\xbc\xc3\x9f" "e \"quoted\" \\ \t";
  s.maybe = 42;
  s.list = {1.5, -2.25, 1e300};
  s.child = std::make_unique<Sample>();
  s.child->text = "child";
  s.child->added = 5;
  s.added = 77;
  return s;
}

template <class T>
T throughJson(T& object) {
  T result;
  persist::JsonPersistReader::read(persist::JsonPersistWriter::write(object), sampleDatabase(), result);
  return result;
}

template <class T>
T throughBinary(T& object) {
  T result;
  persist::BinaryPersistReader::read(persist::BinaryPersistWriter::write(object), sampleDatabase(), result);
  return result;
}

/// The text of the PersistError that `f` throws.
inline std::string persistError(std::function<void()> const& f) {
  try {
    f();
  } catch (persist::PersistError const& e) {
    return e.what();
  }
  return "no PersistError";
}

template <class T>
std::string jsonReadError(std::string const& text) {
  T target;
  return persistError([&] { persist::JsonPersistReader::read(text, sampleDatabase(), target); });
}

template <class T>
std::string binaryReadError(std::string const& bytes) {
  T target;
  return persistError([&] { persist::BinaryPersistReader::read(bytes, sampleDatabase(), target); });
}

}  // namespace mtkit_test
