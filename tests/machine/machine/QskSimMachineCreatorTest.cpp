#include "machine/machine/QskSimMachineCreator.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/LinearAxisDefinition.h"
#include "machine/machine/Machine.h"
#include "support/AssertRecorder.h"
#include "support/TestMachines.h"
#include "util/utility/Variant.h"

using machine::AnglePreference;
using machine::AnglePreferenceValue;
using machine::PartType;
using machine::QskSimComponentAdaptor;
using machine::QskSimMachineAdaptor;
using mtkit_test::PartPtr;
using mtkit_test::staticPart;
using mtkit_test::with;

namespace {

using Log = std::vector<std::string>;

std::string num(double v) { return Orvo::Variant::formatDouble(v); }
std::string vec(Orvo::Vector3D const& v) { return "(" + num(v.x) + "," + num(v.y) + "," + num(v.z) + ")"; }
std::string pt(Orvo::Point3D const& p) { return "(" + num(p.x) + "," + num(p.y) + "," + num(p.z) + ")"; }

/// Writes every call it gets, with the component's name, to a shared log.
class RecordingComponent : public QskSimComponentAdaptor {
public:
  RecordingComponent(std::string name, Log& log) : m_name(std::move(name)), m_log(&log) {}
  ~RecordingComponent() override { m_log->push_back("destroy " + m_name); }

  void addLinearAxis(std::string const& axisName, Orvo::Vector3D const& direction, int flag) override {
    m_log->push_back(m_name + ": linear " + axisName + " " + vec(direction) + " " + std::to_string(flag));
  }
  void addRotaryAxis(std::string const& axisName, Orvo::Vector3D const& direction, Orvo::Point3D const& point,
                     int flag) override {
    m_log->push_back(m_name + ": rotary " + axisName + " " + vec(direction) + " " + pt(point) + " " +
                     std::to_string(flag));
  }
  void setHeadAttachFrame(Orvo::Frame const& frame, bool isMain) override {
    m_log->push_back(m_name + ": head " + pt(frame.origin()) + (isMain ? " main" : " other"));
  }
  void setTableAttachFrame(Orvo::Frame const& frame, bool isMain) override {
    m_log->push_back(m_name + ": table " + pt(frame.origin()) + (isMain ? " main" : " other"));
  }
  void setAnglePreference(AnglePreference const& preference) override {
    m_log->push_back(m_name + ": preference " + preference.toString());
  }

private:
  std::string m_name;
  Log* m_log;
};

std::string text(QskSimMachineAdaptor::AxisValueMap const& map) {
  std::string out;
  for (auto const& entry : map) out += entry.first + "=" + (entry.second ? num(*entry.second) : "-") + " ";
  return out;
}

class RecordingMachine : public QskSimMachineAdaptor {
public:
  Log log;
  int finished = 0;

