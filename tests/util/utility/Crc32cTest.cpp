#include "util/utility/Crc32c.h"

#include <gtest/gtest.h>

#include <string>

TEST(Crc32c, KnownValues) {
  // The check value of CRC-32C, and three more worked out bit by bit.
  EXPECT_EQ(Orvo::Crc32c::of("123456789", 9), 0xE3069283u);
  EXPECT_EQ(Orvo::Crc32c::of("", 0), 0x00000000u);
  EXPECT_EQ(Orvo::Crc32c::of("a", 1), 0xC1D04330u);
  std::string const fox = "The quick brown fox jumps over the lazy dog";
  EXPECT_EQ(Orvo::Crc32c::of(fox.data(), fox.size()), 0x22620404u);
  EXPECT_EQ(Orvo::Crc32c::ofPortable("123456789", 9), 0xE3069283u);
  EXPECT_EQ(Orvo::Crc32c::ofPortable(fox.data(), fox.size()), 0x22620404u);
}

TEST(Crc32c, PiecesAddUpToTheWhole) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text.push_back(static_cast<char>(i * 7919));
  std::uint32_t const whole = Orvo::Crc32c::of(text.data(), text.size());
  for (std::size_t cut : {0u, 1u, 7u, 8u, 9u, 500u, 999u}) {
    Orvo::Crc32c crc;
    crc.add(text.data(), cut).add(text.data() + cut, text.size() - cut);
    EXPECT_EQ(crc.value(), whole) << cut;
  }
  EXPECT_EQ(Orvo::Crc32c::ofPortable(text.data(), text.size()), whole);
}
