#include "nc/AxisOrdering.h"

#include "nc/Persist.h"
#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "nc\\AxisOrdering";
}

namespace Orvo {

persist::PersistClass const AxisOrdering::iceStaticClass{"AxisOrdering", 1, &persist::makePersistent<AxisOrdering>};


std::optional<int> AxisOrdering::index(AxisName const& name) const noexcept {
  for (std::size_t i = 0; i < m_entries.size(); ++i)
    if (m_entries[i].axisName() == name) return static_cast<int>(i);
  return std::nullopt;
}

}  // namespace Orvo

namespace Orvo {

void AxisOrdering::iceListMembers(persist::Persist const& persist) {
  persist.beginClass(iceStaticClass);
  directMembers(persist, iceStaticClass.version());
  persist.endClass();
}

void AxisOrdering::serializeVersionedMembers(persist::Persist const& persist, char const* name, int version) {
  EXPECTS(version > 0);
  EXPECTS(version <= iceStaticClass.version());
  persist.beginObjectMember(name, iceDynamicClass());
  persist.beginClass(iceStaticClass);
  directMembers(persist, version);
  persist.endClass();
  persist.endObjectMember();
}

void AxisOrdering::directMembers(persist::Persist const& persist, int) {
  // Version 1 is the only layout so far.
  persist::serializeVector(persist, "m_entries", m_entries, [](persist::Persist const& p, AxisInfo& info) {
    std::string partId = info.machinePartId().id();
    std::string axisName = info.axisName().name();
    p.beginCompound("AxisInfo", "item");
    p.value("m_partId", partId);
    p.value("m_axisName", axisName);
    p.endCompound();
    if (p.isReading()) info = AxisInfo(MachinePartId(partId), AxisName(axisName));
  });
}

}  // namespace Orvo
