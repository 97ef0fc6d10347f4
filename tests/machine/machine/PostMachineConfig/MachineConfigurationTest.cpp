#include "machine/machine/PostMachineConfig/MachineConfiguration.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "machine/machine/PostMachineConfig/MachineAxesValidator.h"
#include "support/AssertRecorder.h"
#include "support/ScriptFailureText.h"

using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::MachineAxesValidator;
using com::vantora::post::MachineConfiguration;
using com::vantora::post::Range;
using mtkit_test::scriptFailure;

namespace {

constexpr char const* kPath = "machine\\machine\\PostMachineConfig\\MachineConfiguration";

/// An enabled rotary axis on `coordinate` about `direction`.
Axis rotary(Vector const& direction, int coordinate, bool table = true) {
  return Axis(table, direction, Vector(), coordinate);
}

/// An enabled linear axis along `direction` on `coordinate`.
Axis linear(Vector const& direction, int coordinate) {
  Axis axis(false, direction, Vector(), coordinate);
  axis.setActuator(0);
  return axis;
}

/// A table A axis and a table C axis.
MachineConfiguration tableAC() {
  return MachineConfiguration(rotary(Vector(1, 0, 0), 0), rotary(Vector(0, 0, 1), 2));
}

// Edge cases.

TEST(MachineConfiguration, NewConfigurationReportsThreeAxesStatusZeroAndNotMultiAxis) {
  MachineConfiguration const c;
  EXPECT_EQ(3u, c.getNumberOfAxes());
  EXPECT_EQ(0, c.getValidityStatus());
  EXPECT_FALSE(c.isMultiAxisConfiguration());
  EXPECT_TRUE(c.is3DConfiguration());
  EXPECT_TRUE(c.isSupported());
}

TEST(MachineConfiguration, AddAxisOfAFourthRotaryAxisReturnsWithoutFailureAndChangesNothing) {
  // Three rotary axes and no linear ones: a count of 3, so the count limit
  // does not apply and the fourth finds no free slot.
  MachineConfiguration c;
  c.removeAllAxes();
  c.addAxis(rotary(Vector(1, 0, 0), 0));
  c.addAxis(rotary(Vector(0, 1, 0), 1));
  c.addAxis(rotary(Vector(0, 0, 1), 2));
  ASSERT_EQ(3u, c.getNumberOfAxes());

  Axis fourth = rotary(Vector(0, 0, 1), 2);
  fourth.setName(L"fourth");
  EXPECT_EQ(L"", scriptFailure([&] { c.addAxis(fourth); }));
  EXPECT_EQ(3u, c.getNumberOfAxes());
  EXPECT_EQ(-1, c.getIndexOfAxisById(MachineConfiguration::AXIS_X));
  EXPECT_EQ(2, c.getIndexOfAxisById(MachineConfiguration::AXIS_W));
  EXPECT_EQ(L"", c.getAxisW().getName());
  EXPECT_EQ(1.0, c.getAxisU().getAxis().x);
  EXPECT_EQ(1.0, c.getAxisV().getAxis().y);
  EXPECT_EQ(1.0, c.getAxisW().getAxis().z);
  EXPECT_THROW(c.getAxisByOrder(3), Orvo::ScriptException);
}

TEST(MachineConfiguration, AddAxisOfAnAxisMovedInGivesWhatACopyGives) {
  Axis named = rotary(Vector(1, 0, 0), 0);
  named.setName(L"trunnion");
  named.setRange(Range(-2, 0.5, Range::ROTATIONAL));
  MachineConfiguration copied;
  copied.addAxis(named);
  MachineConfiguration moved;
  Axis source = named;
  moved.addAxis(std::move(source));
  EXPECT_EQ(L"trunnion", named.getName());
  for (MachineConfiguration const* c : {&copied, &moved}) {
    EXPECT_EQ(4u, c->getNumberOfAxes());
    EXPECT_EQ(3, c->getIndexOfAxisById(MachineConfiguration::AXIS_U));
    EXPECT_EQ(L"trunnion", c->getAxisU().getName());
    EXPECT_EQ(1.0, c->getAxisU().getAxis().x);
    EXPECT_EQ(named.getRange().getMinimum(), c->getAxisU().getRange().getMinimum());
    EXPECT_EQ(named.getRange().getMaximum(), c->getAxisU().getRange().getMaximum());
  }
  // A moved axis still fails as a copied one does.
  Axis disabled;
  EXPECT_EQ(scriptFailure([&] { copied.addAxis(disabled); }), scriptFailure([&] { moved.addAxis(Axis()); }));
}

TEST(MachineConfiguration, AddAxisOfAFourthRotaryAxisIntoSlotsFilledDirectlyReturnsQuietly) {
  MachineConfiguration c;
  c.setAxisU(rotary(Vector(1, 0, 0), 0));
  c.setAxisV(rotary(Vector(0, 1, 0), 1));
  c.setAxisW(rotary(Vector(0, 0, 1), 2));
  EXPECT_EQ(L"", scriptFailure([&] { c.addAxis(rotary(Vector(0, 0, 1), 2)); }));
  EXPECT_EQ(3u, c.getNumberOfAxes());
  EXPECT_FALSE(c.hasAxis(MachineConfiguration::AXIS_U));
}

TEST(MachineConfiguration, AddAxisBeyondSixCountedAxesFailsBeforeLookingForASlot) {
  // X, Y, Z and three rotary axes make six; the count is tested first.
  MachineConfiguration c(rotary(Vector(1, 0, 0), 0), rotary(Vector(0, 1, 0), 1), rotary(Vector(0, 0, 1), 2));
  ASSERT_EQ(6u, c.getNumberOfAxes());
  EXPECT_EQ(L"Too many axes.", scriptFailure([&] { c.addAxis(rotary(Vector(0, 0, 1), 2)); }));
  EXPECT_EQ(6u, c.getNumberOfAxes());
}

TEST(MachineConfiguration, GetAxisByCoordinateOneOnAMachineWithAAndCFails) {
  MachineConfiguration c = tableAC();
  EXPECT_EQ(L"Coordinate is not bound to an axis.", scriptFailure([&] { c.getAxisByCoordinate(1); }));
  EXPECT_EQ(&c.getAxisU(), &c.getAxisByCoordinate(0));
  EXPECT_EQ(&c.getAxisV(), &c.getAxisByCoordinate(2));
  MachineConfiguration const& constant = c;
  EXPECT_EQ(L"Coordinate is not bound to an axis.", scriptFailure([&] { constant.getAxisByCoordinate(1); }));
}

TEST(MachineConfiguration, InspectionMachineIsAlwaysSupported) {
  MachineConfiguration c;
  c.removeAllAxes();  // status 19 on a milling machine
  c.setSpindleAxis(Vector());
  c.setInspection(true);
  EXPECT_EQ(0, c.getValidityStatus());
  EXPECT_TRUE(c.isSupported());
}

TEST(MachineConfiguration, AdditiveMachineWithZeroHeightHasStatus18WhichReadsUnknownStatus) {
  MachineConfiguration c;
  c.setAdditiveFFF(true);
  c.setWidth(200);
  c.setDepth(200);
  c.setHeight(0);
  EXPECT_EQ(18, c.getValidityStatus());
  EXPECT_EQ(L"Unknown status.", MachineConfiguration::getStatusDescription(18));
  c.setHeight(150);
  EXPECT_EQ(0, c.getValidityStatus());
}

TEST(MachineConfiguration, TwoRotaryAxesTenDegreesApartGiveStatus16) {
  double const ten = 10 * M_PI / 180;
  MachineConfiguration c(rotary(Vector(1, 0, 0), 0), rotary(Vector(std::cos(ten), std::sin(ten), 0), 1));
  // The sine of 10 degrees, 0.17, is below 0.25.
  EXPECT_EQ(16, c.getValidityStatus());
  EXPECT_EQ(L"Axes are aligned.", MachineConfiguration::getStatusDescription(16));
}

TEST(MachineConfiguration, SetToolLengthWithoutEventDoesNotReachSubscribersAndSetToolLengthDoes) {
  MachineConfiguration c;
  std::vector<int> seen;
  c.getMachineConfigurationEvents().subscribe([&](int value) { seen.push_back(value); });
  c.setToolLengthWithoutEvent(50);
  EXPECT_TRUE(seen.empty());
  EXPECT_EQ(50.0, c.getToolLength());
  c.setToolLength(75);
  EXPECT_EQ(std::vector<int>{1}, seen);
  EXPECT_EQ(75.0, c.getToolLength());
  EXPECT_EQ(1, MachineConfiguration::EVENT_TOOL_LENGTH);
}

TEST(MachineConfiguration, ReadingCenterPositionXBeforeAnySetFails) {
  MachineConfiguration c;
  EXPECT_FALSE(c.hasCenterPosition());
  EXPECT_EQ(L"Center position is not available.", scriptFailure([&] { c.getCenterPositionX(); }));
  EXPECT_EQ(L"Center position is not available.", scriptFailure([&] { c.getCenterPositionY(); }));
  EXPECT_EQ(L"Center position is not available.", scriptFailure([&] { c.getCenterPositionZ(); }));
}

// Construction and initialisation.

TEST(MachineConfiguration, InitializeGivesLinearHeadAxesXYZInThatOrder) {
  MachineConfiguration const c;
  Axis const* slots[3] = {&c.getAxisX(), &c.getAxisY(), &c.getAxisZ()};
  Vector const units[3] = {Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)};
  for (int i = 0; i < 3; ++i) {
    SCOPED_TRACE(i);
    EXPECT_TRUE(slots[i]->isEnabled());
    EXPECT_TRUE(slots[i]->isLinear());
    EXPECT_TRUE(slots[i]->isHead());
    EXPECT_EQ(i, slots[i]->getCoordinate());
    EXPECT_EQ(units[i].x, slots[i]->getAxis().x);
    EXPECT_EQ(units[i].y, slots[i]->getAxis().y);
    EXPECT_EQ(units[i].z, slots[i]->getAxis().z);
    EXPECT_EQ(i, c.getIndexOfAxisById(static_cast<MachineConfiguration::AxisId>(i)));
    EXPECT_EQ(slots[i], &c.getAxisByOrder(i));
  }
  EXPECT_FALSE(c.getAxisU().isEnabled());
  EXPECT_FALSE(c.getAxisV().isEnabled());
  EXPECT_FALSE(c.getAxisW().isEnabled());
  EXPECT_EQ(L"Invalid axis index.", scriptFailure([&] { c.getAxisByOrder(3); }));
}

