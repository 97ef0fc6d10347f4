#pragma once
// An NC stream that records every event it is given, by name and arguments,
// for tests of streams that write to an NCStream.

#include <functional>
#include <string>
#include <vector>

#include "nc/NCStream.h"

namespace mtkit_test {

struct NCCall {
  std::string name;
  Orvo::Point3D p;   // target, end, or stock minimum
  Orvo::Point3D q;   // centre, or stock maximum
  Orvo::Vector3D v;  // normal or tool axis
  double feed = 0.0;
  double sweep = 0.0;
  unsigned int flags = 0;
  unsigned int number = 0;  // line number, entity index, command, mode
  std::string text;
};

class RecordingNCStream : public Orvo::NCStream {
public:
  std::vector<NCCall> calls;
  /// Runs after each call is recorded, with the call's name: lets a test
  /// call back into the stream that writes here.
  std::function<void(std::string const&)> afterCall;

  /// The calls whose names are motions.
  static bool isMotion(std::string const& name) {
    return name == "onRapid" || name == "onRapid5D" || name == "onLinear" || name == "onLinear5D" ||
           name == "onCCWArc" || name == "onCWArc" || name == "onCircular" || name == "onLinearExtrude" ||
           name == "onCWArcExtrude" || name == "onCCWArcExtrude" || name == "onCircularExtrude" ||
           name == "onCWCircle" || name == "onCCWCircle" || name == "onSpline" || name == "onBezier" ||
           name == "onNURBS";
  }
  std::vector<std::string> names() const {
    std::vector<std::string> out;
    for (auto const& c : calls) out.push_back(c.name);
    return out;
  }

