// Feeds arbitrary bytes, as the JSON text of machine motions, to the JSON
// persist reader. What it accepts must write out again, and that text must
// be a fixed point: read and written once more, it comes out byte for byte
// the same, in the binary form as well. Read as a parsed jsoncpp tree
// instead of text, an accepted document must read the same (text is read the
// stricter way: it refuses comments, which jsoncpp skips). And the text is
// read a second time the way long texts are, every value scanned rather than
// parsed whole, which must accept and refuse the same and read the same.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "machine/machine/MachineClassDatabasePopulator.h"
#include "machine/machine/MachineMotions.h"
#include "nc/BinaryPersistReader.h"
#include "nc/BinaryPersistWriter.h"
#include "nc/JsonPersistReader.h"
#include "nc/JsonPersistWriter.h"
#include "nc/PersistError.h"

namespace {

persist::PersistClassDatabase const& database() {
  static persist::PersistClassDatabase const d = [] {
    persist::PersistClassDatabase db;
    machine::MachineClassDatabasePopulator().populate(db);
    return db;
  }();
  return d;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::string_view const text(reinterpret_cast<char const*>(data), size);
  machine::MachineMotions motions;
  bool accepted = true;
  try {
    persist::JsonPersistReader::read(text, database(), motions);
  } catch (persist::PersistError const&) {
    accepted = false;
  }
  machine::MachineMotions scanned;
  bool scannedAccepted = true;
  try {
    persist::JsonPersistReader reader(text, database(), 1);
    persist::serialize(reader, "root", scanned);
    reader.finish();
  } catch (persist::PersistError const&) {
    scannedAccepted = false;
  }
  if (accepted != scannedAccepted) __builtin_trap();
  if (!accepted) return 0;
  std::string const first = persist::JsonPersistWriter::write(motions);
  if (persist::JsonPersistWriter::write(scanned) != first) __builtin_trap();

  // The same document as a tree reads the same.
  machine::MachineMotions fromTree;
  try {
    persist::JsonPersistReader::readDocument(persist::JsonPersistReader::parse(text), database(), fromTree);
  } catch (persist::PersistError const&) {
    __builtin_trap();
  }
  if (persist::JsonPersistWriter::write(fromTree) != first) __builtin_trap();

  // What was written reads back and writes the same, in both forms.
  machine::MachineMotions again;
  persist::JsonPersistReader::read(first, database(), again);
  std::string const bytes = persist::BinaryPersistWriter::write(again);
  if (persist::JsonPersistWriter::write(again) != first) __builtin_trap();
  machine::MachineMotions fromBytes;
  persist::BinaryPersistReader::read(bytes, database(), fromBytes);
  if (persist::BinaryPersistWriter::write(fromBytes) != bytes) __builtin_trap();
  if (persist::JsonPersistWriter::write(fromBytes) != first) __builtin_trap();
  return 0;
}
