#!/usr/bin/env bash
# Builds the library and tests with AddressSanitizer and
# UndefinedBehaviorSanitizer and runs the tests.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DMTKIT_SANITIZE=address,undefined \
      -DMTKIT_BUILD_BENCHMARKS=OFF -DMTKIT_BUILD_TOOLS=ON -DMTKIT_BUILD_PYTHON=OFF >/dev/null
cmake --build build-asan -j"$(nproc)"
# The install of the package runs too, as the command-line tests use the
# installed tool; the consumer programs that compile against the install are
# left out, as they would need the sanitizer flags of this build.
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ctest --test-dir build-asan --output-on-failure -j"$(nproc)" -E '^install\.(consumer|readme_example|umbrella_header)$'
