#pragma once
// What a multi-axis post does when a rotary axis runs out of its range:
// whether the machine may rewind (reconfigure) at all, where the rewind
// happens, and the retract and plunge that go with it. A plain value;
// lengths are held in millimetres.

#include "machine/machine/PostMachineConfig/Vector.h"

namespace com {
namespace vantora {
namespace post {

class MultiAxisRetractAndReconfigure {
public:
  // The values behind the rewind and retract preferences. They are held as
  // plain integers, as scripts pass them; the names are those of the
  // configuration's messages, in the order of the machine file's words
  // ("RewindAtLinear" 1, "RewindAtRapid" 2, "RetractAtApex" 1,
  // "StayAtApex" 2).
  enum RewindPreference : int {
    REWIND_AT_LINEAR = 1,
    REWIND_AT_RAPID = 2,
  };
  enum RetractPreference : int {
    REWIND_RETRACT_AT_APEX = 1,
    REWIND_STAY_AT_APEX = 2,
  };
  // The rewind strategies, likewise as the machine file names them
  // ("MinimizeRewinds" 0, "AxisPreference" 1).
  enum RewindStrategy : int {
    REWIND_STRATEGY_MINIMIZE_REWINDS = 0,
    REWIND_STRATEGY_AXIS_PREFERENCE = 1,
  };

  /// Rewinds off, rewind at linear, retract at apex, minimise rewinds, no
  /// stock expansion, zero distances and feeds.
  MultiAxisRetractAndReconfigure() = default;

  bool getReconfigure() const noexcept { return m_reconfigure; }
  void setReconfigure(bool reconfigure) noexcept { m_reconfigure = reconfigure; }
  int getRewindPreference() const noexcept { return m_rewindPreference; }
  void setRewindPreference(int preference) noexcept { m_rewindPreference = preference; }
  int getRetractPreference() const noexcept { return m_retractPreference; }
  void setRetractPreference(int preference) noexcept { m_retractPreference = preference; }
  int getRewindStrategy() const noexcept { return m_rewindStrategy; }
  void setRewindStrategy(int strategy) noexcept { m_rewindStrategy = strategy; }
  Vector const& getStockExpansion() const noexcept { return m_stockExpansion; }
  void setStockExpansion(Vector const& expansion) noexcept { m_stockExpansion = expansion; }
  double getSafeRetractDistance() const noexcept { return m_safeRetractDistance; }
  void setSafeRetractDistance(double distance) noexcept { m_safeRetractDistance = distance; }
  double getSafeRetractFeedrate() const noexcept { return m_safeRetractFeedrate; }
  void setSafeRetractFeedrate(double feedrate) noexcept { m_safeRetractFeedrate = feedrate; }
  double getSafePlungeFeedrate() const noexcept { return m_safePlungeFeedrate; }
  void setSafePlungeFeedrate(double feedrate) noexcept { m_safePlungeFeedrate = feedrate; }

  /// Every field exactly.
  friend bool operator==(MultiAxisRetractAndReconfigure const& a, MultiAxisRetractAndReconfigure const& b) noexcept;
  friend bool operator!=(MultiAxisRetractAndReconfigure const& a, MultiAxisRetractAndReconfigure const& b) noexcept {
    return !(a == b);
  }

private:
  bool m_reconfigure = false;
  int m_rewindPreference = REWIND_AT_LINEAR;
  int m_retractPreference = REWIND_RETRACT_AT_APEX;
  int m_rewindStrategy = REWIND_STRATEGY_MINIMIZE_REWINDS;
  Vector m_stockExpansion;
  double m_safeRetractDistance = 0;
  double m_safeRetractFeedrate = 0;
  double m_safePlungeFeedrate = 0;
};

}  // namespace post
}  // namespace vantora
}  // namespace com
