#pragma once
// A machine on the side of the simulation library, which this library
// doesn't link: the host implements it over that library, and
// QskSimMachineCreator builds the machine through it.

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "machine/machine/QskSimComponentAdaptor.h"

namespace machine {

class QskSimMachineAdaptor {
public:
  using AxisValueMap = std::map<std::string, std::optional<double>>;

  // Virtual operations, in slot order.
  virtual ~QskSimMachineAdaptor() = 0;
  /// Called once, after every component: each axis by name, with its home
  /// and its limits (empty where there are none to pass).
  virtual void finishMachine(AxisValueMap const& homes, AxisValueMap const& minimums,
                             AxisValueMap const& maximums) = 0;
  /// A component below `parentName`, or at the top without one. The
  /// component is destroyed once it and its children are described.
  virtual std::unique_ptr<QskSimComponentAdaptor> createComponent(std::optional<std::string> const& parentName,
                                                                  std::string const& name) = 0;

protected:
  QskSimMachineAdaptor() = default;
};

}  // namespace machine
