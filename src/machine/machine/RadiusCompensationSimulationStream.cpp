#include "machine/machine/RadiusCompensationSimulationStream.h"

#include <algorithm>
#include <cmath>

#include "util/utility/Basic.h"
#include "util/utility/ScopePointer.h"

namespace machine {

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\RadiusCompensationSimulationStream";

// A failure that only a test run reports, with a sentence instead of a condition.
void failInTestRun(char const* text, unsigned int line) {
  if (Orvo::_debug::isTesting()) Orvo::_debug::failTestForAssert(text, orvoAssertSourcePath, line);
}

/// A helix sweeping more than this counts as a full turn: 0.99 of two pi.
constexpr double kFullTurn = 6.220353454107791;

/// The compensation side of a flag word: 1, 2, or 0 for none.
int compensationSide(unsigned int flags) noexcept {
  switch (flags & Orvo::NCStream::COMPENSATION_SIDE_MASK) {
    case Orvo::NCStream::COMPENSATION_SIDE_1: return 1;
    case Orvo::NCStream::COMPENSATION_SIDE_2: return 2;
    default: return 0;
  }
}

MotionSettings settingsOf(unsigned int flags) noexcept {
  MotionSettings settings;
  settings.setFlags(flags);
  return settings;
}
}  // namespace

RadiusCompensationSimulationStream::RadiusCompensationSimulationStream(std::unique_ptr<SimulationStream> forward)
    : m_compensator(Orvo::ScopePointer<Orvo::NCStream>(static_cast<Orvo::NCStream*>(this))),
      m_target(static_cast<Orvo::NCStream*>(this)),
      m_forwardStream(std::move(forward)) {
  m_compensator.setWarningHandler(
      [this](unsigned int lineNumber, std::string const& message) { onCompensatorWarning(lineNumber, message); });
  m_compensator.setLookAhead(kLookAhead);
  m_compensator.onOpen();
}

RadiusCompensationSimulationStream::~RadiusCompensationSimulationStream() {
  // The members go after this body, the next stream before the compensator
  // that points back here: what it still holds must come out now.
  m_compensator.onClose();
}

// ---------------------------------------------------------------------------
// Helpers

void RadiusCompensationSimulationStream::addNcOutputIfNeeded() {
  if (m_sectionType != SectionType::Operation) return;
  m_target->onLineNumber(m_nextLineNumber);
  ++m_nextLineNumber;
}

void RadiusCompensationSimulationStream::addAxisValuesIfNeeded() {
  if (m_axisValuesPending && m_sectionType == SectionType::Operation && m_lastAxisValues.size() > 0) {
    m_forwardStream->onAxisValues(m_lastAxisValues);
    m_axisValuesPending = false;
  }
}

void RadiusCompensationSimulationStream::queueNcOutput(std::string const& text) {
  std::size_t const capacity = m_queuedNcOutput.size();
  if (m_queuedNcOutputCount == capacity) {
    // Full: a ring twice the size, oldest entry first. Sizes are powers of
    // two, so that a position wraps with a mask.
    std::vector<std::pair<unsigned int, std::string>> bigger(capacity == 0 ? 16 : 2 * capacity);
    for (std::size_t i = 0; i < m_queuedNcOutputCount; ++i)
      bigger[i] = std::move(m_queuedNcOutput[(m_queuedNcOutputHead + i) & (capacity - 1)]);
    m_queuedNcOutput.swap(bigger);
    m_queuedNcOutputHead = 0;
  }
  auto& slot = m_queuedNcOutput[(m_queuedNcOutputHead + m_queuedNcOutputCount) & (m_queuedNcOutput.size() - 1)];
  slot.first = m_nextLineNumber;
  slot.second.assign(text);
  ++m_queuedNcOutputCount;
}

