#pragma once
// How a multi-axis post outputs feed: inverse time, degrees per minute or
// plain feed per minute, with the settings each of those needs. A plain
// value; the machine configuration checks which settings apply to the mode.

namespace com {
namespace vantora {
namespace post {

class MultiAxisFeedrate {
public:
  // Fixed underlying types: a script may hand any integer through, and the
  // configuration keeps what it was given.
  enum FeedMode : int {
    FEED_INVERSE_TIME = 0,
    FEED_DPM = 1,  // degrees per minute
    FEED_FPM = 2,  // feed per minute
  };
  enum InverseTimeUnits : int {
    INVERSE_TIME_SECONDS = 0,
    INVERSE_TIME_MINUTES = 1,
  };
  enum DPMType : int {
    DPM_STANDARD = 0,
    DPM_COMBINATION = 1,
  };

  /// Feed per minute, no maximum, inverse time in minutes, DPM combination,
  /// tolerance and pulse weight unset (-1).
  MultiAxisFeedrate() noexcept = default;
  MultiAxisFeedrate(FeedMode mode, InverseTimeUnits units, double maximum) noexcept;
  MultiAxisFeedrate(FeedMode mode, double maximum, double outputTolerance) noexcept;

  FeedMode getFeedMode() const noexcept { return m_feedMode; }
  void setFeedMode(FeedMode mode) noexcept { m_feedMode = mode; }
  double getMaximumFeedrate() const noexcept { return m_maximumFeedrate; }
  void setMaximumFeedrate(double maximum) noexcept { m_maximumFeedrate = maximum; }
  InverseTimeUnits getInverseTimeUnits() const noexcept { return m_inverseTimeUnits; }
  void setInverseTimeUnits(InverseTimeUnits units) noexcept { m_inverseTimeUnits = units; }
  double getDPMOutputTolerance() const noexcept { return m_DPMOutputTolerance; }
  void setDPMOutputTolerance(double tolerance) noexcept { m_DPMOutputTolerance = tolerance; }
  /// The bpw ratio.
  double getDPMPulseWeight() const noexcept { return m_DPMPulseWeight; }
  void setDPMPulseWeight(double weight) noexcept { m_DPMPulseWeight = weight; }
  DPMType getDPMType() const noexcept { return m_DPMType; }
  void setDPMType(DPMType type) noexcept { m_DPMType = type; }

  /// Every field exactly.
  friend bool operator==(MultiAxisFeedrate const& a, MultiAxisFeedrate const& b) noexcept;
  friend bool operator!=(MultiAxisFeedrate const& a, MultiAxisFeedrate const& b) noexcept { return !(a == b); }

private:
  FeedMode m_feedMode = FEED_FPM;
  double m_maximumFeedrate = -1;
  InverseTimeUnits m_inverseTimeUnits = INVERSE_TIME_MINUTES;
  double m_DPMOutputTolerance = -1;
  double m_DPMPulseWeight = -1;
  DPMType m_DPMType = DPM_COMBINATION;
};

}  // namespace post
}  // namespace vantora
}  // namespace com
