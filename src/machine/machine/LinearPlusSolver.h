#pragma once
// What the two linear solvers share: finding the positions of the first two
// or three axes of the ordering, which must be linear, that bring the tool
// tip to a point, the other axes held where they stand. With those held, the
// tip is an affine function of the linear axes: it is measured with forward
// kinematics and inverted as a 3x3 matrix, with no closed form for any
// machine and no iteration.
//
// The matrix is cached for one pose of the other axes; a tool path holds long
// runs at one rotary pose, and a cached solve is one matrix product and a
// move of the solved axes.

#include <cmath>
#include <optional>

#include "machine/machine/LinearSolveCache.h"
#include "machine/machine/MachineSolver.h"
#include "util/utility/math/Matrix3x3.h"
#include "util/utility/math/Point3D.h"
#include "util/utility/math/Vector3D.h"

namespace machine {

class LinearPlusSolver : public MachineSolver {
public:
  ~LinearPlusSolver() override;

protected:
  /// A copy of `machine`, ordering and positions included, with no cache.
  explicit LinearPlusSolver(Machine const& machine);

  /// Solves the first `Count` axes, 2 or 3, for `target` and moves them
  /// there, also when the solve fails. With 3 the tip reaches the target and
  /// the result is 0; with 2 the third row of the matrix measures along the
  /// unit normal of the reachable plane, and the result is the distance to
  /// it. Empty when the solved values are not finite (axes not independent
  /// at this pose) or there are fewer than `Count` ordered parts.
  ///
  /// Inline, so that a cached solve, which is the common one, costs the
  /// caller one virtual call and no more.
  template <int Count>
  std::optional<Distance> solveLinearAxes(Orvo::Point3D const& target) {
    static_assert(Count == 2 || Count == 3, "two or three linear axes");
    // The key holds 0 for the solved axes, which are left out of the test: a
    // solve doesn't depend on where they stood. A key is only made for an
    // ordering of at least `Count` parts, and has its size.
    if (!m_solveCache || !orderedPartsStandAt(m_solveCache->axisValuesKey, Count)) {
      // Past a failed assertion there may be fewer values than axes to solve.
      if (numOrderedParts() < Count) return std::nullopt;
      rebuildSolveCache(Count);
    }

    LinearSolveCache const& cache = *m_solveCache;
    Orvo::Vector3D const d = target - cache.tipAtLinearZero;
    Orvo::Matrix3x3 const& m = cache.inverseAxisMatrix;
    double const a = Orvo::Vector3D::dot(m.row(0), d);
    double const b = Orvo::Vector3D::dot(m.row(1), d);
    double const c = Orvo::Vector3D::dot(m.row(2), d);
    // The move comes before the test: a failed solve leaves the machine at
    // the non-finite values, and the caller must move it before using it.
    moveOrderedPart(0, a);
    moveOrderedPart(1, b);
    if (Count == 3) moveOrderedPart(2, c);
    // The two-axis solve doesn't look at c here: it is the distance left.
    bool const solved = std::isfinite(a) && std::isfinite(b) && (Count == 2 || std::isfinite(c));
    if (!solved) return std::nullopt;
    return Distance(Count == 3 ? 0.0 : std::fabs(c));
  }

private:
  void doOnAxisOrderingChanged() final;
  void doOnToolReferenceFrameChanged() final;

  /// Measures the matrix at the present pose of the other axes, passing the
  /// machine through the trial positions of the first `count` axes.
  void rebuildSolveCache(int count);

  std::optional<LinearSolveCache> m_solveCache;
};

}  // namespace machine
