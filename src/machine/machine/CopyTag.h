#pragma once

namespace machine {

/// Selects a deep copy of a tree, machine or feature. Plain copy construction
/// is not offered, so every deep copy is written out.
struct CopyTag {};

/// Selects a copy of one node without its children.
struct CopyWithoutChildrenTag {};

}  // namespace machine
