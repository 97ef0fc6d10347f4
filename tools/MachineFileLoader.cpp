#include "MachineFileLoader.h"

#include <json/reader.h>

#include <fstream>
#include <sstream>

#include "machine/machine/MTKReader.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "util/utility/Messages.h"

namespace mtkit_tool {

namespace {

bool endsWith(std::string const& text, std::string const& tail) {
  return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

bool looksLikeMtk(std::string const& text) {
  std::istringstream in(text);
  Json::Value root;
  try {
    if (!Json::parseFromStream(Json::CharReaderBuilder(), in, &root, nullptr)) return false;
  } catch (std::exception const&) {
    return false;  // too deep: the reader reports it
  }
  return root.isObject() && root.isMember("units") && !root.isMember("general");
}

}  // namespace

LoadedFile MachineFileLoader::load(std::string const& path) {
  LoadedFile loaded;
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    loaded.error = "cannot open " + path;
    return loaded;
  }
  std::ostringstream buffer;
  buffer << file.rdbuf();
  std::string const text = buffer.str();

  if (endsWith(path, ".mtk") || looksLikeMtk(text)) {
    loaded.kind = LoadedFile::Kind::MTK;
    std::istringstream in(text);
    machine::MTKReadResult result = machine::MTKReader::read(in);
    if (result.getReadErrorType() == machine::MTKReadErrorType::NONE)
      loaded.kinematics = result.getKinematicsDefinition();
    else
      loaded.error = Orvo::Messages::wideToUtf8(result.getReadErrorMessage());
    return loaded;
  }
  std::istringstream in(text);
  machine::MachineDefinitionReaderResult result = machine::MachineDefinitionReader().read(in);
  if (result.isError())
    loaded.error = result.getReadErrorMessage();
  else
    loaded.machine = result.getMachineDefinition();
  return loaded;
}

}  // namespace mtkit_tool
