// The multi-axis behaviour settings of MachineConfiguration: feed, rewinds,
// singularities, tool centre point per axis and extruders.

#include <gtest/gtest.h>

#include <vector>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "support/AssertRecorder.h"
#include "support/ScriptFailureText.h"

using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;
using com::vantora::post::MultiAxisFeedrate;
using mtkit_test::scriptFailure;

namespace {

constexpr char const* kPath = "machine\\machine\\PostMachineConfig\\MachineConfiguration";

// Edge cases.

TEST(MachineConfigurationMultiAxis, DefaultConfigurationHasFeedModeTwoAndDPMTypeFails) {
  MachineConfiguration const c;
  EXPECT_EQ(2, c.getMultiAxisFeedrateMode());
  EXPECT_EQ(-1.0, c.getMultiAxisFeedrateMaximum());
  EXPECT_EQ(L"Feed mode is not DPM.", scriptFailure([&] { c.getMultiAxisFeedrateDPMType(); }));
}

TEST(MachineConfigurationMultiAxis, SetMultiAxisFeedrateTwoChangesTheMaximumAndLeavesUnitsAndDPMFieldsAlone) {
  MachineConfiguration c;
  c.setMultiAxisFeedrate(2, 100, 0, 0, 0);
  MultiAxisFeedrate const& f = c.getMultiAxisFeedrate();
  EXPECT_EQ(2, f.getFeedMode());
  EXPECT_EQ(100.0, f.getMaximumFeedrate());
  EXPECT_EQ(100.0, c.getMultiAxisFeedrateMaximum());
  EXPECT_EQ(1, f.getInverseTimeUnits());
  EXPECT_EQ(1, f.getDPMType());
  EXPECT_EQ(-1.0, f.getDPMOutputTolerance());
  EXPECT_EQ(-1.0, f.getDPMPulseWeight());
}

TEST(MachineConfigurationMultiAxis, GetRewindStrategyFailsUntilEnableMachineRewindsAndSetRewindStrategyWorksEither) {
  MachineConfiguration c;
  EXPECT_EQ(L"Machine rewinds are not enabled.", scriptFailure([&] { c.getRewindStrategy(); }));
  c.setRewindStrategy(1);  // rewinds off
  EXPECT_EQ(L"Machine rewinds are not enabled.", scriptFailure([&] { c.getRewindStrategy(); }));
  c.enableMachineRewinds();
  EXPECT_EQ(1, c.getRewindStrategy());
  c.setRewindStrategy(0);  // rewinds on
  EXPECT_EQ(0, c.getRewindStrategy());
  c.disableMachineRewinds();
  EXPECT_EQ(L"Machine rewinds are not enabled.", scriptFailure([&] { c.getRewindStrategy(); }));
}

TEST(MachineConfigurationMultiAxis, SetSingularityWithMethodThreeFailsAndTheValuesStayStored) {
  MachineConfiguration c;
  EXPECT_EQ(L"Invalid multi-axis singularity method.", scriptFailure([&] { c.setSingularity(true, 3, 1, 2, 3, 4); }));
  EXPECT_TRUE(c.getSingularityAdjust());
  EXPECT_EQ(3, c.getSingularity().getMethod());
  EXPECT_EQ(1.0, c.getSingularity().getCone());
  EXPECT_EQ(2.0, c.getSingularity().getAngle());
  EXPECT_EQ(3.0, c.getSingularity().getTolerance());
  EXPECT_EQ(4.0, c.getSingularity().getLinearizationTolerance());
  EXPECT_EQ(3, c.getSingularityMethod());
}

TEST(MachineConfigurationMultiAxis, WithAdjustFalseConeFailsAndWithMethodZeroOnlyLinearizationToleranceFails) {
  MachineConfiguration c;
  c.setSingularity(false, 1, 0.1, 0.2, 0.3, 0.4);
  std::wstring const notEnabled = L"Adjust at singularities is not enabled.";
  EXPECT_EQ(notEnabled, scriptFailure([&] { c.getSingularityCone(); }));
  EXPECT_EQ(notEnabled, scriptFailure([&] { c.getSingularityMethod(); }));
  EXPECT_EQ(notEnabled, scriptFailure([&] { c.getSingularityAngle(); }));
  EXPECT_EQ(notEnabled, scriptFailure([&] { c.getSingularityTolerance(); }));
  EXPECT_EQ(notEnabled, scriptFailure([&] { c.getSingularityLinearizationTolerance(); }));
  EXPECT_FALSE(c.getSingularityAdjust());

  c.setSingularity(true, 0, 0.1, 0.2, 0.3, 0.4);
  EXPECT_EQ(0, c.getSingularityMethod());
  EXPECT_EQ(0.1, c.getSingularityCone());
  EXPECT_EQ(0.2, c.getSingularityAngle());
  EXPECT_EQ(0.3, c.getSingularityTolerance());
  EXPECT_EQ(L"Singularity linearize method is off.", scriptFailure([&] { c.getSingularityLinearizationTolerance(); }));

  c.setSingularity(true, 1, 0.1, 0.2, 0.3, 0.4);
  EXPECT_EQ(0.4, c.getSingularityLinearizationTolerance());
}

TEST(MachineConfigurationMultiAxis, SetTCPPerAxisTwoThenResetTCPPerAxisReturnsToTheEarlierFlags) {
  // Head B with TCP off, table C with TCP on.
  MachineConfiguration c(Axis(false, Vector(0, 1, 0), Vector(), 1), Axis(true, Vector(0, 0, 1), Vector(), 2));
  c.getAxisU().setTCPEnabled(false);
  c.setTCPPerAxis(2);
  // Off for the table axis, on for the head axis.
  EXPECT_TRUE(c.getAxisU().isTCPEnabled());
  EXPECT_FALSE(c.getAxisV().isTCPEnabled());
  c.resetTCPPerAxis();
  EXPECT_FALSE(c.getAxisU().isTCPEnabled());
  EXPECT_TRUE(c.getAxisV().isTCPEnabled());
}

TEST(MachineConfigurationMultiAxis, SetExtruderOffsetXThreeOnAnEmptyListMakesThreeEntriesAndFourFails) {
  MachineConfiguration c;
  c.setExtruderOffsetX(3, 1);
  EXPECT_EQ(1.0, c.getExtruderOffsetX(3));
  EXPECT_EQ(0.0, c.getExtruderOffsetX(1));
  EXPECT_EQ(0.0, c.getExtruderOffsetY(2));
  EXPECT_EQ(L"Invalid extruder number.", scriptFailure([&] { c.getExtruderOffsetX(4); }));
}

// Feed.

TEST(MachineConfigurationMultiAxis, InverseTimeModeSetsTheUnitsFromTheType) {
  MachineConfiguration c;
  c.setMultiAxisFeedrate(0, 50, 0, 7, 8);
  EXPECT_EQ(0, c.getMultiAxisFeedrateMode());
  EXPECT_EQ(50.0, c.getMultiAxisFeedrateMaximum());
  EXPECT_EQ(0, c.getMultiAxisFeedrateInverseTimeUnits());
  EXPECT_EQ(1, c.getMultiAxisFeedrate().getDPMType());
  EXPECT_EQ(-1.0, c.getMultiAxisFeedrate().getDPMOutputTolerance());
  EXPECT_EQ(-1.0, c.getMultiAxisFeedrate().getDPMPulseWeight());
  EXPECT_EQ(L"Feed mode is not DPM.", scriptFailure([&] { c.getMultiAxisFeedrateDPMType(); }));
  EXPECT_EQ(L"Feed mode does not have an output tolerance.",
            scriptFailure([&] { c.getMultiAxisFeedrateOutputTolerance(); }));
  EXPECT_EQ(L"Feed mode does not have a pulse weight ratio.", scriptFailure([&] { c.getMultiAxisFeedrateBpwRatio(); }));
}

TEST(MachineConfigurationMultiAxis, DPMModeSetsTypeToleranceAndWeight) {
  MachineConfiguration c;
  c.setMultiAxisFeedrate(1, 3600, 0, 0.01, 2.5);
  EXPECT_EQ(0, c.getMultiAxisFeedrateDPMType());
  EXPECT_EQ(0.01, c.getMultiAxisFeedrateOutputTolerance());
  EXPECT_EQ(2.5, c.getMultiAxisFeedrateBpwRatio());
  EXPECT_EQ(1, c.getMultiAxisFeedrate().getInverseTimeUnits());
  EXPECT_EQ(L"Feed mode is not InverseTime.", scriptFailure([&] { c.getMultiAxisFeedrateInverseTimeUnits(); }));
}

TEST(MachineConfigurationMultiAxis, FeedModeTwoHasNeitherInverseTimeNorDPMSettings) {
  MachineConfiguration const c;
  EXPECT_EQ(L"Feed mode is not InverseTime.", scriptFailure([&] { c.getMultiAxisFeedrateInverseTimeUnits(); }));
  EXPECT_EQ(L"Feed mode does not have an output tolerance.",
            scriptFailure([&] { c.getMultiAxisFeedrateOutputTolerance(); }));
  EXPECT_EQ(L"Feed mode does not have a pulse weight ratio.", scriptFailure([&] { c.getMultiAxisFeedrateBpwRatio(); }));
}

TEST(MachineConfigurationMultiAxis, SetMultiAxisFeedrateRaisesTheConfigurationEventWithZero) {
  MachineConfiguration c;
  std::vector<int> seen;
  c.getMachineConfigurationEvents().subscribe([&](int value) { seen.push_back(value); });
  c.setMultiAxisFeedrate(2, 100, 0, 0, 0);
  c.setMultiAxisFeedrate(1, 100, 0, 0, 0);
  EXPECT_EQ((std::vector<int>{0, 0}), seen);
  EXPECT_EQ(0, MachineConfiguration::EVENT_MULTI_AXIS_FEEDRATE);
}

TEST(MachineConfigurationMultiAxis, FeedSettingsAreNotUnitMapped) {
  MachineConfiguration c;
  c.setInchMode(true);
  c.setMultiAxisFeedrate(1, 100, 1, 0.5, 2);
  EXPECT_EQ(100.0, c.getMultiAxisFeedrate().getMaximumFeedrate());
  EXPECT_EQ(0.5, c.getMultiAxisFeedrate().getDPMOutputTolerance());
}

// Rewinds.

TEST(MachineConfigurationMultiAxis, RewindFlagAnswersToEveryName) {
  MachineConfiguration c;
  EXPECT_FALSE(c.performRewinds());
  EXPECT_FALSE(c.getReconfigure());
  c.enableMachineRewinds();
  EXPECT_TRUE(c.performRewinds());
  EXPECT_TRUE(c.getMultiAxisRetractAndReconfigure().getReconfigure());
  c.setReconfigure(false);
  EXPECT_FALSE(c.performRewinds());
  c.setReconfigure(true);
  EXPECT_TRUE(c.getReconfigure());
  c.disableMachineRewinds();
  EXPECT_FALSE(c.getReconfigure());
}

TEST(MachineConfigurationMultiAxis, RewindPreferencesTakeOneOrTwo) {
  MachineConfiguration c;
  EXPECT_EQ(1, c.getMachineRewindPreference());
  EXPECT_EQ(1, c.getMachineRetractPreference());
  c.setMachineRewindPreference(2, 2);
  EXPECT_EQ(2, c.getMachineRewindPreference());
  EXPECT_EQ(2, c.getMachineRetractPreference());
  c.setMachineRewindPreference(1, 2);
  EXPECT_EQ(1, c.getMachineRewindPreference());
}

TEST(MachineConfigurationMultiAxis, BadRewindPreferenceFailsWithoutFullStopAndStoresNothing) {
  MachineConfiguration c;
  c.setMachineRewindPreference(2, 2);
  EXPECT_EQ(L"Rewind preference must be REWIND_AT_LINEAR or REWIND_AT_RAPID",
            scriptFailure([&] { c.setMachineRewindPreference(0, 1); }));
  EXPECT_EQ(L"Rewind preference must be REWIND_AT_LINEAR or REWIND_AT_RAPID",
            scriptFailure([&] { c.setMachineRewindPreference(3, 7); }));
  EXPECT_EQ(L"Retract preference must be REWIND_RETRACT_AT_APEX or REWIND_STAY_AT_APEX.",
            scriptFailure([&] { c.setMachineRewindPreference(1, 3); }));
  EXPECT_EQ(L"Retract preference must be REWIND_RETRACT_AT_APEX or REWIND_STAY_AT_APEX.",
            scriptFailure([&] { c.setMachineRewindPreference(1, 0); }));
  EXPECT_EQ(2, c.getMachineRewindPreference());
  EXPECT_EQ(2, c.getMachineRetractPreference());
}

TEST(MachineConfigurationMultiAxis, RewindSettingsFailWhileRewindsAreOffAndSetAnyway) {
  MachineConfiguration c;
  c.setRewindStockExpansion(Vector(1, 2, 3));
  c.setSafeRetractDistance(4);
  c.setSafeRetractFeedrate(5);
  c.setSafePlungeFeedrate(6);
  std::wstring const off = L"Machine rewinds are not enabled.";
  EXPECT_EQ(off, scriptFailure([&] { c.getRewindStockExpansion(); }));
  EXPECT_EQ(off, scriptFailure([&] { c.getSafeRetractDistance(); }));
  EXPECT_EQ(off, scriptFailure([&] { c.getSafeRetractFeedrate(); }));
  EXPECT_EQ(off, scriptFailure([&] { c.getSafePlungeFeedrate(); }));
  c.enableMachineRewinds();
  EXPECT_EQ(3.0, c.getRewindStockExpansion().z);
  EXPECT_EQ(4.0, c.getSafeRetractDistance());
  EXPECT_EQ(5.0, c.getSafeRetractFeedrate());
  EXPECT_EQ(6.0, c.getSafePlungeFeedrate());
}

TEST(MachineConfigurationMultiAxis, RewindLengthsAreUnitMappedAndFeedsAreNot) {
  MachineConfiguration c;
  c.setInchMode(true);
  c.setRewindStockExpansion(Vector(1, 0, 0));
  c.setSafeRetractDistance(2);
  c.setSafeRetractFeedrate(3);
  c.setSafePlungeFeedrate(4);
  auto const& held = c.getMultiAxisRetractAndReconfigure();
  EXPECT_EQ(25.4, held.getStockExpansion().x);
  EXPECT_EQ(50.8, held.getSafeRetractDistance());
  EXPECT_EQ(3.0, held.getSafeRetractFeedrate());
  EXPECT_EQ(4.0, held.getSafePlungeFeedrate());
  c.enableMachineRewinds();
  EXPECT_NEAR(1.0, c.getRewindStockExpansion().x, 1e-15);
  EXPECT_NEAR(2.0, c.getSafeRetractDistance(), 1e-15);
}

// Singularities.

TEST(MachineConfigurationMultiAxis, DefaultSingularitySettings) {
  MachineConfiguration const c;
  EXPECT_TRUE(c.getSingularityAdjust());
  EXPECT_EQ(2, c.getSingularityMethod());
  EXPECT_EQ(0.05235987755982988, c.getSingularityCone());
  EXPECT_EQ(0.17453292519943295, c.getSingularityAngle());
  EXPECT_EQ(0.04, c.getSingularityTolerance());
  EXPECT_EQ(0.04, c.getSingularityLinearizationTolerance());
}

TEST(MachineConfigurationMultiAxis, SingularityTolerancesAreUnitMappedAndAnglesAreNot) {
  MachineConfiguration c;
  c.setInchMode(true);
  c.setSingularity(true, 1, 0.5, 0.25, 1, 2);
  EXPECT_EQ(25.4, c.getSingularity().getTolerance());
  EXPECT_EQ(50.8, c.getSingularity().getLinearizationTolerance());
  EXPECT_EQ(0.5, c.getSingularity().getCone());
  EXPECT_EQ(0.25, c.getSingularity().getAngle());
  EXPECT_NEAR(1.0, c.getSingularityTolerance(), 1e-15);
  EXPECT_NEAR(2.0, c.getSingularityLinearizationTolerance(), 1e-15);
  EXPECT_EQ(0.5, c.getSingularityCone());
}

TEST(MachineConfigurationMultiAxis, SingularityMethodTwoIsTheLastThatPasses) {
  MachineConfiguration c;
  EXPECT_EQ(L"", scriptFailure([&] { c.setSingularity(true, 2, 1, 2, 3, 4); }));
  EXPECT_EQ(L"Invalid multi-axis singularity method.", scriptFailure([&] { c.setSingularity(false, 4, 1, 2, 3, 4); }));
  EXPECT_FALSE(c.getSingularityAdjust());
}

// Tool centre point per axis.

TEST(MachineConfigurationMultiAxis, SetTCPPerAxisModes) {
  MachineConfiguration c(Axis(false, Vector(0, 1, 0), Vector(), 1), Axis(true, Vector(0, 0, 1), Vector(), 2));
  c.setTCPPerAxis(1);
  EXPECT_FALSE(c.getAxisU().isTCPEnabled());
  EXPECT_FALSE(c.getAxisV().isTCPEnabled());
  c.setTCPPerAxis(0);
  EXPECT_TRUE(c.getAxisU().isTCPEnabled());
  EXPECT_TRUE(c.getAxisV().isTCPEnabled());
  c.setTCPPerAxis(3);  // off for the head axis, on for the table axis
  EXPECT_FALSE(c.getAxisU().isTCPEnabled());
  EXPECT_TRUE(c.getAxisV().isTCPEnabled());
  c.setTCPPerAxis(7);  // no change
  EXPECT_FALSE(c.getAxisU().isTCPEnabled());
  EXPECT_TRUE(c.getAxisV().isTCPEnabled());
  // Each call saved the flags before it: the last saved state is that of
  // mode 3.
  c.getAxisV().setTCPEnabled(false);
  c.resetTCPPerAxis();
  EXPECT_FALSE(c.getAxisU().isTCPEnabled());
  EXPECT_TRUE(c.getAxisV().isTCPEnabled());
}

TEST(MachineConfigurationMultiAxis, ResetTCPPerAxisWithoutASavedStateAsserts) {
  MachineConfiguration c(Axis(true, Vector(0, 0, 1), Vector(), 2));
  mtkit_test::AssertRecorder recorder;
  c.resetTCPPerAxis();
  auto const failures = recorder.take();
  ASSERT_EQ(1u, failures.size());
  EXPECT_EQ("m_axisTCPIsSet", failures[0].expression);
  EXPECT_EQ(kPath, failures[0].file);

  c.setTCPPerAxis(1);
  c.resetTCPPerAxis();
  c.resetTCPPerAxis();  // the mark was cleared
  EXPECT_EQ(std::vector<std::string>{"m_axisTCPIsSet"}, recorder.takeTexts());
}

TEST(MachineConfigurationMultiAxis, SetTCPPerAxisLeavesALinearAxisInARotarySlotAlone) {
  MachineConfiguration c;
  Axis linearU(false, Vector(1, 0, 0), Vector(), 0);
  linearU.setActuator(0);
  c.setAxisU(linearU);
  EXPECT_EQ(L"", scriptFailure([&] { c.setTCPPerAxis(0); }));
  EXPECT_EQ(L"", scriptFailure([&] { c.resetTCPPerAxis(); }));
  EXPECT_FALSE(c.getAxisU().isTCPEnabled());
}

// Extruders.

TEST(MachineConfigurationMultiAxis, NumberOfExtrudersSizesTheOffsetList) {
  MachineConfiguration c;
  c.setNumberExtruders(2);
  EXPECT_EQ(2u, c.getNumberExtruders());
  EXPECT_EQ(0.0, c.getExtruderOffsetZ(2));
  EXPECT_EQ(L"Invalid extruder number.", scriptFailure([&] { c.getExtruderOffsetY(3); }));
  EXPECT_EQ(L"Invalid extruder number.", scriptFailure([&] { c.getExtruderOffsetZ(0); }));
  c.setExtruderOffsetY(2, 5);
  c.setExtruderOffsetZ(1, 6);
  EXPECT_EQ(5.0, c.getExtruderOffsetY(2));
  EXPECT_EQ(6.0, c.getExtruderOffsetZ(1));
  c.setNumberExtruders(1);
  EXPECT_EQ(L"Invalid extruder number.", scriptFailure([&] { c.getExtruderOffsetY(2); }));
  EXPECT_EQ(6.0, c.getExtruderOffsetZ(1));
}

TEST(MachineConfigurationMultiAxis, SetExtruderOffsetGrowsTheListButNotTheNumberOfExtruders) {
  MachineConfiguration c;
  c.setExtruderOffsetZ(2, 1);
  EXPECT_EQ(0u, c.getNumberExtruders());
  EXPECT_EQ(1.0, c.getExtruderOffsetZ(2));
}

TEST(MachineConfigurationMultiAxis, SetExtruderOffsetOfNumberZeroAssertsAndStoresNothing) {
  MachineConfiguration c;
  mtkit_test::AssertRecorder recorder;
  c.setExtruderOffsetX(0, 1);
  c.setExtruderOffsetY(0, 1);
  c.setExtruderOffsetZ(0, 1);
  auto const failures = recorder.take();
  ASSERT_EQ(3u, failures.size());
  for (auto const& failure : failures) {
    EXPECT_EQ("extruderNumber >= 1", failure.expression);
    EXPECT_EQ(kPath, failure.file);
  }
  EXPECT_EQ(L"Invalid extruder number.", scriptFailure([&] { c.getExtruderOffsetX(1); }));
}

}  // namespace
