#include "machine/machine/SolverSimulationStream.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "machine/machine/NcCodeTiltedWorkPlaneByAlignToPose.h"
#include "machine/machine/NcCodeTiltedWorkPlaneBySpatialAngles.h"
#include "machine/machine/Part.h"
#include "machine/machine/PartDefinition.h"
#include "machine/machine/PartType.h"
#include "nc/NCStream.h"
#include "util/utility/Basic.h"
#include "util/utility/LocaleRegistry.h"

namespace machine {

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\SolverSimulationStream";

// A failure that only a test run reports, with a sentence instead of a condition.
void failInTestRun(char const* text, unsigned int line) {
  if (Orvo::_debug::isTesting()) Orvo::_debug::failTestForAssert(text, orvoAssertSourcePath, line);
}

void checkNotNaN(Orvo::Vector3D const& rhs) { ORVO_ASSERT(!rhs.isNaN()); }

using Mode = PostToTableTransformer::CalculationMode;
}  // namespace

SolverSimulationStream::SolverSimulationStream(std::unique_ptr<SimulationStream> forward,
                                               std::unique_ptr<MachineSolver> solver)
    : ControllerStateSimulationStream(std::move(forward)), m_solver(std::move(solver)) {
  EXPECTS(m_solver);
  if (m_solver) m_solver->moveToHome();
}

SolverSimulationStream::~SolverSimulationStream() = default;

bool SolverSimulationStream::isPlaceholder(Orvo::AxisValues const& values) noexcept {
  return values.size() >= 2 && std::isnan(values[0].value());
}

void SolverSimulationStream::doOnAxisOrdering(Orvo::AxisOrdering const& ordering) {
  m_solver->setAxisOrdering(ordering);
  forwardStream()->onAxisOrdering(ordering);
}

void SolverSimulationStream::doOnAxisValues(Orvo::AxisValues const& values) {
  if (m_hasPendingAxisValues) failInTestRun("IK not calculated for pending AxisValues.", __LINE__);
  if (!isPlaceholder(values)) {
    // Ordinary values go on untouched, and the solver does not take them over.
    forwardStream()->onAxisValues(values);
    return;
  }
  if (!std::isnan(values[1].value())) failInTestRun("Malformed placeholder AxisValues.", __LINE__);
  m_pendingAxisValues = values;
  m_hasPendingAxisValues = true;
}

void SolverSimulationStream::handlePendingAxisValues(Orvo::Point3D target) {
  if (!m_hasPendingAxisValues) return;
  m_hasPendingAxisValues = false;
  // The real values of the placeholder set the axes the producer knows; a NaN
  // leaves its axis where it stands, and the solve then sets the linear ones.
  int const count = std::min(m_pendingAxisValues.size(), m_solver->numOrderedParts());
  for (int i = 0; i < count; ++i)
    if (std::isnan(m_pendingAxisValues[i].value()))
      if (auto const& axis = m_solver->orderedPart(i)->axis()) m_pendingAxisValues.setValue(i, axis->value());
  m_solver->moveTo(m_pendingAxisValues);
  if (!m_solver->moveToolTipTo(target)) {
    static Orvo::LocalizedMessage const message = Orvo::LocaleRegistry::get().registerMessage(
        L"Post processing failed to solve. This is probably because the linear axes are not independent.",
        L"Post processing failed to solve. This is probably because the linear axes are not independent.");
    forwardStream()->onIssue(IssueCode::SOLVE_FAILED, message.utf8());
  }
  // Read back in place: the placeholder's storage is reused, which spares an
  // allocation per motion on the hot path of a tool path.
  int const numAxes = m_solver->numOrderedParts();
  if (m_pendingAxisValues.size() == numAxes) {
    for (int i = 0; i < numAxes; ++i)
      if (auto const& axis = m_solver->orderedPart(i)->axis()) m_pendingAxisValues.setValue(i, axis->value());
  } else {
    m_pendingAxisValues = m_solver->axisValues();
  }
  forwardStream()->onAxisValues(m_pendingAxisValues);
}

void SolverSimulationStream::recordLinearFeed(double feed, MotionSettings const& settings) {
  if (Orvo::NCStream::getMovement(settings.flags()) == Orvo::NCStream::MOVEMENT_HIGH_FEED)
    m_lastFeedrate = NcCodeFeedrate(NcCodeFeedrateType::NONE, 0.0);
  else
    m_lastFeedrate = NcCodeFeedrate(NcCodeFeedrateType::MM_PER_MINUTE, feed);
}

