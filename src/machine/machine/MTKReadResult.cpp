#include "machine/machine/MTKReadResult.h"

#include <utility>

#include "util/utility/Basic.h"
#include "util/utility/LocaleRegistry.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\MTKReadResult";
}

namespace machine {

MTKReadResult::MTKReadResult(std::unique_ptr<KinematicsDefinition> kinematicsDefinition)
    : m_kinematicsDefinition(std::move(kinematicsDefinition)) {
  ORVO_ASSERT(m_kinematicsDefinition);
}

MTKReadResult::MTKReadResult(MTKReadErrorType type, std::wstring message)
    : m_readErrorType(type), m_readErrorMessage(std::move(message)) {}

MTKReadResult::MTKReadResult(MTKReadResult&&) noexcept = default;
MTKReadResult& MTKReadResult::operator=(MTKReadResult&&) noexcept = default;
MTKReadResult::~MTKReadResult() = default;

std::wstring MTKReadResult::getReadErrorMessage() const {
  static std::wstring const heading = L"Error reading Machine Tool Kinematics (MTK) data from machine file:\n\n";
  return Orvo::LocaleRegistry::get().registerMessage(heading, heading).text() + m_readErrorMessage;
}

}  // namespace machine
