#pragma once
// The text of the Orvo::ScriptException that a call throws, for tests of
// script-facing classes.

#include <string>

#include "util/utility/ScriptException.h"

namespace mtkit_test {

/// The message of the ScriptException `f` throws; empty if it throws none.
/// Any other exception passes through.
template <typename F>
std::wstring scriptFailure(F&& f) {
  try {
    f();
  } catch (Orvo::ScriptException const& e) {
    return e.getMessage();
  }
  return std::wstring();
}

}  // namespace mtkit_test
