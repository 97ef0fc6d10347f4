#pragma once
// The persist visitor. A persistent class lists its members once, in
// iceListMembers, as calls on a Persist; the same code reads and writes, and
// isReading() tells the two apart where they must differ. The encodings
// (JsonPersistWriter and JsonPersistReader, BinaryPersistWriter and
// BinaryPersistReader) derive from it.
//
// What a member list may hold, in the order a list typically uses them:
//   - isReading(): whether the visitor fills the object or stores it;
//   - versionGate(n): the members after it, up to the end of the class, are
//     part of the class from its version n on (see below);
//   - beginCompound(typeName, key) / endCompound(): a named group of members
//     of a plain type, such as the "std::vector" of a vector;
//   - beginClass(class) / endClass(): the members of one class, with the
//     version of its layout that the stream holds;
//   - beginArray(key, count) / endArray(): `count` elements, each visited
//     with a key of its own (the key of an element is not stored);
//   - beginObjectMember(key, class) / endObjectMember(): a persistent object
//     stored in place, of the given dynamic class;
//   - ownedPointer(key, pointer): a persistent object behind a
//     std::unique_ptr, or null; a reader makes it from the class database;
//   - value(key, ...): booleans, 32-bit integers (also with bounds, which is
//     how enumerations are kept), unsigned 64-bit integers, doubles, UTF-8
//     strings; presence(key, ...) marks an optional value.
// Keys, type names and class names are static texts (the keys are the m_
// names of the members): the binary writer knows a name it has written by
// its address.
//
// Versions and gates. Every class scope records in the stream the version of
// the class that wrote it (its PersistClass::version()); a reader refuses a
// version above the one it knows. A gate passes when the stored version is
// at least the gate's number: a passed gate reads and writes nothing, so
// gates cost nothing in the stream. A writer always stores its own class
// version and so passes every gate. A gate that fails, on reading a stream
// from an older version, cuts off the rest of its class scope: nothing more
// is read until endClass, plain values keep what they held, owned pointers
// become null and vectors (serializeVector) empty. Gates stand directly in a
// class scope, in ascending order, none above the class's own version.
//
// Failures are exceptions of type PersistError, with what was expected and
// where. After one, the visitor is spent; the typed entry points of the
// readers (JsonPersistReader::read, BinaryPersistReader::read) read into a
// fresh object and hand it over only when the whole stream was good, so a
// failed read leaves the caller's object as it was.
//
// All operations are const: persistent classes take a `Persist const&`, and
// the state of a visitor is its own business.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "nc/PersistClass.h"
#include "nc/PersistEnum.h"
#include "nc/PersistentObject.h"

namespace persist {

class Persist {
public:
  virtual ~Persist();
  Persist(Persist const&) = delete;
  Persist& operator=(Persist const&) = delete;

  bool isReading() const noexcept { return m_isReading; }

  /// Whether the members after the gate, to the end of the class scope, are
  /// in the stream: true for every writer, and for a reader when the stored
  /// version of the class is at least `version`.
  bool versionGate(int version) const;

  void beginCompound(char const* typeName, char const* key) const;
  void endCompound() const;
  void beginClass(PersistClass const& staticClass) const;
  void endClass() const;
  /// A reader checks that the stream holds exactly `count` elements.
  void beginArray(char const* key, std::uint64_t count) const;
  /// Checks that `count` elements were visited.
  void endArray() const;
  /// A reader checks that the stored class is `dynamicClass` (or a name that
  /// the class database gives it).
  void beginObjectMember(char const* key, PersistClass const& dynamicClass) const;
  void endObjectMember() const;

  /// A persistent object behind a pointer, or null. T derives from
  /// PersistentObject and names its record `T::iceStaticClass`; a reader
  /// creates the stored class from the class database and refuses one that
  /// is not a T. The pointer is replaced only once the object is read.
  template <class T>
  void ownedPointer(char const* key, std::unique_ptr<T>& pointer) const;

  void value(char const* key, bool& v) const;
  void value(char const* key, int& v) const;
  /// An integer that must lie in [minimum, maximum], on reading and on
  /// writing; `enumeration`, when given, names it in messages.
  void value(char const* key, int& v, int minimum, int maximum, char const* enumeration = nullptr) const;
  void value(char const* key, std::uint64_t& v) const;
  void value(char const* key, double& v) const;
  /// UTF-8 text; the JSON writer refuses a string that is not valid UTF-8.
  void value(char const* key, std::string& v) const;
  /// Ahead of an optional value: a writer stores null and answers false when
  /// `present` is false, and otherwise stores nothing and answers true, the
  /// value following under the same key; a reader answers whether a value
  /// follows, having consumed a stored null.
  bool presence(char const* key, bool present) const;

  /// Where the visitor stands, such as "root.m_container_versioned[2].motion".
  std::string path() const;

protected:
  explicit Persist(bool isReading) noexcept;

  /// Throws PersistError for `problem`, with the encoding's name, the path
  /// and, where the encoding has one, the byte offset.
  [[noreturn]] void fail(std::string const& problem) const;
  /// Fails unless every scope that was begun has ended.
  void checkAllClosed() const;

private:
  enum class Kind : unsigned char { Object, Class, Compound, Array };
  struct Frame {
    Kind kind;
    char const* key;
    /// Position in the enclosing array, or -1.
    std::int64_t index;
    // A class scope.
    PersistClass const* persistClass;
    int storedVersion;
    int lastGate;
    // An array.
    std::uint64_t count;
    std::uint64_t next;
  };

