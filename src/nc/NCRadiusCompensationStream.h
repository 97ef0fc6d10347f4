#pragma once
// Cutter radius compensation on the NC event interface, with a look-ahead of
// moves.
//
// Events given in come out on the output stream given to the constructor,
// delayed and in order: every event waits until the motion after it goes out
// (so each onLineNumber comes out just ahead of the motions that followed it
// when it went in), and compensated motions wait until more than
// getLookAhead() of them are held. A motion that is not compensated needs no
// look-ahead: it goes out as it comes in, with everything held before it.
// onRadiusCompensationMode(false), onSectionEnd and onClose flush everything
// first. Motions may change in number: corners add arcs, lead-in
// and lead-out moves may be added, and moves that cannot be cut without
// gouging are left out.
//
// The destructor sends nothing: onClose flushes.
//
// Re-entrancy. The output stream runs inside the calls made into this one.
// An event that reaches this stream while it is calling its output (the
// output calling back, on the same stack) passes straight through to the
// output, uncompensated and undelayed, and leaves the held events alone.
//
// Geometry.
//
// - Radius: half the diameter of the tool last given with onTool (or
//   onToolChange), converted from the tool's unit to the unit of the context
//   last given with onContext, because the coordinates of the moves are in
//   the context's unit. A motion takes the radius in effect when it comes
//   in. A negative radius compensates on the other side. A radius that is
//   not a number (a unit the library does not know) compensates nothing and
//   warns. The context's tolerance is how far the path may stay off the
//   contour before the compensator says so.
// - Side: from the flag bits of each motion (NCStream): 128 keeps the tool
//   left of the direction of travel (side 1), 256 right (side 2), anything
//   else compensates nothing. The left and right are those seen from +Z.
// - Plane: the XY plane of the coordinates given in. Z passes through: every
//   point of an offset move takes the Z of the contour point it comes from,
//   so ramps and helices keep their Z.
// - Lines are moved sideways by the radius; arcs keep their centre and their
//   radius shrinks or grows by it (shrinks when the tool is on the centre's
//   side). At an outside corner the tool turns about the corner point on an
//   arc of the tool radius; between two lines whose offsets meet within the
//   context's tolerance of that arc (the small turns of a finely broken
//   curve), it goes straight to where they meet instead. At an inside corner
//   both neighbours are trimmed where their offsets cross.
// - Switching on: the first motion of a compensated run that moves in XY is
//   the lead-in. A line (rapid, linear, or 5-axis with the tool along +Z)
//   runs straight from where the tool is to the start of the offset path of
//   the moves after it, i.e. to the contour point it ends at, moved by the
//   radius along the normal of the next contour move (the lead-in itself is
//   not offset). When that point would gouge the contour (a contour that
//   starts in an inside corner), the lead-in runs to the first point of the
//   offset path that does not. A run that starts with an arc gets an added
//   straight lead-in to the arc's offset start, with the arc's flags.
// - Switching off: the first uncompensated motion is the lead-out and runs
//   from the offset end to its own end point. An uncompensated arc (or other
//   curve) that follows a compensated run gets an added straight move to its
//   start first. When a flush finds the tool off the programmed point, it
//   adds a straight lead-out there, with the flags of the last motion less
//   the side. A section, a change of side or of radius, and a flush end a
//   compensated run; the next compensated motion leads in again.
// - Gouges. Where an offset element reverses against its contour (an inside
//   arc smaller than the radius, a notch narrower than the tool) or the
//   offset path comes within the radius of another part of the contour (a
//   neck narrower than the tool), the offset path crosses itself. The path
//   is followed up to the crossing and continues from the same point on the
//   later element, so that the loop between is cut out; the elements left
//   out are reported through the warning handler when the path stays off
//   their middle by more than the radius and the context's tolerance. Where
//   no such continuation exists within the look-ahead, the tool stays where
//   the path was last clear (following Z only) until a later point of the
//   path can be reached in a straight line that does not gouge, or until
//   the run ends; that is reported too. What the compensator checks against
//   is the held moves, the pieces of about half the look-ahead's moves that
//   went out last, and the first pieces of the run (so that a closed
//   contour ends clear of where it began). A contour that comes in within
//   the radius of where the tool stands, or whose offset crosses a stretch
//   already cut, has been gouged beyond the look-ahead: that cannot be
//   undone, and it is reported (the tool stops where it stands).
// - Five axes: onRapid5D and onLinear5D with the tool axis along +Z are
//   compensated like onRapid and onLinear and come out in their 5-axis form.
//   With any other tool axis the move is output as programmed, without
//   compensation, which ends the compensated run (the move is its lead-out),
//   and a warning is raised. Arcs whose normal is not along Z, extruding
//   moves, splines, and arcs of more than 16 turns are treated the same way.
//   Coordinates beyond a kilometre (1e6 in the context's unit) and numbers
//   that are not finite are not compensated. Such warnings come once for a
//   stretch of moves with the same problem.
// - Arcs go out as onCCWArc with the normal +Z or -Z carrying the turning
//   direction, or as onCircular when they came in so or when the swept angle
//   is so close to nothing or to a whole turn that the start and end points
//   would not tell it; a compensated rapid turns its corners on tangent
//   rapid moves outside the corner arc (as close to it as the context's
//   tolerance allows). Every motion that goes out keeps the flags, feed and
//   tool axis of the motion it belongs to; the arcs at corners belong to the
//   motion after the corner, and they come out after that motion's marker.

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "nc/NCContext.h"
#include "nc/NCStream.h"
#include "nc/NCTool.h"
#include "util/utility/ScopePointer.h"

