#include "MotionsFile.h"

#include <fstream>

#include "CommandSupport.h"
#include <iterator>

#include "machine/machine/MachineClassDatabasePopulator.h"
#include "machine/machine/MachineFileLoader.h"
#include "nc/BinaryPersistReader.h"
#include "nc/BinaryPersistWriter.h"
#include "nc/JsonPersistReader.h"
#include "nc/JsonPersistWriter.h"
#include "nc/PersistClassDatabase.h"
#include "nc/PersistError.h"

namespace mtkit_tool {

std::optional<MotionsFormat> parseMotionsFormat(std::string const& word) {
  if (word == "json") return MotionsFormat::JSON;
  if (word == "binary") return MotionsFormat::BINARY;
  return std::nullopt;
}

char const* motionsFormatName(MotionsFormat format) { return format == MotionsFormat::JSON ? "json" : "binary"; }

bool writeMotionsFile(std::string const& path, machine::MachineMotions& motions, MotionsFormat format,
                      std::string& error) {
  std::string bytes;
  try {
    bytes = format == MotionsFormat::JSON ? persist::JsonPersistWriter::write(motions)
                                          : persist::BinaryPersistWriter::write(motions);
  } catch (persist::PersistError const& e) {
    error = e.what();
    return false;
  }
  std::ofstream out(path, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) {
    error = "cannot write '" + path + "'";
    return false;
  }
  return true;
}

std::optional<machine::MachineMotions> readMotionsFile(std::string const& path, MotionsFormat& format,
                                                       std::string& error) {
  // The operating system's reason first: a missing file, a folder and a
  // file without read permission all fail the same open.
  if (auto const file = machine::MachineFileLoader::checkReadable(path); !file.ok()) {
    error = file.error;
    return std::nullopt;
  }
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = "cannot open '" + path + "'";
    return std::nullopt;
  }
  std::string const bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  persist::PersistClassDatabase database;
  machine::MachineClassDatabasePopulator().populate(database);
  machine::MachineMotions motions;
  format = bytes.compare(0, 4, "MTKP") == 0 ? MotionsFormat::BINARY : MotionsFormat::JSON;
  try {
    if (format == MotionsFormat::BINARY)
      persist::BinaryPersistReader::read(bytes, database, motions);
    else
      persist::JsonPersistReader::read(bytes, database, motions);
  } catch (persist::PersistError const& e) {
    error = e.what();
    return std::nullopt;
  }
  return motions;
}

}  // namespace mtkit_tool
