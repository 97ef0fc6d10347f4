// Rigid-transform work of forward kinematics, mtkit against Eigen's
// Isometry3d doing the same work on the same data, in one run.
//
// Ratios are read pairwise: BM_Mtkit_X / BM_Eigen_X.

#include <benchmark/benchmark.h>

#include <Eigen/Geometry>
#include <cmath>
#include <random>
#include <vector>

#include "machine/machine/InfiniteRotaryAxisDefinition.h"
#include "util/utility/math/Transform3D.h"

namespace {

constexpr int kCount = 1024;  // working set fits in L1/L2 for both

struct Data {
  std::vector<Orvo::Transform3D> mt;
  std::vector<Eigen::Isometry3d> eg;
  std::vector<Orvo::Point3D> mp;
  std::vector<Eigen::Vector3d> ep;
  std::vector<double> angles;
  Data() {
    std::mt19937 rng(42);
    std::uniform_real_distribution<double> u(-1, 1);
    for (int i = 0; i < kCount; ++i) {
      Eigen::Vector3d axis(u(rng), u(rng), u(rng));
      axis.normalize();
      double const angle = 3 * u(rng);
      Eigen::Vector3d const t(100 * u(rng), 100 * u(rng), 100 * u(rng));
      Eigen::Isometry3d iso = Eigen::Isometry3d::Identity();
      iso.linear() = Eigen::AngleAxisd(angle, axis).toRotationMatrix();
      iso.translation() = t;
      eg.push_back(iso);
      Orvo::Matrix3x3 r;
      for (int row = 0; row < 3; ++row)
        for (int col = 0; col < 3; ++col) r(row, col) = iso.linear()(row, col);
      mt.emplace_back(r, Orvo::Vector3D(t.x(), t.y(), t.z()));
      Eigen::Vector3d const p(100 * u(rng), 100 * u(rng), 100 * u(rng));
      ep.push_back(p);
      mp.emplace_back(p.x(), p.y(), p.z());
      angles.push_back(360 * u(rng));
    }
  }
};

Data const& data() {
  static Data const d;
  return d;
}

void BM_Mtkit_Compose(benchmark::State& state) {
  auto const& d = data();
  int i = 0;
  for (auto _ : state) {
    Orvo::Transform3D const c = Orvo::compose(d.mt[i], d.mt[(i + 1) & (kCount - 1)]);
    benchmark::DoNotOptimize(c);
    i = (i + 1) & (kCount - 1);
  }
}
BENCHMARK(BM_Mtkit_Compose);

void BM_Eigen_Compose(benchmark::State& state) {
  auto const& d = data();
  int i = 0;
  for (auto _ : state) {
    Eigen::Isometry3d const c = d.eg[i] * d.eg[(i + 1) & (kCount - 1)];
    benchmark::DoNotOptimize(c);
    i = (i + 1) & (kCount - 1);
  }
}
BENCHMARK(BM_Eigen_Compose);

// A chain of 8 compositions, as along a kinematic chain.
void BM_Mtkit_ComposeChain8(benchmark::State& state) {
  auto const& d = data();
  int i = 0;
  for (auto _ : state) {
    Orvo::Transform3D c = d.mt[i];
    for (int k = 1; k < 8; ++k) c = Orvo::compose(c, d.mt[(i + k) & (kCount - 1)]);
    benchmark::DoNotOptimize(c);
    i = (i + 8) & (kCount - 1);
  }
}
BENCHMARK(BM_Mtkit_ComposeChain8);

void BM_Eigen_ComposeChain8(benchmark::State& state) {
  auto const& d = data();
  int i = 0;
  for (auto _ : state) {
    Eigen::Isometry3d c = d.eg[i];
    for (int k = 1; k < 8; ++k) c = c * d.eg[(i + k) & (kCount - 1)];
    benchmark::DoNotOptimize(c);
    i = (i + 8) & (kCount - 1);
  }
}
BENCHMARK(BM_Eigen_ComposeChain8);

void BM_Mtkit_ApplyPoint(benchmark::State& state) {
  auto const& d = data();
  int i = 0;
  for (auto _ : state) {
    Orvo::Point3D const p = d.mt[i](d.mp[i]);
    benchmark::DoNotOptimize(p);
    i = (i + 1) & (kCount - 1);
  }
}
BENCHMARK(BM_Mtkit_ApplyPoint);

void BM_Eigen_ApplyPoint(benchmark::State& state) {
  auto const& d = data();
  int i = 0;
  for (auto _ : state) {
    Eigen::Vector3d const p = d.eg[i] * d.ep[i];
    benchmark::DoNotOptimize(p);
    i = (i + 1) & (kCount - 1);
  }
}
BENCHMARK(BM_Eigen_ApplyPoint);

// The transformation of a rotary axis at a position: degrees to radians,
// sine and cosine, rotation about a line through a point.
void BM_Mtkit_RotaryAxisTransformation(benchmark::State& state) {
  auto const& d = data();
  machine::InfiniteRotaryAxisDefinition const axis(machine::ControlType::DRIVEN, 0.0, 0.0, Orvo::AxisName("C"),
                                                   std::nullopt, Orvo::Point3D(10, 20, 30),
                                                   Orvo::Vector3D(0.6, 0, 0.8));
  int i = 0;
  for (auto _ : state) {
    Orvo::Transform3D const t = axis.transformation(d.angles[i]);
    benchmark::DoNotOptimize(t);
    i = (i + 1) & (kCount - 1);
  }
}
BENCHMARK(BM_Mtkit_RotaryAxisTransformation);

void BM_Eigen_RotaryAxisTransformation(benchmark::State& state) {
  auto const& d = data();
  Eigen::Vector3d const point(10, 20, 30);
  Eigen::Vector3d const direction(0.6, 0, 0.8);
  int i = 0;
  for (auto _ : state) {
    double const radians = d.angles[i] * 0.017453292519943295;
    Eigen::Isometry3d t = Eigen::Isometry3d::Identity();
    t.linear() = Eigen::AngleAxisd(radians, direction).toRotationMatrix();
    t.translation() = point - t.linear() * point;
    benchmark::DoNotOptimize(t);
    i = (i + 1) & (kCount - 1);
  }
}
BENCHMARK(BM_Eigen_RotaryAxisTransformation);

}  // namespace

BENCHMARK_MAIN();
