#pragma once
// Carries one MTK read error out of the depth of the reader. The text
// travels only in its two fields.

#include <exception>
#include <string>

#include "machine/machine/MTKReadErrorType.h"

namespace machine {

class MTKReaderException : public std::exception {
public:
  MTKReaderException(MTKReadErrorType type, std::wstring message);

  MTKReadErrorType type() const noexcept { return m_type; }
  std::wstring const& message() const noexcept { return m_message; }

  /// Always "Unknown exception", never the message: see the source.
  char const* what() const noexcept override;

private:
  MTKReadErrorType m_type;
  std::wstring m_message;
};

}  // namespace machine
