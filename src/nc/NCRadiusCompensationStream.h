#pragma once
// Cutter radius compensation on the NC event interface, with a look-ahead of
// moves.
//
// Events given in come out on the output stream given to the constructor,
// delayed and in order, with each onLineNumber ahead of the motions that
// followed it. Motions whose flags carry a compensation side (see NCStream)
// are offset by the radius of the tool last given with onTool.
//
// (The geometry is being written; until then, motions pass through
// uncompensated, delayed by the look-ahead.)

#include <cstddef>
#include <deque>
#include <functional>
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
  /// first motion concerned, and an English text.
  using WarningHandler = std::function<void(unsigned int lineNumber, std::string const& message)>;

  explicit NCRadiusCompensationStream(ScopePointer<NCStream> output);
  ~NCRadiusCompensationStream() override;

  NCRadiusCompensationStream(NCRadiusCompensationStream const&) = delete;
  NCRadiusCompensationStream& operator=(NCRadiusCompensationStream const&) = delete;

  /// How many motions are held before the oldest goes out; at least 1.
  void setLookAhead(std::size_t moves);
  std::size_t getLookAhead() const noexcept { return m_lookAhead; }
  /// True while the motions last given in carry a compensation side.
  bool isCompensating() const noexcept { return m_compensating; }
  void setWarningHandler(WarningHandler handler) { m_warningHandler = std::move(handler); }

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
  void hold(std::function<void(NCStream&)> event, bool isMotion);
  void release(std::size_t motionsToKeep);

  ScopePointer<NCStream> m_output;
  std::size_t m_lookAhead = 1;
  bool m_compensating = false;
  bool m_open = false;
  NCContext m_context;
  NCTool m_tool;
  WarningHandler m_warningHandler;
  struct Held {
    std::function<void(NCStream&)> event;
    bool isMotion;
  };
  std::deque<Held> m_held;
  std::size_t m_heldMotions = 0;
};

}  // namespace Orvo
