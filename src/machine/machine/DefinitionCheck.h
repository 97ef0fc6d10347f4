#pragma once
// What makes a kinematics unusable for a moving machine.
//
// The readers accept what their formats allow, and some of it cannot be
// moved: a zero "direction" has no unit vector (the model holds NaN), a
// number too large for a double arrives as infinity, a limited rotary axis
// may stop at a minimum above its maximum, and a tree without a head or a
// table has no tool or work side. Such a definition still reads and writes
// back as the formats define; this check names the problems so that a tool
// or a host can refuse it before forward kinematics turns them into NaN.
//
// A definition that passes the check gives finite forward kinematics with
// every axis at any position within kMaximumMagnitude (1e9 mm or degrees):
// every length, position and limit in it is finite and within that bound,
// far beyond any machine and far below where sums of them could overflow.
//
// A linear axis's minimum above its maximum cannot be seen here: the
// definition turns such a pair into the infinite range when it is built.

#include <optional>
#include <string>
#include <vector>

#include "machine/machine/KinematicsDefinition.h"
#include "nc/MachinePartId.h"

namespace machine {

class DefinitionCheck {
public:
  static constexpr double kMaximumMagnitude = 1e9;

  enum class Kind {
    /// A zero or non-finite axis direction: the model holds NaN for it.
    DIRECTION,
    /// An infinite or NaN number, which no file format can write back.
    NOT_FINITE,
    /// A finite number beyond kMaximumMagnitude.
    OUT_OF_REACH,
    /// A limited rotary axis whose minimum is above its maximum.
    REVERSED_RANGE,
    NO_HEAD,
    NO_TABLE,
  };

  struct Problem {
    Kind kind = Kind::DIRECTION;
    /// The part concerned; none for a problem of the whole tree.
    std::optional<Orvo::MachinePartId> part;
    /// An English sentence, with the part's id in front when there is one,
    /// such as: part "B": the axis direction is zero or not a finite vector
    std::string message;
  };

  /// Every problem, parts in tree order (depth first), the tree's own last.
  static std::vector<Problem> check(KinematicsDefinition const& kinematics);
  static bool isUsable(KinematicsDefinition const& kinematics) { return check(kinematics).empty(); }
};

}  // namespace machine
