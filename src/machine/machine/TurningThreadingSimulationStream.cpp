#include "machine/machine/TurningThreadingSimulationStream.h"

#include "nc/NCUnit.h"
#include "util/utility/Basic.h"

namespace machine {

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\TurningThreadingSimulationStream";

// The commands by their numbers in the NC stream library.
constexpr int kSpindleClockwise = 4;
constexpr int kSpindleCounterclockwise = 5;
constexpr int kStartThreading = 12;
constexpr int kEndThreading = 13;
}  // namespace

TurningThreadingSimulationStream::TurningThreadingSimulationStream(std::unique_ptr<SimulationStream> stream)
    : ForwardingSimulationStream(std::move(stream)) {}

TurningThreadingSimulationStream::~TurningThreadingSimulationStream() = default;

void TurningThreadingSimulationStream::doOnAxisOrdering(Orvo::AxisOrdering const& ordering) {
  m_zAxisIndex = ordering.index(Orvo::AxisName("Z"));
  m_spindleAxisIndex = ordering.index(Orvo::AxisName("C"));
  forwardStream()->onAxisOrdering(ordering);
}

void TurningThreadingSimulationStream::doOnCommand(SimulationStreamCommand const& command) {
  switch (static_cast<int>(command.command())) {
    case kSpindleClockwise:
      m_reversed = false;
      break;
    case kSpindleCounterclockwise:
      m_reversed = true;
      break;
    case kStartThreading:
      m_inThreading = true;
      break;
    case kEndThreading:
      m_inThreading = false;
      m_spindleAngle = 0.0;
      break;
    default:
      break;
  }
  forwardStream()->onCommand(command);
}

void TurningThreadingSimulationStream::doOnNCTool(Orvo::NCTool const& tool) {
  m_tool = tool;
  forwardStream()->onNCTool(tool);
}

void TurningThreadingSimulationStream::doOnAxisValues(Orvo::AxisValues const& values) {
  if (!m_zAxisIndex) {
    forwardStream()->onAxisValues(values);
    return;
  }
  double const z = values.value(*m_zAxisIndex).mm();
  if (!m_spindleAxisIndex || !m_inThreading) {
    m_lastZ = z;
    forwardStream()->onAxisValues(values);
    return;
  }
  Orvo::AxisValues turned = values;
  // The pitch in millimetres (unit 1), whatever unit the tool is written in.
  double const pitch =
      m_tool.getThreadPitch() * Orvo::NCUnit::getUnitConversionFactor(m_tool.getUnit(), Orvo::NCUnit::MILLIMETER);
  double const dz = z - m_lastZ;
  ORVO_ASSERT(pitch > 0);
  if (pitch > 0) {
    double const angle = (m_reversed ? -360.0 : 360.0) * dz / pitch;
    // A move with no Z travel keeps the C it came with.
    if (angle != 0.0) {
      m_spindleAngle += angle;
      turned.setValue(*m_spindleAxisIndex, Orvo::AxisValue(m_spindleAngle));
    }
  }
  m_lastZ = z;
  forwardStream()->onAxisValues(turned);
}

}  // namespace machine
