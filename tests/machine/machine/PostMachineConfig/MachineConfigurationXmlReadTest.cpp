// Reading the XML form of a machine configuration from text: the document's
// shape, every element and attribute and what it sets.

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "machine/machine/PostMachineConfig/MachineConfigurationLoader.h"
#include "machine/machine/PostMachineConfig/MultiAxisFeedrate.h"
#include "support/ScriptFailureText.h"
#include "util/utility/DOM/Document.h"

using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;
using com::vantora::post::MachineConfigurationLoader;
using com::vantora::Vector;
using mtkit_test::scriptFailure;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kDegree = kPi / 180;

std::unique_ptr<MachineConfiguration> fromXML(std::wstring const& text) {
  return std::unique_ptr<MachineConfiguration>(MachineConfiguration::createFromXML(text));
}

/// A document whose root holds `body`.
std::unique_ptr<MachineConfiguration> inMachine(std::wstring const& body) {
  return fromXML(L"<machine version=\"1.0\">" + body + L"</machine>");
}

std::wstring failureOf(std::wstring const& text) {
  return scriptFailure([&] { fromXML(text); });
}

std::wstring machineFailure(std::wstring const& body) { return failureOf(L"<machine>" + body + L"</machine>"); }

void expectVector(Vector const& v, double x, double y, double z, double tolerance = 1e-12) {
  EXPECT_NEAR(v.x, x, tolerance);
  EXPECT_NEAR(v.y, y, tolerance);
  EXPECT_NEAR(v.z, z, tolerance);
}

// A five-axis machine: X, Y, Z, then a table axis on A and a head axis on C.
std::wstring const kFiveAxes =
    L"<axis id=\"X\" actuator=\"linear\" coordinate=\"X\" range=\"-400 400\"/>"
    L"<axis id=\"Y\" actuator=\"linear\" coordinate=\"Y\" range=\"-300 300\"/>"
    L"<axis id=\"Z\" actuator=\"linear\" coordinate=\"Z\" range=\"-500 0\"/>"
    L"<axis id=\"U\" actuator=\"rotational\" coordinate=\"A\" axis=\"1 0 0\" link=\"table\" range=\"-120 30\"/>"
    L"<axis id=\"V\" actuator=\"rotational\" coordinate=\"C\" axis=\"0 0 1\" link=\"head\"/>";

}  // namespace

// The edge cases of the format.

TEST(MachineConfigurationXmlRead, ARootNamedAnythingButMachineFailsBeforeVersionIsLookedAt) {
  // The version would fail too: the name is looked at first.
  EXPECT_EQ(failureOf(L"<machines version=\"2.0\"/>"), L"Not a valid machine configuration.");
  EXPECT_EQ(failureOf(L"<Machine/>"), L"Not a valid machine configuration.");
  EXPECT_EQ(failureOf(L"<configuration><machine/></configuration>"), L"Not a valid machine configuration.");
  EXPECT_EQ(failureOf(L"<machine version=\"2.0\"/>"), L"Unsupported version of machine configuration.");
}

TEST(MachineConfigurationXmlRead, VersionAbsentPassesAnyValueOtherThan1Point0Fails) {
  EXPECT_NE(fromXML(L"<machine/>"), nullptr);
  EXPECT_NE(fromXML(L"<machine version=\"1.0\"/>"), nullptr);
  for (wchar_t const* version : {L"1", L"1.00", L"1.1", L"", L" 1.0", L"1.0 ", L"2.0"}) {
    EXPECT_EQ(failureOf(std::wstring(L"<machine version=\"") + version + L"\"/>"),
              L"Unsupported version of machine configuration.")
        << "version '" << std::wstring(version) << "'";
  }
}

TEST(MachineConfigurationXmlRead, InheritOnADocumentReadByCreateFromXMLIsIgnoredSinceItHasNoPath) {
  // No loader is asked and no file looked for: the name is one that no
  // loader could find.
  auto const c = fromXML(L"<machine inherit=\"/no/such/folder/base.xml\"><vendor>Own</vendor></machine>");
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(c->getVendor(), L"Own");
  // And nothing else came from anywhere: the defaults of a new configuration.
  EXPECT_EQ(c->getModel(), L"");
  EXPECT_EQ(c->getToolChangeTime(), 15);
}