void SolverSimulationStream::doOnLinear(Orvo::Point3D const& target, double feed, MotionSettings const& settings) {
  handlePendingAxisValues(target);
  forwardStream()->onLinear(target, feed, settings);
  recordLinearFeed(feed, settings);
}

void SolverSimulationStream::doOnRapid(Orvo::Point3D const& target, MotionSettings const& settings) {
  handlePendingAxisValues(target);
  forwardStream()->onRapid(target, settings);
}

void SolverSimulationStream::doOnHelical(Orvo::Helix const& helix, Orvo::Point3D const& end, double feed,
                                         MotionSettings const& settings) {
  handlePendingAxisValues(end);
  forwardStream()->onHelical(helix, end, feed, settings);
  if (Orvo::NCStream::getMovement(settings.flags()) == Orvo::NCStream::MOVEMENT_HIGH_FEED)
    failInTestRun("Helical can never be high feed.", __LINE__);
  m_lastFeedrate = NcCodeFeedrate(NcCodeFeedrateType::MM_PER_MINUTE, feed);
}

void SolverSimulationStream::doOnLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis, double feed,
                                          MotionSettings const& settings) {
  handlePendingAxisValues(target);
  forwardStream()->onLinear5D(target, toolAxis, feed, settings);
  recordLinearFeed(feed, settings);
}

void SolverSimulationStream::doOnRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                                         MotionSettings const& settings) {
  handlePendingAxisValues(target);
  forwardStream()->onRapid5D(target, toolAxis, settings);
}

void SolverSimulationStream::doOnNcCodeMovement(NcCodeMovement const& movement) {
  Orvo::AxisValues axes = m_solver->axisValues();
  if (axes.size() == 0) return;
  Orvo::Point3D target(0, 0, 0);
  switch (movement.coordProgrammingMode()) {
    case NcCodeCoordProgrammingMode::MACHINE_AXES:
      calculateTargetsForMachineAxes(movement, axes, target);
      break;
    case NcCodeCoordProgrammingMode::CARTESIAN:
      calculateWCSOffset();
      calculateTargetsForCartesian(movement, axes, target);
      break;
    default:
      break;
  }
  forwardStream()->onAxisValues(axes);
  Orvo::Vector3D const toolAxis = m_solver->toolAxisInTableCs();
  MotionSettings const settings(Orvo::NCStream::getMovementFlags(Orvo::NCStream::MOVEMENT_NC_CODE),
                                movement.kinematicInterpolationMode(), movement.rotaryAxisTraverseMode());
  switch (movement.motionProgrammingMode()) {
    case NcCodeMotionProgrammingMode::RAPID:
      forwardStream()->onRapid5D(target, toolAxis, settings);
      break;
    case NcCodeMotionProgrammingMode::FEED: {
      if (movement.feedrate()) m_lastFeedrate = movement.feedrate();
      double feed = 0.0;
      if (m_lastFeedrate) {
        // A feed per revolution is not converted: it passes as 0.
        if (m_lastFeedrate->type() == NcCodeFeedrateType::MM_PER_MINUTE) feed = m_lastFeedrate->mmPerMinute();
      } else {
        failInTestRun("We should no get here without new or old feedrate.", __LINE__);
      }
      forwardStream()->onLinear5D(target, toolAxis, feed, settings);
      break;
    }
    default:
      failInTestRun("NcCodeMotionProgrammingMode mode was not valid", __LINE__);
      break;
  }
}

void SolverSimulationStream::calculateTargetsForMachineAxes(NcCodeMovement const& movement, Orvo::AxisValues& axes,
                                                            Orvo::Point3D& target) {
  Orvo::AxisOrdering const& ordering = m_solver->axisOrdering();
  for (int i = 0; i < movement.numCoordinates(); ++i) {
    NcCodeCoordinate const& coord = movement.coordinate(i);
    ORVO_ASSERT(coord.type() == NcCodeCoordinateType::MACHINE_AXIS);
    ORVO_ASSERT(coord.axisName().has_value());
    if (!coord.axisName()) continue;
    // An axis the machine does not order is skipped without a word.
    if (auto const index = ordering.index(*coord.axisName())) axes.setValue(*index, coord.axisValue());
  }
  m_solver->moveTo(axes);
  target = m_solver->toolTipPoint();
}

