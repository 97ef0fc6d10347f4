// Feeds arbitrary bytes to the controller configurations reader. Anything it
// refuses must be refused by a std::runtime_error or std::out_of_range.
// Whatever it reads from UTF-8 text, the files' encoding, must write out and
// read back to an equal configuration. Other bytes inside strings are taken
// over by the reader but re-encoded by jsoncpp's writer, so they are outside
// that promise.

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "machine/machine/ControllerConfigurationsReader.h"
#include "machine/machine/ControllerConfigurationsWriter.h"

namespace {

// Well-formed UTF-8: no stray continuation bytes, no overlong forms, no
// surrogates, nothing above U+10FFFF.
bool isUtf8(std::string const& text) {
  std::size_t i = 0;
  while (i < text.size()) {
    auto const byte = static_cast<unsigned char>(text[i]);
    std::size_t length = 0;
    unsigned long codePoint = 0;
    if (byte < 0x80) {
      ++i;
      continue;
    } else if (byte >= 0xC2 && byte <= 0xDF) {
      length = 2;
      codePoint = byte & 0x1F;
    } else if (byte >= 0xE0 && byte <= 0xEF) {
      length = 3;
      codePoint = byte & 0x0F;
    } else if (byte >= 0xF0 && byte <= 0xF4) {
      length = 4;
      codePoint = byte & 0x07;
    } else {
      return false;
    }
    if (i + length > text.size()) return false;
    for (std::size_t k = 1; k < length; ++k) {
      auto const next = static_cast<unsigned char>(text[i + k]);
      if ((next & 0xC0) != 0x80) return false;
      codePoint = (codePoint << 6) | (next & 0x3F);
    }
    if ((length == 3 && codePoint < 0x800) || (length == 4 && codePoint < 0x10000) || codePoint > 0x10FFFF ||
        (codePoint >= 0xD800 && codePoint <= 0xDFFF))
      return false;
    i += length;
  }
  return true;
}

std::vector<machine::ControllerConfiguration> readAll(std::string const& text, bool& ok) {
  std::istringstream in(text);
  try {
    ok = true;
    return machine::ControllerConfigurationsReader::read(in);
  } catch (std::runtime_error const&) {
  } catch (std::out_of_range const&) {
  }
  ok = false;
  return {};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, std::size_t size) {
  std::string const text(reinterpret_cast<char const*>(data), size);
  bool ok = false;
  auto const first = readAll(text, ok);
  if (!ok || !isUtf8(text)) return 0;

  std::ostringstream out;
  machine::WriterStatus const status = machine::ControllerConfigurationsWriter().write(out, first);
  if (status.isError()) __builtin_trap();
  // Nothing read, nothing written: an empty document has no text to read back.
  if (first.empty()) {
    if (!out.str().empty()) __builtin_trap();
    return 0;
  }

  bool readBackOk = false;
  auto const second = readAll(out.str(), readBackOk);
  if (!readBackOk || second.size() != first.size()) __builtin_trap();
  for (std::size_t i = 0; i < first.size(); ++i) {
    if (second[i] != first[i]) __builtin_trap();
    if (!second[i].equals(first[i], 0.0)) __builtin_trap();
    // The feature form too: the body alone, read under the same name.
    machine::ControllerConfiguration const body(first[i].name(), first[i].getPersistData());
    if (body != first[i]) __builtin_trap();
  }
  return 0;
}
