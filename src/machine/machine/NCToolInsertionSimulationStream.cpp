#include "machine/machine/NCToolInsertionSimulationStream.h"

#include "util/utility/Basic.h"

namespace machine {

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\NCToolInsertionSimulationStream";
}  // namespace

NCToolInsertionSimulationStream::NCToolInsertionSimulationStream(ToolFinder toolFinder,
                                                                 std::unique_ptr<SimulationStream> stream)
    : ForwardingSimulationStream(std::move(stream)) {
  EXPECTS(toolFinder);
  m_toolFinder = std::move(toolFinder);
}

NCToolInsertionSimulationStream::~NCToolInsertionSimulationStream() = default;

void NCToolInsertionSimulationStream::doOnOperationId(int id) {
  m_operationId = id;
  forwardStream()->onOperationId(id);
}

void NCToolInsertionSimulationStream::doOnSection(SectionType type) {
  EXPECTS(m_toolFinder);
  if (type != SectionType::NoTool) forwardStream()->onNCTool(m_toolFinder(m_operationId));
  forwardStream()->onSection(type);
}

// The producer's tools stop here: this link supplies them.
void NCToolInsertionSimulationStream::doOnNCTool(Orvo::NCTool const&) {}

}  // namespace machine