TEST(MachineConfiguration, InitializeGivesTheDefaultsOfEveryProperty) {
  MachineConfiguration const c;
  EXPECT_EQ(0.0, c.getWCS().getLength());
  EXPECT_EQ(1.0, c.getSpindleAxis().z);
  EXPECT_EQ(0.0, c.getSpindleAxis().x);
  EXPECT_EQ(0.0, c.getMaximumSpindlePower());
  EXPECT_EQ(0.0, c.getSpindlePeakTorque());
  EXPECT_EQ(0.0, c.getSpindlePeakTorqueSpeed());
  EXPECT_EQ(0.0, c.getMinimumSpindleSpeed());
  EXPECT_EQ(0.0, c.getMaximumSpindleSpeed());
  EXPECT_EQ(L"", c.getCollectChuck());
  EXPECT_EQ(0.0, c.getToolLength());
  EXPECT_EQ(0.0, c.getDimensions().getLength());
  EXPECT_EQ(0.0, c.getWeight());
  EXPECT_EQ(0.0, c.getPartDimensions().getLength());
  EXPECT_EQ(0.0, c.getWeightCapacity());
  EXPECT_TRUE(c.getMilling());
  EXPECT_FALSE(c.getTurning());
  EXPECT_FALSE(c.getWire());
  EXPECT_FALSE(c.getJet());
  EXPECT_FALSE(c.getAdditiveFFF());
  EXPECT_FALSE(c.getInspection());
  EXPECT_TRUE(c.getToolChanger());
  EXPECT_TRUE(c.getToolPreload());
  EXPECT_EQ(100u, c.getNumberOfTools());
  EXPECT_EQ(100u, MachineConfiguration::DEFAULT_NUMBER_OF_TOOLS_MAX);
  EXPECT_EQ(0.0, c.getMaximumToolLength());
  EXPECT_EQ(0.0, c.getMaximumToolDiameter());
  EXPECT_EQ(0.0, c.getMaximumToolWeight());
  EXPECT_EQ(L"", c.getToolInterface());
  EXPECT_EQ(0.0, c.getMaximumFeedrate());
  EXPECT_EQ(0.0, c.getMaximumCuttingFeedrate());
  EXPECT_EQ(0u, c.getMaximumBlockProcessingSpeed());
  EXPECT_EQ(1.0, c.getFeedrateRatio());
  EXPECT_EQ(15.0, c.getToolChangeTime());
  EXPECT_EQ(std::vector<bool>(9, false), c.getCoolants());
  EXPECT_EQ(100u, c.getNumberOfWorkOffsets());
  EXPECT_FALSE(c.getVirtualTooltip());
  EXPECT_FALSE(c.hasCenterPosition());
  EXPECT_FALSE(c.hasParkPosition());
  EXPECT_EQ(0u, c.getNumberExtruders());
  EXPECT_EQ(L"", c.getDescription());
  EXPECT_EQ(L"", c.getModel());
  EXPECT_EQ(L"", c.getVendor());
  EXPECT_EQ(L"", c.getVendorUrl());
  EXPECT_EQ(L"", c.getControl());
  EXPECT_EQ(L"", c.getPostProcessor());
  EXPECT_EQ(L"", c.getSetupSheet());
  EXPECT_TRUE(c.getActions().empty());
  EXPECT_TRUE(c.getCycles().empty());
  EXPECT_EQ(L"", c.getMachineAssembly());
  EXPECT_TRUE(c.getRetractOnIndexing());
  EXPECT_TRUE(c.getShortestAngularRotation());
  EXPECT_FALSE(c.isReceived());
  EXPECT_EQ(0.0, c.getHeadAttachPoint().getLength());
  EXPECT_EQ(0.0, c.getTableAttachPoint().getLength());
  EXPECT_FALSE(c.isSubSpindleZAxisReversed());
  EXPECT_FALSE(c.isTWPEnabled());
  EXPECT_FALSE(c.hasHomePositionX());
  EXPECT_FALSE(c.hasToolChangePositionZ());
}

