#include "machine/machine/AdditivePlatformMeshOptions.h"

#include "util/utility/JsonUtils.h"

namespace machine {

AdditivePlatformMeshOptions AdditivePlatformMeshOptions::fromJson(Json::Value const& data) {
  using Orvo::JsonUtils;
  AdditivePlatformMeshOptions o;
  if (data.isMember("positioning")) o.positioning = JsonUtils::parseBool(data["positioning"]) != 0;
  if (data.isMember("scaling")) o.scaling = JsonUtils::parseBool(data["scaling"]) != 0;
  if (data.isMember("mesh")) o.mesh = JsonUtils::parseStr(data["mesh"]);
  if (data.isMember("model")) o.model = JsonUtils::parseStr(data["model"]);
  if (data.isMember("no_build_zone_mesh")) o.noBuildZoneMesh = JsonUtils::parseStr(data["no_build_zone_mesh"]);
  if (data.isMember("no_build_zone_model")) o.noBuildZoneModel = JsonUtils::parseStr(data["no_build_zone_model"]);
  return o;
}

Json::Value AdditivePlatformMeshOptions::toJson() const {
  Json::Value data(Json::objectValue);
  data["positioning"] = positioning;
  data["scaling"] = scaling;
  data["mesh"] = mesh;
  data["model"] = model;
  data["no_build_zone_mesh"] = noBuildZoneMesh;
  data["no_build_zone_model"] = noBuildZoneModel;
  return data;
}

bool operator==(AdditivePlatformMeshOptions const& a, AdditivePlatformMeshOptions const& b) {
  return a.positioning == b.positioning && a.scaling == b.scaling && a.mesh == b.mesh && a.model == b.model &&
         a.noBuildZoneMesh == b.noBuildZoneMesh && a.noBuildZoneModel == b.noBuildZoneModel;
}

}  // namespace machine