void RadiusCompensationSimulationStream::flushQueuedUpTo(unsigned int number) {
  m_lastMarkerOut = std::max(m_lastMarkerOut, number);
  // NC output is queued under markers that only grow, so what leaves is the
  // front of the queue, in queue order.
  while (m_queuedNcOutputCount > 0) {
    auto const& front = m_queuedNcOutput[m_queuedNcOutputHead];
    if (front.first > number) break;
    m_forwardStream->onNcOutput(front.second);
    m_queuedNcOutputHead = (m_queuedNcOutputHead + 1) & (m_queuedNcOutput.size() - 1);
    --m_queuedNcOutputCount;
  }
  // Warnings may name markers out of order; they are few, so the whole queue
  // is walked. They stand after the NC output, right ahead of the motion.
  if (m_queuedWarnings.empty()) return;
  std::vector<std::pair<unsigned int, std::string>> kept;
  for (auto& entry : m_queuedWarnings) {
    if (entry.first <= number)
      m_forwardStream->onIssue(IssueCode::POST_WARNING, entry.second);
    else
      kept.push_back(std::move(entry));
  }
  m_queuedWarnings = std::move(kept);
}

// The compensator's warnings are problems of the path that the run goes on
// past (a contour it cannot follow without gouging, say), so they travel as
// the one warning code, POST_WARNING (19): an IssueCheckingSimulationStream
// does not count them as errors. One that names a motion still held waits
// for that motion's marker, so that it reaches the next stream right ahead
// of the motion it concerns; one that names a motion already out (or no
// motion, 0) goes on at once.
void RadiusCompensationSimulationStream::onCompensatorWarning(unsigned int lineNumber, std::string const& message) {
  if (lineNumber <= m_lastMarkerOut) {
    m_forwardStream->onIssue(IssueCode::POST_WARNING, message);
    return;
  }
  m_queuedWarnings.emplace_back(lineNumber, message);
}

void RadiusCompensationSimulationStream::updateTransformations() {
  Orvo::Frame const identity(Orvo::IdentityTag{});
  m_toStream = compose(Orvo::activeTransform3D(m_partReferenceFrame, m_userTableAttachFrame),
                       Orvo::coordinateTransform3D(m_tpcsFrame, identity));
  m_toCompensator = compose(Orvo::coordinateTransform3D(identity, m_tpcsFrame),
                            Orvo::activeTransform3D(m_userTableAttachFrame, m_partReferenceFrame));
}

// ---------------------------------------------------------------------------
// The simulation side

void RadiusCompensationSimulationStream::doOnAxisOrdering(Orvo::AxisOrdering const& ordering) {
  m_forwardStream->onAxisOrdering(ordering);
}

void RadiusCompensationSimulationStream::doOnAxisValues(Orvo::AxisValues const& values) {
  EXPECTS(m_sectionType != SectionType::INVALID);
  if (m_sectionType == SectionType::Operation) {
    // A placeholder waits for the motions that come out; real values go on
    // at once and may overtake motions still held.
    if (values.size() > 0 && std::isnan(values[0].value())) {
      m_axisValuesPending = true;
    } else {
      m_forwardStream->onAxisValues(values);
      m_axisValuesPending = false;
    }
  } else {
    m_forwardStream->onAxisValues(values);
  }
  m_lastAxisValues = values;
}

void RadiusCompensationSimulationStream::doOnNcOutput(std::string const& text) {
  EXPECTS(!m_inSection || m_sectionType != SectionType::INVALID);
  if (m_inSection && m_sectionType == SectionType::Operation)
    queueNcOutput(text);
  else
    m_forwardStream->onNcOutput(text);
}

