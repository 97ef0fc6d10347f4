#include "nc/BinaryPersistReader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/PersistSamples.h"
#include "util/utility/Crc32c.h"

using mtkit_test::binaryReadError;
using mtkit_test::Sample;

namespace {

/// A header for `content`: magic, format 1, no flags, length and CRC-32C.
std::string withHeader(std::string const& content, unsigned version = 1, unsigned flags = 0) {
  std::string bytes = "MTKP";
  auto put = [&bytes](std::uint64_t v, int size) {
    for (int i = 0; i < size; ++i) bytes.push_back(static_cast<char>(v >> (8 * i)));
  };
  put(version, 2);
  put(flags, 2);
  put(content.size(), 8);
  put(Orvo::Crc32c::of(content.data(), content.size()), 4);
  return bytes + content;
}

std::string contentOf(Sample& s) { return persist::BinaryPersistWriter::write(s).substr(20); }

}  // namespace

TEST(BinaryPersistReader, TheHeaderIsChecked) {
  EXPECT_EQ(binaryReadError<Sample>(""), "persist binary: at byte 0: not a binary persist stream: it does not begin with \"MTKP\"");
  EXPECT_EQ(binaryReadError<Sample>("{\"format\": 1}"),
            "persist binary: at byte 0: not a binary persist stream: it does not begin with \"MTKP\"");
  EXPECT_EQ(binaryReadError<Sample>("MTKP\x01"),
            "persist binary: at byte 0: the stream is truncated: it has 5 bytes, fewer than its 20-byte header");
  EXPECT_EQ(binaryReadError<Sample>(withHeader("", 2)),
            "persist binary: at byte 4: the stream has format version 2, which is newer than this library reads (1)");
  EXPECT_EQ(binaryReadError<Sample>(withHeader("", 0)),
            "persist binary: at byte 4: the stream has format version 0, which does not exist");
  EXPECT_EQ(binaryReadError<Sample>(withHeader("", 1, 0x8000)),
            "persist binary: at byte 6: the header has flags 0x8000, which this library does not know");
}

TEST(BinaryPersistReader, TheAnnouncedLengthMustBeWhatFollows) {
  Sample s;
  std::string const bytes = persist::BinaryPersistWriter::write(s);
  std::size_t const content = bytes.size() - 20;
  EXPECT_EQ(binaryReadError<Sample>(bytes.substr(0, bytes.size() - 3)),
            "persist binary: at byte 8: the stream is truncated: the header announces " + std::to_string(content) +
                " bytes of content, " + std::to_string(content - 3) + " are present");
  EXPECT_EQ(binaryReadError<Sample>(bytes + "xy"),
            "persist binary: at byte 8: the header announces " + std::to_string(content) +
                " bytes of content, but 2 more bytes follow them");
}

TEST(BinaryPersistReader, AChangedByteFailsTheChecksum) {
  Sample s;
  std::string bytes = persist::BinaryPersistWriter::write(s);
  std::string const stored = bytes.substr(16, 4);
  bytes[30] = static_cast<char>(bytes[30] ^ 0x40);
  std::string const error = binaryReadError<Sample>(bytes);
  EXPECT_EQ(error.rfind("persist binary: at byte 16: the content does not match its checksum (stored 0x", 0), 0u)
      << error;
  EXPECT_NE(error.find("): the stream is corrupted"), std::string::npos) << error;
}

TEST(BinaryPersistReader, KnownChecksumOfAnEmptyContent) {
  // The CRC-32C of no bytes is 0.
  std::string const bytes = withHeader("");
  EXPECT_EQ(bytes.substr(16, 4), std::string(4, '\0'));
  EXPECT_EQ(binaryReadError<Sample>(bytes),
            "persist binary: at byte 20 (root): expected the start of an object, found the end of the stream");
}

TEST(BinaryPersistReader, AnItemOfTheWrongKindIsNamedWithItsOffset) {
  Sample s;
  std::string content = contentOf(s);
  // m_flag, the first value, stands after the object (11 bytes) and the
  // class (7 bytes): at byte 20 + 18 = 38.
  ASSERT_EQ(content[18], '\x01');
  content[18] = '\x05';
  EXPECT_EQ(binaryReadError<Sample>(withHeader(content)),
            "persist binary: at byte 38 (root.m_flag): expected a boolean, found a double (tag 0x05)");
  content[18] = '\x7f';
  EXPECT_EQ(binaryReadError<Sample>(withHeader(content)),
            "persist binary: at byte 38 (root.m_flag): expected a boolean, found the unknown tag 0x7f");
}