TEST(MachineConfigurationXmlRead, TheSameIdTwiceFailsWithMachineConfigurationHasDuplicateAxis) {
  EXPECT_EQ(machineFailure(L"<axis id=\"U\" coordinate=\"A\" axis=\"1 0 0\"/>"
                           L"<axis id=\"U\" coordinate=\"B\" axis=\"0 1 0\"/>"),
            L"Machine configuration has duplicate axis.");
  // Apart, with other elements between them, the same.
  EXPECT_EQ(machineFailure(L"<axis id=\"X\" actuator=\"linear\" coordinate=\"X\"/><vendor>A</vendor>"
                           L"<axis id=\"X\" actuator=\"linear\" coordinate=\"X\"/>"),
            L"Machine configuration has duplicate axis.");
}

TEST(MachineConfigurationXmlRead, CoordinateCOnAnAxisGives2) {
  auto const c = inMachine(L"<axis id=\"U\" coordinate=\"c\" axis=\"0 0 1\"/>");
  EXPECT_EQ(c->getAxisU().getCoordinate(), 2);
}

TEST(MachineConfigurationXmlRead, ABooleanOfTrueFailsWithTheAttributesOwnMessage) {
  EXPECT_EQ(machineFailure(L"<simulation retractOnIndexing=\"true\"/>"),
            L"Invalid retract on indexing option in machine configuration.");
  EXPECT_EQ(machineFailure(L"<tooling toolChanger=\"true\"/>"), L"Invalid tool changer option in machine configuration.");
  EXPECT_EQ(machineFailure(L"<machining milling=\"true\"/>"),
            L"Invalid milling capability option in machine configuration.");
  EXPECT_EQ(machineFailure(L"<multiAxis reconfigure=\"true\"/>"),
            L"Invalid multi-axis reconfigure option in machine configuration.");
  // Only "yes" and "no" are booleans, as they stand.
  EXPECT_EQ(machineFailure(L"<machining milling=\"Yes\"/>"),
            L"Invalid milling capability option in machine configuration.");
  EXPECT_EQ(machineFailure(L"<machining milling=\"1\"/>"),
            L"Invalid milling capability option in machine configuration.");
}

// The document as a whole.

TEST(MachineConfigurationXmlRead, AnEmptyMachineHasNoAxesAndTheDefaultsOfANewConfiguration) {
  auto const c = inMachine(L"");
  // Every axis goes before the children are read, X, Y and Z too.
  EXPECT_FALSE(c->hasAxis(MachineConfiguration::AXIS_X));
  EXPECT_FALSE(c->getAxisX().isEnabled());
  EXPECT_FALSE(c->getAxisZ().isEnabled());
  EXPECT_TRUE(c->getMilling());
  EXPECT_EQ(c->getNumberOfTools(), 100u);
  EXPECT_EQ(c->getFeedrateRatio(), 1);
}

TEST(MachineConfigurationXmlRead, AxesAreAddedInFileOrder) {
  auto const c = inMachine(L"<axis id=\"V\" coordinate=\"C\" axis=\"0 0 1\"/>" + kFiveAxes.substr(0, 0) +
                         L"<axis id=\"Z\" actuator=\"linear\" coordinate=\"Z\"/>"
                         L"<axis id=\"X\" actuator=\"linear\" coordinate=\"X\"/>"
                         L"<axis id=\"Y\" actuator=\"linear\" coordinate=\"Y\"/>");
  // A rotary axis goes to the first free rotary slot, whatever its id.
  ASSERT_EQ(c->getNumberOfAxes(), 4u);
  EXPECT_EQ(&c->getAxisByOrder(0), &c->getAxisU());
  EXPECT_EQ(&c->getAxisByOrder(1), &c->getAxisZ());
  EXPECT_EQ(&c->getAxisByOrder(2), &c->getAxisX());
  EXPECT_EQ(&c->getAxisByOrder(3), &c->getAxisY());
  EXPECT_EQ(c->getAxisU().getCoordinate(), 2);
}

TEST(MachineConfigurationXmlRead, AFiveAxisMachineIsSupported) {
  auto const c = inMachine(kFiveAxes);
  EXPECT_EQ(c->getNumberOfAxes(), 5u);
  EXPECT_EQ(c->getValidityStatus(), 0);
  EXPECT_TRUE(c->isMultiAxisConfiguration());
  EXPECT_TRUE(c->getAxisU().isTable());
  EXPECT_TRUE(c->getAxisV().isHead());
  EXPECT_NEAR(c->getAxisU().getRange().getMinimum(), -120 * kDegree, 1e-15);
  EXPECT_NEAR(c->getAxisU().getRange().getMaximum(), 30 * kDegree, 1e-15);
  EXPECT_EQ(c->getAxisX().getRange().getMinimum(), -400);
  EXPECT_EQ(c->getAxisZ().getRange().getMaximum(), 0);
}