void RadiusCompensationSimulationStream::doOnNcProgramId(int id) { m_forwardStream->onNcProgramId(id); }
void RadiusCompensationSimulationStream::doOnOperationId(int id) { m_forwardStream->onOperationId(id); }
void RadiusCompensationSimulationStream::doOnMachineId(int id) { m_forwardStream->onMachineId(id); }
void RadiusCompensationSimulationStream::doOnCommand(SimulationStreamCommand const& command) {
  m_forwardStream->onCommand(command);
}
void RadiusCompensationSimulationStream::doOnPatternOpen(int id) { m_forwardStream->onPatternOpen(id); }
void RadiusCompensationSimulationStream::doOnPatternClose(int id) { m_forwardStream->onPatternClose(id); }
void RadiusCompensationSimulationStream::doOnPatternChildInstance(int instance) {
  m_forwardStream->onPatternChildInstance(instance);
}

void RadiusCompensationSimulationStream::doOnSection(SectionType type) {
  m_inSection = true;
  // Only Operation sections are compensated; the others take the bypass,
  // and with it the two transforms.
  m_target = type == SectionType::Operation ? static_cast<Orvo::NCStream*>(&m_compensator) : ownSide();
  m_sectionType = type;
  m_target->onSection();
}

void RadiusCompensationSimulationStream::doOnSectionEnd() {
  m_target->onSectionEnd();
  m_inSection = false;
}

void RadiusCompensationSimulationStream::doOnWorkOffset(int offset) { m_forwardStream->onWorkOffset(offset); }
void RadiusCompensationSimulationStream::doOnIssue(IssueCode code, std::string const& message) {
  m_forwardStream->onIssue(code, message);
}

void RadiusCompensationSimulationStream::doOnNCContext(Orvo::NCContext const& context) {
  m_compensator.onContext(context);
  m_forwardStream->onNCContext(context);
}

void RadiusCompensationSimulationStream::doOnNCTool(Orvo::NCTool const& tool) {
  m_compensator.onTool(tool);
  m_forwardStream->onNCTool(tool);
}

void RadiusCompensationSimulationStream::doOnSimGroup(std::string const& name) {
  addNcOutputIfNeeded();
  m_forwardStream->onSimGroup(name);
}

void RadiusCompensationSimulationStream::doOnSimGroupEnd(std::string const& name) {
  addNcOutputIfNeeded();
  m_forwardStream->onSimGroupEnd(name);
}

void RadiusCompensationSimulationStream::doOnTaggedFrame(Orvo::TaggedFrame const& frame) {
  std::string const& tag = frame.tag();
  std::string const& base = frame.baseFrameTag();
  bool matched = true;
  if (tag == "UserTableAttach" && base == "TableAttach")
    m_userTableAttachFrame = frame.frame();
  else if (tag == "PartReference" && base == "ModelCS")
    m_partReferenceFrame = frame.frame();
  else if (tag == "TPCS" && base == "ModelCS")
    m_tpcsFrame = frame.frame();
  else
    matched = false;
  if (matched) updateTransformations();
  m_forwardStream->onTaggedFrame(frame);
}

void RadiusCompensationSimulationStream::doOnLinear(Orvo::Point3D const& target, double feed,
                                                    MotionSettings const& settings) {
  addNcOutputIfNeeded();
  m_target->onLinear(m_toCompensator(target), feed, settings.flags());
}

void RadiusCompensationSimulationStream::doOnRapid(Orvo::Point3D const& target, MotionSettings const& settings) {
  addNcOutputIfNeeded();
  m_target->onRapid(m_toCompensator(target), settings.flags());
}

void RadiusCompensationSimulationStream::doOnHelical(Orvo::Helix const& helix, Orvo::Point3D const& /*end*/,
                                                     double feed, MotionSettings const& settings) {
  addNcOutputIfNeeded();
  // The end point is the helix's own; the `end` argument is not used.
  unsigned int const flags = settings.flags();
  Orvo::Point3D const center = m_toCompensator(helix.center().asPoint());
  Orvo::Point3D const end = m_toCompensator(helix.getEnd().asPoint());
  Orvo::Vector3D const normal = m_toCompensator(helix.normal());
  double const sweep = helix.sweep();
  if (!(sweep > kFullTurn)) {
    // The turning direction lives in the normal, so a clockwise arc is never sent.
    m_target->onCCWArc(center, end, normal, feed, flags);
    return;
  }
  if (compensationSide(flags) == 0) {
    // A full turn with no side goes past the compensator and its look-ahead.
    m_target->onRadiusCompensationMode(false);
    ownSide()->onCircular(center, end, normal, sweep, feed, flags);
    return;
  }
  failInTestRun("Trying to compensate a multi-turn helix.  The flags will be wrong.", __LINE__);
  m_target->onCircular(center, end, normal, sweep, feed, flags);
}