void SolverSimulationStream::calculateTargetsForCartesian(NcCodeMovement const& movement, Orvo::AxisValues& axes,
                                                          Orvo::Point3D& target) {
  // Start from the present tip, so that a coordinate left out keeps its value.
  Orvo::Point3D post = m_postToTable.convertFromTableToPost(m_solver->toolTipPoint());
  Orvo::AxisOrdering const& ordering = m_solver->axisOrdering();
  for (int i = 0; i < movement.numCoordinates(); ++i) {
    NcCodeCoordinate const& coord = movement.coordinate(i);
    switch (coord.type()) {
      case NcCodeCoordinateType::X:
        post.x = coord.value() + m_wcsOffset[0];
        break;
      case NcCodeCoordinateType::Y:
        post.y = coord.value() + m_wcsOffset[1];
        break;
      case NcCodeCoordinateType::Z:
        post.z = coord.value() + m_wcsOffset[2];
        break;
      case NcCodeCoordinateType::MACHINE_AXIS:
        ORVO_ASSERT(coord.axisName().has_value());
        if (!coord.axisName()) break;
        if (auto const index = ordering.index(*coord.axisName())) axes.setValue(*index, coord.axisValue());
        break;
    }
  }
  target = m_postToTable.convertFromPostToTable(post);
  // The rotary axes go first, so that the tip is solved in the new orientation.
  m_solver->moveTo(axes);
  // Unlike a placeholder, a failed solve here raises no issue: the values the
  // machine then has are sent.
  (void)m_solver->moveToolTipTo(target);
  axes = m_solver->axisValues();
}

void SolverSimulationStream::resetWCSOffset() noexcept { m_wcsOffset[0] = m_wcsOffset[1] = m_wcsOffset[2] = 0.0; }

