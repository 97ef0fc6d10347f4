#!/usr/bin/env bash
# Sets up, builds the tool and runs the main job on a bundled example: a
# recorded 5-axis stream replayed through the trunnion machine's solver.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
# A folder of its own, configured without tests: a later `cmake -B build` and
# `ctest --test-dir build`, as the README has them, find the tests there.
cmake -S . -B build-main -G Ninja -DCMAKE_BUILD_TYPE=Release -DMTKIT_BUILD_TESTS=OFF -DMTKIT_BUILD_BENCHMARKS=OFF -DMTKIT_BUILD_PYTHON=OFF >/dev/null
cmake --build build-main --target mtkit_tool -j"$(nproc)"
./build-main/tools/mtkit version
./build-main/tools/mtkit check examples/machines/trunnion_5axis.json
# The main job: a recorded 5-axis post-processor stream replayed through the
# machine's solver, with its summary and first poses. The stream carries real
# axis values, which the standard chain lets overtake the moves its
# compensator holds, so its poses would lag their values: the solver alone
# gives each move its own pose.
./build-main/tools/mtkit simulate examples/machines/trunnion_5axis.json examples/streams/trunnion_5axis_swarf.txt --solver-only
