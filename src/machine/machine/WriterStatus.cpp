#include "machine/machine/WriterStatus.h"

namespace machine {

WriterStatus::WriterStatus(std::string const& message) : m_isError(true), m_message(message) {}

}  // namespace machine