void RadiusCompensationSimulationStream::doOnLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                                                      double feed, MotionSettings const& settings) {
  addNcOutputIfNeeded();
  m_target->onLinear5D(m_toCompensator(target), m_toCompensator(toolAxis), feed, settings.flags());
}

void RadiusCompensationSimulationStream::doOnRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                                                     MotionSettings const& settings) {
  addNcOutputIfNeeded();
  m_target->onRapid5D(m_toCompensator(target), m_toCompensator(toolAxis), settings.flags());
}

void RadiusCompensationSimulationStream::doOnNcCodeMovement(NcCodeMovement const& movement) {
  m_forwardStream->onNcCodeMovement(movement);
}
void RadiusCompensationSimulationStream::doOnTCPCoordMode(bool on) { m_forwardStream->onTCPCoordMode(on); }
void RadiusCompensationSimulationStream::doOnTiltedWorkPlane(NcCodeTiltedWorkPlane const& plane) {
  m_forwardStream->onTiltedWorkPlane(plane);
}
void RadiusCompensationSimulationStream::doOnRetractAlongToolAxisToLimit() {
  m_forwardStream->onRetractAlongToolAxisToLimit();
}
void RadiusCompensationSimulationStream::doOnSpindleSpeed(double speed) { m_forwardStream->onSpindleSpeed(speed); }

void RadiusCompensationSimulationStream::doOnToolpathEntityIndex(Orvo::ToolpathEntityIndex const& index) {
  // The one non-motion event that keeps its place in the look-ahead.
  m_target->onToolpathEntityIndex(index);
}

// ---------------------------------------------------------------------------
// The NCStream side

bool RadiusCompensationSimulationStream::onSection() {
  m_forwardStream->onSection(m_sectionType);
  if (m_sectionType == SectionType::Operation) m_axisValuesPending = true;
  return true;
}

bool RadiusCompensationSimulationStream::onSectionEnd() {
  unsigned int const marker = m_nextLineNumber;
  addNcOutputIfNeeded();
  // The marker normally comes straight back out and takes the section's last
  // NC output with it. A compensator that holds a marker with no motion
  // behind it would keep that output past the section's end, so it is sent
  // here as well; when the marker comes out later, nothing is left under it.
  if (m_sectionType == SectionType::Operation) flushQueuedUpTo(marker);
  m_forwardStream->onSectionEnd();
  m_axisValuesPending = false;
  return true;
}

bool RadiusCompensationSimulationStream::onLineNumber(unsigned int number) {
  flushQueuedUpTo(number);
  return true;
}

bool RadiusCompensationSimulationStream::onToolpathEntityIndex(Orvo::ToolpathEntityIndex const& index) {
  m_forwardStream->onToolpathEntityIndex(index);
  return true;
}

bool RadiusCompensationSimulationStream::onMachineAxisOrdering(Orvo::AxisOrdering const& ordering) {
  m_forwardStream->onAxisOrdering(ordering);
  return true;
}

bool RadiusCompensationSimulationStream::onMachineAxisValues(Orvo::AxisValues const& values) {
  m_forwardStream->onAxisValues(values);
  return true;
}

bool RadiusCompensationSimulationStream::onRapid(Orvo::Point3D const& target, unsigned int flags) {
  addAxisValuesIfNeeded();
  MotionSettings const settings = settingsOf(flags);
  m_lastPosition = m_toStream(target);
  m_forwardStream->onRapid(m_lastPosition, settings);
  m_axisValuesPending = true;
  return true;
}

