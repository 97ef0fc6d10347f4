#include "nc/BinaryPersistWriter.h"

#include <gtest/gtest.h>

#include <string>

#include "support/PersistSamples.h"

using mtkit_test::Other;
using mtkit_test::Sample;

TEST(BinaryPersistWriter, TheHeaderNamesTheFormatTheLengthAndTheChecksum) {
  Other other;
  std::string const bytes = persist::BinaryPersistWriter::write(other);
  // Content: object "Other" defining name 0 (10 bytes), class with name 0 and
  // version 1 (7 bytes), end class, end object: 19 bytes.
  std::string const content("\x10\x00\x00\x05\x00Other\x12\x00\x00\x01\x00\x00\x00\x13\x11", 19);
  // The CRC-32C of these 19 bytes, worked out bit by bit: 0xc4b7ab3e.
  std::string const header("MTKP\x01\x00\x00\x00\x13\x00\x00\x00\x00\x00\x00\x00\x3e\xab\xb7\xc4", 20);
  EXPECT_EQ(bytes, header + content);
}

TEST(BinaryPersistWriter, NamesAreDefinedOnceAndReferredToAfter) {
  Sample s;
  s.child = std::make_unique<Sample>();
  std::string const bytes = persist::BinaryPersistWriter::write(s);
  std::size_t first = bytes.find("Sample");
  ASSERT_NE(first, std::string::npos);
  EXPECT_EQ(bytes.find("Sample", first + 1), std::string::npos);
  first = bytes.find("std::vector");
  ASSERT_NE(first, std::string::npos);
  EXPECT_EQ(bytes.find("std::vector", first + 1), std::string::npos);
}

TEST(BinaryPersistWriter, NumbersAreLittleEndian) {
  Sample s;
  s.number = 0x01020304;
  s.big = 0x0102030405060708ull;
  s.real = 1.0;  // 0x3ff0000000000000
  std::string const bytes = persist::BinaryPersistWriter::write(s);
  EXPECT_NE(bytes.find(std::string("\x03\x04\x03\x02\x01", 5)), std::string::npos);
  EXPECT_NE(bytes.find(std::string("\x04\x08\x07\x06\x05\x04\x03\x02\x01", 9)), std::string::npos);
  EXPECT_NE(bytes.find(std::string("\x05\x00\x00\x00\x00\x00\x00\xf0\x3f", 9)), std::string::npos);
}