TEST(MachineConfiguration, InitializeResetsValuesAndAxesButKeepsSubscribers) {
  MachineConfiguration c = tableAC();
  std::vector<int> seen;
  c.getMachineConfigurationEvents().subscribe([&](int value) { seen.push_back(value); });
  c.setVendor(L"Vendor");
  c.setMilling(false);
  c.setNumberOfTools(12);
  c.setWCS(Vector(1, 2, 3));
  c.setCenterPositionX(4);
  c.setNumberExtruders(2);
  c.enableMachineRewinds();
  c.setCoolantSupported(1, true);
  c.getActions()[L"a"] = L"b";

  c.initialize();
  EXPECT_EQ(L"", c.getVendor());
  EXPECT_TRUE(c.getMilling());
  EXPECT_EQ(100u, c.getNumberOfTools());
  EXPECT_EQ(0.0, c.getWCS().x);
  EXPECT_FALSE(c.hasCenterPosition());
  EXPECT_EQ(0u, c.getNumberExtruders());
  EXPECT_FALSE(c.getReconfigure());
  EXPECT_FALSE(c.isCoolantSupported(1));
  EXPECT_TRUE(c.getActions().empty());
  EXPECT_FALSE(c.getAxisU().isEnabled());
  EXPECT_EQ(3u, c.getNumberOfAxes());

  c.setToolLength(1);
  EXPECT_EQ(std::vector<int>{1}, seen);
}

TEST(MachineConfiguration, ConstructorsAddTheirAxesAfterXYZ) {
  MachineConfiguration const one(rotary(Vector(0, 0, 1), 2));
  EXPECT_EQ(4u, one.getNumberOfAxes());
  EXPECT_EQ(3, one.getIndexOfAxisById(MachineConfiguration::AXIS_U));
  EXPECT_TRUE(one.getAxisU().isEnabled());

  MachineConfiguration const three(rotary(Vector(1, 0, 0), 0), rotary(Vector(0, 1, 0), 1),
                                   rotary(Vector(0, 0, 1), 2));
  EXPECT_EQ(6u, three.getNumberOfAxes());
  EXPECT_EQ(5, three.getIndexOfAxisById(MachineConfiguration::AXIS_W));
  EXPECT_EQ(&three.getAxisW(), &three.getAxisByOrder(5));
}

TEST(MachineConfiguration, CopyAndAssignmentCopyEveryField) {
  MachineConfiguration a = tableAC();
  a.setVendor(L"V");
  a.setToolLength(3);
  a.setParkPositionY(7);
  a.setExtruderOffsetZ(2, 9);
  a.setSingularity(false, 1, 0.1, 0.2, 0.3, 0.4);

  MachineConfiguration const b(a);
  EXPECT_EQ(L"V", b.getVendor());
  EXPECT_EQ(3.0, b.getToolLength());
  EXPECT_EQ(7.0, b.getParkPositionY());
  EXPECT_EQ(9.0, b.getExtruderOffsetZ(2));
  EXPECT_FALSE(b.getSingularityAdjust());
  EXPECT_EQ(5u, b.getNumberOfAxes());
  EXPECT_TRUE(b.getAxisV().isEnabled());

  MachineConfiguration c;
  c = b;
  EXPECT_EQ(L"V", c.getVendor());
  EXPECT_EQ(5u, c.getNumberOfAxes());
  MachineConfiguration d;
  d = MachineConfiguration(b);
  EXPECT_EQ(9.0, d.getExtruderOffsetZ(2));
  EXPECT_EQ(2, d.getAxisV().getCoordinate());
}

