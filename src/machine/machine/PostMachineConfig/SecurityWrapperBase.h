#pragma once
// The host's gate in front of file access from scripts. A host that runs
// scripts in a safe mode installs one through
// MachineConfiguration::setSecurityWrapper; createFromPath asks it before
// any file is touched. It answers one question and holds nothing else.

namespace com {
namespace vantora {
namespace post {

class SecurityWrapperBase {
public:
  virtual ~SecurityWrapperBase();

  /// True to let file access through. The default lets everything through,
  /// as a host without a safe mode would.
  virtual bool isAllowed();

protected:
  SecurityWrapperBase() = default;
  SecurityWrapperBase(SecurityWrapperBase const&) = default;
  SecurityWrapperBase& operator=(SecurityWrapperBase const&) = default;
};

}  // namespace post
}  // namespace vantora
}  // namespace com