  void finishMachine(AxisValueMap const& homes, AxisValueMap const& minimums, AxisValueMap const& maximums) override {
    ++finished;
    log.push_back("finish homes " + text(homes) + "| min " + text(minimums) + "| max " + text(maximums));
  }
  std::unique_ptr<QskSimComponentAdaptor> createComponent(std::optional<std::string> const& parentName,
                                                          std::string const& name) override {
    log.push_back("create " + name + " under " + parentName.value_or("(none)"));
    return std::make_unique<RecordingComponent>(name, log);
  }
};

PartPtr axisPart(char const* id, std::unique_ptr<machine::AxisDefinition> axis) {
  PartType const type = axis->axisType() == machine::AxisType::LINEAR ? PartType::LINEAR : PartType::ROTARY;
  return std::make_unique<machine::PartDefinition>(Orvo::MachinePartId(id), type, std::nullopt, std::nullopt,
                                                   std::nullopt, std::move(axis));
}

/// x (linear, -100..200) - c (rotary, unlimited) - a (rotary, -120..30) -
/// head1; bracket - head2; table.
machine::KinematicsDefinition creatorKinematics() {
  auto x = axisPart("x", std::make_unique<machine::LinearAxisDefinition>(
                             machine::ControlType::DRIVEN, 0.0, 0.0, Orvo::AxisName("X"), std::nullopt,
                             Orvo::Vector3D(1, 0, 0), Orvo::AxisValue(-100), Orvo::AxisValue(200)));
  auto c = axisPart("c", std::make_unique<machine::InfiniteRotaryAxisDefinition>(
                             machine::ControlType::DRIVEN, 0.0, 0.0, Orvo::AxisName("C"), std::nullopt,
                             Orvo::Point3D(1, 2, 3), Orvo::Vector3D(0, 0, 1)));
  auto a = axisPart("a", std::make_unique<machine::LimitedRotaryAxisDefinition>(
                             machine::ControlType::DRIVEN, 0.0, 0.0, Orvo::AxisName("A"), std::nullopt,
                             Orvo::Point3D(0, 0, 50), Orvo::Vector3D(1, 0, 0), Orvo::AxisValue(-120),
                             Orvo::AxisValue(30)));
  auto head1 = staticPart("head1", PartType::HEAD);
  head1->setAttachFrame(mtkit_test::frameAt(0, 0, 10));
  auto head2 = staticPart("head2", PartType::HEAD);
  head2->setAttachFrame(mtkit_test::frameAt(5, 0, 0));
  auto table = staticPart("table", PartType::TABLE);
  table->setAttachFrame(mtkit_test::frameAt(0, 7, 0));
  std::vector<PartPtr> base;
  base.push_back(with(std::move(x), with(std::move(c), with(std::move(a), std::move(head1)))));
  base.push_back(with(staticPart("bracket"), std::move(head2)));
  base.push_back(std::move(table));
  return mtkit_test::kinematicsOf(std::move(base));
}

machine::ControllerConfiguration creatorConfiguration() {
  machine::ControllerConfiguration::AxisConfigurationMap axes;
  auto x = std::make_unique<machine::AxisConfiguration>();
  x->setHome(Orvo::AxisValue(50));
  auto c = std::make_unique<machine::AxisConfiguration>();
  c->setHome(Orvo::AxisValue(90));
  c->setPreference(AnglePreference(AnglePreferenceValue::POSITIVE));
  auto a = std::make_unique<machine::AxisConfiguration>();
  a->setHome(Orvo::AxisValue(-10));
  a->setPreference(AnglePreference(AnglePreferenceValue::NEGATIVE));
  axes.emplace("x", std::move(x));
  axes.emplace("c", std::move(c));
  axes.emplace("a", std::move(a));
  machine::ControllerConfiguration configuration(std::move(axes), "default");
  configuration.setHeadInfoPartId(Orvo::MachinePartId("head1"));
  configuration.setTablePartId(Orvo::MachinePartId("table"));
  return configuration;
}

}  // namespace

TEST(QskSimMachineCreator, DescribesEveryPartInTreeOrderThenFinishesOnce) {
  machine::Machine const m(creatorKinematics(), creatorConfiguration());
  RecordingMachine adaptor;
  machine::QskSimMachineCreator creator;
  creator.convert(m, adaptor);
  Log const expected{
      "create x under (none)",
      "x: linear X (1,0,0) 0",
      "create c under x",
      "c: rotary C (0,0,1) (1,2,3) 0",
      "c: preference positive",
      "create a under c",
      "a: rotary A (1,0,0) (0,0,50) 0",
      "a: preference negative",
      "create head1 under a",
      "head1: head (0,0,10) main",
      "destroy head1",
      "destroy a",
      "destroy c",
      "destroy x",
      "create bracket under (none)",
      "create head2 under bracket",
      "head2: head (5,0,0) other",
      "destroy head2",
      "destroy bracket",
      "create table under (none)",
      "table: table (0,7,0) main",
      "destroy table",
      // Only the limited rotary axis passes limits: X is linear, C unlimited.
      "finish homes A=-10 C=90 X=50 | min A=-120 C=- X=- | max A=30 C=- X=- ",
  };
  EXPECT_EQ(adaptor.log, expected);
  EXPECT_EQ(adaptor.finished, 1);
}

TEST(QskSimMachineCreator, RotaryAxisWithInfiniteRangeGivesEmptyLimitsAndFiniteGivesBoth) {
  machine::Machine const m(creatorKinematics(), creatorConfiguration());
  RecordingMachine adaptor;
  machine::QskSimMachineCreator().convert(m, adaptor);
  ASSERT_FALSE(adaptor.log.empty());
  EXPECT_NE(adaptor.log.back().find("min A=-120 C=- "), std::string::npos);
  EXPECT_NE(adaptor.log.back().find("max A=30 C=- "), std::string::npos);
}

TEST(QskSimMachineCreator, LinearAxisWithFiniteRangeGivesEmptyLimits) {
  std::vector<PartPtr> base;
  base.push_back(mtkit_test::linearPart("x", "X", {1, 0, 0}, machine::ControlType::DRIVEN, Orvo::AxisValue(-5),
                                        Orvo::AxisValue(5)));
  machine::Machine const m(mtkit_test::kinematicsOf(std::move(base)));
  ASSERT_FALSE(m.baseParts().front()->axis()->range().isInfinite());
  RecordingMachine adaptor;
  machine::QskSimMachineCreator().convert(m, adaptor);
  EXPECT_EQ(adaptor.log.back(), "finish homes X=0 | min X=- | max X=- ");
}

