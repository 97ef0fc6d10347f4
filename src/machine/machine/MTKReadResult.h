#pragma once
// The outcome of reading an MTK document: the definition, or one error.

#include <memory>
#include <string>

#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MTKReadErrorType.h"

namespace machine {

class MTKReadResult {
public:
  /// Success: type NONE, empty message. The definition must not be null.
  explicit MTKReadResult(std::unique_ptr<KinematicsDefinition> kinematicsDefinition);
  /// Failure of `type` with `message`.
  MTKReadResult(MTKReadErrorType type, std::wstring message);
  MTKReadResult(MTKReadResult&&) noexcept;
  MTKReadResult& operator=(MTKReadResult&&) noexcept;
  MTKReadResult(MTKReadResult const&) = delete;
  MTKReadResult& operator=(MTKReadResult const&) = delete;
  ~MTKReadResult();

  /// Moves the definition out; null after a failure or a second call.
  std::unique_ptr<KinematicsDefinition> getKinematicsDefinition() { return std::move(m_kinematicsDefinition); }
  MTKReadErrorType getReadErrorType() const noexcept { return m_readErrorType; }
  /// The localised "Error reading Machine Tool Kinematics (MTK) data from
  /// machine file:" heading followed by the stored message.
  std::wstring getReadErrorMessage() const;

private:
  std::unique_ptr<KinematicsDefinition> m_kinematicsDefinition;
  MTKReadErrorType m_readErrorType = MTKReadErrorType::NONE;
  std::wstring m_readErrorMessage;
};

}  // namespace machine
