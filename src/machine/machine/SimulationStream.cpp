#include "machine/machine/SimulationStream.h"

#include "util/utility/Basic.h"
#include "util/utility/Messages.h"

namespace machine {

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\SimulationStream";
}  // namespace

SimulationStream::~SimulationStream() = default;

void SimulationStream::onAxisValues(Orvo::AxisValues const& avs) {
  if (!isPreCheckOk()) return;
  ORVO_ASSERT(avs.size() == m_numAxesInOrdering);
  doOnAxisValues(avs);
}

void SimulationStream::onNcOutput(std::wstring const& text) {
  if (!isPreCheckOk()) return;
  convertWStringToString(text);
  doOnNcOutput(m_utf8Buffer);
}

void SimulationStream::onIssue(IssueCode code, std::wstring const& message) {
  if (!isPreCheckOk()) return;
  convertWStringToString(message);
  doOnIssue(code, m_utf8Buffer);
}

Orvo::NCMessageSeverity SimulationStream::severityOfIssue(IssueCode code) noexcept {
  return Orvo::NCMessageSeverity(code == IssueCode::POST_WARNING ? Orvo::NCMessageSeverity::WARNING
                                                                 : Orvo::NCMessageSeverity::ERROR);
}

void SimulationStream::doOnApiVersion(int major, int minor) {
  if (!(major == 1 && minor < 1)) m_isOk = false;
}

void SimulationStream::doOnToolpathEntityIndex(Orvo::ToolpathEntityIndex const&) {}

void SimulationStream::convertWStringToString(std::wstring const& wide) {
  m_utf8Buffer.clear();
  // Grown to the input's length first, and never shrunk, so that steady
  // traffic converts without allocating.
  if (m_utf8Buffer.capacity() < wide.size()) m_utf8Buffer.reserve(wide.size());
  Orvo::Messages::appendWideAsUtf8(wide, m_utf8Buffer);
}

}  // namespace machine
