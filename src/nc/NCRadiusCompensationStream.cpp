#include "nc/NCRadiusCompensationStream.h"

#include <utility>

namespace Orvo {

NCRadiusCompensationStream::NCRadiusCompensationStream(ScopePointer<NCStream> output) : m_output(output) {}

NCRadiusCompensationStream::~NCRadiusCompensationStream() = default;

void NCRadiusCompensationStream::setLookAhead(std::size_t moves) { m_lookAhead = moves == 0 ? 1 : moves; }

void NCRadiusCompensationStream::hold(std::function<void(NCStream&)> event, bool isMotion) {
  m_held.push_back(Held{std::move(event), isMotion});
  if (isMotion) ++m_heldMotions;
  if (m_heldMotions > m_lookAhead) release(m_lookAhead);
}

// Sends held events out, oldest first, until only `motionsToKeep` motions
// (and what came after the oldest of them) are still held.
void NCRadiusCompensationStream::release(std::size_t motionsToKeep) {
  while (!m_held.empty()) {
    if (m_held.front().isMotion) {
      if (m_heldMotions <= motionsToKeep) break;
      --m_heldMotions;
    }
    Held next = std::move(m_held.front());
    m_held.pop_front();
    if (m_output) next.event(*m_output);
  }
}

bool NCRadiusCompensationStream::onOpen() {
  m_open = true;
  return true;
}

bool NCRadiusCompensationStream::onClose() {
  release(0);
  m_open = false;
  return true;
}

bool NCRadiusCompensationStream::onContext(NCContext const& context) {
  m_context = context;
  return true;
}

bool NCRadiusCompensationStream::onTool(NCTool const& tool) {
  m_tool = tool;
  return true;
}

bool NCRadiusCompensationStream::onRadiusCompensationMode(bool on) {
  if (!on) {
    release(0);
    m_compensating = false;
  }
  return true;
}

bool NCRadiusCompensationStream::onSectionEnd() {
  release(0);
  return m_output ? m_output->onSectionEnd() : true;
}

bool NCRadiusCompensationStream::passThrough(std::wstring const& text) {
  hold([=](NCStream& out) { out.passThrough(text); }, false);
  return true;
}

bool NCRadiusCompensationStream::passThrough(std::string const& text) {
  hold([=](NCStream& out) { out.passThrough(text); }, false);
  return true;
}

bool NCRadiusCompensationStream::onComment(std::wstring const& text) {
  hold([=](NCStream& out) { out.onComment(text); }, false);
  return true;
}

bool NCRadiusCompensationStream::onComment(std::string const& text) {
  hold([=](NCStream& out) { out.onComment(text); }, false);
  return true;
}

bool NCRadiusCompensationStream::onCommand(Command command) {
  hold([=](NCStream& out) { out.onCommand(command); }, false);
  return true;
}

bool NCRadiusCompensationStream::onToolpathEntityIndex(ToolpathEntityIndex const& index) {
  hold([=](NCStream& out) { out.onToolpathEntityIndex(index); }, false);
  return true;
}

bool NCRadiusCompensationStream::onMachineCommand(int code) {
  hold([=](NCStream& out) { out.onMachineCommand(code); }, false);
  return true;
}

bool NCRadiusCompensationStream::onCoolant(int mode) {
  hold([=](NCStream& out) { out.onCoolant(mode); }, false);
  return true;
}

bool NCRadiusCompensationStream::onSpindleSpeed(double speed) {
  hold([=](NCStream& out) { out.onSpindleSpeed(speed); }, false);
  return true;
}

bool NCRadiusCompensationStream::onRadiusCompensation(int side) {
  hold([=](NCStream& out) { out.onRadiusCompensation(side); }, false);
  return true;
}

bool NCRadiusCompensationStream::onParameter(std::string const& name, Point3D const& value) {
  hold([=](NCStream& out) { out.onParameter(name, value); }, false);
  return true;
}

bool NCRadiusCompensationStream::onParameter(std::string const& name, double value) {
  hold([=](NCStream& out) { out.onParameter(name, value); }, false);
  return true;
}

bool NCRadiusCompensationStream::onParameter(std::string const& name, int value) {
  hold([=](NCStream& out) { out.onParameter(name, value); }, false);
  return true;
}

bool NCRadiusCompensationStream::onParameter(std::string const& name, std::wstring const& value) {
  hold([=](NCStream& out) { out.onParameter(name, value); }, false);
  return true;
}

bool NCRadiusCompensationStream::onParameter(std::string const& name, std::string const& value) {
  hold([=](NCStream& out) { out.onParameter(name, value); }, false);
  return true;
}

bool NCRadiusCompensationStream::onStock(Point3D const& minimum, Point3D const& maximum) {
  hold([=](NCStream& out) { out.onStock(minimum, maximum); }, false);
  return true;
}

bool NCRadiusCompensationStream::onToolChange(NCTool const& tool) {
  hold([=](NCStream& out) { out.onToolChange(tool); }, false);
  return true;
}

bool NCRadiusCompensationStream::onSection() {
  hold([](NCStream& out) { out.onSection(); }, false);
  return true;
}

bool NCRadiusCompensationStream::onGroup(std::string const& name) {
  hold([=](NCStream& out) { out.onGroup(name); }, false);
  return true;
}

bool NCRadiusCompensationStream::onTurnGroup(std::string const& name) {
  hold([=](NCStream& out) { out.onTurnGroup(name); }, false);
  return true;
}

bool NCRadiusCompensationStream::onGroupEnd() {
  hold([](NCStream& out) { out.onGroupEnd(); }, false);
  return true;
}

bool NCRadiusCompensationStream::onTurnGroupEnd() {
  hold([](NCStream& out) { out.onTurnGroupEnd(); }, false);
  return true;
}

bool NCRadiusCompensationStream::onDwell(double seconds) {
  hold([=](NCStream& out) { out.onDwell(seconds); }, false);
  return true;
}

bool NCRadiusCompensationStream::onRapid(Point3D const& target, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onRapid(target, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onRapid5D(Point3D const& target, Vector3D const& toolAxis, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onRapid5D(target, toolAxis, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onLinear(Point3D const& target, double feed, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onLinear(target, feed, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onLinear5D(Point3D const& target, Vector3D const& toolAxis, double feed, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onLinear5D(target, toolAxis, feed, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onLinearExtrude(Point3D const& target, double feed, double extrusion, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onLinearExtrude(target, feed, extrusion, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onCWArc(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onCWArc(center, end, normal, feed, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onCCWArc(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onCCWArc(center, end, normal, feed, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onCircular(Point3D const& center, Point3D const& end, Vector3D const& normal, double sweep, double feed, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onCircular(center, end, normal, sweep, feed, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onCWArcExtrude(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed, double extrusion, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onCWArcExtrude(center, end, normal, feed, extrusion, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onCCWArcExtrude(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed, double extrusion, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onCCWArcExtrude(center, end, normal, feed, extrusion, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onCircularExtrude(Point3D const& center, Point3D const& end, Vector3D const& normal, double sweep, double feed, double extrusion, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onCircularExtrude(center, end, normal, sweep, feed, extrusion, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onCWCircle(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onCWCircle(center, end, normal, feed, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onCCWCircle(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onCCWCircle(center, end, normal, feed, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onSpline(std::vector<Point3D> const& controlPoints, double feed, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onSpline(controlPoints, feed, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onBezier(std::vector<Point3D> const& controlPoints, double feed, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onBezier(controlPoints, feed, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onNURBS(std::vector<Point3D> const& controlPoints, std::vector<double> const& weights, std::vector<double> const& knots, int degree, double feed, unsigned int flags) {
  if ((flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_1 || (flags & COMPENSATION_SIDE_MASK) == COMPENSATION_SIDE_2)
    m_compensating = true;
  hold([=](NCStream& out) { out.onNURBS(controlPoints, weights, knots, degree, feed, flags); }, true);
  return true;
}

bool NCRadiusCompensationStream::onSkip() {
  hold([](NCStream& out) { out.onSkip(); }, false);
  return true;
}

bool NCRadiusCompensationStream::onLineNumber(unsigned int number) {
  hold([=](NCStream& out) { out.onLineNumber(number); }, false);
  return true;
}

bool NCRadiusCompensationStream::onMachineAxisOrdering(AxisOrdering const& ordering) {
  hold([=](NCStream& out) { out.onMachineAxisOrdering(ordering); }, false);
  return true;
}

bool NCRadiusCompensationStream::onMachineAxisValues(AxisValues const& values) {
  hold([=](NCStream& out) { out.onMachineAxisValues(values); }, false);
  return true;
}

bool NCRadiusCompensationStream::onFrame(Frame const& frame) {
  hold([=](NCStream& out) { out.onFrame(frame); }, false);
  return true;
}

}  // namespace Orvo
