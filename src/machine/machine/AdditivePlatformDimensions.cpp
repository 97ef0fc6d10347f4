#include "machine/machine/AdditivePlatformDimensions.h"

#include <stdexcept>

#include "util/utility/JsonUtils.h"

namespace machine {

namespace {

using Orvo::JsonUtils;

Json::Value threeDoubles(Json::Value const& value) {
  if (!JsonUtils::isThreeDoubles(value)) throw std::runtime_error("Expected a 3D vector.");
  return value;
}

Json::Value writeThree(double x, double y, double z) {
  Json::Value array(Json::arrayValue);
  array.append(x);
  array.append(y);
  array.append(z);
  return array;
}

}  // namespace

AdditivePlatformDimensions AdditivePlatformDimensions::fromJson(Json::Value const& data) {
  AdditivePlatformDimensions d;
  if (data.isMember("size")) {
    Json::Value const v = threeDoubles(data["size"]);
    d.size = Orvo::Vector3D(v[0].asDouble(), v[1].asDouble(), v[2].asDouble());
  }
  if (data.isMember("origin")) {
    Json::Value const v = threeDoubles(data["origin"]);
    d.origin = Orvo::Point3D(v[0].asDouble(), v[1].asDouble(), v[2].asDouble());
  }
  if (data.isMember("clearance")) d.clearance = JsonUtils::parseDbl(data["clearance"]);
  if (data.isMember("frame_width")) d.frameWidth = JsonUtils::parseDbl(data["frame_width"]);
  if (data.isMember("ceiling_clearance")) d.ceilingClearance = JsonUtils::parseDbl(data["ceiling_clearance"]);
  if (data.isMember("corner_radius")) d.cornerRadius = JsonUtils::parseDbl(data["corner_radius"]);
  return d;
}

Json::Value AdditivePlatformDimensions::toJson() const {
  Json::Value data(Json::objectValue);
  data["size"] = writeThree(size.x, size.y, size.z);
  data["origin"] = writeThree(origin.x, origin.y, origin.z);
  data["clearance"] = clearance;
  data["frame_width"] = frameWidth;
  data["ceiling_clearance"] = ceilingClearance;
  data["corner_radius"] = cornerRadius;
  return data;
}

bool operator==(AdditivePlatformDimensions const& a, AdditivePlatformDimensions const& b) noexcept {
  return a.size.x == b.size.x && a.size.y == b.size.y && a.size.z == b.size.z && a.origin == b.origin &&
         a.clearance == b.clearance && a.frameWidth == b.frameWidth && a.ceilingClearance == b.ceilingClearance &&
         a.cornerRadius == b.cornerRadius;
}

}  // namespace machine
