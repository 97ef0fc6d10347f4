#pragma once
// An error issue that a stream kept for the application.

#include <string>

#include "machine/machine/SimulationStream.h"

namespace machine {

class SimulationError {
public:
  SimulationError(SimulationStream::IssueCode code, std::string const& message) : m_code(code), m_message(message) {}

  SimulationStream::IssueCode errorCode() const noexcept { return m_code; }
  /// UTF-8.
  std::string const& errorString() const noexcept { return m_message; }

  friend bool operator==(SimulationError const& a, SimulationError const& b) noexcept {
    return a.m_code == b.m_code && a.m_message == b.m_message;
  }
  friend bool operator!=(SimulationError const& a, SimulationError const& b) noexcept { return !(a == b); }

private:
  SimulationStream::IssueCode m_code;
  std::string m_message;
};

}  // namespace machine
