#include "machine/machine/PostMachineConfig/UnitConsumer.h"

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "machine/machine/PostMachineConfig/Axis.h"
#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "machine/machine/PostMachineConfig/Range.h"
#include "support/ProductionBehaviour.h"

namespace {

using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;
using com::vantora::post::Range;
using com::vantora::post::UnitConsumer;

struct Consumer : UnitConsumer {};

TEST(UnitConsumer, ANewConsumerIsInMillimetreMode) {
  Consumer const c;
  EXPECT_FALSE(c.isInchMode());
  EXPECT_EQ(2.5, c.mapToInternalXYZ(2.5));
  EXPECT_EQ(2.5, c.mapToExternalXYZ(2.5));
}

TEST(UnitConsumer, InchModeMultipliesLengthsBy25Point4AndBackBy0Point03937007874015748) {
  Consumer c;
  c.setInchMode(true);
  EXPECT_TRUE(c.isInchMode());
  EXPECT_EQ(25.4, c.mapToInternalXYZ(1));
  EXPECT_EQ(50.8, c.mapToInternalXYZ(2));
  EXPECT_EQ(0.03937007874015748, c.mapToExternalXYZ(1));
  EXPECT_EQ(25.4, UnitConsumer::INCH_TO_MILLIMETRE);
  EXPECT_EQ(0.03937007874015748, UnitConsumer::MILLIMETRE_TO_INCH);
  Vector const in = c.mapToInternalXYZ(Vector(1, -2, 0.5));
  EXPECT_EQ(25.4, in.x);
  EXPECT_EQ(-50.8, in.y);
  EXPECT_EQ(12.7, in.z);
  Vector const out = c.mapToExternalXYZ(Vector(1, 0, 2));
  EXPECT_EQ(0.03937007874015748, out.x);
  EXPECT_EQ(0.0, out.y);
  EXPECT_EQ(0.07874015748031496, out.z);
  c.setInchMode(false);
  EXPECT_EQ(3.0, c.mapToInternalXYZ(3));
  EXPECT_EQ(3.0, c.mapToExternalXYZ(3));
}

TEST(UnitConsumer, AnglesPassUnchangedInEitherMode) {
  Consumer c;
  for (bool inch : {false, true}) {
    c.setInchMode(inch);
    EXPECT_EQ(0.7, c.mapToInternalABC(0.7));
    EXPECT_EQ(-0.7, c.mapToExternalABC(-0.7));
    Vector const v = c.mapToInternalABC(Vector(0.1, 0.2, 0.3));
    Vector const w = c.mapToExternalABC(Vector(0.1, 0.2, 0.3));
    EXPECT_EQ(0.1, v.x);
    EXPECT_EQ(0.2, v.y);
    EXPECT_EQ(0.3, v.z);
    EXPECT_EQ(0.1, w.x);
    EXPECT_EQ(0.2, w.y);
    EXPECT_EQ(0.3, w.z);
  }
}

TEST(UnitConsumer, SetInchModeChangesOneConsumerOnly) {
  Consumer a, b;
  a.setInchMode(true);
  EXPECT_TRUE(a.isInchMode());
  EXPECT_FALSE(b.isInchMode());
  EXPECT_EQ(1.0, b.mapToInternalXYZ(1));
}

TEST(UnitConsumer, CopiesTakeTheMode) {
  Consumer a;
  a.setInchMode(true);
  Consumer const copy(a);
  EXPECT_TRUE(copy.isInchMode());
  Consumer assigned;
  assigned = a;
  EXPECT_TRUE(assigned.isInchMode());
}

TEST(UnitConsumer, EveryConsumerIsOnTheListWhileItExists) {
  std::size_t const before = UnitConsumer::getNumberOfConsumers();
  {
    Consumer a;
    EXPECT_EQ(before + 1, UnitConsumer::getNumberOfConsumers());
    Consumer const copy(a);
    EXPECT_EQ(before + 2, UnitConsumer::getNumberOfConsumers());
    a = copy;  // an assignment keeps both places
    EXPECT_EQ(before + 2, UnitConsumer::getNumberOfConsumers());
    Range const range;  // a range is a consumer
    EXPECT_EQ(before + 3, UnitConsumer::getNumberOfConsumers());
  }
  EXPECT_EQ(before, UnitConsumer::getNumberOfConsumers());
}

TEST(UnitConsumer, AConfigurationListsItselfItsSixAxesAndTheirRanges) {
  std::size_t const before = UnitConsumer::getNumberOfConsumers();
  {
    MachineConfiguration const configuration;
    EXPECT_EQ(before + 13, UnitConsumer::getNumberOfConsumers());
    MachineConfiguration const copy(configuration);
    EXPECT_EQ(before + 26, UnitConsumer::getNumberOfConsumers());
    Axis const axis = configuration.getAxisX();
    EXPECT_EQ(before + 28, UnitConsumer::getNumberOfConsumers());
  }
  EXPECT_EQ(before, UnitConsumer::getNumberOfConsumers());
}

TEST(UnitConsumer, AConfigurationBeyondTheLimitIsNotMadeAndLeavesNoneListed) {
  std::size_t const before = UnitConsumer::getNumberOfConsumers();
  // One short of the thirteen a configuration lists at once.
  UnitConsumer::setListLimitUnderTest(before + 12);
  std::string message;
  try {
    MachineConfiguration const configuration;
  } catch (std::length_error const& e) {
    message = e.what();
  }
  UnitConsumer::setListLimitUnderTest(0);
  EXPECT_EQ("list too long", message);
  EXPECT_EQ(before, UnitConsumer::getNumberOfConsumers());
}

TEST(UnitConsumer, ConsumersLeaveTheListInAnyOrder) {
  std::size_t const before = UnitConsumer::getNumberOfConsumers();
  std::vector<std::unique_ptr<Consumer>> consumers;
  for (int i = 0; i < 5; ++i) consumers.push_back(std::make_unique<Consumer>());
  for (int i : {2, 0, 4, 1, 3}) {
    consumers[static_cast<std::size_t>(i)].reset();
    Consumer const probe;  // the list still links
  }
  EXPECT_EQ(before, UnitConsumer::getNumberOfConsumers());
}

TEST(UnitConsumer, TheLimitIsThatOfAStandardList) {
  EXPECT_EQ(std::list<UnitConsumer*>().max_size(), UnitConsumer::getListLimit());
}

TEST(UnitConsumer, AConsumerBeyondTheLimitThrowsListTooLong) {
  std::size_t const before = UnitConsumer::getNumberOfConsumers();
  UnitConsumer::setListLimitUnderTest(before + 2);
  EXPECT_EQ(before + 2, UnitConsumer::getListLimit());
  std::string message;
  {
    Consumer a;
    Range b;
    try {
      Consumer c;
    } catch (std::length_error const& e) {
      message = e.what();
    }
    EXPECT_EQ(before + 2, UnitConsumer::getNumberOfConsumers());
    EXPECT_THROW(Range copy(b), std::length_error);
  }
  UnitConsumer::setListLimitUnderTest(0);
  EXPECT_EQ("list too long", message);
  EXPECT_EQ(before, UnitConsumer::getNumberOfConsumers());
  EXPECT_EQ(std::list<UnitConsumer*>().max_size(), UnitConsumer::getListLimit());
}

TEST(UnitConsumer, TheTestLimitDoesNothingOutsideTests) {
  {
    // Production code must never see a lowered limit.
    mtkit_test::ProductionBehaviour const production;
    UnitConsumer::setListLimitUnderTest(1);
  }
  EXPECT_EQ(std::list<UnitConsumer*>().max_size(), UnitConsumer::getListLimit());
}

TEST(UnitConsumer, ThreadsMakeAndDropConsumersTogether) {
  std::size_t const before = UnitConsumer::getNumberOfConsumers();
  Range const original(1, 2, Range::LINEAR);
  auto const work = [&] {
    for (int i = 0; i < 20000; ++i) {
      Range const copy(original);
      Consumer const c;
    }
  };
  std::thread a(work), b(work);
  a.join();
  b.join();
  EXPECT_EQ(before + 1, UnitConsumer::getNumberOfConsumers());
}

}  // namespace
