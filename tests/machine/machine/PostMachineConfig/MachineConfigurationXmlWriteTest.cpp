// Writing a MachineConfiguration as XML: getXML and getXMLImpl. Expected
// texts and numbers are worked out by hand here.

#include <gtest/gtest.h>

#include <atomic>
#include <clocale>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <locale>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "machine/machine/PostMachineConfig/Axis.h"
#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "machine/machine/PostMachineConfig/Range.h"
#include "machine/machine/PostMachineConfig/Vector.h"
#include "support/ScriptFailureText.h"
#include "util/utility/DOM/Document.h"
#include "util/utility/DOM/Element.h"

// The one way to make a document that cannot be created: the next nothrow
// allocation of the process fails once when this is armed. Unarmed, the
// replacement does what the standard one does.
namespace {
std::atomic<bool> g_failNextNothrowNew{false};
}  // namespace

void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
  if (g_failNextNothrowNew.exchange(false)) return nullptr;
  try {
    return ::operator new(size);
  } catch (...) {
    return nullptr;
  }
}

using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;
using com::vantora::post::Range;
using mtkit_test::scriptFailure;
using Orvo::DOM::Document;
using Orvo::DOM::Element;

namespace {

constexpr double kPi = 3.141592653589793;

/// A written document, read back through the DOM to look at its parts.
class Written {
 public:
  explicit Written(std::wstring const& text) {
    EXPECT_TRUE(m_document.create());
    m_document.loadFromText(text);
  }

  Element root() const { return m_document.getRoot(); }

  /// The names of the root's children, in order.
  std::vector<std::wstring> childNames() const {
    std::vector<std::wstring> names;
    for (Element const& e : root().getChildElements()) names.push_back(e.getName());
    return names;
  }

  /// The first child of the root with the name; a null element if none.
  Element element(wchar_t const* name) const { return root().getFirstChildElement(name); }

  /// The axis element with the id; a null element if none.
  Element axis(wchar_t const* id) const {
    for (Element const& e : root().getChildElements())
      if (e.getName() == L"axis" && e.getAttribute(L"id") == std::optional<std::wstring>(id)) return e;
    return Element();
  }

  std::optional<std::wstring> attribute(wchar_t const* element, wchar_t const* name) const {
    return this->element(element).getAttribute(name);
  }

  std::optional<std::wstring> axisAttribute(wchar_t const* id, wchar_t const* name) const {
    return axis(id).getAttribute(name);
  }

 private:
  Document m_document;
};

std::optional<std::wstring> text(wchar_t const* value) { return std::wstring(value); }
std::optional<std::wstring> const kAbsent;

/// A rotational table axis on coordinate `coordinate` along `direction`.
Axis rotary(Vector const& direction, int coordinate) { return Axis(true, direction, Vector(0, 0, 0), coordinate); }

/// A rotational table axis with a range in radians.
Axis rotary(Vector const& direction, int coordinate, double minimum, double maximum) {
  return Axis(true, direction, Vector(0, 0, 0), coordinate, Range(minimum, maximum, Range::ROTATIONAL));
}

/// The names of the children of an element.
std::vector<std::wstring> childNames(Element const& parent) {
  std::vector<std::wstring> names;
  for (Element const& e : parent.getChildElements()) names.push_back(e.getName());
  return names;
}

/// Restores the C and C++ locales on leaving.
class LocaleGuard {
 public:
  LocaleGuard() : m_c(std::setlocale(LC_ALL, nullptr)), m_cpp(std::locale()) {}
  ~LocaleGuard() {
    std::setlocale(LC_ALL, m_c.c_str());
    std::locale::global(m_cpp);
  }

