// Feeds arbitrary bytes, as the contents of a stream text file, to the
// reader. Whatever it reads is written out again by the text stream, and
// that file must be a fixed point: read and written once more, it comes out
// byte for byte the same. Tagged frames are left out of the comparison,
// because a frame is rebuilt (made orthonormal) on every read, which may move
// its last bits.

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>

#include "machine/machine/SimulationStreamTextFileReader.h"
#include "machine/machine/TextFileSimulationStream.h"

namespace {

std::filesystem::path scratch(char const* name) {
  return std::filesystem::temp_directory_path() /
         ("mtkit_reader_fuzz_" + std::to_string(::getpid()) + "_" + name + ".txt");
}

std::string readWhole(std::filesystem::path const& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

/// Reads `from` into a text stream writing `to`; whether the reader stayed ok.
bool replay(std::filesystem::path const& from, std::filesystem::path const& to) {
  auto writer = std::make_shared<machine::TextFileSimulationStream>(to);
  machine::SimulationStreamTextFileReader reader(writer);
  reader.import(from);
  return reader.isOk();
}

std::string withoutTaggedFrames(std::string const& text) {
  std::istringstream in(text);
  std::string out;
  std::string line;
  while (std::getline(in, line))
    if (line.rfind("TaggedFrame:", 0) != 0) out += line + "\n";
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, std::size_t size) {
  static std::filesystem::path const input = scratch("input");
  static std::filesystem::path const first = scratch("first");
  static std::filesystem::path const second = scratch("second");
  {
    std::FILE* file = std::fopen(input.c_str(), "wb");
    if (!file) return 0;
    std::fwrite(data, 1, size, file);
    std::fclose(file);
  }
  bool const ok = replay(input, first);
  (void)ok;
  // What the writer wrote is a well-formed file that reads without failing.
  if (!replay(first, second)) __builtin_trap();
  if (withoutTaggedFrames(readWhole(first)) != withoutTaggedFrames(readWhole(second))) __builtin_trap();
  return 0;
}
