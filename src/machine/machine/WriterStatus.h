#pragma once
// The outcome of every writer: success, or failure with a message.

#include <string>

namespace machine {

class WriterStatus {
public:
  /// Success with an empty message.
  WriterStatus() = default;
  /// Failure with `message`.
  explicit WriterStatus(std::string const& message);

  bool isError() const noexcept { return m_isError; }
  std::string const& getMessage() const noexcept { return m_message; }

private:
  bool m_isError = false;
  std::string m_message;
};

}  // namespace machine
