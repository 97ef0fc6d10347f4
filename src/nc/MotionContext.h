#pragma once
// Which motion a record of axis values belongs to: the machine, the NC
// program, the toolpath, the work offset and, inside patterns, the pattern
// instance. A context is valid once machine, program and toolpath are known.

#include <optional>
#include <vector>

#include "nc/PersistClass.h"
#include "nc/PersistentObject.h"

namespace persist {
class Persist;
}

namespace Orvo {

class MotionContext : public persist::PersistentObject {
public:
  /// Stored as "MotionContext", version 1: "m_machineId", "m_ncProgramId"
  /// and "m_toolpathId" as integers or null, the integer "m_workOffset", and
  /// the std::vector compound "m_patterns" of "MotionContext::PatternLevel"
  /// compounds, each with the integers "patternId" and "instance".
  static persist::PersistClass const iceStaticClass;

  /// One open pattern and the instance of it being run.
  struct PatternLevel {
    int patternId = 0;
    int instance = 0;
    friend bool operator==(PatternLevel const& a, PatternLevel const& b) noexcept {
      return a.patternId == b.patternId && a.instance == b.instance;
    }
    friend bool operator!=(PatternLevel const& a, PatternLevel const& b) noexcept { return !(a == b); }
  };

  MotionContext() = default;
  MotionContext(MotionContext const&) = default;
  MotionContext(MotionContext&&) noexcept = default;
  MotionContext& operator=(MotionContext const&) = default;
  MotionContext& operator=(MotionContext&&) noexcept = default;
  ~MotionContext() override;

  persist::PersistClass const& iceDynamicClass() const override { return iceStaticClass; }
  /// The members at the current version, within begin and end of the class.
  void iceListMembers(persist::Persist const& persist) override;
  /// An object member `name` holding the members of layout `version`, which
  /// a container gives explicitly (1 to iceStaticClass.version()).
  void serializeVersionedMembers(persist::Persist const& persist, char const* name, int version);

  bool isValid() const noexcept { return m_machineId && m_ncProgramId && m_toolpathId; }

  std::optional<int> machineId() const noexcept { return m_machineId; }
  std::optional<int> ncProgramId() const noexcept { return m_ncProgramId; }
  std::optional<int> toolpathId() const noexcept { return m_toolpathId; }
  /// 0 until one is set: the machine's own coordinates.
  int workOffset() const noexcept { return m_workOffset; }
  /// Open patterns, outermost first.
  std::vector<PatternLevel> const& patterns() const noexcept { return m_patterns; }

  void setMachineId(int id) noexcept { m_machineId = id; }
  void setNcProgramId(int id) noexcept { m_ncProgramId = id; }
  void setToolpathId(int id) noexcept { m_toolpathId = id; }
  void setWorkOffset(int offset) noexcept { m_workOffset = offset; }
  /// Opens a pattern inside those already open, at instance 0.
  void openPattern(int patternId);
  /// Closes the innermost open pattern; nothing when none is open.
  void closePattern() noexcept;
  /// Sets the instance of the innermost open pattern; nothing when none is open.
  void setPatternInstance(int instance) noexcept;

  friend bool operator==(MotionContext const& a, MotionContext const& b) noexcept {
    return a.m_machineId == b.m_machineId && a.m_ncProgramId == b.m_ncProgramId &&
           a.m_toolpathId == b.m_toolpathId && a.m_workOffset == b.m_workOffset && a.m_patterns == b.m_patterns;
  }
  friend bool operator!=(MotionContext const& a, MotionContext const& b) noexcept { return !(a == b); }

private:
  void directMembers(persist::Persist const& persist, int version);

  std::optional<int> m_machineId;
  std::optional<int> m_ncProgramId;
  std::optional<int> m_toolpathId;
  int m_workOffset = 0;
  std::vector<PatternLevel> m_patterns;
};

}  // namespace Orvo
