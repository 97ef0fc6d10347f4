// Feeds arbitrary bytes to the binary persist reader as machine motions. An
// input whose first byte is odd has the rest taken as the content behind a
// correct header (length and checksum), so that the fuzzer explores the
// items rather than the checksum; an even first byte leaves the bytes as
// they are. What the reader accepts must write out again to a fixed point,
// and, where its texts are UTF-8, read back from the JSON form to the same
// JSON (the JSON form writes every NaN as NaN, while the binary form keeps
// a NaN's sign and payload bits).

#include <cstddef>
#include <cstdint>
#include <string>

#include "machine/machine/MachineClassDatabasePopulator.h"
#include "machine/machine/MachineMotions.h"
#include "nc/BinaryPersistReader.h"
#include "nc/BinaryPersistWriter.h"
#include "nc/JsonPersistReader.h"
#include "nc/JsonPersistWriter.h"
#include "nc/PersistError.h"
#include "util/utility/Crc32c.h"

namespace {

persist::PersistClassDatabase const& database() {
  static persist::PersistClassDatabase const d = [] {
    persist::PersistClassDatabase db;
    machine::MachineClassDatabasePopulator().populate(db);
    return db;
  }();
  return d;
}

std::string withHeader(std::uint8_t const* content, std::size_t size) {
  std::string bytes = "MTKP";
  auto put = [&bytes](std::uint64_t v, int n) {
    for (int i = 0; i < n; ++i) bytes.push_back(static_cast<char>(v >> (8 * i)));
  };
  put(1, 2);
  put(0, 2);
  put(size, 8);
  put(Orvo::Crc32c::of(content, size), 4);
  bytes.append(reinterpret_cast<char const*>(content), size);
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size == 0) return 0;
  std::string const input = (data[0] & 1) ? withHeader(data + 1, size - 1)
                                          : std::string(reinterpret_cast<char const*>(data + 1), size - 1);
  machine::MachineMotions motions;
  try {
    persist::BinaryPersistReader::read(input, database(), motions);
  } catch (persist::PersistError const&) {
    return 0;
  }
  std::string const first = persist::BinaryPersistWriter::write(motions);
  machine::MachineMotions again;
  persist::BinaryPersistReader::read(first, database(), again);
  if (persist::BinaryPersistWriter::write(again) != first) __builtin_trap();

  std::string text;
  try {
    text = persist::JsonPersistWriter::write(again);
  } catch (persist::PersistError const&) {
    return 0;  // a text that is not UTF-8, which the JSON form refuses
  }
  machine::MachineMotions fromText;
  persist::JsonPersistReader::read(text, database(), fromText);
  if (persist::JsonPersistWriter::write(fromText) != text) __builtin_trap();
  return 0;
}