bool RadiusCompensationSimulationStream::onRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                                                   unsigned int flags) {
  addAxisValuesIfNeeded();
  MotionSettings const settings = settingsOf(flags);
  m_lastPosition = m_toStream(target);
  m_forwardStream->onRapid5D(m_lastPosition, m_toStream(toolAxis), settings);
  m_axisValuesPending = true;
  return true;
}

bool RadiusCompensationSimulationStream::onLinear(Orvo::Point3D const& target, double feed, unsigned int flags) {
  addAxisValuesIfNeeded();
  MotionSettings const settings = settingsOf(flags);
  m_lastPosition = m_toStream(target);
  m_forwardStream->onLinear(m_lastPosition, feed, settings);
  m_axisValuesPending = true;
  return true;
}

bool RadiusCompensationSimulationStream::onLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                                                    double feed, unsigned int flags) {
  addAxisValuesIfNeeded();
  MotionSettings const settings = settingsOf(flags);
  m_lastPosition = m_toStream(target);
  m_forwardStream->onLinear5D(m_lastPosition, m_toStream(toolAxis), feed, settings);
  m_axisValuesPending = true;
  return true;
}

void RadiusCompensationSimulationStream::sendArc(Orvo::Helix const& helix, Orvo::Point3D const& end, double feed,
                                                 unsigned int flags) {
  m_forwardStream->onHelical(helix, end, feed, settingsOf(flags));
  m_lastPosition = end;
  m_axisValuesPending = true;
}

bool RadiusCompensationSimulationStream::onCCWArc(Orvo::Point3D const& center, Orvo::Point3D const& end,
                                                  Orvo::Vector3D const& normal, double feed, unsigned int flags) {
  addAxisValuesIfNeeded();
  // The arc starts where the last motion out ended.
  Orvo::Point3D const streamEnd = m_toStream(end);
  Orvo::Helix const helix(m_toStream(center), m_lastPosition, streamEnd, m_toStream(normal));
  sendArc(helix, streamEnd, feed, flags);
  return true;
}

bool RadiusCompensationSimulationStream::onCWArc(Orvo::Point3D const& center, Orvo::Point3D const& end,
                                                 Orvo::Vector3D const& normal, double feed, unsigned int flags) {
  return onCCWArc(center, end, -normal, feed, flags);
}

bool RadiusCompensationSimulationStream::onCWCircle(Orvo::Point3D const& center, Orvo::Point3D const& end,
                                                    Orvo::Vector3D const& normal, double feed, unsigned int flags) {
  return onCWArc(center, end, normal, feed, flags);
}

bool RadiusCompensationSimulationStream::onCCWCircle(Orvo::Point3D const& center, Orvo::Point3D const& end,
                                                     Orvo::Vector3D const& normal, double feed, unsigned int flags) {
  return onCCWArc(center, end, normal, feed, flags);
}

bool RadiusCompensationSimulationStream::onCircular(Orvo::Point3D const& center, Orvo::Point3D const& end,
                                                    Orvo::Vector3D const& normal, double sweep, double feed,
                                                    unsigned int flags) {
  addAxisValuesIfNeeded();
  Orvo::Point3D const streamEnd = m_toStream(end);
  Orvo::Helix const helix(m_toStream(center), m_lastPosition, streamEnd, sweep, m_toStream(normal));
  sendArc(helix, streamEnd, feed, flags);
  return true;
}

// What the compensator is told but has no echo for here.
bool RadiusCompensationSimulationStream::onOpen() { return true; }
bool RadiusCompensationSimulationStream::onClose() { return true; }
bool RadiusCompensationSimulationStream::onContext(Orvo::NCContext const&) { return true; }
bool RadiusCompensationSimulationStream::onTool(Orvo::NCTool const&) { return true; }
bool RadiusCompensationSimulationStream::onRadiusCompensationMode(bool) { return true; }

