#pragma once
// The event interface of NC work: a producer calls one operation per event,
// and a stream acts on it and perhaps hands it on. Every event returns
// whether the stream took it; a stream that has nothing to say answers true.
//
// Motions carry a word of flags:
//
//   bits 0 to 6   the Movement number (mask 127)
//   bits 7 and 8  the cutter compensation side (mask 384): 128 is side 1
//                 (left of the path), 256 side 2 (right), neither or both
//                 no compensation
//   bits 9 to 27  reserved for the stream library, 0
//   bits 28 to 31 not this interface's: a word holder may keep its own
//                 data there (MotionSettings keeps its modes there)
//
// Movement numbers (what a motion is for):
//    0 MOVEMENT_UNKNOWN        not told
//    1 MOVEMENT_RAPID          rapid traverse
//    2 MOVEMENT_LEAD_IN        approach into the cut
//    3 MOVEMENT_CUTTING        cutting feed
//    4 MOVEMENT_LEAD_OUT       departure from the cut
//    5 MOVEMENT_LINK_DIRECT    direct link between cuts
//    6 MOVEMENT_LINK           link between cuts along a safe path
//    7 MOVEMENT_RAMP           ramp entry
//    8 MOVEMENT_PLUNGE         plunge along the tool axis
//    9 MOVEMENT_FINISH_CUTTING finishing pass
//   10 MOVEMENT_REDUCED_FEED   cutting at a reduced feed
//   11 MOVEMENT_TRANSITION     transition between passes
//   12 MOVEMENT_EXTENDED       extension of a pass
//   13 MOVEMENT_DEPOSITING     additive deposition
//   14 MOVEMENT_PREDRILL       predrilled entry
//   15 MOVEMENT_HIGH_FEED      feed move at rapid rate (a rapid the
//                              controller must move as a linear)
//   16 MOVEMENT_CYCLE          move inside a canned cycle
//   17 MOVEMENT_NC_CODE        move programmed directly in NC code
//
// Command numbers:
//    0 COMMAND_NONE
//    1 COMMAND_STOP                     program stop
//    2 COMMAND_OPTIONAL_STOP
//    3 COMMAND_END_OF_PROGRAM
//    4 COMMAND_SPINDLE_CLOCKWISE
//    5 COMMAND_SPINDLE_COUNTERCLOCKWISE
//    6 COMMAND_STOP_SPINDLE
//    7 COMMAND_ORIENTATE_SPINDLE
//    8 COMMAND_LOAD_TOOL
//    9 COMMAND_COOLANT_ON
//   10 COMMAND_COOLANT_OFF
//   11 COMMAND_CALIBRATE
//   12 COMMAND_START_THREADING          spindle follows the feed axis
//   13 COMMAND_END_THREADING
//   14 COMMAND_LOCK_MULTI_AXIS
//   15 COMMAND_UNLOCK_MULTI_AXIS
//   16 COMMAND_EXACT_STOP_ON
//   17 COMMAND_EXACT_STOP_OFF
//   18 COMMAND_BREAK_CONTROL
//   19 COMMAND_TOOL_MEASURE
//
// Points and vectors are in the coordinates of the stream that receives
// them; arcs turn counterclockwise about their normal unless named CW.

#include <string>
#include <vector>

#include "nc/AxisOrdering.h"
#include "nc/AxisValues.h"
#include "nc/NCContext.h"
#include "nc/NCTool.h"
#include "nc/ToolpathEntityIndex.h"
#include "util/utility/math/Frame.h"
#include "util/utility/math/Point3D.h"
#include "util/utility/math/Vector3D.h"

