#pragma once

namespace machine {

/// What a part of the machine tree is. ROOT is the hidden root of a tree and
/// is never written to a file.
enum class PartType : int {
  ROOT = 0,
  LINEAR = 1,
  ROTARY = 2,
  STATIC = 3,
  HEAD = 4,
  TABLE = 5,
};

}  // namespace machine
