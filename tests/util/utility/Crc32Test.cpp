#include "util/utility/Crc32.h"

#include <gtest/gtest.h>

#include <string>

TEST(Crc32, KnownValues) {
  // The check value of CRC-32 (ISO-HDLC), and two that zlib.crc32 gives.
  EXPECT_EQ(Orvo::Crc32::of("123456789", 9), 0xCBF43926u);
  EXPECT_EQ(Orvo::Crc32::of("", 0), 0x00000000u);
  EXPECT_EQ(Orvo::Crc32::of("a", 1), 0xE8B7BE43u);
  std::string const fox = "The quick brown fox jumps over the lazy dog";
  EXPECT_EQ(Orvo::Crc32::of(fox.data(), fox.size()), 0x414FA339u);
}

TEST(Crc32, PiecesAddUpToTheWhole) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text.push_back(static_cast<char>(i * 7919));
  std::uint32_t const whole = Orvo::Crc32::of(text.data(), text.size());
  for (std::size_t cut : {0u, 1u, 7u, 8u, 9u, 500u, 999u}) {
    Orvo::Crc32 crc;
    crc.add(text.data(), cut).add(text.data() + cut, text.size() - cut);
    EXPECT_EQ(crc.value(), whole) << cut;
  }
}