// The compensator is never given these, so nothing can bring them out.
bool RadiusCompensationSimulationStream::onBezier(std::vector<Orvo::Point3D> const&, double, unsigned int) {
  failInTestRun("No code path can lead to onBezier.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onCCWArcExtrude(Orvo::Point3D const&, Orvo::Point3D const&,
                                                         Orvo::Vector3D const&, double, double, unsigned int) {
  failInTestRun("No code path can lead to onCCWArcExtrude.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onCWArcExtrude(Orvo::Point3D const&, Orvo::Point3D const&,
                                                        Orvo::Vector3D const&, double, double, unsigned int) {
  failInTestRun("No code path can lead to onCWArcExtrude.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onCircularExtrude(Orvo::Point3D const&, Orvo::Point3D const&,
                                                           Orvo::Vector3D const&, double, double, double,
                                                           unsigned int) {
  failInTestRun("No code path can lead to onCircularExtrude.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onCommand(Command) {
  failInTestRun("No code path can lead to onCommand.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onComment(std::wstring const&) {
  failInTestRun("No code path can lead to onComment.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onComment(std::string const&) {
  failInTestRun("No code path can lead to onComment.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onCoolant(int) {
  failInTestRun("No code path can lead to onCoolant.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onDwell(double) {
  failInTestRun("No code path can lead to onDwell.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onFrame(Orvo::Frame const&) {
  failInTestRun("No code path can lead to onFrame.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onGroup(std::string const&) {
  failInTestRun("No code path can lead to onGroup.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onGroupEnd() {
  failInTestRun("No code path can lead to onGroupEnd.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onLinearExtrude(Orvo::Point3D const&, double, double, unsigned int) {
  failInTestRun("No code path can lead to onLinearExtrude.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onMachineCommand(int) {
  failInTestRun("No code path can lead to onMachineCommand.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onNURBS(std::vector<Orvo::Point3D> const&, std::vector<double> const&,
                                                 std::vector<double> const&, int, double, unsigned int) {
  failInTestRun("No code path can lead to onNURBS.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onParameter(std::string const&, Orvo::Point3D const&) {
  failInTestRun("No code path can lead to onParameter.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onParameter(std::string const&, double) {
  failInTestRun("No code path can lead to onParameter.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onParameter(std::string const&, int) {
  failInTestRun("No code path can lead to onParameter.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onParameter(std::string const&, std::wstring const&) {
  failInTestRun("No code path can lead to onParameter.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onParameter(std::string const&, std::string const&) {
  failInTestRun("No code path can lead to onParameter.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onRadiusCompensation(int) {
  failInTestRun("No code path can lead to onRadiusCompensation.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onSkip() {
  failInTestRun("No code path can lead to onSkip.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onSpindleSpeed(double) {
  failInTestRun("No code path can lead to onSpindleSpeed.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onSpline(std::vector<Orvo::Point3D> const&, double, unsigned int) {
  failInTestRun("No code path can lead to onSpline.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onStock(Orvo::Point3D const&, Orvo::Point3D const&) {
  failInTestRun("No code path can lead to onStock.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onToolChange(Orvo::NCTool const&) {
  failInTestRun("No code path can lead to onToolChange.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::onTurnGroup(std::string const&) {
  failInTestRun("No code path can lead to onTurnGroup.", __LINE__);
  return true;
}
// The same text as onTurnGroup.
bool RadiusCompensationSimulationStream::onTurnGroupEnd() {
  failInTestRun("No code path can lead to onTurnGroup.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::passThrough(std::wstring const&) {
  failInTestRun("No code path can lead to passThrough.", __LINE__);
  return true;
}
bool RadiusCompensationSimulationStream::passThrough(std::string const&) {
  failInTestRun("No code path can lead to passThrough.", __LINE__);
  return true;
}

}  // namespace machine