 private:
  std::string m_c;
  std::locale m_cpp;
};

// The whole document.

/// A small machine: the default X, Y, Z and two rotary table axes, A with
/// a range and C without one, and a few values that are not defaults.
MachineConfiguration smallMachine() {
  MachineConfiguration c;
  c.setVendor(L"Acme & Co");
  c.setModel(L"Mill 5");
  c.setWidth(800);
  c.setMaximumSpindlePower(15000);
  c.setCoolant(MachineConfiguration::COOLANT_FLOOD, true);
  c.setCoolant(MachineConfiguration::COOLANT_THROUGH_TOOL, true);
  Axis a = rotary(Vector(1, 0, 0), 0, -kPi / 2, kPi / 2);
  a.setName(L"A");
  c.addAxis(a);
  Axis cAxis(true, Vector(0, 0, 1), Vector(10, 0, -5), 2);
  cAxis.setMaximumFeed(kPi);  // radians per minute: 180 degrees per minute
  c.addAxis(cAxis);
  return c;
}

TEST(MachineConfigurationXmlWrite, TheWholeDocumentOfASmallConfiguration) {
  std::wstring const expected =
      L"<?xml version=\"1.0\"?>\n"
      L"<machine version=\"1.0\">\n"
      L"  <vendor>Acme &amp; Co</vendor>\n"
      L"  <model>Mill 5</model>\n"
      L"  <machining milling=\"yes\" turning=\"no\" wire=\"no\" jet=\"no\" />\n"
      L"  <dimensions width=\"800\" depth=\"0\" height=\"0\" weight=\"0\" />\n"
      L"  <capacities width=\"0\" depth=\"0\" height=\"0\" weight=\"0\" />\n"
      L"  <tooling toolChanger=\"yes\" toolPreload=\"yes\" numberOfTools=\"100\" maximumToolLength=\"0\" "
      L"maximumToolDiameter=\"0\" maximumToolWeight=\"0\" />\n"
      L"  <machiningTime ratio=\"1\" toolChangeTime=\"15\" />\n"
      L"  <coolant options=\"FLOOD THROUGH_TOOL\" />\n"
      L"  <capabilities maximumFeedrate=\"0\" maximumCuttingFeedrate=\"0\" maximumBlockProcessingSpeed=\"0\" "
      L"workOffsets=\"100\" />\n"
      L"  <spindle axis=\"0 0 1\" maximumPower=\"15000\" maximumSpeed=\"0\" collectChuck=\"\" />\n"
      L"  <post />\n"
      L"  <simulation wcs=\"0 0 0\" retractOnIndexing=\"yes\" shortestAngularRotation=\"yes\" />\n"
      L"  <multiAxis virtualToolTip=\"no\" feedrateMethod=\"fpm\" reconfigure=\"no\" stockExpansion=\"0 0 0\" "
      L"safeRetractDistance=\"0\" safeRetractFeedrate=\"0\" safePlungeFeedrate=\"0\" adjust=\"yes\" "
      L"method=\"linearize rotary\" cone=\"3\" angle=\"10\" tolerance=\"0.04\" linearizationTolerance=\"0.04\" />\n"
      L"  <axis id=\"X\" name=\"\" actuator=\"linear\" displacement=\"0\" coordinate=\"X\" link=\"head\" "
      L"resolution=\"0\" />\n"
      L"  <axis id=\"Y\" name=\"\" actuator=\"linear\" displacement=\"0\" coordinate=\"Y\" link=\"head\" "
      L"resolution=\"0\" />\n"
      L"  <axis id=\"Z\" name=\"\" actuator=\"linear\" displacement=\"0\" coordinate=\"Z\" link=\"head\" "
      L"resolution=\"0\" />\n"
      L"  <axis id=\"U\" name=\"A\" actuator=\"rotational\" displacement=\"0\" coordinate=\"X\" axis=\"1 0 0\" "
      L"link=\"table\" resolution=\"0\" tcp=\"yes\" range=\"-90 90\" />\n"
      L"  <axis id=\"V\" name=\"\" actuator=\"rotational\" offset=\"10 0 -5\" displacement=\"0\" coordinate=\"Z\" "
      L"axis=\"0 0 1\" link=\"table\" resolution=\"0\" maximumFeed=\"180\" tcp=\"yes\" />\n"
      L"</machine>\n";
  MachineConfiguration const c = smallMachine();
  EXPECT_EQ(c.getXML(), expected);
  EXPECT_EQ(c.getXMLImpl(false, false), expected);
}

TEST(MachineConfigurationXmlWrite, TheWholeDocumentWithUnitsInInches) {
  MachineConfiguration c = smallMachine();
  c.setWidth(254);
  std::wstring const expected =
      L"<?xml version=\"1.0\"?>\n"
      L"<machine version=\"1.0\">\n"
      L"  <vendor>Acme &amp; Co</vendor>\n"
      L"  <model>Mill 5</model>\n"
      L"  <machining milling=\"yes\" turning=\"no\" wire=\"no\" jet=\"no\" />\n"
      L"  <dimensions width=\"10in\" depth=\"0in\" height=\"0in\" weight=\"0lb\" />\n"
      L"  <capacities width=\"0in\" depth=\"0in\" height=\"0in\" weight=\"0lb\" />\n"
      L"  <tooling toolChanger=\"yes\" toolPreload=\"yes\" numberOfTools=\"100\" maximumToolLength=\"0in\" "
      L"maximumToolDiameter=\"0in\" maximumToolWeight=\"0lb\" />\n"
      L"  <machiningTime ratio=\"1\" toolChangeTime=\"15s\" />\n"
      L"  <coolant options=\"FLOOD THROUGH_TOOL\" />\n"
      L"  <capabilities maximumFeedrate=\"0in/min\" maximumCuttingFeedrate=\"0in/min\" "
      L"maximumBlockProcessingSpeed=\"0\" workOffsets=\"100\" />\n"
      // 15000 W / 746 = 20.10723860589812 hp
      L"  <spindle axis=\"0 0 1\" maximumPower=\"20.10723860589812hp\" maximumSpeed=\"0rpm\" collectChuck=\"\" />\n"
      L"  <post />\n"
      L"  <simulation wcs=\"0in 0in 0in\" retractOnIndexing=\"yes\" shortestAngularRotation=\"yes\" />\n"
      // 0.04 mm / 25.4 = 0.0015748031496062994 in
      L"  <multiAxis virtualToolTip=\"no\" feedrateMethod=\"fpm\" reconfigure=\"no\" stockExpansion=\"0in 0in 0in\" "
      L"safeRetractDistance=\"0in\" safeRetractFeedrate=\"0in/min\" safePlungeFeedrate=\"0in/min\" adjust=\"yes\" "
      L"method=\"linearize rotary\" cone=\"3deg\" angle=\"10deg\" tolerance=\"0.0015748031496062994in\" "
      L"linearizationTolerance=\"0.0015748031496062994in\" />\n"
      L"  <axis id=\"X\" name=\"\" actuator=\"linear\" displacement=\"0in\" coordinate=\"X\" link=\"head\" "
      L"resolution=\"0in\" />\n"
      L"  <axis id=\"Y\" name=\"\" actuator=\"linear\" displacement=\"0in\" coordinate=\"Y\" link=\"head\" "
      L"resolution=\"0in\" />\n"
      L"  <axis id=\"Z\" name=\"\" actuator=\"linear\" displacement=\"0in\" coordinate=\"Z\" link=\"head\" "
      L"resolution=\"0in\" />\n"
      L"  <axis id=\"U\" name=\"A\" actuator=\"rotational\" displacement=\"0in\" coordinate=\"X\" axis=\"1 0 0\" "
      L"link=\"table\" resolution=\"0deg\" tcp=\"yes\" range=\"-90deg 90deg\" />\n"
      // 10 mm = 0.3937007874015748 in, 5 mm = 0.1968503937007874 in
      L"  <axis id=\"V\" name=\"\" actuator=\"rotational\" offset=\"0.3937007874015748in 0in "
      L"-0.1968503937007874in\" displacement=\"0in\" coordinate=\"Z\" axis=\"0 0 1\" link=\"table\" "
      L"resolution=\"0deg\" maximumFeed=\"180deg/min\" tcp=\"yes\" />\n"
      L"</machine>\n";
  EXPECT_EQ(c.getXMLImpl(true, true), expected);
}

TEST(MachineConfigurationXmlWrite, RootChildrenComeInTheirFixedOrder) {
  MachineConfiguration c;
  c.setControl(L"ctl");
  c.setDescription(L"desc");
  c.setModel(L"model");
  c.setVendorUrl(L"https://example.org");
  c.setVendor(L"vendor");
  c.setAdditiveFFF(true);
  c.addAxis(rotary(Vector(0, 0, 1), 2));
  Written const w(c.getXML());
  EXPECT_EQ(
      w.childNames(),
      (std::vector<std::wstring>{
          L"vendor",     L"vendorUrl", L"model",         L"description", L"control",      L"machining", L"dimensions",
          L"capacities", L"tooling",   L"machiningTime", L"coolant",     L"capabilities", L"spindle",   L"post",
          L"simulation", L"multiAxis", L"axis",          L"axis",        L"axis",         L"axis",      L"additive"}));
  EXPECT_EQ(w.root().getName(), L"machine");
  EXPECT_EQ(w.root().getAttributeNames(), std::vector<std::wstring>{L"version"});
  EXPECT_EQ(w.root().getAttribute(L"version"), text(L"1.0"));
  EXPECT_EQ(w.element(L"vendor").getTextContent(), L"vendor");
  EXPECT_EQ(w.element(L"vendorUrl").getTextContent(), L"https://example.org");
  EXPECT_EQ(w.element(L"model").getTextContent(), L"model");
  EXPECT_EQ(w.element(L"description").getTextContent(), L"desc");
  EXPECT_EQ(w.element(L"control").getTextContent(), L"ctl");
}

TEST(MachineConfigurationXmlWrite, EmptyTextsAreLeftOut) {
  MachineConfiguration c;
  Written const w(c.getXML());
  for (wchar_t const* name : {L"vendor", L"vendorUrl", L"model", L"description", L"control"})
    EXPECT_TRUE(w.element(name).isNull()) << name;
  EXPECT_TRUE(childNames(w.element(L"post")).empty());
  EXPECT_TRUE(childNames(w.element(L"spindle")).empty());
  EXPECT_TRUE(childNames(w.element(L"simulation")).empty());
}

TEST(MachineConfigurationXmlWrite, PostSpindleAndSimulationTextsAreChildElements) {
  MachineConfiguration c;
  c.setPostProcessor(L"post.cps");
  c.setSetupSheet(L"sheet.cps");
  c.setSpindleDescription(L"HSK-A63 spindle");
  c.setMachineAssembly(L"assembly");
  c.setCollectChuck(L"ER32");
  Written const w(c.getXML());
  EXPECT_EQ(childNames(w.element(L"post")), (std::vector<std::wstring>{L"postProcessor", L"setupSheet"}));
  EXPECT_EQ(w.element(L"post").getFirstChildElement(L"postProcessor").getTextContent(), L"post.cps");
  EXPECT_EQ(w.element(L"post").getFirstChildElement(L"setupSheet").getTextContent(), L"sheet.cps");
  EXPECT_EQ(w.element(L"spindle").getFirstChildElement(L"description").getTextContent(), L"HSK-A63 spindle");
  EXPECT_EQ(w.attribute(L"spindle", L"collectChuck"), text(L"ER32"));
  EXPECT_EQ(w.element(L"simulation").getFirstChildElement(L"machineAssembly").getTextContent(), L"assembly");
}

// Bools and the known gaps.

TEST(MachineConfigurationXmlWrite, BoolsAreYesOrNo) {
  MachineConfiguration c;
  c.setMilling(false);
  c.setTurning(true);
  c.setWire(true);
  c.setJet(false);
  c.setToolChanger(false);
  c.setToolPreload(true);
  c.setRetractOnIndexing(false);
  c.setShortestAngularRotation(true);
  c.setVirtualTooltip(true);
  c.setReconfigure(true);
  c.setSingularity(false, 2, 0.1, 0.2, 0.3, 0.4);
  Written const w(c.getXML());
  EXPECT_EQ(w.attribute(L"machining", L"milling"), text(L"no"));
  EXPECT_EQ(w.attribute(L"machining", L"turning"), text(L"yes"));
  EXPECT_EQ(w.attribute(L"machining", L"wire"), text(L"yes"));
  EXPECT_EQ(w.attribute(L"machining", L"jet"), text(L"no"));
  EXPECT_EQ(w.attribute(L"tooling", L"toolChanger"), text(L"no"));
  EXPECT_EQ(w.attribute(L"tooling", L"toolPreload"), text(L"yes"));
  EXPECT_EQ(w.attribute(L"simulation", L"retractOnIndexing"), text(L"no"));
  EXPECT_EQ(w.attribute(L"simulation", L"shortestAngularRotation"), text(L"yes"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"virtualToolTip"), text(L"yes"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"reconfigure"), text(L"yes"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"adjust"), text(L"no"));
}

TEST(MachineConfigurationXmlWrite, InspectionMinimumSpeedAndTheRootHomeAreNotWritten) {
  MachineConfiguration c;
  c.setInspection(true);
  c.setMinimumSpindleSpeed(100);
  c.setHomePositionX(1);
  c.setHomePositionY(2);
  c.setHomePositionZ(3);
  Written const w(c.getXML());
  EXPECT_EQ(w.attribute(L"machining", L"inspection"), kAbsent);
  EXPECT_EQ(w.attribute(L"spindle", L"minimumSpeed"), kAbsent);
  EXPECT_EQ(w.root().getAttribute(L"homePosition"), kAbsent);
  EXPECT_TRUE(w.element(L"home").isNull());
  // The axes carry their own home positions.
  EXPECT_EQ(w.axisAttribute(L"X", L"homePosition"), text(L"1"));
  EXPECT_EQ(w.axisAttribute(L"Y", L"homePosition"), text(L"2"));
  EXPECT_EQ(w.axisAttribute(L"Z", L"homePosition"), text(L"3"));
}

// Numbers without and with units.

/// A configuration with a value that is not a default in each number.
MachineConfiguration everyNumber() {
  MachineConfiguration c;
  c.setWidth(254);
  c.setDepth(127);
  c.setHeight(25.4);
  c.setWeight(1.81436948);  // 4 lb
  c.setPartDimensions(Vector(50.8, 12.7, 2.54));
  c.setWeightCapacity(0.45359237);  // 1 lb
  c.setNumberOfTools(24);
  c.setMaximumToolLength(12.7);
  c.setMaximumToolDiameter(50.8);
  c.setMaximumToolWeight(4.5359237);  // 9.999999999999998 lb
  c.setFeedrateRatio(0.75);
  c.setToolChangeTime(4.5);
  c.setMaximumFeedrate(2540);
  c.setMaximumCuttingFeedrate(1270);
  c.setMaximumBlockProcessingSpeed(1000);
  c.setNumberOfWorkOffsets(54);
  c.setSpindleAxis(Vector(0, 0, 2));
  c.setMaximumSpindlePower(1865);  // 2.5 hp
  c.setMaximumSpindleSpeed(12000);
  c.setWCS(Vector(25.4, -50.8, 0));
  c.setMultiAxisFeedrate(1, 2540, 0, 0.254, 3);
  c.setRewindStockExpansion(Vector(2.54, 5.08, 0));
  c.setSafeRetractDistance(50.8);
  c.setSafeRetractFeedrate(254);
  c.setSafePlungeFeedrate(127);
  c.setSingularity(true, 1, kPi / 60, kPi / 4, 0.0254, 0.254);
  return c;
}

TEST(MachineConfigurationXmlWrite, WithoutUnitsNumbersAreBareInMillimetresKilogramsAndDegrees) {
  Written const w(everyNumber().getXML());
  EXPECT_EQ(w.attribute(L"dimensions", L"width"), text(L"254"));
  EXPECT_EQ(w.attribute(L"dimensions", L"depth"), text(L"127"));
  EXPECT_EQ(w.attribute(L"dimensions", L"height"), text(L"25.4"));
  EXPECT_EQ(w.attribute(L"dimensions", L"weight"), text(L"1.81436948"));
  EXPECT_EQ(w.attribute(L"capacities", L"width"), text(L"50.8"));
  EXPECT_EQ(w.attribute(L"capacities", L"depth"), text(L"12.7"));
  EXPECT_EQ(w.attribute(L"capacities", L"height"), text(L"2.54"));
  EXPECT_EQ(w.attribute(L"capacities", L"weight"), text(L"0.45359237"));
  EXPECT_EQ(w.attribute(L"tooling", L"numberOfTools"), text(L"24"));
  EXPECT_EQ(w.attribute(L"tooling", L"maximumToolLength"), text(L"12.7"));
  EXPECT_EQ(w.attribute(L"tooling", L"maximumToolDiameter"), text(L"50.8"));
  EXPECT_EQ(w.attribute(L"tooling", L"maximumToolWeight"), text(L"4.5359237"));
  EXPECT_EQ(w.attribute(L"machiningTime", L"ratio"), text(L"0.75"));
  EXPECT_EQ(w.attribute(L"machiningTime", L"toolChangeTime"), text(L"4.5"));
  EXPECT_EQ(w.attribute(L"capabilities", L"maximumFeedrate"), text(L"2540"));
  EXPECT_EQ(w.attribute(L"capabilities", L"maximumCuttingFeedrate"), text(L"1270"));
  EXPECT_EQ(w.attribute(L"capabilities", L"maximumBlockProcessingSpeed"), text(L"1000"));
  EXPECT_EQ(w.attribute(L"capabilities", L"workOffsets"), text(L"54"));
  EXPECT_EQ(w.attribute(L"spindle", L"axis"), text(L"0 0 2"));
  EXPECT_EQ(w.attribute(L"spindle", L"maximumPower"), text(L"1865"));
  EXPECT_EQ(w.attribute(L"spindle", L"maximumSpeed"), text(L"12000"));
  EXPECT_EQ(w.attribute(L"simulation", L"wcs"), text(L"25.4 -50.8 0"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"maximumFeedrate"), text(L"2540"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"outputTolerance"), text(L"0.254"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"bpwRatio"), text(L"3"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"stockExpansion"), text(L"2.54 5.08 0"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"safeRetractDistance"), text(L"50.8"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"safeRetractFeedrate"), text(L"254"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"safePlungeFeedrate"), text(L"127"));
  // A bare angle reads as degrees, so it is written in degrees: pi/60 is 3
  // degrees, pi/4 is 45.
  EXPECT_EQ(w.attribute(L"multiAxis", L"cone"), text(L"3"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"angle"), text(L"45"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"tolerance"), text(L"0.0254"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"linearizationTolerance"), text(L"0.254"));
}

TEST(MachineConfigurationXmlWrite, WithUnitsInMillimetres) {
  Written const w(everyNumber().getXMLImpl(true, false));
  EXPECT_EQ(w.attribute(L"dimensions", L"width"), text(L"254mm"));
  EXPECT_EQ(w.attribute(L"dimensions", L"weight"), text(L"1.81436948kg"));
  EXPECT_EQ(w.attribute(L"capacities", L"height"), text(L"2.54mm"));
  EXPECT_EQ(w.attribute(L"capacities", L"weight"), text(L"0.45359237kg"));
  EXPECT_EQ(w.attribute(L"tooling", L"numberOfTools"), text(L"24"));
  EXPECT_EQ(w.attribute(L"tooling", L"maximumToolLength"), text(L"12.7mm"));
  EXPECT_EQ(w.attribute(L"tooling", L"maximumToolDiameter"), text(L"50.8mm"));
  EXPECT_EQ(w.attribute(L"tooling", L"maximumToolWeight"), text(L"4.5359237kg"));
  EXPECT_EQ(w.attribute(L"machiningTime", L"ratio"), text(L"0.75"));
  EXPECT_EQ(w.attribute(L"machiningTime", L"toolChangeTime"), text(L"4.5s"));
  EXPECT_EQ(w.attribute(L"capabilities", L"maximumFeedrate"), text(L"2540mm/min"));
  EXPECT_EQ(w.attribute(L"capabilities", L"maximumCuttingFeedrate"), text(L"1270mm/min"));
  EXPECT_EQ(w.attribute(L"capabilities", L"maximumBlockProcessingSpeed"), text(L"1000"));
  EXPECT_EQ(w.attribute(L"capabilities", L"workOffsets"), text(L"54"));
  EXPECT_EQ(w.attribute(L"spindle", L"axis"), text(L"0 0 2"));
  EXPECT_EQ(w.attribute(L"spindle", L"maximumPower"), text(L"1865W"));
  EXPECT_EQ(w.attribute(L"spindle", L"maximumSpeed"), text(L"12000rpm"));
  EXPECT_EQ(w.attribute(L"simulation", L"wcs"), text(L"25.4mm -50.8mm 0mm"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"maximumFeedrate"), text(L"2540mm/min"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"outputTolerance"), text(L"0.254mm"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"bpwRatio"), text(L"3"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"stockExpansion"), text(L"2.54mm 5.08mm 0mm"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"safeRetractDistance"), text(L"50.8mm"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"safeRetractFeedrate"), text(L"254mm/min"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"safePlungeFeedrate"), text(L"127mm/min"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"cone"), text(L"3deg"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"angle"), text(L"45deg"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"tolerance"), text(L"0.0254mm"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"linearizationTolerance"), text(L"0.254mm"));
}

TEST(MachineConfigurationXmlWrite, WithUnitsInInchesLengthsAndFeedsAreDividedBy25Point4AndWeightsArePounds) {
  Written const w(everyNumber().getXMLImpl(true, true));
  // 254 / 25.4 = 10, 127 / 25.4 = 5, 25.4 / 25.4 = 1.
  EXPECT_EQ(w.attribute(L"dimensions", L"width"), text(L"10in"));
  EXPECT_EQ(w.attribute(L"dimensions", L"depth"), text(L"5in"));
  EXPECT_EQ(w.attribute(L"dimensions", L"height"), text(L"1in"));
  // 1.81436948 kg / 0.45359237 = 4 lb.
  EXPECT_EQ(w.attribute(L"dimensions", L"weight"), text(L"4lb"));
  // 50.8 / 25.4 = 2, 12.7 / 25.4 = 0.5, 2.54 / 25.4 = 0.1.
  EXPECT_EQ(w.attribute(L"capacities", L"width"), text(L"2in"));
  EXPECT_EQ(w.attribute(L"capacities", L"depth"), text(L"0.5in"));
  EXPECT_EQ(w.attribute(L"capacities", L"height"), text(L"0.1in"));
  EXPECT_EQ(w.attribute(L"capacities", L"weight"), text(L"1lb"));
  EXPECT_EQ(w.attribute(L"tooling", L"numberOfTools"), text(L"24"));
  EXPECT_EQ(w.attribute(L"tooling", L"maximumToolLength"), text(L"0.5in"));
  EXPECT_EQ(w.attribute(L"tooling", L"maximumToolDiameter"), text(L"2in"));
  // 4.5359237 / 0.45359237 is one unit in the last place below 10.
  EXPECT_EQ(w.attribute(L"tooling", L"maximumToolWeight"), text(L"9.999999999999998lb"));
  EXPECT_EQ(w.attribute(L"machiningTime", L"ratio"), text(L"0.75"));
  // Seconds and revolutions per minute whatever the flag.
  EXPECT_EQ(w.attribute(L"machiningTime", L"toolChangeTime"), text(L"4.5s"));
  EXPECT_EQ(w.attribute(L"spindle", L"maximumSpeed"), text(L"12000rpm"));
  // 2540 / 25.4 = 100, 1270 / 25.4 = 50.
  EXPECT_EQ(w.attribute(L"capabilities", L"maximumFeedrate"), text(L"100in/min"));
  EXPECT_EQ(w.attribute(L"capabilities", L"maximumCuttingFeedrate"), text(L"50in/min"));
  EXPECT_EQ(w.attribute(L"capabilities", L"maximumBlockProcessingSpeed"), text(L"1000"));
  EXPECT_EQ(w.attribute(L"spindle", L"axis"), text(L"0 0 2"));
  // 1865 W / 746 = 2.5 hp.
  EXPECT_EQ(w.attribute(L"spindle", L"maximumPower"), text(L"2.5hp"));
  EXPECT_EQ(w.attribute(L"simulation", L"wcs"), text(L"1in -2in 0in"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"maximumFeedrate"), text(L"100in/min"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"outputTolerance"), text(L"0.01in"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"bpwRatio"), text(L"3"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"stockExpansion"), text(L"0.1in 0.2in 0in"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"safeRetractDistance"), text(L"2in"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"safeRetractFeedrate"), text(L"10in/min"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"safePlungeFeedrate"), text(L"5in/min"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"cone"), text(L"3deg"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"angle"), text(L"45deg"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"tolerance"), text(L"0.001in"));
  EXPECT_EQ(w.attribute(L"multiAxis", L"linearizationTolerance"), text(L"0.01in"));
}

TEST(MachineConfigurationXmlWrite, TheInchFlagAloneChangesNothing) {
  MachineConfiguration const c = everyNumber();
  EXPECT_EQ(c.getXMLImpl(false, true), c.getXML());
}

TEST(MachineConfigurationXmlWrite, TheConfigurationsOwnInchModeDoesNotChangeTheText) {
  MachineConfiguration c;
  c.setInchMode(true);
  c.setWidth(10);  // 254 mm inside
  c.setMaximumFeedrate(100);
  EXPECT_EQ(Written(c.getXML()).attribute(L"dimensions", L"width"), text(L"254"));
  EXPECT_EQ(Written(c.getXMLImpl(true, true)).attribute(L"dimensions", L"width"), text(L"10in"));
  EXPECT_EQ(Written(c.getXMLImpl(true, false)).attribute(L"capabilities", L"maximumFeedrate"), text(L"2540mm/min"));
}

TEST(MachineConfigurationXmlWrite, PowerPicksWattsKilowattsOrMegawattsAtTheirThresholds) {
  struct Case {
    double watts;
    wchar_t const* metric;
  };
  // Kilowatts from 10000 W, megawatts from 10000000 W (ten of them).
  for (Case const& k : {Case{0, L"0W"}, Case{9999, L"9999W"}, Case{10000, L"10kW"}, Case{9999999, L"9999.999kW"},
                        Case{10000000, L"10MW"}, Case{25000000, L"25MW"}}) {
    MachineConfiguration c;
    c.setMaximumSpindlePower(k.watts);
    EXPECT_EQ(Written(c.getXMLImpl(true, false)).attribute(L"spindle", L"maximumPower"), text(k.metric)) << k.watts;
  }
  MachineConfiguration c;
  c.setMaximumSpindlePower(10000000);
  // Without units the shortest text of the number, which for ten million
  // is the exponent form.
  EXPECT_EQ(Written(c.getXML()).attribute(L"spindle", L"maximumPower"), text(L"1e+07"));
  // Horsepower of 746 W in inch mode, below and above every threshold.
  EXPECT_EQ(Written(c.getXMLImpl(true, true)).attribute(L"spindle", L"maximumPower"), text(L"13404.825737265415hp"));
  c.setMaximumSpindlePower(746);
  EXPECT_EQ(Written(c.getXMLImpl(true, true)).attribute(L"spindle", L"maximumPower"), text(L"1hp"));
  c.setMaximumSpindlePower(9999);
  EXPECT_EQ(Written(c.getXMLImpl(true, true)).attribute(L"spindle", L"maximumPower"), text(L"13.40348525469169hp"));
}

// Coolants.

TEST(MachineConfigurationXmlWrite, CoolantNamesFollowTheVectorOrder) {
  MachineConfiguration c;
  EXPECT_EQ(Written(c.getXML()).attribute(L"coolant", L"options"), text(L""));
  for (unsigned int mode = 1; mode <= 8; ++mode) c.setCoolantSupported(mode, true);
  EXPECT_EQ(Written(c.getXML()).attribute(L"coolant", L"options"),
            text(L"FLOOD MIST THROUGH_TOOL AIR AIR_THROUGH_TOOL SUCTION FLOOD_MIST FLOOD_THROUGH_TOOL"));
  MachineConfiguration d;
  d.setCoolant(MachineConfiguration::COOLANT_FLOOD_THROUGH_TOOL, true);
  d.setCoolant(MachineConfiguration::COOLANT_AIR, true);
  d.setCoolant(MachineConfiguration::COOLANT_MIST, true);
  EXPECT_EQ(Written(d.getXML()).attribute(L"coolant", L"options"), text(L"MIST AIR FLOOD_THROUGH_TOOL"));
}

// Multi-axis words.

TEST(MachineConfigurationXmlWrite, FeedrateMethodAndTypeWords) {
  MachineConfiguration c;
  Written const fpm(c.getXML());
  EXPECT_EQ(fpm.attribute(L"multiAxis", L"feedrateMethod"), text(L"fpm"));
  // Feed per minute has no type; the unset maximum, tolerance and ratio
  // (-1) are left out.
  EXPECT_EQ(fpm.attribute(L"multiAxis", L"feedrateType"), kAbsent);
  EXPECT_EQ(fpm.attribute(L"multiAxis", L"maximumFeedrate"), kAbsent);
  EXPECT_EQ(fpm.attribute(L"multiAxis", L"outputTolerance"), kAbsent);
  EXPECT_EQ(fpm.attribute(L"multiAxis", L"bpwRatio"), kAbsent);

  c.setMultiAxisFeedrate(2, 0, 0, 0, 0);
  EXPECT_EQ(Written(c.getXML()).attribute(L"multiAxis", L"maximumFeedrate"), text(L"0"));

  c.setMultiAxisFeedrate(0, 50, 0, 0, 0);
  Written const seconds(c.getXML());
  EXPECT_EQ(seconds.attribute(L"multiAxis", L"feedrateMethod"), text(L"inverse"));
  EXPECT_EQ(seconds.attribute(L"multiAxis", L"feedrateType"), text(L"seconds"));
  EXPECT_EQ(seconds.attribute(L"multiAxis", L"maximumFeedrate"), text(L"50"));
  c.setMultiAxisFeedrate(0, 50, 1, 0, 0);
  EXPECT_EQ(Written(c.getXML()).attribute(L"multiAxis", L"feedrateType"), text(L"minutes"));

  c.setMultiAxisFeedrate(1, 5000, 0, 0.01, 2);
  Written const standard(c.getXML());
  EXPECT_EQ(standard.attribute(L"multiAxis", L"feedrateMethod"), text(L"dpm"));
  EXPECT_EQ(standard.attribute(L"multiAxis", L"feedrateType"), text(L"standard"));
  EXPECT_EQ(standard.attribute(L"multiAxis", L"outputTolerance"), text(L"0.01"));
  EXPECT_EQ(standard.attribute(L"multiAxis", L"bpwRatio"), text(L"2"));
  c.setMultiAxisFeedrate(1, 5000, 1, 0.01, 2);
  EXPECT_EQ(Written(c.getXML()).attribute(L"multiAxis", L"feedrateType"), text(L"combination"));

  // The DPM values stay in the record after a change of mode, and are
  // written as they stand.
  c.setMultiAxisFeedrate(2, 100, 0, 0, 0);
  Written const back(c.getXML());
  EXPECT_EQ(back.attribute(L"multiAxis", L"feedrateMethod"), text(L"fpm"));
  EXPECT_EQ(back.attribute(L"multiAxis", L"feedrateType"), kAbsent);
  EXPECT_EQ(back.attribute(L"multiAxis", L"outputTolerance"), text(L"0.01"));
}

TEST(MachineConfigurationXmlWrite, SingularityMethodWords) {
  struct Case {
    int method;
    wchar_t const* word;
  };
  for (Case const& k : {Case{0, L"off"}, Case{1, L"linearize linear"}, Case{2, L"linearize rotary"}}) {
    MachineConfiguration c;
    c.setSingularity(true, k.method, 0.1, 0.2, 0.3, 0.4);
    EXPECT_EQ(Written(c.getXML()).attribute(L"multiAxis", L"method"), text(k.word)) << k.method;
  }
}

TEST(MachineConfigurationXmlWrite, MultiAxisAttributesComeInTheirOrder) {
  MachineConfiguration c;
  c.setMultiAxisFeedrate(1, 5000, 0, 0.01, 2);
  EXPECT_EQ(Written(c.getXML()).element(L"multiAxis").getAttributeNames(),
            (std::vector<std::wstring>{L"virtualToolTip", L"feedrateMethod", L"maximumFeedrate", L"feedrateType",
                                       L"outputTolerance", L"bpwRatio", L"reconfigure", L"stockExpansion",
                                       L"safeRetractDistance", L"safeRetractFeedrate", L"safePlungeFeedrate", L"adjust",
                                       L"method", L"cone", L"angle", L"tolerance", L"linearizationTolerance"}));
}

// Axes.

TEST(MachineConfigurationXmlWrite, AxisIdsFollowTheOrderList) {
  MachineConfiguration c;
  c.removeAllAxes();
  Axis z(false, Vector(0, 0, 1), Vector(0, 0, 0), 2);
  z.setActuator(Axis::LINEAR);
  Axis x(false, Vector(1, 0, 0), Vector(0, 0, 0), 0);
  x.setActuator(Axis::LINEAR);
  c.addAxis(z);
  c.addAxis(rotary(Vector(0, 0, 1), 2));
  c.addAxis(x);
  c.addAxis(rotary(Vector(1, 0, 0), 0));
  std::vector<std::wstring> ids;
  // The document lives as long as the elements read from it.
  Written const written(c.getXML());
  for (Element const& e : written.root().getChildElements())
    if (e.getName() == L"axis") ids.push_back(e.getAttribute(L"id").value_or(L"?"));
  EXPECT_EQ(ids, (std::vector<std::wstring>{L"Z", L"U", L"X", L"V"}));
}

TEST(MachineConfigurationXmlWrite, OffsetOnlyWhenNotZero) {
  MachineConfiguration c;
  c.addAxis(rotary(Vector(1, 0, 0), 0));
  c.addAxis(Axis(true, Vector(0, 0, 1), Vector(0, 0, 0.5), 2));
  Written const w(c.getXML());
  EXPECT_EQ(w.axisAttribute(L"U", L"offset"), kAbsent);
  EXPECT_EQ(w.axisAttribute(L"V", L"offset"), text(L"0 0 0.5"));
  EXPECT_EQ(Written(c.getXMLImpl(true, false)).axisAttribute(L"V", L"offset"), text(L"0mm 0mm 0.5mm"));
}

TEST(MachineConfigurationXmlWrite, AxisVectorLeftOutOnlyForALinearXYZAxisOnItsOwnUnitVector) {
  MachineConfiguration c;
  c.getAxisX().setAxis(Vector(1, 0, 1e-12));
  c.addAxis(rotary(Vector(1, 0, 0), 0));
  Written const w(c.getXMLImpl(true, true));
  EXPECT_EQ(w.axisAttribute(L"X", L"axis"), text(L"1 0 1e-12"));
  EXPECT_EQ(w.axisAttribute(L"Y", L"axis"), kAbsent);
  EXPECT_EQ(w.axisAttribute(L"Z", L"axis"), kAbsent);
  // A rotary axis on a unit vector has it written, bare whatever the units.
  EXPECT_EQ(w.axisAttribute(L"U", L"axis"), text(L"1 0 0"));

  // Another slot's unit vector is not the axis's own.
  MachineConfiguration d;
  Axis alongX = d.getAxisX();
  d.setAxisY(alongX);
  EXPECT_EQ(Written(d.getXML()).axisAttribute(L"Y", L"axis"), text(L"1 0 0"));
}

TEST(MachineConfigurationXmlWrite, CoordinateIsALetter) {
  MachineConfiguration c;
  c.addAxis(rotary(Vector(1, 0, 0), 0));
  c.addAxis(rotary(Vector(0, 1, 0), 1));
  c.addAxis(rotary(Vector(0, 0, 1), 2));
  Written const w(c.getXML());
  EXPECT_EQ(w.axisAttribute(L"X", L"coordinate"), text(L"X"));
  EXPECT_EQ(w.axisAttribute(L"Y", L"coordinate"), text(L"Y"));
  EXPECT_EQ(w.axisAttribute(L"Z", L"coordinate"), text(L"Z"));
  EXPECT_EQ(w.axisAttribute(L"U", L"coordinate"), text(L"X"));
  EXPECT_EQ(w.axisAttribute(L"V", L"coordinate"), text(L"Y"));
  EXPECT_EQ(w.axisAttribute(L"W", L"coordinate"), text(L"Z"));
}

TEST(MachineConfigurationXmlWrite, NameActuatorLinkAndTcp) {
  MachineConfiguration c;
  c.getAxisX().setName(L"X1");
  Axis head(false, Vector(0, 1, 0), Vector(0, 0, 0), 1);
  head.setName(L"B head");
  head.setTCPEnabled(false);
  c.addAxis(head);
  c.addAxis(rotary(Vector(0, 0, 1), 2));
  Written const w(c.getXML());
  EXPECT_EQ(w.axisAttribute(L"X", L"name"), text(L"X1"));
  EXPECT_EQ(w.axisAttribute(L"Y", L"name"), text(L""));
  EXPECT_EQ(w.axisAttribute(L"U", L"name"), text(L"B head"));
  EXPECT_EQ(w.axisAttribute(L"X", L"actuator"), text(L"linear"));
  EXPECT_EQ(w.axisAttribute(L"U", L"actuator"), text(L"rotational"));
  EXPECT_EQ(w.axisAttribute(L"X", L"link"), text(L"head"));
  EXPECT_EQ(w.axisAttribute(L"U", L"link"), text(L"head"));
  EXPECT_EQ(w.axisAttribute(L"V", L"link"), text(L"table"));
  // TCP only for a rotational axis, which alone has the flag.
  EXPECT_EQ(w.axisAttribute(L"X", L"tcp"), kAbsent);
  EXPECT_EQ(w.axisAttribute(L"U", L"tcp"), text(L"no"));
  EXPECT_EQ(w.axisAttribute(L"V", L"tcp"), text(L"yes"));
}

TEST(MachineConfigurationXmlWrite, PreferenceOnlyWhenNotZero) {
  MachineConfiguration c;
  Axis positive = rotary(Vector(1, 0, 0), 0);
  positive.setPreference(1);
  Axis negative = rotary(Vector(0, 1, 0), 1);
  negative.setPreference(-1);
  c.addAxis(positive);
  c.addAxis(negative);
  c.addAxis(rotary(Vector(0, 0, 1), 2));
  Written const w(c.getXML());
  EXPECT_EQ(w.axisAttribute(L"U", L"preference"), text(L"positive"));
  EXPECT_EQ(w.axisAttribute(L"V", L"preference"), text(L"negative"));
  EXPECT_EQ(w.axisAttribute(L"W", L"preference"), kAbsent);
  EXPECT_EQ(w.axisAttribute(L"X", L"preference"), kAbsent);
}

TEST(MachineConfigurationXmlWrite, ResetOnlyWhenNotZero) {
  struct Case {
    int reset;
    std::optional<std::wstring> word;
  };
  for (Case const& k :
       {Case{0, kAbsent}, Case{1, text(L"operation")}, Case{2, text(L"rewind")}, Case{3, text(L"both")}}) {
    MachineConfiguration c;
    Axis a = rotary(Vector(1, 0, 0), 0);
    a.setReset(k.reset);
    c.addAxis(a);
    EXPECT_EQ(Written(c.getXML()).axisAttribute(L"U", L"reset"), k.word) << k.reset;
  }
}

TEST(MachineConfigurationXmlWrite, RangeAndCyclicOnlyForARealRangeAndCyclicOnlyWhenCyclic) {
  MachineConfiguration c;
  Axis cyclic = rotary(Vector(1, 0, 0), 0, 0, 2 * kPi);
  cyclic.setCyclic(true);
  Axis limited = rotary(Vector(0, 1, 0), 1, -kPi / 2, kPi / 4);
  Axis unlimited = rotary(Vector(0, 0, 1), 2);  // cyclic by having no range
  ASSERT_TRUE(unlimited.isCyclic());
  c.addAxis(cyclic);
  c.addAxis(limited);
  c.addAxis(unlimited);
  c.getAxisX().setRange(Range(-100, 500, Range::LINEAR));
  Written const w(c.getXML());
  EXPECT_EQ(w.axisAttribute(L"U", L"range"), text(L"0 360"));
  EXPECT_EQ(w.axisAttribute(L"U", L"cyclic"), text(L"yes"));
  EXPECT_EQ(w.axisAttribute(L"V", L"range"), text(L"-90 45"));
  EXPECT_EQ(w.axisAttribute(L"V", L"cyclic"), kAbsent);
  EXPECT_EQ(w.axisAttribute(L"W", L"range"), kAbsent);
  EXPECT_EQ(w.axisAttribute(L"W", L"cyclic"), kAbsent);
  EXPECT_EQ(w.axisAttribute(L"X", L"range"), text(L"-100 500"));
  EXPECT_EQ(w.axisAttribute(L"X", L"cyclic"), kAbsent);
  EXPECT_EQ(w.axisAttribute(L"Y", L"range"), kAbsent);
  Written const inches(c.getXMLImpl(true, true));
  EXPECT_EQ(inches.axisAttribute(L"U", L"range"), text(L"0deg 360deg"));
  // -100 / 25.4 = -3.937007874015748, 500 / 25.4 = 19.68503937007874.
  EXPECT_EQ(inches.axisAttribute(L"X", L"range"), text(L"-3.937007874015748in 19.68503937007874in"));
}

TEST(MachineConfigurationXmlWrite, MaximumAndRapidFeedOnlyAboveZero) {
  MachineConfiguration c;
  Axis fast = rotary(Vector(1, 0, 0), 0);
  fast.setMaximumFeed(2 * kPi);  // 360 degrees per minute
  fast.setRapidFeed(4 * kPi);    // 720
  c.addAxis(fast);
  c.addAxis(rotary(Vector(0, 0, 1), 2));
  c.getAxisX().setMaximumFeed(2540);
  c.getAxisX().setRapidFeed(25400);
  Written const bare(c.getXML());
  EXPECT_EQ(bare.axisAttribute(L"U", L"maximumFeed"), text(L"360"));
  EXPECT_EQ(bare.axisAttribute(L"U", L"rapidFeed"), text(L"720"));
  EXPECT_EQ(bare.axisAttribute(L"V", L"maximumFeed"), kAbsent);
  EXPECT_EQ(bare.axisAttribute(L"V", L"rapidFeed"), kAbsent);
  EXPECT_EQ(bare.axisAttribute(L"X", L"maximumFeed"), text(L"2540"));
  EXPECT_EQ(bare.axisAttribute(L"X", L"rapidFeed"), text(L"25400"));
  EXPECT_EQ(bare.axisAttribute(L"Y", L"maximumFeed"), kAbsent);
  Written const inches(c.getXMLImpl(true, true));
  EXPECT_EQ(inches.axisAttribute(L"U", L"maximumFeed"), text(L"360deg/min"));
  EXPECT_EQ(inches.axisAttribute(L"U", L"rapidFeed"), text(L"720deg/min"));
  EXPECT_EQ(inches.axisAttribute(L"X", L"maximumFeed"), text(L"100in/min"));
  EXPECT_EQ(inches.axisAttribute(L"X", L"rapidFeed"), text(L"1000in/min"));
  EXPECT_EQ(Written(c.getXMLImpl(true, false)).axisAttribute(L"X", L"rapidFeed"), text(L"25400mm/min"));
}

TEST(MachineConfigurationXmlWrite, ResolutionDisplacementAndHomeByActuator) {
  MachineConfiguration c;
  Axis a = rotary(Vector(1, 0, 0), 0);
  a.setResolution(kPi / 180);  // one degree
  a.setHomePosition(-kPi / 2);
  a.setDisplacement(12.7);
  c.addAxis(a);
  c.getAxisZ().setResolution(0.0254);
  c.getAxisZ().setDisplacement(254);
  c.getAxisZ().setHomePosition(508);
  Written const bare(c.getXML());
  EXPECT_EQ(bare.axisAttribute(L"U", L"resolution"), text(L"1"));
  EXPECT_EQ(bare.axisAttribute(L"U", L"homePosition"), text(L"-90"));
  EXPECT_EQ(bare.axisAttribute(L"U", L"displacement"), text(L"12.7"));
  EXPECT_EQ(bare.axisAttribute(L"Z", L"resolution"), text(L"0.0254"));
  EXPECT_EQ(bare.axisAttribute(L"Z", L"displacement"), text(L"254"));
  EXPECT_EQ(bare.axisAttribute(L"Z", L"homePosition"), text(L"508"));
  // Only a home position that was set is written.
  EXPECT_EQ(bare.axisAttribute(L"X", L"homePosition"), kAbsent);
  Written const inches(c.getXMLImpl(true, true));
  EXPECT_EQ(inches.axisAttribute(L"U", L"resolution"), text(L"1deg"));
  EXPECT_EQ(inches.axisAttribute(L"U", L"homePosition"), text(L"-90deg"));
  EXPECT_EQ(inches.axisAttribute(L"U", L"displacement"), text(L"0.5in"));
  EXPECT_EQ(inches.axisAttribute(L"Z", L"resolution"), text(L"0.001in"));
  EXPECT_EQ(inches.axisAttribute(L"Z", L"displacement"), text(L"10in"));
  EXPECT_EQ(inches.axisAttribute(L"Z", L"homePosition"), text(L"20in"));
}

TEST(MachineConfigurationXmlWrite, AxisAttributesComeInTheirOrder) {
  MachineConfiguration c;
  Axis a(true, Vector(1, 0, 0), Vector(1, 2, 3), 0, Range(-1, 1, Range::ROTATIONAL));
  a.setName(L"A");
  a.setCyclic(true);
  a.setHomePosition(0.5);
  a.setPreference(1);
  a.setMaximumFeed(1);
  a.setRapidFeed(2);
  a.setReset(3);
  c.addAxis(a);
  EXPECT_EQ(Written(c.getXML()).axis(L"U").getAttributeNames(),
            (std::vector<std::wstring>{L"id", L"name", L"actuator", L"offset", L"displacement", L"coordinate", L"axis",
                                       L"link", L"resolution", L"homePosition", L"preference", L"maximumFeed",
                                       L"rapidFeed", L"cyclic", L"tcp", L"range", L"reset"}));
}

// Additive.

TEST(MachineConfigurationXmlWrite, AdditiveOnlyWhenAdditiveFFF) {
  MachineConfiguration c;
  c.setParkPositionX(1);
  c.setNumberExtruders(2);
  EXPECT_TRUE(Written(c.getXML()).element(L"additive").isNull());
  c.setAdditiveFFF(true);
  EXPECT_FALSE(Written(c.getXML()).element(L"additive").isNull());
}

TEST(MachineConfigurationXmlWrite, AdditiveWithNothingElseSet) {
  MachineConfiguration c;
  c.setAdditiveFFF(true);
  Written const w(c.getXML());
  Element const additive = w.element(L"additive");
  EXPECT_TRUE(additive.getAttributeNames().empty());
  EXPECT_EQ(childNames(additive), std::vector<std::wstring>{L"fff_settings"});
  Element const fff = additive.getFirstChildElement(L"fff_settings");
  EXPECT_EQ(fff.getAttribute(L"max_extruders"), text(L"0"));
  EXPECT_EQ(childNames(fff), std::vector<std::wstring>{L"extruder_offsets"});
  EXPECT_TRUE(childNames(fff.getFirstChildElement(L"extruder_offsets")).empty());
}

TEST(MachineConfigurationXmlWrite, AdditiveCarriesCenterExtrudersHomeAndParkWithTypeFloat) {
  MachineConfiguration c;
  c.setAdditiveFFF(true);
  c.setCenterPositionX(100);
  c.setCenterPositionY(-50.5);
  c.setNumberExtruders(2);
  c.setExtruderOffsetX(1, 0.5);
  c.setExtruderOffsetX(2, 20);
  c.setExtruderOffsetZ(2, -1.25);
  c.setHomePositionX(1);
  c.setHomePositionY(2);
  c.setHomePositionZ(300);
  c.setParkPositionX(10);
  c.setParkPositionZ(200);
  std::wstring const expected =
      L"  <additive centerx=\"100\" centery=\"-50.5\" centerz=\"0\">\n"
      L"    <fff_settings max_extruders=\"2\">\n"
      L"      <extruder_offsets>\n"
      L"        <item>\n"
      L"          <x>0.5</x>\n"
      L"          <y>0</y>\n"
      L"          <z>0</z>\n"
      L"        </item>\n"
      L"        <item>\n"
      L"          <x>20</x>\n"
      L"          <y>0</y>\n"
      L"          <z>-1.25</z>\n"
      L"        </item>\n"
      L"      </extruder_offsets>\n"
      L"      <home_position>\n"
      L"        <x>1</x>\n"
      L"        <y>2</y>\n"
      L"        <z>300</z>\n"
      L"      </home_position>\n"
      L"      <park_position type=\"float\">\n"
      L"        <x>10</x>\n"
      L"        <y>0</y>\n"
      L"        <z>200</z>\n"
      L"      </park_position>\n"
      L"    </fff_settings>\n"
      L"  </additive>\n"
      L"</machine>\n";
  std::wstring const xml = c.getXML();
  ASSERT_GE(xml.size(), expected.size());
  EXPECT_EQ(xml.substr(xml.size() - expected.size()), expected);
  // The positions are plain numbers, with units too.
  std::wstring const withUnits = c.getXMLImpl(true, true);
  EXPECT_EQ(withUnits.substr(withUnits.size() - expected.size()), expected);
}

TEST(MachineConfigurationXmlWrite, AdditiveHomeNeedsAllThreeAndParkNeedsOne) {
  MachineConfiguration c;
  c.setAdditiveFFF(true);
  c.setHomePositionX(1);
  c.setHomePositionY(2);
  Written const written(c.getXML());
  Element const fff = written.element(L"additive").getFirstChildElement(L"fff_settings");
  EXPECT_EQ(childNames(fff), std::vector<std::wstring>{L"extruder_offsets"});
}

// Reading back.

TEST(MachineConfigurationXmlWrite, GetXMLThenCreateFromXMLKeepsVendorAxesAndMultiAxisSettingsAndLosesInspection) {
  MachineConfiguration c;
  c.setVendor(L"Acme");
  c.setInspection(true);
  Axis b(false, Vector(0, 1, 0), Vector(0, 0, 150), 1, Range(-kPi / 2, kPi / 2, Range::ROTATIONAL));
  b.setName(L"B");
  b.setPreference(-1);
  Axis cAxis = rotary(Vector(0, 0, 1), 2);
  cAxis.setReset(2);
  c.addAxis(b);
  c.addAxis(cAxis);
  c.setMultiAxisFeedrate(1, 3000, 0, 0.05, 1.5);
  c.enableMachineRewinds();
  c.setSafeRetractDistance(25);
  c.setSingularity(true, 1, kPi / 90, kPi / 36, 0.02, 0.03);

  std::unique_ptr<MachineConfiguration> const read(MachineConfiguration::createFromXML(c.getXML()));
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->getVendor(), L"Acme");
  // Inspection is not written, so it comes back as the default.
  EXPECT_FALSE(read->getInspection());

