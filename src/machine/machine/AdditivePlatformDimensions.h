#pragma once
// The size and placement of a build platform, the "dimensions" group of the
// "platform" feature.

#include <json/value.h>

#include "util/utility/math/Point3D.h"
#include "util/utility/math/Vector3D.h"

namespace machine {

struct AdditivePlatformDimensions {
  Orvo::Vector3D size{0.0, 0.0, 0.0};
  Orvo::Point3D origin{0.0, 0.0, 0.0};
  double clearance = 0.0;
  double frameWidth = 5.0;
  double ceilingClearance = 5.0;
  double cornerRadius = 0.0;

  /// Reads a group; a missing key keeps its default. Throws
  /// std::runtime_error on a value of the wrong kind, "Expected a 3D vector."
  /// for a size or origin that isn't three numbers.
  static AdditivePlatformDimensions fromJson(Json::Value const& data);
  /// All six keys, defaults included.
  Json::Value toJson() const;

  friend bool operator==(AdditivePlatformDimensions const& a, AdditivePlatformDimensions const& b) noexcept;
  friend bool operator!=(AdditivePlatformDimensions const& a, AdditivePlatformDimensions const& b) noexcept {
    return !(a == b);
  }
};

}  // namespace machine