void SolverSimulationStream::calculateWCSOffset() {
  // Without TCP and tilted plane, a controller reads X, Y, Z as if the
  // rotaries stood at zero: the offset is the difference between the linear
  // axes for the post origin at A = B = C = 0 and those with the head as it
  // stands. It is recomputed for every such movement and not kept.
  resetWCSOffset();
  if (tcpMode() != TCPMode::OFF || tiltedWorkPlane() != TWPMode::OFF) return;

  Orvo::AxisValues const saved = m_solver->axisValues();
  Orvo::AxisValues zeroed = saved;
  Orvo::AxisValues aligned = saved;
  Orvo::Frame const head = m_solver->headAttachFrameInTableCs();
  Orvo::Point3D target;

  m_postToTable.setCalculationMode(Mode::SET_TILTED_WORK_PLANE);
  m_postToTable.setTiltedWorkPlaneInWorkCs(NcCodeTiltedWorkPlaneBySpatialAngles(0, 0, 0).calculateTiltedFrame(head));
  NcCodeMovement atZero(NcCodeCoordProgrammingMode::CARTESIAN, NcCodeMotionProgrammingMode::RAPID,
                        NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
  atZero.append(NcCodeCoordinateType::X, 0.0);
  atZero.append(NcCodeCoordinateType::Y, 0.0);
  atZero.append(NcCodeCoordinateType::Z, 0.0);
  atZero.append(Orvo::AxisName("A"), Orvo::AxisValue(0.0));
  atZero.append(Orvo::AxisName("B"), Orvo::AxisValue(0.0));
  atZero.append(Orvo::AxisName("C"), Orvo::AxisValue(0.0));
  calculateTargetsForCartesian(atZero, zeroed, target);
  m_solver->moveTo(saved);

  m_postToTable.setCalculationMode(Mode::SET_TILTED_WORK_PLANE);
  m_postToTable.setTiltedWorkPlaneInWorkCs(NcCodeTiltedWorkPlaneByAlignToPose().calculateTiltedFrame(head));
  NcCodeMovement asStanding(NcCodeCoordProgrammingMode::CARTESIAN, NcCodeMotionProgrammingMode::RAPID,
                            NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
  asStanding.append(NcCodeCoordinateType::X, 0.0);
  asStanding.append(NcCodeCoordinateType::Y, 0.0);
  asStanding.append(NcCodeCoordinateType::Z, 0.0);
  calculateTargetsForCartesian(asStanding, aligned, target);

  // The first three ordered axes are taken as X, Y, Z without a check.
  for (int i = 0; i < 3; ++i) m_wcsOffset[i] = zeroed[i].value() - aligned[i].value();
  m_solver->moveTo(saved);
}

void SolverSimulationStream::doOnTCPCoordMode(bool on) {
  ControllerStateSimulationStream::doOnTCPCoordMode(on);
  if (on) {
    m_postToTable.setCalculationMode(Mode::TCP_WORK_CS);
    resetWCSOffset();
  } else if (tcpMode() == TCPMode::ON) {
    // Never true: the base has recorded OFF already. Switching TCP off thus
    // leaves the transformer's mode until the next Cartesian movement resets
    // it; that order of recording and test is kept on purpose.
    m_postToTable.setCalculationMode(Mode::WORK_ORIGIN_TPCS_ORIENTATION);
  }
}

void SolverSimulationStream::doOnTiltedWorkPlane(NcCodeTiltedWorkPlane const& plane) {
  ControllerStateSimulationStream::doOnTiltedWorkPlane(plane);
  if (plane.isActive()) {
    // The plane is fixed from the head's pose at the moment it is set.
    Orvo::Frame const frame = plane.calculateTiltedFrame(m_solver->headAttachFrameInTableCs());
    m_postToTable.setCalculationMode(Mode::SET_TILTED_WORK_PLANE);
    m_postToTable.setTiltedWorkPlaneInWorkCs(frame);
    resetWCSOffset();
  } else if (tiltedWorkPlane() == TWPMode::ON) {
    // Never true, as with TCP above, and kept in that order on purpose.
    m_postToTable.setCalculationMode(Mode::WORK_ORIGIN_TPCS_ORIENTATION);
  }
}

void SolverSimulationStream::doOnTaggedFrame(Orvo::TaggedFrame const& frame) {
  if (frame.tag() == "ToolReference" && frame.baseFrameTag() == "ToolCS") m_solver->setToolReferenceFrame(frame.frame());
  m_postToTable.onTaggedFrame(frame);
  forwardStream()->onTaggedFrame(frame);
}

void SolverSimulationStream::doOnSection(SectionType type) { forwardStream()->onSection(type); }

void SolverSimulationStream::doOnRetractAlongToolAxisToLimit() {
  Orvo::Vector3D const axis = m_solver->toolAxisInTableCs();
  Orvo::AxisValues const start = m_solver->axisValues();
  Orvo::Point3D const tip = m_solver->toolTipPoint();
  checkNotNaN(axis);

  // A trial step of one unit along the tool axis shows how the linear axes respond.
  (void)m_solver->moveToolTipTo(tip + axis);
  Orvo::AxisValues const step = m_solver->axisValues();

  double length = std::numeric_limits<double>::infinity();
  std::vector<Orvo::AxisName> names;
  for (int i = 0; i < 3; ++i) {
    Part const& part = *m_solver->orderedPart(i);
    ORVO_ASSERT(part.definition()->type() == machine::PartType::LINEAR);
    // A part without a named axis cannot be retracted on: fatal in every run.
    Axis const& partAxis = part.axis().value();
    ORVO_ASSERT(part.axis()->name().has_value());
    names.push_back(partAxis.name().value());
    double const delta = step[i].value() - start[i].value();
    if (delta == 0.0) continue;
    double const limit = step[i].value() > start[i].value() ? partAxis.range().max().value()
                                                            : partAxis.range().min().value();
    double const ratio = (limit - start[i].value()) / delta;
    // An axis already beyond its limit gives a negative ratio, taken as 0.
    length = std::min(std::max(0.0, ratio), length);
  }

  // If the tool axis moves none of the three axes the length stays infinite;
  // nothing guards that case.
  Orvo::Vector3D const offset = axis * length;
  checkNotNaN(offset);
  (void)m_solver->moveToolTipTo(tip + offset);
  Orvo::AxisValues const finalValues = m_solver->axisValues();

  NcCodeMovement movement(NcCodeCoordProgrammingMode::MACHINE_AXES, NcCodeMotionProgrammingMode::RAPID,
                          NcCodeKinematicInterpolationMode::TCP_ONLY, NcCodeRotaryAxisTraverseMode::DIRECT);
  for (std::size_t i = 0; i < names.size(); ++i) movement.append(names[i], finalValues[static_cast<int>(i)]);
  // Straight to the movement's own slot: the guard has run for this event already.
  doOnNcCodeMovement(movement);
}

}  // namespace machine
