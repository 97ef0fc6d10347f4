#pragma once
// How the build platform is shown and placed from meshes: the
// "platform_mesh" group of the "platform" feature.

#include <json/value.h>

#include <string>

namespace machine {

struct AdditivePlatformMeshOptions {
  bool positioning = false;
  bool scaling = false;
  std::string mesh;
  std::string model;
  std::string noBuildZoneMesh;
  std::string noBuildZoneModel;

  /// Reads a group; a missing key keeps its default. The flags read like
  /// every boolean of a machine file (a non-zero integer is true); throws
  /// std::runtime_error on a value of the wrong kind.
  static AdditivePlatformMeshOptions fromJson(Json::Value const& data);
  /// All six keys, defaults included.
  Json::Value toJson() const;

  friend bool operator==(AdditivePlatformMeshOptions const& a, AdditivePlatformMeshOptions const& b);
  friend bool operator!=(AdditivePlatformMeshOptions const& a, AdditivePlatformMeshOptions const& b) {
    return !(a == b);
  }
};

}  // namespace machine