TEST(MachineConfigurationXmlRead, UnknownAndDroppedElementsArePassedOver) {
  auto const c = inMachine(
      L"<png128>AAAA</png128><corvex/><custom a=\"b\"/><mtk>{}</mtk><controllerConfigurations/>"
      L"<machine_connector/><somethingNew width=\"wide\"/><vendor>Acme</vendor>");
  EXPECT_EQ(c->getVendor(), L"Acme");
}

TEST(MachineConfigurationXmlRead, TextElementsSetTheirTexts) {
  auto const c = inMachine(
      L"<vendor>Acme &amp; S\u00f6hne</vendor><vendorUrl>https://example.invalid/</vendorUrl>"
      L"<model>M-5</model><description>Five axes</description><control>Ctrl 9</control>");
  EXPECT_EQ(c->getVendor(), L"Acme & S\u00f6hne");
  EXPECT_EQ(c->getVendorUrl(), L"https://example.invalid/");
  EXPECT_EQ(c->getModel(), L"M-5");
  EXPECT_EQ(c->getDescription(), L"Five axes");
  EXPECT_EQ(c->getControl(), L"Ctrl 9");
  // A later element of the same name wins; an empty one clears.
  EXPECT_EQ(inMachine(L"<vendor>A</vendor><vendor>B</vendor>")->getVendor(), L"B");
  EXPECT_EQ(inMachine(L"<vendor>A</vendor><vendor/>")->getVendor(), L"");
}

TEST(MachineConfigurationXmlRead, PostSetsPostProcessorAndSetupSheetAndDropsTheRest) {
  auto const c = inMachine(
      L"<post><postProcessor>p.cps</postProcessor><setupSheet>s.cps</setupSheet>"
      L"<postProperties><a/></postProperties><setupSheetProperties/><outputFolder>/tmp</outputFolder></post>");
  EXPECT_EQ(c->getPostProcessor(), L"p.cps");
  EXPECT_EQ(c->getSetupSheet(), L"s.cps");
}

TEST(MachineConfigurationXmlRead, SimulationSetsWcsFlagsAndAssembly) {
  auto const c = inMachine(
      L"<simulation wcs=\"1 2 3in\" retractOnIndexing=\"no\" shortestAngularRotation=\"no\">"
      L"<machineAssembly>assembly.step</machineAssembly></simulation>");
  expectVector(c->getWCS(), 1, 2, 76.2);
  EXPECT_FALSE(c->getRetractOnIndexing());
  EXPECT_FALSE(c->getShortestAngularRotation());
  EXPECT_EQ(c->getMachineAssembly(), L"assembly.step");
  auto const yes = inMachine(L"<simulation retractOnIndexing=\"yes\" shortestAngularRotation=\"yes\"/>");
  EXPECT_TRUE(yes->getRetractOnIndexing());
  EXPECT_TRUE(yes->getShortestAngularRotation());
}

TEST(MachineConfigurationXmlRead, DimensionsTakeLengthsAndWeightWithUnits) {
  auto const c = inMachine(L"<dimensions width=\"25.4mm\" depth=\"2m\" height=\"30cm\" weight=\"2t\"/>");
  EXPECT_EQ(c->getWidth(), 25.4);
  EXPECT_EQ(c->getDepth(), 2000);
  EXPECT_EQ(c->getHeight(), 300);
  EXPECT_EQ(c->getWeight(), 2000);
  // One inch is the same width; a bare number is millimetres and kilograms.
  EXPECT_EQ(inMachine(L"<dimensions width=\"1in\"/>")->getWidth(), 25.4);
  auto const bare = inMachine(L"<dimensions width=\"12.5\" weight=\"3\"/>");
  EXPECT_EQ(bare->getWidth(), 12.5);
  EXPECT_EQ(bare->getWeight(), 3);
  // All four are optional: what is absent stays.
  auto const partial = inMachine(L"<dimensions depth=\"7\"/>");
  EXPECT_EQ(partial->getWidth(), 0);
  EXPECT_EQ(partial->getDepth(), 7);
  EXPECT_EQ(partial->getWeight(), 0);
  // Zero is not negative.
  EXPECT_EQ(inMachine(L"<dimensions width=\"0\"/>")->getWidth(), 0);
}