  EXPECT_EQ(read->getNumberOfAxes(), 5u);
  EXPECT_TRUE(read->hasAxis(MachineConfiguration::AXIS_X));
  EXPECT_EQ(read->getIndexOfAxisById(MachineConfiguration::AXIS_U), 3);
  EXPECT_EQ(read->getIndexOfAxisById(MachineConfiguration::AXIS_V), 4);
  Axis const& u = read->getAxisU();
  EXPECT_TRUE(u.isEnabled());
  EXPECT_TRUE(u.isRotational());
  EXPECT_TRUE(u.isHead());
  EXPECT_EQ(u.getName(), L"B");
  EXPECT_EQ(u.getCoordinate(), 1);
  EXPECT_EQ(u.getAxis().y, 1);
  EXPECT_EQ(u.getOffset().z, 150);
  EXPECT_EQ(u.getPreference(), -1);
  EXPECT_NEAR(u.getRange().getMinimum(), -kPi / 2, 1e-15);
  EXPECT_NEAR(u.getRange().getMaximum(), kPi / 2, 1e-15);
  Axis const& v = read->getAxisV();
  EXPECT_TRUE(v.isTable());
  EXPECT_EQ(v.getCoordinate(), 2);
  EXPECT_EQ(v.getReset(), 2);
  EXPECT_TRUE(v.getRange().isNonRange());

