#include "MachineFileLoader.h"

#include <json/value.h>

#include <exception>
#include <optional>
#include <sstream>

#include "CommandSupport.h"
#include "machine/machine/MTKReader.h"
#include "machine/machine/MTKReaderException.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "util/utility/JsonUtils.h"
#include "util/utility/Messages.h"

namespace mtkit_tool {

namespace {

bool endsWith(std::string const& text, std::string const& tail) {
  return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
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
  /// Another exception from the parser, with its text.
  std::string exception;
};

Parsed parse(std::string const& text) {
  Parsed parsed;
  std::string errors;
  try {
    parsed.ok = Orvo::JsonUtils::parse(text.data(), text.data() + text.size(), parsed.root, errors);
  } catch (std::exception const& e) {
    std::string const what = e.what();
    if (what.find("stackLimit") != std::string::npos)
      parsed.tooDeep = true;
    else
      parsed.exception = what;
  }
  return parsed;
}

/// The machine file reader meets an MTK failure inside a "kinematics"
/// feature as an exception whose what() is "Unknown exception". Reading the
/// features again with the MTK reader, in the order the machine file reader
/// takes them, finds the first that fails and its own full message.
std::optional<std::string> kinematicsError(Json::Value const& root) {
  Json::Value const* const all = root.find("kinematics", "kinematics" + 10);
  if (!all || !all->isObject()) return std::nullopt;
  for (auto it = all->begin(); it != all->end(); ++it) {
    std::string const id = it.name();
    std::wstring message;
    try {
      machine::MTKReadResult result = machine::MTKReader::read(*it);
      if (result.getReadErrorType() != machine::MTKReadErrorType::NONE) message = result.getReadErrorMessage();
    } catch (machine::MTKReaderException const& e) {
      message = machine::MTKReadResult(e.type(), e.message()).getReadErrorMessage();
    } catch (std::exception const&) {
      continue;  // not the MTK reader's failure
    }
    if (!message.empty())
      return "its kinematics \"" + id + "\" cannot be read:\n" + Orvo::Messages::wideToUtf8(message);
  }
  return std::nullopt;
}

LoadedFile loadFile(std::string const& path) {
  LoadedFile loaded;
  std::string reason;
  std::optional<std::string> const text = readWholeFile(path, reason);
  if (!text) {
    loaded.error = "cannot read '" + path + "': " + reason;
    return loaded;
  }
  Parsed const parsed = parse(*text);
  bool const mtk = endsWith(path, ".mtk") || (parsed.ok && parsed.root.isObject() && parsed.root.isMember("units") &&
                                              !parsed.root.isMember("general"));
  loaded.kind = mtk ? LoadedFile::Kind::MTK : LoadedFile::Kind::MACHINE;
  std::string const notA = "'" + path + "' is not " + (mtk ? "an MTK file" : "a machine file") + ":";
  if (text->empty()) {
    loaded.error = notA + " the file is empty";
    return loaded;
  }
  if (parsed.tooDeep) {
    loaded.error = notA + " its JSON nests deeper than " + std::to_string(Orvo::JsonUtils::kNestingLimit) +
                   " levels of arrays and objects, the most the reader takes";
    return loaded;
  }

  std::istringstream in(*text);
  if (mtk) {
    machine::MTKReadResult result = machine::MTKReader::read(in);
    if (result.getReadErrorType() == machine::MTKReadErrorType::NONE)
      loaded.kinematics = result.getKinematicsDefinition();
    else
      loaded.error = notA + "\n" + Orvo::Messages::wideToUtf8(result.getReadErrorMessage());
    return loaded;
  }
  if (parsed.ok && !parsed.root.isObject()) {
    loaded.error = notA + " the document is " + kindOfValue(parsed.root) + ", where a machine file is a JSON object";
    return loaded;
  }
  machine::MachineDefinitionReaderResult result = machine::MachineDefinitionReader().read(in);
  if (!result.isError()) {
    loaded.machine = result.getMachineDefinition();
    return loaded;
  }
  std::string const message = result.getReadErrorMessage();
  if (parsed.ok && endsWith(message, "Unknown exception"))
    if (auto const kinematics = kinematicsError(parsed.root)) {
      loaded.error = notA + " " + *kinematics;
      return loaded;
    }
  loaded.error = notA + "\n" + message;
  return loaded;
}

}  // namespace

LoadedFile MachineFileLoader::load(std::string const& path) {
  LoadedFile loaded = loadFile(path);
  // The parser's texts end in a line break; the commands add their own.
  while (!loaded.error.empty() && loaded.error.back() == '\n') loaded.error.pop_back();
  return loaded;
}

}  // namespace mtkit_tool
