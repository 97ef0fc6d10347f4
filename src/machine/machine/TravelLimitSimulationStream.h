#pragma once
// A link that watches every pose going by against the travel of the
// machine's axes, as the controller allows it (Axis::range(): the physical
// range narrowed by the controller configuration), and hands everything on
// unchanged. It is not part of the standard chain: an application that wants
// to hear about over-travel places it itself, usually right behind the
// solver, where every pose carries solved values.
//
// For each axis of a pose that stands outside its range, it sends an issue
// with the code OUT_OF_TRAVEL (100, outside the numbers the library's other
// links raise, so an error by severityOfIssue) just ahead of the pose, the
// way the solver sends its own issue ahead of the values it could not solve:
//
//   "Axis Z is out of travel: 478.5 mm is outside -1000 to 0 mm."
//   "Axis A is out of travel at line 12: 31.25 deg is outside -110 to 30 deg."
//
// One issue for each axis out of travel in each pose, so a pose with two
// axes out sends two. The line is that of the line source, when one is set
// and knows it (a positive number). It also counts, per axis, the poses in
// which that axis stood out of travel, with the first lines and the extreme
// values, for a summary.
//
// What counts as out of travel:
// - a value below min() or above max() by more than kTolerance (1e-6 mm or
//   degrees), so that a solver landing on a limit within rounding is inside;
// - an infinite value (it is beyond every finite limit);
// - not a NaN: a NaN is no position (a placeholder not yet solved), and the
//   solver has its own issue for a failed solve;
// - never on an axis whose range is infinite, nor on a cyclic axis (an
//   unlimited axis that wraps around a turn), which reaches any angle.
//
// The ranges are taken from the machine when the link is built; the machine
// is not kept, so it may be dropped afterwards. Parts of an ordering that the
// machine does not have, and parts without an axis, are not checked.

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "machine/machine/AxisType.h"
#include "machine/machine/ForwardingSimulationStream.h"
#include "nc/AxisName.h"
#include "nc/AxisValueRange.h"
#include "nc/MachinePartId.h"

namespace machine {

class Machine;

class TravelLimitSimulationStream : public ForwardingSimulationStream {
public:
  /// The code of an over-travel issue.
  static constexpr IssueCode OUT_OF_TRAVEL = static_cast<IssueCode>(100);
  /// How far past a limit a value may stand and still count as inside.
  static constexpr double kTolerance = 1e-6;
  /// How many first lines of over-travel are kept per axis.
  static constexpr std::size_t kLinesKept = 3;

  /// One axis of the machine and what went past its travel.
  struct AxisTravel {
    Orvo::MachinePartId part;
    /// The axis's name, or the part's identifier for an unnamed axis.
    std::string name;
    AxisType type = AxisType::LINEAR;
    Orvo::AxisValueRange range;
    /// False for an axis that no value can leave: an infinite range or a
    /// cyclic axis.
    bool isLimited = false;
    /// Poses in which this axis stood out of travel.
    long count = 0;
    /// The lines of the first of them, where the line source knew them.
    std::vector<long> firstLines;
    /// The lowest and highest values out of travel; meaningful once count > 0.
    double lowest = 0.0;
    double highest = 0.0;
  };

  /// `forward` must not be null. Every part of `machine` with an axis gets
  /// an entry in axes(), in the machine's depth-first order.
  TravelLimitSimulationStream(std::unique_ptr<SimulationStream> forward, Machine const& machine);
  ~TravelLimitSimulationStream() override;

  /// Where the line of the current event comes from (a stream text reader's
  /// line number, say); a result of 0 or less means unknown.
  void setLineSource(std::function<long()> lineSource) { m_lineSource = std::move(lineSource); }

  std::vector<AxisTravel> const& axes() const noexcept { return m_axes; }
  /// The entry of that part; null for a part without an axis or not in the
  /// machine.
  AxisTravel const* axis(Orvo::MachinePartId const& part) const;
  /// onAxisValues seen so far.
  long poses() const noexcept { return m_poses; }
  /// Poses with at least one axis out of travel.
  long posesOutOfTravel() const noexcept { return m_posesOutOfTravel; }
  /// Issues raised: the sum of the counts of all axes.
  long overTravels() const noexcept { return m_overTravels; }

  /// The text of the issue, as sent; `line` 0 or less leaves the line out.
  static std::string message(AxisTravel const& axis, double value, long line);

private:
  void doOnAxisOrdering(Orvo::AxisOrdering const& ordering) override;
  void doOnAxisValues(Orvo::AxisValues const& values) override;

  std::vector<AxisTravel> m_axes;
  /// For each index of the current ordering, its entry in m_axes if that
  /// axis is limited, else -1.
  std::vector<int> m_checked;
  std::function<long()> m_lineSource;
  long m_poses = 0;
  long m_posesOutOfTravel = 0;
  long m_overTravels = 0;
};

}  // namespace machine