  bool passThrough(std::wstring const&) override { return add(named("passThroughW")); }
  bool passThrough(std::string const& t) override { return add(text("passThrough", t)); }
  bool onComment(std::wstring const&) override { return add(named("onCommentW")); }
  bool onComment(std::string const& t) override { return add(text("onComment", t)); }
  bool onCommand(Command c) override { return add(number("onCommand", static_cast<unsigned int>(c))); }
  bool onToolpathEntityIndex(Orvo::ToolpathEntityIndex const& i) override {
    return add(number("onToolpathEntityIndex", i.index()));
  }
  bool onMachineCommand(int c) override { return add(number("onMachineCommand", static_cast<unsigned int>(c))); }
  bool onCoolant(int m) override { return add(number("onCoolant", static_cast<unsigned int>(m))); }
  bool onSpindleSpeed(double s) override {
    NCCall c = named("onSpindleSpeed");
    c.feed = s;
    return add(c);
  }
  bool onRadiusCompensationMode(bool on) override { return add(number("onRadiusCompensationMode", on ? 1u : 0u)); }
  bool onRadiusCompensation(int s) override {
    return add(number("onRadiusCompensation", static_cast<unsigned int>(s)));
  }
  bool onOpen() override { return add(named("onOpen")); }
  bool onParameter(std::string const& n, Orvo::Point3D const&) override { return add(text("onParameter", n)); }
  bool onParameter(std::string const& n, double) override { return add(text("onParameter", n)); }
  bool onParameter(std::string const& n, int) override { return add(text("onParameter", n)); }
  bool onParameter(std::string const& n, std::wstring const&) override { return add(text("onParameter", n)); }
  bool onParameter(std::string const& n, std::string const&) override { return add(text("onParameter", n)); }
  bool onStock(Orvo::Point3D const& a, Orvo::Point3D const& b) override {
    NCCall c = named("onStock");
    c.p = a;
    c.q = b;
    return add(c);
  }
  bool onContext(Orvo::NCContext const&) override { return add(named("onContext")); }
  bool onTool(Orvo::NCTool const&) override { return add(named("onTool")); }
  bool onToolChange(Orvo::NCTool const&) override { return add(named("onToolChange")); }
  bool onSection() override { return add(named("onSection")); }
  bool onGroup(std::string const& n) override { return add(text("onGroup", n)); }
  bool onTurnGroup(std::string const& n) override { return add(text("onTurnGroup", n)); }
  bool onGroupEnd() override { return add(named("onGroupEnd")); }
  bool onTurnGroupEnd() override { return add(named("onTurnGroupEnd")); }
  bool onSectionEnd() override { return add(named("onSectionEnd")); }
  bool onDwell(double s) override {
    NCCall c = named("onDwell");
    c.feed = s;
    return add(c);
  }
  bool onRapid(Orvo::Point3D const& t, unsigned int f) override { return add(motion("onRapid", t, f)); }
  bool onRapid5D(Orvo::Point3D const& t, Orvo::Vector3D const& a, unsigned int f) override {
    NCCall c = motion("onRapid5D", t, f);
    c.v = a;
    return add(c);
  }
  bool onLinear(Orvo::Point3D const& t, double feed, unsigned int f) override {
    NCCall c = motion("onLinear", t, f);
    c.feed = feed;
    return add(c);
  }
  bool onLinear5D(Orvo::Point3D const& t, Orvo::Vector3D const& a, double feed, unsigned int f) override {
    NCCall c = motion("onLinear5D", t, f);
    c.v = a;
    c.feed = feed;
    return add(c);
  }
  bool onLinearExtrude(Orvo::Point3D const& t, double feed, double, unsigned int f) override {
    NCCall c = motion("onLinearExtrude", t, f);
    c.feed = feed;
    return add(c);
  }
  bool onCWArc(Orvo::Point3D const& ce, Orvo::Point3D const& e, Orvo::Vector3D const& n, double feed,
               unsigned int f) override {
    return add(arc("onCWArc", ce, e, n, feed, f));
  }
  bool onCCWArc(Orvo::Point3D const& ce, Orvo::Point3D const& e, Orvo::Vector3D const& n, double feed,
                unsigned int f) override {
    return add(arc("onCCWArc", ce, e, n, feed, f));
  }
  bool onCircular(Orvo::Point3D const& ce, Orvo::Point3D const& e, Orvo::Vector3D const& n, double sweep, double feed,
                  unsigned int f) override {
    NCCall c = arc("onCircular", ce, e, n, feed, f);
    c.sweep = sweep;
    return add(c);
  }
  bool onCWArcExtrude(Orvo::Point3D const& ce, Orvo::Point3D const& e, Orvo::Vector3D const& n, double feed, double,
                      unsigned int f) override {
    return add(arc("onCWArcExtrude", ce, e, n, feed, f));
  }
  bool onCCWArcExtrude(Orvo::Point3D const& ce, Orvo::Point3D const& e, Orvo::Vector3D const& n, double feed, double,
                       unsigned int f) override {
    return add(arc("onCCWArcExtrude", ce, e, n, feed, f));
  }
  bool onCircularExtrude(Orvo::Point3D const& ce, Orvo::Point3D const& e, Orvo::Vector3D const& n, double sweep,
                         double feed, double, unsigned int f) override {
    NCCall c = arc("onCircularExtrude", ce, e, n, feed, f);
    c.sweep = sweep;
    return add(c);
  }
  bool onCWCircle(Orvo::Point3D const& ce, Orvo::Point3D const& e, Orvo::Vector3D const& n, double feed,
                  unsigned int f) override {
    return add(arc("onCWCircle", ce, e, n, feed, f));
  }
  bool onCCWCircle(Orvo::Point3D const& ce, Orvo::Point3D const& e, Orvo::Vector3D const& n, double feed,
                   unsigned int f) override {
    return add(arc("onCCWCircle", ce, e, n, feed, f));
  }
  bool onSpline(std::vector<Orvo::Point3D> const& pts, double feed, unsigned int f) override {
    NCCall c = motion("onSpline", pts.empty() ? Orvo::Point3D() : pts.back(), f);
    c.feed = feed;
    return add(c);
  }
  bool onBezier(std::vector<Orvo::Point3D> const& pts, double feed, unsigned int f) override {
    NCCall c = motion("onBezier", pts.empty() ? Orvo::Point3D() : pts.back(), f);
    c.feed = feed;
    return add(c);
  }
  bool onNURBS(std::vector<Orvo::Point3D> const& pts, std::vector<double> const&, std::vector<double> const&, int,
               double feed, unsigned int f) override {
    NCCall c = motion("onNURBS", pts.empty() ? Orvo::Point3D() : pts.back(), f);
    c.feed = feed;
    return add(c);
  }
  bool onSkip() override { return add(named("onSkip")); }
  bool onLineNumber(unsigned int n) override { return add(number("onLineNumber", n)); }
  bool onMachineAxisOrdering(Orvo::AxisOrdering const&) override { return add(named("onMachineAxisOrdering")); }
  bool onMachineAxisValues(Orvo::AxisValues const&) override { return add(named("onMachineAxisValues")); }
  bool onFrame(Orvo::Frame const&) override { return add(named("onFrame")); }
  bool onClose() override { return add(named("onClose")); }

private:
  bool add(NCCall c) {
    calls.push_back(std::move(c));
    if (afterCall) afterCall(calls.back().name);
    return true;
  }
  static NCCall named(char const* name) {
    NCCall c;
    c.name = name;
    return c;
  }
  static NCCall text(char const* name, std::string const& t) {
    NCCall c = named(name);
    c.text = t;
    return c;
  }
  static NCCall number(char const* name, unsigned int n) {
    NCCall c = named(name);
    c.number = n;
    return c;
  }
  static NCCall motion(char const* name, Orvo::Point3D const& t, unsigned int f) {
    NCCall c = named(name);
    c.p = t;
    c.flags = f;
    return c;
  }
  static NCCall arc(char const* name, Orvo::Point3D const& ce, Orvo::Point3D const& e, Orvo::Vector3D const& n,
                    double feed, unsigned int f) {
    NCCall c = named(name);
    c.q = ce;
    c.p = e;
    c.v = n;
    c.feed = feed;
    c.flags = f;
    return c;
  }
};

}  // namespace mtkit_test