  /// The index of an element that begins now in the innermost array, or -1
  /// outside arrays; fails when the array is full.
  std::int64_t enterElement() const;
  void pushFrame(Kind kind, char const* key, std::int64_t index) const;
  /// Counts a value as an element and notes its key for messages; false
  /// while a failed gate cuts members off.
  bool beginValue(char const* key) const;
  void popFrame(Kind kind, char const* operation) const;
  /// True while a failed gate cuts members off; an end that leaves the
  /// cut-off scope turns it off and is processed.
  bool skipEnd() const noexcept;
  PersistClass const& beginAnyObjectMember(char const* key) const;
  [[noreturn]] void failNotA(char const* expected, PersistClass const& found) const;

  // The encoding. The base has checked scopes and counts and pushed the
  // frame of a begin before calling it, and pops it after the end.
  virtual char const* doFormName() const noexcept = 0;
  /// The byte offset of the item being processed, for messages.
  virtual std::optional<std::uint64_t> doByteOffset() const noexcept { return std::nullopt; }
  virtual void doBeginCompound(char const* typeName, char const* key) const = 0;
  virtual void doEndCompound() const = 0;
  /// Writers store the class's version and return it; readers return the
  /// stored one.
  virtual int doBeginClass(PersistClass const& staticClass) const = 0;
  virtual void doEndClass() const = 0;
  virtual void doBeginArray(char const* key, std::uint64_t count) const = 0;
  virtual void doEndArray() const = 0;
  virtual void doBeginObjectMember(char const* key, PersistClass const& dynamicClass) const = 0;
  /// Readers only: begins an object member of whatever registered class the
  /// stream names, and returns that class.
  virtual PersistClass const& doBeginAnyObjectMember(char const* key) const;
  virtual void doEndObjectMember() const = 0;
  virtual void doValue(char const* key, bool& v) const = 0;
  virtual void doValue(char const* key, int& v) const = 0;
  virtual void doValue(char const* key, std::uint64_t& v) const = 0;
  virtual void doValue(char const* key, double& v) const = 0;
  virtual void doValue(char const* key, std::string& v) const = 0;
  virtual bool doPresence(char const* key, bool present) const = 0;

  bool const m_isReading;
  mutable std::vector<Frame> m_frames;
  /// -1 when no gate has failed; otherwise the depth of scopes begun since.
  mutable int m_skipNesting = -1;
  /// The value being processed, for messages.
  mutable char const* m_valueKey = nullptr;
  mutable std::int64_t m_valueIndex = -1;
};

template <class T>
void Persist::ownedPointer(char const* key, std::unique_ptr<T>& pointer) const {
  static_assert(std::is_base_of<PersistentObject, T>::value, "an owned pointer holds a PersistentObject");
  if (m_skipNesting >= 0) {
    if (m_isReading) pointer.reset();
    return;
  }
  if (!m_isReading) {
    if (!presence(key, pointer != nullptr)) return;
    beginObjectMember(key, pointer->iceDynamicClass());
    pointer->iceListMembers(*this);
    endObjectMember();
    return;
  }
  if (!presence(key, true)) {
    pointer.reset();
    return;
  }
  PersistClass const& stored = beginAnyObjectMember(key);
  std::unique_ptr<PersistentObject> object = stored.create();
  T* const typed = dynamic_cast<T*>(object.get());
  if (!typed) failNotA(T::iceStaticClass.name(), stored);
  typed->iceListMembers(*this);
  endObjectMember();
  object.release();
  pointer.reset(typed);
}

// persist::serialize: one member of any kind the visitor knows, under `key`.

inline void serialize(Persist const& persist, char const* key, bool& v) { persist.value(key, v); }
inline void serialize(Persist const& persist, char const* key, int& v) { persist.value(key, v); }
inline void serialize(Persist const& persist, char const* key, std::uint64_t& v) { persist.value(key, v); }
inline void serialize(Persist const& persist, char const* key, double& v) { persist.value(key, v); }
inline void serialize(Persist const& persist, char const* key, std::string& v) { persist.value(key, v); }

/// A persistent object in place: an object member of its dynamic class,
/// filled by its iceListMembers.
template <class T>
auto serialize(Persist const& persist, char const* key, T& object) -> decltype(object.iceListMembers(persist), void()) {
  persist.beginObjectMember(key, object.iceDynamicClass());
  object.iceListMembers(persist);
  persist.endObjectMember();
}

/// An optional value: null when empty.
template <class T>
void serialize(Persist const& persist, char const* key, std::optional<T>& v) {
  if (persist.presence(key, v.has_value())) {
    if (!v) v.emplace();
    serialize(persist, key, *v);
  } else if (persist.isReading()) {
    v.reset();
  }
}

/// An enumeration, as its integer value within the registered bounds.
template <class E>
void serializeEnum(Persist const& persist, char const* key, E& v, PersistEnum const& registration) {
  static_assert(std::is_enum<E>::value, "serializeEnum takes an enumeration");
  int number = static_cast<int>(v);
  persist.value(key, number, registration.minimum(), registration.maximum(), registration.name());
  if (persist.isReading()) v = static_cast<E>(number);
}

/// A std::vector as the compound "std::vector" under `key`: its size as the
/// unsigned 64-bit "m_size", then the array "m_array" of its elements, each
/// visited by `element(persist, item)`. A reader resizes the vector to the
/// stored size once the array has begun, that is once the stream has shown
/// that it holds that many elements.
template <class T, class F>
void serializeVector(Persist const& persist, char const* key, std::vector<T>& items, F&& element) {
  std::uint64_t size = persist.isReading() ? 0u : static_cast<std::uint64_t>(items.size());
  persist.beginCompound("std::vector", key);
  persist.value("m_size", size);
  persist.beginArray("m_array", size);
  if (persist.isReading()) {
    items.clear();
    items.resize(static_cast<std::size_t>(size));
  }
  for (T& item : items) element(persist, item);
  persist.endArray();
  persist.endCompound();
}

}  // namespace persist