TEST(MachineConfiguration, BaseClassIsScriptObject) {
  EXPECT_STREQ("ScriptObject", MachineConfiguration().getBaseClass());
}

// Adding axes.

TEST(MachineConfiguration, AddAxisOfADisabledAxisFailsWithItsStatusDescription) {
  MachineConfiguration c;
  EXPECT_EQ(L"Cannot add invalid axis: Invalid vector.", scriptFailure([&] { c.addAxis(Axis()); }));
  Axis noCoordinate = rotary(Vector(1, 0, 0), 0);
  noCoordinate.setCoordinate(3);
  EXPECT_EQ(L"Cannot add invalid axis: Invalid coordinate.", scriptFailure([&] { c.addAxis(noCoordinate); }));
  EXPECT_EQ(3u, c.getNumberOfAxes());
}

TEST(MachineConfiguration, AddAxisOfALinearAxisFailsWhenItsSlotIsInTheOrder) {
  MachineConfiguration c;
  EXPECT_EQ(L"X-axis already added.", scriptFailure([&] { c.addAxis(linear(Vector(1, 0, 0), 0)); }));
  EXPECT_EQ(L"Y-axis already added.", scriptFailure([&] { c.addAxis(linear(Vector(0, 1, 0), 1)); }));
  EXPECT_EQ(L"Z-axis already added.", scriptFailure([&] { c.addAxis(linear(Vector(0, 0, 1), 2)); }));
  EXPECT_EQ(3u, c.getNumberOfAxes());
}

TEST(MachineConfiguration, AddAxisAfterRemoveAllAxesPutsLinearAxesByCoordinateInAddedOrder) {
  MachineConfiguration c;
  c.removeAllAxes();
  EXPECT_EQ(-1, c.getIndexOfAxisById(MachineConfiguration::AXIS_X));
  EXPECT_FALSE(c.getAxisX().isEnabled());
  c.addAxis(linear(Vector(0, 0, 1), 2));
  c.addAxis(rotary(Vector(0, 0, 1), 2));
  c.addAxis(linear(Vector(1, 0, 0), 0));
  EXPECT_EQ(0, c.getIndexOfAxisById(MachineConfiguration::AXIS_Z));
  EXPECT_EQ(1, c.getIndexOfAxisById(MachineConfiguration::AXIS_U));
  EXPECT_EQ(2, c.getIndexOfAxisById(MachineConfiguration::AXIS_X));
  EXPECT_FALSE(c.hasAxis(MachineConfiguration::AXIS_Y));
  EXPECT_TRUE(c.hasAxis(MachineConfiguration::AXIS_U));
  EXPECT_EQ(3u, c.getNumberOfAxes());
  EXPECT_EQ(&c.getAxisZ(), &c.getAxisByOrder(0));
  EXPECT_EQ(&c.getAxisX(), &c.getAxisByOrder(2));
  EXPECT_TRUE(c.getAxisZ().isEnabled());
}

TEST(MachineConfiguration, RemoveAllAxesLeavesNoAxisAndCountsThreePlusEnabledRotarySlots) {
  MachineConfiguration c = tableAC();
  c.removeAllAxes();
  for (Axis const* axis : {&c.getAxisX(), &c.getAxisY(), &c.getAxisZ(), &c.getAxisU(), &c.getAxisV(),
                           &c.getAxisW()}) {
    EXPECT_FALSE(axis->isEnabled());
  }
  EXPECT_EQ(3u, c.getNumberOfAxes());
  EXPECT_EQ(L"Invalid axis index.", scriptFailure([&] { c.getAxisByOrder(0); }));
  // A slot filled directly counts when the count is 0.
  c.setAxisU(rotary(Vector(1, 0, 0), 0));
  c.setAxisV(rotary(Vector(0, 0, 1), 2));
  EXPECT_EQ(5u, c.getNumberOfAxes());
}

TEST(MachineConfiguration, SetAxisSlotsTouchNeitherCountNorOrder) {
  MachineConfiguration c;
  c.setAxisU(rotary(Vector(1, 0, 0), 0));
  EXPECT_EQ(3u, c.getNumberOfAxes());
  EXPECT_FALSE(c.hasAxis(MachineConfiguration::AXIS_U));
  EXPECT_TRUE(c.getAxisU().isEnabled());
  // The count says there is no U, so the validator takes the slot as it is.
  EXPECT_EQ(0, c.getValidityStatus());
}

TEST(MachineConfiguration, SetXYZAxisAssertOnAnotherCoordinateAndStoreAnyway) {
  mtkit_test::AssertRecorder recorder;
  MachineConfiguration c;
  c.setXAxis(linear(Vector(0, 1, 0), 1));
  c.setYAxis(linear(Vector(0, 0, 1), 2));
  c.setZAxis(linear(Vector(1, 0, 0), 0));
  auto const failures = recorder.take();
  ASSERT_EQ(3u, failures.size());
  EXPECT_EQ("!axis.isEnabled() || axis.getCoordinate() == 0", failures[0].expression);
  EXPECT_EQ("!axis.isEnabled() || axis.getCoordinate() == 1", failures[1].expression);
  EXPECT_EQ("!axis.isEnabled() || axis.getCoordinate() == 2", failures[2].expression);
  EXPECT_EQ(kPath, failures[0].file);
  EXPECT_EQ(1, c.getAxisX().getCoordinate());
  EXPECT_EQ(0, c.getAxisZ().getCoordinate());

  // A disabled axis or one on the right coordinate passes.
  c.setXAxis(Axis());
  c.setYAxis(linear(Vector(0, 1, 0), 1));
  EXPECT_TRUE(recorder.take().empty());
}

