#pragma once
#include <gtest/gtest.h>

#include "util/utility/math/Point3D.h"
#include "util/utility/math/Vector3D.h"

namespace mtkit_test {
inline void expectNear(Orvo::Point3D const& a, Orvo::Point3D const& b, double tol = 1e-12) {
  EXPECT_NEAR(a.x, b.x, tol);
  EXPECT_NEAR(a.y, b.y, tol);
  EXPECT_NEAR(a.z, b.z, tol);
}
inline void expectNear(Orvo::Vector3D const& a, Orvo::Vector3D const& b, double tol = 1e-12) {
  EXPECT_NEAR(a.x, b.x, tol);
  EXPECT_NEAR(a.y, b.y, tol);
  EXPECT_NEAR(a.z, b.z, tol);
}
}  // namespace mtkit_test
