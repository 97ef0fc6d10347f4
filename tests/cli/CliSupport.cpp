#include "cli/CliSupport.h"

#include <cstdlib>
#include <fstream>

namespace mtkit_cli {

namespace {

// Before any test runs: the tool must start on its install RPATH alone.
bool const kLibraryPathUnset = (::unsetenv("LD_LIBRARY_PATH"), true);

void write(std::string const& path, std::string const& text) { std::ofstream(path, std::ios::binary) << text; }

class Scratch {
public:
  Scratch() {
    auto const dir = std::filesystem::temp_directory_path() / ("mtkit_cli_" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    inputs.dir = dir.string();
    inputs.missing = (dir / "missing.json").string();
    inputs.directory = (dir / "folder.json").string();
    std::filesystem::create_directories(inputs.directory);
    inputs.empty = (dir / "empty.json").string();
    write(inputs.empty, "");
    inputs.garbage = (dir / "garbage.json").string();
    write(inputs.garbage, "G-code is not JSON\n");
    inputs.truncated = (dir / "truncated.json").string();
    write(inputs.truncated, "{\"general\": {\"vendor\": \"Orvo\"");
    inputs.emptyObject = (dir / "empty_object.json").string();
    write(inputs.emptyObject, "{}");
    inputs.emptyArray = (dir / "empty_array.json").string();
    write(inputs.emptyArray, "[]");
    inputs.nested = (dir / "nested.json").string();
    write(inputs.nested, std::string(100000, '[') + std::string(100000, ']'));
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(inputs.dir, ignored);
  }
  BadInputs inputs;
};

}  // namespace

BadInputs const& BadInputs::get() {
  static Scratch const scratch;
  return scratch.inputs;
}

}  // namespace mtkit_cli