TEST(MachineConfigurationXmlRead, CapabilitiesTakeFeedsAndCounts) {
  auto const c = inMachine(
      L"<capabilities maximumFeedrate=\"10m/min\" maximumCuttingFeedrate=\"100mm/s\" "
      L"maximumBlockProcessingSpeed=\"1000\" workOffsets=\"54\"/>");
  EXPECT_EQ(c->getMaximumFeedrate(), 10000);
  EXPECT_NEAR(c->getMaximumCuttingFeedrate(), 6000, 1e-9);  // 100 / (1/60)
  EXPECT_EQ(c->getMaximumBlockProcessingSpeed(), 1000u);
  EXPECT_EQ(c->getNumberOfWorkOffsets(), 54u);
  EXPECT_EQ(inMachine(L"<capabilities maximumFeedrate=\"1in/min\"/>")->getMaximumFeedrate(), 25.4);
}

TEST(MachineConfigurationXmlRead, CapacitiesGoToPartDimensionsAndWeightCapacity) {
  auto const c = inMachine(L"<capacities width=\"500\" depth=\"1ft\" height=\"2in\" weight=\"1lb\"/>");
  EXPECT_EQ(c->getPartMaximumX(), 500);
  EXPECT_EQ(c->getPartMaximumY(), 304.79999999999995);
  EXPECT_EQ(c->getPartMaximumZ(), 50.8);
  EXPECT_EQ(c->getWeightCapacity(), 0.45359237);
  // Not the machine's own dimensions.
  EXPECT_EQ(c->getWidth(), 0);
}

TEST(MachineConfigurationXmlRead, ToolingSetsChangerPreloadCountAndToolLimits) {
  auto const c = inMachine(
      L"<tooling toolChanger=\"no\" toolPreload=\"no\" numberOfTools=\"24\" maximumToolLength=\"300mm\" "
      L"maximumToolDiameter=\"1in\" maximumToolWeight=\"8000g\"/>");
  EXPECT_FALSE(c->getToolChanger());
  EXPECT_FALSE(c->getToolPreload());
  EXPECT_EQ(c->getNumberOfTools(), 24u);
  EXPECT_EQ(c->getMaximumToolLength(), 300);
  EXPECT_EQ(c->getMaximumToolDiameter(), 25.4);
  EXPECT_EQ(c->getMaximumToolWeight(), 8);
}

TEST(MachineConfigurationXmlRead, MachiningSetsTheFiveCapabilities) {
  auto const c = inMachine(L"<machining milling=\"no\" turning=\"yes\" wire=\"yes\" jet=\"yes\" inspection=\"yes\"/>");
  EXPECT_FALSE(c->getMilling());
  EXPECT_TRUE(c->getTurning());
  EXPECT_TRUE(c->getWire());
  EXPECT_TRUE(c->getJet());
  EXPECT_TRUE(c->getInspection());
}

TEST(MachineConfigurationXmlRead, MachiningTimeSetsRatioAndToolChangeTime) {
  auto const c = inMachine(L"<machiningTime ratio=\"0.8\" toolChangeTime=\"1.5min\"/>");
  EXPECT_EQ(c->getFeedrateRatio(), 0.8);
  EXPECT_EQ(c->getToolChangeTime(), 90);
  EXPECT_EQ(inMachine(L"<machiningTime toolChangeTime=\"4\"/>")->getToolChangeTime(), 4);
  // The ratio is a plain number: a unit is not a number.
  EXPECT_EQ(machineFailure(L"<machiningTime ratio=\"1mm\"/>"), L"Failed to load machine configuration.");
}

TEST(MachineConfigurationXmlRead, CoolantOptionsListTheSupportedCoolants) {
  auto const c = inMachine(L"<coolant options=\"FLOOD AIR BOGUS flood FLOOD_THROUGH_TOOL\"/>");
  std::vector<bool> const& coolants = c->getCoolants();
  ASSERT_EQ(coolants.size(), 9u);
  // Modes: 1 flood, 2 mist, 3 through tool, 4 air, 5 air through tool,
  // 6 suction, 7 flood and mist, 8 flood through tool. Names are matched as
  // they stand, and unknown ones are ignored.
  EXPECT_EQ(coolants, (std::vector<bool>{false, true, false, false, true, false, false, false, true}));
  auto const all = inMachine(
      L"<coolant options=\"FLOOD MIST THROUGH_TOOL AIR AIR_THROUGH_TOOL SUCTION FLOOD_MIST FLOOD_THROUGH_TOOL\"/>");
  EXPECT_EQ(all->getCoolants(), (std::vector<bool>{false, true, true, true, true, true, true, true, true}));
  // The list replaces what there was.
  auto const replaced = inMachine(L"<coolant options=\"MIST\"/><coolant options=\"SUCTION\"/>");
  EXPECT_EQ(replaced->getCoolants(), (std::vector<bool>{false, false, false, false, false, false, true, false, false}));
}

