#pragma once
// Small helpers for tests that work with JSON text.

#include <json/reader.h>
#include <json/value.h>

#include <sstream>
#include <stdexcept>
#include <string>

namespace mtkit_test {

/// Parses `text`; throws std::invalid_argument when it isn't JSON.
inline Json::Value parseJson(std::string const& text) {
  Json::Value value;
  std::istringstream in(text);
  std::string errors;
  if (!Json::parseFromStream(Json::CharReaderBuilder(), in, &value, &errors)) throw std::invalid_argument(errors);
  return value;
}

}  // namespace mtkit_test
