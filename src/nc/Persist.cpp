#include "nc/Persist.h"

#include <climits>

#include "nc/PersistError.h"
#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "nc\\Persist";
}

namespace persist {

Persist::Persist(bool isReading) noexcept : m_isReading(isReading) {}

Persist::~Persist() = default;

// Scopes

inline std::int64_t Persist::enterElement() const {
  if (m_frames.empty() || m_frames.back().kind != Kind::Array) return -1;
  Frame& array = m_frames.back();
  if (array.next >= array.count)
    fail("the array holds " + std::to_string(array.count) + " elements; one more was visited");
  return static_cast<std::int64_t>(array.next++);
}

inline void Persist::pushFrame(Kind kind, char const* key, std::int64_t index) const {
  m_frames.push_back(Frame{kind, key, index, nullptr, 0, 0, 0, 0});
}

void Persist::popFrame(Kind kind, char const* operation) const {
  if (m_frames.empty() || m_frames.back().kind != kind)
    fail(std::string(operation) + " does not close the innermost open scope");
  m_frames.pop_back();
}

inline bool Persist::skipEnd() const noexcept {
  if (m_skipNesting < 0) return false;
  if (m_skipNesting > 0) {
    --m_skipNesting;
    return true;
  }
  // The end of the scope the failed gate stood in: reading resumes here.
  m_skipNesting = -1;
  return false;
}

bool Persist::versionGate(int version) const {
  if (m_skipNesting >= 0) return false;
  bool const inClass = !m_frames.empty() && m_frames.back().kind == Kind::Class;
  EXPECTS(inClass && "A version gate stands directly in a class scope.");
  if (!inClass) return true;
  Frame& scope = m_frames.back();
  EXPECTS(version <= scope.persistClass->version());
  EXPECTS(version >= scope.lastGate);
  scope.lastGate = version;
  if (!m_isReading || scope.storedVersion >= version) return true;
  m_skipNesting = 0;
  return false;
}

void Persist::beginCompound(char const* typeName, char const* key) const {
  if (m_skipNesting >= 0) {
    ++m_skipNesting;
    return;
  }
  pushFrame(Kind::Compound, key, enterElement());
  doBeginCompound(typeName, key);
}

void Persist::endCompound() const {
  if (skipEnd()) return;
  if (m_frames.empty() || m_frames.back().kind != Kind::Compound) popFrame(Kind::Compound, "endCompound()");
  doEndCompound();
  m_frames.pop_back();
}

void Persist::beginClass(PersistClass const& staticClass) const {
  if (m_skipNesting >= 0) {
    ++m_skipNesting;
    return;
  }
  pushFrame(Kind::Class, nullptr, -1);
  m_frames.back().persistClass = &staticClass;
  int const stored = doBeginClass(staticClass);
  if (m_isReading) {
    if (stored < 1)
      fail("the class " + std::string(staticClass.name()) + " is stored at version " + std::to_string(stored) +
           "; versions count from 1");
    if (stored > staticClass.version())
      fail("the class " + std::string(staticClass.name()) + " is stored at version " + std::to_string(stored) +
           ", which is newer than this library reads (up to " + std::to_string(staticClass.version()) + ")");
  }
  m_frames.back().storedVersion = stored;
}

void Persist::endClass() const {
  if (skipEnd()) return;
  if (m_frames.empty() || m_frames.back().kind != Kind::Class) popFrame(Kind::Class, "endClass()");
  doEndClass();
  m_frames.pop_back();
}

void Persist::beginArray(char const* key, std::uint64_t count) const {
  if (m_skipNesting >= 0) {
    ++m_skipNesting;
    return;
  }
  pushFrame(Kind::Array, key, enterElement());
  m_frames.back().count = count;
  doBeginArray(key, count);
}

void Persist::endArray() const {
  if (skipEnd()) return;
  if (m_frames.empty() || m_frames.back().kind != Kind::Array) popFrame(Kind::Array, "endArray()");
  Frame const& array = m_frames.back();
  if (array.next != array.count)
    fail("the array holds " + std::to_string(array.count) + " elements, but " + std::to_string(array.next) +
         " were visited");
  doEndArray();
  m_frames.pop_back();
}

void Persist::beginObjectMember(char const* key, PersistClass const& dynamicClass) const {
  if (m_skipNesting >= 0) {
    ++m_skipNesting;
    return;
  }
  pushFrame(Kind::Object, key, enterElement());
  doBeginObjectMember(key, dynamicClass);
}

PersistClass const& Persist::beginAnyObjectMember(char const* key) const {
  pushFrame(Kind::Object, key, enterElement());
  return doBeginAnyObjectMember(key);
}

void Persist::endObjectMember() const {
  if (skipEnd()) return;
  if (m_frames.empty() || m_frames.back().kind != Kind::Object) popFrame(Kind::Object, "endObjectMember()");
  doEndObjectMember();
  m_frames.pop_back();
}

PersistClass const& Persist::doBeginAnyObjectMember(char const*) const {
  fail("only a reader creates objects from the stream");
}

void Persist::failNotA(char const* expected, PersistClass const& found) const {
  fail("expected an object of class " + std::string(expected) + ", found class " + found.name());
}

// Values

namespace {
// Clears the value key when a value is done, also when it fails.
struct ValueScope {
  char const*& key;
  ~ValueScope() { key = nullptr; }
};
}  // namespace

inline bool Persist::beginValue(char const* key) const {
  if (m_skipNesting >= 0) return false;
  std::int64_t const index = enterElement();
  m_valueKey = key;
  m_valueIndex = index;
  return true;
}

void Persist::value(char const* key, bool& v) const {
  if (!beginValue(key)) return;
  ValueScope scope{m_valueKey};
  doValue(key, v);
}

void Persist::value(char const* key, int& v) const {
  if (!beginValue(key)) return;
  ValueScope scope{m_valueKey};
  doValue(key, v);
}

void Persist::value(char const* key, int& v, int minimum, int maximum, char const* enumeration) const {
  if (!beginValue(key)) return;
  ValueScope scope{m_valueKey};
  auto const describe = [&]() {
    return std::string("an integer") + (enumeration ? std::string(" of the enumeration ") + enumeration : "") +
           " from " + std::to_string(minimum) + " to " + std::to_string(maximum);
  };
  if (!m_isReading && (v < minimum || v > maximum))
    fail("cannot write " + std::to_string(v) + ": expected " + describe());
  int stored = v;
  doValue(key, stored);
  if (m_isReading && (stored < minimum || stored > maximum))
    fail("expected " + describe() + ", found " + std::to_string(stored));
  v = stored;
}

void Persist::value(char const* key, std::uint64_t& v) const {
  if (!beginValue(key)) return;
  ValueScope scope{m_valueKey};
  doValue(key, v);
}

void Persist::value(char const* key, double& v) const {
  if (!beginValue(key)) return;
  ValueScope scope{m_valueKey};
  doValue(key, v);
}

void Persist::value(char const* key, std::string& v) const {
  if (!beginValue(key)) return;
  ValueScope scope{m_valueKey};
  doValue(key, v);
}

bool Persist::presence(char const* key, bool present) const {
  if (m_skipNesting >= 0) return present;
  m_valueKey = key;
  ValueScope scope{m_valueKey};
  bool const inArray = !m_frames.empty() && m_frames.back().kind == Kind::Array;
  m_valueIndex = inArray ? static_cast<std::int64_t>(m_frames.back().next) : -1;
  if (inArray && m_frames.back().next >= m_frames.back().count)
    fail("the array holds " + std::to_string(m_frames.back().count) + " elements; one more was visited");
  bool const follows = doPresence(key, present);
  // A null is a whole element; a value that follows counts for itself.
  if (!follows && inArray) ++m_frames.back().next;
  return follows;
}

// Messages

std::string Persist::path() const {
  std::string text;
  auto const append = [&text](char const* key, std::int64_t index) {
    if (index >= 0) {
      text += "[" + std::to_string(index) + "]";
    } else if (key) {
      if (!text.empty()) text += '.';
      text += key;
    }
  };
  for (Frame const& frame : m_frames) append(frame.key, frame.index);
  if (m_valueKey) append(m_valueKey, m_valueIndex);
  return text;
}

void Persist::fail(std::string const& problem) const {
  std::string const where = path();
  std::optional<std::uint64_t> const offset = doByteOffset();
  std::string message = std::string("persist ") + doFormName() + ": ";
  if (offset) {
    message += "at byte " + std::to_string(*offset);
    if (!where.empty()) message += " (" + where + ")";
    message += ": ";
  } else if (!where.empty()) {
    message += "at " + where + ": ";
  }
  message += problem;
  throw PersistError(message, where, offset);
}

void Persist::checkAllClosed() const {
  if (m_skipNesting >= 0 || !m_frames.empty()) fail("a scope that was begun has not ended");
}

}  // namespace persist