TEST(MachineConfigurationXmlRead, HomeIsAppliedAfterAllAxesAreIn) {
  // The home element comes first; the axes that take it come later.
  auto const c = inMachine(L"<home x=\"10\" y=\"20mm\" z=\"1in\"/>" + kFiveAxes);
  EXPECT_EQ(c->getHomePositionX(), 10);
  EXPECT_EQ(c->getHomePositionY(), 20);
  EXPECT_EQ(c->getHomePositionZ(), 25.4);
  EXPECT_TRUE(c->hasHomePositionX());
  // A home position may be negative; an absent one is not set.
  auto const partial = inMachine(L"<home z=\"-5\"/>" + kFiveAxes);
  EXPECT_EQ(partial->getHomePositionZ(), -5);
  EXPECT_FALSE(partial->hasHomePositionX());
}

TEST(MachineConfigurationXmlRead, SpindleSetsItsNormalisedAxisPowerSpeedsChuckAndDescription) {
  auto const c = inMachine(
      L"<spindle axis=\"3 0 4\" maximumPower=\"15kW\" maximumSpeed=\"12000rpm\" minimumSpeed=\"100\" "
      L"collectChuck=\"ER32\"><description>Main spindle</description></spindle>");
  // (3, 0, 4) has length 5.
  expectVector(c->getSpindleAxis(), 0.6, 0, 0.8);
  EXPECT_EQ(c->getMaximumSpindlePower(), 15000);
  EXPECT_EQ(c->getMaximumSpindleSpeed(), 12000);
  EXPECT_EQ(c->getMinimumSpindleSpeed(), 100);
  EXPECT_EQ(c->getCollectChuck(), L"ER32");
  // The axis is three numbers, not lengths; and a tiny axis keeps its
  // direction.
  expectVector(inMachine(L"<spindle axis=\"0 -1e-310 0\"/>")->getSpindleAxis(), 0, -1, 0);
  EXPECT_EQ(machineFailure(L"<spindle axis=\"0 0 1mm\"/>"), L"Invalid spindle axis in machine configuration.");
  // Power in horsepower; the spindle speed takes only "rpm".
  EXPECT_EQ(inMachine(L"<spindle maximumPower=\"2hp\"/>")->getMaximumSpindlePower(), 1492);
  EXPECT_EQ(machineFailure(L"<spindle maximumSpeed=\"100rad/min\"/>"),
            L"Invalid maximum spindle speed in machine configuration.");
}

TEST(MachineConfigurationXmlRead, MultiAxisSetsFeedRetractAndSingularity) {
  auto const c = inMachine(
      L"<multiAxis virtualToolTip=\"yes\" feedrateMethod=\"dpm\" maximumFeedrate=\"5000\" feedrateType=\"standard\" "
      L"outputTolerance=\"0.01in\" bpwRatio=\"0.5\" reconfigure=\"yes\" stockExpansion=\"1 2 3\" "
      L"safeRetractDistance=\"1in\" safeRetractFeedrate=\"1m/min\" safePlungeFeedrate=\"500\" adjust=\"yes\" "
      L"method=\"linearize linear\" cone=\"5\" angle=\"0.5rad\" tolerance=\"0.1\" linearizationTolerance=\"0.2mm\"/>");
  EXPECT_TRUE(c->getVirtualTooltip());
  EXPECT_EQ(c->getMultiAxisFeedrateMode(), 1);
  EXPECT_EQ(c->getMultiAxisFeedrateMaximum(), 5000);
  EXPECT_EQ(c->getMultiAxisFeedrateDPMType(), 0);
  EXPECT_NEAR(c->getMultiAxisFeedrateOutputTolerance(), 0.254, 1e-15);
  EXPECT_EQ(c->getMultiAxisFeedrateBpwRatio(), 0.5);
  EXPECT_TRUE(c->getReconfigure());
  expectVector(c->getRewindStockExpansion(), 1, 2, 3);
  EXPECT_EQ(c->getSafeRetractDistance(), 25.4);
  EXPECT_EQ(c->getSafeRetractFeedrate(), 1000);
  EXPECT_EQ(c->getSafePlungeFeedrate(), 500);
  EXPECT_TRUE(c->getSingularityAdjust());
  EXPECT_EQ(c->getSingularityMethod(), 1);
  EXPECT_NEAR(c->getSingularityCone(), 5 * kDegree, 1e-15);
  EXPECT_EQ(c->getSingularityAngle(), 0.5);
  EXPECT_EQ(c->getSingularityTolerance(), 0.1);
  EXPECT_EQ(c->getSingularityLinearizationTolerance(), 0.2);
}

