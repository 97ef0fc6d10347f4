#pragma once
// What the linear solvers keep between solves at one pose of the other axes.

#include "nc/AxisValues.h"
#include "util/utility/math/Matrix3x3.h"
#include "util/utility/math/Point3D.h"

namespace machine {

struct LinearSolveCache {
  /// Takes a tip displacement to linear axis values (the two-axis solver's
  /// third row gives the distance along the plane normal).
  Orvo::Matrix3x3 inverseAxisMatrix;
  /// The tool tip with the solved linear axes at 0.
  Orvo::Point3D tipAtLinearZero;
  /// Every axis position the cache was made for, the solved axes set to 0.
  Orvo::AxisValues axisValuesKey;
};

}  // namespace machine
