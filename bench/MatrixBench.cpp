// The script-facing rotation algebra next to Eigen, on the same inputs:
// an axis rotation, an Euler rotation built from three angles, and the
// decomposition of a rotation into Euler angles. Each mtkit benchmark is
// registered directly before its Eigen counterpart.

#include <benchmark/benchmark.h>

#include <Eigen/Geometry>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <random>
#include <vector>

#include "machine/machine/PostMachineConfig/Matrix.h"

using com::vantora::Matrix;
using com::vantora::Vector;

namespace {

constexpr std::size_t kInputs = 1024;  // a power of two, cycled through

struct Inputs {
  std::vector<Vector> axes;
  std::vector<Eigen::Vector3d> eigenAxes;
  std::vector<double> angles;
  std::vector<Vector> triples;
  std::vector<Matrix> rotations;
  std::vector<Eigen::Matrix3d> eigenRotations;

  Inputs() {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> unit(-1, 1);
    std::uniform_real_distribution<double> angle(-3, 3);
    for (std::size_t n = 0; n < kInputs; ++n) {
      Vector axis(unit(random), unit(random), unit(random) + 2);
      axis.normalize();
      axes.push_back(axis);
      eigenAxes.emplace_back(axis.x, axis.y, axis.z);
      angles.push_back(angle(random));
      Vector const triple(angle(random), angle(random) / 2, angle(random));
      triples.push_back(triple);
      Matrix const m = Matrix::getEulerRotation(Matrix::EULER_XYZ_S, triple);
      rotations.push_back(m);
      Eigen::Matrix3d e;
      for (unsigned int r = 0; r < 3; ++r)
        for (unsigned int c = 0; c < 3; ++c) e(r, c) = m[r][c];
      eigenRotations.push_back(e);
    }
  }
};

Inputs const& inputs() {
  static Inputs const in;
  return in;
}

// Axis rotation.

void BM_AxisRotation_mtkit(benchmark::State& state) {
  Inputs const& in = inputs();
  std::size_t n = 0;
  for (auto _ : state) {
    Matrix m = Matrix::getAxisRotation(in.axes[n], in.angles[n]);
    benchmark::DoNotOptimize(m);
    n = (n + 1) & (kInputs - 1);
  }
}
BENCHMARK(BM_AxisRotation_mtkit);

void BM_AxisRotation_Eigen(benchmark::State& state) {
  Inputs const& in = inputs();
  std::size_t n = 0;
  for (auto _ : state) {
    Eigen::Matrix3d m = Eigen::AngleAxisd(in.angles[n], in.eigenAxes[n]).toRotationMatrix();
    benchmark::DoNotOptimize(m);
    n = (n + 1) & (kInputs - 1);
  }
}
BENCHMARK(BM_AxisRotation_Eigen);

// Euler rotation: X first, then Y, then Z, about static axes.

void BM_EulerRotationXYZ_mtkit(benchmark::State& state) {
  Inputs const& in = inputs();
  std::size_t n = 0;
  for (auto _ : state) {
    Matrix m = Matrix::getEulerRotation(Matrix::EULER_XYZ_S, in.triples[n]);
    benchmark::DoNotOptimize(m);
    n = (n + 1) & (kInputs - 1);
  }
}
BENCHMARK(BM_EulerRotationXYZ_mtkit);

void BM_EulerRotationXYZ_Eigen(benchmark::State& state) {
  Inputs const& in = inputs();
  std::size_t n = 0;
  for (auto _ : state) {
    Vector const& v = in.triples[n];
    Eigen::Matrix3d m = (Eigen::AngleAxisd(v.z, Eigen::Vector3d::UnitZ()) *
                         Eigen::AngleAxisd(v.y, Eigen::Vector3d::UnitY()) *
                         Eigen::AngleAxisd(v.x, Eigen::Vector3d::UnitX()))
                            .toRotationMatrix();
    benchmark::DoNotOptimize(m);
    n = (n + 1) & (kInputs - 1);
  }
}
BENCHMARK(BM_EulerRotationXYZ_Eigen);

// Euler rotation with a repeated axis: Z, then the carried X, then the carried Z.

void BM_EulerRotationZXZ_mtkit(benchmark::State& state) {
  Inputs const& in = inputs();
  std::size_t n = 0;
  for (auto _ : state) {
    Matrix m = Matrix::getEulerRotation(Matrix::EULER_ZXZ_R, in.triples[n]);
    benchmark::DoNotOptimize(m);
    n = (n + 1) & (kInputs - 1);
  }
}
BENCHMARK(BM_EulerRotationZXZ_mtkit);

void BM_EulerRotationZXZ_Eigen(benchmark::State& state) {
  Inputs const& in = inputs();
  std::size_t n = 0;
  for (auto _ : state) {
    Vector const& v = in.triples[n];
    Eigen::Matrix3d m = (Eigen::AngleAxisd(v.x, Eigen::Vector3d::UnitZ()) *
                         Eigen::AngleAxisd(v.y, Eigen::Vector3d::UnitX()) *
                         Eigen::AngleAxisd(v.z, Eigen::Vector3d::UnitZ()))
                            .toRotationMatrix();
    benchmark::DoNotOptimize(m);
    n = (n + 1) & (kInputs - 1);
  }
}
BENCHMARK(BM_EulerRotationZXZ_Eigen);

// Decomposition into angles about X, then the carried Y, then the carried Z
// (Eigen's eulerAngles(0, 1, 2)).

void BM_GetEuler2XYZ_mtkit(benchmark::State& state) {
  Inputs const& in = inputs();
  std::size_t n = 0;
  for (auto _ : state) {
    Vector v = in.rotations[n].getEuler2(Matrix::EULER_XYZ_R);
    benchmark::DoNotOptimize(v);
    n = (n + 1) & (kInputs - 1);
  }
}
BENCHMARK(BM_GetEuler2XYZ_mtkit);

void BM_GetEuler2XYZ_Eigen(benchmark::State& state) {
  Inputs const& in = inputs();
  std::size_t n = 0;
  for (auto _ : state) {
    Eigen::Vector3d v = in.eigenRotations[n].eulerAngles(0, 1, 2);
    benchmark::DoNotOptimize(v);
    n = (n + 1) & (kInputs - 1);
  }
}
BENCHMARK(BM_GetEuler2XYZ_Eigen);

// Decomposition with a repeated axis (Eigen's eulerAngles(2, 0, 2)).

void BM_GetEuler2ZXZ_mtkit(benchmark::State& state) {
  Inputs const& in = inputs();
  std::size_t n = 0;
  for (auto _ : state) {
    Vector v = in.rotations[n].getEuler2(Matrix::EULER_ZXZ_R);
    benchmark::DoNotOptimize(v);
    n = (n + 1) & (kInputs - 1);
  }
}
BENCHMARK(BM_GetEuler2ZXZ_mtkit);

void BM_GetEuler2ZXZ_Eigen(benchmark::State& state) {
  Inputs const& in = inputs();
  std::size_t n = 0;
  for (auto _ : state) {
    Eigen::Vector3d v = in.eigenRotations[n].eulerAngles(2, 0, 2);
    benchmark::DoNotOptimize(v);
    n = (n + 1) & (kInputs - 1);
  }
}
BENCHMARK(BM_GetEuler2ZXZ_Eigen);

bool same(Matrix const& a, Eigen::Matrix3d const& b) {
  for (unsigned int r = 0; r < 3; ++r)
    for (unsigned int c = 0; c < 3; ++c)
      if (!(std::fabs(a[r][c] - b(r, c)) <= 1e-12)) return false;
  return true;
}

/// The pairs must compute the same thing for their times to compare.
bool pairsAgree() {
  Inputs const& in = inputs();
  using Eigen::AngleAxisd;
  using Eigen::Vector3d;
  for (std::size_t n = 0; n < kInputs; ++n) {
    Vector const& v = in.triples[n];
    if (!same(Matrix::getAxisRotation(in.axes[n], in.angles[n]),
              AngleAxisd(in.angles[n], in.eigenAxes[n]).toRotationMatrix()))
      return false;
    if (!same(Matrix::getEulerRotation(Matrix::EULER_XYZ_S, v),
              (AngleAxisd(v.z, Vector3d::UnitZ()) * AngleAxisd(v.y, Vector3d::UnitY()) *
               AngleAxisd(v.x, Vector3d::UnitX()))
                  .toRotationMatrix()))
      return false;
    if (!same(Matrix::getEulerRotation(Matrix::EULER_ZXZ_R, v),
              (AngleAxisd(v.x, Vector3d::UnitZ()) * AngleAxisd(v.y, Vector3d::UnitX()) *
               AngleAxisd(v.z, Vector3d::UnitZ()))
                  .toRotationMatrix()))
      return false;
    // The two decompositions may pick different but equivalent angles: each
    // must rebuild the matrix it came from.
    Matrix const& m = in.rotations[n];
    Vector3d const e1 = in.eigenRotations[n].eulerAngles(0, 1, 2);
    Vector3d const e2 = in.eigenRotations[n].eulerAngles(2, 0, 2);
    Eigen::Matrix3d const r1 =
        (AngleAxisd(e1[0], Vector3d::UnitX()) * AngleAxisd(e1[1], Vector3d::UnitY()) *
         AngleAxisd(e1[2], Vector3d::UnitZ())).toRotationMatrix();
    Eigen::Matrix3d const r2 =
        (AngleAxisd(e2[0], Vector3d::UnitZ()) * AngleAxisd(e2[1], Vector3d::UnitX()) *
         AngleAxisd(e2[2], Vector3d::UnitZ())).toRotationMatrix();
    if (!same(Matrix::getEulerRotation(Matrix::EULER_XYZ_R, m.getEuler2(Matrix::EULER_XYZ_R)), r1)) return false;
    if (!same(Matrix::getEulerRotation(Matrix::EULER_ZXZ_R, m.getEuler2(Matrix::EULER_ZXZ_R)), r2)) return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (!pairsAgree()) {
    std::fprintf(stderr, "mtkit and Eigen disagree on the benchmark inputs\n");
    return 1;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