TEST(MachineConfigurationXmlRead, MultiAxisFeedrateMethodsAndTypes) {
  auto const inverse = inMachine(L"<multiAxis feedrateMethod=\"inverse\" feedrateType=\"seconds\"/>");
  EXPECT_EQ(inverse->getMultiAxisFeedrateMode(), 0);
  EXPECT_EQ(inverse->getMultiAxisFeedrateInverseTimeUnits(), 0);
  EXPECT_EQ(inMachine(L"<multiAxis feedrateMethod=\"inverse\" feedrateType=\"minutes\"/>")
                ->getMultiAxisFeedrateInverseTimeUnits(),
            1);
  EXPECT_EQ(inMachine(L"<multiAxis feedrateMethod=\"dpm\" feedrateType=\"combination\"/>")->getMultiAxisFeedrateDPMType(),
            1);
  auto const fpm = inMachine(L"<multiAxis feedrateMethod=\"fpm\" maximumFeedrate=\"1in/min\"/>");
  EXPECT_EQ(fpm->getMultiAxisFeedrateMode(), 2);
  EXPECT_EQ(fpm->getMultiAxisFeedrateMaximum(), 25.4);
  // The type's words belong to the method.
  EXPECT_EQ(machineFailure(L"<multiAxis feedrateMethod=\"inverse\" feedrateType=\"standard\"/>"),
            L"Invalid multi-axis feedrate type option in machine configuration.");
  EXPECT_EQ(machineFailure(L"<multiAxis feedrateMethod=\"dpm\" feedrateType=\"seconds\"/>"),
            L"Invalid multi-axis feedrate type option in machine configuration.");
  // Absent attributes keep the defaults: -1 for the maximum, minutes.
  auto const defaults = inMachine(L"<multiAxis feedrateMethod=\"inverse\"/>");
  EXPECT_EQ(defaults->getMultiAxisFeedrateMaximum(), -1);
  EXPECT_EQ(defaults->getMultiAxisFeedrateInverseTimeUnits(), 1);
}

TEST(MachineConfigurationXmlRead, SingularityMethodsAndAbsentValues) {
  EXPECT_EQ(inMachine(L"<multiAxis method=\"off\"/>")->getSingularityMethod(), 0);
  EXPECT_EQ(inMachine(L"<multiAxis method=\"linearize rotary\"/>")->getSingularityMethod(), 2);
  auto const off = inMachine(L"<multiAxis adjust=\"no\"/>");
  EXPECT_FALSE(off->getSingularityAdjust());
  // The other singularity values keep their defaults: 3 and 10 degrees,
  // 0.04 mm.
  EXPECT_EQ(off->getSingularity().getCone(), 0.05235987755982988);
  EXPECT_EQ(off->getSingularity().getAngle(), 0.17453292519943295);
  EXPECT_EQ(off->getSingularity().getTolerance(), 0.04);
}

TEST(MachineConfigurationXmlRead, AxisAttributesOfARotaryAxis) {
  auto const c = inMachine(
      L"<axis id=\"U\" name=\"trunnion\" actuator=\"rotational\" offset=\"10 20 30\" displacement=\"5\" "
      L"coordinate=\"A\" axis=\"-2 0 0\" link=\"table\" resolution=\"0.001\" homePosition=\"90\" "
      L"preference=\"negative\" maximumFeed=\"3600\" rapidFeed=\"10rpm\" cyclic=\"yes\" tcp=\"no\" "
      L"range=\"30 -120\" reset=\"rewind\"/>");
  Axis const& u = c->getAxisU();
  ASSERT_TRUE(u.isEnabled());
  EXPECT_TRUE(u.isRotational());
  EXPECT_EQ(u.getName(), L"trunnion");
  EXPECT_EQ(u.getMachinePartId().id(), "trunnion");
  expectVector(u.getOffset(), 10, 20, 30);
  EXPECT_EQ(u.getDisplacement(), 5);
  EXPECT_EQ(u.getCoordinate(), 0);
  // The direction is normalised; a table axis acts with +1.
  expectVector(u.getAxis(), -1, 0, 0);
  expectVector(u.getEffectiveAxis(), -1, 0, 0);
  EXPECT_TRUE(u.isTable());
  // Angles: a bare number is degrees.
  EXPECT_NEAR(u.getResolution(), 0.001 * kDegree, 1e-18);
  EXPECT_NEAR(u.getHomePosition(), kPi / 2, 1e-15);
  EXPECT_TRUE(u.hasHomePosition());
  EXPECT_EQ(u.getPreference(), -1);
  // 3600 degrees per minute is 20 pi radians per minute; 10 rpm as well.
  EXPECT_NEAR(u.getMaximumFeed(), 20 * kPi, 1e-12);
  EXPECT_NEAR(u.getRapidFeed(), 20 * kPi, 1e-12);
  EXPECT_TRUE(u.isCyclic());
  EXPECT_FALSE(u.isTCPEnabled());
  // The limits in either order.
  EXPECT_NEAR(u.getRange().getMinimum(), -120 * kDegree, 1e-15);
  EXPECT_NEAR(u.getRange().getMaximum(), 30 * kDegree, 1e-15);
  EXPECT_EQ(u.getReset(), 2);
}

