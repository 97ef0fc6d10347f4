#!/usr/bin/env bash
# Sets up, builds the tool and runs the main job on a bundled example.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DMTKIT_BUILD_TESTS=OFF -DMTKIT_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build build --target mtkit_tool -j"$(nproc)"
./build/tools/mtkit version
./build/tools/mtkit check examples/machines/trunnion_5axis.json
./build/tools/mtkit show examples/machines/trunnion_5axis.json
