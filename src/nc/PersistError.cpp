#include "nc/PersistError.h"

namespace persist {

PersistError::PersistError(std::string const& message, std::string path, std::optional<std::uint64_t> byteOffset)
    : std::runtime_error(message), m_path(std::move(path)), m_byteOffset(byteOffset) {}

PersistError::~PersistError() = default;

}  // namespace persist
