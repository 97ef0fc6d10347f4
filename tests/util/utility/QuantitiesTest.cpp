#include <gtest/gtest.h>

#include <cmath>

#include "support/AssertRecorder.h"
#include "util/utility/Angle.h"
#include "util/utility/Distance.h"
#include "util/utility/Speed.h"
#include "util/utility/Validified.h"

using Orvo::Quantity::Speed;

TEST(Distance, HoldsMillimetres) {
  Orvo::Quantity::Distance const d(12.5);
  EXPECT_EQ(d.get(), 12.5);
}

TEST(NonNegativeDistance, ConvertsImplicitlyToDouble) {
  Orvo::NonNegativeDistance const d(3.0);
  double const x = d;
  EXPECT_EQ(x, 3.0);
}

TEST(NonNegativeDistance, NegativeFailsBothChecks) {
  mtkit_test::AssertRecorder rec;
  Orvo::NonNegativeDistance const d(-1.0);
  EXPECT_EQ(static_cast<double>(d), -1.0);  // stored anyway
  auto const f = rec.take();
  ASSERT_EQ(f.size(), 2u);
  EXPECT_EQ(f[0].expression, "t >= 0");
  EXPECT_EQ(f[1].expression, "!std::signbit(t)");
  EXPECT_EQ(f[0].file, "util\\utility/Distance");
}

TEST(NonNegativeDistance, NegativeZeroFailsSignbitOnly) {
  mtkit_test::AssertRecorder rec;
  Orvo::NonNegativeDistance const d(-0.0);
  (void)d;
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"!std::signbit(t)"});
}

TEST(NonNegativeDistance, ZeroPasses) {
  mtkit_test::AssertRecorder rec;
  Orvo::NonNegativeDistance const d(0.0);
  (void)d;
  EXPECT_TRUE(rec.take().empty());
}

TEST(Speed, PlainFormsUseTheBaseUnit) {
  Speed const s(1200.0);
  EXPECT_EQ(s.get(), 1200.0);
  EXPECT_EQ(Speed().get(), 0.0);
}

TEST(Speed, UnitOneRoundTripsExactly) {
  auto const unit1 = static_cast<Speed::SpeedUnit>(1);
  for (double v : {0.1, 1234.5678, 1e-7, 98765.4321}) {
    Speed const s(v, unit1);
    EXPECT_EQ(s.get(unit1), v);
  }
}

TEST(Speed, ConvertsBetweenUnits) {
  Speed const s(10.0, Speed::SpeedUnit::MILLIMETRES_PER_SECOND);
  EXPECT_DOUBLE_EQ(s.get(Speed::SpeedUnit::MILLIMETRES_PER_MINUTE), 600.0);
  EXPECT_DOUBLE_EQ(s.get(Speed::SpeedUnit::METRES_PER_MINUTE), 0.6);
  EXPECT_TRUE(Speed(600.0) == s);
  EXPECT_TRUE(Speed(601.0) != s);
}

TEST(Validified, ReadingAnInvalidValueFailsMValid) {
  mtkit_test::AssertRecorder rec;
  Orvo::Validified<int> const bad;
  EXPECT_FALSE(bad.isValid());
  (void)bad.value();
  auto const f = rec.take();
  ASSERT_EQ(f.size(), 1u);
  EXPECT_EQ(f[0].expression, "m_valid");
  EXPECT_EQ(f[0].file, "util\\utility/Validified");
}

TEST(Validified, ValidValueReadsWithoutFailure) {
  mtkit_test::AssertRecorder rec;
  Orvo::Validified<int> const good(42);
  EXPECT_TRUE(good.isValid());
  EXPECT_EQ(good.value(), 42);
  EXPECT_TRUE(rec.take().empty());
}

TEST(Angle, SineOutsideUnitIntervalFails) {
  mtkit_test::AssertRecorder rec;
  Orvo::AngleChecks::checkedSineOrCosine(1.5);
  Orvo::AngleChecks::checkedSineOrCosine(-1.5);
  auto const f = rec.take();
  ASSERT_EQ(f.size(), 2u);
  EXPECT_EQ(f[0].expression, "t <= 1");
  EXPECT_EQ(f[1].expression, "t >= -1");
  EXPECT_EQ(f[0].file, "util\\utility/Angle");
}

TEST(Angle, InconsistentPairFails) {
  mtkit_test::AssertRecorder rec;
  Orvo::AngleChecks::checkSineCosinePair(0.5, 0.5);
  EXPECT_EQ(rec.takeTexts(),
            std::vector<std::string>{"std::fabs(std::sqrt(m_s * m_s + m_c * m_c) - 1) < 1e-12"});
}

TEST(Angle, RadianHoldsItsValue) {
  Orvo::Radian const r(1.25);
  EXPECT_EQ(r.get(), 1.25);
  EXPECT_TRUE(r == Orvo::Radian(1.25));
}