TEST(BinaryPersistReader, TheClassAndItsVersionAreChecked) {
  mtkit_test::Other other;
  EXPECT_EQ(binaryReadError<Sample>(persist::BinaryPersistWriter::write(other)),
            "persist binary: at byte 20 (root): expected an object of class Sample, found class Other");
  Sample s;
  std::string content = contentOf(s);
  content[14] = 3;  // the class version, after the object and the class tag and name
  EXPECT_EQ(binaryReadError<Sample>(withHeader(content)),
            "persist binary: at byte 31 (root): the class Sample is stored at version 3, which is newer than this "
            "library reads (up to 2)");
}

TEST(BinaryPersistReader, AReferenceToANameNotYetDefinedIsRefused) {
  Sample s;
  std::string content = contentOf(s);
  content[12] = 5;  // the class refers to name 5; only name 0 is defined
  EXPECT_EQ(binaryReadError<Sample>(withHeader(content)),
            "persist binary: at byte 31 (root): expected a class name, found a reference to name 5, but only 1 names "
            "are defined");
}

TEST(BinaryPersistReader, AnArrayCountBeyondTheRestOfTheStreamIsRefusedBeforeAnythingIsAllocated) {
  // m_size and the array count both claim 2^40 elements.
  Sample s;
  std::string content = contentOf(s);
  std::size_t const size = content.find(std::string("\x04\0\0\0\0\0\0\0\0\x16", 10));
  ASSERT_NE(size, std::string::npos);
  content[size + 6] = 1;
  content[size + 15] = 1;
  EXPECT_EQ(binaryReadError<Sample>(withHeader(content)),
            "persist binary: at byte " + std::to_string(20 + size + 9) +
                " (root.m_list.m_array): the array claims 1099511627776 elements, but only 10 bytes are left");
}

TEST(BinaryPersistReader, TheCountOfAnArrayMustBeTheOneItsSizeGave) {
  Sample s;
  s.list = {1.0};
  std::string content = contentOf(s);
  std::size_t const array = content.find(std::string("\x16\x01\0\0\0\0\0\0\0", 9));
  ASSERT_NE(array, std::string::npos);
  content[array + 1] = 2;
  EXPECT_EQ(binaryReadError<Sample>(withHeader(content)),
            "persist binary: at byte " + std::to_string(20 + array) +
                " (root.m_list.m_array): expected an array of 1 elements (its count), found 2");
}

TEST(BinaryPersistReader, BytesAfterTheRootAreRefused) {
  Sample s;
  std::string const content = contentOf(s);
  EXPECT_EQ(binaryReadError<Sample>(withHeader(content + "\x01")),
            "persist binary: at byte " + std::to_string(20 + content.size()) +
                ": 1 bytes follow the root object, where the stream should end");
}

TEST(BinaryPersistReader, EveryTruncationOfTheContentUnderAConsistentHeaderIsRefused) {
  Sample s = mtkit_test::fullSample();
  std::string const content = contentOf(s);
  for (std::size_t size = 0; size < content.size(); ++size)
    EXPECT_NE(binaryReadError<Sample>(withHeader(content.substr(0, size))), "no PersistError") << size;
}

TEST(BinaryPersistReader, AnyChangedByteUnderAConsistentHeaderReadsOrFailsCleanly) {
  Sample s = mtkit_test::fullSample();
  std::string const content = contentOf(s);
  for (std::size_t i = 0; i < content.size(); ++i) {
    for (int const flip : {0x01, 0x80, 0xff}) {
      std::string changed = content;
      changed[i] = static_cast<char>(changed[i] ^ flip);
      Sample target;
      try {
        persist::BinaryPersistReader::read(withHeader(changed), mtkit_test::sampleDatabase(), target);
      } catch (persist::PersistError const&) {
      }
    }
  }
  SUCCEED();
}