TEST(MachineConfiguration, GetAxisByIdAndByNameReachEachSlot) {
  MachineConfiguration c;
  Axis* const slots[6] = {&c.getAxisX(), &c.getAxisY(), &c.getAxisZ(),
                          &c.getAxisU(), &c.getAxisV(), &c.getAxisW()};
  wchar_t const* const names[6] = {L"X", L"Y", L"Z", L"U", L"V", L"W"};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(slots[i], &c.getAxisById(static_cast<MachineConfiguration::AxisId>(i)));
    EXPECT_EQ(slots[i], &c.getAxisByName(names[i]));
  }
  EXPECT_EQ(L"Axis is invalid.", scriptFailure([&] { c.getAxisById(MachineConfiguration::AXIS_NONE); }));
  EXPECT_EQ(L"Axis is invalid.",
            scriptFailure([&] { c.getAxisById(static_cast<MachineConfiguration::AxisId>(6)); }));
  EXPECT_EQ(L"Invalid axis.", scriptFailure([&] { c.getAxisByName(L"x"); }));
  EXPECT_EQ(L"Invalid axis.", scriptFailure([&] { c.getAxisByName(L"A"); }));
  MachineConfiguration const& constant = c;
  EXPECT_EQ(L"Invalid axis.", scriptFailure([&] { constant.getAxisByName(L""); }));
  EXPECT_EQ(L"Axis is invalid.", scriptFailure([&] { constant.getAxisById(MachineConfiguration::AXIS_NONE); }));
}

TEST(MachineConfiguration, AxisIdValues) {
  EXPECT_EQ(0, MachineConfiguration::AXIS_X);
  EXPECT_EQ(1, MachineConfiguration::AXIS_Y);
  EXPECT_EQ(2, MachineConfiguration::AXIS_Z);
  EXPECT_EQ(3, MachineConfiguration::AXIS_U);
  EXPECT_EQ(4, MachineConfiguration::AXIS_V);
  EXPECT_EQ(5, MachineConfiguration::AXIS_W);
  EXPECT_EQ(-1, MachineConfiguration::AXIS_NONE);
}

// Kinds.

TEST(MachineConfiguration, CoordinatesOfAAndCAreBitsZeroAndTwo) {
  MachineConfiguration const c = tableAC();
  EXPECT_EQ(5, c.getCoordinates());
  EXPECT_EQ(0, MachineConfiguration().getCoordinates());
  EXPECT_TRUE(c.isMachineCoordinate(0));
  EXPECT_FALSE(c.isMachineCoordinate(1));
  EXPECT_TRUE(c.isMachineCoordinate(2));
  EXPECT_TRUE(c.isMachineAxisRotation(Vector(0.5, 0, -2)));
  EXPECT_TRUE(c.isMachineAxisRotation(Vector(0, 0, 0)));
  EXPECT_FALSE(c.isMachineAxisRotation(Vector(0.5, 1e-300, 0)));
}

TEST(MachineConfiguration, TableAndHeadConfigurations) {
  MachineConfiguration const table = tableAC();
  EXPECT_TRUE(table.hasRotational());
  EXPECT_TRUE(table.isMultiAxisConfiguration());
  EXPECT_FALSE(table.is3DConfiguration());
  EXPECT_FALSE(table.isHeadConfiguration());
  EXPECT_TRUE(table.isTableConfiguration());

  MachineConfiguration const mixed(rotary(Vector(0, 1, 0), 1, false), rotary(Vector(0, 0, 1), 2, true));
  EXPECT_TRUE(mixed.isHeadConfiguration());
  EXPECT_FALSE(mixed.isTableConfiguration());

  MachineConfiguration const plain;
  EXPECT_FALSE(plain.isHeadConfiguration());
  EXPECT_FALSE(plain.isTableConfiguration());
}

TEST(MachineConfiguration, TCPEnabledForAnyAxisLooksAtEnabledRotarySlots) {
  MachineConfiguration c = tableAC();
  EXPECT_TRUE(c.isTCPEnabledForAnyAxis());
  c.getAxisU().setTCPEnabled(false);
  EXPECT_TRUE(c.isTCPEnabledForAnyAxis());
  c.getAxisV().setTCPEnabled(false);
  EXPECT_FALSE(c.isTCPEnabledForAnyAxis());
  // A disabled slot does not count, though its flag is on.
  EXPECT_TRUE(c.getAxisW().isRotational());
  EXPECT_FALSE(MachineConfiguration().isTCPEnabledForAnyAxis());
}

// Conversion to the foundation's axis types.

TEST(MachineConfiguration, AxisOrderingNamesTheRotaryAxesByFallbackNameAndPart) {
  MachineConfiguration c = tableAC();
  c.getAxisU().setMachinePartId(Orvo::MachinePartId("tilt"));
  c.getAxisV().setMachinePartId(Orvo::MachinePartId("turn"));
  c.getAxisV().setName(L"C2");
  Orvo::AxisOrdering const ordering = c.axisOrdering();
  ASSERT_EQ(2, ordering.size());
  EXPECT_EQ("tilt", ordering.machinePartId(0).id());
  EXPECT_EQ("A", ordering.axisName(0).getName());
  EXPECT_EQ("turn", ordering.machinePartId(1).id());
  EXPECT_EQ("C2", ordering.axisName(1).getName());
  EXPECT_EQ(0, MachineConfiguration().axisOrdering().size());
}

TEST(MachineConfiguration, AxisOrderingStopsAtTheFirstDisabledSlot) {
  MachineConfiguration c;
  c.setAxisU(rotary(Vector(1, 0, 0), 0));
  c.setAxisW(rotary(Vector(0, 0, 1), 2));
  // W without V: status 11, so the assertion speaks too.
  mtkit_test::AssertRecorder recorder;
  EXPECT_EQ(1, c.axisOrdering().size());
  EXPECT_EQ(std::vector<std::string>{"getValidityStatus() == MachineAxesValidator::STATUS_OK"},
            recorder.takeTexts());
}