namespace Orvo {

class NCStream {
public:
  enum Movement : unsigned int {
    MOVEMENT_UNKNOWN = 0,
    MOVEMENT_RAPID = 1,
    MOVEMENT_LEAD_IN = 2,
    MOVEMENT_CUTTING = 3,
    MOVEMENT_LEAD_OUT = 4,
    MOVEMENT_LINK_DIRECT = 5,
    MOVEMENT_LINK = 6,
    MOVEMENT_RAMP = 7,
    MOVEMENT_PLUNGE = 8,
    MOVEMENT_FINISH_CUTTING = 9,
    MOVEMENT_REDUCED_FEED = 10,
    MOVEMENT_TRANSITION = 11,
    MOVEMENT_EXTENDED = 12,
    MOVEMENT_DEPOSITING = 13,
    MOVEMENT_PREDRILL = 14,
    MOVEMENT_HIGH_FEED = 15,
    MOVEMENT_CYCLE = 16,
    MOVEMENT_NC_CODE = 17,
  };

  enum Command : int {
    COMMAND_NONE = 0,
    COMMAND_STOP = 1,
    COMMAND_OPTIONAL_STOP = 2,
    COMMAND_END_OF_PROGRAM = 3,
    COMMAND_SPINDLE_CLOCKWISE = 4,
    COMMAND_SPINDLE_COUNTERCLOCKWISE = 5,
    COMMAND_STOP_SPINDLE = 6,
    COMMAND_ORIENTATE_SPINDLE = 7,
    COMMAND_LOAD_TOOL = 8,
    COMMAND_COOLANT_ON = 9,
    COMMAND_COOLANT_OFF = 10,
    COMMAND_CALIBRATE = 11,
    COMMAND_START_THREADING = 12,
    COMMAND_END_THREADING = 13,
    COMMAND_LOCK_MULTI_AXIS = 14,
    COMMAND_UNLOCK_MULTI_AXIS = 15,
    COMMAND_EXACT_STOP_ON = 16,
    COMMAND_EXACT_STOP_OFF = 17,
    COMMAND_BREAK_CONTROL = 18,
    COMMAND_TOOL_MEASURE = 19,
  };

  static constexpr unsigned int MOVEMENT_MASK = 0x7Fu;
  static constexpr unsigned int COMPENSATION_SIDE_MASK = 384u;
  static constexpr unsigned int COMPENSATION_SIDE_1 = 128u;
  static constexpr unsigned int COMPENSATION_SIDE_2 = 256u;

  /// The flag word of a movement with no compensation side.
  static constexpr unsigned int getMovementFlags(Movement movement) noexcept {
    return static_cast<unsigned int>(movement) & MOVEMENT_MASK;
  }
  /// The movement of a flag word; every bit outside the movement is ignored.
  static constexpr Movement getMovement(unsigned int flags) noexcept {
    return static_cast<Movement>(flags & MOVEMENT_MASK);
  }

  virtual ~NCStream();

