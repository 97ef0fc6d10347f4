#pragma once
// The outcome of reading a machine file: the definition, or a message.

#include <memory>
#include <string>

#include "machine/machine/MachineDefinition.h"

namespace machine {

class MachineDefinitionReaderResult {
public:
  /// Success; the definition must not be null.
  explicit MachineDefinitionReaderResult(std::unique_ptr<MachineDefinition> machineDefinition);
  /// Failure with `message` (UTF-8).
  explicit MachineDefinitionReaderResult(std::string const& message);
  MachineDefinitionReaderResult(MachineDefinitionReaderResult&&) noexcept;
  MachineDefinitionReaderResult& operator=(MachineDefinitionReaderResult&&) noexcept;
  MachineDefinitionReaderResult(MachineDefinitionReaderResult const&) = delete;
  MachineDefinitionReaderResult& operator=(MachineDefinitionReaderResult const&) = delete;
  ~MachineDefinitionReaderResult();

  /// True when there is no definition (also once it has been moved out).
  bool isError() const noexcept { return !m_machineDefinition; }
  /// Moves the definition out; expects success.
  std::unique_ptr<MachineDefinition> getMachineDefinition();
  /// The localised heading and the stored message, in UTF-8; expects failure.
  std::string getReadErrorMessage() const;

private:
  std::unique_ptr<MachineDefinition> m_machineDefinition;
  std::string m_message;
};

}  // namespace machine