TEST(MachineConfiguration, AbcToAxisValuesTakesEachAxisCoordinateAsDegrees) {
  MachineConfiguration const c = tableAC();
  Orvo::AxisValues const values = c.abcToAxisValues(Vector(0.5, 0.7, -1.2));
  ASSERT_EQ(2, values.size());
  // AxisValue holds degrees: 0.5 rad is 0.5 * 180 / pi degrees.
  EXPECT_NEAR(0.5 * 180 / M_PI, values[0].value(), 1e-12);
  EXPECT_NEAR(-1.2 * 180 / M_PI, values[1].value(), 1e-12);
  Vector const back = c.axisValuesToAbc(values);
  EXPECT_NEAR(0.5, back.x, 1e-15);
  EXPECT_EQ(0.0, back.y);
  EXPECT_NEAR(-1.2, back.z, 1e-15);
}

TEST(MachineConfiguration, AxisValuesToAbcAssertsTheSizeOfTheOrdering) {
  MachineConfiguration const c = tableAC();
  mtkit_test::AssertRecorder recorder;
  Vector const abc = c.axisValuesToAbc(Orvo::AxisValues(std::vector<Orvo::AxisValue>{Orvo::AxisValue(90.0)}));
  auto const failures = recorder.take();
  ASSERT_EQ(1u, failures.size());
  EXPECT_EQ("values.size() == axisOrdering().size()", failures[0].expression);
  EXPECT_EQ(kPath, failures[0].file);
  EXPECT_NEAR(M_PI / 2, abc.x, 1e-15);
  EXPECT_EQ(0.0, abc.z);
}

TEST(MachineConfiguration, ConversionsAssertAValidConfiguration) {
  MachineConfiguration c = tableAC();
  c.setSpindleAxis(Vector());  // status 8
  mtkit_test::AssertRecorder recorder;
  c.axisOrdering();
  c.abcToAxisValues(Vector());
  c.axisValuesToAbc(Orvo::AxisValues(2));
  std::string const text = "getValidityStatus() == MachineAxesValidator::STATUS_OK";
  EXPECT_EQ((std::vector<std::string>{text, text, text}), recorder.takeTexts());
}

// Plain properties.

TEST(MachineConfiguration, TextPropertiesStoreWhatTheyAreGiven) {
  MachineConfiguration c;
  c.setDescription(L"d");
  c.setModel(L"m");
  c.setVendor(L"v\u00e9");
  c.setVendorUrl(L"u");
  c.setControl(L"c");
  c.setPostProcessor(L"p");
  c.setSetupSheet(L"s");
  c.setMachineAssembly(L"a");
  c.setCollectChuck(L"ER32");
  c.setSpindleDescription(L"spindle");
  EXPECT_EQ(L"d", c.getDescription());
  EXPECT_EQ(L"m", c.getModel());
  EXPECT_EQ(L"v\u00e9", c.getVendor());
  EXPECT_EQ(L"u", c.getVendorUrl());
  EXPECT_EQ(L"c", c.getControl());
  EXPECT_EQ(L"p", c.getPostProcessor());
  EXPECT_EQ(L"s", c.getSetupSheet());
  EXPECT_EQ(L"a", c.getMachineAssembly());
  EXPECT_EQ(L"ER32", c.getCollectChuck());
}

TEST(MachineConfiguration, ToolInterfaceIsNormalisedAsAToolStationInterfaceName) {
  MachineConfiguration c;
  c.setToolInterface(L"hsk\r\n63a");
  EXPECT_EQ(L"HSK63A", c.getToolInterface());
  // A name with a character beyond ASCII keeps its case.
  c.setToolInterface(L"sk\u00e440");
  EXPECT_EQ(L"sk\u00e440", c.getToolInterface());
  c.setToolInterface(L"");
  EXPECT_EQ(L"", c.getToolInterface());
}

TEST(MachineConfiguration, NumberPropertiesWithoutUnitMappingStayAsGivenInInchMode) {
  MachineConfiguration c;
  c.setInchMode(true);
  c.setWeight(1);
  c.setWeightCapacity(2);
  c.setMaximumSpindlePower(3);
  c.setMinimumSpindleSpeed(4);
  c.setMaximumSpindleSpeed(5);
  c.setSpindlePeakTorque(6);
  c.setSpindlePeakTorqueSpeed(7);
  c.setMaximumToolWeight(8);
  c.setFeedrateRatio(9);
  c.setToolChangeTime(10);
  c.setInchMode(false);
  EXPECT_EQ(1.0, c.getWeight());
  EXPECT_EQ(2.0, c.getWeightCapacity());
  EXPECT_EQ(3.0, c.getMaximumSpindlePower());
  EXPECT_EQ(4.0, c.getMinimumSpindleSpeed());
  EXPECT_EQ(5.0, c.getMaximumSpindleSpeed());
  EXPECT_EQ(6.0, c.getSpindlePeakTorque());
  EXPECT_EQ(7.0, c.getSpindlePeakTorqueSpeed());
  EXPECT_EQ(8.0, c.getMaximumToolWeight());
  EXPECT_EQ(9.0, c.getFeedrateRatio());
  EXPECT_EQ(10.0, c.getToolChangeTime());
}

