#include "machine/machine/MachineMotion.h"

#include "nc/Persist.h"
#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\MachineMotion";
}

namespace machine {

persist::PersistClass const MachineMotion::iceStaticClass{"MachineMotion", MachineMotion::s_version,
                                                          &persist::makePersistent<MachineMotion>};

MachineMotion::MachineMotion(Orvo::MotionContext context)
    : m_context(std::make_unique<Orvo::MotionContext>(std::move(context))), m_isValid(true) {
  EXPECTS(m_context->isValid());
}

MachineMotion::MachineMotion(Copy, MachineMotion const& other)
    : m_context(other.m_context ? std::make_unique<Orvo::MotionContext>(*other.m_context) : nullptr),
      m_axisOrdering(other.m_axisOrdering ? std::make_unique<Orvo::AxisOrdering>(*other.m_axisOrdering) : nullptr),
      m_entityArray(other.m_entityArray),
      m_isValid(other.m_isValid) {}

MachineMotion::~MachineMotion() = default;

Orvo::MotionContext const& MachineMotion::context() const noexcept {
  static Orvo::MotionContext const none;
  return m_context ? *m_context : none;
}

void MachineMotion::setContext(Orvo::MotionContext context) {
  EXPECTS(context.isValid());
  m_context = std::make_unique<Orvo::MotionContext>(std::move(context));
}

Orvo::AxisOrdering const& MachineMotion::axisOrdering(int) const noexcept {
  static Orvo::AxisOrdering const none;
  return m_axisOrdering ? *m_axisOrdering : none;
}

void MachineMotion::setAxisOrdering(Orvo::AxisOrdering ordering) {
  m_axisOrdering = std::make_unique<Orvo::AxisOrdering>(std::move(ordering));
}

void MachineMotion::appendEntity(Orvo::AxisValues values) { m_entityArray.emplace_back(std::move(values)); }

Orvo::AxisValues const& MachineMotion::axisValues(int i) const {
  EXPECTS(i < numEntities());
  if (i >= 0 && i < numEntities()) return m_entityArray[static_cast<std::size_t>(i)].axisValues();
  static Orvo::AxisValues const none;
  return m_entityArray.empty() ? none : m_entityArray.front().axisValues();
}

namespace {
template <class T>
bool samePointee(std::unique_ptr<T> const& a, std::unique_ptr<T> const& b) {
  if (!a || !b) return !a && !b;
  return *a == *b;
}
}  // namespace

bool operator==(MachineMotion const& a, MachineMotion const& b) {
  if (!samePointee(a.m_context, b.m_context) || !samePointee(a.m_axisOrdering, b.m_axisOrdering)) return false;
  if (a.m_entityArray.size() != b.m_entityArray.size()) return false;
  for (std::size_t i = 0; i < a.m_entityArray.size(); ++i)
    if (a.m_entityArray[i].axisValues() != b.m_entityArray[i].axisValues()) return false;
  return a.m_isValid == b.m_isValid;
}

void MachineMotion::iceListMembers(persist::Persist const& persist) {
  persist.beginClass(iceStaticClass);
  directMembers(persist);
  persist.endClass();
}

void MachineMotion::unversionedMembers(persist::Persist const& persist, Orvo::MotionContext& context,
                                       Orvo::AxisOrdering& ordering) {
  context.serializeVersionedMembers(persist, "m_context", 1);
  ordering.serializeVersionedMembers(persist, "m_axisOrdering", 1);
  persist::serialize(persist, "m_isValid", m_isValid);
  persist::serializeVector(persist, "m_entityArray", m_entityArray,
                           [](persist::Persist const& p, MotionEntity& entity) { persist::serialize(p, "item", entity); });
}

void MachineMotion::directMembers(persist::Persist const& persist) {
  // On writing the temporaries stay default: the true data goes under the
  // versioned keys. On reading an old stream they hold the data.
  Orvo::MotionContext context;
  Orvo::AxisOrdering ordering;
  unversionedMembers(persist, context, ordering);
  persist.versionGate(2);
  persist.ownedPointer("m_context_versioned", m_context);
  if (!m_context) m_context = std::make_unique<Orvo::MotionContext>(context);
  persist.versionGate(3);
  persist.ownedPointer("m_axisOrdering_versioned", m_axisOrdering);
  if (!m_axisOrdering) m_axisOrdering = std::make_unique<Orvo::AxisOrdering>(ordering);
}

void MachineMotion::serializeVersionedMembers(persist::Persist const& persist, char const* name, int version) {
  EXPECTS(version > 0);
  EXPECTS(version <= currentVersion());
  persist.beginObjectMember(name, iceDynamicClass());
  persist.beginClass(iceStaticClass);
  Orvo::MotionContext context;
  Orvo::AxisOrdering ordering;
  unversionedMembers(persist, context, ordering);
  if (version > 1) persist.ownedPointer("m_context_versioned", m_context);
  // Only fills a gap...
  if (!m_context) m_context = std::make_unique<Orvo::MotionContext>(context);
  // ...while the ordering of an older version is always the one from the
  // old key, whatever the pointer held. The difference is the format's and
  // stays.
  if (version < 3)
    m_axisOrdering = std::make_unique<Orvo::AxisOrdering>(ordering);
  else
    persist.ownedPointer("m_axisOrdering_versioned", m_axisOrdering);
  persist.endClass();
  persist.endObjectMember();
}

}  // namespace machine
