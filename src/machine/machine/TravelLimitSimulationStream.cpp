#include "machine/machine/TravelLimitSimulationStream.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "machine/machine/Machine.h"
#include "util/utility/LocaleRegistry.h"
#include "util/utility/Messages.h"
#include "util/utility/VariableSet.h"

namespace machine {

namespace {

/// Six decimals, trailing zeros dropped ("478.5", "-1000", "0.000002"): a
/// micrometre is below any travel that matters, and one millionth is the
/// tolerance, so a value just past a limit never prints as the limit.
/// std::to_chars is independent of the locale.
std::string formatValue(double value) {
  char buffer[64];
  auto const result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 6);
  std::string text(buffer, result.ptr);
  if (std::isfinite(value) && text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  if (text == "-0") text = "0";
  return text;
}

char const* unitOf(AxisType type) { return type == AxisType::ROTARY ? "deg" : "mm"; }

}  // namespace

TravelLimitSimulationStream::TravelLimitSimulationStream(std::unique_ptr<SimulationStream> forward,
                                                         Machine const& machine)
    : ForwardingSimulationStream(std::move(forward)) {
  for (Part const* part : machine.allParts()) {
    auto const& axis = part->axis();
    if (!axis) continue;
    AxisTravel travel;
    travel.part = part->definition()->identifier();
    auto const name = axis->name();
    travel.name = name && !name->name().empty() ? name->name() : travel.part.id();
    travel.type = axis->axisType();
    travel.range = axis->range();
    travel.isLimited = !travel.range.isInfinite() && !axis->isCyclic();
    m_axes.push_back(std::move(travel));
  }
}

TravelLimitSimulationStream::~TravelLimitSimulationStream() = default;

TravelLimitSimulationStream::AxisTravel const* TravelLimitSimulationStream::axis(
    Orvo::MachinePartId const& part) const {
  for (AxisTravel const& travel : m_axes)
    if (travel.part == part) return &travel;
  return nullptr;
}

std::string TravelLimitSimulationStream::message(AxisTravel const& axis, double value, long line) {
  static Orvo::LocalizedMessage const withoutLine = Orvo::LocaleRegistry::get().registerMessage(
      L"Axis %1 is out of travel: %2 %5 is outside %3 to %4 %5.",
      L"Axis %1 is out of travel: %2 %5 is outside %3 to %4 %5.");
  static Orvo::LocalizedMessage const withLine = Orvo::LocaleRegistry::get().registerMessage(
      L"Axis %1 is out of travel at line %6: %2 %5 is outside %3 to %4 %5.",
      L"Axis %1 is out of travel at line %6: %2 %5 is outside %3 to %4 %5.");
  Orvo::VariableSet const arguments{Orvo::Variant(axis.name),
                                    Orvo::Variant(formatValue(value)),
                                    Orvo::Variant(formatValue(axis.range.min().value())),
                                    Orvo::Variant(formatValue(axis.range.max().value())),
                                    Orvo::Variant(unitOf(axis.type)),
                                    Orvo::Variant(line)};
  return Orvo::Messages::wideToUtf8((line > 0 ? withLine : withoutLine).text(arguments));
}

void TravelLimitSimulationStream::doOnAxisOrdering(Orvo::AxisOrdering const& ordering) {
  m_checked.assign(static_cast<std::size_t>(ordering.size()), -1);
  for (int i = 0; i < ordering.size(); ++i) {
    Orvo::MachinePartId const part = ordering.machinePartId(i);
    for (std::size_t k = 0; k < m_axes.size(); ++k)
      if (m_axes[k].part == part) {
        if (m_axes[k].isLimited) m_checked[static_cast<std::size_t>(i)] = static_cast<int>(k);
        break;
      }
  }
  forwardStream()->onAxisOrdering(ordering);
}

void TravelLimitSimulationStream::doOnAxisValues(Orvo::AxisValues const& values) {
  ++m_poses;
  bool outOfTravel = false;
  long line = -1;  // asked for once, and only when a pose is out of travel
  std::size_t const count = std::min(m_checked.size(), static_cast<std::size_t>(values.size()));
  for (std::size_t i = 0; i < count; ++i) {
    int const index = m_checked[i];
    if (index < 0) continue;
    AxisTravel& travel = m_axes[static_cast<std::size_t>(index)];
    double const value = values[static_cast<int>(i)].value();
    // NaN fails both tests and so is never out of travel.
    bool const below = value < travel.range.min().value() - kTolerance;
    bool const above = value > travel.range.max().value() + kTolerance;
    if (!below && !above) continue;
    if (line < 0) line = m_lineSource ? m_lineSource() : 0;
    if (travel.count == 0 || value < travel.lowest) travel.lowest = value;
    if (travel.count == 0 || value > travel.highest) travel.highest = value;
    ++travel.count;
    if (line > 0 && travel.firstLines.size() < kLinesKept) travel.firstLines.push_back(line);
    ++m_overTravels;
    outOfTravel = true;
    forwardStream()->onIssue(OUT_OF_TRAVEL, message(travel, value, line));
  }
  if (outOfTravel) ++m_posesOutOfTravel;
  forwardStream()->onAxisValues(values);
}

}  // namespace machine
