#!/usr/bin/env bash
# Builds the library and the thread-safety test alone with ThreadSanitizer
# and runs that test.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake -S . -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DMTKIT_SANITIZE=thread \
      -DMTKIT_BUILD_BENCHMARKS=OFF -DMTKIT_BUILD_TOOLS=OFF -DMTKIT_BUILD_PYTHON=OFF >/dev/null
cmake --build build-tsan -j"$(nproc)" --target mtkit_tsan_tests
TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 \
  ctest --test-dir build-tsan --output-on-failure -R '^tsan\.'
