#include "util/utility/EnumBitset.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "machine/machine/MachineCoolant.h"
#include "support/AssertRecorder.h"

using machine::MachineCoolant;
using Coolants = Orvo::EnumBitset<MachineCoolant>;

namespace {
enum class Tiny { A = 0, B = 1, C = 2 };
// A key map larger than the set, to reach the size assertion.
enum class Crowded { A = 0, B = 1 };
}  // namespace

namespace Orvo {
template <>
struct EnumTraits<Tiny> {
  static constexpr std::size_t bitCount = 2;
  static std::map<std::string, Tiny> const& keyMap() {
    static std::map<std::string, Tiny> const m{{"a", Tiny::A}, {"b", Tiny::B}};
    return m;
  }
};
template <>
struct EnumTraits<Crowded> {
  static constexpr std::size_t bitCount = 1;
  static std::map<std::string, Crowded> const& keyMap() {
    static std::map<std::string, Crowded> const m{{"a", Crowded::A}, {"b", Crowded::B}};
    return m;
  }
};
}  // namespace Orvo

TEST(EnumBitset, CoolantSetHasEightBits) { EXPECT_EQ(Coolants::size(), 8u); }

TEST(EnumBitset, CoolantKeyMapHasTheFileWords) {
  auto const& m = Orvo::EnumTraits<MachineCoolant>::keyMap();
  EXPECT_EQ(m.at("flood"), MachineCoolant::FLOOD);
  EXPECT_EQ(static_cast<int>(m.at("mist")), 1);
  EXPECT_EQ(static_cast<int>(m.at("through_tool")), 2);
  EXPECT_EQ(static_cast<int>(m.at("air")), 3);
  EXPECT_EQ(static_cast<int>(m.at("air_through_tool")), 4);
  EXPECT_EQ(static_cast<int>(m.at("suction")), 5);
  EXPECT_EQ(static_cast<int>(m.at("flood_mist")), 6);
  EXPECT_EQ(static_cast<int>(m.at("flood_through_tool")), 7);
  EXPECT_EQ(m.size(), 8u);
}

TEST(EnumBitset, SetTestAndReset) {
  Coolants c;
  c.set(MachineCoolant::MIST);
  EXPECT_TRUE(c.test(MachineCoolant::MIST));
  EXPECT_FALSE(c.test(MachineCoolant::FLOOD));
  c.reset(MachineCoolant::MIST);
  EXPECT_TRUE(c.none());
}

TEST(EnumBitset, KeysRoundTripInKeyOrder) {
  Coolants const c = Coolants::fromKeys({"suction", "flood"});
  EXPECT_EQ(c.count(), 2u);
  EXPECT_EQ(c.toKeys(), (std::vector<std::string>{"flood", "suction"}));
}

TEST(EnumBitset, UnknownKeyThrowsIsNotSupported) {
  try {
    Coolants::fromKeys({"flood", "lava"});
    FAIL() << "no exception";
  } catch (std::exception const& e) {
    EXPECT_STREQ(e.what(), "lava is not supported");
  }
}

TEST(EnumBitset, EnumeratorBeyondSizeFailsAndThrows) {
  mtkit_test::AssertRecorder rec;
  Orvo::EnumBitset<Tiny> t;
  EXPECT_THROW(t.set(Tiny::C), std::out_of_range);
  EXPECT_THROW((void)t.test(Tiny::C), std::out_of_range);
  auto const f = rec.take();
  ASSERT_EQ(f.size(), 2u);
  EXPECT_EQ(f[0].expression, "EXPECTS:f < size()");
  EXPECT_EQ(f[0].file, "util\\utility/EnumBitset");
}

TEST(EnumBitset, KeyMapLargerThanSetFailsItsAssertion) {
  mtkit_test::AssertRecorder rec;
  Orvo::EnumBitset<Crowded> const c;
  // Past the check, the key beyond the set's size throws.
  EXPECT_THROW((void)c.toKeys(), std::out_of_range);
  auto const f = rec.take();
  ASSERT_GE(f.size(), 1u);
  EXPECT_EQ(f[0].expression, "EXPECTS:EnumTraits<T>::keyMap().size() <= size()");
}