TEST(MachineConfiguration, LengthPropertiesAreHeldInMillimetres) {
  // Set in inches, read in millimetres: 2 in is 50.8 mm.
  MachineConfiguration c;
  c.setInchMode(true);
  c.setMaximumFeedrate(2);
  c.setMaximumCuttingFeedrate(2);
  c.setMaximumToolLength(2);
  c.setMaximumToolDiameter(2);
  c.setWidth(2);
  c.setDepth(2);
  c.setHeight(2);
  c.setPartMaximumX(2);
  c.setPartMaximumY(2);
  c.setPartMaximumZ(2);
  c.setHeadAttachPoint(Vector(2, 2, 2));
  c.setTableAttachPoint(Vector(2, 2, 2));
  c.setWCS(Vector(2, 2, 2));
  c.setToolLength(2);
  // Read back in inches, the values are those given.
  EXPECT_NEAR(2.0, c.getWidth(), 1e-15);
  EXPECT_NEAR(2.0, c.getToolLength(), 1e-15);
  c.setInchMode(false);
  double const mm = 50.8;
  EXPECT_EQ(mm, c.getMaximumFeedrate());
  EXPECT_EQ(mm, c.getMaximumCuttingFeedrate());
  EXPECT_EQ(mm, c.getMaximumToolLength());
  EXPECT_EQ(mm, c.getMaximumToolDiameter());
  EXPECT_EQ(mm, c.getWidth());
  EXPECT_EQ(mm, c.getDepth());
  EXPECT_EQ(mm, c.getHeight());
  EXPECT_EQ(mm, c.getDimensions().y);
  EXPECT_EQ(mm, c.getPartMaximumX());
  EXPECT_EQ(mm, c.getPartMaximumY());
  EXPECT_EQ(mm, c.getPartMaximumZ());
  EXPECT_EQ(mm, c.getPartDimensions().z);
  EXPECT_EQ(mm, c.getHeadAttachPoint().x);
  EXPECT_EQ(mm, c.getTableAttachPoint().y);
  EXPECT_EQ(mm, c.getWCS().z);
  EXPECT_EQ(mm, c.getToolLength());
}

TEST(MachineConfiguration, DimensionsAndPartDimensionsAreTheVectorsOfWidthDepthHeightAndPartMaxima) {
  MachineConfiguration c;
  c.setDimensions(Vector(1, 2, 3));
  EXPECT_EQ(1.0, c.getWidth());
  EXPECT_EQ(2.0, c.getDepth());
  EXPECT_EQ(3.0, c.getHeight());
  c.setPartDimensions(Vector(4, 5, 6));
  EXPECT_EQ(4.0, c.getPartMaximumX());
  EXPECT_EQ(5.0, c.getPartMaximumY());
  EXPECT_EQ(6.0, c.getPartMaximumZ());
}

TEST(MachineConfiguration, FlagsAndCountsStoreWhatTheyAreGiven) {
  MachineConfiguration c;
  c.setMilling(false);
  c.setTurning(true);
  c.setWire(true);
  c.setJet(true);
  c.setInspection(true);
  c.setAdditiveFFF(true);
  c.setToolChanger(false);
  c.setToolPreload(false);
  c.setVirtualTooltip(true);
  c.setRetractOnIndexing(false);
  c.setShortestAngularRotation(false);
  c.setTWPEnabled(true);
  c.setIsReceived(true);
  c.setIsSubSpindleZAxisReversed(true);
  c.setNumberOfTools(24);
  c.setNumberOfWorkOffsets(6);
  c.setMaximumBlockProcessingSpeed(1000);
  EXPECT_FALSE(c.getMilling());
  EXPECT_TRUE(c.getTurning());
  EXPECT_TRUE(c.getWire());
  EXPECT_TRUE(c.getJet());
  EXPECT_TRUE(c.getInspection());
  EXPECT_TRUE(c.getAdditiveFFF());
  EXPECT_FALSE(c.getToolChanger());
  EXPECT_FALSE(c.getToolPreload());
  EXPECT_TRUE(c.getVirtualTooltip());
  EXPECT_FALSE(c.getRetractOnIndexing());
  EXPECT_FALSE(c.getShortestAngularRotation());
  EXPECT_TRUE(c.isTWPEnabled());
  EXPECT_TRUE(c.isReceived());
  EXPECT_TRUE(c.isSubSpindleZAxisReversed());
  EXPECT_EQ(24u, c.getNumberOfTools());
  EXPECT_EQ(6u, c.getNumberOfWorkOffsets());
  EXPECT_EQ(1000u, c.getMaximumBlockProcessingSpeed());
}

TEST(MachineConfiguration, ActionsAndCyclesAreHandedOutByReference) {
  MachineConfiguration c;
  c.getActions()[L"coolant"] = L"M8";
  c.getCycles()[L"drill"] = L"G81";
  EXPECT_EQ(L"M8", c.getActions().at(L"coolant"));
  EXPECT_EQ(L"G81", c.getCycles().at(L"drill"));
  c.setActions({{L"a", L"1"}});
  c.setCycles({});
  EXPECT_EQ(1u, c.getActions().size());
  EXPECT_TRUE(c.getCycles().empty());
}

TEST(MachineConfiguration, HomeAndToolChangePositionsAreThoseOfTheLinearAxes) {
  MachineConfiguration c;
  c.setHomePositionX(1);
  c.setHomePositionY(2);
  c.setHomePositionZ(3);
  EXPECT_TRUE(c.hasHomePositionX());
  EXPECT_TRUE(c.hasHomePositionY());
  EXPECT_TRUE(c.hasHomePositionZ());
  EXPECT_EQ(1.0, c.getAxisX().getHomePosition());
  EXPECT_EQ(2.0, c.getHomePositionY());
  EXPECT_EQ(3.0, c.getRetractPlane());
  c.setRetractPlane(4);
  EXPECT_EQ(4.0, c.getHomePositionZ());

  EXPECT_FALSE(c.hasToolChangePositionX());
  c.setToolChangePositionX(5);
  c.setToolChangePositionY(6);
  c.setToolChangePositionZ(7);
  EXPECT_TRUE(c.hasToolChangePositionX());
  EXPECT_TRUE(c.hasToolChangePositionY());
  EXPECT_TRUE(c.hasToolChangePositionZ());
  EXPECT_EQ(5.0, c.getToolChangePositionX());
  EXPECT_EQ(6.0, c.getAxisY().getToolChangePosition());
  EXPECT_EQ(7.0, c.getToolChangePositionZ());
}

