#pragma once
// Helpers that join a kinematic tree to its controller settings: the default
// configuration of a machine, the head and table of a configuration that
// names none, and the recognised spindle parts of a lathe.

#include <memory>
#include <optional>
#include <string>

#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineDefinition.h"
#include "machine/machine/PartDefinition.h"
#include "nc/AxisOrdering.h"
#include "nc/AxisValueRange.h"
#include "util/utility/math/Frame.h"

namespace machine {

class Machine;
class Part;

class MachineUtils {
public:
  // Part identifiers with a conventional meaning.
  static constexpr char const* primarySpindleId = "primary_spindle";
  static constexpr char const* secondarySpindleId = "secondary_spindle";
  static constexpr char const* tableId = "table";
  static constexpr char const* headId = "head";
  static constexpr char const* turretId = "turret";

  MachineUtils() = delete;

  /// A default axis configuration for every part, feature id "default", and
  /// the head and table found in the tree.
  static std::unique_ptr<ControllerConfiguration> makeDefaultControllerConfiguration(
      KinematicsDefinition const& kinematics);

  /// Fills in the head and the table where the configuration names none:
  /// the first HEAD part in depth-first order, or the turret it hangs on, and
  /// the first TABLE part. What the configuration names stays.
  static void setKinematicsChainForControllerConfiguration(KinematicsDefinition const& kinematics,
                                                           ControllerConfiguration& configuration);

  /// The first controller feature whose head and table ids are exactly these;
  /// null if there is none.
  static ControllerConfiguration const* getControllerConfiguration(MachineDefinition const& definition,
                                                                   std::string const& headPartId,
                                                                   std::string const& tablePartId);

  /// A TABLE part with a spindle whose identifier contains `name`; an empty
  /// name is found in every identifier.
  static bool isTurningSpindlePart(PartDefinition const* partDefinition, char const* name);
  static bool isPrimarySpindlePart(PartDefinition const* partDefinition);
  static bool isSecondarySpindlePart(PartDefinition const* partDefinition);

  /// The machine's full ordering with the axes of its head and table chains
  /// first, each group in the full ordering's own order. On a machine with
  /// several chains (a mill-turn) the full ordering's first linear axes may
  /// move another chain, and a solver takes the first ones as its own; the
  /// tool and the Python package order a machine's axes so.
  static Orvo::AxisOrdering chainFirstOrdering(Machine const& machine);

  /// Where the axis of `part` may go: its physical range narrowed by the
  /// controller, as TravelLimitSimulationStream checks it. None for a part
  /// without an axis and for an axis that may turn or run without end (a
  /// cyclic one, or one whose range is infinite).
  static std::optional<Orvo::AxisValueRange> travelOf(Part const& part);

  /// The head's attach frame in the table's coordinates: what `mtkit fk`
  /// prints, and where the tool tip and tool axis of a pose are read.
  static Orvo::Frame headFrameInTable(Machine const& machine);

  /// The frame a solver takes as its tool reference frame for a tool of
  /// `length`: the head's attachment seen from the tip, `length` up the tool
  /// axis. The head's Z axis is the tool axis from the tip into the spindle,
  /// as CAM gives a tool axis and scripts a spindle axis.
  static Orvo::Frame toolReferenceFrame(double length);
};

}  // namespace machine
