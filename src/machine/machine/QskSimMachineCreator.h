#pragma once
// Describes a runtime machine to the simulation library through the host's
// adaptors: one component for each part, in tree order, then the homes and
// limits of the axes.

#include <map>
#include <optional>
#include <string>

#include "machine/machine/QskSimComponentAdaptor.h"
#include "machine/machine/QskSimMachineAdaptor.h"

namespace machine {

class Axis;
class Machine;
class Part;

class QskSimMachineCreator {
public:
  QskSimMachineCreator() = default;

  /// Walks the base parts in order, then calls finishMachine once.
  void convert(Machine const& machine, QskSimMachineAdaptor& adaptor);

private:
  void convertPart(std::optional<std::string> const& parentName, Part const& part, QskSimMachineAdaptor& adaptor);
  void addAxisTo(Axis const& axis, QskSimComponentAdaptor& component);

  // Set only during convert.
  Part const* m_headPart = nullptr;
  Part const* m_tablePart = nullptr;
  QskSimMachineAdaptor::AxisValueMap m_homes;
  QskSimMachineAdaptor::AxisValueMap m_minimums;
  QskSimMachineAdaptor::AxisValueMap m_maximums;
};

}  // namespace machine