TEST(MachineConfiguration, AnySetMakesTheCenterPositionPresent) {
  MachineConfiguration c;
  c.setCenterPositionY(2);
  EXPECT_TRUE(c.hasCenterPosition());
  EXPECT_EQ(0.0, c.getCenterPositionX());
  EXPECT_EQ(2.0, c.getCenterPositionY());
  c.setCenterPositionX(1);
  c.setCenterPositionZ(3);
  EXPECT_EQ(1.0, c.getCenterPositionX());
  EXPECT_EQ(3.0, c.getCenterPositionZ());
}

TEST(MachineConfiguration, ParkPositionFailsUntilSet) {
  MachineConfiguration c;
  EXPECT_FALSE(c.hasParkPosition());
  EXPECT_EQ(L"Park position is not available.", scriptFailure([&] { c.getParkPositionX(); }));
  EXPECT_EQ(L"Park position is not available.", scriptFailure([&] { c.getParkPositionY(); }));
  EXPECT_EQ(L"Park position is not available.", scriptFailure([&] { c.getParkPositionZ(); }));
  c.setParkPositionZ(9);
  EXPECT_TRUE(c.hasParkPosition());
  EXPECT_EQ(9.0, c.getParkPositionZ());
  c.setParkPositionX(7);
  c.setParkPositionY(8);
  EXPECT_EQ(7.0, c.getParkPositionX());
  EXPECT_EQ(8.0, c.getParkPositionY());
}

TEST(MachineConfiguration, SpindleAxisIsKeptAsGivenAndValidatedNormalised) {
  MachineConfiguration c;
  c.setSpindleAxis(Vector(0, 0, 2));
  EXPECT_EQ(2.0, c.getSpindleAxis().z);
  EXPECT_EQ(0, c.getValidityStatus());
  // A tiny vector normalises to a unit one and passes.
  c.setSpindleAxis(Vector(0, 1e-100, 0));
  EXPECT_EQ(0, c.getValidityStatus());
  c.setSpindleAxis(Vector());
  EXPECT_EQ(8, c.getValidityStatus());
  EXPECT_EQ(L"Invalid spindle axis.", MachineConfiguration::getStatusDescription(8));
}

TEST(MachineConfiguration, ToolLengthEventReachesSubscribersInOrderButNotThoseOfACopy) {
  MachineConfiguration c;
  std::vector<int> seen;
  c.getMachineConfigurationEvents().subscribe([&](int value) { seen.push_back(10 + value); });
  c.getMachineConfigurationEvents().subscribe([&](int value) { seen.push_back(20 + value); });
  MachineConfiguration copy(c);
  copy.setToolLength(5);
  EXPECT_TRUE(seen.empty());
  c.setToolLength(5);
  EXPECT_EQ((std::vector<int>{11, 21}), seen);
}

// Coolants.

TEST(MachineConfiguration, CoolantModesFollowTheToolStationCoolantsFromOne) {
  EXPECT_EQ(0, MachineConfiguration::COOLANT_OFF);
  EXPECT_EQ(1, MachineConfiguration::COOLANT_FLOOD);
  EXPECT_EQ(2, MachineConfiguration::COOLANT_MIST);
  EXPECT_EQ(3, MachineConfiguration::COOLANT_THROUGH_TOOL);
  EXPECT_EQ(4, MachineConfiguration::COOLANT_AIR);
  EXPECT_EQ(5, MachineConfiguration::COOLANT_AIR_THROUGH_TOOL);
  EXPECT_EQ(6, MachineConfiguration::COOLANT_SUCTION);
  EXPECT_EQ(7, MachineConfiguration::COOLANT_FLOOD_MIST);
  EXPECT_EQ(8, MachineConfiguration::COOLANT_FLOOD_THROUGH_TOOL);
}

TEST(MachineConfiguration, CoolantsShareOneVectorIndexedByMode) {
  MachineConfiguration c;
  c.setCoolantSupported(MachineConfiguration::COOLANT_MIST, true);
  EXPECT_TRUE(c.getCoolant(MachineConfiguration::COOLANT_MIST));
  EXPECT_TRUE(c.getCoolants()[2]);
  c.setCoolant(MachineConfiguration::COOLANT_FLOOD_THROUGH_TOOL, true);
  EXPECT_TRUE(c.isCoolantSupported(8));
  EXPECT_FALSE(c.isCoolantSupported(1));
  c.getCoolants()[1] = true;
  EXPECT_TRUE(c.getCoolant(MachineConfiguration::COOLANT_FLOOD));
}

TEST(MachineConfiguration, CoolantModeOutsideTheVectorFails) {
  MachineConfiguration c;
  EXPECT_EQ(L"Invalid coolant mode.", scriptFailure([&] { c.isCoolantSupported(9); }));
  EXPECT_EQ(L"Invalid coolant mode.", scriptFailure([&] { c.setCoolantSupported(9, true); }));
  EXPECT_EQ(L"", scriptFailure([&] { c.isCoolantSupported(0); }));
  c.setCoolants(std::vector<bool>(3, true));
  EXPECT_EQ(L"Invalid coolant mode.", scriptFailure([&] { c.isCoolantSupported(3); }));
  EXPECT_TRUE(c.isCoolantSupported(2));
}

TEST(MachineConfiguration, CoolantOffAsserts) {
  mtkit_test::AssertRecorder recorder;
  MachineConfiguration c;
  c.getCoolant(MachineConfiguration::COOLANT_OFF);
  c.setCoolant(MachineConfiguration::COOLANT_OFF, true);
  auto const failures = recorder.take();
  ASSERT_EQ(2u, failures.size());
  EXPECT_EQ("coolant != COOLANT_OFF", failures[0].expression);
  EXPECT_EQ("coolant != COOLANT_OFF", failures[1].expression);
  EXPECT_EQ(kPath, failures[1].file);
}

}  // namespace
