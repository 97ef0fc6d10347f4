#pragma once
// A link that supplies the tool of each section: before every section that
// is not NoTool it asks the tool finder for the tool of the last operation
// id (0 before the first) and hands it on as onNCTool, right ahead of the
// section. Tool events from the producer stop here.
//
// The tool finder is the application's; an empty one is a programming error
// (calling it throws std::bad_function_call).

#include <functional>
#include <memory>

#include "machine/machine/ForwardingSimulationStream.h"
#include "nc/NCTool.h"

namespace machine {

class NCToolInsertionSimulationStream : public ForwardingSimulationStream {
public:
  using ToolFinder = std::function<Orvo::NCTool(int operationId)>;

  /// `toolFinder` must not be empty, nor `stream` null.
  NCToolInsertionSimulationStream(ToolFinder toolFinder, std::unique_ptr<SimulationStream> stream);
  ~NCToolInsertionSimulationStream() override;

  /// The last operation id seen, 0 before the first.
  int operationId() const noexcept { return m_operationId; }

private:
  void doOnOperationId(int id) override;
  void doOnSection(SectionType type) override;
  void doOnNCTool(Orvo::NCTool const& tool) override;

  int m_operationId = 0;
  ToolFinder m_toolFinder;
};

}  // namespace machine
