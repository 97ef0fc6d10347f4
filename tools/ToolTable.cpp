#include "ToolTable.h"

#include <json/json.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fstream>

#include "CommandSupport.h"
#include "machine/machine/MachineFileLoader.h"
#include "nc/NCUnit.h"
#include "nc/ToolGeometry.h"

namespace mtkit_tool {

namespace {

std::optional<int> parseOperationId(std::string const& key) {
  if (key.empty()) return std::nullopt;
  char* end = nullptr;
  errno = 0;
  long const value = std::strtol(key.c_str(), &end, 10);
  if (*end != '\0' || errno == ERANGE || value < INT_MIN || value > INT_MAX) return std::nullopt;
  return static_cast<int>(value);
}

std::optional<int> unitOf(std::string const& name) {
  if (name == "mm") return Orvo::NCUnit::MILLIMETER;
  if (name == "cm") return Orvo::NCUnit::CENTIMETER;
  if (name == "m") return Orvo::NCUnit::METER;
  if (name == "inch") return Orvo::NCUnit::INCH;
  if (name == "ft") return Orvo::NCUnit::FOOT;
  return std::nullopt;
}

}  // namespace

std::optional<ToolTable> ToolTable::read(std::string const& path, std::string& error) {
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
  Json::CharReaderBuilder builder;
  builder["rejectDupKeys"] = true;
  Json::Value root;
  std::string parseErrors;
  if (!Json::parseFromStream(builder, in, &root, &parseErrors)) {
    error = "'" + path + "' is not JSON: " + parseErrors;
    while (!error.empty() && (error.back() == '\n' || error.back() == ' ')) error.pop_back();
    return std::nullopt;
  }
  if (!root.isObject()) {
    error = "'" + path + "' must be a JSON object that maps operation ids to tools";
    return std::nullopt;
  }
  ToolTable table;
  for (auto it = root.begin(); it != root.end(); ++it) {
    std::string const key = it.name();
    std::string const where = "'" + path + "', operation \"" + key + "\": ";
    auto const id = parseOperationId(key);
    if (!id) {
      error = "'" + path + "': \"" + key + "\" is not an operation id (a decimal integer)";
      return std::nullopt;
    }
    Json::Value const& entry = *it;
    if (!entry.isObject()) {
      error = where + "the tool must be an object";
      return std::nullopt;
    }
    for (std::string const& member : entry.getMemberNames()) {
      if (member != "tool" && member != "radius" && member != "unit" && member != "thread_pitch") {
        error = where + "unknown member \"" + member + "\" (known: tool, radius, unit, thread_pitch)";
        return std::nullopt;
      }
    }
    Json::Value const& radius = entry["radius"];
    if (!radius.isNumeric() || radius.asDouble() < 0) {
      error = where + "\"radius\" must be a number, not negative";
      return std::nullopt;
    }
    int number = 0;
    if (entry.isMember("tool")) {
      if (!entry["tool"].isInt()) {
        error = where + "\"tool\" must be an integer";
        return std::nullopt;
      }
      number = entry["tool"].asInt();
    }
    int unit = Orvo::NCUnit::MILLIMETER;
    if (entry.isMember("unit")) {
      auto const named = entry["unit"].isString() ? unitOf(entry["unit"].asString()) : std::nullopt;
      if (!named) {
        error = where + "\"unit\" must be one of \"mm\", \"cm\", \"m\", \"inch\", \"ft\"";
        return std::nullopt;
      }
      unit = *named;
    }
    double pitch = 0.0;
    if (entry.isMember("thread_pitch")) {
      if (!entry["thread_pitch"].isNumeric() || entry["thread_pitch"].asDouble() < 0) {
        error = where + "\"thread_pitch\" must be a number, not negative";
        return std::nullopt;
      }
      pitch = entry["thread_pitch"].asDouble();
    }
    if (table.m_tools.count(*id)) {
      error = where + "operation " + std::to_string(*id) + " is given twice";
      return std::nullopt;
    }
    // Compensation offsets by the geometry's radius, half its diameter.
    Orvo::ToolGeometry const geometry(2.0 * radius.asDouble(), 0.0, 0.0, 0.0);
    table.m_tools.emplace(*id, Orvo::NCTool(number, geometry, unit, pitch));
  }
  return table;
}

Orvo::NCTool ToolTable::toolFor(int operationId) const {
  auto const found = m_tools.find(operationId);
  return found == m_tools.end() ? Orvo::NCTool() : found->second;
}

}  // namespace mtkit_tool