TEST(MachineConfigurationXmlRead, AxisAttributesOfALinearAxis) {
  auto const c = inMachine(
      L"<axis id=\"X\" actuator=\"linear\" coordinate=\"0\" resolution=\"0.001in\" homePosition=\"-10\" "
      L"maximumFeed=\"10m/min\" rapidFeed=\"1000mm/s\" displacement=\"2in\" range=\"-1in 1in\" "
      L"preference=\"positive\" reset=\"both\"/>");
  Axis const& x = c->getAxisX();
  ASSERT_TRUE(x.isEnabled());
  EXPECT_TRUE(x.isLinear());
  expectVector(x.getAxis(), 1, 0, 0);  // X starts along its own unit vector
  EXPECT_NEAR(x.getResolution(), 0.0254, 1e-15);
  EXPECT_EQ(x.getHomePosition(), -10);
  EXPECT_EQ(x.getMaximumFeed(), 10000);
  EXPECT_NEAR(x.getRapidFeed(), 60000, 1e-9);
  EXPECT_EQ(x.getDisplacement(), 50.8);
  EXPECT_EQ(x.getRange().getMinimum(), -25.4);
  EXPECT_EQ(x.getRange().getMaximum(), 25.4);
  EXPECT_EQ(x.getPreference(), 1);
  EXPECT_EQ(x.getReset(), 3);
  // A linear axis has no tool centre point.
  EXPECT_FALSE(x.isTCPEnabled());
}

TEST(MachineConfigurationXmlRead, AxisDefaults) {
  auto const c = inMachine(L"<axis id=\"V\" coordinate=\"B\" axis=\"0 1 0\"/>");
  Axis const& u = c->getAxisU();
  ASSERT_TRUE(u.isEnabled());
  // Rotational, a head axis, no range, TCP on, no preference, reset 0.
  EXPECT_TRUE(u.isRotational());
  EXPECT_TRUE(u.isHead());
  EXPECT_TRUE(u.getRange().isNonRange());
  EXPECT_TRUE(u.isTCPEnabled());
  EXPECT_EQ(u.getPreference(), 0);
  EXPECT_EQ(u.getReset(), 0);
  EXPECT_FALSE(u.hasHomePosition());
  EXPECT_EQ(u.getResolution(), 0);
  expectVector(u.getOffset(), 0, 0, 0);
  // The name is "unspecified", and no part id is taken from it.
  EXPECT_EQ(u.getName(), L"unspecified");
  EXPECT_EQ(u.getMachinePartId().id(), "");
  // "unbound" is no range at all, and a cyclic flag without a range is not
  // set (an axis without a range counts as cyclic anyway).
  auto const unbound = inMachine(L"<axis id=\"U\" coordinate=\"A\" axis=\"1 0 0\" range=\"unbound\" cyclic=\"no\"/>");
  EXPECT_TRUE(unbound->getAxisU().getRange().isNonRange());
  EXPECT_TRUE(unbound->getAxisU().isCyclic());
  auto const ranged = inMachine(L"<axis id=\"U\" coordinate=\"A\" axis=\"1 0 0\" range=\"-90 90\"/>");
  EXPECT_FALSE(ranged->getAxisU().isCyclic());
}

TEST(MachineConfigurationXmlRead, CoordinateLettersAndNumbers) {
  struct Case {
    wchar_t const* text;
    int coordinate;
  };
  for (Case const& k : {Case{L"X", 0}, Case{L"x", 0}, Case{L"A", 0}, Case{L"a", 0}, Case{L"Y", 1}, Case{L"y", 1},
                        Case{L"B", 1}, Case{L"b", 1}, Case{L"Z", 2}, Case{L"z", 2}, Case{L"C", 2}, Case{L"c", 2},
                        Case{L"0", 0}, Case{L"1", 1}, Case{L"2", 2}}) {
    auto const c = inMachine(std::wstring(L"<axis id=\"U\" axis=\"1 0 0\" coordinate=\"") + k.text + L"\"/>");
    EXPECT_EQ(c->getAxisU().getCoordinate(), k.coordinate) << std::wstring(k.text);
  }
  // A number beyond C makes an axis that does not exist.
  EXPECT_EQ(machineFailure(L"<axis id=\"U\" axis=\"1 0 0\" coordinate=\"3\"/>"),
            L"Invalid axis in machine configuration.");
}

