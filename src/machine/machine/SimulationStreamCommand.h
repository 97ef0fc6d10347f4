#pragma once
// A controller command riding on a simulation stream.

#include "nc/NCStream.h"

namespace machine {

class SimulationStreamCommand {
public:
  explicit SimulationStreamCommand(Orvo::NCStream::Command command) noexcept : m_command(command) {}
  /// From the number a producer or a file sends; not checked against the
  /// named commands, so that unknown ones pass through.
  explicit SimulationStreamCommand(int command) noexcept : m_command(static_cast<Orvo::NCStream::Command>(command)) {}

  Orvo::NCStream::Command command() const noexcept { return m_command; }

  friend bool operator==(SimulationStreamCommand const& a, SimulationStreamCommand const& b) noexcept {
    return a.m_command == b.m_command;
  }
  friend bool operator!=(SimulationStreamCommand const& a, SimulationStreamCommand const& b) noexcept {
    return !(a == b);
  }

private:
  Orvo::NCStream::Command m_command;
};

}  // namespace machine