  EXPECT_EQ(read->getMultiAxisFeedrateMode(), 1);
  EXPECT_EQ(read->getMultiAxisFeedrateMaximum(), 3000);
  EXPECT_EQ(read->getMultiAxisFeedrateDPMType(), 0);
  EXPECT_EQ(read->getMultiAxisFeedrateOutputTolerance(), 0.05);
  EXPECT_EQ(read->getMultiAxisFeedrateBpwRatio(), 1.5);
  EXPECT_TRUE(read->performRewinds());
  EXPECT_EQ(read->getSafeRetractDistance(), 25);
  EXPECT_TRUE(read->getSingularityAdjust());
  EXPECT_EQ(read->getSingularityMethod(), 1);
  EXPECT_NEAR(read->getSingularityCone(), kPi / 90, 1e-15);   // 2 degrees
  EXPECT_NEAR(read->getSingularityAngle(), kPi / 36, 1e-15);  // 5 degrees
  EXPECT_EQ(read->getSingularityTolerance(), 0.02);
  EXPECT_EQ(read->getSingularityLinearizationTolerance(), 0.03);
}

TEST(MachineConfigurationXmlWrite, TheDefaultConfigurationReadsBackToItsOwnText) {
  MachineConfiguration const c;
  for (bool const units : {false, true})
    for (bool const inch : {false, true}) {
      std::wstring const xml = c.getXMLImpl(units, inch);
      std::unique_ptr<MachineConfiguration> const read(MachineConfiguration::createFromXML(xml));
      ASSERT_NE(read, nullptr);
      EXPECT_EQ(read->getXMLImpl(units, inch), xml) << units << inch;
    }
}