TEST(QskSimMachineCreator, PartWithNeitherAxisNorHeadOrTableGivesAComponentWithNoCall) {
  std::vector<PartPtr> base;
  base.push_back(staticPart("frame"));
  machine::Machine const m(mtkit_test::kinematicsOf(std::move(base)));
  RecordingMachine adaptor;
  machine::QskSimMachineCreator().convert(m, adaptor);
  EXPECT_EQ(adaptor.log, (Log{"create frame under (none)", "destroy frame", "finish homes | min | max "}));
}

TEST(QskSimMachineCreator, SecondHeadGetsIsMainFalse) {
  machine::Machine const m(creatorKinematics(), creatorConfiguration());
  RecordingMachine adaptor;
  machine::QskSimMachineCreator().convert(m, adaptor);
  std::vector<std::string> heads;
  for (auto const& line : adaptor.log)
    if (line.find(": head ") != std::string::npos) heads.push_back(line);
  EXPECT_EQ(heads, (std::vector<std::string>{"head1: head (0,0,10) main", "head2: head (5,0,0) other"}));
}

TEST(QskSimMachineCreator, FinishMachineIsCalledOnceAfterAllComponentsAreMadeAndDestroyed) {
  machine::Machine const m(creatorKinematics(), creatorConfiguration());
  RecordingMachine adaptor;
  machine::QskSimMachineCreator creator;
  creator.convert(m, adaptor);
  ASSERT_EQ(adaptor.finished, 1);
  std::size_t created = 0, destroyed = 0;
  for (std::size_t i = 0; i + 1 < adaptor.log.size(); ++i) {
    created += adaptor.log[i].rfind("create ", 0) == 0 ? 1 : 0;
    destroyed += adaptor.log[i].rfind("destroy ", 0) == 0 ? 1 : 0;
  }
  EXPECT_EQ(created, 7u);
  EXPECT_EQ(destroyed, 7u);
  EXPECT_EQ(adaptor.log.back().rfind("finish ", 0), 0u);
  // The creator forgets between calls: a second convert passes the same maps.
  std::string const first = adaptor.log.back();
  creator.convert(m, adaptor);
  EXPECT_EQ(adaptor.finished, 2);
  EXPECT_EQ(adaptor.log.back(), first);
}

TEST(QskSimMachineCreator, UnnamedAxisPassesTheEmptyName) {
  std::vector<PartPtr> base;
  base.push_back(mtkit_test::rotaryPart("r", nullptr, {0, 0, 0}, {0, 1, 0}));
  machine::Machine const m(mtkit_test::kinematicsOf(std::move(base)));
  RecordingMachine adaptor;
  machine::QskSimMachineCreator().convert(m, adaptor);
  EXPECT_EQ(adaptor.log, (Log{"create r under (none)", "r: rotary  (0,1,0) (0,0,0) 0", "r: preference no preference",
                              "destroy r", "finish homes =0 | min =- | max =- "}));
}

namespace {

/// A linear axis that claims a type outside the enumeration.
class StrayTypeAxis : public machine::LinearAxisDefinition {
public:
  using LinearAxisDefinition::LinearAxisDefinition;
  machine::AxisType axisType() const override { return static_cast<machine::AxisType>(7); }

protected:
  std::unique_ptr<machine::AxisDefinition> doClone() const override { return std::make_unique<StrayTypeAxis>(*this); }
};

}  // namespace

TEST(QskSimMachineCreator, AxisOfAnotherTypeBreaksItsContractAndGetsNoAxisCall) {
  mtkit_test::AssertRecorder asserts;
  std::vector<PartPtr> base;
  base.push_back(axisPart("s", std::make_unique<StrayTypeAxis>(machine::ControlType::DRIVEN, 0.0, 0.0,
                                                                Orvo::AxisName("S"), std::nullopt,
                                                                Orvo::Vector3D(1, 0, 0), std::nullopt, std::nullopt)));
  machine::Machine const m(mtkit_test::kinematicsOf(std::move(base)));
  asserts.take();  // whatever building such a machine reports is not this test's concern
  RecordingMachine adaptor;
  machine::QskSimMachineCreator().convert(m, adaptor);
  EXPECT_EQ(asserts.takeTexts(), std::vector<std::string>{"AxisType must be LINEAR or ROTARY"});
  EXPECT_EQ(adaptor.log, (Log{"create s under (none)", "destroy s", "finish homes S=0 | min S=- | max S=- "}));
}
