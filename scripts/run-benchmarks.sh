#!/usr/bin/env bash
# Builds the benchmark programs in Release and runs them, keeping each run as
# a JSON record in docs/bench/<Program>.json (every repetition and the
# aggregates), then rewrites the tables of docs/PERFORMANCE.md from the
# records with scripts/bench-tables.py.
#
#   scripts/run-benchmarks.sh [FILTER]
#
# FILTER is an extended regular expression matched, without regard to case,
# against the program names (the bench/*Bench.cpp file names, such as
# KinematicsBench); without it every program runs. A program's record is
# replaced whole, so that every figure in it comes from one run.
#
# Settings from the environment:
#   MTKIT_BENCH_BUILD_DIR     build directory (build-bench)
#   MTKIT_BENCH_REPETITIONS   repetitions of each benchmark (10)
#   MTKIT_BENCH_MIN_TIME      minimum seconds of one repetition (0.5)
#   MTKIT_BENCH_JOBS          parallel build jobs (2)
#   MTKIT_BENCH_SETTLE        longest wait, in seconds, for the load to
#                             settle before each program (240)
#
# Run it on a quiet machine: ratios are taken within one run, with the
# repetitions of all benchmarks of a program randomly interleaved, but a
# loaded machine still widens their spread. Each record keeps the load
# average at its start, and the tables say which runs were under load.
set -euo pipefail
cd "$(dirname "$0")/.."

filter="${1:-.}"
build_dir="${MTKIT_BENCH_BUILD_DIR:-build-bench}"
repetitions="${MTKIT_BENCH_REPETITIONS:-10}"
min_time="${MTKIT_BENCH_MIN_TIME:-0.5}"
jobs="${MTKIT_BENCH_JOBS:-2}"
settle="${MTKIT_BENCH_SETTLE:-240}"

# Each program waits until the 1-minute load average is below the quiet
# mark of scripts/bench-tables.py, so that the program before it (or the
# build) does not count as load; a busy machine is waited for only so long,
# and its record then says it ran under load.
wait_for_quiet() {
  local waited=0 load
  while :; do
    load="$(cut -d' ' -f1 /proc/loadavg)"
    if awk -v l="$load" 'BEGIN { exit !(l < 0.5) }'; then break; fi
    if [ "$waited" -ge "$settle" ]; then
      echo "run-benchmarks: load average still $load after ${waited} s; running anyway" >&2
      return
    fi
    sleep 10
    waited=$((waited + 10))
  done
  if [ "$waited" -gt 0 ]; then echo "run-benchmarks: waited ${waited} s for the load to settle" >&2; fi
}

programs=()
for source in bench/*Bench.cpp; do
  name="$(basename "$source" .cpp)"
  if printf '%s\n' "$name" | grep -Eqi -- "$filter"; then programs+=("$name"); fi
done
if [ ${#programs[@]} -eq 0 ]; then
  echo "run-benchmarks: no benchmark program matches '$filter'" >&2
  exit 1
fi

scripts/setup.sh
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=Release -DMTKIT_BUILD_BENCHMARKS=ON >/dev/null
targets=()
for name in "${programs[@]}"; do targets+=("bench_$(printf '%s' "$name" | tr '[:upper:]' '[:lower:]')"); done
cmake --build "$build_dir" -j"$jobs" --target "${targets[@]}"

commit="$(git rev-parse --short HEAD 2>/dev/null || echo unknown)"
if ! git diff --quiet HEAD -- src bench 2>/dev/null; then commit="$commit+changes"; fi
compiler="$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' "$build_dir/CMakeCache.txt")"
compiler_version="$("$compiler" -dumpfullversion 2>/dev/null || echo unknown)"

mkdir -p docs/bench
for name in "${programs[@]}"; do
  program="$build_dir/bench/bench_$(printf '%s' "$name" | tr '[:upper:]' '[:lower:]')"
  record="docs/bench/$name.json"
  wait_for_quiet
  echo "== $name -> $record" >&2
  "$program" \
    --benchmark_repetitions="$repetitions" \
    --benchmark_min_time="$min_time" \
    --benchmark_enable_random_interleaving=true \
    --benchmark_display_aggregates_only=true \
    --benchmark_out="$record.partial" --benchmark_out_format=json \
    --benchmark_context="commit=$commit,compiler=$(basename "$compiler") $compiler_version,build_type=Release"
  mv "$record.partial" "$record"
done

python3 scripts/bench-tables.py --update docs/PERFORMANCE.md docs/bench/*.json
