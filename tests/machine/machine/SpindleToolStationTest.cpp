#include <gtest/gtest.h>

#include "machine/machine/PartModelCollection.h"
#include "machine/machine/SpindleDefinition.h"
#include "machine/machine/ToolStationDefinition.h"
#include "machine/machine/ToolStationInterfaceName.h"
#include "machine/machine/TurretDefinition.h"
#include "support/AssertRecorder.h"

using namespace machine;
using Orvo::Quantity::Distance;
using Strings = std::vector<std::string>;

TEST(ToolStationInterfaceName, LowerCaseLettersAndDigitsWithALineFeedComeOutUpperCaseWithoutIt) {
  EXPECT_EQ(ToolStationInterfaceName("hsk\n63a").name(), "HSK63A");
  EXPECT_EQ(ToolStationInterfaceName(std::string("bt\r40")).name(), "BT40");
  EXPECT_EQ(ToolStationInterfaceName(std::string_view("capto c6")).name(), "CAPTO C6");
}

TEST(ToolStationInterfaceName, OneNonAsciiByteKeepsTheLowerCaseLetters) {
  EXPECT_EQ(ToolStationInterfaceName("hsk\xC3\xA9").name(), "hsk\xC3\xA9");
  EXPECT_EQ(ToolStationInterfaceName("a\xC3\xA9\nb").name(), "a\xC3\xA9" "b");
}

TEST(SpindleDefinition, SetPowerWithANegativeValueStoresItWithoutAnAssertion) {
  mtkit_test::AssertRecorder rec;
  SpindleDefinition s(0.0, 1000.0, "s");
  s.setPower(-5.0);
  s.setPeakTorque(-1.0);
  EXPECT_EQ(*s.power(), -5.0);
  EXPECT_EQ(*s.peakTorque(), -1.0);
  EXPECT_TRUE(rec.take().empty());
}

TEST(SpindleDefinition, PeakTorqueSpeedAboveMaxPassesInConstructorButFailsInSetterAndIsStored) {
  mtkit_test::AssertRecorder rec;
  SpindleDefinition s(100.0, 1000.0, std::nullopt, std::nullopt, 2000.0, "s");
  EXPECT_TRUE(rec.take().empty());
  s.setPeakTorqueSpeed(2000.0);
  auto const f = rec.take();
  ASSERT_EQ(f.size(), 1u);
  EXPECT_EQ(f[0].expression, "EXPECTS:!maxSpeed() || !peakTorqueSpeed || *peakTorqueSpeed <= *maxSpeed()");
  EXPECT_EQ(f[0].file, "machine\\machine\\SpindleDefinition");
  EXPECT_EQ(*s.peakTorqueSpeed(), 2000.0);
}

TEST(SpindleDefinition, ThreeArgumentConstructorChecks) {
  mtkit_test::AssertRecorder rec;
  SpindleDefinition const s(-1.0, -2.0, "d");
  EXPECT_EQ(rec.takeTexts(), (Strings{"EXPECTS:!minSpeed || *minSpeed >= 0", "EXPECTS:!maxSpeed || *maxSpeed >= 0",
                                      "EXPECTS:!minSpeed || !maxSpeed || *minSpeed <= *maxSpeed"}));
  EXPECT_FALSE(s.power());
  EXPECT_FALSE(s.peakTorque());
  EXPECT_FALSE(s.peakTorqueSpeed());
  EXPECT_EQ(s.description(), "d");
}

TEST(SpindleDefinition, SixArgumentConstructorAlsoChecksSigns) {
  mtkit_test::AssertRecorder rec;
  SpindleDefinition const s(1.0, 2.0, -1.0, -1.0, -1.0, "d");
  EXPECT_EQ(rec.takeTexts(), (Strings{"EXPECTS:!power || *power >= 0", "EXPECTS:!peakTorque || *peakTorque >= 0",
                                      "EXPECTS:!peakTorqueSpeed || *peakTorqueSpeed >= 0"}));
  (void)s;
}