// Failure and locale.

TEST(MachineConfigurationXmlWrite, ADocumentThatCannotBeMadeFailsWithFailedToCreateDOMDocument) {
  MachineConfiguration const c;
  g_failNextNothrowNew = true;
  std::wstring const failure = scriptFailure([&] { c.getXML(); });
  bool const armed = g_failNextNothrowNew.exchange(false);
  EXPECT_FALSE(armed) << "the document did not ask for memory";
  EXPECT_EQ(failure, L"Failed to create DOM document.");
  // And the next time it works.
  EXPECT_EQ(Written(c.getXML()).root().getName(), L"machine");
}

TEST(MachineConfigurationXmlWrite, TheTextIsTheSameInALocaleWithADecimalComma) {
  MachineConfiguration c = everyNumber();
  c.addAxis(rotary(Vector(1, 0, 0), 0, -kPi / 3, kPi / 3));
  std::wstring const inC = c.getXMLImpl(true, false) + c.getXMLImpl(false, false) + c.getXMLImpl(true, true);
  LocaleGuard const guard;
  if (!std::setlocale(LC_ALL, "de_DE.UTF-8") && !std::setlocale(LC_ALL, "de_DE.utf8"))
    GTEST_SKIP() << "the de_DE.UTF-8 locale is not installed (scripts/setup.sh generates it)";
  std::locale::global(std::locale(std::setlocale(LC_ALL, nullptr)));
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "%.1f", 0.5);
  ASSERT_EQ(std::string(buffer), "0,5") << "the locale in force does not use a decimal comma";
  std::wstring const inGerman = c.getXMLImpl(true, false) + c.getXMLImpl(false, false) + c.getXMLImpl(true, true);
  EXPECT_EQ(inGerman, inC);
  EXPECT_EQ(inGerman.find(L','), std::wstring::npos);
}

}  // namespace
