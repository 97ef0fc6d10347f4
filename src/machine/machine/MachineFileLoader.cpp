#include "machine/machine/MachineFileLoader.h"

#include <fcntl.h>
#include <json/value.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <exception>
#include <optional>
#include <sstream>

#include "machine/machine/DefinitionCheck.h"
#include "machine/machine/MTKReader.h"
#include "machine/machine/MTKReaderException.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/MachineUtils.h"
#include "util/utility/JsonUtils.h"
#include "util/utility/Messages.h"

namespace machine {

namespace {

bool endsWith(std::string const& text, std::string const& tail) {
  return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

MachineFileLoader::FileText failure(std::string const& path, int error) {
  MachineFileLoader::FileText result;
  result.errorNumber = error;
  result.error = "cannot read '" + path + "': " + std::strerror(error);
  return result;
}

bool isDirectory(int descriptor) {
  struct ::stat status {};
  return ::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

char const* kindOfValue(Json::Value const& value) {
  switch (value.type()) {
    case Json::nullValue: return "null";
    case Json::booleanValue: return "a boolean";
    case Json::stringValue: return "a string";
    case Json::arrayValue: return "an array";
    case Json::objectValue: return "an object";
    default: return "a number";
  }
}

/// The document as the library's readers parse it.
struct Parsed {
  Json::Value root;
  bool ok = false;
  /// Deeper than the parser goes: the parser throws rather than fail.
  bool tooDeep = false;
};

Parsed parse(std::string const& text) {
  Parsed parsed;
  std::string errors;
  try {
    parsed.ok = Orvo::JsonUtils::parse(text.data(), text.data() + text.size(), parsed.root, errors);
  } catch (std::exception const& e) {
    // Any other exception leaves the document unparsed: the reader that
    // follows says what is wrong with it.
    parsed.tooDeep = std::string(e.what()).find("stackLimit") != std::string::npos;
  }
  return parsed;
}

/// The machine file reader meets an MTK failure inside a "kinematics"
/// feature as an exception whose what() is "Unknown exception". Reading the
/// features again with the MTK reader, in the order the machine file reader
/// takes them, finds the first that fails and its own full message.
std::optional<std::string> kinematicsError(Json::Value const& root) {
  static char const kKey[] = "kinematics";
  Json::Value const* const all = root.find(kKey, kKey + sizeof kKey - 1);
  if (!all || !all->isObject()) return std::nullopt;
  for (auto it = all->begin(); it != all->end(); ++it) {
    std::string const id = it.name();
    std::wstring message;
    try {
      MTKReadResult result = MTKReader::read(*it);
      if (result.getReadErrorType() != MTKReadErrorType::NONE) message = result.getReadErrorMessage();
    } catch (MTKReaderException const& e) {
      message = MTKReadResult(e.type(), e.message()).getReadErrorMessage();
    } catch (std::exception const&) {
      continue;  // not the MTK reader's failure
    }
    if (!message.empty())
      return "its kinematics \"" + id + "\" cannot be read:\n" + Orvo::Messages::wideToUtf8(message);
  }
  return std::nullopt;
}

void loadInto(MachineFileLoader::LoadedFile& loaded, std::string const& text) {
  std::string const& path = loaded.path;
  Parsed const parsed = parse(text);
  bool const mtk = endsWith(path, ".mtk") || (parsed.ok && parsed.root.isObject() && parsed.root.isMember("units") &&
                                              !parsed.root.isMember("general"));
  loaded.kind = mtk ? MachineFileLoader::LoadedFile::Kind::MTK : MachineFileLoader::LoadedFile::Kind::MACHINE;
  std::string const notA = "'" + path + "' is not " + (mtk ? "an MTK file" : "a machine file") + ":";
  if (text.empty()) {
    loaded.error = notA + " the file is empty";
    return;
  }
  if (parsed.tooDeep) {
    loaded.error = notA + " its JSON nests deeper than " + std::to_string(Orvo::JsonUtils::kNestingLimit) +
                   " levels of arrays and objects, the most the reader takes";
    return;
  }

  std::istringstream in(text);
  if (mtk) {
    MTKReadResult result = MTKReader::read(in);
    if (result.getReadErrorType() == MTKReadErrorType::NONE)
      loaded.kinematics = result.getKinematicsDefinition();
    else
      loaded.error = notA + "\n" + Orvo::Messages::wideToUtf8(result.getReadErrorMessage());
    return;
  }
  if (parsed.ok && !parsed.root.isObject()) {
    loaded.error = notA + " the document is " + kindOfValue(parsed.root) + ", where a machine file is a JSON object";
    return;
  }
  MachineDefinitionReaderResult result = MachineDefinitionReader().read(in);
  if (!result.isError()) {
    loaded.machine = result.getMachineDefinition();
    return;
  }
  std::string const message = result.getReadErrorMessage();
  if (parsed.ok && endsWith(message, "Unknown exception"))
    if (auto const kinematics = kinematicsError(parsed.root)) {
      loaded.error = notA + " " + *kinematics;
      return;
    }
  loaded.error = notA + "\n" + message;
}

MachineFileLoader::BuiltMachine refused(std::string error, int errorNumber = 0) {
  MachineFileLoader::BuiltMachine built;
  built.error = std::move(error);
  built.errorNumber = errorNumber;
  return built;
}

}  // namespace

MachineFileLoader::FileText MachineFileLoader::readFile(std::string const& path) {
  int const descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return failure(path, errno);
  if (isDirectory(descriptor)) {
    ::close(descriptor);
    return failure(path, EISDIR);
  }
  FileText result;
  char buffer[1 << 16];
  while (true) {
    ssize_t const got = ::read(descriptor, buffer, sizeof buffer);
    if (got == 0) break;
    if (got < 0) {
      if (errno == EINTR) continue;
      int const error = errno;
      ::close(descriptor);
      return failure(path, error);
    }
    result.text.append(buffer, static_cast<std::size_t>(got));
  }
  ::close(descriptor);
  return result;
}

MachineFileLoader::FileText MachineFileLoader::checkReadable(std::string const& path) {
  int const descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return failure(path, errno);
  bool const directory = isDirectory(descriptor);
  ::close(descriptor);
  return directory ? failure(path, EISDIR) : FileText();
}

MachineFileLoader::LoadedFile MachineFileLoader::load(std::string const& path) {
  FileText const file = readFile(path);
  if (!file.ok()) {
    LoadedFile loaded;
    loaded.path = path;
    loaded.errorNumber = file.errorNumber;
    loaded.error = file.error;
    return loaded;
  }
  return loadText(file.text, path);
}

MachineFileLoader::LoadedFile MachineFileLoader::loadText(std::string const& text, std::string const& path) {
  LoadedFile loaded;
  loaded.path = path;
  loadInto(loaded, text);
  // The parser's texts end in a line break; whoever shows the error adds its
  // own.
  while (!loaded.error.empty() && loaded.error.back() == '\n') loaded.error.pop_back();
  return loaded;
}

MachineFileLoader::BuiltMachine MachineFileLoader::build(MachineSpecification const& specification,
                                                         std::string const& prefix) {
  auto const problems = DefinitionCheck::check(*specification.kinematicsDefinition());
  if (!problems.empty()) {
    std::string text = prefix + "the kinematics cannot be moved:";
    for (auto const& problem : problems) text += "\n  " + problem.message;
    return refused(text);
  }
  BuiltMachine built;
  try {
    built.machine = std::make_unique<Machine>(specification);
  } catch (std::bad_optional_access const&) {
    return refused(prefix + "the controller names a head or table part that is not in the kinematics");
  } catch (std::exception const& e) {
    // Such as the turret number too large for an int that toolFramePart
    // refuses: the exception's own text is all there is to say.
    return refused(prefix + e.what());
  }
  if (!built.machine->headPart()) return refused(prefix + "the machine has no head");
  if (!built.machine->tablePart()) return refused(prefix + "the machine has no table");
  built.machine->setAxisOrdering(MachineUtils::chainFirstOrdering(*built.machine));
  return built;
}

MachineFileLoader::BuiltMachine MachineFileLoader::build(MachineDefinition const& definition,
                                                         std::string const& prefix) {
  auto const specification = MachineSpecification::makeDefaultForDefinition(definition, true);
  if (!specification) return refused(prefix + "the machine definition has no kinematics");
  return build(*specification, prefix);
}

MachineFileLoader::BuiltMachine MachineFileLoader::build(KinematicsDefinition const& kinematics,
                                                         std::string const& prefix) {
  // No controller: the default configuration made from the kinematics names
  // the first head and the first table.
  return build(MachineSpecification(kinematics, nullptr, true), prefix);
}

MachineFileLoader::BuiltMachine MachineFileLoader::build(LoadedFile const& loaded) {
  if (!loaded.ok()) return refused(loaded.error, loaded.errorNumber);
  std::string const prefix = "'" + loaded.path + "': ";
  if (loaded.kinematics) return build(*loaded.kinematics, prefix);
  auto const specification = MachineSpecification::makeDefaultForDefinition(*loaded.machine, true);
  if (!specification) return refused("'" + loaded.path + "' has no kinematics");
  return build(*specification, prefix);
}

MachineFileLoader::BuiltMachine MachineFileLoader::loadMachine(std::string const& path) { return build(load(path)); }

}  // namespace machine