namespace Orvo {

class NCRadiusCompensationStream : public NCStream {
public:
  /// Called for a problem the compensator meets but cannot stop for, such as
  /// a contour it cannot follow without gouging: the line marker of the
  /// first motion concerned (0 before any marker), and an English text.
  using WarningHandler = std::function<void(unsigned int lineNumber, std::string const& message)>;

  explicit NCRadiusCompensationStream(ScopePointer<NCStream> output);
  ~NCRadiusCompensationStream() override;

  NCRadiusCompensationStream(NCRadiusCompensationStream const&) = delete;
  NCRadiusCompensationStream& operator=(NCRadiusCompensationStream const&) = delete;

  /// How many compensated motions are held before the oldest goes out; at
  /// least 1.
  void setLookAhead(std::size_t moves);
  std::size_t getLookAhead() const noexcept;
  /// True while the motions last given in carry a compensation side.
  bool isCompensating() const noexcept;
  void setWarningHandler(WarningHandler handler);
  /// The tool radius that motions coming in now are offset by, in the
  /// context's unit: NaN when the tool's unit cannot be converted.
  double getToolRadius() const noexcept;

  bool passThrough(std::wstring const& text) override;
  bool passThrough(std::string const& text) override;
  bool onComment(std::wstring const& text) override;
  bool onComment(std::string const& text) override;
  bool onCommand(Command command) override;
  bool onToolpathEntityIndex(ToolpathEntityIndex const& index) override;
  bool onMachineCommand(int code) override;
  bool onCoolant(int mode) override;
  bool onSpindleSpeed(double speed) override;
  bool onRadiusCompensationMode(bool on) override;
  bool onRadiusCompensation(int side) override;
  bool onOpen() override;
  using NCStream::onParameter;
  bool onParameter(std::string const& name, Point3D const& value) override;
  bool onParameter(std::string const& name, double value) override;
  bool onParameter(std::string const& name, int value) override;
  bool onParameter(std::string const& name, std::wstring const& value) override;
  bool onParameter(std::string const& name, std::string const& value) override;
  bool onStock(Point3D const& minimum, Point3D const& maximum) override;
  bool onContext(NCContext const& context) override;
  bool onTool(NCTool const& tool) override;
  bool onToolChange(NCTool const& tool) override;
  bool onSection() override;
  bool onGroup(std::string const& name) override;
  bool onTurnGroup(std::string const& name) override;
  bool onGroupEnd() override;
  bool onTurnGroupEnd() override;
  bool onSectionEnd() override;
  bool onDwell(double seconds) override;
  bool onRapid(Point3D const& target, unsigned int flags) override;
  bool onRapid5D(Point3D const& target, Vector3D const& toolAxis, unsigned int flags) override;
  bool onLinear(Point3D const& target, double feed, unsigned int flags) override;
  bool onLinear5D(Point3D const& target, Vector3D const& toolAxis, double feed, unsigned int flags) override;
  bool onLinearExtrude(Point3D const& target, double feed, double extrusion, unsigned int flags) override;
  bool onCWArc(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed,
               unsigned int flags) override;
  bool onCCWArc(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed,
                unsigned int flags) override;
  bool onCircular(Point3D const& center, Point3D const& end, Vector3D const& normal, double sweep, double feed,
                  unsigned int flags) override;
  bool onCWArcExtrude(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed,
                      double extrusion, unsigned int flags) override;
  bool onCCWArcExtrude(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed,
                       double extrusion, unsigned int flags) override;
  bool onCircularExtrude(Point3D const& center, Point3D const& end, Vector3D const& normal, double sweep,
                         double feed, double extrusion, unsigned int flags) override;
  bool onCWCircle(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed,
                  unsigned int flags) override;
  bool onCCWCircle(Point3D const& center, Point3D const& end, Vector3D const& normal, double feed,
                   unsigned int flags) override;
  bool onSpline(std::vector<Point3D> const& controlPoints, double feed, unsigned int flags) override;
  bool onBezier(std::vector<Point3D> const& controlPoints, double feed, unsigned int flags) override;
  bool onNURBS(std::vector<Point3D> const& controlPoints, std::vector<double> const& weights,
               std::vector<double> const& knots, int degree, double feed, unsigned int flags) override;
  bool onSkip() override;
  bool onLineNumber(unsigned int number) override;
  bool onMachineAxisOrdering(AxisOrdering const& ordering) override;
  bool onMachineAxisValues(AxisValues const& values) override;
  bool onFrame(Frame const& frame) override;
  bool onClose() override;

private:
  // The queue, the offset geometry and the output side live in one object
  // behind a pointer, so that this header shows only the interface.
  class Engine;
  std::unique_ptr<Engine> m_engine;
};

}  // namespace Orvo
