// Decodes the bytes into the events a post chain gives the cutter radius
// compensator: motions with random sides, arcs, 5-axis moves, tools and
// units, sections, markers and look-aheads. Contract assertions are on and
// any that fails ends the run. What comes out must be finite, of the kinds
// the chain can take back, and carry the markers given in, in order; the
// output also calls back into the compensator with markers of its own, as
// the chain does, and those must come straight back out.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "nc/NCRadiusCompensationStream.h"
#include "nc/NCUnit.h"
#include "nc/ToolGeometry.h"
#include "util/utility/Basic.h"

namespace {

using Orvo::NCStream;
using Orvo::Point3D;
using Orvo::Vector3D;

[[noreturn]] void fail(char const* why) {
  std::fprintf(stderr, "NCRadiusCompensationStreamFuzz: %s\n", why);
  std::abort();
}

bool finite(Point3D const& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }
bool finite(Vector3D const& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

constexpr unsigned int kEchoBase = 1000000000u;

// Checks what comes out.
class Checker final : public NCStream {
public:
  Orvo::NCRadiusCompensationStream* back = nullptr;
  std::vector<unsigned int> markers;
  unsigned int nextEcho = kEchoBase;
  unsigned int echoExpected = 0;
  bool echoing = false;

  bool passThrough(std::wstring const&) override { fail("passThrough"); }
  bool passThrough(std::string const&) override { fail("passThrough"); }
  bool onComment(std::wstring const&) override { fail("onComment"); }
  bool onComment(std::string const&) override { fail("onComment"); }
  bool onCommand(Command) override { fail("onCommand"); }
  bool onToolpathEntityIndex(Orvo::ToolpathEntityIndex const&) override { return true; }
  bool onMachineCommand(int) override { fail("onMachineCommand"); }
  bool onCoolant(int) override { fail("onCoolant"); }
  bool onSpindleSpeed(double) override { fail("onSpindleSpeed"); }
  bool onRadiusCompensationMode(bool) override { return true; }
  bool onRadiusCompensation(int) override { fail("onRadiusCompensation"); }
  bool onOpen() override { return true; }
  bool onParameter(std::string const&, Point3D const&) override { fail("onParameter"); }
  bool onParameter(std::string const&, double) override { fail("onParameter"); }
  bool onParameter(std::string const&, int) override { fail("onParameter"); }
  bool onParameter(std::string const&, std::wstring const&) override { fail("onParameter"); }
  bool onParameter(std::string const&, std::string const&) override { fail("onParameter"); }
  bool onStock(Point3D const&, Point3D const&) override { fail("onStock"); }
  bool onContext(Orvo::NCContext const&) override { return true; }
  bool onTool(Orvo::NCTool const&) override { return true; }
  bool onToolChange(Orvo::NCTool const&) override { fail("onToolChange"); }
  bool onSection() override { return true; }
  bool onGroup(std::string const&) override { fail("onGroup"); }
  bool onTurnGroup(std::string const&) override { fail("onTurnGroup"); }
  bool onGroupEnd() override { fail("onGroupEnd"); }
  bool onTurnGroupEnd() override { fail("onTurnGroupEnd"); }
  bool onSectionEnd() override {
    // As the chain does at a section end: a marker back into the
    // compensator, which must come straight out again.
    echo();
    return true;
  }
  bool onDwell(double) override { fail("onDwell"); }
  bool onRapid(Point3D const& p, unsigned int) override { return motion(p); }
  bool onRapid5D(Point3D const& p, Vector3D const& a, unsigned int) override {
    if (!finite(a)) fail("axis not finite");
    return motion(p);
  }
  bool onLinear(Point3D const& p, double feed, unsigned int) override {
    if (!std::isfinite(feed)) fail("feed not finite");
    return motion(p);
  }
  bool onLinear5D(Point3D const& p, Vector3D const& a, double feed, unsigned int) override {
    if (!finite(a) || !std::isfinite(feed)) fail("axis or feed not finite");
    return motion(p);
  }
  bool onLinearExtrude(Point3D const&, double, double, unsigned int) override { fail("onLinearExtrude"); }
  bool onCWArc(Point3D const&, Point3D const&, Vector3D const&, double, unsigned int) override { fail("onCWArc"); }
  bool onCCWArc(Point3D const& c, Point3D const& e, Vector3D const& n, double feed, unsigned int) override {
    if (!finite(c) || !finite(n) || !std::isfinite(feed)) fail("arc not finite");
    if (!(n.x * n.x + n.y * n.y + n.z * n.z > 0.0)) fail("arc without normal");
    return motion(e);
  }
  bool onCircular(Point3D const& c, Point3D const& e, Vector3D const& n, double sweep, double feed,
                  unsigned int) override {
    if (!finite(c) || !finite(n) || !std::isfinite(sweep) || !std::isfinite(feed)) fail("circular not finite");
    return motion(e);
  }
  bool onCWArcExtrude(Point3D const&, Point3D const&, Vector3D const&, double, double, unsigned int) override {
    fail("onCWArcExtrude");
  }
  bool onCCWArcExtrude(Point3D const&, Point3D const&, Vector3D const&, double, double, unsigned int) override {
    fail("onCCWArcExtrude");
  }
  bool onCircularExtrude(Point3D const&, Point3D const&, Vector3D const&, double, double, double,
                         unsigned int) override {
    fail("onCircularExtrude");
  }
  bool onCWCircle(Point3D const&, Point3D const&, Vector3D const&, double, unsigned int) override {
    fail("onCWCircle");
  }
  bool onCCWCircle(Point3D const&, Point3D const&, Vector3D const&, double, unsigned int) override {
    fail("onCCWCircle");
  }
  bool onSpline(std::vector<Point3D> const&, double, unsigned int) override { fail("onSpline"); }
  bool onBezier(std::vector<Point3D> const&, double, unsigned int) override { fail("onBezier"); }
  bool onNURBS(std::vector<Point3D> const&, std::vector<double> const&, std::vector<double> const&, int, double,
               unsigned int) override {
    fail("onNURBS");
  }
  bool onSkip() override { fail("onSkip"); }
  bool onLineNumber(unsigned int n) override {
    if (n >= kEchoBase) {
      if (!echoing || n != echoExpected) fail("echoed marker out of place");
      echoExpected = 0;
      return true;
    }
    markers.push_back(n);
    return true;
  }
  bool onMachineAxisOrdering(Orvo::AxisOrdering const&) override { fail("onMachineAxisOrdering"); }
  bool onMachineAxisValues(Orvo::AxisValues const&) override { fail("onMachineAxisValues"); }
  bool onFrame(Orvo::Frame const&) override { fail("onFrame"); }
  bool onClose() override { return true; }

private:
  bool motion(Point3D const& p) {
    if (!finite(p)) fail("motion not finite");
    return true;
  }
  void echo() {
    if (!back || echoing) return;
    echoing = true;
    echoExpected = nextEcho;
    back->onLineNumber(nextEcho++);
    if (echoExpected != 0) fail("echoed marker did not come straight out");
    echoing = false;
  }
};

class Bytes {
public:
  Bytes(std::uint8_t const* data, std::size_t size) : m_data(data), m_size(size) {}
  bool more() const { return m_at < m_size; }
  std::uint8_t byte() { return m_at < m_size ? m_data[m_at++] : 0; }
  // A coordinate in 1/32 mm steps, up to about a metre either way.
  double coordinate() {
    std::uint16_t const v = static_cast<std::uint16_t>(byte() | (byte() << 8));
    return static_cast<std::int16_t>(v) / 32.0;
  }
  Point3D point() {
    double const x = coordinate();
    double const y = coordinate();
    double const z = (byte() % 16) - 8.0;
    return Point3D(x, y, z);
  }
  unsigned int flags() {
    std::uint8_t const b = byte();
    unsigned int f = 3u;
    if (b & 1) f |= 128u;
    if (b & 2) f |= 256u;
    if (b & 4) f = (f & ~127u) | 1u;  // a rapid's movement
    return f;
  }
  Vector3D axis() {
    std::uint8_t const b = byte();
    if (b < 200) return Vector3D(0, 0, 1);
    if (b < 220) return Vector3D(0, 0, -1);
    if (b < 240) return Vector3D(0.0, 0.6, 0.8);
    return Vector3D((b % 5) * 1e-10, 0, 1);
  }

private:
  std::uint8_t const* m_data;
  std::size_t m_size;
  std::size_t m_at = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Orvo::_debug::setTesting(true);
  Orvo::_debug::takeFailedAsserts();
  Bytes in(data, size);
  Checker out;
  std::vector<unsigned int> given;
  {
    Orvo::NCRadiusCompensationStream comp{Orvo::ScopePointer<NCStream>(&out)};
    out.back = &comp;
    comp.setWarningHandler([](unsigned int, std::string const& text) {
      if (text.empty()) fail("empty warning");
    });
    comp.setLookAhead(1 + in.byte() % 128);
    comp.onOpen();
    comp.onTool(Orvo::NCTool(1, Orvo::ToolGeometry((in.byte() % 64) * 0.5, 0, 10, 50)));
    unsigned int marker = 0;
    int ops = 0;
    while (in.more() && ops++ < 4000) {
      std::uint8_t const op = in.byte();
      switch (op % 16) {
        case 0:
        case 1:
        case 2: {
          Point3D const p = in.point();
          comp.onLinear(p, 100 + in.byte(), in.flags());
          break;
        }
        case 3: {
          Point3D const p = in.point();
          comp.onRapid(p, in.flags());
          break;
        }
        case 4:
        case 5: {
          Point3D const c = in.point();
          Point3D const e = in.point();
          Vector3D const n = in.axis();
          comp.onCCWArc(c, e, n, 100, in.flags());
          break;
        }
        case 6: {
          Point3D const c = in.point();
          Point3D const e = in.point();
          Vector3D const n = in.axis();
          double const sweep = (static_cast<int>(in.byte()) - 128) / 16.0;
          comp.onCircular(c, e, n, sweep, 100, in.flags());
          break;
        }
        case 7: {
          Point3D const p = in.point();
          Vector3D const a = in.axis();
          comp.onLinear5D(p, a, 100, in.flags());
          break;
        }
        case 8: {
          Point3D const p = in.point();
          Vector3D const a = in.axis();
          comp.onRapid5D(p, a, in.flags());
          break;
        }
        case 9:
          comp.onSection();
          break;
        case 10:
          comp.onSectionEnd();
          break;
        case 11:
          comp.onRadiusCompensationMode(false);
          break;
        case 12:
          comp.onToolpathEntityIndex(Orvo::ToolpathEntityIndex(in.byte()));
          break;
        case 13: {
          std::uint8_t const b = in.byte();
          int const unit = b < 200 ? Orvo::NCUnit::MILLIMETER : (b < 250 ? Orvo::NCUnit::INCH : 9);
          comp.onTool(Orvo::NCTool(2, Orvo::ToolGeometry((in.byte() % 64) * 0.5 - 2.0, 0, 10, 50), unit));
          break;
        }
        case 14: {
          std::uint8_t const b = in.byte();
          comp.onContext(Orvo::NCContext(b < 128 ? Orvo::NCUnit::MILLIMETER : Orvo::NCUnit::INCH,
                                         (in.byte() % 8) * 0.005));
          break;
        }
        case 15:
          comp.setLookAhead(1 + in.byte() % 128);
          break;
      }
      // Markers between the events, as the chain puts one ahead of each motion.
      if (op & 16) {
        given.push_back(++marker);
        comp.onLineNumber(marker);
      }
      if (!Orvo::_debug::takeFailedAsserts().empty()) fail("contract assertion");
    }
    comp.onClose();
    if (!Orvo::_debug::takeFailedAsserts().empty()) fail("contract assertion");
  }
  if (out.markers != given) fail("markers lost or out of order");
  Orvo::_debug::setTesting(false);
  return 0;
}
