// Remapping random rotary values into random ranges: the result lies in the
// range and differs from the input by a whole number of turns.

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "machine/machine/PostMachineConfig/Axis.h"
#include "machine/machine/PostMachineConfig/Range.h"
#include "machine/machine/PostMachineConfig/ScriptingUtils.h"

namespace {

using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::Range;
using com::vantora::post::reduceToRange;

constexpr double kTwoPi = 6.283185307179586;
constexpr int kCases = 5000;

struct Case {
  Range range;
  double value;
};

/// A range from -10..10 spanning 0.01 to 15, a point in it, and that point
/// moved by -50 to 50 turns; so there is always a turn of the value inside.
class Cases {
public:
  explicit Cases(unsigned int seed) : m_random(seed) {}
  Case next() {
    double const minimum = uniform(-10, 10);
    double const maximum = minimum + uniform(0.01, 15);
    double const inside = uniform(minimum, maximum);
    int const turns = std::uniform_int_distribution<int>(-50, 50)(m_random);
    return Case{Range(minimum, maximum, Range::ROTATIONAL), inside + turns * kTwoPi};
  }

private:
  double uniform(double a, double b) { return std::uniform_real_distribution<double>(a, b)(m_random); }
  std::mt19937_64 m_random;
};

void expectWholeTurnsApart(double value, double result) {
  double const turns = (result - value) / kTwoPi;
  EXPECT_NEAR(std::round(turns), turns, 1e-9) << value << " -> " << result;
}

TEST(AxisProperty, ReduceToRangeLandsInTheRangeByWholeTurns) {
  Cases cases(20150611);
  for (int n = 0; n < kCases; ++n) {
    Case const c = cases.next();
    double const result = reduceToRange(c.value, kTwoPi, c.range);
    EXPECT_TRUE(c.range.isWithin(result)) << c.value << " -> " << result << " in " << c.range.getMinimum() << ".."
                                          << c.range.getMaximum();
    expectWholeTurnsApart(c.value, result);
  }
}

TEST(AxisProperty, RemapToRangeLandsInTheRangeByWholeTurnsWhateverThePreference) {
  Cases cases(42);
  std::mt19937_64 preferences(7);
  for (int n = 0; n < kCases; ++n) {
    Case const c = cases.next();
    Axis axis(n % 2 == 0, Vector(0, 0, 1), Vector(), 2, c.range);
    axis.setPreference(std::uniform_int_distribution<int>(-1, 1)(preferences));
    double const result = axis.remapToRange(c.value);
    EXPECT_TRUE(axis.isSupported(result)) << c.value << " -> " << result;
    expectWholeTurnsApart(c.value, result);
    EXPECT_EQ(result, axis.remapToRangeNoException(c.value));
  }
}

TEST(AxisProperty, ReduceStaysInTheRangeByWholeTurns) {
  Cases cases(99);
  for (int n = 0; n < kCases; ++n) {
    Case const c = cases.next();
    Axis const axis(false, Vector(1, 0, 0), Vector(), 0, c.range);
    double const result = axis.reduce(c.value);
    EXPECT_TRUE(axis.isSupported(result)) << c.value << " -> " << result;
    expectWholeTurnsApart(c.value, result);
  }
}

}  // namespace