  virtual bool passThrough(std::wstring const& text) = 0;
  virtual bool passThrough(std::string const& text) = 0;
  virtual bool onComment(std::wstring const& text) = 0;
  virtual bool onComment(std::string const& text) = 0;
  virtual bool onCommand(Command command) = 0;
  virtual bool onToolpathEntityIndex(ToolpathEntityIndex const& index) = 0;
  /// A controller code that the stream passes on by number (an M code).
  virtual bool onMachineCommand(int code) = 0;
  /// A coolant mode by number; 0 is off.
  virtual bool onCoolant(int mode) = 0;
  /// Revolutions per minute; negative turns counterclockwise.
  virtual bool onSpindleSpeed(double speed) = 0;
  /// Whether the motions that follow are compensated at all.
  virtual bool onRadiusCompensationMode(bool on) = 0;
  /// The side to compensate on: 0 none, 1 left, 2 right.
  virtual bool onRadiusCompensation(int side) = 0;
  virtual bool onOpen() = 0;
  virtual bool onParameter(std::string const& name, Point3D const& value) = 0;
  /// A direction; streams that know no directions take it as taken.
  virtual bool onParameter(std::string const& name, Vector3D const& value);
  virtual bool onParameter(std::string const& name, double value) = 0;
  virtual bool onParameter(std::string const& name, int value) = 0;
  virtual bool onParameter(std::string const& name, std::wstring const& value) = 0;
  virtual bool onParameter(std::string const& name, std::string const& value) = 0;
  /// The stock as a box in the stream's coordinates.
  virtual bool onStock(Point3D const& minimum, Point3D const& maximum) = 0;
  virtual bool onContext(NCContext const& context) = 0;
  virtual bool onTool(NCTool const& tool) = 0;
  virtual bool onToolChange(NCTool const& tool) = 0;
  virtual bool onSection() = 0;
  virtual bool onGroup(std::string const& name) = 0;
  virtual bool onTurnGroup(std::string const& name) = 0;
  virtual bool onGroupEnd() = 0;
  virtual bool onTurnGroupEnd() = 0;
  virtual bool onSectionEnd() = 0;
  /// A pause in seconds.
  virtual bool onDwell(double seconds) = 0;
  virtual bool onRapid(Point3D const& target, unsigned int flags) = 0;
  /// A 5-axis rapid with a second direction that fixes the tool's turn about
  /// its axis; streams that ignore the turn take it as onRapid5D.
  virtual bool onRapid5DOriented(Point3D const& target, Vector3D const& toolAxis, Vector3D const& referenceAxis,
                                 unsigned int flags);
  virtual bool onRapid5D(Point3D const& target, Vector3D const& toolAxis, unsigned int flags) = 0;
  virtual bool onLinear(Point3D const& target, double feed, unsigned int flags) = 0;
  /// The linear counterpart of onRapid5DOriented.
  virtual bool onLinear5DOriented(Point3D const& target, Vector3D const& toolAxis, Vector3D const& referenceAxis,
                                  double feed, unsigned int flags);
  virtual bool onLinear5D(Point3D const& target, Vector3D const& toolAxis, double feed, unsigned int flags) = 0;
  /// A linear move that deposits `extrusion` of material.
  virtual bool onLinearExtrude(Point3D const& target, double feed, double extrusion, unsigned int flags) = 0;
  virtual bool onCWArc(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed,
                       unsigned int flags) = 0;
  virtual bool onCCWArc(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed,
                        unsigned int flags) = 0;
  /// An arc of a given sweep in radians about the normal, also of more than a turn.
  virtual bool onCircular(Point3D const& center, Point3D const& end, Vector3D const& normal, double sweep,
                          double feed, unsigned int flags) = 0;
  virtual bool onCWArcExtrude(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed,
                              double extrusion, unsigned int flags) = 0;
  virtual bool onCCWArcExtrude(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed,
                               double extrusion, unsigned int flags) = 0;
  virtual bool onCircularExtrude(Point3D const& center, Point3D const& end, Vector3D const& normal, double sweep,
                                 double feed, double extrusion, unsigned int flags) = 0;
  virtual bool onCWCircle(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed,
                          unsigned int flags) = 0;
  virtual bool onCCWCircle(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed,
                           unsigned int flags) = 0;
  virtual bool onSpline(std::vector<Point3D> const& controlPoints, double feed, unsigned int flags) = 0;
  virtual bool onBezier(std::vector<Point3D> const& controlPoints, double feed, unsigned int flags) = 0;
  virtual bool onNURBS(std::vector<Point3D> const& controlPoints, std::vector<double> const& weights,
                       std::vector<double> const& knots, int degree, double feed, unsigned int flags) = 0;
  /// The next motion is to be left out.
  virtual bool onSkip() = 0;
  /// A marker that keeps other events in step with the motions after it.
  virtual bool onLineNumber(unsigned int number) = 0;
  virtual bool onMachineAxisOrdering(AxisOrdering const& ordering) = 0;
  virtual bool onMachineAxisValues(AxisValues const& values) = 0;
  virtual bool onFrame(Frame const& frame) = 0;
  virtual bool onClose() = 0;

protected:
  NCStream() = default;
  NCStream(NCStream const&) = default;
  NCStream& operator=(NCStream const&) = default;
};

}  // namespace Orvo
