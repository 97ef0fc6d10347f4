#include "machine/machine/LinearPlusSolver.h"

namespace machine {

LinearPlusSolver::LinearPlusSolver(Machine const& machine) : MachineSolver(machine) {}

LinearPlusSolver::~LinearPlusSolver() = default;

// The cache depends on the ordering and the tool reference frame.
void LinearPlusSolver::doOnAxisOrderingChanged() {
  if (m_solveCache) m_solveCache.reset();
}

void LinearPlusSolver::doOnToolReferenceFrameChanged() {
  if (m_solveCache) m_solveCache.reset();
}

void LinearPlusSolver::rebuildSolveCache(int count) {
  LinearSolveCache& cache = m_solveCache ? *m_solveCache : m_solveCache.emplace();
  // The key: every position, the solved axes at 0.
  readAxisValues(cache.axisValuesKey);
  for (int i = 0; i < count; ++i) cache.axisValuesKey.setValue(i, Orvo::AxisValue(0.0));
  // The other axes already stand at the key, so moving the solved ones is
  // the whole of moveTo(key), here and in each trial step.
  for (int i = 0; i < count; ++i) moveOrderedPart(i, Orvo::AxisValue(0.0));
  cache.tipAtLinearZero = toolTipPoint();
  // One unit step on each axis in turn, the others at 0: each column is the
  // tip's motion per millimetre of that axis.
  Orvo::Vector3D columns[3];
  for (int i = 0; i < count; ++i) {
    moveOrderedPart(i, Orvo::AxisValue(1.0));
    columns[i] = toolTipPoint() - cache.tipAtLinearZero;
    moveOrderedPart(i, Orvo::AxisValue(0.0));
  }
  if (count == 2) {
    // The third column is the unit normal of the reachable plane, so the
    // third coordinate of a solve is the signed distance to that plane. A
    // near-zero normal (parallel axes) is left as it is: the matrix is then
    // singular and the solve fails. The tolerance is the square root of the
    // double-precision epsilon.
    Orvo::Vector3D n = Orvo::Vector3D::cross(columns[0], columns[1]);
    if (!n.isZero(1.4901161193847656e-08)) n.normalize();
    columns[2] = n;
  }
  cache.inverseAxisMatrix = Orvo::Matrix3x3(columns[0], columns[1], columns[2]).getInverse();
}

}  // namespace machine