TEST(MachineConfigurationXmlRead, AdditiveIsReadAfterTheAxes) {
  auto const c = inMachine(
      L"<additive centerx=\"1\" centery=\"2.5\" centerz=\"-3\"><fff_settings max_extruders=\"2\">"
      L"<extruder_offsets><item><x>0</x><y>0</y><z>0</z></item><item><x> 18 </x><y>-1</y><z>0.5</z></item>"
      L"</extruder_offsets>"
      L"<home_position><x>5</x><y>6</y><z>7</z></home_position>"
      L"<park_position type=\"float\"><x>-5</x><y>200</y><z>150</z></park_position>"
      L"</fff_settings></additive>" +
      kFiveAxes);
  EXPECT_EQ(c->getCenterPositionX(), 1);
  EXPECT_EQ(c->getCenterPositionY(), 2.5);
  EXPECT_EQ(c->getCenterPositionZ(), -3);
  EXPECT_TRUE(c->getAdditiveFFF());
  EXPECT_EQ(c->getNumberExtruders(), 2u);
  EXPECT_EQ(c->getExtruderOffsetX(2), 18);
  EXPECT_EQ(c->getExtruderOffsetY(2), -1);
  EXPECT_EQ(c->getExtruderOffsetZ(2), 0.5);
  // Its home position reached the axes that came after it in the file.
  EXPECT_EQ(c->getHomePositionX(), 5);
  EXPECT_EQ(c->getHomePositionZ(), 7);
  EXPECT_EQ(c->getParkPositionY(), 200);
  // Without fff_settings the machine is not an FFF printer.
  auto const plain = inMachine(L"<additive centerx=\"4\"/>");
  EXPECT_FALSE(plain->getAdditiveFFF());
  EXPECT_EQ(plain->getCenterPositionX(), 4);
  EXPECT_FALSE(inMachine(L"")->hasCenterPosition());
}

TEST(MachineConfigurationXmlRead, TheHomeElementIsAppliedAfterTheAdditiveHomePosition) {
  auto const c = inMachine(L"<home x=\"1\"/><additive><fff_settings><home_position><x>2</x><y>3</y></home_position>"
                         L"</fff_settings></additive>" +
                         kFiveAxes);
  EXPECT_EQ(c->getHomePositionX(), 1);
  EXPECT_EQ(c->getHomePositionY(), 3);
}

TEST(MachineConfigurationXmlRead, MalformedXmlIsAScriptFailureWithLineAndColumn) {
  // The place is the start of the end tag's name: two spaces, "<vendor>",
  // "A" and "</" come before it.
  EXPECT_EQ(failureOf(L"<machine>\n  <vendor>A</vendr>\n</machine>"),
            L"Malformed XML: Start-end tags mismatch at line 2, column 14.");
  EXPECT_EQ(failureOf(L""), L"Malformed XML: No document element found at line 1, column 1.");
}

TEST(MachineConfigurationXmlRead, TheReaderTakesAnElementOfADocument) {
  Orvo::DOM::Document document;
  ASSERT_TRUE(document.create());
  document.loadFromText(L"<machine><model>M</model></machine>");
  MachineConfigurationLoader loader;
  auto const c = loader.read(document.getRoot(), std::nullopt, 0);
  EXPECT_EQ(c->getModel(), L"M");
  EXPECT_EQ(scriptFailure([&] { loader.read(Orvo::DOM::Element(), std::nullopt, 0); }),
            L"Not a valid machine configuration.");
}

TEST(MachineConfigurationXmlRead, TheNamespaceUriHasTheFormatsPathAndIsNotTested) {
  std::wstring const uri = com::vantora::post::MACHINE_CONFIGURATION_NAMESPACE;
  EXPECT_EQ(uri.substr(uri.size() - 17), L"/xml/2009/machine");
  EXPECT_EQ(uri, L"http://mtkit.invalid/xml/2009/machine");
  // A document in another namespace, or in none, reads the same.
  auto const c = fromXML(L"<machine xmlns=\"urn:other\"><vendor>A</vendor></machine>");
  EXPECT_EQ(c->getVendor(), L"A");
}
