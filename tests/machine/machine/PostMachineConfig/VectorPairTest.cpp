#include "machine/machine/PostMachineConfig/VectorPair.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

using com::vantora::Vector;
using com::vantora::VectorPair;

TEST(VectorPair, DefaultHoldsTwoZeroVectors) {
  VectorPair const p;
  EXPECT_EQ(0, p.first.getX());
  EXPECT_EQ(0, p.first.getY());
  EXPECT_EQ(0, p.first.getZ());
  EXPECT_EQ(0, p.second.getX());
  EXPECT_EQ(0, p.second.getY());
  EXPECT_EQ(0, p.second.getZ());
}

TEST(VectorPair, HoldsTheTwoVectorsGiven) {
  VectorPair p(Vector(1, 2, 3), Vector(4, 5, 6));
  EXPECT_EQ(1, p.first.getX());
  EXPECT_EQ(3, p.first.getZ());
  EXPECT_EQ(4, p.second.getX());
  EXPECT_EQ(6, p.second.getZ());
  VectorPair q;
  q = p;
  p.first.setX(9);
  EXPECT_EQ(1, q.first.getX());
  EXPECT_EQ(5, q.second.getY());
}

TEST(VectorPair, IsAScriptObject) {
  static_assert(std::is_base_of<Orvo::ScriptObject, VectorPair>::value, "a script object");
  VectorPair const p;
  Orvo::ScriptObject const& o = p;
  EXPECT_STREQ("ScriptObject", o.getBaseClass());
}

}  // namespace