TEST(SpindleDefinition, SettersCheckTheirOwnConditions) {
  mtkit_test::AssertRecorder rec;
  SpindleDefinition s(100.0, 1000.0, "d");
  s.setMaxSpeed(50.0);
  EXPECT_EQ(rec.takeTexts(), (Strings{"EXPECTS:!minSpeed() || !maxSpeed || *minSpeed() <= *maxSpeed"}));
  s.setMaxSpeed(-1.0);
  EXPECT_EQ(rec.takeTexts(), (Strings{"EXPECTS:!maxSpeed || *maxSpeed >= 0",
                                      "EXPECTS:!minSpeed() || !maxSpeed || *minSpeed() <= *maxSpeed"}));
  s.setMaxSpeed(1000.0);
  s.setMinSpeed(2000.0);
  EXPECT_EQ(rec.takeTexts(), (Strings{"EXPECTS:!minSpeed || !maxSpeed() || *minSpeed <= *maxSpeed()"}));
  s.setMinSpeed(-3.0);
  EXPECT_EQ(rec.takeTexts(), (Strings{"EXPECTS:!minSpeed || *minSpeed >= 0"}));
  s.setMinSpeed(100.0);
  s.setPeakTorqueSpeed(50.0);
  EXPECT_EQ(rec.takeTexts(), (Strings{"EXPECTS:!minSpeed() || !peakTorqueSpeed || *minSpeed() <= *peakTorqueSpeed"}));
  s.setPeakTorqueSpeed(-1.0);
  EXPECT_EQ(rec.takeTexts()[0], "EXPECTS:!peakTorqueSpeed || *peakTorqueSpeed >= 0");
  EXPECT_EQ(*s.peakTorqueSpeed(), -1.0);
  s.setDescription("new");
  EXPECT_EQ(s.description(), "new");
}

TEST(ToolStationDefinition, SetCoolantOnThenOffLeavesItOffAndTheOthersAlone) {
  auto coolants = Orvo::EnumBitset<MachineCoolant>::fromKeys({"mist", "air"});
  ToolStationDefinition t(std::nullopt, std::nullopt, coolants, std::nullopt);
  t.setCoolant(MachineCoolant::FLOOD, true);
  EXPECT_TRUE(t.supportsCoolant(MachineCoolant::FLOOD));
  t.setCoolant(MachineCoolant::FLOOD, false);
  EXPECT_FALSE(t.supportsCoolant(MachineCoolant::FLOOD));
  EXPECT_TRUE(t.supportsCoolant(MachineCoolant::MIST));
  EXPECT_TRUE(t.supportsCoolant(MachineCoolant::AIR));
  EXPECT_EQ(t.coolants().count(), 2u);
}

TEST(ToolStationDefinition, NegativeSizesFailInTheConstructorOnly) {
  mtkit_test::AssertRecorder rec;
  ToolStationDefinition t(Distance(-1), Distance(-2), {}, ToolStationInterfaceName("hsk63a"));
  EXPECT_EQ(rec.takeTexts(), (Strings{"EXPECTS:!maxToolLength || maxToolLength->get() >= 0",
                                      "EXPECTS:!maxToolDiameter || maxToolDiameter->get() >= 0"}));
  t.setMaxToolLength(Distance(-5));
  t.setMaxToolDiameter(std::nullopt);
  EXPECT_TRUE(rec.take().empty());
  EXPECT_EQ(t.maxToolLength()->get(), -5.0);
  EXPECT_FALSE(t.maxToolDiameter());
  EXPECT_EQ(t.toolInterface().value_or(ToolStationInterfaceName("")).name(), "HSK63A");
  t.setToolInterface(std::nullopt);
  EXPECT_FALSE(t.toolInterface());
}

TEST(TurretDefinition, IndexCount) {
  TurretDefinition t(12);
  EXPECT_EQ(t.indexCount(), 12u);
  t.setIndexCount(8);
  EXPECT_EQ(t.indexCount(), 8u);
}

namespace {
struct Model : PartModel {};
}  // namespace

TEST(PartModelCollection, AddAndIndex) {
  mtkit_test::AssertRecorder rec;
  PartModelCollection c;
  c.add(std::make_unique<Model>());
  EXPECT_EQ(c.size(), 1u);
  EXPECT_NE(dynamic_cast<Model const*>(&c[0]), nullptr);
  EXPECT_TRUE(rec.take().empty());
  c.add(nullptr);
  auto const f = rec.take();
  ASSERT_EQ(f.size(), 1u);
  EXPECT_EQ(f[0].expression, "model != nullptr");
  EXPECT_EQ(f[0].file, "machine\\machine\\PartModelCollection");
}

TEST(PartModelCollection, IndexOutOfRangeFailsAndThrows) {
  mtkit_test::AssertRecorder rec;
  PartModelCollection c;
  c.add(std::make_unique<Model>());
  (void)c[0];
  EXPECT_TRUE(rec.take().empty());
  EXPECT_THROW((void)c[1], std::out_of_range);
  EXPECT_EQ(rec.takeTexts(), Strings{"0 <= index && index < size()"});
}
