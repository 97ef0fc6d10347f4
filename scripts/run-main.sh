#!/usr/bin/env bash
# Sets up, builds the tool and runs the main job on a bundled example: a
# recorded 5-axis stream replayed through the standard post chain onto the
# trunnion machine.
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
# standard post chain (checks, cutter compensation, the machine's solver)
# and the travel check, with its summary and first poses.
./build-main/tools/mtkit simulate examples/machines/trunnion_5axis.json examples/streams/trunnion_5axis_swarf.txt
