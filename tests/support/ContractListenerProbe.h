#pragma once
// Tests that exist only in a child run of the test program, for the tests of
// ContractListener to watch what the program prints and returns.

namespace mtkit_test {

/// The option that registers the probe tests, all in the suite
/// "ContractListenerProbe".
inline constexpr char const* probeOption = "--mtkit-contract-probe";

/// Source path and lines of the two assertions that
/// "ContractListenerProbe.LeavesTwoUncollected" fails and leaves.
inline constexpr char const* probeSourcePath = "tests\\ContractListenerProbe";
extern unsigned int const probeFirstLine;
extern unsigned int const probeSecondLine;

void registerProbeTests();

}  // namespace mtkit_test
