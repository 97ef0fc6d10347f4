#include "machine/machine/MTKReaderException.h"

#include <utility>

namespace machine {

MTKReaderException::MTKReaderException(MTKReadErrorType type, std::wstring message)
    : m_type(type), m_message(std::move(message)) {}

// The exception is meant to carry its text only in its fields, and a caller
// that knows it only as std::exception (the machine file reader) shows what()
// to the user. That text is fixed as "Unknown exception" on every platform;
// the standard library's own what() differs between compilers (GCC's says
// "std::exception"), so it is spelled out here.
char const* MTKReaderException::what() const noexcept { return "Unknown exception"; }

}  // namespace machine
